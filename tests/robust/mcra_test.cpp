#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "orvsr/robust.h"
#include "support/arrays.h"
#include "support/matrix.h"

using namespace orv::test;

namespace {

struct Steps {
  int sampleRate, len, hop;  // a hop of 0: the form without one

  std::size_t bins() const { return static_cast<std::size_t>(len / 2 + 1); }
  int frameStep() const { return hop == 0 ? len / 2 : hop; }
  int halfLenBits() const { return static_cast<int>(std::log2(len / 2)) + 1; }
};

// The functions of each type, and its arithmetic.
struct Single {
  using T = float;
  static constexpr auto size = orvsGetSizeMCRA_32f;
  static constexpr auto init = orvsInitMCRA_32f;
  static constexpr auto altInit = orvsAltInitMCRA_32f;
  static constexpr auto update = orvsUpdateNoisePSDMCRA_32f_I;
  float alphaD, alphaS, alphaP;
  int window;

  explicit Single(const Steps &setup) {
    const float e = static_cast<float>(setup.frameStep()) * 125.0F / static_cast<float>(setup.sampleRate);
    alphaD = static_cast<float>(std::pow(0.7, double{e}));
    alphaS = static_cast<float>(std::pow(0.8, double{e}));
    alphaP = static_cast<float>(std::pow(0.2, double{e}));
    const double block = setup.sampleRate * 0.008;
    const float blocks = setup.hop == 0 ? static_cast<float>(block / std::exp2(setup.halfLenBits() - 1))
                                        : static_cast<float>(block) / static_cast<float>(setup.hop);
    window = static_cast<int>(blocks * 125.0F);
  }
  float smooth(float s, float x) const { return alphaS * s + (1 - alphaS) * x; }
  float probability(float p, float s, float least) const {
    return s > 5 * least ? alphaP * p + (1 - alphaP) : alphaP * p;
  }
  float noise(float noise, float p, float x) const {
    const float a = alphaD + (1 - alphaD) * p;
    return a * noise + (1 - a) * x;
  }
};

struct Fixed {
  using T = std::int32_t;
  static constexpr auto size = orvsGetSizeMCRA_32s;
  static constexpr auto init = orvsInitMCRA_32s;
  static constexpr auto altInit = orvsAltInitMCRA_32s;
  static constexpr auto update = orvsUpdateNoisePSDMCRA_32s_I;
  static constexpr std::int64_t one = 2147483647;
  static constexpr double unit = 4.656612873077393e-10;
  std::int32_t alphaD, alphaS, alphaP;
  int window;

  static std::int32_t power(std::int64_t e, std::int64_t c) {
    const std::int64_t x = (e * c) >> 31, q = (x * x) >> 16, r = (((q * x) >> 15) * 715827883) >> 31;
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(q + x + r + 32768) << 16);
  }
  explicit Fixed(const Steps &setup) {
    const std::int64_t rate = setup.sampleRate, e = setup.frameStep() * std::int64_t{4096000} / rate;
    alphaD = power(e, -765953610);
    alphaS = power(e, -479197128);
    alphaP = power(e, -432030200);
    for (int i = 0; i < 3; ++i) alphaP = static_cast<std::int32_t>((std::int64_t{alphaP} * alphaP) >> 31);
    const std::int64_t y = setup.hop == 0 ? ((rate * 17179869) >> 16) >> (setup.halfLenBits() - 1)
                                          : (rate * 17179869 / setup.hop) >> 16;
    window = static_cast<int>((y * 125 + 125) >> 15);
  }
  static std::int32_t truncated(double v) {
    return v > -2147483649.0 && v < 2147483648.0 ? static_cast<std::int32_t>(v)
                                                 : std::numeric_limits<std::int32_t>::min();
  }
  std::int32_t smooth(std::int32_t s, std::int32_t x) const {
    const auto kept = static_cast<std::uint64_t>(std::int64_t{alphaS} * s);
    const auto added = static_cast<std::uint64_t>(x * (one - alphaS));
    return static_cast<std::int32_t>(static_cast<std::int64_t>(kept + added) >> 31);
  }
  std::int32_t probability(std::int32_t p, std::int32_t s, std::int32_t least) const {
    p = truncated(static_cast<double>(p) * alphaP * unit);
    const bool speech = s > std::min(2147483647.0, static_cast<double>(least) * 163840 / 32768);
    return speech ? static_cast<std::int32_t>(p + (one - alphaP)) : p;
  }
  std::int32_t noise(std::int32_t noise, std::int32_t p, std::int32_t x) const {
    const double a = alphaD + p * static_cast<double>(one - alphaD) * unit;
    return truncated((noise * a + (2147483647.0 - a) * x) * unit);
  }
};

