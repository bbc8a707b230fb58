#include "common/npy.h"

#include <algorithm>
#include <bit>
#include <vector>
#include <xtensor/xnpy.hpp>
#include <xtensor/xtensor.hpp>

namespace orv {
namespace {
constexpr std::size_t kHeader = 128;
}

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
  if (waiting_.size() >= kWaiting) writeWaiting();
}

void NpyStream::writeWaiting() {
  stream_.append(waiting_);
  waiting_.clear();
}

void NpyStream::change(const std::function<void(float *row)> &how) {
  writeWaiting();
  constexpr std::uint64_t kRows = 256;
  const auto width = static_cast<std::size_t>(width_);
  std::vector<float> block;
  for (std::uint64_t row = 0; row < rows_; row += kRows) {
    block.resize(static_cast<std::size_t>(std::min(kRows, rows_ - row)) * width);
    const std::uint64_t at = kHeader + row * width * sizeof(float);
    stream_.read(at, block.data(), block.size() * sizeof(float));
    for (std::size_t i = 0; i < block.size(); i += width) how(block.data() + i);
    stream_.overwrite(at, {reinterpret_cast<const char *>(block.data()), block.size() * sizeof(float)});
  }
}

void NpyStream::commit() {
  writeWaiting();
  stream_.overwrite(0, header());
  stream_.commit();
}

// Version 1.0: a magic text, the length of what follows, and a Python dictionary, filled up to kHeader bytes.
std::string NpyStream::header() const {
  std::string text = "\x93NUMPY";
  text += {'\x01', '\x00', '\x76', '\x00'};
  text += "{'descr': '<f4', 'fortran_order': False, 'shape': (" + std::to_string(rows_) + ", " +
          std::to_string(width_) + "), }";
  text.resize(kHeader - 1, ' ');
  return text + '\n';
}

}  // namespace orv
