#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <string>

#include "orvsr/robust.h"
#include "support/arrays.h"
#include "support/matrix.h"

using namespace orv::test;

namespace {

template <class Sample>
class Detector {
 public:
  explicit Detector(std::size_t offset = 0) : state_(64, offset) {
    EXPECT_EQ(fixed ? orvsVADInit_Aurora_16s(state()) : orvsVADInit_Aurora_32f(state()), orvStsNoErr);
  }
  int frame(const std::vector<Sample> &bands, const std::vector<Sample> &spectrum, int activity) {
    const Guarded<Sample> b(bands, sizeof(Sample) * (count_++ % 5)), s(spectrum, sizeof(Sample));
    Guarded<std::int32_t> result(1);
    if constexpr (fixed) {
      EXPECT_EQ(orvsVADDecision_Aurora_16s(b.data(), s.data(), activity, result.data(), state()),
                orvStsNoErr);
    } else {
      EXPECT_EQ(orvsVADDecision_Aurora_32f(b.data(), s.data(), activity, result.data(), state()),
                orvStsNoErr);
    }
    return result.at(0);
  }
  int flush() {
    std::int32_t result = 0;
    const auto f = fixed ? orvsVADFlush_Aurora_16s : orvsVADFlush_Aurora_32f;
    EXPECT_EQ(f(&result, state()), orvStsNoErr);
    return result;
  }
  // What the object holds from byte 8 on: mean energy, the levels of band, energy and variance, the last
  // band.
  template <class Level>
  std::array<Level, 5> levels() const {
    std::array<Level, 5> all;
    std::memcpy(all.data(), state_.data() + 8, sizeof all);
    return all;
  }
  // Frames that no tracker votes for; an x is forced to be active. Gives the results in turn.
  std::string frames(const std::string &votes) {
    std::string results;
    for (const char vote : votes)
      results +=
          std::to_string(frame(std::vector<Sample>(25, 10), std::vector<Sample>(64, 5), vote == 'x' ? 5 : 4));
    return results;
  }
  std::string flushes(int n) {
    std::string results;
    while (n-- > 0) results += std::to_string(flush());
    return results;
  }

 private:
  static constexpr bool fixed = std::is_same_v<Sample, std::int16_t>;
  VADState_Aurora *state() { return reinterpret_cast<VADState_Aurora *>(state_.data()); }
  Guarded<std::uint8_t> state_;
  std::size_t count_ = 0;
};

std::string times(int n, const std::string &s) {
  std::string all;
  while (n-- > 0) all += s;
  return all;
}

template <class Sample>
class Vad : public ::testing::Test {};
using Samples = ::testing::Types<float, std::int16_t>;
TYPED_TEST_SUITE(Vad, Samples);

TYPED_TEST(Vad, WalksItsHangovers) {
  using D = Detector<TypeParam>;
  const std::string none(10, '.'), first(10, '4');
  // The first ten frames leave no vote behind. A run of 3 counts while it is in the window, and four frames.
  EXPECT_EQ(D().frames("xxxxxxxxxx.."), first + "22");
  EXPECT_EQ(D().frames(none + "xxx............"), first + "22" + times(9, "1") + "2222");
  EXPECT_EQ(D().frames(none + "xx.xx.xx...."), first + times(12, "2"));
  // A run of 4 within 35 frames: the reload is 23 once, and 40 from the next frame that still sees it.
  EXPECT_EQ(D().frames(none + "......xxxx" + std::string(46, '.')),
            first + times(8, "2") + times(45, "1") + "222");
  EXPECT_EQ(D().frames(none + std::string(21, '.') + "xxxx" + std::string(45, '.')),
            first + times(23, "2") + times(45, "1") + "22");
  // One frame later it stays 23 for good.
  EXPECT_EQ(
      D().frames(none + std::string(22, '.') + "xxxx" + std::string(29, '.') + "xxxx" + std::string(27, '.')),
      first + times(24, "2") + times(28, "1") + times(5, "2") + times(28, "1") + "2");
}

TYPED_TEST(Vad, FlushesTheWindowAsARing) {
  const std::string none(10, '.');
  const auto flushed = [](const std::string &votes, int n) {
    Detector<TypeParam> detector(votes.size() % 4);
    detector.frames(votes);
    return detector.flushes(n);
  };
  EXPECT_EQ(flushed(none + ".......", 21), times(3, "2222224"));  // with counters below 0
  EXPECT_EQ(flushed(none + ".......xxx", 7), "1111114");
  EXPECT_EQ(flushed(none + ".......xxx....xx", 7), "1111114");  // the oldest vote comes behind the newest
  EXPECT_EQ(flushed(none + "xxx.......", 7), "1222224");        // the short counter stood at 2,
  EXPECT_EQ(flushed(none + "......xxxx" + std::string(41, '.'), 7), "1122224");  // the long one at 3
  // No decision before ten frames are counted, flushes included.
  EXPECT_EQ(flushed("...", 15), "444444422222242");
  EXPECT_EQ(flushed(".........", 8), "42222242");
}

// Both forms, written plainly.
template <class Sample>
struct Reference {
  static constexpr bool fixed = std::is_same_v<Sample, std::int16_t>;
  using Track = std::conditional_t<fixed, std::int32_t, float>;
  using Value = std::conditional_t<fixed, std::int64_t, float>;
  // Of the 32f form, and of the 16s form with their shifts, one by one.
  struct Weights {
    float single[8];
    std::int64_t factors[8];
    int shifts[8];
  };

