#include "common/noisereduction.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "common/error.h"
#include "common/realfft.h"
#include "orvsr/frontend.h"
#include "orvsr/robust.h"

namespace orv {
namespace {

constexpr std::size_t kHop = NoiseReducer::kHop, kBins = NoiseReducer::kBins, kBands = NoiseReducer::kBands;
constexpr std::size_t kBuffer = 4 * kHop;  // of a stage; the second of its four blocks is the one filtered
constexpr std::size_t kWindow = 200, kWindowAt = 60;
constexpr std::size_t kTransform = 4 * (kBins - 1);
constexpr std::size_t kTaps = 17, kWing = kTaps / 2;
constexpr float kFullScale = 32768;           // the constants below are for the range of 16-bit audio
constexpr float kLeastLevel = 4.5399930e-5f;  // exp(-10)

using Bins = std::array<float, kBins>;
using Bands = std::array<float, kBands>;

// The part of an average that stays, growing from 0 so that the first values are weighted alike.
float memory(long frame, float longRun) { return std::min(1 - 1 / static_cast<float>(frame), longRun); }

// Tells pauses from speech by the energy of a block against its long-term mean in pauses.
class PauseDetector {
 public:
  bool pause(const float *samples) {
    ++frame_;
    float sum = 64;
    for (std::size_t i = 0; i < kHop; ++i) sum += samples[i] * samples[i];
    const float energy = 0.5f + 16 / std::numbers::ln2_v<float> * std::log(sum / 64);
    if (energy - mean_ < 20 || frame_ < 10) {
      const bool quick = energy < mean_ || frame_ < 10;
      mean_ += (1 - (quick ? memory(frame_, frame_ < 10 ? 1.0f : 0.97f) : 0.99f)) * (energy - mean_);
      mean_ = std::max(mean_, 80.0f);
    }
    if (frame_ <= 4) return true;
    if (energy - mean_ > 15) {
      ++speech_;
      return false;
    }
    if (speech_ > 4) hangover_ = 15;
    speech_ = 0;
    if (hangover_ == 0) return true;
    --hangover_;
    return false;
  }

 private:
  long frame_ = 0;
  float mean_ = 0;
  int speech_ = 0, hangover_ = 0;
};

// How much of the second stage's filter is applied: 0.8 in pauses, 0.1 in speech.
class FilterShare {
 public:
  float next(const Bins &denoised, const Bins &noise) {
    ++frame_;
    float speech = 0, pause = 0;
    for (const float x : denoised) speech += x;
    for (const float x : noise) pause += x;
    std::rotate(ratios_.begin(), ratios_.begin() + 1, ratios_.end());
    ratios_[2] = speech / pause;
    const float ratio = ratios_[0] * ratios_[1] * ratios_[2];
    const float snr = ratio > 0.0001f ? 20.0f / 3 * std::log10(ratio) : -100.0f / 3;
    if (snr - low_ < 10 || frame_ < 10) {
      const float keep = frame_ < 10 ? memory(frame_, 1) : snr < low_ ? 0.95f : 0.99f;
      low_ = keep * low_ + (1 - keep) * snr;
    }
    if (speech > 100) share_ += snr < low_ + 3.5f ? 0.15f : -0.3f;
    share_ = std::clamp(share_, 0.1f, 0.8f);
    return share_;
  }

 private:
  long frame_ = 0;
  std::array<float, 3> ratios_{1, 1, 1};
  float low_ = 0, share_ = 0.8f;
};

struct BankRelease {
  void operator()(OrvsFBankState_32f *bank) const { orvsFBankFree_32f(bank); }
};

// What both stages have in common and only read, but for the transform's buffers.
struct Tools {
  Tools() : transform(kTransform) {
    OrvsFBankState_32f *made = nullptr;
    require(orvsMelFBankInitAllocLow_Aurora_32f(&made), "orvsMelFBankInitAllocLow_Aurora_32f");
    bank.reset(made);
    const double pi = std::numbers::pi;
    for (std::size_t i = 0; i < kWindow; ++i) {
      window[i] = static_cast<float>(0.5 - 0.5 * std::cos(2 * pi * (static_cast<double>(i) + 0.5) / kWindow));
    }
    // The middle of each band, and the stretch between its neighbours, in parts of the sampling rate.
    Bins ramp;
    for (std::size_t k = 0; k < kBins; ++k) ramp[k] = static_cast<float>(k) / kTransform * 2;
    Bands middle;
    require(orvsEvalFBank_32f(ramp.data(), middle.data(), bank.get()), "orvsEvalFBank_32f");
    for (std::size_t b = 0; b < kBands; ++b) {
      const double stretch = middle[std::min(b + 1, kBands - 1)] - middle[b == 0 ? 0 : b - 1];
      for (std::size_t n = 0; n <= kWing; ++n) {
        const double at = static_cast<double>(n);
        const double taper = 0.5 + 0.5 * std::cos(2 * pi * at / kTaps);
        cosines[n][b] = static_cast<float>(taper * stretch * std::cos(2 * pi * at * middle[b]));
      }
    }
  }

