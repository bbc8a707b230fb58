// orvsLPToCepstrum_*, orvsCepstrumToLP_*: the same recursion with the two arrays in each other's places.

#include <cstdint>

#include "core/alloc.h"
#include "frontend/lpfixed.h"
#include "orvsr/frontend.h"
#include "primitives/convert.h"

using namespace orv;

namespace {

// Below this length a product with a reciprocal takes the place of the division, and working memory is on the
// stack.
constexpr std::int32_t kTableLen = 22;

constexpr float kReciprocals[kTableLen] = {1.F / 1,  1.F / 2,  1.F / 3,  1.F / 4,  1.F / 5,  1.F / 6,
                                           1.F / 7,  1.F / 8,  1.F / 9,  1.F / 10, 1.F / 11, 1.F / 12,
                                           1.F / 13, 1.F / 14, 1.F / 15, 1.F / 16, 1.F / 17, 1.F / 18,
                                           1.F / 19, 1.F / 20, 1.F / 21, 1.F / 22};

// The last bit of a result depends on len, and that is accepted.
float divided(float sum, std::int32_t i, std::int32_t len) {
  return len < kTableLen ? sum * kReciprocals[i] : sum / static_cast<float>(i + 1);
}

// dst[i] = -(src[i] + 1 / (i + 1) * sum over j = 0 .. i - 1 of term(i, j)).
template <class Term, class Value>
void recursion(float *dst, std::int32_t len, Term term, Value value) {
  for (std::int32_t i = 0; i < len; ++i) {
    float sum = 0;
    for (std::int32_t j = 0; j < i; ++j) sum += term(i, j);
    store(dst + i, 0 - (value(i) + divided(sum, i, len)));
  }
}

OrvStatus check(const void *src, const void *dst, std::int32_t len) {
  if (src == nullptr || dst == nullptr) return orvStsNullPtrErr;
  return len < 1 ? orvStsSizeErr : orvStsNoErr;
}

}  // namespace

OrvStatus orvsLPToCepstrum_32f(const float *pSrc, float *pDst, int32_t len) {
  if (const OrvStatus status = check(pSrc, pDst, len); status != orvStsNoErr) return status;
  recursion(
      pDst, len,
      [&](std::int32_t i, std::int32_t j) {
        return static_cast<float>(i - j) * load(pSrc + j) * load(pDst + (i - j - 1));
      },
      [&](std::int32_t i) { return load(pSrc + i); });
  return orvStsNoErr;
}

OrvStatus orvsCepstrumToLP_32f(const float *pSrc, float *pDst, int32_t len) {
  if (const OrvStatus status = check(pSrc, pDst, len); status != orvStsNoErr) return status;
  recursion(
      pDst, len,
      [&](std::int32_t i, std::int32_t j) {
        return static_cast<float>(i - j) * load(pSrc + (i - j - 1)) * load(pDst + j);
      },
      [&](std::int32_t i) { return load(pSrc + i); });
  return orvStsNoErr;
}

OrvStatus orvsLPToCepstrum_16s_Sfs(const int16_t *pSrc, int16_t *pDst, int32_t len, int32_t scaleFactor) {
  if (const OrvStatus status = check(pSrc, pDst, len); status != orvStsNoErr) return status;
  StackArray<float, kTableLen> work(std::int64_t{len} + 4, len < kTableLen);
  if (!work) return orvStsMemAllocErr;
  float *c = work.get();
  const float unit = scaleUp(scaleFactor);
  recursion(
      c, len,
      [&](std::int32_t i, std::int32_t j) {
        return static_cast<float>(mulWrap32(i - j, load(pSrc + j))) * c[i - j - 1] * unit;
      },
      [&](std::int32_t i) { return static_cast<float>(load(pSrc + i)) * unit; });
  writeWrapped(c, pDst, len, GetScale_32s32f(scaleFactor));
  return orvStsNoErr;
}

OrvStatus orvsCepstrumToLP_16s_Sfs(const int16_t *pSrc, int16_t *pDst, int32_t len, int32_t scaleFactor) {
  if (const OrvStatus status = check(pSrc, pDst, len); status != orvStsNoErr) return status;
  StackArray<float, kTableLen> work(std::int64_t{len} + 4, len < kTableLen);
  if (!work) return orvStsMemAllocErr;
  float *a = work.get();
  const float unit = scaleUp(scaleFactor);
  recursion(
      a, len,
      [&](std::int32_t i, std::int32_t j) {
        return static_cast<float>(mulWrap32(i - j, load(pSrc + (i - j - 1)))) * a[j] * unit;
      },
      [&](std::int32_t i) { return static_cast<float>(load(pSrc + i)) * unit; });
  // Saturated, unlike the way there.
  return orvsConvert_32f16s_Sfs(a, pDst, len, kRoundNearestEven, scaleFactor);
}
