// The codebook object, and the comparisons and distances that its building and its searches share.

#ifndef ORV_VQ_CODEBOOK_H
#define ORV_VQ_CODEBOOK_H

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "orvsr/vq.h"
#include "primitives/memory.h"
#include "primitives/simd.h"

namespace orv::cdbk {

// Centroids side by side, for widths whose vectors fit in one register. An internal node holds the four
// centroids two levels down, a leaf child standing in for both of its places; a leaf holds the centroids of
// its neighbours and the clusters they came from.
struct CdbkPacked {
  void *pGrandchildren;
  void *pNeighbours;
  struct CdbkCluster **ppClusters;
};

// A node of the tree. While the tree grows, the cluster list holds the current leaves.
struct CdbkCluster {
  float spread;  // twice the largest distance of a member to the centroid; 0 below two members
  void *pCentroid;
  std::int32_t index;  // of a leaf: its row of the codebook
  std::int32_t count;  // members; of an internal node, when it was split
  std::int32_t isLeaf;
  std::int32_t depth;  // 1 at the root
  CdbkCluster *pLeft, *pRight;
  std::int32_t neighbourCount;
  CdbkCluster **ppNeighbours;  // nearest first
  CdbkPacked *pPacked;         // null unless the width is a packed one
};

// Width 1: cells of equal width over the range of the rows. The list of cell j stands at j + 1; the first and
// the last list serve what lies outside.
struct CdbkLineField {
  std::int32_t cellCount;
  float cellWidth;
  float low, high;
  std::int32_t **ppLists;  // cellCount + 2 lists of row numbers
  std::int32_t *pCounts;
};

// Width 2: (rows + 2) lines of (columns + 2) cells, a border of cells round the interior. Line 1 is the
// topmost of the interior: y descends from `top`.
struct CdbkGridField {
  std::int32_t columns, rows;
  float cellWidth, cellHeight;
  float left, top, right, bottom;
  std::int32_t **ppLists;
  std::int32_t *pCounts;
};

// Bits of the flags of a codebook.
constexpr std::uint32_t kFieldInUse = 1;
constexpr std::uint32_t kWeighted = 2;  // the weights are not all one

}  // namespace orv::cdbk

struct CdbkState {
  std::int32_t maxDepth;  // direct: size - 1; tree: the largest depth of a leaf
  std::int32_t size;      // code vectors held
  std::int32_t width;
  std::int32_t stride;  // elements from one row to the next
  std::int32_t method;
  void *pData;
  orv::cdbk::CdbkCluster *pRoot;
  std::uint32_t flags;
  void *pWeights;
  void *pField;           // CdbkLineField of width 1, CdbkGridField of width 2, or null
  std::int32_t sizeBits;  // significant bits of size - 1
  float *pScratch;        // `size` distances; written by the exhaustive searches
};

namespace orv::cdbk {

static_assert(sizeof(CdbkState) == 80, "the reported sizes count on it");

// The head of a codebook begins at the first multiple of 8 of its memory, so that nothing is asked of the
// alignment of a caller's buffer.
inline CdbkState *codebookIn(CdbkState *pCdbk) {
  const auto address = reinterpret_cast<std::uintptr_t>(pCdbk);
  return reinterpret_cast<CdbkState *>((address + 7) & ~std::uintptr_t{7});
}
inline const CdbkState *codebookIn(const CdbkState *pCdbk) {
  return codebookIn(const_cast<CdbkState *>(pCdbk));
}

template <class T>
inline T *rowOf(const CdbkState &cdbk, std::int64_t r) {
  return static_cast<T *>(cdbk.pData) + r * cdbk.stride;
}
template <class T>
inline const T *weightsOf(const CdbkState &cdbk) {
  return static_cast<const T *>(cdbk.pWeights);
}
inline bool isWeighted(const CdbkState &cdbk) { return (cdbk.flags & kWeighted) != 0; }
inline const CdbkLineField *lineFieldOf(const CdbkState &cdbk) {
  return cdbk.width == 1 ? static_cast<const CdbkLineField *>(cdbk.pField) : nullptr;
}
inline const CdbkGridField *gridFieldOf(const CdbkState &cdbk) {
  return cdbk.width == 2 ? static_cast<const CdbkGridField *>(cdbk.pField) : nullptr;
}

constexpr std::int32_t significantBits(std::int32_t v) {
  return static_cast<std::int32_t>(std::bit_width(static_cast<std::uint32_t>(v)));
}

// Widths whose vectors fit in one register.
template <class T>
constexpr bool isPackedWidth(std::int32_t width) {
  return width == 1 || width == 2 || width == 4 || (width == 8 && sizeof(T) == 4);
}

// The length of an array of so many elements: what 32 bits cannot express becomes 0, which cannot be
// allocated.
constexpr std::int32_t lengthOf(std::int64_t elements) {
  return elements > INT32_MAX ? 0 : static_cast<std::int32_t>(elements);
}

constexpr float kFarthest = 3.4028235e38F;

// --- tolerant comparisons: they decide every tie, so that rounding does not

constexpr double kTolerance = 1.000001;

inline bool Own_Correct_Greater_32f(float a, float b) { return double{a} > double{b} * kTolerance; }
inline bool Own_Correct_Less_32f(float a, float b) { return double{b} > double{a} * kTolerance; }
inline bool Own_Correct_Equ_32f(float a, float b) {
  return double{std::abs(a - b)} <= std::abs(double{std::max(a, b)}) * 9.999999747378752e-5;
}

// --- distances

inline simd::f32x4 singles4(const float *p) { return simd::load4(p); }
inline simd::f32x4 singles4(const std::int16_t *p) { return simd::toSingle(simd::loadWidened4(p)); }

// Sums of four lanes, then the last elements one by one, all in single precision.
template <bool weighted, class T>
inline float squaredDistance(const T *x, const T *y, const T *w, std::int32_t width) {
  simd::f32x4 sums{};
  std::int32_t k = 0;
  for (; width - k >= 4; k += 4) {
    const simd::f32x4 d = singles4(x + k) - singles4(y + k);
    if constexpr (weighted) {
      sums = sums + d * d * singles4(w + k);
    } else {
      sums = sums + d * d;
    }
  }
  float sum = simd::sumLanes(sums);
  for (; k < width; ++k) {
    const float d = static_cast<float>(load(x + k)) - static_cast<float>(load(y + k));
    float term = d * d;
    if constexpr (weighted) term *= static_cast<float>(load(w + k));
    sum += term;
  }
  return sum;
}

// The weighted squared distance.
template <class T>
inline float OwnDistance(const T *x, const T *y, const T *w, std::int32_t width) {
  return squaredDistance<true>(x, y, w, width);
}

// The plain squared distance.
template <class T>
inline float OwnDistanceE(const T *x, const T *y, std::int32_t width) {
  return squaredDistance<false, T>(x, y, nullptr, width);
}

}  // namespace orv::cdbk

#endif
