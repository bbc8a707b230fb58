// orvsVQSingle_Thresh_*, orvsVQDistSingle_Thresh_*: the code vectors that are nearly as near as the one that
// the search finds.

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "core/integer.h"
#include "orvsr/vq.h"
#include "primitives/convert.h"
#include "vq/search.h"

using namespace orv;
using namespace orv::cdbk;

namespace {

// What the search finds for one vector. Where it finds nothing the distance is the largest there is.
template <class T>
OrvStatus findReference(const CdbkState &cdbk, const T *src, Nearest *reference) {
  return searchEach(cdbk, src, cdbk.width, 1, [=](std::int32_t, Nearest nearest) { *reference = nearest; });
}

// Draws rows, nearest first, while their squared distance is not above the bound. sink(count, drawn) says
// whether it took the row; returns how many it took.
template <class T, class Sink>
std::int32_t listNearest(const CdbkState &cdbk, const T *src, float bound, Sink sink) {
  distancesToAll(CodeRows<T>(cdbk), src, cdbk.pScratch);
  std::int32_t count = 0;
  if (Own_Correct_Greater_32f(0, bound)) return count;
  for (std::int32_t draws = 0; draws < cdbk.size; ++draws) {
    const Nearest drawn = drawNearest(cdbk.pScratch, cdbk.size);
    if (Own_Correct_Greater_32f(drawn.distance, bound)) break;
    if (sink(count, drawn)) ++count;
  }
  return count;
}

// The bound of the forms whose reference is a distance reported, a root.
float boundOf(float distance, float threshold) { return distance * distance * (threshold * threshold); }

}  // namespace

OrvStatus orvsVQSingle_Thresh_32f(const float *pSrc, int32_t *pIndx, CdbkState *pCdbk, int32_t *pCount,
                                  float threshold) {
  if (pSrc == nullptr || pIndx == nullptr || pCdbk == nullptr || pCount == nullptr) return orvStsNullPtrErr;
  if (threshold < 1.0F) return orvStsBadArgErr;
  const CdbkState &cdbk = *codebookIn(pCdbk);
  Nearest reference;
  if (findReference(cdbk, pSrc, &reference) != orvStsNoErr) return orvStsErr;
  store(pCount, listNearest(cdbk, pSrc, boundOf(std::sqrt(reference.distance), threshold),
                            [=](std::int32_t i, Nearest drawn) {
                              store(pIndx + i, drawn.index);
                              return true;
                            }));
  return orvStsNoErr;
}

OrvStatus orvsVQSingle_Thresh_16s(const int16_t *pSrc, int32_t *pIndx, CdbkState *pCdbk, int32_t *pCount,
                                  float threshold) {
  if (pSrc == nullptr || pIndx == nullptr || pCdbk == nullptr || pCount == nullptr) return orvStsNullPtrErr;
  if (threshold < 1.0F) return orvStsBadArgErr;
  const CdbkState &cdbk = *codebookIn(pCdbk);
  Nearest reference;
  if (findReference(cdbk, pSrc, &reference) != orvStsNoErr) return orvStsErr;
  // Here the squared distance itself is the reference, not the square of its root.
  store(pCount, listNearest(cdbk, pSrc, reference.distance * (threshold * threshold),
                            [=](std::int32_t i, Nearest drawn) {
                              store(pIndx + i, drawn.index);
                              return true;
                            }));
  return orvStsNoErr;
}

OrvStatus orvsVQDistSingle_Thresh_32f(const float *pSrc, int32_t *pIndx, float *pDist, CdbkState *pCdbk,
                                      int32_t *pCount, float threshold) {
  if (pSrc == nullptr || pIndx == nullptr || pDist == nullptr || pCdbk == nullptr || pCount == nullptr)
    return orvStsNullPtrErr;
  if (threshold < 1.0F) return orvStsBadArgErr;
  const CdbkState &cdbk = *codebookIn(pCdbk);
  Nearest reference;
  if (findReference(cdbk, pSrc, &reference) != orvStsNoErr) return orvStsErr;
  store(pCount, listNearest(cdbk, pSrc, boundOf(std::sqrt(reference.distance), threshold),
                            [=](std::int32_t i, Nearest drawn) {
                              store(pIndx + i, drawn.index);
                              store(pDist + i, std::sqrt(drawn.distance));
                              return true;
                            }));
  return orvStsNoErr;
}

OrvStatus orvsVQDistSingle_Thresh_16s32s_Sfs(const int16_t *pSrc, int32_t *pIndx, int32_t *pDist,
                                             CdbkState *pCdbk, int32_t *pCount, int32_t scaleFactor,
                                             float threshold) {
  if (pSrc == nullptr || pIndx == nullptr || pDist == nullptr || pCdbk == nullptr || pCount == nullptr)
    return orvStsNullPtrErr;
  if (threshold < 1.0F) return orvStsBadArgErr;
  const CdbkState &cdbk = *codebookIn(pCdbk);
  const auto scaled = [scaleFactor](float squared) {
    const float distance = std::sqrt(squared);
    std::int32_t rounded = 0;
    orvsConvert_32f32s_Sfs(&distance, &rounded, 1, kRoundNearestEven, scaleFactor);
    return rounded;
  };
  Nearest reference;
  if (findReference(cdbk, pSrc, &reference) != orvStsNoErr) return orvStsErr;
  // The scaled reference is scaled back before it becomes the limit of the scaled distances. Callers know the
  // lists that come of it: with a factor above 0 they are long, with one below 0 short or empty.
  const std::int32_t scaledReference = scaled(reference.distance);
  float distance = 0;
  orvsConvert_32s32f_Sfs(&scaledReference, &distance, 1, 0 - std::max(scaleFactor, -INT32_MAX));
  const auto limit = saturateTruncated<std::int32_t>(static_cast<double>(distance * threshold));
  store(pCount, listNearest(cdbk, pSrc, boundOf(distance, threshold), [=](std::int32_t i, Nearest drawn) {
          const std::int32_t candidate = scaled(drawn.distance);
          if (candidate > limit) return false;
          store(pIndx + i, drawn.index);
          store(pDist + i, candidate);
          return true;
        }));
  return orvStsNoErr;
}
