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

/**
 * @defgroup fbank Filter banks
 *
 * A bank of n triangular filters over the bins 0 .. L/2 of a spectrum, L being a power of two. Band i, 1 to
 * n, has a rising side on the bins c[i-1] .. c[i] and a falling side on the bins c[i] + 1 .. c[i+1]; the n +
 * 2 bin numbers c[0] .. c[n+1] are the centres. A bank is built once, by
 * - orvsMelFBankInit*: bands of equal width on the mel scale,
 * - orvsMelFBankInit*Low_Aurora_*, orvsMelFBankInit*High_Aurora_*: two fixed banks for 8 kHz speech,
 * - orvsMelLinFBankInitAlloc_*: linear up to a frequency and mel above it,
 * - orvsEmptyFBankInitAlloc_*: centres and weights that the caller sets,
 * and evaluated for every frame by orvsEvalFBank_*. Its centres and weights can be read and replaced at any
 * time.
 *
 * The 32f bank holds single-precision weights. The 16s bank holds them as 32-bit integers in Q14: 1.0 is
 * 16384. A bank is only given to functions of its own type.
 *
 * Birth and end. An InitAlloc function allocates the bank and stores its address in *ppFBank;
 * orvsFBankFree_* releases it. An Init function builds it in a buffer of the size that the GetSize function
 * of the same name reports; the caller releases that buffer, and the bank is never given to orvsFBankFree_*.
 * The buffer may start anywhere: its address is the bank. A bank holds pointers into itself and is not
 * copied or moved. Where an allocation fails, nothing stays allocated and *ppFBank is null; argument errors
 * leave it as it was.
 *
 * Threads. A bank without an FFT is only read by evaluation and may be shared. A bank with an FFT is written
 * by every evaluation, so each thread needs its own.
 *
 * Arguments of the constructors:
 * - fftLen: 1 or more. L is the first power of two that is at least fftLen and at least 2.
 * - pFFTOrder: receives log2 L, once all arguments have passed their checks.
 * - sampleRate, lowFreq, highFreq: in Hz; 0 < lowFreq <= highFreq <= sampleRate / 2.
 * - nFilter: n, 1 or more.
 * - melMul, melDiv: M and D of mel(f) = M ln(1 + f / D), with the natural logarithm. Usual values are 1127
 *   and 700; M cancels out of centres and weights. They are not tested; zeros or NaNs give meaningless
 *   centres, but no function then reads or writes outside the bank and the arrays it was given.
 * - flags: orvFBankMelWeights or orvFBankBinWeights, either with or without orvFBankFromSamples:
 *   - orvFBankMelWeights: centres are truncated to bins, and bin k weighs (mel(f_k) - mel_{i-1}) / (mel_i -
 *     mel_{i-1}) on the rising side, (mel_{i+1} - mel(f_k)) / (mel_{i+1} - mel_i) on the falling side, f_k =
 *     k * sampleRate / L, mel_i being the unrounded centre. Bin c[i-1] weighs 0. Weights are not limited to
 *     0 .. 1.
 *   - orvFBankBinWeights: centres are rounded to the nearest bin (ties to even), and with d = c[i] - c[i-1]
 *     and e = c[i+1] - c[i] bin c[i-1] + j weighs (j + 1) / (d + 1), j = 0 .. d, and bin c[i] + 1 + j weighs
 *     (e - j) / (e + 1), j = 0 .. e - 1: no bin of the band weighs 0.
 *   - orvFBankFromSamples: the bank owns an FFT and takes frames of L samples. If the FFT cannot be made,
 *     the constructor succeeds all the same, and evaluation reports the status of the transform.
 *
 * Construction works in extended precision, rounded to single wherever a value is stored, with the natural
 * logarithm and exponential in double. A NaN passes every check of a frequency.
 *
 * Source of the method: S. Davis and P. Mermelstein, Comparison of parametric representations for
 * monosyllabic word recognition in continuously spoken sentences, IEEE Trans. ASSP 28(4), 1980; S. Young et
 * al., The HTK Book, 2006, section 5.4. The fixed banks: ETSI ES 202 050, Advanced front-end feature
 * extraction algorithm, 2007.
 * @{
 */

/**
 * Size in bytes of the buffer for orvsMelFBankInit_32f() with the same fftLen, nFilter and flags, into
 * *pSize.
 * orvStsNullPtrErr (pSize), orvStsSizeErr (fftLen or nFilter below 1), orvStsFBankFlagErr (flags),
 * orvStsSizeErr (the size is beyond 32 bits), orvStsNoErr.
 */
ORV_API OrvStatus orvsMelFBankGetSize_32f(int32_t fftLen, int32_t nFilter, int32_t flags, int32_t *pSize);
/**
 * Size in bytes of the buffer for orvsMelFBankInit_16s(); as orvsMelFBankGetSize_32f().
 * orvStsNullPtrErr, orvStsSizeErr, orvStsFBankFlagErr, orvStsSizeErr (the size), orvStsNoErr.
 */
ORV_API OrvStatus orvsMelFBankGetSize_16s(int32_t fftLen, int32_t nFilter, int32_t flags, int32_t *pSize);

/**
 * Builds a mel bank in the caller's buffer pFBank: centre i at mel_i = mel(lowFreq) + i * (mel(highFreq) -
 * mel(lowFreq)) / (nFilter + 1), i = 0 .. nFilter + 1.
 * orvStsNullPtrErr (pFBank or pFFTOrder), orvStsSizeErr (fftLen, nFilter, sampleRate or lowFreq not above
 * 0), orvStsFBankFreqErr (highFreq below lowFreq, or above half of sampleRate), orvStsFBankFlagErr (flags),
 * orvStsSizeErr (a size that orvsMelFBankGetSize_32f() refuses; nothing written), orvStsNoErr.
 */
ORV_API OrvStatus orvsMelFBankInit_32f(OrvsFBankState_32f *pFBank, int32_t *pFFTOrder, int32_t fftLen,
                                       float sampleRate, float lowFreq, float highFreq, int32_t nFilter,
                                       float melMul, float melDiv, int32_t flags);
