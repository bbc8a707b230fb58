#include "common/aurorachain.h"

#include <algorithm>
#include <cmath>
#include <deque>
#include <numbers>
#include <string>
#include <vector>

#include "common/bandsplit.h"
#include "common/error.h"
#include "common/featurechain.h"
#include "common/noisereduction.h"
#include "common/realfft.h"
#include "common/speechdetector.h"
#include "orvsr/frontend.h"
#include "orvsr/robust.h"

namespace orv {
namespace {

constexpr std::size_t kHop = NoiseReducer::kHop, kFrame = 200, kTransform = 256;
constexpr std::size_t kBands = 23, kHighBands = 3, kCepstra = 12;
constexpr std::size_t kSources = kCepstra + 2;  // what the delta functions take: c1 .. c12, c0, log energy
constexpr std::size_t kBlock = 64,
                      kLead = 8;  // rows of a call of the delta functions, and carried from call to call
constexpr float kFullScale = 32768;
constexpr float kOffsetPole = 1 - 1.0f / 1024;
constexpr float kPreEmphasis = 0.9f;
constexpr float kBandFloor = 4.5399930e-5f;     // exp(-10)
constexpr float kEnergyFloor = 1.9287498e-22f;  // exp(-50)
// The high bands: what their noise counts, what is left of them at least, and the share of the coded
// energies.
constexpr float kNoiseShare = 1.5f, kLeastShare = 0.1f, kCodedShare = 0.7f;
// What pre-emphasis and the other window add to the logarithm of coded energies.
constexpr float kCodedRise = 1.14f;

using Power = std::array<float, kTransform / 2 + 1>;
using Row = std::array<float, AuroraChain::kWidth>;

// The cepstra of the spectrum towards which blind equalisation works, as the standard lists them.
constexpr std::array<float, kCepstra> kReference = {-6.618909f, 0.198269f, -0.740308f, 0.055132f,
                                                    -0.227086f, 0.144280f, -0.112451f, -0.146940f,
                                                    -0.327466f, 0.134571f, 0.027884f,  -0.114905f};

struct BankRelease {
  void operator()(OrvsFBankState_32f *bank) const { orvsFBankFree_32f(bank); }
};
struct LifterRelease {
  void operator()(OrvsDCTLifterState_32f *lifter) const { orvsDCTLifterFree_32f(lifter); }
};
using Bank = std::unique_ptr<OrvsFBankState_32f, BankRelease>;

// Noise in the high bands, and what is left of them without it.
class HighBandNoise {
 public:
  float reduce(std::size_t band, float energy, bool pause) {
    if (pause) {
      const float keep = std::min(1 - 1 / static_cast<float>(++pauses_[band]), 0.99f);
      noise_[band] = keep * noise_[band] + (1 - keep) * energy;
    }
    return std::max(energy - kNoiseShare * noise_[band], kLeastShare * energy);
  }

 private:
  std::array<long, kHighBands> pauses_{};
  std::array<float, kHighBands> noise_{};
};

}  // namespace

struct AuroraChain::State {
  // What a stream changes.
  struct Stream {
    std::size_t samples = 0, blocks = 0;
    std::array<float, 3 * kHop + 1> signal{};        // denoised: three blocks, and the sample before
    float lastSource = 0;                            // of offset compensation
    std::vector<float> high;                         // the high band from the next frame on
    std::array<float, NoiseReducer::kBins> noisy{};  // power of the block in the middle of the frame
    bool pause = true;
    HighBandNoise highNoise;
    std::array<float, kCepstra> bias{};  // of blind equalisation
    std::vector<float> sources;          // rows for the delta functions
    std::vector<float> rows = std::vector<float>((kLead + kBlock) * kWidth);
    bool begun = false;       // the delta functions have been called
    std::deque<Row> waiting;  // for the detector
    SpeechDetector detector;
  };

  explicit State(bool isWide) : wide(isWide), bands(wide ? kBands + kHighBands : kBands) {
    OrvsFBankState_32f *made = nullptr;
    std::int32_t order = 0;
    require(orvsMelFBankInitAlloc_32f(&made, &order, kTransform, 8000, 64, 4000, kBands, 1127, 700,
                                      orvFBankMelWeights),
            "orvsMelFBankInitAlloc_32f");
    bank.reset(made);
    require(orvsMelFBankInitAllocHigh_Aurora_32f(&made), "orvsMelFBankInitAllocHigh_Aurora_32f");
    highBank.reset(made);
    // More bands make no larger cepstra.
    const std::vector<float> gains(kCepstra + 1, static_cast<float>(kBands) / static_cast<float>(bands));
    OrvsDCTLifterState_32f *transformer = nullptr;
    require(orvsDCTLifterInitAlloc_MulC0_32f(&transformer, static_cast<std::int32_t>(bands), gains.data(),
                                             kCepstra),
            "orvsDCTLifterInitAlloc_MulC0_32f");
    lifter.reset(transformer);
    for (std::size_t i = 0; i < kFrame; ++i) {
      const double phase = 2 * std::numbers::pi * (static_cast<double>(i) + 0.5) / kFrame;
      window[i] = static_cast<float>(0.54 - 0.46 * std::cos(phase));
    }
  }

