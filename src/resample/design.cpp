#include "resample/design.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numeric>

#include "resample/engine.h"

namespace orv::resample {
namespace {

constexpr double kPi = 3.141592653589793;

// Rows are kept in single precision; interpolating between more of them than this gains nothing.
constexpr double kMostRows = 4096;
constexpr double kLeastRows = 16;

// Half of the window, rounded up so that rows are whole groups of eight taps.
std::int64_t tapsOf(std::int64_t half) { return 2 * ((half + 3) / 4 * 4); }

// Room for a window and as many more samples, so that what is moved to the front is less than what came in;
// for twice the four periods of the clock that the fast loop takes at a time, where that is not much.
std::int64_t samplesOf(std::int64_t taps, std::int64_t period) {
  return taps + std::max(taps, std::clamp<std::int64_t>(8 * period, 1024, 8192));
}

// Behind a grid: a block of it, beside what is left of the block before.
std::int64_t samplesOf(const GridShape &grid, std::int64_t taps, std::int64_t period) {
  const std::int64_t heldBack = 4 * period <= kMostHeldBack ? 4 * period : 0;
  return (taps + heldBack + grid.up + grid.up * grid.steps() + 15) / 16 * 16;
}

// Where transforms take less time than sums: taps of a filter whose outputs stand on the grid, and of one
// whose outputs stand between its places; places and inputs in a period of the grid.
constexpr std::int64_t kLeastTaps = 48;
constexpr std::int64_t kLeastTapsBetween = 120;
constexpr std::int64_t kLeastFreeTapsBetween = 56;  // the rows that are interpolated are short ones then
constexpr std::int64_t kMostBranches = 64;

// With less attenuation the ends of the window make steps in the filter, which places so far apart do not
// show: exact filters then need sums. Between rows that are interpolated less is lost by that than by
// straight lines.
constexpr double kLeastAttenuation = 120, kLeastFreeAttenuation = 100;

// The highest frequency of the signal, of the Nyquist frequency of the grid.
constexpr double kEdge = 0.573;

// The second filter has an attenuation that leaves rounding alone, and as many taps as its transition, from
// the signal to its images, asks for: 24 at most.
Settings betweenPlaces(double attenuation, double edge) {
  const double enough = attenuation < kLeastAttenuation ? attenuation + 20 : 150;
  const double taps = (enough - 7.95) / (7.18 * (2 - 2 * edge));
  return {2 * static_cast<std::int32_t>(std::ceil(taps / 4)), 1.0, enough};
}

GridShape gridIfPossible(const GridShape &grid) { return grid.order() == 0 ? GridShape{} : grid; }

// A grid fine enough to find the signal between its places.
struct GridBetween {
  GridShape grid;
  Settings between;
  std::int64_t taps() const { return 2 * std::int64_t{between.halfLen}; }
};
GridBetween gridOfTheSignal(const Settings &settings, double cutOff, std::int64_t taps, bool powerOfTwo) {
  const double edge =
      cutOff * (settings.rollOff + (settings.attenuation - 7.95) / (2 * 14.36 * settings.halfLen));
  if (edge > 2 * kEdge) return {};
  GridShape grid = {2, 1, taps};
  if (edge <= kEdge) {
    grid.up = 1;
    grid.down = static_cast<std::int64_t>(std::min(kEdge / edge, 256.0));
    if (powerOfTwo)
      grid.down = static_cast<std::int64_t>(std::bit_floor(static_cast<std::uint64_t>(grid.down)));
  }
  const double ofGrid = edge * static_cast<double>(grid.down) / static_cast<double>(grid.up);
  return {gridIfPossible(grid), betweenPlaces(settings.attenuation, ofGrid)};
}

// Kaiser's shape parameter for an attenuation in dB.
double kaiserBeta(double attenuation) {
  if (attenuation > 50) return 0.1102 * (attenuation - 8.7);
  if (attenuation > 21) return 0.5842 * std::pow(attenuation - 21, 0.4) + 0.07886 * (attenuation - 21);
  return 0;
}

// I0(beta sqrt(u)) is a power series in u, with coefficients (beta^2 / 4)^k / (k!)^2: for beta up to 21 fewer
// than 64 of them count, the first being 1.
class Bessel {
 public:
  explicit Bessel(double beta) {
    double c = 1;
    for (int k = 0; k < kMost && c >= 1e-18; ++k) {
      coefficients_[k] = c;
      fours_ = k / 4 + 1;
      const double ratio = beta / (2 * (k + 1));
      c *= ratio * ratio;
    }
  }
  // Four series in u^4, none of which waits for another.
  double operator()(double u) const {
    const double v = (u * u) * (u * u);
    double sums[4] = {};
    for (int k = 4 * fours_ - 4; k >= 0; k -= 4)
      for (int i = 0; i < 4; ++i) sums[i] = sums[i] * v + coefficients_[k + i];
    return (sums[0] + u * sums[1]) + u * u * (sums[2] + u * sums[3]);
  }

