// For each frame the Gaussians of a mixture that are worth scoring on it.

#ifndef ORV_HOSTS_COMMON_FRAMELISTS_H
#define ORV_HOSTS_COMMON_FRAMELISTS_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "common/frames.h"
#include "common/mixture.h"

namespace orv {

// Frames of which a trainer scores one Gaussian after the other: their scores stay in the cache.
constexpr std::size_t kFrameBlock = 256;

class FrameLists {
 public:
  // A place in a block where a Gaussian is listed: the frame, and which of the frame's entries it is.
  struct Entry {
    std::uint16_t frame, slot;
  };

  // The coarse pass: the `best` Gaussians of each frame are those that score highest under the mixture as it
  // is now. best <= components of the mixture.
  FrameLists(const Frames &frames, const Mixture &mixture, std::int32_t best);

  // Scores the frames of a block, which starts at frame `start`, a multiple of kFrameBlock: their
  // log-likelihoods under their listed Gaussians together, and the score of each entry of the block.
  void score(const Frames &frames, const Mixture &mixture, std::size_t start, float *totals,
             std::vector<float> &scores) const;

  // Those of the block's entries that list a component, in the order of their frames, and the index of the
  // first of them among the scores.
  std::span<const Entry> entries(std::size_t start, std::size_t component) const;
  std::size_t firstScore(std::size_t start, std::size_t component) const;

 private:
  std::size_t best_, components_;
  std::vector<Entry> entries_;       // block by block, component by component
  std::vector<std::uint32_t> ends_;  // of each component in each block, from the start of the block
};

}  // namespace orv

#endif
