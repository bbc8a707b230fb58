// Real transforms of 16384 values and more, as complex transforms of half as many points: value 2n + i of the
// signal is part i of point n.
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

  // Of which only the first `wanted` results are needed.
  void transform(std::int32_t order, const float *twiddles, std::size_t wanted) const {
    const bool few = wanted <= std::size_t{1} << firstRadixOrder(order) && wanted < std::size_t{1} << order;
    for (float *group : {first, second})
      if (few)
        firstOfLanes(group, order, twiddles);
      else
        transformLanes(group, order, 1, twiddles);
  }
};

// Two points of one row, whose bits are moved.
simd::f64x2 loadPoints(const float *p) { return simd::load2(reinterpret_cast<const double *>(p)); }
void storePoints(float *p, simd::f64x2 v) { simd::store2(reinterpret_cast<double *>(p), v); }

// Exchanges element (a, b, c) with (c, b, a), in squares of two by two.
void exchangeOuterDigits(float *data, Split split) {
  const std::size_t side = std::size_t{1} << split.side;
  const std::size_t row = side << split.middle;
  const auto element = [&](std::size_t a, std::size_t b, std::size_t c) {
    return data + 2 * (a * row + b * side + c);
  };
  for (std::size_t a0 = 0; a0 < side; a0 += kColumns)
    for (std::size_t c0 = a0; c0 < side; c0 += kColumns)
      for (std::size_t b = 0; b < row / side; ++b)
        for (std::size_t a = a0; a < a0 + kColumns; a += 2)
          for (std::size_t c = c0 == a0 ? a : c0; c < c0 + kColumns; c += 2) {
            float *p = element(a, b, c);
            float *q = element(c, b, a);
            const simd::f64x2 p0 = loadPoints(p), p1 = loadPoints(p + 2 * row);
            const simd::f64x2 q0 = loadPoints(q), q1 = loadPoints(q + 2 * row);
            storePoints(p, firstAndFirst(q0, q1));
            storePoints(p + 2 * row, secondAndSecond(q0, q1));
            storePoints(q, firstAndFirst(p0, p1));
            storePoints(q + 2 * row, secondAndSecond(p0, p1));
          }
}

// Floats that are there; zeros follow.
struct Source {
  const float *values;
  std::size_t len;
};

