// Drawing the nearest members of a cluster, one after the other.

#ifndef ORV_VQ_NEARESTDRAW_H
#define ORV_VQ_NEARESTDRAW_H

#include <algorithm>
#include <bit>
#include <cstdint>
#include <limits>

#include "core/alloc.h"
#include "vq/codebook.h"

namespace orv::cdbk {

// A draw goes over the distances in order and keeps one that is tolerantly less than what it kept before; the
// last kept is drawn and counts no more. Two things make a draw cheaper than a pass over all, with the same
// outcome:
//
// - The kept ones of a pass stand on a stack. Without the last of them the next pass would go the same way up
//   to it, so it goes on from there with what was kept before.
// - A tree of minima finds the next distance that is to be kept.
class NearestDraw {
 public:
  explicit NearestDraw(std::int32_t capacity)
      : minima_(lengthOf(2 * static_cast<std::int64_t>(std::bit_ceil(static_cast<std::uint32_t>(capacity))))),
        stack_(capacity) {}
  explicit operator bool() const { return minima_ && stack_; }

  // Room for n distances, to be filled before begin().
  float *distances(std::int32_t n) {
    leaves_ = std::bit_ceil(static_cast<std::uint32_t>(n));
    std::fill_n(minima_.get() + leaves_, leaves_, kDrawn);
    return minima_.get() + leaves_;
  }
  void begin() {
    for (std::uint32_t i = leaves_ - 1; i > 0; --i) formMinimum(i);
    kept_ = 0;
    next_ = 0;
  }

  // The position drawn, or -1 where none is left that is below the largest number.
  std::int32_t draw() {
    float *minima = minima_.get();
    std::int32_t *stack = stack_.get();
    for (;;) {
      const float least =
          kept_ == 0 ? kFarthest : minima[leaves_ + static_cast<std::uint32_t>(stack[kept_ - 1])];
      const std::int32_t found = firstBelow(least);
      if (found < 0) break;
      stack[kept_++] = found;
      next_ = static_cast<std::uint32_t>(found) + 1;
    }
    if (kept_ == 0) return -1;
    const std::int32_t drawn = stack[--kept_];
    next_ = static_cast<std::uint32_t>(drawn) + 1;
    std::uint32_t i = leaves_ + static_cast<std::uint32_t>(drawn);
    minima[i] = kDrawn;
    while ((i /= 2) > 0) formMinimum(i);
    return drawn;
  }

 private:
  static constexpr float kDrawn = std::numeric_limits<float>::infinity();

  // The smaller of two, with an infinity for what is no number.
  void formMinimum(std::uint32_t i) {
    float *minima = minima_.get();
    const float a = minima[2 * i], b = minima[2 * i + 1];
    minima[i] = std::min(a < kDrawn ? a : kDrawn, b < kDrawn ? b : kDrawn);
  }

  // The first position from next_ on whose distance is tolerantly less, or -1.
  std::int32_t firstBelow(float least) const {
    if (next_ >= leaves_) return -1;
    const float *minima = minima_.get();
    std::uint32_t i = leaves_ + next_;
    while (!Own_Correct_Less_32f(minima[i], least)) {
      while (i % 2 == 1) i /= 2;
      if (i == 0) return -1;
      ++i;
    }
    while (i < leaves_) i = Own_Correct_Less_32f(minima[2 * i], least) ? 2 * i : 2 * i + 1;
    return static_cast<std::int32_t>(i - leaves_);
  }

  WorkArray<float>
      minima_;  // of node i below it: nodes 2 i and 2 i + 1; the distances are the nodes from leaves_ on
  WorkArray<std::int32_t> stack_;
  std::uint32_t leaves_ = 1;
  std::uint32_t next_ = 0;  // where the pass goes on
  std::int32_t kept_ = 0;
};

}  // namespace orv::cdbk

#endif
