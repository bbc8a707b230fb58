// Sums over the rows of a matrix, one or two for each column. Every family that works down columns runs on
// this one loop; what it says for itself is a form, where its sums begin, and what becomes of them.
//
// Each column is added from row 0 downward, one row after the other, in the type that the form states.
// Neither grouping nor addresses enter the result.

#ifndef ORV_PRIMITIVES_COLUMNS_H
#define ORV_PRIMITIVES_COLUMNS_H

#include <algorithm>
#include <cstdint>
#include <type_traits>

#include "core/integer.h"
#include "primitives/memory.h"
#include "primitives/rows.h"
#include "primitives/simd.h"

namespace orv::columns {

// --- accumulators: four columns each, in so many registers, with load and store through arrays of Value

struct SumSingle {
  static constexpr int registers = 1;
  using Value = float;
  simd::f32x4 sum;
  void add(simd::f32x4 x) { sum = sum + x; }
  void add(simd::i32x4 x) { sum = sum + toSingle(x); }  // every term is rounded before it is added
  void settle() {}
  void loadFrom(const Value *p) { sum = simd::load4(p); }
  void storeTo(Value *p) const { simd::store4(p, sum); }
};

struct SumDouble {
  static constexpr int registers = 2;
  using Value = double;
  simd::f64x4 sum;
  void add(simd::f32x4 x) { sum = sum + widen(x); }
  void add(simd::f64x4 x) { sum = sum + x; }
  void settle() {}
  void loadFrom(const Value *p) { sum = simd::load4(p); }
  void storeTo(Value *p) const { simd::store4(p, sum); }
};

// Exact sum of 16-bit values: 32 bits hold the sum of a block of rows.
struct SumExact {
  static constexpr int registers = 1;
  using Value = std::int64_t;
  simd::i32x4 block;
  simd::i64x4 sum;
  void add(simd::i32x4 x) { block = block + x; }
  void settle() {
    sum = sum + widen(block);
    block = simd::splat4(std::int32_t{0});
  }
  void loadFrom(const Value *p) {
    block = simd::splat4(std::int32_t{0});
    sum = simd::load4(p);
  }
  void storeTo(Value *p) const { simd::store4(p, sum); }
};

// Exact sum of 32-bit values.
struct SumExactWide {
  static constexpr int registers = 2;
  using Value = std::int64_t;
  simd::i64x4 sum;
  void add(simd::i32x4 x) { sum = sum + widen(x); }
  void settle() {}
  void loadFrom(const Value *p) { sum = simd::load4(p); }
  void storeTo(Value *p) const { simd::store4(p, sum); }
};

// Sum of products of 32-bit values; what leaves 64 bits wraps.
struct SumWrapped {
  static constexpr int registers = 4;
  using Value = std::int64_t;
  Value sum[4];
  void settle() {}
  void loadFrom(const Value *p) { std::copy_n(p, 4, sum); }
  void storeTo(Value *p) const { std::copy_n(sum, 4, p); }
};

struct NoSum {
  static constexpr int registers = 0;
  struct Value {};
  template <class X>
  void add(X) {}
  void settle() {}
  void loadFrom(const Value *) {}
  void storeTo(Value *) const {}
};

// What one column adds up to, and four columns on their way there.
template <class First, class Second>
struct Totals {
  [[no_unique_address]] typename First::Value sum;
  [[no_unique_address]] typename Second::Value squares;
};

template <class First, class Second>
struct FourColumns {
  static constexpr int registers = First::registers + Second::registers;
  [[no_unique_address]] First sum;
  [[no_unique_address]] Second squares;

  void settle() {
    sum.settle();
    squares.settle();
  }
  void loadFrom(const typename First::Value *a, const typename Second::Value *b) {
    sum.loadFrom(a);
    squares.loadFrom(b);
  }
  void storeTo(typename First::Value *a, typename Second::Value *b) const {
    sum.storeTo(a);
    squares.storeTo(b);
  }
};

// --- forms: which terms an element gives

inline simd::f32x4 value(simd::f32x4 x) { return x; }
inline simd::f64x4 value(simd::f64x4 x) { return x; }
inline simd::i32x4 value(simd::i16x4 x) { return widen(x); }

// x and x^2; either may be left out with NoSum.
template <class T, class Sum, class Squares = NoSum>
struct Moments {
  using Elem = T;
  using Four = FourColumns<Sum, Squares>;
  using Column = Totals<Sum, Squares>;
  struct Weight {};

