#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>

#include "orvsr/train.h"
#include "support/arrays.h"

using namespace orv::test;

namespace {

constexpr double kShortLog = 1.8378770664093;

// The two element types under one name.
template <class T>
struct Train;
template <>
struct Train<float> {
  static constexpr auto dist = orvsGaussianDist_32f;
  static constexpr auto merge = orvsGaussianMerge_32f;
  static constexpr auto split = orvsGaussianSplit_32f;
  static constexpr auto accumulate = orvsDcsClustLAccumulate_32f;
  static constexpr auto accumulateDirect = orvsDcsClustLAccumulate_DirectVar_32f;
  static constexpr auto compute = orvsDcsClustLCompute_32f64f;
};
template <>
struct Train<double> {
  static constexpr auto dist = orvsGaussianDist_64f;
  static constexpr auto merge = orvsGaussianMerge_64f;
  static constexpr auto split = orvsGaussianSplit_64f;
  static constexpr auto accumulate = orvsDcsClustLAccumulate_64f;
  static constexpr auto accumulateDirect = orvsDcsClustLAccumulate_DirectVar_64f;
  static constexpr auto compute = orvsDcsClustLCompute_64f;
};

template <class T>
class GaussianPairs : public testing::Test {};
using Types = testing::Types<float, double>;
TYPED_TEST_SUITE(GaussianPairs, Types);

TYPED_TEST(GaussianPairs, MergeInDoubleAndCostWhatTheMergeLoses) {
  using T = TypeParam;
  Random random(12);
  for (const std::size_t len : {1U, 2U, 7U, 40U}) {
    const std::size_t offset = len % 4;
    const Guarded<T> m1(uniform<T>(random, len, -3, 3), offset),
        m2(uniform<T>(random, len, -3, 3), 2 * offset);
    const Guarded<T> v1(uniform<T>(random, len, 0.1, 2), 3 * offset),
        v2(uniform<T>(random, len, 0.1, 2), offset);
    const T w1 = T(0.3), w2 = T(100.1), d1 = T(-7.7), d2 = T(3.3);
    const double total = w1 + w2;  // in the type of the data
    double sum = 0;
    Guarded<T> mean(len, offset), var(len, offset);
    T constant = 0, cost = 0;
    ASSERT_EQ(Train<T>::merge(m1.data(), v1.data(), m2.data(), v2.data(), mean.data(), var.data(), m1.len(),
                              &constant, w1, w2),
              orvStsNoErr);
    for (std::size_t i = 0; i < len; ++i) {
      const double a = m1.at(i), b = m2.at(i), m = (w1 * a + w2 * b) / total;
      const double v = ((a * a + v1.at(i)) * w1 + (b * b + v2.at(i)) * w2) / total - m * m;
      EXPECT_TRUE(sameBits(mean.at(i), static_cast<T>(m)));
      EXPECT_TRUE(sameBits(var.at(i), static_cast<T>(v)));
      sum -= std::log(v);
    }
    const double whole = static_cast<double>(len) * kShortLog + sum;
    EXPECT_TRUE(sameBits(constant, static_cast<T>(whole)));
    ASSERT_EQ(Train<T>::dist(m1.data(), v1.data(), m2.data(), v2.data(), m1.len(), &cost, w1, d1, w2, d2),
              orvStsNoErr);
    const T parts = w1 * d1 + w2 * d2;
    EXPECT_TRUE(sameBits(cost, static_cast<T>(parts - total * whole)));
  }
}

TYPED_TEST(GaussianPairs, StopAtAVarianceWithoutLogarithm) {
  using T = TypeParam;
  const T means[] = {1, 1, 1}, zero[] = {2, 0, 2}, negative[] = {2, -1, 2};
  for (const auto &[vars, status] : {std::pair{zero, orvStsInfResultWrn}, {negative, orvStsNegVarWrn}}) {
    T mean[3] = {-9, -9, -9}, var[3] = {-9, -9, -9}, constant = 5, cost = 5;
    EXPECT_EQ(Train<T>::merge(means, vars, means, vars, mean, var, 3, &constant, 1, 1), status);
    EXPECT_EQ(Train<T>::dist(means, vars, means, vars, 3, &cost, 1, 0, 1, 0), status);
    EXPECT_EQ(var[1], vars[1]);
    EXPECT_EQ(mean[2], -9);
    EXPECT_EQ(var[2], -9);
    EXPECT_TRUE(status == orvStsNegVarWrn ? std::isnan(constant) && std::signbit(constant)
                                          : constant == T{INFINITY});
    EXPECT_TRUE(sameBits(cost, constant));
  }
  T x[3] = {1, 1, 1};
  EXPECT_EQ(Train<T>::merge(nullptr, x, x, x, x, x, 0, x, 1, 1), orvStsSizeErr);
  EXPECT_EQ(Train<T>::merge(x, x, x, x, x, x, 3, nullptr, 1, 1), orvStsNullPtrErr);
  EXPECT_EQ(Train<T>::dist(x, x, nullptr, x, 0, x, 1, 1, 1, 1), orvStsSizeErr);
  EXPECT_EQ(Train<T>::dist(x, x, nullptr, x, 1, x, 1, 1, 1, 1), orvStsNullPtrErr);
}

TYPED_TEST(GaussianPairs, SplitByAFractionOfTheDeviation) {
  using T = TypeParam;
  T mean1[] = {10, -4, 0}, mean2[3], var2[3];
  const T var[] = {4, T(0.3), -1};
  const T factor = T(0.2),
          shift = static_cast<T>(std::sqrt(static_cast<double>(T(0.3))) * static_cast<double>(factor));
  EXPECT_EQ(Train<T>::split(mean1, var, mean2, var2, 3, factor), orvStsNoErr);
  EXPECT_EQ(mean1[0], 10 + 2 * factor);
  EXPECT_EQ(mean2[0], 10 - 2 * factor);
  EXPECT_EQ(mean1[1], -4 + shift);
  EXPECT_EQ(mean2[1], -4 - shift);
  EXPECT_TRUE(std::isnan(mean1[2]) && std::isnan(mean2[2]));
  EXPECT_TRUE(std::equal(var, var + 3, var2));
  const bool single = std::is_same_v<T, float>;
  EXPECT_EQ(Train<T>::split(nullptr, var, mean2, var2, 0, factor), single ? orvStsSizeErr : orvStsNullPtrErr);
  EXPECT_EQ(Train<T>::split(nullptr, var, mean2, var2, 1, factor), orvStsNullPtrErr);
  EXPECT_EQ(Train<T>::split(mean1, var, mean2, var2, 0, factor), orvStsSizeErr);
}

TYPED_TEST(GaussianPairs, GiveTheLikelihoodOfTheirCluster) {
  using T = TypeParam;
  const T mean[] = {1, -2}, inverse[] = {T(0.5), 4}, direct[] = {2, T(0.25)};
  T first[2] = {99, 99}, second[2] = {99, 99}, firstDirect[2], secondDirect[2];
  ASSERT_EQ(Train<T>::accumulate(mean, inverse, first, second, 2, 8), orvStsNoErr);
  ASSERT_EQ(Train<T>::accumulateDirect(mean, direct, firstDirect, secondDirect, 2, 8), orvStsNoErr);
  EXPECT_TRUE(first[0] == 8 && first[1] == -16 && second[0] == 24 && second[1] == 34);
  EXPECT_TRUE(std::equal(first, first + 2, firstDirect) && std::equal(second, second + 2, secondDirect));
  double l = 7;
  ASSERT_EQ(Train<T>::compute(first, second, 2, &l, 8), orvStsNoErr);
  EXPECT_NEAR(l, -4 * (2 * (1 + std::log(2 * M_PI)) + std::log(2) + std::log(0.25)), 1e-12);
  const double o = 8, d0 = 24 * o - 64, d1 = 34 * o - 256;
  EXPECT_TRUE(sameBits(
      l,
      0.5 * o * (2 * (std::log(o) - 1 - 1.8378770664093456 + std::log(o)) - (std::log(d0) + std::log(d1)))));
  const T tiny = std::numeric_limits<T>::min() / 2, flat[] = {0, 0}, below[] = {0, -1};
  ASSERT_EQ(Train<T>::compute(flat, second, 2, &l, tiny), orvStsNoErr);
  EXPECT_TRUE(std::isfinite(l));
  EXPECT_EQ(Train<T>::compute(first, second, 2, &l, 0), orvStsZeroOccupancyWrn);
  EXPECT_EQ(l, -1e10);
  EXPECT_EQ(Train<T>::compute(flat, flat, 2, &l, 1), orvStsInfResultWrn);
  EXPECT_EQ(l, -INFINITY);
  EXPECT_EQ(Train<T>::compute(flat, below, 2, &l, 1), orvStsNegVarWrn);
  EXPECT_TRUE(std::isnan(l) && std::signbit(l));
  l = 3;
  EXPECT_EQ(Train<T>::compute(first, nullptr, 0, &l, -1), orvStsNullPtrErr);
  EXPECT_EQ(Train<T>::compute(first, second, 0, &l, -1), orvStsSizeErr);
  EXPECT_EQ(Train<T>::compute(first, second, 2, &l, -1), orvStsNegOccupancyErr);
  EXPECT_EQ(l, 3);
  EXPECT_EQ(Train<T>::accumulate(mean, inverse, nullptr, second, 0, 8), orvStsNullPtrErr);
  EXPECT_EQ(Train<T>::accumulate(mean, inverse, first, second, 0, 8), orvStsSizeErr);
  EXPECT_EQ(Train<T>::accumulateDirect(mean, inverse, first, second, 0, 8), orvStsSizeErr);
}

TEST(Bhattacharyya, RoundsByTheTypeOfItsResult) {
  Random random(13);
  for (const std::size_t len : {1U, 5U, 39U}) {
    const auto m1 = uniform<float>(random, len, 0.1, 9), m2 = uniform<float>(random, len, 0.1, 9);
    const auto v1 = uniform<float>(random, len, 0.1, 9), v2 = uniform<float>(random, len, 0.1, 9);
    const auto n = static_cast<std::int32_t>(len);
    const auto single = [](double x) { return static_cast<float>(x); };
    const auto logOf = [&](float x) { return single(std::log(static_cast<double>(x))); };
    float a = 0, b = 0, half = 0;
    double wideA = 0, wideB = 0, wideHalf = 0;
    for (std::size_t i = 0; i < len; ++i) {
      const float d = m1[i] - m2[i], s = v1[i] + v2[i];
      const double wd = static_cast<double>(m1[i]) - m2[i], ws = static_cast<double>(v1[i]) + v2[i];
      a += d * d / s;
      half += logOf(0.5F * s);
      b += logOf(0.5F * s) - (logOf(v1[i]) + logOf(v2[i])) * 0.5F;
      wideA += wd * wd / ws;
      wideHalf += std::log(0.5 * ws);
      wideB += std::log(0.5 * ws) -
               (std::log(static_cast<double>(v1[i])) + std::log(static_cast<double>(v2[i]))) * 0.5;
    }
    float f;
    double w;
    const float s1 = 16777216, s2 = 1;  // added in single, where the second vanishes
    ASSERT_EQ(orvsBhatDist_32f(m1.data(), v1.data(), m2.data(), v2.data(), n, &f), orvStsNoErr);
    EXPECT_TRUE(sameBits(f, a * 0.25F + b * 0.5F));
    ASSERT_EQ(orvsBhatDist_32f64f(m1.data(), v1.data(), m2.data(), v2.data(), n, &w), orvStsNoErr);
    EXPECT_TRUE(sameBits(w, wideA * 0.25 + wideB * 0.5));
    ASSERT_EQ(orvsBhatDistSLog_32f(m1.data(), v1.data(), m2.data(), v2.data(), n, &f, s1, s2), orvStsNoErr);
    EXPECT_TRUE(sameBits(f, (a - s1) * 0.25F + half * 0.5F));
    ASSERT_EQ(orvsBhatDistSLog_32f64f(m1.data(), v1.data(), m2.data(), v2.data(), n, &w, s1, s2),
              orvStsNoErr);
    EXPECT_TRUE(sameBits(w, (wideA - s1) * 0.25 + wideHalf * 0.5));
    ASSERT_EQ(orvsBhatDist_32f(m1.data(), v1.data(), m1.data(), v1.data(), n, &f), orvStsNoErr);
    EXPECT_NEAR(f, 0, 1e-4);
  }
}

TEST(Bhattacharyya, RefusesMeansLikeVariances) {
  const float good[] = {1, 1}, negative[] = {1, -1}, small[] = {9.9e-7F, 1}, least[] = {1e-6F, 1};
  float f;
  double w;
  for (int place = 0; place < 4; ++place) {
    const float *x[4] = {good, good, good, good};
    x[place] = negative;
    EXPECT_EQ(orvsBhatDist_32f(x[0], x[1], x[2], x[3], 2, &f), orvStsNegVarWrn) << place;
    EXPECT_TRUE(std::isnan(f));
    EXPECT_EQ(orvsBhatDistSLog_32f64f(x[0], x[1], x[2], x[3], 2, &w, 0, 0), orvStsNegVarWrn) << place;
    EXPECT_TRUE(std::isnan(w));
    // The earlier element decides, and within an element the negative value.
    x[(place + 1) % 4] = small;
    EXPECT_EQ(orvsBhatDist_32f64f(x[0], x[1], x[2], x[3], 2, &w), orvStsInfResultWrn) << place;
    EXPECT_EQ(w, INFINITY);
    const float *swapped[4] = {small, small, small, small};
    const float minus[] = {-1, 1};
    swapped[place] = minus;
    EXPECT_EQ(orvsBhatDistSLog_32f(swapped[0], swapped[1], swapped[2], swapped[3], 2, &f, 0, 0),
              orvStsNegVarWrn);
  }
  EXPECT_EQ(orvsBhatDist_32f(least, good, good, good, 2, &f), orvStsNoErr);
  f = 3;
  EXPECT_EQ(orvsBhatDist_32f(good, nullptr, good, good, 0, &f), orvStsNullPtrErr);
  EXPECT_EQ(orvsBhatDist_32f(good, good, good, good, 0, &f), orvStsSizeErr);
  EXPECT_EQ(orvsBhatDistSLog_32f(good, good, good, good, 0, nullptr, 0, 0), orvStsNullPtrErr);
  EXPECT_EQ(orvsBhatDistSLog_32f(good, good, good, good, 0, &f, 0, 0), orvStsSizeErr);
  EXPECT_EQ(f, 3);
}

}  // namespace
