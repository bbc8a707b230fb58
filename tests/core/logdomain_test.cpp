#include <initializer_list>
#include <limits>

#include "core/logadd.h"
#include "orvsr/core.h"
#include "support/arrays.h"

namespace orv::test {
namespace {

TEST(Version, IsTheRecordOfThisLibrary) {
  const OrvLibraryVersion *const v = orvsrGetLibVersion();
  EXPECT_EQ(v, orvsrGetLibVersion());
  EXPECT_EQ((std::vector{v->major, v->minor, v->majorBuild, v->build}), (std::vector{6, 1, 137, 818}));
  EXPECT_EQ(std::string(v->targetCpu, 4), std::string("mx\0\0", 4));
  EXPECT_STREQ(v->name, "liborvsrmx.so.6.1");
  EXPECT_STREQ(v->version, "6.1 build 137.56");
  EXPECT_STREQ(v->buildDate, "Mar 17 2010");
}

// One name for the members of all types.
OrvStatus add(const float *s, float *d, int n, int hint, int = 0) { return orvsLogAdd_32f(s, d, n, hint); }
OrvStatus add(const double *s, double *d, int n, int hint, int = 0) { return orvsLogAdd_64f(s, d, n, hint); }
OrvStatus add(const std::int16_t *s, std::int16_t *d, int n, int hint, int factor = 0) {
  return orvsLogAdd_16s_Sfs(s, d, n, factor, hint);
}
OrvStatus add(const std::int32_t *s, std::int32_t *d, int n, int hint, int factor = 0) {
  return orvsLogAdd_32s_Sfs(s, d, n, factor, hint);
}
OrvStatus subtract(const float *s, float *d, int n, int = 0) { return orvsLogSub_32f(s, d, n); }
OrvStatus subtract(const double *s, double *d, int n, int = 0) { return orvsLogSub_64f(s, d, n); }
OrvStatus subtract(const std::int16_t *s, std::int16_t *d, int n, int factor = 0) {
  return orvsLogSub_16s_Sfs(s, d, n, factor);
}
OrvStatus subtract(const std::int32_t *s, std::int32_t *d, int n, int factor = 0) {
  return orvsLogSub_32s_Sfs(s, d, n, factor);
}
OrvStatus sum(const float *s, float *d, int n, int = 0) { return orvsLogSum_32f(s, d, n); }
OrvStatus sum(const double *s, double *d, int n, int = 0) { return orvsLogSum_64f(s, d, n); }
OrvStatus sum(const std::int16_t *s, std::int16_t *d, int n, int f = 0) {
  return orvsLogSum_16s_Sfs(s, d, n, f);
}
OrvStatus sum(const std::int32_t *s, std::int32_t *d, int n, int f = 0) {
  return orvsLogSum_32s_Sfs(s, d, n, f);
}

constexpr double kDrop = -15.3195879547406, kDropWide = -23.0258509299405;
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

// The plain reference: Horner from the highest power down, one value at a time.
double polynomial(const double *c, int degree, double m, double u) {
  double h = c[0];
  for (int i = 1; i < degree; ++i) h = h * u + c[i];
  return (m + c[degree]) + h * u;
}

double accurate(double m, double d) {
  if (d > -2.55) return polynomial(P1_F, 10, m, d);
  return d > -6.8 ? polynomial(P2_F, 10, m, d + 2.55) : polynomial(P3_F, 10, m, d + 6.8);
}

template <class Real>
double fast(Real m, Real d, Real perCell, Real node) {
  const int row = static_cast<int>(-d * perCell) + 1;
  const Real a = QIP1_F1[row][0], b = QIP1_F1[row][1], c = QIP1_F1[row][2];
  const Real t = (d - static_cast<Real>(2 * row) * node) * perCell;
  const Real v = t * (b + c * (t - 1));
  return (static_cast<double>(m) + static_cast<double>(a)) + static_cast<double>(v);
}

float expectedSum(float x, float y, int hint) {
  const float m = y > x ? y : x, d = y > x ? -(y - x) : y - x;
  if (std::isnan(d)) return d;
  if (hint == orvAlgHintFast ? d <= -15.319588F : kDrop > d) return m < -4.5e6F ? -4.5e6F : m;
  return static_cast<float>(hint == orvAlgHintFast ? fast(m, d, 4.177658F, -0.11968428F) : accurate(m, d));
}

double expectedSum(double x, double y, int) {
  const double m = y > x ? y : x, d = y > x ? -(y - x) : y - x;
  if (kDropWide > d) return -9e9 > m ? -1e10 : m;
  if (d > -3.5) return polynomial(P1, 21, m, d);
  return d > -9.0 ? polynomial(P2, 21, m, d + 3.5) : polynomial(P3, 21, m, d + 9.0);
}

template <class Int>
Int fixedPoint(double value) {
  if (value > std::numeric_limits<Int>::max()) return std::numeric_limits<Int>::max();
  if (value < std::numeric_limits<Int>::min()) return std::numeric_limits<Int>::min();
  return static_cast<Int>(value);
}

template <class T>
class LogDomain : public ::testing::Test {};
using Types = ::testing::Types<float, double, std::int16_t, std::int32_t>;
TYPED_TEST_SUITE(LogDomain, Types);
template <class T>
class LogReal : public ::testing::Test {};
using Reals = ::testing::Types<float, double>;
TYPED_TEST_SUITE(LogReal, Reals);
template <class T>
class LogFixed : public ::testing::Test {};
using Integers = ::testing::Types<std::int16_t, std::int32_t>;
TYPED_TEST_SUITE(LogFixed, Integers);

TYPED_TEST(LogDomain, LengthsAreCheckedBeforePointersAndHintsLast) {
  using T = TypeParam;
  Guarded<T> array(6), other(std::vector<T>(6, T(3)));
  T *const none = nullptr;
  T *const d = array.data();
  const T *const s = other.data();
  for (const int len : {0, -1}) {
    for (const int hint : {0, 1, 2, 3}) EXPECT_EQ(add(none, none, len, hint), orvStsSizeErr);
    EXPECT_EQ(subtract(none, none, len), orvStsSizeErr);
    EXPECT_EQ(sum(none, none, len), orvStsSizeErr);
  }
  for (const int hint : {0, 1, 2, 3}) EXPECT_EQ(add(none, d, 6, hint), orvStsNullPtrErr);
  for (const int hint : {0, 1, 2, 3}) EXPECT_EQ(add(s, none, 6, hint), orvStsNullPtrErr);
  for (const int hint : {3, -1, 256 + 1}) EXPECT_EQ(add(s, d, 6, hint), orvStsNoErr);  // not an error
  EXPECT_EQ(subtract(none, d, 6), orvStsNullPtrErr);
  EXPECT_EQ(subtract(s, none, 6), orvStsNullPtrErr);
  EXPECT_EQ(sum(none, d, 6), orvStsNullPtrErr);
  EXPECT_EQ(sum(s, none, 6), orvStsNullPtrErr);
  EXPECT_TRUE(array.untouched());
}

TYPED_TEST(LogDomain, SubtractionRefusesWhatIsNotLessAndWritesNothing) {
  using T = TypeParam;
  for (const T last : {T(7), T(8)}) {
    Guarded<T> d(std::vector<T>{1, 2, last});
    const std::vector<T> s{7, 7, 7};
    EXPECT_EQ(subtract(s.data(), d.data(), 3), orvStsRangeErr);
    EXPECT_EQ(d.values(), (std::vector<T>{1, 2, last}));
  }
}

// Every pair of these: equal values, segment ends and drop thresholds with their neighbours, floors,
// infinities.
template <class T>
std::vector<T> notableLogs() {
  std::vector<T> values{0, 1, T(-1e7), T(-4.5e6), T(-4.6e6), T(-8.9e9), T(-9.1e9), T(3e38), T(-3e38)};
  for (const double end : {-2.55, -3.5, -6.8, -9.0, kDrop, -15.319588, kDropWide, -4.5e6, -9e9}) {
    values.push_back(static_cast<T>(end));
    values.push_back(std::nextafter(static_cast<T>(end), T(0)));
    values.push_back(std::nextafter(static_cast<T>(end), T(-1e30)));
  }
  for (const double special : {kInf, -kInf, kNan}) values.push_back(static_cast<T>(special));
  return values;
}

TYPED_TEST(LogReal, AdditionOfNotablePairs) {
  using T = TypeParam;
  const auto values = notableLogs<T>();
  std::vector<T> x, y;
  for (const T a : values)
    for (const T b : values) {
      x.push_back(a);
      y.push_back(b);
    }
  for (const int hint : {0, 1, 2}) {
    std::vector<T> result = y;
    ASSERT_EQ(add(x.data(), result.data(), static_cast<int>(x.size()), hint), orvStsNoErr);
    for (std::size_t i = 0; i < x.size(); ++i)
      EXPECT_TRUE(sameBits(result[i], expectedSum(x[i], y[i], hint))) << x[i] << ' ' << y[i] << ' ' << hint;
  }
}

TYPED_TEST(LogReal, AdditionAtEveryLengthAndPlace) {
  using T = TypeParam;
  Random random(5);
  for (std::size_t offset = 0; offset < 16; ++offset)
    for (std::size_t len = 1; len < 27; ++len)
      for (const int hint : {0, 1}) {
        const Guarded<T> x(uniform<T>(random, len, -30, 0), offset);
        const auto old = uniform<T>(random, len, -30, 0);
        Guarded<T> y(old, 16 - offset), both(x.values(), len % 16);
        ASSERT_EQ(add(x.data(), y.data(), y.len(), hint), orvStsNoErr);
        ASSERT_EQ(add(both.data(), both.data(), y.len(), hint), orvStsNoErr);
        for (std::size_t i = 0; i < len; ++i) {
          ASSERT_TRUE(sameBits(y.at(i), expectedSum(x.at(i), old[i], hint)));
          ASSERT_TRUE(sameBits(both.at(i), expectedSum(x.at(i), x.at(i), hint)));
        }
      }
}

TYPED_TEST(LogReal, SumFoldsFromFirstToLast) {
  using T = TypeParam;
  Random random(6);
  Guarded<T> result(1, 1);
  const auto check = [&](const std::vector<T> &values) {
    ASSERT_EQ(sum(values.data(), result.data(), static_cast<int>(values.size())), orvStsNoErr);
    T expected = values[0];
    // The new element takes the place of the source of a log-addition, the running value that of the
    // destination.
    for (std::size_t i = 1; i < values.size(); ++i) expected = expectedSum(values[i], expected, 0);
    ASSERT_TRUE(sameBits(result.at(0), expected)) << values.size();
  };
  for (const double alone : {-1e30, 5.0, -kInf, kNan}) check({static_cast<T>(alone)});  // copied, not floored
  for (const T a : notableLogs<T>())
    for (const T b : notableLogs<T>()) check({a, b});
  for (std::size_t n = 1; n < 400; ++n) check(uniform<T>(random, n, n % 2 == 0 ? -16 : -1e4, 0));
  // Results around zero, where single precision is finer than the rounding of the polynomial itself.
  for (int i = 0; i < 20000; ++i) {
    const auto d = uniform<T>(random, 1, -15, 0)[0];
    const auto m = static_cast<T>(-std::log1p(std::exp(d)));
    check({m, m + d});
  }
}

TYPED_TEST(LogReal, SubtractionOfNotableAndRandomPairs) {
  using T = TypeParam;
  constexpr bool wide = sizeof(T) == 8;
  Random random(7);
  auto values = notableLogs<T>();
  for (const T v : uniform<T>(random, 40, -25, 0)) values.push_back(v);
  values.push_back(std::numeric_limits<T>::denorm_min());
  for (const T x : values)
    for (const T y : values) {
      if (y - x >= 0) continue;
      Guarded<T> d(std::vector<T>(1, y), 1);
      ASSERT_EQ(subtract(&x, d.data(), 1), orvStsNoErr);
      const double left = 1.0 - std::exp(static_cast<double>(y - x));
      double expected = x + std::log(left);
      if (left <= (wide ? 2.45e-308 : 1.0057e-37)) expected = wide ? -1e10 : -4.5e6;
      if (y - x < (wide ? kDropWide : kDrop)) expected = expectedSum(x, y, 0);
      ASSERT_TRUE(sameBits(d.at(0), static_cast<T>(expected))) << x << ' ' << y;
    }
}

constexpr int kFactors[] = {-990, -300, -40, -16, -3, -1, 0,   1,    4,    8,        11,
                            14,   20,   27,  30,  40, 90, 149, 1070, 1100, INT32_MAX};

template <class Int>
std::vector<Int> notableIntegers() {
  Random random(8);
  constexpr Int most =
      std::numeric_limits<Int>::max();  // as singles, this and the next are one in the 32s forms
  std::vector<Int> values{std::numeric_limits<Int>::min(), most, most - 1, 0, 1, -1, -15, -16};
  for (const double end : {-2.55, -6.8, kDrop}) values.push_back(static_cast<Int>(end * 2048));
  for (const Int v : anyIntegers<Int>(random, 12)) values.push_back(v);
  for (const Int v : wholeNumbers<Int>(random, 6, 300)) values.push_back(v);
  return values;
}

TYPED_TEST(LogFixed, AdditionScalesSaturatesAndTruncates) {
  using T = TypeParam;
  for (const int factor : kFactors)
    for (const int hint : {0, 1, 2})
      for (const T a : notableIntegers<T>())
        for (const T b : notableIntegers<T>()) {
          const double s = std::ldexp(1.0, -std::max(factor, -1100));
          const double x = a * s, y = b * s;
          const double m = y > x ? y : x, d = y > x ? -(y - x) : y - x;
          double value = m;  // no floor in these forms
          if (!(kDrop > d))
            value = hint == orvAlgHintFast ? fast(m, d, 4.1776580810546875, -0.11968427896499634)
                                           : accurate(m, d);
          Guarded<T> result(std::vector<T>(1, b), 1);
          ASSERT_EQ(add(&a, result.data(), 1, hint, factor), orvStsNoErr);
          ASSERT_EQ(result.at(0), fixedPoint<T>(value / s)) << a << ' ' << b << ' ' << factor << ' ' << hint;
        }
  // Zero times an infinite scale is no place in the fast table.
  T accurateSum = 0, fastSum = 0;
  const T zero = 0;
  EXPECT_EQ(add(&zero, &accurateSum, 1, orvAlgHintAccurate, -1100), orvStsNoErr);
  EXPECT_EQ(add(&zero, &fastSum, 1, orvAlgHintFast, -1100), orvStsNoErr);
  EXPECT_EQ(fastSum, accurateSum);
  // The difference between the end of the fast table and the drop threshold, which only such a factor
  // reaches.
  if constexpr (sizeof(T) == 4) {
    const int factor = 27;
    const std::int32_t d = -2056160289;
    EXPECT_LT(kDrop, std::ldexp(d, -factor));
    EXPECT_GE(std::ldexp(-d, -factor) * 4.1776580810546875, 64.0);
    std::int32_t y = d;
    const std::int32_t x = 0;
    EXPECT_EQ(add(&x, &y, 1, orvAlgHintFast, factor), orvStsNoErr);
    EXPECT_NEAR(y, 2.2222e-7 * (1 << factor), 1);
  }
}

TYPED_TEST(LogFixed, SumCarriesTwentyFourBits) {
  using T = TypeParam;
  Random random(9);
  for (const int factor : kFactors)
    for (std::size_t len = 1; len < 12; ++len) {
      auto values = anyIntegers<T>(random, len);
      if (len % 2 == 0) values = wholeNumbers<T>(random, len, 5000);
      const double s = std::ldexp(1.0, -std::max(factor, -1100));
      double value = values[0] * s;  // not yet rounded to single
      for (std::size_t i = 1; i < len; ++i) {
        const double x = values[i] * s;
        const double m = value > x ? value : x, d = -std::fabs(value - x);
        value = static_cast<float>(kDrop > d ? std::max(m, -4.5e6) : accurate(m, d));
      }
      Guarded<T> result(1, 1);
      ASSERT_EQ(sum(values.data(), result.data(), static_cast<int>(len), factor), orvStsNoErr);
      if (std::isnan(value / s)) continue;
      ASSERT_EQ(result.at(0), len == 1 ? values[0] : fixedPoint<T>(value / s)) << factor << ' ' << len;
    }
}

// The scale acts on the difference only, the logarithm is added to the raw integer, and the 16s form keeps
// the low half of a 32-bit result: odd, and meant.
TYPED_TEST(LogFixed, SubtractionAddsTheUnscaledLogarithm) {
  using T = TypeParam;
  for (const int factor : kFactors)
    for (const T x : notableIntegers<T>())
      for (const T y : notableIntegers<T>()) {
        if (static_cast<std::int32_t>(static_cast<std::uint32_t>(y) - static_cast<std::uint32_t>(x)) >= 0)
          continue;
        const auto s = static_cast<float>(factor < -127 ? kInf : std::ldexp(1.0, -factor));
        const double d = (static_cast<float>(y) - static_cast<float>(x)) * s;
        const double left = 1.0 - std::exp(d);
        double value = 1.0057e-37 >= left ? -4.5e6 : x + std::log(left);
        if (kDrop > d) value = std::max<double>(x, -4.5e6);
        if (std::isnan(value)) continue;
        Guarded<T> result(std::vector<T>(1, y), 1);
        ASSERT_EQ(subtract(&x, result.data(), 1, factor), orvStsNoErr);
        ASSERT_EQ(result.at(0), static_cast<T>(fixedPoint<std::int32_t>(value)))
            << x << ' ' << y << ' ' << factor;
      }
  const T x = 5;
  T y = 4;
  EXPECT_EQ(subtract(&x, &y, 1, 100), orvStsNoErr);
  EXPECT_EQ(y, sizeof(T) == 2 ? 21984 : -4500000);
}

}  // namespace
}  // namespace orv::test
