// What a block-diagonal matrix looks like inside.

#ifndef ORV_MATRIX_BLOCKDIAG_H
#define ORV_MATRIX_BLOCKDIAG_H

#include <cstdint>

#include "orvsr/types.h"

namespace orv {

// Row r of the whole matrix is the array rows[r], as wide as its block.
template <class T>
struct BlockDMatrix {
  T **rows;
  std::int32_t *blockSizes;
  std::uint8_t *memory;  // the one block that holds all of this
  std::uint16_t blockCount;
  std::uint16_t rowCount;
};

}  // namespace orv

struct OrvBlockDMatrix_16s : orv::BlockDMatrix<std::int16_t> {};
struct OrvBlockDMatrix_32f : orv::BlockDMatrix<float> {};
struct OrvBlockDMatrix_64f : orv::BlockDMatrix<double> {};

#endif
