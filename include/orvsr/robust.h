/**
 * @file robust.h
 * Speech in noise: noise reduction, equalisation, peaks and periodicity, voice activity, noise tracking.
 */
#ifndef ORVSR_ROBUST_H
#define ORVSR_ROBUST_H

#include "orvsr/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---------------------------------------------------------------- noise reduction by Wiener filters */

/**
 * @defgroup noisereduction Noise reduction
 *
 * The stages of noise reduction by a Wiener filter that is designed anew for every frame: the smoothed power
 * spectrum, the noise estimate, the gain of each bin, and, behind a mel bank and its inverse transform, the
 * filter in the time domain. No stage has a memory: the estimates of the frame before are arrays of the
 * caller's. Spectra, noise and gains may take the place of an array of their type that they are made from.
 *
 * The integer forms are not scaled copies of the 32f forms; each states its own constants and truncations. A
 * shift by a scale factor goes to the right for a positive one, without rounding, and to the left for a
 * negative one, and takes the low six bits of the count. The 32f forms work in single precision, in the order
 * of the formulas, and test no value beyond what is stated.
 *
 * Source of the method: ETSI ES 202 050, Advanced front-end feature extraction algorithm, 2007, section 5.1;
 * A. Agarwal and Y. M. Cheng, Two-stage mel-warped Wiener filter for robust speech recognition, ASRU 1999.
 * @{
 */

/**
 * Power spectrum of half the length: mean power of pairs of bins, from a packed spectrum x of len values:
 * x[0] is bin 0 and x[1] the Nyquist bin, both real, x[2k] and x[2k + 1] are bin k. With Q = len / 4:
 *
 *     pDst[0] = (x[0]^2 + x[2]^2 + x[3]^2) / 2
 *     pDst[k] = (x[4k]^2 + x[4k + 1]^2 + x[4k + 2]^2 + x[4k + 3]^2) / 2,   k = 1 .. Q - 1
 *     pDst[Q] = x[1]^2
 *
 * pDst has Q + 1 values.
 * orvStsNullPtrErr, orvStsSizeErr (len below 1 or no multiple of 4), orvStsNoErr.
 */
