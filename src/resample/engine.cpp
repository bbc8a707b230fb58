#include "resample/engine.h"

#include <bit>

#include "primitives/simd.h"

namespace orv::resample {
namespace {

using namespace simd;

// Every output is a sum in eight lanes, tap k in lane k mod 8, lanes i and i + 4 added first, whichever of
// these loops makes it: how many outputs are made together depends on how calls are cut, and must not be
// seen.

// Four outputs of one row, whose windows begin `step` samples after one another: the row is loaded once.
f32x4 fourOfOneRow(const float *x, std::ptrdiff_t step, const float *row, std::int32_t taps) {
  const float *x1 = x + step, *x2 = x1 + step, *x3 = x2 + step;
  f32x4 a0 = splat4(0.0F), a1 = a0, b0 = a0, b1 = a0, c0 = a0, c1 = a0, d0 = a0, d1 = a0;
  for (std::int32_t k = 0; k < taps; k += 8) {
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
  return sumLanesOfFour(a0 + a1, b0 + b1, c0 + c1, d0 + d1);
}

struct Two {
  float first, second;
};

// Two outputs of rows of their own.
Two twoOutputs(const float *x, const float *row, const float *y, const float *rowY, std::int32_t taps) {
  f32x4 a0 = splat4(0.0F), a1 = a0, b0 = a0, b1 = a0;
  for (std::int32_t k = 0; k < taps; k += 8) {
    a0 = a0 + load4(x + k) * loadAligned4(row + k);
    b0 = b0 + load4(y + k) * loadAligned4(rowY + k);
    a1 = a1 + load4(x + k + 4) * loadAligned4(row + k + 4);
    b1 = b1 + load4(y + k + 4) * loadAligned4(rowY + k + 4);
  }
  return {sumLanes(a0 + a1), sumLanes(b0 + b1)};
}

// One window through a row and the next.
Two twoRows(const float *x, const float *row, std::int32_t taps) {
  const float *next = row + taps;
  f32x4 a0 = splat4(0.0F), a1 = a0, b0 = a0, b1 = a0;
  for (std::int32_t k = 0; k < taps; k += 8) {
    const f32x4 x0 = load4(x + k), x1 = load4(x + k + 4);
    a0 = a0 + x0 * loadAligned4(row + k);
    b0 = b0 + x0 * loadAligned4(next + k);
    a1 = a1 + x1 * loadAligned4(row + k + 4);
    b1 = b1 + x1 * loadAligned4(next + k + 4);
  }
  return {sumLanes(a0 + a1), sumLanes(b0 + b1)};
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

// Two or four periods of the clock: L rows, each of as many outputs.
template <int periods>
void wholePeriods(Converter &c, float *dst, std::ptrdiff_t period) {
  const float *samples = c.samples();
  std::ptrdiff_t first = c.first;
  for (std::ptrdiff_t i = 0; i < c.rows; ++i) {
    const float *x = samples + first, *row = rowAt(c);
    if constexpr (periods == 4) {
      float four[4];
      store4(four, fourOfOneRow(x, period, row, c.taps));
      for (std::ptrdiff_t j = 0; j < 4; ++j) store(dst + i + j * c.rows, four[j]);
    } else {
      const Two two = twoOutputs(x, row, x + period, row, c.taps);
      store(dst + i, two.first);
      store(dst + i + c.rows, two.second);
    }
    first += c.clock.advance();
  }
  c.first += static_cast<std::int32_t>(periods * period);
}

// Beyond the last input by so little that the product of the number of inputs and the ratio, as a double, is
// the number of outputs already made.
bool roundedAway(const Converter &c) {
  const int halfPlace = static_cast<int>(std::bit_width(c.made)) + std::countr_zero(c.outputPeriod) - 54;
  if (c.made == 0 || halfPlace < 0) return false;
  return c.clock.modulus - c.clock.rest <= std::uint64_t{1} << std::min(halfPlace, 63);
}

}  // namespace

void build(Converter &c, std::int32_t tag, const Settings &settings, const Shape &shape) {
  c = Converter{};
  c.perSample = static_cast<std::int32_t>(shape.perSample);
  c.rows = static_cast<std::int32_t>(shape.rows);
  c.taps = static_cast<std::int32_t>(shape.taps);
  c.capacity = static_cast<std::int32_t>(shape.samples);
  c.filled = c.taps / 2 - 1;
  c.tail = kNoInputEnd;
  design(settings, shape, c.filter());
  std::fill_n(c.samples(), c.filled, 0.0F);
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
  c.outputPeriod = std::uint64_t{1} << place;
  clock.modulus = mantissa;
  clock.wholeStep = c.outputPeriod / mantissa;
  clock.restStep = c.outputPeriod % mantissa;
  c.rowsPerPart = c.perSample / static_cast<double>(mantissa);
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

std::int32_t produceFixed(Converter &c, float *dst, std::int32_t room, bool moreToCome) {
  if (c.clock.isSampleBySample()) return passThrough(c, dst, room);
  const float *samples = c.samples();
  Clock &clock = c.clock;
  std::int32_t made = 0;

  const std::int64_t rows = c.rows;
  const std::int64_t period =
      static_cast<std::int64_t>(clock.wholeStep) * rows + static_cast<std::int64_t>(clock.restStep);
  for (; room - made >= 4 * rows && c.windows() > 4 * period; made += 4 * c.rows)
    wholePeriods<4>(c, dst + made, period);
  // With twice as many samples in the buffer the rest of them will be taken four at a time too.
  if (moreToCome && room - made >= 4 * rows && 8 * period <= c.capacity - c.taps) return made;
  for (; room - made >= 2 * rows && c.windows() > 2 * period; made += 2 * c.rows)
    wholePeriods<2>(c, dst + made, period);

  while (made < room && c.windows() > 0) {
    const float *x = samples + c.first, *row = rowAt(c);
    c.first += clock.advance();
    if (made + 1 < room && c.windows() > 0) {
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
  Clock &clock = c.clock;
  std::int32_t made = 0;
  if (clock.isSampleBySample()) {
    made = passThrough(c, dst, room);
    c.made += static_cast<std::uint64_t>(made);
    return made;
  }
  const float *samples = c.samples();
  for (; made < room && c.windows() > 0; ++made) {
    if (c.tail == 0 && c.windows() == 1 && roundedAway(c)) break;
    const double row = static_cast<double>(clock.rest) * c.rowsPerPart;
    const std::int32_t whole = std::min(static_cast<std::int32_t>(row), c.perSample - 1);
    const auto part = static_cast<float>(row - whole);
    const Two rows = twoRows(samples + c.first, c.filter() + std::ptrdiff_t{whole} * c.taps, c.taps);
    store(dst + made, rows.first + part * (rows.second - rows.first));
    c.first += clock.advance();
    ++c.made;
  }
  return made;
}

}  // namespace orv::resample
