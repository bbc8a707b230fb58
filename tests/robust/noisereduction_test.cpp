#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "orvsr/robust.h"
#include "support/arrays.h"
#include "support/matrix.h"

using namespace orv::test;

namespace {

std::int64_t shifted(std::int64_t v, int factor) {
  const auto bits = static_cast<std::uint64_t>(v) << (-factor & 63);
  return factor > 0 ? v >> (factor & 63) : static_cast<std::int64_t>(bits);
}
template <class T>
T limited(std::int64_t v) {
  return static_cast<T>(
      std::clamp<std::int64_t>(v, std::numeric_limits<T>::min(), std::numeric_limits<T>::max()));
}
std::int32_t low32(std::int64_t v) { return static_cast<std::int32_t>(v); }

// Lengths around the blocks, at all alignments of the elements.
template <class F>
void forLengths(F f) {
  for (const std::size_t len : {1U, 3U, 4U, 5U, 7U, 8U, 9U, 16U, 20U, 33U})
    for (const std::size_t offset : {0U, 2U, 4U, 8U, 12U}) f(len, offset);
}

TEST(SmoothedPowerSpectrum, PairsTheBins) {
  Random random(1);
  forLengths([&](std::size_t quarters, std::size_t offset) {
    const std::size_t len = 4 * quarters;
    const auto n = static_cast<std::int32_t>(len);
    auto shorts = anyIntegers<std::int16_t>(random, len);
    for (std::int16_t &v : shorts) v >>= offset;  // from a shift of 8 on, sums stay within 16 bits
    const Guarded<float> x(uniform<float>(random, len, -3, 3), offset);
    const Guarded<std::int16_t> s(shorts, offset + 1);
    const Guarded<std::int32_t> w(anyIntegers<std::int32_t>(random, len), offset);
    Guarded<float> y(quarters + 1, 4);
    Guarded<std::int16_t> t(quarters + 1, offset);
    Guarded<std::int32_t> u(quarters + 1, offset);
    Guarded<std::int64_t> v(quarters + 1, offset);
    const int factor = std::vector{0, 1, 34, 63, 64, -1, -60}[random() % 7];
    ASSERT_EQ(orvsSmoothedPowerSpectrumAurora_32f(x.data(), y.data(), n), orvStsNoErr);
    ASSERT_EQ(orvsSmoothedPowerSpectrumAurora_16s(s.data(), t.data(), n), orvStsNoErr);
    ASSERT_EQ(orvsSmoothedPowerSpectrumAurora_32s_Sfs(w.data(), u.data(), n, factor), orvStsNoErr);
    ASSERT_EQ(orvsSmoothedPowerSpectrumAurora_32s64s_Sfs(w.data(), v.data(), n, factor), orvStsNoErr);
    for (std::size_t k = 0; k <= quarters; ++k) {
      float sum = 0;
      std::int64_t halves16 = 0, halves32 = 0;
      for (std::size_t i = 4 * k; i < std::min(4 * k + 4, len); ++i) {
        if (i == 1) continue;
        sum += x.at(i) * x.at(i);
        halves16 += (s.at(i) * s.at(i)) >> 1;
        halves32 += (std::int64_t{w.at(i)} * w.at(i)) >> 1;
      }
      if (k == quarters) {  // the Nyquist bin, whole; in 32 bits
        sum = 2 * x.at(1) * x.at(1);
        halves16 = s.at(1) * s.at(1);
        halves32 = low32(std::int64_t{w.at(1)} * w.at(1));
      }
      ASSERT_TRUE(sameBits(y.at(k), sum * 0.5F)) << k << " of " << quarters;
      ASSERT_EQ(t.at(k), limited<std::int16_t>(low32(halves16)));
      ASSERT_EQ(u.at(k), limited<std::int32_t>(shifted(halves32, factor)));
      ASSERT_EQ(v.at(k), shifted(halves32, factor));
    }
  });
}

TEST(SmoothedPowerSpectrum, WrapsWhereItAlwaysHas) {
  std::vector<std::int16_t> s(8, INT16_MIN), t(3);
  ASSERT_EQ(orvsSmoothedPowerSpectrumAurora_16s(s.data(), t.data(), 8), orvStsNoErr);
  EXPECT_EQ(t, (std::vector<std::int16_t>{INT16_MAX, INT16_MIN, INT16_MAX}));
  // Odd squares lose their low bits one by one; the Nyquist square of 65536 wraps to 0.
  const std::vector<std::int32_t> w{1, 65536, 3, 5, 46341, 0, 0, 0};
  std::vector<std::int32_t> u(3);
  ASSERT_EQ(orvsSmoothedPowerSpectrumAurora_32s_Sfs(w.data(), u.data(), 8, 0), orvStsNoErr);
  EXPECT_EQ(u, (std::vector<std::int32_t>{0 + 4 + 12, 46341LL * 46341 / 2, 0}));
}

float updated(float a, float b, float sum, float weighted) {
  return b * (a / sum * 0.1F * (b / weighted + 1) + 0.9F);
}

TEST(NoiseSpectrumUpdate, FollowsItsFormulaInEachForm) {
  Random random(2);
  forLengths([&](std::size_t len, std::size_t offset) {
    const auto n = static_cast<std::int32_t>(len);
    auto values = uniform<float>(random, 2 * len, -1e-5, 1e-5);
    for (float &v : values) v *= random() % 2 ? 1 : 1e6F;
    std::vector<std::int16_t> shorts(2 * len);
    for (auto &v : shorts) v = static_cast<std::int16_t>(random() % 3 ? random() % 40 - 20 : random());
    std::vector<std::int32_t> longs(2 * len);
    for (auto &v : longs) v = static_cast<std::int32_t>(random() % 3 ? random() % 40 - 20 : random());
    const int factor = static_cast<int>(random() % 8) - 4;
    const float scale = std::ldexp(1.0F, -factor);
    const Guarded<float> x(values, offset);
    const Guarded<std::int16_t> s(shorts, offset);
    const Guarded<std::int32_t> w(longs, offset);
    Guarded<float> y(len);
    Guarded<std::int16_t> t(len);
    Guarded<std::int32_t> u(len, 2);
    ASSERT_EQ(orvsNoiseSpectrumUpdate_Aurora_32f(x.data(), x.data() + n, y.data(), n), orvStsNoErr);
    ASSERT_EQ(orvsNoiseSpectrumUpdate_Aurora_16s_Sfs(s.data(), s.data() + n, t.data(), n, factor),
              orvStsNoErr);
    ASSERT_EQ(orvsNoiseSpectrumUpdate_Aurora_32s_Sfs(w.data(), w.data() + n, u.data(), n, factor),
              orvStsNoErr);
    for (std::size_t i = 0; i < len; ++i) {
      const float a = x.at(i), b = x.at(len + i), weighted = 0.1F * a + b;
      ASSERT_TRUE(sameBits(y.at(i), a + b < 1e-6F || weighted < 1e-6F ? 0 : updated(a, b, a + b, weighted)));
      {
        const float p = s.at(i), q = s.at(len + i), r = 0.1F * p + q;
        const float v = p + q == 0 || std::fabs(r) < 1 ? 0 : updated(p, q, p + q, r) * scale;
        ASSERT_EQ(t.at(i), v > 32767 ? 32767 : static_cast<std::int16_t>(std::max(v, -32768.0F)));
      }
      const auto p = static_cast<float>(w.at(i)), q = static_cast<float>(w.at(len + i));
      const std::int32_t sum = low32(std::int64_t{w.at(i)} + w.at(len + i)),
                         r = low32(std::int64_t{static_cast<std::int32_t>(0.1F * p)} + w.at(len + i));
      const float v =
          sum == 0 || r == 0 ? 0 : updated(p, q, static_cast<float>(sum), static_cast<float>(r)) * scale;
      ASSERT_EQ(u.at(i), std::fabs(v) < 2147483648.0F ? static_cast<std::int32_t>(v) : INT32_MIN) << v;
    }
  });
}

TEST(NoiseSpectrumUpdate, KeepsItsGuardsAndLimits) {
  const std::vector<float> zero{0, NAN};
  float noise[2] = {5, 5};
  ASSERT_EQ(orvsNoiseSpectrumUpdate_Aurora_32f(zero.data(), zero.data(), noise, 2), orvStsNoErr);
  EXPECT_EQ(noise[0], 0);
  EXPECT_TRUE(std::isnan(noise[1]));
  // In place; 1 and 0: 0.1 truncates to 0.
  std::int16_t s[] = {1, 30000, -30000}, previous[] = {0, 30000, -30000};
  ASSERT_EQ(orvsNoiseSpectrumUpdate_Aurora_16s_Sfs(s, previous, previous, 3, -20), orvStsNoErr);
  EXPECT_EQ(previous[0], 0);
  EXPECT_EQ(previous[1], 32767);
  EXPECT_EQ(previous[2], -32768);
  // Above 32 bits is the most negative number here.
  const std::int32_t w[] = {(1 << 30) - 1};
  std::int32_t u[1];
  ASSERT_EQ(orvsNoiseSpectrumUpdate_Aurora_32s_Sfs(w, w, u, 1, -2), orvStsNoErr);
  EXPECT_EQ(u[0], INT32_MIN);
  // 0.1 a is truncated before b is added: 19 counts as 1.
  const std::int32_t a[] = {19}, b[] = {2};
  ASSERT_EQ(orvsNoiseSpectrumUpdate_Aurora_32s_Sfs(a, b, u, 1, -20), orvStsNoErr);
  EXPECT_EQ(u[0], static_cast<std::int32_t>(updated(19, 2, 21, 3) * 1048576));
}

TEST(WienerFilterDesign, FollowsItsFormulaInEachForm) {
  Random random(3);
  forLengths([&](std::size_t len, std::size_t offset) {
    const auto n = static_cast<std::int32_t>(len);
    auto values = uniform<float>(random, 3 * len, 0, 10);
    std::vector<std::int16_t> shorts(3 * len);
    for (auto &v : shorts) v = static_cast<std::int16_t>((random() & 0x7FFF) >> (random() % 16));
    if (len > 2) values[len + 1] = 0, shorts[len + 1] = 0, shorts[0] = 0;
    const Guarded<float> x(values, offset);
    const Guarded<std::int16_t> s(shorts, offset);
    Guarded<float> y(len, 4);
    Guarded<std::int16_t> t(len);
    ASSERT_EQ(orvsWienerFilterDesign_Aurora_32f(x.data(), x.data() + n, x.data() + 2 * n, y.data(), n),
              orvStsNoErr);
    ASSERT_EQ(orvsWienerFilterDesign_Aurora_16s(s.data(), s.data() + n, s.data() + 2 * n, t.data(), n),
              orvStsNoErr);
    for (std::size_t i = 0; i < len; ++i) {
      const float r = 1 / x.at(len + i);
      const float e = (std::max(0.0F, x.at(i) - x.at(len + i)) * 0.02F + x.at(2 * len + i) * 0.98F) * r;
      float g = x.at(i) * (e / (1 + e)) * r;
      if (!(g > 0.07943282F)) g = 0.07943282F;
      ASSERT_TRUE(sameBits(y.at(i), g / (1 + g))) << i;
      const std::int64_t X = s.at(i), N = s.at(len + i), P = s.at(2 * len + i);
      std::int64_t gain = 1206;
      if (N != 0) {
        const std::int64_t q = 16384 / N, eQ = ((4014 * P + 82 * std::max<std::int64_t>(X - N, 0)) * q) >> 14;
        const std::int64_t gQ = std::max<std::int64_t>(((X * (eQ * 16384 / (eQ + 4096))) >> 14) * q, 1301);
        gain = gQ * 128 / ((gQ >> 7) + 128);
      }
      ASSERT_EQ(t.at(i), gain) << X << ' ' << N << ' ' << P;
    }
  });
  const float none = 0, one = 1;
  float gain;
  ASSERT_EQ(orvsWienerFilterDesign_Aurora_32f(&one, &none, &one, &gain, 1), orvStsNoErr);
  EXPECT_EQ(gain, 0.07943282F / 1.07943282F);
  // Negative input has no meaning, and is survived: e is -4096 at first. Noise above 16384 leaves the floor.
  const std::int16_t x[] = {5, 32767}, noise[] = {16384, 16385}, denoised[] = {-16718, 32767};
  std::int16_t q14[2] = {};
  ASSERT_EQ(orvsWienerFilterDesign_Aurora_16s(x, noise, denoised, q14, 2), orvStsNoErr);
  EXPECT_TRUE(q14[0] == 1206 && q14[1] == 1206) << q14[0] << ' ' << q14[1];
}

TEST(ResidualFilter, TakesTapsAroundTheCentre) {
  std::vector<std::int16_t> response{0, 1, 2, 3, 4, 5, 6, 7, 8, 9};
  const Guarded<std::int16_t> t(response, 1);
  const Guarded<float> x(std::vector<float>(response.begin(), response.end()), 4);
  Guarded<std::int16_t> taps(17);
  Guarded<float> singles(17, 2);
  ASSERT_EQ(orvsTabsCalculation_Aurora_16s(t.data(), taps.data()), orvStsNoErr);
  ASSERT_EQ(orvsTabsCalculation_Aurora_32f(x.data(), singles.data()), orvStsNoErr);
  const std::vector<int> expected{8, 7, 6, 5, 4, 3, 2, 1, 0, 2, 3, 4, 5, 6, 7, 8, 9};
  for (std::size_t k = 0; k < 17; ++k) EXPECT_TRUE(taps.at(k) == expected[k] && singles.at(k) == taps.at(k));
}

TEST(ResidualFilter, SumsExactlyAndShiftsWithoutRounding) {
  Random random(4);
  for (int round = 0; round < 400; ++round) {
    // Taps that leave 32 bits room, that just do, and that do not.
    auto taps = round % 4 == 0   ? anyIntegers<std::int16_t>(random, 17)
                : round % 4 == 1 ? wholeNumbers<std::int16_t>(random, 17, 3855)
                                 : wholeNumbers<std::int16_t>(random, 17, 200);
    if (round % 16 == 3) std::fill(taps.begin(), taps.end(), INT16_MIN);
    if (round % 16 == 7) {
      std::fill(taps.begin(), taps.end(), std::int16_t{3855});  // 65535 together
    }
    auto samples = anyIntegers<std::int16_t>(random, 96);
    if (round % 8 > 5) std::fill(samples.begin(), samples.end(), INT16_MIN);
    const Guarded<std::int16_t> src(samples, random() % 16), h(taps, random() % 16);
    Guarded<std::int16_t> dst(80, random() % 16);
    const int factor = std::vector{0, 1, 15, 16, 31, 32, 63, 64, 79, -1, -3, -64, -63}[random() % 13];
    ASSERT_EQ(orvsResidualFilter_Aurora_16s_Sfs(src.data(), dst.data(), h.data(), factor), orvStsNoErr);
    const Guarded<float> x(wholeNumbers<float>(random, 96, 100), random() % 16),
        g(wholeNumbers<float>(random, 17, 100), random() % 16);
    Guarded<float> y(80, random() % 16);
    ASSERT_EQ(orvsResidualFilter_Aurora_32f(x.data(), y.data(), g.data()), orvStsNoErr);
    for (std::size_t n = 0; n < 80; ++n) {
      std::int64_t sum = 0;
      float single = 0;
      for (std::size_t k = 0; k < 17; ++k) {
        sum += src.at(n + k) * h.at(k);
        single += x.at(n + k) * g.at(k);
      }
      ASSERT_EQ(dst.at(n), limited<std::int16_t>(shifted(sum, factor))) << round << ' ' << n << ' ' << factor;
      ASSERT_EQ(y.at(n), single);
    }
  }
}

TEST(NoiseReduction, ChecksPointersBeforeLengths) {
  for (const std::int32_t len : {-4, 0, 4, 6}) {
    const OrvStatus size = len == 4 ? orvStsNoErr : orvStsSizeErr;
    for (int hole = -1; hole < 2; ++hole) {
      double memory[8] = {}, result[8];
      std::fill_n(result, 8, -1.0);
      const Pointers src{memory, hole}, dst{result, hole};
      const OrvStatus status = hole < 0 ? size : orvStsNullPtrErr;
      EXPECT_EQ(orvsSmoothedPowerSpectrumAurora_32f(src[0], dst[1], len), status);
      EXPECT_EQ(orvsSmoothedPowerSpectrumAurora_16s(src[0], dst[1], len), status);
      EXPECT_EQ(orvsSmoothedPowerSpectrumAurora_32s_Sfs(src[0], dst[1], len, 0), status);
      EXPECT_EQ(orvsSmoothedPowerSpectrumAurora_32s64s_Sfs(src[0], dst[1], len, 0), status);
      EXPECT_EQ(std::all_of(result, result + 8, [](double v) { return v == -1; }), status != orvStsNoErr);
    }
  }
  using P = const Pointers &;
  expectOrder(kNullSize, 3, 1, [](P p, int n, int, int h) {
    return orvsNoiseSpectrumUpdate_Aurora_32f(p[0], p[1], p[2], std::min(n, h));
  });
  expectOrder(kNullSize, 3, 1, [](P p, int n, int, int h) {
    return orvsNoiseSpectrumUpdate_Aurora_16s_Sfs(p[0], p[1], p[2], std::min(n, h), 0);
  });
  expectOrder(kNullSize, 3, 1, [](P p, int n, int, int h) {
    return orvsNoiseSpectrumUpdate_Aurora_32s_Sfs(p[0], p[1], p[2], std::min(n, h), 0);
  });
  expectOrder(kNullSize, 4, 1, [](P p, int n, int, int h) {
    return orvsWienerFilterDesign_Aurora_32f(p[0], p[1], p[2], p[3], std::min(n, h));
  });
  expectOrder(kNullSize, 4, 1, [](P p, int n, int, int h) {
    return orvsWienerFilterDesign_Aurora_16s(p[0], p[1], p[2], p[3], std::min(n, h));
  });
  const Order null{orvStsNullPtrErr};
  expectOrder(null, 2, 1, [](P p, int, int, int) { return orvsTabsCalculation_Aurora_32f(p[0], p[1]); });
  expectOrder(null, 2, 1, [](P p, int, int, int) { return orvsTabsCalculation_Aurora_16s(p[0], p[1]); });
  expectOrder(null, 3, 1, [](P p, int, int, int) { return orvsResidualFilter_Aurora_32f(p[0], p[1], p[2]); });
  expectOrder(null, 3, 1,
              [](P p, int, int, int) { return orvsResidualFilter_Aurora_16s_Sfs(p[0], p[1], p[2], 0); });
}

}  // namespace
