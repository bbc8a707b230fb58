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

// The same for rows that follow one another at one step in both matrices and share b: what is kept is a row,
// and distances from it. Eight rows would need sixteen pointers, for which there are no registers.
template <class T>
struct RowsApart {
  const T *first;
  const std::ptrdiff_t *apart;
  const T *operator[](int r) const { return first + apart[r]; }
};
template <class T>
struct SharedRow {
  const T *row;
  const T *operator[](int) const { return row; }
};
template <class T>
struct FourRowsApart {
  RowsApart<T> a;
  SharedRow<T> b;
  RowsApart<T> w;
};

// Which rows, and their weights, stand on 16-byte boundaries from the end of a head on.
enum class Aligned { none, fourthRow, allRows };

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

// The terms of the vectors at element j of four rows, taken side by side: their steps wait for one another
// less.
template <class Form, Weighting weighting, class Rows>
[[gnu::always_inline]] inline void termsOfRows(const Rows &rows, std::ptrdiff_t j,
                                               typename Form::Lanes (&t)[4]) {
  for (int r = 0; r < 4; ++r) t[r] = Form::differences(rows.a[r] + j, rows.b[r] + j);
  for (int r = 0; r < 4; ++r) t[r] = t[r] * t[r];
  if constexpr (weighting != Weighting::none)
    for (int r = 0; r < 4; ++r) t[r] = t[r] * Form::weights(rows.w[r] + j);
}

// Folds count terms of each row into the sums, one by one: the first of the row, or its last. They are taken
// out of a whole vector of terms, which lies within the row.
template <class Form, Weighting weighting, class Fold, Part part, class Rows>
[[gnu::always_inline]] inline typename Form::Four foldPart(const Rows &rows, std::int32_t len, int count,
                                                           typename Form::Four sums) {
  constexpr int lanes = Form::Lanes::lanes;
  const std::ptrdiff_t j = part == Part::head ? 0 : len - lanes;
  typename Form::Lanes t[4];
  termsOfRows<Form, weighting>(rows, j, t);
  typename Form::Four columns[lanes];
  Form::transpose(t, columns);
  for (int c = 1; c < lanes; ++c) {
    if (part == Part::head && c <= count) sums = Fold::fold(sums, columns[c - 1]);
    if (part == Part::rest && c >= lanes - count) sums = Fold::fold(sums, columns[c]);
  }
  return sums;
}

// The vectors from element from up to element to.
template <class Form, Weighting weighting, class Fold, class T, std::size_t groups>
[[gnu::always_inline]] inline void foldVectors(const FourRows<T> (&rows)[groups], std::ptrdiff_t from,
                                               std::ptrdiff_t to, typename Form::Lanes (&acc)[groups][4]) {
  for (std::ptrdiff_t j = from; j < to; j += Form::Lanes::lanes)
    for (std::size_t g = 0; g < groups; ++g) {
      typename Form::Lanes t[4];
      termsOfRows<Form, weighting>(rows[g], j, t);
      for (int r = 0; r < 4; ++r) acc[g][r] = Fold::fold(acc[g][r], t[r]);
    }
}

// The same of eight rows a step apart, of which FourthForm is the form of the fourth and the eighth. The
// pointers are made opaque, or the compiler would keep the address of each row, most of them in memory. The
// rows are sixteen streams, which are too many for the processor to fetch them ahead: each turn asks for as
// much of the rows that follow as it reads itself.
template <class Form, class FourthForm, Weighting weighting, class Fold, class T>
[[gnu::always_inline]] inline void foldVectorsApart(const FourRowsApart<T> (&rows)[2], std::ptrdiff_t from,
                                                    std::ptrdiff_t to, typename Form::Lanes (&acc)[2][4]) {
  constexpr std::uintptr_t line = 64, ahead = 4 * line, turn = 8 * 16;  // bytes
  const std::ptrdiff_t *const apart = rows[0].a.apart;
  const T *a = rows[0].a.first + from, *w = rows[0].w.first + from;
  const std::uintptr_t eightRows = 2 * static_cast<std::uintptr_t>(apart[4]) * sizeof(T);
  std::uintptr_t nextA = addressOf(rows[0].a.first) + eightRows + ahead;
  std::uintptr_t nextW = addressOf(rows[0].w.first) + eightRows + ahead;
  for (std::ptrdiff_t j = from; j < to; j += Form::Lanes::lanes) {
    const T *const b = rows[0].b.row + j;
    for (std::uintptr_t i = 0; i < turn; i += line) {
      simd::prefetch(nextA + i);
      if (weighting != Weighting::none) simd::prefetch(nextW + i);
    }
    nextA += turn;
    nextW += turn;
    a = simd::opaque(a);
    w = simd::opaque(w);
    for (int r = 0; r < 8; ++r) {
      const auto t = r % 4 == 3 ? terms<FourthForm, weighting>(a + apart[r], b, w + apart[r])
                                : terms<Form, weighting>(a + apart[r], b, w + apart[r]);
      acc[r / 4][r % 4] = Fold::fold(acc[r / 4][r % 4], t);
    }
    a += Form::Lanes::lanes;
    w += Form::Lanes::lanes;
  }
}

