/**
 * @file frontend.h
 * From samples to feature vectors: filter banks, cepstra, delta features, frame measures, linear prediction and
 * correlation.
 */
#ifndef ORVSR_FRONTEND_H
#define ORVSR_FRONTEND_H

#include "orvsr/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---------------------------------------------------------------- filter banks and mel conversions */

/* ---------------------------------------------------------------- cosine transform and lifter */

/* ---------------------------------------------------------------- delta and acceleration features */

/* ---------------------------------------------------------------- frame measures and normalisation */

/* ---------------------------------------------------------------- linear prediction */

/* ---------------------------------------------------------------- conversions of prediction parameters */

/* ---------------------------------------------------------------- correlation and pitch candidates */

/**
 * @defgroup crosscorr Normalised cross-correlation of 16-bit signals
 *
 *     r = sum of x y / (sqrt(sum of x^2) sqrt(sum of y^2))
 *
 * with the sums in single precision, roots and quotient in double, rounded once. Where the product of the two energies, in
 * single, is not above 1.1754944e-38 in magnitude, r is 0; an all-zero signal is no error.
 *
 * Source of the method: D. Talkin, A robust algorithm for pitch tracking (RAPT), in: Speech Coding and Synthesis, 1995;
 * Y. Medan, E. Yair and D. Chazan, Super resolution pitch determination of speech signals, IEEE Trans. SP 39 (1991), for
 * the interpolated form.
 * @{
 */

/**
 * The coefficient of two signals of len samples; each sum is exact and rounded once.
 *
 * @param pSrc1,pSrc2  len samples each
 * @param len          1 or more
 * @param pResult      the coefficient, between -1 and 1 within rounding
 * @return orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsNoErr
 */
ORV_API OrvStatus orvsCrossCorrCoeff_16s32f(const int16_t *pSrc1, const int16_t *pSrc2, int32_t len, float *pResult);

/**
 * The same with the energy of pSrc1 known to the caller.
 *
 * @param energy  sum of squares of pSrc1; a negative one is not refused and gives NaN
 * @return orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsRangeErr (energy exactly 0), orvStsNoErr
 */
ORV_API OrvStatus orvsCrossCorrCoeffPartial_16s32f(const int16_t *pSrc1, const int16_t *pSrc2, int32_t len,
                                                   float *pResult, float energy);

/**
 * Coefficients of growing windows at every step-th lag. Window p, for p = 0 .. (srcLen - dotLen) / step, pairs every
 * step-th sample of pSrc1 from srcLen - dotLen - p * step with every step-th of pSrc2 from 0, p * step + dotLen places
 * of each. Products are exact, and are added in single precision one by one; the energies of a window are those of
 * the one before and one term more each.
 *
 * @param pSrc1,pSrc2  srcLen samples each
 * @param srcLen       dotLen or more
 * @param dotLen       length of the first window, 1 or more
 * @param pDst         (srcLen - dotLen) / step + 1 coefficients
 * @param step         1 or more
 * @return orvStsNullPtrErr, orvStsSizeErr (dotLen or step below 1, or srcLen below dotLen), orvStsNoErr
 */
ORV_API OrvStatus orvsCrossCorrCoeffDecim_16s32f(const int16_t *pSrc1, const int16_t *pSrc2, int32_t srcLen,
                                                 int32_t dotLen, float *pDst, int32_t step);

/**
 * The best lag between two neighbouring integer lags. With x[i] = pSrc1[i], y0[i] = pSrc2[i], y1[i] = pSrc2[i + 1], sums in
 * double and A = sum y0 y0, B = sum y1 y1, C = sum y1 y0, P = sum y0 x, Q = sum x y1:
 *
 *     beta = (Q A - P C) / ((B - C) P + (A - C) Q)
 *
 * and the coefficient of x with (1 - beta) y0 + beta y1.
 *
 * @param pSrc1    len samples
 * @param pSrc2    len + 1 samples
 * @param len      1 or more
 * @param pBeta    the fraction of a sample, written in any case
 * @param pResult  the coefficient; left as it was if beta lies outside 0 <= beta < 1; P itself if an energy is 0
 * @return orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsDivByZeroWrn (the divisor of beta is 0: *pBeta = 0,
 *         *pResult = P), orvStsNoErr
 */
ORV_API OrvStatus orvsCrossCorrCoeffInterpolation_16s32f(const int16_t *pSrc1, const int16_t *pSrc2, int32_t len,
                                                         float *pBeta, float *pResult);

/** @} */

/**
 * Fundamental frequencies from pitch marks: pDst[i] = 1 / (pSrc[i] - pSrc[i - 1]), with a mark at 0 before the first.
 * Two equal marks give plus infinity.
 *
 * @param pSrc  len times of pitch marks, in seconds for frequencies in hertz
 * @param pDst  len frequencies; may be pSrc
 * @param len   1 or more
 * @return orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsDivByZeroWrn (two marks are equal; all are written),
 *         orvStsNoErr
 */
ORV_API OrvStatus orvsPitchmarkToF0Cand_32f(const float *pSrc, float *pDst, int32_t len);

/**
 * The same in integers: 2^-scaleFactor / (pSrc[i] - pSrc[i - 1]) in single precision, saturated, then truncated toward
 * zero. Two equal marks give 0.
 *
 * @param pSrc         len pitch marks
 * @param pDst         len frequencies; may be pSrc
 * @param len          1 or more
 * @param scaleFactor  any value; negative ones enlarge the result
 * @return orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsDivByZeroWrn (two marks are equal; all are written),
 *         orvStsNoErr
 */
ORV_API OrvStatus orvsPitchmarkToF0Cand_16s_Sfs(const int16_t *pSrc, int16_t *pDst, int32_t len, int32_t scaleFactor);

#ifdef __cplusplus
}
#endif
#endif
