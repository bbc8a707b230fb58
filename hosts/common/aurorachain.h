// Noise-robust features of a stream of any length.

#ifndef ORV_HOSTS_COMMON_AURORACHAIN_H
#define ORV_HOSTS_COMMON_AURORACHAIN_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>

namespace orv {

// Noise reduction, offset compensation, wave processing, cepstra of 23 mel bands from 64 to 4000 Hz, blind
// equalisation, delta and acceleration values over nine frames. A row holds c1 to c12 and a mean of c0 and
// the log energy, then their delta, then their acceleration values. Frames of 25 ms come every 10 ms.
//
// At 16 kHz the band up to 4 kHz goes this way, and the band above adds three mel bands to the 23: their
// energies, coded by how far they lie below the noisy bands from 2 to 4 kHz and decoded from the denoised
// ones, and the same less the noise in pauses.
//
// Source of the method: ETSI ES 202 050, Advanced front-end feature extraction algorithm.
class AuroraChain {
 public:
  static constexpr std::int32_t kWidth = 39, kStatics = 13;
  // A row of features, and whether there is speech in its frame.
  using Sink = std::function<void(const float *row, bool speech)>;

  // Throws Error unless the rate is 8000 or 16000 Hz.
  explicit AuroraChain(int sampleRate);
  ~AuroraChain();
  AuroraChain(AuroraChain &&) noexcept;
  AuroraChain &operator=(AuroraChain &&) noexcept;

  // Frames that lie wholly within so many samples.
  std::size_t frames(std::size_t samples) const;
  // The least number of samples of a stream.
  std::size_t leastSamples() const;

  // Takes samples in pieces of any size; where they are cut makes no difference to the features.
  void push(std::span<const float> samples, const Sink &sink);
  // The rest of a stream of leastSamples() or more. Afterwards a new stream can begin.
  void flush(const Sink &sink);

 private:
  struct State;
  std::unique_ptr<State> state_;
};

// Brings the static values of a recording's rows to mean 0 and variance 1. Noise that is left lowers their
// variance, and a model of clean speech meets them again at the width it knows.
class Normalisation {
 public:
  void add(const float *row);
  // Once all rows have been added.
  void apply(float *row) const;

 private:
  std::array<double, AuroraChain::kStatics> sums_{}, squares_{};
  double rows_ = 0;
};

}  // namespace orv

#endif
