// Suppression of noise that changes slowly, for a stream of any length.

#ifndef ORV_HOSTS_COMMON_SUPPRESSOR_H
#define ORV_HOSTS_COMMON_SUPPRESSOR_H

#include <cstddef>
#include <functional>
#include <memory>
#include <span>

namespace orv {

// How a bin of the spectrum is weighed, xi being the ratio of speech to noise that is expected of it: by
// xi / (1 + xi), or by the estimator of least mean square error of the amplitude.
enum class SuppressionGain { wiener, emns };

// Frames of 21 to 32 ms, half of one apart, are transformed, weighed bin by bin and added up again. The
// noise of each bin is tracked by minima controlled recursive averaging, and known a second ahead: frames
// wait so long before they are weighed, since a tracker of minima is late. The expected ratio of speech to
// noise comes from the frame and from what the last one left, decision-directed.
//
// Sources of the method: I. Cohen, B. Berdugo, IEEE Signal Processing Letters 9 (2002), for the noise;
// Y. Ephraim, D. Malah, IEEE Trans. ASSP 32 (1984), for the ratio and the gain.
class Suppressor {
 public:
  using Sink = std::function<void(std::span<const float>)>;

  // Throws Error if the sample rate lies outside 8000 to 48000 Hz.
  Suppressor(int sampleRate, SuppressionGain gain);
  ~Suppressor();
  Suppressor(Suppressor &&) noexcept;
  Suppressor &operator=(Suppressor &&) noexcept;

  // Takes samples in pieces of any size; where they are cut makes no difference to the output.
  void push(std::span<const float> samples, const Sink &sink);
  // The rest: as many samples come out as went in, and none of them late. Afterwards a new stream can begin.
  void flush(const Sink &sink);

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace orv

#endif
