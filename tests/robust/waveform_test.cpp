#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "orvsr/robust.h"
#include "support/arrays.h"
#include "support/matrix.h"

using namespace orv::test;

namespace {

// What wave processing is told to do, step by step, with the numbers of one form. S is the type of a sample,
// E that of an energy.
template <class S, class E>
struct Reference {
  S low, edge, high;
  int (*part)(int);
  std::vector<int> peaks;

  // Energies are added in single precision, or in 32 bits that wrap.
  using Wide = std::conditional_t<std::is_same_v<E, float>, float, std::int64_t>;
  static E plus(Wide a, Wide b) { return static_cast<E>(a + b); }
  static E minus(Wide a, Wide b) { return static_cast<E>(a - b); }

  std::vector<S> weights(const std::vector<S> &x) {
    std::vector<E> e(200), s(200);
    e[0] = std::abs((x[0] - x[1]) * x[0]);
    for (std::size_t i = 1; i < 199; ++i) e[i] = std::abs(x[i] * x[i] - x[i - 1] * x[i + 1]);
    e[199] = std::abs((x[199] - x[198]) * x[199]);
    const auto at = [&](int i) { return e[static_cast<std::size_t>(std::clamp(i, 0, 199))]; };
    for (int i = -4; i <= 4; ++i) s[0] = plus(s[0], at(i));
    for (int i = 1; i < 200; ++i)
      s[static_cast<std::size_t>(i)] = plus(s[static_cast<std::size_t>(i - 1)], minus(at(i + 4), at(i - 5)));
    const auto largest = [&](int from, int len) {
      return static_cast<int>(std::max_element(s.begin() + from, s.begin() + from + len) - s.begin());
    };
    peaks = {largest(0, 200)};
    for (int c = peaks[0]; c < 175; peaks.push_back(c)) c = largest(c + 25, c >= 121 ? 175 - c : 55);
    for (int c = peaks[0]; c > 25; peaks.push_back(c)) {
      const int w = std::min(c, 79) - 24;
      c = largest(c - w - 24, w);
    }
    std::sort(peaks.begin(), peaks.end());
    std::vector<S> weights(200, low);
    for (std::size_t i = 0; i < peaks.size(); ++i) {
      const bool last = i + 1 == peaks.size();
      const int a = std::max(peaks[i] - 4, 0);
      const int z = std::min(peaks[i] + part(peaks[last ? i : i + 1] - peaks[last ? i - 1 : i]) - 4, 200);
      for (int k = a; k < z; ++k) weights[static_cast<std::size_t>(k)] = high;
      for (const int k : {a, z})
        if (k > 0 && k < 200)
          weights[static_cast<std::size_t>(k - 1)] = weights[static_cast<std::size_t>(k)] = edge;
    }
    return weights;
  }
};

// The frame through both forms against their references; returns the peaks of the 32f form.
std::vector<int> process(const std::vector<std::int16_t> &shorts, const std::vector<float> &singles,
                         std::size_t offset = 0) {
  Reference<float, float> reference{0.8F, 1.0F, 1.2F, [](int d) { return static_cast<int>(d * 0.8); }, {}};
  Reference<std::int16_t, std::int32_t> reference16{27, 32, 38, [](int d) { return d * 27 >> 5; }, {}};
  const auto w = reference.weights(singles);
  const auto w16 = reference16.weights(shorts);
  const Guarded<float> x(singles, offset);
  const Guarded<std::int16_t> s(shorts, offset);
  Guarded<float> y(200, 4);
  Guarded<std::int16_t> t(200, 2);
  EXPECT_EQ(orvsWaveProcessing_Aurora_32f(x.data(), y.data()), orvStsNoErr);
  EXPECT_EQ(orvsWaveProcessing_Aurora_16s(s.data(), t.data()), orvStsNoErr);
  for (std::size_t i = 0; i < 200; ++i) {
    EXPECT_TRUE(sameBits(y.at(i), w[i] * singles[i])) << i;
    const double rounded = std::nearbyint(w16[i] * shorts[i] / 32.0);  // ties to even
    EXPECT_EQ(t.at(i), std::clamp(rounded, -32768.0, 32767.0)) << i;
  }
  return reference.peaks;
}

TEST(WaveProcessing, RaisesWhatFollowsThePeaks) {
  Random random(5);
  for (int round = 0; round < 300; ++round) {
    const std::size_t offset = 2 * (random() % 8);
    if (round % 3 == 0) {  // any bits: sums of energies wrap
      process(anyIntegers<std::int16_t>(random, 200), uniform<float>(random, 200, -3, 3), offset);
      continue;
    }
    // Decaying pulses of some period, loud enough to saturate in some rounds.
    std::vector<float> voiced(200);
    const int period = 20 + static_cast<int>(random() % 70), phase = static_cast<int>(random() % 90);
    for (int i = 0; i < 200; ++i)
      voiced[static_cast<std::size_t>(i)] = std::floor(
          (round % 2 ? 32000.0F : 900.0F) * std::exp(-0.1F * static_cast<float>((i + phase) % period)) *
          std::cos(0.9F * static_cast<float>(i)));
    process({voiced.begin(), voiced.end()}, voiced, offset);
    if (::testing::Test::HasFailure()) FAIL() << "round " << round;
  }
}

TEST(WaveProcessing, FindsPeaksAtTheEdges) {
  const auto spike = [](std::size_t at) {
    std::vector<std::int16_t> x(200);
    if (at < 200) x[at] = 1000;
    return process(x, {x.begin(), x.end()});
  };
  EXPECT_EQ(spike(200), (std::vector<int>{0, 25, 50, 75, 100, 125, 150, 175}));  // silence
  EXPECT_EQ(spike(199).back(), 199);
  EXPECT_EQ(spike(0).front(), 0);
  for (std::size_t at = 0; at < 200; ++at) spike(at);
  // Whatever the energies are, nothing is read or written beyond the arrays; in place, too.
  for (const float odd : {NAN, INFINITY, 1e30F})
    for (std::size_t at = 0; at < 200; at += 7) {
      Guarded<float> x(200, 4);
      for (std::size_t i = 0; i < 200; ++i) x.set(i, i % (at + 1) == at ? odd : 1.0F);
      EXPECT_EQ(orvsWaveProcessing_Aurora_32f(x.data(), x.data()), orvStsNoErr);
    }
}

TEST(BlindEqualization, GoesElementByElement) {
  Random random(6);
  for (const std::size_t len : {1U, 4U, 12U, 13U, 31U})
    for (const float energy : {-5.0F, 3.296875F, 3.5F, 4.0F, 4.296875F, 1e9F}) {
      const auto n = static_cast<std::int32_t>(len);
      const auto a = uniform<float>(random, 3 * len + 2, -9, 9);
      const auto b = anyIntegers<std::int16_t>(random, 3 * len + 2);
      const auto energyQ6 = static_cast<std::int32_t>(std::max(-2e9F, std::min(2e9F, energy * 64)));
      // Apart, and with the bias a place behind the cepstrum, or in its place.
      for (const std::size_t bias : {2 * len, len + 1, len}) {
        const std::size_t offset = 2 * (random() % 8);
        Guarded<float> x(a, offset);
        Guarded<std::int16_t> s(b, offset);
        auto y = a;
        auto t = b;
        const float u = std::min(1.0F, std::max(0.0F, energy - 3.296875F)) * (9.0F / 1024);
        const std::int32_t uQ = std::min(64, std::max(0, energyQ6 - 211)) * 9;
        for (std::size_t i = 0; i < len; ++i) {
          const float c = y[len + i] - y[bias + i];
          y[len + i] = c;
          y[bias + i] = y[bias + i] + (c - y[i]) * u;
          const std::int32_t cQ = t[len + i] - t[bias + i];
          t[len + i] = static_cast<std::int16_t>(std::clamp(cQ, -32768, 32767));
          t[bias + i] =
              static_cast<std::int16_t>(std::clamp(t[bias + i] + (((cQ - t[i]) * uQ) >> 16), -32768, 32767));
        }
        const auto at = static_cast<std::int32_t>(bias);
        ASSERT_EQ(orvsBlindEqualization_Aurora_32f(x.data(), x.data() + n, x.data() + at, n, energy),
                  orvStsNoErr);
        ASSERT_EQ(orvsBlindEqualization_Aurora_16s(s.data(), s.data() + n, s.data() + at, n, energyQ6),
                  orvStsNoErr);
        expectAll(x, [&](std::int32_t i) { return y[static_cast<std::size_t>(i)]; });
        expectAll(s, [&](std::int32_t i) { return t[static_cast<std::size_t>(i)]; });
      }
    }
  // The full step is 576 / 65536, and the difference behind it is not saturated: 49151 * 576 >> 16 = 431. The
  // bias is, at either end.
  const std::vector<std::int16_t> reference{0, -32768, 32767};
  std::vector<std::int16_t> cepstrum{32767, 32767, -32768}, bias{-16384, 32767, -32768};
  for (const std::int32_t energyQ6 : {275, INT32_MIN}) {
    ASSERT_EQ(orvsBlindEqualization_Aurora_16s(reference.data(), cepstrum.data(), bias.data(), 3, energyQ6),
              orvStsNoErr);
    EXPECT_EQ(cepstrum[0], 32767);
    EXPECT_EQ(bias, (std::vector<std::int16_t>{-16384 + 431, 32767, -32768}));
  }
}

TEST(Waveforms, CheckPointersBeforeLengths) {
  using P = const Pointers &;
  const Order null{orvStsNullPtrErr};
  expectOrder(null, 2, 1, [](P p, int, int, int) { return orvsWaveProcessing_Aurora_32f(p[0], p[1]); });
  expectOrder(null, 2, 1, [](P p, int, int, int) { return orvsWaveProcessing_Aurora_16s(p[0], p[1]); });
  expectOrder(kNullSize, 3, 1, [](P p, int n, int, int h) {
    return orvsBlindEqualization_Aurora_32f(p[0], p[1], p[2], std::min(n, h), 0.0F);
  });
  expectOrder(kNullSize, 3, 1, [](P p, int n, int, int h) {
    return orvsBlindEqualization_Aurora_16s(p[0], p[1], p[2], std::min(n, h), 0);
  });
}

}  // namespace
