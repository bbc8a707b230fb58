// How the 16-bit conversions of predictors read and write fixed point. The two ways of writing differ on
// purpose: pairs of functions that look like mirror images use one each.

#ifndef ORV_FRONTEND_LPFIXED_H
#define ORV_FRONTEND_LPFIXED_H

#include <cstdint>

#include "core/integer.h"
#include "core/scale.h"
#include "primitives/memory.h"

namespace orv {

// 2^scaleFactor.
inline float scaleUp(std::int32_t scaleFactor) {
  return GetScale_32s32f(scaleFactor == INT32_MIN ? INT32_MAX : -scaleFactor);
}

// src[i] * unit, as singles.
inline void readFixed(const std::int16_t *src, float *dst, std::int32_t len, float unit) {
  for (std::int32_t i = 0; i < len; ++i) store(dst + i, static_cast<float>(load(src + i)) * unit);
}

// The nearest integer to src[i] * factor, halves away from zero, of which the low 16 bits are kept: no
// saturation.
inline void writeWrapped(const float *src, std::int16_t *dst, std::int32_t len, float factor) {
  for (std::int32_t i = 0; i < len; ++i) {
    const float v = src[i] * factor;
    store(dst + i, wrap16(truncate32(v >= 0 ? v + 0.5F : v - 0.5F)));
  }
}

}  // namespace orv

#endif
