// orvsCopyWithPadding_*.

#include "orvsr/frontend.h"
#include "primitives/memory.h"

namespace orv {
namespace {

// Element by element from the first, also where the arrays overlap.
template <class T>
OrvStatus copyWithPadding(const T *pSrc, std::int32_t srcLen, T *pDst, std::int32_t dstLen) {
  if (pSrc == nullptr || pDst == nullptr) return orvStsNullPtrErr;
  if (srcLen < 1 || dstLen <= 0 || dstLen < srcLen) return orvStsSizeErr;
  for (std::int32_t i = 0; i < srcLen; ++i) store(pDst + i, load(pSrc + i));
  for (std::int32_t i = srcLen; i < dstLen; ++i) store(pDst + i, T{});
  return orvStsNoErr;
}

}  // namespace
}  // namespace orv

using namespace orv;

OrvStatus orvsCopyWithPadding_32f(const float *pSrc, int32_t srcLen, float *pDst, int32_t dstLen) {
  return copyWithPadding(pSrc, srcLen, pDst, dstLen);
}
OrvStatus orvsCopyWithPadding_16s(const int16_t *pSrc, int32_t srcLen, int16_t *pDst, int32_t dstLen) {
  return copyWithPadding(pSrc, srcLen, pDst, dstLen);
}
