#include "common/audiosink.h"

#include <sndfile.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <string>
#include <utility>

#include "common/error.h"
#include "common/progress.h"

namespace orv {
namespace {

int formatOf(const std::filesystem::path &output, int inputFormat) {
  static constexpr std::array<std::pair<const char *, int>, 14> kFormats = {{{".wav", SF_FORMAT_WAV},
                                                                             {".wave", SF_FORMAT_WAV},
                                                                             {".w64", SF_FORMAT_W64},
                                                                             {".rf64", SF_FORMAT_RF64},
                                                                             {".flac", SF_FORMAT_FLAC},
                                                                             {".ogg", SF_FORMAT_OGG},
                                                                             {".oga", SF_FORMAT_OGG},
                                                                             {".opus", SF_FORMAT_OGG},
                                                                             {".mp3", SF_FORMAT_MPEG},
                                                                             {".aif", SF_FORMAT_AIFF},
                                                                             {".aiff", SF_FORMAT_AIFF},
                                                                             {".aifc", SF_FORMAT_AIFF},
                                                                             {".au", SF_FORMAT_AU},
                                                                             {".caf", SF_FORMAT_CAF}}};
  std::string extension = output.extension().string();
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  const auto found =
      std::find_if(kFormats.begin(), kFormats.end(), [&](const auto &f) { return f.first == extension; });
  if (found == kFormats.end()) throw Error(output, "has no extension of a format that can be written");
  const int type = found->second;
  SF_INFO info{};
  info.samplerate = 8000;
  info.channels = 1;
  for (const int encoding : {extension == ".opus" ? SF_FORMAT_OPUS : inputFormat & SF_FORMAT_SUBMASK,
                             static_cast<int>(SF_FORMAT_PCM_16), static_cast<int>(SF_FORMAT_VORBIS)}) {
    info.format = type | encoding;
    if (sf_format_check(&info) == SF_TRUE) return info.format;
  }
  return type | SF_FORMAT_MPEG_LAYER_III;
}

}  // namespace

void AudioSink::Close::operator()(sf_private_tag *sink) const { sf_close(sink); }
AudioSink::~AudioSink() = default;

AudioSink::AudioSink(const std::filesystem::path &file, int sampleRate, std::size_t channels,
                     int sourceFormat)
    : file_(file), stream_(OutputFile(file).stream()) {
  SF_INFO info{};
  info.samplerate = sampleRate;
  info.channels = static_cast<int>(channels);
  info.format = formatOf(file, sourceFormat);
  sink_.reset(sf_open_fd(stream_.descriptor(), SFM_WRITE, &info, SF_FALSE));
  if (!sink_) throw Error(file, std::string("cannot be written: ") + sf_strerror(nullptr));
  sf_command(sink_.get(), SFC_SET_CLIPPING, nullptr, SF_TRUE);
}

void AudioSink::write(std::span<const float> samples) {
  const auto count = static_cast<sf_count_t>(samples.size());
  if (sf_write_float(sink_.get(), samples.data(), count) != count)
    throw Error(file_, std::string("cannot be written: ") + sf_strerror(sink_.get()));
}

void AudioSink::commit() {
  if (sf_close(sink_.release()) != 0) throw Error(file_, "cannot be written to its end");
  stream_.commit();
}

void copyThrough(RecordingReader &source, AudioSink &sink, const std::string &task,
                 const ChannelProcess &process) {
  const std::size_t channels = source.channels();
  const auto rate = static_cast<std::size_t>(source.sampleRate());
  Progress progress(task, static_cast<std::size_t>(source.seconds()));
  std::vector<float> channel, interleaved;
  std::vector<std::vector<float>> outputs(channels);
  std::size_t read = 0, shown = 0;
  for (bool end = false; !end;) {
    const std::span<const float> block = source.read();
    const std::size_t frames = block.size() / channels;
    end = frames == 0;
    channel.resize(frames);
    for (std::size_t c = 0; c < channels; ++c) {
      for (std::size_t i = 0; i < frames; ++i) channel[i] = block[i * channels + c];
      outputs[c].clear();
      process(c, channel, end, outputs[c]);
    }
    const std::size_t made = outputs[0].size();
    interleaved.resize(made * channels);
    for (std::size_t c = 0; c < channels; ++c)
      for (std::size_t i = 0; i < made; ++i) interleaved[i * channels + c] = outputs[c][i];
    sink.write(interleaved);
    read += frames;
    for (; (shown + 1) * rate <= read; ++shown) progress.advance();
  }
}

}  // namespace orv
