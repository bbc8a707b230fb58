#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "orvsr/frontend.h"
#include "orvsr/robust.h"
#include "support/arrays.h"
#include "support/matrix.h"

using namespace orv::test;

namespace {

std::int64_t shifted(std::int64_t v, std::int64_t factor) {
  if (factor > 0) return v >> (factor & 63);
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(v) << (-factor & 63));
}
std::int64_t limited(std::int64_t v, std::int64_t most) { return std::clamp(v, -most - 1, most); }

TEST(LowHighFilter, SplitsInTwoBands) {
  Random random(7);
  for (int round = 0; round < 1200; ++round) {
    const std::size_t taps = 1 + random() % 13, count = random() % 40, offset = random() % 16;
    const auto len = static_cast<std::int32_t>(2 * count + (count == 0 || round % 2 ? 1 : 0));
    const std::size_t used = count == 0 ? 1 : 2 * (count - 1) + taps;
    // Taps that leave 32 bits room, that just do, and that do not.
    const int limit = round % 3 == 0 ? 32767 : static_cast<int>(65535 / taps);
    auto filter = wholeNumbers<std::int16_t>(random, taps, std::min(limit, 32767));
    if (round % 7 == 0)
      std::fill(filter.begin(), filter.end(), static_cast<std::int16_t>(-std::min(limit, 32767)));
    if (round % 11 == 0) filter[taps - 1] = INT16_MIN;
    auto samples = anyIntegers<std::int16_t>(random, used);
    if (round % 5 == 0) std::fill(samples.begin(), samples.end(), INT16_MIN);
    const Guarded<std::int16_t> s(samples, offset), g(filter, offset / 2);
    const Guarded<float> x(uniform<float>(random, used, -1, 1), offset),
        h(uniform<float>(random, taps, -1, 1), 4);
    Guarded<float> low(count, 8), high(count, offset);
    Guarded<std::int16_t> low16(count, offset), high16(count, 6);
    const int factor = std::vector{0, 1, 15, 16, 31, 32, 63, 64, 79, -1, -3, -64}[random() % 12];
    const auto n = static_cast<std::int32_t>(taps);
    ASSERT_EQ(orvsLowHighFilter_Aurora_32f(x.data(), low.data(), high.data(), len, h.data(), n), orvStsNoErr);
    ASSERT_EQ(
        orvsLowHighFilter_Aurora_16s_Sfs(s.data(), low16.data(), high16.data(), len, g.data(), n, factor),
        orvStsNoErr);
    for (std::size_t i = 0; i < count; ++i) {
      float a = 0, b = 0, sign = i % 2 ? 1 : -1;
      std::int64_t aQ = 0, bQ = 0, signQ = i % 2 ? 1 : -1;
      for (std::size_t k = 0; k < taps; ++k, sign = -sign, signQ = -signQ) {
        a += x.at(2 * i + k) * h.at(k);
        b += x.at(2 * i + k) * h.at(k) * sign;
        aQ += s.at(2 * i + k) * g.at(k);
        bQ += s.at(2 * i + k) * g.at(k) * signQ;
      }
      ASSERT_TRUE(sameBits(low.at(i), a) && sameBits(high.at(i), b))
          << taps << " taps, " << i << " of " << count;
      ASSERT_EQ(low16.at(i), limited(shifted(aQ, factor), 32767)) << taps << ' ' << i << ' ' << factor;
      ASSERT_EQ(high16.at(i), limited(shifted(bQ, factor), 32767)) << taps << ' ' << i << ' ' << factor;
    }
  }
  const std::vector<float> ones(40, 1);  // a constant has no high band, and its zeros are positive
  std::vector<float> low(16, 5), high(16, 5);
  ASSERT_EQ(orvsLowHighFilter_Aurora_32f(ones.data(), low.data(), high.data(), 32, ones.data(), 2),
            orvStsNoErr);
  for (const float v : high) EXPECT_TRUE(sameBits(v, 0.0F));
}

