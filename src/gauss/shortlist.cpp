// orvsFillShortlist_*, orvsBuildSignTable_*: bit rows from lists of indices. The first bit of a row is the
// most significant bit of its first byte.

#include <algorithm>

#include "orvsr/gauss.h"
#include "primitives/memory.h"
#include "primitives/rows.h"

using namespace orv;

namespace {

// How many indices a list has: all lists the same, or each its own.
struct SameCount {
  std::int32_t count;
  std::int32_t operator()(std::int32_t) const { return count; }
};
struct OwnCounts {
  const std::int32_t *counts;
  std::int32_t operator()(std::int32_t i) const { return load(counts + i); }
};

bool fits(std::int32_t rowBytes, std::int32_t bitOffset, std::int32_t bits) {
  return rowBytes >= (std::int64_t{bitOffset} + bits + 7) / 8;
}

bool allPositive(const std::int32_t *counts, std::int32_t lists) {
  for (std::int32_t i = 0; i < lists; ++i)
    if (load(counts + i) < 1) return false;
  return true;
}

std::int64_t sumOf(const std::int32_t *counts, std::int32_t lists) {
  std::int64_t sum = 0;
  for (std::int32_t i = 0; i < lists; ++i) sum += load(counts + i);
  return sum;
}

template <class Index>
bool allBelow(std::int32_t limit, const Index *indices, std::int64_t count) {
  for (std::int64_t i = 0; i < count; ++i)
    if (const std::int32_t index = load(indices + i); index < 0 || index >= limit) return false;
  return true;
}

// Toggling is meant: rows are not cleared, and an index listed twice cancels itself.
void toggle(std::uint8_t *row, std::int64_t bit) {
  row[bit / 8] = static_cast<std::uint8_t>(row[bit / 8] ^ (128 >> bit % 8));
}

template <class Counts>
void toggleByRow(std::uint8_t *const *dst, std::int32_t rows, std::int64_t bitOffset,
                 const std::int32_t *indices, Counts counts) {
  for (std::int32_t r = 0; r < rows; ++r)
    for (std::int32_t i = counts(r); i > 0; --i) toggle(dst[r], bitOffset + load(indices++));
}

template <class Counts>
void toggleByColumn(std::uint8_t *const *dst, std::int32_t columns, std::int64_t bitOffset,
                    const std::int32_t *indices, Counts counts) {
  for (std::int32_t c = 0; c < columns; ++c)
    for (std::int32_t i = counts(c); i > 0; --i) toggle(dst[load(indices++)], bitOffset + c);
}

std::size_t bytesOf(std::int32_t bits) { return (static_cast<std::size_t>(bits) + 7) / 8; }

// Those of a byte's bits that belong to the last byte of a row of that many bits.
std::uint8_t lastMask(std::int32_t bits) { return static_cast<std::uint8_t>(0xFF << (7 - (bits - 1) % 8)); }

// dst |= bits bitOffset .. bitOffset + bits - 1 of the row. A byte that holds none of them is not read.
void orBits(const std::uint8_t *row, std::int32_t bitOffset, std::int32_t bits, std::uint8_t *dst) {
  row += bitOffset / 8;
  const int shift = bitOffset % 8;
  const std::size_t last = bytesOf(bits) - 1;
  if (shift == 0)
    for (std::size_t k = 0; k < last; ++k) dst[k] |= row[k];
  else
    for (std::size_t k = 0; k < last; ++k)
      dst[k] = static_cast<std::uint8_t>(dst[k] | row[k] << shift | row[k + 1] >> (8 - shift));
  int end = row[last] << shift;
  if (shift + (bits - 1) % 8 >= 8) end |= row[last + 1] >> (8 - shift);
  dst[last] = static_cast<std::uint8_t>(dst[last] | (end & lastMask(bits)));
}

bool anyBit(const std::uint8_t *row, std::int32_t bitOffset, std::int32_t bits) {
  const std::int64_t end = std::int64_t{bitOffset} + bits;
  const std::int64_t last = (end - 1) / 8;
  int seen = 0xFF >> bitOffset % 8;
  for (std::int64_t k = bitOffset / 8; k < last; ++k, seen = 0xFF)
    if ((row[k] & seen) != 0) return true;
  return (row[last] & seen & 0xFF << (7 - (end - 1) % 8)) != 0;
}

}  // namespace

OrvStatus orvsFillShortlist_Row_1u(const int32_t *pIndices, int32_t width, int32_t perRow,
                                   uint8_t *const *ppDst, int32_t rows, int32_t rowBytes, int32_t bitOffset) {
  if (anyNull(ppDst, pIndices)) return orvStsNullPtrErr;
  if (rows < 1 || width < 1 || rowBytes < 1 || perRow < 1 || bitOffset < 0) return orvStsSizeErr;
  if (!fits(rowBytes, bitOffset, width)) return orvStsStrideErr;
  if (!allBelow(width, pIndices, std::int64_t{rows} * perRow)) return orvStsBadArgErr;
  toggleByRow(ppDst, rows, bitOffset, pIndices, SameCount{perRow});
  return orvStsNoErr;
}

