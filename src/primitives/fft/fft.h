// The real fast Fourier transform: single-precision signals of a power of two, and 16-bit signals through it.
//
//     X[k] = sum over n of x[n] exp(-2 pi i n k / N)      forward, N = 2^order
//     x[n] = sum over k of X[k] exp(+2 pi i n k / N)      inverse
//
// times the factor that the flag selects. Everything that depends on the length lives in an object that is
// built once and then only read.

#ifndef ORV_PRIMITIVES_FFT_FFT_H
#define ORV_PRIMITIVES_FFT_FFT_H

#include <cstdint>

#include "orvsr/types.h"

namespace orv {

// Which direction multiplies: the forward one by 1/N, the inverse one by 1/N, both by 1/sqrt(N), neither.
enum FftFlag : std::int32_t {
  kFftDivFwdByN = 1,
  kFftDivInvByN = 2,
  kFftDivBySqrtN = 4,
  kFftNoDivision = 8,
};

struct OrvRealFftState32f;
struct OrvRealFftState16s32s;

OrvStatus orvsFFTGetSize_R_32f(std::int32_t order, std::int32_t flag, std::int32_t hint,
                               std::int32_t *specSize, std::int32_t *initSize, std::int32_t *workSize);
OrvStatus orvsFFTInit_R_32f(OrvRealFftState32f **spec, std::int32_t order, std::int32_t flag,
                            std::int32_t hint, std::uint8_t *memory, std::uint8_t *initBuffer);
OrvStatus orvsFFTInitAlloc_R_32f(OrvRealFftState32f **spec, std::int32_t order, std::int32_t flag,
                                 std::int32_t hint);
OrvStatus orvsFFTFree_R_32f(OrvRealFftState32f *spec);
OrvStatus orvsFFTGetBufSize_R_32f(const OrvRealFftState32f *spec, std::int32_t *size);
OrvStatus orvsFFTFwd_RToPerm_32f(const float *src, float *dst, const OrvRealFftState32f *spec,
                                 std::uint8_t *work);
OrvStatus orvsFFTFwd_RToPack_32f(const float *src, float *dst, const OrvRealFftState32f *spec,
                                 std::uint8_t *work);
OrvStatus orvsFFTFwd_RToCCS_32f(const float *src, float *dst, const OrvRealFftState32f *spec,
                                std::uint8_t *work);
OrvStatus orvsFFTInv_PackToR_32f(const float *src, float *dst, const OrvRealFftState32f *spec,
                                 std::uint8_t *work);

OrvStatus orvsFFTGetSize_R_16s32s(std::int32_t order, std::int32_t flag, std::int32_t hint,
                                  std::int32_t *specSize, std::int32_t *initSize, std::int32_t *workSize);
OrvStatus orvsFFTInit_R_16s32s(OrvRealFftState16s32s **spec, std::int32_t order, std::int32_t flag,
                               std::int32_t hint, std::uint8_t *memory, std::uint8_t *initBuffer);
OrvStatus orvsFFTInitAlloc_R_16s32s(OrvRealFftState16s32s **spec, std::int32_t order, std::int32_t flag,
                                    std::int32_t hint);
OrvStatus orvsFFTFree_R_16s32s(OrvRealFftState16s32s *spec);
OrvStatus orvsFFTFwd_RToCCS_16s32s_Sfs(const std::int16_t *src, std::int32_t *dst,
                                       const OrvRealFftState16s32s *spec, std::int32_t scaleFactor,
                                       std::uint8_t *work);

}  // namespace orv

#endif
