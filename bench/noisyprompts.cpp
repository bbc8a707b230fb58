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

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "bench/noise.h"
#include "common/error.h"
#include "common/recordings.h"

namespace {

namespace fs = std::filesystem;
using orv::bench::Samples;

constexpr int kVoices = 8;

void write(const fs::path &file, const Samples &samples, int sampleRate) {
  SF_INFO info{};
  info.samplerate = sampleRate;
  info.channels = 1;
  info.format = SF_FORMAT_WAV | SF_FORMAT_FLOAT;  // louder than full scale if need be
  const std::unique_ptr<SNDFILE, int (*)(SNDFILE *)> out(sf_open(file.c_str(), SFM_WRITE, &info), sf_close);
  const auto len = static_cast<sf_count_t>(samples.size());
  if (!out || sf_write_float(out.get(), samples.data(), len) != len)
    throw orv::Error(file, "cannot be written");
}

void run(const std::string &kind, double decibels, const std::string &fold, const fs::path &out,
         const std::vector<fs::path> &paths) {
  auto folders = orv::findRecordings(paths);
  for (auto &folder : folders) {
    folder.keep(orv::Fold::parse(fold), true);
    fs::create_directories(out / folder.name);
  }
  std::vector<std::size_t> folderOf;
  std::vector<Samples> prompts;
  std::vector<int> rates;
  orv::readAll(folders, "reading", true, [&](std::size_t folder, const orv::Recording &recording) {
    orv::refuseSilence(recording);
    folderOf.push_back(folder);
    prompts.push_back(recording.samples);
    rates.push_back(recording.sampleRate);
  });
  for (std::size_t i = 0; i < prompts.size(); ++i) {
    Samples noisy = prompts[i];
    if (kind != "none") {
      const Samples noise = orv::bench::noiseFor(kind, kVoices, decibels, prompts, i);
      for (std::size_t n = 0; n < noisy.size(); ++n) noisy[n] += noise[n];
    }
    char name[32];
    std::snprintf(name, sizeof name, "%05zu.wav", i);
    write(out / folders[folderOf[i]].name / name, noisy, rates[i]);
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
