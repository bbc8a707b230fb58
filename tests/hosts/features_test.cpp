#include <cmath>
#include <numbers>
#include <xtensor/xnpy.hpp>
#include <xtensor/xtensor.hpp>

#include "common/error.h"
#include "common/featurechain.h"
#include "hosts/support.h"

namespace orv::test {
namespace {

using Rows = std::vector<std::vector<double>>;

// The chain as its documentation tells it, in double and without any block.
Rows reference(const FeatureOptions &o, int rate, const std::vector<float> &x) {
  const double pi = std::numbers::pi, high = o.highHz == 0 ? rate / 2.0 : o.highHz;
  const auto len = static_cast<int>(std::lround(o.frameMs * rate / 1000));
  const auto hop = static_cast<int>(std::lround(o.hopMs * rate / 1000));
  int transform = 2;
  while (transform < len) transform *= 2;
  const auto mel = [](double f) { return 1127 * std::log(1 + f / 700); };
  const auto edge = [&](int i) { return mel(o.lowHz) + i * (mel(high) - mel(o.lowHz)) / (o.bands + 1); };
  const auto bin = [&](int i) {
    return static_cast<int>(700 * (std::exp(edge(i) / 1127) - 1) * transform / rate);
  };

  std::vector<double> cosine, window;
  for (int n = 0; n < transform; ++n) cosine.push_back(std::cos(2 * pi * n / transform));
  for (int n = 0; n < len; ++n) {
    const double turn = std::cos(2 * pi * n / (len - 1));
    window.push_back(o.window == Window::hamming ? 0.54 - 0.46 * turn
                     : o.window == Window::hann  ? 0.5 - 0.5 * turn
                                                 : 1);
  }
  const auto wave = [&](int n) { return cosine[static_cast<std::size_t>(n % transform)]; };

  Rows cepstra;
  for (int start = 0; start + len <= static_cast<int>(x.size()); start += hop) {
    const auto at = [&](int n) { return 32768.0 * x[static_cast<std::size_t>(std::max(n, 0))]; };
    std::vector<double> frame, magnitude;
    for (int n = 0; n < len; ++n) {
      frame.push_back((at(start + n) - o.preEmphasis * at(start + n - 1)) *
                      window[static_cast<std::size_t>(n)]);
    }
    for (int k = 0; k <= transform / 2; ++k) {
      double re = 0, im = 0;
      for (int n = 0; n < len; ++n) {
        re += frame[static_cast<std::size_t>(n)] * wave(k * n);
        im += frame[static_cast<std::size_t>(n)] * wave(k * n + transform / 4);
      }
      magnitude.push_back(std::hypot(re, im));
    }
    std::vector<double> logs;
    for (int b = 1; b <= o.bands; ++b) {
      double energy = 0;
      for (int k = bin(b - 1) + 1; k <= bin(b + 1); ++k) {
        const double m = mel(static_cast<double>(k) * rate / transform);
        const double weight = k <= bin(b) ? (m - edge(b - 1)) / (edge(b) - edge(b - 1))
                                          : (edge(b + 1) - m) / (edge(b + 1) - edge(b));
        energy += weight * magnitude[static_cast<std::size_t>(k)];
      }
      logs.push_back(std::log(std::max(energy, 1.0)));
    }
    std::vector<double> row;
    for (int c = 1; c <= o.cepstra + 1; ++c) {
      const int i = c <= o.cepstra ? c : 0;  // C0 stands last
      double sum = 0;
      for (int j = 0; j < o.bands; ++j)
        sum += logs[static_cast<std::size_t>(j)] * std::cos(pi * i * (j + 0.5) / o.bands);
      row.push_back(sum * std::sqrt(2.0 / o.bands) * (1 + o.lifter / 2.0 * std::sin(pi * i / o.lifter)));
    }
    cepstra.push_back(row);
  }

  const auto rows = static_cast<int>(cepstra.size());
  const std::size_t statics = cepstra[0].size();
  const auto slope = [&](const Rows &of, int t, std::size_t j) {
    const auto v = [&](int s) { return of[static_cast<std::size_t>(std::clamp(s, 0, rows - 1))][j]; };
    return 0.1 * (v(t + 1) - v(t - 1) + 2 * (v(t + 2) - v(t - 2)));
  };
  Rows result = cepstra;
  for (std::size_t column = 0; column < 2 * statics; ++column) {
    const Rows before = result;
    for (int t = 0; t < rows; ++t) result[static_cast<std::size_t>(t)].push_back(slope(before, t, column));
  }
  for (std::size_t j = 0; o.meanNormalisation && j < statics; ++j) {
    double mean = 0;
    for (const auto &row : cepstra) mean += row[j] / rows;
    for (auto &row : result) row[j] -= mean;
  }
  return result;
}

void expectClose(const Frames &found, const Rows &expected) {
  ASSERT_EQ(found.rows, expected.size());
  ASSERT_EQ(static_cast<std::size_t>(found.width), expected[0].size());
  for (std::size_t r = 0; r < found.rows; ++r) {
    for (std::size_t j = 0; j < expected[r].size(); ++j) {
      ASSERT_NEAR(found.row(r)[j], expected[r][j], 2e-3) << "row " << r << ", value " << j;
    }
  }
}

TEST(FeatureChain, AgreesWithThePlainFormulaRoundEveryBlockEdge) {
  FeatureChain chain({}, 8000);
  Frames features;
  // 6 frames are the fewest; blocks hold 64, and the delta windows reach two rows over their edges.
  for (const std::size_t frames : {6u, 7u, 63u, 64u, 65u, 66u, 68u, 70u, 71u, 128u, 131u}) {
    const auto samples =
        noise(200 + (frames - 1) * 80 + (frames % 2) * 79, 0.7f, static_cast<unsigned>(frames));
    ASSERT_EQ(chain.frames(samples.size()), frames);
    chain.compute(samples, features);
    expectClose(features, reference({}, 8000, samples));
  }
}

TEST(FeatureChain, FollowsItsOptions) {
  FeatureOptions options;
  options.frameMs = 20;
  options.hopMs = 7.5;
  options.preEmphasis = 0.5;
  options.bands = 19;
  options.lowHz = 200;
  options.highHz = 6000;
  options.cepstra = 8;
  options.lifter = 15;
  options.meanNormalisation = false;
  const auto samples = noise(8000, -0.3f, 9);
  for (const Window window : {Window::hann, Window::rectangular}) {
    options.window = window;
    FeatureChain chain(options, 16000);
    Frames features;
    chain.compute(samples, features);
    expectClose(features, reference(options, 16000, samples));
  }
}

// What the frame of the other kinds holds, before delta and acceleration values.
std::vector<double> frameValues(FeatureKind kind, const std::vector<float> &samples) {
  FeatureOptions options;
  options.kind = kind;
  options.meanNormalisation = false;
  FeatureChain chain(options, 8000);
  Frames features;
  chain.compute(samples, features);
  const float *row = features.row(2);
  return {row, row + features.width / 3};
}

TEST(FeatureChain, DescribesAFrameInFourWays) {
  const auto samples = noise(2000, 0.8f, 12);
  // Mel cepstra are the liftered cosine transform of the log band energies.
  const auto bands = frameValues(FeatureKind::fbank, samples),
             cepstra = frameValues(FeatureKind::mfcc, samples);
  ASSERT_EQ(bands.size(), 24U);
  for (std::size_t c = 1; c <= 12; ++c) {
    double sum = 0;
    const auto i = static_cast<double>(c);
    for (std::size_t j = 0; j < 24; ++j)
      sum += bands[j] * std::cos(std::numbers::pi * i * (static_cast<double>(j) + 0.5) / 24);
    EXPECT_NEAR(cepstra[c - 1], sum * std::sqrt(2.0 / 24) * (1 + 11 * std::sin(std::numbers::pi * i / 22)),
                2e-3);
  }
  // Both descriptions of the predictor give the same response at any frequency.
  const auto lpcc = frameValues(FeatureKind::lpcc, samples), lsf = frameValues(FeatureKind::lsf, samples);
  ASSERT_EQ(lpcc.size(), 13U);
  ASSERT_EQ(lsf.size(), 13U);
  EXPECT_EQ(lpcc[12], lsf[12]);
  std::vector<double> a(12);
  for (std::size_t i = 0; i < 12; ++i) {
    double sum = 0;
    for (std::size_t j = 0; j < i; ++j) sum += static_cast<double>(i - j) * lpcc[i - j - 1] * a[j];
    a[i] = -(lpcc[i] + sum / static_cast<double>(i + 1));
  }
  EXPECT_TRUE(lsf[0] > 0 && lsf[11] < std::numbers::pi && std::is_sorted(lsf.begin(), lsf.begin() + 12));
  for (const double w : {0.3, 1.1, 2.0, 3.0}) {
    double re = 1, im = 0, p = 1, q = 1;
    for (std::size_t i = 0; i < 12; ++i) {
      re += a[i] * std::cos(w * static_cast<double>(i + 1));
      im -= a[i] * std::sin(w * static_cast<double>(i + 1));
      (i % 2 == 0 ? p : q) *= 2 * (std::cos(w) - std::cos(lsf[i]));
    }
    // |A|^2 = (|P|^2 + |Q|^2) / 4, the two having factors 2 cos(w / 2) and 2 sin(w / 2) of their own.
    const double power = std::pow(p * std::cos(w / 2), 2) + std::pow(q * std::sin(w / 2), 2);
    EXPECT_NEAR(power / (re * re + im * im), 1, 0.05) << w;
  }
  // A silent frame has the lines of a flat spectrum.
  const auto silent = frameValues(FeatureKind::lsf, std::vector<float>(2000));
  for (std::size_t i = 0; i < 12; ++i)
    EXPECT_NEAR(silent[i], std::numbers::pi * static_cast<double>(i + 1) / 13, 1e-3);
}

TEST(FeatureChain, LogarithmIsAccurateAndFloored) {
  std::vector<float> values = {0, -1, 1, 1.5f, 0x1p-20f, 3e38f, 0.70710677f, 0.70710683f};
  for (float v = 1e-6f; v < 1e30f; v *= 1.37f) values.push_back(v);
  const auto before = values;
  logFloored(values, 1e-5f);
  for (std::size_t i = 0; i < values.size(); ++i) {
    const double expected = std::log(static_cast<double>(std::max(before[i], 1e-5f)));
    EXPECT_NEAR(values[i], expected, 2e-7 * std::max(1.0, std::fabs(expected))) << before[i];
  }
}

using Features = Hosts;

TEST_F(Features, AreStoredAsNumPyFile) {
  const auto samples = noise(16000, 0.5f, 3);
  writeWav(folder / "in.wav", samples, 16000);
  const Outcome outcome = run("features in.wav -o out.npy --bands 26 --window hann");
  ASSERT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(outcome.out + outcome.err, "");

  FeatureOptions options;
  options.bands = 26;
  options.window = Window::hann;
  Frames expected;
  FeatureChain(options, 16000).compute(samples, expected);
  const auto stored = xt::load_npy<float>((folder / "out.npy").string());
  ASSERT_EQ(stored.dimension(), 2u);
  ASSERT_EQ(stored.shape(0), expected.rows);
  ASSERT_EQ(stored.shape(1), 39u);
  for (std::size_t r = 0; r < expected.rows; ++r) {
    for (std::size_t j = 0; j < 39; ++j) ASSERT_EQ(stored(r, j), expected.row(r)[j]);
  }
}

}  // namespace
}  // namespace orv::test