// Either, in the form for what is aligned.
template <class Form, Weighting weighting, class Fold, class T, std::size_t groups>
[[gnu::always_inline]] inline void foldVectors(const FourRows<T> (&rows)[groups], std::ptrdiff_t from,
                                               std::ptrdiff_t to, Aligned aligned,
                                               typename Form::Lanes (&acc)[groups][4]) {
  if (Form::alignable && aligned == Aligned::allRows) {
    foldVectors<typename Form::Aligned, weighting, Fold>(rows, from, to, acc);
  } else {
    foldVectors<Form, weighting, Fold>(rows, from, to, acc);
  }
}
template <class Form, Weighting weighting, class Fold, class T>
[[gnu::always_inline]] inline void foldVectors(const FourRowsApart<T> (&rows)[2], std::ptrdiff_t from,
                                               std::ptrdiff_t to, Aligned aligned,
                                               typename Form::Lanes (&acc)[2][4]) {
  using AlignedForm = typename Form::Aligned;
  if (Form::alignable && aligned == Aligned::allRows) {
    foldVectorsApart<AlignedForm, AlignedForm, weighting, Fold>(rows, from, to, acc);
  } else if (Form::alignable && aligned == Aligned::fourthRow) {
    foldVectorsApart<Form, AlignedForm, weighting, Fold>(rows, from, to, acc);
  } else {
    foldVectorsApart<Form, Form, weighting, Fold>(rows, from, to, acc);
  }
}

// Groups of four rows that have the same head and at least one vector; sums are the starts, and then the
// results. Two groups together hide more of the time that loads take. They do not change the sums.
template <class Form, Weighting weighting, class Fold, class Rows, std::size_t groups>
[[gnu::always_inline]] inline void sumGroups(const Rows (&rows)[groups], std::int32_t len, std::int32_t head,
                                             Aligned aligned, typename Form::Four (&sums)[groups]) {
  constexpr int lanes = Form::Lanes::lanes;
  typename Form::Lanes acc[groups][4];
  for (std::size_t g = 0; g < groups; ++g) {
    if (head > 0) sums[g] = foldPart<Form, weighting, Fold, Part::head>(rows[g], len, head, sums[g]);
    Form::firstLanes(sums[g], acc[g]);
  }
  const int rest = (len - head) % lanes;
  foldVectors<Form, weighting, Fold>(rows, head, len - rest, aligned, acc);
  for (std::size_t g = 0; g < groups; ++g) {
    sums[g] = sumLanesOfFour(acc[g][0], acc[g][1], acc[g][2], acc[g][3]);
    if (rest > 0) sums[g] = foldPart<Form, weighting, Fold, Part::rest>(rows[g], len, rest, sums[g]);
  }
}

template <class Form, Weighting weighting, class Fold, class T>
[[gnu::always_inline]] inline typename Form::Four sumFourRows(const FourRows<T> &rows, std::int32_t len,
                                                              std::int32_t head, Aligned aligned,
                                                              typename Form::Four start) {
  if (len - head >= Form::Lanes::lanes) {
    const FourRows<T> groups[1] = {rows};
    typename Form::Four sums[1] = {start};
    sumGroups<Form, weighting, Fold>(groups, len, head, aligned, sums);
    return sums[0];
  }
  for (std::int32_t j = 0; j < len; ++j) start = Fold::fold(start, termOfFour<Form, weighting>(rows, j));
  return start;
}

}  // namespace orv::gauss

#endif
