// What the programs do with the library.

#include <span>

#include "bench/data.h"
#include "bench/ratio.h"
#include "common/featurechain.h"

namespace orv::bench {

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
}

}  // namespace orv::bench
