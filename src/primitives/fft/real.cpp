#include "primitives/fft/real.h"

#include <cstring>

#include "primitives/fft/small.h"
#include "primitives/fft/state.h"
#include "primitives/memory.h"

namespace orv::fft {
namespace {

using simd::f32x4;

constexpr std::size_t kRows = 8;  // complex rows

constexpr void fillSteps(float *steps, std::int32_t order, const UnitCircle &circle) {
  for (std::int64_t column = 0; column < std::int64_t{1} << (order - 4); column += 4)
    for (std::int64_t k = 1; k <= std::int64_t{kRows}; ++k, steps += kLaneFloats)
      for (std::int64_t i = 0; i < 4; ++i) {
        const Twiddle w = circle.at((column + i) * k, order);
        steps[i] = w.re;
        steps[i + 4] = w.im;
      }
}

struct ShortestSteps {
  float values[std::size_t{1} << kMinRealOrder] = {};
};
constexpr ShortestSteps shortestSteps() {
  ShortestSteps steps;
  fillSteps(steps.values, kMinRealOrder, UnitCircle(fft_fix_twiddle_table_32f, kMaxTableOrder));
  return steps;
}
alignas(32) constexpr ShortestSteps kShortestSteps = shortestSteps();

// a + i b turned by the angle with this cosine and sine.
inline Complex4 turned(f32x4 a, f32x4 b, float cosine, float sine) {
  return {a * cosine - b * sine, a * sine + b * cosine};
}

// Sixteen values, four columns side by side.
struct Sixteen {
  f32x4 y0, y8;
  Complex4 conj1, conj2, y3, y4, conj5, y6, y7;  // conj: the conjugate
};

inline Sixteen dft16(const float *x, const float *upper, std::size_t step) {
  constexpr float cos1 = 0.92387953F, sin1 = 0.38268343F, half = 0.70710677F;
  f32x4 s[8], d[8];
#pragma GCC unroll 8
  for (std::size_t j = 0; j < 8; ++j) {
    const f32x4 a = simd::load4(x + j * step), b = simd::load4(upper + j * step);
    s[j] = a + b;
    d[j] = a - b;
  }
  Sixteen y;
  // 1, 5, 9 and 13: a transform of four points, (d[j] - i d[j + 4]) W^j
  {
    const Complex4 u0 = {d[0], d[4]};
    const Complex4 u1 = turned(d[1], d[5], cos1, sin1);
    const Complex4 u2 = {(d[2] - d[6]) * half, (d[2] + d[6]) * half};
    const Complex4 u3 = turned(d[3], d[7], sin1, cos1);
    const Complex4 sum02 = u0 + u2, diff02 = u0 - u2, sum13 = u1 + u3, diff13 = u1 - u3;
    y.conj1 = sum02 + sum13;
    y.y7 = sum02 - sum13;
    y.conj5 = plusI(diff02, diff13);
    y.y3 = minusI(diff02, diff13);
  }
  const RealEight even = dft8(s);
  y.y0 = even.y0;
  y.conj2 = even.conj1;
  y.y4 = even.y2;
  y.y6 = even.y3;
  y.y8 = even.y4;
  return y;
}

void columns(const float *src, std::size_t count, const float *steps, float *row0, float *buffer) {
  float *second = buffer + count * kLaneFloats;
  for (std::size_t n = 0; n < count; n += 4, steps += kRows * kLaneFloats) {
    const Sixteen y = dft16(src + n, src + 8 * count + n, count);
    simd::storeAligned4(row0 + n, y.y0);
    Complex4 a = conjugateTimes(y.conj1, loadLanes(steps)), b = conjugateTimes(y.conj2, loadLanes(steps + 8)),
             c = y.y3 * loadLanes(steps + 16), d = y.y4 * loadLanes(steps + 24);
    transpose(a, b, c, d);
    float *first = buffer + n * kLaneFloats;
    storeLanes(first, a);
    storeLanes(first + 8, b);
    storeLanes(first + 16, c);
    storeLanes(first + 24, d);
    a = conjugateTimes(y.conj5, loadLanes(steps + 32));
    b = y.y6 * loadLanes(steps + 40);
    c = y.y7 * loadLanes(steps + 48);
    d = loadLanes(steps + 56) * y.y8;
    transpose(a, b, c, d);
    storeLanes(second + n * kLaneFloats, a);
    storeLanes(second + n * kLaneFloats + 8, b);
    storeLanes(second + n * kLaneFloats + 16, c);
    storeLanes(second + n * kLaneFloats + 24, d);
  }
}

// Results of four rows as bins, one every sixteenth; those of the upper half as the conjugates that mirror
// them.
template <bool scaled>
struct Bins {
  f32x4 factor;

