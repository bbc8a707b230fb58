/**
 * @file robust.h
 * Speech in noise: spectral peaks and periodicity.
 */
#ifndef ORVSR_ROBUST_H
#define ORVSR_ROBUST_H

#include "orvsr/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup findpeaks Local maxima of a curve
 *
 * Sets pDst[i] to 1 where the curve has a peak at i and to 0 elsewhere. The curve is the mean of pSrc from i
 * - movingAvgSize to i + movingAvgSize, over the samples that exist, or pSrc itself if movingAvgSize is 0. A
 * peak is the top of a hill whose slopes take at least searchSize steps, or as many as there are up to the
 * edge of the array. Two equal neighbours at the top make it flat, and no peak; smoothed single values are
 * equal within a relative 1e-6, all others exactly. At the edges:
 *
 * - position 0 is a peak if the curve falls from it for searchSize steps or more, or all the way to the end;
 * - the last position is a peak if the curve rises to it for as many steps as a peak there needs; but if the
 * first fall ends one before it, it is one only for searchSize 1 and pSrc[len - 1] > pSrc[len - 2],
 * unsmoothed;
 * - of a curve that is smoothed over len - 1 samples or more on each side nothing is a peak;
 * - a single element is a peak.
 *
 * Arguments: len values, 1 to 65535; searchSize 1 to 127; movingAvgSize 0 to 127. The mean of single values
 * is formed in double and rounded; that of integers is truncated toward zero.
 *
 * Statuses: orvStsNullPtrErr, orvStsLenRangeErr (len below 1 or above 65535), orvStsBadArgErr (searchSize,
 * movingAvgSize), orvStsNoErr.
 * @{
 */

/** Peaks of a 32f curve. */
ORV_API OrvStatus orvsFindPeaks_32f8u(const float *pSrc, uint8_t *pDst, int32_t len, int32_t searchSize,
                                      int32_t movingAvgSize);
/** Peaks of a 32s curve. */
ORV_API OrvStatus orvsFindPeaks_32s8u(const int32_t *pSrc, uint8_t *pDst, int32_t len, int32_t searchSize,
                                      int32_t movingAvgSize);
/** @} */

/**
 * @defgroup periodicity Period by the best comb
 *
 * Looks for the period p, minPeriod to maxPeriod, and the phase f below p whose comb, the at most six samples
 * f, f + p, ..., f + 5 p below len, has the largest mean; the first of equals wins. *pPeriod is p and
 * *pResult the sum of the comb over the sum of all len samples, none of which may be negative. Both are 0 if
 * all samples are.
 *
 * Statuses: orvStsNullPtrErr, orvStsRangeErr (minPeriod below 1, or maxPeriod at or below it),
 * orvStsLenRangeErr (len at or below maxPeriod, or above 4096), orvStsRangeErr (a negative sample),
 * orvStsNoErr.
 *
 * Source of the method: M. Schroeder, Period histogram and product spectrum, JASA 43 (1968).
 * @{
 */

/** Period of 32f samples. Sums in single, that of all samples from the last to the first. */
ORV_API OrvStatus orvsPeriodicity_32f(const float *pSrc, int32_t len, float *pResult, int32_t *pPeriod,
                                      int32_t maxPeriod, int32_t minPeriod);
/** Period of 32s samples; *pResult in Q15, at most 32767. Means are formed with reciprocals of 30 fractional
 * bits. */
ORV_API OrvStatus orvsPeriodicity_32s16s(const int32_t *pSrc, int32_t len, int16_t *pResult, int32_t *pPeriod,
                                         int32_t maxPeriod, int32_t minPeriod);
/** @} */

/**
 * @defgroup periodicitylspe Period by least squares
 *
 * Looks for the period p, minPeriod to maxPeriod, at which the samples are best explained by one that
 * repeats. With n samples f, f + p, f + 2p, ... in each phase f below p:
 *
 *     u = sum over f of (sum of x)^2 / n,   w = sum over f of (sum of x^2) / n,   E = sum of all x^2
 *     *pResult = the largest (u - w) / (E - w) with both above 0, *pPeriod its period; both 0 if there is
 * none
 *
 * The samples may have any sign.
 *
 * Statuses: orvStsNullPtrErr, orvStsRangeErr (minPeriod below 6, or maxPeriod at or below it),
 * orvStsLenRangeErr (len at or below maxPeriod, above 1024, or above 16 minPeriod), orvStsNoErr.
 *
 * Source of the method: D. Friedman, Pseudo-maximum-likelihood speech pitch extraction, IEEE Trans. ASSP 25
 * (1977).
 * @{
 */

/** Period of 32f samples, in single. */
ORV_API OrvStatus orvsPeriodicityLSPE_32f(const float *pSrc, int32_t len, float *pResult, int32_t *pPeriod,
                                          int32_t maxPeriod, int32_t minPeriod);
/** Period of 16s samples; *pResult in Q15, at most 32767. Energies are shifted right until they fit in 31
 * bits. */
ORV_API OrvStatus orvsPeriodicityLSPE_16s(const int16_t *pSrc, int32_t len, int16_t *pResult,
                                          int32_t *pPeriod, int32_t maxPeriod, int32_t minPeriod);
/** @} */

#ifdef __cplusplus
}
#endif
#endif
