/**
 * @file resample.h
 * Sample-rate conversion of streams.
 */
#ifndef ORVSR_RESAMPLE_H
#define ORVSR_RESAMPLE_H

#include "orvsr/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup resample Sample-rate conversion by polyphase filters
 *
 *     y[m] = sum over n of h(t_m - n) x[n],      t_m = m / ratio,   ratio = output rate / input rate
 *     h(t) = g sinc(R c t) w(c t / H),           c = min(1, ratio),   sinc(z) = sin(pi z) / (pi z)
 *     w(u) = I0(beta sqrt(1 - u^2)) for |u| < 1, 0 elsewhere
 *     beta = 0.1102 (A - 8.7) for A > 50;  0.5842 (A - 21)^0.4 + 0.07886 (A - 21) for 21 < A <= 50;  0 below
 *
 * a sinc cut off at R times the Nyquist frequency of the lower of the two rates, within Kaiser's window over H of its
 * zero crossings on either side (of a sinc with R = 1). g makes the taps of each phase add up to 1. The transition from
 * pass band to stop band is (A - 7.95) / (14.36 H) of the lower Nyquist frequency wide, R being its middle. t_m counts
 * input samples and x[n] is 0 before the signal and behind it: output 0 stands exactly on input 0, the delay of the filter
 * being taken out. The taps are designed in double and kept in single precision.
 *
 * Two forms:
 * - orvsResamplePolyphaseFixed*: from srcRate to dstRate, reduced to lowest terms M : L. L subfilters hold the taps of
 *   the L positions that an output can have between two inputs.
 * - orvsResamplePolyphase*: any ratio, which each call names, so that a host can follow a drifting clock. Rows of taps at
 *   P positions between two inputs are kept, P = sqrt(10^(A / 20) / 2) R c between 16 and 4096, and a filter is drawn
 *   on straight lines from a row to the next, which leaves images of a single tone 6 dB below A. minRatio is the
 *   lowest ratio that calls will name: it takes the place of the ratio in c, so that nothing is aliased at any of them.
 *
 * Settings, with what they do at any ratio to signals in single precision (pass bands as parts of the lower Nyquist
 * frequency, at which all three stop bands begin):
 *
 *     step             halfLen  rollOff  attenuation   within 0.01 dB up to   images and aliases below
 *     fast                26     0.85       112               0.71                  -110 dB
 *     medium, default    112     0.9615     132               0.923                 -130 dB
 *     best               160     0.971      140               0.943                 -130 dB
 *
 * Of `best` it is the rounding of single precision that remains. Two ways lead to an output:
 * - Short filters are sums in single precision, in eight lanes whatever the cutting.
 * - Long ones are carried out by fast Fourier transforms of 512 to 4096 samples. Outputs that stand on L places in M
 *   input periods with L M <= 64 come from filters of 48 taps and more directly. Otherwise, from 120 taps on, transforms
 *   give the filtered signal on a grid, at least 1.75 times as fine as its highest frequency asks for, and 16 to 24 taps find
 *   the outputs between its places (with A of 120 dB and more, and of 100 dB where the ratio is free). Between integer
 *   rates and of noise they differ from the exact sums over the taps by 2^-23 of its largest value, and by less than 2^-20
 *   at most; of any signal by such parts of the largest input that goes into a block. An infinity or a NaN spoils all
 *   outputs of its blocks.
 *
 * Streams. A call takes samples from pSrc as long as there is room at pDst for what they give, and reports how many it
 * consumed and produced; the host offers the rest again. Sums come when the half of their window that lies ahead of them
 * has come, H / c samples later; what comes from transforms comes in blocks, when the last window of a block has come.
 * A transform is as long as the least power of two that is five times a window, of every M-th input or of every one, or
 * from 2048 samples on three times. As blocks give much at a time, inputs of the next one are taken even where there is no
 * room for all outputs of the last one, but not by a call without any room. A call with flags = orvResampleEnd says that the signal ends with its samples. Once
 * all of them are consumed the end is known, the remaining outputs are produced by that call and, where there was no room
 * for them, by later ones with srcLen = 0, until one leaves room. There are then ceil(N ratio) outputs in all for
 * N inputs (of any ratio: for N ratio as a double). How a signal is cut into calls changes no bit of the output. A state is
 * restarted by initialising it again.
 *
 * A ratio of 1 passes samples on unchanged; of the orvsResamplePolyphase* form, as long as its outputs stand on inputs. A
 * new ratio holds for the step from the next output to the one behind it.
 *
 * 16s outputs are those of single precision, rounded to nearest (ties to even) and saturated. Between integer rates, and at
 * a ratio that does not change, positions are exact at any length of stream, since time is counted in whole numbers of
 * parts of an input period.
 *
 * Memory. For sums 255 + 4 (rows taps + buffer) bytes, taps being 2 H / c rounded up to a multiple of 8, rows L or P + 1,
 * and buffer = taps + max(taps, 1024), or more, up to 8192, where M is above 128. For transforms tables, spectra and
 * buffers of a few blocks come to it, and the rows of a free ratio are those of 16 to 24 taps. Nothing is allocated while
 * streaming.
 *
 * Birth and end. An InitAlloc function allocates the state and stores its address in *ppState; the Free function of the
 * same form and type releases it. An Init function builds it in a buffer of the size that GetSize reports for the same
 * settings; the buffer may start anywhere, its address is the state, it is not moved, the caller releases it, and it is
 * never given to a Free function. Any state can be initialised again with the settings it was born with, or with others
 * that need no more memory.
 *
 * Arguments:
 * - halfLen: H, 1 to 512. rollOff: R, 0 to 1. attenuation: A in dB, 20 to 200.
 * - srcRate, dstRate: in any unit, 1 or more; dstRate / srcRate from 1/256 to 256.
 * - minRatio: 1/256 to 256.
 * - pSrc, srcLen: samples to convert, 0 or more; pSrc may be null where srcLen is 0.
 * - pDst, dstLen: room for samples, 0 or more; pDst may be null where dstLen is 0. It does not overlap pSrc.
 * - pConsumed, pProduced: receive the numbers of samples read and written.
 * - ratio: minRatio to 256.
 * - flags: orvResampleMore or orvResampleEnd.
 *
 * Source of the method: R. Crochiere and L. Rabiner, Multirate Digital Signal Processing, 1983, chapter 3; J. Smith and
 * P. Gossett, A flexible sampling-rate conversion method, Proc. ICASSP 1984, for the interpolated table; J. Kaiser,
 * Nonrecursive digital filter design using the I0-sinh window function, Proc. IEEE Int. Symp. Circuits and Systems,
 * 1974.
 * @{
 */

/**
 * Size in bytes of the buffer for orvsResamplePolyphaseInit_32f() with the same settings, into *pSize.
 * orvStsNullPtrErr (pSize), orvStsSizeErr (halfLen), orvStsBadArgErr (minRatio, rollOff, attenuation), orvStsSizeErr (the
 * size is beyond 32 bits), orvStsNoErr.
 */
ORV_API OrvStatus orvsResamplePolyphaseGetSize_32f(int32_t halfLen, double rollOff, double attenuation,
                                                    double minRatio, int32_t *pSize);
/**
 * Builds a converter for single-precision samples in the caller's buffer pState, at the start of a signal.
 * orvStsNullPtrErr (pState), orvStsSizeErr (halfLen), orvStsBadArgErr (minRatio, rollOff, attenuation), orvStsSizeErr (a
 * size beyond 32 bits), orvStsNoErr.
 */
ORV_API OrvStatus orvsResamplePolyphaseInit_32f(OrvsResampleState_32f *pState, int32_t halfLen, double rollOff,
                                                 double attenuation, double minRatio);
/**
 * Allocates such a converter into *ppState.
 * orvStsNullPtrErr (ppState), orvStsSizeErr (halfLen), orvStsBadArgErr (minRatio, rollOff, attenuation),
 * orvStsMemAllocErr (also for a size beyond 32 bits), orvStsNoErr.
 */
ORV_API OrvStatus orvsResamplePolyphaseInitAlloc_32f(OrvsResampleState_32f **ppState, int32_t halfLen,
                                                      double rollOff, double attenuation, double minRatio);
/** Releases an allocated converter. orvStsNullPtrErr, orvStsContextMatchErr (no such converter), orvStsNoErr. */
ORV_API OrvStatus orvsResamplePolyphaseFree_32f(OrvsResampleState_32f *pState);
/**
 * Converts the next samples of a signal.
 * orvStsNullPtrErr (pState, pConsumed or pProduced; pSrc or pDst, where its length is not 0), orvStsContextMatchErr (no
 * such converter), orvStsSizeErr (srcLen or dstLen negative), orvStsBadArgErr (unknown flags; samples behind the end of
 * the signal; ratio), orvStsNoErr.
 */
ORV_API OrvStatus orvsResamplePolyphase_32f(OrvsResampleState_32f *pState, const float *pSrc, int32_t srcLen,
                                             int32_t *pConsumed, float *pDst, int32_t dstLen, int32_t *pProduced,
                                             double ratio, int32_t flags);

/** As orvsResamplePolyphaseGetSize_32f(), for 16-bit samples. */
ORV_API OrvStatus orvsResamplePolyphaseGetSize_16s(int32_t halfLen, double rollOff, double attenuation,
                                                    double minRatio, int32_t *pSize);
/** As orvsResamplePolyphaseInit_32f(), for 16-bit samples. */
ORV_API OrvStatus orvsResamplePolyphaseInit_16s(OrvsResampleState_16s *pState, int32_t halfLen, double rollOff,
                                                 double attenuation, double minRatio);
/** As orvsResamplePolyphaseInitAlloc_32f(), for 16-bit samples. */
ORV_API OrvStatus orvsResamplePolyphaseInitAlloc_16s(OrvsResampleState_16s **ppState, int32_t halfLen,
                                                      double rollOff, double attenuation, double minRatio);
/** As orvsResamplePolyphaseFree_32f(), for 16-bit samples. */
ORV_API OrvStatus orvsResamplePolyphaseFree_16s(OrvsResampleState_16s *pState);
/** As orvsResamplePolyphase_32f(), for 16-bit samples. */
ORV_API OrvStatus orvsResamplePolyphase_16s(OrvsResampleState_16s *pState, const int16_t *pSrc, int32_t srcLen,
                                             int32_t *pConsumed, int16_t *pDst, int32_t dstLen, int32_t *pProduced,
                                             double ratio, int32_t flags);

/**
 * Size in bytes of the buffer for orvsResamplePolyphaseFixedInit_32f() with the same rates and settings, into *pSize.
 * orvStsNullPtrErr (pSize), orvStsSizeErr (halfLen), orvStsBadArgErr (a rate, their ratio, rollOff, attenuation),
 * orvStsSizeErr (the size is beyond 32 bits: too many phases), orvStsNoErr.
 */
ORV_API OrvStatus orvsResamplePolyphaseFixedGetSize_32f(int32_t srcRate, int32_t dstRate, int32_t halfLen,
                                                         double rollOff, double attenuation, int32_t *pSize);
/**
 * Builds a converter for single-precision samples in the caller's buffer pState, at the start of a signal.
 * orvStsNullPtrErr (pState), orvStsSizeErr (halfLen), orvStsBadArgErr (a rate, their ratio, rollOff, attenuation),
 * orvStsSizeErr (a size beyond 32 bits), orvStsNoErr.
 */
ORV_API OrvStatus orvsResamplePolyphaseFixedInit_32f(OrvsResampleFixedState_32f *pState, int32_t srcRate,
                                                      int32_t dstRate, int32_t halfLen, double rollOff,
                                                      double attenuation);
/**
 * Allocates such a converter into *ppState.
 * orvStsNullPtrErr (ppState), orvStsSizeErr (halfLen), orvStsBadArgErr (a rate, their ratio, rollOff, attenuation),
 * orvStsMemAllocErr (also for a size beyond 32 bits), orvStsNoErr.
 */
ORV_API OrvStatus orvsResamplePolyphaseFixedInitAlloc_32f(OrvsResampleFixedState_32f **ppState, int32_t srcRate,
                                                           int32_t dstRate, int32_t halfLen, double rollOff,
                                                           double attenuation);
/** Releases an allocated converter. orvStsNullPtrErr, orvStsContextMatchErr (no such converter), orvStsNoErr. */
ORV_API OrvStatus orvsResamplePolyphaseFixedFree_32f(OrvsResampleFixedState_32f *pState);
/**
 * Copies the designed taps: *pPhases = L rows of *pTaps taps each, into pFilter, which has room for len values. Row p is
 * the filter of the outputs at n + p / L input samples: y = sum over k of pFilter[p *pTaps + k] x[n + 1 - *pTaps / 2 + k].
 * With len = 0 only *pPhases and *pTaps are written, and pFilter may be null.
 * orvStsNullPtrErr (pState, pPhases or pTaps; pFilter where len is not 0), orvStsContextMatchErr (no such converter),
 * orvStsSizeErr (len neither 0 nor enough), orvStsNoErr.
 */
ORV_API OrvStatus orvsResamplePolyphaseFixedGetFilter_32f(const OrvsResampleFixedState_32f *pState,
                                                           float *pFilter, int32_t len, int32_t *pPhases,
                                                           int32_t *pTaps);
/**
 * Converts the next samples of a signal.
 * orvStsNullPtrErr (pState, pConsumed or pProduced; pSrc or pDst, where its length is not 0), orvStsContextMatchErr (no
 * such converter), orvStsSizeErr (srcLen or dstLen negative), orvStsBadArgErr (unknown flags; samples behind the end of
 * the signal), orvStsNoErr.
 */
ORV_API OrvStatus orvsResamplePolyphaseFixed_32f(OrvsResampleFixedState_32f *pState, const float *pSrc,
                                                  int32_t srcLen, int32_t *pConsumed, float *pDst,
                                                  int32_t dstLen, int32_t *pProduced, int32_t flags);

/** As orvsResamplePolyphaseFixedGetSize_32f(), for 16-bit samples. */
ORV_API OrvStatus orvsResamplePolyphaseFixedGetSize_16s(int32_t srcRate, int32_t dstRate, int32_t halfLen,
                                                         double rollOff, double attenuation, int32_t *pSize);
/** As orvsResamplePolyphaseFixedInit_32f(), for 16-bit samples. */
ORV_API OrvStatus orvsResamplePolyphaseFixedInit_16s(OrvsResampleFixedState_16s *pState, int32_t srcRate,
                                                      int32_t dstRate, int32_t halfLen, double rollOff,
                                                      double attenuation);
/** As orvsResamplePolyphaseFixedInitAlloc_32f(), for 16-bit samples. */
ORV_API OrvStatus orvsResamplePolyphaseFixedInitAlloc_16s(OrvsResampleFixedState_16s **ppState, int32_t srcRate,
                                                           int32_t dstRate, int32_t halfLen, double rollOff,
                                                           double attenuation);
/** As orvsResamplePolyphaseFixedFree_32f(), for 16-bit samples. */
ORV_API OrvStatus orvsResamplePolyphaseFixedFree_16s(OrvsResampleFixedState_16s *pState);
/** As orvsResamplePolyphaseFixedGetFilter_32f(), of a converter for 16-bit samples: its taps are the same. */
ORV_API OrvStatus orvsResamplePolyphaseFixedGetFilter_16s(const OrvsResampleFixedState_16s *pState,
                                                           float *pFilter, int32_t len, int32_t *pPhases,
                                                           int32_t *pTaps);
/** As orvsResamplePolyphaseFixed_32f(), for 16-bit samples. */
ORV_API OrvStatus orvsResamplePolyphaseFixed_16s(OrvsResampleFixedState_16s *pState, const int16_t *pSrc,
                                                  int32_t srcLen, int32_t *pConsumed, int16_t *pDst,
                                                  int32_t dstLen, int32_t *pProduced, int32_t flags);

/** @} */

#ifdef __cplusplus
}
#endif
#endif
