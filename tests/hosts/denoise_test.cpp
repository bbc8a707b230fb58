// orv denoise, and the suppressor behind it.

#include <cmath>

#include "common/audio.h"
#include "common/error.h"
#include "common/suppressor.h"
#include "hosts/support.h"

namespace orv {
namespace {

using namespace test;
using Samples = std::vector<float>;

// Bursts of a buzz of many harmonics, with pauses between them.
Samples bursts(int rate, double seconds) {
  Samples samples(static_cast<std::size_t>(rate * seconds));
  for (std::size_t n = 0; n < samples.size(); ++n) {
    const double t = static_cast<double>(n) / rate;
    if (std::fmod(t, 0.5) < 0.2) continue;
    for (int h = 1; h <= 20; ++h)
      samples[n] += static_cast<float>(0.05 / h * std::sin(2 * M_PI * 150 * h * t));
  }
  return samples;
}

Samples plus(Samples a, const Samples &b, float gain) {
  for (std::size_t n = 0; n < a.size(); ++n) a[n] += gain * b[n];
  return a;
}

// Signal to error in dB of the seconds from first on.
double ratio(const Samples &clean, const Samples &other, int rate, double first = 1, double last = 1e9) {
  double signal = 0, error = 0;
  for (auto n = static_cast<std::size_t>(rate * first);
       n < clean.size() && static_cast<double>(n) < rate * last; ++n) {
    signal += clean[n] * clean[n];
    error += (clean[n] - other[n]) * (clean[n] - other[n]);
  }
  return 10 * std::log10(signal / std::max(error, 1e-20));
}

Samples suppressed(const Samples &in, int rate, SuppressionGain gain, std::size_t piece = 1 << 20) {
  Samples out;
  Suppressor suppressor(rate, gain);
  const auto sink = [&](std::span<const float> samples) {
    out.insert(out.end(), samples.begin(), samples.end());
  };
  for (std::size_t at = 0; at < in.size(); at += piece)
    suppressor.push(std::span<const float>(in).subspan(at, std::min(piece, in.size() - at)), sink);
  suppressor.flush(sink);
  return out;
}

TEST(Suppressor, TakesNoiseOffAndLeavesCleanSoundAlone) {
  for (const auto gain : {SuppressionGain::wiener, SuppressionGain::emns}) {
    for (const int rate : {8000, 16000, 44100, 48000}) {
      SCOPED_TRACE(rate);
      const Samples clean = bursts(rate, 4);
      const Samples noisy = plus(clean, noise(clean.size(), 0.5f, 1), 0.3f);
      const Samples quieter = suppressed(noisy, rate, gain);
      ASSERT_EQ(quieter.size(), noisy.size());
      EXPECT_GT(ratio(clean, quieter, rate), ratio(clean, noisy, rate) + 4);
      EXPECT_GT(
          ratio(clean, suppressed(plus(clean, noise(clean.size(), 0.5f, 2), 0.0003f), rate, gain), rate), 25);
    }
  }

  // Louder noise is taken off from the moment that it sets in, not only once its minima are known.
  const Samples clean = bursts(8000, 6);
  Samples louder = plus(clean, noise(clean.size(), 0.5f, 1), 0.1f);
  const Samples more = noise(clean.size(), 0.5f, 3);
  for (std::size_t n = 24000; n < more.size(); ++n) louder[n] += 0.4f * more[n];
  const Samples quieter = suppressed(louder, 8000, SuppressionGain::wiener);
  const auto gained = [&](double first, double last) {
    return ratio(clean, quieter, 8000, first, last) - ratio(clean, louder, 8000, first, last);
  };
  EXPECT_GT(gained(3, 4), 1.5);
  EXPECT_GT(gained(4, 5), 3.5);

  EXPECT_THROW(Suppressor(7999, SuppressionGain::wiener), Error);
  EXPECT_THROW(Suppressor(48001, SuppressionGain::wiener), Error);
}

TEST(Suppressor, StreamsWithoutATraceOfTheCutsOrOfTheStreamBefore) {
  const Samples noisy = plus(bursts(8000, 1.03), noise(8240, 0, 3), 0.1f);
  const Samples whole = suppressed(noisy, 8000, SuppressionGain::emns);
  EXPECT_EQ(suppressed(noisy, 8000, SuppressionGain::emns, 1), whole);
  EXPECT_EQ(suppressed(noisy, 8000, SuppressionGain::emns, 333), whole);
  EXPECT_EQ(suppressed({0.5f}, 8000, SuppressionGain::wiener).size(), 1u);
  EXPECT_TRUE(suppressed({}, 8000, SuppressionGain::wiener).empty());

  Suppressor twice(8000, SuppressionGain::emns);
  Samples out;
  const auto sink = [&](std::span<const float> s) { out.insert(out.end(), s.begin(), s.end()); };
  twice.push(noise(5000, 0.9f, 4), sink);
  twice.flush(sink);
  out.clear();
  twice.push(noisy, sink);
  twice.flush(sink);
  EXPECT_EQ(out, whole);
}

// A recorder that was switched on late, or whose samples are all zero, gives no infinite gain.
TEST(Suppressor, TakesDigitalSilence) {
  Samples late(4000, 0.0f);
  const Samples noisy = plus(bursts(8000, 2), noise(16000, 0, 5), 0.1f);
  late.insert(late.end(), noisy.begin(), noisy.end());
  for (const float x : suppressed(late, 8000, SuppressionGain::wiener)) ASSERT_LT(std::fabs(x), 1.0f);
  EXPECT_EQ(suppressed(Samples(3000, 0.0f), 8000, SuppressionGain::emns), Samples(3000, 0.0f));
}

using Denoise = Hosts;

TEST_F(Denoise, EveryMethodWritesAsManySamplesThatAreNearerToTheCleanOnes) {
  const Samples clean = bursts(8000, 4.0037);
  const Samples noisy = plus(clean, noise(clean.size(), 0.5f, 6), 0.3f);
  writeWav(folder / "in.wav", noisy);
  for (const std::string options : {"", "--gain emns", "--method aurora"}) {
    SCOPED_TRACE(options);
    ASSERT_EQ(run("denoise in.wav -o out.wav " + options).status, 0);
    const Recording out = readRecording(folder / "out.wav");
    ASSERT_EQ(out.samples.size(), noisy.size());
    EXPECT_EQ(out.sampleRate, 8000);
    EXPECT_GT(ratio(clean, out.samples, 8000), ratio(clean, noisy, 8000) + 2);
  }
  Samples two;
  for (const float x : noisy) {
    two.push_back(x);
    two.push_back(0);
  }
  writeWav(folder / "two.wav", two, 8000, 2);
  ASSERT_EQ(run("denoise two.wav -o two.wav").status, 0);
  RecordingReader both(folder / "two.wav", Channels::any);
  ASSERT_EQ(both.channels(), 2u);
  const auto block = both.read();
  for (std::size_t n = 1; n < block.size(); n += 2) ASSERT_EQ(block[n], 0.0f);
  EXPECT_EQ(run("denoise - -o piped.flac < in.wav").status, 0);
  EXPECT_EQ(readRecording(folder / "piped.flac").samples.size(), noisy.size());
}

TEST_F(Denoise, RefusalsLeaveWhatStood) {
  writeWav(folder / "slow.wav", Samples(1000, 0.1f), 4000);
  writeWav(folder / "in.wav", Samples(1000, 0.1f));
  writeFile(folder / "out.wav", "before");
  const std::pair<const char *, const char *> cases[] = {
      {"slow.wav -o out.wav", "outside 8000 to 48000"},

      {"none.wav -o out.wav", "no such file"},
      {"in.wav -o out.txt", "no extension"},
      {"in.wav -o away/out.wav", "away"},
      {"in.wav -o out.wav --method aurora --gain emns", "--gain"},
      {"in.wav -o out.wav --method more", "method"}};
  for (const auto &[arguments, reason] : cases) {
    const Outcome outcome = run(std::string("denoise ") + arguments);
    EXPECT_NE(outcome.status, 0) << arguments;
    EXPECT_NE(outcome.err.find(reason), std::string::npos) << outcome.err;
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
    EXPECT_EQ(readFile(folder / "out.wav"), "before");
  }
  EXPECT_FALSE(fs::exists(folder / "out.txt"));
}

}  // namespace
}  // namespace orv
