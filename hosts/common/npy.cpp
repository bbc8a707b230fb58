#include "common/npy.h"

#include <algorithm>
#include <xtensor/xnpy.hpp>
#include <xtensor/xtensor.hpp>

namespace orv {

std::string npy(const Frames &frames) {
  const auto width = static_cast<std::size_t>(frames.width);
  auto array = xt::xtensor<float, 2>::from_shape({frames.rows, width});
  for (std::size_t r = 0; r < frames.rows; ++r) {
    std::copy_n(frames.row(r), width, array.data() + r * width);
  }
  return xt::dump_npy(array);
}

}  // namespace orv
