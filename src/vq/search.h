// The search of a codebook by its own structure: all rows, the cell of a field, or the tree.

#ifndef ORV_VQ_SEARCH_H
#define ORV_VQ_SEARCH_H

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "primitives/convert.h"
#include "primitives/memory.h"
#include "vq/codebook.h"
#include "vq/scan.h"

namespace orv::cdbk {

// An object in caller memory may carry any other method; there is no search for it, and calls pass over it in
// silence.
inline bool isSearchable(const CdbkState &cdbk) {
  return cdbk.method == CDBK_DIRECT || cdbk.method == CDBK_SPLIT_SPREAD || cdbk.method == CDBK_SPLIT_COUNT;
}

constexpr std::int32_t kSearchBlock = 1024;

// The code vectors found for up to kSearchBlock vectors, step elements apart, and the squared distances to
// them. A grid cell without rows gives the index -1 and the largest distance.
template <class T>
OrvStatus search(const CdbkState &cdbk, const T *x, std::ptrdiff_t step, std::int32_t count,
                 Nearest *nearest);

// The same for any number of vectors: sink(i, nearest) takes the result of vector i, in order.
template <class T, class Sink>
OrvStatus searchEach(const CdbkState &cdbk, const T *x, std::ptrdiff_t step, std::int32_t count, Sink sink) {
  if (!isSearchable(cdbk)) return orvStsNoErr;
  Nearest nearest[kSearchBlock];
  for (std::int32_t begin = 0; begin < count;) {
    const std::int32_t block = std::min(kSearchBlock, count - begin);
    if (search(cdbk, x + begin * step, step, block, nearest) != orvStsNoErr) return orvStsErr;
    for (std::int32_t i = 0; i < block; ++i) sink(begin + i, nearest[i]);
    begin += block;
  }
  return orvStsNoErr;
}

// Distances that stand in single precision where their integers, scaled and rounded to nearest, shall stand.
inline void convertInPlace(std::int32_t *distances, std::int32_t count, std::int32_t scaleFactor) {
  float block[64];
  for (std::int32_t i = 0; i < count; i += 64) {
    const std::int32_t n = std::min(count - i, 64);
    ownsCopy_8u(reinterpret_cast<const std::uint8_t *>(distances + i),
                reinterpret_cast<std::uint8_t *>(block), static_cast<std::size_t>(n) * sizeof(float));
    orvsConvert_32f32s_Sfs(block, distances + i, n, kRoundNearestEven, scaleFactor);
  }
}

}  // namespace orv::cdbk

#endif
