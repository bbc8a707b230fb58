#include "common/audio.h"

#include <sndfile.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <string>

#include "common/error.h"

namespace orv {
namespace {

// Beyond this the spectrum of a frame could leave the range of single precision. Files whose floating-point
// samples run to 32768 stay well within.
constexpr float kLargestSample = 1e6f;
constexpr float kSilence = 0.001f;

void checkSamples(const Recording &recording) {
  const auto bad = std::find_if(recording.samples.begin(), recording.samples.end(),
                                [](float x) { return !(std::fabs(x) <= kLargestSample); });
  if (bad == recording.samples.end()) return;
  throw Error(recording.file, "sample " + std::to_string(bad - recording.samples.begin() + 1) +
                                  (std::isfinite(*bad) ? " is far out of range" : " is not a finite number"));
}

}  // namespace

Recording readRecording(const std::filesystem::path &file) {
  std::error_code failure;
  const auto status = std::filesystem::status(file, failure);
  if (!std::filesystem::exists(status)) throw Error(file, "no such file");
  if (std::filesystem::is_directory(status)) throw Error(file, "is a folder, not a recording");

  SF_INFO info{};
  const std::unique_ptr<SNDFILE, int (*)(SNDFILE *)> source(sf_open(file.c_str(), SFM_READ, &info), sf_close);
  if (!source) throw Error(file, std::string("cannot be read as audio: ") + sf_strerror(nullptr));
  if (info.channels != 1) {
    throw Error(file, "has " + std::to_string(info.channels) + " channels; one is needed");
  }

  Recording recording;
  recording.file = file;
  recording.sampleRate = info.samplerate;
  std::array<float, 16384> block;
  // The length in the header may be wrong; what counts is what can be read.
  while (true) {
    const sf_count_t count = sf_readf_float(source.get(), block.data(), block.size());
    if (count <= 0) break;
    recording.samples.insert(recording.samples.end(), block.begin(), block.begin() + count);
  }
  if (sf_error(source.get()) != SF_ERR_NO_ERROR) {
    throw Error(file, std::string("cannot be read to its end: ") + sf_strerror(source.get()));
  }
  if (recording.samples.empty()) throw UnusableRecording(file, "holds no samples");
  checkSamples(recording);
  return recording;
}

void refuseSilence(const Recording &recording) {
  const bool sound = std::any_of(recording.samples.begin(), recording.samples.end(),
                                 [](float x) { return std::fabs(x) >= kSilence; });
  if (!sound) throw UnusableRecording(recording.file, "is silent");
}

}  // namespace orv
