// Real transforms of 64 to 8192 values.
//
// The values are a matrix of 16 rows. Its columns are transformed as what they are, real: sixteen values give
// results 0 to 8, of which 0 and 8 are real, and the rest follows by symmetry. Multiplied by W_N^(column k),
// results 1 to 8 make eight complex rows, which are transformed in two groups of four lanes. Result r of row
// k is bin 16 r + k or, where that lies in the upper half, the conjugate of the bin that mirrors it. Row 0
// stays real; its transform gives every sixteenth bin. (Row 8 would need only half of its results.)

#ifndef ORV_PRIMITIVES_FFT_REAL_H
#define ORV_PRIMITIVES_FFT_REAL_H

#include "primitives/fft/engine.h"
#include "primitives/fft/lanes.h"

namespace orv::fft {

constexpr std::int32_t kMinRealOrder = 6;
constexpr std::int32_t kMaxRealOrder = 13;
constexpr std::size_t kMaxRealLen = std::size_t{1} << kMaxRealOrder;

// Of one length.
struct RealTables {
  const float *steps;           // W^(column k), k = 1..8, for four columns at a time
  const float *laneTwiddles;    // of the rows
  const std::uint16_t *blocks;  // the first result of every butterfly of the rows' last pass
};

constexpr std::int64_t realStepFloats(std::int32_t order) {
  // The shortest length has a constant table.
  return order == kMinRealOrder ? 0 : std::int64_t{1} << order;
}
constexpr std::int64_t realBlocks(std::int32_t order) {
  return std::int64_t{1} << (order - 4 - lastRadixOrder(order - 4));
}
RealTables buildRealTables(float *steps, float *laneTwiddles, std::uint16_t *blocks, std::int32_t order,
                           const UnitCircle &circle);

// Bins 1 to N/2 - 1 go to bin1[], times factor. tables[1] is for row 0 where that has 64 values or more.
// `buffer` has N floats at a 16-byte boundary; src and bin1 may be the same array.
Ends realTransform(std::int32_t order, const RealTables *tables, const float *src, float *bin1, float factor,
                   float *buffer);

}  // namespace orv::fft

#endif
