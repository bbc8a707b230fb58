#include "common/npy.h"

#include <algorithm>
#include <bit>
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

NpyStream::NpyStream(const OutputFile &file, std::int32_t width) : stream_(file.stream()), width_(width) {
  stream_.append(header());
}

void NpyStream::append(const float *row) {
  static_assert(std::endian::native == std::endian::little);
  constexpr std::size_t kWaiting = 1 << 16;
  waiting_.append(reinterpret_cast<const char *>(row), static_cast<std::size_t>(width_) * sizeof *row);
  ++rows_;
  if (waiting_.size() < kWaiting) return;
  stream_.append(waiting_);
  waiting_.clear();
}

void NpyStream::commit() {
  stream_.append(waiting_);
  waiting_.clear();
  stream_.overwrite(0, header());
  stream_.commit();
}

// Version 1.0: a magic text, the length of what follows, and a Python dictionary, filled up to 128 bytes.
std::string NpyStream::header() const {
  std::string text = "\x93NUMPY";
  text += {'\x01', '\x00', '\x76', '\x00'};
  text += "{'descr': '<f4', 'fortran_order': False, 'shape': (" + std::to_string(rows_) + ", " +
          std::to_string(width_) + "), }";
  text.resize(127, ' ');
  return text + '\n';
}

}  // namespace orv
