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
  const Eight e = dft8([&](std::size_t j) { return loadLanes(p + j * step); });
  storeLanes(p, e.even.y[0]);
  for (int k = 1; k < 8; ++k) {
    const Complex4 y = k % 2 == 0 ? e.even.y[k / 2] : e.odd.y[k / 2];
    storeLanes(p + static_cast<std::size_t>(k) * step, rotated ? y * loadLanes(w + (k - 1) * 8) : y);
  }
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

template <int radix>
void lastPass(float *data, const float *end) {
  for (; data != end; data += radix * kLaneFloats) butterfly<radix, false>(data, kLaneFloats, nullptr);
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

void transformLanes(float *data, std::int32_t order, std::int32_t count, const float *twiddles) {
  const float *end = data + (static_cast<std::size_t>(count) << order) * kLaneFloats;
  for (std::int32_t radixOrder; order > (radixOrder = firstRadixOrder(order)); order -= radixOrder) {
    const std::size_t apart = std::size_t{1} << (order - radixOrder);
    if (radixOrder == 3)
      rotatedPass<8>(data, end, apart, twiddles);
    else
      rotatedPass<4>(data, end, apart, twiddles);
    twiddles += (apart - 1) * ((std::size_t{1} << radixOrder) - 1) * kLaneFloats;
  }
  if (order == 3) {
    lastPass<8>(data, end);
  } else if (order == 2) {
    lastPass<4>(data, end);
  } else {
    for (; data != end; data += 2 * kLaneFloats) {
      const Complex4 a = loadLanes(data), b = loadLanes(data + kLaneFloats);
      storeLanes(data, a + b);
      storeLanes(data + kLaneFloats, a - b);
    }
  }
}

}  // namespace orv::fft
