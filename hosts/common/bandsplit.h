// A signal as two of half the rate: its lower and its upper band, and back.

#ifndef ORV_HOSTS_COMMON_BANDSPLIT_H
#define ORV_HOSTS_COMMON_BANDSPLIT_H

#include <array>
#include <cstddef>
#include <functional>
#include <span>
#include <vector>

namespace orv {

// The prototype of both bands: a windowed sinc whose power is a half at a quarter of the rate, so that the
// powers of the bands add up to 1 within 0.005 dB. Half the rate from there it is 80 dB down.
using BandTaps = std::array<float, 118>;
const BandTaps &bandTaps();

// Output i of either band belongs to the samples 2 i and 2 i + 1. The upper band comes in rising order of
// frequency. Streams of any length.
class BandSplit {
 public:
  static constexpr std::size_t kPiece = 80;
  // Both bands, as many values of each; kPiece but for the last call.
  using Sink = std::function<void(std::span<const float> low, std::span<const float> high)>;

  BandSplit() { restart(); }
  void push(std::span<const float> samples, const Sink &sink);
  // The rest; a last sample without a partner is dropped. Afterwards a new stream can begin.
  void flush(const Sink &sink);

 private:
  void restart();

  std::vector<float> waiting_;  // from the first sample that the next output looks at
  std::size_t pairs_ = 0;       // pushed, that have not come out
  bool odd_ = false;
};

// Puts both bands together again: after BandSplit the same signal within 0.005 dB, without delay in the end.
class BandMerge {
 public:
  using Sink = std::function<void(std::span<const float> samples)>;

  // As many values of each band, in pieces of any size.
  void push(std::span<const float> low, std::span<const float> high, const Sink &sink);
  void flush(const Sink &sink);

 private:
  BandTaps sums_{};         // samples that more is added to
  std::size_t early_ = 58;  // samples ahead of the stream that are still to come, half the taps
  bool first_ = true;       // the next value has an even number
};

}  // namespace orv

#endif