ORV_API OrvStatus orvsSmoothedPowerSpectrumAurora_32f(const float *pSrc, float *pDst, int32_t len);
/**
 * As orvsSmoothedPowerSpectrumAurora_32f(); each square but the last is shifted right by one before it is
 * added. Sums are formed in 32 bits, where four squares of -32768 wrap to the most negative number, and
 * saturate to 16.
 * orvStsNullPtrErr, orvStsSizeErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsSmoothedPowerSpectrumAurora_16s(const int16_t *pSrc, int16_t *pDst, int32_t len);
/**
 * As orvsSmoothedPowerSpectrumAurora_32f() in 64 bits, each square but the last being shifted right by one
 * before it is added; shifted by scaleFactor and saturated. The square in pDst[Q] alone wraps in 32 bits
 * first, from |x[1]| = 46341 on.
 * orvStsNullPtrErr, orvStsSizeErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsSmoothedPowerSpectrumAurora_32s_Sfs(const int32_t *pSrc, int32_t *pDst, int32_t len,
                                                          int32_t scaleFactor);
/**
 * As orvsSmoothedPowerSpectrumAurora_32s_Sfs(), not saturated.
 * orvStsNullPtrErr, orvStsSizeErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsSmoothedPowerSpectrumAurora_32s64s_Sfs(const int32_t *pSrc, int64_t *pDst, int32_t len,
                                                             int32_t scaleFactor);

/**
 * Noise estimate of a frame, from its spectrum a and the estimate b before, len values each:
 *
 *     pNoise[i] = b (a / (a + b) * 0.1 * (b / (0.1 a + b) + 1) + 0.9)
 *
 * and 0 where a + b or 0.1 a + b lies below 1e-6.
 * orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsNoiseSpectrumUpdate_Aurora_32f(const float *pSpectrum, const float *pNoisePrev,
                                                     float *pNoise, int32_t len);
/**
 * As orvsNoiseSpectrumUpdate_Aurora_32f(), in single precision, times 2^-scaleFactor, saturated and truncated
 * toward zero; 0 where a + b is 0, or 0.1 a + b truncates to 0.
 * orvStsNullPtrErr, orvStsSizeErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsNoiseSpectrumUpdate_Aurora_16s_Sfs(const int16_t *pSpectrum, const int16_t *pNoisePrev,
                                                         int16_t *pNoise, int32_t len, int32_t scaleFactor);
/**
 * As orvsNoiseSpectrumUpdate_Aurora_16s_Sfs(), with the divisors formed as 32-bit integers that wrap: a + b,
 * and 0.1 a truncated, plus b; 0 where either is 0. A result of 2^31 or more becomes -2147483648, unlike in
 * the 16s form.
 * orvStsNullPtrErr, orvStsSizeErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsNoiseSpectrumUpdate_Aurora_32s_Sfs(const int32_t *pSpectrum, const int32_t *pNoisePrev,
                                                         int32_t *pNoise, int32_t len, int32_t scaleFactor);

/**
 * Wiener gain of each of len bins, from spectrum X, noise N and the denoised spectrum P of the frame before:
 *
 *     r = 1 / N,   e = (max(0, X - N) * 0.02 + P * 0.98) * r,   h = e / (1 + e)
 *     g = max(X * h * r, 0.07943282),   pGain[i] = g / (1 + g)
 *
 * A NaN on the way to g, as from N = 0, gives the gain of the floor, 0.07943282 / 1.07943282.
 * orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsWienerFilterDesign_Aurora_32f(const float *pSpectrum, const float *pNoise,
                                                    const float *pDenoisedPrev, float *pGain, int32_t len);
/**
 * As orvsWienerFilterDesign_Aurora_32f(), for integers that are not negative; the gain is Q14. All quotients
 * truncate toward zero, all products are of 64 bits:
 *
 *     r = 16384 / N,   e = ((4014 P + 82 max(0, X - N)) r) >> 14,   h = 16384 e / (e + 4096)
 *     g = max(((X h) >> 14) r, 1301),   pGain[i] = 128 g / ((g >> 7) + 128)
 *
 * and 1206, the gain of the floor, where N is 0. So noise should be small against 16384, above which the
 * floor is all that is left.
 * orvStsNullPtrErr, orvStsSizeErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsWienerFilterDesign_Aurora_16s(const int16_t *pSpectrum, const int16_t *pNoise,
                                                    const int16_t *pDenoisedPrev, int16_t *pGain,
                                                    int32_t len);

/**
 * The 17 taps of orvsResidualFilter_Aurora_32f() from a response t of 10 values: t[8] .. t[1], t[0] in the
 * centre, t[2] .. t[9]. The wings differ by one place. pTaps does not overlap pSrc.
 * orvStsNullPtrErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsTabsCalculation_Aurora_32f(const float *pSrc, float *pTaps);
/**
 * As orvsTabsCalculation_Aurora_32f().
 * orvStsNullPtrErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsTabsCalculation_Aurora_16s(const int16_t *pSrc, int16_t *pTaps);

/**
 * Filters a frame: pDst[n] = sum of pSrc[n + k] * pTaps[k] over k = 0 .. 16, n = 0 .. 79. pSrc has 96
 * values, the first of them 8 before the frame; pDst does not overlap it.
 * orvStsNullPtrErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsResidualFilter_Aurora_32f(const float *pSrc, float *pDst, const float *pTaps);
/**
 * As orvsResidualFilter_Aurora_32f(), summed in 64 bits, shifted by scaleFactor and saturated.
 * orvStsNullPtrErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsResidualFilter_Aurora_16s_Sfs(const int16_t *pSrc, int16_t *pDst, const int16_t *pTaps,
                                                    int32_t scaleFactor);
/** @} */

/* ---------------------------------------------------------------- waveforms and cepstra */

