// orvsReflectionToAR_*, orvsReflectionToTrueAR_*, orvsReflectionToLAR_*, orvsReflectionToTilt_*,
// orvsReflectionToAbsTilt_*: what reflection coefficients say of the vocal tract.

#include <cmath>
#include <cstdint>
#include <cstdlib>

#include "core/integer.h"
#include "core/scale.h"
#include "frontend/lpfixed.h"
#include "orvsr/frontend.h"
#include "primitives/memory.h"
#include "primitives/special.h"

using namespace orv;

namespace {

OrvStatus check(const void *src, const void *dst, std::int32_t len) {
  if (src == nullptr || dst == nullptr) return orvStsNullPtrErr;
  return len < 1 ? orvStsSizeErr : orvStsNoErr;
}

OrvStatus checkTwo(const void *src1, const void *src2, const void *dst, std::int32_t len) {
  return src1 == nullptr ? orvStsNullPtrErr : check(src2, dst, len);
}

OrvStatus checkThreshold(float threshold) {
  return threshold <= 0 || threshold >= 1 ? orvStsRangeErr : orvStsNoErr;
}

float logOf(float ratio) { return static_cast<float>(std::log(static_cast<double>(ratio))); }

// Areas of a tube: products of ratios, whose value is lost from the first coefficient of -one on, where only
// the sign of the infinity is carried, and whose sign is lost too from the next coefficient of one on.
template <class Areas>
OrvStatus trueAreas(std::int32_t len, const Areas &areas) {
  const float one = areas.one;
  float acc = 1;
  std::int32_t i = 0;
  for (; i < len && areas.value(i) != -one; ++i) {
    acc = areas.next(acc, areas.value(i));
    areas.put(i, acc);
  }
  OrvStatus status = orvStsNoErr;
  for (; i < len; ++i) {
    const float k = areas.value(i);
    if (k == one) break;
    if (k == -one) status = orvStsDivByZeroWrn;
    // An area of exactly 0 counts as negative.
    const bool positive = k < -one || k > one ? acc < 0 : acc > 0;
    acc = positive ? 1.0F : -1.0F;
    areas.putInfinite(i, positive);
  }
  for (; i < len; ++i) areas.putUndefined(i);
  return status;
}

struct SingleAreas {
  const float *src;
  float *dst;
  float one = 1;

  float value(std::int32_t i) const { return load(src + i); }
  float next(float acc, float k) const { return (acc * (1 - k)) / (k + 1); }
  void put(std::int32_t i, float acc) const { store(dst + i, acc); }
  void putInfinite(std::int32_t i, bool positive) const {
    store(dst + i, positive ? orvConstantOfINF_32f : orvConstantOfINF_NEG_32f);
  }
  void putUndefined(std::int32_t i) const { store(dst + i, orvConstantOfNAN_32f); }
};

struct FixedAreas {
  const std::int16_t *src;
  std::int16_t *dst;
  float one, scale;

  float value(std::int32_t i) const { return static_cast<float>(load(src + i)); }
  // The quotient first, then the product; the single form multiplies before it divides.
  float next(float acc, float x) const { return acc * ((one - x) / (x + one)); }
  void put(std::int32_t i, float acc) const { store(dst + i, saturateTruncated<std::int16_t>(scale * acc)); }
  void putInfinite(std::int32_t i, bool positive) const {
    store(dst + i, static_cast<std::int16_t>(positive ? INT16_MAX : INT16_MIN));
  }
  void putUndefined(std::int32_t i) const { store(dst + i, std::int16_t{0}); }
};

// rule(a, b) of every pair, or atZero with a warning where rule.undefined(a, b).
template <class Rule, class T, class Out>
OrvStatus tilts(const T *src1, const T *src2, Out *dst, std::int32_t len, Out atZero, const Rule &rule) {
  OrvStatus status = orvStsNoErr;
  for (std::int32_t i = 0; i < len; ++i) {
    const T a = load(src1 + i), b = load(src2 + i);
    const bool undefined = rule.undefined(a, b);
    if (undefined) status = orvStsDivByZeroWrn;
    store(dst + i, undefined ? atZero : rule(a, b));
  }
  return status;
}

// The divisor of the tilt has no absolute values, unlike that of the absolute tilt.
struct Tilt {
  bool undefined(float a, float b) const { return a == 0 - b; }
  float operator()(float a, float b) const { return (std::fabs(a) - std::fabs(b)) / (a + b); }
};
struct AbsTilt {
  bool undefined(float a, float b) const { return a == 0 && b == 0; }
  float operator()(float a, float b) const {
    return (std::fabs(a) - std::fabs(b)) / (std::fabs(a) + std::fabs(b));
  }
};

struct FixedTilt {
  float scale;
  bool undefined(std::int32_t a, std::int32_t b) const { return a == -b; }
  std::int16_t operator()(std::int32_t a, std::int32_t b) const { return quotient(a, b, a + b); }
  std::int16_t quotient(std::int32_t a, std::int32_t b, std::int32_t divisor) const {
    const auto difference = static_cast<float>(std::abs(a) - std::abs(b));
    return saturateTruncated<std::int16_t>(difference * scale / static_cast<float>(divisor));
  }
};
struct FixedAbsTilt : FixedTilt {
  bool undefined(std::int32_t a, std::int32_t b) const { return a == 0 && b == 0; }
  std::int16_t operator()(std::int32_t a, std::int32_t b) const {
    return quotient(a, b, std::abs(a) + std::abs(b));
  }
};

}  // namespace