  Weight weight(std::int32_t) const { return {}; }
  static void add(Four &four, const T *p, Weight) {
    const auto x = simd::load4(p);
    four.sum.add(value(x));
    four.squares.add(x * x);
  }
};

// w x and w x^2, with a weight w for each row.
template <class T, class Sum, class Squares = NoSum>
struct WeightedMoments {
  using Elem = T;
  using Four = FourColumns<Sum, Squares>;
  using Column = Totals<Sum, Squares>;
  using Weight = decltype(simd::splat4(T{}));

  const T *weights;

  Weight weight(std::int32_t r) const { return simd::splat4(load(weights + r)); }
  static void add(Four &four, const T *p, Weight w) {
    const auto x = simd::load4(p);
    four.sum.add(w * x);
    if constexpr (!std::is_same_v<Squares, NoSum>) four.squares.add(w * (x * x));
  }
};

// w x of 32-bit integers. The processor multiplies them one at a time as fast as in lanes.
struct WideProducts {
  using Elem = std::int32_t;
  using Four = FourColumns<SumWrapped, NoSum>;
  using Column = Totals<SumWrapped, NoSum>;
  using Weight = std::int64_t;

  const std::int32_t *weights;

  Weight weight(std::int32_t r) const { return load(weights + r); }
  static void add(Four &four, const Elem *p, Weight w) {
    for (int c = 0; c < 4; ++c) four.sum.sum[c] = addWrap64(four.sum.sum[c], w * load(p + c));
  }
};

// --- the loop

constexpr std::int32_t kStripeColumns = 1024;  // that are added side by side
constexpr int kRegisters = 12;                 // that hold sums

// Rows whose columns are added before the next rows are looked at: as many as the nearest cache holds, so
// that a matrix is read in its order in memory.
constexpr std::int32_t kMostBlockRows = 64;
template <class Elem>
std::int32_t blockRows(std::int32_t columns) {
  constexpr std::int32_t elements = 24576 / sizeof(Elem);
  return std::clamp(elements / columns, 8, kMostBlockRows);
}

// n fours of columns next to one another, but the last of them where it is told to be.
template <class Form, int n>
struct Group {
  typename Form::Four first;
  Group<Form, n - 1> rest;

  explicit Group(const typename Form::Four *fours) : first(fours[0]), rest(fours + 1) {}
  void add(const typename Form::Elem *p, const typename Form::Elem *last, typename Form::Weight w) {
    Form::add(first, p, w);
    rest.add(p + 4, last, w);
  }
  void settle(typename Form::Four *fours) {
    first.settle();
    fours[0] = first;
    rest.settle(fours + 1);
  }
};
template <class Form>
struct Group<Form, 1> {
  typename Form::Four first;

