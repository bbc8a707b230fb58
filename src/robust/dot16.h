// Sums of products of 16-bit samples and taps in 32-bit lanes, for taps that leave them room, and their
// scaling to 16 bits.

#ifndef ORV_ROBUST_DOT16_H
#define ORV_ROBUST_DOT16_H

#include <emmintrin.h>

#include <cstdint>
#include <cstring>

#include "core/integer.h"
#include "primitives/memory.h"
#include "primitives/simd.h"

namespace orv::dot16 {

struct i16x8 {
  __m128i v;
};
inline i16x8 load8(const std::int16_t *p) { return {simd::loadEight16(p)}; }
// a and b in turn.
inline i16x8 pairs(std::int16_t a, std::int16_t b) {
  return {_mm_unpacklo_epi16(_mm_set1_epi16(a), _mm_set1_epi16(b))};
}
// p[0] and p[1] in turn.
inline i16x8 pairs(const std::int16_t *p) {
  std::int32_t both;
  std::memcpy(&both, p, sizeof both);
  return {_mm_set1_epi32(both)};
}
// x0 y0 + x1 y1, x2 y2 + x3 y3, ...
inline simd::i32x4 dotPairs(i16x8 x, i16x8 y) { return {_mm_madd_epi16(x.v, y.v)}; }
// a0 b0 a1 b1, a2 b2 a3 b3
inline simd::i32x8 interleave(simd::i32x4 a, simd::i32x4 b) {
  return {{_mm_unpacklo_epi32(a.v, b.v)}, {_mm_unpackhi_epi32(a.v, b.v)}};
}
// -a0 a1 -a2 a3
inline simd::i32x4 negateEven(simd::i32x4 a) {
  const __m128i even = _mm_set_epi32(0, -1, 0, -1);
  return {_mm_sub_epi32(_mm_xor_si128(a.v, even), even)};
}

// Whether no sum of products of these taps and any samples leaves 32 bits, whatever signs the taps are given:
// their magnitudes stay below 2^16 together, and each can be negated in 16 bits. Filters do; the others, and
// those of thousands of taps, are summed in 64 bits.
inline bool fit32(const std::int16_t *taps, std::int32_t len) {
  if (len > 4096) return false;
  std::int32_t magnitudes = 0;
  for (std::int32_t k = 0; k < len; ++k) {
    const std::int32_t tap = load(taps + k);
    magnitudes += tap == INT16_MIN ? 65536 : tap < 0 ? -tap : tap;
  }
  return magnitudes < 65536;
}

// Shifts without rounding and saturates. Only the low six bits of the count take effect.
inline std::int16_t scaled(std::int64_t sum, std::int32_t scaleFactor) {
  return sat16(shiftSum(sum, scaleFactor));
}
inline void storeScaled8(std::int16_t *dst, simd::i32x8 sums, std::int32_t scaleFactor) {
  if (scaleFactor >= 0) {
    storeSaturated8(dst, sums >> (scaleFactor % 64));
    return;
  }
  std::int32_t each[8];
  std::memcpy(each, &sums, sizeof each);
  for (int i = 0; i < 8; ++i) store(dst + i, scaled(each[i], scaleFactor));
}

}  // namespace orv::dot16

#endif
