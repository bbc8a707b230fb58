#include "common/resampler.h"

#include <sndfile.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <numeric>
#include <string>
#include <utility>

#include "common/audio.h"
#include "common/error.h"
#include "common/progress.h"
#include "orvsr/resample.h"

namespace orv {
namespace {

namespace fs = std::filesystem;

struct Settings {
  std::int32_t halfLen;
  double rollOff, attenuation;
};

Settings settingsOf(Quality quality) {
  switch (quality) {
    case Quality::fast:
      return {16, 0.84, 80};
    case Quality::medium:
      return {64, 0.945, 106};
    case Quality::best:
      break;
  }
  return {160, 0.971, 140};
}

// Beyond this the filters of two odd rates would take longer to design than a recording to convert.
constexpr int kMostPhases = 1000;
constexpr std::size_t kBlock = 16384;

int formatOf(const fs::path &output, int inputFormat) {
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

void Resampler::Release::operator()(OrvsResampleFixedState_32f *state) const {
  orvsResamplePolyphaseFixedFree_32f(state);
}
void Resampler::Release::operator()(OrvsResampleState_32f *state) const {
  orvsResamplePolyphaseFree_32f(state);
}

Resampler::Resampler(int from, int to, Quality quality) : ratio_(static_cast<double>(to) / from) {
  if (from < 1 || to < 1 || !(ratio_ >= 1.0 / 256 && ratio_ <= 256))
    throw Error("cannot be converted from " + std::to_string(from) + " Hz to " + std::to_string(to) + " Hz");
  const Settings s = settingsOf(quality);
  if (to / std::gcd(from, to) <= kMostPhases) {
    OrvsResampleFixedState_32f *state = nullptr;
    require(orvsResamplePolyphaseFixedInitAlloc_32f(&state, from, to, s.halfLen, s.rollOff, s.attenuation),
            "orvsResamplePolyphaseFixedInitAlloc_32f");
    fixed_.reset(state);
  } else {
    OrvsResampleState_32f *state = nullptr;
    require(orvsResamplePolyphaseInitAlloc_32f(&state, s.halfLen, s.rollOff, s.attenuation, ratio_),
            "orvsResamplePolyphaseInitAlloc_32f");
    free_.reset(state);
  }
}

void Resampler::convert(std::span<const float> samples, bool end, std::vector<float> &out) {
  const std::int32_t flags = end ? orvResampleEnd : orvResampleMore;
  for (bool room = false; !room || !samples.empty();) {
    const auto len = static_cast<std::int32_t>(std::min(samples.size(), kBlock));
    // The end stands behind the last block only.
    const std::int32_t now = static_cast<std::size_t>(len) == samples.size() ? flags : orvResampleMore;
    const std::size_t made = out.size();
    out.resize(made + kBlock);
    std::int32_t consumed = 0, produced = 0;
    if (fixed_) {
      require(orvsResamplePolyphaseFixed_32f(fixed_.get(), samples.data(), len, &consumed, out.data() + made,
                                             kBlock, &produced, now),
              "orvsResamplePolyphaseFixed_32f");
    } else {
      require(orvsResamplePolyphase_32f(free_.get(), samples.data(), len, &consumed, out.data() + made,
                                        kBlock, &produced, ratio_, now),
              "orvsResamplePolyphase_32f");
    }
    out.resize(made + static_cast<std::size_t>(produced));
    samples = samples.subspan(static_cast<std::size_t>(consumed));
    room = static_cast<std::size_t>(produced) < kBlock;
  }
}

std::vector<float> resampled(std::span<const float> samples, int from, int to, Quality quality) {
  std::vector<float> out;
  out.reserve(static_cast<std::size_t>(std::ceil(static_cast<double>(samples.size()) * to / from)) + kBlock);
  Resampler(from, to, quality).convert(samples, true, out);
  return out;
}

void resampleFile(const fs::path &input, const fs::path &output, int rate, Quality quality) {
  RecordingReader source(input, Channels::any);
  const std::size_t channels = source.channels();
  SF_INFO info{};
  info.samplerate = rate;
  info.channels = static_cast<int>(channels);
  info.format = formatOf(output, source.format());
  std::vector<Resampler> resamplers;
  try {
    for (std::size_t c = 0; c < channels; ++c) resamplers.emplace_back(source.sampleRate(), rate, quality);
  } catch (const Error &reason) {
    throw Error(input, reason.what());
  }

  OutputFile::Stream stream = OutputFile(output).stream();
  std::unique_ptr<SNDFILE, int (*)(SNDFILE *)> sink(
      sf_open_fd(stream.descriptor(), SFM_WRITE, &info, SF_FALSE), sf_close);
  if (!sink) throw Error(output, std::string("cannot be written: ") + sf_strerror(nullptr));
  sf_command(sink.get(), SFC_SET_CLIPPING, nullptr, SF_TRUE);

  Progress progress("converting second", static_cast<std::size_t>(source.seconds()));
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
      resamplers[c].convert(channel, end, outputs[c]);
    }
    const std::size_t made = outputs[0].size();
    interleaved.resize(made * channels);
    for (std::size_t c = 0; c < channels; ++c)
      for (std::size_t i = 0; i < made; ++i) interleaved[i * channels + c] = outputs[c][i];
    const auto written = sf_writef_float(sink.get(), interleaved.data(), static_cast<sf_count_t>(made));
    if (written != static_cast<sf_count_t>(made))
      throw Error(output, std::string("cannot be written: ") + sf_strerror(sink.get()));
    read += frames;
    for (; (shown + 1) * static_cast<std::size_t>(source.sampleRate()) <= read; ++shown) progress.advance();
  }
  if (sf_close(sink.release()) != SF_ERR_NO_ERROR) throw Error(output, "cannot be written to its end");
  stream.commit();
}

}  // namespace orv
