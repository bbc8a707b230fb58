#include "common/suppressor.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <string>
#include <vector>

#include "common/error.h"
#include "common/realfft.h"
#include "orvsr/robust.h"

namespace orv {
namespace {

// Tuned on prompts in white noise, car noise and babble: see the table of docs/hosts.md.
constexpr double kLeastFrame = 0.02;  // seconds; the transform rounds up to a power of two
constexpr std::size_t kOverlap = 2;   // frames that a sample is part of
constexpr double kAhead = 1;          // seconds by which the noise is known before a frame is weighed
constexpr double kMemory = 0.94;      // of the expected ratio, per 8 ms
constexpr double kRise = 4;      // seconds in which the noise that is taken off follows the tracked one up
constexpr double kFall = 0.2;    // and down
constexpr float kExcess = 1.2f;  // what is taken off, in parts of the tracked noise
constexpr float kLeastRatio = 0.001f;  // of speech to noise: -30 dB
constexpr float kLeastGain = 0.05f;    // what is left of noise alone: -26 dB
constexpr float kSilence = 1e-12f;     // power of a sample below which a frame holds nothing to learn from

std::size_t transformSize(int sampleRate) {
  std::size_t size = 1;
  while (static_cast<double>(size) < kLeastFrame * sampleRate) size *= 2;
  return size;
}

}  // namespace

struct Suppressor::State {
  State(int sampleRate, SuppressionGain kind)
      : rate(sampleRate),
        gain(kind),
        size(transformSize(sampleRate)),
        half(size / 2),
        hop(size / kOverlap),
        bins(half + 1),
        memory(static_cast<float>(std::pow(kMemory, 125.0 * seconds(hop)))),
        ahead(static_cast<std::size_t>(std::ceil(kAhead * sampleRate / static_cast<double>(hop)))),
        rise(static_cast<float>(seconds(hop) / kRise)),
        fall(static_cast<float>(seconds(hop) / kFall)),
        fft(size),
        window(size),
        frame(size),
        windowed(size),
        spectrum(size),
        coming(ahead, std::vector<float>(size)),
        sums(size),
        power(bins),
        smoothed(bins),
        tracked(bins),
        noise(bins),
        kept(bins),
        posterior(bins),
        prior(bins),
        gains(bins) {
    // The root of a Hann window before and after: what overlaps adds up to one.
    for (std::size_t i = 0; i < size; ++i)
      window[i] = static_cast<float>(
          std::sqrt(2.0 / kOverlap) *
          std::sin(std::numbers::pi * (static_cast<double>(i) + 0.5) / static_cast<double>(size)));
    std::int32_t bytes = 0;
    require(orvsGetSizeMCRA_32f(static_cast<std::int32_t>(size), &bytes), "orvsGetSizeMCRA_32f");
    tracker.resize((static_cast<std::size_t>(bytes) + sizeof(double) - 1) / sizeof(double));
    restart();
  }

  McraState *mcra() { return reinterpret_cast<McraState *>(tracker.data()); }

  void restart() {
    require(
        orvsAltInitMCRA_32f(rate, static_cast<std::int32_t>(size), static_cast<std::int32_t>(hop), mcra()),
        "orvsAltInitMCRA_32f");
    std::fill(frame.begin(), frame.end(), 0.0f);
    std::fill(sums.begin(), sums.end(), 0.0f);
    for (auto &one : coming) std::fill(one.begin(), one.end(), 0.0f);
    std::fill(tracked.begin(), tracked.end(), 0.0f);
    std::fill(noise.begin(), noise.end(), 0.0f);
    std::fill(kept.begin(), kept.end(), 0.0f);
    waiting = hop;
    oldest = 0;
    skip = size - hop + ahead * hop;
    owed = 0;
    learnt = 0;
  }

  // The frame is full: the noise learns from it. The frame that came in so much earlier is weighed; what it
  // adds to is complete in its first samples, which leave.
  void process(const Sink &sink) {
    for (std::size_t i = 0; i < size; ++i) windowed[i] = window[i] * frame[i];
    fft.forward(windowed.data(), spectrum.data());
    takePower();
    trackNoise();
    std::swap(spectrum, coming[oldest]);
    oldest = (oldest + 1) % ahead;
    takePower();
    weigh();
    fft.inverse(spectrum.data(), windowed.data());
    for (std::size_t i = 0; i < size; ++i) sums[i] += window[i] * windowed[i];
    const std::size_t early = std::min(skip, hop);
    const std::size_t count = std::min(hop - early, owed);
    if (count > 0) sink({sums.data() + early, count});
    owed -= count;
    skip -= early;
    std::copy(sums.begin() + static_cast<std::ptrdiff_t>(hop), sums.end(), sums.begin());
    std::fill(sums.end() - static_cast<std::ptrdiff_t>(hop), sums.end(), 0.0f);
    std::copy(frame.begin() + static_cast<std::ptrdiff_t>(hop), frame.end(), frame.begin());
    waiting = hop;
  }

