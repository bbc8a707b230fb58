// Complex transforms of 4096 points and more.
//
// With M = H B H, an index is three digits: n = (n2, n1, n0) and k = (k2, k1, k0), each with the most
// significant digit first, n2, n0, k2, k0 below H, n1 and k1 below B.
//
//   1. Over n2, for every n1, n0; the result k0 goes to (n0, n1, k0), so that it stands in the place that the
//      exchange of the outer digits gives it. Where source and destination are the same, that exchange, which
//      is its own inverse, is carried out first.
//   2. Over n1, after multiplication by W_BH^(n1 k0), in every row n0 of B H points.
//   3. Over n0, after multiplication by W_M^(n0 (k1 k0)); the result k2 replaces n0, and k stands in natural
//   order.
//
// Steps 2 and 3 transform columns in place. Every step takes eight columns at a time, a cache line of each
// row, in two groups of four lanes.

#include <cstring>

#include "primitives/fft/plan.h"
#include "primitives/memory.h"

namespace orv::fft {
namespace {

constexpr std::size_t kColumns = 8;
constexpr std::size_t kGroupFloats = std::size_t{kLaneFloats} << kMaxLaneOrder;

// Two groups of four columns each.
struct Groups {
  float *first, *second;

  void transform(std::int32_t order, const float *twiddles) const {
    transformLanes(first, order, 1, twiddles);
    transformLanes(second, order, 1, twiddles);
  }
};

// Two floats at a time: exchanges element (a, b, c) with (c, b, a).
void exchangeOuterDigits(float *data, Split split) {
  const std::size_t side = std::size_t{1} << split.side;
  const std::size_t row = side << split.middle;
  const auto element = [&](std::size_t a, std::size_t b, std::size_t c) {
    return data + 2 * (a * row + b * side + c);
  };
  for (std::size_t a0 = 0; a0 < side; a0 += kColumns)
    for (std::size_t c0 = a0; c0 < side; c0 += kColumns)
      for (std::size_t b = 0; b < row / side; ++b)
        for (std::size_t a = a0; a < a0 + kColumns; ++a)
          for (std::size_t c = c0 == a0 ? a + 1 : c0; c < c0 + kColumns; ++c) {
            float *p = element(a, b, c);
            float *q = element(c, b, a);
            std::uint64_t v, w;
            std::memcpy(&v, p, sizeof v);
            std::memcpy(&w, q, sizeof w);
            std::memcpy(p, &w, sizeof w);
            std::memcpy(q, &v, sizeof v);
          }
}

// Eight columns of a matrix to lanes.
void loadColumns(const float *src, std::size_t rowFloats, std::size_t rows, Groups to) {
  for (std::size_t i = 0; i < rows; ++i, src += rowFloats) {
    storeLanes(to.first + i * kLaneFloats, loadInterleaved(src));
    storeLanes(to.second + i * kLaneFloats, loadInterleaved(src + 8));
  }
}

// Four rows to the lanes of one group, and back.
void loadRows(const float *src, std::size_t rowFloats, std::size_t len, float *to) {
  for (std::size_t i = 0; i < len; i += 4, to += 4 * kLaneFloats) {
    Complex4 q[4];
    for (std::size_t row = 0; row < 4; ++row) q[row] = loadInterleaved(src + row * rowFloats + 2 * i);
    transpose(q[0], q[1], q[2], q[3]);
    for (std::size_t row = 0; row < 4; ++row) storeLanes(to + row * kLaneFloats, q[row]);
  }
}
void storeRows(const float *from, const std::uint16_t *positions, std::size_t len, float *dst,
               std::size_t rowFloats) {
  for (std::size_t i = 0; i < len; i += 4) {
    Complex4 q[4];
    for (std::size_t k = 0; k < 4; ++k) q[k] = loadLanes(from + std::size_t{positions[i + k]} * kLaneFloats);
    transpose(q[0], q[1], q[2], q[3]);
    for (std::size_t row = 0; row < 4; ++row) storeInterleaved(dst + row * rowFloats + 2 * i, q[row]);
  }
}

struct AsTheyAre {
  Complex4 operator()(Complex4 v) const { return v; }
};

struct ExchangedTimes {
  simd::f32x4 factor;
  Complex4 operator()(Complex4 v) const { return {v.im * factor, v.re * factor}; }
};

struct ColumnTransform {
  std::int32_t order;
  const float *twiddles;
  const std::uint16_t *positions;
};

// Multiplies by the steps and transforms every column of a matrix with 2^order rows, in place.
template <class Finish>
void columnStep(float *data, std::size_t rowFloats, const ColumnTransform &column, const float *steps,
                Groups groups, Finish finish) {
  const std::size_t rows = std::size_t{1} << column.order;
  for (std::size_t at = 0; at < rowFloats; at += 2 * kColumns) {
    const float *src = data + at;
    for (std::size_t i = 0; i < rows; ++i, src += rowFloats, steps += 2 * kColumns) {
      storeLanes(groups.first + i * kLaneFloats, loadInterleaved(src) * loadLanes(steps));
      storeLanes(groups.second + i * kLaneFloats, loadInterleaved(src + 8) * loadLanes(steps + 8));
    }
    groups.transform(column.order, column.twiddles);
    float *dst = data + at;
    for (std::size_t k = 0; k < rows; ++k, dst += rowFloats) {
      const std::size_t position = std::size_t{column.positions[k]} * kLaneFloats;
      storeInterleaved(dst, finish(loadLanes(groups.first + position)));
      storeInterleaved(dst + 8, finish(loadLanes(groups.second + position)));
    }
  }
}

template <class Finish>
void transform(const OrvRealFftState32f &spec, const float *src, float *dst, float *work, Finish finish) {
  alignas(64) float own[2 * kGroupFloats];
  const Groups groups = {work != nullptr ? work : own + kGroupFloats, own};
  const Split split = splitOf(spec.order - 1);
  const std::size_t side = std::size_t{1} << split.side;
  const std::size_t row = side << split.middle;
  const ColumnTransform sides = {split.side, spec.radix4Twiddles, spec.bitRevTable};
  const ColumnTransform middle = {split.middle, spec.blockTwiddles, spec.bitRevTable + side};

  if (src == dst) exchangeOuterDigits(dst, split);
  for (std::size_t n0 = 0; n0 < side; n0 += kColumns) {
    float *rows = dst + 2 * n0 * row;
    for (std::size_t at = 0; at < row; at += side) {
      if (src == dst) {
        loadRows(rows + 2 * at, 2 * row, side, groups.first);
        loadRows(rows + 2 * (4 * row + at), 2 * row, side, groups.second);
      } else {
        loadColumns(src + 2 * (at + n0), 2 * row, side, groups);
      }
      groups.transform(sides.order, sides.twiddles);
      storeRows(groups.first, sides.positions, side, rows + 2 * at, 2 * row);
      storeRows(groups.second, sides.positions, side, rows + 2 * (4 * row + at), 2 * row);
    }
    if (split.middle > 0)
      for (std::size_t i = 0; i < kColumns; ++i)
        columnStep(rows + 2 * i * row, 2 * side, middle, spec.levelStepTwiddles[1], groups, AsTheyAre{});
  }
  columnStep(dst, 2 * row, sides, spec.levelStepTwiddles[0], groups, finish);
}

// In the order in which columnStep reads them: W^(row column) for groups of eight columns.
void buildSteps(float *steps, std::int64_t rows, std::int64_t columns, const UnitCircle &circle,
                std::int32_t order) {
  for (std::int64_t at = 0; at < columns; at += kColumns)
    for (std::int64_t row = 0; row < rows; ++row, steps += 2 * kColumns)
      for (std::int64_t i = 0; i < std::int64_t{kColumns}; ++i) {
        const Twiddle w = circle.at(row * (at + i), order);
        float *part = steps + i / 4 * 8 + i % 4;
        part[0] = w.re;
        part[4] = w.im;
      }
}

}  // namespace

void largeTransform(const OrvRealFftState32f &spec, const float *src, float *dst, float *work) {
  transform(spec, src, dst, work, AsTheyAre{});
}

void largeTransformExchanged(const OrvRealFftState32f &spec, float *data, float factor, float *work) {
  transform(spec, data, data, work, ExchangedTimes{simd::splat4(factor)});
}

void buildLargeSteps(Split split, float *steps, float *middleSteps, const UnitCircle &circle) {
  const std::int64_t side = std::int64_t{1} << split.side;
  const std::int64_t row = side << split.middle;
  buildSteps(steps, side, row, circle, 2 * split.side + split.middle);
  buildSteps(middleSteps, row / side, side, circle, split.side + split.middle);
}

}  // namespace orv::fft
