// What a converter is built from: the caller's settings, the sizes that follow from them, and the filter.

#ifndef ORV_RESAMPLE_DESIGN_H
#define ORV_RESAMPLE_DESIGN_H

#include <cstdint>

#include "orvsr/types.h"
#include "resample/grid.h"

namespace orv::resample {

constexpr double kMinRatio = 1.0 / 256;
constexpr double kMaxRatio = 256.0;

// Samples behind a grid that may wait in the buffer until the fast loop can take them, in a call that has
// more.
constexpr std::int64_t kMostHeldBack = 4096;

struct Settings {
  std::int32_t halfLen;  // zero crossings of the sinc on either side
  double rollOff;        // where the sinc cuts off, of the lower of the two Nyquist frequencies
  double attenuation;    // in dB
};

// The order of the checks of lengths and values; those of the rates or of the ratio stand between the two.
OrvStatus checkLength(const Settings &settings);
OrvStatus checkValues(const Settings &settings);

// Subfilters. Row p, of an even number of taps, gives the signal at p / perSample sampling periods behind the
// sample that its tap taps / 2 - 1 meets.
struct Rows {
  std::int64_t perSample;  // rows in a period
  std::int64_t count;      // of those that are kept: one more than that if rows are interpolated
  std::int64_t taps;       // of a row

  std::int64_t floats() const { return count * taps; }
};

// The parts of a converter. Short filters are summed over the inputs themselves. Long ones are carried out on
// a grid, on which outputs stand or between whose places a second, short filter finds them.
struct Shape {
  Rows designed;         // the filter itself
  Rows sums;             // what is summed over the buffer of samples: `designed`, or the second filter
  GridShape grid;        // what is put into that buffer, if not the inputs
  Settings between;      // of that second filter
  std::int64_t samples;  // of the buffer, which holds the windows of many outputs
  std::int64_t inputs;   // of the buffer of those inputs that lie on the grid; 0 where they are not needed
  double cutOff;         // the lower Nyquist frequency, of the input's

  std::int64_t bytes() const;  // of the whole object, at any start
};

// The rates are up : down in lowest terms; the ratio of the outputs to the inputs is at least minRatio.
Shape fixedShape(const Settings &settings, std::int64_t up, std::int64_t down);
Shape freeShape(const Settings &settings, double minRatio);

// Fills rows.count rows of taps; a single row without a cut-off is a unit impulse.
void design(const Settings &settings, double cutOff, const Rows &rows, float *to);
// Of the second filter, which leaves what it is given as it is.
void designBetweenPlaces(const Shape &shape, float *to);

}  // namespace orv::resample

#endif
