#include "common/resampler.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <string>

#include "common/audio.h"
#include "common/audiosink.h"
#include "common/error.h"
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
      return {26, 0.85, 112};
    case Quality::medium:
      return {112, 0.9615, 132};
    case Quality::best:
      break;
  }
  return {160, 0.971, 140};
}

// Beyond this the filters of two odd rates would take longer to design than a recording to convert.
constexpr int kMostPhases = 1000;
constexpr std::size_t kBlock = 16384;

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
  std::vector<Resampler> resamplers;
  try {
    for (std::size_t c = 0; c < source.channels(); ++c)
      resamplers.emplace_back(source.sampleRate(), rate, quality);
  } catch (const Error &reason) {
    throw Error(input, reason.what());
  }
  AudioSink sink(output, rate, source.channels(), source.format());
  copyThrough(source, sink, "converting second",
              [&](std::size_t channel, std::span<const float> samples, bool end, std::vector<float> &out) {
                resamplers[channel].convert(samples, end, out);
              });
  sink.commit();
}

}  // namespace orv
