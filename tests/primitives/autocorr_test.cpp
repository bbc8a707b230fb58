#include "primitives/autocorr.h"

#include <gtest/gtest.h>

#include <complex>

#include "support/allocation.h"
#include "support/arrays.h"

using namespace orv;
using namespace orv::test;

namespace {

std::vector<double> reference(const std::vector<float> &x, std::size_t lags) {
  std::vector<double> r(lags);
  for (std::size_t k = 0; k < lags && k < x.size(); ++k)
    for (std::size_t i = 0; i + k < x.size(); ++i) r[k] += static_cast<double>(x[i]) * x[i + k];
  return r;
}

TEST(AutoCorrelation, SumsEveryLagToTheEndOfTheFrame) {
  Random random(31);
  for (std::size_t len = 1; len <= 60; ++len)
    for (std::size_t lags = 1; lags <= 62; lags += 1 + len % 3) {
      const Guarded<float> x(wholeNumbers<float>(random, len, 50), (len + lags) % 8);
      Guarded<float> r(lags, lags % 5);
      ASSERT_EQ(orvsAutoCorr_32f(x.data(), x.len(), r.data(), r.len()), orvStsNoErr);
      const auto expected = reference(x.values(), lags);
      for (std::size_t k = 0; k < lags; ++k)
        ASSERT_EQ(r.at(k), expected[k]) << len << ' ' << lags << ' ' << k;
    }
}

TEST(AutoCorrelation, ComesFromTheTransformFrom600LagsOn) {
  Random random(32);
  for (const std::size_t len : {600U, 1024U, 1500U, 5003U, 8201U}) {
    const Guarded<float> x(uniform<float>(random, len, -1, 1), 4);
    const auto expected = reference(x.values(), len + 20);
    for (const int lags : {599, 600, 620, x.len() + 20}) {
      Allocations allocations;
      Guarded<float> r(static_cast<std::size_t>(lags), 8);
      ASSERT_EQ(orvsAutoCorr_32f(x.data(), x.len(), r.data(), lags), orvStsNoErr);
      if (lags < 600) {
        EXPECT_EQ(allocations.calls(), 0);
      } else {
        EXPECT_EQ(allocations.sizes().back(), 4 * std::bit_ceil(2 * len));  // the array, however few the lags
      }
      for (std::size_t k = 0; k < r.values().size(); ++k)
        ASSERT_NEAR(r.at(k), k < len ? expected[k] : 0, 1e-6 * expected[0]) << lags << ' ' << k;
    }
  }
  const std::vector<float> x(700, 1);
  EXPECT_GE(failEachAllocation([&](int n) {
              float r[600] = {-1};
              const OrvStatus status = orvsAutoCorr_32f(x.data(), 700, r, 600);
              EXPECT_EQ(status == orvStsMemAllocErr, r[0] == -1) << n;
            }),
            2);
}

TEST(AutoCorrelation, MultipliesBinsByTheConjugateOfTheSecond) {
  const std::vector<float> first{2, 1, 2, 3, 4, 5};
  std::vector<float> second{3, 5, 6, 7, 8, 9};
  EXPECT_EQ(orvsMulPackConj_32f_I(first.data(), second.data(), 6), orvStsNoErr);
  EXPECT_EQ(second, (std::vector<float>{6, 17, 4, 53, 4, 45}));
  std::vector<float> odd{3, 1, 2}, itself{3, 1, 2, 4};
  EXPECT_EQ(orvsMulPackConj_32f_I(first.data(), odd.data(), 3), orvStsNoErr);
  EXPECT_EQ(odd, (std::vector<float>{6, 5, 0}));
  EXPECT_EQ(orvsMulPackConj_32f_I(itself.data(), itself.data(), 4), orvStsNoErr);
  EXPECT_EQ(itself, (std::vector<float>{9, 5, 0, 16}));
  EXPECT_EQ(orvsMulPackConj_32f_I(nullptr, odd.data(), 0), orvStsNullPtrErr);
  EXPECT_EQ(orvsMulPackConj_32f_I(first.data(), odd.data(), 0), orvStsSizeErr);
  EXPECT_EQ(orvsAutoCorr_32f(first.data(), 0, nullptr, 0), orvStsNullPtrErr);
  EXPECT_EQ(orvsAutoCorr_32f(first.data(), 1, odd.data(), 0), orvStsSizeErr);
  EXPECT_EQ(orvsAutoCorr_32f(first.data(), 0, odd.data(), 1), orvStsSizeErr);
}

}  // namespace