 private:
  static constexpr int kMost = 72;
  double coefficients_[kMost] = {};
  int fours_ = 0;
};

double sinc(double x) { return x == 0 ? 1.0 : std::sin(kPi * x) / (kPi * x); }

}  // namespace

OrvStatus checkLength(const Settings &settings) {
  return settings.halfLen < 1 || settings.halfLen > 512 ? orvStsSizeErr : orvStsNoErr;
}

OrvStatus checkValues(const Settings &settings) {
  // Written so that a NaN fails.
  const bool rollOff = settings.rollOff >= 0 && settings.rollOff <= 1;
  const bool attenuation = settings.attenuation >= 20 && settings.attenuation <= 200;
  return rollOff && attenuation ? orvStsNoErr : orvStsBadArgErr;
}

std::int64_t Shape::bytes() const {
  const std::int64_t fixed = kAlignment - 1 + std::int64_t{sizeof(Converter)};
  const std::int64_t floats = designed.floats() + samples;
  if (!grid.exists()) return fixed + 4 * floats;
  return fixed + 4 * (floats + sums.floats() + inputs + 48) + grid.bytes();
}

Shape fixedShape(const Settings &settings, std::int64_t up, std::int64_t down) {
  // Of rates that are the same only the sample itself counts.
  const std::int64_t half = up == down  ? 1
                            : up > down ? settings.halfLen
                                        : (settings.halfLen * down + up - 1) / up;
  const std::int64_t taps = tapsOf(half);
  const double cutOff = up < down ? static_cast<double>(up) / static_cast<double>(down) : 1.0;
  const Rows designed = {up, up, taps};
  if (up != down && up * down <= kMostBranches && taps >= kLeastTaps) {
    const GridShape grid = gridIfPossible({up, down, taps});
    if (grid.exists()) return {designed, {1, 0, 2}, grid, {}, samplesOf(grid, 2, 1), 0, cutOff};
  }
  if (up != down && taps >= kLeastTapsBetween && settings.attenuation >= kLeastAttenuation) {
    const GridBetween found = gridOfTheSignal(settings, cutOff, taps, false);
    const GridShape &grid = found.grid;
    if (grid.exists()) {
      const std::int64_t divisor = std::gcd(up * grid.down, down * grid.up);
      const std::int64_t phases = up * grid.down / divisor, period = down * grid.up / divisor;
      const Rows sums = {phases, phases, found.taps()};
      return {designed, sums, grid, found.between, samplesOf(grid, sums.taps, period), 0, cutOff};
    }
  }
  return {designed, designed, {}, {}, samplesOf(taps, down), 0, cutOff};
}

Shape freeShape(const Settings &settings, double minRatio) {
  const double cutOff = std::min(minRatio, 1.0);
  const std::int64_t taps = tapsOf(static_cast<std::int64_t>(std::ceil(settings.halfLen / cutOff)));
  // Straight lines between rows miss a tone of w radians a sample by w^2 f (P - f) / 2 for f of P rows, whose
  // strongest component is (w / 2 pi P)^2: this many rows put it 6 dB below the stop band at the cut-off.
  const double rows = std::sqrt(std::pow(10.0, settings.attenuation / 20) / 2) * settings.rollOff * cutOff;
  const auto rowsOf = [&](double period, std::int64_t rowTaps) {
    const auto perSample =
        static_cast<std::int64_t>(std::ceil(std::clamp(rows * period, kLeastRows, kMostRows)));
    return Rows{perSample, perSample + 1, rowTaps};
  };
  const GridBetween found = taps >= kLeastFreeTapsBetween && settings.attenuation >= kLeastFreeAttenuation
                                ? gridOfTheSignal(settings, cutOff, taps, true)
                                : GridBetween{};
  const GridShape &grid = found.grid;
  if (!grid.exists()) return {rowsOf(1, taps), rowsOf(1, taps), {}, {}, samplesOf(taps, 0), 0, cutOff};
  const Rows sums = rowsOf(static_cast<double>(grid.down) / static_cast<double>(grid.up), found.taps());
  const std::int64_t samples = samplesOf(grid, sums.taps, 0);
  return {{1, 0, taps}, sums, grid, found.between, samples, samples * grid.down / grid.up, cutOff};
}

void designBetweenPlaces(const Shape &shape, float *to) { design(shape.between, 1.0, shape.sums, to); }

void design(const Settings &settings, double cutOff, const Rows &shape, float *rows) {
  const std::int64_t half = shape.taps / 2;
  if (cutOff == 1 && shape.count == 1) {
    for (std::int64_t k = 0; k < shape.taps; ++k) rows[k] = k == half - 1 ? 1.0F : 0.0F;
    return;
  }
  const Bessel bessel(kaiserBeta(settings.attenuation));
  const auto tap = [&](std::int64_t row, std::int64_t k) {
    const double crossings = cutOff * (static_cast<double>(row) / static_cast<double>(shape.perSample) +
                                       static_cast<double>(half - 1 - k));
    const double x = crossings / settings.halfLen;
    return std::fabs(x) < 1 ? sinc(settings.rollOff * crossings) * bessel((1 - x) * (1 + x)) : 0.0;
  };
  // Row P - p is row p backwards. Each is scaled to a sum of 1, so that a constant signal has no images.
  for (std::int64_t p = 0; p <= shape.perSample / 2; ++p) {
    // The taps of longer rows are computed again.
    constexpr std::int64_t most = 1024;
    double sum = 0, taps[most];
    for (std::int64_t k = 0; k < shape.taps; ++k) {
      const double value = tap(p, k);
      if (k < most) taps[k] = value;
      sum += value;
    }
    float *row = rows + p * shape.taps;
    for (std::int64_t k = 0; k < shape.taps; ++k)
      row[k] = static_cast<float>((k < most ? taps[k] : tap(p, k)) / sum);
    const std::int64_t mirror = shape.perSample - p;
    if (mirror == p || mirror >= shape.count) continue;
    for (std::int64_t k = 0; k < shape.taps; ++k) rows[mirror * shape.taps + k] = row[shape.taps - 1 - k];
  }
}

}  // namespace orv::resample
