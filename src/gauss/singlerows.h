// Four rows side by side, each with the sum of a single one (see distance.h): a head one by one; groups of
// eight in two accumulators; the rest one by one. A row's additions wait for one another; those of four rows
// do not.

#ifndef ORV_GAUSS_SINGLEROWS_H
#define ORV_GAUSS_SINGLEROWS_H

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "gauss/distance.h"

namespace orv::gauss {

// Where the weights group the sum, those after the head stand on 16-byte boundaries.
template <class Form>
struct AlignedWeights : Form {
  static typename Form::Lanes weights(const typename Form::Elem *p) {
    if constexpr (!Form::peels) {
      return Form::weights(p);
    } else if constexpr (std::is_same_v<typename Form::Elem, float>) {
      return simd::loadAligned4(p);
    } else {
      return simd::loadAligned2(p);
    }
  }
};

// Folds the vectors of the terms from element from up to element to, one element after the other.
template <class Form, Weighting weighting, class Fold, class Rows>
[[gnu::always_inline]] inline typename Form::Four foldColumns(const Rows &rows, std::ptrdiff_t from,
                                                              std::ptrdiff_t to, typename Form::Four sums) {
  constexpr int lanes = Form::Lanes::lanes;
  for (; to - from >= lanes; from += lanes) {
    typename Form::Lanes t[4];
    termsOfRows<Form, weighting>(rows, from, t);
    typename Form::Four columns[lanes];
    Form::transpose(t, columns);
    for (int c = 0; c < lanes; ++c) sums = Fold::fold(sums, columns[c]);
  }
  return sums;
}

// Rows with the same head, which is shorter than a vector, and at least one group. Weights group the sum.
template <class Form, Weighting weighting, class Fold, class Rows>
[[gnu::always_inline]] inline typename Form::Four sumFourSingly(const Rows &rows, std::int32_t len,
                                                                std::int32_t head, typename Form::Four sums) {
  using Grouped = AlignedWeights<Form>;
  constexpr int lanes = Form::Lanes::lanes;
  typename Form::Lanes low[4], high[4];
  if (head > 0) sums = foldPart<Form, weighting, Fold, Part::head>(rows, len, head, sums);
  Form::firstLanes(sums, low);
  for (auto &h : high) h = Form::firstLane(0);
  const std::ptrdiff_t end = len - (len - head) % 8;
  for (std::ptrdiff_t j = head; j < end; j += 8)
    for (std::ptrdiff_t i = j; i < j + 8; i += 2 * lanes) {
      typename Form::Lanes t[4];
      termsOfRows<Grouped, weighting>(rows, i, t);
      for (int r = 0; r < 4; ++r) low[r] = Fold::fold(low[r], t[r]);
      termsOfRows<Grouped, weighting>(rows, i + lanes, t);
      for (int r = 0; r < 4; ++r) high[r] = Fold::fold(high[r], t[r]);
      if (lanes == 2) simd::forgetRegisters();
    }
  sums = sumLanesOfFour(low[0] + high[0], low[1] + high[1], low[2] + high[2], low[3] + high[3]);
  sums = foldColumns<Form, weighting, Fold>(rows, end, len, sums);
  if (const int rest = (len - head) % lanes; rest > 0)
    sums = foldPart<Form, weighting, Fold, Part::rest>(rows, len, rest, sums);
  return sums;
}

inline void transposeFours(simd::f32x4 (&rows)[4]) { simd::transpose(rows); }
inline void transposeFours(simd::f64x4 (&rows)[4]) {
  const simd::f64x2 low[4] = {rows[0].low, rows[1].low, rows[2].low, rows[3].low};
  const simd::f64x2 high[4] = {rows[0].high, rows[1].high, rows[2].high, rows[3].high};
  simd::f64x4 columns[2];
  simd::transpose(low, columns);
  rows[0] = columns[0];
  rows[1] = columns[1];
  simd::transpose(high, columns);
  rows[2] = columns[0];
  rows[3] = columns[1];
}

}  // namespace orv::gauss

#endif
