#include "common/featurechain.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>
#include <sstream>

#include "common/error.h"
#include "common/resampler.h"
#include "orvsr/frontend.h"

namespace orv {
namespace {

// Frames are taken through the chain in blocks that stay in the first-level cache.
constexpr std::size_t kBlock = 64;
// Rows that the delta functions need at the start of an utterance, and carry from block to block.
constexpr std::size_t kDeltaLead = 6;
// The window brings samples to the range of 16-bit audio; a band below one step of it counts as one.
constexpr float kFullScale = 32768;
constexpr float kEnergyFloor = 1;
// 1 / (2 (1^2 + 2^2)): makes the two-frame window a regression slope.
constexpr float kDeltaGain = 0.1f;

template <class... Parts>
std::string text(const Parts &...parts) {
  std::ostringstream stream;
  (stream << ... << parts);
  return stream.str();
}

float windowGain(Window window, std::int32_t i, std::int32_t len) {
  const double phase = len > 1 ? 2 * std::numbers::pi * i / (len - 1) : std::numbers::pi;
  switch (window) {
    case Window::hamming:
      return static_cast<float>(0.54 - 0.46 * std::cos(phase));
    case Window::hann:
      return static_cast<float>(0.5 - 0.5 * std::cos(phase));
    case Window::rectangular:
      break;
  }
  return 1;
}

void checkOptions(const FeatureOptions &o, int sampleRate) {
  // Written so that a NaN is refused.
  const auto need = [](bool holds, const std::string &reason) {
    if (!holds) throw Error(reason);
  };
  if (o.frontEnd == FrontEnd::aurora) {
    FeatureOptions settled;
    settled.frontEnd = o.frontEnd;
    settled.dropPauses = o.dropPauses;
    settled.meanNormalisation = o.meanNormalisation;
    need(o == settled, "the front end aurora has frames, bands and cepstra of its own: none can be chosen");
    return;
  }
  need(!o.dropPauses, "only the front end aurora knows pauses that can be dropped");
  need(o.frameMs > 0 && o.frameMs <= 1000, text("a frame of ", o.frameMs, " ms is not within 0 to 1000 ms"));
  need(o.hopMs > 0 && o.hopMs <= 1000, text("a hop of ", o.hopMs, " ms is not within 0 to 1000 ms"));
  need(o.preEmphasis >= 0 && o.preEmphasis <= 1,
       text("a pre-emphasis of ", o.preEmphasis, " is not within 0 to 1"));
  if (o.kind == FeatureKind::lpcc || o.kind == FeatureKind::lsf) {
    need(o.order >= 2 && o.order <= 40 && o.order % 2 == 0,
         text("a predictor of order ", o.order, " is not an even one within 2 to 40"));
    return;
  }
  need(o.bands >= 1, text(o.bands, " bands are too few"));
  need(o.kind != FeatureKind::mfcc || (o.cepstra >= 1 && o.cepstra <= o.bands),
       text(o.cepstra, " cepstra are not within 1 to the ", o.bands, " bands"));
  need(o.lifter >= 1, text("a lifter of ", o.lifter, " is below 1"));
  const double half = 0.5 * sampleRate;
  const double high = o.highHz == 0 ? half : o.highHz;
  need(o.lowHz > 0 && o.lowHz < high && high <= half,
       text("bands from ", o.lowHz, " to ", high, " Hz do not lie within 0 to ", half, " Hz"));
}

}  // namespace

void logFloored(std::span<float> values, float floor) {
  constexpr std::uint32_t kSqrtHalf = 0x3f3504f3;
  for (float &value : values) {
    // value = m * 2^e with m from sqrt(1/2) to sqrt(2), then the series of log(1 + t) with t = m - 1. The
    // coefficients are those of the Cephes library's logf (S. Moshier, Methods and Programs for Mathematical
    // Functions, 1989).
    const std::uint32_t bits = std::bit_cast<std::uint32_t>(value > floor ? value : floor);
    const std::int32_t e = static_cast<std::int32_t>(bits - kSqrtHalf) >> 23;
    const float t = std::bit_cast<float>(bits - (static_cast<std::uint32_t>(e) << 23)) - 1.0f;
    const float scale = static_cast<float>(e);
    const float square = t * t;
    float p = 7.0376836292e-2f;
    p = p * t - 1.1514610310e-1f;
    p = p * t + 1.1676998740e-1f;
    p = p * t - 1.2420140846e-1f;
    p = p * t + 1.4249322787e-1f;
    p = p * t - 1.6668057665e-1f;
    p = p * t + 2.0000714765e-1f;
    p = p * t - 2.4999993993e-1f;
    p = p * t + 3.3333331174e-1f;
    const float tail = p * t * square + scale * -2.12194440e-4f - 0.5f * square;
    value = t + tail + scale * 0.693359375f;
  }
}

void FeatureChain::BankRelease::operator()(OrvsFBankState_32f *bank) const { orvsFBankFree_32f(bank); }
void FeatureChain::LifterRelease::operator()(OrvsDCTLifterState_32f *lifter) const {
  orvsDCTLifterFree_32f(lifter);
}

FeatureChain::~FeatureChain() = default;
FeatureChain::FeatureChain(FeatureChain &&) noexcept = default;
FeatureChain &FeatureChain::operator=(FeatureChain &&) noexcept = default;

FeatureChain::FeatureChain(const FeatureOptions &options, int sampleRate)
    : kind_(options.kind), sampleRate_(sampleRate) {
  checkOptions(options, sampleRate);
  meanNormalisation_ = options.meanNormalisation;
  if (options.frontEnd == FrontEnd::aurora) {
    aurora_.emplace(sampleRate);
    dropPauses_ = options.dropPauses;
    statics_ = AuroraChain::kStatics;
    return;
  }
  frameLen_ = static_cast<std::int32_t>(std::lround(options.frameMs * sampleRate / 1000));
  hop_ = static_cast<std::int32_t>(std::lround(options.hopMs * sampleRate / 1000));
  if (frameLen_ < 2) throw Error(text("a frame of ", options.frameMs, " ms is shorter than two samples"));
  if (hop_ < 1) throw Error(text("a hop of ", options.hopMs, " ms is shorter than a sample"));
  bands_ = takesBands() ? options.bands : 0;
  order_ = takesBands() ? 0 : options.order;
  statics_ = kind_ == FeatureKind::mfcc ? options.cepstra + 1 : takesBands() ? bands_ : order_ + 1;
  preEmphasis_ = static_cast<float>(options.preEmphasis);
  if (order_ >= frameLen_) throw Error(text("a predictor of order ", order_, " needs a longer frame"));

  window_.resize(static_cast<std::size_t>(frameLen_));
  for (std::int32_t i = 0; i < frameLen_; ++i) {
    window_[static_cast<std::size_t>(i)] = kFullScale * windowGain(options.window, i, frameLen_);
  }
  windowed_.assign(std::bit_ceil(static_cast<std::size_t>(frameLen_)), 0.0f);
  if (takesBands()) buildBank(options);
  if (kind_ == FeatureKind::mfcc) buildLifter(options);
  energies_.resize(kBlock * static_cast<std::size_t>(bands_));
  values_.resize(kBlock * static_cast<std::size_t>(statics_));
  predictor_.resize(static_cast<std::size_t>(order_));
}

void FeatureChain::buildBank(const FeatureOptions &options) {
  const std::string tooMany =
      text(bands_, " bands are more than the ", windowed_.size(), "-point spectrum of a frame can fill");
  if (static_cast<std::size_t>(bands_) > windowed_.size() / 2) throw Error(tooMany);

  const double highHz = options.highHz == 0 ? 0.5 * sampleRate_ : options.highHz;
  OrvsFBankState_32f *bank = nullptr;
  std::int32_t order = 0;
  require(orvsMelFBankInitAlloc_32f(&bank, &order, frameLen_, static_cast<float>(sampleRate_),
                                    static_cast<float>(options.lowHz), static_cast<float>(highHz), bands_,
                                    1127.0f, 700.0f, orvFBankMelWeights | orvFBankFromSamples),
          "orvsMelFBankInitAlloc_32f");
  bank_.reset(bank);
  // A band without a bin would be constant.
  std::vector<std::int32_t> centers(static_cast<std::size_t>(bands_) + 2);
  require(orvsFBankGetCenters_32f(bank, centers.data()), "orvsFBankGetCenters_32f");
  for (std::size_t i = 2; i < centers.size(); ++i) {
    if (centers[i] == centers[i - 2]) throw Error(tooMany);
  }
}

void FeatureChain::buildLifter(const FeatureOptions &options) {
  const float gain = std::sqrt(2.0f / static_cast<float>(bands_));  // makes the cosine transform orthonormal
  OrvsDCTLifterState_32f *lifter = nullptr;
  require(orvsDCTLifterInitAlloc_C0_32f(&lifter, bands_, options.cepstra, options.lifter, gain, gain),
          "orvsDCTLifterInitAlloc_C0_32f");
  lifter_.reset(lifter);
}

std::size_t FeatureChain::frames(std::size_t samples) const {
  if (aurora_) return aurora_->frames(samples);
  const auto len = static_cast<std::size_t>(frameLen_);
  return samples < len ? 0 : 1 + (samples - len) / static_cast<std::size_t>(hop_);
}

std::size_t FeatureChain::leastSamples() const {
  if (aurora_) return aurora_->leastSamples();
  return static_cast<std::size_t>(frameLen_) + (kDeltaLead - 1) * static_cast<std::size_t>(hop_);
}

void FeatureChain::windowFrame(std::span<const float> samples, std::size_t start) {
  const auto len = static_cast<std::size_t>(frameLen_);
  const float *x = samples.data() + start;
  const float *gain = window_.data();
  float *to = windowed_.data();
  // Ahead of the first sample stands the first sample itself, so that an offset raises no click.
  to[0] = (x[0] - preEmphasis_ * (start == 0 ? x[0] : x[-1])) * gain[0];
  for (std::size_t i = 1; i < len; ++i) to[i] = (x[i] - preEmphasis_ * x[i - 1]) * gain[i];
}

void FeatureChain::predictFrame(float *values) {
  const std::span<const float> frame(windowed_.data(), static_cast<std::size_t>(frameLen_));
  float energy = 0;
  for (const float x : frame) energy += x * x;
  values[order_] = energy;
  logFloored({values + order_, 1}, kEnergyFloor);

  // A silent frame has no predictor; a flat spectrum stands for it.
  const OrvStatus status = orvsLinearPrediction_Auto_32f(frame.data(), frameLen_, predictor_.data(), order_);
  if (status == orvStsDurbinErr) {
    std::fill(predictor_.begin(), predictor_.end(), 0.0f);
  } else {
    require(status, "orvsLinearPrediction_Auto_32f");
  }
  if (kind_ == FeatureKind::lpcc) {
    require(orvsLPToCepstrum_32f(predictor_.data(), values, order_), "orvsLPToCepstrum_32f");
  } else {
    lineFrequencies(values);
  }
}

void FeatureChain::lineFrequencies(float *values) {
  constexpr std::int32_t kGrid = 512, kHalvings = 6;
  constexpr float kWidening = 0.98f;
  std::int32_t found = 0;
  // Two lines so close that the grid misses them are those of a very sharp resonance; it is widened until
  // they part.
  while (orvsLPToLSP_32f(predictor_.data(), values, order_, &found, kGrid, kHalvings) == orvStsLspRootsErr) {
    float gain = 1;
    for (float &a : predictor_) a *= gain *= kWidening;
  }
  for (std::int32_t i = 0; i < order_; ++i) values[i] = std::acos(std::clamp(values[i], -1.0f, 1.0f));
}

void FeatureChain::computeAurora(std::span<const float> samples, Frames &features) {
  features.resize(frames(samples.size()), width());
  features.rows = 0;
  Normalisation normalisation;
  const auto keep = [&](const float *row, bool speech) {
    if (dropPauses_ && !speech) return;
    std::copy_n(row, width(), features.row(features.rows++));
    normalisation.add(row);
  };
  aurora_->push(samples, keep);
  aurora_->flush(keep);
  features.resize(features.rows, width());
  if (!meanNormalisation_) return;
  for (std::size_t r = 0; r < features.rows; ++r) normalisation.apply(features.row(r));
}

void FeatureChain::compute(std::span<const float> samples, Frames &features) {
  if (aurora_) {
    computeAurora(samples, features);
    return;
  }
  const std::size_t total = frames(samples.size());
  const auto bands = static_cast<std::size_t>(bands_);
  const auto statics = static_cast<std::size_t>(statics_);
  features.resize(total, width());
  std::vector<double> sums(statics, 0.0);

  for (std::size_t first = 0; first < total; first += kBlock) {
    const std::size_t count = std::min(kBlock, total - first);
    float *logBands = kind_ == FeatureKind::fbank ? values_.data() : energies_.data();
    for (std::size_t i = 0; i < count; ++i) {
      windowFrame(samples, (first + i) * static_cast<std::size_t>(hop_));
      if (takesBands()) {
        require(orvsEvalFBank_32f(windowed_.data(), logBands + i * bands, bank_.get()), "orvsEvalFBank_32f");
      } else {
        predictFrame(values_.data() + i * statics);
      }
    }
    if (takesBands()) logFloored({logBands, count * bands}, kEnergyFloor);
    for (std::size_t i = 0; i < count; ++i) {
      float *values = values_.data() + i * statics;
      if (kind_ == FeatureKind::mfcc)
        require(orvsDCTLifter_32f(logBands + i * bands, values, lifter_.get()), "orvsDCTLifter_32f");
      for (std::size_t j = 0; j < statics; ++j) sums[j] += values[j];
    }
    // The rows carried from the block before are those just above in the one result.
    const std::int32_t mode = (first == 0 ? orvDeltaBegin : 0) | (first + count == total ? orvDeltaEnd : 0);
    require(orvsDeltaDelta_Win2_32f_D2(values_.data(), statics_,
                                       features.row(first == 0 ? 0 : first - kDeltaLead), features.step,
                                       static_cast<std::int32_t>(count), kDeltaGain, kDeltaGain, mode),
            "orvsDeltaDelta_Win2_32f_D2");
  }

  if (!meanNormalisation_) return;
  std::vector<float> means(statics);
  for (std::size_t j = 0; j < statics; ++j)
    means[j] = static_cast<float>(sums[j] / static_cast<double>(total));
  for (std::size_t r = 0; r < total; ++r) {
    float *row = features.row(r);
    for (std::size_t j = 0; j < statics; ++j) row[j] -= means[j];
  }
}

void FeatureChain::requireLength(const std::filesystem::path &file, std::size_t samples) const {
  if (samples >= leastSamples()) return;
  throw UnusableRecording(file,
                          text("is too short: ", samples, " samples where ", leastSamples(), " are needed"));
}

void FeatureChain::compute(const Recording &recording, Frames &features) {
  std::span<const float> samples(recording.samples);
  std::vector<float> converted;
  if (recording.sampleRate != sampleRate_) {
    if (!resamples_) {
      throw Error(recording.file,
                  text("is sampled at ", recording.sampleRate, " Hz where ", sampleRate_, " Hz are needed"));
    }
    try {
      converted = resampled(samples, recording.sampleRate, sampleRate_, Quality::medium);
    } catch (const Error &reason) {
      throw Error(recording.file, reason.what());
    }
    samples = converted;
  }
  requireLength(recording.file, samples.size());
  compute(samples, features);
  if (features.rows == 0) throw UnusableRecording(recording.file, "holds no speech");
}

}  // namespace orv