/**
 * Builds a mel bank with Q14 weights in the caller's buffer; as orvsMelFBankInit_32f(). Mel weights are
 * rounded to single, then truncated; bin weights are quotients of 32-bit integers, truncated.
 * orvStsNullPtrErr, orvStsSizeErr, orvStsFBankFreqErr, orvStsFBankFlagErr, orvStsSizeErr (the size),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsMelFBankInit_16s(OrvsFBankState_16s *pFBank, int32_t *pFFTOrder, int32_t fftLen,
                                       float sampleRate, float lowFreq, float highFreq, int32_t nFilter,
                                       float melMul, float melDiv, int32_t flags);

/**
 * Allocates a mel bank, as orvsMelFBankInit_32f() builds it, into *ppFBank.
 * orvStsNullPtrErr (ppFBank or pFFTOrder), orvStsSizeErr (fftLen, nFilter, sampleRate or lowFreq not above
 * 0), orvStsFBankFreqErr (highFreq below lowFreq, or above half of sampleRate), orvStsFBankFlagErr (flags),
 * orvStsMemAllocErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsMelFBankInitAlloc_32f(OrvsFBankState_32f **ppFBank, int32_t *pFFTOrder, int32_t fftLen,
                                            float sampleRate, float lowFreq, float highFreq, int32_t nFilter,
                                            float melMul, float melDiv, int32_t flags);
/**
 * Allocates a mel bank with Q14 weights, as orvsMelFBankInit_16s() builds it, into *ppFBank.
 * orvStsNullPtrErr, orvStsSizeErr, orvStsFBankFreqErr, orvStsFBankFlagErr, orvStsMemAllocErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsMelFBankInitAlloc_16s(OrvsFBankState_16s **ppFBank, int32_t *pFFTOrder, int32_t fftLen,
                                            float sampleRate, float lowFreq, float highFreq, int32_t nFilter,
                                            float melMul, float melDiv, int32_t flags);

/**
 * Size in bytes of the buffer for orvsMelFBankInitLow_Aurora_32f(), into *pSize: 15768.
 * orvStsNullPtrErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsMelFBankGetSizeLow_Aurora_32f(int32_t *pSize);
/**
 * Size in bytes of the buffer for orvsMelFBankInitLow_Aurora_16s(), into *pSize: 15776.
 * orvStsNullPtrErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsMelFBankGetSizeLow_Aurora_16s(int32_t *pSize);
/**
 * Builds the fixed low bank in the caller's buffer: 25 bands over the 65 bins of a 128-point spectrum of 8
 * kHz speech, from samples never. Centres 0, 0, 1, 2, 3, 4, 5, 7, 8, 10, 12, 14, 16, 18, 20, 23, 26, 29, 32,
 * 36, 39, 44, 48, 53, 58, 64, 64. The weights of a band add up to 1; band 1 is bin 0 alone, band 25 ends at
 * its peak at bin 64.
 * orvStsNullPtrErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsMelFBankInitLow_Aurora_32f(OrvsFBankState_32f *pFBank);
/**
 * Builds the fixed low bank with Q14 weights in the caller's buffer; as orvsMelFBankInitLow_Aurora_32f(),
 * the weights being quotients of integers, truncated.
 * orvStsNullPtrErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsMelFBankInitLow_Aurora_16s(OrvsFBankState_16s *pFBank);
/**
 * Allocates the fixed low bank, as orvsMelFBankInitLow_Aurora_32f() builds it, into *ppFBank.
 * orvStsNullPtrErr, orvStsMemAllocErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsMelFBankInitAllocLow_Aurora_32f(OrvsFBankState_32f **ppFBank);
/**
 * Allocates the fixed low bank with Q14 weights, as orvsMelFBankInitLow_Aurora_16s() builds it, into
 * *ppFBank.
 * orvStsNullPtrErr, orvStsMemAllocErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsMelFBankInitAllocLow_Aurora_16s(OrvsFBankState_16s **ppFBank);

/**
 * Size in bytes of the buffer for orvsMelFBankInitHigh_Aurora_32f(), into *pSize: 3184.
 * orvStsNullPtrErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsMelFBankGetSizeHigh_Aurora_32f(int32_t *pSize);
/**
 * Size in bytes of the buffer for orvsMelFBankInitHigh_Aurora_16s(), into *pSize: 3192.
 * orvStsNullPtrErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsMelFBankGetSizeHigh_Aurora_16s(int32_t *pSize);
/**
 * Builds the fixed high bank in the caller's buffer: 3 bands over the 65 bins of a 128-point spectrum,
 * centres 1, 8, 19, 37, 64. The weights rise from 0 to 1 and fall to 0 in equal steps, and are not
 * normalised.
 * orvStsNullPtrErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsMelFBankInitHigh_Aurora_32f(OrvsFBankState_32f *pFBank);
/**
 * Builds the fixed high bank with Q14 weights in the caller's buffer; as orvsMelFBankInitHigh_Aurora_32f(),
 * the weights being quotients of integers, truncated.
 * orvStsNullPtrErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsMelFBankInitHigh_Aurora_16s(OrvsFBankState_16s *pFBank);
/**
 * Allocates the fixed high bank, as orvsMelFBankInitHigh_Aurora_32f() builds it, into *ppFBank.
 * orvStsNullPtrErr, orvStsMemAllocErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsMelFBankInitAllocHigh_Aurora_32f(OrvsFBankState_32f **ppFBank);
/**
 * Allocates the fixed high bank with Q14 weights, as orvsMelFBankInitHigh_Aurora_16s() builds it, into
 * *ppFBank.
 * orvStsNullPtrErr, orvStsMemAllocErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsMelFBankInitAllocHigh_Aurora_16s(OrvsFBankState_16s **ppFBank);

/**
 * Allocates a mixed bank into *ppFBank: centres 0 .. nLinear at equal steps of frequency from lowFreq to
 * linHighFreq, centres nLinear .. nFilter + 1 at equal steps of the mel scale from linHighFreq to highFreq.
 * With nLinear = nFilter all centres are linear, from lowFreq to linHighFreq.
 *
 * With orvFBankBinWeights every band has bin weights. With orvFBankMelWeights the bands 1 .. nLinear have
 * weights on the mel scale, negative ones replaced by 0, and the bands behind them bin weights all the same.
 * The falling side of band nLinear, where nLinear < nFilter, is measured from the bin number of its end
 * rather than from a mel value, and is zero for any usual melMul.
 *
 * No pointer is tested: neither ppFBank nor pFFTOrder may be null.
 * orvStsSizeErr (fftLen, nFilter, sampleRate, lowFreq or nLinear not above 0, or nLinear above nFilter),
 * orvStsFBankFreqErr (linHighFreq below lowFreq, highFreq below linHighFreq or above half of sampleRate),
 * orvStsFBankFlagErr (flags), orvStsMemAllocErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsMelLinFBankInitAlloc_32f(OrvsFBankState_32f **ppFBank, int32_t *pFFTOrder,
                                               int32_t fftLen, float sampleRate, float lowFreq,
                                               float highFreq, int32_t nFilter, float linHighFreq,
                                               int32_t nLinear, float melMul, float melDiv, int32_t flags);
/**
 * Allocates a mixed bank with Q14 weights into *ppFBank; as orvsMelLinFBankInitAlloc_32f(), the weights
 * truncated.
 * orvStsSizeErr, orvStsFBankFreqErr, orvStsFBankFlagErr, orvStsMemAllocErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsMelLinFBankInitAlloc_16s(OrvsFBankState_16s **ppFBank, int32_t *pFFTOrder,
                                               int32_t fftLen, float sampleRate, float lowFreq,
                                               float highFreq, int32_t nFilter, float linHighFreq,
                                               int32_t nLinear, float melMul, float melDiv, int32_t flags);

/**
 * Allocates a bank of nFilter bands without centres, all weights 0, into *ppFBank. It takes a spectrum,
 * whatever flags says (no value of which is refused or has an effect), and is not ready before
 * orvsFBankSetCenters_32f() has succeeded; then orvsFBankSetCoeffs_32f() sets the weights.
 *
 * No pointer is tested: neither ppFBank nor pFFTOrder may be null.
 * orvStsSizeErr (fftLen or nFilter not above 0), orvStsMemAllocErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsEmptyFBankInitAlloc_32f(OrvsFBankState_32f **ppFBank, int32_t *pFFTOrder,
                                              int32_t fftLen, int32_t nFilter, int32_t flags);
/**
 * Allocates a bank of nFilter bands without centres for Q14 weights; as orvsEmptyFBankInitAlloc_32f().
 * orvStsSizeErr (fftLen or nFilter not above 0), orvStsMemAllocErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsEmptyFBankInitAlloc_16s(OrvsFBankState_16s **ppFBank, int32_t *pFFTOrder,
                                              int32_t fftLen, int32_t nFilter, int32_t flags);

/**
 * Releases a bank that an InitAlloc function allocated, and only such a one.
 * orvStsNullPtrErr (pFBank), orvStsNoErr.
 */
ORV_API OrvStatus orvsFBankFree_32f(OrvsFBankState_32f *pFBank);
/**
 * Releases a 16s bank that an InitAlloc function allocated, and only such a one.
 * orvStsNullPtrErr (pFBank), orvStsNoErr.
 */
ORV_API OrvStatus orvsFBankFree_16s(OrvsFBankState_16s *pFBank);

/**
 * Evaluates a bank:
 *
 *     pDst[i-1] = (sum over k = c[i-1] .. c[i] of w_ik x[k]) + (sum over k = c[i]+1 .. c[i+1] of w_ik x[k])
 *
 * i = 1 .. n. Both sums are formed in single precision in rising order of k, products rounded. pSrc is the
 * spectrum x of L/2 + 1 values, or, for a bank built with orvFBankFromSamples, a frame of L samples (pad
 * shorter ones with orvsCopyWithPadding_32f()), whose unscaled magnitude spectrum (not the power) is x. pDst
 * receives n values. Centres behind bin L/2 are allowed by orvsFBankSetCenters_32f(); bins there are left
 * out.
 * orvStsNullPtrErr (pSrc, pDst or pFBank), orvStsFBankErr (the centres of an empty bank are not set), the
 * status of the transform for a bank whose FFT could not be made (pDst not written), orvStsNoErr.
 */
ORV_API OrvStatus orvsEvalFBank_32f(const float *pSrc, float *pDst, OrvsFBankState_32f *pFBank);
/**
 * Evaluates a 16s bank: an exact 64-bit sum of weight times sample for each band, shifted right by s = 14 +
 * scaleFactor bits without rounding (left by -s if s is negative; only the low six bits of the count
 * matter), saturated to 16 bits. scaleFactor may have any value.
 *
 * For a bank built with orvFBankFromSamples, pSrc is a frame of L samples; its magnitude spectrum is rounded
 * to 32-bit integers with six fractional bits, and s grows by 6. Only the low 32 bits of each product of
 * weight and magnitude enter the sum: large spectra wrap, which orvsEvalFBank_16s32s_Sfs() does not.
 * orvStsNullPtrErr (pSrc, pDst or pFBank), orvStsFBankErr (the centres of an empty bank are not set), the
 * status of the transform (pDst not written; orvStsMemAllocErr among them), orvStsNoErr.
 */
ORV_API OrvStatus orvsEvalFBank_16s_Sfs(const int16_t *pSrc, int16_t *pDst, OrvsFBankState_16s *pFBank,
                                        int32_t scaleFactor);
/**
 * Evaluates a 16s bank with 32-bit results; as orvsEvalFBank_16s_Sfs(), saturated to 32 bits, and with whole
 * products in either kind of bank.
 * orvStsNullPtrErr, orvStsFBankErr, the status of the transform, orvStsNoErr.
 */
ORV_API OrvStatus orvsEvalFBank_16s32s_Sfs(const int16_t *pSrc, int32_t *pDst, OrvsFBankState_16s *pFBank,
                                           int32_t scaleFactor);

/**
 * Copies the n + 2 centres of a bank to pCenters.
 * orvStsNullPtrErr (pCenters or pFBank), orvStsFBankErr (not ready, or the centres are not ones that
 * orvsFBankSetCenters_32f() takes, as those of meaningless construction arguments), orvStsNoErr.
 */
ORV_API OrvStatus orvsFBankGetCenters_32f(const OrvsFBankState_32f *pFBank, int32_t *pCenters);
/**
 * Copies the n + 2 centres of a 16s bank to pCenters.
 * orvStsNullPtrErr, orvStsFBankErr, orvStsNoErr, as orvsFBankGetCenters_32f().
 */
ORV_API OrvStatus orvsFBankGetCenters_16s(const OrvsFBankState_16s *pFBank, int32_t *pCenters);
/**
 * Replaces the n + 2 centres of a bank, which is ready from then on. The weights stay as they are.
 * pCenters[0] must not be negative, pCenters[0] .. pCenters[n] must not fall (not tested for n = 1), and
 * pCenters[n+1] must not exceed L/2; pCenters[n] and pCenters[n+1] are not compared.
 * orvStsNullPtrErr (pCenters or pFBank), orvStsFBankErr (the centres; the bank stays as it was),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsFBankSetCenters_32f(OrvsFBankState_32f *pFBank, const int32_t *pCenters);
/**
 * Replaces the n + 2 centres of a 16s bank; as orvsFBankSetCenters_32f().
 * orvStsNullPtrErr, orvStsFBankErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsFBankSetCenters_16s(OrvsFBankState_16s *pFBank, const int32_t *pCenters);

/**
 * Copies the weights of band index to pCoeffs: d + 1 of the rising side, d = c[index] - c[index-1] (none if
 * d is negative), then e of the falling side, e = c[index+1] - c[index]. No side gives more than its row
 * holds: L/2 + 1 and L/2 weights. index n + 1 is admitted, though orvsFBankSetCoeffs_32f() refuses it; what
 * is copied there is defined only for the fixed low bank.
 * orvStsNullPtrErr (pCoeffs or pFBank), orvStsFBankErr (not ready), orvStsSizeErr (index outside 1 .. n +
 * 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsFBankGetCoeffs_32f(const OrvsFBankState_32f *pFBank, int32_t index, float *pCoeffs);
/**
 * Copies the weights of band index of a 16s bank to pCoeffs, as single values w * 2^-14; layout as
 * orvsFBankGetCoeffs_32f().
 * orvStsNullPtrErr, orvStsFBankErr, orvStsSizeErr (index outside 1 .. n + 1), orvStsNoErr.
 */
