// What the programs do with the library.

#include <cmath>
#include <numbers>
#include <span>

#include "bench/data.h"
#include "bench/ratio.h"
#include "common/featurechain.h"
#include "common/noisereduction.h"
#include "common/pitchtracker.h"
#include "common/suppressor.h"

namespace orv::bench {
namespace {

// Twenty harmonics of a pitch that glides between 90 and 150 Hz, and some noise.
Recording voice(int sampleRate, int seconds) {
  Recording recording;
  recording.sampleRate = sampleRate;
  const auto noise = uniform<float>(static_cast<std::size_t>(sampleRate * seconds), -0.01, 0.01, 1);
  double phase = 0;
  for (const float n : noise) {
    const double time = static_cast<double>(recording.samples.size()) / sampleRate;
    phase += 2 * std::numbers::pi * (120 + 30 * std::sin(time)) / sampleRate;
    double v = 0;
    for (int k = 1; k <= 20; ++k) v += std::sin(k * phase) / k;
    recording.samples.push_back(static_cast<float>(0.2 * v) + n);
  }
  return recording;
}

}  // namespace

void addHostCases() {
  // The features of `orv features` for a minute of sound that is in memory.
  constexpr int sampleRate = 8000;
  constexpr int seconds = 60;
  Case("hosts/FeatureChain/8 kHz").fixedPeer("real time", 2500.0, seconds).ours([] {
    return [signal = uniform<float>(sampleRate * seconds, -0.1, 0.1, 1),
            chain = FeatureChain(FeatureOptions(), sampleRate), features = Frames()]() mutable {
      chain.compute(std::span<const float>(signal.data(), signal.size()), features);
    };
  });

  // The track of `orv pitch` for five seconds.
  constexpr int length = 5;
  Case("hosts/PitchTrack/16 kHz").fixedPeer("real time", 200.0, length).ours([] {
    return [recording = voice(16000, length)] {
      benchmark::DoNotOptimize(trackPitch(recording, PitchOptions()));
    };
  });

  // Both methods of `orv denoise` on as much.
  const auto keep = [](const auto &some) { benchmark::DoNotOptimize(&some); };
  for (const auto &[name, gain] :
       {std::pair("wiener", SuppressionGain::wiener), {"emns", SuppressionGain::emns}}) {
    Case(std::string("hosts/Denoise/16 kHz/mcra, ") + name).fixedPeer("real time", 100.0, length).ours([=] {
      return [=, recording = voice(16000, length), suppressor = Suppressor(16000, gain)]() mutable {
        suppressor.push(recording.samples, keep);
        suppressor.flush(keep);
      };
    });
  }
  Case("hosts/Denoise/16 kHz/aurora").fixedPeer("real time", 100.0, length).ours([=] {
    return [=, recording = voice(16000, length)] {
      NoiseReducer reducer(NoiseReducer::Aim::listening);
      reducer.push(recording.samples, keep);
      reducer.flush(keep);
    };
  });
}

}  // namespace orv::bench
