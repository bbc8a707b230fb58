// A block of feature frames: rows of equal width, padded so that every row starts on a 16-byte boundary.

#ifndef ORV_HOSTS_COMMON_FRAMES_H
#define ORV_HOSTS_COMMON_FRAMES_H

#include <cstddef>
#include <cstdint>
#include <vector>

namespace orv {

inline std::int32_t paddedWidth(std::int32_t width) { return (width + 3) / 4 * 4; }

struct Frames {
  std::size_t rows = 0;
  std::int32_t width = 0;
  std::int32_t step = 0;
  std::vector<float> values;

  // Keeps what the rows hold only where the width stays the same.
  void resize(std::size_t newRows, std::int32_t newWidth) {
    rows = newRows;
    width = newWidth;
    step = paddedWidth(newWidth);
    values.resize(rows * static_cast<std::size_t>(step));
  }
  float *row(std::size_t r) { return values.data() + r * static_cast<std::size_t>(step); }
  const float *row(std::size_t r) const { return values.data() + r * static_cast<std::size_t>(step); }

  void append(const Frames &more) {
    if (rows == 0) {
      *this = more;
      return;
    }
    values.insert(values.end(), more.values.begin(), more.values.end());
    rows += more.rows;
  }
};

}  // namespace orv

#endif
