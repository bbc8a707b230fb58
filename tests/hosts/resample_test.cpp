#include <cmath>
#include <numbers>

#include "common/resampler.h"
#include "hosts/support.h"

namespace orv::test {
namespace {

class ResampleCommand : public Hosts {
 protected:
  struct Sound {
    SF_INFO info{};
    std::vector<float> samples;  // interleaved
  };
  Sound read(const std::string &name) {
    Sound sound;
    SNDFILE *file = sf_open((folder / name).c_str(), SFM_READ, &sound.info);
    EXPECT_NE(file, nullptr) << name;
    if (file == nullptr) return sound;
    sound.samples.resize(static_cast<std::size_t>(sound.info.frames * sound.info.channels));
    sf_readf_float(file, sound.samples.data(), sound.info.frames);
    sf_close(file);
    return sound;
  }
};

double voice(double hertz, double seconds) { return 0.5 * std::cos(2 * std::numbers::pi * hertz * seconds); }

// A tone of its own in each channel comes out as the same tone, at any rates and qualities, however many
// blocks the recording has.
TEST_F(ResampleCommand, KeepsEveryChannelInTime) {
  const struct {
    int from, to, channels;
    const char *options;
    double error;
  } cases[] = {{44100, 16000, 2, "", 1e-4}, {8000, 48000, 3, "--quality best", 1e-5},
               {48000, 44101, 1, "", 1e-4}, {44100, 8000, 2, "--quality fast", 2e-3},
               {22050, 22050, 2, "", 1e-7}, {8000, 100, 1, "", 1e-4}};
  for (const auto &c : cases) {
    SCOPED_TRACE(std::to_string(c.from) + " to " + std::to_string(c.to));
    const std::size_t frames = 70001;
    const auto channels = static_cast<std::size_t>(c.channels);
    std::vector<float> samples(frames * channels);
    const auto hertz = [&](std::size_t channel) {
      return 0.1 * std::min(c.from, c.to) * static_cast<double>(channel + 1);
    };
    for (std::size_t i = 0; i < samples.size(); ++i)
      samples[i] = static_cast<float>(voice(hertz(i % channels), static_cast<double>(i / channels) / c.from));
    writeWav(folder / "in.wav", samples, c.from, c.channels);
    const Outcome outcome =
        run("resample in.wav -o out.wav --rate " + std::to_string(c.to) + " " + c.options);
    ASSERT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.out + outcome.err, "");

    const Sound sound = read("out.wav");
    EXPECT_EQ(sound.info.samplerate, c.to);
    EXPECT_EQ(sound.info.channels, c.channels);
    EXPECT_EQ(sound.info.format, SF_FORMAT_WAV | SF_FORMAT_FLOAT);
    ASSERT_EQ(sound.info.frames, (static_cast<sf_count_t>(frames) * c.to + c.from - 1) / c.from);
    const std::size_t margin = channels * static_cast<std::size_t>(sound.info.frames / 4);
    for (std::size_t i = margin; i < sound.samples.size() - margin; ++i)
      ASSERT_NEAR(sound.samples[i], voice(hertz(i % channels), static_cast<double>(i / channels) / c.to),
                  c.error)
          << i;
  }
}

TEST_F(ResampleCommand, WritesWhatTheNameSays) {
  SF_INFO info{};
  info.samplerate = 16000;
  info.channels = 1;
  info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_24;
  SNDFILE *file = sf_open((folder / "in.wav").c_str(), SFM_WRITE, &info);
  const std::vector<float> loud(16000, 1.0F);
  sf_write_float(file, loud.data(), 16000);
  sf_close(file);
  const struct {
    const char *name;
    int format;
  } outputs[] = {{"same.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_24},
                 {"out.FLAC", SF_FORMAT_FLAC | SF_FORMAT_PCM_24},
                 {"out.ogg", SF_FORMAT_OGG | SF_FORMAT_VORBIS},
                 {"out.au", SF_FORMAT_AU | SF_FORMAT_PCM_24},
                 {"out.opus", SF_FORMAT_OGG | SF_FORMAT_OPUS}};
  for (const auto &output : outputs) {
    const Outcome outcome = run(std::string("resample in.wav --rate 8000 -o ") + output.name);
    ASSERT_EQ(outcome.status, 0) << outcome.err;
    const Sound sound = read(output.name);
    EXPECT_EQ(sound.info.format & (SF_FORMAT_TYPEMASK | SF_FORMAT_SUBMASK), output.format) << output.name;
    EXPECT_EQ(sound.info.samplerate, 8000);
    // An overshoot is held at full scale, it does not wrap. (Opus takes a constant signal away.)
    if (output.format != (SF_FORMAT_OGG | SF_FORMAT_OPUS)) {
      EXPECT_GT(*std::min_element(sound.samples.begin() + 100, sound.samples.end() - 100), 0.9F)
          << output.name;
    }
  }
  ASSERT_EQ(run("resample in.wav --rate 8000 -o in.wav").status, 0);  // over itself
  EXPECT_EQ(read("in.wav").info.frames, 8000);
}

TEST_F(ResampleCommand, FaultsAreOneLineAndLeaveTheOutput) {
  writeWav(folder / "a.wav", noise(4000, 0.5f, 1));
  writeFile(folder / "old.wav", "old");
  auto broken = noise(40000, 0.5f, 1);
  broken[33333] = NAN;
  writeWav(folder / "nan.wav", broken);
  const struct {
    const char *arguments, *complaint;
  } faults[] = {
      {"none.wav --rate 8000 -o old.wav", "none.wav: no such file"},
      {"old.wav --rate 8000 -o old.wav", "old.wav: cannot be read as audio"},
      {"a.wav --rate 0 -o old.wav", "a sample rate of 0 Hz is below 1 Hz"},
      {"a.wav --rate 31 -o old.wav", "a.wav: cannot be converted from 8000 Hz to 31 Hz"},
      {"a.wav --rate 2048001 -o old.wav", "a.wav: cannot be converted from 8000 Hz to 2048001 Hz"},
      {"a.wav --rate x -o old.wav", "--rate"},
      {"a.wav -o old.wav", "--rate is required"},
      {"a.wav --rate 16000 --quality good -o old.wav", "--quality"},
      {"a.wav --rate 16000 -o new.txt", "new.txt: has no extension of a format that can be written"},
      {"a.wav --rate 16001 -o new.opus", "new.opus: cannot be written: "},
      {"a.wav --rate 16000 -o none/out.wav", "none/out.wav: cannot be written: No such file"},
      {"nan.wav --rate 16000 -o old.wav", "nan.wav: sample 33334 is not a finite number"}};
  for (const auto &fault : faults) {
    const Outcome outcome = run(std::string("resample ") + fault.arguments);
    EXPECT_NE(outcome.status, 0) << fault.arguments;
    EXPECT_NE(outcome.err.find(fault.complaint), std::string::npos) << outcome.err;
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
  }
  EXPECT_EQ(readFile(folder / "old.wav"), "old");
  EXPECT_EQ(std::distance(fs::directory_iterator(folder), fs::directory_iterator()), 3);
}

// Recordings of any rate are taken, and recognised as they are at the model's.
TEST_F(ResampleCommand, OtherCommandsConvertByThemselves) {
  makeVoices(4);
  ASSERT_EQ(run("train -o model --components 2 colour loud").status, 0);
  fs::create_directories(folder / "wide/loud");
  for (const std::string name : {"a", "b"})
    ASSERT_EQ(run("resample loud/" + name + ".wav -o wide/loud/" + name + ".wav --rate 22050").status, 0);
  const auto score = [](const Outcome &outcome) {
    return std::stod(outcome.out.substr(outcome.out.find("score ") + 6));
  };
  const Outcome narrow = run("identify model loud/a.wav"), wide = run("identify model wide/loud/a.wav");
  ASSERT_EQ(wide.out.find("wide/loud/a.wav: loud, score "), 0u) << wide.out << wide.err;
  EXPECT_NEAR(score(narrow), score(wide), 1.0);  // the band just below 4 kHz is lost
  EXPECT_NE(run("evaluate model wide/loud").out.find("2 of 2 recordings recognised"), std::string::npos);
  EXPECT_EQ(run("train -o mixed --components 2 colour wide/loud").status, 0);
  for (const char *command :
       {"identify model wide/loud/a.wav", "evaluate model wide/loud", "train -o none colour wide/loud"}) {
    const Outcome refused = run(std::string(command) + " --no-resample");
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.err, "orv: wide/loud/a.wav: is sampled at 22050 Hz where 8000 Hz are needed\n");
  }
}

}  // namespace
}  // namespace orv::test
