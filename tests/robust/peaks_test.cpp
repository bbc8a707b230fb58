#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "orvsr/robust.h"
#include "support/arrays.h"

using namespace orv::test;

namespace {

std::vector<int> peaks(const std::vector<float> &curve, int search, int average = 0) {
  const Guarded<float> src(curve, 4);
  Guarded<std::uint8_t> dst(curve.size(), 1);
  EXPECT_EQ(orvsFindPeaks_32f8u(src.data(), dst.data(), src.len(), search, average), orvStsNoErr);
  std::vector<int> marks;
  for (int i = 0; i < src.len(); ++i) {
    EXPECT_LE(dst.at(static_cast<std::size_t>(i)), 1);
    if (dst.at(static_cast<std::size_t>(i)) == 1) marks.push_back(i);
  }
  // Whole values without smoothing: the integer form agrees.
  if (average == 0) {
    const std::vector<std::int32_t> whole(curve.begin(), curve.end());
    std::vector<std::uint8_t> same(curve.size(), 9);
    EXPECT_EQ(orvsFindPeaks_32s8u(whole.data(), same.data(), src.len(), search, 0), orvStsNoErr);
    EXPECT_EQ(same, dst.values());
  }
  return marks;
}

using Marks = std::vector<int>;

TEST(FindPeaks, AsksForSlopesAsLongAsTheEdgesLeave) {
  EXPECT_EQ(peaks({5}, 1), Marks{0});
  EXPECT_EQ(peaks({5, 4, 3, 2}, 127), Marks{0});  // a whole fall, whatever the search size
  EXPECT_EQ(peaks({1, 2, 3, 4}, 127), Marks{3});  // a whole rise
  EXPECT_EQ(peaks({1, 2}, 1), Marks{1});          // only the last step is left: the raw rule
  EXPECT_EQ(peaks({1, 2}, 2), Marks{});
  EXPECT_EQ(peaks({3, 2, 4}, 1), (Marks{0, 2}));
  EXPECT_EQ(peaks({3, 2, 4}, 2), Marks{});
  EXPECT_EQ(peaks({3, 2, 1, 4, 5, 2, 1, 0, 7}, 1), (Marks{0, 4, 8}));
  EXPECT_EQ(peaks({3, 2, 1, 4, 5, 2, 1, 0, 7}, 2), (Marks{0, 4}));  // the last rise is one step long
  EXPECT_EQ(peaks({3, 2, 1, 4, 5, 2, 1, 0, 7}, 3), (Marks{}));      // the hill rises two steps only
  EXPECT_EQ(peaks({1, 5, 2, 1, 0}, 3), Marks{1});                   // one step up is all the left edge leaves
  EXPECT_EQ(peaks({0, 1, 2, 5, 4}, 3), Marks{3});
  EXPECT_EQ(peaks({4, 4, 4, 4}, 1), Marks{});
  EXPECT_EQ(peaks({1, 3, 3, 1}, 1), Marks{});      // a flat top
  EXPECT_EQ(peaks({1, 3, 3, 5, 2}, 1), Marks{3});  // up counts from 0 behind a flat stretch
  EXPECT_EQ(peaks({1, 3, 3, 5, 2}, 2), Marks{});
  EXPECT_EQ(peaks({1, 3, 2, 2, 4, 1}, 1), (Marks{1, 4}));
  EXPECT_EQ(peaks({2, 1, 3, 3}, 1), Marks{0});  // flat at the end
}

TEST(FindPeaks, SmoothsAndThenComparesTolerantly) {
  EXPECT_EQ(peaks({0, 0, 9, 0, 0, 0, 9, 0, 0}, 1, 8), Marks{});  // smoothed over everything
  EXPECT_EQ(peaks({9, 0, 0, 0, 0, 0, 0, 0}, 1, 1), Marks{0});
  // In single the means at 3 and 4 would be equal.
  EXPECT_EQ(peaks({3, -1e8F, 4, -1e8F, 1e8F, 1}, 1, 1), (Marks{1, 3, 5}));
  // Means of three: 2, 3, 4, 3, 2: the top of the smooth curve, not the raw one.
  EXPECT_EQ(peaks({0, 4, 5, 3, 1, 2}, 1, 1), Marks{2});
  // A fall of 5e-7 from the top counts raw; smoothed, it makes the top flat.
  const float above = 1 + 4 * 1.1920929e-7F;
  const std::vector<float> slight{0, above, 1, 0};
  std::vector<std::uint8_t> mark(4, 9);
  EXPECT_EQ(orvsFindPeaks_32f8u(slight.data(), mark.data(), 4, 1, 0), orvStsNoErr);
  EXPECT_EQ(mark, (std::vector<std::uint8_t>{0, 1, 0, 0}));
  EXPECT_EQ(peaks({-3, 3 * above - 3, 3, 0, 0, 0}, 1, 1), Marks{});
  // The raw samples decide at the last position although the smooth curve rises there in both.
  EXPECT_EQ(peaks({30, 9, 0, 2, 3}, 1, 1), (Marks{0, 4}));
  EXPECT_EQ(peaks({30, 9, 0, 3, 2}, 1, 1), Marks{0});
  // Integers truncate toward zero: means -1.33 and -1 are equal, as are 1.67 and 1.
  const std::vector<std::int32_t> odd{-2, -1, -1, -1, -2};
  std::vector<std::uint8_t> marks(5, 9);
  EXPECT_EQ(orvsFindPeaks_32s8u(odd.data(), marks.data(), 5, 1, 1), orvStsNoErr);
  EXPECT_EQ(marks, std::vector<std::uint8_t>(5));
  const std::vector<std::int32_t> large{INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN, INT32_MAX};
  EXPECT_EQ(orvsFindPeaks_32s8u(large.data(), marks.data(), 5, 1, 1), orvStsNoErr);
  EXPECT_EQ(marks, (std::vector<std::uint8_t>{1, 0, 0, 0, 1}));
}

TEST(FindPeaks, AgreesWithTheDefinitionOnRandomCurves) {
  Random random(21);
  for (int round = 0; round < 3000; ++round) {
    const std::size_t len = 3 + random() % 30;
    const int search = 1 + static_cast<int>(random() % 4);
    // Strict slopes everywhere inside, so that only the definition of a hill counts.
    std::vector<float> y(len);
    for (std::size_t i = 1; i < len; ++i)
      y[i] = y[i - 1] + (random() % 2 ? 1.0F : -1.0F) * static_cast<float>(1 + random() % 3);
    Marks expected;
    const int last = static_cast<int>(len) - 1;
    for (int t = 0; t <= last; ++t) {
      const auto at = [&](int i) { return y[static_cast<std::size_t>(i)]; };
      int up = 0, down = 0;
      while (t - up > 0 && at(t - up - 1) < at(t - up)) ++up;
      while (t + down < last && at(t + down + 1) < at(t + down)) ++down;
      bool peak = up >= std::min(t, search) && down >= std::min(last - t, search) && up + down > 0;
      if (t == 0) peak = down >= search || down == last;
      int firstFall = 0;
      while (firstFall < last && at(firstFall + 1) < at(firstFall)) ++firstFall;
      if (t == last && firstFall == last - 1) peak = search == 1;
      if (peak) expected.push_back(t);
    }
    ASSERT_EQ(peaks(y, search), expected) << round;
  }
}

TEST(Periodicity, FindsTheFirstOfEqualCombs) {
  std::vector<float> comb(40);
  for (std::size_t i = 3; i < 40; i += 7) comb[i] = 2;
  const auto whole = [&] {
    std::vector<std::int32_t> v(comb.begin(), comb.end());
    for (std::int32_t &x : v) x *= 1 << 29;
    return v;
  };
  float ratio = -1;
  std::int16_t ratioQ15 = -1;
  std::int32_t period = -1;
  ASSERT_EQ(orvsPeriodicity_32f(comb.data(), 40, &ratio, &period, 20, 5), orvStsNoErr);
  EXPECT_EQ(period, 7);
  EXPECT_EQ(ratio, 1);
  ASSERT_EQ(orvsPeriodicity_32s16s(whole().data(), 40, &ratioQ15, &period, 20, 5), orvStsNoErr);
  EXPECT_EQ(period, 7);
  EXPECT_EQ(ratioQ15, 32767);
  // Single sums against the single total: the mean of 14 samples apart is as good, and comes later.
  comb[5] = 1;
  ASSERT_EQ(orvsPeriodicity_32f(comb.data(), 40, &ratio, &period, 20, 5), orvStsNoErr);
  EXPECT_EQ(period, 7);
  EXPECT_EQ(ratio, 12.0F / 13.0F);
  ASSERT_EQ(orvsPeriodicity_32s16s(whole().data(), 40, &ratioQ15, &period, 20, 5), orvStsNoErr);
  EXPECT_EQ(ratioQ15, 12 * 32768 / 13);
  // At most six samples a comb.
  const std::vector<float> flat(4096, 1);
  ASSERT_EQ(orvsPeriodicity_32f(flat.data(), 4096, &ratio, &period, 2, 1), orvStsNoErr);
  EXPECT_EQ(period, 1);
  EXPECT_EQ(ratio, 6.0F / 4096);
  // The total is formed from the last to the first, and single precision shows it.
  const std::vector<float> steep{16777216, 1, 1};
  ASSERT_EQ(orvsPeriodicity_32f(steep.data(), 3, &ratio, &period, 2, 1), orvStsNoErr);
  EXPECT_EQ(ratio, 16777216.0F / 16777218.0F);
  const std::vector<std::int32_t> even(9, 8);  // means of two and five samples are 8 too, rounded down
  ASSERT_EQ(orvsPeriodicity_32s16s(even.data(), 9, &ratioQ15, &period, 8, 1), orvStsNoErr);
  EXPECT_EQ(period, 1);
  // By least squares 16 explains these as well as 8, to the last bit.
  std::vector<std::int16_t> lines(32);
  for (std::size_t i = 0; i < 32; i += 8) lines[i] = 985;
  ASSERT_EQ(orvsPeriodicityLSPE_16s(lines.data(), 32, &ratioQ15, &period, 17, 6), orvStsNoErr);
  EXPECT_EQ(period, 8);
  ASSERT_EQ(orvsPeriodicityLSPE_32f(std::vector<float>(lines.begin(), lines.end()).data(), 32, &ratio,
                                    &period, 17, 6),
            orvStsNoErr);
  EXPECT_EQ(period, 8);
  const std::vector<std::int32_t> zeros(9);
  ASSERT_EQ(orvsPeriodicity_32s16s(zeros.data(), 9, &ratioQ15, &period, 8, 1), orvStsNoErr);
  EXPECT_EQ(ratioQ15, 0);
  EXPECT_EQ(period, 0);
}

// The first square, then those up to a 16-byte boundary, then eights in two accumulators, then the rest.
float groupedEnergy(const Guarded<float> &x, std::size_t offset) {
  std::size_t i = 1;
  const std::size_t head = i + (12 - offset % 16) / 4;  // offset: of element 0
  float lanes[8] = {x.at(0) * x.at(0)};
  for (; i < head; ++i) lanes[0] += x.at(i) * x.at(i);
  const auto len = static_cast<std::size_t>(x.len());
  for (; len - i >= 8; i += 8)
    for (std::size_t k = 0; k < 8; ++k) lanes[k] += x.at(i + k) * x.at(i + k);
  for (std::size_t k = 0; k < 4; ++k) lanes[k] += lanes[k + 4];
  float sum = (lanes[0] + lanes[2]) + (lanes[1] + lanes[3]);
  for (; i < len; ++i) sum += x.at(i) * x.at(i);
  return sum;
}

// Both definitions written plainly, every bit of the result counts.
TEST(Periodicity, FollowsItsDefinitions) {
  Random random(22);
  for (int round = 0; round < 60; ++round) {
    const int minPeriod = 6 + static_cast<int>(random() % 20),
              maxPeriod = minPeriod + 1 + static_cast<int>(random() % 30);
    const int len = std::min(16 * minPeriod, maxPeriod + 1 + static_cast<int>(random() % 200));
    if (len <= maxPeriod) continue;
    const auto size = static_cast<std::size_t>(len);
    const auto shorts =
        round % 2 ? anyIntegers<std::int16_t>(random, size) : wholeNumbers<std::int16_t>(random, size, 20);
    const std::size_t offset = 4 * (random() % 4);
    const Guarded<float> singles(uniform<float>(random, size, -1, 1), offset);
    const float energy = groupedEnergy(singles, offset);
    std::int64_t e = 0;
    for (const std::int64_t x : shorts) e += x * x;
    int q = 0;
    for (; e > INT32_MAX; e >>= 1) ++q;
    float best = 0;
    std::int64_t bestQ15 = 0;
    int period = 0, periodQ15 = 0;
    for (int p = minPeriod; p <= maxPeriod; ++p) {
      float u = 0, w = 0;
      std::int64_t uQ = 0, wQ = 0;
      for (int f = 0; f < p; ++f) {
        float sum = 0, squares = 0;
        std::int64_t a = 0, b = 0, n = 0;
        for (int i = f; i < len; i += p, ++n) {
          const std::int64_t x = shorts[static_cast<std::size_t>(i)];
          const float single = singles.at(static_cast<std::size_t>(i));
          sum += single;
          squares += single * single;
          a += x;
          b += (x * x) >> q;
        }
        const double share = 1 / static_cast<double>(n), root = 1 / std::sqrt(static_cast<double>(n));
        const float projection = sum * static_cast<float>(root);
        u += projection * projection;
        w += squares * static_cast<float>(share);
        const auto q30 = [](double x) { return static_cast<std::int64_t>(std::llround(x * (1 << 30))); };
        const std::int64_t t = a * q30(root);
        uQ += (t >> (q / 2 + 30)) * (t >> (q - q / 2 + 30));
        wQ += (b * q30(share)) >> 30;
      }
      if (u > w && energy > w && (u - w) / (energy - w) > best) {
        best = (u - w) / (energy - w);
        period = p;
      }
      if (uQ - wQ >= 1 && e - wQ >= 1 &&
          std::min<std::int64_t>(32767, (uQ - wQ) * 32768 / (e - wQ)) > bestQ15) {
        bestQ15 = std::min<std::int64_t>(32767, (uQ - wQ) * 32768 / (e - wQ));
        periodQ15 = p;
      }
    }
    float result;
    std::int16_t resultQ15;
    std::int32_t found;
    ASSERT_EQ(orvsPeriodicityLSPE_32f(singles.data(), len, &result, &found, maxPeriod, minPeriod),
              orvStsNoErr);
    EXPECT_EQ(result, best);
    EXPECT_EQ(found, period);
    ASSERT_EQ(orvsPeriodicityLSPE_16s(shorts.data(), len, &resultQ15, &found, maxPeriod, minPeriod),
              orvStsNoErr);
    EXPECT_EQ(resultQ15, bestQ15);
    EXPECT_EQ(found, periodQ15);
  }
}

TEST(PeaksAndPeriods, CheckTheirArgumentsInTheirOrder) {
  std::vector<float> x(1025, 1);
  std::vector<std::int32_t> n(4097, 1);
  const std::vector<std::int16_t> s(1025, 1);
  std::uint8_t marks[8];
  float r = 5;
  std::int16_t q = 5;
  std::int32_t p = 5;
  EXPECT_EQ(orvsFindPeaks_32f8u(x.data(), nullptr, 0, 0, 0), orvStsNullPtrErr);
  for (const int len : {0, 65536})
    EXPECT_EQ(orvsFindPeaks_32s8u(n.data(), marks, len, 128, 0), orvStsLenRangeErr);
  for (const auto &[search, average] : {std::pair{0, 0}, {128, 0}, {1, -1}, {1, 128}})
    EXPECT_EQ(orvsFindPeaks_32s8u(n.data(), marks, 8, search, average), orvStsBadArgErr);
  EXPECT_EQ(orvsPeriodicity_32f(x.data(), 0, &r, nullptr, 0, 0), orvStsNullPtrErr);
  x[0] = -1;
  n[4] = -1;
  EXPECT_EQ(orvsPeriodicity_32f(x.data(), 1, &r, &p, 8, 0), orvStsRangeErr);
  EXPECT_EQ(orvsPeriodicity_32f(x.data(), 1, &r, &p, 8, 8), orvStsRangeErr);
  EXPECT_EQ(orvsPeriodicity_32f(x.data(), 8, &r, &p, 8, 7), orvStsLenRangeErr);
  EXPECT_EQ(orvsPeriodicity_32s16s(n.data(), 4097, &q, &p, 8, 7), orvStsLenRangeErr);
  EXPECT_EQ(orvsPeriodicity_32f(x.data(), 9, &r, &p, 8, 7), orvStsRangeErr);
  EXPECT_EQ(orvsPeriodicity_32s16s(n.data(), 9, &q, &p, 8, 7), orvStsRangeErr);
  EXPECT_EQ(orvsPeriodicityLSPE_32f(nullptr, 0, &r, &p, 8, 5), orvStsNullPtrErr);
  EXPECT_EQ(orvsPeriodicityLSPE_32f(x.data(), 1, &r, &p, 8, 5), orvStsRangeErr);
  EXPECT_EQ(orvsPeriodicityLSPE_16s(s.data(), 1, &q, &p, 6, 6), orvStsRangeErr);
  EXPECT_EQ(orvsPeriodicityLSPE_16s(s.data(), 7, &q, &p, 7, 6), orvStsLenRangeErr);
  EXPECT_EQ(orvsPeriodicityLSPE_16s(s.data(), 97, &q, &p, 7, 6), orvStsLenRangeErr);
  EXPECT_EQ(orvsPeriodicityLSPE_32f(x.data(), 1025, &r, &p, 101, 100), orvStsLenRangeErr);
  EXPECT_TRUE(r == 5 && q == 5 && p == 5);
  EXPECT_EQ(orvsPeriodicityLSPE_32f(x.data(), 96, &r, &p, 7, 6), orvStsNoErr);
  EXPECT_EQ(orvsPeriodicityLSPE_32f(x.data(), 1024, &r, &p, 101, 100), orvStsNoErr);
}

}  // namespace
