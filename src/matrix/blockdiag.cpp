// orvsBlockDMatrix*: block-diagonal matrices.

#include "matrix/blockdiag.h"

#include <cstring>

#include "core/alloc.h"
#include "orvsr/matrix.h"
#include "primitives/memory.h"

using namespace orv;

namespace {

constexpr std::int64_t padded(std::int64_t bytes) { return (bytes + 15) / 16 * 16; }

std::uint8_t *alignedUp(std::uint8_t *p) { return p + (0 - reinterpret_cast<std::uintptr_t>(p)) % 16; }

// The bytes of an object, or 0 where its sizes are none that it can record. A block takes the square of its
// padded row, rows being counted at padded length too: more than is needed, and part of the object's settled
// size, like the last term: the record and 15 bytes of alignment.
template <class T>
std::int64_t bytesOf(const std::int32_t *sizes, std::int32_t count, std::uint16_t &rowCount) {
  if (count < 1) return 0;
  std::int64_t rows = 0;
  std::int64_t blocks = 0;
  for (std::int32_t b = 0; b < count; ++b) {
    const std::int64_t size = load(sizes + b);
    rows += size;
    if (size < 1 || rows > UINT16_MAX) return 0;
    const std::int64_t row = padded(size * std::int64_t{sizeof(T)});
    blocks += row * row;
  }
  rowCount = static_cast<std::uint16_t>(rows);
  return padded(count * std::int64_t{sizeof(std::int32_t)}) + blocks +
         padded(rows * std::int64_t{sizeof(T *)}) + 47;
}

template <class T, class Matrix>
OrvStatus initAlloc(Matrix **out, const T *const *src, const std::int32_t *sizes, std::int32_t count) {
  static_assert(sizeof(Matrix) <= 32, "the record fills the slack that alignment leaves");
  if (out == nullptr || src == nullptr || sizes == nullptr) return orvStsNullPtrErr;
  std::uint16_t rowCount = 0;
  const std::int64_t bytes = bytesOf<T>(sizes, count, rowCount);
  if (bytes == 0) return orvStsSizeErr;
  std::uint8_t *const memory = allocateBytes(bytes);
  if (memory == nullptr) return orvStsMemAllocErr;

  std::uint8_t *const record = alignedUp(memory);
  auto *const matrix = reinterpret_cast<Matrix *>(record);
  matrix->memory = memory;
  matrix->blockCount = static_cast<std::uint16_t>(count);
  matrix->rowCount = rowCount;
  std::uint8_t *place = record + padded(sizeof(Matrix));
  matrix->blockSizes = reinterpret_cast<std::int32_t *>(place);
  place += padded(count * std::int64_t{sizeof(std::int32_t)});
  matrix->rows = reinterpret_cast<T **>(place);
  place += padded(rowCount * std::int64_t{sizeof(T *)});

  std::int32_t r = 0;
  for (std::int32_t b = 0; b < count; ++b) {
    const std::int32_t size = matrix->blockSizes[b] = load(sizes + b);
    const std::int64_t rowBytes = size * std::int64_t{sizeof(T)};
    for (const std::int32_t end = r + size; r < end; ++r, place += padded(rowBytes)) {
      matrix->rows[r] = reinterpret_cast<T *>(place);
      ownsCopy_8u(reinterpret_cast<const std::uint8_t *>(src[r]), place, static_cast<std::size_t>(rowBytes));
      // So that whole registers of a row can be read.
      std::memset(place + rowBytes, 0, static_cast<std::size_t>(padded(rowBytes) - rowBytes));
    }
  }
  *out = matrix;
  return orvStsNoErr;
}

template <class T>
OrvStatus release(const BlockDMatrix<T> *matrix) {
  if (matrix == nullptr) return orvStsNullPtrErr;
  orvsFree(matrix->memory);
  return orvStsNoErr;
}

}  // namespace

OrvStatus orvsBlockDMatrixInitAlloc_16s(OrvBlockDMatrix_16s **ppMatrix, const int16_t *const *ppSrc,
                                        const int32_t *pBlockSizes, int32_t blockCount) {
  return initAlloc(ppMatrix, ppSrc, pBlockSizes, blockCount);
}

OrvStatus orvsBlockDMatrixInitAlloc_32f(OrvBlockDMatrix_32f **ppMatrix, const float *const *ppSrc,
                                        const int32_t *pBlockSizes, int32_t blockCount) {
  return initAlloc(ppMatrix, ppSrc, pBlockSizes, blockCount);
}

OrvStatus orvsBlockDMatrixInitAlloc_64f(OrvBlockDMatrix_64f **ppMatrix, const double *const *ppSrc,
                                        const int32_t *pBlockSizes, int32_t blockCount) {
  return initAlloc(ppMatrix, ppSrc, pBlockSizes, blockCount);
}

OrvStatus orvsBlockDMatrixFree_16s(OrvBlockDMatrix_16s *pMatrix) { return release(pMatrix); }

OrvStatus orvsBlockDMatrixFree_32f(OrvBlockDMatrix_32f *pMatrix) { return release(pMatrix); }

OrvStatus orvsBlockDMatrixFree_64f(OrvBlockDMatrix_64f *pMatrix) { return release(pMatrix); }