  Track meanEnergy = 0, bandTrack = 0, energyTrack = 0, varianceTrack = 0, prevBand = 0;
  std::array<Track, 5> levels() const {
    return {meanEnergy, bandTrack, energyTrack, varianceTrack, prevBand};
  }
  bool frozen = false;
  int count = 0, flushStart = -1, reload = 23, longHang = 0, shortHang = 0;
  std::size_t pos = 0;
  std::vector<int> history = std::vector<int>(7);

  // Weight i of a level, whose product wraps, or of a measure.
  static Value of(Track t, const Weights &w, int i) {
    if constexpr (fixed) return static_cast<std::int32_t>(w.factors[i] * t) >> w.shifts[i];
    if constexpr (!fixed) return w.single[i] * t;
  }
  static Value take(Value v, const Weights &w, int i) {
    if constexpr (fixed) return (w.factors[i] * v) >> w.shifts[i];
    if constexpr (!fixed) return w.single[i] * v;
  }
  static bool vote(Track &t, Value v, const Weights &w, bool belowOnly = false) {
    if (of(t, w, 0) > v && v > of(t, w, 1)) t = static_cast<Track>(of(t, w, 2) + take(v, w, 3));
    const Value gate = of(t, w, 4);
    if (belowOnly ? v < gate : v <= gate) t = static_cast<Track>(of(t, w, 5) + take(v, w, 6));
    return v > of(t, w, 7);
  }
  int longestRun() const {
    int longest = 0;
    for (std::size_t from = 1; from <= 7; ++from) {
      std::size_t to = from;
      while (to <= 7 && history[(pos + to) % 7] == 1) ++to;
      longest = std::max(longest, static_cast<int>(to - from));
    }
    return longest;
  }

