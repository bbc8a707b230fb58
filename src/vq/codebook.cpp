// orvsCdbk*, orvsGetCdbkSize_*, orvsGetCodebook_*: how a codebook is born, read and released.

#include "vq/codebook.h"

#include <type_traits>

#include "core/alloc.h"
#include "vq/fields.h"
#include "vq/growth.h"

using namespace orv;
using namespace orv::cdbk;

namespace {

constexpr std::int32_t kMostRows = 16383;

// --- strides

constexpr std::int64_t roundUp(std::int64_t v, std::int64_t unit) { return (v + unit - 1) / unit * unit; }

// Codebooks that the library allocates pad their rows to 16 bytes. Those in caller memory follow the 16s rule
// for both types, although that gives a 32f one other strides than its allocated twin; sizes in the field
// count on it.
template <class T>
std::int64_t allocatedStride(std::int32_t width, std::int32_t step, std::int32_t method) {
  if (method == CDBK_DIRECT && isPackedWidth<T>(width)) return width;
  return roundUp(step, 16 / std::int64_t{sizeof(T)});
}
std::int64_t callerStride(std::int32_t width, std::int32_t step) {
  return isPackedWidth<std::int16_t>(width) ? width : roundUp(step, 8);
}

// --- birth

bool areSizesBad(std::int32_t width, std::int32_t step, std::int32_t height, std::int32_t cdbkSize) {
  return width < 1 || step < 1 || height < 1 || cdbkSize < 1 || width > step || cdbkSize > kMostRows;
}

template <class T>
void copyRows(const CdbkState &cdbk, const T *src, std::int32_t step) {
  const std::size_t bytes = static_cast<std::size_t>(cdbk.width) * sizeof(T);
  for (std::int64_t r = 0; r < cdbk.size; ++r)
    ownsCopy_8u(reinterpret_cast<const std::uint8_t *>(src + r * step),
                reinterpret_cast<std::uint8_t *>(rowOf<T>(cdbk, r)), bytes);
}

template <class T>
void setOnes(T *values, std::int32_t len) {
  for (std::int32_t k = 0; k < len; ++k) values[k] = T{1};
}

void release(CdbkState *cdbk) {
  for (void *block : {cdbk->pData, cdbk->pWeights, static_cast<void *>(cdbk->pScratch), cdbk->pField,
                      static_cast<void *>(cdbk->pRoot)})
    if (block != nullptr) orvsFree(block);
  orvsFree(cdbk);
}

// An object and its common arrays, with the list that a tree grows in.
template <class T>
CdbkState *allocateCodebook(std::int32_t rows, std::int64_t stride, std::int32_t width, std::int32_t listLen,
                            CdbkCluster ***list) {
  auto *cdbk = reinterpret_cast<CdbkState *>(orvsMalloc_8u(sizeof(CdbkState)));
  if (cdbk == nullptr) return nullptr;
  *cdbk = CdbkState{};
  cdbk->pData = allocate<T>(lengthOf(rows * stride));
  if (cdbk->pData != nullptr) cdbk->pWeights = allocate<T>(width);
  if (cdbk->pWeights != nullptr) *list = allocate<CdbkCluster *>(listLen);
  if (*list != nullptr) cdbk->pScratch = allocate<float>(rows);
  if (cdbk->pScratch != nullptr) return cdbk;
  if (*list != nullptr) orvsFree(*list);
  release(cdbk);
  return nullptr;
}

template <class T>
OrvStatus fill(CdbkState &cdbk, const T *src, std::int32_t step, std::int32_t height, std::int32_t cdbkSize,
               CdbkCluster **list) {
  switch (cdbk.method) {
    case CDBK_DIRECT:
      cdbk.size = height;
      cdbk.maxDepth = height - 1;
      copyRows(cdbk, src, step);
      if (const OrvStatus status = buildField<T>(cdbk); status != orvStsNoErr) return status;
      break;
    case CDBK_SPLIT_SPREAD:
    case CDBK_SPLIT_COUNT:
      if (const OrvStatus status = growTree(cdbk, src, step, height, cdbkSize, list); status != orvStsNoErr)
        return status;
      break;
    default:
      return orvStsCdbkMethodErr;
  }
  cdbk.sizeBits = significantBits(cdbk.size - 1);
  return cdbk.size == cdbkSize ? orvStsNoErr : orvStsCdbkShortWrn;
}

template <class T>
OrvStatus build(CdbkState **ppCdbk, const T *src, const T *weights, std::int32_t width, std::int32_t step,
                std::int32_t height, std::int32_t cdbkSize, std::int32_t method) {
  if (src == nullptr || weights == nullptr) return orvStsNullPtrErr;
  if (areSizesBad(width, step, height, cdbkSize) || cdbkSize > height) return orvStsSizeErr;
  bool areAllOne = true;
  for (std::int32_t k = 0; k < width; ++k) {
    const T w = load(weights + k);
    if (w < 0) return orvStsBadArgErr;
    areAllOne = areAllOne && w == 1;
  }

  // A direct codebook holds every row, however few were asked for.
  const std::int32_t rows = method == CDBK_DIRECT ? height : cdbkSize;
  const std::int64_t stride = allocatedStride<T>(width, step, method);
  CdbkCluster **list = nullptr;
  CdbkState *cdbk = allocateCodebook<T>(rows, stride, width, cdbkSize, &list);
  if (cdbk == nullptr) return orvStsMemAllocErr;
  cdbk->width = width;
  cdbk->stride = static_cast<std::int32_t>(stride);  // it was allocated, so it fits
  cdbk->method = method;
  ownsZero_8u(static_cast<std::uint8_t *>(cdbk->pData), static_cast<std::size_t>(rows * stride) * sizeof(T));
  if (!areAllOne) cdbk->flags = kWeighted;
  ownsCopy_8u(reinterpret_cast<const std::uint8_t *>(weights), static_cast<std::uint8_t *>(cdbk->pWeights),
              static_cast<std::size_t>(width) * sizeof(T));

  const OrvStatus status = fill(*cdbk, src, step, height, cdbkSize, list);
  orvsFree(list);
  if (status < orvStsNoErr) {
    release(cdbk);
  } else {
    store(ppCdbk, cdbk);
  }
  return status;
}

template <class T>
OrvStatus buildUnweighted(CdbkState **ppCdbk, const T *src, std::int32_t width, std::int32_t step,
                          std::int32_t height, std::int32_t cdbkSize, std::int32_t method) {
  if (width < 1) return orvStsSizeErr;
  const WorkArray<T> ones(width);
  if (!ones) return orvStsMemAllocErr;
  setOnes(ones.get(), width);
  return build<T>(ppCdbk, src, ones.get(), width, step, height, cdbkSize, method);
}

// --- caller memory

constexpr std::int64_t kPartAlignment = 32;

bool isTreeMethod(std::int32_t method) { return method == CDBK_SPLIT_SPREAD || method == CDBK_SPLIT_COUNT; }

// The head, rows, weights and scratch, with what aligning them takes: of a head on any address 7 bytes, of
// the parts at most 24, 30 and 30.
template <class T>
std::int64_t callerBytes(std::int32_t width, std::int32_t step, std::int32_t cdbkSize) {
  constexpr std::int64_t kSlack = std::is_same_v<T, float> ? 96 : 128;
  constexpr std::int64_t kElement = sizeof(T);
  const std::int64_t rows = callerStride(width, step) * cdbkSize;
  return (width + rows) * kElement + cdbkSize * std::int64_t{sizeof(float)} +
         std::int64_t{sizeof(CdbkState)} + kSlack;
}

template <class T>
OrvStatus reportSize(std::int32_t width, std::int32_t step, std::int32_t height, std::int32_t cdbkSize,
                     std::int32_t method, std::int32_t *pSize) {
  if (isTreeMethod(method)) return orvStsCdbkMethodErr;
  if (pSize == nullptr) return orvStsNullPtrErr;
  if (areSizesBad(width, step, height, cdbkSize) || cdbkSize != height) return orvStsSizeErr;
  const std::int64_t bytes = callerBytes<T>(width, step, cdbkSize);
  if (bytes > INT32_MAX) return orvStsSizeErr;
  store(pSize, static_cast<std::int32_t>(bytes));
  return orvStsNoErr;
}

template <class P>
P *alignPart(void *p) {
  const auto address = reinterpret_cast<std::uintptr_t>(p);
  return reinterpret_cast<P *>((address + kPartAlignment - 1) & ~std::uintptr_t{kPartAlignment - 1});
}

// Any method but the tree methods passes, and is stored. Of a 32f codebook the bits of an index are recorded
// too: streams of packed indices read them.
template <class T>
OrvStatus init(CdbkState *pCdbk, const T *src, std::int32_t width, std::int32_t step, std::int32_t height,
               std::int32_t cdbkSize, std::int32_t method) {
  if (isTreeMethod(method)) return orvStsCdbkMethodErr;
  if (pCdbk == nullptr || src == nullptr) return orvStsNullPtrErr;
  if (areSizesBad(width, step, height, cdbkSize) || cdbkSize != height) return orvStsSizeErr;
  if (callerBytes<T>(width, step, cdbkSize) > INT32_MAX) return orvStsSizeErr;
  CdbkState &cdbk = *codebookIn(pCdbk);
  cdbk = CdbkState{};
  cdbk.maxDepth = cdbkSize - 1;
  cdbk.size = height;
  cdbk.width = width;
  cdbk.stride = static_cast<std::int32_t>(callerStride(width, step));
  cdbk.method = method;
  cdbk.sizeBits = significantBits(height - 1);
  T *rows = alignPart<T>(&cdbk + 1);
  T *weights = alignPart<T>(rows + std::int64_t{cdbk.stride} * height);
  cdbk.pData = rows;
  cdbk.pWeights = weights;
  cdbk.pScratch = alignPart<float>(weights + width);
  ownsZero_8u(reinterpret_cast<std::uint8_t *>(rows),
              static_cast<std::size_t>(std::int64_t{cdbk.stride} * height) * sizeof(T));
  copyRows(cdbk, src, step);
  setOnes(weights, width);
  return orvStsNoErr;
}

// --- the rest of a life

OrvStatus destroy(CdbkState *pCdbk) {
  if (pCdbk == nullptr || codebookIn(pCdbk)->pData == nullptr) return orvStsNullPtrErr;
  switch (codebookIn(pCdbk)->method) {
    case CDBK_DIRECT:
    case CDBK_SPLIT_SPREAD:
    case CDBK_SPLIT_COUNT:
      release(pCdbk);
      return orvStsNoErr;
    default:
      return orvStsCdbkKindErr;
  }
}

OrvStatus reportRows(const CdbkState *pCdbk, std::int32_t *pSize) {
  if (pCdbk == nullptr || pSize == nullptr) return orvStsNullPtrErr;
  store(pSize, codebookIn(pCdbk)->size);
  return orvStsNoErr;
}

template <class T>
OrvStatus copyOut(const CdbkState *pCdbk, T *dst, std::int32_t step) {
  if (pCdbk == nullptr || dst == nullptr) return orvStsNullPtrErr;
  const CdbkState &cdbk = *codebookIn(pCdbk);
  if (step < 1 || step < cdbk.width) return orvStsSizeErr;
  for (std::int64_t r = 0; r < cdbk.size; ++r)
    ownsCopy_8u(reinterpret_cast<const std::uint8_t *>(rowOf<T>(cdbk, r)),
                reinterpret_cast<std::uint8_t *>(dst + r * step),
                static_cast<std::size_t>(cdbk.width) * sizeof(T));
  return orvStsNoErr;
}

}  // namespace

