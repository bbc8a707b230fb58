// The real fast Fourier transform: single-precision signals of a power of two, and 16-bit signals through it.
//
//     X[k] = sum over n of x[n] exp(-2 pi i n k / N)      forward, N = 2^order
//     x[n] = sum over k of X[k] exp(+2 pi i n k / N)      inverse
//
// times the factor that the flag selects, as a complex transform of half the length or, for short signals, as
// what it is, a transform of real columns (Sorensen, Jones, Heideman and Burrus, "Real-valued fast Fourier
// transform algorithms", 1987). Everything that depends on the length lives in an object that is built once
// and then only read, so that threads may share it.
//
// Orders are 0 to 27. The hint is kept and never read. Statuses:
//   orvStsFftOrderErr      the order is out of range (the size queries refuse 28 to 30 last of all)
//   orvStsNullPtrErr       a pointer is null that is needed
//   orvStsFftFlagErr       the flag is none of the four
//   orvStsContextMatchErr  the object is not a live one of this kind
//   orvStsMemAllocErr      an allocation failed; a transform has then written nothing

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

// --- the life of an object
//
// The size queries tell the bytes of the object, of a buffer that is needed only while it is built, and of
// the work buffer of its transforms; all three may start anywhere, and a size of 0 needs no buffer. Init
// builds the object at the first 32-byte boundary of the memory and stores where that is. InitAlloc takes the
// memory from orvMalloc. Free marks an object as dead and releases it if InitAlloc made it.

OrvStatus orvsFFTGetSize_R_32f(std::int32_t order, std::int32_t flag, std::int32_t hint,
                               std::int32_t *specSize, std::int32_t *initSize, std::int32_t *workSize);
OrvStatus orvsFFTInit_R_32f(OrvRealFftState32f **spec, std::int32_t order, std::int32_t flag,
                            std::int32_t hint, std::uint8_t *memory, std::uint8_t *initBuffer);
OrvStatus orvsFFTInitAlloc_R_32f(OrvRealFftState32f **spec, std::int32_t order, std::int32_t flag,
                                 std::int32_t hint);
OrvStatus orvsFFTFree_R_32f(OrvRealFftState32f *spec);
OrvStatus orvsFFTGetBufSize_R_32f(const OrvRealFftState32f *spec, std::int32_t *size);

// --- transforms
//
// Source and destination may be the same array, at any address. Without a work buffer a transform that needs
// one allocates it for the call. With n = N/2 and X[k] = Rk + i Ik the spectrum is
//   Perm  R0 Rn R1 I1 R2 I2 ... R(n-1) I(n-1)            N values
//   Pack  R0 R1 I1 R2 I2 ... R(n-1) I(n-1) Rn            N values
//   CCS   R0 0 R1 I1 R2 I2 ... R(n-1) I(n-1) Rn 0        N + 2 values
// and R0, or for CCS R0 0, if N is 1.

OrvStatus orvsFFTFwd_RToPerm_32f(const float *src, float *dst, const OrvRealFftState32f *spec,
                                 std::uint8_t *work);
OrvStatus orvsFFTFwd_RToPack_32f(const float *src, float *dst, const OrvRealFftState32f *spec,
                                 std::uint8_t *work);
OrvStatus orvsFFTFwd_RToCCS_32f(const float *src, float *dst, const OrvRealFftState32f *spec,
                                std::uint8_t *work);
OrvStatus orvsFFTInv_PackToR_32f(const float *src, float *dst, const OrvRealFftState32f *spec,
                                 std::uint8_t *work);

// --- 16-bit signals, whose spectrum is rounded to integers (to the nearest, ties to even) after
// multiplication by 2^-scaleFactor, and saturated; CCS only. The inner object's hint is 0.

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
