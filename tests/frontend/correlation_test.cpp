#include <gtest/gtest.h>

#include <algorithm>
#include <cfloat>
#include <cmath>

#include "orvsr/frontend.h"
#include "support/arrays.h"

using namespace orv::test;

namespace {

using Samples = std::vector<std::int16_t>;

float coefficient(double cross, float e1, float e2) {
  return std::fabs(e1 * e2) > FLT_MIN
             ? static_cast<float>(static_cast<double>(static_cast<float>(cross)) /
                                  (std::sqrt(static_cast<double>(e1)) * std::sqrt(static_cast<double>(e2))))
             : 0;
}

TEST(CrossCorrelation, IsExactBeforeEachRounding) {
  Random random(3);
  for (int len = 1; len <= 70; ++len) {
    const int limit = len % 3 == 0 ? 32767 : 40;
    const Guarded<std::int16_t> a(wholeNumbers<std::int16_t>(random, static_cast<std::size_t>(len), limit),
                                  static_cast<std::size_t>(len % 16 * 2));
    const Guarded<std::int16_t> b(wholeNumbers<std::int16_t>(random, static_cast<std::size_t>(len), limit),
                                  static_cast<std::size_t>(len / 3 % 16 * 2));
    double aa = 0, bb = 0, ab = 0;
    for (std::size_t i = 0; i < static_cast<std::size_t>(len); ++i) {
      aa += a.at(i) * a.at(i);
      bb += b.at(i) * b.at(i);
      ab += a.at(i) * b.at(i);
    }
    float result, partial;
    EXPECT_EQ(orvsCrossCorrCoeff_16s32f(a.data(), b.data(), len, &result), orvStsNoErr);
    EXPECT_TRUE(sameBits(result, coefficient(ab, static_cast<float>(aa), static_cast<float>(bb))));
    if (aa == 0) continue;
    EXPECT_EQ(orvsCrossCorrCoeffPartial_16s32f(a.data(), b.data(), len, &partial, static_cast<float>(4 * aa)),
              orvStsNoErr);
    EXPECT_TRUE(sameBits(partial, coefficient(ab, static_cast<float>(4 * aa), static_cast<float>(bb))));
  }
}

TEST(CrossCorrelation, TakesSilenceFullScaleAndOddEnergies) {
  const Samples silent(5), loud(5, INT16_MIN), quiet{1, 0, 0, 0, 0};
  float result = 9;
  EXPECT_EQ(orvsCrossCorrCoeff_16s32f(silent.data(), loud.data(), 5, &result), orvStsNoErr);
  EXPECT_EQ(result, 0);
  EXPECT_EQ(orvsCrossCorrCoeff_16s32f(loud.data(), loud.data(), 5, &result), orvStsNoErr);
  EXPECT_FLOAT_EQ(result, 1);
  EXPECT_EQ(orvsCrossCorrCoeffPartial_16s32f(loud.data(), loud.data(), 5, &result, -1), orvStsNoErr);
  EXPECT_TRUE(std::isnan(result));
  // The product of the energies decides, in single precision and excluding the smallest normal value itself.
  EXPECT_EQ(orvsCrossCorrCoeffPartial_16s32f(quiet.data(), quiet.data(), 5, &result, FLT_MIN), orvStsNoErr);
  EXPECT_EQ(result, 0);
  EXPECT_EQ(
      orvsCrossCorrCoeffPartial_16s32f(quiet.data(), quiet.data(), 5, &result, std::nextafter(FLT_MIN, 1.0F)),
      orvStsNoErr);
  EXPECT_GT(result, 1e18F);
}

TEST(CrossCorrelation, GrowsItsWindowsByOneTermALag) {
  Random random(4);
  for (int step = 1; step <= 4; ++step)
    for (int dotLen = 1; dotLen <= 7; ++dotLen)
      for (int extra = 0; extra <= 25; ++extra) {
        const int srcLen = dotLen + extra;
        const Guarded<std::int16_t> a(
            wholeNumbers<std::int16_t>(random, static_cast<std::size_t>(srcLen), 32767));
        const Guarded<std::int16_t> b(
            wholeNumbers<std::int16_t>(random, static_cast<std::size_t>(srcLen), 32767));
        const auto product = [](int x, int y) { return static_cast<float>(x * y); };
        const int lags = extra / step, first2 = (dotLen + step - 1) / step * step;
        float e1 = 0, e2 = 0;
        Guarded<float> dst(static_cast<std::size_t>(lags + 1));
        EXPECT_EQ(orvsCrossCorrCoeffDecim_16s32f(a.data(), b.data(), srcLen, dotLen, dst.data(), step),
                  orvStsNoErr);
        for (int p = 0; p <= lags; ++p) {
          const auto at = [](const Guarded<std::int16_t> &x, int i) {
            return int{x.at(static_cast<std::size_t>(i))};
          };
          float cross = 0;
          for (int i = 0; i < dotLen + p * step; i += step) {
            cross += product(at(a, extra - p * step + i), at(b, i));
            if (p == 0) {
              e1 += product(at(a, extra + i), at(a, extra + i));
              e2 += product(at(b, i), at(b, i));
            }
          }
          if (p > 0) {
            const int in1 = at(a, extra - p * step), in2 = at(b, first2 + (p - 1) * step);
            e1 += product(in1, in1);
            e2 += product(in2, in2);
          }
          ASSERT_TRUE(sameBits(dst.at(static_cast<std::size_t>(p)), coefficient(cross, e1, e2)))
              << step << ' ' << dotLen << ' ' << extra << ' ' << p;
        }
      }
}

TEST(CrossCorrelation, InterpolatesBetweenTwoLags) {
  // x lies at 0.3 between two phases of a sine: beta finds it.
  Samples x(200), y(201);
  for (std::size_t i = 0; i < y.size(); ++i)
    y[i] = static_cast<std::int16_t>(std::lround(20000 * std::sin(0.05 * static_cast<double>(i))));
  for (std::size_t i = 0; i < x.size(); ++i)
    x[i] = static_cast<std::int16_t>(std::lround(10000 * std::sin(0.05 * (static_cast<double>(i) + 0.3))));
  float beta = -1, result = -1;
  EXPECT_EQ(orvsCrossCorrCoeffInterpolation_16s32f(x.data(), y.data(), 200, &beta, &result), orvStsNoErr);
  EXPECT_NEAR(beta, 0.3, 2e-3);
  EXPECT_NEAR(result, 1, 1e-6);
  // Beyond the later lag: beta is told, the result stays.
  for (std::size_t i = 0; i < x.size(); ++i)
    x[i] = static_cast<std::int16_t>(std::lround(10000 * std::sin(0.05 * (static_cast<double>(i) + 1.5))));
  result = -7;
  EXPECT_EQ(orvsCrossCorrCoeffInterpolation_16s32f(x.data(), y.data(), 200, &beta, &result), orvStsNoErr);
  EXPECT_NEAR(beta, 1.5, 2e-2);
  EXPECT_EQ(result, -7);
  // y0 = (3, 0), y1 = (0, 0): A = 9, B = C = Q = 0, P = 9 against x = (3, 0): den = 0.
  const std::int16_t pulse[] = {3, 0, 0};
  EXPECT_EQ(orvsCrossCorrCoeffInterpolation_16s32f(pulse, pulse, 2, &beta, &result), orvStsDivByZeroWrn);
  EXPECT_EQ(beta, 0);
  EXPECT_EQ(result, 9);
}

TEST(CrossCorrelation, ChecksPointersThenLengthsThenEnergy) {
  const std::int16_t a[4] = {1, 2, 3, 4};
  float r[2] = {-3, -3};
  EXPECT_EQ(orvsCrossCorrCoeff_16s32f(a, a, 0, nullptr), orvStsNullPtrErr);
  EXPECT_EQ(orvsCrossCorrCoeff_16s32f(a, a, 0, r), orvStsSizeErr);
  EXPECT_EQ(orvsCrossCorrCoeffPartial_16s32f(nullptr, a, 0, r, 0), orvStsNullPtrErr);
  EXPECT_EQ(orvsCrossCorrCoeffPartial_16s32f(a, a, 0, r, 0), orvStsSizeErr);
  EXPECT_EQ(orvsCrossCorrCoeffPartial_16s32f(a, a, 1, r, 0), orvStsRangeErr);
  EXPECT_EQ(orvsCrossCorrCoeffDecim_16s32f(a, nullptr, 0, 0, r, 0), orvStsNullPtrErr);
  EXPECT_EQ(orvsCrossCorrCoeffDecim_16s32f(a, a, 4, 0, r, 1), orvStsSizeErr);
  EXPECT_EQ(orvsCrossCorrCoeffDecim_16s32f(a, a, 4, 1, r, 0), orvStsSizeErr);
  EXPECT_EQ(orvsCrossCorrCoeffDecim_16s32f(a, a, 3, 4, r, 1), orvStsSizeErr);
  EXPECT_EQ(orvsCrossCorrCoeffDecim_16s32f(a, a, 4, 4, r, INT32_MAX), orvStsNoErr);
  EXPECT_EQ(r[1], -3);
  EXPECT_EQ(orvsCrossCorrCoeffInterpolation_16s32f(a, a, 0, r, nullptr), orvStsNullPtrErr);
  EXPECT_EQ(orvsCrossCorrCoeffInterpolation_16s32f(a, a, 0, r, r), orvStsSizeErr);
}

TEST(PitchMarks, BecomeFrequenciesAndSayWhereTwoAreEqual) {
  float marks[] = {0.25F, 0.5F, 0.5F, 0.25F};
  EXPECT_EQ(orvsPitchmarkToF0Cand_32f(marks, marks, 4), orvStsDivByZeroWrn);
  EXPECT_EQ(marks[0], 4);
  EXPECT_EQ(marks[1], 4);
  EXPECT_EQ(marks[2], INFINITY);
  EXPECT_EQ(marks[3], -4);
  std::int16_t whole[] = {3, 3, 5, 4, -32768, 32767};
  EXPECT_EQ(orvsPitchmarkToF0Cand_16s_Sfs(whole, whole, 6, -3), orvStsDivByZeroWrn);
  EXPECT_TRUE(std::ranges::equal(whole, std::vector{2, 0, 4, -8, 0, 0}));
  const std::int16_t apart[] = {1, 0, 32767};
  std::int16_t frequencies[3];
  EXPECT_EQ(orvsPitchmarkToF0Cand_16s_Sfs(apart, frequencies, 3, -40), orvStsNoErr);
  EXPECT_TRUE(std::ranges::equal(frequencies, std::vector{32767, -32768, 32767}));
  EXPECT_EQ(orvsPitchmarkToF0Cand_16s_Sfs(apart, nullptr, 0, 0), orvStsNullPtrErr);
  EXPECT_EQ(orvsPitchmarkToF0Cand_16s_Sfs(apart, frequencies, 0, 0), orvStsSizeErr);
  EXPECT_EQ(orvsPitchmarkToF0Cand_32f(nullptr, marks, 0), orvStsNullPtrErr);
  EXPECT_EQ(orvsPitchmarkToF0Cand_32f(marks, marks, 0), orvStsSizeErr);
}

}  // namespace