OrvStatus orvsCdbkInitAlloc_L2_32f(CdbkState **ppCdbk, const float *pSrc, int32_t width, int32_t step,
                                   int32_t height, int32_t cdbkSize, int32_t method) {
  return buildUnweighted(ppCdbk, pSrc, width, step, height, cdbkSize, method);
}

OrvStatus orvsCdbkInitAlloc_L2_16s(CdbkState **ppCdbk, const int16_t *pSrc, int32_t width, int32_t step,
                                   int32_t height, int32_t cdbkSize, int32_t method) {
  return buildUnweighted(ppCdbk, pSrc, width, step, height, cdbkSize, method);
}

OrvStatus orvsCdbkInitAlloc_WgtL2_32f(CdbkState **ppCdbk, const float *pSrc, const float *pWeights,
                                      int32_t width, int32_t step, int32_t height, int32_t cdbkSize,
                                      int32_t method) {
  return build(ppCdbk, pSrc, pWeights, width, step, height, cdbkSize, method);
}

OrvStatus orvsCdbkInitAlloc_WgtL2_16s(CdbkState **ppCdbk, const int16_t *pSrc, const int16_t *pWeights,
                                      int32_t width, int32_t step, int32_t height, int32_t cdbkSize,
                                      int32_t method) {
  return build(ppCdbk, pSrc, pWeights, width, step, height, cdbkSize, method);
}

