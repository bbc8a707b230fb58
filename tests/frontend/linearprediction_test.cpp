#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "orvsr/frontend.h"
#include "support/allocation.h"
#include "support/arrays.h"

using namespace orv::test;

namespace {

using Doubles = std::vector<double>;

// The error filter of given reflection coefficients, by the step-up recursion.
Doubles stepUp(const Doubles &k) {
  Doubles a;
  for (const double r : k) {
    Doubles next = a;
    for (std::size_t i = 0; i < a.size(); ++i) next[i] += r * a[a.size() - 1 - i];
    next.push_back(r);
    a = next;
  }
  return a;
}

// The autocorrelation of a process with these reflection coefficients and R[0] = r0.
Doubles autocorrelation(const Doubles &k, double r0) {
  Doubles r{r0};
  double e = r0;
  for (std::size_t m = 1; m <= k.size(); ++m) {
    const Doubles a = stepUp(Doubles(k.begin(), k.begin() + static_cast<std::ptrdiff_t>(m) - 1));
    double s = 0;
    for (std::size_t j = 1; j < m; ++j) s += a[j - 1] * r[m - j];
    r.push_back(-k[m - 1] * e - s);
    e *= 1 - k[m - 1] * k[m - 1];
  }
  return r;
}

TEST(DurbinAndSchur, RecoverRandomStableFilters) {
  Random random(41);
  for (std::size_t order = 1; order <= 40; ++order) {
    const double reach = 0.5 / std::sqrt(static_cast<double>(order)) + 0.2;
    const Doubles k = uniform<double>(random, order, -reach, reach), r = autocorrelation(k, 3), a = stepUp(k);
    double error = 3;
    for (const double x : k) error *= 1 - x * x;
    const Guarded<float> single(std::vector<float>(r.begin(), r.end()), order % 7);
    Guarded<float> filter(order, order % 5), reflection(order, order % 3);
    float e = 0, schurError = 0;
    const auto n = static_cast<std::int32_t>(order);
    ASSERT_EQ(orvsDurbin_32f(single.data(), filter.data(), n, &e), orvStsNoErr);
    ASSERT_EQ(orvsSchur_32f(single.data(), reflection.data(), n, &schurError), orvStsNoErr);
    EXPECT_NEAR(e, error, 2e-4 * error);
    EXPECT_NEAR(schurError, error, 2e-4 * error);
    for (std::size_t i = 0; i < order; ++i) {
      EXPECT_NEAR(filter.at(i), a[i], 2e-4) << order;
      EXPECT_NEAR(reflection.at(i), k[i], 2e-4) << order;
    }
    // The integer forms: the same on rounded input, rounded again.
    std::vector<std::int16_t> whole(order + 1), wholeFilter(order), wholeReflection(order);
    std::vector<float> widened(order + 1), expected(order);
    for (std::size_t i = 0; i <= order; ++i) {
      whole[i] = static_cast<std::int16_t>(std::lrint(r[i] * 10000));
      widened[i] = whole[i];
    }
    const auto rounded = [](float x) { return static_cast<std::int16_t>(std::nearbyint(x * 4096)); };
    const OrvStatus status = orvsDurbin_32f(widened.data(), expected.data(), n, &e);
    ASSERT_EQ(orvsDurbin_16s_Sfs(whole.data(), wholeFilter.data(), n, &schurError, -12), status);
    if (status == orvStsNoErr) {
      EXPECT_TRUE(sameBits(schurError, e));
      EXPECT_TRUE(std::ranges::equal(wholeFilter, expected, {}, {}, rounded));
    }
    ASSERT_EQ(orvsSchur_32f(widened.data(), expected.data(), n, &e), orvStsNoErr);
    ASSERT_EQ(orvsSchur_16s_Sfs(whole.data(), wholeReflection.data(), n, &schurError, -12), orvStsNoErr);
    EXPECT_TRUE(sameBits(schurError, e));
    EXPECT_TRUE(std::ranges::equal(wholeReflection, expected, {}, {}, rounded));
  }
}

TEST(DurbinAndSchur, DivideOnWhatEachLooksAt) {
  float a[3] = {7, 7, 7}, e = 9;
  const float silent[] = {0, 0, 0}, perfect[] = {1, 1, 1}, second[] = {4, 2, -4, 0}, nan[] = {NAN, 1};
  EXPECT_EQ(orvsDurbin_32f(silent, a, 2, &e), orvStsDurbinErr);
  EXPECT_EQ(orvsDurbin_32f(perfect, a, 2, &e), orvStsDurbinErr);
  EXPECT_EQ(orvsDurbin_32f(nan, a, 1, &e), orvStsDurbinErr);
  EXPECT_EQ(a[0], 7);
  // The second order fails (k = -5 / 3): the first one stays, the error is not written.
  EXPECT_EQ(orvsDurbin_32f(second, a, 3, &e), orvStsDurbinErr);
  EXPECT_EQ(a[0], -0.5F);
  EXPECT_EQ(a[1], 7);
  EXPECT_EQ(e, 9);
  // Only at orders 9 to 12 have the stages 2 to 4 stored their own coefficient, here -2, when they fail.
  for (const int order : {8, 9, 12, 13})
    for (const int stage : {1, 2, 4, 5}) {
      std::vector<float> r(14), left(13, 7);
      r[0] = 1;
      r[static_cast<std::size_t>(stage)] = 2;
      EXPECT_EQ(orvsDurbin_32f(r.data(), left.data(), order, &e), orvStsDurbinErr);
      const bool stored = order >= 9 && order <= 12 && stage >= 2 && stage <= 4;
      for (int i = 0; i < 13; ++i)
        EXPECT_EQ(left[static_cast<std::size_t>(i)], i < stage - 1              ? 0
                                                     : i == stage - 1 && stored ? -2
                                                                                : 7)
            << order << ' ' << stage << ' ' << i;
    }
  EXPECT_EQ(orvsDurbin_32f(second, a, 1, &e), orvStsNoErr);
  EXPECT_EQ(e, 3);
  EXPECT_EQ(orvsSchur_32f(perfect, a, 1, &e), orvStsNoErr);
  EXPECT_EQ(a[0], -1);
  EXPECT_EQ(e, 0);
  EXPECT_EQ(orvsSchur_32f(silent, a, 1, &e), orvStsNoErr);
  EXPECT_TRUE(std::isnan(a[0]));
  std::int16_t whole[3] = {7, 7, 7};
  const std::int16_t failing[] = {4, 2, -4, 0};
  EXPECT_EQ(orvsDurbin_16s_Sfs(failing, whole, 3, &e, 0), orvStsDurbinErr);
  EXPECT_EQ(whole[0], 7);
}

TEST(LinearPrediction, AutoIsDurbinOfTheAutocorrelation) {
  Random random(42);
  for (const int len : {1, 5, 63, 64, 240, 400})
    for (const int order : {1, 2, 10, 16, 62, 63, 64, 200}) {
      if (order > len) continue;
      const Guarded<float> x(wholeNumbers<float>(random, static_cast<std::size_t>(len), 40), 4);
      std::vector<float> r(static_cast<std::size_t>(order) + 1), expected(static_cast<std::size_t>(order));
      for (int k = 0; k <= order && k < len; ++k)
        for (int i = 0; i + k < len; ++i)
          r[static_cast<std::size_t>(k)] +=
              x.at(static_cast<std::size_t>(i)) * x.at(static_cast<std::size_t>(i + k));
      float e;
      const OrvStatus status = orvsDurbin_32f(r.data(), expected.data(), order, &e);
      Guarded<float> a(expected.size(), 8), neg(expected.size());
      {
        Allocations allocations;
        ASSERT_EQ(orvsLinearPrediction_Auto_32f(x.data(), len, a.data(), order), status);
        EXPECT_EQ(allocations.calls(), (order + 1 >= 64) + (order >= 64));
      }
      ASSERT_EQ(orvsLinearPredictionNeg_Auto_32f(x.data(), len, neg.data(), order), status);
      const std::vector<float> samples = x.values();
      const std::vector<std::int16_t> whole(samples.begin(), samples.end());
      std::vector<std::int16_t> wholeA(expected.size(), 7), wholeNeg(expected.size(), 7);
      {
        Allocations allocations;
        ASSERT_EQ(orvsLinearPrediction_Auto_16s_Sfs(whole.data(), len, wholeA.data(), order, -12), status);
        EXPECT_EQ(allocations.calls(), 2 * (len >= 64 || order >= 64) + (order + 1 >= 64) + (order >= 64));
      }
      ASSERT_EQ(orvsLinearPredictionNeg_Auto_16s_Sfs(whole.data(), len, wholeNeg.data(), order, -12), status);
      if (status != orvStsNoErr) continue;
      for (std::size_t i = 0; i < expected.size(); ++i) {
        const auto rounded = static_cast<std::int16_t>(std::nearbyint(expected[i] * 4096));
        EXPECT_EQ(a.at(i), expected[i]);
        EXPECT_EQ(neg.at(i), 0 - expected[i]);
        EXPECT_EQ(wholeA[i], rounded);
        EXPECT_EQ(wholeNeg[i], -rounded);
      }
    }
  // A failing frame: the signs flip all the same, and the integers stay.
  float left[] = {5, -6};
  std::int16_t wholeLeft[] = {5, -6};
  const float silence[4] = {};
  const std::int16_t wholeSilence[4] = {};
  EXPECT_EQ(orvsLinearPredictionNeg_Auto_32f(silence, 4, left, 2), orvStsDurbinErr);
  EXPECT_TRUE(left[0] == -5 && left[1] == 6);
  EXPECT_EQ(orvsLinearPredictionNeg_Auto_16s_Sfs(wholeSilence, 4, wholeLeft, 2, 0), orvStsDurbinErr);
  EXPECT_TRUE(wholeLeft[0] == 5 && wholeLeft[1] == -6);
}

// The covariance method in double. `packed` takes the inner sums from the start of the packed factor, as the
// library promises; otherwise from the factor's own row, which solves the equations.
Doubles covariance(const std::vector<float> &x, std::size_t p, bool packed) {
  const std::size_t n = x.size();
  const auto product = [&](std::size_t i, std::size_t j) { return static_cast<double>(x[i]) * x[j]; };
  std::vector<Doubles> l(p, Doubles(p)), phi = l;
  Doubles c(p), d(p), y(p), a(p), flat, w(p);
  for (std::size_t k = 0; k < p; ++k) {
    for (std::size_t i = 0; i + k + 1 < n; ++i) c[k] += product(i, i + k + 1);
    for (std::size_t j = 0; j <= k; ++j)
      for (std::size_t i = 0; i + k + 1 < n; ++i) phi[k][j] += product(i, i + k - j);
  }
  for (std::size_t i = 0; i < p; ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      double v = phi[i][j];
      for (std::size_t m = 0; m < j; ++m) v -= w[m] * (packed ? flat[m] : l[j][m]);
      l[i][j] = v / d[j];
      w[j] = v;
      flat.push_back(l[i][j]);
    }
    d[i] = phi[i][i];
    for (std::size_t m = 0; m < i; ++m) d[i] -= w[m] * l[i][m];
    y[i] = c[i];
    for (std::size_t m = 0; m < i; ++m) y[i] -= l[i][m] * y[m];
  }
  for (std::size_t i = p; i-- > 0;) {
    a[i] = y[i] / d[i];
    for (std::size_t m = p - 1; m > i; --m) a[i] -= l[m][i] * a[m];
  }
  return a;
}