/**
 * @defgroup waveprocessing Wave processing
 *
 * Raises, in a frame x of 200 samples, the part of each period that follows a peak of energy and lowers the
 * rest of it.
 *
 * Energy: e[i] = |x[i]^2 - x[i - 1] x[i + 1]|, and |(x[0] - x[1]) x[0]|, |(x[199] - x[198]) x[199]| at the
 * ends; s[i] is the sum of e[i - 4] .. e[i + 4], the ends repeated, formed as the running sum s + (entering -
 * leaving). The main peak is the largest s. To its right, as long as a peak c lies below 175, the next is
 * the largest s from c + 25 to c + 79; to its left, as long as c lies above 25, from c - 79 to c - 25, within
 * the frame; the first of equals. With z = q - 4 + part of d for a peak q with d samples to the next, or for
 * the last one since the one before, the samples q - 4 .. z - 1 are raised, but the first and the last of
 * them, and q - 5 and z, keep their value. At an end of the frame nothing of that is left out but what lies
 * beyond it, and sample 0 is raised. All other samples are lowered.
 * pDst may be pSrc.
 *
 * Source of the method: D. Macho and Y. M. Cheng, SNR-dependent waveform processing for improving the
 * robustness of ASR front-end, ICASSP 2001; ETSI ES 202 050, section 5.2.
 * @{
 */

/**
 * Factors 1.2 and 0.8, the former for 0.8 of a period. Single precision; a frame with a NaN has some peaks or other.
 * orvStsNullPtrErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsWaveProcessing_Aurora_32f(const float *pSrc, float *pDst);
/**
 * Factors 38 / 32 and 27 / 32, the products rounded to nearest, ties to even, and saturated; part 27 / 32,
 * truncated: not those of the 32f form. Energies and their sums are of 32 bits; sums wrap.
 * orvStsNullPtrErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsWaveProcessing_Aurora_16s(const int16_t *pSrc, int16_t *pDst);
/** @} */

/**
 * @defgroup blindequalization Blind equalisation
 *
 * Takes a bias off a cepstrum of len values, and moves the bias towards what makes the cepstrum the
 * reference, the faster the louder the frame:
 *
 *     c = pCep[i] - pBias[i],   pCep[i] = c,   pBias[i] = pBias[i] + (c - pRef[i]) u
 *
 * one element after the other, which holds for arrays that overlap too.
 *
 * Statuses: orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsNoErr.
 *
 * Source of the method: L. Mauuary, Blind equalization in the cepstral domain for robust telephone based
 * speech recognition, EUSIPCO 1998; ETSI ES 202 050, section 5.4.
 * @{
 */

/** u = min(1, max(0, logEnergy - 3.296875)) * 0.0087890625, logEnergy being natural. */
ORV_API OrvStatus orvsBlindEqualization_Aurora_32f(const float *pRef, float *pCep, float *pBias, int32_t len,
                                                   float logEnergy);
/**
 * logEnergy is Q6: u = min(64, max(0, logEnergy - 211)) * 9, and products with it are shifted right by 16.
 * Both results saturate to 16 bits; the bias follows c as it was before that.
 */
ORV_API OrvStatus orvsBlindEqualization_Aurora_16s(const int16_t *pRef, int16_t *pCep, int16_t *pBias,
                                                   int32_t len, int32_t logEnergy);
/** @} */

/* ---------------------------------------------------------------- wide-band input */

/**
 * @defgroup bandsplit Band split
 *
 * Splits a signal x in two bands of half its rate with one filter h of tapLen taps, len / 2 outputs each:
 *
 *     pDstLow[i]  = sum of x[2i + k] h[k]
 *     pDstHigh[i] = sum of x[2i + k] h[k] (-1)^(k + i + 1),   k = 0 .. tapLen - 1
 *
 * so pSrc has 2 (len / 2 - 1) + tapLen values. With a len of 1 nothing is written. Sums run in the order of
 * the taps. The results overlap neither pSrc nor pTaps.
 *
 * Statuses: orvStsNullPtrErr (pSrc, pTaps), orvStsSizeErr (tapLen below 1), orvStsNullPtrErr (pDstLow,
 * pDstHigh), orvStsSizeErr (len below 1), orvStsNoErr.
 *
 * Source of the method: ETSI ES 202 050, section 5.5.
 * @{
 */

/** Band split of 32f samples, in single precision. */
ORV_API OrvStatus orvsLowHighFilter_Aurora_32f(const float *pSrc, float *pDstLow, float *pDstHigh,
                                               int32_t len, const float *pTaps, int32_t tapLen);
