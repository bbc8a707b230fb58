// orvsTabsCalculation_Aurora_*, orvsResidualFilter_Aurora_*: the filter that removes noise from a frame.

#include <cstdint>
#include <cstring>

#include "orvsr/robust.h"
#include "primitives/memory.h"
#include "primitives/simd.h"
#include "robust/dot16.h"

namespace orv {
namespace {

constexpr int kFrame = 80;
constexpr int kTaps = 17;
constexpr int kCenter = 8;

// The wings are no mirror images: the right one is a place ahead, so that response 1 stands on the left only
// and response 9 on the right only. This is meant.
template <class T>
OrvStatus calculateTaps(const T *pSrc, T *pTaps) {
  if (pSrc == nullptr || pTaps == nullptr) return orvStsNullPtrErr;
  for (int k = 0; k <= kCenter; ++k) store(pTaps + k, load(pSrc + kCenter - k));
  for (int k = kCenter + 1; k < kTaps; ++k) store(pTaps + k, load(pSrc + k - kCenter + 1));
  return orvStsNoErr;
}

OrvStatus checkFilter(const void *pSrc, const void *pDst, const void *pTaps) {
  return pSrc == nullptr || pDst == nullptr || pTaps == nullptr ? orvStsNullPtrErr : orvStsNoErr;
}

// Eight outputs share their samples: the even ones take them in pairs with taps 0 and 1, 2 and 3, ..., the
// odd ones the same pairs with nothing and tap 0, taps 1 and 2, ...
void filterIn32Bits(const std::int16_t *src, std::int16_t *dst, const std::int16_t *taps,
                    std::int32_t scaleFactor) {
  using namespace dot16;
  constexpr int count = (kTaps + 1) / 2;
  std::int16_t padded[kTaps + 2] = {};
  std::memcpy(padded + 1, taps, kTaps * sizeof *taps);
  i16x8 even[count], odd[count];
  for (int j = 0; j < count; ++j) {
    odd[j] = pairs(padded + 2 * j);
    even[j] = pairs(padded + 2 * j + 1);
  }
  for (int n = 0; n < kFrame; n += 8) {
    simd::i32x4 evenSums = simd::splat4(0);
    simd::i32x4 oddSums = simd::splat4(0);
    for (int j = 0; j < count; ++j) {
      const i16x8 samples = load8(src + n + 2 * j);
      evenSums = evenSums + dotPairs(samples, even[j]);
      oddSums = oddSums + dotPairs(samples, odd[j]);
    }
    storeScaled8(dst + n, interleave(evenSums, oddSums), scaleFactor);
  }
}

void filterIn64Bits(const std::int16_t *src, std::int16_t *dst, const std::int16_t *taps,
                    std::int32_t scaleFactor) {
  for (int n = 0; n < kFrame; ++n) {
    std::int64_t sum = 0;
    for (int k = 0; k < kTaps; ++k) sum += std::int32_t{load(src + n + k)} * load(taps + k);
    store(dst + n, dot16::scaled(sum, scaleFactor));
  }
}

}  // namespace
}  // namespace orv

using namespace orv;

OrvStatus orvsTabsCalculation_Aurora_32f(const float *pSrc, float *pTaps) {
  return calculateTaps(pSrc, pTaps);
}
OrvStatus orvsTabsCalculation_Aurora_16s(const int16_t *pSrc, int16_t *pTaps) {
  return calculateTaps(pSrc, pTaps);
}

OrvStatus orvsResidualFilter_Aurora_32f(const float *pSrc, float *pDst, const float *pTaps) {
  using namespace simd;
  if (const OrvStatus status = checkFilter(pSrc, pDst, pTaps); status != orvStsNoErr) return status;
  constexpr int vectors = 10;  // half a frame of outputs stays in registers
  for (int n = 0; n < kFrame; n += 4 * vectors) {
    f32x4 sums[vectors];
    for (f32x4 &sum : sums) sum = splat4(0.0F);
    for (int k = 0; k < kTaps; ++k) {
      const f32x4 tap = splat4(load(pTaps + k));
      for (int j = 0; j < vectors; ++j) sums[j] = sums[j] + load4(pSrc + n + k + 4 * j) * tap;
    }
    for (int j = 0; j < vectors; ++j) store4(pDst + n + 4 * j, sums[j]);
  }
  return orvStsNoErr;
}

OrvStatus orvsResidualFilter_Aurora_16s_Sfs(const int16_t *pSrc, int16_t *pDst, const int16_t *pTaps,
                                            int32_t scaleFactor) {
  if (const OrvStatus status = checkFilter(pSrc, pDst, pTaps); status != orvStsNoErr) return status;
  const auto filter = dot16::fit32(pTaps, kTaps) ? filterIn32Bits : filterIn64Bits;
  filter(pSrc, pDst, pTaps, scaleFactor);
  return orvStsNoErr;
}