// The definition, one bin after another.
template <class Form>
struct Reference {
  using T = typename Form::T;
  Form form;
  int pos = 0;
  std::vector<T> s, least, next, p, noise;

  explicit Reference(const Steps &setup) : form(setup) {}
  const std::vector<T> &update(const std::vector<T> &power) {
    if (s.empty()) {
      s = least = next = noise = power;
      p.assign(power.size(), 0);
    } else {
      for (std::size_t k = 0; k < power.size(); ++k) {
        s[k] = form.smooth(s[k], power[k]);
        least[k] = std::min(s[k], pos == form.window ? next[k] : least[k]);
        next[k] = pos == form.window ? s[k] : std::min(s[k], next[k]);
        p[k] = form.probability(p[k], s[k], least[k]);
        noise[k] = form.noise(noise[k], p[k], power[k]);
      }
      if (pos == form.window) pos = 0;
    }
    ++pos;
    return noise;
  }
  std::vector<T> arrays() const {
    std::vector<T> all;
    for (const auto *array : {&p, &s, &least, &next}) all.insert(all.end(), array->begin(), array->end());
    return all;
  }
};

// What stands at the start of an object.
template <class T>
struct Fields {
  std::int32_t sampleRate, fftLen, halfLenBits, hop, window, pos, first;
  T alphaD, alphaP, alphaS, delta;
};

// A tracker in a buffer of exactly the reported size.
template <class Form>
class Tracker {
  using T = typename Form::T;

 public:
  Tracker(const Steps &setup, std::size_t offset) : memory_(size(setup), offset), noise_(setup.bins()) {}
  void start(const Steps &s) {
    EXPECT_EQ(s.hop == 0 ? Form::init(s.sampleRate, s.len, state())
                         : Form::altInit(s.sampleRate, s.len, s.hop, state()),
              orvStsNoErr);
  }
  std::vector<T> update(const std::vector<T> &power, std::size_t offset) {
    const Guarded<T> src(power, offset);
    EXPECT_EQ(Form::update(src.data(), state(), noise_.data()), orvStsNoErr);
    return noise_.values();
  }
  Fields<T> fields() const {
    Fields<T> fields;
    std::memcpy(&fields, memory_.data(), sizeof fields);
    return fields;
  }
  // Behind a head of 88 bytes: the probabilities, the smoothed powers and both minima.
  std::vector<T> arrays() const {
    std::vector<T> all(4 * noise_.values().size());
    std::memcpy(all.data(), memory_.data() + 88, all.size() * sizeof(T));
    return all;
  }

 private:
  static std::size_t size(const Steps &s) {
    std::int32_t bytes = 0;
    EXPECT_EQ(Form::size(s.len, &bytes), orvStsNoErr);
    EXPECT_EQ(bytes, 104 + 16 * (s.len / 2));
    return static_cast<std::size_t>(bytes);
  }
  McraState *state() { return reinterpret_cast<McraState *>(memory_.data()); }
  Guarded<std::uint8_t> memory_;
  Guarded<T> noise_;
};

template <class Form>
class Mcra : public ::testing::Test {};
using Forms = ::testing::Types<Single, Fixed>;
TYPED_TEST_SUITE(Mcra, Forms);

// Noise whose level moves, with bursts that the minimum tells from it. In some bins there is nothing at all
// between single bursts: there the smoothed power is the threshold itself, which does not count as speech.
template <class T>
std::vector<T> frameOf(Random &random, std::size_t bins, int n) {
  std::vector<T> power(bins);
  for (std::size_t k = 0; k < bins; ++k) {
    const double level = 2e7 * (1 + std::sin(0.01 * n * static_cast<double>(k + 1)) / 2);
    const double burst = k % 11 == 10 ? n % 16 == 15 : (n / 7 + static_cast<int>(k)) % 5 == 0 ? 40 : 1;
    power[k] = static_cast<T>(level * burst * static_cast<double>(1 + random() % 1000) / 1000);
  }
  return power;
}

