#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "orvsr/robust.h"
#include "support/arrays.h"

using namespace orv::test;

namespace {

struct Steps {
  int sampleRate, len, hop;  // a hop of 0: the form without one
};

std::size_t binsOf(const Steps &s) { return static_cast<std::size_t>(s.len / 2 + 1); }
int halfLenBits(const Steps &s) { return static_cast<int>(std::log2(s.len / 2)) + 1; }

template <class T>
class Tracker {
 public:
  explicit Tracker(const Steps &setup, std::size_t offset = 0)
      : memory_(size(setup), offset), noise(binsOf(setup)) {
    start(setup);
  }
  void start(const Steps &s) {
    if constexpr (fixed) {
      EXPECT_EQ(s.hop == 0 ? orvsInitMCRA_32s(s.sampleRate, s.len, state())
                           : orvsAltInitMCRA_32s(s.sampleRate, s.len, s.hop, state()),
                orvStsNoErr);
    } else {
      EXPECT_EQ(s.hop == 0 ? orvsInitMCRA_32f(s.sampleRate, s.len, state())
                           : orvsAltInitMCRA_32f(s.sampleRate, s.len, s.hop, state()),
                orvStsNoErr);
    }
  }
  std::vector<T> update(const std::vector<T> &power, std::size_t offset = 0) {
    const Guarded<T> src(power, offset);
    if constexpr (fixed) {
      EXPECT_EQ(orvsUpdateNoisePSDMCRA_32s_I(src.data(), state(), noise.data()), orvStsNoErr);
    } else {
      EXPECT_EQ(orvsUpdateNoisePSDMCRA_32f_I(src.data(), state(), noise.data()), orvStsNoErr);
    }
    return noise.values();
  }

 private:
  static constexpr bool fixed = std::is_same_v<T, std::int32_t>;
  static std::size_t size(const Steps &s) {
    std::int32_t bytes = 0;
    EXPECT_EQ((fixed ? orvsGetSizeMCRA_32s : orvsGetSizeMCRA_32f)(s.len, &bytes), orvStsNoErr);
    return static_cast<std::size_t>(bytes);
  }
  McraState *state() { return reinterpret_cast<McraState *>(memory_.data()); }
  Guarded<std::uint8_t> memory_;

 public:
  Guarded<T> noise;
};

// The definition, one bin after another.
struct SingleReference {
  using T = float;
  float alphaD, alphaS, alphaP;
  int window, pos = 0;
  std::vector<float> s, least, next, p, noise;

  explicit SingleReference(const Steps &setup) {
    const auto rate = static_cast<float>(setup.sampleRate);
    const float e = static_cast<float>(setup.hop == 0 ? setup.len / 2 : setup.hop) * 125.0F / rate;
    alphaD = static_cast<float>(std::pow(0.7, double{e}));
    alphaS = static_cast<float>(std::pow(0.8, double{e}));
    alphaP = static_cast<float>(std::pow(0.2, double{e}));
    const double block = setup.sampleRate * 0.008;
    const float blocks = setup.hop == 0 ? static_cast<float>(block / std::exp2(halfLenBits(setup) - 1))
                                        : static_cast<float>(block) / static_cast<float>(setup.hop);
    window = static_cast<int>(blocks * 125.0F);
  }
  const std::vector<float> &update(const std::vector<float> &power) {
    if (s.empty()) {
      s = least = next = noise = power;
      p.assign(power.size(), 0);
    } else {
      for (std::size_t k = 0; k < power.size(); ++k) {
        s[k] = alphaS * s[k] + (1 - alphaS) * power[k];
        least[k] = std::min(s[k], pos == window ? next[k] : least[k]);
        next[k] = pos == window ? s[k] : std::min(s[k], next[k]);
        p[k] = alphaP * p[k];
        if (s[k] > 5 * least[k]) p[k] += 1 - alphaP;
        const float a = alphaD + (1 - alphaD) * p[k];
        noise[k] = a * noise[k] + (1 - a) * power[k];
      }
      if (pos == window) pos = 0;
    }
    ++pos;
    return noise;
  }
};

struct FixedReference {
  using T = std::int32_t;
  static constexpr std::int64_t one = 2147483647;
  std::int32_t alphaD, alphaS, alphaP;
  int window, pos = 0;
  std::vector<std::int32_t> s, least, next, p, noise;

