// Measures of a frame: sign changes, entropy, and the unit curve.

#include <cmath>
#include <cstdint>
#include <type_traits>

#include "core/integer.h"
#include "core/scale.h"
#include "orvsr/frontend.h"
#include "primitives/memory.h"
#include "primitives/simd.h"
#include "primitives/special.h"

using namespace orv;

namespace {

constexpr float kLn2 = 0.6931472F;

// The sum of count(x[i + 1], x[i]) over all pairs of neighbours. A count is 0, 1 or 2, so 32 unsigned bits
// hold any sum.
template <class T, class Count>
std::uint32_t sumOverPairs(const T *src, std::int32_t len, Count count) {
  std::uint32_t sum = 0;
  for (std::int32_t i = 0; i < len - 1; ++i) sum += count(load(src + i + 1), load(src + i));
  return sum;
}

// Two for a change of sign, one for each half of a change that passes through zero: changes of being above
// zero, and of being below it. A NaN is neither.
template <class T>
std::uint32_t countHalves(T b, T a) {
  return std::uint32_t{(b > 0) != (a > 0)} + std::uint32_t{(b < 0) != (a < 0)};
}

// Products below zero, four at a time.
std::uint32_t negativeProducts(const float *src, std::int32_t len) {
  simd::i32x4 minus = simd::splat4(0);
  std::int32_t i = 0;
#pragma GCC unroll 4
  for (; len - 1 - i >= 4; i += 4)
    minus = minus + simd::bitsOf(simd::load4(src + i + 1) * simd::load4(src + i) < simd::splat4(0.0F));
  const auto changes = [](float b, float a) { return std::uint32_t{b * a < 0}; };
  return sumOverPairs(src + i, len - i, changes) - simd::sumLanes(minus);
}

// -1 for values below zero, 1 above it, 0 else.
simd::i32x4 signs4(const float *src) {
  const simd::f32x4 x = simd::load4(src), zero = simd::splat4(0.0F);
  return simd::bitsOf(x < zero) - simd::bitsOf(x > zero);
}
// The same and one more, in bytes.
simd::i8x16 signs16(const float *src) {
  return narrowSaturated(narrowSaturated(signs4(src), signs4(src + 4)),
                         narrowSaturated(signs4(src + 8), signs4(src + 12))) +
         simd::splat16(1);
}

// The same over all pairs, sixteen at a time: the count of a pair is the distance of its signs.
std::uint32_t sumHalves(const float *src, std::int32_t len) {
  if (len < 16) return sumOverPairs(src, len, countHalves<float>);
  const float first = load(src);
  // The first value meets itself.
  simd::i8x16 before = simd::splat16(static_cast<std::int8_t>(1 + (first > 0) - (first < 0)));
  simd::i32x4 sums = simd::splat4(0);
  std::int32_t i = 0;
  for (; len - i >= 16; i += 16) {
    const simd::i8x16 signs = signs16(src + i);
    sums = sums + simd::sumOfDistances(signs, simd::oneBefore(before, signs));
    before = signs;
  }
  return simd::sumLanes(sums) + sumOverPairs(src + i - 1, len - i + 1, countHalves<float>);
}

// The sum of x ln x over the elements that are not zero, in single precision, every logarithm rounded to
// single. False at the first negative element.
template <class T, class Read>
bool sumXLogX(const T *src, std::int32_t len, Read read, float *sum) {
  float h = 0;
  for (std::int32_t i = 0; i < len; ++i) {
    const T element = load(src + i);
    if (element < 0) return false;
    const float x = read(element);
    if (x == 0) continue;
    h = h + static_cast<float>(std::log(static_cast<double>(x))) * x;
  }
  *sum = h;
  return true;
}

// 0 below 0, 2 above 2; a NaN runs through. With t the distance from the nearer end of the curve, 0 outside,
// it is t * t below 1 and 2 - t * t from 1 on.
float unitCurve(float x) {
  const float rest = 2 - x;
  const float inside = x < rest ? x : rest;
  const float t = inside < 0 ? 0 : inside;
  return x >= 1 ? 2 - t * t : t * t;
}

void unitCurve(const float *src, float *dst, std::int32_t len) {
  using simd::f32x4;
  const f32x4 zero = simd::splat4(0.0F), one = simd::splat4(1.0F), two = simd::splat4(2.0F);
  std::int32_t i = 0;
#pragma GCC unroll 4
  for (; len - i >= 4; i += 4) {
    const f32x4 x = simd::load4(src + i);
    const f32x4 t = simd::max(zero, simd::min(x, two - x));
    const f32x4 upper = x >= one, square = t * t;
    simd::store4(dst + i, (upper & two) + (square ^ (upper & simd::signBits4())));
  }
  for (; i < len; ++i) store(dst + i, unitCurve(load(src + i)));
}

void unitCurve(const std::int16_t *src, std::int32_t srcShift, std::int16_t *dst, std::int32_t len,
               std::int32_t scaleFactor) {
  // A format with no bit for the integer part, or none at all, has no curve; callers get silence, not an
  // error.
  if (srcShift < 0 || srcShift >= 15) {
    for (std::int32_t i = 0; i < len; ++i) store(dst + i, std::int16_t{0});
    return;
  }
  const std::int32_t one = 1 << srcShift, two = 2 << srcShift;
  const std::int64_t shift = std::int64_t{scaleFactor} + 2 * srcShift;
  for (std::int32_t i = 0; i < len; ++i) {
    const std::int32_t x = load(src + i);
    const std::int32_t rest = two - x;
    std::int32_t y = (two << srcShift) - rest * rest;
    if (x >= two) y = two << srcShift;
    if (x < one) y = x * x;
    if (x < 1) y = 0;
    store(dst + i, sat16(shiftSum(y, shift)));
  }
}

}  // namespace