// Eight columns of a matrix to lanes, from the column that begins at float `at`.
void loadColumns(Source src, std::size_t at, std::size_t rowFloats, std::size_t rows, Groups to) {
  const auto put = [&](std::size_t i, const float *p) {
    storeLanes(to.first + i * kLaneFloats, loadInterleaved(p));
    storeLanes(to.second + i * kLaneFloats, loadInterleaved(p + 8));
  };
  std::size_t i = 0;
  for (; i < rows && at + 2 * kColumns <= src.len; ++i, at += rowFloats) put(i, src.values + at);
  float end[2 * kColumns] = {};
  if (i < rows && at < src.len) {
    std::memcpy(end, src.values + at, (src.len - at) * sizeof(float));
    put(i++, end);
    std::memset(end, 0, sizeof end);
  }
  for (; i < rows; ++i) put(i, end);
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
struct Times {
  simd::f32x4 factor;
  Complex4 operator()(Complex4 v) const { return v * factor; }
};
struct Exchanged {
  Complex4 operator()(Complex4 v) const { return {v.im, v.re}; }
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

// Multiplies by the steps and transforms every column of a matrix with 2^order rows, in place. Rows from
// `wanted` on are left as they are.
template <class Finish>
void columnStep(float *data, std::size_t rowFloats, const ColumnTransform &column, const float *steps,
                Groups groups, std::size_t wanted, Finish finish) {
  const std::size_t rows = std::size_t{1} << column.order;
  for (std::size_t at = 0; at < rowFloats; at += 2 * kColumns) {
    const float *src = data + at;
    for (std::size_t i = 0; i < rows; ++i, src += rowFloats, steps += 2 * kColumns) {
      storeLanes(groups.first + i * kLaneFloats, loadInterleaved(src) * loadLanes(steps));
      storeLanes(groups.second + i * kLaneFloats, loadInterleaved(src + 8) * loadLanes(steps + 8));
    }
    groups.transform(column.order, column.twiddles, wanted);
    float *dst = data + at;
    for (std::size_t k = 0; k < wanted; ++k, dst += rowFloats) {
      const std::size_t position = std::size_t{column.positions[k]} * kLaneFloats;
      storeInterleaved(dst, finish(loadLanes(groups.first + position)));
      storeInterleaved(dst + 8, finish(loadLanes(groups.second + position)));
    }
  }
}

// A middle digit of one bit, over whose two values the columns of the halves of a row are transformed first,
// and the columns of the matrix: both steps in one, four columns of either half at a time.
template <class Finish>
void halvesStep(float *data, std::size_t rowFloats, const ColumnTransform &column, const float *halfSteps,
                const float *steps, Groups groups, std::size_t wanted, Finish finish) {
  const std::size_t rows = std::size_t{1} << column.order;
  const std::size_t half = rowFloats / 2;
  for (std::size_t at = 0; at < half; at += kColumns) {
    const std::size_t within = at % (2 * kColumns);
    const Complex4 turn = loadLanes(halfSteps + 2 * (at - within) + 2 * kColumns + within);
    const float *lowSteps = steps + (at - within) * rows + within, *highSteps = lowSteps + half * rows;
    const float *src = data + at;
    for (std::size_t i = 0; i < rows;
         ++i, src += rowFloats, lowSteps += 2 * kColumns, highSteps += 2 * kColumns) {
      const Complex4 a = loadInterleaved(src), b = loadInterleaved(src + half) * turn;
      storeLanes(groups.first + i * kLaneFloats, (a + b) * loadLanes(lowSteps));
      storeLanes(groups.second + i * kLaneFloats, (a - b) * loadLanes(highSteps));
    }
    groups.transform(column.order, column.twiddles, wanted);
    float *dst = data + at;
    for (std::size_t k = 0; k < wanted; ++k, dst += rowFloats) {
      const std::size_t position = std::size_t{column.positions[k]} * kLaneFloats;
      storeInterleaved(dst, finish(loadLanes(groups.first + position)));
      storeInterleaved(dst + half, finish(loadLanes(groups.second + position)));
    }
  }
}

// In natural order before and after, in place or not. Only the first `wanted` floats of the result are
// needed.
template <class Finish>
void transform(const OrvRealFftState32f &spec, Source src, float *dst, std::size_t wanted, float *work,
               Finish finish) {
  alignas(64) float own[2 * kGroupFloats];
  const Split split = splitOf(spec.order - 1);
  const std::size_t side = std::size_t{1} << split.side;
  const std::size_t row = side << split.middle;
  // Half of the columns go through the work buffer, if they fit and an allocator has aligned it.
  const bool inWork = work != nullptr && isAligned(work, 16) &&
                      side * kLaneFloats * sizeof(float) <= static_cast<std::size_t>(spec.workBufSize);
  const Groups groups = {inWork ? work : own + kGroupFloats, own};
  const bool inPlace = src.values == dst;
  const ColumnTransform sides = {split.side, spec.radix4Twiddles, spec.bitRevTable};
  const ColumnTransform middle = {split.middle, spec.blockTwiddles, spec.bitRevTable + side};

  if (inPlace) exchangeOuterDigits(dst, split);
  for (std::size_t n0 = 0; n0 < side; n0 += kColumns) {
    float *rows = dst + 2 * n0 * row;
    for (std::size_t at = 0; at < row; at += side) {
      if (inPlace) {
        loadRows(rows + 2 * at, 2 * row, side, groups.first);
        loadRows(rows + 2 * (4 * row + at), 2 * row, side, groups.second);
      } else {
        loadColumns(src, 2 * (at + n0), 2 * row, side, groups);
      }
      groups.transform(sides.order, sides.twiddles, side);
      storeRows(groups.first, sides.positions, side, rows + 2 * at, 2 * row);
      storeRows(groups.second, sides.positions, side, rows + 2 * (4 * row + at), 2 * row);
    }
    if (split.middle > 1)
      for (std::size_t i = 0; i < kColumns; ++i)
        columnStep(rows + 2 * i * row, 2 * side, middle, spec.levelStepTwiddles[1], groups, row / side,
                   AsTheyAre{});
  }
  if (split.middle == 1)
    return halvesStep(dst, 2 * row, sides, spec.levelStepTwiddles[1], spec.levelStepTwiddles[0], groups,
                      (wanted + 2 * row - 1) / (2 * row), finish);
  columnStep(dst, 2 * row, sides, spec.levelStepTwiddles[0], groups, (wanted + 2 * row - 1) / (2 * row),
             finish);
}

// exp(-2 pi i k / 2^order) for k of the first half turn, as pairs, from the sines of the next order.
void buildHalfTurn(float *points, std::int32_t order, const float *sines) {
  const std::size_t quarter = std::size_t{1} << (order - 2);
  const simd::f32x4 minus = simd::signBits4();
  for (std::size_t k = 0; k < quarter; k += 4) {
    const float *rising = sines + 2 * k, *falling = sines + 2 * (quarter - k) - 7;
    const simd::f32x4 sine = simd::shuffle<0, 2, 0, 2>(simd::load4(rising), simd::load4(rising + 4)) ^ minus;
    const simd::f32x4 cosine = simd::shuffle<3, 1, 3, 1>(simd::load4(falling + 4), simd::load4(falling));
    storeInterleaved(points + 2 * k, {cosine, sine});
    storeInterleaved(points + 2 * (quarter + k), {sine, cosine ^ minus});
  }
}

// In the order in which columnStep reads them: W^(row column) for groups of eight columns, of this order,
// from the points of a half turn of turnOrder.
void buildSteps(float *steps, std::size_t rows, std::size_t columns, std::int32_t order, const float *points,
                std::int32_t turnOrder) {
  const int shift = turnOrder - order;
  const std::size_t mask = (std::size_t{1} << (turnOrder - 1)) - 1;
  for (std::size_t at = 0; at < columns; at += kColumns) {
    simd::i32x4 halfTurns[2], next[2];  // the top bit tells whether their number is odd
    for (std::int32_t half = 0; half < 2; ++half) {
      const auto column = static_cast<std::int32_t>(at) + 4 * half;
      const std::int32_t first[4] = {column, column + 1, column + 2, column + 3};
      halfTurns[half] = simd::splat4(0);
      next[half] = simd::load4(first) << (32 - order);
    }
    for (std::size_t row = 0; row < rows; ++row) {
      std::size_t index = row * at << shift;
      const std::size_t apart = row << shift;
      for (int half = 0; half < 2; ++half, steps += kLaneFloats) {
        const std::size_t i0 = index, i1 = i0 + apart, i2 = i1 + apart, i3 = i2 + apart;
        index = i3 + apart;
        const float *p0 = points + 2 * (i0 & mask), *p1 = points + 2 * (i1 & mask),
                    *p2 = points + 2 * (i2 & mask), *p3 = points + 2 * (i3 & mask);
        const simd::f32x4 low = simd::loadPairs(p0, p1), high = simd::loadPairs(p2, p3);
        const simd::f32x4 signs = simd::bitsOf(halfTurns[half]) & simd::signBits4();
        halfTurns[half] = halfTurns[half] + next[half];
        storeLanes(steps, {simd::shuffle<0, 2, 0, 2>(low, high) ^ signs,
                           simd::shuffle<1, 3, 1, 3>(low, high) ^ signs});
      }
    }
  }
}

// Between the transform Z of the M points and the spectrum X of the 2M values that they hold, for pairs of
// bins k and M - k: with a = pi k / M, g = cos(a) / 2 and f = 1/2 - sin(a) / 2,
//     d = Re Z[k] - Re Z[M-k],  s = Im Z[k] + Im Z[M-k],  u = f d + g s,  v = f s - g d,
//     X[k] = (Re Z[M-k] + u, v - Im Z[M-k]),  X[M-k] = (Re Z[k] - u, v - Im Z[k]).
// The way back is the same with -g, and yields half of Z.
enum class Direction { forward, inverse };

template <Direction direction>
void recombine(Complex4 &low, Complex4 &high, Complex4 w) {
  const simd::f32x4 g = w.re, f = w.im;
  const simd::f32x4 d = low.re - high.re;
  const simd::f32x4 s = low.im + high.im;
  constexpr bool ahead = direction == Direction::forward;
  const simd::f32x4 u = ahead ? f * d + g * s : f * d - g * s;
  const simd::f32x4 v = ahead ? f * s - g * d : f * s + g * d;
  const Complex4 lower = {high.re + u, v - high.im};
  high = {low.re - u, v - low.im};
  low = lower;
}

void buildBinFactors(float *table, std::int32_t order, const UnitCircle &circle) {
  const std::int64_t quarter = std::int64_t{1} << (order - 2);
  for (std::int64_t k = 0; k < quarter; k += 4, table += kLaneFloats) {
    const simd::f32x4 sine = simd::load4(circle.sines() + k);
    const simd::f32x4 cosine = simd::load4(circle.sines() + quarter - k - 3);
    storeLanes(table, {simd::shuffle<3, 2, 1, 0>(cosine, cosine) * 0.5F, simd::splat4(0.5F) - sine * 0.5F});
  }
}

// All bins but 0, M/2 and M, by the addresses of bin 1, in place or not.
template <Direction direction, class Finish>
void recombineBins(const OrvRealFftState32f &spec, const float *src, float *dst, Finish finish) {
  const std::size_t points = std::size_t{1} << (spec.order - 1);
  const float *w = spec.realRecTwiddles;
  const auto four = [&](const float *srcLow, const float *srcHigh, float *dstLow, float *dstHigh) {
    Complex4 low = loadInterleaved(srcLow), high = loadReversed(srcHigh);
    recombine<direction>(low, high, loadLanes(w));
    w += kLaneFloats;
    storeInterleaved(dstLow, finish(low));
    storeReversed(dstHigh, finish(high));
  };
  // The first four pairs contain bins 0 and M, which stand elsewhere.
  constexpr std::size_t three = 6 * sizeof(float);
  const std::size_t highest = 2 * (points - 4);
  float low[8] = {}, high[8] = {};
  std::memcpy(low + 2, src, three);
  std::memcpy(high, src + highest, three);
  four(low, high, low, high);
  std::memcpy(dst, low + 2, three);
  std::memcpy(dst + highest, high, three);
  for (std::size_t at = 8; at < points; at += 8)
    four(src + at - 2, src + highest - at, dst + at - 2, dst + highest - at);
}

struct Bin {
  float re, im;
};
Bin loadBin(const float *p) { return {load(p), load(p + 1)}; }
void storeBin(float *p, Bin v) {
  store(p, v.re);
  store(p + 1, v.im);
}

}  // namespace

void buildLargeTables(const TablePointers &tables, std::int32_t order, const UnitCircle &circle) {
  const Split split = splitOf(order - 1);
  for (int i = 0; i < 2; ++i) {
    const std::int32_t digit = i == 0 ? split.side : split.middle;
    for (std::int32_t k = 0; k < 1 << digit; ++k)
      tables.indices[i][k] = static_cast<std::uint16_t>(positionOf(k, digit));
    buildLaneTwiddles(tables.lanes[i], digit, circle);
  }
  const std::size_t side = std::size_t{1} << split.side;
  const std::size_t row = side << split.middle;
  // Until it is filled itself, the table of the bins holds the points that the steps are taken from.
  buildHalfTurn(tables.bins, order - 1, circle.sines());
  buildSteps(tables.steps[0], side, row, order - 1, tables.bins, order - 1);
  buildSteps(tables.steps[1], row / side, side, split.side + split.middle, tables.bins, order - 1);
  buildBinFactors(tables.bins, order, circle);
}

Ends largeForward(const OrvRealFftState32f &spec, const float *src, float *dst, float *bin1, float factor,
                  float *work) {
  const std::size_t len = std::size_t{1} << spec.order;
  transform(spec, {src, len}, dst, len, work, AsTheyAre{});
  const Bin zero = loadBin(dst);
  const Bin middle = loadBin(dst + len / 2);
  if (bin1 != dst + 2) std::memmove(bin1, dst + 2, (len - 2) * sizeof(float));
  if (factor == 1.0F)
    recombineBins<Direction::forward>(spec, bin1, bin1, AsTheyAre{});
  else
    recombineBins<Direction::forward>(spec, bin1, bin1, Times{simd::splat4(factor)});
  storeBin(bin1 + len / 2 - 2, {middle.re * factor, -middle.im * factor});
  return {(zero.re + zero.im) * factor, (zero.re - zero.im) * factor};
}

// The inverse of a transform is the transform of the points with exchanged parts, its own parts exchanged.
void largeInverse(const OrvRealFftState32f &spec, const float *packed, float *dst, float factor,
                  float *work) {
  const std::size_t len = std::size_t{1} << spec.order;
  const float first = load(packed);
  const float last = load(packed + len - 1);
  const Bin middle = loadBin(packed + len / 2 - 1);
  const float *bin1 = packed + 1;
  if (packed == dst) {
    std::memmove(dst + 2, packed + 1, (len - 2) * sizeof(float));
    bin1 = dst + 2;
  }
  // Half of every point; the factor makes up for it.
  recombineBins<Direction::inverse>(spec, bin1, dst + 2, Exchanged{});
  storeBin(dst, {0.5F * (first - last), 0.5F * (first + last)});
  storeBin(dst + len / 2, {-middle.im, middle.re});
  transform(spec, {dst, len}, dst, len, work, ExchangedTimes{simd::splat4(2 * factor)});
}

// The spectrum is formed pair by pair between the two transforms, from points to points: see recombine(). All
// imaginary parts of the power are 0. Bins 0 and M, of point 0 alone, are no exception: it is its own pair.
void largeLags(const OrvRealFftState32f &spec, const float *src, std::size_t srcLen, float *array,
               std::size_t count, float *work) {
  const std::size_t len = std::size_t{1} << spec.order;
  transform(spec, {src, srcLen}, array, len, work, AsTheyAre{});
  const float *factors = spec.realRecTwiddles;
  const auto four = [&](float *lowPoints, float *highPoints) {
    const Complex4 w = loadLanes(factors);
    Complex4 low = loadInterleaved(lowPoints), high = loadReversed(highPoints);
    recombine<Direction::forward>(low, high, w);
    const simd::f32x4 p = norm(low), q = norm(high);
    const simd::f32x4 u = w.im * (p - q), v = w.re * (p - q);
    storeInterleaved(lowPoints, {v, q + u});  // exchanged
    storeReversed(highPoints, {v, p - u});
    factors += kLaneFloats;
  };
  const Bin middle = loadBin(array + len / 2);
  float high[8];
  std::memcpy(high, array + len - 6, 6 * sizeof(float));
  std::memcpy(high + 6, array, 2 * sizeof(float));
  four(array, high);
  std::memcpy(array + len - 6, high, 6 * sizeof(float));
  for (std::size_t at = 8; at < len / 2; at += 8) four(array + at, array + len - 6 - at);
  storeBin(array + len / 2, {0, middle.re * middle.re + middle.im * middle.im});
  const float factor = spec.scaleInv != 0 ? spec.normFactor : 1.0F;
  transform(spec, {array, len}, array, count, work, ExchangedTimes{simd::splat4(2 * factor)});
}

}  // namespace orv::fft
