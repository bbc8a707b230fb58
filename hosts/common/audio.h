// Recordings, read with libsndfile.

#ifndef ORV_HOSTS_COMMON_AUDIO_H
#define ORV_HOSTS_COMMON_AUDIO_H

#include <filesystem>
#include <vector>

namespace orv {

struct Recording {
  std::filesystem::path file;
  int sampleRate = 0;
  std::vector<float> samples;  // nominally from -1 to 1

  double seconds() const { return static_cast<double>(samples.size()) / sampleRate; }
};

// Reads a recording of one channel in any format of libsndfile. Two channels are refused rather than
// averaged: the sum of two microphones is not what either of them heard. Throws Error for what is missing, no
// audio, of more channels, or holds a sample that is no number or far out of range; UnusableRecording for no
// samples at all.
Recording readRecording(const std::filesystem::path &file);

// Throws UnusableRecording if no sample reaches a thousandth of full scale: there is nothing to recognise.
void refuseSilence(const Recording &recording);

}  // namespace orv

#endif
