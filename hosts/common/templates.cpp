#include "common/templates.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "common/endpoints.h"
#include "common/error.h"
#include "orvsr/vq.h"

namespace orv {
namespace {

constexpr float kNoPath = std::numeric_limits<float>::max();

std::vector<const float *> rowPointers(const Frames &frames) {
  std::vector<const float *> rows(frames.rows);
  for (std::size_t r = 0; r < frames.rows; ++r) rows[r] = frames.row(r);
  return rows;
}

}  // namespace

void MatchOptions::check() const {
  // Written so that a NaN is refused.
  if (band < 1) throw Error("a band widened by less than a frame may run empty");
  if (!(slope >= 1 && slope <= 2)) throw Error("the slope is not within 1 to 2");
  if (!(beam >= 0)) throw Error("the beam is below 0");
  if (!(trimDb >= 0)) throw Error("the level of silence is not below that of speech");
}

Templates::Templates(const FeatureOptions &features, const MatchOptions &options, bool resample)
    : features_(features), options_(options), resamples_(resample) {
  options_.check();
}

Frames Templates::framesOf(const Recording &recording) {
  if (!chain_) {
    chain_.emplace(features_, recording.sampleRate);
    if (!resamples_) chain_->refuseOtherRates();
  }
  refuseSilence(recording);
  Frames frames;
  if (options_.trimDb > 0) {
    Recording speech = recording;
    // At the recording's own rate.
    const double least =
        std::ceil(static_cast<double>(chain_->leastSamples()) * recording.sampleRate / chain_->sampleRate());
    trimSilence(speech, options_.trimDb, static_cast<std::size_t>(least));
    chain_->compute(speech, frames);
  } else {
    chain_->compute(recording, frames);
  }
  return frames;
}

void Templates::add(const Recording &recording) {
  templates_.push_back({recording.file.stem().string(), recording.file, framesOf(recording)});
}

std::optional<float> Templates::distance(const Frames &a, const Frames &b) const {
  const std::size_t longer = std::max(a.rows, b.rows), shorter = std::min(a.rows, b.rows);
  if (static_cast<double>(longer) > options_.slope * static_cast<double>(shorter)) return {};
  const std::vector<const float *> rowsOfA = rowPointers(a), rowsOfB = rowPointers(b);
  const double beam = std::min(options_.beam, static_cast<double>(kNoPath));
  float sum = kNoPath;
  require(orvsDTW_L2_32f_D2L(rowsOfA.data(), static_cast<std::int32_t>(a.rows), rowsOfB.data(),
                             static_cast<std::int32_t>(b.rows), a.width, &sum, options_.band,
                             static_cast<float>(beam)),
          "orvsDTW_L2_32f_D2L");
  if (sum >= kNoPath) return {};
  return sum / static_cast<float>(longer);
}

std::vector<Match> Templates::match(const Recording &recording) {
  const Frames frames = framesOf(recording);
  std::map<std::string, Match> nearest;
  for (const Template &one : templates_) {
    const std::optional<float> apart = distance(one.frames, frames);
    if (!apart) continue;
    const auto [entry, isNew] = nearest.try_emplace(one.name, Match{one.name, one.file, *apart});
    if (!isNew && *apart < entry->second.distance) entry->second = {one.name, one.file, *apart};
  }
  std::vector<Match> matches;
  for (auto &entry : nearest) matches.push_back(std::move(entry.second));
  std::stable_sort(matches.begin(), matches.end(),
                   [](const Match &a, const Match &b) { return a.distance < b.distance; });
  return matches;
}

}  // namespace orv
