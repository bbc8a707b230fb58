// orvsScaleLM_*: language model scores, floored, scaled and offset.

#include <algorithm>

#include "core/integer.h"
#include "orvsr/gauss.h"
#include "primitives/memory.h"
#include "primitives/rows.h"
#include "primitives/simd.h"

using namespace orv;

OrvStatus orvsScaleLM_32f(const float *pSrc, float *pDst, int32_t len, float floor, float scale,
                          float offset) {
  const OrvStatus status = checkNullLength(len, pSrc, pDst);
  if (status != orvStsNoErr) return status;
  std::ptrdiff_t i = 0;
  for (; len - i >= 4; i += 4)
    simd::store4(pDst + i,
                 simd::max(simd::load4(pSrc + i), simd::splat4(floor)) * scale + simd::splat4(offset));
  for (; i < len; ++i) {
    const float value = load(pSrc + i);
    store(pDst + i, (value > floor ? value : floor) * scale + offset);
  }
  return orvStsNoErr;
}

// In 32 bits, which wrap: this form does not saturate.
OrvStatus orvsScaleLM_16s32s(const int16_t *pSrc, int32_t *pDst, int32_t len, int16_t floor, int16_t scale,
                             int32_t offset) {
  const OrvStatus status = checkNullLength(len, pSrc, pDst);
  if (status != orvStsNoErr) return status;
  for (std::ptrdiff_t i = 0; i < len; ++i)
    store(pDst + i, addWrap32(std::max(load(pSrc + i), floor) * scale, offset));
  return orvStsNoErr;
}
