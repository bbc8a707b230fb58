// What the converters do to tones, sweeps and impulses with the settings that the header calls default.

#include <cmath>
#include <complex>

#include "resample/converters.h"

namespace orv::test {
namespace {

using Complex = std::complex<double>;
constexpr double kPi = std::numbers::pi;

double decibels(double amplitude) { return 20 * std::log10(amplitude); }

// A tone as it was put in (an amplitude of 1 and a phase of 0 at sample 0) and what came out of it, of
// outputs far from both ends: its amplitude and phase by least squares, and the root of twice the power of
// all the rest.
struct Measured {
  Complex tone;
  double rest;
};

Measured measure(const std::vector<float> &out, double omega, std::size_t margin) {
  double cc = 0, cs = 0, ss = 0, yc = 0, ys = 0;
  for (std::size_t m = margin; m + margin < out.size(); ++m) {
    const double c = std::cos(omega * static_cast<double>(m)), s = std::sin(omega * static_cast<double>(m));
    cc += c * c;
    cs += c * s;
    ss += s * s;
    yc += out[m] * c;
    ys += out[m] * s;
  }
  const double det = cc * ss - cs * cs, a = (yc * ss - ys * cs) / det, b = (ys * cc - yc * cs) / det;
  double power = 0;
  for (std::size_t m = margin; m + margin < out.size(); ++m) {
    const double e =
        out[m] - a * std::cos(omega * static_cast<double>(m)) - b * std::sin(omega * static_cast<double>(m));
    power += e * e;
  }
  return {{a, -b}, std::sqrt(2 * power / static_cast<double>(out.size() - 2 * margin))};
}

std::vector<float> tone(std::size_t len, double omega) {
  std::vector<float> x(len);
  for (std::size_t n = 0; n < len; ++n) x[n] = static_cast<float>(std::cos(omega * static_cast<double>(n)));
  return x;
}

// Rising evenly from one frequency to another.
std::vector<float> sweep(std::size_t len, double from, double to) {
  std::vector<float> x(len);
  for (std::size_t n = 0; n < len; ++n) {
    const double t = static_cast<double>(n);
    x[n] = static_cast<float>(std::cos((from + (to - from) * t / (2 * static_cast<double>(len))) * t));
  }
  return x;
}

template <class Form>
void expectQuality(const Form &form) {
  SCOPED_TRACE(form.ratio());
  const Settings settings;
  const double lower =
      kPi * std::min(1.0, form.ratio());  // the lower Nyquist frequency, in radians an input sample
  const auto inputs = static_cast<std::size_t>(4000 / std::min(1.0, form.ratio()));
  const auto margin = static_cast<std::size_t>((settings.halfLen + 16) * std::max(1.0, form.ratio()));
  double ripple = 0, rest = 0, delay = 0;
  for (double f = 0.017; f < 0.9; f += f < 0.8 ? 0.0611 : 0.0098) {
    const auto out = converted(form, settings, tone(inputs, f * lower));
    const Measured got = measure(out, f * lower / form.ratio(), margin);
    ripple = std::max(ripple, std::fabs(decibels(std::abs(got.tone))));
    delay = std::max(delay, std::fabs(std::arg(got.tone)) / (f * lower));
    rest = std::max(rest, got.rest);
  }
  EXPECT_LT(ripple, 0.01);
  EXPECT_LT(decibels(rest), -100);  // images, aliases and rounding together
  EXPECT_LT(delay, 0.01);

  // Above the lower Nyquist frequency nothing may come through. A sweep shows every frequency; its ends are
  // no tones.
  if (form.ratio() < 1) {
    const auto out = converted(form, settings, sweep(4 * inputs, 1.005 * lower, kPi));
    double largest = 0;
    for (std::size_t m = margin; m + margin < out.size(); ++m)
      largest = std::max(largest, std::fabs(static_cast<double>(out[m])));
    EXPECT_LT(decibels(largest), -100);
  }
  // A sweep over the pass band comes out as the same sweep, sample for sample.
  const auto in = sweep(4 * inputs, 0, 0.89 * lower);
  const auto out = converted(form, settings, in);
  double error = 0;
  for (std::size_t m = margin; m + margin < out.size(); ++m) {
    const double t = static_cast<double>(m) / form.ratio();
    const double ideal = std::cos(0.89 * lower * t / (2 * static_cast<double>(in.size())) * t);
    error = std::max(error, std::fabs(out[m] - ideal));
  }
  EXPECT_LT(error, 0.00116);  // 0.01 dB

  std::vector<float> impulse(2001, 0.0F);
  impulse[1000] = 1;
  const auto response = converted(form, settings, impulse);
  double sum = 0, moment = 0;
  for (std::size_t m = 0; m < response.size(); ++m) {
    sum += response[m];
    moment += response[m] * static_cast<double>(m);
  }
  EXPECT_NEAR(moment / sum / form.ratio(), 1000, 0.01);
}

TEST(ResampleQuality, BetweenIntegerRates) {
  for (const auto &rates :
       {std::pair{44100, 48000}, {48000, 16000}, {16000, 8000}, {8000, 16000}, {44100, 8000}})
    expectQuality(Fixed<float>{rates.first, rates.second});
}

TEST(ResampleQuality, AtAnyRatio) {
  expectQuality(Free<float>{0.9173});
  expectQuality(Free<float>{48000.0 / 44100});
}

// The last of a million outputs stands where the first stood: to a few millionths of a sample.
TEST(ResampleQuality, DoesNotDrift) {
  const Free<float> form{0.9173};
  const double omega = 0.7;
  const auto out = converted(form, {}, tone(1200000, omega));
  const std::vector<float> head(out.begin(), out.begin() + 20000), last(out.end() - 20000, out.end());
  const double start = static_cast<double>(out.size() - 20000);
  const double before = std::arg(measure(head, omega / 0.9173, 100).tone);
  const double after =
      std::remainder(std::arg(measure(last, omega / 0.9173, 100).tone) - omega / 0.9173 * start, 2 * kPi);
  EXPECT_NEAR(before, 0, 1e-6);
  EXPECT_NEAR(after, 0, 1e-6);
}

// Integer tones keep what rounding leaves of them: input and output each add an error of a twelfth of a step
// squared.
TEST(ResampleQuality, IntegersLoseTheirRoundingOnly) {
  // With periods so long that the errors of rounding are as good as random.
  for (const double f : {0.1013, 0.3707, 0.8117}) {
    std::vector<std::int16_t> x(20000);
    for (std::size_t n = 0; n < x.size(); ++n)
      x[n] = static_cast<std::int16_t>(std::lrint(30000 * std::cos(f * kPi * static_cast<double>(n))));
    const auto out = converted(Fixed<std::int16_t>{44100, 48000}, {}, x);
    const Measured got = measure({out.begin(), out.end()}, f * kPi * 0.91875, 150);
    EXPECT_NEAR(std::abs(got.tone), 30000, 30000 * 0.00116);
    EXPECT_LT(got.rest, std::sqrt(2 * 2 / 12.0) * 1.05);
  }
}

}  // namespace
}  // namespace orv::test