/**
 * Band split of 16s samples: exact sums, shifted by scaleFactor, to the right without rounding, to the left
 * for a negative one, by the low six bits of the count; saturated.
 */
ORV_API OrvStatus orvsLowHighFilter_Aurora_16s_Sfs(const int16_t *pSrc, int16_t *pDstLow, int16_t *pDstHigh,
                                                   int32_t len, const int16_t *pTaps, int32_t tapLen,
                                                   int32_t scaleFactor);
/** @} */

/**
 * @defgroup highbandcoding High-band coding
 *
 * Three energies of the high band, relative to the low one as it was when they were coded. With L(v) = ln v
 * above exp(-10) and -10 elsewhere:
 *
 *     A0, A1, A2 = L of the sums of pBins[33 .. 38], pBins[39 .. 48], pBins[49 .. 64]
 *     B0, B1, B2 = L of half the sums of pHigh[66 .. 76], pHigh[78 .. 96], pHigh[98 .. 128]
 *     pDst[j] = 0.1 (B0 - (A0 - L(pLow[j]))) + 0.2 (B1 - (A1 - L(pLow[j]))) + 0.7 (B2 - (A2 - L(pLow[j])))
 *
 * pLow and pDst have 3 values, pBins 65, pHigh 129, of which positions 77 and 97 take no part.
 *
 * Statuses: orvStsNullPtrErr, orvStsNoErr.
 *
 * Source of the method: ETSI ES 202 050, section 5.5.
 * @{
 */

/** In single precision, the logarithms in double. A NaN counts as -10. */
ORV_API OrvStatus orvsHighBandCoding_Aurora_32f(const float *pLow, const float *pBins, const float *pHigh,
                                                float *pDst);
/**
 * Logarithms are Q7, rounded, and -1280 for what is not above 0. Sums of the high band are divided by 8,
 * rounded to nearest, ties to even, and 177 is added to their logarithm, unless it is -1280. The weights are
 * 102, 205, 717 in Q10, each product being shifted right by 10. Their sum is shifted right by scaleFactor +
 * 7, or to the left if that is negative, and saturated: -7 keeps Q7, 0 gives whole logarithms.
 */
ORV_API OrvStatus orvsHighBandCoding_Aurora_32s_Sfs(const int32_t *pLow, const int32_t *pBins,
                                                    const int32_t *pHigh, int32_t *pDst, int32_t scaleFactor);
/** @} */

/**
 * @defgroup integerbank All-integer mel bank
 *
 * A bank of nFilter triangular filters for spectra of 32-bit integers. Its centres and triangles are those of
 * orvsMelFBankInit_32f() with orvFBankBinWeights and the same fftLen, frequencies and constants, and so are
 * its band energies but for rounding: weights are Q30, to the nearest, every product is truncated to 22
 * fractional bits, and the energy is rounded at the end. So an energy of K bins with the sum S of magnitudes
 * is within 1/2 + K 2^-22 + S 2^-31 of the exact one at scaleFactor 0.
 *
 * The bank lives in a buffer of the caller's, which may start anywhere; its address is the bank. It holds
 * pointers into itself and is not copied or moved. It is only read by evaluation and may be shared by
 * threads.
 *
 * Source of the method: as for the filter banks of frontend.h.
 * @{
 */

/** A mel bank with Q30 weights for 32-bit spectra. */
typedef struct OrvsFBankState_32s OrvsFBankState_32s;

/**
 * Size in bytes of the buffer for orvsMelFBankInit_32s() with the same fftLen, nFilter and flags, into
 * *pSize.
 * orvStsNullPtrErr (pSize), orvStsSizeErr (nFilter below 1, fftLen below 32 or above 8192),
 * orvStsFBankFlagErr (flags other than orvFBankBinWeights), orvStsSizeErr (nFilter above half of the FFT
 * length), orvStsNoErr.
 */