ORV_API OrvStatus orvsFBankGetCoeffs_16s(const OrvsFBankState_16s *pFBank, int32_t index, float *pCoeffs);
/**
 * Replaces the weights of band index by those in pCoeffs, laid out as orvsFBankGetCoeffs_32f() writes them.
 * orvStsNullPtrErr (pCoeffs or pFBank), orvStsFBankErr (not ready), orvStsSizeErr (index outside 1 .. n),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsFBankSetCoeffs_32f(OrvsFBankState_32f *pFBank, int32_t index, const float *pCoeffs);
/**
 * Replaces the weights of band index of a 16s bank: each value times 16384, truncated to 32 bits. A product
 * below -2^31 gives -2^31, and so does one of 2^31 or more, or a NaN.
 * orvStsNullPtrErr, orvStsFBankErr, orvStsSizeErr (index outside 1 .. n), orvStsNoErr.
 */
ORV_API OrvStatus orvsFBankSetCoeffs_16s(OrvsFBankState_16s *pFBank, int32_t index, const float *pCoeffs);
/** @} */

/**
 * Frequencies to mel values: pDst[i] = melMul * ln(1 + pSrc[i] / melDiv), i = 0 .. len - 1, with the natural
 * logarithm and the reciprocal of melDiv formed once in double. pSrc and pDst (len values each) may be the
 * same. A NaN in melMul or melDiv passes the checks.
 * orvStsNullPtrErr (pSrc or pDst), orvStsSizeErr (len, melMul or melDiv not above 0), orvStsNoErr.
 *
 * Source of the method: S. Young et al., The HTK Book, 2006, section 5.4.
 */
ORV_API OrvStatus orvsLinearToMel_32f(const float *pSrc, float *pDst, int32_t len, float melMul,
                                      float melDiv);
/**
 * Mel values to frequencies, the inverse of orvsLinearToMel_32f(): pDst[i] = melDiv * (exp(pSrc[i] / melMul)
 * - 1), with the reciprocal of melMul formed once in double.
 * orvStsNullPtrErr (pSrc or pDst), orvStsSizeErr (len, melMul or melDiv not above 0), orvStsNoErr.
 */
ORV_API OrvStatus orvsMelToLinear_32f(const float *pSrc, float *pDst, int32_t len, float melMul,
                                      float melDiv);

/**
 * Copies srcLen values from pSrc to pDst and fills pDst with zeros up to dstLen values. Elements are copied
 * one after the other from the first, also where the arrays overlap.
 * orvStsNullPtrErr (pSrc or pDst), orvStsSizeErr (srcLen below 1, dstLen below 1 or below srcLen),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsCopyWithPadding_32f(const float *pSrc, int32_t srcLen, float *pDst, int32_t dstLen);
/**
 * Copies and pads 16-bit samples; as orvsCopyWithPadding_32f().
 * orvStsNullPtrErr, orvStsSizeErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsCopyWithPadding_16s(const int16_t *pSrc, int32_t srcLen, int16_t *pDst, int32_t dstLen);

/* ---------------------------------------------------------------- cosine transform and lifter */

/**
 * @defgroup dctlifter Cosine transform with lifter
 *
 *     pDst[i - 1] = lifter[i] * sum over j = 1 .. N of pSrc[j - 1] * cos(pi i (j - 1/2) / N)    i = 1 .. n
 *     pDst[n]     = lifter[0] * sum over j = 1 .. N of pSrc[j - 1]               C0 and MulC0 forms
 *
 * takes N = dctLen log band energies to n = numCeps liftered cepstral coefficients. An object holds the
 * cosines and the gains, in single precision whatever the type of the data; the basis has no norm such as
 * sqrt(2 / N), which the caller folds into val or pLifter. The gains are
 *
 *     lifter[i] = (1 + L/2 sin(pi i / L)) * val      plain and C0 forms, L = lifterParam
 *     lifter[i] = pLifter[i - 1]                     Mul and MulC0 forms
 *
 * and that of the zeroth coefficient is val0 in the C0 forms and pLifter[n - 1], the gain of the last
 * coefficient, in the MulC0 forms. Where i passes L nothing is clamped.
 *
 * Arguments:
 * - ppState: receives the object, which orvsDCTLifterFree_32f() or orvsDCTLifterFree_16s() releases; written
 *   on success alone.
 * - pState: of the Init forms a buffer of as many bytes as the GetSize form of the same name reports, at any
 *   address. The object lies in it, must not be moved and is not given to a Free function.
 * - dctLen: N, 1 or more. numCeps: n, 1 .. N.
 * - lifterParam: L, 1 or more; 22 is common.
 * - val, val0, pLifter: gains, any values; pLifter is read by the constructor only.
 * - pSize: receives the bytes of the buffer.
 *
 * Sizes are computed in 64 bits. An object of more than 2147483647 bytes gives orvStsSizeErr from GetSize
 * and Init and orvStsMemAllocErr from InitAlloc.
 *
 * Source of the method: S. Davis and P. Mermelstein, Comparison of parametric representations for
 * monosyllabic word recognition in continuously spoken sentences, IEEE Trans. ASSP 28(4), 1980; the lifter:
 * B.-H. Juang, L. Rabiner and J. Wilpon, On the use of bandpass liftering in speech recognition, IEEE Trans.
 * ASSP 35(7), 1987.
 * @{
 */

/**
 * Sinusoidal lifter, n coefficients, for 32f data: a new object.
 * orvStsNullPtrErr, orvStsSizeErr (dctLen, numCeps or lifterParam below 1, or dctLen below numCeps),
 * orvStsMemAllocErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsDCTLifterInitAlloc_32f(OrvsDCTLifterState_32f **ppState, int32_t dctLen,
                                             int32_t numCeps, int32_t lifterParam, float val);

/**
 * Sinusoidal lifter, n coefficients, for 32f data: an object in the caller's buffer.
 * orvStsNullPtrErr, orvStsSizeErr (dctLen, numCeps or lifterParam below 1, or dctLen below numCeps; then an
 * object beyond 32 bits), orvStsNoErr.
 */
ORV_API OrvStatus orvsDCTLifterInit_32f(OrvsDCTLifterState_32f *pState, int32_t dctLen, int32_t numCeps,
                                        int32_t lifterParam, float val);

/**
 * Bytes of the buffer for orvsDCTLifterInit_32f().
 * orvStsNullPtrErr, orvStsSizeErr (dctLen or numCeps below 1, or dctLen below numCeps; then an object beyond
 * 32 bits), orvStsNoErr.
 */
ORV_API OrvStatus orvsDCTLifterGetSize_32f(int32_t dctLen, int32_t numCeps, int32_t *pSize);

/**
 * Sinusoidal lifter, n coefficients and C0 with the gain val0, for 32f data: a new object.
 * orvStsNullPtrErr, orvStsSizeErr (dctLen, numCeps or lifterParam below 1, or dctLen below numCeps),
 * orvStsMemAllocErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsDCTLifterInitAlloc_C0_32f(OrvsDCTLifterState_32f **ppState, int32_t dctLen,
                                                int32_t numCeps, int32_t lifterParam, float val, float val0);

/**
 * Sinusoidal lifter, n coefficients and C0 with the gain val0, for 32f data: an object in the caller's
 * buffer.
 * orvStsNullPtrErr, orvStsSizeErr (dctLen, numCeps or lifterParam below 1, or dctLen below numCeps; then an
 * object beyond 32 bits), orvStsNoErr.
 */
ORV_API OrvStatus orvsDCTLifterInit_C0_32f(OrvsDCTLifterState_32f *pState, int32_t dctLen, int32_t numCeps,
                                           int32_t lifterParam, float val, float val0);

/**
 * Bytes of the buffer for orvsDCTLifterInit_C0_32f().
 * orvStsNullPtrErr, orvStsSizeErr (dctLen or numCeps below 1, or dctLen below numCeps; then an object beyond
 * 32 bits), orvStsNoErr.
 */
ORV_API OrvStatus orvsDCTLifterGetSize_C0_32f(int32_t dctLen, int32_t numCeps, int32_t *pSize);

/**
 * Caller's gains, n coefficients, for 32f data: a new object.
 * orvStsNullPtrErr, orvStsSizeErr (dctLen or numCeps below 1, or dctLen below numCeps), orvStsMemAllocErr,
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsDCTLifterInitAlloc_Mul_32f(OrvsDCTLifterState_32f **ppState, int32_t dctLen,
                                                 const float *pLifter, int32_t numCeps);

/**
 * Caller's gains, n coefficients, for 32f data: an object in the caller's buffer.
 * orvStsNullPtrErr, orvStsSizeErr (dctLen or numCeps below 1, or dctLen below numCeps; then an object beyond
 * 32 bits), orvStsNoErr.
 */
ORV_API OrvStatus orvsDCTLifterInit_Mul_32f(OrvsDCTLifterState_32f *pState, int32_t dctLen,
                                            const float *pLifter, int32_t numCeps);

/**
 * Bytes of the buffer for orvsDCTLifterInit_Mul_32f().
 * orvStsNullPtrErr, orvStsSizeErr (dctLen or numCeps below 1, or dctLen below numCeps; then an object beyond
 * 32 bits), orvStsNoErr.
 */
ORV_API OrvStatus orvsDCTLifterGetSize_Mul_32f(int32_t dctLen, int32_t numCeps, int32_t *pSize);

