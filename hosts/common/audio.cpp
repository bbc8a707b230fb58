#include "common/audio.h"

#include <sndfile.h>
#include <unistd.h>

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

}  // namespace

struct RecordingReader::State {
  std::filesystem::path file;
  SF_INFO info{};
  std::unique_ptr<SNDFILE, int (*)(SNDFILE *)> source{nullptr, sf_close};
  std::array<float, 16384> block;
  std::size_t read = 0;
};

RecordingReader::~RecordingReader() = default;
RecordingReader::RecordingReader(RecordingReader &&) noexcept = default;
RecordingReader &RecordingReader::operator=(RecordingReader &&) noexcept = default;

RecordingReader::RecordingReader(const std::filesystem::path &file, Channels channels)
    : state_(std::make_unique<State>()) {
  State &s = *state_;
  s.file = file;
  if (file == "-") {
    s.source.reset(sf_open_fd(STDIN_FILENO, SFM_READ, &s.info, SF_FALSE));
  } else {
    std::error_code failure;
    const auto status = std::filesystem::status(file, failure);
    if (!std::filesystem::exists(status)) throw Error(file, "no such file");
    if (std::filesystem::is_directory(status)) throw Error(file, "is a folder, not a recording");
    s.source.reset(sf_open(file.c_str(), SFM_READ, &s.info));
  }
  if (!s.source) throw Error(file, std::string("cannot be read as audio: ") + sf_strerror(nullptr));
  if (channels == Channels::one && s.info.channels != 1)
    throw Error(file, "has " + std::to_string(s.info.channels) + " channels; one is needed");
}

const std::filesystem::path &RecordingReader::file() const { return state_->file; }
int RecordingReader::sampleRate() const { return state_->info.samplerate; }
std::size_t RecordingReader::channels() const { return static_cast<std::size_t>(state_->info.channels); }
int RecordingReader::format() const { return state_->info.format; }
double RecordingReader::seconds() const {
  return static_cast<double>(std::max<sf_count_t>(state_->info.frames, 0)) / state_->info.samplerate;
}

std::span<const float> RecordingReader::read() {
  State &s = *state_;
  // The length in the header may be wrong; what counts is what can be read.
  const sf_count_t count =
      sf_readf_float(s.source.get(), s.block.data(), static_cast<sf_count_t>(s.block.size() / channels()));
  if (sf_error(s.source.get()) != SF_ERR_NO_ERROR)
    throw Error(s.file, std::string("cannot be read to its end: ") + sf_strerror(s.source.get()));
  const auto samples = std::span<const float>(s.block).first(
      static_cast<std::size_t>(std::max<sf_count_t>(count, 0)) * channels());
  if (samples.empty() && s.read == 0) throw UnusableRecording(s.file, "holds no samples");
  const auto bad =
      std::find_if(samples.begin(), samples.end(), [](float x) { return !(std::fabs(x) <= kLargestSample); });
  if (bad != samples.end()) {
    throw Error(s.file, "sample " +
                            std::to_string(s.read + static_cast<std::size_t>(bad - samples.begin()) + 1) +
                            (std::isfinite(*bad) ? " is far out of range" : " is not a finite number"));
  }
  s.read += samples.size();
  return samples;
}

Recording readRecording(const std::filesystem::path &file) {
  RecordingReader reader(file);
  Recording recording;
  recording.file = file;
  recording.sampleRate = reader.sampleRate();
  while (true) {
    const auto samples = reader.read();
    if (samples.empty()) return recording;
    recording.samples.insert(recording.samples.end(), samples.begin(), samples.end());
  }
}

void refuseSilence(const Recording &recording) {
  const bool sound = std::any_of(recording.samples.begin(), recording.samples.end(),
                                 [](float x) { return std::fabs(x) >= kSilence; });
  if (!sound) throw UnusableRecording(recording.file, "is silent");
}

}  // namespace orv