ORV_API OrvStatus orvsMelFBankGetSize_32s(int32_t fftLen, int32_t nFilter, int32_t flags, int32_t *pSize);
/**
 * Builds a mel bank in the caller's buffer pFBank.
 * - fftLen: 32 to 8192; the FFT length L is the first power of two that is at least fftLen.
 * - pFFTOrder: receives log2 L.
 * - sampleRate, lowFreq, highFreq: in Hz, 1 to 48000 and 0 <= lowFreq < highFreq <= 24000. What lies above
 *   half of sampleRate counts as bin L / 2.
 * - melMul, melDiv: M and D of mel(f) = M ln(1 + f / D) in Q18, so that M = 2595 is 2595 * 262144. 2 < M <
 *   4096 and 2 < D < 1024: the upper limits are the powers of two above the usual 2595 and 700. They are
 *   taken as single-precision numbers. M cancels out of centres and weights.
 * - flags: orvFBankBinWeights.
 *
 * orvStsNullPtrErr (pFBank, pFFTOrder), orvStsSizeErr (nFilter or highFreq below 1, fftLen),
 * orvStsFBankFlagErr (flags), orvStsSizeErr (sampleRate, lowFreq), orvStsFBankFreqErr (highFreq),
 * orvStsBadArgErr (melDiv, melMul), orvStsSizeErr (nFilter above L / 2 + 1; *pFFTOrder is written),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsMelFBankInit_32s(OrvsFBankState_32s *pFBank, int32_t *pFFTOrder, int32_t fftLen,
                                       int32_t sampleRate, int32_t lowFreq, int32_t highFreq, int32_t nFilter,
                                       int32_t melMul, int32_t melDiv, int32_t flags);
/**
 * Band energies of a spectrum of L / 2 + 1 values into pDst, nFilter values: sums of (weight * pSrc[k]) >> 8
 * in 64 bits, shifted right by scaleFactor, or to the left if that is negative, rounded half up from 22
 * fractional bits and limited above at 2147483647. There is no lower limit: a spectrum has no negative value.
 * orvStsNullPtrErr, orvStsBadArgErr (scaleFactor below -31 or above 31), orvStsNoErr.
 */
ORV_API OrvStatus orvsEvalFBank_32s_Sfs(const int32_t *pSrc, int32_t *pDst, const OrvsFBankState_32s *pFBank,
                                        int32_t scaleFactor);
/** @} */

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

/* ---------------------------------------------------------------- voice activity and noise tracking */

/** A voice activity detector: 64 bytes of the caller's, at any address. */
typedef struct VADState_Aurora VADState_Aurora;
/** A noise tracker in memory of the caller's, at any address; it must stay where it was initialised. */
typedef struct McraState McraState;

/**
 * @defgroup vad Voice activity detection
 *
 * Tells frame by frame whether there is speech. Three trackers each follow the level of a measure in noise
 * and vote for speech where the measure is well above it: the energy x = E^2 - 3 with E the sum of all 25
 * bands, the mean of the bands 1 to 3 over two frames, and the variance of the 64 values of the spectrum. A
 * frame is active if one of them votes for it or activity is 5 or more. The longest run of active frames
 * among the last seven decides: 3 or more are speech, and after a run of 3 the next few frames still are,
 * after one of 4 the next 23 or 40 (40 once a run of 4 came within the first 35 frames).
 *
 * Call the Init form, then the Decision form once per frame, and after the last frame the Flush form until it
 * gives 4: it gives the decisions that the last votes still bear on, six of them. All forms of one detector
 * are of one type.
 *
 * The 16s form is not a scaled copy: its weights are ratios of small integers, its trackers wrap in 32 bits,
 * and after a quiet frame its variance level rises by the whole variance. Their decisions differ.
 *
 * - pBands: 25 band energies (of a noise-reduced spectrum), pSpectrum: 64 values;
 * - activity: a count that the caller derives elsewhere;
 * - *pResult: 1 speech, 2 no speech, 4 no decision, as for the first ten frames, and from a flush while no
 *   more than ten frames were counted, flushes included.
 *
 * Statuses: orvStsNullPtrErr, orvStsNoErr. Values that are not finite pass through by the rules of
 * arithmetic.
 *
 * Source of the method: ETSI ES 202 050, annex on voice activity detection.
 * @{
 */

