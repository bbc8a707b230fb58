#include "primitives/fft/engine.h"

#include <cstring>

#include "primitives/fft/bins.h"
#include "primitives/fft/plan.h"
#include "primitives/fft/small.h"
#include "primitives/memory.h"

namespace orv::fft {
namespace {

// --- 32 values and fewer

void smallTransform(std::int32_t order, Direction direction, const float *x, float *y) {
  const bool ahead = direction == Direction::forward;
  switch (order) {
    case 0:
      return ahead ? smallForward<1>(x, y) : smallInverse<1>(x, y);
    case 1:
      return ahead ? smallForward<2>(x, y) : smallInverse<2>(x, y);
    case 2:
      return ahead ? smallForward<4>(x, y) : smallInverse<4>(x, y);
    case 3:
      return ahead ? smallForward<8>(x, y) : smallInverse<8>(x, y);
    case 4:
      return ahead ? smallForward<16>(x, y) : smallInverse<16>(x, y);
    default:
      return ahead ? smallForward<32>(x, y) : smallInverse<32>(x, y);
  }
}

void forwardSmall(const OrvRealFftState32f &spec, const float *src, float *dst, Layout layout) {
  const std::size_t len = std::size_t{1} << spec.order;
  float x[32], y[34];
  std::memcpy(x, src, len * sizeof(float));
  smallTransform(spec.order, Direction::forward, x, y);
  if (spec.scaleFwd != 0)
    for (std::size_t i = 0; i < len; ++i) y[i] *= spec.normFactor;
  if (layout == Layout::perm || len == 1) {
    std::memcpy(dst, y, len * sizeof(float));
    if (layout == Layout::ccs) store(dst + 1, 0.0F);
    return;
  }
  const float last = y[1];
  if (layout == Layout::pack) {
    std::memcpy(dst + 1, y + 2, (len - 2) * sizeof(float));
    store(dst, y[0]);
    store(dst + len - 1, last);
  } else {
    y[1] = 0;
    y[len] = last;
    y[len + 1] = 0;
    std::memcpy(dst, y, (len + 2) * sizeof(float));
  }
}

void inverseSmall(const OrvRealFftState32f &spec, const float *packed, float *dst) {
  const std::size_t len = std::size_t{1} << spec.order;
  float x[32], y[32];
  y[0] = load(packed);
  if (len > 1) {
    y[1] = load(packed + len - 1);
    std::memcpy(y + 2, packed + 1, (len - 2) * sizeof(float));
  }
  smallTransform(spec.order, Direction::inverse, y, x);
  if (spec.scaleInv != 0)
    for (std::size_t i = 0; i < len; ++i) x[i] *= spec.normFactor;
  std::memcpy(dst, x, len * sizeof(float));
}

// --- up to 4096 values, in a buffer of two groups of lanes: columns by eight, then the rest

constexpr std::size_t kBufferFloats = std::size_t{2} << kMaxBufferedOrder;

// W_32^(n k) for the columns n = 0..3, k = 1..7.
struct ShortestStep {
  float values[56] = {};
};
constexpr ShortestStep shortestStep() {
  ShortestStep step;
  for (int k = 1; k < 8; ++k)
    for (int n = 0; n < 4; ++n) {
      const Twiddle w = UnitCircle(fft_fix_twiddle_table_32f, kMaxTableOrder).at(n * k, 5);
      step.values[(k - 1) * 8 + n] = w.re;
      step.values[(k - 1) * 8 + 4 + n] = w.im;
    }
  return step;
}
constexpr ShortestStep kShortestStep = shortestStep();

void buildFirstSteps(float *steps, std::int32_t complexOrder, const UnitCircle &circle) {
  for (std::int64_t n = 0; n < std::int64_t{1} << (complexOrder - 3); n += 4)
    for (std::int64_t k = 1; k < 8; ++k, steps += kLaneFloats)
      for (std::int64_t i = 0; i < 4; ++i) {
        const Twiddle w = circle.at((n + i) * k, complexOrder);
        steps[i] = w.re;
        steps[i + 4] = w.im;
      }
}

// Transforms the columns n + `columns` j, j = 0..7, of interleaved values and multiplies result k by W^(n k).
// Column n becomes element n of two groups of lanes, residues 0, 1, 2, 3 and 4, 7, 6, 5.
void firstPass(const float *src, float *buffer, std::size_t columns, const float *steps) {
  float *second = buffer + columns * kLaneFloats;
  for (std::size_t n = 0; n < columns; n += 4, steps += 7 * kLaneFloats) {
    Eight e = dft8([&](std::size_t j) { return loadInterleaved(src + 2 * (n + j * columns)); });
    Quad low = {{e.even.y[0], e.odd.y[0] * loadLanes(steps), e.even.y[1] * loadLanes(steps + 8),
                 e.odd.y[1] * loadLanes(steps + 16)}};
    Quad high = {{e.even.y[2] * loadLanes(steps + 24), e.odd.y[3] * loadLanes(steps + 48),
                  e.even.y[3] * loadLanes(steps + 40), e.odd.y[2] * loadLanes(steps + 32)}};
    transpose(low.y[0], low.y[1], low.y[2], low.y[3]);
    transpose(high.y[0], high.y[1], high.y[2], high.y[3]);
    for (std::size_t i = 0; i < 4; ++i) {
      storeLanes(buffer + (n + i) * kLaneFloats, low.y[i]);
      storeLanes(second + (n + i) * kLaneFloats, high.y[i]);
    }
  }
}

// All of Z, in the lanes of `buffer`.
void bufferedTransform(const OrvRealFftState32f &spec, const float *src, float *buffer) {
  const std::int32_t columnOrder = spec.order - 4;
  firstPass(src, buffer, std::size_t{1} << columnOrder, spec.levelStepTwiddles[0]);
  transformLanes(buffer, columnOrder, 2, spec.radix4Twiddles);
}

// --- bins

struct Bin {
  float re, im;
};
Bin loadBin(const float *p) { return {load(p), load(p + 1)}; }
void storeBin(float *p, Bin v) {
  store(p, v.re);
  store(p + 1, v.im);
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

template <class Finish>
void finishAll(Run &run, Finish finish) {
  for (int i = 0; i < 2; ++i) {
    run.low[i] = finish(run.low[i]);
    run.high[i] = finish(run.high[i]);
  }
}

// Runs in memory, by the address of bin 1. The first run holds bins 0 and M, which stand elsewhere.
constexpr std::size_t kFirstRunBytes = (kRunFloats - 2) * sizeof(float);

float *lowRun(float *bin1, std::size_t r) { return bin1 + kRunFloats * r - 2; }
float *highRun(float *bin1, std::size_t r, std::size_t points) { return bin1 + 2 * (points - 8 * r - 8); }

void storeRun(const Run &run, float *bin1, std::size_t r, std::size_t points) {
  if (r != 0) {
    storeLow(lowRun(bin1, r), run.low);
    storeHigh(highRun(bin1, r, points), run.high);
    return;
  }
  float low[kRunFloats], high[kRunFloats];
  storeLow(low, run.low);
  storeHigh(high, run.high);
  std::memcpy(bin1, low + 2, kFirstRunBytes);
  std::memcpy(highRun(bin1, 0, points), high, kFirstRunBytes);
}

void loadRun(Run &run, const float *bin1, std::size_t r, std::size_t points) {
  if (r != 0) {
    loadLow(bin1 + kRunFloats * r - 2, run.low);
    loadHigh(bin1 + 2 * (points - 8 * r - 8), run.high);
    return;
  }
  float low[kRunFloats] = {}, high[kRunFloats] = {};
  std::memcpy(low + 2, bin1, kFirstRunBytes);
  std::memcpy(high, bin1 + 2 * (points - 8), kFirstRunBytes);
  loadLow(low, run.low);
  loadHigh(high, run.high);
}

// The bins between 0 and M but for the middle one, from the lanes of a buffered transform.
template <class Finish>
void binsOfBuffer(const OrvRealFftState32f &spec, const float *buffer, float *bin1, Finish finish) {
  const std::size_t columns = std::size_t{1} << (spec.order - 4);
  const std::size_t group = columns * kLaneFloats;
  const float *w = spec.realRecTwiddles;
  Complex4 before = loadLanes(buffer);
  for (std::size_t r = 0; r < columns / 2; ++r, w += 16) {
    const float *here = buffer + std::size_t{spec.bitRevTable[r]} * kLaneFloats;
    const float *mirror = buffer + group - kLaneFloats - (here - buffer);
    const Complex4 first = loadLanes(mirror), second = loadLanes(mirror + group);
    Run run = {{loadLanes(here), loadLanes(here + group)},
               {{simd::withFirstOf(second.re, before.re), simd::withFirstOf(second.im, before.im)},
                {simd::withFirstOf(first.re, second.re), simd::withFirstOf(first.im, second.im)}}};
    before = first;
    recombine<Direction::forward>(run, w);
    finishAll(run, finish);
    storeRun(run, bin1, r, group);
  }
}

// The same between arrays of bins in natural order, in place or not.
template <Direction direction, class Finish>
void recombineBins(const OrvRealFftState32f &spec, const float *srcBin1, float *dstBin1, Finish finish) {
  const std::size_t points = std::size_t{1} << (spec.order - 1);
  const float *w = spec.realRecTwiddles;
  for (std::size_t r = 0; r < points / 16; ++r, w += 16) {
    Run run;
    loadRun(run, srcBin1, r, points);
    recombine<direction>(run, w);
    finishAll(run, finish);
    storeRun(run, dstBin1, r, points);
  }
}

// The factors of the bins of each run, in the order of Run::low.
void buildBinFactors(float *table, std::int32_t order, const UnitCircle &circle) {
  constexpr int bins[8] = {0, 1, 2, 3, 4, 7, 6, 5};
  for (std::int64_t r = 0; r < std::int64_t{1} << (order - 5); ++r, table += 16)
    for (int i = 0; i < 8; ++i) {
      const Twiddle w = circle.at(8 * r + bins[i], order);
      float *part = table + i / 4 * 8 + i % 4;
      part[0] = 0.5F * w.re;
      part[4] = static_cast<float>(0.5 + 0.5 * static_cast<double>(w.im));
    }
}

void forwardTables(const OrvRealFftState32f &spec, const float *src, float *dst, Layout layout, float *work) {
  const std::size_t len = std::size_t{1} << spec.order;
  const std::size_t points = len / 2;
  float *bin1 = layout == Layout::pack ? dst + 1 : dst + 2;
  Bin zero, middle;
  if (!isLarge(spec.order - 1)) {
    alignas(64) float buffer[kBufferFloats];
    bufferedTransform(spec, src, buffer);
    const float *at = buffer + std::size_t{spec.bitRevTable[points / 16]} * kLaneFloats;
    zero = {buffer[0], buffer[4]};
    middle = {at[0], at[4]};
    if (spec.scaleFwd != 0)
      binsOfBuffer(spec, buffer, bin1, Times{simd::splat4(spec.normFactor)});
    else
      binsOfBuffer(spec, buffer, bin1, AsTheyAre{});
  } else {
    largeTransform(spec, src, dst, work);
    zero = loadBin(dst);
    middle = loadBin(dst + points);
    if (layout == Layout::pack) std::memmove(dst + 1, dst + 2, (len - 2) * sizeof(float));
    if (spec.scaleFwd != 0)
      recombineBins<Direction::forward>(spec, bin1, bin1, Times{simd::splat4(spec.normFactor)});
    else
      recombineBins<Direction::forward>(spec, bin1, bin1, AsTheyAre{});
  }
  const float factor = spec.scaleFwd != 0 ? spec.normFactor : 1.0F;
  storeBin(bin1 + points - 2, {middle.re * factor, -middle.im * factor});
  store(dst, (zero.re + zero.im) * factor);
  const float last = (zero.re - zero.im) * factor;
  if (layout == Layout::perm) {
    store(dst + 1, last);
  } else if (layout == Layout::pack) {
    store(dst + len - 1, last);
  } else {
    store(dst + 1, 0.0F);
    storeBin(dst + len, {last, 0.0F});
  }
}

// The inverse of a transform is the transform of the values with exchanged parts, its own parts exchanged.
void inverseTables(const OrvRealFftState32f &spec, const float *packed, float *dst, float *work) {
  const std::size_t len = std::size_t{1} << spec.order;
  const std::size_t points = len / 2;
  const float first = load(packed);
  const float last = load(packed + len - 1);
  const Bin middle = loadBin(packed + points - 1);
  const float *bin1 = packed + 1;
  if (packed == dst) {
    std::memmove(dst + 2, packed + 1, (len - 2) * sizeof(float));
    bin1 = dst + 2;
  }
  recombineBins<Direction::inverse>(spec, bin1, dst + 2, Exchanged{});
  storeBin(dst, {0.5F * (first - last), 0.5F * (first + last)});
  storeBin(dst + points, {-middle.im, middle.re});

  const float factor = spec.scaleInv != 0 ? 2 * spec.normFactor : 2.0F;
  if (isLarge(spec.order - 1)) {
    largeTransformExchanged(spec, dst, factor, work);
    return;
  }
  alignas(64) float buffer[kBufferFloats];
  bufferedTransform(spec, dst, buffer);
  const ExchangedTimes finish = {simd::splat4(factor)};
  const std::size_t columns = points / 8;
  for (std::size_t r = 0; r < columns; ++r) {
    const float *at = buffer + std::size_t{spec.bitRevTable[r]} * kLaneFloats;
    storeLow(dst + kRunFloats * r, {finish(loadLanes(at)), finish(loadLanes(at + columns * kLaneFloats))});
  }
}

}  // namespace

void buildTables(OrvRealFftState32f &spec, const float *sine, std::int32_t sineOrder) {
  const UnitCircle circle(sine, sineOrder);
  const std::int32_t complexOrder = spec.order - 1;
  const Tables tables = tablesOf(spec.order);
  std::uint8_t *at = reinterpret_cast<std::uint8_t *>(&spec) + kTablesOffset;
  const auto take = [&](std::int64_t bytes) {
    std::uint8_t *table = at;
    at += up32(bytes);
    return table;
  };
  const auto takeFloats = [&](std::int64_t floats) { return reinterpret_cast<float *>(take(4 * floats)); };

  spec.bitRevTable = reinterpret_cast<std::uint16_t *>(take(2 * tables.positions));
  spec.radix4Twiddles = takeFloats(tables.lanes);
  spec.blockTwiddles = takeFloats(tables.middleLanes);
  spec.realRecTwiddles = takeFloats(tables.bins);
  spec.ccsRecTwiddles = spec.realRecTwiddles;  // one table serves both directions
  float *steps = takeFloats(tables.step);
  float *middleSteps = takeFloats(tables.middleStep);
  spec.levelStepTwiddles[0] = tables.step == 0 ? kShortestStep.values : steps;
  spec.levelStepTwiddles[1] = middleSteps;

  buildBinFactors(spec.realRecTwiddles, spec.order, circle);
  const auto buildPositions = [&](std::uint16_t *positions, std::int32_t order) {
    for (std::int32_t k = 0; k < 1 << order; ++k)
      positions[k] = static_cast<std::uint16_t>(positionOf(k, order));
  };
  if (isLarge(complexOrder)) {
    const Split split = splitOf(complexOrder);
    buildPositions(spec.bitRevTable, split.side);
    buildPositions(spec.bitRevTable + (1 << split.side), split.middle);
    buildLaneTwiddles(spec.radix4Twiddles, split.side, circle);
    buildLaneTwiddles(spec.blockTwiddles, split.middle, circle);
    buildLargeSteps(split, steps, middleSteps, circle);
  } else {
    buildPositions(spec.bitRevTable, complexOrder - 3);
    buildLaneTwiddles(spec.radix4Twiddles, complexOrder - 3, circle);
    if (tables.step != 0) buildFirstSteps(steps, complexOrder, circle);
  }
}

void forward(const OrvRealFftState32f &spec, const float *src, float *dst, Layout layout,
             std::uint8_t *work) {
  if (spec.order <= kMaxSmallOrder) return forwardSmall(spec, src, dst, layout);
  forwardTables(spec, src, dst, layout, reinterpret_cast<float *>(work));
}

void inverse(const OrvRealFftState32f &spec, const float *packed, float *dst, std::uint8_t *work) {
  if (spec.order <= kMaxSmallOrder) return inverseSmall(spec, packed, dst);
  inverseTables(spec, packed, dst, reinterpret_cast<float *>(work));
}

}  // namespace orv::fft