OrvStatus orvsSignChangeRate_32f(const float *pSrc, int32_t len, float *pResult) {
  if (pSrc == nullptr || pResult == nullptr) return orvStsNullPtrErr;
  if (len < 1) return orvStsSizeErr;
  store(pResult, static_cast<float>(negativeProducts(pSrc, len)));
  return orvStsNoErr;
}

OrvStatus orvsSignChangeRate_16s(const int16_t *pSrc, int32_t len, int32_t *pResult) {
  if (pSrc == nullptr || pResult == nullptr) return orvStsNullPtrErr;
  if (len < 1) return orvStsSizeErr;
  const auto changes = [](std::int16_t b, std::int16_t a) { return static_cast<std::uint32_t>(b * a) >> 31; };
  store(pResult, static_cast<std::int32_t>(sumOverPairs(pSrc, len, changes)));
  return orvStsNoErr;
}

OrvStatus orvsSignChangeRate_Count0_32f(const float *pSrc, int32_t len, float *pResult) {
  if (pSrc == nullptr || pResult == nullptr) return orvStsNullPtrErr;
  if (len < 1) return orvStsSizeErr;
  store(pResult, static_cast<float>(sumHalves(pSrc, len)) * 0.5F);
  return orvStsNoErr;
}

OrvStatus orvsSignChangeRate_Count0_16s(const int16_t *pSrc, int32_t len, int32_t *pResult) {
  if (pSrc == nullptr || pResult == nullptr) return orvStsNullPtrErr;
  if (len < 1) return orvStsSizeErr;
  store(pResult, static_cast<std::int32_t>(sumOverPairs(pSrc, len, countHalves<std::int16_t>) >> 1));
  return orvStsNoErr;
}

OrvStatus orvsSignChangeRateXor_32f(const float *pSrc, int32_t len, int32_t *pResult) {
  if (pSrc == nullptr || pResult == nullptr) return orvStsNullPtrErr;
  if (len < 1) return orvStsSizeErr;
  // Sign bits, not signs: a negative zero differs from a positive one.
  const auto *bits = reinterpret_cast<const std::uint32_t *>(pSrc);
  const auto changes = [](std::uint32_t b, std::uint32_t a) { return (b ^ a) >> 31; };
  store(pResult, static_cast<std::int32_t>(sumOverPairs(bits, len, changes)));
  return orvStsNoErr;
}

OrvStatus orvsEntropy_32f(const float *pSrc, int32_t len, float *pResult) {
  if (pSrc == nullptr || pResult == nullptr) return orvStsNullPtrErr;
  if (len < 1) return orvStsSizeErr;
  float sum = 0;
  if (!sumXLogX(
          pSrc, len, [](float x) { return x; }, &sum)) {
    store(pResult, orvConstantOfNAN_32f);
    return orvStsNegVarWrn;
  }
  // No change of sign: callers rely on results at or below zero for probabilities.
  store(pResult, sum / kLn2);
  return orvStsNoErr;
}

OrvStatus orvsEntropy_16s32s_Sfs(const int16_t *pSrc, int32_t srcShift, int32_t len, int32_t *pResult,
                                 int32_t scaleFactor) {
  if (pSrc == nullptr || pResult == nullptr) return orvStsNullPtrErr;
  if (len < 1) return orvStsSizeErr;
  const float unit = GetScale_32s32f(srcShift);
  float sum = 0;
  // A negative element leaves the result alone, where the 32f form writes a NaN.
  if (!sumXLogX(
          pSrc, len, [unit](std::int16_t x) { return static_cast<float>(x) * unit; }, &sum))
    return orvStsNegVarWrn;
  store(pResult, saturateTruncated<std::int32_t>(sum * GetScale_32s32f(scaleFactor) / kLn2));
  return orvStsNoErr;
}

OrvStatus orvsUnitCurve_32f(const float *pSrc, float *pDst, int32_t len) {
  if (pSrc == nullptr || pDst == nullptr) return orvStsNullPtrErr;
  if (len < 1) return orvStsSizeErr;
  unitCurve(pSrc, pDst, len);
  return orvStsNoErr;
}

OrvStatus orvsUnitCurve_32f_I(float *pSrcDst, int32_t len) {
  if (pSrcDst == nullptr) return orvStsNullPtrErr;
  if (len < 1) return orvStsSizeErr;
  unitCurve(pSrcDst, pSrcDst, len);
  return orvStsNoErr;
}

OrvStatus orvsUnitCurve_16s_Sfs(const int16_t *pSrc, int32_t srcShift, int16_t *pDst, int32_t len,
                                int32_t scaleFactor) {
  if (pSrc == nullptr || pDst == nullptr) return orvStsNullPtrErr;
  if (len < 1) return orvStsSizeErr;
  unitCurve(pSrc, srcShift, pDst, len, scaleFactor);
  return orvStsNoErr;
}

OrvStatus orvsUnitCurve_16s_ISfs(int16_t *pSrcDst, int32_t srcShift, int32_t len, int32_t scaleFactor) {
  if (pSrcDst == nullptr) return orvStsNullPtrErr;
  if (len < 1) return orvStsSizeErr;
  unitCurve(pSrcDst, srcShift, pSrcDst, len, scaleFactor);
  return orvStsNoErr;
}
