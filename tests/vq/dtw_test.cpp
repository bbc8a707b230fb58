#include <gtest/gtest.h>

#include <algorithm>
#include <cfloat>
#include <cmath>

#include "orvsr/vq.h"
#include "support/allocation.h"
#include "support/arrays.h"

using namespace orv::test;

namespace {

using Rows = std::vector<std::vector<float>>;

double distance(const std::vector<float> &a, const std::vector<float> &b) {
  double sum = 0;
  for (std::size_t k = 0; k < a.size(); ++k) sum += static_cast<double>((a[k] - b[k]) * (a[k] - b[k]));
  return static_cast<float>(std::sqrt(sum));
}

// The whole matrix of costs, with cells outside band and beam marked dead. Data are such that every distance
// is a whole number.
float reference(const Rows &first, const Rows &second, int delta, float beta) {
  const bool swap = first.size() < second.size();
  const Rows &x = swap ? second : first;
  const Rows &y = swap ? first : second;
  const int L = static_cast<int>(x.size()), S = static_cast<int>(y.size());
  const int d = delta >= 0 && delta < S ? delta : S - 1;
  if (L == 1) return FLT_MAX;
  constexpr double kDead = INFINITY;
  std::vector<double> cost(static_cast<std::size_t>(S), kDead);
  for (int i = 0; i <= d; ++i)
    cost[static_cast<std::size_t>(i)] = distance(x[0], y[static_cast<std::size_t>(i)]);
  float m = FLT_MAX;
  int first0 = 0, alive = d + 1;  // rows that the search still looks at; a count of 0 or below may grow again
  for (int j = 1; j < L; ++j) {
    const double slopeUp = 3 * j < 2 * S - L ? d + 2 * j : S + d + std::floor((j - L - 1) / 2.0);
    const double slopeDown = 3 * j > 4 * L - 2 * S - 2 ? 2 * j + S - 2 * L - d + 1 : std::floor(j / 2) - d;
    std::vector<double> next(cost.size(), kDead);
    for (int i = std::max(0, static_cast<int>(slopeDown)); i < S && i <= slopeUp; ++i) {
      double best = kDead;
      for (int back = 0; back <= 2 && back <= i; ++back)
        best = std::min(best, cost[static_cast<std::size_t>(i - back)]);
      next[static_cast<std::size_t>(i)] =
          best + distance(x[static_cast<std::size_t>(j)], y[static_cast<std::size_t>(i)]);
    }
    cost = next;
    const int upper = static_cast<int>(std::min(slopeUp, S - 1.0)),
              lower = std::max(0, static_cast<int>(slopeDown));
    alive = std::min(upper - first0 + 1, alive + 2) - std::max(0, lower - first0);
    first0 = std::max(first0, lower);
    cost = next;
    if (alive < 1) continue;  // nothing to reduce: the last minimum stands
    const double least = *std::min_element(cost.begin(), cost.end());
    if (least == kDead) return FLT_MAX;
    m = static_cast<float>(least);
    const float limit = m + (std::max(beta, 0.0F) + 1.1920929e-7F);
    for (; alive > 1 && cost[static_cast<std::size_t>(first0 + alive - 1)] > limit; --alive)
      cost[static_cast<std::size_t>(first0 + alive - 1)] = kDead;
    for (; alive > 1 && cost[static_cast<std::size_t>(first0)] > limit; ++first0, --alive)
      cost[static_cast<std::size_t>(first0)] = kDead;
  }
  return m;
}

// Rows whose differences have one nonzero element at most, so that distances are whole.
Rows randomRows(Random &random, int len, int width, int limit) {
  Rows rows;
  for (int i = 0; i < len; ++i) {
    std::vector<float> row(static_cast<std::size_t>(width), 7);
    row[static_cast<std::size_t>(width - 1)] = wholeNumbers<float>(random, 1, limit)[0];
    rows.push_back(row);
  }
  return rows;
}

template <class T>
std::vector<T> flat(const Rows &rows, int step) {
  std::vector<T> out(rows.size() * static_cast<std::size_t>(step), static_cast<T>(99));
  for (std::size_t r = 0; r < rows.size(); ++r)
    std::transform(rows[r].begin(), rows[r].end(), out.begin() + static_cast<std::ptrdiff_t>(r) * step,
                   [](float v) { return static_cast<T>(v); });
  return out;
}

TEST(DynamicTimeWarping, FollowsTheFullMatrixWithBandAndBeam) {
  Random random(5);
  int dead = 0;
  for (int round = 0; round < 4000; ++round) {
    const auto pick = [&](int low, int high) {
      return std::uniform_int_distribution<int>(low, high)(random);
    };
    const int width = pick(1, 9), step = width + pick(0, 3);
    const Rows a = randomRows(random, pick(1, round % 9 ? 14 : 80), width, 100);
    const Rows b = randomRows(random, pick(1, 14), width, 100);
    const int delta = pick(-2, 15);
    const float beta = static_cast<float>(pick(-10, 150));
    const float expected = reference(a, b, delta, beta);
    dead += expected == FLT_MAX;
    const std::size_t offset = static_cast<std::size_t>(pick(0, 3));
    const Guarded<float> first(flat<float>(a, step), offset), second(flat<float>(b, step), 2 * offset);
    const int la = static_cast<int>(a.size()), lb = static_cast<int>(b.size());
    Guarded<float> result(1);
    ASSERT_EQ(orvsDTW_L2_32f_D2(first.data(), la, second.data(), lb, width, step, result.data(), delta, beta),
              orvStsNoErr);
    ASSERT_EQ(result.at(0), expected) << la << " by " << lb << " delta " << delta << " beta " << beta;
    const auto rowsA = rowPointers(first.data(), a.size(), step),
               rowsB = rowPointers(second.data(), b.size(), step);
    result.set(0, -1);
    ASSERT_EQ(orvsDTW_L2_32f_D2L(rowsA.data(), la, rowsB.data(), lb, width, result.data(), delta, beta),
              orvStsNoErr);
    ASSERT_EQ(result.at(0), expected);

    // The integer forms on the same data, halved with ties to even.
    const auto a16 = flat<std::int16_t>(a, step), b16 = flat<std::int16_t>(b, step);
    std::int32_t whole = -1, halved = -1;
    const auto rounded =
        expected == FLT_MAX ? INT32_MAX : static_cast<std::int32_t>(std::nearbyint(expected / 2));
    ASSERT_EQ(orvsDTW_L2Low_16s32s_D2Sfs(a16.data(), la, b16.data(), lb, width, step, &halved, delta,
                                         static_cast<int>(beta), 1),
              orvStsNoErr);
    ASSERT_EQ(halved, rounded);
    const auto r16a = rowPointers(a16.data(), a.size(), step), r16b = rowPointers(b16.data(), b.size(), step);
    ASSERT_EQ(orvsDTW_L2Low_16s32s_D2LSfs(r16a.data(), la, r16b.data(), lb, width, &whole, delta,
                                          static_cast<int>(beta), 0),
              orvStsNoErr);
    ASSERT_EQ(whole, expected == FLT_MAX ? INT32_MAX : static_cast<std::int32_t>(expected));
  }
  EXPECT_GT(dead, 20);

  const std::vector<std::uint8_t> a{0, 255, 10}, b{3, 250, 11};
  const auto rowsA = rowPointers(a.data(), 3, 1), rowsB = rowPointers(b.data(), 3, 1);
  std::int32_t byRows = -1, byArray = -1;
  EXPECT_EQ(orvsDTW_L2_8u32s_D2LSfs(rowsA.data(), 3, rowsB.data(), 3, 1, &byRows, 0, 100, 0), orvStsNoErr);
  EXPECT_EQ(orvsDTW_L2_8u32s_D2Sfs(a.data(), 3, b.data(), 3, 1, 1, &byArray, 0, 100, -1), orvStsNoErr);
  EXPECT_EQ(byRows, 9);
  EXPECT_EQ(byArray, 18);
}

TEST(DynamicTimeWarping, RoundsDifferencesAndSquaresToSingle) {
  // In double the distance of the second frames would be 16777217.
  const float a[] = {0, 16777216}, b[] = {0, -1};
  float result = 0;
  EXPECT_EQ(orvsDTW_L2_32f_D2(a, 2, b, 2, 1, 1, &result, 0, 1e30F), orvStsNoErr);
  EXPECT_EQ(result, 16777216.0F);
  // With squares in double: 7107.76221 and 8650.94727.
  const float three[] = {0, 0, 0, 4104, 4099, 4108}, four[] = {0, 0, 0, 0, 4766, 4099, 4190, 4215},
              zeros[8] = {};
  EXPECT_EQ(orvsDTW_L2_32f_D2(three, 2, zeros, 2, 3, 3, &result, 0, 1e30F), orvStsNoErr);
  EXPECT_EQ(result, 7107.76172F);
  EXPECT_EQ(orvsDTW_L2_32f_D2(four, 2, zeros, 2, 4, 4, &result, 0, 1e30F), orvStsNoErr);
  EXPECT_EQ(result, 8650.94629F);
}

// A cost of 0.5 in the first row, and one or two units of 2^-23 less in the second: only the former is within
// a beam of no width, and only from the first row is the last frame near.
TEST(DynamicTimeWarping, WidensTheBeamByOneRounding) {
  const float a[] = {0, 0.5F, 0};
  for (const float unit : {0x1p-23F, 0x1p-22F}) {
    const float b[] = {0, 1 - unit};
    float result = 0;
    EXPECT_EQ(orvsDTW_L2_32f_D2(a, 3, b, 2, 1, 1, &result, -1, -5), orvStsNoErr);
    EXPECT_EQ(result, unit == 0x1p-23F ? 0.5F : (0.5F - unit) + (1 - unit));
  }
}

TEST(DynamicTimeWarping, AllocatesBeyondItsStackAndReportsFailureByForm) {
  // 236 by 3 frames take 512 elements, which stay on the stack, 237 by 3 take 520.
  const std::vector<float> data(251);
  const auto rows = rowPointers(data.data(), 200, 1);
  for (const int longLen : {236, 237}) {
    Allocations allocations;
    float result;
    const auto longRows = rowPointers(data.data(), static_cast<std::size_t>(longLen), 1);
    EXPECT_EQ(orvsDTW_L2_32f_D2L(longRows.data(), longLen, rows.data(), 3, 1, &result, -1, 1), orvStsNoErr);
    EXPECT_EQ(allocations.sizes(),
              longLen == 236 ? std::vector<std::size_t>{} : std::vector<std::size_t>{4 * 520});
  }
  // So do 256 row pointers; the costs of that many frames do not.
  for (const int longLen : {250, 251}) {
    Allocations allocations;
    float result;
    EXPECT_EQ(orvsDTW_L2_32f_D2(data.data(), longLen, data.data(), 6, 1, 1, &result, -1, 1), orvStsNoErr);
    const std::vector<std::size_t> costs{4 * 564}, both{8 * 257, 4 * 564};
    EXPECT_EQ(allocations.sizes(), longLen == 250 ? costs : both);
  }
  const std::vector<std::int16_t> shorts(200);
  const int failures = failEachAllocation([&](int n) {
    float result = -3;
    const OrvStatus status = orvsDTW_L2_32f_D2(data.data(), 200, data.data(), 200, 1, 1, &result, -1, 1);
    EXPECT_EQ(status, n == 0 ? orvStsMemAllocErr : orvStsNoErr);
    EXPECT_EQ(result, n <= 1 ? -3.0F : 0.0F);
  });
  EXPECT_EQ(failures, 2);
  EXPECT_EQ(failEachAllocation([&](int n) {
              std::int32_t result = -3;
              const OrvStatus status =
                  orvsDTW_L2Low_16s32s_D2Sfs(shorts.data(), 200, shorts.data(), 200, 1, 1, &result, -1, 1, 0);
              EXPECT_EQ(status, n < 3 ? orvStsMemAllocErr : orvStsNoErr);
              EXPECT_EQ(result, n < 3 ? -3 : n == 3 ? INT32_MAX : 0);
            }),
            4);
  // A length counts elements: the bytes of a copy may go beyond 32 bits.
  const std::int16_t *row = shorts.data();
  Allocations allocations;
  allocations.failAt(1);
  std::int32_t result = -3;
  EXPECT_EQ(orvsDTW_L2Low_16s32s_D2LSfs(&row, 1, &row, 1, 1 << 30, &result, -1, 1, 0), orvStsMemAllocErr);
  EXPECT_EQ(allocations.sizes(), (std::vector<std::size_t>{16, std::size_t{1} << 32}));
}

TEST(DynamicTimeWarping, ChecksPointersThenSizes) {
  const float data[4] = {};
  const float *rows[2] = {data, data};
  float result = -3;
  EXPECT_EQ(orvsDTW_L2_32f_D2L(nullptr, 0, rows, 2, 1, &result, 0, 0), orvStsNullPtrErr);
  EXPECT_EQ(orvsDTW_L2_32f_D2(data, 0, data, 2, 1, 1, nullptr, 0, 0), orvStsNullPtrErr);
  EXPECT_EQ(orvsDTW_L2_32f_D2(data, 0, data, 2, 1, 1, &result, 0, 0), orvStsSizeErr);
  EXPECT_EQ(orvsDTW_L2_32f_D2(data, 2, data, 0, 1, 1, &result, 0, 0), orvStsSizeErr);
  EXPECT_EQ(orvsDTW_L2_32f_D2(data, 2, data, 2, 0, 1, &result, 0, 0), orvStsSizeErr);
  EXPECT_EQ(orvsDTW_L2_32f_D2(data, 1, data, 1, 2, 1, &result, 0, 0), orvStsSizeErr);
  EXPECT_EQ(orvsDTW_L2_32f_D2L(rows, INT32_MAX, rows, INT32_MAX, 1, &result, 0, 0), orvStsMemAllocErr);
  EXPECT_EQ(result, -3);
}

}  // namespace
