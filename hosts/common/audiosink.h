// Recordings that are written block by block, with libsndfile.

#ifndef ORV_HOSTS_COMMON_AUDIOSINK_H
#define ORV_HOSTS_COMMON_AUDIOSINK_H

#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "common/audio.h"
#include "common/outputfile.h"

struct sf_private_tag;  // libsndfile's

namespace orv {

// A recording in the format that the name of the file ends in. The encoding of samples is that of the
// recording it comes from, where the format has it, and 16 bits otherwise. Samples beyond full scale are
// clipped where the encoding ends there. The file takes its place with commit(), and is gone without.
//
// Throws Error for an extension of no format that can be written, and where writing fails.
class AudioSink {
 public:
  // sourceFormat is libsndfile's number.
  AudioSink(const std::filesystem::path &file, int sampleRate, std::size_t channels, int sourceFormat);
  ~AudioSink();

  // Whole frames of interleaved samples.
  void write(std::span<const float> samples);
  void commit();

 private:
  struct Close {
    void operator()(sf_private_tag *sink) const;
  };

  std::filesystem::path file_;
  OutputFile::Stream stream_;
  std::unique_ptr<sf_private_tag, Close> sink_;
};

// Hands every channel of a recording block by block to `process`, which appends what comes of it, for each
// channel as much, and writes that; at last without samples and with `end` set. Shows progress, but does not
// commit.
using ChannelProcess = std::function<void(std::size_t channel, std::span<const float> samples, bool end,
                                          std::vector<float> &out)>;
void copyThrough(RecordingReader &source, AudioSink &sink, const std::string &task,
                 const ChannelProcess &process);

}  // namespace orv

#endif
