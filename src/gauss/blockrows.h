// Four dot products side by side, of rows of a block-diagonal matrix and the differences of a vector and a
// mean. Each is added as the array routine of its name adds it where the differences stand on a 16-byte
// boundary, and so has the same value to the last bit:
//
//   single, double   groups of eight, in two accumulators of four and two of two lanes; the rest one by one
//   widened          groups of eight in one accumulator of four lanes; the rest one by one
//   exact            in any order
//
// Rows stand on 16-byte boundaries and are read up to a whole register, as their padding allows. The
// differences are followed by zeros up to a whole register.

#ifndef ORV_GAUSS_BLOCKROWS_H
#define ORV_GAUSS_BLOCKROWS_H

#include <cstdint>

#include "core/integer.h"
#include "primitives/memory.h"
#include "primitives/simd.h"

namespace orv::gauss {

// Two rows, three or four: the last one takes the places that are free.
template <class T>
struct FourOfBlock {
  const T *row[4];
  FourOfBlock(T *const *rows, std::int32_t count)
      : row{rows[0], rows[1], rows[count > 2 ? 2 : 1], rows[count - 1]} {}
};

struct FourDotsSingle {
  // The last elements come together in a register, so that they are read as they were written.
  static void subtract(const float *src, const float *mean, float *differences, std::int32_t size) {
    std::int32_t i = 0;
    for (; size - i >= 4; i += 4)
      simd::storeAligned4(differences + i, simd::load4(src + i) - simd::load4(mean + i));
    const auto upTo3 = [rest = size - i](const float *p) {
      return simd::pack4(load(p), rest > 1 ? load(p + 1) : 0.0F, rest > 2 ? load(p + 2) : 0.0F, 0.0F);
    };
    if (i < size) simd::storeAligned4(differences + i, upTo3(src + i) - upTo3(mean + i));
  }
  static simd::f32x4 dots(float *const *rows, std::int32_t count, const float *differences,
                          std::int32_t size) {
    using namespace simd;
    const FourOfBlock<float> four(rows, count);
    f32x4 sums = splat4(0.0F);
    std::int32_t i = 0;
    if (size >= 8) {
      f32x4 low[4] = {sums, sums, sums, sums}, high[4] = {sums, sums, sums, sums};
      for (; size - i >= 8; i += 8) {
        const f32x4 d = loadAligned4(differences + i), e = loadAligned4(differences + i + 4);
        for (int r = 0; r < 4; ++r) {
          low[r] = low[r] + loadAligned4(four.row[r] + i) * d;
          high[r] = high[r] + loadAligned4(four.row[r] + i + 4) * e;
        }
      }
      sums = sumLanesOfFour(low[0] + high[0], low[1] + high[1], low[2] + high[2], low[3] + high[3]);
    }
    for (; size - i >= 2; i += 4) {
      const f32x4 d = loadAligned4(differences + i);
      f32x4 t[4];
      for (int r = 0; r < 4; ++r) t[r] = loadAligned4(four.row[r] + i) * d;
      transpose(t);
      sums = sums + t[0];
      for (int c = 1; c < 4; ++c)
        if (size - i > c) sums = sums + t[c];
    }
    if (i < size)
      sums = sums + pack4(load(four.row[0] + i), load(four.row[1] + i), load(four.row[2] + i),
                          load(four.row[3] + i)) *
                        load(differences + i);
    return sums;
  }
};

// Sums in double: eight elements are two groups of four, one after the other.
template <class T, class Load4, class Load2>
inline simd::f64x4 fourDotsInDouble(const FourOfBlock<T> &four, const T *differences, std::int32_t size,
                                    Load4 four4, Load2 two) {
  using namespace simd;
  f64x4 sums = splat4(0.0);
  std::int32_t i = 0;
  if (size >= 8) {
    f64x4 lanes[4] = {sums, sums, sums, sums};
    for (; i < size - size % 8; i += 4) {
      const f64x4 d = four4(differences + i);
      for (int r = 0; r < 4; ++r) lanes[r] = lanes[r] + four4(four.row[r] + i) * d;
    }
    sums = sumLanesOfFour(lanes[0].low + lanes[0].high, lanes[1].low + lanes[1].high,
                          lanes[2].low + lanes[2].high, lanes[3].low + lanes[3].high);
  }
  for (; i < size; i += 2) {
    const f64x2 d = two(differences + i);
    const f64x2 t[4] = {two(four.row[0] + i) * d, two(four.row[1] + i) * d, two(four.row[2] + i) * d,
                        two(four.row[3] + i) * d};
    f64x4 columns[2];
    transpose(t, columns);
    sums = sums + columns[0];
    if (size - i > 1) sums = sums + columns[1];
  }
  return sums;
}

struct FourDotsWidened {
  static constexpr auto subtract = FourDotsSingle::subtract;
  static simd::f64x4 dots(float *const *rows, std::int32_t count, const float *differences,
                          std::int32_t size) {
    return fourDotsInDouble(
        FourOfBlock<float>(rows, count), differences, size,
        [](const float *p) { return simd::widen(simd::loadAligned4(p)); },
        [](const float *p) { return simd::loadWidened2(p); });
  }
};

struct FourDotsDouble {
  static void subtract(const double *src, const double *mean, double *differences, std::int32_t size) {
    std::int32_t i = 0;
    for (; size - i >= 2; i += 2) simd::store2(differences + i, simd::load2(src + i) - simd::load2(mean + i));
    if (i < size) simd::store2(differences + i, simd::firstLane2(load(src + i) - load(mean + i)));
  }
  static simd::f64x4 dots(double *const *rows, std::int32_t count, const double *differences,
                          std::int32_t size) {
    return fourDotsInDouble(
        FourOfBlock<double>(rows, count), differences, size,
        [](const double *p) {
          return simd::f64x4{simd::loadAligned2(p), simd::loadAligned2(p + 2)};
        },
        [](const double *p) { return simd::loadAligned2(p); });
  }
};

// Differences saturate; zeros after them take away what the padding of the rows holds.
struct FourDotsExact {
  static void subtract(const std::int16_t *src, const std::int16_t *mean, std::int16_t *differences,
                       std::int32_t size) {
    using namespace simd;
    std::int32_t i = 0;
    for (; size - i >= 8; i += 8)
      store8(differences + i, {_mm_subs_epi16(loadEight16(src + i), loadEight16(mean + i))});
    if (i == size) return;
    std::int16_t rest[8] = {};
    for (std::int32_t k = 0; k < size - i; ++k) rest[k] = sat16(load(src + i + k) - load(mean + i + k));
    store8(differences + i, load8(rest));
  }
  static simd::f32x4 dots(std::int16_t *const *rows, std::int32_t count, const std::int16_t *differences,
                          std::int32_t size) {
    // Two products at a time, counted from the least that does not leave 32 bits, are an unsigned number. The
    // differences of -32768 with a row's -32768 give 2^31, which wraps to it.
    constexpr std::int32_t least = -2 * 32768 * 32767;
    const __m128i bias = _mm_set1_epi32(-least), low = _mm_set1_epi64x(0xFFFFFFFF);
    const FourOfBlock<std::int16_t> four(rows, count);
    __m128i sums[4] = {};
    std::int32_t i = 0;
    for (; i < size; i += 8) {
      const __m128i d = simd::loadEight16(differences + i);
      for (int r = 0; r < 4; ++r) {
        const __m128i pairs = _mm_add_epi32(_mm_madd_epi16(simd::loadEight16(four.row[r] + i), d), bias);
        sums[r] = _mm_add_epi64(sums[r], _mm_add_epi64(_mm_and_si128(pairs, low), _mm_srli_epi64(pairs, 32)));
      }
    }
    const __m128i offset = _mm_set1_epi64x(std::int64_t{least} * (i / 2));
    const auto total = [&](__m128i a, __m128i b) {
      return _mm_add_epi64(_mm_add_epi64(_mm_unpacklo_epi64(a, b), _mm_unpackhi_epi64(a, b)), offset);
    };
    const auto single = [](__m128i a) { return static_cast<float>(_mm_cvtsi128_si64(a)); };
    const __m128i ab = total(sums[0], sums[1]), cd = total(sums[2], sums[3]);
    return simd::pack4(single(ab), single(_mm_unpackhi_epi64(ab, ab)), single(cd),
                       single(_mm_unpackhi_epi64(cd, cd)));
  }
};

}  // namespace orv::gauss

#endif
