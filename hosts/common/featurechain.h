// From samples to feature vectors: values of a frame with their delta and acceleration values.

#ifndef ORV_HOSTS_COMMON_FEATURECHAIN_H
#define ORV_HOSTS_COMMON_FEATURECHAIN_H

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "common/audio.h"
#include "common/aurorachain.h"
#include "common/frames.h"
#include "orvsr/types.h"

namespace orv {

enum class Window { hamming, hann, rectangular };

// What a frame is described by: mel cepstra c1 .. cn and C0; log energies of the mel bands; cepstra of a
// linear predictor, or its line spectrum frequencies in radians, either with the log energy of the frame.
enum class FeatureKind { mfcc, fbank, lpcc, lsf };

// Plain: all that FeatureOptions tells. Aurora: the chain of AuroraChain, made for speech in noise, which
// leaves nothing to choose but normalisation and pauses.
enum class FrontEnd { plain, aurora };

struct FeatureOptions {
  FrontEnd frontEnd = FrontEnd::plain;
  bool dropPauses = false;  // of aurora: leave out frames without speech
  FeatureKind kind = FeatureKind::mfcc;
  double frameMs = 25;
  double hopMs = 10;
  Window window = Window::hamming;
  double preEmphasis = 0.97;
  std::int32_t bands = 24;
  double lowHz = 64;
  double highHz = 0;          // 0: half the sample rate
  std::int32_t cepstra = 12;  // beside C0
  std::int32_t lifter = 22;
  std::int32_t order = 12;        // of the predictor
  bool meanNormalisation = true;  // of aurora: to variance 1 as well

  bool operator==(const FeatureOptions &) const = default;
};

// Values v above the floor become log(v), the others log(floor); floor > 0. The error is below 2e-7 of the
// larger of 1 and the result. A plain loop without branches or calls, so that the compiler can take four
// values at a time.
void logFloored(std::span<float> values, float floor);

// Pre-emphasis y[n] = x[n] - a x[n - 1], window, the values of the kind, delta and acceleration over two
// frames on either side, mean normalisation over the recording. A row holds the values, then their delta,
// then their acceleration values.
//
// The chain reuses its buffers; a thread needs one of its own.
class FeatureChain {
 public:
  // Throws Error if an option is out of range for the sample rate.
  FeatureChain(const FeatureOptions &options, int sampleRate);
  ~FeatureChain();
  FeatureChain(FeatureChain &&) noexcept;
  FeatureChain &operator=(FeatureChain &&) noexcept;

  int sampleRate() const { return sampleRate_; }
  std::int32_t width() const { return 3 * statics_; }
  // Frames that lie wholly within so many samples.
  std::size_t frames(std::size_t samples) const;
  // The least number of samples that compute() takes.
  std::size_t leastSamples() const;
  // Throws UnusableRecording if a recording has fewer.
  void requireLength(const std::filesystem::path &file, std::size_t samples) const;

  // Replaces what `features` holds; samples.size() >= leastSamples().
  void compute(std::span<const float> samples, Frames &features);

  // As compute(), after converting a recording of another sample rate to the chain's, and making sure that it is
  // long enough (UnusableRecording).
  void compute(const Recording &recording, Frames &features);
  // From now on another rate is an Error.
  void refuseOtherRates() { resamples_ = false; }

 private:
  struct BankRelease {
    void operator()(OrvsFBankState_32f *bank) const;
  };
  struct LifterRelease {
    void operator()(OrvsDCTLifterState_32f *lifter) const;
  };

  // The features of the chain for speech in noise.
  void computeAurora(std::span<const float> samples, Frames &features);
  bool takesBands() const { return kind_ == FeatureKind::mfcc || kind_ == FeatureKind::fbank; }
  void buildBank(const FeatureOptions &options);
  void buildLifter(const FeatureOptions &options);
  void windowFrame(std::span<const float> samples, std::size_t start);
  // The values of the window's frame that come from its predictor, and the log energy behind them.
  void predictFrame(float *values);
  void lineFrequencies(float *values);

  FeatureKind kind_;
  int sampleRate_;
  std::int32_t frameLen_ = 0, hop_ = 0, bands_ = 0, order_ = 0, statics_ = 0;
  bool meanNormalisation_ = true;
  bool resamples_ = true;
  std::optional<AuroraChain> aurora_;
  bool dropPauses_ = false;
  float preEmphasis_ = 0;
  std::unique_ptr<OrvsFBankState_32f, BankRelease> bank_;
  std::unique_ptr<OrvsDCTLifterState_32f, LifterRelease> lifter_;
  std::vector<float> window_;     // frameLen_ gains
  std::vector<float> windowed_;   // one frame, padded with zeros to the length of the transform
  std::vector<float> energies_;   // a block of frames, bands_ each
  std::vector<float> values_;     // a block of frames, statics_ each
  std::vector<float> predictor_;  // order_ coefficients
};

}  // namespace orv

#endif
