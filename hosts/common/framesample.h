// A bounded share of frames that go by.

#ifndef ORV_HOSTS_COMMON_FRAMESAMPLE_H
#define ORV_HOSTS_COMMON_FRAMESAMPLE_H

#include <cstddef>
#include <random>

#include "common/frames.h"

namespace orv {

// Keeps all frames while there are at most so many, and then a random choice of them in which each frame has
// the same chance to be. The choice is the same in every run.
//
// Source: J. S. Vitter, Random sampling with a reservoir, ACM Trans. Mathematical Software 11 (1985),
// algorithm R.
class FrameSample {
 public:
  explicit FrameSample(std::size_t most) : most_(most) {}

  void add(const Frames &frames);

  const Frames &frames() const { return kept_; }
  std::size_t seen() const { return seen_; }

 private:
  std::size_t most_, seen_ = 0;
  Frames kept_;
  std::mt19937_64 random_;
};

}  // namespace orv

#endif