OrvStatus orvsReflectionToAR_32f(const float *pSrc, float *pDst, int32_t len) {
  if (const OrvStatus status = check(pSrc, pDst, len); status != orvStsNoErr) return status;
  OrvStatus status = orvStsNoErr;
  for (std::int32_t i = 0; i < len; ++i) {
    const float k = load(pSrc + i);
    if (k == -1) status = orvStsDivByZeroWrn;
    store(pDst + i, k == -1 ? orvConstantOfINF_32f : (1 - k) / (k + 1));
  }
  return status;
}

OrvStatus orvsReflectionToAR_16s_Sfs(const int16_t *pSrc, int32_t srcShift, int16_t *pDst, int32_t len,
                                     int32_t scaleFactor) {
  if (const OrvStatus status = check(pSrc, pDst, len); status != orvStsNoErr) return status;
  OrvStatus status = orvStsNoErr;
  const float one = scaleUp(srcShift), scale = GetScale_32s32f(scaleFactor);
  for (std::int32_t i = 0; i < len; ++i) {
    const auto x = static_cast<float>(load(pSrc + i));
    if (x == -one) status = orvStsDivByZeroWrn;
    store(pDst + i, x == -one ? std::int16_t{INT16_MAX}
                              : saturateTruncated<std::int16_t>((one - x) * scale / (x + one)));
  }
  return status;
}

OrvStatus orvsReflectionToTrueAR_32f(const float *pSrc, float *pDst, int32_t len) {
  if (const OrvStatus status = check(pSrc, pDst, len); status != orvStsNoErr) return status;
  return trueAreas(len, SingleAreas{pSrc, pDst});
}

OrvStatus orvsReflectionToTrueAR_16s_Sfs(const int16_t *pSrc, int32_t srcShift, int16_t *pDst, int32_t len,
                                         int32_t scaleFactor) {
  if (const OrvStatus status = check(pSrc, pDst, len); status != orvStsNoErr) return status;
  return trueAreas(len, FixedAreas{pSrc, pDst, scaleUp(srcShift), GetScale_32s32f(scaleFactor)});
}

OrvStatus orvsReflectionToLAR_32f(const float *pSrc, float *pDst, int32_t len, float threshold) {
  if (const OrvStatus status = check(pSrc, pDst, len); status != orvStsNoErr) return status;
  if (const OrvStatus status = checkThreshold(threshold); status != orvStsNoErr) return status;
  const float upper = logOf((1 + threshold) / (1 - threshold));
  const float lower = logOf((1 - threshold) / (1 + threshold));
  for (std::int32_t i = 0; i < len; ++i) {
    const float k = load(pSrc + i);
    store(pDst + i, k <= -threshold ? upper : k >= threshold ? lower : logOf((1 - k) / (1 + k)));
  }
  return orvStsNoErr;
}

OrvStatus orvsReflectionToLAR_16s_Sfs(const int16_t *pSrc, int32_t srcShift, int16_t *pDst, int32_t len,
                                      int32_t scaleFactor, float threshold) {
  if (const OrvStatus status = check(pSrc, pDst, len); status != orvStsNoErr) return status;
  if (const OrvStatus status = checkThreshold(threshold); status != orvStsNoErr) return status;
  const float unit = GetScale_32s32f(srcShift), scale = GetScale_32s32f(scaleFactor);
  const float top = logOf((1 + threshold) / (1 - threshold)) * scale;
  const float bottom = logOf((1 - threshold) / (1 + threshold)) * scale;
  // Each end is limited on its own side only.
  const std::int16_t upper = top > 32767 ? INT16_MAX : wrap16(truncate32(top));
  const std::int16_t lower = bottom < -32768 ? INT16_MIN : wrap16(truncate32(bottom));
  for (std::int32_t i = 0; i < len; ++i) {
    const float k = static_cast<float>(load(pSrc + i)) * unit;
    store(pDst + i, k <= -threshold  ? upper
                    : k >= threshold ? lower
                                     : saturateTruncated<std::int16_t>(logOf((1 - k) / (1 + k)) * scale));
  }
  return orvStsNoErr;
}

OrvStatus orvsReflectionToTilt_32f(const float *pSrc1, const float *pSrc2, float *pDst, int32_t len) {
  if (const OrvStatus status = checkTwo(pSrc1, pSrc2, pDst, len); status != orvStsNoErr) return status;
  return tilts(pSrc1, pSrc2, pDst, len, orvConstantOfNAN_32f, Tilt{});
}

OrvStatus orvsReflectionToAbsTilt_32f(const float *pSrc1, const float *pSrc2, float *pDst, int32_t len) {
  if (const OrvStatus status = checkTwo(pSrc1, pSrc2, pDst, len); status != orvStsNoErr) return status;
  return tilts(pSrc1, pSrc2, pDst, len, orvConstantOfNAN_32f, AbsTilt{});
}

OrvStatus orvsReflectionToTilt_16s_Sfs(const int16_t *pSrc1, const int16_t *pSrc2, int16_t *pDst, int32_t len,
                                       int32_t scaleFactor) {
  if (const OrvStatus status = checkTwo(pSrc1, pSrc2, pDst, len); status != orvStsNoErr) return status;
  return tilts(pSrc1, pSrc2, pDst, len, std::int16_t{0}, FixedTilt{GetScale_32s32f(scaleFactor)});
}

OrvStatus orvsReflectionToAbsTilt_16s_Sfs(const int16_t *pSrc1, const int16_t *pSrc2, int16_t *pDst,
                                          int32_t len, int32_t scaleFactor) {
  if (const OrvStatus status = checkTwo(pSrc1, pSrc2, pDst, len); status != orvStsNoErr) return status;
  return tilts(pSrc1, pSrc2, pDst, len, std::int16_t{0}, FixedAbsTilt{{GetScale_32s32f(scaleFactor)}});
}
