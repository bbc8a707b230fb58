// orvsCrossCorrCoeff*: normalised cross-correlation of 16-bit signals. orvsPitchmarkToF0Cand_*: fundamental
// frequencies from pitch marks.

#include <cfloat>
#include <cmath>
#include <cstdint>

#include "core/scale.h"
#include "orvsr/frontend.h"
#include "primitives/memory.h"
#include "primitives/reduce.h"
#include "primitives/special.h"

using namespace orv;

namespace {

float dot(const std::int16_t *a, const std::int16_t *b, std::int32_t len) {
  float sum = 0;
  orvsDotProd_16s32f(a, b, len, &sum);
  return sum;
}

// Whether two energies leave anything to divide by. Their product is formed in single, so it can vanish where
// neither factor does.
bool energiesCount(float e1, float e2) { return std::fabs(e1 * e2) > FLT_MIN; }

float coefficient(float cross, float e1, float e2) {
  return static_cast<float>(static_cast<double>(cross) /
                            (std::sqrt(static_cast<double>(e1)) * std::sqrt(static_cast<double>(e2))));
}

// The product of two samples, exact in 32 bits, as a single.
float product(const std::int16_t *a, const std::int16_t *b) {
  return static_cast<float>(std::int32_t{load(a)} * load(b));
}

// Cross sums of four neighbouring lags, window p + m starting m * step samples before that of p: each is one
// chain in its own order, and the four run side by side.
struct FourLags {
  float sums[4] = {};

  FourLags(const std::int16_t *src1, const std::int16_t *src2, std::int64_t step, std::int64_t end) {
    for (std::int64_t i = 0; i < end; i += step)
      for (std::int64_t m = 0; m < 4; ++m) sums[m] += product(src1 - m * step + i, src2 + i);
    // Each further window is a step longer than the one before.
    const std::int64_t common = (end + step - 1) / step * step;
    for (std::int64_t m = 1; m < 4; ++m)
      for (std::int64_t i = common; i < end + m * step; i += step)
        sums[m] += product(src1 - m * step + i, src2 + i);
  }
};

float crossSum(const std::int16_t *src1, const std::int16_t *src2, std::int64_t step, std::int64_t end) {
  float sum = 0;
  for (std::int64_t i = 0; i < end; i += step) sum += product(src1 + i, src2 + i);
  return sum;
}

}  // namespace

OrvStatus orvsCrossCorrCoeff_16s32f(const int16_t *pSrc1, const int16_t *pSrc2, int32_t len, float *pResult) {
  if (pSrc1 == nullptr || pSrc2 == nullptr || pResult == nullptr) return orvStsNullPtrErr;
  if (len < 1) return orvStsSizeErr;
  const float e1 = dot(pSrc1, pSrc1, len);
  const float e2 = dot(pSrc2, pSrc2, len);
  store(pResult, energiesCount(e1, e2) ? coefficient(dot(pSrc1, pSrc2, len), e1, e2) : 0.0F);
  return orvStsNoErr;
}

OrvStatus orvsCrossCorrCoeffPartial_16s32f(const int16_t *pSrc1, const int16_t *pSrc2, int32_t len,
                                           float *pResult, float energy) {
  if (pSrc1 == nullptr || pSrc2 == nullptr || pResult == nullptr) return orvStsNullPtrErr;
  if (len < 1) return orvStsSizeErr;
  if (energy == 0) return orvStsRangeErr;
  const float e2 = dot(pSrc2, pSrc2, len);
  store(pResult, energiesCount(energy, e2) ? coefficient(dot(pSrc1, pSrc2, len), energy, e2) : 0.0F);
  return orvStsNoErr;
}

