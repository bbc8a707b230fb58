#include "common/bandsplit.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "common/error.h"
#include "orvsr/robust.h"

namespace orv {
namespace {

constexpr std::size_t kTaps = std::tuple_size_v<BandTaps>;
constexpr std::size_t kAhead = kTaps / 2 - 1;  // taps before the pair of samples that an output belongs to

}  // namespace

const BandTaps &bandTaps() {
  static const BandTaps taps = [] {
    // Where the sinc ends decides how the powers of the bands add up.
    const double pi = std::numbers::pi, edge = 0.5087325503 * pi;
    std::array<double, kTaps> exact;
    double sum = 0;
    for (std::size_t n = 0; n < kTaps; ++n) {
      const double at = static_cast<double>(n) - 0.5 * (kTaps - 1);
      const double phase = 2 * pi * (static_cast<double>(n) + 0.5) / kTaps;
      const double blackman = 0.42 - 0.5 * std::cos(phase) + 0.08 * std::cos(2 * phase);
      sum += exact[n] = blackman * std::sin(edge * at) / at;
    }
    BandTaps rounded;
    for (std::size_t n = 0; n < kTaps; ++n) rounded[n] = static_cast<float>(exact[n] / sum);
    return rounded;
  }();
  return taps;
}

void BandSplit::restart() {
  waiting_.assign(kAhead, 0.0f);
  pairs_ = 0;
  odd_ = false;
}

void BandSplit::push(std::span<const float> samples, const Sink &sink) {
  pairs_ += (samples.size() + (odd_ ? 1 : 0)) / 2;
  odd_ = (samples.size() % 2 != 0) != odd_;
  waiting_.insert(waiting_.end(), samples.begin(), samples.end());
  constexpr std::size_t kSeen = 2 * (kPiece - 1) + kTaps;  // by a piece
  std::array<float, kPiece> low, high;
  std::size_t from = 0;
  for (; waiting_.size() - from >= kSeen; from += 2 * kPiece) {
    require(orvsLowHighFilter_Aurora_32f(waiting_.data() + from, low.data(), high.data(), 2 * kPiece,
                                         bandTaps().data(), kTaps),
            "orvsLowHighFilter_Aurora_32f");
    const std::size_t count = std::min(kPiece, pairs_);
    pairs_ -= count;
    if (count > 0) sink(std::span(low).first(count), std::span(high).first(count));
  }
  waiting_.erase(waiting_.begin(), waiting_.begin() + static_cast<std::ptrdiff_t>(from));
}

void BandSplit::flush(const Sink &sink) {
  const std::size_t owed = pairs_;
  const std::vector<float> zeros(2 * kPiece + kTaps);
  std::size_t out = 0;
  while (out < owed) {
    push(zeros, [&](std::span<const float> low, std::span<const float> high) {
      const std::size_t count = std::min(low.size(), owed - out);
      out += count;
      if (count > 0) sink(low.first(count), high.first(count));
    });
  }
  restart();
}

void BandMerge::push(std::span<const float> low, std::span<const float> high, const Sink &sink) {
  const BandTaps &taps = bandTaps();
  std::vector<float> done;
  for (std::size_t i = 0; i < low.size(); ++i) {
    // Each tap of the upper band has the opposite sign of the one before; the first has that of the split.
    const float even = 2 * (low[i] + (first_ ? -high[i] : high[i]));
    const float odd = 2 * (low[i] - (first_ ? -high[i] : high[i]));
    for (std::size_t k = 0; k < kTaps; k += 2) {
      sums_[k] += even * taps[k];
      sums_[k + 1] += odd * taps[k + 1];
    }
    first_ = !first_;
    if (early_ > 0) {
      early_ -= 2;
    } else {
      done.insert(done.end(), sums_.begin(), sums_.begin() + 2);
    }
    std::copy(sums_.begin() + 2, sums_.end(), sums_.begin());
    std::fill(sums_.end() - 2, sums_.end(), 0.0f);
  }
  if (!done.empty()) sink(done);
}

void BandMerge::flush(const Sink &sink) {
  const std::array<float, kAhead / 2> zeros{};
  push(zeros, zeros, sink);
  *this = BandMerge();
}

}  // namespace orv