/**
 * Caller's gains, n coefficients and C0 with the last of the gains, for 32f data: a new object.
 * orvStsNullPtrErr, orvStsSizeErr (dctLen or numCeps below 1, or dctLen below numCeps), orvStsMemAllocErr,
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsDCTLifterInitAlloc_MulC0_32f(OrvsDCTLifterState_32f **ppState, int32_t dctLen,
                                                   const float *pLifter, int32_t numCeps);

/**
 * Caller's gains, n coefficients and C0 with the last of the gains, for 32f data: an object in the caller's
 * buffer.
 * orvStsNullPtrErr, orvStsSizeErr (dctLen or numCeps below 1, or dctLen below numCeps; then an object beyond
 * 32 bits), orvStsNoErr.
 */
ORV_API OrvStatus orvsDCTLifterInit_MulC0_32f(OrvsDCTLifterState_32f *pState, int32_t dctLen,
                                              const float *pLifter, int32_t numCeps);

/**
 * Bytes of the buffer for orvsDCTLifterInit_MulC0_32f().
 * orvStsNullPtrErr, orvStsSizeErr (dctLen or numCeps below 1, or dctLen below numCeps; then an object beyond
 * 32 bits), orvStsNoErr.
 */
ORV_API OrvStatus orvsDCTLifterGetSize_MulC0_32f(int32_t dctLen, int32_t numCeps, int32_t *pSize);

/**
 * Releases an object that an InitAlloc form for 32f data made.
 * orvStsNullPtrErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsDCTLifterFree_32f(OrvsDCTLifterState_32f *pState);

/**
 * Sinusoidal lifter, n coefficients, for integer data: a new object. If only the working array of the
 * transform cannot be allocated the object is made nevertheless, and the transform returns
 * orvStsMemAllocErr.
 * orvStsNullPtrErr, orvStsSizeErr (dctLen, numCeps or lifterParam below 1, or dctLen below numCeps),
 * orvStsMemAllocErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsDCTLifterInitAlloc_16s(OrvsDCTLifterState_16s **ppState, int32_t dctLen,
                                             int32_t numCeps, int32_t lifterParam, float val);

/**
 * Sinusoidal lifter, n coefficients, for integer data: an object in the caller's buffer.
 * orvStsNullPtrErr, orvStsSizeErr (dctLen, numCeps or lifterParam below 1, or dctLen below numCeps; then an
 * object beyond 32 bits), orvStsNoErr.
 */
ORV_API OrvStatus orvsDCTLifterInit_16s(OrvsDCTLifterState_16s *pState, int32_t dctLen, int32_t numCeps,
                                        int32_t lifterParam, float val);

/**
 * Bytes of the buffer for orvsDCTLifterInit_16s().
 * orvStsNullPtrErr, orvStsSizeErr (dctLen or numCeps below 1, or dctLen below numCeps; then an object beyond
 * 32 bits), orvStsNoErr.
 */
ORV_API OrvStatus orvsDCTLifterGetSize_16s(int32_t dctLen, int32_t numCeps, int32_t *pSize);

/**
 * Sinusoidal lifter, n coefficients and C0 with the gain val0, for integer data: a new object. If only the
 * working array of the transform cannot be allocated the object is made nevertheless, and the transform
 * returns orvStsMemAllocErr.
 * orvStsNullPtrErr, orvStsSizeErr (dctLen, numCeps or lifterParam below 1, or dctLen below numCeps),
 * orvStsMemAllocErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsDCTLifterInitAlloc_C0_16s(OrvsDCTLifterState_16s **ppState, int32_t dctLen,
                                                int32_t numCeps, int32_t lifterParam, float val, float val0);

/**
 * Sinusoidal lifter, n coefficients and C0 with the gain val0, for integer data: an object in the caller's
 * buffer.
 * orvStsNullPtrErr, orvStsSizeErr (dctLen, numCeps or lifterParam below 1, or dctLen below numCeps; then an
 * object beyond 32 bits), orvStsNoErr.
 */
ORV_API OrvStatus orvsDCTLifterInit_C0_16s(OrvsDCTLifterState_16s *pState, int32_t dctLen, int32_t numCeps,
                                           int32_t lifterParam, float val, float val0);

/**
 * Bytes of the buffer for orvsDCTLifterInit_C0_16s().
 * orvStsNullPtrErr, orvStsSizeErr (dctLen or numCeps below 1, or dctLen below numCeps; then an object beyond
 * 32 bits), orvStsNoErr.
 */
ORV_API OrvStatus orvsDCTLifterGetSize_C0_16s(int32_t dctLen, int32_t numCeps, int32_t *pSize);

/**
 * Caller's gains, n coefficients, for integer data: a new object. If only the working array of the transform
 * cannot be allocated the object is made nevertheless, and the transform returns orvStsMemAllocErr.
 * orvStsNullPtrErr, orvStsSizeErr (dctLen or numCeps below 1, or dctLen below numCeps), orvStsMemAllocErr,
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsDCTLifterInitAlloc_Mul_16s(OrvsDCTLifterState_16s **ppState, int32_t dctLen,
                                                 const float *pLifter, int32_t numCeps);

/**
 * Caller's gains, n coefficients, for integer data: an object in the caller's buffer.
 * orvStsNullPtrErr, orvStsSizeErr (dctLen or numCeps below 1, or dctLen below numCeps; then an object beyond
 * 32 bits), orvStsNoErr.
 */
ORV_API OrvStatus orvsDCTLifterInit_Mul_16s(OrvsDCTLifterState_16s *pState, int32_t dctLen,
                                            const float *pLifter, int32_t numCeps);

/**
 * Bytes of the buffer for orvsDCTLifterInit_Mul_16s().
 * orvStsNullPtrErr, orvStsSizeErr (dctLen or numCeps below 1, or dctLen below numCeps; then an object beyond
 * 32 bits), orvStsNoErr.
 */
ORV_API OrvStatus orvsDCTLifterGetSize_Mul_16s(int32_t dctLen, int32_t numCeps, int32_t *pSize);

/**
 * Caller's gains, n coefficients and C0 with the last of the gains, for integer data: a new object. If only
 * the working array of the transform cannot be allocated the object is made nevertheless, and the transform
 * returns orvStsMemAllocErr.
 * orvStsNullPtrErr, orvStsSizeErr (dctLen or numCeps below 1, or dctLen below numCeps), orvStsMemAllocErr,
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsDCTLifterInitAlloc_MulC0_16s(OrvsDCTLifterState_16s **ppState, int32_t dctLen,
                                                   const float *pLifter, int32_t numCeps);

/**
 * Caller's gains, n coefficients and C0 with the last of the gains, for integer data: an object in the
 * caller's buffer. The gains are 32-bit integers, unlike those of all other forms with a table, and are
 * converted to single.
 * orvStsNullPtrErr, orvStsSizeErr (dctLen or numCeps below 1, or dctLen below numCeps; then an object beyond
 * 32 bits), orvStsNoErr.
 */
ORV_API OrvStatus orvsDCTLifterInit_MulC0_16s(OrvsDCTLifterState_16s *pState, int32_t dctLen,
                                              const int32_t *pLifter, int32_t numCeps);

/**
 * Bytes of the buffer for orvsDCTLifterInit_MulC0_16s().
 * orvStsNullPtrErr, orvStsSizeErr (dctLen or numCeps below 1, or dctLen below numCeps, or dctLen above 8192,
 * a limit that no other form has; then an object beyond 32 bits), orvStsNoErr.
 */
ORV_API OrvStatus orvsDCTLifterGetSize_MulC0_16s(int32_t dctLen, int32_t numCeps, int32_t *pSize);

/**
 * Releases an object that an InitAlloc form for integer data made.
 * orvStsNullPtrErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsDCTLifterFree_16s(OrvsDCTLifterState_16s *pState);

/**
 * The transform. pSrc: N values. pDst: n values, or n + 1 with C0, written; it does not overlap pSrc. The
 * object is only read, and threads may share it.
 *
 * Each sum is formed in single precision: one by one until pSrc stands on a 16-byte boundary, then eight
 * products a round in two times four lanes, then one by one; all one by one if pSrc is not on a 4-byte
 * boundary.
 * orvStsNullPtrErr, orvStsNoErr. An object of the other type is not recognised.
 */
ORV_API OrvStatus orvsDCTLifter_32f(const float *pSrc, float *pDst, const OrvsDCTLifterState_32f *pState);

/**
 * The transform of 16s values, in single precision; the results times 2^-scaleFactor are rounded to the
 * nearest integer (ties to even) and saturated at the end. pSrc: N values. pDst: n values, or n + 1 with C0,
 * written. scaleFactor: any value. The object is written (its working array): each thread needs one of its
 * own.
 *
 * The rounds of eight products start at the first element.
 * orvStsNullPtrErr, orvStsMemAllocErr (an object whose working array could not be allocated), orvStsNoErr.
 * An object of the other type is not recognised.
 */
ORV_API OrvStatus orvsDCTLifter_16s_Sfs(const int16_t *pSrc, int16_t *pDst, OrvsDCTLifterState_16s *pState,
                                        int32_t scaleFactor);

/**
 * The transform of 32s values, each rounded to single first; otherwise as orvsDCTLifter_16s_Sfs(), but the
 * sums are formed in the order of orvsDCTLifter_32f().
 * orvStsNullPtrErr, orvStsMemAllocErr (an object whose working array could not be allocated), orvStsNoErr.
 * An object of the other type is not recognised.
 */
ORV_API OrvStatus orvsDCTLifter_32s16s_Sfs(const int32_t *pSrc, int16_t *pDst, OrvsDCTLifterState_16s *pState,
                                           int32_t scaleFactor);

/** @} */

/* ---------------------------------------------------------------- delta and acceleration features */

