// orvsLowHighFilter_Aurora_*: a signal split in two bands of half its rate.
//
// Both bands take the same products; the sign of the high one's first tap alternates from output to output.
// So both sums run side by side: sum of p[k] and sum of (-1)^k p[k], the second of which is the high band at
// odd outputs and its opposite at even ones.

#include <cstdint>

#include "orvsr/robust.h"
#include "primitives/memory.h"
#include "primitives/simd.h"
#include "robust/dot16.h"

namespace orv {
namespace {

// The lengths of the taps come before the pointers of the results, and the length of the signal last.
OrvStatus check(const void *pSrc, const void *pDstLow, const void *pDstHigh, std::int32_t len,
                const void *pTaps, std::int32_t tapLen) {
  if (pSrc == nullptr || pTaps == nullptr) return orvStsNullPtrErr;
  if (tapLen < 1) return orvStsSizeErr;
  if (pDstLow == nullptr || pDstHigh == nullptr) return orvStsNullPtrErr;
  return len < 1 ? orvStsSizeErr : orvStsNoErr;
}

// Outputs i, i + 1, ... from the samples at src, one lane each. Sums run in the order of the taps, so that an
// output has the same bits in whichever lane it is computed.
template <int vectors>
void splitLanes(const float *src, const float *taps, std::int32_t tapLen, float *low, float *high) {
  using namespace simd;
  f32x4 sums[vectors], differences[vectors];
  for (int j = 0; j < vectors; ++j) sums[j] = differences[j] = splat4(0.0F);
  std::int32_t k = 0;
  for (; tapLen - k >= 2; k += 2) {
    const f32x4 tap0 = splat4(load(taps + k));
    const f32x4 tap1 = splat4(load(taps + k + 1));
    for (int j = 0; j < vectors; ++j) {
      const f32x4 a = load4(src + k + 8 * j);
      const f32x4 b = load4(src + k + 8 * j + 4);
      const f32x4 p0 = shuffle<0, 2, 0, 2>(a, b) * tap0;
      const f32x4 p1 = shuffle<1, 3, 1, 3>(a, b) * tap1;
      sums[j] = sums[j] + p0 + p1;
      differences[j] = differences[j] + p0 - p1;
    }
  }
  for (int j = 0; j < vectors; ++j) {
    if (k < tapLen) {  // nothing is read behind the last sample that counts
      const f32x4 a = load4(src + k + 8 * j);
      const f32x4 b = load4(src + k + 8 * j + 3);
      const f32x4 p = shuffle<0, 2, 1, 3>(a, b) * splat4(load(taps + k));
      sums[j] = sums[j] + p;
      differences[j] = differences[j] + p;
    }
    store4(low + 4 * j, sums[j]);
    // The sum of a negative zero and a positive one is positive, as it is where sums begin with zero.
    store4(high + 4 * j, differences[j] * pack4(-1.0F, 1.0F, -1.0F, 1.0F) + splat4(0.0F));
  }
}

// Output i alone, from the samples at src.
template <class Sum, class T>
struct SplitOne {
  Sum low{}, high{};

  SplitOne(const T *src, const T *taps, std::int32_t tapLen, std::int32_t i) {
    for (std::int32_t k = 0; k < tapLen; ++k) {
      const Sum p = Sum{load(src + k)} * load(taps + k);
      low += p;
      high += ((i ^ k) & 1) != 0 ? p : -p;  // the sum of the two may leave 32 bits
    }
  }
};

// Eight outputs, the first of them even, of two or more taps whose sums fit in 32 bits.
struct Split8 {
  simd::i32x8 low, high;

  Split8(const std::int16_t *src, const std::int16_t *taps, std::int32_t tapLen)
      : low{simd::splat4(0), simd::splat4(0)}, high{simd::splat4(0), simd::splat4(0)} {
    using namespace dot16;
    std::int32_t k = 0;
    for (; tapLen - k >= 2; k += 2) {
      const std::int16_t tap1 = load(taps + k + 1);
      add(src + k, pairs(taps + k), pairs(load(taps + k), wrap16(-tap1)));
    }
    // The last of an odd number, beside a sample that was taken before: nothing is read behind the last one
    // that counts.
    if (k < tapLen) {
      const i16x8 last = pairs(0, load(taps + k));
      add(src + k - 1, last, last);
    }
    high = {negateEven(high.low), negateEven(high.high)};
  }

 private:
  void add(const std::int16_t *src, dot16::i16x8 lowTaps, dot16::i16x8 highTaps) {
    const dot16::i16x8 a = dot16::load8(src);
    const dot16::i16x8 b = dot16::load8(src + 8);
    low = low + simd::i32x8{dotPairs(a, lowTaps), dotPairs(b, lowTaps)};
    high = high + simd::i32x8{dotPairs(a, highTaps), dotPairs(b, highTaps)};
  }
};

}  // namespace
}  // namespace orv

using namespace orv;

OrvStatus orvsLowHighFilter_Aurora_32f(const float *pSrc, float *pDstLow, float *pDstHigh, int32_t len,
                                       const float *pTaps, int32_t tapLen) {
  if (const OrvStatus status = check(pSrc, pDstLow, pDstHigh, len, pTaps, tapLen); status != orvStsNoErr)
    return status;
  const std::int32_t count = len / 2;
  std::int32_t i = 0;
  for (; count - i >= 12; i += 12) splitLanes<3>(pSrc + 2 * i, pTaps, tapLen, pDstLow + i, pDstHigh + i);
  for (; count - i >= 4; i += 4) splitLanes<1>(pSrc + 2 * i, pTaps, tapLen, pDstLow + i, pDstHigh + i);
  for (; i < count; ++i) {
    const SplitOne<float, float> one(pSrc + 2 * i, pTaps, tapLen, i);
    store(pDstLow + i, one.low);
    store(pDstHigh + i, one.high);
  }
  return orvStsNoErr;
}

OrvStatus orvsLowHighFilter_Aurora_16s_Sfs(const int16_t *pSrc, int16_t *pDstLow, int16_t *pDstHigh,
                                           int32_t len, const int16_t *pTaps, int32_t tapLen,
                                           int32_t scaleFactor) {
  if (const OrvStatus status = check(pSrc, pDstLow, pDstHigh, len, pTaps, tapLen); status != orvStsNoErr)
    return status;
  const std::int32_t count = len / 2;
  std::int32_t i = 0;
  if (tapLen > 1 && dot16::fit32(pTaps, tapLen)) {
    for (; count - i >= 8; i += 8) {
      const Split8 eight(pSrc + 2 * i, pTaps, tapLen);
      dot16::storeScaled8(pDstLow + i, eight.low, scaleFactor);
      dot16::storeScaled8(pDstHigh + i, eight.high, scaleFactor);
    }
  }
  for (; i < count; ++i) {
    const SplitOne<std::int64_t, std::int16_t> one(pSrc + 2 * i, pTaps, tapLen, i);
    store(pDstLow + i, dot16::scaled(one.low, scaleFactor));
    store(pDstHigh + i, dot16::scaled(one.high, scaleFactor));
  }
  return orvStsNoErr;
}
