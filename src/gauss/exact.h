// The sums of distance.h for 16-bit integers, exact in 64 bits (sums beyond them wrap).

#ifndef ORV_GAUSS_EXACT_H
#define ORV_GAUSS_EXACT_H

#include <cstdint>
#include <type_traits>

#include "gauss/distance.h"
#include "primitives/simd.h"

namespace orv::gauss {

// Sums of one row, eight elements at a time. The magnitude of a difference of 16-bit values fits 16 unsigned
// bits and its square 32, and the processor multiplies 32 unsigned bits at a time; a weight is therefore
// counted from -32768 upwards, and 32768 times the sum of the plain squares comes off at the end.
template <Weighting weighting>
class ExactSum {
 public:
  // Elements outside the mask count nothing.
  void add(const std::int16_t *a, const std::int16_t *b, const std::int16_t *w, __m128i mask) {
    const __m128i x = simd::loadEight16(a);
    const __m128i y = simd::loadEight16(b);
    const __m128i magnitude = _mm_and_si128(_mm_sub_epi16(_mm_max_epi16(x, y), _mm_min_epi16(x, y)), mask);
    const __m128i low = _mm_mullo_epi16(magnitude, magnitude);
    const __m128i high = _mm_mulhi_epu16(magnitude, magnitude);
    __m128i weights = _mm_setzero_si128();
    if constexpr (weighting == Weighting::inverseVariance)
      weights = _mm_xor_si128(simd::loadEight16(w), _mm_set1_epi16(INT16_MIN));
    addFour(_mm_unpacklo_epi16(low, high), _mm_unpacklo_epi16(weights, _mm_setzero_si128()));
    addFour(_mm_unpackhi_epi16(low, high), _mm_unpackhi_epi16(weights, _mm_setzero_si128()));
  }

  std::uint64_t total() const {
    if constexpr (weighting == Weighting::none) return lanesOf(squares_);
    return lanesOf(_mm_sub_epi64(products_, _mm_slli_epi64(squares_, 15)));
  }

 private:
  // Four squares and four weights, one in each 32-bit lane.
  void addFour(__m128i squares, __m128i weights) {
    const __m128i odd = _mm_srli_epi64(squares, 32);
    const __m128i even = _mm_and_si128(squares, _mm_set1_epi64x(0xFFFFFFFF));
    squares_ = _mm_add_epi64(squares_, _mm_add_epi64(even, odd));
    if constexpr (weighting == Weighting::inverseVariance) {
      products_ = _mm_add_epi64(products_, _mm_mul_epu32(squares, weights));
      products_ = _mm_add_epi64(products_, _mm_mul_epu32(odd, _mm_srli_epi64(weights, 32)));
    }
  }
  static std::uint64_t lanesOf(__m128i sums) {
    return static_cast<std::uint64_t>(_mm_cvtsi128_si64(_mm_add_epi64(sums, _mm_unpackhi_epi64(sums, sums))));
  }

  __m128i squares_ = _mm_setzero_si128();
  __m128i products_ = _mm_setzero_si128();
};

template <Weighting weighting>
inline std::uint64_t exactTerms(const std::int16_t *a, const std::int16_t *b, const std::int16_t *w,
                                std::int32_t len) {
  std::uint64_t sum = 0;
  for (std::int32_t j = 0; j < len; ++j) {
    const std::int64_t d = std::int64_t{load(a + j)} - load(b + j);
    sum += static_cast<std::uint64_t>(weighting == Weighting::none ? d * d : d * d * load(w + j));
  }
  return sum;
}

// Masks over eight elements. A last group of count < 8 is read with the elements before it, and only its own
// count.
inline __m128i allOfEight() { return _mm_set1_epi16(-1); }
inline __m128i lastOfEight(std::int32_t count) {
  alignas(16) static constexpr std::int16_t masks[16] = {0,  0,  0,  0,  0,  0,  0,  0,
                                                         -1, -1, -1, -1, -1, -1, -1, -1};
  return simd::loadEight16(masks + count);
}

template <Weighting weighting>
inline std::int64_t exactSumRow(const Row<std::int16_t> &row, std::int32_t len) {
  const auto [a, b, w] = row;
  if (len < 8) return static_cast<std::int64_t>(exactTerms<weighting>(a, b, w, len));
  ExactSum<weighting> sum;
  std::int32_t j = 0;
  for (; len - j >= 8; j += 8) sum.add(a + j, b + j, w + j, allOfEight());
  if (const std::int32_t k = len - 8; j < len) sum.add(a + k, b + k, w + k, lastOfEight(len - j));
  return static_cast<std::int64_t>(sum.total());
}

// The same of four rows of eight elements or more: what they share is loaded once.
template <Weighting weighting>
inline void exactSumFourRows(const FourRows<std::int16_t> &rows, std::int32_t len, std::int64_t (&sums)[4]) {
  ExactSum<weighting> sum[4];
  const auto add = [&](std::int32_t j, __m128i mask) {
    for (int r = 0; r < 4; ++r) sum[r].add(rows.a[r] + j, rows.b[r] + j, rows.w[r] + j, mask);
  };
  std::int32_t j = 0;
  for (; len - j >= 8; j += 8) add(j, allOfEight());
  if (j < len) add(len - 8, lastOfEight(len - j));
  for (int r = 0; r < 4; ++r) sums[r] = static_cast<std::int64_t>(sum[r].total());
}

}  // namespace orv::gauss

#endif