/**
 * @defgroup delta Delta and acceleration features of a stream
 *
 * These functions append time derivatives to a stream of feature vectors. A destination row holds the static
 * values x in columns 0 .. width-1, their delta d in the next width columns and, in the DeltaDelta forms,
 * the acceleration a in the width columns behind:
 *
 *     Win1:  d[t] = (x[t+1] - x[t-1]) * val1
 *            a[t] = (d[t+1] - d[t-1]) * val2
 *     Win2:  d[t] = (x[t+1] - x[t-1] + 2 (x[t+2] - x[t-2])) * val1
 *            a[t] = (d[t+1] - d[t-1] + 2 (d[t+2] - d[t-2])) * val2
 *
 * A row before the first or behind the last of an utterance is that edge row. No norm is divided by: 1 / (2
 * sum k^2), that is 1/2 and 1/10, is left to the gains. The Delta forms have one gain, val. The Mul forms
 * have a gain for each column: pVal[j] scales the static value on its way in, pVal[width + j] stands for
 * val1 and pVal[2 width + j] for val2.
 *
 * Streaming. An utterance may come in several calls; the destination is all the memory between them. With
 * orvDeltaBegin in mode, source row i goes to destination row i. Without it source row i goes to row lead +
 * i, and the caller has put into rows 0 .. lead-1, in all columns, the last lead rows of the call before.
 * With T the last row filled, the call derives:
 *
 *     form              lead  delta rows             acceleration rows      with orvDeltaEnd also
 *     Delta_Win1        2     0 or 1 .. T-1                                 d: T
 *     Delta_Win2        4     0 or 2 .. T-2                                 d: T-1, T
 *     DeltaDelta_Win1   3     0 or 2 .. T-1          0 or 1 .. T-2          d: T     a: T-1, T
 *     DeltaDelta_Win2   6     0 or 4 .. T-2          0 or 2 .. T-4          d: T-1, T     a: T-3 .. T
 *
 * from 0 with orvDeltaBegin, from the other number without. All other cells of delta and acceleration are
 * left as they are. A call with height 0 and orvDeltaEnd closes an utterance from the rows carried over.
 *
 * Arguments:
 * - pSrc: height rows of width values, packed.
 * - pVal: gains, 2 width values (DeltaMul) or 3 width (DeltaDeltaMul).
 * - width: static values in a row, 1 or more.
 * - pDst, dstStep: rows dstStep values apart, dstStep at least 2 width (Delta) or 3 width (DeltaDelta); does
 *   not overlap pSrc.
 * - height: source rows: lead or more with orvDeltaBegin, 0 or more without.
 * - val, val1, val2: gains, any values.
 * - mode: orvDeltaBegin, orvDeltaEnd, both or 0; other bits are ignored.
 * - scaleFactor: of the 16s forms, any value.
 *
 * The 32f forms evaluate Win2 as ((p - q) + r) + r with p - q the inner and r the outer difference. The 16s
 * forms work in 32 bits: a product is wrapped to 32 bits, shifted right by scaleFactor without rounding, or
 * left by -scaleFactor (wrapping), with counts taken modulo 32, and saturated to 16 bits; accelerations are
 * formed from the saturated deltas. Without pVal the static values are copied unchanged and differences are
 * exact. With pVal static values are scaled the same way and every single difference wraps to 16 bits, so
 * that a large difference saturates in the one kind and wraps in the other; this is meant.
 *
 * Checks of all these forms, in this order: orvStsNullPtrErr (pSrc, pDst or pVal null); orvStsSizeErr (width
 * below 1, height negative, or height 0 without orvDeltaEnd); orvStsStrideErr (dstStep below its least
 * value); orvStsSizeErr (orvDeltaBegin with height below lead); orvStsNoErr.
 *
 * Source of the method: S. Furui, Speaker-independent isolated word recognition using dynamic features of
 * speech spectrum, IEEE Trans. ASSP 34(1), 1986.
 * @{
 */

/**
 * Delta of 32f frames from one frame on each side.
 * orvStsNullPtrErr, orvStsSizeErr, orvStsStrideErr, orvStsSizeErr (height below 2 with orvDeltaBegin),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsDelta_Win1_32f_D2(const float *pSrc, int32_t width, float *pDst, int32_t dstStep,
                                        int32_t height, float val, int32_t mode);

/**
 * Delta of 32f frames from two frames on each side.
 * orvStsNullPtrErr, orvStsSizeErr, orvStsStrideErr, orvStsSizeErr (height below 4 with orvDeltaBegin),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsDelta_Win2_32f_D2(const float *pSrc, int32_t width, float *pDst, int32_t dstStep,
                                        int32_t height, float val, int32_t mode);

/**
 * Delta of 16s frames from one frame on each side. Differences are exact.
 * orvStsNullPtrErr, orvStsSizeErr, orvStsStrideErr, orvStsSizeErr (height below 2 with orvDeltaBegin),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsDelta_Win1_16s_D2Sfs(const int16_t *pSrc, int32_t width, int16_t *pDst, int32_t dstStep,
                                           int32_t height, int16_t val, int32_t mode, int32_t scaleFactor);

/**
 * Delta of 16s frames from two frames on each side. Differences are exact.
 * orvStsNullPtrErr, orvStsSizeErr, orvStsStrideErr, orvStsSizeErr (height below 4 with orvDeltaBegin),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsDelta_Win2_16s_D2Sfs(const int16_t *pSrc, int32_t width, int16_t *pDst, int32_t dstStep,
                                           int32_t height, int16_t val, int32_t mode, int32_t scaleFactor);

/**
 * Delta of 32f frames from one frame on each side, a gain for each column.
 * orvStsNullPtrErr, orvStsSizeErr, orvStsStrideErr, orvStsSizeErr (height below 2 with orvDeltaBegin),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsDeltaMul_Win1_32f_D2(const float *pSrc, const float *pVal, int32_t width, float *pDst,
                                           int32_t dstStep, int32_t height, int32_t mode);

/**
 * Delta of 32f frames from two frames on each side, a gain for each column.
 * orvStsNullPtrErr, orvStsSizeErr, orvStsStrideErr, orvStsSizeErr (height below 4 with orvDeltaBegin),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsDeltaMul_Win2_32f_D2(const float *pSrc, const float *pVal, int32_t width, float *pDst,
                                           int32_t dstStep, int32_t height, int32_t mode);

/**
 * Delta of 16s frames from one frame on each side, a gain for each column. Differences wrap to 16 bits.
 * orvStsNullPtrErr, orvStsSizeErr, orvStsStrideErr, orvStsSizeErr (height below 2 with orvDeltaBegin),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsDeltaMul_Win1_16s_D2Sfs(const int16_t *pSrc, const int16_t *pVal, int32_t width,
                                              int16_t *pDst, int32_t dstStep, int32_t height, int32_t mode,
                                              int32_t scaleFactor);

/**
 * Delta of 16s frames from two frames on each side, a gain for each column. Differences wrap to 16 bits.
 * orvStsNullPtrErr, orvStsSizeErr, orvStsStrideErr, orvStsSizeErr (height below 4 with orvDeltaBegin),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsDeltaMul_Win2_16s_D2Sfs(const int16_t *pSrc, const int16_t *pVal, int32_t width,
                                              int16_t *pDst, int32_t dstStep, int32_t height, int32_t mode,
                                              int32_t scaleFactor);

/**
 * Delta and acceleration of 32f frames from one frame on each side.
 * orvStsNullPtrErr, orvStsSizeErr, orvStsStrideErr, orvStsSizeErr (height below 3 with orvDeltaBegin),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsDeltaDelta_Win1_32f_D2(const float *pSrc, int32_t width, float *pDst, int32_t dstStep,
                                             int32_t height, float val1, float val2, int32_t mode);

/**
 * Delta and acceleration of 32f frames from two frames on each side.
 * orvStsNullPtrErr, orvStsSizeErr, orvStsStrideErr, orvStsSizeErr (height below 6 with orvDeltaBegin),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsDeltaDelta_Win2_32f_D2(const float *pSrc, int32_t width, float *pDst, int32_t dstStep,
                                             int32_t height, float val1, float val2, int32_t mode);

/**
 * Delta and acceleration of 16s frames from one frame on each side. Differences are exact.
 * orvStsNullPtrErr, orvStsSizeErr, orvStsStrideErr, orvStsSizeErr (height below 3 with orvDeltaBegin),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsDeltaDelta_Win1_16s_D2Sfs(const int16_t *pSrc, int32_t width, int16_t *pDst,
                                                int32_t dstStep, int32_t height, int16_t val1, int16_t val2,
                                                int32_t mode, int32_t scaleFactor);

/**
 * Delta and acceleration of 16s frames from two frames on each side. Differences are exact.
 * orvStsNullPtrErr, orvStsSizeErr, orvStsStrideErr, orvStsSizeErr (height below 6 with orvDeltaBegin),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsDeltaDelta_Win2_16s_D2Sfs(const int16_t *pSrc, int32_t width, int16_t *pDst,
                                                int32_t dstStep, int32_t height, int16_t val1, int16_t val2,
                                                int32_t mode, int32_t scaleFactor);

/**
 * Delta and acceleration of 32f frames from one frame on each side, a gain for each column.
 * orvStsNullPtrErr, orvStsSizeErr, orvStsStrideErr, orvStsSizeErr (height below 3 with orvDeltaBegin),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsDeltaDeltaMul_Win1_32f_D2(const float *pSrc, const float *pVal, int32_t width,
                                                float *pDst, int32_t dstStep, int32_t height, int32_t mode);

/**
 * Delta and acceleration of 32f frames from two frames on each side, a gain for each column.
 * orvStsNullPtrErr, orvStsSizeErr, orvStsStrideErr, orvStsSizeErr (height below 6 with orvDeltaBegin),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsDeltaDeltaMul_Win2_32f_D2(const float *pSrc, const float *pVal, int32_t width,
                                                float *pDst, int32_t dstStep, int32_t height, int32_t mode);

/**
 * Delta and acceleration of 16s frames from one frame on each side, a gain for each column. Differences wrap
 * to 16 bits.
 * orvStsNullPtrErr, orvStsSizeErr, orvStsStrideErr, orvStsSizeErr (height below 3 with orvDeltaBegin),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsDeltaDeltaMul_Win1_16s_D2Sfs(const int16_t *pSrc, const int16_t *pVal, int32_t width,
                                                   int16_t *pDst, int32_t dstStep, int32_t height,
                                                   int32_t mode, int32_t scaleFactor);

/**
 * Delta and acceleration of 16s frames from two frames on each side, a gain for each column. Differences
 * wrap to 16 bits.
 * orvStsNullPtrErr, orvStsSizeErr, orvStsStrideErr, orvStsSizeErr (height below 6 with orvDeltaBegin),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsDeltaDeltaMul_Win2_16s_D2Sfs(const int16_t *pSrc, const int16_t *pVal, int32_t width,
                                                   int16_t *pDst, int32_t dstStep, int32_t height,
                                                   int32_t mode, int32_t scaleFactor);

/** @} */