TEST(LowHighFilter, ChecksTapsBeforeResults) {
  double memory[4] = {};
  Guarded<double> result(4);
  const auto status = [&](int hole, std::int32_t len, std::int32_t tapLen) {
    const Pointers src{memory, hole}, dst{result.data(), hole};
    const OrvStatus single = orvsLowHighFilter_Aurora_32f(src[0], dst[1], dst[2], len, src[3], tapLen);
    EXPECT_EQ(orvsLowHighFilter_Aurora_16s_Sfs(src[0], dst[1], dst[2], len, src[3], tapLen, 0), single);
    return single;
  };
  for (const int hole : {0, 3}) EXPECT_EQ(status(hole, 0, 0), orvStsNullPtrErr);
  for (const int hole : {1, 2}) {
    EXPECT_EQ(status(hole, 0, 0), orvStsSizeErr);
    EXPECT_EQ(status(hole, 0, 1), orvStsNullPtrErr);
  }
  EXPECT_EQ(status(-1, 2, 0), orvStsSizeErr);
  EXPECT_EQ(status(-1, 0, 1), orvStsSizeErr);
  EXPECT_EQ(status(-1, 1, 1), orvStsNoErr);
  EXPECT_TRUE(result.untouched());
}

// In double.
template <class T>
double sum(const Guarded<T> &x, std::size_t from, std::size_t last) {
  double total = 0;
  for (; from <= last; ++from) total += static_cast<double>(x.at(from));
  return total;
}

TEST(HighBandCoding, RelatesTheBandsByTheirLogarithms) {
  Random random(8);
  const auto log32f = [](double v) { return v > std::exp(-10.0) ? static_cast<float>(std::log(v)) : -10.0F; };
  const auto logQ7 = [](double v) {
    return v > 0 ? static_cast<int>(std::floor(std::log(v) * 128 + 0.5)) : -1280;
  };
  for (int round = 0; round < 300; ++round) {
    // Whole numbers, whose sums are exact; a third of the rounds has bands without energy.
    const int scale = 1 << (random() % 20);
    auto low = wholeNumbers<std::int32_t>(random, 3, scale),
         bins = wholeNumbers<std::int32_t>(random, 65, scale),
         high = wholeNumbers<std::int32_t>(random, 129, scale);
    if (round % 3)
      for (auto *x : {&low, &bins, &high})
        for (std::int32_t &v : *x) v = std::abs(v) + 1;
    const std::size_t offset = random() % 16;
    const Guarded<std::int32_t> l(low, 4), b(bins, offset), h(high, offset);
    const Guarded<float> fl({low.begin(), low.end()}), fb({bins.begin(), bins.end()}, offset),
        fh({high.begin(), high.end()}, offset);
    Guarded<float> y(3, 4);
    Guarded<std::int32_t> t(3, offset);
    const int factor = std::vector{-7, 0, -10, -27, 56, 57, -71, INT32_MAX}[random() % 8];
    ASSERT_EQ(orvsHighBandCoding_Aurora_32f(fl.data(), fb.data(), fh.data(), y.data()), orvStsNoErr);
    ASSERT_EQ(orvsHighBandCoding_Aurora_32s_Sfs(l.data(), b.data(), h.data(), t.data(), factor), orvStsNoErr);
    const double lowSums[] = {sum(b, 33, 38), sum(b, 39, 48), sum(b, 49, 64)};
    const double highSums[] = {sum(h, 66, 76), sum(h, 78, 96), sum(h, 98, 128)};
    for (std::size_t j = 0; j < 3; ++j) {
      constexpr float weights[] = {0.1F, 0.2F, 0.7F};
      constexpr int weightsQ10[] = {102, 205, 717};
      float terms[3];
      std::int64_t q7 = 0;
      for (std::size_t i = 0; i < 3; ++i) {
        terms[i] = weights[i] * (log32f(0.5 * highSums[i]) - (log32f(lowSums[i]) - log32f(fl.at(j))));
        const int eighth = logQ7(std::nearbyint(highSums[i] / 8));  // ties to even
        q7 += (weightsQ10[i] *
               ((eighth == -1280 ? eighth : eighth + 177) - (logQ7(lowSums[i]) - logQ7(l.at(j))))) >>
              10;
      }
      ASSERT_TRUE(sameBits(y.at(j), terms[0] + terms[1] + terms[2])) << round;
      ASSERT_EQ(t.at(j), limited(shifted(q7, std::int64_t{factor} + 7), INT32_MAX)) << round << ' ' << factor;
    }
  }
}

