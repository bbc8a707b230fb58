#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>

#include "orvsr/frontend.h"
#include "support/arrays.h"

using namespace orv::test;

namespace {

constexpr float kInf = INFINITY;

TEST(NormEnergy, ClampsToTheFloorAndScalesOnlyItsColumn) {
  for (const int step : {1, 3}) {
    Guarded<float> column(static_cast<std::size_t>(3 * step + 1), 4);
    for (std::size_t i = 0; i < 4; ++i)
      column.set(i * static_cast<std::size_t>(step), std::vector<float>{-100, 7, 3, 6.5F}[i]);
    const float floor = 7 - 10 * 0.230259F;
    ASSERT_EQ(orvsNormEnergy_32f(column.data(), step, 4, 10, 0.1F), orvStsNoErr);
    for (std::size_t i = 0; i < 4; ++i)
      EXPECT_EQ(column.at(i * static_cast<std::size_t>(step)),
                1 - (7 - std::vector<float>{floor, 7, floor, 6.5F}[i]) * 0.1F);
  }
  float one = -1e9F, running[2] = {50, 30};
  EXPECT_EQ(orvsNormEnergy_32f(&one, 1, 1, 0, 3), orvStsNoErr);
  EXPECT_EQ(one, 1);
  EXPECT_EQ(orvsNormEnergy_RT_32f(running, 1, 2, 1000, 40, 0.5F), orvStsNoErr);
  EXPECT_EQ(running[0], 6);  // above the given maximum, and not held back by it
  EXPECT_EQ(running[1], -4);
  // Truncation toward zero on both sides, saturation at both ends.
  std::int16_t shorts[] = {100, 97, 0, 77, 93};
  EXPECT_EQ(orvsNormEnergy_16s(shorts, 2, 3, 1000, 5, 2.5F), orvStsNoErr);
  EXPECT_TRUE(std::ranges::equal(shorts, std::vector{5, 97, -245, 77, -12}));
  std::int16_t ends[] = {-32768, 32767};
  EXPECT_EQ(orvsNormEnergy_RT_16s(ends, 1, 2, 32767, 0, 0, 2), orvStsNoErr);
  EXPECT_TRUE(
      std::ranges::equal(ends, std::vector{-15089, 32767}));  // the floor, at 32767 dB, and the upper end
  EXPECT_EQ(orvsNormEnergy_RT_16s(ends, 1, 1, 32767, 0, 0, 1e9F), orvStsNoErr);
  EXPECT_EQ(ends[0], -32768);
}

TEST(SignChange, CountsByItsOwnRule) {
  const float tiny = 1e-30F;
  const std::vector<float> values{1, -1, 0, -1, 1, 0, 2, -0.0F, 0, tiny, -tiny, NAN, -3};
  const std::vector<std::int16_t> shorts{1, -1, 0, -1, 1, 0, 2, -32768, 32767, -32768, -32768, 0};
  float rate = -1, halves = -1;
  std::int32_t bits = -1, whole = -1, wholeHalves = -1;
  EXPECT_EQ(orvsSignChangeRate_32f(values.data(), 13, &rate), orvStsNoErr);
  EXPECT_EQ(rate, 2);  // tiny * -tiny vanishes in single precision
  EXPECT_EQ(orvsSignChangeRate_Count0_32f(values.data(), 13, &halves), orvStsNoErr);
  EXPECT_EQ(halves, 0.5F * (2 + 1 + 1 + 2 + 1 + 1 + 1 + 0 + 1 + 2 + 1 + 1));
  EXPECT_EQ(orvsSignChangeRateXor_32f(values.data(), 11, &bits), orvStsNoErr);
  EXPECT_EQ(bits, 7);
  std::vector<float> many(70);
  float sum = 0;
  const auto sign = [](float v) { return v > 0 ? 1 : v < 0 ? -1 : 0; };
  for (std::size_t i = 0; i < many.size(); ++i) {
    many[i] = values[i * i % 13];
    if (i > 0) sum += static_cast<float>(std::abs(sign(many[i]) - sign(many[i - 1])));
    ASSERT_EQ(orvsSignChangeRate_Count0_32f(many.data(), static_cast<std::int32_t>(i) + 1, &halves),
              orvStsNoErr);
    ASSERT_EQ(halves, sum * 0.5F) << i;
  }
  EXPECT_EQ(orvsSignChangeRate_16s(shorts.data(), 12, &whole), orvStsNoErr);
  EXPECT_EQ(whole, 5);
  EXPECT_EQ(orvsSignChangeRate_Count0_16s(shorts.data(), 12, &wholeHalves), orvStsNoErr);
  EXPECT_EQ(wholeHalves, (2 + 1 + 1 + 2 + 1 + 1 + 2 + 2 + 2 + 0 + 1) / 2);
  EXPECT_EQ(orvsSignChangeRate_32f(values.data(), 1, &rate), orvStsNoErr);
  EXPECT_EQ(rate, 0);
  Random random(2);
  for (std::size_t len = 2; len < 40; ++len) {
    const Guarded<float> x(wholeNumbers<float>(random, len, 2), 4 * (len % 5));
    float count = 0;
    for (std::size_t i = 1; i < len; ++i) count += x.at(i) * x.at(i - 1) < 0 ? 1.0F : 0.0F;
    EXPECT_EQ(orvsSignChangeRate_32f(x.data(), x.len(), &rate), orvStsNoErr);
    EXPECT_EQ(rate, count);
  }
}

TEST(ZeroMean, RoundsAwayFromZeroOnBothSides) {
  std::int16_t flat[] = {-7, -7, -7}, ends[] = {32767, -32768, 32767}, odd[] = {0, 1, 0, -1, 2, 0, 0, 0};
  EXPECT_EQ(orvsZeroMean_16s(flat, 3), orvStsNoErr);
  EXPECT_TRUE(std::ranges::equal(flat, std::vector{0, 0, 0}));
  EXPECT_EQ(orvsZeroMean_16s(ends, 3), orvStsNoErr);
  EXPECT_TRUE(std::ranges::equal(ends, std::vector{21845, -32767, 21845}));
  EXPECT_EQ(orvsZeroMean_16s(odd, 8), orvStsNoErr);  // a mean of 1/4
  EXPECT_TRUE(std::ranges::equal(odd, std::vector{0, 1, 0, -1, 2, 0, 0, 0}));
  std::int16_t halves[] = {1, 0, 3, -2};  // a mean of 1/2
  EXPECT_EQ(orvsZeroMean_16s(halves, 4), orvStsNoErr);
  EXPECT_TRUE(std::ranges::equal(halves, std::vector{1, -1, 3, -3}));
}

TEST(CompensateOffset, KeepsItsMemoryAndRoundsByTheRangeOfItsFactor) {
  const float x[] = {3, 5, 4};
  float y[3], last = 1;
  EXPECT_EQ(orvsCompensateOffset_32f(x, y, 3, &last, 10, 0.5F), orvStsNoErr);
  EXPECT_TRUE(std::ranges::equal(y, std::vector<float>{7, 5.5F, 1.75F}));
  EXPECT_EQ(last, 4);
  // At a factor of 1 integers with a truncated factor, above it rounding to nearest; the first sample
  // truncates.
  struct Case {
    float val;
    std::vector<int> x, y;
    std::int16_t last, dstLast;
  };
  const Case cases[] = {
      {0.999F, {0, 0, 0, 0}, {-9, -9, -9, -9}, 0, -10},  // 4091 / 4096, shifted down
      {1.001F, {0, 0, 0, 0}, {-10, -10, -10, -10}, 0, -10},
      {-1, {5, 5, 4}, {-1, 1, -2}, 0, 6},
      {1.25F, {0, 0, 0, 0}, {3, 4, 5, 6}, 0, 3},  // 3.75 down, then 3.75, 5, 6.25 to nearest
      {-1.5F, {0, 0, 0}, {4, -6, 9}, 0, -3},      // 4.5 down
      {-1.5F, {0, 1, 1}, {4, -5, 8}, 0, -3},      // 7.5 up
      {2, {32767, 32767, 0}, {32767, 32767, 32767}, -32768, 0},
      {0.5F, {-32768, 32767, -32768}, {-32768, 32767, -32768}, 32767, 0},
  };
  for (const Case &c : cases) {
    std::vector<std::int16_t> source(c.x.begin(), c.x.end()), result(c.x.size());
    std::int16_t memory = c.last, memoryInPlace = c.last;
    const auto len = static_cast<std::int32_t>(source.size());
    EXPECT_EQ(orvsCompensateOffset_16s(source.data(), result.data(), len, &memory, c.dstLast, c.val),
              orvStsNoErr);
    EXPECT_TRUE(std::ranges::equal(result, c.y)) << c.val << ' ' << result[1] << ' ' << result[2];
    EXPECT_EQ(memory, source.back());
    EXPECT_EQ(orvsCompensateOffset_16s_I(source.data(), len, &memoryInPlace, c.dstLast, c.val), orvStsNoErr);
    EXPECT_EQ(source, result);
    EXPECT_EQ(memoryInPlace, memory);
  }
}

TEST(CompensateOffset, Q15FollowsWideArithmeticOverLongSignals) {
  Random random(8);
  for (const int val : {0, 1, 16384, 32735, 32767}) {
    const Guarded<std::int16_t> source(anyIntegers<std::int16_t>(random, 3000), 2);
    Guarded<std::int16_t> dst(3000, 6), inPlace(source.values());
    std::int16_t last = 100, lastInPlace = 100;
    const auto factor = static_cast<std::int16_t>(val);
    ASSERT_EQ(orvsCompensateOffsetQ15_16s(source.data(), dst.data(), 3000, &last, -77, factor), orvStsNoErr);
    ASSERT_EQ(orvsCompensateOffsetQ15_16s_I(inPlace.data(), 3000, &lastInPlace, -77, factor), orvStsNoErr);
    std::int64_t x1 = 100, y1 = -77;
    for (std::size_t i = 0; i < 3000; ++i) {
      const double exact = std::trunc(
          (static_cast<double>(source.at(i) - x1) * 32768 + static_cast<double>(y1 * val)) / 32768);
      y1 = static_cast<std::int64_t>(std::clamp(exact, -32768.0, 32767.0));
      x1 = source.at(i);
      ASSERT_EQ(dst.at(i), y1) << i;
      ASSERT_EQ(inPlace.at(i), y1) << i;
    }
    EXPECT_EQ(last, x1);
    EXPECT_EQ(lastInPlace, x1);
  }
}

TEST(Entropy, KeepsItsSignAndStopsAtANegativeElement) {
  float h = 9;
  const float p[] = {0.5F, 0, 0.5F, -1};
  EXPECT_EQ(orvsEntropy_32f(p, 3, &h), orvStsNoErr);
  EXPECT_EQ(h, -1);
  EXPECT_EQ(orvsEntropy_32f(p, 4, &h), orvStsNegVarWrn);
  EXPECT_TRUE(std::isnan(h) && std::signbit(h));
  std::int32_t whole = 9;
  const std::int16_t q[] = {8, 0, 8, -1};
  EXPECT_EQ(orvsEntropy_16s32s_Sfs(q, 4, 3, &whole, -10), orvStsNoErr);
  EXPECT_EQ(whole, -1024);
  EXPECT_EQ(orvsEntropy_16s32s_Sfs(q, 4, 4, &whole, 0), orvStsNegVarWrn);
  EXPECT_EQ(whole, -1024);
  EXPECT_EQ(orvsEntropy_16s32s_Sfs(q, -4, 3, &whole, -30), orvStsNoErr);
  EXPECT_EQ(whole, INT32_MAX);
  EXPECT_EQ(orvsEntropy_16s32s_Sfs(q, 4, 3, &whole, -40), orvStsNoErr);
  EXPECT_EQ(whole, INT32_MIN);
}

TEST(UnitCurve, RisesFromZeroToTwo) {
  std::vector<float> x{-1, -0.0F, 0.5F, 1, 1.5F, 2, 2.5F, kInf, -kInf}, y(x.size());
  EXPECT_EQ(orvsUnitCurve_32f(x.data(), y.data(), 9), orvStsNoErr);
  EXPECT_EQ(y, (std::vector<float>{0, 0, 0.25F, 1, 1.75F, 2, 2, 2, 0}));
  EXPECT_EQ(orvsUnitCurve_32f_I(x.data(), 9), orvStsNoErr);
  EXPECT_EQ(x, y);
  // Each value by itself and in any company, a NaN too.
  std::vector<float> mixed{0.25F, NAN, -2, 1.75F, 3, 1, 0.5F}, alone = mixed;
  EXPECT_EQ(orvsUnitCurve_32f_I(mixed.data(), 7), orvStsNoErr);
  for (std::size_t i = 0; i < 7; ++i) {
    EXPECT_EQ(orvsUnitCurve_32f_I(&alone[i], 1), orvStsNoErr);
    EXPECT_TRUE(sameBits(mixed[i], alone[i])) << i;
  }
  std::vector<std::int16_t> s{-5, 0, 2, 4, 6, 8, 100}, t(7);
  EXPECT_EQ(orvsUnitCurve_16s_Sfs(s.data(), 2, t.data(), 7, -4), orvStsNoErr);
  EXPECT_EQ(t, (std::vector<std::int16_t>{0, 0, 4, 16, 28, 32, 32}));
  EXPECT_EQ(orvsUnitCurve_16s_Sfs(s.data(), 2, t.data(), 7, -15), orvStsNoErr);
  EXPECT_EQ(t, (std::vector<std::int16_t>{0, 0, 8192, 32767, 32767, 32767, 32767}));
  std::vector<std::int16_t> top{32767, 16384, 16383, 1};
  EXPECT_EQ(orvsUnitCurve_16s_ISfs(top.data(), 14, 4, -14), orvStsNoErr);
  EXPECT_EQ(top, (std::vector<std::int16_t>{32767, 16384, 16382, 0}));
  for (const int shift : {-1, 15}) {
    EXPECT_EQ(orvsUnitCurve_16s_Sfs(s.data(), shift, t.data(), 7, -4), orvStsNoErr);
    EXPECT_EQ(t, std::vector<std::int16_t>(7));
  }
}

// One element type pair of the range normalisers, through either form.
template <class In, class Out, class Range>
void checkNormalizers(OrvStatus (*own)(const In *, Out *, std::int32_t, float, float, Range),
                      OrvStatus (*given)(const In *, Out *, std::int32_t, In, In, float, float, Range),
                      bool refusesNegative) {
  const std::vector<In> x{10, 20, 30, 40, 50, 60, 70, 80, 90};
  std::vector<Out> y(9, 1), z(9, 1);
  ASSERT_EQ(own(x.data(), y.data(), 9, 0.25F, 0.75F, 100), orvStsNoErr);
  for (std::size_t i = 0; i < 9; ++i) {
    const float v = std::max(0.0F, std::min(70.0F, static_cast<float>(x[i])) - 30) * (100 / 40.0F);
    EXPECT_EQ(y[i], static_cast<Out>(v));
  }
  ASSERT_EQ(given(x.data(), z.data(), 9, 0, 100, 0.3F, 0.7F, 100), orvStsNoErr);
  EXPECT_EQ(z[0], 0);
  EXPECT_NEAR(static_cast<double>(z[8]), 100, 1);
  EXPECT_EQ(given(x.data(), z.data(), 9, 50, 50, 0, 1, 100), orvStsDegenerateDataWrn);
  EXPECT_EQ(z, std::vector<Out>(9));
  EXPECT_EQ(own(x.data(), y.data(), 1, 0, 1, 100), orvStsDegenerateDataWrn);
  EXPECT_EQ(y[0], 0);
  EXPECT_EQ(own(nullptr, y.data(), 0, 2, 1, 100), orvStsNullPtrErr);
  EXPECT_EQ(given(x.data(), nullptr, 0, 2, 1, 2, 1, 100), orvStsNullPtrErr);
  EXPECT_EQ(own(x.data(), y.data(), 0, 2, 1, 100), orvStsSizeErr);
  EXPECT_EQ(given(x.data(), y.data(), 0, 2, 1, 2, 1, 100), orvStsSizeErr);
  for (const auto &[lower, upper] : {std::pair{-0.1F, 1.0F}, {0.5F, 0.5F}, {0.0F, 1.01F}}) {
    EXPECT_EQ(own(x.data(), y.data(), 9, lower, upper, 100), orvStsBadArgErr);
    EXPECT_EQ(given(x.data(), y.data(), 9, 1, 2, lower, upper, 100), orvStsBadArgErr);
  }
  EXPECT_EQ(given(x.data(), y.data(), 9, 2, 1, 0, 1, 100), orvStsBadArgErr);
  EXPECT_EQ(own(x.data(), y.data(), 9, 0, 1, static_cast<Range>(-8)),
            refusesNegative ? orvStsBadArgErr : orvStsNoErr);
  EXPECT_EQ(given(x.data(), y.data(), 9, 1, 2, 0, 1, static_cast<Range>(-8)),
            refusesNegative ? orvStsBadArgErr : orvStsNoErr);
}

TEST(NormalizeInRange, ClampsBetweenTheRatios) {
  checkNormalizers<float, float, float>(orvsNormalizeInRange_32f, orvsNormalizeInRangeMinMax_32f, true);
  checkNormalizers<float, std::int16_t, std::int32_t>(orvsNormalizeInRange_32f16s,
                                                      orvsNormalizeInRangeMinMax_32f16s, false);
  checkNormalizers<float, std::uint8_t, std::int32_t>(orvsNormalizeInRange_32f8u,
                                                      orvsNormalizeInRangeMinMax_32f8u, false);
  checkNormalizers<std::int16_t, std::int16_t, std::int32_t>(orvsNormalizeInRange_16s,
                                                             orvsNormalizeInRangeMinMax_16s, false);
  checkNormalizers<std::int16_t, std::uint8_t, std::int32_t>(orvsNormalizeInRange_16s8u,
                                                             orvsNormalizeInRangeMinMax_16s8u, false);
  std::vector<float> f{1, 2, 5}, g = f;
  EXPECT_EQ(orvsNormalizeInRange_32f_I(f.data(), 3, 0, 1, 8), orvStsNoErr);
  EXPECT_EQ(orvsNormalizeInRangeMinMax_32f_I(g.data(), 3, 1, 5, 0, 1, 8), orvStsNoErr);
  EXPECT_EQ(f, (std::vector<float>{0, 2, 8}));
  EXPECT_EQ(g, f);
  EXPECT_EQ(orvsNormalizeInRange_32f_I(f.data(), 3, 0, 1, -8), orvStsBadArgErr);
  // Full-scale integers: the width does not fit in 16 bits, and single precision carries it.
  std::vector<std::int16_t> s{-32768, -16384, 32767}, t = s;
  EXPECT_EQ(orvsNormalizeInRange_16s_I(s.data(), 3, 0, 1, 32767), orvStsNoErr);
  EXPECT_EQ(orvsNormalizeInRangeMinMax_16s_I(t.data(), 3, -32768, 32767, 0, 1, 32767), orvStsNoErr);
  EXPECT_EQ(s, (std::vector<std::int16_t>{0, 8191, 32767}));
  EXPECT_EQ(t, s);
}

TEST(FrameMeasures, CheckPointersThenLengths) {
  float f = 1;
  std::int16_t s = 1;
  std::int32_t n = 1;
  const std::function<OrvStatus(bool, std::int32_t)> calls[] = {
      [&](bool ok, std::int32_t len) { return orvsNormEnergy_32f(ok ? &f : nullptr, len, 1, 0, 1); },
      [&](bool ok, std::int32_t len) { return orvsNormEnergy_16s(ok ? &s : nullptr, 1, len, 0, 1, 1); },
      [&](bool ok, std::int32_t len) { return orvsNormEnergy_RT_32f(ok ? &f : nullptr, 1, len, 0, 1, 1); },
      [&](bool ok, std::int32_t len) { return orvsNormEnergy_RT_16s(ok ? &s : nullptr, len, 1, 0, 1, 1, 1); },
      [&](bool ok, std::int32_t len) { return orvsSignChangeRate_32f(&f, len, ok ? &f : nullptr); },
      [&](bool ok, std::int32_t len) { return orvsSignChangeRate_16s(&s, len, ok ? &n : nullptr); },
      [&](bool ok, std::int32_t len) { return orvsSignChangeRate_Count0_32f(ok ? &f : nullptr, len, &f); },
      [&](bool ok, std::int32_t len) { return orvsSignChangeRate_Count0_16s(ok ? &s : nullptr, len, &n); },
      [&](bool ok, std::int32_t len) { return orvsSignChangeRateXor_32f(ok ? &f : nullptr, len, &n); },
      [&](bool ok, std::int32_t len) { return orvsEntropy_32f(ok ? &f : nullptr, len, &f); },
      [&](bool ok, std::int32_t len) { return orvsEntropy_16s32s_Sfs(ok ? &s : nullptr, 0, len, &n, 0); },
      [&](bool ok, std::int32_t len) { return orvsUnitCurve_32f(&f, ok ? &f : nullptr, len); },
      [&](bool ok, std::int32_t len) { return orvsUnitCurve_32f_I(ok ? &f : nullptr, len); },
      [&](bool ok, std::int32_t len) { return orvsUnitCurve_16s_Sfs(ok ? &s : nullptr, 1, &s, len, 0); },
      [&](bool ok, std::int32_t len) { return orvsUnitCurve_16s_ISfs(ok ? &s : nullptr, 1, len, 0); },
      [&](bool ok, std::int32_t len) {
        return orvsCompensateOffset_32f(&f, &f, len, ok ? &f : nullptr, 0, 0);
      },
      [&](bool ok, std::int32_t len) { return orvsCompensateOffset_32f_I(&f, len, ok ? &f : nullptr, 0, 0); },
      [&](bool ok, std::int32_t len) {
        return orvsCompensateOffset_16s(&s, ok ? &s : nullptr, len, &s, 0, 0);
      },
      [&](bool ok, std::int32_t len) { return orvsCompensateOffset_16s_I(&s, len, ok ? &s : nullptr, 0, 0); },
      [&](bool ok, std::int32_t len) {
        return orvsCompensateOffsetQ15_16s(&s, ok ? &s : nullptr, len, &s, 0, -1);
      },
      [&](bool ok, std::int32_t len) {
        return orvsCompensateOffsetQ15_16s_I(&s, len, ok ? &s : nullptr, 0, -1);
      },
  };
  for (std::size_t i = 0; i < std::size(calls); ++i) {
    EXPECT_EQ(calls[i](false, 0), orvStsNullPtrErr) << i;
    EXPECT_EQ(calls[i](true, 0), orvStsSizeErr) << i;
  }
  EXPECT_EQ(orvsZeroMean_16s(nullptr, 0), orvStsSizeErr);
  EXPECT_EQ(orvsZeroMean_16s(nullptr, 1), orvStsNullPtrErr);
  EXPECT_EQ(orvsCompensateOffsetQ15_16s(&s, &s, 65536, &s, 0, -1), orvStsSizeErr);
  EXPECT_EQ(orvsCompensateOffsetQ15_16s_I(&s, 1, &s, 0, -1), orvStsBadArgErr);
  std::vector<std::int16_t> longest(65535);
  EXPECT_EQ(orvsCompensateOffsetQ15_16s_I(longest.data(), 65535, &s, 0, 32767), orvStsNoErr);
}

}  // namespace