OrvStatus orvsCrossCorrCoeffDecim_16s32f(const int16_t *pSrc1, const int16_t *pSrc2, int32_t srcLen,
                                         int32_t dotLen, float *pDst, int32_t step) {
  if (pSrc1 == nullptr || pSrc2 == nullptr || pDst == nullptr) return orvStsNullPtrErr;
  if (dotLen < 1 || step < 1 || srcLen < dotLen) return orvStsSizeErr;
  const std::int64_t stride = step;
  const std::int16_t *start = pSrc1 + (srcLen - dotLen);
  float e1 = 0, e2 = 0;
  std::int64_t next = 0;  // the first place behind the window of pSrc2
  for (; next < dotLen; next += stride) {
    e1 += product(start + next, start + next);
    e2 += product(pSrc2 + next, pSrc2 + next);
  }
  const auto put = [&](std::int64_t p, float cross) {
    store(pDst + p, energiesCount(e1, e2) ? coefficient(cross, e1, e2) : 0.0F);
  };
  // The energies take in one term a lag and are never formed anew: their rounding builds up, and that is
  // meant.
  const auto grow = [&](std::int64_t p) {
    const std::int16_t *entering1 = start - p * stride, *entering2 = pSrc2 + next + (p - 1) * stride;
    e1 += product(entering1, entering1);
    e2 += product(entering2, entering2);
  };

  put(0, crossSum(start, pSrc2, stride, dotLen));
  const std::int64_t lags = (srcLen - dotLen) / step;
  std::int64_t p = 1;
  for (; lags - p >= 3; p += 4) {
    const FourLags four(start - p * stride, pSrc2, stride, p * stride + dotLen);
    for (std::int64_t m = 0; m < 4; ++m) {
      grow(p + m);
      put(p + m, four.sums[m]);
    }
  }
  for (; p <= lags; ++p) {
    grow(p);
    put(p, crossSum(start - p * stride, pSrc2, stride, p * stride + dotLen));
  }
  return orvStsNoErr;
}

OrvStatus orvsCrossCorrCoeffInterpolation_16s32f(const int16_t *pSrc1, const int16_t *pSrc2, int32_t len,
                                                 float *pBeta, float *pResult) {
  if (pSrc1 == nullptr || pSrc2 == nullptr || pBeta == nullptr || pResult == nullptr) return orvStsNullPtrErr;
  if (len < 1) return orvStsSizeErr;
  double y0y0 = 0, y1y1 = 0, y1y0 = 0, xx = 0, y0x = 0, xy1 = 0;
  std::int32_t y0 = load(pSrc2);
  for (std::int32_t i = 1; i <= len; ++i) {
    const std::int32_t x = load(pSrc1 + i - 1), y1 = load(pSrc2 + i);
    y0y0 += y0 * y0;
    y1y1 += y1 * y1;
    y1y0 += y1 * y0;
    xx += x * x;
    y0x += y0 * x;
    xy1 += x * y1;
    y0 = y1;
  }
  const double den = (y1y1 - y1y0) * y0x + (y0y0 - y1y0) * xy1;
  if (den == 0) {
    store(pBeta, 0.0F);
    store(pResult, static_cast<float>(y0x));
    return orvStsDivByZeroWrn;
  }
  const double beta = (xy1 * y0y0 - y0x * y1y0) / den;
  store(pBeta, static_cast<float>(beta));
  if (!(beta >= 0) || !(beta < 1)) return orvStsNoErr;
  const double rest = 1 - beta;
  const double energy = (y0y0 * rest + 2 * beta * y1y0) * rest + beta * beta * y1y1;
  const double product = xx * energy;
  store(pResult, static_cast<float>(product == 0 ? y0x : (rest * y0x + beta * xy1) / std::sqrt(product)));
  return orvStsNoErr;
}

OrvStatus orvsPitchmarkToF0Cand_32f(const float *pSrc, float *pDst, int32_t len) {
  if (pSrc == nullptr || pDst == nullptr) return orvStsNullPtrErr;
  if (len < 1) return orvStsSizeErr;
  OrvStatus status = orvStsNoErr;
  float last = 0;
  for (std::int32_t i = 0; i < len; ++i) {
    const float mark = load(pSrc + i);
    const float period = mark - last;
    if (period == 0) status = orvStsDivByZeroWrn;
    store(pDst + i, period == 0 ? orvConstantOfINF_32f : 1 / period);
    last = mark;
  }
  return status;
}

OrvStatus orvsPitchmarkToF0Cand_16s_Sfs(const int16_t *pSrc, int16_t *pDst, int32_t len,
                                        int32_t scaleFactor) {
  if (pSrc == nullptr || pDst == nullptr) return orvStsNullPtrErr;
  if (len < 1) return orvStsSizeErr;
  OrvStatus status = orvStsNoErr;
  const float scale = GetScale_32s32f(scaleFactor);
  std::int32_t last = 0;
  for (std::int32_t i = 0; i < len; ++i) {
    const std::int32_t mark = load(pSrc + i);
    const std::int32_t period = mark - last;
    std::int16_t frequency = 0;  // where the 32f form has an infinity
    if (period == 0) {
      status = orvStsDivByZeroWrn;
    } else {
      const float value = scale / static_cast<float>(period);
      frequency = value >= 32767.0F    ? std::int16_t{INT16_MAX}
                  : value <= -32768.0F ? std::int16_t{INT16_MIN}
                                       : static_cast<std::int16_t>(value);
    }
    store(pDst + i, frequency);
    last = mark;
  }
  return status;
}
