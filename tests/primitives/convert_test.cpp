#include "primitives/convert.h"

#include <algorithm>
#include <limits>

#include "support/arrays.h"

namespace orv::test {
namespace {

TEST(Convert, IntegersToReals) {
  Random random(1);
  std::vector<std::int16_t> shorts{INT16_MIN, INT16_MAX, 0, 1, -1};
  std::vector<std::int32_t> longs{INT32_MIN, INT32_MAX, 0, 1, -1, (1 << 24) + 1};
  for (const auto v : anyIntegers<std::int16_t>(random, 20)) shorts.push_back(v);
  for (const auto v : anyIntegers<std::int32_t>(random, 19)) longs.push_back(v);
  for (const int factor :
       {INT32_MIN, -1009, -1008, -113, -112, -97, -96, -3, 0, 5, 126, 127, 1022, 1023, INT32_MAX})
    for (std::size_t offset = 0; offset < 8; ++offset) {
      const Guarded<std::int16_t> s(shorts, offset);
      const Guarded<std::int32_t> l(longs, offset);
      Guarded<float> a(s.values().size(), 8 - offset), b(longs.size(), 8 - offset),
          plain(shorts.size(), offset);
      Guarded<double> c(shorts.size(), offset);
      ASSERT_EQ(orvsConvert_16s32f_Sfs(s.data(), a.data(), s.len(), factor), orvStsNoErr);
      ASSERT_EQ(orvsConvert_32s32f_Sfs(l.data(), b.data(), l.len(), factor), orvStsNoErr);
      ASSERT_EQ(orvsConvert_16s64f_Sfs(s.data(), c.data(), s.len(), factor), orvStsNoErr);
      ASSERT_EQ(orvsConvert_16s32f(s.data(), plain.data(), s.len()), orvStsNoErr);
      for (std::size_t i = 0; i < shorts.size(); ++i) {
        ASSERT_TRUE(sameBits(
            a.at(i), static_cast<float>(shorts[i]) * std::ldexp(1.0F, -std::clamp(factor, -112, 126))));
        ASSERT_TRUE(sameBits(b.at(i),
                             static_cast<float>(longs[i]) * std::ldexp(1.0F, -std::clamp(factor, -96, 126))));
        ASSERT_TRUE(sameBits(c.at(i), shorts[i] * std::ldexp(1.0, -std::clamp(factor, -1008, 1022))));
        ASSERT_EQ(plain.at(i), shorts[i]);
      }
    }
  for (int shift = -5; shift <= 5; ++shift) {
    Guarded<std::int32_t> array(longs);
    auto *const dst = reinterpret_cast<float *>(array.data() + 5 + shift);
    const auto first = static_cast<std::size_t>(5 + shift);
    ASSERT_EQ(orvsConvert_32s32f_Sfs(array.data() + 5, dst, 15, 2), orvStsNoErr);
    for (std::size_t i = 0; i < 15; ++i)
      ASSERT_EQ(std::bit_cast<float>(array.at(first + i)), static_cast<float>(longs[5 + i]) * 0.25F);
  }
  std::vector<std::uint8_t> bytes(256);
  std::vector<float> floats(256);
  for (std::size_t i = 0; i < 256; ++i) bytes[i] = static_cast<std::uint8_t>(i);
  ASSERT_EQ(orvsConvert_8u32f(bytes.data(), floats.data(), 256), orvStsNoErr);
  for (std::size_t i = 0; i < 256; ++i) EXPECT_EQ(floats[i], static_cast<float>(i));
}

TEST(Convert, DoubleToSingleStopsAtTheLargestFinite) {
  constexpr double most = std::numeric_limits<float>::max();
  const Guarded<double> src({HUGE_VAL, -HUGE_VAL, most, -1e300, 3.4028236e38, NAN, 0.1, -0.0}, 4);
  Guarded<float> dst(8, 1);
  ASSERT_EQ(orvsConvert_64f32f(src.data(), dst.data(), 8), orvStsNoErr);
  const auto m = static_cast<float>(most);
  const float expected[] = {m, -m, m, -m, m, std::numeric_limits<float>::quiet_NaN(), 0.1F, -0.0F};
  for (std::size_t i = 0; i < 8; ++i) EXPECT_TRUE(sameBits(dst.at(i), expected[i])) << i;
}

TEST(Convert, LongToShortRoundsToNearestEven) {
  Random random(2);
  std::vector<std::int32_t> values{INT32_MIN, INT32_MAX, 32767,  32768, -32768, -32769,
                                   65535,     65534,     -65537, 3,     1,      -1};
  for (const auto v : anyIntegers<std::int32_t>(random, 30)) values.push_back(v);
  for (const auto v : wholeNumbers<std::int32_t>(random, 30, 40)) values.push_back(v);
  for (int factor = -18; factor <= 34; ++factor) {
    Guarded<std::int16_t> dst(values.size(), 1);
    ASSERT_EQ(orvsConvert_32s16s_Sfs(values.data(), dst.data(), dst.len(), factor), orvStsNoErr);
    for (std::size_t i = 0; i < values.size(); ++i) {
      const double exact = std::ldexp(values[i], -std::clamp(factor, -15, 31));
      ASSERT_EQ(dst.at(i), std::clamp(std::nearbyint(exact), -32768.0, 32767.0))
          << values[i] << ' ' << factor;
    }
  }
}

// Values around ties and around the limits of both integer types.
template <class From>
std::vector<From> roundable() {
  Random random(3);
  std::vector<From> values{From(NAN), From(HUGE_VAL), From(-HUGE_VAL), From(1e30), From(0.0), From(-0.0)};
  for (const double near : {0.0, 0.5, 1.5, 2.5, 3.0, 32766.5, 32767.0, 32767.5, 32768.0, 32768.5,
                            2147483646.5, 2147483647.0, 2147483647.5, 2147483648.0, 2147483648.5})
    for (const double v : {near, -near}) {
      const auto rounded = static_cast<From>(v);
      for (const From end : {From(HUGE_VAL), From(-HUGE_VAL)}) values.push_back(std::nextafter(rounded, end));
      values.push_back(rounded);
    }
  for (const From v : uniform<From>(random, 40, -300, 300)) values.push_back(v);
  return values;
}

template <class From, class Int>
void expectRounded(OrvStatus (*convert)(const From *, Int *, std::int32_t, std::int32_t, std::int32_t)) {
  constexpr bool singleHalf = sizeof(From) == 4 && sizeof(Int) == 2;  // when unscaled, and only then
  const auto values = roundable<From>();
  for (const int factor : {-1100, -1000, -20, -7, -1, 0, 1, 6, 15, 40, 1100})
    for (const int mode : {0, 1, 2, -1, 3}) {
      const Guarded<From> src(values, 1);
      Guarded<Int> dst(values.size(), 1);
      ASSERT_EQ(convert(src.data(), dst.data(), dst.len(), mode, factor), orvStsNoErr);
      for (std::size_t i = 0; i < values.size(); ++i) {
        const double v = factor == 0 ? values[i] : static_cast<double>(values[i]) * std::ldexp(1.0, -factor);
        // The half is added in double, so what lies within its rounding of a tie is one.
        const bool inSingle = singleHalf && factor == 0 && mode != 1;
        const double t =
            inSingle ? values[i] + std::copysign(From(0.5), values[i]) : v + std::copysign(0.5, v);
        double expected = std::trunc(mode == 0 ? v : t);
        if (mode == 1 && t == expected && std::fmod(t, 2) != 0) expected -= std::copysign(1.0, t);
        expected =
            std::clamp<double>(expected, std::numeric_limits<Int>::min(), std::numeric_limits<Int>::max());
        ASSERT_EQ(dst.at(i), std::isnan(v) ? 0.0 : expected) << values[i] << ' ' << mode << ' ' << factor;
      }
    }
}

TEST(Convert, RealsToIntegersInEveryRoundingMode) {
  expectRounded(orvsConvert_32f16s_Sfs);
  expectRounded(orvsConvert_32f32s_Sfs);
  expectRounded(orvsConvert_64f32s_Sfs);
  // The one sum that is formed in single precision, and its neighbour that is not.
  const float justBelowHalf = 0.49999997F, twice = 0.99999994F;
  std::int16_t out = 0;
  EXPECT_EQ(orvsConvert_32f16s_Sfs(&justBelowHalf, &out, 1, 2, 0), orvStsNoErr);
  EXPECT_EQ(out, 1);
  EXPECT_EQ(orvsConvert_32f16s_Sfs(&twice, &out, 1, 2, 1), orvStsNoErr);
  EXPECT_EQ(out, 0);
}

}  // namespace
}  // namespace orv::test