TEST(LinearPrediction, CovarianceKeepsItsOwnFactorisation) {
  Random random(43);
  int apart = 0;
  for (std::size_t order = 1; order <= 12; ++order) {
    const Guarded<float> x(uniform<float>(random, 120, -1, 1), order % 4), moved(x.values(), order % 4 + 1);
    const Doubles own = covariance(x.values(), order, true), exact = covariance(x.values(), order, false);
    Guarded<float> a(order, 4), again(order, 0);
    const auto p = static_cast<std::int32_t>(order);
    ASSERT_EQ(orvsLinearPrediction_Cov_32f(x.data(), 120, a.data(), p), orvStsNoErr);
    ASSERT_EQ(orvsLinearPrediction_Cov_32f(moved.data(), 120, again.data(), p), orvStsNoErr);
    EXPECT_EQ(again.values(), a.values()) << order;
    double difference = 0;
    for (std::size_t i = 0; i < order; ++i) {
      EXPECT_NEAR(a.at(i), own[i], 1e-4) << order;
      difference = std::max(difference, std::fabs(own[i] - exact[i]));
    }
    apart += difference > 2e-4;
    if (order <= 3) {
      EXPECT_LT(difference, 1e-12);
    }
  }
  EXPECT_GE(apart, 6);
  const float x[] = {1, 2};
  const std::int16_t whole[] = {1, 2};
  float a[2];
  EXPECT_EQ(orvsLinearPrediction_Cov_32f(x, 2, a, 2), orvStsNoErr);
  EXPECT_FALSE(std::isfinite(a[1]));
  // Converted even if there is nothing to convert.
  EXPECT_EQ(failEachAllocation([&](int n) {
              std::int16_t b[2] = {7, 7};
              EXPECT_EQ(orvsLinearPrediction_Cov_16s_Sfs(whole, 2, b, 1, 0),
                        n < 2 ? orvStsMemAllocErr : orvStsNoErr);
              EXPECT_EQ(b[0], n < 2 ? 0 : 2);
            }),
            2);
}

