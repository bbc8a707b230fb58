// orvsFormVector*: vectors from the indices of code vectors, out of raw tables or codebooks.

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "orvsr/vq.h"
#include "primitives/memory.h"
#include "vq/bits.h"
#include "vq/codebook.h"

using namespace orv;
using namespace orv::cdbk;

namespace {

template <class Index>
bool inTable(Index index, std::int32_t size) {
  return index >= 0 && index < size;
}

// One stream after the other: widths[i] values of row indices[i] of table i.
template <class Index, class T>
OrvStatus formVector(const Index *indices, const T *const *tables, const std::int32_t *sizes,
                     const std::int32_t *widths, const std::int32_t *steps, std::int32_t streams, T *dst) {
  if (indices == nullptr || tables == nullptr || sizes == nullptr || widths == nullptr || steps == nullptr ||
      dst == nullptr)
    return orvStsNullPtrErr;
  if (streams < 1) return orvStsSizeErr;
  for (std::int32_t i = 0; i < streams; ++i)
    if (load(widths + i) < 1 || load(steps + i) < 1 || !inTable(load(indices + i), load(sizes + i)))
      return orvStsSizeErr;

  for (std::int32_t i = 0; i < streams; ++i) {
    const T *row = tables[i] + static_cast<std::ptrdiff_t>(load(indices + i)) * load(steps + i);
    const auto width = static_cast<std::size_t>(load(widths + i));
    std::memcpy(dst, row, width * sizeof(T));
    dst += width;
  }
  return orvStsNoErr;
}

// The same with `width` values in every row of every table. What is left of len behind the last whole row is
// neither looked at nor written.
template <std::int32_t width, class Index, class T>
OrvStatus formVectorOf(const Index *indices, const T *const *tables, const std::int32_t *sizes, T *dst,
                       std::int32_t len) {
  if (indices == nullptr || tables == nullptr || sizes == nullptr || dst == nullptr) return orvStsNullPtrErr;
  if (len < 1) return orvStsSizeErr;
  const std::int32_t streams = len / width;
  for (std::int32_t i = 0; i < streams; ++i)
    if (!inTable(load(indices + i), load(sizes + i))) return orvStsSizeErr;

  for (std::int32_t i = 0; i < streams; ++i) {
    const T *row = tables[i] + static_cast<std::ptrdiff_t>(load(indices + i)) * width;
    std::memcpy(dst + static_cast<std::ptrdiff_t>(i) * width, row, width * sizeof(T));
  }
  return orvStsNoErr;
}

struct Sums {
  std::int64_t widths = 0, bits = 0;
};

OrvStatus addUp(const CdbkState *const *codebooks, std::int32_t streams, Sums *sums) {
  for (std::int32_t i = 0; i < streams; ++i) {
    if (codebooks[i] == nullptr) return orvStsNullPtrErr;
    sums->widths += codebookIn(codebooks[i])->width;
    sums->bits += codebookIn(codebooks[i])->sizeBits;
  }
  return orvStsNoErr;
}

// The rows of the code vectors with the indices index(row, stream, cdbk), which are not tested.
template <class T, class Indices>
void form(T *dst, std::int32_t dstStep, std::int32_t height, const CdbkState *const *codebooks,
          std::int32_t streams, Indices index) {
  for (std::int32_t r = 0; r < height; ++r) {
    T *place = dst + static_cast<std::ptrdiff_t>(r) * dstStep;
    for (std::int32_t i = 0; i < streams; ++i) {
      const CdbkState &cdbk = *codebookIn(codebooks[i]);
      const auto width = static_cast<std::size_t>(cdbk.width);
      std::memcpy(place, rowOf<T>(cdbk, index(r, i, cdbk)), width * sizeof(T));
      place += width;
    }
  }
}

template <class Index, class T>
OrvStatus formFromIndices(const Index *indices, std::int32_t srcStep, T *dst, std::int32_t dstStep,
                          std::int32_t height, const CdbkState *const *codebooks, std::int32_t streams) {
  if (codebooks == nullptr || indices == nullptr || dst == nullptr) return orvStsNullPtrErr;
  if (streams < 1 || srcStep < 1 || dstStep < 1 || height < 1 || streams > srcStep) return orvStsSizeErr;
  Sums sums;
  if (const OrvStatus status = addUp(codebooks, streams, &sums); status != orvStsNoErr) return status;
  if (sums.widths > dstStep) return orvStsSizeErr;
  form(dst, dstStep, height, codebooks, streams, [=](std::int32_t r, std::int32_t i, const CdbkState &) {
    return std::int32_t{load(indices + static_cast<std::ptrdiff_t>(r) * srcStep + i)};
  });
  return orvStsNoErr;
}

template <class T>
OrvStatus formFromBits(const std::uint8_t *bits, std::int32_t srcStep, T *dst, std::int32_t dstStep,
                       std::int32_t height, const CdbkState *const *codebooks, std::int32_t streams) {
  if (codebooks == nullptr || bits == nullptr || dst == nullptr) return orvStsNullPtrErr;
  if (streams < 1 || srcStep < 1 || dstStep < 1 || height < 1) return orvStsSizeErr;
  Sums sums;
  if (const OrvStatus status = addUp(codebooks, streams, &sums); status != orvStsNoErr) return status;
  if (sums.widths > dstStep || sums.bits > srcStep) return orvStsSizeErr;
  std::int64_t position = 0;
  form(dst, dstStep, height, codebooks, streams,
       [&position, bits, srcStep](std::int32_t r, std::int32_t i, const CdbkState &cdbk) {
         if (i == 0) position = std::int64_t{srcStep} * r;
         position += cdbk.sizeBits;
         return getBits(bits, position - cdbk.sizeBits, cdbk.sizeBits);
       });
  return orvStsNoErr;
}

}  // namespace

