// orvsVQSingle_Sort_*, orvsVQDistSingle_Sort_*: the nearest code vectors of one vector, in their order.

#include <bit>
#include <cmath>
#include <cstdint>

#include "orvsr/vq.h"
#include "vq/search.h"

using namespace orv;
using namespace orv::cdbk;

namespace {

// All rows are scored, whatever the method of the codebook. sink(i, drawn) takes the i-th nearest.
template <class T, class Sink>
OrvStatus sortNearest(const T *src, const CdbkState &cdbk, std::int32_t count, Sink sink) {
  if (count < 1 || count > cdbk.size) return orvStsSizeErr;
  distancesToAll(CodeRows<T>(cdbk), src, cdbk.pScratch);
  for (std::int32_t i = 0; i < count; ++i) sink(i, drawNearest(cdbk.pScratch, cdbk.size));
  return orvStsNoErr;
}

template <class T>
OrvStatus sortIndices(const T *src, std::int32_t *index, CdbkState *codebook, std::int32_t count) {
  if (src == nullptr || index == nullptr || codebook == nullptr) return orvStsNullPtrErr;
  return sortNearest(src, *codebookIn(codebook), count,
                     [=](std::int32_t i, Nearest drawn) { store(index + i, drawn.index); });
}

// Distances are stored in single precision, whatever type the elements of `distance` have.
template <class T, class D>
OrvStatus sortWithDistances(const T *src, std::int32_t *index, D *distance, CdbkState *codebook,
                            std::int32_t count) {
  if (src == nullptr || index == nullptr || distance == nullptr || codebook == nullptr)
    return orvStsNullPtrErr;
  return sortNearest(src, *codebookIn(codebook), count, [=](std::int32_t i, Nearest drawn) {
    store(index + i, drawn.index);
    store(distance + i, std::bit_cast<D>(std::sqrt(drawn.distance)));
  });
}

}  // namespace

OrvStatus orvsVQSingle_Sort_32f(const float *pSrc, int32_t *pIndx, CdbkState *pCdbk, int32_t count) {
  return sortIndices(pSrc, pIndx, pCdbk, count);
}

OrvStatus orvsVQSingle_Sort_16s(const int16_t *pSrc, int32_t *pIndx, CdbkState *pCdbk, int32_t count) {
  return sortIndices(pSrc, pIndx, pCdbk, count);
}

OrvStatus orvsVQDistSingle_Sort_32f(const float *pSrc, int32_t *pIndx, float *pDist, CdbkState *pCdbk,
                                    int32_t count) {
  return sortWithDistances(pSrc, pIndx, pDist, pCdbk, count);
}

OrvStatus orvsVQDistSingle_Sort_16s32s_Sfs(const int16_t *pSrc, int32_t *pIndx, int32_t *pDist,
                                           CdbkState *pCdbk, int32_t count, int32_t scaleFactor) {
  const OrvStatus status = sortWithDistances(pSrc, pIndx, pDist, pCdbk, count);
  if (status != orvStsNoErr) return status;
  convertInPlace(pDist, count, scaleFactor);
  return orvStsNoErr;
}
