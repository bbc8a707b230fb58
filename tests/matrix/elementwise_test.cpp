#include <gtest/gtest.h>

#include <algorithm>
#include <cfloat>
#include <cmath>

#include "orvsr/matrix.h"
#include "support/arrays.h"

using namespace orv::test;

namespace {

TEST(ElementwiseMaps, RoundWhereTheyPromise) {
  Random random(6);
  const std::vector<float> x = [&] {
    auto v = uniform<float>(random, 60, -12, 12);
    v.insert(v.end(), {0.0F, -0.0F, 1e-30F, 1e30F, INFINITY, NAN});
    return v;
  }();
  const std::vector<double> xd(x.begin(), x.end());
  const auto len = static_cast<std::int32_t>(x.size());
  for (const std::size_t offset : {0U, 1U, 4U}) {
    const Guarded<float> src(x, offset);
    Guarded<float> e(x.size(), offset), s(x.size(), 3), ei(x), si(x, offset);
    Guarded<double> ew(x.size(), offset), sw(x.size(), 1), ed(x.size()), sd(x.size()), edi(xd, offset),
        sdi(xd);
    ASSERT_EQ(orvsExpNegSqr_32f(src.data(), e.data(), len), orvStsNoErr);
    ASSERT_EQ(orvsExpNegSqr_32f_I(ei.data(), len), orvStsNoErr);
    ASSERT_EQ(orvsExpNegSqr_32f64f(src.data(), ew.data(), len), orvStsNoErr);
    ASSERT_EQ(orvsExpNegSqr_64f(xd.data(), ed.data(), len), orvStsNoErr);
    ASSERT_EQ(orvsExpNegSqr_64f_I(edi.data(), len), orvStsNoErr);
    ASSERT_EQ(orvsSinC_32f(src.data(), s.data(), len), orvStsNoErr);
    ASSERT_EQ(orvsSinC_32f_I(si.data(), len), orvStsNoErr);
    ASSERT_EQ(orvsSinC_32f64f(src.data(), sw.data(), len), orvStsNoErr);
    ASSERT_EQ(orvsSinC_64f(xd.data(), sd.data(), len), orvStsNoErr);
    ASSERT_EQ(orvsSinC_64f_I(sdi.data(), len), orvStsNoErr);
    for (std::size_t i = 0; i < x.size(); ++i) {
      const float square = x[i] * x[i];
      const double wide = std::exp(static_cast<double>(-square)), sine = std::sin(xd[i]);
      EXPECT_TRUE(sameBits(e.at(i), static_cast<float>(wide)));
      EXPECT_TRUE(sameBits(ei.at(i), e.at(i)));
      EXPECT_TRUE(sameBits(ew.at(i), wide));
      EXPECT_TRUE(sameBits(ed.at(i), std::exp(-(xd[i] * xd[i]))));
      EXPECT_TRUE(sameBits(edi.at(i), ed.at(i)));
      EXPECT_TRUE(sameBits(s.at(i), x[i] == 0 ? 1.0F : static_cast<float>(sine) / x[i]));
      EXPECT_TRUE(sameBits(si.at(i), s.at(i)));
      EXPECT_TRUE(sameBits(sd.at(i), x[i] == 0 ? 1.0 : sine / xd[i]));
      EXPECT_TRUE(sameBits(sw.at(i), sd.at(i)));
      EXPECT_TRUE(sameBits(sdi.at(i), sd.at(i)));
    }
  }
}

TEST(ReciprocalRoot, PutsTheFloorItselfWhereAnElementIsBelowIt) {
  float x[] = {4, 0.25F, 1, -3, NAN}, low[] = {0.25F, -INFINITY};
  EXPECT_EQ(orvsRecSqrt_32f(x, 5, 0), orvStsBadArgErr);
  EXPECT_EQ(orvsRecSqrt_32f(x, 5, 0.5F), orvStsNoErr);
  EXPECT_TRUE(std::equal(x, x + 4, std::vector<float>{0.5F, 0.5F, 1, 0.5F}.begin()));
  EXPECT_TRUE(std::isnan(x[4]));
  EXPECT_EQ(orvsRecSqrt_32f(low, 2, 3), orvStsDegenerateDataWrn);
  EXPECT_TRUE(std::ranges::equal(low, std::vector<float>{3, 3}));
  // One element that is not below the floor takes the warning away, wherever it stands; a NaN is such a one.
  for (std::size_t len = 1; len <= 9; ++len)
    for (std::size_t kept = 0; kept <= len; ++kept) {
      Guarded<float> values(std::vector<float>(len, 2), len);
      if (kept < len) values.set(kept, kept % 2 == 0 ? 3 : NAN);
      EXPECT_EQ(orvsRecSqrt_32f(values.data(), values.len(), 3),
                kept < len ? orvStsNoErr : orvStsDegenerateDataWrn);
      for (std::size_t i = 0; i < len; ++i) EXPECT_EQ(values.at(i) == 3, i != kept) << len << ' ' << i;
    }
  Random random(1);
  for (const float v : uniform<float>(random, 2000, 1e-3, 1e6)) {
    float y = v;
    ASSERT_EQ(orvsRecSqrt_32f(&y, 1, FLT_MIN), orvStsNoErr);
    ASSERT_TRUE(sameBits(y, 1.0F / static_cast<float>(std::sqrt(static_cast<double>(v)))));
  }
  // Compared as singles: 16777216 and 16777217 are the same number there.
  std::int32_t s[] = {16, 15, 16777216, INT32_MIN}, same[] = {16777216};
  std::int16_t shorts[4];
  EXPECT_EQ(orvsRecSqrt_32s16s_Sfs(s, shorts, 4, 16, -10), orvStsNoErr);
  EXPECT_TRUE(std::ranges::equal(shorts, std::vector{256, 16384, 0, 16384}));
  EXPECT_EQ(orvsRecSqrt_32s16s_Sfs(s, shorts, 2, 16, -17), orvStsNoErr);
  EXPECT_TRUE(std::equal(shorts, shorts + 2, std::vector{32767, 32767}.begin()));
  EXPECT_EQ(orvsRecSqrt_32s_Sfs(s, 4, 16, -200), orvStsNoErr);
  EXPECT_TRUE(std::ranges::all_of(s, [](std::int32_t v) { return v == INT32_MAX; }));
  EXPECT_EQ(orvsRecSqrt_32s_Sfs(same, 1, 16777217, -13), orvStsNoErr);
  EXPECT_EQ(same[0], 2);
  std::int32_t floored[] = {5, 6};
  EXPECT_EQ(orvsRecSqrt_32s_Sfs(floored, 2, 7, 1), orvStsDegenerateDataWrn);
  EXPECT_TRUE(std::ranges::equal(floored, std::vector{3, 3}));
}

TEST(ElementwiseMaps, CheckPointersThenLengthThenFloor) {
  float f = 2;
  double d = 2;
  std::int32_t n = 2;
  std::int16_t s = 2;
  EXPECT_EQ(orvsExpNegSqr_32f(nullptr, &f, 0), orvStsNullPtrErr);
  EXPECT_EQ(orvsExpNegSqr_32f64f(&f, nullptr, 0), orvStsNullPtrErr);
  EXPECT_EQ(orvsSinC_64f(&d, &d, 0), orvStsSizeErr);
  EXPECT_EQ(orvsSinC_32f_I(nullptr, 1), orvStsNullPtrErr);
  EXPECT_EQ(orvsRecSqrt_32f(nullptr, 0, 0), orvStsNullPtrErr);
  EXPECT_EQ(orvsRecSqrt_32f(&f, 0, 0), orvStsSizeErr);
  EXPECT_EQ(orvsRecSqrt_32s_Sfs(&n, 0, 0, 0), orvStsSizeErr);
  EXPECT_EQ(orvsRecSqrt_32s_Sfs(&n, 1, 0, 0), orvStsBadArgErr);
  EXPECT_EQ(orvsRecSqrt_32s16s_Sfs(&n, nullptr, 0, 0, 0), orvStsNullPtrErr);
  EXPECT_EQ(orvsRecSqrt_32s16s_Sfs(&n, &s, 1, 0, 0), orvStsBadArgErr);
  EXPECT_EQ(f, 2);
  EXPECT_EQ(n, 2);
  EXPECT_EQ(s, 2);
}

}  // namespace
