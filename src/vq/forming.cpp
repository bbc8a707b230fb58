// orvsFormVector*: vectors from the indices of code vectors, out of raw tables.

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "orvsr/vq.h"
#include "primitives/memory.h"

using namespace orv;

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