TEST(HighBandCoding, LeavesOutWhatItAlwaysHas) {
  std::vector<float> low(3), bins(65), high(129), dst(3);
  high[77] = high[97] = high[65] = bins[32] = NAN;
  ASSERT_EQ(orvsHighBandCoding_Aurora_32f(low.data(), bins.data(), high.data(), dst.data()), orvStsNoErr);
  EXPECT_EQ(dst, (std::vector<float>(3, -10)));
  low[1] = high[98] = bins[40] = NAN;  // a NaN has no energy
  ASSERT_EQ(orvsHighBandCoding_Aurora_32f(low.data(), bins.data(), high.data(), dst.data()), orvStsNoErr);
  EXPECT_EQ(dst, (std::vector<float>(3, -10)));
  low = {4.55e-5F, 4.53e-5F, 0.0F};  // above and below exp(-10)
  ASSERT_EQ(orvsHighBandCoding_Aurora_32f(low.data(), bins.data(), high.data(), dst.data()), orvStsNoErr);
  EXPECT_NEAR(dst[0], std::log(4.55e-5F), 1e-5);
  EXPECT_EQ(dst[1], -10);
  // The six and ten values are added in single, one by one; the sixteen in double. All logarithms but that
  // of the sum are 0.
  std::fill(high.begin(), high.end(), 0.0F);
  high[66] = high[78] = high[98] = 2;
  low.assign(3, 1.0F);
  for (const auto &[first, last, weight] : {std::tuple{33, 38, 0.1F}, {39, 48, 0.2F}, {49, 64, 0.7F}}) {
    std::fill(bins.begin(), bins.end(), 0.0F);
    bins[33] = bins[39] = bins[49] = 1;
    for (int i = first + 1; i <= last; ++i) bins[static_cast<std::size_t>(i)] = 0x1p-24F;
    ASSERT_EQ(orvsHighBandCoding_Aurora_32f(low.data(), bins.data(), high.data(), dst.data()), orvStsNoErr);
    EXPECT_EQ(dst[0], weight == 0.7F ? -weight * std::log(1 + 15 * 0x1p-24F) : 0) << first;
  }
  using P = const Pointers &;
  const Order null{orvStsNullPtrErr};
  expectOrder(null, 4, 1,
              [](P p, int, int, int) { return orvsHighBandCoding_Aurora_32f(p[0], p[1], p[2], p[3]); });
  expectOrder(null, 4, 1, [](P p, int, int, int) {
    return orvsHighBandCoding_Aurora_32s_Sfs(p[0], p[1], p[2], p[3], 0);
  });
}

constexpr std::int32_t q18(double v) { return static_cast<std::int32_t>(v * (1 << 18)); }

// A bank in a buffer of exactly the reported size, which may start anywhere.
struct IntegerBank {
  Guarded<std::uint8_t> buffer;
  std::int32_t order = -1;

