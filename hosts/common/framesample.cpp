#include "common/framesample.h"

#include <algorithm>

namespace orv {

void FrameSample::add(const Frames &frames) {
  const std::size_t first = kept_.rows;
  const std::size_t room = std::min(frames.rows, most_ - first);
  if (room > 0) {
    kept_.resize(first + room, frames.width);
    std::copy_n(frames.row(0), room * static_cast<std::size_t>(frames.step), kept_.row(first));
  }
  for (std::size_t r = room; r < frames.rows; ++r) {
    const std::uint64_t place = random_() % (seen_ + r + 1);
    if (place < most_) std::copy_n(frames.row(r), frames.step, kept_.row(place));
  }
  seen_ += frames.rows;
}

}  // namespace orv
