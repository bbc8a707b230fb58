// Element-wise work a vector at a time, the last elements included.

#ifndef ORV_ROBUST_BLOCKS_H
#define ORV_ROBUST_BLOCKS_H

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace orv {

// The last elements of an array, padded with zeros to a whole block.
template <int lanes, class T>
struct PaddedBlock {
  T values[lanes] = {};

  PaddedBlock(const T *from, std::int32_t count) {
    std::memcpy(values, from, static_cast<std::size_t>(count) * sizeof(T));
  }
};

// Calls f(src..., dst) for each block of `lanes` elements. What remains goes through padded copies, so that
// every element takes the same path and has the same bits wherever it stands. dst may be one of the sources.
template <int lanes, class F, class T, class... Source>
void forBlocks(std::int32_t len, F f, T *dst, const Source *...src) {
  std::int32_t i = 0;
  for (; len - i >= lanes; i += lanes) f(src + i..., dst + i);
  if (i == len) return;
  T results[lanes];
  f(PaddedBlock<lanes, Source>(src + i, len - i).values..., results);
  std::memcpy(dst + i, results, static_cast<std::size_t>(len - i) * sizeof(T));
}

}  // namespace orv

#endif
