// Recordings, read with libsndfile.

#ifndef ORV_HOSTS_COMMON_AUDIO_H
#define ORV_HOSTS_COMMON_AUDIO_H

#include <cstddef>
#include <filesystem>
#include <memory>
#include <span>
#include <vector>

namespace orv {

struct Recording {
  std::filesystem::path file;
  int sampleRate = 0;
  std::vector<float> samples;  // nominally from -1 to 1

  double seconds() const { return static_cast<double>(samples.size()) / sampleRate; }
};

enum class Channels { one, any };

// Samples in any format of libsndfile, block by block. Unless the caller can use any number of channels, two are
// refused rather than averaged: the sum of two microphones is not what either of them heard. Throws Error for what
// is missing, no audio, of more channels, or holds a sample that is no number or far out of range;
// UnusableRecording for no samples at all.
class RecordingReader {
 public:
  // "-" is standard input.
  explicit RecordingReader(const std::filesystem::path &file, Channels channels = Channels::one);
  ~RecordingReader();
  RecordingReader(RecordingReader &&) noexcept;
  RecordingReader &operator=(RecordingReader &&) noexcept;

  const std::filesystem::path &file() const;
  int sampleRate() const;
  std::size_t channels() const;
  int format() const;      // libsndfile's number
  double seconds() const;  // as the header tells them, which may be wrong
  // The next samples, those of all channels of a moment side by side, until the next call; none at the end.
  std::span<const float> read();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

// The same as a whole.
Recording readRecording(const std::filesystem::path &file);

// Throws UnusableRecording if no sample reaches a thousandth of full scale: there is nothing to recognise.
void refuseSilence(const Recording &recording);

}  // namespace orv

#endif
