#include "primitives/arithmetic.h"

#include <algorithm>
#include <limits>

#include "support/arrays.h"

namespace orv::test {
namespace {

// Numbers with which an order of operands, a comparison or a shortcut shows.
template <class T>
std::vector<T> mixed(Random &random, std::size_t len) {
  using Limits = std::numeric_limits<T>;
  std::vector<T> values = wholeNumbers<T>(random, len, 99);
  for (std::size_t i = 0; i < len; ++i) {
    if constexpr (std::is_integral_v<T>) {
      const T ends[] = {Limits::min(), Limits::max(), 0, static_cast<T>(random())};
      if (random() % 2 == 0) values[i] = ends[random() % 4];
    } else {
      const T ends[] = {
          0, T(-0.0), Limits::infinity(), -Limits::infinity(), Limits::quiet_NaN(), Limits::denorm_min()};
      if (random() % 3 == 0) values[i] = ends[random() % 6];
    }
  }
  return values;
}

// f(a, b, dst, len), which may work in place on dst = b, against a reference at every length and place.
template <class T, class F, class Reference>
void expectEach(F f, Reference reference, OrvStatus warning = orvStsNoErr) {
  Random random(3);
  for (std::size_t offset = 0; offset < 16; ++offset)
    for (std::size_t len = 1; len < 36; ++len) {
      const Guarded<T> a(mixed<T>(random, len), offset), b(mixed<T>(random, len), len % 16);
      Guarded<T> dst(b.values(), 15 - offset);
      const OrvStatus status = f(a.data(), b.data(), dst.data(), a.len());
      ASSERT_TRUE(status == orvStsNoErr || status == warning);
      for (std::size_t i = 0; i < len; ++i)
        ASSERT_TRUE(sameBits(dst.at(i), static_cast<T>(reference(a.at(i), b.at(i)))))
            << a.at(i) << ' ' << b.at(i);
    }
}
template <class T, class Reference>
void expectBinary(OrvStatus (*f)(const T *, const T *, T *, std::int32_t), Reference reference) {
  expectEach<T>(f, reference);
}
template <class T, class Reference>
void expectInPlace(OrvStatus (*f)(const T *, T *, std::int32_t), Reference reference) {
  expectEach<T>([f](const T *a, const T *, T *dst, std::int32_t len) { return f(a, dst, len); }, reference);
}

TEST(Arithmetic, ElementByElement) {
  const auto plus = [](auto a, auto b) { return a + b; };
  const auto secondMinusFirst = [](auto a, auto b) { return b - a; };
  expectBinary<float>(orvsAdd_32f, plus);
  expectBinary<float>(orvsMul_32f, [](float a, float b) { return a * b; });
  expectBinary<float>(orvsSub_32f, secondMinusFirst);
  expectBinary<double>(orvsSub_64f, secondMinusFirst);
  expectBinary<std::int16_t>(orvsSub_16s, [](int a, int b) { return std::clamp(b - a, -32768, 32767); });
  expectInPlace<float>(orvsAdd_32f_I, plus);
  expectInPlace<double>(orvsAdd_64f_I, plus);
  expectInPlace<float>(orvsSub_32f_I, secondMinusFirst);
  expectInPlace<double>(orvsSub_64f_I, secondMinusFirst);
  expectInPlace<std::int32_t>(orvsMinEvery_32s_I, [](int a, int b) { return std::min(a, b); });
  expectEach<double>([](auto *a, auto *, auto *dst, int n) { return orvsAbs_64f(a, dst, n); },
                     [](double a, double) { return std::fabs(a); });
}

TEST(Arithmetic, ExtremesOfPairs) {
  const std::vector<float> a{1, 2, -3, -4, 5, -HUGE_VALF, 7}, b{2, 1, -4, -3, 5, HUGE_VALF, -7};
  Guarded<float> high(b, 3), low(b, 5);
  EXPECT_EQ(orvsMaxEvery_32f_I(a.data(), high.data(), 7), orvStsNoErr);
  EXPECT_EQ(orvsMinEvery_32f_I(a.data(), low.data(), 7), orvStsNoErr);
  EXPECT_EQ(high.values(), (std::vector<float>{2, 2, -3, -3, 5, HUGE_VALF, 7}));
  EXPECT_EQ(low.values(), (std::vector<float>{1, 1, -4, -4, 5, -HUGE_VALF, -7}));
}

// The shortcuts: multiplying by 1 copies, by 0 clears whatever stands there; a division is a product with the
// reciprocal.
template <class T>
void expectConstants(OrvStatus (*mul)(const T *, T, T *, std::int32_t),
                     OrvStatus (*mulInPlace)(T *, T, std::int32_t),
                     OrvStatus (*div)(const T *, T, T *, std::int32_t),
                     OrvStatus (*divInPlace)(T *, T, std::int32_t)) {
  for (const T c : {T(0), T(-0.0), T(1), T(-3.3), T(HUGE_VAL), T(NAN)}) {
    const auto product = [](T v, T by) { return by == 0 ? 0 : by == 1 ? v : v * by; };
    expectEach<T>([=](auto *a, auto *, auto *dst, int n) { return mul(a, c, dst, n); },
                  [=](T a, T) { return product(a, c); });
    expectEach<T>([=](auto *, auto *, auto *dst, int n) { return mulInPlace(dst, c, n); },
                  [=](T, T b) { return product(b, c); });
    if (c == 0) {
      Guarded<T> dst(4);
      EXPECT_EQ(div(std::vector<T>(4).data(), c, dst.data(), 4), orvStsDivByZeroErr);
      EXPECT_EQ(divInPlace(dst.data(), c, 4), orvStsDivByZeroErr);
      EXPECT_TRUE(dst.untouched());
      continue;
    }
    expectEach<T>([=](auto *a, auto *, auto *dst, int n) { return div(a, c, dst, n); },
                  [=](T a, T) { return product(a, 1 / c); });
    expectEach<T>([=](auto *, auto *, auto *dst, int n) { return divInPlace(dst, c, n); },
                  [=](T, T b) { return product(b, 1 / c); });
  }
}

TEST(Arithmetic, Constants) {
  expectConstants<float>(orvsMulC_32f, orvsMulC_32f_I, orvsDivC_32f, orvsDivC_32f_I);
  expectConstants<double>(orvsMulC_64f, orvsMulC_64f_I, orvsDivC_64f, orvsDivC_64f_I);
  for (const float c : {0.0F, 2.5F})  // 0 copies the bits, so that a negative zero stays one
    expectEach<float>([c](auto *a, auto *, auto *dst, int n) { return orvsAddC_32f(a, c, dst, n); },
                      [c](float v, float) { return c == 0 ? v : v + c; });
}

TEST(Arithmetic, QuotientsGoOnAfterAZeroDivisor) {
  const auto quotient = [](auto divisor, auto dividend) {
    using T = decltype(divisor);
    if (divisor != 0 || dividend != dividend) return dividend / divisor;
    return dividend == 0 ? std::numeric_limits<T>::quiet_NaN() : std::copysign(T(HUGE_VAL), dividend);
  };
  expectEach<float>(orvsDiv_32f, quotient, orvStsDivByZeroWrn);
  expectEach<double>(orvsDiv_64f, quotient, orvStsDivByZeroWrn);
  for (std::size_t at = 0; at < 9; ++at) {
    std::vector<float> divisor(9, 2), result(9), dividend(9, std::numeric_limits<float>::quiet_NaN());
    EXPECT_EQ(orvsDiv_32f(divisor.data(), dividend.data(), result.data(), 9), orvStsNoErr);
    divisor[at] = -0.0F;
    EXPECT_EQ(orvsDiv_32f(divisor.data(), dividend.data(), result.data(), 9), orvStsDivByZeroWrn);
    EXPECT_TRUE(std::signbit(result[at]));  // the library's NaN, whatever the dividend's
  }
}

TEST(Arithmetic, RootsOfNegativesAreNan) {
  Guarded<double> v({4, -1, 0, -0.0, 2, -HUGE_VAL}, 1);
  EXPECT_EQ(orvsSqrt_64f_I(v.data(), 6), orvStsNegSqrtWrn);
  const double expected[] = {2, NAN, 0, -0.0, std::sqrt(2.0), NAN};
  for (std::size_t i = 0; i < 6; ++i) EXPECT_TRUE(sameBits(v.at(i), expected[i]));
  EXPECT_TRUE(std::signbit(v.at(1)));
  double nan[] = {NAN, 9};
  EXPECT_EQ(orvsSqrt_64f_I(nan, 2), orvStsNoErr);
  EXPECT_EQ(nan[1], 3);
}

// Products are exact in double, and so are their powers of two: the nearest even integer, then the limits.
TEST(Arithmetic, ScaledProducts) {
  for (const int factor : {-1000, -16, -15, -7, -1, 0, 1, 2, 15, 29, 30, 31, 1000})
    expectEach<std::int16_t>(
        [factor](auto *a, auto *b, auto *dst, int n) { return orvsMul_16s_Sfs(a, b, dst, n, factor); },
        [factor](int a, int b) {
          return std::clamp(std::nearbyint(std::ldexp(a * b, -factor)), -32768.0, 32767.0);
        });
}

TEST(Arithmetic, Magnitudes) {
  Random random(4);
  for (std::size_t offset = 0; offset < 16; ++offset)
    for (std::size_t len = 1; len < 12; ++len) {
      const Guarded<float> src(uniform<float>(random, 2 * len, -1e25, 1e25), offset);  // squares leave single
      Guarded<float> dst(len, 16 - offset);
      ASSERT_EQ(orvsMagnitude_32fc(reinterpret_cast<const Complex32f *>(src.data()), dst.data(), dst.len()),
                orvStsNoErr);
      for (std::size_t i = 0; i < len; ++i) {
        const double re = src.at(2 * i), im = src.at(2 * i + 1);
        ASSERT_EQ(dst.at(i), static_cast<float>(std::sqrt(re * re + im * im)));
      }
    }
  std::vector<std::int32_t> parts{0,  0,         3,         4,         -5, 12, 9, 0,  0,
                                  -7, INT32_MIN, INT32_MIN, INT32_MAX, 0,  1,  1, 30, 40};
  for (const auto v : anyIntegers<std::int32_t>(random, 40)) parts.push_back(v);
  for (int factor = -34; factor <= 36; ++factor) {
    const Guarded<std::int32_t> src(parts, 2);
    Guarded<std::int32_t> dst(parts.size() / 2, 1);
    const auto *const complex = reinterpret_cast<const Complex32s *>(src.data());
    ASSERT_EQ(orvsMagnitude_32sc_Sfs(complex, dst.data(), dst.len(), factor), orvStsNoErr);
    for (std::size_t i = 0; i < parts.size() / 2; ++i) {
      const double re = parts[2 * i], im = parts[2 * i + 1];
      const double m = std::ldexp(std::sqrt(re * re + im * im), -factor);
      // Ties go up where the factor enlarges, to the even neighbour where it shrinks.
      const double rounded = factor > 0 ? std::nearbyint(m) : std::floor(m + 0.5);
      ASSERT_EQ(dst.at(i), factor > 32 ? 0 : std::min(rounded, 2147483647.0))
          << re << ' ' << im << ' ' << factor;
    }
  }
}

TEST(Arithmetic, Logarithms) {
  std::vector<std::int32_t> values{1, 3, 4, INT32_MAX, 0, -1, INT32_MIN};
  for (int j = 0; j < 21; ++j) {
    const auto threshold = static_cast<std::int32_t>(std::ceil(std::exp(j + 0.5)));
    for (const std::int32_t v : {threshold - 1, threshold}) values.push_back(v);
  }
  for (const int factor : {-40, -25, -7, -1, 0, 1, 3, 31, 32, 34}) {
    Guarded<std::int32_t> inPlace(values, 1), dst(values.size(), 2);
    EXPECT_EQ(orvsLn_32s_ISfs(inPlace.data(), inPlace.len(), factor), orvStsInfResultWrn);
    EXPECT_EQ(orvsLn_32s_Sfs(values.data(), dst.data(), dst.len(), factor), orvStsInfResultWrn);
    EXPECT_EQ(dst.values(), inPlace.values());
    for (std::size_t i = 0; i < values.size(); ++i) {
      const double logarithm = std::log(values[i]);
      const double scaled = std::floor(std::min(logarithm * std::ldexp(1.0, -factor) + 0.5, 2147483647.0));
      if (values[i] <= 0)
        EXPECT_EQ(dst.at(i), INT32_MIN);
      else
        EXPECT_EQ(dst.at(i),
                  factor < 0 ? scaled : static_cast<double>(std::lround(logarithm) >> (factor % 32)));
    }
  }
  // The first element without a logarithm decides the warning.
  std::int32_t out[2];
  const std::int32_t zeroFirst[] = {0, -1}, negativeFirst[] = {-1, 0}, good[] = {1, 2};
  EXPECT_EQ(orvsLn_32s_Sfs(zeroFirst, out, 2, -7), orvStsInfResultWrn);
  EXPECT_EQ(orvsLn_32s_Sfs(negativeFirst, out, 2, 0), orvStsNegVarWrn);
  EXPECT_EQ(orvsLn_32s_Sfs(good, out, 2, 0), orvStsNoErr);
}

}  // namespace
}  // namespace orv::test