OrvStatus orvsFormVector_16s16s(const int16_t *pInds, const int16_t *const *ppTables, const int32_t *pSizes,
                                const int32_t *pWidths, const int32_t *pSteps, int32_t nStreams,
                                int16_t *pDst) {
  return formVector(pInds, ppTables, pSizes, pWidths, pSteps, nStreams, pDst);
}

OrvStatus orvsFormVector_8u16s(const uint8_t *pInds, const int16_t *const *ppTables, const int32_t *pSizes,
                               const int32_t *pWidths, const int32_t *pSteps, int32_t nStreams,
                               int16_t *pDst) {
  return formVector(pInds, ppTables, pSizes, pWidths, pSteps, nStreams, pDst);
}

OrvStatus orvsFormVector_16s32f(const int16_t *pInds, const float *const *ppTables, const int32_t *pSizes,
                                const int32_t *pWidths, const int32_t *pSteps, int32_t nStreams,
                                float *pDst) {
  return formVector(pInds, ppTables, pSizes, pWidths, pSteps, nStreams, pDst);
}

OrvStatus orvsFormVector_8u32f(const uint8_t *pInds, const float *const *ppTables, const int32_t *pSizes,
                               const int32_t *pWidths, const int32_t *pSteps, int32_t nStreams, float *pDst) {
  return formVector(pInds, ppTables, pSizes, pWidths, pSteps, nStreams, pDst);
}

OrvStatus orvsFormVector_2i_16s16s(const int16_t *pInds, const int16_t *const *ppTables,
                                   const int32_t *pSizes, int16_t *pDst, int32_t len) {
  return formVectorOf<2>(pInds, ppTables, pSizes, pDst, len);
}

OrvStatus orvsFormVector_2i_8u16s(const uint8_t *pInds, const int16_t *const *ppTables, const int32_t *pSizes,
                                  int16_t *pDst, int32_t len) {
  return formVectorOf<2>(pInds, ppTables, pSizes, pDst, len);
}

OrvStatus orvsFormVector_2i_16s32f(const int16_t *pInds, const float *const *ppTables, const int32_t *pSizes,
                                   float *pDst, int32_t len) {
  return formVectorOf<2>(pInds, ppTables, pSizes, pDst, len);
}

OrvStatus orvsFormVector_2i_8u32f(const uint8_t *pInds, const float *const *ppTables, const int32_t *pSizes,
                                  float *pDst, int32_t len) {
  return formVectorOf<2>(pInds, ppTables, pSizes, pDst, len);
}

OrvStatus orvsFormVector_4i_16s16s(const int16_t *pInds, const int16_t *const *ppTables,
                                   const int32_t *pSizes, int16_t *pDst, int32_t len) {
  return formVectorOf<4>(pInds, ppTables, pSizes, pDst, len);
}

OrvStatus orvsFormVector_4i_8u16s(const uint8_t *pInds, const int16_t *const *ppTables, const int32_t *pSizes,
                                  int16_t *pDst, int32_t len) {
  return formVectorOf<4>(pInds, ppTables, pSizes, pDst, len);
}

OrvStatus orvsFormVector_4i_16s32f(const int16_t *pInds, const float *const *ppTables, const int32_t *pSizes,
                                   float *pDst, int32_t len) {
  return formVectorOf<4>(pInds, ppTables, pSizes, pDst, len);
}

OrvStatus orvsFormVector_4i_8u32f(const uint8_t *pInds, const float *const *ppTables, const int32_t *pSizes,
                                  float *pDst, int32_t len) {
  return formVectorOf<4>(pInds, ppTables, pSizes, pDst, len);
}

OrvStatus orvsFormVectorVQ_16s16s(const int16_t *pInds, int32_t srcStep, int16_t *pDst, int32_t dstStep,
                                  int32_t height, const CdbkState *const *ppCdbks, int32_t nStreams) {
  return formFromIndices(pInds, srcStep, pDst, dstStep, height, ppCdbks, nStreams);
}

OrvStatus orvsFormVectorVQ_8u16s(const uint8_t *pInds, int32_t srcStep, int16_t *pDst, int32_t dstStep,
                                 int32_t height, const CdbkState *const *ppCdbks, int32_t nStreams) {
  return formFromIndices(pInds, srcStep, pDst, dstStep, height, ppCdbks, nStreams);
}

OrvStatus orvsFormVectorVQ_16s32f(const int16_t *pInds, int32_t srcStep, float *pDst, int32_t dstStep,
                                  int32_t height, const CdbkState *const *ppCdbks, int32_t nStreams) {
  return formFromIndices(pInds, srcStep, pDst, dstStep, height, ppCdbks, nStreams);
}

OrvStatus orvsFormVectorVQ_8u32f(const uint8_t *pInds, int32_t srcStep, float *pDst, int32_t dstStep,
                                 int32_t height, const CdbkState *const *ppCdbks, int32_t nStreams) {
  return formFromIndices(pInds, srcStep, pDst, dstStep, height, ppCdbks, nStreams);
}

OrvStatus orvsFormVectorVQ_1u16s(const uint8_t *pBits, int32_t srcStep, int16_t *pDst, int32_t dstStep,
                                 int32_t height, const CdbkState *const *ppCdbks, int32_t nStreams) {
  return formFromBits(pBits, srcStep, pDst, dstStep, height, ppCdbks, nStreams);
}

OrvStatus orvsFormVectorVQ_1u32f(const uint8_t *pBits, int32_t srcStep, float *pDst, int32_t dstStep,
                                 int32_t height, const CdbkState *const *ppCdbks, int32_t nStreams) {
  return formFromBits(pBits, srcStep, pDst, dstStep, height, ppCdbks, nStreams);
}