TYPED_TEST(Mcra, FollowsItsDefinitionOverWindowsAndRestarts) {
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
                            {22050, 512, 160},
                            {8000, 8192, 0},
                            {48000, 8192, 4096}}) {
    Tracker<TypeParam> tracker(setup, offset++ % 8);
    for (int round = 0; round < 2; ++round) {
      tracker.start(setup);
      Reference<TypeParam> reference(setup);
      const int window = reference.form.window;
      const int frames = setup.len < 10 ? 4 * std::min(window, 2100) / 3 : 40 + 2 * std::min(window, 60);
      for (int n = 0; n < frames; ++n) {
        const auto power = frameOf<typename TypeParam::T>(random, setup.bins(), n);
        ASSERT_EQ(tracker.update(power, 4 * (random() % 4)), reference.update(power))
            << setup.sampleRate << " " << setup.len << " " << setup.hop << " frame " << n;
      }
      ASSERT_EQ(tracker.arrays(), reference.arrays()) << setup.sampleRate << " " << setup.len;
    }
  }
}

TYPED_TEST(Mcra, DerivesItsFieldsFromRateAndStep) {
  Random random(47);
  for (int round = 0; round < 400; ++round) {
    const auto below = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    const int rate = round % 8 ? 8000 + below(40001) : 44100, len = round % 8 == 1 ? 8 : 8 + below(1000);
    const Steps setup{rate, len, round % 2 ? 1 + below(len / 2) : 0};
    Tracker<TypeParam> tracker(setup, static_cast<std::size_t>(round % 9));
    tracker.start(setup);
    const TypeParam form(setup);
    const auto f = tracker.fields();
    ASSERT_TRUE(f.sampleRate == rate && f.fftLen == len && f.halfLenBits == setup.halfLenBits() &&
                f.hop == setup.frameStep() && f.pos == 0 && f.first == 1);
    ASSERT_EQ(f.window, form.window) << rate << " " << len << " " << setup.hop;
    ASSERT_TRUE(f.alphaD == form.alphaD && f.alphaP == form.alphaP && f.alphaS == form.alphaS);
    ASSERT_EQ(f.delta, std::is_integral_v<typename TypeParam::T> ? 163840 : 5);
  }
}

// Any integers, negative ones too, and steps at which the series of the coefficients fails: every product and
// cut is as defined.
TEST(McraFixed, WrapsAsDefined) {
  Random random(46);
  for (const Steps setup : {Steps{8000, 64, 32}, {16000, 512, 128}, {8000, 1024, 512}, {8000, 8192, 4096}}) {
    Tracker<Fixed> tracker(setup, 3);
    tracker.start(setup);
    Reference<Fixed> reference(setup);
    for (int n = 0; n < 60; ++n) {
      auto power = anyIntegers<std::int32_t>(random, setup.bins());
      if (n % 2) power[static_cast<std::size_t>(n) % 7] = std::numeric_limits<std::int32_t>::max();
      ASSERT_EQ(tracker.update(power, 0), reference.update(power)) << setup.hop << " frame " << n;
    }
    ASSERT_EQ(tracker.arrays(), reference.arrays()) << setup.hop;
  }
}

TYPED_TEST(Mcra, ChecksItsArgumentsInTheirOrder) {
  using F = TypeParam;
  std::int32_t bytes = 5;
  EXPECT_EQ(F::size(0, nullptr), orvStsNullPtrErr);
  for (const int len : {7, 8193, -8}) EXPECT_EQ(F::size(len, &bytes), orvStsSizeErr);
  EXPECT_EQ(bytes, 5);
  Guarded<std::uint8_t> memory(168);
  const auto state = reinterpret_cast<McraState *>(memory.data());
  EXPECT_EQ(F::init(0, 0, nullptr), orvStsNullPtrErr);
  EXPECT_EQ(F::altInit(0, 0, 0, nullptr), orvStsNullPtrErr);
  for (const int rate : {7999, 48001}) {
    EXPECT_EQ(F::init(rate, 7, state), orvStsRangeErr);
    EXPECT_EQ(F::altInit(rate, 8, 4, state), orvStsRangeErr);
  }
  for (const int len : {7, 8193}) {
    EXPECT_EQ(F::init(8000, len, state), orvStsSizeErr);
    EXPECT_EQ(F::altInit(8000, len, 3, state), orvStsSizeErr);
    EXPECT_EQ(F::altInit(8000, len, len / 2 + 1, state), orvStsRangeErr);
  }
  for (const int hop : {0, 5}) EXPECT_EQ(F::altInit(8000, 8, hop, state), orvStsRangeErr);
  EXPECT_TRUE(memory.untouched());
  expectOrder({orvStsNullPtrErr}, 3, 1,
              [](const Pointers &p, int, int, int) { return F::update(p[0], p[1], p[2]); });
}

}  // namespace
