// Element-wise maps with floors and special points of their own: exp(-x^2), sin(x) / x, floored 1 / sqrt(x).

#include <cmath>
#include <cstdint>

#include "core/integer.h"
#include "core/scale.h"
#include "orvsr/matrix.h"
#include "primitives/memory.h"
#include "primitives/simd.h"

using namespace orv;

namespace {

template <class In, class Out, class Map>
OrvStatus mapElements(const In *src, Out *dst, std::int32_t len, Map map) {
  if (src == nullptr || dst == nullptr) return orvStsNullPtrErr;
  if (len < 1) return orvStsSizeErr;
  for (std::int32_t i = 0; i < len; ++i) store(dst + i, static_cast<Out>(map(load(src + i))));
  return orvStsNoErr;
}

// The square is formed in the type of the argument, the exponential in double.
double expNegSqr(float x) { return std::exp(static_cast<double>(-(x * x))); }
double expNegSqr(double x) { return std::exp(-(x * x)); }

double sinC(double x) { return x == 0 ? 1 : std::sin(x) / x; }
// Of single arguments to single results: the sine is rounded, then divided in single.
float sinCSingle(float x) { return x == 0 ? 1 : static_cast<float>(std::sin(static_cast<double>(x))) / x; }

// reciprocal root of x. The root of a single is rounded correctly either way, in single or through double.
float reciprocalRoot(float x) { return 1.0F / std::sqrt(x); }

template <class Out>
OrvStatus recSqrtScaled(const std::int32_t *src, Out *dst, std::int32_t len, std::int32_t floor,
                        std::int32_t scaleFactor) {
  if (src == nullptr || dst == nullptr) return orvStsNullPtrErr;
  if (len < 1) return orvStsSizeErr;
  if (floor < 1) return orvStsBadArgErr;
  const auto least = static_cast<float>(floor);
  const float scale = GetScale_32s32f(scaleFactor);
  bool allFloored = true;
  for (std::int32_t i = 0; i < len; ++i) {
    const auto x = static_cast<float>(load(src + i));
    const bool floored = x < least;
    allFloored = allFloored && floored;
    store(dst + i, saturateTruncated<Out>((floored ? least : reciprocalRoot(x)) * scale));
  }
  return allFloored ? orvStsDegenerateDataWrn : orvStsNoErr;
}

}  // namespace

OrvStatus orvsExpNegSqr_32f(const float *pSrc, float *pDst, int32_t len) {
  return mapElements(pSrc, pDst, len, [](float x) { return expNegSqr(x); });
}

OrvStatus orvsExpNegSqr_32f_I(float *pSrcDst, int32_t len) {
  return mapElements(pSrcDst, pSrcDst, len, [](float x) { return expNegSqr(x); });
}

OrvStatus orvsExpNegSqr_32f64f(const float *pSrc, double *pDst, int32_t len) {
  return mapElements(pSrc, pDst, len, [](float x) { return expNegSqr(x); });
}

OrvStatus orvsExpNegSqr_64f(const double *pSrc, double *pDst, int32_t len) {
  return mapElements(pSrc, pDst, len, [](double x) { return expNegSqr(x); });
}

OrvStatus orvsExpNegSqr_64f_I(double *pSrcDst, int32_t len) {
  return mapElements(pSrcDst, pSrcDst, len, [](double x) { return expNegSqr(x); });
}

OrvStatus orvsSinC_32f(const float *pSrc, float *pDst, int32_t len) {
  return mapElements(pSrc, pDst, len, sinCSingle);
}

OrvStatus orvsSinC_32f_I(float *pSrcDst, int32_t len) {
  return mapElements(pSrcDst, pSrcDst, len, sinCSingle);
}

OrvStatus orvsSinC_32f64f(const float *pSrc, double *pDst, int32_t len) {
  return mapElements(pSrc, pDst, len, [](float x) { return sinC(x); });
}

OrvStatus orvsSinC_64f(const double *pSrc, double *pDst, int32_t len) {
  return mapElements(pSrc, pDst, len, sinC);
}

OrvStatus orvsSinC_64f_I(double *pSrcDst, int32_t len) { return mapElements(pSrcDst, pSrcDst, len, sinC); }

OrvStatus orvsRecSqrt_32f(float *pSrcDst, int32_t len, float floor) {
  if (pSrcDst == nullptr) return orvStsNullPtrErr;
  if (len < 1) return orvStsSizeErr;
  if (floor <= 0) return orvStsBadArgErr;
  std::uint32_t kept = 0;
  // A floored element becomes the floor itself, not its reciprocal root, and that is meant.
  std::int32_t i = 0;
  const simd::f32x4 floors = simd::splat4(floor);
  for (; len - i >= 4; i += 4) {
    const simd::f32x4 x = simd::load4(pSrcDst + i), floored = x < floors;
    kept |= std::uint32_t{simd::signs(floored) != 15};
    simd::store4(pSrcDst + i, simd::select(floored, floors, simd::splat4(1.0F) / simd::sqrt(x)));
  }
  for (; i < len; ++i) {
    const float x = load(pSrcDst + i);
    const float root = reciprocalRoot(x);
    const bool floored = x < floor;
    kept |= std::uint32_t{!floored};
    store(pSrcDst + i, floored ? floor : root);
  }
  return kept != 0 ? orvStsNoErr : orvStsDegenerateDataWrn;
}

OrvStatus orvsRecSqrt_32s_Sfs(int32_t *pSrcDst, int32_t len, int32_t floor, int32_t scaleFactor) {
  return recSqrtScaled(pSrcDst, pSrcDst, len, floor, scaleFactor);
}

OrvStatus orvsRecSqrt_32s16s_Sfs(const int32_t *pSrc, int16_t *pDst, int32_t len, int32_t floor,
                                 int32_t scaleFactor) {
  return recSqrtScaled(pSrc, pDst, len, floor, scaleFactor);
}
