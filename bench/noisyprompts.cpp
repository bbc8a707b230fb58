// orv_noisy_prompts NOISE DB K/N OUT DIR...
//
// Copies the recordings in fold K/N of each folder to OUT, in a folder of the same name, with noise added at
// a signal-to-noise ratio of DB decibels:
//
//   none    nothing is added, and DB is not used
//   white   independent samples
//   babble  eight prompts at once, drawn from the folds of all folders, each voice at the same power
//   car     white noise through one pole at about 65 Hz: its power falls by 6 dB an octave
//
// The ratio is that of the mean powers over the whole recording. Noise depends on the recording and the kind
// alone: a recording meets the same noise at every ratio, in every run and on every machine.

#include <sndfile.h>

#include <cmath>
#include <cstdio>
#include <memory>
#include <random>
#include <span>
#include <string>
#include <vector>

#include "common/error.h"
#include "common/recordings.h"

namespace {

namespace fs = std::filesystem;
using Samples = std::vector<float>;

struct Prompt {
  std::size_t folder;
  orv::Recording recording;
};

void toUnitPower(Samples &samples) {
  double mean = 0, power = 0;
  for (const float x : samples) mean += x;
  mean /= static_cast<double>(samples.size());
  for (const float x : samples) power += (x - mean) * (x - mean);
  const double gain = 1 / std::sqrt(power / static_cast<double>(samples.size()));
  for (float &x : samples) x = static_cast<float>((x - mean) * gain);
}

Samples filteredNoise(std::size_t len, double pole, std::mt19937 &random) {
  Samples samples(len);
  double last = 0;
  for (std::size_t i = 0; i < len + 1000; ++i) {  // the first thousand let the filter settle
    double normal = -6;                           // twelve uniform numbers add up to nearly a normal one
    for (int k = 0; k < 12; ++k) normal += static_cast<double>(random()) / 4294967296.0;
    last = pole * last + normal;
    if (i >= 1000) samples[i - 1000] = static_cast<float>(last);
  }
  return samples;
}

Samples babble(std::size_t len, std::span<const Prompt> prompts, std::size_t self, std::mt19937 &random) {
  constexpr int kVoices = 8;
  Samples sum(len, 0.0f);
  for (int voice = 0; voice < kVoices; ++voice) {
    Samples speech;
    while (speech.size() < len) {
      const std::size_t drawn = random() % prompts.size();
      if (drawn == self) continue;
      Samples more = prompts[drawn].recording.samples;
      toUnitPower(more);
      const std::size_t from = speech.empty() ? random() % more.size() : 0;  // the first is joined midway
      speech.insert(speech.end(), more.begin() + static_cast<std::ptrdiff_t>(from), more.end());
    }
    for (std::size_t i = 0; i < len; ++i) sum[i] += speech[i];
  }
  return sum;
}

std::vector<Prompt> readPrompts(const std::vector<orv::RecordingFolder> &folders) {
  std::vector<Prompt> prompts;
  orv::readAll(folders, "reading", true, [&](std::size_t folder, const orv::Recording &recording) {
    orv::refuseSilence(recording);
    prompts.push_back({folder, recording});
  });
  return prompts;
}

void write(const fs::path &file, const orv::Recording &recording) {
  SF_INFO info{};
  info.samplerate = recording.sampleRate;
  info.channels = 1;
  info.format = SF_FORMAT_WAV | SF_FORMAT_FLOAT;  // louder than full scale if need be
  const std::unique_ptr<SNDFILE, int (*)(SNDFILE *)> out(sf_open(file.c_str(), SFM_WRITE, &info), sf_close);
  const auto len = static_cast<sf_count_t>(recording.samples.size());
  if (!out || sf_write_float(out.get(), recording.samples.data(), len) != len)
    throw orv::Error(file, "cannot be written");
}

void run(const std::string &kind, double decibels, const std::string &fold, const fs::path &out,
         const std::vector<fs::path> &paths) {
  if (kind != "none" && kind != "white" && kind != "babble" && kind != "car")
    throw orv::Error("'" + kind + "' is no kind of noise: none, white, babble or car");
  auto folders = orv::findRecordings(paths);
  for (auto &folder : folders) {
    folder.keep(orv::Fold::parse(fold), true);
    fs::create_directories(out / folder.name);
  }
  std::vector<Prompt> prompts = readPrompts(folders);
  for (std::size_t i = 0; i < prompts.size(); ++i) {
    orv::Recording noisy = prompts[i].recording;
    const std::size_t len = noisy.samples.size();
    if (kind != "none") {
      std::mt19937 random(static_cast<unsigned>(i) * 8 + (kind == "white" ? 0 : kind == "babble" ? 1 : 2));
      Samples noise = kind == "babble" ? babble(len, prompts, i, random)
                                       : filteredNoise(len, kind == "car" ? 0.95 : 0.0, random);
      toUnitPower(noise);
      double power = 0;
      for (const float x : noisy.samples) power += static_cast<double>(x) * x;
      const double gain = std::sqrt(power / static_cast<double>(len)) * std::pow(10.0, -decibels / 20);
      for (std::size_t n = 0; n < len; ++n) noisy.samples[n] += static_cast<float>(gain * noise[n]);
    }
    char name[32];
    std::snprintf(name, sizeof name, "%05zu.wav", i);
    write(out / folders[prompts[i].folder].name / name, noisy);
  }
}

}  // namespace

int main(int argc, char **argv) {
  if (argc < 6) {
    std::fprintf(stderr, "usage: orv_noisy_prompts none|white|babble|car DB K/N OUT DIR...\n");
    return 2;
  }
  try {
    run(argv[1], std::stod(argv[2]), argv[3], argv[4], {argv + 5, argv + argc});
  } catch (const std::exception &error) {
    std::fprintf(stderr, "orv_noisy_prompts: %s\n", orv::oneLine(error.what()).c_str());
    return 1;
  }
}