/** Size in bytes of a 16s detector: 64. */
ORV_API OrvStatus orvsVADGetBufSize_Aurora_16s(int32_t *pSize);
/** Size in bytes of a 32f detector: 64. */
ORV_API OrvStatus orvsVADGetBufSize_Aurora_32f(int32_t *pSize);
/** Starts a 16s detector, or starts it again. */
ORV_API OrvStatus orvsVADInit_Aurora_16s(VADState_Aurora *pState);
/** Starts a 32f detector, or starts it again. */
ORV_API OrvStatus orvsVADInit_Aurora_32f(VADState_Aurora *pState);
/** Takes one frame of 16s values. */
ORV_API OrvStatus orvsVADDecision_Aurora_16s(const int16_t *pBands, const int16_t *pSpectrum,
                                             int32_t activity, int32_t *pResult, VADState_Aurora *pState);
/** Takes one frame of 32f values. */
ORV_API OrvStatus orvsVADDecision_Aurora_32f(const float *pBands, const float *pSpectrum, int32_t activity,
                                             int32_t *pResult, VADState_Aurora *pState);
/** The next decision after the end of the input of a 16s detector. */
ORV_API OrvStatus orvsVADFlush_Aurora_16s(int32_t *pResult, VADState_Aurora *pState);
/** The next decision after the end of the input of a 32f detector. */
ORV_API OrvStatus orvsVADFlush_Aurora_32f(int32_t *pResult, VADState_Aurora *pState);
/** @} */

/**
 * @defgroup mcra Noise power by minima-controlled recursive averaging
 *
 * Follows the noise power N[k] of the len / 2 + 1 bins of a spectrum. With P[k] the power in the new frame,
 * M[k] the minimum of the smoothed power over about a second:
 *
 *     S[k] = alphaS S[k] + (1 - alphaS) P[k]
 *     p[k] = alphaP p[k] + (S[k] > 5 M[k] ? 1 - alphaP : 0)        probability of speech
 *     a    = alphaD + (1 - alphaD) p[k]
 *     N[k] = a N[k] + (1 - a) P[k]
 *
 * alphaD, alphaS and alphaP are 0.7, 0.8 and 0.2 to the power of hop * 125 / sampleRate. The first frame
 * after an Init form only primes the tracker: N = P. The Update form returns N in pNoise, and takes N of the
 * frame before from there.
 *
 * The 32s forms take powers of any scale and hold the coefficients in Q31. They form them by a series of the
 * third order, which agrees with the 32f forms for hops near sampleRate / 125 and is useless at several times
 * that; the two types do not agree there.
 *
 * - sampleRate: 8000 to 48000 Hz;
 * - len: transform length, 8 to 8192; an odd one counts as the even one below;
 * - hop: frame step in samples, 1 to len / 2. Without it, the step is len / 2, and the minimum is taken over
 *   the frames that a second has at a step of the largest power of two not above len / 2;
 * - pState: a buffer of as many bytes as the GetSize form reports, for either type. Types must not be mixed
 *   on one object;
 * - pSrc: len / 2 + 1 powers, pNoise: as many, which may be the same array.
 *
 * Statuses, in this order; an error leaves the object as it is:
 *
 * - GetSize: orvStsNullPtrErr, orvStsSizeErr (len), orvStsNoErr;
 * - Init: orvStsNullPtrErr, orvStsRangeErr (sampleRate), orvStsSizeErr (len), orvStsNoErr;
 * - AltInit: orvStsNullPtrErr, orvStsRangeErr (sampleRate, or hop outside 1 to len / 2 even if len is wrong
 *   too), orvStsSizeErr (len), orvStsNoErr;
 * - Update: orvStsNullPtrErr, orvStsNoErr.
 *
 * Source of the method: I. Cohen, B. Berdugo, Noise estimation by minima controlled recursive averaging for
 * robust speech enhancement, IEEE Signal Processing Letters 9 (2002).
 * @{
 */