  // The spectrum of a frame, packed.
  void spectrum(const float *frame, float *packed) {
    std::array<float, kTransform> windowed{};
    for (std::size_t i = 0; i < kFrame; ++i) windowed[i] = window[i] * frame[i];
    transform.forward(windowed.data(), packed);
  }

  Power power(const float *frame) {
    std::array<float, kTransform> packed;
    spectrum(frame, packed.data());
    Power power;
    power.front() = packed[0] * packed[0];
    power.back() = packed[1] * packed[1];
    for (std::size_t k = 1; k + 1 < power.size(); ++k)
      power[k] = packed[2 * k] * packed[2 * k] + packed[2 * k + 1] * packed[2 * k + 1];
    return power;
  }

  // Log energies of the high bands of the frame whose denoised low band has this power.
  void highBands(const Power &low, float *logs) {
    std::array<float, kTransform> packed;
    spectrum(s.high.data(), packed.data());
    std::array<float, NoiseReducer::kBins> power;
    require(orvsSmoothedPowerSpectrumAurora_32f(packed.data(), power.data(), kTransform),
            "orvsSmoothedPowerSpectrumAurora_32f");
    std::array<float, kHighBands> energies, coded;
    require(orvsEvalFBank_32f(power.data(), energies.data(), highBank.get()), "orvsEvalFBank_32f");
    require(orvsHighBandCoding_Aurora_32f(energies.data(), s.noisy.data(), low.data(), coded.data()),
            "orvsHighBandCoding_Aurora_32f");
    for (std::size_t b = 0; b < kHighBands; ++b) logs[b] = s.highNoise.reduce(b, energies[b], s.pause);
    logFloored({logs, kHighBands}, kBandFloor);
    for (std::size_t b = 0; b < kHighBands; ++b)
      logs[b] = kCodedShare * coded[b] + (1 - kCodedShare) * (logs[b] + kCodedRise);
  }

  // The frame of the three blocks that stand in `signal`.
  void frame(const Sink &sink) {
    const float *samples = s.signal.data() + 1;
    float energy = 0;
    for (std::size_t i = 0; i < kFrame; ++i) energy += samples[i] * samples[i];
    std::array<float, kFrame> wave;
    require(orvsWaveProcessing_Aurora_32f(samples, wave.data()), "orvsWaveProcessing_Aurora_32f");
    for (std::size_t i = kFrame - 1; i > 0; --i) wave[i] -= kPreEmphasis * wave[i - 1];
    wave[0] -= kPreEmphasis * wave[0];  // an offset raises no click
    const Power spectrum = power(wave.data());

    std::array<float, kBands + kHighBands> logs;
    require(orvsEvalFBank_32f(spectrum.data(), logs.data(), bank.get()), "orvsEvalFBank_32f");
    logFloored({logs.data(), kBands}, kBandFloor);
    if (wide) {
      highBands(spectrum, logs.data() + kBands);
      s.high.erase(s.high.begin(), s.high.begin() + kHop);
    }
    std::array<float, kSources> row;
    require(orvsDCTLifter_32f(logs.data(), row.data(), lifter.get()), "orvsDCTLifter_32f");
    row.back() = std::log(std::max(energy, kEnergyFloor));
    require(
        orvsBlindEqualization_Aurora_32f(kReference.data(), row.data(), s.bias.data(), kCepstra, row.back()),
        "orvsBlindEqualization_Aurora_32f");
    s.sources.insert(s.sources.end(), row.begin(), row.end());
    if (s.sources.size() == kBlock * kSources) derive(0, sink);
  }

  // Delta and acceleration values of the rows that have come, and out with those that are complete.
  void derive(std::int32_t end, const Sink &sink) {
    const std::size_t height = s.sources.size() / kSources, rows = height + (s.begun ? kLead : 0);
    s.sources.resize(kBlock * kSources);  // not empty even if no row has come
    require(
        orvsDeltaDelta_Aurora_32f_D2(s.sources.data(), s.rows.data(), kWidth,
                                     static_cast<std::int32_t>(height), (s.begun ? 0 : orvDeltaBegin) | end),
        "orvsDeltaDelta_Aurora_32f_D2");
    s.sources.clear();
    const std::size_t first = s.begun ? kLead / 2 : 0, behind = end != 0 ? rows : rows - kLead / 2;
    for (std::size_t r = first; r < behind; ++r)
      std::copy_n(row(r), kWidth, s.waiting.emplace_back().begin());
    std::copy(row(rows - kLead), row(rows), s.rows.begin());
    s.begun = true;
    release(sink);
  }

