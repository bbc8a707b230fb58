// What a transform keeps between calls, and how much memory it takes.

#ifndef ORV_PRIMITIVES_FFT_STATE_H
#define ORV_PRIMITIVES_FFT_STATE_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "primitives/fft/fft.h"

namespace orv {

// Begins at a 32-byte boundary; its tables follow in the same block. It holds pointers into itself, so it is
// never copied.
struct OrvRealFftState32f {
  std::int32_t tag;  // kRealFftTag while valid
  std::int32_t order;
  std::int32_t scaleFwd;
  std::int32_t scaleInv;
  float normFactor;
  std::int32_t hint;         // kept, never read
  std::int32_t workBufSize;  // bytes, without the slack for alignment
  std::int32_t heapOwned;
  std::uint16_t *bitRevTable;
  float *radix4Twiddles;
  float *blockTwiddles;
  float *blockTwiddles2;
  float *realRecTwiddles;
  float *ccsRecTwiddles;
  float *levelRadix4Twiddles[3];
  const float *levelStepTwiddles[3];
  void *block;  // what the allocator gave, which need not be where the object begins
};

struct OrvRealFftState16s32s {
  std::int32_t tag;  // kIntegerFftTag while valid
  std::int32_t order;
  std::int32_t hint;
  std::int32_t workBufSize;
  std::int32_t heapOwned;
  OrvRealFftState32f *inner;  // behind this header, at the next 32-byte boundary
};

namespace fft {

constexpr std::int32_t kRealFftTag = 6;
constexpr std::int32_t kIntegerFftTag = 0x434D414F;
constexpr std::int32_t kMaxOrder = 27;
constexpr std::int32_t kMaxTableOrder = 10;  // up to here the constant sine table serves
constexpr std::int32_t kMaxSmallOrder = 5;   // up to here there are no tables at all

template <class Int>
constexpr Int up32(Int bytes) {
  return (bytes + 31) / 32 * 32;
}

inline std::uint8_t *align32(std::uint8_t *p) { return p + (0 - reinterpret_cast<std::uintptr_t>(p)) % 32; }

// Where the tables of an object begin.
constexpr std::size_t kTablesOffset = up32(sizeof(OrvRealFftState32f));
constexpr std::size_t kInnerOffset = up32(sizeof(OrvRealFftState16s32s));

// log2 of the rows that a large complex transform is split into, by its order, from 9; 0: not split.
constexpr std::int32_t tbl_blk_order[22] = {0,  0,  0,  0, 5, 6,  7,  8,  8,  8,  10,
                                            10, 10, 10, 8, 8, 10, 10, 10, 10, 10, 10};
constexpr std::int32_t blockOrder(std::int32_t complexOrder) { return tbl_blk_order[complexOrder - 9]; }

struct Sizes {
  std::int64_t spec, init, work;
};

// Tables of a complex transform of order 11 or more.
constexpr Sizes largeSizes(std::int32_t order) {
  const std::int64_t points = std::int64_t{1} << order;
  const std::int32_t split = blockOrder(order);
  if (split == 0) return {up32(2 * points) + 8224, 0, 0};
  const std::int32_t rowOrder = order - split;
  const std::int64_t rows = std::int64_t{1} << split;
  const Sizes row =
      rowOrder < 11 ? Sizes{up32((std::int64_t{8} << rowOrder) + 8), 0, 0} : largeSizes(rowOrder);
  return {row.spec + 8 * points + up32(8 * rows + 8), row.init + up32(rows + 4) + 32 * rows,
          std::max(row.work, 32 * rows)};
}

// The bytes of tables, of the buffer for building them, and of working memory without the slack.
constexpr Sizes tableSizes(std::int32_t order) {
  if (order <= kMaxSmallOrder) return {0, 0, 0};
  const std::int64_t len = std::int64_t{1} << order;
  const std::int64_t points = len / 2;
  const std::int32_t complexOrder = order - 1;
  Sizes sizes = {0, 0, 0};
  if (complexOrder > 10)
    sizes = largeSizes(complexOrder);
  else if (complexOrder > 5)
    sizes.spec = up32(8 * points + 8);
  if (complexOrder > 5) sizes.spec += up32(points + 4);
  sizes.spec += 2 * up32(2 * len);
  return sizes;
}

// What the size queries report: callers add these figures to their own, so they are fixed, and there is room
// for an object at any start.
constexpr Sizes reportedSizes(std::int32_t order) {
  if (order <= kMaxSmallOrder) return {168, 0, 0};
  const Sizes tables = tableSizes(order);
  return {tables.spec + 192,
          order > kMaxTableOrder ? up32((std::int64_t{1} << order) + 4) + tables.init + 32 : 0,
          tables.work > 0 ? tables.work + 32 : 0};
}

constexpr Sizes reportedIntegerSizes(std::int32_t order) {
  const Sizes inner = reportedSizes(order);
  return {inner.spec + 64, inner.init > 0 ? inner.init + 32 : 0,
          inner.work + (std::int64_t{4} << order) + 8 + 32};
}

constexpr bool fits32(Sizes sizes) {
  constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max();
  return sizes.spec <= most && sizes.init <= most && sizes.work <= most;
}
static_assert(fits32(reportedSizes(kMaxOrder)) && fits32(reportedIntegerSizes(kMaxOrder)));

// The heap form of an integer object asks for this much more than the floating object alone.
constexpr std::int32_t kIntegerHeapExtra = 32;

// Room at the worst start, for objects without tables and with them.
static_assert(31 + sizeof(OrvRealFftState32f) <= 168);
static_assert(31 + kTablesOffset <= 192);
static_assert(31 + kInnerOffset + sizeof(OrvRealFftState32f) <= 168 + kIntegerHeapExtra);
static_assert(31 + kInnerOffset + kTablesOffset <= 192 + kIntegerHeapExtra);

// Fills the tables of an object whose order is set, in the memory behind it. `sine` is sin(2 pi i /
// 2^sineOrder) for the first quarter turn.
void buildTables(OrvRealFftState32f &spec, const float *sine, std::int32_t sineOrder);

}  // namespace fft
}  // namespace orv

#endif
