// orv vad: segments of speech.

#include <nlohmann/json.hpp>
#include <sstream>

#include "hosts/support.h"

namespace orv {
namespace {

using namespace test;

// Faint noise, and in it buzzes of a voice between these seconds.
std::vector<float> recording(int rate, double seconds, const std::vector<std::pair<double, double>> &voiced) {
  std::vector<float> samples = noise(static_cast<std::size_t>(rate * seconds), 0.3f, 7);
  for (float &x : samples) x *= 0.02f;
  for (const auto &[begin, end] : voiced) {
    const auto last = std::min(samples.size(), static_cast<std::size_t>(end * rate));
    for (auto n = static_cast<std::size_t>(begin * rate); n < last; ++n) {
      const double t = static_cast<double>(n) / rate;
      for (int h = 1; h <= 15; ++h)
        samples[n] +=
            static_cast<float>(0.2 / h * (1 + 0.5 * std::sin(20 * t)) * std::sin(2 * M_PI * 130 * h * t));
    }
  }
  return samples;
}

class Vad : public Hosts {
 protected:
  std::vector<std::pair<double, double>> segments(const std::string &arguments) {
    const Outcome outcome = run("vad " + arguments);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    std::istringstream lines(outcome.out);
    std::string line;
    std::getline(lines, line);
    EXPECT_EQ(line, "begin,end");
    std::vector<std::pair<double, double>> found;
    while (std::getline(lines, line))
      found.emplace_back(std::stod(line), std::stod(line.substr(line.find(',') + 1)));
    return found;
  }
};

TEST_F(Vad, FindsBurstsAtEveryRate) {
  const std::vector<std::pair<double, double>> voiced = {{1, 1.8}, {3.5, 4.4}};
  for (const int rate : {8000, 11025, 16000, 44100}) {
    SCOPED_TRACE(rate);
    writeWav(folder / "in.wav", recording(rate, 6, voiced), rate);
    const auto found = segments("in.wav");
    // The detector begins early and hangs over by up to half a second; it may take fright at noise for a
    // moment.
    double stray = 0;
    for (const auto &[begin, end] : found) {
      stray += end - begin;
      for (const auto &[from, to] : voiced)
        stray -= std::max(0.0, std::min(end, to + 0.6) - std::max(begin, from - 0.12));
    }
    EXPECT_LT(stray, 0.15) << ::testing::PrintToString(found);
    for (const auto &[from, to] : voiced) {
      EXPECT_TRUE(std::any_of(found.begin(), found.end(), [&, from = from, to = to](const auto &segment) {
        return segment.first < from + 0.12 && segment.second > to - 0.05;
      })) << ::testing::PrintToString(found);
    }
  }
}

TEST_F(Vad, WritesTheSameInEveryForm) {
  writeWav(folder / "in.wav", recording(8000, 4.0042, {{1, 1.8}, {3.2, 4.1}}));
  const auto found = segments("in.wav");
  ASSERT_EQ(found.size(), 2u);
  EXPECT_NEAR(found[1].second, 4.004, 1e-9);  // no further than the recording goes

  EXPECT_EQ(segments("- < in.wav"), found);
  ASSERT_EQ(run("vad in.wav --json -o out.json").status, 0);
  const auto json = nlohmann::json::parse(readFile(folder / "out.json"));
  EXPECT_EQ(json["sampleRate"], 8000);
  ASSERT_EQ(json["segments"].size(), 2u);
  EXPECT_EQ(json["segments"][0]["begin"], found[0].first);

  const auto frames = nlohmann::json::parse(run("vad in.wav --json --frames").out)["frames"];
  ASSERT_EQ(frames.size(), 401u);
  for (const auto &frame : frames) {
    const double at = frame["seconds"];
    const bool inside = std::any_of(found.begin(), found.end(), [&](const auto &segment) {
      return at > segment.first - 1e-9 && at < segment.second - 1e-9;
    });
    EXPECT_EQ(frame["speech"], inside ? 1 : 0) << at;
  }
  writeWav(folder / "quiet.wav", recording(8000, 2, {}));
  EXPECT_EQ(nlohmann::json::parse(run("vad quiet.wav --json").out)["segments"].size(), 0u);
}

TEST_F(Vad, RefusesWhatItCannotDecideUpon) {
  writeWav(folder / "short.wav", std::vector<float>(800, 0.1f));
  writeWav(folder / "two.wav", std::vector<float>(9000, 0.1f), 8000, 2);
  for (const auto &[arguments, reason] :
       {std::pair{"short.wav", "lasts 100 ms; the detector needs 110 ms"}, std::pair{"two.wav", "2 channels"},
        std::pair{"none.wav", "no such file"}}) {
    const Outcome outcome = run(std::string("vad ") + arguments + " -o out.csv");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.err.find(reason), std::string::npos) << outcome.err;
    EXPECT_FALSE(fs::exists(folder / "out.csv"));
  }
}

}  // namespace
}  // namespace orv