  static std::size_t size(std::int32_t fftLen, std::int32_t n) {
    std::int32_t bytes = -1;
    EXPECT_EQ(orvsMelFBankGetSize_32s(fftLen, n, orvFBankBinWeights, &bytes), orvStsNoErr);
    std::int32_t half = 16;
    while (2 * half < fftLen) half *= 2;
    EXPECT_EQ(bytes, 4 * n + 112 + 2 * ((5 * n + 10) * 8 + (n + 2) * half * 4 + 32));
    return static_cast<std::size_t>(bytes);
  }
  IntegerBank(std::int32_t fftLen, std::int32_t rate, std::int32_t low, std::int32_t high, std::int32_t n,
              double mul, double div, std::size_t offset)
      : buffer(size(fftLen, n), offset) {
    EXPECT_EQ(orvsMelFBankInit_32s(state(), &order, fftLen, rate, low, high, n, q18(mul), q18(div),
                                   orvFBankBinWeights),
              orvStsNoErr);
  }
  OrvsFBankState_32s *state() { return reinterpret_cast<OrvsFBankState_32s *>(buffer.data()); }
};

TEST(IntegerBank, AgreesWithTheSingleBank) {
  Random random(9);
  for (int round = 0; round < 80; ++round) {
    const auto fftLen = static_cast<std::int32_t>(32 + random() % (round % 8 ? 600 : 8161));
    const auto rate = static_cast<std::int32_t>(8000 + random() % 40001);
    const auto high = static_cast<std::int32_t>(200 + random() % static_cast<unsigned>(rate / 2 - 199));
    const auto low = static_cast<std::int32_t>(1 + random() % 199);
    const auto n = static_cast<std::int32_t>(1 + random() % 16);
    const double mul = round % 2 ? 2595 : 1127,
                 div = round % 3 ? 700 : 2.5 + static_cast<double>(random() % 1000);
    const auto bands = static_cast<std::size_t>(n);
    OrvsFBankState_32f *single = nullptr;
    std::int32_t order = 0;
    ASSERT_EQ(orvsMelFBankInitAlloc_32f(&single, &order, fftLen, static_cast<float>(rate),
                                        static_cast<float>(low), static_cast<float>(high), n,
                                        static_cast<float>(mul), static_cast<float>(div), orvFBankBinWeights),
              orvStsNoErr);
    std::vector<std::int32_t> c(bands + 2);
    ASSERT_EQ(orvsFBankGetCenters_32f(single, c.data()), orvStsNoErr);
    IntegerBank bank(fftLen, rate, low, high, n, mul, div, random() % 64);
    EXPECT_EQ(bank.order, order);

    const std::size_t bins = (std::size_t{1} << order) / 2 + 1;
    std::vector<std::int32_t> x(bins);
    for (auto &v : x) v = static_cast<std::int32_t>(random() >> (8 + random() % 24));
    if (round % 5 == 0) x = anyIntegers<std::int32_t>(random, bins);
    const Guarded<std::int32_t> src(x, random() % 16);
    const Guarded<float> singles(std::vector<float>(x.begin(), x.end()));
    Guarded<std::int32_t> dst(bands, random() % 16);
    Guarded<float> energies(bands);
    const int factor = static_cast<int>(random() % 63) - 31;
    ASSERT_EQ(orvsEvalFBank_32f(singles.data(), energies.data(), single), orvStsNoErr);
    ASSERT_EQ(orvsEvalFBank_32s_Sfs(src.data(), dst.data(), bank.state(), factor), orvStsNoErr);
    for (std::size_t i = 1; i <= bands; ++i) {
      // Bit for bit with weights of 30 fractional bits.
      std::int64_t sum = 0;
      double magnitudes = 0;
      const std::int64_t d = c[i] - c[i - 1] + 1, e = c[i + 1] - c[i] + 1;
      for (std::int64_t k = c[i - 1]; k <= c[i + 1]; ++k) {
        const double w = k <= c[i] ? static_cast<double>(k - c[i - 1] + 1) / static_cast<double>(d)
                                   : static_cast<double>(c[i + 1] - k + 1) / static_cast<double>(e);
        const auto bin = static_cast<std::size_t>(k);
        sum += (static_cast<std::int64_t>(std::floor(w * (1 << 30) + 0.5)) * x[bin]) >> 8;
        magnitudes += std::fabs(static_cast<double>(x[bin]));
      }
      const std::int64_t v = shifted(sum, factor), r = (v >> 22) + (v >> 21 & 1);
      ASSERT_EQ(dst.at(i - 1), static_cast<std::int32_t>(std::min<std::int64_t>(r, INT32_MAX))) << factor;
      // And within rounding with the other bank, the single arithmetic of which is most of the difference.
      const double unit = std::ldexp(1.0, factor), count = c[i + 1] - c[i - 1] + 1;
      if (std::fabs(energies.at(i - 1)) / unit < 2147483000.0 && factor > -20 && round % 5 != 0) {
        EXPECT_NEAR(dst.at(i - 1) * unit, energies.at(i - 1),
                    unit / 2 + count * 0x1p-22 + magnitudes * 0x1p-31 + (count + 4) * magnitudes * 0x1p-24);
      }
    }
    orvsFBankFree_32f(single);
  }
}

