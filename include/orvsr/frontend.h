/**
 * @file frontend.h
 * From samples to feature vectors: filter banks, cepstra, delta features, frame measures, linear prediction
 * and correlation.
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

/**
 * @defgroup normenergy Normalisation of an energy column
 *
 * Log energies e of the frames of an utterance, in place, one every step elements:
 *
 *     floor   = max - silenceFloor * 0.230259                  (0.230259 = ln(10) / 10: the floor is in
 * decibels) e[i]    = 1 - (max - larger of e[i] and floor) * scale            32f e[i]    = valueAtMax - (max
 * - larger of e[i] and floor) * scale   16s, in single, saturated and truncated
 *
 * max is the largest energy of the column, or maxEnergy in the RT forms, for callers that cannot wait for the
 * end.
 *
 * Statuses: orvStsNullPtrErr, orvStsSizeErr (step or height below 1), orvStsNoErr.
 *
 * Source of the method: S. Young et al., The HTK Book, 2006, section 5.8.
 * @{
 */

/** 32f energies against their own maximum. */
ORV_API OrvStatus orvsNormEnergy_32f(float *pSrcDst, int32_t step, int32_t height, float silenceFloor,
                                     float scale);
/** 16s energies against their own maximum. */
ORV_API OrvStatus orvsNormEnergy_16s(int16_t *pSrcDst, int32_t step, int32_t height, int16_t silenceFloor,
                                     int16_t valueAtMax, float scale);
/** 32f energies against a given maximum. */
ORV_API OrvStatus orvsNormEnergy_RT_32f(float *pSrcDst, int32_t step, int32_t height, float silenceFloor,
                                        float maxEnergy, float scale);
/** 16s energies against a given maximum. */
ORV_API OrvStatus orvsNormEnergy_RT_16s(int16_t *pSrcDst, int32_t step, int32_t height, int16_t silenceFloor,
                                        int16_t maxEnergy, int16_t valueAtMax, float scale);
/** @} */

/**
 * @defgroup signchange Sign changes of a frame
 *
 * How often neighbouring samples pSrc[i], pSrc[i + 1] of len differ in sign. A single sample has no change.
 *
 * Statuses: orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsNoErr.
 *
 * Source of the method: L. Rabiner and R. Schafer, Digital Processing of Speech Signals, 1978, section 4.3.
 * @{
 */

/** Counts products below zero, formed in single: the product of two tiny values can vanish and is not
 * counted. */
ORV_API OrvStatus orvsSignChangeRate_32f(const float *pSrc, int32_t len, float *pResult);
/** Counts products below zero. */
ORV_API OrvStatus orvsSignChangeRate_16s(const int16_t *pSrc, int32_t len, int32_t *pResult);
/** Half the sum of |sgn(pSrc[i + 1]) - sgn(pSrc[i])|: a zero is a sign of its own, so a change through it
 * counts one half on each side. */
ORV_API OrvStatus orvsSignChangeRate_Count0_32f(const float *pSrc, int32_t len, float *pResult);
/** The same in integers; a last half is dropped. */
ORV_API OrvStatus orvsSignChangeRate_Count0_16s(const int16_t *pSrc, int32_t len, int32_t *pResult);
/** Counts neighbours whose sign bits differ, so that -0.0 and 0.0 do. */
ORV_API OrvStatus orvsSignChangeRateXor_32f(const float *pSrc, int32_t len, int32_t *pResult);
/** @} */

/**
 * Removes the mean of a frame, in place. The mean keeps two fractional bits, truncated; the difference is
 * rounded to the nearest integer, halves away from zero, and lies within -32767 .. 32767.
 *
 * @param pSrcDst  len samples
 * @param len      1 or more
 * @return orvStsSizeErr (len below 1), orvStsNullPtrErr, orvStsNoErr: the length is tested first
 */
ORV_API OrvStatus orvsZeroMean_16s(int16_t *pSrcDst, int32_t len);

