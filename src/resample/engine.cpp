#include "resample/engine.h"

#include <bit>

#include "primitives/simd.h"

namespace orv::resample {
namespace {

using namespace simd;

// Every output is a sum in eight lanes, of a multiple of four taps, tap k in lane k mod 8, lanes i and i + 4
// added first, whichever of these loops makes it: how many outputs are made together depends on how calls are
// cut, and must not be seen.

// Four outputs of one row, whose windows begin `step` samples after one another: the row is loaded once.
inline f32x4 fourOfOneRow(const float *x, std::ptrdiff_t step, const float *row, std::int32_t taps) {
  const float *x1 = x + step, *x2 = x1 + step, *x3 = x2 + step;
  f32x4 a0 = splat4(0.0F), a1 = a0, b0 = a0, b1 = a0, c0 = a0, c1 = a0, d0 = a0, d1 = a0;
  std::int32_t k = 0;
  for (; k + 8 <= taps; k += 8) {
    const f32x4 h0 = loadAligned4(row + k), h1 = loadAligned4(row + k + 4);
    a0 = a0 + load4(x + k) * h0;
    b0 = b0 + load4(x1 + k) * h0;
    c0 = c0 + load4(x2 + k) * h0;
    d0 = d0 + load4(x3 + k) * h0;
    a1 = a1 + load4(x + k + 4) * h1;
    b1 = b1 + load4(x1 + k + 4) * h1;
    c1 = c1 + load4(x2 + k + 4) * h1;
    d1 = d1 + load4(x3 + k + 4) * h1;
  }
  if (taps % 8 != 0) {
    const f32x4 h0 = loadAligned4(row + k);
    a0 = a0 + load4(x + k) * h0;
    b0 = b0 + load4(x1 + k) * h0;
    c0 = c0 + load4(x2 + k) * h0;
    d0 = d0 + load4(x3 + k) * h0;
  }
  return sumLanesOfFour(a0 + a1, b0 + b1, c0 + c1, d0 + d1);
}

struct Two {
  float first, second;
};

// Two outputs of rows of their own.
Two twoOutputs(const float *x, const float *row, const float *y, const float *rowY, std::int32_t taps) {
  f32x4 a0 = splat4(0.0F), a1 = a0, b0 = a0, b1 = a0;
  std::int32_t k = 0;
  for (; k + 8 <= taps; k += 8) {
    a0 = a0 + load4(x + k) * loadAligned4(row + k);
    b0 = b0 + load4(y + k) * loadAligned4(rowY + k);
    a1 = a1 + load4(x + k + 4) * loadAligned4(row + k + 4);
    b1 = b1 + load4(y + k + 4) * loadAligned4(rowY + k + 4);
  }
  if (taps % 8 != 0) {
    a0 = a0 + load4(x + k) * loadAligned4(row + k);
    b0 = b0 + load4(y + k) * loadAligned4(rowY + k);
  }
  return {sumLanes(a0 + a1), sumLanes(b0 + b1)};
}

// The lanes of one window through what lies at `part` between a row and the next.
inline f32x4 betweenRows(const float *x, const float *row, std::int32_t taps, float part) {
  const float *next = row + taps;
  f32x4 x0 = load4(x), x1 = load4(x + 4);
  f32x4 a0 = x0 * loadAligned4(row), a1 = x1 * loadAligned4(row + 4);
  f32x4 b0 = x0 * loadAligned4(next), b1 = x1 * loadAligned4(next + 4);
  std::int32_t k = 8;
  for (; k + 8 <= taps; k += 8) {
    x0 = load4(x + k);
    x1 = load4(x + k + 4);
    a0 = a0 + x0 * loadAligned4(row + k);
    b0 = b0 + x0 * loadAligned4(next + k);
    a1 = a1 + x1 * loadAligned4(row + k + 4);
    b1 = b1 + x1 * loadAligned4(next + k + 4);
  }
  if (taps % 8 != 0) {
    x0 = load4(x + k);
    a0 = a0 + x0 * loadAligned4(row + k);
    b0 = b0 + x0 * loadAligned4(next + k);
  }
  const f32x4 a = a0 + a1;
  return a + ((b0 + b1) - a) * part;
}

const float *rowAt(Converter &c) { return c.filter() + static_cast<std::ptrdiff_t>(c.clock.rest) * c.taps; }

// Samples as they are, from the middle of their windows.
std::int32_t passThrough(Converter &c, float *dst, std::int32_t room) {
  const std::int32_t len = std::clamp(c.windows(), 0, room);
  ownsCopy_8u(reinterpret_cast<const std::uint8_t *>(c.samples() + c.first + c.taps / 2 - 1),
              reinterpret_cast<std::uint8_t *>(dst), static_cast<std::size_t>(len) * 4);
  c.first += len;
  return len;
}

// Two or four periods of the clock: L rows, each of as many outputs, of so many taps or of any number.
template <int periods, std::int32_t fixedTaps = 0>
void wholePeriods(Converter &c, float *dst, std::ptrdiff_t period) {
  const std::int32_t taps = fixedTaps > 0 ? fixedTaps : c.taps;
  const float *samples = c.samples();
  std::ptrdiff_t first = c.first;
  for (std::ptrdiff_t i = 0; i < c.rows; ++i) {
    const float *x = samples + first, *row = rowAt(c);
    if constexpr (periods == 4) {
      float four[4];
      store4(four, fourOfOneRow(x, period, row, taps));
      for (std::ptrdiff_t j = 0; j < 4; ++j) store(dst + i + j * c.rows, four[j]);
    } else {
      const Two two = twoOutputs(x, row, x + period, row, taps);
      store(dst + i, two.first);
      store(dst + i + c.rows, two.second);
    }
    first += c.clock.advance();
  }
  c.first += static_cast<std::int32_t>(periods * period);
}

// At or beyond the end of the inputs, or before it by so little that the product of their number and the
// ratio, as a double, is the number of outputs already made.
bool isBeyondEnd(const Converter &c) {
  const std::uint64_t end = c.clock.modulus * static_cast<std::uint64_t>(c.endPart);
  const std::uint64_t at = c.clock.rest * static_cast<std::uint64_t>(c.endParts);
  if (at >= end) return true;
  if (c.made == 0) return false;
  const int halfPlace = static_cast<int>(std::bit_width(c.made)) + std::countr_zero(c.outputPeriod) - 54;
  return halfPlace >= 0 && (end - at - 1) >> std::min(halfPlace, 63) < static_cast<std::uint64_t>(c.endParts);
}

// Whether there is a next output, and its window is there.
bool isDue(const Converter &c) {
  const std::int32_t windows = c.windows();
  return windows > 1 || (windows == 1 && !(c.tail == 0 && isBeyondEnd(c)));
}

// The inputs that are kept of as many samples, and the one under a sample that stands on an input.
std::int32_t inputsIn(const Converter &c, std::int32_t samples) {
  return static_cast<std::int32_t>(std::int64_t{samples} * c.gridDown / c.gridUp);
}
float *inputAt(Converter &c, std::int32_t sample) { return c.inputs() + inputsIn(c, sample); }

// Whether the next output stands on an input, and those inputs one by one while all outputs do.
bool standsOnInput(const Converter &c) {
  const std::int64_t inputs = std::int64_t{c.first + c.taps / 2 - 1} * c.gridDown;
  return inputs % c.gridUp == 0 &&
         c.clock.rest * static_cast<std::uint64_t>(c.gridDown) % c.clock.modulus == 0;
}
std::int32_t keptInputs(Converter &c, float *dst, std::int32_t room) {
  std::int32_t made = 0;
  for (; made < room && isDue(c); ++made, ++c.made) {
    const float *under = inputAt(c, c.first + c.taps / 2 - 1);
    store(dst + made, under[c.clock.rest * static_cast<std::uint64_t>(c.gridDown) / c.clock.modulus]);
    c.first += c.clock.advance();
  }
  return made;
}

// Outputs at any place between samples, by rows that are interpolated: of so many taps, or of as many as the
// state says.
template <std::int32_t fixedTaps>
std::int32_t sumsBetweenRows(Converter &c, float *dst, std::int32_t room) {
  const std::int32_t taps = fixedTaps > 0 ? fixedTaps : c.taps;
  const float *samples = c.samples(), *rows = c.filter();
  const double rowsPerPart = c.rowsPerPart;
  Clock clock = c.clock;
  std::int32_t first = c.first;
  const auto lanes = [&] {
    const double row = static_cast<double>(static_cast<std::int64_t>(clock.rest)) * rowsPerPart;
    const auto whole = static_cast<std::int32_t>(row);
    const f32x4 sum = betweenRows(samples + first, rows + std::ptrdiff_t{whole} * taps, taps,
                                  static_cast<float>(row - whole));
    first += clock.advance();
    return sum;
  };
  std::int32_t made = 0;
  // Four outputs before the window of the last, which may lie beyond the end.
  const std::int64_t end = c.filled - c.taps - 4 * (static_cast<std::int64_t>(clock.wholeStep) + 1);
  for (; room - made >= 4 && first < end; made += 4) {
    const f32x4 a0 = lanes(), a1 = lanes(), a2 = lanes(), a3 = lanes();
    store4(dst + made, sumLanesOfFour(a0, a1, a2, a3));
  }
  c.made += static_cast<std::uint64_t>(made);
  c.clock = clock;
  c.first = first;
  while (made < room && isDue(c)) {
    store(dst + made, sumLanes(lanes()));
    ++made;
    ++c.made;
    c.clock = clock;
    c.first = first;
  }
  return made;
}

void buildBehindGrid(Converter &c, const Settings &settings, const Shape &shape) {
  c.hasGrid = true;
  c.mostHeldBack = kMostHeldBack;
  c.ownRows = static_cast<std::int32_t>(roundUp16(shape.sums.floats()));
  c.keptInputs = static_cast<std::int32_t>(roundUp16(shape.inputs));
  c.gridUp = static_cast<std::int32_t>(shape.grid.up);
  c.gridDown = static_cast<std::int32_t>(shape.grid.down);
  designBetweenPlaces(shape, c.filter());
  // The grid begins on an input, as far ahead of the first as the first window does, or a little more.
  const std::int32_t ahead = c.taps / 2 - 1, begun = (ahead + c.gridUp - 1) / c.gridUp;
  c.first = begun * c.gridUp - ahead;
  Grid &grid = c.grid();
  placeGrid(grid, shape.grid, std::int64_t{begun} * c.gridDown);
  const float *rows = c.designed();
  if (shape.sums.count != 0) {
    // The places between which outputs lie need rows that are not among those of the design.
    design(settings, shape.cutOff, {c.gridUp, c.gridUp, shape.grid.taps}, grid.inputs());
    rows = grid.inputs();
  }
  setFilters(grid, shape.grid, rows);
}

}  // namespace

void build(Converter &c, std::int32_t tag, const Settings &settings, const Shape &shape) {
  c = Converter{};
  c.perSample = static_cast<std::int32_t>(shape.sums.perSample);
  c.rows = static_cast<std::int32_t>(shape.sums.count);
  c.taps = static_cast<std::int32_t>(shape.sums.taps);
  c.capacity = static_cast<std::int32_t>(shape.samples);
  c.designedRows = static_cast<std::int32_t>(shape.designed.count);
  c.designedTaps = static_cast<std::int32_t>(shape.designed.taps);
  c.tail = kNoInputEnd;
  c.endPart = 1;
  c.endParts = 1;
  c.gridUp = 1;
  c.gridDown = 1;
  design(settings, shape.cutOff, shape.designed, c.designed());
  if (shape.grid.exists()) {
    buildBehindGrid(c, settings, shape);
  } else {
    c.mostHeldBack = (c.capacity - c.taps) / 2;
    c.filled = c.taps / 2 - 1;
    std::fill_n(c.samples(), c.filled, 0.0F);
  }
  c.tag = tag;
}

void setRatio(Converter &c, double ratio) {
  // A ratio of at least 2^-8 and at most 2^8 is mantissa / 2^place with places from 44 to 60: everything
  // below is exact, but for the rest of a clock that changes its parts.
  const auto bits = std::bit_cast<std::uint64_t>(ratio);
  const std::uint64_t mantissa = (bits & ((std::uint64_t{1} << 52) - 1)) | std::uint64_t{1} << 52;
  const auto place = static_cast<int>(52 + 1023) - static_cast<int>(bits >> 52);
  Clock &clock = c.clock;
  if (clock.rest != 0) {
    const double part = static_cast<double>(clock.rest) / static_cast<double>(clock.modulus);
    clock.rest = std::min(static_cast<std::uint64_t>(part * static_cast<double>(mantissa)), mantissa - 1);
  }
  // The grid of a converter of any ratio has a power of two of places in an input period.
  const int gridPlace = place + std::countr_zero(static_cast<std::uint32_t>(c.gridUp)) -
                        std::countr_zero(static_cast<std::uint32_t>(c.gridDown));
  c.outputPeriod = std::uint64_t{1} << gridPlace;
  clock.modulus = mantissa;
  clock.wholeStep = c.outputPeriod / mantissa;
  clock.restStep = c.outputPeriod % mantissa;
  // Less by two places, so that rounding does not lead behind the last row.
  c.rowsPerPart = c.perSample / static_cast<double>(mantissa) * (1 - 0x1p-51);
  c.ratio = ratio;
}

std::int32_t makeRoom(Converter &c, std::int32_t wanted) {
  const std::int32_t kept = c.filled - c.first;
  const std::int32_t free = c.capacity - c.filled;
  // Not more is moved than was dropped since the last time, unless the buffer is full.
  if (free < wanted && (c.first >= kept || free == 0)) {
    orvsMove_32f(c.samples() + c.first, c.samples(), kept);
    c.first = 0;
    c.filled = kept;
  }
  return c.capacity - c.filled;
}

void takeBlock(Converter &c, std::int32_t wanted) {
  Grid &grid = c.grid();
  const bool keeps = c.keptInputs > 0;
  if (c.capacity - c.filled < grid.outputs()) {
    // Whole periods of the grid, so that the first sample stays on an input.
    const std::int32_t dropped = c.first / c.gridUp * c.gridUp;
    if (keeps) orvsMove_32f(inputAt(c, dropped), c.inputs(), inputsIn(c, c.filled - dropped));
    orvsMove_32f(c.samples() + dropped, c.samples(), c.filled - dropped);
    c.first -= dropped;
    c.filled -= dropped;
  }
  if (keeps) copyInputs(grid.inputs() + grid.half, inputAt(c, c.filled), grid.down * grid.steps);
  grid.makeBlock(c.samples() + c.filled);
  c.filled += std::min(wanted, grid.outputs());
}

void setEnd(Converter &c) {
  if (!c.hasGrid) {
    c.tail = c.taps / 2;
    return;
  }
  // Places from the first of the next block on.
  const Grid &grid = c.grid();
  const std::int64_t places = std::int64_t{grid.filled - grid.half} * c.gridUp;
  const auto rest = static_cast<std::int32_t>(places % c.gridDown);
  c.tail = static_cast<std::int32_t>(places / c.gridDown) + (rest > 0 ? 1 : 0) + c.taps / 2;
  if (rest > 0) {
    c.endPart = rest;
    c.endParts = c.gridDown;
  }
}

void takeTail(Converter &c) {
  std::int32_t now;
  if (c.hasGrid) {
    Grid &grid = c.grid();
    std::fill_n(grid.inputs() + grid.filled, grid.room(), 0.0F);
    grid.filled += grid.room();
    now = std::min(c.tail, grid.outputs());
    takeBlock(c, now);
  } else {
    now = std::min(c.tail, makeRoom(c, c.tail));
    std::fill_n(c.samples() + c.filled, now, 0.0F);
    c.filled += now;
  }
  c.tail -= now;
}

std::int32_t produceFixed(Converter &c, float *dst, std::int32_t room, bool moreToCome) {
  if (c.clock.isSampleBySample()) return passThrough(c, dst, room);
  const float *samples = c.samples();
  Clock &clock = c.clock;
  std::int32_t made = 0;

  const std::int64_t rows = c.rows;
  const std::int64_t period =
      static_cast<std::int64_t>(clock.wholeStep) * rows + static_cast<std::int64_t>(clock.restStep);
  for (; room - made >= 4 * rows && c.windows() > 4 * period; made += 4 * c.rows) {
    if (c.taps == 20)
      wholePeriods<4, 20>(c, dst + made, period);
    else
      wholePeriods<4>(c, dst + made, period);
  }
  // With more samples in the buffer the rest of them will be taken four at a time too.
  if (moreToCome && room - made >= 4 * rows && 4 * period <= c.mostHeldBack) return made;
  for (; room - made >= 2 * rows && c.windows() > 2 * period; made += 2 * c.rows)
    wholePeriods<2>(c, dst + made, period);

  while (made < room && isDue(c)) {
    const float *x = samples + c.first, *row = rowAt(c);
    c.first += clock.advance();
    if (made + 1 < room && isDue(c)) {
      const Two outputs = twoOutputs(x, row, samples + c.first, rowAt(c), c.taps);
      store(dst + made, outputs.first);
      store(dst + made + 1, outputs.second);
      c.first += clock.advance();
      made += 2;
    } else {
      store(dst + made, twoOutputs(x, row, x, row, c.taps).first);
      ++made;
    }
  }
  return made;
}

std::int32_t produceFree(Converter &c, float *dst, std::int32_t room, bool /*moreToCome*/) {
  if (c.keptInputs > 0 && c.ratio == 1 && standsOnInput(c)) return keptInputs(c, dst, room);
  if (c.clock.isSampleBySample()) {
    const std::int32_t made = passThrough(c, dst, room);
    c.made += static_cast<std::uint64_t>(made);
    return made;
  }
  // What filters between places have most often.
  if (c.taps == 20) return sumsBetweenRows<20>(c, dst, room);
  if (c.taps == 16) return sumsBetweenRows<16>(c, dst, room);
  return sumsBetweenRows<0>(c, dst, room);
}

}  // namespace orv::resample