  static std::int32_t power(std::int64_t e, std::int64_t c) {
    const std::int64_t x = (e * c) >> 31, q = (x * x) >> 16, r = (((q * x) >> 15) * 715827883) >> 31;
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(q + x + r + 32768) << 16);
  }
  explicit FixedReference(const Steps &setup) {
    const std::int64_t rate = setup.sampleRate, hop = setup.hop == 0 ? setup.len / 2 : setup.hop;
    const std::int64_t e = hop * 4096000 / rate;
    alphaD = power(e, -765953610);
    alphaS = power(e, -479197128);
    alphaP = power(e, -432030200);
    for (int i = 0; i < 3; ++i) alphaP = static_cast<std::int32_t>((std::int64_t{alphaP} * alphaP) >> 31);
    const std::int64_t y = setup.hop == 0 ? ((rate * 17179869) >> 16) >> (halfLenBits(setup) - 1)
                                          : (rate * 17179869 / hop) >> 16;
    window = static_cast<int>((y * 125 + 125) >> 15);
  }
  static std::int32_t truncated(double v) {
    return v > -2147483649.0 && v < 2147483648.0 ? static_cast<std::int32_t>(v)
                                                 : std::numeric_limits<std::int32_t>::min();
  }
  const std::vector<std::int32_t> &update(const std::vector<std::int32_t> &power) {
    if (s.empty()) {
      s = least = next = noise = power;
      p.assign(power.size(), 0);
    } else {
      const double unit = 4.656612873077393e-10;
      for (std::size_t k = 0; k < power.size(); ++k) {
        const auto kept = static_cast<std::uint64_t>(std::int64_t{alphaS} * s[k]);
        const auto added = static_cast<std::uint64_t>(power[k] * (one - alphaS));
        s[k] = static_cast<std::int32_t>(static_cast<std::int64_t>(kept + added) >> 31);
        least[k] = std::min(s[k], pos == window ? next[k] : least[k]);
        next[k] = pos == window ? s[k] : std::min(s[k], next[k]);
        p[k] = truncated(static_cast<double>(p[k]) * alphaP * unit);
        if (s[k] > std::min(2147483647.0, static_cast<double>(least[k]) * 163840 / 32768))
          p[k] = static_cast<std::int32_t>(p[k] + (one - alphaP));
        const double a = alphaD + p[k] * static_cast<double>(one - alphaD) * unit;
        noise[k] = truncated((noise[k] * a + (2147483647.0 - a) * power[k]) * unit);
      }
      if (pos == window) pos = 0;
    }
    ++pos;
    return noise;
  }
};

template <class Reference>
class Mcra : public ::testing::Test {};
using References = ::testing::Types<SingleReference, FixedReference>;
TYPED_TEST_SUITE(Mcra, References);

// Noise whose level moves, with bursts that the minimum tells from it; in some bins nothing at all.
template <class T>
std::vector<T> frameOf(Random &random, std::size_t bins, int n, double scale) {
  std::vector<T> power(bins);
  for (std::size_t k = 0; k < bins; ++k) {
    const double level = scale * (1 + std::sin(0.01 * n * static_cast<double>(k + 1)) / 2);
    const double burst = (n / 7 + static_cast<int>(k)) % 5 == 0 ? 40 : 1;
    power[k] =
        k % 11 == 10 ? T{} : static_cast<T>(level * burst * static_cast<double>(1 + random() % 1000) / 1000);
  }
  return power;
}

TYPED_TEST(Mcra, FollowsItsDefinitionOverWindowsAndRestarts) {
  using T = typename TypeParam::T;
  Random random(45);
  std::size_t offset = 0;
  for (const Steps setup : {Steps{8000, 8, 0},
                            {8000, 8, 4},
                            {48000, 9, 1},
                            {11025, 12, 0},
                            {16000, 30, 15},
                            {8000, 400, 0},
                            {8448, 512, 0},
                            {8000, 256, 100},
                            {8001, 400, 80},
                            {44100, 1000, 0},
                            {16000, 512, 0},
                            {22050, 512, 160},
                            {8000, 8192, 0},
                            {48000, 8192, 4096},
                            {8000, 2048, 1000}}) {
    Tracker<T> tracker(setup, offset++ % 8);
    for (int round = 0; round < 2; ++round) {
      tracker.start(setup);
      TypeParam reference(setup);
      const int frames =
          setup.len < 10 ? 4 * std::min(reference.window, 2100) / 3 : 40 + 2 * std::min(reference.window, 60);
      for (int n = 0; n < frames; ++n) {
        const auto power = frameOf<T>(random, binsOf(setup), n, 2e7);
        ASSERT_EQ(tracker.update(power, 4 * (random() % 4)), reference.update(power))
            << setup.sampleRate << " " << setup.len << " " << setup.hop << " frame " << n;
      }
    }
  }
}

TYPED_TEST(Mcra, TakesTheThresholdItselfAsNoise) {
  using T = typename TypeParam::T;
  const Steps setup{8000, 128, 64};
  TypeParam probe(setup);
  // A power that brings the smoothed one exactly to five times the minimum.
  auto power = static_cast<T>(1000 + 4000 / (1 - std::pow(0.8, 1.0)));
  const auto smoothed = [&](T x) {
    TypeParam reference(setup);
    reference.update({1000});
    reference.update({x});
    return reference.s[0];
  };
  if constexpr (std::is_same_v<T, float>) {
    while (smoothed(power) > 5000) power = std::nextafter(power, 0.0F);
    while (smoothed(power) < 5000) power = std::nextafter(power, 1e9F);
  } else {
    while (smoothed(power) > 5000) --power;
    while (smoothed(power) < 5000) ++power;
  }
  ASSERT_EQ(smoothed(power), 5000);
  const auto noiseAfter = [&](T x) {
    Tracker<T> tracker(setup);
    tracker.update(std::vector<T>(65, 1000));
    return tracker.update(std::vector<T>(65, x))[64];
  };
  EXPECT_NEAR(static_cast<double>(noiseAfter(power)), 0.7 * 1000 + 0.3 * 21000, 20);
  EXPECT_NEAR(static_cast<double>(noiseAfter(static_cast<T>(power + 20))), 0.94 * 1000 + 0.06 * 21000, 20);
}

