// The loop that all Gaussian scoring shares: sums of weighted squared differences
//
//     sum over j of (a[j] - b[j])^2 w[j]        (Weighting::none: without w)
//
// of one row, or of four rows at once, so that what the rows have in common is read once for four. The order
// of additions is part of the results:
//
//   one row     a head one by one; groups of eight in two accumulators; the rest one by one
//   four rows   a head one by one; groups as wide as a register in one accumulator each; the rest one by one
//
// with the sum so far in lane 0 of the first accumulator. The caller gives the length of the head, which
// depends on the alignment of an argument that each family names.

#ifndef ORV_GAUSS_DISTANCE_H
#define ORV_GAUSS_DISTANCE_H

#include <cstdint>

#include "gauss/forms.h"

namespace orv::gauss {

enum class Weighting { none, inverseVariance };

// The sum grows by the terms from its start, or is diminished by them.
struct Add {
  template <class V>
  static V fold(V sum, V term) {
    return sum + term;
  }
};
struct Subtract {
  template <class V>
  static V fold(V sum, V term) {
    return sum - term;
  }
};

// The operands of one row and of four. Where rows share an operand, its pointer stands in each place; w is
// not looked at without weighting.
template <class T>
struct Row {
  const T *a, *b, *w;
};
template <class T>
struct FourRows {
  const T *a[4], *b[4], *w[4];
};

// The term of one element, of a vector of neighbouring elements, and of the same element of four rows.
template <class Form, Weighting weighting, class T>
inline typename Form::Sum term(const T *a, const T *b, const T *w) {
  const typename Form::Sum d = Form::value(a) - Form::value(b);
  if constexpr (weighting == Weighting::none) return d * d;
  return (d * d) * Form::value(w);
}
template <class Form, Weighting weighting, class T>
inline typename Form::Lanes terms(const T *a, const T *b, const T *w) {
  const typename Form::Lanes d = Form::differences(a, b);
  if constexpr (weighting == Weighting::none) return d * d;
  return (d * d) * Form::values(w);
}
template <class Form, Weighting weighting, class T>
inline typename Form::Four termOfFour(const FourRows<T> &rows, std::int32_t j) {
  const auto read = [j](const T *const(&p)[4]) {
    return Form::four(Form::value(p[0] + j), Form::value(p[1] + j), Form::value(p[2] + j),
                      Form::value(p[3] + j));
  };
  const typename Form::Four d = read(rows.a) - read(rows.b);
  if constexpr (weighting == Weighting::none) return d * d;
  return (d * d) * read(rows.w);
}

template <class Form, Weighting weighting, class Fold, class T>
inline typename Form::Sum sumRow(const Row<T> &row, std::int32_t len, std::int32_t head,
                                 typename Form::Sum start) {
  using Lanes = typename Form::Lanes;
  constexpr int lanes = Lanes::lanes;
  const auto [a, b, w] = row;
  typename Form::Sum sum = start;
  std::int32_t j = 0;
  for (; j < head; ++j) sum = Fold::fold(sum, term<Form, weighting>(a + j, b + j, w + j));
  if (len - j >= 8) {
    Lanes low = Form::firstLane(sum);
    Lanes high = Form::firstLane(0);
    for (; len - j >= 8; j += 8)
      for (int i = j; i < j + 8; i += 2 * lanes) {
        const int k = i + lanes;
        low = Fold::fold(low, terms<Form, weighting>(a + i, b + i, w + i));
        high = Fold::fold(high, terms<Form, weighting>(a + k, b + k, w + k));
      }
    sum = sumLanes(low + high);
  }
  for (; j < len; ++j) sum = Fold::fold(sum, term<Form, weighting>(a + j, b + j, w + j));
  return sum;
}

template <class Form, Weighting weighting, class Fold, class T>
inline typename Form::Four sumFourRows(const FourRows<T> &rows, std::int32_t len, std::int32_t head,
                                       typename Form::Four start) {
  using Lanes = typename Form::Lanes;
  constexpr int lanes = Lanes::lanes;
  typename Form::Four sums = start;
  std::int32_t j = 0;
  for (; j < head; ++j) sums = Fold::fold(sums, termOfFour<Form, weighting>(rows, j));
  if (len - j >= lanes) {
    typename Form::Sum first[4];
    Form::storeFour(first, sums);
    Lanes acc[4] = {Form::firstLane(first[0]), Form::firstLane(first[1]), Form::firstLane(first[2]),
                    Form::firstLane(first[3])};
    for (; len - j >= lanes; j += lanes)
      for (int r = 0; r < 4; ++r)
        acc[r] = Fold::fold(acc[r], terms<Form, weighting>(rows.a[r] + j, rows.b[r] + j, rows.w[r] + j));
    sums = sumLanesOfFour(acc[0], acc[1], acc[2], acc[3]);
  }
  for (; j < len; ++j) sums = Fold::fold(sums, termOfFour<Form, weighting>(rows, j));
  return sums;
}

}  // namespace orv::gauss

#endif
