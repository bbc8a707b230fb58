// orvsWeightedSum_*, orvsWeightedSumHalf_*: two vectors mixed with normalised weights.

#include <algorithm>
#include <cstdint>

#include "orvsr/matrix.h"
#include "primitives/memory.h"
#include "primitives/simd.h"
#include "primitives/special.h"

namespace orv {
namespace {

// What the two elements are multiplied by.
template <class T>
struct Factors {
  T first, second;
};

template <class T>
void mix(const T *a, const T *b, T *dst, std::int32_t len, Factors<T> by) {
  for (std::int32_t i = 0; i < len; ++i) store(dst + i, load(a + i) * by.first + load(b + i) * by.second);
}

// Limited to the range of the result while still in single, then truncated toward zero; a NaN gives 0.
simd::i32x4 limited(simd::f32x4 x) {
  using namespace simd;
  return truncate(max(min(x & (x == x), splat4(32767.0F)), splat4(-32768.0F)));
}

void mixEight(const std::int16_t *a, const std::int16_t *b, std::int16_t *dst, Factors<float> by) {
  using namespace simd;
  const f32x8 sum = toSingle(loadWidened8(a)) * by.first + toSingle(loadWidened8(b)) * by.second;
  storeSaturated8(dst, {limited(sum.low), limited(sum.high)});
}

// The last elements, fewer than eight, are worked on in copies.
void mix(const std::int16_t *a, const std::int16_t *b, std::int16_t *dst, std::int32_t len,
         Factors<float> by) {
  std::int32_t i = 0;
  for (; len - i >= 8; i += 8) mixEight(a + i, b + i, dst + i, by);
  std::int16_t restA[8] = {}, restB[8] = {}, rest[8];
  for (std::int32_t k = 0; k < len - i; ++k) {
    restA[k] = load(a + i + k);
    restB[k] = load(b + i + k);
  }
  mixEight(restA, restB, rest, by);
  for (std::int32_t k = 0; k < len - i; ++k) store(dst + i + k, rest[k]);
}

// Weights that cancel leave the sign of the plain sum: an infinity, or a NaN where there is none.
template <class T>
void mark(T t, T *dst) {
  store(dst, t > 0 ? Special<T>::infinity() : t < 0 ? Special<T>::minusInfinity() : Special<T>::nan());
}
void mark(float t, std::int16_t *dst) { store<std::int16_t>(dst, t > 0 ? INT16_MAX : t < 0 ? INT16_MIN : 0); }

template <class T, class W>
OrvStatus signs(const T *a, const T *b, T *dst, std::int32_t len, W w1, W w2) {
  for (std::int32_t i = 0; i < len; ++i)
    mark(static_cast<W>(load(a + i)) * w1 + static_cast<W>(load(b + i)) * w2, dst + i);
  return orvStsDivByZeroWrn;
}

template <class T, class W>
OrvStatus weightedSum(const T *a, const T *b, T *dst, std::int32_t len, W w1, W w2) {
  if (const OrvStatus status = checkArrays(len, a, b, dst); status != orvStsNoErr) return status;
  const W sum = w1 + w2;
  if (sum == 0) return signs(a, b, dst, len, w1, w2);
  const W reciprocal = 1 / sum;
  mix(a, b, dst, len, Factors<W>{w1 * reciprocal, w2 * reciprocal});
  return orvStsNoErr;
}

// The first weight counts in the sum only, and that is what this form is: its first factor is 1 / (w1 + w2).
template <class T, class W>
OrvStatus weightedSumHalf(const T *a, const T *b, T *dst, std::int32_t len, W w1, W w2) {
  if (const OrvStatus status = checkArrays(len, a, b, dst); status != orvStsNoErr) return status;
  const W sum = w1 + w2;
  if (sum == 0) return signs(a, b, dst, len, w1, w2);
  const W reciprocal = 1 / sum;
  mix(a, b, dst, len, Factors<W>{reciprocal, w2 * reciprocal});
  return orvStsNoErr;
}

}  // namespace
}  // namespace orv

using namespace orv;

OrvStatus orvsWeightedSum_16s(const int16_t *pSrc1, const int16_t *pSrc2, int16_t *pDst, int32_t len,
                              float weight1, float weight2) {
  return weightedSum(pSrc1, pSrc2, pDst, len, weight1, weight2);
}

OrvStatus orvsWeightedSum_32f(const float *pSrc1, const float *pSrc2, float *pDst, int32_t len, float weight1,
                              float weight2) {
  return weightedSum(pSrc1, pSrc2, pDst, len, weight1, weight2);
}

OrvStatus orvsWeightedSum_64f(const double *pSrc1, const double *pSrc2, double *pDst, int32_t len,
                              double weight1, double weight2) {
  return weightedSum(pSrc1, pSrc2, pDst, len, weight1, weight2);
}

OrvStatus orvsWeightedSumHalf_16s(const int16_t *pSrc1, const int16_t *pSrc2, int16_t *pDst, int32_t len,
                                  float weight1, float weight2) {
  return weightedSumHalf(pSrc1, pSrc2, pDst, len, weight1, weight2);
}

OrvStatus orvsWeightedSumHalf_32f(const float *pSrc1, const float *pSrc2, float *pDst, int32_t len,
                                  float weight1, float weight2) {
  return weightedSumHalf(pSrc1, pSrc2, pDst, len, weight1, weight2);
}

OrvStatus orvsWeightedSumHalf_64f(const double *pSrc1, const double *pSrc2, double *pDst, int32_t len,
                                  double weight1, double weight2) {
  return weightedSumHalf(pSrc1, pSrc2, pDst, len, weight1, weight2);
}