// Any integers, negative ones too: every product and cut is as defined.
TEST(McraFixed, WrapsAsDefined) {
  Random random(46);
  for (const Steps setup : {Steps{8000, 64, 32}, {16000, 512, 128}, {8000, 1024, 512}, {8000, 8192, 4096}}) {
    Tracker<std::int32_t> tracker(setup, 3);
    FixedReference reference(setup);
    for (int n = 0; n < 60; ++n) {
      auto power = anyIntegers<std::int32_t>(random, binsOf(setup));
      if (n % 2) power[static_cast<std::size_t>(n) % 7] = std::numeric_limits<std::int32_t>::max();
      ASSERT_EQ(tracker.update(power), reference.update(power)) << setup.hop << " frame " << n;
    }
  }
}

TEST(McraForms, AgreeAtShortStepsOnly) {
  const auto apart = [](const Steps &setup) {
    Random random(47);
    Tracker<float> single(setup);
    Tracker<std::int32_t> fixed(setup);
    double worst = 0;
    for (int n = 0; n < 60; ++n) {
      const auto power = frameOf<float>(random, binsOf(setup), n, 2e7);
      const auto a = single.update(power);
      const auto b = fixed.update(std::vector<std::int32_t>(power.begin(), power.end()));
      for (std::size_t k = 0; k < a.size(); ++k)
        worst =
            std::max(worst, std::fabs(static_cast<double>(a[k]) - b[k]) / (static_cast<double>(a[k]) + 1000));
    }
    return worst;
  };
  EXPECT_LT(apart({8000, 128, 64}), 0.02);
  EXPECT_GT(apart({8000, 1024, 512}), 0.2);  // the series of the coefficients has failed
}

TYPED_TEST(Mcra, ChecksItsArgumentsInTheirOrder) {
  using T = typename TypeParam::T;
  constexpr bool fixed = std::is_same_v<T, std::int32_t>;
  const auto size = fixed ? orvsGetSizeMCRA_32s : orvsGetSizeMCRA_32f;
  const auto init = fixed ? orvsInitMCRA_32s : orvsInitMCRA_32f;
  const auto altInit = fixed ? orvsAltInitMCRA_32s : orvsAltInitMCRA_32f;
  std::int32_t bytes = 5;
  EXPECT_EQ(size(0, nullptr), orvStsNullPtrErr);
  for (const int len : {7, 8193, -8}) EXPECT_EQ(size(len, &bytes), orvStsSizeErr);
  EXPECT_EQ(bytes, 5);
  for (const auto &[len, expected] : {std::pair{8, 168}, {9, 168}, {8192, 104 + 16 * 4096}}) {
    EXPECT_EQ(size(len, &bytes), orvStsNoErr);
    EXPECT_EQ(bytes, expected);
  }
  Guarded<std::uint8_t> memory(168);
  const auto state = reinterpret_cast<McraState *>(memory.data());
  EXPECT_EQ(init(0, 0, nullptr), orvStsNullPtrErr);
  EXPECT_EQ(altInit(0, 0, 0, nullptr), orvStsNullPtrErr);
  for (const int rate : {7999, 48001}) {
    EXPECT_EQ(init(rate, 7, state), orvStsRangeErr);
    EXPECT_EQ(altInit(rate, 8, 4, state), orvStsRangeErr);
  }
  for (const int len : {7, 8193}) {
    EXPECT_EQ(init(8000, len, state), orvStsSizeErr);
    EXPECT_EQ(altInit(8000, len, 3, state), orvStsSizeErr);
    EXPECT_EQ(altInit(8000, len, len / 2 + 1, state), orvStsRangeErr);
  }
  for (const int hop : {0, 5}) EXPECT_EQ(altInit(8000, 8, hop, state), orvStsRangeErr);
  std::vector<T> values(5, 7);
  for (int missing = 0; missing < 3; ++missing) {
    T *const src = missing == 0 ? nullptr : values.data();
    McraState *const object = missing == 1 ? nullptr : state;
    T *const noise = missing == 2 ? nullptr : values.data();
    if constexpr (fixed) {
      EXPECT_EQ(orvsUpdateNoisePSDMCRA_32s_I(src, object, noise), orvStsNullPtrErr);
    } else {
      EXPECT_EQ(orvsUpdateNoisePSDMCRA_32f_I(src, object, noise), orvStsNullPtrErr);
    }
  }
  EXPECT_TRUE(memory.untouched());
}

}  // namespace
