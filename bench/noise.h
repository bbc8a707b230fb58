// Noise to measure with, the same in every run and on every machine, and the power of one and all.

#ifndef ORV_BENCH_NOISE_H
#define ORV_BENCH_NOISE_H

#include <cmath>
#include <cstddef>
#include <random>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace orv::bench {

using Samples = std::vector<float>;

inline void toUnitPower(Samples &samples) {
  double mean = 0, power = 0;
  for (const float x : samples) mean += x;
  mean /= static_cast<double>(samples.size());
  for (const float x : samples) power += (x - mean) * (x - mean);
  const double gain = 1 / std::sqrt(power / static_cast<double>(samples.size()));
  for (float &x : samples) x = static_cast<float>((x - mean) * gain);
}

inline Samples filteredNoise(std::size_t len, double pole, std::mt19937 &random) {
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

// Prompts at once, all but the one that they are to disturb, each voice at the same power.
inline Samples babble(std::size_t len, int voices, std::span<const Samples> prompts, std::size_t self,
                      std::mt19937 &random) {
  Samples sum(len, 0.0f);
  for (int voice = 0; voice < voices; ++voice) {
    Samples speech;
    while (speech.size() < len) {
      const std::size_t drawn = random() % prompts.size();
      if (drawn == self) continue;
      Samples more = prompts[drawn];
      toUnitPower(more);
      const std::size_t from = speech.empty() ? random() % more.size() : 0;  // the first is joined midway
      speech.insert(speech.end(), more.begin() + static_cast<std::ptrdiff_t>(from), more.end());
    }
    for (std::size_t i = 0; i < len; ++i) sum[i] += speech[i];
  }
  return sum;
}

// Noise for prompt `self` at the mean power of that prompt, less so many decibels:
//
//   white   independent samples
//   babble  `voices` prompts at once
//   car     white noise through one pole at about 65 Hz: its power falls by 6 dB an octave
//
// It depends on the prompt and the kind alone: a prompt meets the same noise at every ratio.
inline Samples noiseFor(const std::string &kind, int voices, double decibels,
                        std::span<const Samples> prompts, std::size_t self) {
  if (kind != "white" && kind != "babble" && kind != "car")
    throw std::invalid_argument("'" + kind + "' is no kind of noise: white, babble or car");
  const Samples &prompt = prompts[self];
  std::mt19937 random(static_cast<unsigned>(self) * 8 + (kind == "white" ? 0 : kind == "babble" ? 1 : 2));
  Samples noise = kind == "babble" ? babble(prompt.size(), voices, prompts, self, random)
                                   : filteredNoise(prompt.size(), kind == "car" ? 0.95 : 0.0, random);
  toUnitPower(noise);
  double power = 0;
  for (const float x : prompt) power += static_cast<double>(x) * x;
  const double gain = std::sqrt(power / static_cast<double>(prompt.size())) * std::pow(10.0, -decibels / 20);
  for (float &x : noise) x = static_cast<float>(gain * x);
  return noise;
}

}  // namespace orv::bench

#endif