/**
 * @defgroup deltaaurora Delta and acceleration features with the nine-point window
 *
 * Source rows hold 14 values: 12 cepstra c1 .. c12, the zeroth c0 and the log energy e. A destination row
 * holds 13 static values, 13 deltas and 13 accelerations; both derivatives are taken from the static values
 * x:
 *
 *     x[0 .. 11] = c1 .. c12,  x[12] = c0 * 0.6 / 23 + e * 0.4
 *     d[t] = 0 - x[t-4] - 0.75 x[t-3] - 0.5 x[t-2] - 0.25 x[t-1]
 *              + 0.25 x[t+1] + 0.5 x[t+2] + 0.75 x[t+3] + x[t+4]
 *     a[t] = x[t-4] + 0.25 x[t-3] - 0.285714 x[t-2] - 0.607143 x[t-1] - 0.714286 x[t]
 *              - 0.607143 x[t+1] - 0.285714 x[t+2] + 0.25 x[t+3] + x[t+4]
 *
 * in single precision with these constants as singles, added from left to right. A row before the first or
 * behind the last of an utterance is that edge row.
 *
 * Streaming is that of the other forms with a lead of 8: with T the last row filled, delta and acceleration
 * are derived in rows 0 .. T-4 with orvDeltaBegin, 4 .. T-4 without, and up to T with orvDeltaEnd. Other
 * cells are left as they are.
 *
 * Arguments:
 * - pSrc: height rows of 14 values, packed.
 * - pVal: 39 gains: of the static values (after the combination of x[12]), of the deltas and of the
 *   accelerations (after their sums).
 * - pDst, dstStep: rows dstStep values apart, dstStep at least 39; does not overlap pSrc.
 * - height: source rows: 8 or more with orvDeltaBegin, 0 or more without.
 * - mode: orvDeltaBegin, orvDeltaEnd, both or 0; other bits are ignored.
 * - scaleFactor: of the 16s forms. The shift counts are s = scaleFactor modulo 32 and (scaleFactor + 2)
 *   modulo 32; a negative factor is no shift to the left here.
 *
 * The 16s forms store x >> s for columns 0 .. 11 (with pVal: x * pVal[j] >> s, saturated), and x[12] in
 * single, with pVal times its gain, truncated towards zero, >> s, saturated. The delta is the integer sum of
 * 4 d[t] (with pVal times its gain, wrapped to 32 bits) >> (s + 2), saturated; the acceleration is the
 * single-precision sum (with pVal times its gain) truncated towards zero, >> s, saturated. A sum that no
 * 32-bit integer holds truncates to -2147483648. Both run over the stored values, which are shifted already:
 * the factor acts twice on them, which is meant.
 *
 * Checks, in this order: orvStsNullPtrErr (pSrc, pDst or pVal null); orvStsSizeErr (height negative, or 0
 * without orvDeltaEnd); orvStsStrideErr (dstStep below 39); orvStsSizeErr (orvDeltaBegin with height below
 * 8); orvStsNoErr.
 *
 * Source of the method: ETSI ES 202 050, Advanced front-end feature extraction algorithm.
 * @{
 */

/**
 * Delta and acceleration of 32f frames with the nine-point window.
 * orvStsNullPtrErr, orvStsSizeErr, orvStsStrideErr, orvStsSizeErr (height below 8 with orvDeltaBegin),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsDeltaDelta_Aurora_32f_D2(const float *pSrc, float *pDst, int32_t dstStep,
                                               int32_t height, int32_t mode);

/**
 * Delta and acceleration of 16s frames with the nine-point window.
 * orvStsNullPtrErr, orvStsSizeErr, orvStsStrideErr, orvStsSizeErr (height below 8 with orvDeltaBegin),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsDeltaDelta_Aurora_16s_D2Sfs(const int16_t *pSrc, int16_t *pDst, int32_t dstStep,
                                                  int32_t height, int32_t mode, int32_t scaleFactor);

/**
 * Delta and acceleration of 32f frames with the nine-point window, a gain for each column.
 * orvStsNullPtrErr, orvStsSizeErr, orvStsStrideErr, orvStsSizeErr (height below 8 with orvDeltaBegin),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsDeltaDeltaMul_Aurora_32f_D2(const float *pSrc, const float *pVal, float *pDst,
                                                  int32_t dstStep, int32_t height, int32_t mode);

/**
 * Delta and acceleration of 16s frames with the nine-point window, a gain for each column.
 * orvStsNullPtrErr, orvStsSizeErr, orvStsStrideErr, orvStsSizeErr (height below 8 with orvDeltaBegin),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsDeltaDeltaMul_Aurora_16s_D2Sfs(const int16_t *pSrc, const int16_t *pVal, int16_t *pDst,
                                                     int32_t dstStep, int32_t height, int32_t mode,
                                                     int32_t scaleFactor);

/** @} */

/**
 * @defgroup evaldelta Delta features of a block in place
 *
 * The rows of pSrcDst hold static values x in columns offset .. offset+width-1. Their delta, with a window
 * of W = wndSize rows on each side, goes to the width columns behind:
 *
 *     d[t] = val * sum over k = 1 .. W of k * (x[t+k] - x[0])             t = 0 .. W-1
 *     d[t] = val * sum over k = 1 .. W of k * (x[t+k] - x[t-k])           t = W .. height-W-1
 *     d[t] = val * sum over k = 1 .. W of k * (x[height-1] - x[t-k])      t = height-W .. height-1
 *
 * Near an edge all values on its side are those of the edge row, even where the row exists; this differs
 * from the streaming forms and is meant. The Mul forms have pVal[width + j] in place of val for column j;
 * pVal holds 2 width values, of which the first half is not read. Static values are not touched.
 *
 * Arguments: height, 1 or more and at least 2 W; step, values from row to row, at least offset + 2 width;
 * width, 1 or more; offset, 0 or more; wndSize, 1 or more; val, any value; scaleFactor, of the 16s forms,
 * any value.
 *
 * The 32f forms add the terms in single in rising k. The 16s forms wrap each difference to 16 bits, add in
 * 32 bits, multiply with the gain in 32 bits (all wrapping), shift right by scaleFactor without rounding or
 * left by -scaleFactor, with counts taken modulo 32, and saturate.
 *
 * Checks, in this order: orvStsNullPtrErr (pSrcDst or pVal null); orvStsSizeErr (height, width or wndSize
 * below 1, offset negative, or height below 2 wndSize); orvStsStrideErr (step below offset + 2 width);
 * orvStsNoErr.
 *
 * Source of the method: L. Rabiner and B.-H. Juang, Fundamentals of Speech Recognition, 1993, section 4.6.
 * @{
 */

/**
 * Delta of a block of 32f frames, one gain.
 * orvStsNullPtrErr, orvStsSizeErr, orvStsStrideErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsEvalDelta_32f_D2(float *pSrcDst, int32_t height, int32_t step, int32_t width,
                                       int32_t offset, int32_t wndSize, float val);

/**
 * Delta of a block of 16s frames, one gain.
 * orvStsNullPtrErr, orvStsSizeErr, orvStsStrideErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsEvalDelta_16s_D2Sfs(int16_t *pSrcDst, int32_t height, int32_t step, int32_t width,
                                          int32_t offset, int32_t wndSize, int16_t val, int32_t scaleFactor);

/**
 * Delta of a block of 32f frames, a gain for each column.
 * orvStsNullPtrErr, orvStsSizeErr, orvStsStrideErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsEvalDeltaMul_32f_D2(float *pSrcDst, int32_t height, int32_t step, const float *pVal,
                                          int32_t width, int32_t offset, int32_t wndSize);

/**
 * Delta of a block of 16s frames, a gain for each column.
 * orvStsNullPtrErr, orvStsSizeErr, orvStsStrideErr, orvStsNoErr.
 */
ORV_API OrvStatus orvsEvalDeltaMul_16s_D2Sfs(int16_t *pSrcDst, int32_t height, int32_t step,
                                             const int16_t *pVal, int32_t width, int32_t offset,
                                             int32_t wndSize, int32_t scaleFactor);

/**
 * Copies height packed rows of width 32f values into the first columns of rows dstStep values apart, as the
 * orvsEvalDelta functions take them. pDst does not overlap pSrc; its other columns are left as they are.
 * orvStsNullPtrErr, orvStsSizeErr (height or width below 1), orvStsStrideErr (dstStep below width),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsCopyColumn_32f_D2(const float *pSrc, int32_t width, float *pDst, int32_t dstStep,
                                        int32_t height);

/**
 * Copies height packed rows of width 16s values into the first columns of rows dstStep values apart, as the
 * orvsEvalDelta functions take them. pDst does not overlap pSrc; its other columns are left as they are.
 * orvStsNullPtrErr, orvStsSizeErr (height or width below 1), orvStsStrideErr (dstStep below width),
 * orvStsNoErr.
 */
ORV_API OrvStatus orvsCopyColumn_16s_D2(const int16_t *pSrc, int32_t width, int16_t *pDst, int32_t dstStep,
                                        int32_t height);

/** @} */

/* ---------------------------------------------------------------- frame measures and normalisation */

