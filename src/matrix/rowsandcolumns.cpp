// orvsSubRow_*, orvsCopyColumn_Indirect_*: a row taken from all rows, and columns gathered by an index list.

#include <cstdint>

#include "core/integer.h"
#include "orvsr/matrix.h"
#include "primitives/memory.h"
#include "primitives/rows.h"

namespace orv {
namespace {

float minus(float a, float b) { return a - b; }
std::int16_t minus(std::int16_t a, std::int16_t b) { return wrap16(a - b); }

template <class Rows, class T>
void subRow(const T *vec, const Rows &rows, std::int32_t height, std::int32_t width) {
  for (std::int32_t r = 0; r < height; ++r) {
    T *const row = rows.row(r);
    for (std::int32_t c = 0; c < width; ++c) store(row + c, minus(load(row + c), load(vec + c)));
  }
}

// The sizes and, in the strided members, steps of the two matrices are tested one after the other; a matrix
// of row pointers passes its width for a step.
OrvStatus checkGather(std::int32_t srcWidth, std::int32_t srcStep, std::int32_t dstWidth,
                      std::int32_t dstStep, std::int32_t height) {
  if (srcWidth < 1) return orvStsSizeErr;
  if (srcWidth > srcStep) return orvStsStrideErr;
  if (dstWidth < 1) return orvStsSizeErr;
  if (dstWidth > dstStep) return orvStsStrideErr;
  return height < 1 ? orvStsSizeErr : orvStsNoErr;
}

// The index list is tested while the first row is copied, so that the elements before a bad index are
// written.
template <class Src, class Dst>
OrvStatus gather(const Src &src, std::int32_t srcWidth, const Dst &dst, const std::int32_t *index,
                 std::int32_t dstWidth, std::int32_t height) {
  for (std::int32_t j = 0; j < dstWidth; ++j) {
    const std::int32_t i = load(index + j);
    if (i < 0 || i >= srcWidth) return orvStsSizeErr;
    store(dst.row(0) + j, load(src.row(0) + i));
  }
  for (std::int32_t r = 1; r < height; ++r) {
    const auto *const from = src.row(r);
    auto *const to = dst.row(r);
    for (std::int32_t j = 0; j < dstWidth; ++j) store(to + j, load(from + load(index + j)));
  }
  return orvStsNoErr;
}

template <class T>
OrvStatus gatherStrided(const T *src, std::int32_t srcWidth, std::int32_t srcStep, T *dst,
                        const std::int32_t *index, std::int32_t dstWidth, std::int32_t dstStep,
                        std::int32_t height) {
  if (anyNull(src, dst, index)) return orvStsNullPtrErr;
  const OrvStatus status = checkGather(srcWidth, srcStep, dstWidth, dstStep, height);
  if (status != orvStsNoErr) return status;
  return gather(StridedRows{src, srcStep}, srcWidth, StridedRows{dst, dstStep}, index, dstWidth, height);
}

template <class T>
OrvStatus gatherRows(const T *const *src, std::int32_t srcWidth, T *const *dst, const std::int32_t *index,
                     std::int32_t dstWidth, std::int32_t height) {
  if (anyNull(src, dst, index)) return orvStsNullPtrErr;
  const OrvStatus status = checkGather(srcWidth, srcWidth, dstWidth, dstWidth, height);
  if (status != orvStsNoErr) return status;
  return gather(RowPointers{src}, srcWidth, RowPointers{dst}, index, dstWidth, height);
}

}  // namespace
}  // namespace orv

using namespace orv;

OrvStatus orvsSubRow_32f_D2(const float *pVec, float *pSrcDst, int32_t step, int32_t height, int32_t width) {
  const OrvStatus status = checkNullSizeStride(width, step, height, pVec, pSrcDst);
  if (status != orvStsNoErr) return status;
  subRow(pVec, StridedRows{pSrcDst, step}, height, width);
  return orvStsNoErr;
}

OrvStatus orvsSubRow_32f_D2L(const float *pVec, float *const *ppSrcDst, int32_t width, int32_t height) {
  const OrvStatus status = checkNullSize(width, height, pVec, ppSrcDst);
  if (status != orvStsNoErr) return status;
  subRow(pVec, RowPointers{ppSrcDst}, height, width);
  return orvStsNoErr;
}

OrvStatus orvsSubRow_16s_D2(const int16_t *pVec, int16_t *pSrcDst, int32_t step, int32_t height,
                            int32_t width) {
  const OrvStatus status = checkNullSizeStride(width, step, height, pVec, pSrcDst);
  if (status != orvStsNoErr) return status;
  subRow(pVec, StridedRows{pSrcDst, step}, height, width);
  return orvStsNoErr;
}

OrvStatus orvsSubRow_16s_D2L(const int16_t *pVec, int16_t *const *ppSrcDst, int32_t width, int32_t height) {
  const OrvStatus status = checkNullSize(width, height, pVec, ppSrcDst);
  if (status != orvStsNoErr) return status;
  subRow(pVec, RowPointers{ppSrcDst}, height, width);
  return orvStsNoErr;
}

OrvStatus orvsCopyColumn_Indirect_16s_D2(const int16_t *pSrc, int32_t srcWidth, int32_t srcStep,
                                         int16_t *pDst, const int32_t *pIndex, int32_t dstWidth,
                                         int32_t dstStep, int32_t height) {
  return gatherStrided(pSrc, srcWidth, srcStep, pDst, pIndex, dstWidth, dstStep, height);
}

OrvStatus orvsCopyColumn_Indirect_16s_D2L(const int16_t *const *ppSrc, int32_t srcWidth,
                                          int16_t *const *ppDst, const int32_t *pIndex, int32_t dstWidth,
                                          int32_t height) {
  return gatherRows(ppSrc, srcWidth, ppDst, pIndex, dstWidth, height);
}

OrvStatus orvsCopyColumn_Indirect_32f_D2(const float *pSrc, int32_t srcWidth, int32_t srcStep, float *pDst,
                                         const int32_t *pIndex, int32_t dstWidth, int32_t dstStep,
                                         int32_t height) {
  return gatherStrided(pSrc, srcWidth, srcStep, pDst, pIndex, dstWidth, dstStep, height);
}

OrvStatus orvsCopyColumn_Indirect_32f_D2L(const float *const *ppSrc, int32_t srcWidth, float *const *ppDst,
                                          const int32_t *pIndex, int32_t dstWidth, int32_t height) {
  return gatherRows(ppSrc, srcWidth, ppDst, pIndex, dstWidth, height);
}

OrvStatus orvsCopyColumn_Indirect_64f_D2(const double *pSrc, int32_t srcWidth, int32_t srcStep, double *pDst,
                                         const int32_t *pIndex, int32_t dstWidth, int32_t dstStep,
                                         int32_t height) {
  return gatherStrided(pSrc, srcWidth, srcStep, pDst, pIndex, dstWidth, dstStep, height);
}

OrvStatus orvsCopyColumn_Indirect_64f_D2L(const double *const *ppSrc, int32_t srcWidth, double *const *ppDst,
                                          const int32_t *pIndex, int32_t dstWidth, int32_t height) {
  return gatherRows(ppSrc, srcWidth, ppDst, pIndex, dstWidth, height);
}