/**
 * @defgroup compensateoffset Offset compensation
 *
 *     y[i] = x[i] - x[i - 1] + y[i - 1] * val
 *
 * a first-order high-pass that removes a constant offset; x[-1] is *pSrcLast and y[-1] is dstLast. *pSrcLast
 * becomes the last source sample. dstLast goes in by value: for the next frame the caller takes the last
 * output itself.
 *
 * - 32f: in single.
 * - 16s: the first sample in single, saturated, truncated toward zero. The others, for val from -1 to 1, in
 * integers with trunc(val * 4096) and an arithmetic shift; for other val in single, saturated and rounded,
 * halves away from zero.
 * - Q15: val / 32768 in 64 bits, divided toward zero and saturated; len up to 65535, val not negative.
 *
 * Statuses: orvStsNullPtrErr, orvStsSizeErr (len below 1, in the Q15 forms above 65535), orvStsBadArgErr (Q15
 * forms: val negative), orvStsNoErr.
 *
 * Source of the method: ETSI ES 201 108, section 4.2.3.
 * @{
 */

/** 32f samples. */
ORV_API OrvStatus orvsCompensateOffset_32f(const float *pSrc, float *pDst, int32_t len, float *pSrcLast,
                                           float dstLast, float val);
/** 32f samples in place. */
ORV_API OrvStatus orvsCompensateOffset_32f_I(float *pSrcDst, int32_t len, float *pSrcLast, float dstLast,
                                             float val);
/** 16s samples. */
ORV_API OrvStatus orvsCompensateOffset_16s(const int16_t *pSrc, int16_t *pDst, int32_t len, int16_t *pSrcLast,
                                           int16_t dstLast, float val);
/** 16s samples in place. */
ORV_API OrvStatus orvsCompensateOffset_16s_I(int16_t *pSrcDst, int32_t len, int16_t *pSrcLast,
                                             int16_t dstLast, float val);
/** 16s samples, Q15 factor. */
ORV_API OrvStatus orvsCompensateOffsetQ15_16s(const int16_t *pSrc, int16_t *pDst, int32_t len,
                                              int16_t *pSrcLast, int16_t dstLast, int16_t val);
/** 16s samples, Q15 factor, in place. */
ORV_API OrvStatus orvsCompensateOffsetQ15_16s_I(int16_t *pSrcDst, int32_t len, int16_t *pSrcLast,
                                                int16_t dstLast, int16_t val);
/** @} */

/**
 * The sum of p log2 p over the elements that are not zero: at or below zero for probabilities, the opposite
 * sign of the usual entropy, which is meant. Logarithms are rounded to single; sum and quotient by 0.6931472
 * are single.
 *
 * @param pSrc     len values
 * @param len      1 or more
 * @param pResult  the sum; NaN if an element is negative
 * @return orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsNegVarWrn (a negative element), orvStsNoErr
 * Source: C. Shannon, A mathematical theory of communication, 1948.
 */
ORV_API OrvStatus orvsEntropy_32f(const float *pSrc, int32_t len, float *pResult);
/**
 * The same of integers pSrc[i] * 2^-srcShift, times 2^-scaleFactor, saturated and truncated.
 *
 * @param pResult  left as it was if an element is negative
 * @return orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsNegVarWrn (a negative element), orvStsNoErr
 */
ORV_API OrvStatus orvsEntropy_16s32s_Sfs(const int16_t *pSrc, int32_t srcShift, int32_t len, int32_t *pResult,
                                         int32_t scaleFactor);

/**
 * @defgroup unitcurve Unit curve
 *
 *     0 below 0;  x^2 from 0 up to 1;  2 - (2 - x)^2 from 1 to 2;  2 above 2
 *
 * a smooth step. The 16s forms take x with srcShift fractional bits, 0 to 14 (any other gives zeros), and
 * write the curve times 2^-scaleFactor, shifted without rounding and saturated.
 *
 * Statuses: orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsNoErr.
 *
 * Source: the S-function of L. Zadeh, Calculus of fuzzy restrictions, 1975, doubled.
 * @{
 */

/** len values. */
ORV_API OrvStatus orvsUnitCurve_32f(const float *pSrc, float *pDst, int32_t len);
/** len values in place. */
ORV_API OrvStatus orvsUnitCurve_32f_I(float *pSrcDst, int32_t len);
/** len integers. */
ORV_API OrvStatus orvsUnitCurve_16s_Sfs(const int16_t *pSrc, int32_t srcShift, int16_t *pDst, int32_t len,
                                        int32_t scaleFactor);
/** len integers in place. */
ORV_API OrvStatus orvsUnitCurve_16s_ISfs(int16_t *pSrcDst, int32_t srcShift, int32_t len,
                                         int32_t scaleFactor);
/** @} */