/**
 * @defgroup normenergy Normalisation of an energy column
 *
 * Log energies e of the frames of an utterance, in place, one every step elements:
 *
 *     floor = max - silenceFloor * 0.230259
 *     e[i]  = 1 - (max - larger of e[i] and floor) * scale             32f
 *     e[i]  = valueAtMax - (max - larger of e[i] and floor) * scale    16s
 *
 * all in single; the 16s result is saturated, then truncated toward zero. 0.230259 is ln(10) / 10, so
 * silenceFloor is in decibels.
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
 *   integers with trunc(val * 4096) and an arithmetic shift; for other val in single, saturated and rounded,
 *   halves away from zero.
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
 *     w    = max - min,   low = min + lowerRatio * w,   high = upperRatio * w + min
 *     y[i] = (larger of 0 and ((smaller of high and x[i]) - low)) * scale
 *     scale = range / (upperRatio * w - lowerRatio * w)
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

/**
 * @defgroup durbin Levinson-Durbin recursion
 *
 * From the autocorrelation R[0] .. R[order] the coefficients a[1] .. a[order] of the prediction error filter
 * A(z) = 1 + a[1] z^-1 + ... + a[order] z^-order (a[1] is negative for a signal that is positively
 * correlated), without the leading 1, and the energy of the prediction error:
 *
 *     k = (R[m] + sum over j = 1 .. m - 1 of R[m - j] a[j]) / e,   e' = e (1 - k^2)
 *     a'[i] = a[i] - k a[m - i],   a'[m] = -k
 *
 * in single. The 16s form converts R to single and the coefficients back, rounded to nearest (ties to even),
 * scaled by 2^-scaleFactor and saturated.
 *
 * Statuses: orvStsNullPtrErr (pSrc or pDst), orvStsSizeErr (order below 1), orvStsNullPtrErr (pErr),
 * orvStsDurbinErr (R[0] or an error energy is not above 0: in the 32f form pDst then holds the coefficients
 * of the last order that was completed - and at order 9 to 12, where stage 2, 3 or 4 fails, also the
 * coefficient a'[m] of that stage - in the 16s form it is as before; *pErr is as before),
 * orvStsMemAllocErr (orders from 64 on take working memory), orvStsNoErr.
 *
 * Source of the method: N. Levinson, 1947; J. Durbin, 1960; see J. Makhoul, Linear prediction: a tutorial
 * review, Proc. IEEE 63 (1975).
 * @{
 */

/** Prediction error filter from a 32f autocorrelation of order + 1 values. */
ORV_API OrvStatus orvsDurbin_32f(const float *pSrc, float *pDst, int32_t order, float *pErr);
/** Prediction error filter from a 16s autocorrelation of order + 1 values. */
ORV_API OrvStatus orvsDurbin_16s_Sfs(const int16_t *pSrc, int16_t *pDst, int32_t order, float *pErr,
                                     int32_t scaleFactor);
/** @} */

/**
 * @defgroup schur Schur recursion
 *
 * From the autocorrelation R[0] .. R[order] the reflection coefficients k[1] .. k[order] and the energy of
 * the prediction error, in single, without the coefficients themselves:
 *
 *     g[i] = R[i - 1],   p[i] = R[i]
 *     k[m] = -p[m] / g[m],   p'[i] = k[m] g[i] + p[i],   g'[i] = k[m] p[i - 1] + g[i - 1]
 *
 * Nothing tests the divisors: a zero gives infinities, and success. The 16s form rounds its results to
 * nearest (ties to even), scaled by 2^-scaleFactor and saturated.
 *
 * Statuses: orvStsNullPtrErr (pSrc or pDst), orvStsSizeErr (order below 1), orvStsNullPtrErr (pErr),
 * orvStsMemAllocErr (orders from 1024 on take working memory), orvStsNoErr.
 *
 * Source of the method: J. Le Roux and C. Gueguen, A fixed point computation of partial correlation
 * coefficients, IEEE Trans. ASSP 25 (1977).
 * @{
 */

/** Reflection coefficients from a 32f autocorrelation of order + 1 values. */
ORV_API OrvStatus orvsSchur_32f(const float *pSrc, float *pDst, int32_t order, float *pErr);
/** Reflection coefficients from a 16s autocorrelation of order + 1 values. */
ORV_API OrvStatus orvsSchur_16s_Sfs(const int16_t *pSrc, int16_t *pDst, int32_t order, float *pErr,
                                    int32_t scaleFactor);
/** @} */

/**
 * @defgroup linearprediction Linear prediction of a frame
 *
 * Auto: the autocorrelation of the len samples (no window is applied), then the Levinson-Durbin recursion.
 * The plain forms give the coefficients of the error filter, the Neg forms those of the predictor, with the
 * signs flipped, also of what a recursion that fails has left in pDst or found there.
 *
 * Cov: predictor coefficients a from phi a = c, with
 *
 *     c[k] = sum over i = 0 .. len - k - 2 of x[i] x[i + k + 1]                      k = 0 .. order - 1
 *     phi[r][j] = sum over i = 0 .. len - r - 2 of x[i] x[i + r - j],  j <= r        phi is symmetric
 *
 * (products and the sums of c in single, the sums of phi in double, each in order of i) through a
 * factorisation L D L^T in single. Its inner sums run over the first elements of the packed factor; up to
 * order 3 that solves the equations, above it the result is this function's own. Singular equations give
 * infinities or NaNs, and success.
 *
 * The 16s forms convert the samples to single and the coefficients back, rounded to nearest (ties to even),
 * scaled by 2^-scaleFactor and saturated. After a failure the Auto forms leave pDst as it was; the Cov form
 * converts what there is.
 *
 * Arguments: pSrc, len samples, 1 or more; pDst, order coefficients without the leading 1; order, 1 to len.
 *
 * Statuses: orvStsNullPtrErr, orvStsSizeErr (len or order below 1, order above len), orvStsMemAllocErr,
 * orvStsDurbinErr (Auto: a frame without energy or perfectly predictable), orvStsNoErr. The Auto forms work
 * on the stack for orders below 63 and lengths (16s) below 64; the Cov forms always take working memory.
 *
 * Source of the method: J. Makhoul, Linear prediction: a tutorial review, Proc. IEEE 63 (1975); B. Atal and
 * S. Hanauer, Speech analysis and synthesis by linear prediction of the speech wave, JASA 50 (1971), for the
 * covariance method.
 * @{
 */

/** Error filter of a 32f frame, autocorrelation method. */
ORV_API OrvStatus orvsLinearPrediction_Auto_32f(const float *pSrc, int32_t len, float *pDst, int32_t order);
/** Predictor of a 32f frame, autocorrelation method. */
ORV_API OrvStatus orvsLinearPredictionNeg_Auto_32f(const float *pSrc, int32_t len, float *pDst,
                                                   int32_t order);
/** Error filter of a 16s frame, autocorrelation method. */
ORV_API OrvStatus orvsLinearPrediction_Auto_16s_Sfs(const int16_t *pSrc, int32_t len, int16_t *pDst,
                                                    int32_t order, int32_t scaleFactor);
/** Predictor of a 16s frame, autocorrelation method. */
ORV_API OrvStatus orvsLinearPredictionNeg_Auto_16s_Sfs(const int16_t *pSrc, int32_t len, int16_t *pDst,
                                                       int32_t order, int32_t scaleFactor);
/** Predictor of a 32f frame, covariance method. */
ORV_API OrvStatus orvsLinearPrediction_Cov_32f(const float *pSrc, int32_t len, float *pDst, int32_t order);
/** Predictor of a 16s frame, covariance method. */
ORV_API OrvStatus orvsLinearPrediction_Cov_16s_Sfs(const int16_t *pSrc, int32_t len, int16_t *pDst,
                                                   int32_t order, int32_t scaleFactor);
/** @} */

/* ---------------------------------------------------------------- conversions of prediction parameters */

/**
 * @defgroup lpcepstrum Predictor and cepstrum
 *
 * Between the coefficients a[0] .. a[len - 1] of the prediction error filter A(z) = 1 + a[0] z^-1 + ... and
 * the first len cepstral coefficients c of 1 / A(z):
 *
 *     c[i] = -(a[i] + 1 / (i + 1) * sum over j = 0 .. i - 1 of (i - j) a[j] c[i - j - 1])
 *     a[i] = -(c[i] + 1 / (i + 1) * sum over j = 0 .. i - 1 of (i - j) c[i - j - 1] a[j])
 *
 * in single. Below a length of 22 the sum is multiplied by the rounded reciprocal, from there on it is
 * divided. The 32f forms add the products in the order of pDst: one by one until pDst stands on a 16-byte
 * boundary, then eight a round in two times four lanes, then one by one; all one by one if pDst is not on a
 * 4-byte boundary.
 *
 * The 16s forms read integers times 2^scaleFactor (a negative factor counts fractional bits) and write the
 * result times 2^-scaleFactor: LPToCepstrum rounded, halves away from zero, without saturation (the low 16
 * bits stay); CepstrumToLP rounded, ties to even, and saturated. The difference is meant.
 *
 * Statuses: orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsMemAllocErr (16s forms, len from 22 on),
 * orvStsNoErr. Source and destination do not overlap.
 *
 * Source of the method: B. Atal, Effectiveness of linear prediction characteristics of the speech wave for
 * automatic speaker identification and verification, JASA 55 (1974).
 * @{
 */

/** Predictor to cepstrum, 32f. */
ORV_API OrvStatus orvsLPToCepstrum_32f(const float *pSrc, float *pDst, int32_t len);
/** Predictor to cepstrum, 16s. */
ORV_API OrvStatus orvsLPToCepstrum_16s_Sfs(const int16_t *pSrc, int16_t *pDst, int32_t len,
                                           int32_t scaleFactor);
/** Cepstrum to predictor, 32f. */
ORV_API OrvStatus orvsCepstrumToLP_32f(const float *pSrc, float *pDst, int32_t len);
/** Cepstrum to predictor, 16s. */
ORV_API OrvStatus orvsCepstrumToLP_16s_Sfs(const int16_t *pSrc, int16_t *pDst, int32_t len,
                                           int32_t scaleFactor);
/** @} */

/**
 * @defgroup lpreflection Predictor and reflection coefficients
 *
 * Step down, m from len - 1 to 0:  k[m] = -A[m],  A'[i] = (A[m - 1 - i] k[m] + A[i]) / (1 - k[m]^2)
 * Step up, i from 0 to len - 1:    A'[i] = -k[i],  A'[j] = A[j] - A[i - 1 - j] k[i]
 *
 * in single. The step down fills pDst from its last element. It stops at a coefficient of exactly 1 or -1; a
 * magnitude above 1 is not looked for.
 *
 * The 16s forms read integers times 2^scaleFactor and write the result times 2^-scaleFactor: LPToReflection
 * rounded, halves away from zero, without saturation; ReflectionToLP rounded, ties to even, and saturated.
 * The difference is meant. orvsLPToReflection_16s_Sfs reports success where the step down stops: the elements
 * below the coefficient of 1 then mean nothing.
 *
 * Statuses: orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsMemAllocErr (len from 16 on),
 * orvStsLpUnstableErr (orvsLPToReflection_32f: a coefficient of exactly 1 or -1; the elements above it are
 * written, and from len 16 on the working memory of the call is not released), orvStsNoErr.
 *
 * Source of the method: J. Markel and A. Gray, Linear Prediction of Speech, 1976, chapter 5.
 * @{
 */

