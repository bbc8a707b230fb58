// Features of speech in noise.

#include <cmath>
#include <nlohmann/json.hpp>
#include <numbers>
#include <xtensor/xnpy.hpp>
#include <xtensor/xtensor.hpp>

#include "common/aurorachain.h"
#include "common/bandsplit.h"
#include "common/error.h"
#include "common/model.h"
#include "hosts/support.h"

namespace orv::test {
namespace {

struct Row {
  std::vector<float> values;
  bool speech;
  bool operator==(const Row &) const = default;
};

std::vector<Row> rows(AuroraChain &chain, const std::vector<float> &samples, unsigned seed) {
  std::vector<Row> rows;
  const auto keep = [&](const float *row, bool speech) {
    rows.push_back({{row, row + AuroraChain::kWidth}, speech});
  };
  std::mt19937 random(seed);
  for (std::size_t i = 0; i < samples.size();) {
    const std::size_t most = random() % 3 == 0 ? 9000 : 7,
                      count = std::min(random() % most, samples.size() - i);
    chain.push(std::span(samples).subspan(i, count), keep);
    i += count;
  }
  chain.flush(keep);
  return rows;
}

// Half a second of faint noise, half a second of a buzz, and so on. The louder harmonics are the lower or the
// upper ones.
std::vector<float> bursts(std::size_t len, int rate, bool upper = false) {
  std::vector<float> samples = noise(len, 0.0f, 7);
  for (std::size_t n = 0; n < len; ++n) {
    samples[n] *= 0.01f;
    if (n / (static_cast<std::size_t>(rate) / 2) % 2 == 0) continue;
    for (int h = 1; h < 40; ++h) {
      const double phase = 2 * std::numbers::pi * 110 * h / rate * static_cast<double>(n);
      if (110 * h < rate / 2)
        samples[n] += static_cast<float>(0.2 / (upper ? 20 - h / 2 : h) * std::sin(phase + h * h));
    }
  }
  return samples;
}

TEST(AuroraChain, GivesTheSameRowsHoweverTheStreamIsCut) {
  for (const int rate : {8000, 16000}) {
    AuroraChain chain(rate);
    const auto scale = static_cast<std::size_t>(rate / 8000);
    ASSERT_EQ(chain.leastSamples(), 760 * scale);
    // Few rows, a last one just complete or not, and numbers of rows about those that go out together.
    for (const std::size_t len : {760u, 839u, 840u, 64u * 80 + 120, 65u * 80 + 120, 30001u}) {
      const std::vector<float> samples = bursts(len * scale, rate);
      const auto whole = rows(chain, samples, 1);
      EXPECT_EQ(whole.size(), 1 + (len - 200) / 80);
      EXPECT_EQ(chain.frames(samples.size()), whole.size());
      EXPECT_TRUE(rows(chain, samples, 2) == whole) << len;
      for (const Row &row : whole)
        for (const float x : row.values) ASSERT_TRUE(std::isfinite(x));
    }
  }
  EXPECT_THROW(AuroraChain(11025), Error);
}

TEST(AuroraChain, TellsSpeechFromPauses) {
  AuroraChain chain(8000);
  const auto all = rows(chain, bursts(32000, 8000), 1);
  // A burst is found at once; behind it the detector holds on for a while.
  for (const std::size_t r : {5u, 30u}) EXPECT_FALSE(all[r].speech) << r;
  for (std::size_t r = 50; r < 98; ++r) EXPECT_TRUE(all[r].speech) << r;
}

TEST(AuroraChain, DeltaAndAccelerationAreThoseOfTheStaticValues) {
  AuroraChain chain(8000);
  const auto all = rows(chain, bursts(16000, 8000), 1);
  const auto x = [&](std::ptrdiff_t r, std::size_t j) {
    return static_cast<double>(all[static_cast<std::size_t>(std::clamp<std::ptrdiff_t>(
                                       r, 0, static_cast<std::ptrdiff_t>(all.size()) - 1))]
                                   .values[j]);
  };
  for (std::ptrdiff_t r = 0; r < static_cast<std::ptrdiff_t>(all.size()); ++r) {
    for (std::size_t j = 0; j < 13; ++j) {
      double delta = 0;
      for (int k = 1; k <= 4; ++k) delta += 0.25 * k * (x(r + k, j) - x(r - k, j));
      EXPECT_NEAR(all[static_cast<std::size_t>(r)].values[13 + j], delta, 1e-3) << r;
    }
  }
}

// A wide band and the lower half of it have the same shape over time.
TEST(AuroraChain, At16KilohertzFollowsTheLowerBand) {
  const std::vector<float> wide = bursts(48000, 16000);
  std::vector<float> low;
  BandSplit split;
  const auto keep = [&](std::span<const float> x, std::span<const float>) {
    low.insert(low.end(), x.begin(), x.end());
  };
  split.push(wide, keep);
  split.flush(keep);
  AuroraChain chain16(16000), chain8(8000);
  const auto a = rows(chain16, wide, 1), b = rows(chain8, low, 1);
  ASSERT_EQ(a.size(), b.size());
  double saa = 0, sbb = 0, sab = 0, ma = 0, mb = 0;
  for (std::size_t r = 0; r < a.size(); ++r) {
    EXPECT_EQ(a[r].speech, b[r].speech);
    ma += a[r].values[12] / static_cast<double>(a.size());
    mb += b[r].values[12] / static_cast<double>(a.size());
  }
  for (std::size_t r = 0; r < a.size(); ++r) {
    saa += (a[r].values[12] - ma) * (a[r].values[12] - ma);
    sbb += (b[r].values[12] - mb) * (b[r].values[12] - mb);
    sab += (a[r].values[12] - ma) * (b[r].values[12] - mb);
  }
  EXPECT_GT(sab / std::sqrt(saa * sbb), 0.99);
  EXPECT_NEAR(std::sqrt(saa / sbb), 1, 0.1);
}

class Aurora : public Hosts {};

TEST_F(Aurora, FeaturesOfAStreamAreThoseThatTrainingTakes) {
  writeWav(folder / "in.wav", bursts(40000, 8000));
  ASSERT_EQ(run("features --front-end aurora in.wav -o out.npy").status, 0);
  ASSERT_EQ(run("features --front-end aurora - -o piped.npy <in.wav").status, 0);
  EXPECT_EQ(readFile(folder / "out.npy"), readFile(folder / "piped.npy"));
  const auto streamed = xt::load_npy<float>((folder / "out.npy").string());
  FeatureOptions options;
  options.frontEnd = FrontEnd::aurora;
  Frames features;
  FeatureChain(options, 8000).compute(readRecording(folder / "in.wav"), features);
  ASSERT_EQ(streamed.shape(0), features.rows);
  ASSERT_EQ(streamed.shape(1), 39U);
  for (std::size_t j = 0; j < 39; ++j) {
    double mean = 0, square = 0;
    for (std::size_t r = 0; r < features.rows; ++r) {
      ASSERT_EQ(streamed(r, j), features.row(r)[j]);
      mean += streamed(r, j) / static_cast<double>(features.rows);
      square += std::pow(static_cast<double>(streamed(r, j)), 2) / static_cast<double>(features.rows);
    }
    if (j < 13) {
      EXPECT_NEAR(mean, 0, 1e-5);
      EXPECT_NEAR(square, 1, 1e-4);
    }
  }
  ASSERT_EQ(run("features --front-end aurora --drop-pauses in.wav -o speech.npy").status, 0);
  // The first half second is a pause, the third is held on to.
  EXPECT_LT(xt::load_npy<float>((folder / "speech.npy").string()).shape(0), features.rows - 30);
}

TEST_F(Aurora, AModelKnowsItsFrontEnd) {
  for (std::size_t i = 0; i < 3; ++i) {
    const std::string name = std::to_string(i) + ".wav";
    writeWav(folder / "dull" / name, bursts(16000 + 999 * i, 8000));
    writeWav(folder / "shrill" / name, bursts(16000 + 999 * i, 8000, true));
  }
  const Outcome trained = run("train --front-end aurora --drop-pauses --components 2 -o model dull shrill");
  ASSERT_EQ(trained.status, 0) << trained.err;
  const Model model = loadModel(folder / "model");
  EXPECT_EQ(model.features.frontEnd, FrontEnd::aurora);
  EXPECT_TRUE(model.features.dropPauses);
  const Outcome evaluated = run("evaluate --json model dull shrill");
  ASSERT_EQ(evaluated.status, 0) << evaluated.err;
  EXPECT_EQ(nlohmann::json::parse(evaluated.out)["accuracy"], 1.0);
  EXPECT_EQ(run("identify model shrill/1.wav").out.find("shrill/1.wav: shrill, score "), 0u);
}

TEST_F(Aurora, RefusesWhatItCannotDo) {
  writeWav(folder / "short.wav", noise(759, 0.5f, 1));
  writeWav(folder / "odd.wav", noise(9000, 0.5f, 1), 11025);
  writeWav(folder / "in.wav", noise(9000, 0.5f, 1));
  const struct {
    const char *arguments, *complaint;
  } faults[] = {
      {"features --front-end aurora short.wav -o out",
       "short.wav: is too short: 759 samples where 760 are needed"},
      {"features --front-end aurora odd.wav -o out", "takes recordings at 8000 or 16000 Hz, not at 11025 Hz"},
      {"features --front-end aurora in.wav -o out --bands 20", "has frames, bands and cepstra of its own"},
      {"features --front-end aurora in.wav -o out --kind lpcc", "has frames, bands and cepstra of its own"},
      {"features --front-end aurora none.wav -o out", "none.wav: no such file"},
      {"features --front-end aurora - -o out </dev/null", "-: cannot be read as audio"},
      {"features --drop-pauses in.wav -o out", "only the front end aurora knows pauses"},
      {"features --front-end borealis in.wav -o out", "borealis"},
  };
  for (const auto &fault : faults) {
    const Outcome outcome = run(fault.arguments);
    EXPECT_GT(outcome.status, 0) << fault.arguments;
    EXPECT_NE(outcome.err.find(fault.complaint), std::string::npos) << fault.arguments << "\n" << outcome.err;
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << fault.arguments;
  }
  EXPECT_FALSE(fs::exists(folder / "out"));
}

}  // namespace
}  // namespace orv::test
