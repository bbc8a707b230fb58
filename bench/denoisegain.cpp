// orv_denoise_gain K/N DIR...
//
// Adds noise to the recordings in fold K/N of each folder, takes it off again in each way that orv denoise
// has, and prints
//
// - the segmental signal-to-noise ratio before and after, in dB, averaged over the recordings: the mean over
// frames
//   of 30 ms of the ratio of a frame, taken as -10 or 35 dB beyond these, over the frames within 40 dB of the
//   loudest;
// - what is done to recordings without noise: the ratio of a whole recording to its change, the mean, the median
//   and the share of 30 dB or more;
// - how much faster than real time it went.

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "bench/noise.h"
#include "common/error.h"
#include "common/noisereduction.h"
#include "common/recordings.h"
#include "common/suppressor.h"

namespace {

using orv::bench::Samples;

struct Method {
  const char *name;
  std::function<Samples(const Samples &, int)> apply;
};

Samples suppressed(const Samples &noisy, int rate, orv::SuppressionGain gain) {
  Samples out;
  orv::Suppressor suppressor(rate, gain);
  const auto sink = [&](std::span<const float> samples) {
    out.insert(out.end(), samples.begin(), samples.end());
  };
  suppressor.push(noisy, sink);
  suppressor.flush(sink);
  return out;
}

Samples reduced(const Samples &noisy, int) {
  Samples out;
  orv::NoiseReducer reducer(orv::NoiseReducer::Aim::listening);
  const auto sink = [&](const orv::NoiseReducer::Block &block) {
    out.insert(out.end(), block.samples.begin(), block.samples.end());
  };
  reducer.push(noisy, sink);
  reducer.flush(sink);
  out.resize(noisy.size());
  return out;
}

double energy(const float *x, std::size_t len) {
  double sum = 0;
  for (std::size_t i = 0; i < len; ++i) sum += static_cast<double>(x[i]) * x[i];
  return sum;
}

double distance(const float *x, const float *y, std::size_t len) {
  double sum = 0;
  for (std::size_t i = 0; i < len; ++i)
    sum += (static_cast<double>(x[i]) - y[i]) * (static_cast<double>(x[i]) - y[i]);
  return sum;
}

double decibels(double signal, double error) { return 10 * std::log10(signal / std::max(error, 1e-30)); }

double segmentalRatio(const Samples &clean, const Samples &other, int rate) {
  const std::size_t frame = static_cast<std::size_t>(rate) * 3 / 100;
  std::vector<double> energies;
  for (std::size_t at = 0; at + frame <= clean.size(); at += frame)
    energies.push_back(energy(clean.data() + at, frame));
  if (energies.empty()) throw orv::Error("a recording is shorter than a frame");
  const double least = 1e-4 * *std::max_element(energies.begin(), energies.end());
  double sum = 0;
  int frames = 0;
  for (std::size_t i = 0; i < energies.size(); ++i) {
    if (energies[i] < least) continue;
    const double error = distance(clean.data() + i * frame, other.data() + i * frame, frame);
    sum += std::clamp(decibels(energies[i], error), -10.0, 35.0);
    ++frames;
  }
  return sum / frames;
}

void run(const std::string &fold, const std::vector<std::filesystem::path> &paths) {
  auto folders = orv::findRecordings(paths);
  for (auto &folder : folders) folder.keep(orv::Fold::parse(fold), true);
  std::vector<Samples> prompts;
  std::vector<int> rates;
  double seconds = 0;
  orv::readAll(folders, "reading", true, [&](std::size_t, const orv::Recording &recording) {
    orv::refuseSilence(recording);
    prompts.push_back(recording.samples);
    rates.push_back(recording.sampleRate);
    seconds += recording.seconds();
  });

  const std::vector<Method> methods = {
      {"mcra, wiener",
       [](const Samples &x, int rate) { return suppressed(x, rate, orv::SuppressionGain::wiener); }},
      {"mcra, emns",
       [](const Samples &x, int rate) { return suppressed(x, rate, orv::SuppressionGain::emns); }},
      {"aurora", reduced}};
  const auto count = static_cast<double>(prompts.size());

  std::printf("%zu recordings\n\n%-22s%8s", prompts.size(), "segmental SNR", "noisy");
  for (const Method &method : methods) std::printf("%20s", method.name);
  std::printf("\n");
  struct Kind {
    const char *name;
    int voices;
  };
  for (const auto &[kind, voices] :
       {Kind{"white", 0}, Kind{"car", 0}, Kind{"babble", 100}, Kind{"babble", 8}}) {
    for (const double ratio : {0.0, 5.0, 10.0}) {
      double before = 0;
      std::vector<double> after(methods.size());
      for (std::size_t i = 0; i < prompts.size(); ++i) {
        Samples noisy = orv::bench::noiseFor(kind, voices, ratio, prompts, i);
        for (std::size_t n = 0; n < noisy.size(); ++n) noisy[n] += prompts[i][n];
        before += segmentalRatio(prompts[i], noisy, rates[i]) / count;
        for (std::size_t m = 0; m < methods.size(); ++m)
          after[m] += segmentalRatio(prompts[i], methods[m].apply(noisy, rates[i]), rates[i]) / count;
      }
      const std::string name = std::string(kind) + (voices > 0 ? " of " + std::to_string(voices) : "");
      std::printf("%-14s %3.0f dB%8.2f", name.c_str(), ratio, before);
      for (const double value : after) std::printf("%11.2f (%+6.2f)", value, value - before);
      std::printf("\n");
    }
  }

  std::printf("\n%-22s%8s%10s%12s%10s\n", "no noise", "mean", "median", ">= 30 dB", "x real");
  for (const Method &method : methods) {
    double sum = 0, spent = 0;
    std::vector<double> ratios;
    for (std::size_t i = 0; i < prompts.size(); ++i) {
      const auto begin = std::chrono::steady_clock::now();
      const Samples out = method.apply(prompts[i], rates[i]);
      spent += std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
      const std::size_t len = out.size();
      const double ratio =
          decibels(energy(prompts[i].data(), len), distance(prompts[i].data(), out.data(), len));
      sum += ratio;
      ratios.push_back(ratio);
    }
    std::sort(ratios.begin(), ratios.end());
    const auto good = std::count_if(ratios.begin(), ratios.end(), [](double r) { return r >= 30; });
    std::printf("%-22s%8.1f%10.1f%10.0f %%%10.0f\n", method.name, sum / count, ratios[ratios.size() / 2],
                100 * static_cast<double>(good) / count, seconds / spent);
  }
}

}  // namespace

int main(int argc, char **argv) {
  if (argc < 3) {
    std::fprintf(stderr, "usage: orv_denoise_gain K/N DIR...\n");
    return 2;
  }
  try {
    run(argv[1], {argv + 2, argv + argc});
  } catch (const std::exception &error) {
    std::fprintf(stderr, "orv_denoise_gain: %s\n", orv::oneLine(error.what()).c_str());
    return 1;
  }
}