  void weigh() {
    const auto len = static_cast<std::int32_t>(bins);
    for (std::size_t k = 0; k < bins; ++k) {
      const float inverse = 1 / std::max(kExcess * noise[k], silence());
      posterior[k] = power[k] * inverse;
      prior[k] =
          std::max(memory * kept[k] * inverse + (1 - memory) * std::max(posterior[k] - 1, 0.0f), kLeastRatio);
    }
    require(orvsFilterUpdateWiener_32f(prior.data(), gains.data(), len), "orvsFilterUpdateWiener_32f");
    // What these gains leave of the frame is a ratio that does not lag behind it by a frame.
    for (std::size_t k = 0; k < bins; ++k)
      prior[k] = std::max(gains[k] * gains[k] * posterior[k], kLeastRatio);
    require(orvsFilterUpdateWiener_32f(prior.data(), gains.data(), len), "orvsFilterUpdateWiener_32f");
    if (gain == SuppressionGain::emns) {
      prior = gains;
      require(orvsFilterUpdateEMNS_32f(prior.data(), posterior.data(), gains.data(), len),
              "orvsFilterUpdateEMNS_32f");
    }
    for (std::size_t k = 0; k < bins; ++k) {
      kept[k] = power[k] * gains[k] * gains[k];
      gains[k] = std::clamp(gains[k], kLeastGain, 1.0f);
    }
    spectrum[0] *= gains[0];
    spectrum[1] *= gains[half];
    for (std::size_t k = 1; k < half; ++k) {
      spectrum[2 * k] *= gains[k];
      spectrum[2 * k + 1] *= gains[k];
    }
  }

  void takePower() {
    power[0] = spectrum[0] * spectrum[0];
    power[half] = spectrum[1] * spectrum[1];
    for (std::size_t k = 1; k < half; ++k)
      power[k] = spectrum[2 * k] * spectrum[2 * k] + spectrum[2 * k + 1] * spectrum[2 * k + 1];
  }

  // Power of a bin that no microphone gives.
  float silence() const { return kSilence * static_cast<float>(size); }

  // The tracker takes powers smoothed over neighbouring bins, so that its minima lie nearer to the mean. What
  // it finds still follows every frame of noise; the mean over the last seconds of it does not.
  void trackNoise() {
    float total = 0;
    for (std::size_t k = 0; k < bins; ++k) {
      const std::size_t below = k == 0 ? 1 : k - 1;
      const std::size_t above = k == half ? half : k + 1;
      smoothed[k] = 0.5f * power[k] + 0.25f * (power[below] + power[above]);
      total += power[k];
    }
    // A recorder that is switched off tells nothing of the noise of the place.
    if (total <= silence() * static_cast<float>(half)) return;
    require(orvsUpdateNoisePSDMCRA_32f_I(smoothed.data(), mcra(), tracked.data()),
            "orvsUpdateNoisePSDMCRA_32f_I");
    // At first the mean of all there is.
    const float first = 1 / static_cast<float>(++learnt);
    const float up = std::max(rise, first), down = std::max(fall, first);
    for (std::size_t k = 0; k < bins; ++k) {
      const float step = tracked[k] - noise[k];
      noise[k] += std::min(step > 0 ? up : down, 1.0f) * step;
    }
  }

  double seconds(std::size_t samples) const { return static_cast<double>(samples) / rate; }

  int rate;
  SuppressionGain gain;
  std::size_t size, half, hop, bins;
  float memory;       // of the expected ratio, per frame
  std::size_t ahead;  // frames between coming in and being weighed
  float rise, fall;   // per frame
  RealFft fft;
  std::vector<float> window;
  std::vector<float> frame;  // what the next frame shares with the last, and what came in since
  std::vector<float> windowed, spectrum;
  std::vector<std::vector<float>> coming;  // spectra that wait to be weighed, a ring
  std::size_t oldest = 0;
  std::vector<float> sums;  // overlapped frames
  std::vector<float> power, smoothed;
  std::vector<float> tracked, noise;  // the tracker's, and what is taken off
  std::vector<float> kept;            // power that the last frame kept
  std::vector<float> posterior, prior, gains;
  std::vector<double> tracker;
  std::uint64_t learnt = 0;  // frames that the tracker took
  std::size_t waiting = 0;   // samples that the frame still wants
  std::size_t skip = 0;      // samples ahead of the stream
  std::size_t owed = 0;      // samples that came in and have not come out
};

Suppressor::Suppressor(int sampleRate, SuppressionGain gain) {
  if (sampleRate < 8000 || sampleRate > 48000)
    throw Error("a sample rate of " + std::to_string(sampleRate) + " Hz lies outside 8000 to 48000 Hz");
  state_ = std::make_unique<State>(sampleRate, gain);
}
Suppressor::~Suppressor() = default;
Suppressor::Suppressor(Suppressor &&) noexcept = default;
Suppressor &Suppressor::operator=(Suppressor &&) noexcept = default;

void Suppressor::push(std::span<const float> samples, const Sink &sink) {
  State &s = *state_;
  while (!samples.empty()) {
    const std::size_t taken = std::min(samples.size(), s.waiting);
    std::copy_n(samples.begin(), taken, s.frame.end() - static_cast<std::ptrdiff_t>(s.waiting));
    s.waiting -= taken;
    s.owed += taken;
    samples = samples.subspan(taken);
    if (s.waiting == 0) s.process(sink);
  }
}

void Suppressor::flush(const Sink &sink) {
  State &s = *state_;
  while (s.owed > 0) {
    std::fill(s.frame.end() - static_cast<std::ptrdiff_t>(s.waiting), s.frame.end(), 0.0f);
    s.process(sink);
  }
  s.restart();
}

}  // namespace orv