/**
 * @defgroup normalizeinrange Range normalisation
 *
 *     low  = min + lowerRatio * (max - min),   high = upperRatio * (max - min) + min
 *     y[i] = larger of 0 and (smaller of high and x[i]) - low, times range / (upperRatio * (max - min) -
 * lowerRatio * (max - min))
 *
 * in single: what lies below the lower ratio of the way from min to max becomes 0, what lies above the upper
 * one becomes range. Integer outputs truncate toward zero. min and max are those of the source, or the
 * caller's in the MinMax forms.
 *
 * Arguments: len values, 1 or more; 0 <= lowerRatio < upperRatio <= 1; range is the largest output, and is
 * refused if negative only where both arrays are single; integer outputs are its low bits if it lies outside
 * their type.
 *
 * Statuses: orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsBadArgErr (ratios, range, or min above max),
 * orvStsDegenerateDataWrn (min equals max; all outputs are 0), orvStsNoErr.
 * @{
 */
/** 32f values, their own extremes. */
ORV_API OrvStatus orvsNormalizeInRange_32f(const float *pSrc, float *pDst, int32_t len, float lowerRatio,
                                           float upperRatio, float range);
/** 32f values to 16s, their own extremes. */
ORV_API OrvStatus orvsNormalizeInRange_32f16s(const float *pSrc, int16_t *pDst, int32_t len, float lowerRatio,
                                              float upperRatio, int32_t range);
/** 32f values to 8u, their own extremes. */
ORV_API OrvStatus orvsNormalizeInRange_32f8u(const float *pSrc, uint8_t *pDst, int32_t len, float lowerRatio,
                                             float upperRatio, int32_t range);
/** 16s values, their own extremes. */
ORV_API OrvStatus orvsNormalizeInRange_16s(const int16_t *pSrc, int16_t *pDst, int32_t len, float lowerRatio,
                                           float upperRatio, int32_t range);
/** 16s values to 8u, their own extremes. */
ORV_API OrvStatus orvsNormalizeInRange_16s8u(const int16_t *pSrc, uint8_t *pDst, int32_t len,
                                             float lowerRatio, float upperRatio, int32_t range);
/** 32f values in place, their own extremes. */
ORV_API OrvStatus orvsNormalizeInRange_32f_I(float *pSrcDst, int32_t len, float lowerRatio, float upperRatio,
                                             float range);
/** 16s values in place, their own extremes. */
ORV_API OrvStatus orvsNormalizeInRange_16s_I(int16_t *pSrcDst, int32_t len, float lowerRatio,
                                             float upperRatio, int32_t range);
/** 32f values, given extremes. */
ORV_API OrvStatus orvsNormalizeInRangeMinMax_32f(const float *pSrc, float *pDst, int32_t len, float min,
                                                 float max, float lowerRatio, float upperRatio, float range);
/** 32f values to 16s, given extremes. */
ORV_API OrvStatus orvsNormalizeInRangeMinMax_32f16s(const float *pSrc, int16_t *pDst, int32_t len, float min,
                                                    float max, float lowerRatio, float upperRatio,
                                                    int32_t range);
/** 32f values to 8u, given extremes. */
ORV_API OrvStatus orvsNormalizeInRangeMinMax_32f8u(const float *pSrc, uint8_t *pDst, int32_t len, float min,
                                                   float max, float lowerRatio, float upperRatio,
                                                   int32_t range);
/** 16s values, given extremes. */
ORV_API OrvStatus orvsNormalizeInRangeMinMax_16s(const int16_t *pSrc, int16_t *pDst, int32_t len, int16_t min,
                                                 int16_t max, float lowerRatio, float upperRatio,
                                                 int32_t range);
/** 16s values to 8u, given extremes. */
ORV_API OrvStatus orvsNormalizeInRangeMinMax_16s8u(const int16_t *pSrc, uint8_t *pDst, int32_t len,
                                                   int16_t min, int16_t max, float lowerRatio,
                                                   float upperRatio, int32_t range);
/** 32f values in place, given extremes. */
ORV_API OrvStatus orvsNormalizeInRangeMinMax_32f_I(float *pSrcDst, int32_t len, float min, float max,
                                                   float lowerRatio, float upperRatio, float range);
/** 16s values in place, given extremes. */
ORV_API OrvStatus orvsNormalizeInRangeMinMax_16s_I(int16_t *pSrcDst, int32_t len, int16_t min, int16_t max,
                                                   float lowerRatio, float upperRatio, int32_t range);
/** @} */