TEST(LinearPrediction, ChecksItsArgumentsAndItsMemory) {
  std::vector<float> x(1100, 0.5F), y(1100);
  std::vector<std::int16_t> s(1100, 1), t(1100);
  float e = 5;
  for (const auto durbinOrSchur : {orvsDurbin_32f, orvsSchur_32f}) {
    EXPECT_EQ(durbinOrSchur(x.data(), nullptr, 0, nullptr), orvStsNullPtrErr);
    EXPECT_EQ(durbinOrSchur(x.data(), y.data(), 0, nullptr), orvStsSizeErr);
    EXPECT_EQ(durbinOrSchur(x.data(), y.data(), 1, nullptr), orvStsNullPtrErr);
  }
  for (const auto durbinOrSchur : {orvsDurbin_16s_Sfs, orvsSchur_16s_Sfs}) {
    EXPECT_EQ(durbinOrSchur(nullptr, t.data(), 0, nullptr, 0), orvStsNullPtrErr);
    EXPECT_EQ(durbinOrSchur(s.data(), t.data(), 0, nullptr, 0), orvStsSizeErr);
    EXPECT_EQ(durbinOrSchur(s.data(), t.data(), 1, nullptr, 0), orvStsNullPtrErr);
  }
  for (const auto predict :
       {orvsLinearPrediction_Auto_32f, orvsLinearPredictionNeg_Auto_32f, orvsLinearPrediction_Cov_32f}) {
    EXPECT_EQ(predict(nullptr, 0, y.data(), 0), orvStsNullPtrErr);
    for (const auto &[len, order] : {std::pair{0, 1}, {1, 0}, {1, 2}})
      EXPECT_EQ(predict(x.data(), len, y.data(), order), orvStsSizeErr);
  }
  for (const auto predict : {orvsLinearPrediction_Auto_16s_Sfs, orvsLinearPredictionNeg_Auto_16s_Sfs,
                             orvsLinearPrediction_Cov_16s_Sfs}) {
    EXPECT_EQ(predict(s.data(), 0, nullptr, 0, 0), orvStsNullPtrErr);
    for (const auto &[len, order] : {std::pair{0, 1}, {1, 0}, {1, 2}})
      EXPECT_EQ(predict(s.data(), len, t.data(), order, 0), orvStsSizeErr);
  }
  x[0] = 1;
  for (const auto &[order, blocks] : {std::pair{63, 0}, {64, 1}})
    EXPECT_EQ(failEachAllocation([&, wanted = blocks, n = order](int call) {
                EXPECT_EQ(orvsDurbin_32f(x.data(), y.data(), n, &e),
                          call < wanted ? orvStsMemAllocErr : orvStsNoErr);
              }),
              blocks);
  // The signs flip after the recursion alone: not if there was no memory for its input.
  EXPECT_EQ(failEachAllocation([&](int call) {
              float left[64] = {7};
              const OrvStatus status = orvsLinearPredictionNeg_Auto_32f(x.data(), 100, left, 64);
              EXPECT_EQ(status, call < 2 ? orvStsMemAllocErr : orvStsNoErr);
              EXPECT_TRUE(call == 0 ? left[0] == 7 : call > 1 || left[0] == -7);
            }),
            2);
  for (const auto &[order, blocks] : {std::pair{1023, 0}, {1024, 3}})
    EXPECT_EQ(failEachAllocation([&, wanted = blocks, n = order](int call) {
                EXPECT_EQ(orvsSchur_32f(x.data(), y.data(), n, &e),
                          call < wanted ? orvStsMemAllocErr : orvStsNoErr);
              }),
              blocks);
}

}  // namespace