// Tests the counts before the stride, where the member for columns tests the stride first. This is meant.
OrvStatus orvsFillShortlist_RowVar_1u(const int32_t *pIndices, const int32_t *pCounts, int32_t width,
                                      uint8_t *const *ppDst, int32_t rows, int32_t rowBytes,
                                      int32_t bitOffset) {
  if (anyNull(ppDst, pIndices, pCounts)) return orvStsNullPtrErr;
  if (rows < 1 || width < 1 || rowBytes < 1 || bitOffset < 0) return orvStsSizeErr;
  if (!allPositive(pCounts, rows)) return orvStsSizeErr;
  if (!fits(rowBytes, bitOffset, width)) return orvStsStrideErr;
  if (!allBelow(width, pIndices, sumOf(pCounts, rows))) return orvStsBadArgErr;
  toggleByRow(ppDst, rows, bitOffset, pIndices, OwnCounts{pCounts});
  return orvStsNoErr;
}

OrvStatus orvsFillShortlist_Column_1u(const int32_t *pIndices, int32_t perColumn, uint8_t *const *ppDst,
                                      int32_t rows, int32_t rowBytes, int32_t bitOffset, int32_t columns) {
  if (anyNull(ppDst, pIndices)) return orvStsNullPtrErr;
  if (rows < 1 || columns < 1 || rowBytes < 1 || perColumn < 1 || bitOffset < 0) return orvStsSizeErr;
  if (!fits(rowBytes, bitOffset, columns)) return orvStsStrideErr;
  if (!allBelow(rows, pIndices, std::int64_t{columns} * perColumn)) return orvStsBadArgErr;
  toggleByColumn(ppDst, columns, bitOffset, pIndices, SameCount{perColumn});
  return orvStsNoErr;
}

OrvStatus orvsFillShortlist_ColumnVar_1u(const int32_t *pIndices, const int32_t *pCounts,
                                         uint8_t *const *ppDst, int32_t rows, int32_t rowBytes,
                                         int32_t bitOffset, int32_t columns) {
  if (anyNull(ppDst, pIndices, pCounts)) return orvStsNullPtrErr;
  if (rows < 1 || columns < 1 || rowBytes < 1 || bitOffset < 0) return orvStsSizeErr;
  if (!fits(rowBytes, bitOffset, columns)) return orvStsStrideErr;
  if (!allPositive(pCounts, columns)) return orvStsSizeErr;
  if (!allBelow(rows, pIndices, sumOf(pCounts, columns))) return orvStsBadArgErr;
  toggleByColumn(ppDst, columns, bitOffset, pIndices, OwnCounts{pCounts});
  return orvStsNoErr;
}

OrvStatus orvsBuildSignTable_8u1u(const uint8_t *pIndices, int32_t perRow, const uint8_t *const *ppTable,
                                  int32_t tableRows, int32_t rowBytes, int32_t bitOffset, uint8_t *pDst,
                                  int32_t rows, int32_t bits) {
  if (anyNull(pIndices, ppTable, pDst)) return orvStsNullPtrErr;
  if (perRow < 1 || tableRows < 1 || rowBytes < 1 || bits < 1 || rows < 1 || bitOffset < 0)
    return orvStsSizeErr;
  if (!fits(rowBytes, bitOffset, bits)) return orvStsStrideErr;
  if (!allBelow(tableRows, pIndices, std::int64_t{rows} * perRow)) return orvStsBadArgErr;
  const std::size_t dstBytes = bytesOf(bits);
  ownsZero_8u(pDst, static_cast<std::size_t>(rows) * dstBytes);
  for (std::int32_t r = 0; r < rows; ++r, pDst += dstBytes)
    for (std::int32_t i = 0; i < perRow; ++i) orBits(ppTable[*pIndices++], bitOffset, bits, pDst);
  return orvStsNoErr;
}

// Unlike the member above, every row reads the list from its first entry, and a hit on whatever bit sets the
// first bit of the row and nothing else. Both are meant, and callers rely on them.
OrvStatus orvsBuildSignTable_Var_8u1u(const uint8_t *pIndices, const int32_t *pCounts,
                                      const uint8_t *const *ppTable, int32_t tableRows, int32_t rowBytes,
                                      int32_t bitOffset, uint8_t *pDst, int32_t rows, int32_t bits) {
  if (anyNull(pIndices, pCounts, ppTable, pDst)) return orvStsNullPtrErr;
  if (tableRows < 1 || rowBytes < 1 || bits < 1 || rows < 1 || bitOffset < 0) return orvStsSizeErr;
  if (!allPositive(pCounts, rows)) return orvStsSizeErr;
  if (!fits(rowBytes, bitOffset, bits)) return orvStsStrideErr;
  if (!allBelow(tableRows, pIndices, sumOf(pCounts, rows))) return orvStsBadArgErr;
  const std::size_t dstBytes = bytesOf(bits);
  ownsZero_8u(pDst, static_cast<std::size_t>(rows) * dstBytes);
  // All rows read the same list, none beyond the greatest count: its first entry with a bit set decides for
  // each.
  std::int32_t most = 0;
  for (std::int32_t r = 0; r < rows; ++r) most = std::max(most, load(pCounts + r));
  std::int32_t firstHit = 0;
  while (firstHit < most && !anyBit(ppTable[pIndices[firstHit]], bitOffset, bits)) ++firstHit;
  for (std::int32_t r = 0; r < rows; ++r, pDst += dstBytes)
    if (load(pCounts + r) > firstHit) *pDst = 128;
  return orvStsNoErr;
}
