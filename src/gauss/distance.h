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

#include <cstddef>
#include <cstdint>
#include <type_traits>

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

// The operands of one row, and of four or eight. Where rows share an operand, its pointer stands in each
// place; w is not looked at without weighting.
template <class T>
struct Row {
  const T *a, *b, *w;
};
template <class T, int count>
struct RowsOf {
  static constexpr int groups = count / 4;
  const T *a[count], *b[count], *w[count];
};
template <class T>
using FourRows = RowsOf<T, 4>;

// An operand of rows that follow one another at one step: what is kept is a pointer, and the distances of the
// other rows from it. There are no registers for the pointers of all rows. This one is made opaque, or the
// compiler would form and keep them, most of them in memory.
template <class T>
struct RowsApart {
  const T *first;
  const std::ptrdiff_t *apart;
  const T *operator[](int r) const { return first + apart[r]; }
  void advance(std::ptrdiff_t elements) { first = simd::opaque(first + elements); }
};
template <class T>
struct SharedRow {
  const T *row;
  const T *operator[](int) const { return row; }
  void advance(std::ptrdiff_t elements) { row += elements; }
};

// Eight such rows, which share b, and may share w. They are too many streams for the processor to fetch ahead
// by itself: the vectors at an element ask for as much of the eight rows that follow as they read themselves.
// In single precision asking for the weights costs more than it gains, once the rows have been asked for.
template <class T, class W>
struct EightRowsApart {
  static constexpr int groups = 2;
  RowsApart<T> a;
  SharedRow<T> b;
  W w;
  void advance(std::ptrdiff_t elements) {
    a.advance(elements);
    b.advance(elements);
    w.advance(elements);
  }
  [[gnu::always_inline]] void prefetchNext(std::ptrdiff_t element, Weighting weighting) const {
    constexpr std::uintptr_t line = 64, ahead = 4 * line;  // bytes
    const std::uintptr_t eightRows = 2 * static_cast<std::uintptr_t>(a.apart[4]);
    const std::uintptr_t i = (eightRows + 8 * static_cast<std::uintptr_t>(element)) * sizeof(T) + ahead;
    simd::prefetch(addressOf(a.first) + i);
    simd::prefetch(addressOf(a.first) + i + line);
    if constexpr (std::is_same_v<W, RowsApart<T>> && std::is_same_v<T, double>)
      if (weighting != Weighting::none) {
        simd::prefetch(addressOf(w.first) + i);
        simd::prefetch(addressOf(w.first) + i + line);
      }
  }
};

// Which rows, and their weights, stand on 16-byte boundaries from the end of a head on: those as many rows
// apart as a vector has elements, of which the fourth is one, or all.
enum class Aligned { none, someRows, allRows };

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
  return (d * d) * Form::weights(w);
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

// Folds elements j to end - 1 one by one. Their terms are taken as whole vectors, the last of which may begin
// before j.
template <class Form, Weighting weighting, class Fold, class T>
[[gnu::always_inline]] inline typename Form::Sum foldInTurn(const Row<T> &row, std::int32_t j,
                                                            std::int32_t end, typename Form::Sum sum) {
  constexpr int lanes = Form::Lanes::lanes;
  const auto [a, b, w] = row;
  typename Form::Sum t[lanes];
  if (end < lanes) {
    for (; j < end; ++j) sum = Fold::fold(sum, term<Form, weighting>(a + j, b + j, w + j));
    return sum;
  }
  for (; end - j >= lanes; j += lanes) {
    Form::storeLanes(t, terms<Form, weighting>(a + j, b + j, w + j));
    for (int i = 0; i < lanes; ++i) sum = Fold::fold(sum, t[i]);
  }
  if (j < end) {
    const std::int32_t k = end - lanes;
    Form::storeLanes(t, terms<Form, weighting>(a + k, b + k, w + k));
    for (; j < end; ++j) sum = Fold::fold(sum, t[j - k]);
  }
  return sum;
}

template <class Form, Weighting weighting, class Fold, class T>
inline typename Form::Sum sumRow(const Row<T> &row, std::int32_t len, std::int32_t head,
                                 typename Form::Sum start) {
  using Lanes = typename Form::Lanes;
  constexpr int lanes = Lanes::lanes;
  const auto [a, b, w] = row;
  typename Form::Sum sum = foldInTurn<Form, weighting, Fold>(row, 0, head, start);
  std::int32_t j = head;
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
  return foldInTurn<Form, weighting, Fold>(row, j, len, sum);
}

// Which elements of a row are folded outside its vectors: fewer than a vector before them, or after them.
enum class Part { head, rest };

// The terms of the vectors at element j of four rows, of which k is the first, taken side by side: their
// steps wait for one another less.
template <class Form, Weighting weighting, Aligned aligned = Aligned::none, class Rows>
[[gnu::always_inline]] inline void termsOfRows(const Rows &rows, std::ptrdiff_t j,
                                               typename Form::Lanes (&t)[4], int k = 0) {
  using AlignedForm = typename Form::Aligned;
  constexpr int lanes = Form::Lanes::lanes;
  constexpr auto stands = [](int r) {
    return aligned == Aligned::allRows || (aligned == Aligned::someRows && r % lanes == lanes - 1);
  };
  for (int r = 0; r < 4; ++r)
    t[r] = stands(r) ? AlignedForm::differences(rows.a[k + r] + j, rows.b[k + r] + j)
                     : Form::differences(rows.a[k + r] + j, rows.b[k + r] + j);
  for (int r = 0; r < 4; ++r) t[r] = t[r] * t[r];
  if constexpr (weighting != Weighting::none)
    for (int r = 0; r < 4; ++r)
      t[r] = t[r] * (stands(r) ? AlignedForm::weights(rows.w[k + r] + j) : Form::weights(rows.w[k + r] + j));
}

