#include <cmath>

#include "core/alloc.h"
#include "core/integer.h"
#include "core/logadd.h"
#include "core/scale.h"
#include "support/allocation.h"
#include "support/arrays.h"

namespace orv::test {
namespace {

TEST(Scale, IsThePowerOfTwoBetweenItsEnds) {
  constexpr double inf = std::numeric_limits<double>::infinity();
  for (int factor = -1200; factor < 1200; ++factor) {
    const double power = std::ldexp(1.0, -factor);
    const double single = factor <= -128 ? inf : factor >= 150 ? 0.0 : power;
    const double wide = factor <= -1024 ? inf : factor >= 1075 ? 0.0 : power;
    EXPECT_TRUE(sameBits(GetScale_32s32f(factor), static_cast<float>(single))) << factor;
    EXPECT_TRUE(sameBits(GetScale_32s64f(factor), wide)) << factor;
  }
  for (const std::int32_t end : {INT32_MIN, INT32_MAX}) {
    EXPECT_EQ(GetScale_32s32f(end), end < 0 ? inf : 0.0);
    EXPECT_EQ(GetScale_32s64f(end), end < 0 ? inf : 0.0);
  }
  EXPECT_EQ(halvedScale(3), 0.0625F);
  EXPECT_EQ(halvedScale(INT32_MAX), 0.0F);
  EXPECT_EQ(plusOne(INT32_MAX), 0x80000000);
}

TEST(Integer, ShiftsTakeSixBitsOfTheCountAndRoundDown) {
  constexpr std::int64_t v = -1234567890123;
  for (const int turn : {0, 64, 128}) {
    EXPECT_EQ(shiftSum(v, turn), v);
    EXPECT_EQ(shiftSum(v, -turn), v);
    EXPECT_EQ(shiftSum(v, turn + 3), -154320986266);  // rounded towards minus infinity
    EXPECT_EQ(shiftSum(v, -turn - 3), v * 8);
  }
  EXPECT_EQ(shiftSum(-1, std::int64_t{INT32_MAX} + 1), -1);  // 2^31 is a multiple of 64
  EXPECT_EQ(shiftSum(5, INT32_MIN), 5);
  EXPECT_EQ(shiftSum(3, -63), INT64_MIN);  // what leaves 64 bits is lost
  EXPECT_EQ(shiftLeft32(3, 31), INT32_MIN);
  EXPECT_EQ(shiftLeft32(3, 32), 3);
}

TEST(Integer, WrapsAndSaturates) {
  EXPECT_EQ(addWrap64(INT64_MAX, 1), INT64_MIN);
  EXPECT_EQ(subWrap64(INT64_MIN, 1), INT64_MAX);
  EXPECT_EQ(addWrap32(INT32_MAX, 1), INT32_MIN);
  EXPECT_EQ(subWrap32(INT32_MIN, 1), INT32_MAX);
  EXPECT_EQ(mulWrap32(INT32_MIN, -1), INT32_MIN);
  EXPECT_EQ(wrap16(0x18001), -0x7FFF);
  for (const std::int64_t far : {std::int64_t{1} << 31, INT64_MAX}) {
    EXPECT_EQ(sat16(far), INT16_MAX);
    EXPECT_EQ(sat16(-far), INT16_MIN);
    EXPECT_EQ(sat32(far), INT32_MAX);
    EXPECT_EQ(sat32(-far), INT32_MIN);
  }
  EXPECT_EQ(saturateTruncated<std::int16_t>(-1.99), -1);
  EXPECT_EQ(saturateTruncated<std::int16_t>(1e300), INT16_MAX);
  EXPECT_EQ(saturateTruncated<std::int32_t>(2147483647.5), INT32_MAX);
  EXPECT_EQ(saturateTruncated<std::int32_t>(-1e300), INT32_MIN);
  const volatile double nan = NAN;  // or the compiler converts it, and not as the processor does
  EXPECT_EQ(truncate32(nan), INT32_MIN);
}

TEST(Allocation, WidensTheLengthAndRefusesWhatIsBelowOne) {
  Allocations allocations;
  for (const int len : {0, -1, INT32_MIN})
    EXPECT_TRUE(orvsMalloc_8u(len) == nullptr && orvsMalloc_16s(len) == nullptr &&
                orvsMalloc_32s(len) == nullptr && orvsMalloc_32f(len) == nullptr &&
                orvsMalloc_64f(len) == nullptr);
  EXPECT_EQ(allocateBytes(std::int64_t{INT32_MAX} + 1), nullptr);
  EXPECT_EQ(allocateBytes(0), nullptr);
  EXPECT_EQ(allocations.calls(), 0);
  for (void *block : {static_cast<void *>(orvsMalloc_8u(3)), static_cast<void *>(orvsMalloc_16s(3)),
                      static_cast<void *>(orvsMalloc_32s(3)), static_cast<void *>(orvsMalloc_32f(3)),
                      static_cast<void *>(orvsMalloc_64f(3)), static_cast<void *>(allocateBytes(7))})
    orvsFree(block);
  { const WorkArray<double> work(5); }
  allocations.failAt(0);
  EXPECT_EQ(orvsMalloc_64f(INT32_MAX), nullptr);
  allocations.failAt(0);
  EXPECT_FALSE(WorkArray<float>(1));
  EXPECT_EQ(allocations.sizes(),
            (std::vector<std::size_t>{3, 6, 12, 12, 24, 7, 40, 8 * std::size_t{INT32_MAX}, 4}));
}

double exactTail(double d) { return std::log1p(std::exp(d)); }

// The extended type leaves ten bits beyond double: enough to tell how each entry rounds.
TEST(LogAddTables, FastRowsAreTheQuadraticsThroughTheirCells) {
  const long double h = 15.3195879547406L / 64;
  const auto f = [h](long double cells) { return std::log1p(std::exp(-cells * h)); };
  EXPECT_EQ(QIP1_F1[0][0], 0.6931471824645996F);
  EXPECT_EQ(QIP1_F1[64][0], 2.222221979764072e-07F);
  for (int r = 1; r <= 64; ++r) {
    const long double b = f(r - 1) - f(r);
    EXPECT_EQ(QIP1_F1[r][0], static_cast<float>(f(r))) << r;
    EXPECT_EQ(QIP1_F1[r][1], static_cast<float>(b)) << r;
    EXPECT_EQ(QIP1_F1[r][2], static_cast<float>(4 * (f(r) + b / 2 - f(r - 0.5L)))) << r;
    EXPECT_EQ(QIP1_F1[r][3], 0.0F);
  }
}

template <class Domain>
void expectAccurate(const Domain &domain, double bound) {
  for (double d = 0; d >= Domain::dropBelow; d -= 1.0 / 4096) {
    ASSERT_NEAR(logTail<Grouping::constantFirst>(domain, 0.0, d), exactTail(d), bound) << d;
    ASSERT_NEAR(logTail<Grouping::constantLast>(domain, 0.0, d), exactTail(d), bound) << d;
  }
}

TEST(LogAddTables, PolynomialsAreAsAccurateAsTold) {
  expectAccurate(LogDomain32f(), 5e-9);
  expectAccurate(LogDomain64f(), 1e-14);
}

// The quick evaluation must never be seen: same single value as Horner's, in both groupings.
TEST(LogAddTables, RoundedTailIsHornersRounded) {
  Random random(1);
  const LogDomain32f domain;
  for (int i = 0; i < 200000; ++i) {
    const double d = uniform<double>(random, 1, -15.3, 0)[0];
    // Large sums, and ones near zero, where the slack is wider than the distance of two single values.
    const double m = i % 2 == 0 ? uniform<double>(random, 1, -1e6, 1e3)[0] : -exactTail(d) + i * 1e-14;
    ASSERT_EQ(logTailRounded<Grouping::constantFirst>(domain, m, d),
              static_cast<float>(logTail<Grouping::constantFirst>(domain, m, d)));
    ASSERT_EQ(logTailRounded<Grouping::constantLast>(domain, m, d),
              static_cast<float>(logTail<Grouping::constantLast>(domain, m, d)));
  }
}

}  // namespace
}  // namespace orv::test
