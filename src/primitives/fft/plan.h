// How the tables lie in an object, and what transforms the lengths that are too long for real.h.

#ifndef ORV_PRIMITIVES_FFT_PLAN_H
#define ORV_PRIMITIVES_FFT_PLAN_H

#include "primitives/fft/engine.h"
#include "primitives/fft/real.h"

namespace orv::fft {

constexpr bool isLarge(std::int32_t order) { return order > kMaxRealOrder; }

constexpr std::int32_t kMaxLaneOrder = 9;

// log2 of H and B, see large.cpp.
struct Split {
  std::int32_t side, middle;
};
constexpr Split splitOf(std::int32_t complexOrder) {
  const std::int32_t side = std::min(complexOrder / 2, kMaxLaneOrder);
  return {side, complexOrder - 2 * side};
}

// Entries of each table, in the order in which they lie in the object. The second of a kind is that of row 0
// of a real transform, and that of the middle digit of a large one.
struct Tables {
  std::int64_t indices[2];  // of 16 bits
  std::int64_t lanes[2];    // floats
  std::int64_t steps[2];
  std::int64_t bins;

  constexpr std::int64_t bytes() const {
    std::int64_t sum = up32(2 * (indices[0] + indices[1])) + up32(4 * bins);
    for (int i = 0; i < 2; ++i) sum += up32(4 * lanes[i]) + up32(4 * steps[i]);
    return sum;
  }
};

constexpr Tables tablesOf(std::int32_t order) {
  if (isLarge(order)) {
    const Split split = splitOf(order - 1);
    const std::int64_t points = std::int64_t{1} << (order - 1);
    return {{std::int64_t{1} << split.side, std::int64_t{1} << split.middle},
            {laneTwiddleFloats(split.side), laneTwiddleFloats(split.middle)},
            {2 * points, std::int64_t{2} << (split.side + split.middle)},
            points};
  }
  Tables tables = {};
  for (int i = 0; order >= kMinRealOrder; ++i, order -= 4) {
    tables.indices[i] = realBlocks(order);
    tables.lanes[i] = laneTwiddleFloats(order - 4);
    tables.steps[i] = realStepFloats(order);
  }
  return tables;
}

constexpr bool tablesFit() {
  for (std::int32_t order = kMaxSmallOrder + 1; order <= kMaxOrder; ++order)
    if (tablesOf(order).bytes() > tableSizes(order).spec) return false;
  return true;
}
static_assert(tablesFit());

// The tables of one object; it names them
//   bitRevTable           indices, of both kinds
//   radix4Twiddles        lanes[0]
//   blockTwiddles         lanes[1]
//   realRecTwiddles       bins, for both directions, so that ccsRecTwiddles is the same
//   levelStepTwiddles[i]  steps[i]
struct TablePointers {
  std::uint16_t *indices[2];
  float *lanes[2];
  float *steps[2];
  float *bins;
};

void buildLargeTables(const TablePointers &tables, std::int32_t order, const UnitCircle &circle);

// Bins 1 to N/2 - 1 go to bin1[], times factor, by way of dst[0 .. N-1], in or close behind which bin1 lies.
// src and dst may be the same array.
Ends largeForward(const OrvRealFftState32f &spec, const float *src, float *dst, float *bin1, float factor,
                  float *work);
// The bins are packed, and may be in dst.
void largeInverse(const OrvRealFftState32f &spec, const float *packed, float *dst, float factor, float *work);
// The inverse transform of the power spectrum of src[] and the zeros that follow it: its first `count`
// values, at the head of array[0 .. N-1], with the object's scale of the inverse.
void largeLags(const OrvRealFftState32f &spec, const float *src, std::size_t srcLen, float *array,
               std::size_t count, float *work);

}  // namespace orv::fft

#endif