/** Predictor to reflection coefficients, 32f. */
ORV_API OrvStatus orvsLPToReflection_32f(const float *pSrc, float *pDst, int32_t len);
/** Predictor to reflection coefficients, 16s. */
ORV_API OrvStatus orvsLPToReflection_16s_Sfs(const int16_t *pSrc, int16_t *pDst, int32_t len,
                                             int32_t scaleFactor);
/** Reflection coefficients to predictor, 32f. */
ORV_API OrvStatus orvsReflectionToLP_32f(const float *pSrc, float *pDst, int32_t len);
/** Reflection coefficients to predictor, 16s. */
ORV_API OrvStatus orvsReflectionToLP_16s_Sfs(const int16_t *pSrc, int16_t *pDst, int32_t len,
                                             int32_t scaleFactor);
/** @} */

/**
 * @defgroup lsp Predictor and line spectrum
 *
 * Line spectrum values are the cosines of the line frequencies, in descending order between 1 and -1. Of even
 * orders they are the roots of the sum and difference polynomials of the error filter, of odd orders those of
 * the filter with all signs flipped, that is, of the predictor.
 *
 * LPToLSP walks along a grid of nIntervals steps from 1 to -1 and looks for sign changes of the two
 * polynomials in turn; a root's cell is halved nBisect times and finished by the secant. Two roots of one
 * polynomial in a cell are missed: then *pFound is below order, the values found stand in pDst, and the
 * status is orvStsLspRootsErr.
 *
 * All in single. The 16s forms read integers times 2^-srcShift. orvsLPToLSP_16s_Sfs writes *pFound values
 * times 2^-scaleFactor, rounded, halves away from zero, without saturation; orvsLSPToLP_16s_Sfs rounds ties
 * to even and saturates.
 *
 * Arguments: order, 1 or more (of LPToLSP at most nIntervals); nIntervals, nBisect, 1 or more; pFound,
 * written on every path after the working memory is had.
 *
 * Statuses of LPToLSP: orvStsNullPtrErr (pSrc, pDst, pFound), orvStsSizeErr (order, nIntervals or nBisect
 * below 1, order above nIntervals), orvStsMemAllocErr (more than 256 singles of working memory),
 * orvStsLspRootsErr, orvStsNoErr. Statuses of LSPToLP: orvStsNullPtrErr, orvStsSizeErr (order below 1; in the
 * 16s form also srcShift below 1), orvStsLspOrderErr (32f: the first value at or above 1, a value above the
 * one before it, the last one at or below -1; 16s: the first value above 1, a value above the one before it,
 * the last one below -1, so the ends themselves pass), orvStsMemAllocErr (orders from 59 on), orvStsNoErr.
 *
 * Source of the method: F. Itakura, Line spectrum representation of linear predictor coefficients of speech
 * signals, JASA 57 (1975); P. Kabal and R. Ramachandran, The computation of line spectral frequencies using
 * Chebyshev polynomials, IEEE Trans. ASSP 34 (1986).
 * @{
 */

/** Predictor to line spectrum, 32f. */
ORV_API OrvStatus orvsLPToLSP_32f(const float *pSrc, float *pDst, int32_t order, int32_t *pFound,
                                  int32_t nIntervals, int32_t nBisect);
/** Predictor to line spectrum, 16s. */
ORV_API OrvStatus orvsLPToLSP_16s_Sfs(const int16_t *pSrc, int32_t srcShift, int16_t *pDst, int32_t order,
                                      int32_t *pFound, int32_t nIntervals, int32_t nBisect,
                                      int32_t scaleFactor);
/** Line spectrum to predictor, 32f. */
ORV_API OrvStatus orvsLSPToLP_32f(const float *pSrc, float *pDst, int32_t order);
/** Line spectrum to predictor, 16s. */
ORV_API OrvStatus orvsLSPToLP_16s_Sfs(const int16_t *pSrc, int32_t srcShift, int16_t *pDst, int32_t order,
                                      int32_t scaleFactor);
/** @} */

/**
 * @defgroup lpspectrum Inverse magnitude spectrum of a predictor
 *
 * 2^fftOrder values 1 / |X[k]|, X being the transform of length 2^(fftOrder + 1) of 0, a[0], ..., a[len - 1],
 * with val subtracted from the real part of bin 0. The bin at half the sampling rate is left out. At a
 * magnitude of exactly 0 the 32f form writes 2139095040.0 (a number, not an infinity), the 16s form
 * 3.4028235e38, scaled and saturated as any other value.
 *
 * The 16s form takes a and val as plain integers and writes the result times 2^-scaleFactor, rounded, ties to
 * even, saturated.
 *
 * Statuses: orvStsNullPtrErr, orvStsSizeErr (len below 1 or at or above 2^(fftOrder + 1), the shift taken
 * modulo 32), the statuses of the transform (orvStsFftOrderErr for an order that it does not have,
 * orvStsMemAllocErr), orvStsDivByZeroWrn (a magnitude of 0; all is written), orvStsNoErr.
 *
 * Source of the method: J. Makhoul, Linear prediction: a tutorial review, Proc. IEEE 63 (1975), section III.
 * @{
 */

/** Spectrum of a 32f predictor of len coefficients. */
ORV_API OrvStatus orvsLPToSpectrum_32f(const float *pSrc, int32_t len, float *pDst, int32_t fftOrder,
                                       float val);
/** Spectrum of a 16s predictor of len coefficients. */
ORV_API OrvStatus orvsLPToSpectrum_16s_Sfs(const int16_t *pSrc, int32_t len, int16_t *pDst, int32_t fftOrder,
                                           int32_t val, int32_t scaleFactor);
/** @} */

/**
 * @defgroup reflectionareas Area ratios of reflection coefficients
 *
 *     AR:      (1 - k[i]) / (1 + k[i])
 *     TrueAR:  the running product of the area ratios
 *     LAR:     ln((1 - k[i]) / (1 + k[i])); for k at or below -threshold and at or above it the value at the
 * threshold
 *
 * in single, logarithms in double, rounded once. AR at k = -1 is plus infinity. TrueAR from the first k = -1
 * on is an infinity of the product's sign (minus for a product of 0) that changes with every k outside -1 ..
 * 1, and from the next k = 1 on NaN.
 *
 * The 16s forms read k as integers times 2^-srcShift and write the result times 2^-scaleFactor, saturated and
 * truncated toward zero. Infinities saturate, what is NaN in 32f is 0.
 *
 * Statuses: orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsRangeErr (LAR: threshold not between 0 and
 * 1), orvStsDivByZeroWrn (AR, TrueAR: a k of -1; all is written), orvStsNoErr.
 *
 * Source of the method: J. Markel and A. Gray, Linear Prediction of Speech, 1976, chapters 4 and 10.
 * @{
 */

/** Area ratios, 32f. */
ORV_API OrvStatus orvsReflectionToAR_32f(const float *pSrc, float *pDst, int32_t len);
/** Area ratios, 16s. */
ORV_API OrvStatus orvsReflectionToAR_16s_Sfs(const int16_t *pSrc, int32_t srcShift, int16_t *pDst,
                                             int32_t len, int32_t scaleFactor);
/** Running products of area ratios, 32f. */
ORV_API OrvStatus orvsReflectionToTrueAR_32f(const float *pSrc, float *pDst, int32_t len);
/** Running products of area ratios, 16s. */
ORV_API OrvStatus orvsReflectionToTrueAR_16s_Sfs(const int16_t *pSrc, int32_t srcShift, int16_t *pDst,
                                                 int32_t len, int32_t scaleFactor);
/** Log area ratios, 32f. */
ORV_API OrvStatus orvsReflectionToLAR_32f(const float *pSrc, float *pDst, int32_t len, float threshold);
/** Log area ratios, 16s. */
ORV_API OrvStatus orvsReflectionToLAR_16s_Sfs(const int16_t *pSrc, int32_t srcShift, int16_t *pDst,
                                              int32_t len, int32_t scaleFactor, float threshold);
/** @} */

/**
 * @defgroup reflectiontilt Spectral tilt from two reflection coefficients
 *
 *     Tilt:     (|a| - |b|) / (a + b)            AbsTilt:  (|a| - |b|) / (|a| + |b|)
 *
 * for len pairs a = pSrc1[i], b = pSrc2[i], in single. Where the divisor is 0 the 32f forms write NaN and the
 * 16s forms 0. The 16s forms write the quotient times 2^-scaleFactor, saturated and truncated toward zero.
 *
 * Statuses: orvStsNullPtrErr, orvStsSizeErr (len below 1), orvStsDivByZeroWrn (a divisor of 0; all is
 * written), orvStsNoErr.
 * @{
 */

/** Tilt, 32f. */
ORV_API OrvStatus orvsReflectionToTilt_32f(const float *pSrc1, const float *pSrc2, float *pDst, int32_t len);
/** Tilt, 16s. */
ORV_API OrvStatus orvsReflectionToTilt_16s_Sfs(const int16_t *pSrc1, const int16_t *pSrc2, int16_t *pDst,
                                               int32_t len, int32_t scaleFactor);
/** Absolute tilt, 32f. */
ORV_API OrvStatus orvsReflectionToAbsTilt_32f(const float *pSrc1, const float *pSrc2, float *pDst,
                                              int32_t len);
/** Absolute tilt, 16s. */
ORV_API OrvStatus orvsReflectionToAbsTilt_16s_Sfs(const int16_t *pSrc1, const int16_t *pSrc2, int16_t *pDst,
                                                  int32_t len, int32_t scaleFactor);
/** @} */

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
