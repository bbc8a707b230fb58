#include "common/noisereduction.h"

#include <cmath>
#include <complex>
#include <numbers>

#include "common/bandsplit.h"
#include "common/realfft.h"
#include "hosts/support.h"

namespace orv::test {
namespace {

constexpr double kPi = std::numbers::pi;

double decibels(double signal, double error) { return 10 * std::log10(signal / error); }

// Energies of a signal, and of what another differs from it, from one sample to another.
double snr(const std::vector<float> &clean, const std::vector<float> &other, std::size_t from,
           std::size_t to) {
  double signal = 0, error = 0;
  for (std::size_t i = from; i < to; ++i) {
    signal += static_cast<double>(clean[i]) * clean[i];
    error += std::pow(static_cast<double>(clean[i]) - other[i], 2);
  }
  return decibels(signal, error);
}

// Pieces of random sizes, none and whole blocks among them.
template <class Push>
void inPieces(const std::vector<float> &samples, unsigned seed, Push push) {
  std::mt19937 random(seed);
  for (std::size_t i = 0; i < samples.size();) {
    const std::size_t most = random() % 3 == 0 ? 700 : 5,
                      count = std::min(random() % most, samples.size() - i);
    push(std::span(samples).subspan(i, count));
    i += count;
  }
}

TEST(RealFft, IsTheTransformAndItsInverse) {
  for (const std::size_t size : {std::size_t{2}, std::size_t{16}, std::size_t{512}}) {
    const std::vector<float> samples = noise(size, 0.5f, 1);
    std::vector<float> packed(size), back(size);
    RealFft transform(size);
    transform.forward(samples.data(), packed.data());
    for (std::size_t k = 0; k <= size / 2; ++k) {
      std::complex<double> bin;
      for (std::size_t n = 0; n < size; ++n)
        bin += static_cast<double>(samples[n]) *
               std::polar(1.0, -2 * kPi * static_cast<double>(k * n % size) / static_cast<double>(size));
      const bool edge = k == 0 || k == size / 2;
      EXPECT_NEAR(packed[k == 0 ? 0 : edge ? 1 : 2 * k], bin.real(), 1e-4);
      if (!edge) {
        EXPECT_NEAR(packed[2 * k + 1], bin.imag(), 1e-4);
      }
    }
    transform.inverse(packed.data(), back.data());
    for (std::size_t n = 0; n < size; ++n) EXPECT_NEAR(back[n], samples[n], 1e-6);
  }
}

struct Bands {
  std::vector<float> low, high, merged;
};

Bands split(const std::vector<float> &samples, unsigned seed) {
  Bands bands;
  BandMerge merge;
  const auto join = [&](std::span<const float> x) {
    bands.merged.insert(bands.merged.end(), x.begin(), x.end());
  };
  const auto keep = [&](std::span<const float> low, std::span<const float> high) {
    bands.low.insert(bands.low.end(), low.begin(), low.end());
    bands.high.insert(bands.high.end(), high.begin(), high.end());
    merge.push(low, high, join);
  };
  BandSplit splitter;
  inPieces(samples, seed, [&](std::span<const float> piece) { splitter.push(piece, keep); });
  splitter.flush(keep);
  merge.flush(join);
  return bands;
}

TEST(BandSplit, BandsAddUpToTheSignalHoweverItIsCut) {
  for (const std::size_t len : {0U, 1U, 2U, 159U, 160U, 5001U}) {
    const std::vector<float> samples = noise(len, 0.0f, 2);
    const Bands bands = split(samples, 1), again = split(samples, 2);
    EXPECT_EQ(bands.low.size(), len / 2);
    EXPECT_EQ(bands.high.size(), len / 2);
    EXPECT_EQ(bands.merged.size(), len / 2 * 2);
    EXPECT_EQ(bands.low, again.low);
    EXPECT_EQ(bands.high, again.high);
    EXPECT_EQ(bands.merged, again.merged);
    if (len > 1000) {
      EXPECT_GT(snr(samples, bands.merged, 60, len - 61), 60.0);
    }
  }
}

TEST(BandSplit, EachToneLandsInItsBandAtItsPlace) {
  // But for the neighbourhood of the edge.
  for (const double tone : {300.0, 3400.0, 4600.0, 7700.0}) {
    std::vector<float> samples(16000);
    for (std::size_t n = 0; n < samples.size(); ++n)
      samples[n] = static_cast<float>(std::sin(2 * kPi * tone / 16000 * static_cast<double>(n)));
    const Bands bands = split(samples, 3);
    const auto &in = tone < 4000 ? bands.low : bands.high, &out = tone < 4000 ? bands.high : bands.low;
    double energy = 0, rest = 0;
    int crossings = 0;
    for (std::size_t i = 100; i < 7900; ++i) {
      energy += static_cast<double>(in[i]) * in[i];
      rest += static_cast<double>(out[i]) * out[i];
      crossings += (in[i] > 0) != (in[i + 1] > 0);
    }
    EXPECT_NEAR(energy / 7800, 0.5, 0.01) << tone;
    EXPECT_GT(decibels(energy, rest), 70) << tone;
    EXPECT_NEAR(crossings / 7800.0 * 4000, tone < 4000 ? tone : tone - 4000, 3) << tone;
  }
}

// Harmonics of 120 Hz under two formants, three tenths of a second on and as much off.
std::vector<float> vowels(std::size_t len) {
  std::vector<float> samples(len);
  for (std::size_t n = 0; n < len; ++n) {
    if (n / 2400 % 2 == 0) continue;
    const double time = static_cast<double>(n) / 8000;
    for (int h = 1; h < 30; ++h) {
      const double f = 120.0 * h, formants = 1 / (1 + std::pow((f - 600) / 150, 2)) +
                                             0.4 / (1 + std::pow((f - 1700) / 200, 2));
      samples[n] += static_cast<float>(0.1 * formants * std::sin(2 * kPi * f * time + h * h));
    }
  }
  return samples;
}

std::vector<float> reduce(NoiseReducer &reducer, const std::vector<float> &samples, unsigned seed,
                          std::vector<bool> *pauses = nullptr) {
  std::vector<float> out;
  std::size_t taken = 0;
  const auto sink = [&](const NoiseReducer::Block &block) {
    out.insert(out.end(), block.samples.begin(), block.samples.end());
    if (pauses) pauses->push_back(block.pause);
  };
  inPieces(samples, seed, [&](std::span<const float> piece) {
    reducer.push(piece, sink);
    taken += piece.size();
    EXPECT_EQ(out.size(), taken < 400 ? 0 : taken / 80 * 80 - NoiseReducer::kDelay);
  });
  reducer.flush(sink);
  return out;
}

TEST(NoiseReducer, GivesTheSameBlocksHoweverTheStreamIsCut) {
  NoiseReducer reducer;
  for (const std::size_t len : {0U, 1U, 79U, 80U, 81U, 400U, 20011U}) {
    const std::vector<float> samples = noise(len, 0.7f, 3);
    const std::vector<float> whole = reduce(reducer, samples, 1);
    EXPECT_EQ(whole.size(), (len + 79) / 80 * 80);
    // The reducer that has had a stream is as good as new.
    EXPECT_EQ(reduce(reducer, samples, 2), whole) << len;
  }
}

// In the pauses noise goes; speech keeps its shape and does not get worse.
TEST(NoiseReducer, TakesNoiseAwayAndLeavesSpeech) {
  const std::vector<float> clean = vowels(40000);
  for (const auto aim : {NoiseReducer::Aim::recognition, NoiseReducer::Aim::listening}) {
    const bool listening = aim == NoiseReducer::Aim::listening;
    NoiseReducer reducer(aim);
    EXPECT_GT(snr(clean, reduce(reducer, clean, 1), 0, clean.size()), 40.0);
    for (const float pole : {0.0f, 0.9f}) {
      std::vector<float> noisy = noise(clean.size(), pole, 4);
      double signal = 0, error = 0;
      for (const float x : clean) signal += static_cast<double>(x) * x;
      for (const float x : noisy) error += static_cast<double>(x) * x;
      const auto gain = static_cast<float>(std::sqrt(signal / error));  // 0 dB
      for (std::size_t i = 0; i < noisy.size(); ++i) noisy[i] = clean[i] + gain * noisy[i];
      std::vector<bool> pauses;
      const std::vector<float> out = reduce(reducer, noisy, 1, &pauses);
      // Of the pause from 4800 to 7200 all but its edges, where filters reach into speech.
      EXPECT_GT(snr(clean, out, 7200, 9600) - snr(clean, noisy, 7200, 9600), listening ? 1.5 : 0.3) << pole;
      double before = 0, after = 0;
      for (std::size_t i = 5200; i < 6800; ++i) {
        before += static_cast<double>(noisy[i]) * noisy[i];
        after += static_cast<double>(out[i]) * out[i];
      }
      EXPECT_GT(decibels(before, after), 15) << pole;
      EXPECT_TRUE(pauses[15]);
      EXPECT_FALSE(pauses[45]);
    }
  }
}

}  // namespace
}  // namespace orv::test