  // The taps of a filter of no phase whose gains over the bands are given.
  std::array<float, kTaps> taps(const Bands &gains) const {
    std::array<float, kTaps> left, right;
    std::array<float, kWing + 2> response{};
    for (std::size_t n = 0; n <= kWing; ++n) {
      for (std::size_t b = 0; b < kBands; ++b) response[n] += gains[b] * cosines[n][b];
    }
    require(orvsTabsCalculation_Aurora_32f(response.data(), left.data()), "orvsTabsCalculation_Aurora_32f");
    // That function lays the right wing a place further out than the left one. From a response moved by as
    // much it makes the wing that mirrors the left.
    std::copy_backward(response.begin() + 1, response.end() - 1, response.end());
    require(orvsTabsCalculation_Aurora_32f(response.data(), right.data()), "orvsTabsCalculation_Aurora_32f");
    std::copy(right.begin() + kWing + 1, right.end(), left.begin() + kWing + 1);
    return left;
  }

  RealFft transform;
  std::unique_ptr<OrvsFBankState_32f, BankRelease> bank;
  std::array<float, kWindow> window;
  std::array<std::array<float, kBands>, kWing + 1> cosines;
};

// A stage: it holds four blocks, and filters the second when the fourth has come.
class Stage {
 public:
  explicit Stage(NoiseReducer::Aim aim) : aim_(aim) {}

  // The last block in becomes the fourth.
  void take(const float *samples) {
    std::copy(buffer_.begin() + kHop, buffer_.end(), buffer_.begin());
    std::copy_n(samples, kHop, buffer_.end() - kHop);
    ++taken_;
  }
  // Whether the second block holds samples of the stream.
  bool ready() const { return taken_ >= 3; }
  const float *newest() const { return buffer_.data() + kBuffer - kHop; }

  // The mean power of the spectra about the block before and this one.
  void analyse(Tools &tools) {
    ++frame_;
    std::array<float, kTransform> windowed{}, packed;
    for (std::size_t i = 0; i < kWindow; ++i) windowed[i] = tools.window[i] * buffer_[kWindowAt + i];
    tools.transform.forward(windowed.data(), packed.data());
    Bins power;
    require(orvsSmoothedPowerSpectrumAurora_32f(packed.data(), power.data(), kTransform),
            "orvsSmoothedPowerSpectrumAurora_32f");
    if (frame_ == 1) last_ = power;
    for (std::size_t k = 0; k < kBins; ++k) {
      power_[k] = 0.5f * (power[k] + last_[k]);
      level_[k] = levelOf(power_[k]);
    }
    last_ = power;
  }

  // The noise is what pauses hold.
  void learnFromPause(bool pause) {
    if (!pause) return;
    const float keep = memory(frame_, 0.99f);
    for (std::size_t k = 0; k < kBins; ++k)
      noise_[k] = std::max(keep * noise_[k] + (1 - keep) * level_[k], kLeastLevel);
  }

  // The noise is what changes slowly. In the first tenth of a second it is what pauses hold, as a voice that
  // is there from the start must not pass for noise.
  void learnAlways(bool pause) {
    if (frame_ < 11 && pause) {
      const float keep = memory(frame_, 1);
      for (std::size_t k = 0; k < kBins; ++k) noisePower_[k] = keep * noisePower_[k] + (1 - keep) * power_[k];
    } else {
      const Bins before = noisePower_;
      require(orvsNoiseSpectrumUpdate_Aurora_32f(power_.data(), before.data(), noisePower_.data(), kBins),
              "orvsNoiseSpectrumUpdate_Aurora_32f");
    }
    for (std::size_t k = 0; k < kBins; ++k) noise_[k] = std::max(levelOf(noisePower_[k]), kLeastLevel);
  }

  void design(Tools &tools) {
    require(orvsWienerFilterDesign_Aurora_32f(level_.data(), noise_.data(), denoised_.data(), gains_.data(),
                                              kBins),
            "orvsWienerFilterDesign_Aurora_32f");
    for (std::size_t k = 0; k < kBins; ++k) denoised_[k] = gains_[k] * level_[k];
    require(orvsEvalFBank_32f(gains_.data(), melGains_.data(), tools.bank.get()), "orvsEvalFBank_32f");
  }