  void below(float *p, Complex4 y) const { storeInterleaved(p, scaled ? y * factor : y); }
  void above(float *p, Complex4 y) const { storeMirrored(p, scaled ? y * factor : y); }
};

template <int radixOrder, bool scaled>
void lastPass(float *data, std::size_t rowLen, const std::uint16_t *blocks, float *bin1, Bins<scaled> bins) {
  const std::size_t blockCount = rowLen >> radixOrder;
  const std::size_t apart = 32 * blockCount;  // floats between the results of a butterfly
  for (std::size_t row = 0; row < kRows; row += 4)
    for (std::size_t block = 0; block < blockCount; ++block, data += std::size_t{kLaneFloats} << radixOrder) {
      float *low = bin1 + 32 * std::size_t{blocks[block]} + 2 * row;
      float *high = bin1 + 32 * (blockCount - blocks[block]) - 2 * row - 10;  // of the last result
      if constexpr (radixOrder == 3) {
        dft8(data, kLaneFloats, [&](std::size_t k, Complex4 y) {
          if (k < 4)
            bins.below(low + k * apart, y);
          else
            bins.above(high + (7 - k) * apart, y);
        });
      } else {
        const Quad q = dft4(loadLanes(data), loadLanes(data + 8), loadLanes(data + 16), loadLanes(data + 24));
        bins.below(low, q.y[0]);
        bins.below(low + apart, q.y[1]);
        bins.above(high + apart, q.y[2]);
        bins.above(high, q.y[3]);
      }
    }
}

template <bool scaled>
void rows(std::int32_t order, const RealTables &tables, float *buffer, float *bin1, float factor) {
  const std::int32_t rowOrder = order - 4;
  const std::size_t rowLen = std::size_t{1} << rowOrder;
  transformLanesButLast(buffer, rowOrder, 2, tables.laneTwiddles);
  const Bins<scaled> bins = {simd::splat4(factor)};
  if (lastRadixOrder(rowOrder) == 3)
    lastPass<3>(buffer, rowLen, tables.blocks, bin1, bins);
  else
    lastPass<2>(buffer, rowLen, tables.blocks, bin1, bins);
}

}  // namespace

RealTables buildRealTables(float *steps, float *laneTwiddles, std::uint16_t *blocks, std::int32_t order,
                           const UnitCircle &circle) {
  const std::int32_t rowOrder = order - 4;
  const std::int32_t radix = 1 << lastRadixOrder(rowOrder);
  buildLaneTwiddles(laneTwiddles, rowOrder, circle);
  for (std::int32_t k = 0; k < 1 << rowOrder; ++k)
    if (const std::int32_t position = positionOf(k, rowOrder); position % radix == 0)
      blocks[position / radix] = static_cast<std::uint16_t>(k);
  if (order > kMinRealOrder) fillSteps(steps, order, circle);
  return {order > kMinRealOrder ? steps : kShortestSteps.values, laneTwiddles, blocks};
}

Ends realTransform(std::int32_t order, const RealTables *tables, const float *src, float *bin1, float factor,
                   float *buffer) {
  constexpr std::size_t kRowLen = kMaxRealLen / 16;
  alignas(16) float row0[kRowLen], spectrum[kRowLen];
  const std::int32_t rowOrder = order - 4;
  const std::size_t rowLen = std::size_t{1} << rowOrder;
  columns(src, rowLen, tables[0].steps, row0, buffer);
  if (factor == 1.0F)
    rows<false>(order, tables[0], buffer, bin1, factor);
  else
    rows<true>(order, tables[0], buffer, bin1, factor);
  if (rowOrder < kMinRealOrder) {
    // Small transforms store one value at a time, and loads of more than that would have to wait for them.
    smallTransform(rowOrder, row0, spectrum);
    for (std::size_t k = 1; k < rowLen / 2; ++k) {
      store(bin1 + 2 * (16 * k - 1), spectrum[2 * k] * factor);
      store(bin1 + 2 * (16 * k - 1) + 1, spectrum[2 * k + 1] * factor);
    }
    return {spectrum[0] * factor, spectrum[1] * factor};
  }
  const Ends ends = realTransform(rowOrder, tables + 1, row0, spectrum + 2, factor, buffer);
  for (std::size_t k = 1; k < rowLen / 2; ++k)
    std::memcpy(bin1 + 2 * (16 * k - 1), spectrum + 2 * k, 2 * sizeof(float));
  return ends;
}

}  // namespace orv::fft
