// What a converter is built from: the caller's settings, the sizes that follow from them, and the filter.

#ifndef ORV_RESAMPLE_DESIGN_H
#define ORV_RESAMPLE_DESIGN_H

#include <cstdint>

#include "orvsr/types.h"

namespace orv::resample {

constexpr double kMinRatio = 1.0 / 256;
constexpr double kMaxRatio = 256.0;

struct Settings {
  std::int32_t halfLen;  // zero crossings of the sinc on either side
  double rollOff;        // where the sinc cuts off, of the lower of the two Nyquist frequencies
  double attenuation;    // in dB
};

// The order of the checks of lengths and values; those of the rates or of the ratio stand between the two.
OrvStatus checkLength(const Settings &settings);
OrvStatus checkValues(const Settings &settings);

// The subfilters of a converter. Row p, of an even number of taps, gives the signal at p / perSample input
// periods behind the sample that its tap taps / 2 - 1 meets.
struct Shape {
  std::int64_t perSample;  // rows in an input period
  std::int64_t rows;       // of those that are kept: one more if rows are interpolated
  std::int64_t taps;       // of a row, a multiple of 8
  std::int64_t samples;    // of the buffer of inputs, which holds the windows of many outputs
  double cutOff;           // the lower Nyquist frequency, of the input's

  // Equal rates, of which the one row is a unit impulse.
  bool passesThrough() const { return rows == 1 && cutOff == 1; }
  std::int64_t bytes() const;  // of the whole object, at any start
};

// The rates are up : down in lowest terms; the ratio of the outputs to the inputs is at least minRatio.
Shape fixedShape(const Settings &settings, std::int64_t up, std::int64_t down);
Shape freeShape(const Settings &settings, double minRatio);

// Fills shape.rows rows of shape.taps taps.
void design(const Settings &settings, const Shape &shape, float *rows);

}  // namespace orv::resample

#endif
