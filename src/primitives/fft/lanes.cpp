#include "primitives/fft/lanes.h"

namespace orv::fft {
namespace {

// One butterfly of a pass; its points stand `step` floats apart.
template <bool rotated>
inline void butterfly4(float *p, std::size_t step, const float *w) {
  const Quad q = dft4(loadLanes(p), loadLanes(p + step), loadLanes(p + 2 * step), loadLanes(p + 3 * step));
  storeLanes(p, q.y[0]);
  for (int k = 1; k < 4; ++k)
    storeLanes(p + static_cast<std::size_t>(k) * step,
               rotated ? q.y[k] * loadLanes(w + (k - 1) * 8) : q.y[k]);
}

template <bool rotated>
inline void butterfly8(float *p, std::size_t step, const float *w) {
  dft8(p, step, [&](std::size_t k, Complex4 y) {
    storeLanes(p + k * step, rotated && k > 0 ? y * loadLanes(w + (k - 1) * kLaneFloats) : y);
  });
}

template <int radix, bool rotated>
inline void butterfly(float *p, std::size_t step, const float *w) {
  if constexpr (radix == 8)
    butterfly8<rotated>(p, step, w);
  else
    butterfly4<rotated>(p, step, w);
}

// The butterflies of all blocks; `quarter` elements lie between the points of one.
template <int radix>
void rotatedPass(float *data, const float *end, std::size_t apart, const float *twiddles) {
  const std::size_t step = apart * kLaneFloats;
  for (; data != end; data += radix * step) {
    butterfly<radix, false>(data, step, nullptr);
    const float *w = twiddles;
    for (float *p = data + kLaneFloats; p != data + step; p += kLaneFloats, w += (radix - 1) * kLaneFloats)
      butterfly<radix, true>(p, step, w);
  }
}

// The first pass of `count` transforms, of this radix.
void firstPass(float *data, const float *end, std::int32_t radixOrder, std::size_t apart,
               const float *twiddles) {
  if (radixOrder == 3)
    rotatedPass<8>(data, end, apart, twiddles);
  else
    rotatedPass<4>(data, end, apart, twiddles);
}

}  // namespace

void buildLaneTwiddles(float *table, std::int32_t order, const UnitCircle &circle) {
  for (std::int32_t radixOrder; order > (radixOrder = firstRadixOrder(order)); order -= radixOrder)
    for (std::int64_t n = 1; n < std::int64_t{1} << (order - radixOrder); ++n)
      for (std::int64_t k = 1; k < 1 << radixOrder; ++k, table += kLaneFloats) {
        const Twiddle w = circle.at(n * k, order);
        storeLanes(table, {simd::splat4(w.re), simd::splat4(w.im)});
      }
}

void transformLanesButLast(float *data, std::int32_t order, std::int32_t count, const float *twiddles) {
  const float *end = data + (static_cast<std::size_t>(count) << order) * kLaneFloats;
  for (std::int32_t radixOrder; order > (radixOrder = firstRadixOrder(order)); order -= radixOrder) {
    const std::size_t apart = std::size_t{1} << (order - radixOrder);
    firstPass(data, end, radixOrder, apart, twiddles);
    twiddles += (apart - 1) * ((std::size_t{1} << radixOrder) - 1) * kLaneFloats;
  }
}

void firstOfLanes(float *data, std::int32_t order, const float *twiddles) {
  const std::int32_t radixOrder = firstRadixOrder(order);
  const std::size_t apart = std::size_t{1} << (order - radixOrder);
  const float *end = data + (kLaneFloats << order);
  firstPass(data, end, radixOrder, apart, twiddles);
  for (; data != end; data += apart * kLaneFloats) {
    Complex4 sums[4];
    for (std::size_t i = 0; i < 4; ++i) sums[i] = loadLanes(data + i * kLaneFloats);
    for (std::size_t n = 4; n < apart; n += 4)
      for (std::size_t i = 0; i < 4; ++i) sums[i] = sums[i] + loadLanes(data + (n + i) * kLaneFloats);
    storeLanes(data, (sums[0] + sums[1]) + (sums[2] + sums[3]));
  }
}

void transformLanes(float *data, std::int32_t order, std::int32_t count, const float *twiddles) {
  transformLanesButLast(data, order, count, twiddles);
  const float *end = data + (static_cast<std::size_t>(count) << order) * kLaneFloats;
  switch (lastRadixOrder(order)) {
    case 3:
      for (; data != end; data += 8 * kLaneFloats) butterfly8<false>(data, kLaneFloats, nullptr);
      break;
    case 2:
      for (; data != end; data += 4 * kLaneFloats) butterfly4<false>(data, kLaneFloats, nullptr);
      break;
    default:
      for (; data != end; data += 2 * kLaneFloats) {
        const Complex4 a = loadLanes(data), b = loadLanes(data + kLaneFloats);
        storeLanes(data, a + b);
        storeLanes(data + kLaneFloats, a - b);
      }
  }
}

}  // namespace orv::fft