TEST(IntegerBank, TakesItsExtremes) {
  // Rounded half up, and limited above only.
  IntegerBank one(32, 16000, 0, 24000, 1, 2.5, 1023, 1);  // centres 0, 7, 16: above the half is the last bin
  std::vector<std::int32_t> x(17);
  std::int32_t y = 0;
  const auto energy = [&](std::int32_t first, int factor) {
    x[0] = first;
    EXPECT_EQ(orvsEvalFBank_32s_Sfs(x.data(), &y, one.state(), factor), orvStsNoErr);
    return y;
  };
  x.assign(17, 0);
  const std::int32_t full = energy(1 << 30, 0);  // 2^30 over the width of the rising side, plus 1
  const auto width = static_cast<std::int32_t>(std::lround(std::ldexp(1.0, 30) / full));
  EXPECT_EQ(full, static_cast<std::int32_t>(std::lround(std::ldexp(1.0, 30) / width)));
  for (std::int32_t v = -3 * width; v <= 3 * width; ++v)
    EXPECT_EQ(energy(v, 0), static_cast<std::int32_t>(std::floor((2.0 * v + width) / (2.0 * width)))) << v;
  x.assign(17, INT32_MAX);
  EXPECT_EQ(energy(INT32_MAX, 0), INT32_MAX);
  // As many bands as there are bins, and one more than the size query takes.
  for (const std::int32_t n : {16, 17}) {
    Guarded<std::uint8_t> buffer(4 * 17 + 112 + 2 * (95 * 8 + 19 * 16 * 4 + 32), 3);
    auto *state = reinterpret_cast<OrvsFBankState_32s *>(buffer.data());
    std::int32_t order = 0;
    ASSERT_EQ(orvsMelFBankInit_32s(state, &order, 17 + 15, 8000, 0, 4000, n, q18(2595), q18(700), 2),
              orvStsNoErr);
    Guarded<std::int32_t> dst(static_cast<std::size_t>(n));
    ASSERT_EQ(orvsEvalFBank_32s_Sfs(x.data(), dst.data(), state, 31), orvStsNoErr);
  }
  IntegerBank large(8192, 48000, 0, 24000, 4096, 4095, 3, 63);
  const Guarded<std::int32_t> src(std::vector<std::int32_t>(4097, 1000));
  Guarded<std::int32_t> dst(4096);
  ASSERT_EQ(orvsEvalFBank_32s_Sfs(src.data(), dst.data(), large.state(), 0), orvStsNoErr);
  EXPECT_GE(dst.at(4095), 1000);
}