OrvStatus orvsCdbkInit_L2_32f(CdbkState *pCdbk, const float *pSrc, int32_t width, int32_t step,
                              int32_t height, int32_t cdbkSize, int32_t method) {
  return init(pCdbk, pSrc, width, step, height, cdbkSize, method);
}

OrvStatus orvsCdbkInit_L2_16s(CdbkState *pCdbk, const int16_t *pSrc, int32_t width, int32_t step,
                              int32_t height, int32_t cdbkSize, int32_t method) {
  return init(pCdbk, pSrc, width, step, height, cdbkSize, method);
}

OrvStatus orvsCdbkGetSize_32f(int32_t width, int32_t step, int32_t height, int32_t cdbkSize, int32_t method,
                              int32_t *pSize) {
  return reportSize<float>(width, step, height, cdbkSize, method, pSize);
}

OrvStatus orvsCdbkGetSize_16s(int32_t width, int32_t step, int32_t height, int32_t cdbkSize, int32_t method,
                              int32_t *pSize) {
  return reportSize<std::int16_t>(width, step, height, cdbkSize, method, pSize);
}

OrvStatus orvsCdbkFree_32f(CdbkState *pCdbk) { return destroy(pCdbk); }

OrvStatus orvsCdbkFree_16s(CdbkState *pCdbk) { return destroy(pCdbk); }

OrvStatus orvsGetCdbkSize_32f(const CdbkState *pCdbk, int32_t *pSize) { return reportRows(pCdbk, pSize); }

OrvStatus orvsGetCdbkSize_16s(const CdbkState *pCdbk, int32_t *pSize) { return reportRows(pCdbk, pSize); }

OrvStatus orvsGetCodebook_32f(const CdbkState *pCdbk, float *pDst, int32_t step) {
  return copyOut(pCdbk, pDst, step);
}

OrvStatus orvsGetCodebook_16s(const CdbkState *pCdbk, int16_t *pDst, int32_t step) {
  return copyOut(pCdbk, pDst, step);
}