// Folds count terms of each of four rows into the sums, one by one: the first of the row, or its last. They
// are taken out of a whole vector of terms, which lies within the row.
template <class Form, Weighting weighting, class Fold, Part part, class Rows>
[[gnu::always_inline]] inline typename Form::Four foldPart(const Rows &rows, std::int32_t len, int count,
                                                           typename Form::Four sums, int k = 0) {
  constexpr int lanes = Form::Lanes::lanes;
  const std::ptrdiff_t j = part == Part::head ? 0 : len - lanes;
  typename Form::Lanes t[4];
  termsOfRows<Form, weighting>(rows, j, t, k);
  typename Form::Four columns[lanes];
  Form::transpose(t, columns);
  for (int c = 1; c < lanes; ++c) {
    if (part == Part::head && c <= count) sums = Fold::fold(sums, columns[c - 1]);
    if (part == Part::rest && c >= lanes - count) sums = Fold::fold(sums, columns[c]);
  }
  return sums;
}

// The vectors at element j of all rows.
template <class Form, Weighting weighting, class Fold, Aligned aligned, class Rows>
[[gnu::always_inline]] inline void foldVectorsAt(const Rows &rows, std::ptrdiff_t j,
                                                 typename Form::Lanes (&acc)[Rows::groups][4]) {
  for (int g = 0; g < Rows::groups; ++g) {
    typename Form::Lanes t[4];
    termsOfRows<Form, weighting, aligned>(rows, j, t, 4 * g);
    for (int r = 0; r < 4; ++r) acc[g][r] = Fold::fold(acc[g][r], t[r]);
  }
}

// Those from element from up to element to.
template <class Form, Weighting weighting, class Fold, Aligned aligned, class T, int count>
[[gnu::always_inline]] inline void foldVectors(const RowsOf<T, count> &rows, std::ptrdiff_t from,
                                               std::ptrdiff_t to, typename Form::Lanes (&acc)[count / 4][4]) {
  for (std::ptrdiff_t j = from; j < to; j += Form::Lanes::lanes)
    foldVectorsAt<Form, weighting, Fold, aligned>(rows, j, acc);
}
template <class Form, Weighting weighting, class Fold, Aligned aligned, class T, class W>
[[gnu::always_inline]] inline void foldVectors(const EightRowsApart<T, W> &rows, std::ptrdiff_t from,
                                               std::ptrdiff_t to, typename Form::Lanes (&acc)[2][4]) {
  EightRowsApart<T, W> rest = rows;
  rest.advance(from);
  for (std::ptrdiff_t j = from; j < to; j += Form::Lanes::lanes) {
    rows.prefetchNext(j, weighting);
    foldVectorsAt<Form, weighting, Fold, aligned>(rest, 0, acc);
    rest.advance(Form::Lanes::lanes);
  }
}

// Groups of four rows that have the same head and at least one vector; sums are the starts, and then the
// results. Two groups together hide more of the time that loads take. They do not change the sums.
template <class Form, Weighting weighting, class Fold, class Rows>
[[gnu::always_inline]] inline void sumGroups(const Rows &rows, std::int32_t len, std::int32_t head,
                                             Aligned aligned, typename Form::Four (&sums)[Rows::groups]) {
  constexpr int lanes = Form::Lanes::lanes;
  typename Form::Lanes acc[Rows::groups][4];
  for (int g = 0; g < Rows::groups; ++g) {
    if (head > 0) sums[g] = foldPart<Form, weighting, Fold, Part::head>(rows, len, head, sums[g], 4 * g);
    Form::firstLanes(sums[g], acc[g]);
  }
  const int rest = (len - head) % lanes;
  const std::int32_t to = len - rest;
  if (Form::alignable && aligned == Aligned::allRows) {
    foldVectors<Form, weighting, Fold, Aligned::allRows>(rows, head, to, acc);
  } else if (Form::alignable && Rows::groups == 2 && aligned == Aligned::someRows) {
    foldVectors<Form, weighting, Fold, Aligned::someRows>(rows, head, to, acc);
  } else {
    foldVectors<Form, weighting, Fold, Aligned::none>(rows, head, to, acc);
  }
  for (int g = 0; g < Rows::groups; ++g) {
    sums[g] = sumLanesOfFour(acc[g][0], acc[g][1], acc[g][2], acc[g][3]);
    if (rest > 0) sums[g] = foldPart<Form, weighting, Fold, Part::rest>(rows, len, rest, sums[g], 4 * g);
  }
}

template <class Form, Weighting weighting, class Fold, class T>
[[gnu::always_inline]] inline typename Form::Four sumFourRows(const FourRows<T> &rows, std::int32_t len,
                                                              std::int32_t head, Aligned aligned,
                                                              typename Form::Four start) {
  if (len - head >= Form::Lanes::lanes) {
    typename Form::Four sums[1] = {start};
    sumGroups<Form, weighting, Fold>(rows, len, head, aligned, sums);
    return sums[0];
  }
  for (std::int32_t j = 0; j < len; ++j) start = Fold::fold(start, termOfFour<Form, weighting>(rows, j));
  return start;
}

}  // namespace orv::gauss

#endif