  explicit Group(const typename Form::Four *fours) : first(fours[0]) {}
  void add(const typename Form::Elem *, const typename Form::Elem *last, typename Form::Weight w) {
    Form::add(first, last, w);
  }
  void settle(typename Form::Four *fours) {
    first.settle();
    fours[0] = first;
  }
};

template <class Elem>
struct Block {
  const Elem *rows[kMostBlockRows];
  std::int32_t first;
  std::int32_t count;
  Elem narrow[kMostBlockRows][4];
};

template <int n, class Form>
[[gnu::noinline]] void addGroup(const Form &form, const Block<typename Form::Elem> &block,
                                std::int32_t column, std::int32_t lastColumn, typename Form::Four *fours) {
  Group<Form, n> group(fours);
  for (std::int32_t r = 0; r < block.count; ++r)
    group.add(block.rows[r] + column, block.rows[r] + lastColumn, form.weight(block.first + r));
  group.settle(fours);
}

// The first columns of a stripe from `columns` that the four columns with number i hold. The last four may
// hold columns that the four before have as well: they are added twice, in the same way.
inline std::int32_t firstOfFour(int i, std::int32_t columns) {
  return std::min(4 * i, std::max(columns - 4, 0));
}

// n may be anything from 1 to most.
template <int most, class Form>
void addGroupOf(int n, const Form &form, const Block<typename Form::Elem> &block, std::int32_t column,
                std::int32_t lastColumn, typename Form::Four *sums) {
  if constexpr (most > 1)
    if (n < most) return addGroupOf<most - 1>(n, form, block, column, lastColumn, sums);
  addGroup<most>(form, block, column, lastColumn, sums);
}

// The columns are shared out evenly among as few groups as there can be.
template <class Form>
[[gnu::noinline]] void addBlock(const Form &form, const Block<typename Form::Elem> &block,
                                std::int32_t columns, typename Form::Four *sums) {
  constexpr int most = kRegisters / Form::Four::registers;
  const int fours = (columns + 3) / 4;
  int groups = (fours + most - 1) / most;
  for (int i = 0, n = 0; i < fours; i += n) {
    n = (fours - i + groups - 1) / groups;
    --groups;
    addGroupOf<most>(n, form, block, 4 * i, firstOfFour(i + n - 1, columns), sums + i);
  }
}

// Rows first, first + 1, ... of a stripe. Those of fewer than four columns are copied to where there are
// four.
template <class Rows>
[[gnu::noinline]] void take(Block<typename Rows::Elem> &block, const Rows &rows, std::int32_t first,
                            std::int32_t count, std::int32_t stripe, std::int32_t columns) {
  using Elem = typename Rows::Elem;
  block.first = first;
  block.count = count;
  for (std::int32_t r = 0; r < count; ++r) block.rows[r] = rows.row(first + r) + stripe;
  if (columns >= 4) return;
  for (std::int32_t r = 0; r < count; ++r) {
    for (std::int32_t c = 0; c < 4; ++c) block.narrow[r][c] = c < columns ? load(block.rows[r] + c) : Elem{0};
    block.rows[r] = block.narrow[r];
  }
}

struct FromZero {};

// Calls end(c, totals) for each column c, whose sums start at begin(c).
template <class Form, class Rows, class Begin, class End>
void sumColumns(const Form &form, const Rows &rows, std::int32_t height, std::int32_t width, Begin begin,
                End end) {
  for (std::int32_t stripe = 0; stripe < width; stripe += std::min(kStripeColumns, width - stripe)) {
    const std::int32_t columns = std::min(kStripeColumns, width - stripe);
    const int fours = (columns + 3) / 4;
    decltype(Form::Column::sum) sum[kStripeColumns];
    decltype(Form::Column::squares) squares[kStripeColumns];
    typename Form::Four sums[kStripeColumns / 4];
    if constexpr (std::is_same_v<Begin, FromZero>) {
      for (int i = 0; i < fours; ++i) sums[i] = typename Form::Four{};
    } else {
      for (std::int32_t c = 0; c < std::max(columns, 4); ++c) {
        const auto start = begin(stripe + std::min(c, columns - 1));
        sum[c] = start.sum;
        squares[c] = start.squares;
      }
      for (int i = 0; i < fours; ++i) {
        const std::int32_t first = firstOfFour(i, columns);
        sums[i].loadFrom(sum + first, squares + first);
      }
    }
    const std::int32_t rowsAtOnce = blockRows<typename Form::Elem>(columns);
    Block<typename Form::Elem> block;
    for (std::int32_t r = 0; r < height; r += block.count) {
      take(block, rows, r, std::min(rowsAtOnce, height - r), stripe, columns);
      addBlock(form, block, columns, sums);
    }
    for (int i = 0; i < fours; ++i) {
      const std::int32_t first = firstOfFour(i, columns);
      sums[i].storeTo(sum + first, squares + first);
    }
    for (std::int32_t c = 0; c < columns; ++c) end(stripe + c, typename Form::Column{sum[c], squares[c]});
  }
}

}  // namespace orv::columns

#endif