  int frame(const std::vector<Sample> &bands, const std::vector<Sample> &spectrum, int activity) {
    ++count;
    std::int64_t s = 0, q = 0, e = 0;  // whole numbers, exact in single
    for (const Sample v : spectrum) s += static_cast<int>(v), q += static_cast<int>(v) * static_cast<int>(v);
    for (const Sample v : bands) e += static_cast<int>(v);
    const int b = static_cast<int>(bands[1]) + static_cast<int>(bands[2]) + static_cast<int>(bands[3]);
    Value v, x, smooth;
    Track m;
    if constexpr (fixed) {
      v = 64 * q - s * s;
      x = e * e - 3;
      m = 341 * b;
      smooth = ((24 * m) >> 5) + ((8 * prevBand) >> 5);
    } else {
      const auto sum = static_cast<float>(s), total = static_cast<float>(e);
      v = static_cast<float>(q) * 0.015625F - sum * sum * 0.00024414063F;
      x = total * total - 3;
      m = static_cast<float>(b) / 3;
      smooth = 0.75F * m + 0.25F * prevBand;
    }
    prevBand = m;
    if (count < 15 && v > varianceTrack) varianceTrack = static_cast<Track>(v);
    bool active = vote(varianceTrack, v,
                       {{1.5F, 0.85F, 0.8F, 0.2F, 0.25F, 0.97F, 0.03F, 1.65F},
                        {48, 27, 26, 6, 8, 31, 1, 53},
                        {5, 5, 5, 5, 5, 5, 0, 5}},
                       true);
    if (count == 1) energyTrack = static_cast<Track>(x);
    if (count < 15) {
      if constexpr (fixed) {
        meanEnergy = static_cast<std::int32_t>(
            ((static_cast<std::int32_t>(std::int64_t{count - 1} * meanEnergy) + x) * 141 / count) >> 7);
        if (meanEnergy == 0 ? x > 0 : x * 128 / meanEnergy > 320) frozen = true;
      } else {
        meanEnergy = (static_cast<float>(count - 1) * meanEnergy + x) * 1.1F / static_cast<float>(count);
        if (x / meanEnergy > 2.5F) frozen = true;
      }
      if (!frozen && x > energyTrack) energyTrack = static_cast<Track>(x);
    }
    active |= vote(energyTrack, x,
                   {{1.5F, 0.75F, 0.8F, 0.2F, 0.5F, 0.97F, 0.03F, 1.65F},
                    {192, 96, 102, 26, 64, 124, 4, 211},
                    {7, 7, 7, 7, 7, 7, 7, 7}});
    if (count < 15 && smooth > bandTrack) bandTrack = static_cast<Track>(smooth);
    active |= vote(bandTrack, smooth,
                   {{1.5F, 0.75F, 0.8F, 0.2F, 0.5F, 0.97F, 0.03F, 3.25F},
                    {48, 24, 102, 26, 16, 124, 4, 416},
                    {5, 5, 7, 7, 5, 7, 7, 7}});
    if (count < 11) return 4;
    pos = (pos + 1) % 7;
    history[pos] = active || activity >= 5;
    const int run = longestRun();
    if (run >= 4) {
      longHang = reload;
      if (count < 36) reload = 40;
    } else if (run < 3 && longHang != 0) {
      --longHang;
    }
    if (run >= 3) shortHang = 5;
    if (run < 3 && shortHang != 0) --shortHang;
    return shortHang == 0 && longHang == 0 && run < 3 ? 2 : 1;
  }
  int flush() {
    ++count;
    if (flushStart < 0) flushStart = static_cast<int>(pos);
    pos = (pos + 1) % 7;
    if (static_cast<int>(pos) == flushStart || count <= 10) return 4;
    const int run = longestRun();
    longHang = (run >= 4 ? reload : longHang) - 1;
    if (run >= 4 && count < 36) reload = 40;
    shortHang = run >= 3 ? 4 : shortHang - 1;
    return shortHang <= 0 && longHang <= 0 && run < 3 ? 2 : 1;
  }
};

// Short utterances whose level jumps, rises and falls, from one count to the ends of the range; in most of
// them one measure moves alone. Flushes come at the end, and now and then before.
TYPED_TEST(Vad, DecidesWholeUtterancesAsDefined) {
  constexpr bool fixed = Reference<TypeParam>::fixed;
  Random random(43);
  const auto between = [&](double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(random);
  };
  int seen[5] = {};
  for (int utterance = 0; utterance < 4000; ++utterance) {
    Detector<TypeParam> detector(static_cast<std::size_t>(utterance % 8));
    Reference<TypeParam> reference;
    enum { everything, energyOnly, bandOnly, spectrumOnly };
    const int moves = utterance % 4, base = utterance % 5 < 2 ? 0 : 3;
    const double most = fixed && utterance % 3 == 0 ? 32767 : 300;
    const bool loudStart = fixed && utterance % 12 == 9;  // where the running mean of the energy wraps
    double level = loudStart ? between(5000, 12000) : std::pow(most, between(0, 1)), rate = 1;
    const int frames = 12 + static_cast<int>(random() % 50);
    for (int n = 0; n < frames; ++n) {
      if (random() % 6 == 0) {
        level *= random() % 2 ? between(0.2, 1) : between(1, 3.5);
        rate = random() % 2 ? 1 : between(0.85, 1.2);
      }
      if (loudStart && n == 15) level = between(20, 1000);
      level = std::clamp(level * rate, random() % 30 ? 0.6 : 0.0, most);
      const auto now = static_cast<int>(level * between(0.97, 1.03));
      const int at = std::min(static_cast<int>(most), now);
      std::vector<TypeParam> bands(25, static_cast<TypeParam>(base)), spectrum(64, TypeParam{2});
      const auto put = [&](std::size_t i, int v) { bands[i] = static_cast<TypeParam>(v); };
      if (moves == everything) {
        for (std::size_t i = 0; i < 25; ++i) put(i, at);
      } else if (moves == energyOnly) {
        for (const std::size_t i : {0U, 7U, 24U}) put(i, at);
      } else if (moves == bandOnly) {
        const int third = at / 3;  // the sum stays
        for (const std::size_t i : {1U, 2U, 3U}) put(i, i == 2 ? at - third : at);
        for (const std::size_t i : {4U, 5U, 6U}) put(i, base - static_cast<int>(bands[i - 3]));
      }
      if (moves == everything || moves == spectrumOnly)
        for (std::size_t i = 0; i < 64; ++i) spectrum[i] = static_cast<TypeParam>(i % 3 == 0 ? -at : at / 2);
      if (random() % 100 == 0) {
        ASSERT_EQ(detector.flush(), reference.flush()) << utterance << " " << n;
      }
      const int activity = random() % 100 == 0 ? 5 : static_cast<int>(random() % 5);
      const int result = detector.frame(bands, spectrum, activity);
      ASSERT_EQ(result, reference.frame(bands, spectrum, activity)) << utterance << " " << n;
      ASSERT_EQ(detector.template levels<typename Reference<TypeParam>::Track>(), reference.levels())
          << utterance << " " << n;
      ++seen[result];
    }
    for (int n = 0; n < 9; ++n) {
      ASSERT_EQ(detector.flush(), reference.flush()) << utterance << " " << n;
    }
  }
  EXPECT_TRUE(seen[1] > 15000 && seen[2] > 15000) << seen[1] << " " << seen[2];
}

TYPED_TEST(Vad, CountsPureSilenceAsActive) {
  // The energy measure is -3, and so is its level, which times 1.65 lies below.
  Detector<TypeParam> detector;
  std::string results;
  for (int n = 0; n < 20; ++n)
    results += std::to_string(detector.frame(std::vector<TypeParam>(25), std::vector<TypeParam>(64), 0));
  EXPECT_EQ(results, times(10, "4") + "22" + times(8, "1"));
}

TYPED_TEST(Vad, TestsItsPointers) {
  constexpr bool fixed = Reference<TypeParam>::fixed;
  std::int32_t size = 0;
  EXPECT_EQ((fixed ? orvsVADGetBufSize_Aurora_16s : orvsVADGetBufSize_Aurora_32f)(&size), orvStsNoErr);
  EXPECT_EQ((fixed ? orvsVADGetBufSize_Aurora_16s : orvsVADGetBufSize_Aurora_32f)(nullptr), orvStsNullPtrErr);
  EXPECT_EQ((fixed ? orvsVADInit_Aurora_16s : orvsVADInit_Aurora_32f)(nullptr), orvStsNullPtrErr);
  EXPECT_EQ(size, 64);
  using P = const Pointers &;
  const Order null{orvStsNullPtrErr};
  expectOrder(null, 4, 1, [](P p, int, int, int) {
    if constexpr (fixed) return orvsVADDecision_Aurora_16s(p[0], p[1], 0, p[2], p[3]);
    if constexpr (!fixed) return orvsVADDecision_Aurora_32f(p[0], p[1], 0, p[2], p[3]);
  });
  expectOrder(null, 2, 1, [](P p, int, int, int) {
    return (fixed ? orvsVADFlush_Aurora_16s : orvsVADFlush_Aurora_32f)(p[0], p[1]);
  });
}

}  // namespace
