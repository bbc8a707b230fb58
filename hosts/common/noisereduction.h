// Noise reduction in two stages of Wiener filtering, for a stream of any length.

#ifndef ORV_HOSTS_COMMON_NOISEREDUCTION_H
#define ORV_HOSTS_COMMON_NOISEREDUCTION_H

#include <array>
#include <cstddef>
#include <functional>
#include <memory>
#include <span>

namespace orv {

// Each stage estimates the spectrum of the noise, designs a Wiener filter from it every 80 samples, smooths
// the filter over mel bands and applies it in the time domain with 17 taps. The first stage learns the noise
// from pauses, the second from what the first has left, and filters speech less than pauses.
//
// The constants are those for samples at 8 kHz. A stream at another rate runs through just as well, its
// frequencies scaled, its times divided.
//
// Source of the method: ETSI ES 202 050, Advanced front-end feature extraction algorithm, section 5.1.
class NoiseReducer {
 public:
  static constexpr std::size_t kHop = 80;
  static constexpr std::size_t kBins = 65;  // 0 to half the sampling rate
  static constexpr std::size_t kBands = 25;
  // Output stands so many samples behind input, until flush().
  static constexpr std::size_t kDelay = 4 * kHop;

  // For recognition the filters are designed on magnitudes, as the standard has it, and cut deep. For
  // listening they are designed on powers, which takes less noise away within speech and keeps more of the
  // speech.
  enum class Aim { recognition, listening };

  // 80 samples, and what the first stage found about them.
  struct Block {
    std::array<float, kHop> samples;     // denoised, nominally from -1 to 1 as those of the input
    std::array<float, kBins> power;      // of the noisy samples, in steps of 16-bit audio
    std::array<float, kBins> gains;      // of the Wiener filter, 0 to 1
    std::array<float, kBands> melGains;  // the same, smoothed over the bands
    bool pause;                          // noise alone, as far as the energy tells
  };
  using Sink = std::function<void(const Block &)>;

  explicit NoiseReducer(Aim aim = Aim::recognition);
  ~NoiseReducer();
  NoiseReducer(NoiseReducer &&) noexcept;
  NoiseReducer &operator=(NoiseReducer &&) noexcept;

  // Takes samples in pieces of any size; where they are cut makes no difference to the output.
  void push(std::span<const float> samples, const Sink &sink);
  // The rest of the stream, which zeros complete to whole blocks. The first block that comes out holds the
  // first samples that went in. Afterwards a new stream can begin.
  void flush(const Sink &sink);

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace orv

#endif
