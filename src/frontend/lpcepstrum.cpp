// orvsLPToCepstrum_*, orvsCepstrumToLP_*: the same recursion with the two arrays in each other's places.

#include <cstdint>

#include "core/alloc.h"
#include "frontend/lpfixed.h"
#include "orvsr/frontend.h"
#include "primitives/convert.h"
#include "primitives/memory.h"
#include "primitives/simd.h"

using namespace orv;

namespace {

// Below this length a product with a reciprocal takes the place of the division, and working memory is on the
// stack.
constexpr std::int32_t kTableLen = 22;

constexpr float kReciprocals[kTableLen] = {1.F / 1,  1.F / 2,  1.F / 3,  1.F / 4,  1.F / 5,  1.F / 6,
                                           1.F / 7,  1.F / 8,  1.F / 9,  1.F / 10, 1.F / 11, 1.F / 12,
                                           1.F / 13, 1.F / 14, 1.F / 15, 1.F / 16, 1.F / 17, 1.F / 18,
                                           1.F / 19, 1.F / 20, 1.F / 21, 1.F / 22};

// Weights of the products of one sum: those of the cepstrum's own index, whichever array that is.
struct Rising {
  static constexpr std::int32_t steps[4] = {0, 1, 2, 3};
  static std::int32_t at(std::int32_t, std::int32_t m) { return m + 1; }
};
struct Falling {
  static constexpr std::int32_t steps[4] = {0, -1, -2, -3};
  static std::int32_t at(std::int32_t i, std::int32_t m) { return i - m; }
};

// The sum over m = 0 .. i - 1 of weight(m) src[i - 1 - m] dst[m]: one by one until dst stands on a 16-byte
// boundary, eight at a time in two accumulators, then one by one.
template <class Weight>
float convolution(const float *src, const float *dst, std::int32_t i) {
  using namespace simd;
  float sum = 0;
  std::int32_t m = 0;
  const auto serial = [&](std::int32_t end) {
    for (; m < end; ++m)
      sum += static_cast<float>(Weight::at(i, m)) * load(src + (i - 1 - m)) * load(dst + m);
  };
  const auto four = [&](std::int32_t at) {
    const f32x4 weights = toSingle(splat4(Weight::at(i, at)) + load4(Weight::steps));
    const f32x4 backward = load4(src + (i - 4 - at));
    return weights * shuffle<3, 2, 1, 0>(backward, backward) * load4(dst + at);
  };
  serial(alignedHead(dst, i));
  if (i - m >= 8) {
    f32x8 lanes{firstLane4(sum), splat4(0.0F)};
    for (; i - m >= 8; m += 8) lanes = lanes + f32x8{four(m), four(m + 4)};
    sum = sumLanes(lanes);
  }
  serial(i);
  return sum;
}

// The last bit of a result depends on len, and that is accepted.
float divided(float sum, std::int32_t i, std::int32_t len) {
  return len < kTableLen ? sum * kReciprocals[i] : sum / static_cast<float>(i + 1);
}

// dst[i] = -(src[i] + 1 / (i + 1) * sum(i)).
template <class Sum, class Value>
void recursion(float *dst, std::int32_t len, Sum sum, Value value) {
  for (std::int32_t i = 0; i < len; ++i) store(dst + i, 0 - (value(i) + divided(sum(i), i, len)));
}

template <class Weight>
void recursion(const float *src, float *dst, std::int32_t len) {
  recursion(
      dst, len, [&](std::int32_t i) { return convolution<Weight>(src, dst, i); },
      [&](std::int32_t i) { return load(src + i); });
}

// The integer forms add one by one. The product of an integer with its weight is formed in 32 bits.
template <class Term>
void recursion(const std::int16_t *src, float *dst, std::int32_t len, float unit, Term term) {
  recursion(
      dst, len,
      [&](std::int32_t i) {
        float sum = 0;
        for (std::int32_t j = 0; j < i; ++j) sum += term(i, j);
        return sum;
      },
      [&](std::int32_t i) { return static_cast<float>(load(src + i)) * unit; });
}

OrvStatus check(const void *src, const void *dst, std::int32_t len) {
  if (src == nullptr || dst == nullptr) return orvStsNullPtrErr;
  return len < 1 ? orvStsSizeErr : orvStsNoErr;
}

}  // namespace

OrvStatus orvsLPToCepstrum_32f(const float *pSrc, float *pDst, int32_t len) {
  if (const OrvStatus status = check(pSrc, pDst, len); status != orvStsNoErr) return status;
  recursion<Rising>(pSrc, pDst, len);
  return orvStsNoErr;
}

OrvStatus orvsCepstrumToLP_32f(const float *pSrc, float *pDst, int32_t len) {
  if (const OrvStatus status = check(pSrc, pDst, len); status != orvStsNoErr) return status;
  recursion<Falling>(pSrc, pDst, len);
  return orvStsNoErr;
}

OrvStatus orvsLPToCepstrum_16s_Sfs(const int16_t *pSrc, int16_t *pDst, int32_t len, int32_t scaleFactor) {
  if (const OrvStatus status = check(pSrc, pDst, len); status != orvStsNoErr) return status;
  StackArray<float, kTableLen> work(std::int64_t{len} + 4, len < kTableLen);
  if (!work) return orvStsMemAllocErr;
  float *c = work.get();
  const float unit = scaleUp(scaleFactor);
  recursion(pSrc, c, len, unit, [&](std::int32_t i, std::int32_t j) {
    return static_cast<float>(mulWrap32(i - j, load(pSrc + j))) * c[i - j - 1] * unit;
  });
  writeWrapped(c, pDst, len, GetScale_32s32f(scaleFactor));
  return orvStsNoErr;
}

OrvStatus orvsCepstrumToLP_16s_Sfs(const int16_t *pSrc, int16_t *pDst, int32_t len, int32_t scaleFactor) {
  if (const OrvStatus status = check(pSrc, pDst, len); status != orvStsNoErr) return status;
  StackArray<float, kTableLen> work(std::int64_t{len} + 4, len < kTableLen);
  if (!work) return orvStsMemAllocErr;
  float *a = work.get();
  const float unit = scaleUp(scaleFactor);
  recursion(pSrc, a, len, unit, [&](std::int32_t i, std::int32_t j) {
    return static_cast<float>(mulWrap32(i - j, load(pSrc + (i - j - 1)))) * a[j] * unit;
  });
  // Saturated, unlike the way there.
  return orvsConvert_32f16s_Sfs(a, pDst, len, kRoundNearestEven, scaleFactor);
}
