#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

#include "orvsr/robust.h"
#include "support/allocation.h"
#include "support/arrays.h"
#include "support/matrix.h"

using namespace orv::test;

namespace {

constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();

std::int32_t amplitude(std::int32_t wiener, std::int32_t postSnr) {
  std::int32_t gain = -1;
  EXPECT_EQ(orvsFilterUpdateEMNS_32s(&wiener, &postSnr, &gain, 1), orvStsNoErr);
  return gain;
}
float amplitude(float wiener, float postSnr) {
  float gain = -1;
  EXPECT_EQ(orvsFilterUpdateEMNS_32f(&wiener, &postSnr, &gain, 1), orvStsNoErr);
  return gain;
}

double factor(double v) {
  return std::sqrt(std::numbers::pi) / (2 * std::sqrt(v)) * std::exp(-v / 2) *
         ((1 + v) * std::cyl_bessel_i(0.0, v / 2) + v * std::cyl_bessel_i(1.0, v / 2));
}

TEST(AmplitudeGain, ReadsTheFirstValuesUnshifted) {
  for (int n = 0; n <= 128; ++n) {
    // Wiener gains near n 2^-22 with a ratio of 1: the index is n in both forms.
    const std::int64_t value = n == 0 ? kMost : std::llround(factor(n * 0x1p-22));
    const std::int32_t wiener = (n << 9) + 5;
    EXPECT_EQ(amplitude(wiener, 32768), std::min<std::int64_t>(kMost, wiener * value)) << n;
    const float single = (static_cast<float>(n) + 0.5F) * 0x1p-22F;
    EXPECT_EQ(amplitude(single, 1.0F), static_cast<float>(value) * single) << n;
  }
  EXPECT_EQ(amplitude(0, kMost), 0);
  EXPECT_EQ(amplitude(1, -5), kMost);  // the integer form saturates, the other one goes above 1
  EXPECT_EQ(amplitude(0x1p-30F, -5.0F), 2.0F);
  EXPECT_EQ(amplitude(0.0F, 1.0F), 0.0F);
}

TEST(AmplitudeGain, IsQuadraticInEachOctave) {
  std::int64_t sum = 0;
  for (int b = 7; b < 28; ++b) {
    // A Wiener gain of 2^-9 shows the factor as it is, one of 1/2 shows larger indices 2^8 fold.
    const int step = b < 20 ? 1 : 64;
    const std::int32_t wiener = b < 20 ? 1 << 22 : 1 << 30;
    for (const std::int32_t n : {1 << b, 3 << (b - 1), (2 << b) - step}) {
      if (n == 128 || n > (b < 20 ? 3276800 / 4 : 3276800 * 64)) continue;  // not reached this way
      const std::int32_t gain = amplitude(wiener, b < 20 ? n * 4 : n / 64);
      const std::int32_t y = b < 20 ? gain : gain >> 8;
      sum += y;
      EXPECT_NEAR(y * 0x1p-22 / factor(n * 0x1p-22), 1, 0.006) << n;
      EXPECT_EQ(amplitude(1.0F, static_cast<float>(n) * 0x1p-22F), static_cast<float>(y) * 0x1p-22F) << n;
    }
  }
  EXPECT_EQ(sum, 5176501249);  // no coefficient is one off
}

// The index comes from the rounded product of gain and ratio, and the gain scales the single factor.
TEST(AmplitudeGain, MultipliesInSingle) {
  Random random(48);
  const auto wiener = uniform<float>(random, 3000, 0.01, 1), snr = uniform<float>(random, 3000, 0.01, 1);
  for (std::size_t i = 0; i < wiener.size(); ++i)
    ASSERT_EQ(amplitude(wiener[i], snr[i]), amplitude(1.0F, wiener[i] * snr[i]) * wiener[i]) << i;
}

TEST(AmplitudeGain, LimitsTheRatioAndSaturates) {
  EXPECT_EQ(amplitude(1 << 29, kMost), amplitude(1 << 29, 3276800));
  EXPECT_NE(amplitude(1 << 29, 3200000), amplitude(1 << 29, 3276800));
  EXPECT_EQ(amplitude(0.5F, 1e30F), amplitude(0.5F, 100.0F));
  EXPECT_EQ(amplitude(1.0F, -std::numeric_limits<float>::infinity()), amplitude(1.0F, 3.1e-5F));
  EXPECT_EQ(amplitude(1.0F, std::nanf("")), amplitude(1.0F, 3.1e-5F));
  EXPECT_TRUE(std::isnan(amplitude(std::nanf(""), 1.0F)));
  EXPECT_EQ(amplitude(kMost, 1), kMost);
  EXPECT_EQ(amplitude(kMost, 2), kMost);  // from the first octave
  EXPECT_GT(amplitude(1.0F, 3.1e-5F), 100.0F);
}

TEST(AmplitudeGain, LooksAtAllGainsFirst) {
  for (const std::size_t bad : {0U, 6U}) {
    std::vector<float> wiener(7, 1.0F);
    std::vector<std::int32_t> fixed(7, kMost);
    const std::vector<float> snr(7, 1.0F);
    const std::vector<std::int32_t> snrQ15(7, 32768);
    Guarded<float> dst(7);
    Guarded<std::int32_t> fixedDst(7);
    for (const float h : {std::nextafter(1.0F, 2.0F), -1e-45F}) {
      wiener[bad] = h;
      EXPECT_EQ(orvsFilterUpdateEMNS_32f(wiener.data(), snr.data(), dst.data(), 7), orvStsRangeErr);
    }
    fixed[bad] = -1;
    EXPECT_EQ(orvsFilterUpdateEMNS_32s(fixed.data(), snrQ15.data(), fixedDst.data(), 7), orvStsRangeErr);
    EXPECT_TRUE(dst.untouched() && fixedDst.untouched());
  }
}

TEST(WienerGain, StepsThroughItsSegments) {
  std::vector<std::int32_t> x, expected;
  // Each grid point and the value before it.
  const auto add = [&](int shift, std::int64_t from, std::int64_t to) {
    for (std::int64_t j = from; j < to; ++j) {
      const std::int64_t down = j << shift;
      x.insert(x.end(), {static_cast<std::int32_t>(down - 1), static_cast<std::int32_t>(down)});
      expected.push_back(expected.empty() ? 0 : expected.back());
      expected.push_back(static_cast<std::int32_t>((down << 31) / (down + 32768)));
    }
  };
  add(11, 0, 64);
  add(17, 1, 16);
  add(21, 1, 8);
  add(24, 1, 2);
  x.insert(x.end(), {(1 << 25) - 1, 1 << 25, kMost});
  expected.insert(expected.end(), {expected.back(), kMost, kMost});
  const Guarded<std::int32_t> src(x, 4);
  Guarded<std::int32_t> dst(x.size(), 8);
  EXPECT_EQ(orvsFilterUpdateWiener_32s(src.data(), dst.data(), src.len()), orvStsBadArgErr);  // for the -1
  EXPECT_EQ(dst.values(), expected);
  EXPECT_EQ(orvsFilterUpdateWiener_32s(src.data() + 1, dst.data(), src.len() - 1), orvStsNoErr);
  EXPECT_EQ(dst.at(0), 0);
}

TEST(WienerGain, RaisesNegativeRatiosToZero) {
  Random random(44);
  const Allocations allocations;
  for (std::size_t len = 1; len < 20; ++len) {
    for (const bool negative : {false, true}) {
      std::vector<float> x = uniform<float>(random, len, 0, 30), expected;
      if (len > 3) x[3] = -0.0F;
      if (negative) x[len - 1] = len % 2 ? -1.0F : -1e-45F;
      for (const float v : x) expected.push_back(negative && !(v > 0) ? 0.0F : v / (v + 1));
      const Guarded<float> src(x, len % 4);
      Guarded<float> dst(len, 4 * (len % 3) + 1);
      EXPECT_EQ(orvsFilterUpdateWiener_32f(src.data(), dst.data(), src.len()),
                negative ? orvStsBadArgErr : orvStsNoErr);
      for (std::size_t i = 0; i < len; ++i) EXPECT_TRUE(sameBits(dst.at(i), expected[i])) << len << " " << i;
      Guarded<float> place(x, 4);
      orvsFilterUpdateWiener_32f(place.data(), place.data(), place.len());
      EXPECT_EQ(place.values(), dst.values());
    }
  }
  EXPECT_EQ(allocations.calls(), 0);
}

TEST(NoiseGains, CheckTheirArgumentsInTheirOrder) {
  std::vector<float> x(1, -1.0F);
  std::vector<std::int32_t> n(1, -1);
  using P = const Pointers &;
  const Order null{orvStsNullPtrErr};
  expectOrder(null, 3, 1, [](P p, int, int, int) { return orvsFilterUpdateEMNS_32f(p[0], p[1], p[2], 0); });
  expectOrder(null, 3, 1, [](P p, int, int, int) { return orvsFilterUpdateEMNS_32s(p[0], p[1], p[2], 0); });
  expectOrder(null, 2, 1, [](P p, int, int, int) { return orvsFilterUpdateWiener_32f(p[0], p[1], 0); });
  expectOrder(null, 2, 1, [](P p, int, int, int) { return orvsFilterUpdateWiener_32s(p[0], p[1], 0); });
  for (const int len : {0, 65536}) {
    EXPECT_EQ(orvsFilterUpdateEMNS_32f(x.data(), x.data(), x.data(), len), orvStsLenRangeErr);
    EXPECT_EQ(orvsFilterUpdateEMNS_32s(n.data(), n.data(), n.data(), len), orvStsLenRangeErr);
    EXPECT_EQ(orvsFilterUpdateWiener_32f(x.data(), x.data(), len), orvStsLenRangeErr);
    EXPECT_EQ(orvsFilterUpdateWiener_32s(n.data(), n.data(), len), orvStsLenRangeErr);
  }
  EXPECT_TRUE(x[0] == -1 && n[0] == -1);
}

}  // namespace