TEST(IntegerBank, ChecksInItsOrder) {
  std::int32_t size = 7;
  EXPECT_EQ(orvsMelFBankGetSize_32s(0, 0, 0, nullptr), orvStsNullPtrErr);
  for (const auto &[fftLen, n] : {std::pair{31, 1}, {8193, 1}, {32, 0}})
    EXPECT_EQ(orvsMelFBankGetSize_32s(fftLen, n, 1, &size), orvStsSizeErr);
  for (const int flags : {0, 1, 3, 6})
    EXPECT_EQ(orvsMelFBankGetSize_32s(33, 99, flags, &size), orvStsFBankFlagErr);
  EXPECT_EQ(orvsMelFBankGetSize_32s(33, 33, 2, &size), orvStsSizeErr);
  EXPECT_EQ(size, 7);
  EXPECT_EQ(orvsMelFBankGetSize_32s(33, 32, 2, &size), orvStsNoErr);

  Guarded<std::uint8_t> buffer(16);
  auto *state = reinterpret_cast<OrvsFBankState_32s *>(buffer.data());
  std::int32_t order = 7;
  constexpr std::int32_t least = 524289;
  struct Arguments {
    std::int32_t fftLen, rate, low, high, n, mul, div, flags;
    OrvStatus expected;
  };
  for (const Arguments &a : {
           Arguments{32, 0, -1, 0, 4, 0, 0, 1, orvStsSizeErr},
           {32, 0, -1, 1, 0, 0, 0, 1, orvStsSizeErr},
           {31, 0, -1, 1, 4, 0, 0, 1, orvStsSizeErr},
           {8193, 0, -1, 1, 4, 0, 0, 1, orvStsSizeErr},
           {32, 0, -1, 1, 4, 0, 0, 6, orvStsFBankFlagErr},
           {32, 0, 1, 1, 4, 0, 0, 2, orvStsSizeErr},
           {32, 48001, 1, 1, 4, 0, 0, 2, orvStsSizeErr},
           {32, 48000, -1, 24001, 4, 0, 0, 2, orvStsSizeErr},
           {32, 48000, 1, 1, 4, 0, 0, 2, orvStsFBankFreqErr},
           {32, 48000, 0, 24001, 4, 0, 0, 2, orvStsFBankFreqErr},
           {32, 48000, 0, 24000, 18, least, least - 1, 2, orvStsBadArgErr},
           {32, 48000, 0, 24000, 18, least - 1, least, 2, orvStsBadArgErr},
           {32, 48000, 0, 24000, 18, least, 0x10000000, 2, orvStsBadArgErr},
           {32, 48000, 0, 24000, 18, 0x40000000, least, 2, orvStsBadArgErr},
       }) {
    const auto init = [&a](OrvsFBankState_32s *bank, std::int32_t *to) {
      return orvsMelFBankInit_32s(bank, to, a.fftLen, a.rate, a.low, a.high, a.n, a.mul, a.div, a.flags);
    };
    EXPECT_EQ(init(nullptr, &order), orvStsNullPtrErr);
    EXPECT_EQ(init(state, nullptr), orvStsNullPtrErr);
    EXPECT_EQ(init(state, &order), a.expected);
  }
  EXPECT_EQ(order, 7);
  EXPECT_EQ(orvsMelFBankInit_32s(state, &order, 32, 1, 0, 24000, 18, 0x3FFFFFFF, 0x0FFFFFFF, 2),
            orvStsSizeErr);
  EXPECT_EQ(order, 5);  // the order is known, and stored, before the bands are counted
  EXPECT_TRUE(buffer.untouched());

  IntegerBank bank(32, 16000, 0, 8000, 1, 2595, 700, 0);
  const std::vector<std::int32_t> x(17);
  Guarded<std::int32_t> y(1);
  expectOrder({orvStsNullPtrErr}, 3, 1,
              [](const Pointers &p, int, int, int) { return orvsEvalFBank_32s_Sfs(p[0], p[1], p[2], 32); });
  for (const int factor : {-32, 32})
    EXPECT_EQ(orvsEvalFBank_32s_Sfs(x.data(), y.data(), bank.state(), factor), orvStsBadArgErr);
  EXPECT_TRUE(y.untouched());
}

}  // namespace
