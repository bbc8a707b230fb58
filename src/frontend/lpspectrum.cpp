// orvsLPToSpectrum_*: the inverse magnitude of a prediction error filter.

#include <cfloat>
#include <cstdint>

#include "core/alloc.h"
#include "core/integer.h"
#include "orvsr/frontend.h"
#include "primitives/arithmetic.h"
#include "primitives/convert.h"
#include "primitives/fft/fft.h"
#include "primitives/memory.h"

using namespace orv;

namespace {

// Up to this order of the result the buffers are on the stack.
constexpr std::int32_t kStackOrder = 6;
constexpr std::int32_t kStackLen = 2 << kStackOrder;

// The shift takes its count modulo 32; an order that this hides is refused by the transform.
std::int32_t transformOrder(std::int32_t fftOrder) { return addWrap32(fftOrder, 1); }

OrvStatus check(const void *src, std::int32_t len, const void *dst, std::int32_t fftOrder) {
  if (src == nullptr || dst == nullptr) return orvStsNullPtrErr;
  const std::int32_t n = shiftLeft32(1, static_cast<unsigned>(transformOrder(fftOrder)));
  return len < 1 || len >= n ? orvStsSizeErr : orvStsNoErr;
}

struct Transform {
  OrvRealFftState32f *spec = nullptr;

  Transform() = default;
  Transform(const Transform &) = delete;
  Transform &operator=(const Transform &) = delete;
  ~Transform() {
    if (spec != nullptr) orvsFFTFree_R_32f(spec);
  }
};

// write(i, 1 / magnitude of bin i), or write(i, atZero) with a warning where there is nothing to divide by.
template <class T, class Write>
OrvStatus spectrum(const T *src, std::int32_t len, std::int32_t fftOrder, float val, float atZero,
                   Write write) {
  Transform transform;
  if (const OrvStatus status =
          orvsFFTInitAlloc_R_32f(&transform.spec, transformOrder(fftOrder), kFftNoDivision, 2);
      status != orvStsNoErr)
    return status;
  const std::int32_t bins = std::int32_t{1} << fftOrder, n = 2 * bins;
  StackArray<float, kStackLen> samples(n, fftOrder <= kStackOrder);
  if (!samples) return orvStsMemAllocErr;
  StackArray<float, kStackLen + 2> result(n + 2, fftOrder <= kStackOrder);
  if (!result) return orvStsMemAllocErr;
  float *x = samples.get(), *y = result.get();
  orvsZero_32f(x, n);
  for (std::int32_t i = 0; i < len; ++i) x[i + 1] = static_cast<float>(load(src + i));
  if (const OrvStatus status = orvsFFTFwd_RToCCS_32f(x, y, transform.spec, nullptr); status != orvStsNoErr)
    return status;
  y[0] -= val;
  // The bin at half the sampling rate is left out.
  orvsMagnitude_32fc(reinterpret_cast<const Complex32f *>(y), x, bins);
  OrvStatus status = orvStsNoErr;
  for (std::int32_t i = 0; i < bins; ++i) {
    if (x[i] == 0) status = orvStsDivByZeroWrn;
    write(i, x[i] == 0 ? atZero : 1 / x[i]);
  }
  return status;
}

}  // namespace

OrvStatus orvsLPToSpectrum_32f(const float *pSrc, int32_t len, float *pDst, int32_t fftOrder, float val) {
  if (const OrvStatus status = check(pSrc, len, pDst, fftOrder); status != orvStsNoErr) return status;
  // At a zero stands the bit pattern of an infinity taken as a number. Callers compare with it.
  return spectrum(pSrc, len, fftOrder, val, 2139095040.0F,
                  [pDst](std::int32_t i, float v) { store(pDst + i, v); });
}

OrvStatus orvsLPToSpectrum_16s_Sfs(const int16_t *pSrc, int32_t len, int16_t *pDst, int32_t fftOrder,
                                   int32_t val, int32_t scaleFactor) {
  if (const OrvStatus status = check(pSrc, len, pDst, fftOrder); status != orvStsNoErr) return status;
  // At a zero the largest number, unlike in the single form: it saturates unless scaleFactor is above 113.
  return spectrum(pSrc, len, fftOrder, static_cast<float>(val), FLT_MAX, [&](std::int32_t i, float v) {
    orvsConvert_32f16s_Sfs(&v, pDst + i, 1, kRoundNearestEven, scaleFactor);
  });
}
