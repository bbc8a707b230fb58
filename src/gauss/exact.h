// The sums of distance.h for 16-bit integers, exact in 64 bits (sums beyond them wrap). Two ways lead to the
// same sums: a narrow one, where the data allow it, and a wide one for all data.

#ifndef ORV_GAUSS_EXACT_H
#define ORV_GAUSS_EXACT_H

#include <cstddef>
#include <cstdint>

#include "gauss/distance.h"
#include "primitives/simd.h"

namespace orv::gauss {

// Eight elements at a time. The last eight of a row come first, of which only those count that no other eight
// has.
inline std::int32_t vectorsIn(std::int32_t len) { return (len - 1) / 8 + 1; }
inline __m128i allOfEight() { return _mm_set1_epi16(-1); }
inline __m128i lastOfEight(std::int32_t len) {
  alignas(16) static constexpr std::int16_t masks[15] = {0, 0, 0, 0, 0, 0, 0, -1, -1, -1, -1, -1, -1, -1, -1};
  return simd::loadEight16(masks + (len - 1) % 8);
}

// The sum of two or four unsigned lanes.
inline std::uint64_t sumOfTwo64(__m128i lanes) {
  return static_cast<std::uint64_t>(
      _mm_cvtsi128_si64(_mm_add_epi64(lanes, _mm_unpackhi_epi64(lanes, lanes))));
}
inline __m128i pairsOfFour32(__m128i lanes) {
  return _mm_add_epi64(_mm_and_si128(lanes, _mm_set1_epi64x(0xFFFFFFFF)), _mm_srli_epi64(lanes, 32));
}

// Sums of a few rows side by side: what they share is loaded once. Elements outside the mask count nothing.

// --- all data
//
// The magnitude of a difference of 16-bit values fits 16 unsigned bits and its square 32, and the processor
// multiplies 32 unsigned bits at a time; a weight is therefore counted from -32768 upwards, and 32768 times
// the sum of the plain squares comes off at the end.
template <Weighting weighting, int rows>
class WideSums {
 public:
  void add(const Row<std::int16_t> (&row)[rows], std::ptrdiff_t j, __m128i mask) {
    for (int r = 0; r < rows; ++r) {
      const __m128i x = simd::loadEight16(row[r].a + j), y = simd::loadEight16(row[r].b + j);
      const __m128i d = _mm_and_si128(_mm_sub_epi16(_mm_max_epi16(x, y), _mm_min_epi16(x, y)), mask);
      const __m128i low = _mm_mullo_epi16(d, d);
      const __m128i high = _mm_mulhi_epu16(d, d);
      __m128i weights = _mm_setzero_si128();
      if constexpr (weighting == Weighting::inverseVariance)
        weights = _mm_xor_si128(simd::loadEight16(row[r].w + j), _mm_set1_epi16(INT16_MIN));
      addFour(r, _mm_unpacklo_epi16(low, high), _mm_unpacklo_epi16(weights, _mm_setzero_si128()));
      addFour(r, _mm_unpackhi_epi16(low, high), _mm_unpackhi_epi16(weights, _mm_setzero_si128()));
    }
  }

  std::int64_t total(int r) const {
    __m128i sums = squares_[r];
    if constexpr (weighting == Weighting::inverseVariance)
      sums = _mm_sub_epi64(products_[r], _mm_slli_epi64(squares_[r], 15));
    return static_cast<std::int64_t>(sumOfTwo64(sums));
  }

 private:
  // Four squares and four weights, one in each 32-bit lane.
  void addFour(int r, __m128i squares, __m128i weights) {
    squares_[r] = _mm_add_epi64(squares_[r], pairsOfFour32(squares));
    if constexpr (weighting == Weighting::inverseVariance) {
      products_[r] = _mm_add_epi64(products_[r], _mm_mul_epu32(squares, weights));
      products_[r] = _mm_add_epi64(products_[r],
                                   _mm_mul_epu32(_mm_srli_epi64(squares, 32), _mm_srli_epi64(weights, 32)));
    }
  }

