// How the complex transform behind a real one is taken apart, and which tables that takes.
//
// N real values are N/2 = M complex ones.
//   M <= 2048: eight columns' sums at once, x[n + (M/8) j], j = 0..7, then eight transforms of M/8 points in
//   two
//     groups of four lanes, all in one buffer on the stack.
//   above: M = H B H points with H = 2^side; see large.cpp.
// In both, the transforms of four lanes have a length of at most 2^kMaxLaneOrder.

#ifndef ORV_PRIMITIVES_FFT_PLAN_H
#define ORV_PRIMITIVES_FFT_PLAN_H

#include "primitives/fft/lanes.h"
#include "primitives/fft/state.h"

namespace orv::fft {

constexpr std::int32_t kMaxBufferedOrder = 11;  // complex order up to which the stack holds everything
constexpr std::int32_t kMaxLaneOrder = 9;

constexpr bool isLarge(std::int32_t complexOrder) { return complexOrder > kMaxBufferedOrder; }

struct Split {
  std::int32_t side, middle;  // log2 of H and B
};

// One column group of H elements in four lanes fits the work buffer.
constexpr Split splitOf(std::int32_t complexOrder) {
  std::int32_t side = std::min(complexOrder / 2, kMaxLaneOrder);
  if (blockOrder(complexOrder) != 0) side = std::min(side, blockOrder(complexOrder));
  return {side, complexOrder - 2 * side};
}

// Floats of each table. A table of W^(n k) that is read once in order is a step table, as are the factors
// that join bins k and M - k.
struct Tables {
  std::int64_t positions;  // 16-bit entries; those of the middle transforms behind those of the sides
  std::int64_t lanes, middleLanes;
  std::int64_t step, middleStep;
  std::int64_t bins;

  constexpr std::int64_t bytes() const {
    return up32(2 * positions) + up32(4 * lanes) + up32(4 * middleLanes) + up32(4 * step) +
           up32(4 * middleStep) + up32(4 * bins);
  }
};

constexpr Tables tablesOf(std::int32_t order) {
  const std::int32_t complexOrder = order - 1;
  const std::int64_t points = std::int64_t{1} << complexOrder;
  if (!isLarge(complexOrder)) {
    const std::int32_t columns = complexOrder - 3;
    // The shortest transform has no room for its step table, which is constant.
    const std::int64_t step = order == 6 ? 0 : (std::int64_t{7} << columns) * 2;
    return {std::int64_t{1} << columns, laneTwiddleFloats(columns), 0, step, 0, points};
  }
  const Split split = splitOf(complexOrder);
  return {(std::int64_t{1} << split.side) + (std::int64_t{1} << split.middle),
          laneTwiddleFloats(split.side),
          laneTwiddleFloats(split.middle),
          2 * points,
          2LL << (split.side + split.middle),
          points};
}

constexpr bool tablesFit() {
  for (std::int32_t order = kMaxSmallOrder + 1; order <= kMaxOrder; ++order)
    if (tablesOf(order).bytes() > tableSizes(order).spec) return false;
  return true;
}
static_assert(tablesFit());

// Transforms M complex points, in natural order before and after, in place or not.
void largeTransform(const OrvRealFftState32f &spec, const float *src, float *dst, float *work);
// The same in place, and then each result times `factor`, its parts exchanged.
void largeTransformExchanged(const OrvRealFftState32f &spec, float *data, float factor, float *work);

// Writes the step tables of a large transform.
void buildLargeSteps(Split split, float *steps, float *middleSteps, const UnitCircle &circle);

}  // namespace orv::fft

#endif
