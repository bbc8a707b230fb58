#include "primitives/reduce.h"

#include <algorithm>
#include <limits>

#include "support/arrays.h"

namespace orv::test {
namespace {

// Sums of up to 2^62 are exact in the extended type, and so are their powers of two.
std::int32_t scaled(long double sum, int factor) {
  return static_cast<std::int32_t>(
      std::clamp(std::nearbyint(std::ldexp(sum, -factor)), -2147483648.0L, 2147483647.0L));
}

TEST(Sums, AreExactUntilTheyAreScaled) {
  Random random(1);
  for (const std::size_t len : {1U, 2U, 3U, 9U, 65536U, 65537U, 131073U}) {
    auto shorts = anyIntegers<std::int16_t>(random, len);
    auto longs = anyIntegers<std::int32_t>(random, len);
    for (const int fill : {0, 1, 2, 3}) {  // random, odd halves, and both ends
      if (fill == 1) shorts.assign(len, 3), longs.assign(len, -5);
      if (fill == 2) shorts.assign(len, INT16_MIN), longs.assign(len, INT32_MIN);
      if (fill == 3) shorts.assign(len, INT16_MAX), longs.assign(len, INT32_MAX);
      long double shortSum = 0, longSum = 0;
      for (const auto v : shorts) shortSum += v;
      for (const auto v : longs) longSum += v;
      const Guarded<std::int16_t> s(shorts, 1);
      const Guarded<std::int32_t> l(longs, 1);
      for (const int factor :
           {INT32_MIN, -60, -32, -31, -16, -1, 0, 1, 2, 15, 30, 31, 32, 33, 46, 47, 48, 49, 62, 63}) {
        std::int32_t sum = 0;
        ASSERT_EQ(orvsSum_16s32s_Sfs(s.data(), s.len(), &sum, factor), orvStsNoErr);
        ASSERT_EQ(sum, scaled(shortSum, std::max(factor, -99))) << len << ' ' << factor;
        ASSERT_EQ(orvsSum_32s_Sfs(l.data(), l.len(), &sum, factor), orvStsNoErr);
        ASSERT_EQ(sum, scaled(longSum, std::max(factor, -99))) << len << ' ' << factor;
      }
    }
  }
  const std::int32_t one[] = {0, 0};  // nothing to shift saturates nothing
  std::int32_t sum = 1;
  EXPECT_EQ(orvsSum_32s_Sfs(one, 2, &sum, -100), orvStsNoErr);
  EXPECT_EQ(sum, 0);
}

TEST(Sums, OfSinglesAreFormedInDouble) {
  Random random(2);
  for (std::size_t offset = 0; offset < 16; ++offset)
    for (std::size_t len = 1; len < 30; ++len) {
      auto values = wholeNumbers<float>(random, len, 1000);
      values[len / 2] += 1 << 30;  // in single the rest would be lost
      values[len - 1] -= 1 << 30;
      double exact = 0;
      for (const float v : values) exact += static_cast<double>(v);
      const Guarded<float> src(values, offset);
      float sum = 0;
      ASSERT_EQ(orvsSum_32f(src.data(), src.len(), &sum), orvStsNoErr);
      ASSERT_EQ(sum, static_cast<float>(exact));
    }
}

// Every order of a whole-number sum is exact; real data is held to the rounding of the type that the sum is
// formed in, and where the second array is not aligned, or too short, to a plain loop.
template <class T, class Sum, class Dot>
void expectDotProduct(Dot dot, bool serialForm) {
  Random random(3);
  for (std::size_t offset = 0; offset < 16; ++offset)
    for (std::size_t len = 1; len < 45; ++len)
      for (const bool whole : {true, false}) {
        const Guarded<T> a(whole ? wholeNumbers<T>(random, len, 99) : uniform<T>(random, len, -9, 9),
                           16 - offset);
        const Guarded<T> b(whole ? wholeNumbers<T>(random, len, 99) : uniform<T>(random, len, -9, 9), offset);
        Guarded<Sum> result(1, 1);
        ASSERT_EQ(dot(a.data(), b.data(), a.len(), result.data()), orvStsNoErr);
        long double exact = 0, magnitude = 0;
        Sum serial = 0;
        for (std::size_t i = 0; i < len; ++i) {
          exact += static_cast<long double>(a.at(i)) * b.at(i);
          magnitude += std::fabs(static_cast<long double>(a.at(i)) * b.at(i));
          serial += static_cast<Sum>(a.at(i)) * static_cast<Sum>(b.at(i));
        }
        const std::size_t head = offset % sizeof(T) != 0 ? len : (16 - offset) % 16 / sizeof(T);
        if (whole)
          ASSERT_EQ(result.at(0), exact);
        else if (serialForm && len < head + 8)
          ASSERT_EQ(result.at(0), serial);
        else
          ASSERT_LE(std::fabs(result.at(0) - exact),
                    magnitude * std::numeric_limits<Sum>::epsilon() * len / 2);
      }
}

TEST(DotProducts, OfReals) {
  expectDotProduct<float, float>(orvsDotProd_32f, true);
  expectDotProduct<double, double>(orvsDotProd_64f, true);
  expectDotProduct<float, double>(orvsDotProd_32f64f, false);
}

TEST(DotProducts, OfIntegersAreExact) {
  Random random(4);
  for (std::size_t offset = 0; offset < 16; ++offset)
    for (std::size_t len = 1; len < 45; ++len)
      for (const int fill : {0, INT16_MIN, INT16_MAX}) {
        auto x = anyIntegers<std::int16_t>(random, len), y = anyIntegers<std::int16_t>(random, len);
        if (fill != 0) x.assign(len, static_cast<std::int16_t>(fill)), y.assign(len, INT16_MIN);
        const Guarded<std::int16_t> a(x, offset), b(y, 16 - offset);
        std::int64_t exact = 0;
        for (std::size_t i = 0; i < len; ++i) exact += x[i] * std::int64_t{y[i]};
        std::int64_t wide = 0;
        float single = 0;
        ASSERT_EQ(orvsDotProd_16s64s(a.data(), b.data(), a.len(), &wide), orvStsNoErr);
        ASSERT_EQ(orvsDotProd_16s32f(a.data(), b.data(), a.len(), &single), orvStsNoErr);
        ASSERT_EQ(wide, exact);
        ASSERT_EQ(single, static_cast<float>(exact));
      }
}

// The extreme at every place, alone and again behind it, among values that all lie on the other side of zero.
template <class T, class Plain, class Index>
void expectExtreme(Plain plain, Index index, T sign) {
  for (std::size_t offset = 0; offset < 16; offset += 3)
    for (std::size_t len = 1; len < 26; ++len)
      for (std::size_t at = 0; at < len; ++at)
        for (std::size_t again = at; again < len; ++again) {
          Guarded<T> src(std::vector<T>(len, -9 * sign), offset);
          src.set(at, -2 * sign);
          src.set(again, -2 * sign);
          T value = 0, alone = 0, found = 0;
          std::int32_t where = -1;
          ASSERT_EQ(plain(src.data(), src.len(), &value), orvStsNoErr);
          ASSERT_EQ(index(src.data(), src.len(), &found, &where), orvStsNoErr);
          ASSERT_EQ(index(src.data(), src.len(), &alone, nullptr), orvStsNoErr);
          ASSERT_EQ((std::vector<T>{value, found, alone}), std::vector<T>(3, -2 * sign));
          ASSERT_EQ(where, static_cast<std::int32_t>(at));
        }
}

TEST(Extremes, FirstOfTheEqualOnes) {
  expectExtreme<float>(orvsMax_32f, orvsMaxIndx_32f, 1);
  expectExtreme<double>(orvsMax_64f, orvsMaxIndx_64f, 1);
  expectExtreme<float>(orvsMin_32f, orvsMinIndx_32f, -1);
  Random random(5);
  for (std::size_t len = 1; len < 40; ++len) {
    const Guarded<double> wide(uniform<double>(random, len, 3, 9), len % 16);
    const Guarded<float> single(uniform<float>(random, len, -9, 9), len % 16);
    const auto d = wide.values();
    const auto f = single.values();
    double least = 0;
    float low = 0, high = 0;
    EXPECT_EQ(orvsMin_64f(wide.data(), wide.len(), &least), orvStsNoErr);
    EXPECT_EQ(least, *std::min_element(d.begin(), d.end()));
    EXPECT_EQ(orvsMinMax_32f(single.data(), single.len(), &low, &high), orvStsNoErr);
    EXPECT_EQ(low, *std::min_element(f.begin(), f.end()));
    EXPECT_EQ(high, *std::max_element(f.begin(), f.end()));
  }
}

}  // namespace
}  // namespace orv::test
