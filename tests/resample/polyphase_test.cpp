#include <cmath>
#include <numeric>

#include "resample/converters.h"
#include "support/allocation.h"

namespace orv::test {
namespace {

constexpr double kPi = std::numbers::pi;

// The prototype at t input samples, by its formula; without the gain that makes the taps of a phase add up
// to 1.
double prototype(double t, double cutOff, const Settings &s) {
  const double beta = s.attenuation > 50 ? 0.1102 * (s.attenuation - 8.7)
                      : s.attenuation > 21
                          ? 0.5842 * std::pow(s.attenuation - 21, 0.4) + 0.07886 * (s.attenuation - 21)
                          : 0;
  const double u = cutOff * t / s.halfLen, x = kPi * s.rollOff * cutOff * t;
  if (std::fabs(u) >= 1) return 0;
  return (x == 0 ? 1 : std::sin(x) / x) * std::cyl_bessel_i(0.0, beta * std::sqrt(1 - u * u));
}

std::vector<double> row(double position, std::int32_t taps, double cutOff, const Settings &s) {
  std::vector<double> h(static_cast<std::size_t>(taps));
  for (std::size_t k = 0; k < h.size(); ++k)
    h[k] = prototype(position + taps / 2 - 1 - static_cast<double>(k), cutOff, s);
  const double sum = std::accumulate(h.begin(), h.end(), 0.0);
  for (double &tap : h) tap /= sum;
  return h;
}

// Sum over k of h[k] x[n + 1 - taps / 2 + k], the signal being 0 outside, and a bound of what single
// precision adds.
template <class T>
std::pair<double, double> filtered(const std::vector<double> &h, const std::vector<T> &x, std::int64_t n) {
  double sum = 0, terms = 0;
  for (std::size_t k = 0; k < h.size(); ++k) {
    const std::int64_t i = n + 1 - static_cast<std::int64_t>(h.size() / 2) + static_cast<std::int64_t>(k);
    if (i < 0 || i >= static_cast<std::int64_t>(x.size())) continue;
    sum += h[k] * x[static_cast<std::size_t>(i)];
    terms += std::fabs(h[k] * x[static_cast<std::size_t>(i)]);
  }
  return {sum, terms * (static_cast<double>(h.size()) / 8 + 8) * 0x1p-24};
}

const Settings kSettings[] = {{112, 0.9615, 132}, {1, 1.0, 20}, {3, 0, 21.5}, {7, 0.8, 60}, {2, 1.0, 200}};

TEST(Resample, FixedFormIsTheDesignedFilterAtExactPositions) {
  Random random(1);
  const auto signal = uniform<float>(random, 3001, -1, 1);
  for (const Settings &settings : kSettings)
    for (const auto &rates :
         {std::pair{3, 5}, {5, 3}, {160, 147}, {147, 160}, {1, 4}, {8, 2}, {44100, 8000}, {12345, 12344}}) {
      const Fixed<float> form{rates.first, rates.second};
      const auto state = allocated(form, settings);
      std::int32_t phases = 0, taps = 0;
      ASSERT_EQ(orvsResamplePolyphaseFixedGetFilter_32f(state.get(), nullptr, 0, &phases, &taps),
                orvStsNoErr);
      const std::int32_t common = std::gcd(form.srcRate, form.dstRate), down = form.srcRate / common;
      ASSERT_EQ(phases, form.dstRate / common);
      Guarded<float> filter(static_cast<std::size_t>(phases) * static_cast<std::size_t>(taps));
      ASSERT_EQ(
          orvsResamplePolyphaseFixedGetFilter_32f(state.get(), filter.data(), filter.len(), &phases, &taps),
          orvStsNoErr);

      const auto out = converted(form, settings, signal);
      ASSERT_EQ(out.size(), static_cast<std::size_t>(form.outputs(3001)));
      const double cutOff = std::min(1.0, form.ratio());
      std::vector<std::vector<double>> rows(static_cast<std::size_t>(phases));
      const std::size_t stride = phases > 400 ? 41 : 1;
      for (std::size_t m = 0; m < out.size(); m += stride) {
        const auto position = static_cast<std::int64_t>(m) * down;
        const auto phase = static_cast<std::size_t>(position % phases);
        std::vector<double> &h = rows[phase];
        const bool first = h.empty();
        if (first) h = row(static_cast<double>(phase) / phases, taps, cutOff, settings);
        for (std::size_t k = 0; first && k < h.size(); ++k)
          ASSERT_NEAR(filter.at(phase * h.size() + k), h[k], 0x1p-24 * std::fabs(h[k]) + 1e-14)
              << phase << ' ' << k;
        const auto [expected, bound] = filtered(h, signal, position / phases);
        ASSERT_NEAR(out[m], expected, bound) << form.srcRate << " to " << form.dstRate << ", output " << m;
      }
    }
}

// Straight lines between rows of the design: as far from the filter itself as the attenuation asked for
// allows.
TEST(Resample, FreeFormIsTheFilterAtAnyPosition) {
  Random random(2);
  const auto signal = uniform<float>(random, 2000, -1, 1);
  for (const double ratio : {0.9173, 1.0 / 3, 0.0101, 1 + 1e-9, std::numbers::sqrt2, 3.0, 200.3}) {
    const Free<float> form{ratio};
    const Settings settings;
    const auto out = converted(form, settings, signal);
    const double cutOff = std::min(1.0, ratio);
    const auto taps = 2 * ((static_cast<std::int32_t>(std::ceil(settings.halfLen / cutOff)) + 3) / 4 * 4);
    for (std::size_t m = 0; m < out.size(); m += 1 + out.size() / 200) {
      const long double t = static_cast<long double>(m) / static_cast<long double>(ratio);
      const auto n = static_cast<std::int64_t>(t);
      const auto expected = filtered(
          row(static_cast<double>(t - static_cast<long double>(n)), taps, cutOff, settings), signal, n);
      ASSERT_NEAR(out[m], expected.first, 1.6e-5) << ratio << ", output " << m;
    }
  }
}

TEST(Resample, FreeFormFollowsARatioThatDrifts) {
  const Free<float> start{0.97, 0.9};
  const auto state = allocated(start, {});
  long double t = 0;
  std::int64_t m = 0;
  std::vector<float> in(100), out(120);
  for (int call = 0; call < 1000; ++call) {
    Free<float> form = start;
    form.callRatio = call % 7 == 3 ? 1.0 : 0.97 + 0.06 * std::sin(call * 0.01);
    for (std::size_t i = 0; i < in.size(); ++i)
      in[i] = static_cast<float>(std::sin(0.3 * (call * 100.0 + static_cast<double>(i))));
    std::int32_t consumed = 0, produced = 0;
    ASSERT_EQ(
        form.convert(state.get(), in.data(), 100, &consumed, out.data(), 120, &produced, orvResampleMore),
        orvStsNoErr);
    ASSERT_EQ(consumed, 100);
    for (std::int32_t i = 0; i < produced; ++i, ++m, t += 1 / static_cast<long double>(form.callRatio)) {
      if (t < 80) continue;  // the filter's window reaches ahead of the signal
      ASSERT_NEAR(out[static_cast<std::size_t>(i)], std::sin(0.3 * static_cast<double>(t)), 2e-5)
          << call << ' ' << i;
    }
  }
  EXPECT_GT(m, 96000);
}

template <class Form>
class Resample : public ::testing::Test {
 protected:
  using T = typename Form::Type;
  static std::vector<Form> forms() {
    if constexpr (std::is_same_v<Form, Fixed<T>>)
      return {{44100, 48000}, {3, 1},   {1, 2},       {44100, 8000}, {8000, 44100},
              {256, 1},       {1, 256}, {1001, 1000}, {7, 7}};
    else
      return {{0.9173}, {1.0}, {1.0, 0.5}, {1.0 / 256}, {256.0}, {0.1}, {2.0 / 3}, {1.0000001}, {7.3}};
  }
};
using Forms = ::testing::Types<Fixed<float>, Fixed<std::int16_t>, Free<float>, Free<std::int16_t>>;
TYPED_TEST_SUITE(Resample, Forms);

// Filters that are summed, and longer ones that are carried out by transforms.
const Settings kShort{5, 0.9, 60}, kLong{60, 0.95, 125};

TYPED_TEST(Resample, CuttingChangesNoBit) {
  using T = typename TypeParam::Type;
  Random random(3);
  const auto expectNoChange = [&](const TypeParam &form, const Settings &settings) {
    const auto signal = uniform<T>(random, 3000, -30000, 30000);
    const auto whole = converted(form, settings, signal);
    EXPECT_EQ(whole.size(), static_cast<std::size_t>(form.outputs(3000)));
    const auto state = allocated(form, settings);
    for (const std::size_t most : {4U, 80U, 1500U}) {
      const auto draw = [&] { return random() % (most + 1); };
      const auto rooms = [&] {
        return random() %
               (1 + static_cast<std::size_t>(static_cast<double>(most) * std::max(1.0, form.ratio())));
      };
      Allocations allocations;
      ASSERT_EQ(form.init(state.get(), settings), orvStsNoErr);  // a restart
      const auto cut = convertInCalls(form, state.get(), signal, draw, rooms);
      EXPECT_EQ(allocations.calls(), 0);
      ASSERT_EQ(cut.size(), whole.size()) << form.ratio();
      for (std::size_t i = 0; i < cut.size(); ++i)
        ASSERT_TRUE(sameBits(cut[i], whole[i])) << form.ratio() << ' ' << i;
    }
  };
  for (const TypeParam &form : this->forms())
    for (const Settings &settings : {kShort, kLong}) expectNoChange(form, settings);
}

TYPED_TEST(Resample, GivesTheInputsTimesTheRatioRoundedUp) {
  using T = typename TypeParam::Type;
  for (const TypeParam &form : this->forms())
    for (const Settings &settings : {kShort, kLong}) {
      const auto state = allocated(form, settings);
      for (const std::size_t inputs : {0U, 1U, 2U, 3U, 10U, 11U, 147U, 441U, 10000U}) {
        ASSERT_EQ(form.init(state.get(), settings), orvStsNoErr);
        const auto expected = static_cast<std::size_t>(form.outputs(static_cast<std::int64_t>(inputs)));
        const auto out = convertInCalls(
            form, state.get(), std::vector<T>(inputs), [=] { return inputs; }, [=] { return expected + 5; });
        EXPECT_EQ(out.size(), expected) << inputs << " times " << form.ratio();
      }
    }
}

TYPED_TEST(Resample, RatioOnePassesSamplesUnchanged) {
  using T = typename TypeParam::Type;
  Random random(4);
  auto signal = uniform<T>(random, 3000, -30000, 30000);
  if constexpr (std::is_same_v<T, float>) {
    signal[7] = -0.0F;
    signal[8] = 1e-42F;
    signal[9] = INFINITY;
  }
  std::vector<TypeParam> forms;
  if constexpr (std::is_same_v<TypeParam, Free<T>>)
    forms = {{1.0, 0.7}, {1.0, 0.2}};
  else
    forms = {{16000, 16000}};
  for (const TypeParam &form : forms)
    for (const Settings &settings : {kShort, kLong}) {
      const auto out = converted(form, settings, signal);
      ASSERT_EQ(out.size(), signal.size());
      for (std::size_t i = 0; i < out.size(); ++i) ASSERT_TRUE(sameBits(out[i], signal[i])) << i;
    }
}

// The buffer holds exactly what was asked for, at any address, and is told from one of another kind.
TYPED_TEST(Resample, LivesInTheCallersMemory) {
  using T = typename TypeParam::Type;
  Random random(5);
  const auto signal = uniform<T>(random, 2500, -30000, 30000);
  for (const TypeParam &form : this->forms())
    for (std::size_t offset = 0; offset < 64; offset += 13) {
      const Settings &settings = offset % 2 == 0 ? kLong : kShort;
      std::int32_t size = 0;
      ASSERT_EQ(form.getSize(settings, &size), orvStsNoErr);
      Guarded<std::uint8_t> memory(static_cast<std::size_t>(size), offset);
      auto *state = reinterpret_cast<typename TypeParam::State *>(memory.data());
      std::int32_t consumed = 77, produced = 78;
      T sample = 1;
      EXPECT_EQ(form.convert(state, &sample, 1, &consumed, &sample, 1, &produced, 0), orvStsContextMatchErr);
      EXPECT_TRUE(memory.untouched() && sample == 1 && consumed == 77 && produced == 78);
      ASSERT_EQ(form.init(state, settings), orvStsNoErr);
      const auto out = convertInCalls(
          form, state, signal, [&] { return signal.size(); }, [] { return std::size_t{900}; });
      EXPECT_EQ(out, converted(form, settings, signal));
    }
}

// Every combination of faults gives the status of the first in the order, and writes nothing.
TYPED_TEST(Resample, ChecksInOrder) {
  using T = typename TypeParam::Type;
  constexpr bool fixed = std::is_same_v<TypeParam, Fixed<T>>;
  Guarded<std::uint8_t> memory(100);
  auto *place = reinterpret_cast<typename TypeParam::State *>(memory.data());
  TypeParam good = this->forms()[0];
  std::vector<TypeParam> bad;
  if constexpr (fixed)
    bad = {{0, 1}, {1, 0}, {-5, -5}, {257, 1}, {1, 257}, {INT32_MAX, 8388607}};
  else
    bad = {{NAN}, {0.00390624}, {256.0001}, {-1.0}, {INFINITY}};
  for (const bool badRatio : {false, true})
    for (const std::int32_t halfLen : {64, 0, -1, 513, INT32_MIN})
      for (const double rollOff : {0.9, -1e-9, 1.0000001, static_cast<double>(NAN)})
        for (const double attenuation : {100.0, 19.99, 200.01, static_cast<double>(NAN)})
          for (const TypeParam &form : badRatio ? bad : std::vector{good}) {
            const Settings settings{halfLen, rollOff, attenuation};
            const OrvStatus expected = halfLen != 64                                      ? orvStsSizeErr
                                       : badRatio || rollOff != 0.9 || attenuation != 100 ? orvStsBadArgErr
                                                                                          : orvStsNoErr;
            EXPECT_EQ(form.getSize(settings, nullptr), orvStsNullPtrErr);
            EXPECT_EQ(form.init(nullptr, settings), orvStsNullPtrErr);
            EXPECT_EQ(form.initAlloc(nullptr, settings), orvStsNullPtrErr);
            if (expected == orvStsNoErr) continue;
            std::int32_t size = 77;
            typename TypeParam::State *state = place;
            EXPECT_EQ(form.getSize(settings, &size), expected);
            EXPECT_EQ(form.init(place, settings), expected);
            EXPECT_EQ(form.initAlloc(&state, settings), expected);
            EXPECT_TRUE(size == 77 && state == place && memory.untouched());
          }
  EXPECT_EQ(TypeParam::release(nullptr), orvStsNullPtrErr);
  Guarded<std::uint8_t> none(300);
  EXPECT_EQ(TypeParam::release(reinterpret_cast<typename TypeParam::State *>(none.data())),
            orvStsContextMatchErr);

  const auto state = allocated(good, {});
  std::int32_t counts[2] = {77, 78};
  std::vector<T> samples(10, T{5});
  const auto call = [&](int hole, const T *src, std::int32_t srcLen, T *dst, std::int32_t dstLen,
                        std::int32_t flags, const TypeParam &form) {
    return form.convert(hole == 0 ? nullptr : state.get(), src, srcLen, hole == 1 ? nullptr : counts, dst,
                        dstLen, hole == 2 ? nullptr : counts + 1, flags);
  };
  T *s = samples.data();
  for (const int hole : {0, 1, 2}) EXPECT_EQ(call(hole, s, -1, s + 5, 5, 9, good), orvStsNullPtrErr);
  EXPECT_EQ(call(3, nullptr, -1, s + 5, 5, 9, good), orvStsNullPtrErr);
  EXPECT_EQ(call(3, s, -1, nullptr, 5, 9, good), orvStsNullPtrErr);
  EXPECT_EQ(call(3, s, -1, s + 5, 5, 9, good), orvStsSizeErr);
  EXPECT_EQ(call(3, s, 5, s + 5, INT32_MIN, 9, good), orvStsSizeErr);
  EXPECT_EQ(call(3, s, 5, s + 5, 5, 2, good), orvStsBadArgErr);
  if constexpr (!fixed) {
    bad.push_back({0.9172, 0.9173});  // below the least
    for (const TypeParam &form : bad) {
      EXPECT_EQ(call(3, s, 5, s + 5, 5, 0, form), orvStsBadArgErr);
    }
  }
  EXPECT_TRUE(counts[0] == 77 && counts[1] == 78 && samples == std::vector<T>(10, T{5}));

  EXPECT_EQ(call(3, s, 5, nullptr, 0, orvResampleEnd, good), orvStsNoErr);
  EXPECT_EQ(counts[0] + counts[1], 0);  // no room: nothing taken, so the end is still to come
  EXPECT_EQ(call(3, s, 1, s + 5, 5, orvResampleEnd, good), orvStsNoErr);
  EXPECT_EQ(counts[0], 1);
  EXPECT_EQ(call(3, s, 1, s + 5, 5, orvResampleMore, good), orvStsBadArgErr);  // behind the end
  EXPECT_EQ(call(3, nullptr, 0, s + 5, 5, orvResampleMore, good), orvStsNoErr);
}

TYPED_TEST(Resample, ReportsMemoryThatCannotBeHad) {
  const TypeParam good = this->forms()[0];
  EXPECT_EQ(failEachAllocation([&](int n) {
              typename TypeParam::State *state = nullptr;
              const OrvStatus status = good.initAlloc(&state, {4, 0.9, 40});
              EXPECT_EQ(status, n == 0 ? orvStsMemAllocErr : orvStsNoErr);
              EXPECT_EQ(state == nullptr, n == 0);
              if (state != nullptr) TypeParam::release(state);
            }),
            1);
}

// Coprime rates of more phases than 32-bit sizes hold.
TEST(Resample, RefusesMorePhasesThanMemoryCanName) {
  for (const auto &rates :
       {std::pair{INT32_MAX, INT32_MAX - 1}, {INT32_MAX - 1, INT32_MAX}, {4999999, 5000001}}) {
    const Fixed<float> form{rates.first, rates.second};
    Guarded<std::uint8_t> memory(100);
    std::int32_t size = 77;
    auto *state = reinterpret_cast<OrvsResampleFixedState_32f *>(memory.data()), *kept = state;
    EXPECT_EQ(form.getSize({}, &size), orvStsSizeErr);
    EXPECT_EQ(form.init(state, {}), orvStsSizeErr);
    EXPECT_EQ(form.initAlloc(&state, {}), orvStsMemAllocErr);
    EXPECT_TRUE(size == 77 && state == kept && memory.untouched());
  }
  std::int32_t size = 0;
  EXPECT_EQ(Fixed<float>({INT32_MAX - 1, (INT32_MAX - 1) / 2}).getSize({10, 0.9, 80}, &size), orvStsNoErr);
  EXPECT_EQ(size, 255 + 4 * (40 + 40 + 1024));
  EXPECT_EQ(Free<std::int16_t>({1.0 / 256}).getSize({512, 1.0, 200}, &size), orvStsNoErr);
}

TEST(Resample, CopiesItsFilterOnlyWhereItFits) {
  const auto state = allocated(Fixed<std::int16_t>{2, 3}, {64, 0.945, 106});
  Guarded<float> filter(384);
  std::int32_t phases = 77, taps = 78;
  const auto get = [&](const void *s, float *to, std::int32_t len, std::int32_t *p, std::int32_t *t) {
    return orvsResamplePolyphaseFixedGetFilter_16s(static_cast<const OrvsResampleFixedState_16s *>(s), to,
                                                   len, p, t);
  };
  const auto *s = state.get();
  EXPECT_EQ(get(nullptr, filter.data(), 384, &phases, &taps), orvStsNullPtrErr);
  EXPECT_EQ(get(s, nullptr, -1, &phases, &taps), orvStsNullPtrErr);
  EXPECT_EQ(get(s, filter.data(), 384, nullptr, &taps), orvStsNullPtrErr);
  EXPECT_EQ(get(s, filter.data(), 384, &phases, nullptr), orvStsNullPtrErr);
  EXPECT_EQ(get(filter.data(), filter.data(), 1, &phases, &taps), orvStsContextMatchErr);
  for (const std::int32_t len : {-1, 1, 383})
    EXPECT_EQ(get(s, filter.data(), len, &phases, &taps), orvStsSizeErr);
  EXPECT_TRUE(filter.untouched() && phases == 77 && taps == 78);
  EXPECT_EQ(get(s, filter.data(), 384, &phases, &taps), orvStsNoErr);
  EXPECT_TRUE(!filter.untouched() && phases == 3 && taps == 128);
}

// What single precision gives, rounded to nearest even, and held at the ends.
TEST(Resample, IntegerOutputsAreRoundedSingleOnes) {
  Random random(6);
  auto integers = anyIntegers<std::int16_t>(random, 4000);
  std::fill_n(integers.begin() + 1000, 1000, INT16_MAX);  // overshoots where it begins and ends
  std::fill_n(integers.begin() + 2000, 1000, INT16_MIN);
  const std::vector<float> singles(integers.begin(), integers.end());
  const auto expectRounded = [](const std::vector<std::int16_t> &out, const std::vector<float> &exact) {
    ASSERT_EQ(out.size(), exact.size());
    bool above = false, below = false;
    for (std::size_t i = 0; i < out.size(); ++i) {
      ASSERT_EQ(out[i], std::clamp(std::nearbyint(exact[i]), -32768.0F, 32767.0F)) << i;
      above = above || exact[i] > 32768;
      below = below || exact[i] < -32769;
    }
    EXPECT_TRUE(above && below);
  };
  expectRounded(converted(Fixed<std::int16_t>{2, 3}, {}, integers),
                converted(Fixed<float>{2, 3}, {}, singles));
  expectRounded(converted(Free<std::int16_t>{0.9173}, {}, integers),
                converted(Free<float>{0.9173}, {}, singles));
}

}  // namespace
}  // namespace orv::test
