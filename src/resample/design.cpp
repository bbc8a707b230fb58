#include "resample/design.h"

#include <algorithm>
#include <cmath>

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
    for (last_ = 0; last_ < kMost; ++last_) {
      coefficients_[last_] = c;
      const double ratio = beta / (2 * (last_ + 1));
      c *= ratio * ratio;
      if (c < 1e-18) break;
    }
    if (last_ == kMost) --last_;
  }
  double operator()(double u) const {
    double sum = coefficients_[last_];
    for (int k = last_ - 1; k >= 0; --k) sum = sum * u + coefficients_[k];
    return sum;
  }

 private:
  static constexpr int kMost = 72;
  double coefficients_[kMost];
  int last_;
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
  return kAlignment - 1 + std::int64_t{sizeof(Converter)} +
         std::int64_t{sizeof(float)} * (rows * taps + samples);
}

Shape fixedShape(const Settings &settings, std::int64_t up, std::int64_t down) {
  // Of rates that are the same only the sample itself counts.
  const std::int64_t half = up == down  ? 1
                            : up > down ? settings.halfLen
                                        : (settings.halfLen * down + up - 1) / up;
  const std::int64_t taps = tapsOf(half);
  const double cutOff = up < down ? static_cast<double>(up) / static_cast<double>(down) : 1.0;
  return {up, up, taps, samplesOf(taps, down), cutOff};
}

Shape freeShape(const Settings &settings, double minRatio) {
  const double cutOff = std::min(minRatio, 1.0);
  const std::int64_t taps = tapsOf(static_cast<std::int64_t>(std::ceil(settings.halfLen / cutOff)));
  // Straight lines between rows miss a tone of w radians a sample by w^2 f (P - f) / 2 for f of P rows, whose
  // strongest component is (w / 2 pi P)^2: this many rows put it 6 dB below the stop band at the cut-off.
  const double rows = std::sqrt(std::pow(10.0, settings.attenuation / 20) / 2) * settings.rollOff * cutOff;
  const auto perSample = static_cast<std::int64_t>(std::ceil(std::clamp(rows, kLeastRows, kMostRows)));
  return {perSample, perSample + 1, taps, samplesOf(taps, 0), cutOff};
}

void design(const Settings &settings, const Shape &shape, float *rows) {
  const std::int64_t half = shape.taps / 2;
  if (shape.passesThrough()) {
    for (std::int64_t k = 0; k < shape.taps; ++k) rows[k] = k == half - 1 ? 1.0F : 0.0F;
    return;
  }
  const Bessel bessel(kaiserBeta(settings.attenuation));
  const auto tap = [&](std::int64_t row, std::int64_t k) {
    const double crossings = shape.cutOff * (static_cast<double>(row) / static_cast<double>(shape.perSample) +
                                             static_cast<double>(half - 1 - k));
    const double x = crossings / settings.halfLen;
    return std::fabs(x) < 1 ? sinc(settings.rollOff * crossings) * bessel((1 - x) * (1 + x)) : 0.0;
  };
  // Row P - p is row p backwards. Each is scaled to a sum of 1, so that a constant signal has no images.
  for (std::int64_t p = 0; p <= shape.perSample / 2; ++p) {
    double sum = 0;
    for (std::int64_t k = 0; k < shape.taps; ++k) sum += tap(p, k);
    float *row = rows + p * shape.taps;
    for (std::int64_t k = 0; k < shape.taps; ++k) row[k] = static_cast<float>(tap(p, k) / sum);
    const std::int64_t mirror = shape.perSample - p;
    if (mirror == p || mirror >= shape.rows) continue;
    for (std::int64_t k = 0; k < shape.taps; ++k) rows[mirror * shape.taps + k] = row[shape.taps - 1 - k];
  }
}

}  // namespace orv::resample