/* ---------------------------------------------------------------- linear prediction */

/* ---------------------------------------------------------------- conversions of prediction parameters */

/* ---------------------------------------------------------------- correlation and pitch candidates */

/**
 * @defgroup crosscorr Normalised cross-correlation of 16-bit signals
 *
 *     r = sum of x y / (sqrt(sum of x^2) sqrt(sum of y^2))
 *
 * with the sums in single precision, roots and quotient in double, rounded once. Where the product of the two
 * energies, in single, is not above 1.1754944e-38 in magnitude, r is 0; an all-zero signal is no error.
 *
 * Source of the method: D. Talkin, A robust algorithm for pitch tracking (RAPT), in: Speech Coding and
 * Synthesis, 1995; Y. Medan, E. Yair and D. Chazan, Super resolution pitch determination of speech signals,
 * IEEE Trans. SP 39 (1991), for the interpolated form.
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
ORV_API OrvStatus orvsCrossCorrCoeff_16s32f(const int16_t *pSrc1, const int16_t *pSrc2, int32_t len,
                                            float *pResult);

/**
 * The same with the energy of pSrc1 known to the caller.
 *
 * @param energy  sum of squares of pSrc1; a negative one is not refused and gives NaN
 * @return orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsRangeErr (energy exactly 0), orvStsNoErr
 */
ORV_API OrvStatus orvsCrossCorrCoeffPartial_16s32f(const int16_t *pSrc1, const int16_t *pSrc2, int32_t len,
                                                   float *pResult, float energy);

/**
 * Coefficients of growing windows at every step-th lag. Window p, for p = 0 .. (srcLen - dotLen) / step,
 * pairs every step-th sample of pSrc1 from srcLen - dotLen - p * step with every step-th of pSrc2 from 0, p *
 * step + dotLen places of each. Products are exact, and are added in single precision one by one; the
 * energies of a window are those of the one before and one term more each.
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
 * The best lag between two neighbouring integer lags. With x[i] = pSrc1[i], y0[i] = pSrc2[i], y1[i] = pSrc2[i
 * + 1], sums in double and A = sum y0 y0, B = sum y1 y1, C = sum y1 y0, P = sum y0 x, Q = sum x y1:
 *
 *     beta = (Q A - P C) / ((B - C) P + (A - C) Q)
 *
 * and the coefficient of x with (1 - beta) y0 + beta y1.
 *
 * @param pSrc1    len samples
 * @param pSrc2    len + 1 samples
 * @param len      1 or more
 * @param pBeta    the fraction of a sample, written in any case
 * @param pResult  the coefficient; left as it was if beta lies outside 0 <= beta < 1; P itself if an energy
 * is 0
 * @return orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsDivByZeroWrn (the divisor of beta is 0: *pBeta
 * = 0, *pResult = P), orvStsNoErr
 */
ORV_API OrvStatus orvsCrossCorrCoeffInterpolation_16s32f(const int16_t *pSrc1, const int16_t *pSrc2,
                                                         int32_t len, float *pBeta, float *pResult);

/** @} */

/**
 * Fundamental frequencies from pitch marks: pDst[i] = 1 / (pSrc[i] - pSrc[i - 1]), with a mark at 0 before
 * the first. Two equal marks give plus infinity.
 *
 * @param pSrc  len times of pitch marks, in seconds for frequencies in hertz
 * @param pDst  len frequencies; may be pSrc
 * @param len   1 or more
 * @return orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsDivByZeroWrn (two marks are equal; all are
 * written), orvStsNoErr
 */
ORV_API OrvStatus orvsPitchmarkToF0Cand_32f(const float *pSrc, float *pDst, int32_t len);

/**
 * The same in integers: 2^-scaleFactor / (pSrc[i] - pSrc[i - 1]) in single precision, saturated, then
 * truncated toward zero. Two equal marks give 0.
 *
 * @param pSrc         len pitch marks
 * @param pDst         len frequencies; may be pSrc
 * @param len          1 or more
 * @param scaleFactor  any value; negative ones enlarge the result
 * @return orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsDivByZeroWrn (two marks are equal; all are
 * written), orvStsNoErr
 */
ORV_API OrvStatus orvsPitchmarkToF0Cand_16s_Sfs(const int16_t *pSrc, int16_t *pDst, int32_t len,
                                                int32_t scaleFactor);

#ifdef __cplusplus
}
#endif
#endif