  __m128i squares_[rows] = {};
  __m128i products_[rows] = {};
};

// --- small differences
//
// Differences that fit 16 signed bits are multiplied in pairs. The product of a difference d and its weight
// is taken apart into 65536 high + low, both signed, and each of them meets the difference again:
//
//     sum of d^2 w = 65536 sum of d high + sum of d low
//
// What of the second sum lies above its last 16 bits is added to the first. If D is the greatest magnitude of
// a difference, a pair adds at most D (D + 1) + D to the first, which fits 32 bits while (D + 1)^2 times the
// number of vectors does; the last 16 bits of 65536 pairs fit 32 as well, as do two squares instead.

// What magnitudes have to be below, in rows of that many vectors. It is the root of INT32_MAX / vectors, or
// less if there are many; 1, so that nothing is far from 0, beyond 65536 vectors.
inline std::int16_t narrowBound(std::int32_t vectors) {
  static constexpr int kEntries = 16;
  struct Bounds {
    std::int16_t of[kEntries + 1] = {};
    constexpr Bounds() {
      for (std::int64_t v = 1; v <= kEntries; ++v)
        while (of[v] < INT16_MAX && (of[v] + 1) * (of[v] + 1) * v <= INT32_MAX) ++of[v];
    }
  };
  static constexpr Bounds bounds;
  int halvings = 0;
  for (; vectors > kEntries; vectors = (vectors + 3) / 4) ++halvings;
  return halvings > 6 ? std::int16_t{1} : static_cast<std::int16_t>(bounds.of[vectors] >> halvings);
}

template <Weighting weighting, int rows>
class NarrowSums {
 public:
  void add(const Row<std::int16_t> (&row)[rows], std::ptrdiff_t j, __m128i mask) {
    for (int r = 0; r < rows; ++r) {
      const __m128i x = simd::loadEight16(row[r].a + j), y = simd::loadEight16(row[r].b + j);
      const __m128i d = _mm_and_si128(_mm_subs_epi16(x, y), mask);
      greatest_ = _mm_max_epi16(greatest_, d);
      least_ = _mm_min_epi16(least_, d);
      if constexpr (weighting == Weighting::none) {
        high_[r] = _mm_add_epi32(high_[r], _mm_madd_epi16(d, d));
      } else {
        const __m128i weights = simd::loadEight16(row[r].w + j);
        const __m128i low = _mm_mullo_epi16(d, weights);
        const __m128i high = _mm_sub_epi16(_mm_mulhi_epi16(d, weights), _mm_srai_epi16(low, 15));
        const __m128i lowTerms = _mm_madd_epi16(d, low);
        high_[r] = _mm_add_epi32(high_[r], _mm_madd_epi16(d, high));
        high_[r] = _mm_add_epi32(high_[r], _mm_srai_epi32(lowTerms, 16));
        low_[r] = _mm_add_epi32(low_[r], _mm_and_si128(lowTerms, _mm_set1_epi32(0xFFFF)));
      }
    }
  }

  // Whether all differences are below the bound. Those that do not fit 16 bits have been saturated, and are
  // below none.
  bool below(std::int16_t bound) const {
    const __m128i magnitudes = _mm_max_epi16(greatest_, _mm_subs_epi16(_mm_setzero_si128(), least_));
    return _mm_movemask_epi8(_mm_cmplt_epi16(magnitudes, _mm_set1_epi16(bound))) == 0xFFFF;
  }

  // Sums of squares are unsigned; the others are counted from -2^31 upwards in each of their four lanes.
  std::int64_t total(int r) const {
    if constexpr (weighting == Weighting::none)
      return static_cast<std::int64_t>(sumOfTwo64(pairsOfFour32(high_[r])));
    const __m128i high = pairsOfFour32(_mm_xor_si128(high_[r], _mm_set1_epi32(INT32_MIN)));
    const __m128i both = _mm_add_epi64(_mm_slli_epi64(high, 16), pairsOfFour32(low_[r]));
    return static_cast<std::int64_t>(sumOfTwo64(both) - (std::uint64_t{1} << 49));
  }

 private:
  __m128i high_[rows] = {};
  __m128i low_[rows] = {};
  __m128i greatest_ = _mm_setzero_si128();
  __m128i least_ = _mm_setzero_si128();
};

// --- rows

template <Weighting weighting>
inline std::int64_t exactTerms(const Row<std::int16_t> &row, std::int32_t len) {
  std::uint64_t sum = 0;
  for (std::int32_t j = 0; j < len; ++j) {
    const std::int64_t d = std::int64_t{load(row.a + j)} - load(row.b + j);
    sum += static_cast<std::uint64_t>(weighting == Weighting::none ? d * d : d * d * load(row.w + j));
  }
  return static_cast<std::int64_t>(sum);
}

// Of rows of eight elements or more.
template <class Sums, int rows>
inline Sums exactSums(const Row<std::int16_t> (&row)[rows], std::int32_t len, __m128i lastMask) {
  Sums sums;
  const std::ptrdiff_t last = len - 8;
  sums.add(row, last, lastMask);
  for (std::ptrdiff_t j = 0; j < last; j += 8) sums.add(row, j, allOfEight());
  return sums;
}

// The sum of one row that is too short for the narrow loop, or too far apart. Out of line, where it takes no
// registers from that loop.
template <Weighting weighting>
[[gnu::noinline]] std::int64_t wideSumRow(const std::int16_t *a, const std::int16_t *b, const std::int16_t *w,
                                          std::int32_t len) {
  const Row<std::int16_t> row = {a, b, w};
  if (len < 8) return exactTerms<weighting>(row, len);
  return exactSums<WideSums<weighting, 1>>({row}, len, lastOfEight(len)).total(0);
}

template <Weighting weighting>
inline std::int64_t exactSumRow(const Row<std::int16_t> &row, std::int32_t len) {
  if (len >= 8) {
    const auto sums = exactSums<NarrowSums<weighting, 1>>({row}, len, lastOfEight(len));
    if (sums.below(narrowBound(vectorsIn(len)))) return sums.total(0);
  }
  return wideSumRow<weighting>(row.a, row.b, row.w, len);
}

}  // namespace orv::gauss

#endif