  std::vector<float>::iterator row(std::size_t r) {
    return s.rows.begin() + static_cast<std::ptrdiff_t>(r * kWidth);
  }

  void release(const Sink &sink) {
    for (; !s.waiting.empty() && s.detector.known(); s.waiting.pop_front()) {
      s.detector.next();  // the block in the middle of the frame is the one behind its first
      sink(s.waiting.front().data(), s.detector.speech());
    }
  }

  void block(const NoiseReducer::Block &block, const Sink &sink) {
    s.detector.block(block);
    std::copy(s.signal.begin() + kHop, s.signal.end(), s.signal.begin());
    float *samples = s.signal.data() + 1 + 2 * kHop;
    for (std::size_t i = 0; i < kHop; ++i) samples[i] = kFullScale * block.samples[i];
    require(orvsCompensateOffset_32f_I(samples, kHop, &s.lastSource, samples[-1], kOffsetPole),
            "orvsCompensateOffset_32f_I");
    if (++s.blocks >= 3) frame(sink);
    s.noisy = block.power;
    s.pause = block.pause;
  }

  void push(std::span<const float> samples, const Sink &sink) {
    s.samples += samples.size();
    const auto toBlock = [&](const NoiseReducer::Block &one) { block(one, sink); };
    if (!wide) {
      reducer.push(samples, toBlock);
      return;
    }
    splitter.push(samples, [&](std::span<const float> low, std::span<const float> high) {
      keepHigh(high);
      reducer.push(low, toBlock);
    });
  }

  void flush(std::size_t frames, const Sink &sink) {
    // The last block may be filled up with zeros, and begin no frame.
    const auto toBlock = [&](const NoiseReducer::Block &one) {
      if (s.blocks < frames + 2) block(one, sink);
    };
    if (wide) {
      splitter.flush([&](std::span<const float> low, std::span<const float> high) {
        keepHigh(high);
        reducer.push(low, toBlock);
      });
    }
    reducer.flush(toBlock);
    derive(orvDeltaEnd, sink);
    s.detector.flush();
    release(sink);
    s = Stream();
  }

  void keepHigh(std::span<const float> high) {
    for (const float x : high) s.high.push_back(kFullScale * x);
  }

  const bool wide;
  const std::size_t bands;
  BandSplit splitter;
  NoiseReducer reducer;
  RealFft transform{kTransform};
  Bank bank, highBank;
  std::unique_ptr<OrvsDCTLifterState_32f, LifterRelease> lifter;
  std::array<float, kFrame> window;
  Stream s;
};

AuroraChain::AuroraChain(int sampleRate) {
  if (sampleRate != 8000 && sampleRate != 16000) {
    throw Error("the front end aurora takes recordings at 8000 or 16000 Hz, not at " +
                std::to_string(sampleRate) + " Hz");
  }
  state_ = std::make_unique<State>(sampleRate == 16000);
}
AuroraChain::~AuroraChain() = default;
AuroraChain::AuroraChain(AuroraChain &&) noexcept = default;
AuroraChain &AuroraChain::operator=(AuroraChain &&) noexcept = default;

std::size_t AuroraChain::frames(std::size_t samples) const {
  if (state_->wide) samples /= 2;
  return samples < kFrame ? 0 : 1 + (samples - kFrame) / kHop;
}

std::size_t AuroraChain::leastSamples() const {
  return (kFrame + (kLead - 1) * kHop) * (state_->wide ? 2 : 1);
}

void AuroraChain::push(std::span<const float> samples, const Sink &sink) { state_->push(samples, sink); }
void AuroraChain::flush(const Sink &sink) { state_->flush(frames(state_->s.samples), sink); }

void Normalisation::add(const float *row) {
  ++rows_;
  for (std::size_t j = 0; j < sums_.size(); ++j) {
    const double value = row[j];
    sums_[j] += value;
    squares_[j] += value * value;
  }
}

void Normalisation::apply(float *row) const {
  constexpr double kLeastVariance = 1e-6;
  for (std::size_t j = 0; j < sums_.size(); ++j) {
    const double mean = sums_[j] / rows_;
    const double variance = std::max(squares_[j] / rows_ - mean * mean, kLeastVariance);
    row[j] = static_cast<float>((row[j] - mean) / std::sqrt(variance));
  }
}

}  // namespace orv
