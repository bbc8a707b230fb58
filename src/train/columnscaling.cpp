// orvsNewVar_*, orvsNormalizeColumn_*: from sums to variances, and features brought to a common mean and
// scale.

#include <algorithm>
#include <cstdint>

#include "core/integer.h"
#include "core/scale.h"
#include "orvsr/train.h"
#include "primitives/memory.h"
#include "primitives/rows.h"
#include "primitives/simd.h"

namespace orv {
namespace {

// A square in single, all else in double, one rounding at the end: neither an all-single nor an all-double
// formula gives the same bits.
OrvStatus newVar(const float *a, const float *b, float *dst, std::int32_t len, float c1, float c2) {
  if (const OrvStatus status = checkArrays(len, a, b, dst); status != orvStsNoErr) return status;
  for (std::int32_t i = 0; i < len; ++i) {
    const float x = load(a + i);
    const double square = x * x;
    store(dst + i, static_cast<float>((load(b + i) - square * c1) * c2));
  }
  return orvStsNoErr;
}

// All in single, unlike the above.
OrvStatus newVarScaled(const std::int32_t *a, const std::int32_t *b, std::int32_t *dst, std::int32_t len,
                       std::int32_t scaleFactor, float c1, float c2) {
  if (const OrvStatus status = checkArrays(len, a, b, dst); status != orvStsNoErr) return status;
  const float scale = GetScale_32s32f(scaleFactor);
  for (std::int32_t i = 0; i < len; ++i) {
    const auto x = static_cast<float>(load(a + i));
    const auto y = static_cast<float>(load(b + i));
    store(dst + i, saturateTruncated<std::int32_t>((y - x * x * c1) * c2 * scale));
  }
  return orvStsNoErr;
}

template <class Rows>
void normalizeSingle(const Rows &rows, std::int32_t height, const float *mean, const float *scale,
                     std::int32_t width) {
  for (std::int32_t r = 0; r < height; ++r) {
    float *const row = rows.row(r);
    for (std::int32_t c = 0; c < width; ++c)
      store(row + c, (load(row + c) - load(mean + c)) * load(scale + c));
  }
}

// The product fits 32 bits and is shifted there: what a shift to the left moves out is lost before the result
// is saturated, and counts are taken modulo 32.
void normalizeEight(std::int16_t *x, const std::int16_t *mean, const std::int16_t *scale, int left,
                    int right) {
  using namespace simd;
  const i32x8 product = (loadWidened8(x) - loadWidened8(mean)) * loadWidened8(scale);
  storeSaturated8(x, product << left >> right);
}

template <class Rows>
void normalizeInteger(const Rows &rows, std::int32_t height, const std::int16_t *mean,
                      const std::int16_t *scale, std::int32_t width, std::int32_t scaleFactor) {
  const int right = scaleFactor > 0 ? scaleFactor % 32 : 0;
  const int left = scaleFactor < 0 ? -(scaleFactor % 32) : 0;
  // The last columns, fewer than eight, are worked on in copies.
  const std::int32_t rest = width % 8;
  const std::int32_t body = width - rest;
  std::int16_t x[8] = {}, restMean[8] = {}, restScale[8] = {};
  const auto copyRest = [rest](const std::int16_t *from, std::int16_t *to) {
    for (std::int32_t c = 0; c < rest; ++c) store(to + c, load(from + c));
  };
  copyRest(mean + body, restMean);
  copyRest(scale + body, restScale);
  for (std::int32_t r = 0; r < height; ++r) {
    std::int16_t *const row = rows.row(r);
    for (std::int32_t c = 0; c < body; c += 8) normalizeEight(row + c, mean + c, scale + c, left, right);
    if (rest == 0) continue;
    copyRest(row + body, x);
    normalizeEight(x, restMean, restScale, left, right);
    copyRest(x, row + body);
  }
}

}  // namespace
}  // namespace orv

using namespace orv;

OrvStatus orvsNewVar_32f(const float *pMean, const float *pSqr, float *pDst, int32_t len, float c1,
                         float c2) {
  return newVar(pMean, pSqr, pDst, len, c1, c2);
}

OrvStatus orvsNewVar_32f_I(const float *pMean, float *pSqrDst, int32_t len, float c1, float c2) {
  return newVar(pMean, pSqrDst, pSqrDst, len, c1, c2);
}

OrvStatus orvsNewVar_32s_Sfs(const int32_t *pMean, const int32_t *pSqr, int32_t *pDst, int32_t len,
                             int32_t scaleFactor, float c1, float c2) {
  return newVarScaled(pMean, pSqr, pDst, len, scaleFactor, c1, c2);
}

OrvStatus orvsNewVar_32s_ISfs(const int32_t *pMean, int32_t *pSqrDst, int32_t len, int32_t scaleFactor,
                              float c1, float c2) {
  return newVarScaled(pMean, pSqrDst, pSqrDst, len, scaleFactor, c1, c2);
}

OrvStatus orvsNormalizeColumn_32f_D2(float *pSrcDst, int32_t step, int32_t height, const float *pMean,
                                     const float *pScale, int32_t width) {
  const OrvStatus status = checkNullSizeStride(width, step, height, pSrcDst, pMean, pScale);
  if (status != orvStsNoErr) return status;
  normalizeSingle(StridedRows{pSrcDst, step}, height, pMean, pScale, width);
  return orvStsNoErr;
}

OrvStatus orvsNormalizeColumn_32f_D2L(float *const *ppSrcDst, int32_t height, const float *pMean,
                                      const float *pScale, int32_t width) {
  const OrvStatus status = checkNullSize(width, height, ppSrcDst, pMean, pScale);
  if (status != orvStsNoErr) return status;
  normalizeSingle(RowPointers{ppSrcDst}, height, pMean, pScale, width);
  return orvStsNoErr;
}

OrvStatus orvsNormalizeColumn_16s_D2Sfs(int16_t *pSrcDst, int32_t step, int32_t height, const int16_t *pMean,
                                        const int16_t *pScale, int32_t width, int32_t scaleFactor) {
  const OrvStatus status = checkNullSizeStride(width, step, height, pSrcDst, pMean, pScale);
  if (status != orvStsNoErr) return status;
  normalizeInteger(StridedRows{pSrcDst, step}, height, pMean, pScale, width, scaleFactor);
  return orvStsNoErr;
}

OrvStatus orvsNormalizeColumn_16s_D2LSfs(int16_t *const *ppSrcDst, int32_t height, const int16_t *pMean,
                                         const int16_t *pScale, int32_t width, int32_t scaleFactor) {
  const OrvStatus status = checkNullSize(width, height, ppSrcDst, pMean, pScale);
  if (status != orvStsNoErr) return status;
  normalizeInteger(RowPointers{ppSrcDst}, height, pMean, pScale, width, scaleFactor);
  return orvStsNoErr;
}
