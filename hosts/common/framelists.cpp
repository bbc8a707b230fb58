#include "common/framelists.h"

#include <algorithm>

#include "common/error.h"
#include "orvsr/core.h"
#include "orvsr/gauss.h"

namespace orv {

FrameLists::FrameLists(const Frames &frames, const Mixture &mixture, std::int32_t best)
    : best_(static_cast<std::size_t>(best)), components_(mixture.weights.size()) {
  std::vector<float> totals(kFrameBlock), scores(kFrameBlock * components_), own(components_),
      least(kFrameBlock);
  std::vector<std::size_t> ties(kFrameBlock);
  std::vector<std::uint16_t> slots(kFrameBlock);
  entries_.reserve(frames.rows * best_);
  for (std::size_t start = 0; start < frames.rows; start += kFrameBlock) {
    const std::size_t count = std::min(kFrameBlock, frames.rows - start);
    mixture.score(frames, start, count, totals.data(), scores.data(), kFrameBlock);
    // The lowest score that is listed, and how many of those that equal it.
    for (std::size_t f = 0; f < count; ++f) {
      for (std::size_t m = 0; m < components_; ++m) own[m] = scores[m * kFrameBlock + f];
      require(orvsNthMaxElement_32f(own.data(), mixture.components(), best - 1, &least[f]),
              "orvsNthMaxElement_32f");
      ties[f] = best_ - static_cast<std::size_t>(std::count_if(
                            own.begin(), own.end(), [&](float score) { return score > least[f]; }));
    }
    std::fill(slots.begin(), slots.end(), std::uint16_t{0});
    const std::size_t first = entries_.size();
    for (std::size_t m = 0; m < components_; ++m) {
      for (std::size_t f = 0; f < count; ++f) {
        const float score = scores[m * kFrameBlock + f];
        if (!(score > least[f])) {
          if (score != least[f] || ties[f] == 0) continue;
          --ties[f];
        }
        entries_.push_back({static_cast<std::uint16_t>(f), slots[f]++});
      }
      ends_.push_back(static_cast<std::uint32_t>(entries_.size() - first));
    }
    if (entries_.size() - first != count * best_)
      throw Error("training lost its way: a score is not a number");
  }
}

std::size_t FrameLists::firstScore(std::size_t start, std::size_t component) const {
  return component == 0 ? 0 : ends_[start / kFrameBlock * components_ + component - 1];
}

std::span<const FrameLists::Entry> FrameLists::entries(std::size_t start, std::size_t component) const {
  const std::size_t first = firstScore(start, component);
  return {entries_.data() + start * best_ + first,
          ends_[start / kFrameBlock * components_ + component] - first};
}

void FrameLists::score(const Frames &frames, const Mixture &mixture, std::size_t start, float *totals,
                       std::vector<float> &scores) const {
  const std::size_t count = std::min(kFrameBlock, frames.rows - start);
  scores.resize(best_ * count);
  std::vector<float> slots(best_ * count);
  std::vector<const float *> rows;
  for (std::size_t m = 0; m < components_; ++m) {
    const std::span<const Entry> listed = entries(start, m);
    if (listed.empty()) continue;
    rows.clear();
    for (const Entry &entry : listed) rows.push_back(frames.row(start + entry.frame));
    float *to = scores.data() + firstScore(start, m);
    require(orvsLogGauss_32f_D2L(rows.data(), mixture.means.row(m), mixture.inverses.row(m), mixture.width(),
                                 to, static_cast<std::int32_t>(listed.size()), mixture.constants[m]),
            "orvsLogGauss_32f_D2L");
    for (std::size_t i = 0; i < listed.size(); ++i) slots[listed[i].slot * count + listed[i].frame] = to[i];
  }
  std::copy_n(slots.begin(), count, totals);
  for (std::size_t s = 1; s < best_; ++s)
    require(orvsLogAdd_32f(slots.data() + s * count, totals, static_cast<std::int32_t>(count),
                           orvAlgHintAccurate),
            "orvsLogAdd_32f");
}

}  // namespace orv