  void filter(const Tools &tools, const Bands &gains, float *block) const {
    const auto taps = tools.taps(gains);
    require(orvsResidualFilter_Aurora_32f(buffer_.data() + kHop - kWing, block, taps.data()),
            "orvsResidualFilter_Aurora_32f");
  }

  const Bins &power() const { return power_; }
  const Bins &noise() const { return noise_; }
  const Bins &denoised() const { return denoised_; }
  const Bins &gains() const { return gains_; }
  const Bands &melGains() const { return melGains_; }

 private:
  // The filter is designed on magnitudes or on powers.
  float levelOf(float power) const {
    return aim_ == NoiseReducer::Aim::recognition ? std::sqrt(power) : power;
  }

  NoiseReducer::Aim aim_;
  std::array<float, kBuffer> buffer_{};
  long taken_ = 0, frame_ = 0;
  Bins last_{}, power_{}, level_{}, noise_{}, noisePower_{}, denoised_{}, gains_{};
  Bands melGains_{};
};

}  // namespace

struct NoiseReducer::State {
  Tools tools;
  // What a stream changes.
  struct Stream {
    explicit Stream(Aim aim) : first(aim), second(aim) {}

    std::array<float, kHop> waiting{};  // samples that do not fill a block yet
    std::size_t count = 0;
    std::size_t owed = 0;  // blocks begun that have not come out
    PauseDetector pauses;
    FilterShare share;
    Stage first, second;
    std::array<Block, 3>
        found{};  // what the first stage found about the blocks that the second has not filtered
  } stream;
  const Aim aim;

  explicit State(Aim theAim) : stream(theAim), aim(theAim) {}

  void block(const Sink &sink) {
    Stream &s = stream;
    s.first.take(s.waiting.data());
    const bool pause = s.pauses.pause(s.first.newest());
    if (!s.first.ready()) return;
    s.first.analyse(tools);
    s.first.learnFromPause(pause);
    s.first.design(tools);
    std::rotate(s.found.begin(), s.found.begin() + 1, s.found.end());
    Block &found = s.found.back();
    found.power = s.first.power();
    found.gains = s.first.gains();
    found.melGains = s.first.melGains();
    found.pause = pause;
    std::array<float, kHop> halfDone;
    s.first.filter(tools, s.first.melGains(), halfDone.data());

    s.second.take(halfDone.data());
    if (!s.second.ready()) return;
    s.second.analyse(tools);
    s.second.learnAlways(s.found.front().pause);
    s.second.design(tools);
    const float share = s.share.next(s.second.denoised(), s.second.noise());
    Bands gains = s.second.melGains();
    for (float &gain : gains) gain = 1 - share + share * gain;
    Block &out = s.found.front();
    s.second.filter(tools, gains, out.samples.data());
    for (float &x : out.samples) x *= 1 / kFullScale;
    --s.owed;
    sink(out);
  }

  void push(std::span<const float> samples, const Sink &sink) {
    Stream &s = stream;
    while (!samples.empty()) {
      if (s.count == 0) ++s.owed;
      const std::size_t count = std::min(samples.size(), kHop - s.count);
      for (std::size_t i = 0; i < count; ++i) s.waiting[s.count + i] = kFullScale * samples[i];
      samples = samples.subspan(count);
      s.count += count;
      if (s.count < kHop) return;
      block(sink);
      s.count = 0;
    }
  }

  void flush(const Sink &sink) {
    const std::size_t owed = stream.owed;
    static constexpr std::array<float, kHop> kZeros{};
    std::size_t out = 0;
    const Sink counted = [&](const Block &one) {
      if (out++ < owed) sink(one);
    };
    if (stream.count > 0) push(std::span(kZeros).first(kHop - stream.count), counted);
    while (out < owed) push(kZeros, counted);
    stream = Stream(aim);
  }
};

NoiseReducer::NoiseReducer(Aim aim) : state_(std::make_unique<State>(aim)) {}
NoiseReducer::~NoiseReducer() = default;
NoiseReducer::NoiseReducer(NoiseReducer &&) noexcept = default;
NoiseReducer &NoiseReducer::operator=(NoiseReducer &&) noexcept = default;

void NoiseReducer::push(std::span<const float> samples, const Sink &sink) { state_->push(samples, sink); }
void NoiseReducer::flush(const Sink &sink) { state_->flush(sink); }

}  // namespace orv
