#include <emmintrin.h>

#include <limits>

#include "orvsr/train.h"
#include "support/arrays.h"

namespace orv::test {
namespace {

template <class T>
constexpr T kLeast = std::numeric_limits<T>::min();
template <class T>
constexpr T kNan = std::numeric_limits<T>::quiet_NaN();
template <class T>
constexpr T kInf = std::numeric_limits<T>::infinity();

// One name for the members of both types.
template <class T>
struct Api;
template <>
struct Api<float> {
  static constexpr auto mean = orvsUpdateMean_32f;
  static constexpr auto var = orvsUpdateVar_32f;
  static constexpr auto weight = orvsUpdateWeight_32f;
  static constexpr auto inverse = orvsUpdateGConst_32f;
  static constexpr auto direct = orvsUpdateGConst_DirectVar_32f;
  static constexpr auto preCalc = orvsOutProbPreCalc_32f;
  static constexpr auto preCalcInPlace = orvsOutProbPreCalc_32f_I;
};
template <>
struct Api<double> {
  static constexpr auto mean = orvsUpdateMean_64f;
  static constexpr auto var = orvsUpdateVar_64f;
  static constexpr auto weight = orvsUpdateWeight_64f;
  static constexpr auto inverse = orvsUpdateGConst_64f;
  static constexpr auto direct = orvsUpdateGConst_DirectVar_64f;
  static constexpr auto preCalc = orvsOutProbPreCalc_64f;
  static constexpr auto preCalcInPlace = orvsOutProbPreCalc_64f_I;
};
template <>
struct Api<std::int32_t> {
  static constexpr auto preCalc = orvsOutProbPreCalc_32s;
  static constexpr auto preCalcInPlace = orvsOutProbPreCalc_32s_I;
};

template <class T>
class Updates : public ::testing::Test {};
using Floats = ::testing::Types<float, double>;
TYPED_TEST_SUITE(Updates, Floats);

TYPED_TEST(Updates, ChecksComeInOrderAndNothingIsWritten) {
  using T = TypeParam;
  using A = Api<T>;
  Guarded<T> a(4), out(4), sum(1);
  T *const x = a.data();
  T *const d = out.data();
  T *const s = sum.data();
  for (int hole = 0; hole < 4; ++hole) {
    const T *const p = hole == 0 ? nullptr : x, *const q = hole == 1 ? nullptr : x,
                   *const r = hole == 2 ? nullptr : x;
    T *const to = hole == 3 ? nullptr : d, *const total = hole == 2 ? nullptr : s;
    EXPECT_EQ(A::var(p, q, r, to, 0, -1, -1), orvStsNullPtrErr);
    if (hole != 1) {
      EXPECT_EQ(A::weight(p, to, 0, total, -1, 0), orvStsNullPtrErr);
    }
    if (hole != 2) {
      EXPECT_EQ(A::preCalc(p, q, to, 0), orvStsNullPtrErr);
    }
    if (hole != 0 && hole != 3) continue;
    EXPECT_EQ(A::mean(p, to, 0, -1), orvStsNullPtrErr);
    EXPECT_EQ(A::preCalcInPlace(p, to, 0), orvStsNullPtrErr);
    EXPECT_EQ(A::inverse(p, 0, to), orvStsNullPtrErr);
    EXPECT_EQ(A::direct(p, 0, to), orvStsNullPtrErr);
  }
  EXPECT_EQ(A::preCalc(x, x, d, 0), orvStsSizeErr);
  EXPECT_EQ(A::preCalcInPlace(x, d, -1), orvStsSizeErr);
  EXPECT_EQ(A::inverse(x, 0, s), orvStsSizeErr);
  EXPECT_EQ(A::direct(x, 0, s), orvStsSizeErr);
  // Below zero is an error however small; up to the smallest normal value is zero.
  const T tiny = -std::numeric_limits<T>::denorm_min();
  EXPECT_EQ(A::mean(x, d, 0, -1), orvStsSizeErr);
  EXPECT_EQ(A::var(x, x, x, d, 0, -1, -1), orvStsSizeErr);
  EXPECT_EQ(A::weight(x, d, 0, s, -1, 0), orvStsSizeErr);
  EXPECT_EQ(A::mean(x, d, 4, tiny), orvStsNegOccupancyErr);
  EXPECT_EQ(A::weight(x, d, 4, s, tiny, 0), orvStsNegOccupancyErr);
  EXPECT_EQ(A::var(x, x, x, d, 4, 0, tiny), orvStsNegOccupancyErr);
  EXPECT_EQ(A::var(x, x, x, d, 4, tiny, 0), orvStsNegOccupancyErr);
  for (const T zero : {T(0), -T(0), kLeast<T> / 2, kLeast<T>}) {
    EXPECT_EQ(A::mean(x, d, 4, zero), orvStsZeroOccupancyWrn);
    EXPECT_EQ(A::weight(x, d, 4, s, zero, 0), orvStsZeroOccupancyWrn);
    EXPECT_EQ(A::var(x, x, x, d, 4, zero, 1), orvStsZeroOccupancyWrn);
    EXPECT_EQ(A::var(x, x, x, d, 4, 1, zero), orvStsZeroOccupancyWrn);
  }
  EXPECT_TRUE(out.untouched());
  EXPECT_TRUE(sum.untouched());
  EXPECT_EQ(A::mean(x, d, 4, std::nextafter(kLeast<T>, T(1))), orvStsNoErr);
}

// Which elements of the 32f form are multiplied by the refined reciprocal, and which are divided.
TYPED_TEST(Updates, MeanAddsTheQuotient) {
  using T = TypeParam;
  Random random(1);
  const T occupation = T(3.7);
  T reciprocal = 0;
  if constexpr (sizeof(T) == 4) {
    const float x = _mm_cvtss_f32(_mm_rcp_ss(_mm_set_ss(occupation)));
    reciprocal = 2 * x - occupation * x * x;
  }
  for (std::size_t offset = 0; offset < 16; ++offset)
    for (std::size_t len = 1; len < 28; ++len) {
      const auto acc = uniform<T>(random, len, -9, 9);
      const auto old = uniform<T>(random, len, -9, 9);
      const Guarded<T> src(acc, len % 5);
      Guarded<T> dst(old, offset);
      ASSERT_EQ(Api<T>::mean(src.data(), dst.data(), dst.len(), occupation), orvStsNoErr);
      const std::size_t head = (16 - offset) % 16 / 4;
      const bool multiplies = sizeof(T) == 4 && offset % 4 == 0 && len >= head + 8;
      for (std::size_t i = 0; i < len; ++i) {
        const bool inBody = multiplies && i >= head && i < head + (len - head) / 8 * 8;
        const T quotient = inBody ? acc[i] * reciprocal : acc[i] / occupation;
        ASSERT_TRUE(sameBits(dst.at(i), quotient + old[i])) << offset << ' ' << len << ' ' << i;
      }
    }
}

TYPED_TEST(Updates, MeanOfOverlappingArraysIsDividedInOrder) {
  using T = TypeParam;
  const T occupation = T(0.3);
  for (const std::size_t shift : {0U, 1U, 20U}) {
    std::vector<T> values(41);
    for (std::size_t i = 0; i < values.size(); ++i) values[i] = static_cast<T>(i) + T(0.1);
    Guarded<T> array(values, sizeof(T) * (4 - shift % 4));
    ASSERT_EQ(Api<T>::mean(array.data(), array.data() + shift, 21, occupation), orvStsNoErr);
    for (std::size_t i = 0; i < 21; ++i) {
      values[i + shift] = values[i] / occupation + values[i + shift];
      ASSERT_TRUE(sameBits(array.at(i + shift), values[i + shift])) << shift << ' ' << i;
    }
  }
}

TYPED_TEST(Updates, VarianceIsFlooredUnlessAbove) {
  using T = TypeParam;
  // (acc / 2)^2 taken from varAcc / 4: above the floor, equal, below, NaN, an infinite difference.
  const std::vector<T> meanAcc{4, 4, 4, kNan<T>, 4}, varAcc{24, 20, 16, 24, kInf<T>}, floor{1, 1, 1, 1, 1};
  const std::vector<T> expected{2, 1, 1, 1, kInf<T>};
  for (std::size_t first = 0; first < 5; ++first)
    for (std::size_t len = 1; first + len <= 5; ++len) {
      Guarded<T> v(std::vector<T>(varAcc.data() + first, varAcc.data() + first + len), 3);
      const bool all = first >= 1 && first + len <= 4;
      EXPECT_EQ(Api<T>::var(meanAcc.data() + first, v.data(), floor.data() + first, v.data(), v.len(), 2, 4),
                all ? orvStsAllFlooredWrn : orvStsNoErr);
      for (std::size_t i = 0; i < len; ++i) EXPECT_TRUE(sameBits(v.at(i), expected[first + i])) << first << i;
    }
  // Both quotients and the square are rounded to the type of the data, over more than one vector.
  Random random(2);
  const auto a = uniform<T>(random, 23, -9, 9), b = uniform<T>(random, 23, 200, 300);
  const std::vector<T> none(23, T(-1));
  Guarded<T> out(23, 1);
  ASSERT_EQ(Api<T>::var(a.data(), b.data(), none.data(), out.data(), 23, T(3.3), T(7.1)), orvStsNoErr);
  for (std::size_t i = 0; i < 23; ++i) {
    const T mean = a[i] / T(3.3);
    EXPECT_TRUE(sameBits(out.at(i), b[i] / T(7.1) - mean * mean));
  }
}

TYPED_TEST(Updates, WeightsAreFlooredAndSummedInOrder) {
  using T = TypeParam;
  Guarded<T> sum(1, 1);
  const auto update = [&](std::vector<T> acc, T occupation, T floor, const std::vector<T> &expected) {
    Guarded<T> array(acc, 2);
    sum.set(0, 77);
    const OrvStatus status =
        Api<T>::weight(array.data(), array.data(), array.len(), sum.data(), occupation, floor);
    T total = 0;
    for (std::size_t i = 0; i < acc.size(); ++i) {
      EXPECT_TRUE(sameBits(array.at(i), expected[i])) << i;
      total += expected[i];
    }
    EXPECT_TRUE(sameBits(sum.at(0), total));
    return status;
  };
  EXPECT_EQ(update({8, 4, 2}, 8, T(0.25), {1, 0.5, 0.25}), orvStsNoErr);
  EXPECT_EQ(update({2, 1, 0}, 8, T(0.25), {0.25, 0.25, 0.25}), orvStsAllFlooredWrn);  // equal is floored
  EXPECT_EQ(update({1, kNan<T>}, 8, T(0.25), {0.25, kNan<T>}), orvStsNoErr);          // a NaN is not
  EXPECT_EQ(update({1}, 8, T(0.25), {0.25}), orvStsAllFlooredWrn);
  // One large weight, then small ones that each vanish beside it: only a serial sum in this type loses them
  // all.
  const T little = std::numeric_limits<T>::epsilon() / 2;
  EXPECT_EQ(update({1, little, little, little, little}, 1, 0, {1, little, little, little, little}),
            orvStsNoErr);
}

TYPED_TEST(Updates, ConstantComesFromSeriallyRoundedLogarithms) {
  using T = TypeParam;
  Random random(3);
  for (std::size_t len = 1; len < 60; len += 7) {
    const Guarded<T> values(uniform<T>(random, len, 1e-3, 30), len % 8);
    Guarded<T> out(1, 1);
    auto inverse = static_cast<T>(static_cast<double>(len) * 1.8378770664093);
    T direct = inverse;
    for (const T v : values.values()) {
      const auto logarithm = static_cast<T>(std::log(static_cast<double>(v)));
      inverse -= logarithm;
      direct += logarithm;
    }
    EXPECT_EQ(Api<T>::inverse(values.data(), values.len(), out.data()), orvStsNoErr);
    EXPECT_TRUE(sameBits(out.at(0), inverse));
    EXPECT_EQ(Api<T>::direct(values.data(), values.len(), out.data()), orvStsNoErr);
    EXPECT_TRUE(sameBits(out.at(0), direct));
  }
}

TYPED_TEST(Updates, TheEarliestBadVarianceDecides) {
  using T = TypeParam;
  struct Case {
    std::vector<T> values;
    OrvStatus status;
  };
  const Case cases[] = {{{1, 0, -1}, orvStsInfResultWrn},    {{1, -1, 0}, orvStsNegVarWrn},
                        {{kLeast<T>}, orvStsInfResultWrn},   {{-kLeast<T>}, orvStsInfResultWrn},
                        {{-2 * kLeast<T>}, orvStsNegVarWrn}, {{kNan<T>, -1}, orvStsNegVarWrn}};
  for (const Case &c : cases)
    for (const auto gconst : {Api<T>::inverse, Api<T>::direct}) {
      T out = 5;
      EXPECT_EQ(gconst(c.values.data(), static_cast<std::int32_t>(c.values.size()), &out), c.status);
      const bool infinite = c.status == orvStsInfResultWrn;
      EXPECT_TRUE(sameBits(out, infinite ? kInf<T> : kNan<T>));
      EXPECT_EQ(std::signbit(out), !infinite);  // the library's NaN carries the sign
    }
}

template <class T>
class PreCalc : public ::testing::Test {};
using Numbers = ::testing::Types<float, double, std::int32_t>;
TYPED_TEST_SUITE(PreCalc, Numbers);

TYPED_TEST(PreCalc, SubtractsHalf) {
  using T = TypeParam;
  Random random(4);
  for (std::size_t offset = 0; offset < 16; ++offset)
    for (std::size_t len = 1; len < 20; ++len) {
      auto a = wholeNumbers<T>(random, len, 1 << 20);
      auto b = wholeNumbers<T>(random, len, 1 << 20);
      if constexpr (std::is_same_v<T, std::int32_t>) {
        constexpr T ends[] = {-1, 3, -3, INT32_MAX, INT32_MIN};
        b[0] = ends[len % 5];
        a[0] = ends[len % 4 + 1];
      }
      const Guarded<T> x(a, offset), y(b, offset / 2);
      Guarded<T> apart(len, 16 - offset), inPlace(b, 3 * offset), shifted(b, offset);
      ASSERT_EQ(Api<T>::preCalc(x.data(), y.data(), apart.data(), x.len()), orvStsNoErr);
      ASSERT_EQ(Api<T>::preCalcInPlace(x.data(), inPlace.data(), x.len()), orvStsNoErr);
      // Overlapping arrays mean what a plain loop makes of them.
      ASSERT_EQ(Api<T>::preCalc(x.data(), shifted.data(), shifted.data() + 1, x.len() - 1),
                len == 1 ? orvStsSizeErr : orvStsNoErr);
      const auto expected = [](T p, T q) {
        if constexpr (std::is_integral_v<T>) {
          // Half of q rounded up, by division; the increment of the largest integer wraps.
          const std::int64_t half = q == INT32_MAX ? -(1 << 30) : (std::int64_t{q} + (q % 2 != 0)) / 2;
          return static_cast<T>(p - half);
        } else {
          return p - q / 2;
        }
      };
      T previous = b[0];
      for (std::size_t i = 0; i < len; ++i) {
        ASSERT_TRUE(sameBits(apart.at(i), expected(a[i], b[i])));
        ASSERT_TRUE(sameBits(inPlace.at(i), expected(a[i], b[i])));
        if (i == 0) continue;
        previous = expected(a[i - 1], previous);
        ASSERT_TRUE(sameBits(shifted.at(i), previous));
      }
    }
}

}  // namespace
}  // namespace orv::test
