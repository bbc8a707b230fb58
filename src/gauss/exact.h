// The sums of distance.h for 16-bit integers, exact in 64 bits (sums beyond them wrap).

#ifndef ORV_GAUSS_EXACT_H
#define ORV_GAUSS_EXACT_H

#include <cstdint>
#include <type_traits>

#include "gauss/distance.h"
#include "primitives/simd.h"

namespace orv::gauss {

// Sums of one row in four lanes. A squared difference of 16-bit values fits 32 unsigned bits, and the
// processor multiplies 32 unsigned bits at a time; a weight is therefore counted from -32768 upwards, and
// 32768 times the sum of the plain squares comes off at the end.
template <Weighting weighting>
class ExactSum {
 public:
  void add(simd::i32x4 differences, const std::int16_t *w) {
    const __m128i odd = _mm_srli_epi64(differences.v, 32);
    const __m128i evenSquares = _mm_and_si128(_mm_mul_epu32(differences.v, differences.v), lowHalves());
    const __m128i oddSquares = _mm_and_si128(_mm_mul_epu32(odd, odd), lowHalves());
    squares_ = _mm_add_epi64(squares_, _mm_add_epi64(evenSquares, oddSquares));
    if constexpr (weighting == Weighting::inverseVariance) {
      // Four weights, one in each 32-bit lane.
      const __m128i raised = _mm_xor_si128(simd::loadHalf16(w), _mm_set1_epi16(INT16_MIN));
      const __m128i weights = _mm_unpacklo_epi16(raised, _mm_setzero_si128());
      products_ = _mm_add_epi64(products_, _mm_mul_epu32(evenSquares, weights));
      products_ = _mm_add_epi64(products_, _mm_mul_epu32(oddSquares, _mm_srli_epi64(weights, 32)));
    }
  }

  std::uint64_t total() const {
    if constexpr (weighting == Weighting::none) return lanesOf(squares_);
    return lanesOf(products_) - (lanesOf(squares_) << 15);
  }

 private:
  static __m128i lowHalves() { return _mm_set1_epi64x(0xFFFFFFFF); }
  static std::uint64_t lanesOf(__m128i sums) {
    std::uint64_t lanes[2];
    _mm_storeu_si128(reinterpret_cast<__m128i *>(lanes), sums);
    return lanes[0] + lanes[1];
  }

  __m128i squares_ = _mm_setzero_si128();
  __m128i products_ = _mm_setzero_si128();
};

template <Weighting weighting>
inline std::uint64_t exactTerms(const std::int16_t *a, const std::int16_t *b, const std::int16_t *w,
                                std::int32_t from, std::int32_t len) {
  std::uint64_t sum = 0;
  for (std::int32_t j = from; j < len; ++j) {
    const std::int64_t d = std::int64_t{load(a + j)} - load(b + j);
    sum += static_cast<std::uint64_t>(weighting == Weighting::none ? d * d : d * d * load(w + j));
  }
  return sum;
}

template <Weighting weighting>
inline std::int64_t exactSumRow(const Row<std::int16_t> &row, std::int32_t len) {
  ExactSum<weighting> sum;
  std::int32_t j = 0;
  for (; len - j >= 4; j += 4) sum.add(simd::difference4(row.a + j, row.b + j), row.w + j);
  return static_cast<std::int64_t>(sum.total() + exactTerms<weighting>(row.a, row.b, row.w, j, len));
}

}  // namespace orv::gauss

#endif
