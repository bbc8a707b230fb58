#include "common/endpoints.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace orv {

void trimSilence(Recording &recording, double decibels, std::size_t least) {
  constexpr std::size_t kMargin = 3;  // blocks
  std::vector<float> &samples = recording.samples;
  const std::size_t block = std::max<std::size_t>(1, static_cast<std::size_t>(recording.sampleRate / 100));
  const std::size_t blocks = samples.size() / block;
  std::vector<double> energies(blocks);
  for (std::size_t i = 0; i < blocks * block; ++i) {
    energies[i / block] += static_cast<double>(samples[i]) * static_cast<double>(samples[i]);
  }
  if (blocks == 0) return;
  const double limit = *std::max_element(energies.begin(), energies.end()) * std::pow(10, -decibels / 10);
  const auto loud = [&](double energy) { return energy >= limit; };
  const auto begin =
      static_cast<std::size_t>(std::find_if(energies.begin(), energies.end(), loud) - energies.begin());
  const auto quietEnd =
      static_cast<std::size_t>(std::find_if(energies.rbegin(), energies.rend(), loud) - energies.rbegin());
  std::size_t first = begin > kMargin ? (begin - kMargin) * block : 0;
  std::size_t last = quietEnd > kMargin ? (blocks - quietEnd + kMargin) * block : samples.size();
  if (last - first < least) {
    last = std::min(samples.size(), first + least);
    first = last > least ? std::min(first, last - least) : 0;
  }
  samples.erase(samples.begin() + static_cast<std::ptrdiff_t>(last), samples.end());
  samples.erase(samples.begin(), samples.begin() + static_cast<std::ptrdiff_t>(first));
}

}  // namespace orv