/** Size in bytes of a tracker: 104 + 16 (len / 2). */
ORV_API OrvStatus orvsGetSizeMCRA_32s(int32_t len, int32_t *pSize);
/** Size in bytes of a tracker: 104 + 16 (len / 2). */
ORV_API OrvStatus orvsGetSizeMCRA_32f(int32_t len, int32_t *pSize);
/** Starts a 32s tracker, or starts it again, for frames len / 2 samples apart. */
ORV_API OrvStatus orvsInitMCRA_32s(int32_t sampleRate, int32_t len, McraState *pState);
/** Starts a 32f tracker, or starts it again, for frames len / 2 samples apart. */
ORV_API OrvStatus orvsInitMCRA_32f(int32_t sampleRate, int32_t len, McraState *pState);
/** Starts a 32s tracker, or starts it again, for frames hop samples apart. */
ORV_API OrvStatus orvsAltInitMCRA_32s(int32_t sampleRate, int32_t len, int32_t hop, McraState *pState);
/** Starts a 32f tracker, or starts it again, for frames hop samples apart. */
ORV_API OrvStatus orvsAltInitMCRA_32f(int32_t sampleRate, int32_t len, int32_t hop, McraState *pState);
/** Takes one frame of 32s powers. */
ORV_API OrvStatus orvsUpdateNoisePSDMCRA_32s_I(const int32_t *pSrc, McraState *pState, int32_t *pNoise);
/** Takes one frame of 32f powers. */
ORV_API OrvStatus orvsUpdateNoisePSDMCRA_32f_I(const float *pSrc, McraState *pState, float *pNoise);
/** @} */

/**
 * @defgroup noisegains Gains of a noise suppressor
 *
 * EMNS, the amplitude of least mean square error, from the Wiener gain H = xi / (1 + xi) and the ratio g of
 * the power of a bin to its noise (both of len elements):
 *
 *     dst = H F(v), v = H g, F(v) = sqrt(pi) / (2 sqrt(v)) exp(-v / 2) ((1 + v) I0(v / 2) + v I1(v / 2))
 *
 * with F from tables, good to 0.6 percent, and g limited to 100 above, and to 2^-15 (32s) or 3.1e-5 (32f)
 * below. v counts in steps of 2^-22, and F is held at 2147483647 in the first of them: there the 32s form
 * saturates at 2147483647, while the 32f form may give more than 1.
 *
 * Wiener, from the ratio x of signal to noise: dst = x / (1 + x). In the 32s form a step function: x is taken
 * down to a multiple of 1/16 below 4, of 4 below 64, of 64 below 512, to 512 below 1024, and from there the
 * gain is 2147483647. A negative x has the gain 0 and makes the status orvStsBadArgErr, with all the output
 * written.
 *
 * The 32s forms take and give gains in Q31, and ratios in Q15. dst may be one of the inputs. No form
 * allocates.
 *
 * Statuses: orvStsNullPtrErr, orvStsLenRangeErr (len below 1 or above 65535), orvStsRangeErr (EMNS: some H
 * below 0 or, in the 32f form only, above 1; nothing written), orvStsBadArgErr (Wiener: some x below 0, as
 * told), orvStsNoErr.
 *
 * Source of the method: Y. Ephraim, D. Malah, Speech enhancement using a minimum mean-square error short-time
 * spectral amplitude estimator, IEEE Trans. ASSP 32 (1984).
 * @{
 */

/** Amplitude gains in Q31 from Wiener gains in Q31 and ratios in Q15. */
ORV_API OrvStatus orvsFilterUpdateEMNS_32s(const int32_t *pWiener, const int32_t *pPostSnr, int32_t *pDst,
                                           int32_t len);
/** Amplitude gains from Wiener gains, 0 to 1, and ratios. */
ORV_API OrvStatus orvsFilterUpdateEMNS_32f(const float *pWiener, const float *pPostSnr, float *pDst,
                                           int32_t len);
/** Wiener gains in Q31 from ratios in Q15. */
ORV_API OrvStatus orvsFilterUpdateWiener_32s(const int32_t *pSrc, int32_t *pDst, int32_t len);
/** Wiener gains from ratios. */
ORV_API OrvStatus orvsFilterUpdateWiener_32f(const float *pSrc, float *pDst, int32_t len);
/** @} */

#ifdef __cplusplus
}
#endif
#endif
