#include <cmath>
#include <functional>
#include <nlohmann/json.hpp>
#include <sstream>

#include "common/error.h"
#include "common/pitchtracker.h"
#include "hosts/support.h"

namespace orv::test {
namespace {

// All harmonics below half the sample rate through three resonators, in white noise 20 dB below: a vowel
// whose pitch at every moment is known. (Pulses at whole samples would have a pitch of their own.)
std::vector<float> vowel(const std::function<double(double)> &f0, double seconds, int rate, unsigned seed) {
  std::mt19937 random(seed);
  std::normal_distribution<double> white;
  std::vector<double> x(static_cast<std::size_t>(seconds * rate));
  double phase = 0;
  for (std::size_t i = 0; i < x.size(); ++i) {
    const double pitch = f0(static_cast<double>(i) / rate);
    phase += pitch / rate;
    for (int k = 1; k * pitch < 0.45 * rate; ++k) x[i] += std::cos(2 * M_PI * k * phase);
  }
  for (const auto &[frequency, width] : {std::pair{700.0, 80.0}, {1200.0, 100.0}, {2500.0, 150.0}}) {
    const double r = std::exp(-M_PI * width / rate), c = 2 * r * std::cos(2 * M_PI * frequency / rate);
    double last = 0, before = 0;
    for (double &v : x) {
      v += c * last - r * r * before;
      before = last;
      last = v;
    }
  }
  double power = 0;
  for (const double v : x) power += v * v / static_cast<double>(x.size());
  std::vector<float> samples;
  for (const double v : x)
    samples.push_back(static_cast<float>(0.05 * (v / std::sqrt(power) + 0.1 * white(random))));
  return samples;
}

TEST(PitchTracker, FollowsVowelsOfKnownPitch) {
  std::vector<std::function<double(double)>> voices;
  for (const double f : {60, 70, 85, 100, 130, 170, 220, 300, 350, 400})
    voices.push_back([f](double) { return f; });
  voices.push_back([](double t) { return 100 + 200 * t; });
  voices.push_back([](double t) { return 250 * std::pow(80 / 250.0, t); });
  int frames = 0, voiced = 0, gross = 0;
  for (const int rate : {8000, 16000})
    for (std::size_t i = 0; i < voices.size(); ++i) {
      const Recording recording{"vowel", rate, vowel(voices[i], 1, rate, static_cast<unsigned>(i))};
      for (const PitchFrame &frame : trackPitch(recording, {})) {
        ++frames;
        if (frame.f0 == 0) continue;
        ++voiced;
        gross += std::fabs(frame.f0 / voices[i](frame.seconds) - 1) > 0.2;
      }
    }
  EXPECT_GT(voiced, 0.98 * frames);
  EXPECT_LT(gross, 0.02 * voiced);
}

TEST(PitchTracker, HearsNoVoiceInNoiseAndSilence) {
  Recording recording{"noise", 16000, noise(32000, 0, 5)};
  recording.samples.resize(48000);
  int voiced = 0, frames = 0;
  for (const PitchFrame &frame : trackPitch(recording, {})) {
    ++frames;
    voiced += frame.f0 != 0;
  }
  EXPECT_LT(voiced, 0.02 * frames);
}

TEST(PitchTracker, RefusesRangesItCannotSearch) {
  const Recording recording{"vowel", 8000, std::vector<float>(8000)};
  for (const PitchOptions &bad :
       {PitchOptions{0.5, 60, 400}, {10, 10, 400}, {10, 400, 400}, {10, 60, 1001}, {NAN, 60, 400}})
    EXPECT_THROW(trackPitch(recording, bad), Error);
  EXPECT_THROW(trackPitch({"short", 8000, std::vector<float>(200)}, {}), UnusableRecording);
}

using Pitch = Hosts;

TEST_F(Pitch, IsWrittenAsTableJsonAndPicture) {
  writeWav(folder / "in.wav", vowel([](double) { return 125; }, 0.5, 8000, 1));
  const Outcome table = run("pitch in.wav");
  ASSERT_EQ(table.status, 0) << table.err;
  EXPECT_TRUE(table.out.starts_with("seconds,f0,strength\n"));
  EXPECT_NE(table.out.find(",125."), std::string::npos);
  const Outcome json = run("pitch in.wav --json --hop 20 -o track.json");
  ASSERT_EQ(json.status, 0) << json.err;
  const auto frames = nlohmann::json::parse(readFile(folder / "track.json")).at("frames");
  EXPECT_NEAR(frames.at(3).at("f0").get<double>(), 125, 1);
  EXPECT_NEAR(frames.at(3).at("seconds").get<double>() - frames.at(2).at("seconds").get<double>(), 0.02,
              1e-9);
  for (const std::string name : {"voice.png", "voice.svg"}) {
    const Outcome picture = run("pitch in.wav -o track.csv --plot " + name);
    ASSERT_EQ(picture.status, 0) << picture.err;
    EXPECT_TRUE(readFile(folder / name).find(name.ends_with("png") ? "PNG" : "<svg") < 200) << name;
  }
}

TEST_F(Pitch, FaultsGetOneLineAndChangeNothing) {
  writeWav(folder / "in.wav", vowel([](double) { return 125; }, 0.5, 8000, 1));
  writeWav(folder / "short.wav", noise(100, 0, 1));
  writeFile(folder / "text.wav", "no audio");
  writeFile(folder / "old.csv", "old");
  for (const std::string arguments : {"short.wav -o old.csv", "text.wav -o old.csv", "missing.wav -o old.csv",
                                      "in.wav -o old.csv --plot picture.gif", "in.wav -o old.csv --low 500",
                                      "in.wav -o old.csv --high 2000", "in.wav -o nowhere/track.csv",
                                      "in.wav -o old.csv --plot nowhere/picture.png"}) {
    const Outcome outcome = run("pitch " + arguments);
    EXPECT_EQ(outcome.status, 1) << arguments;
    EXPECT_EQ(std::ranges::count(outcome.err, '\n'), 1) << outcome.err;
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(readFile(folder / "old.csv"), "old") << arguments;
  }
}

}  // namespace
}  // namespace orv::test
