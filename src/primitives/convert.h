// Conversions between element types.
//
// Every routine tests its pointers, then the length (below 1: orvStsSizeErr), and writes nothing on either
// failure. Arrays may lie at any address.

#ifndef ORV_PRIMITIVES_CONVERT_H
#define ORV_PRIMITIVES_CONVERT_H

#include <cstdint>

#include "orvsr/types.h"

namespace orv {

// Plain conversions.
OrvStatus orvsConvert_16s32f(const std::int16_t *src, float *dst, std::int32_t len);
OrvStatus orvsConvert_8u32f(const std::uint8_t *src, float *dst, std::int32_t len);
// Beyond the range of single precision the largest finite value is written, for infinities too; a NaN passes.
OrvStatus orvsConvert_64f32f(const double *src, float *dst, std::int32_t len);

// src * 2^-scaleFactor, with the factor clamped so that the power is a normal number: to -112..126 (16s32f),
// -96..126 (32s32f), -1008..1022 (16s64f). Source and destination of the 32s form may overlap.
OrvStatus orvsConvert_16s32f_Sfs(const std::int16_t *src, float *dst, std::int32_t len,
                                 std::int32_t scaleFactor);
OrvStatus orvsConvert_32s32f_Sfs(const std::int32_t *src, float *dst, std::int32_t len,
                                 std::int32_t scaleFactor);
OrvStatus orvsConvert_16s64f_Sfs(const std::int16_t *src, double *dst, std::int32_t len,
                                 std::int32_t scaleFactor);

// src * 2^-scaleFactor, to the nearest integer (ties to even), saturated.
OrvStatus orvsConvert_32s16s_Sfs(const std::int32_t *src, std::int16_t *dst, std::int32_t len,
                                 std::int32_t scaleFactor);

// Rounding modes of the conversions to integers; any other value rounds half away from zero.
constexpr std::int32_t kRoundTowardZero = 0;
constexpr std::int32_t kRoundNearestEven = 1;

// src * 2^-scaleFactor, rounded and saturated. A NaN gives 0.
OrvStatus orvsConvert_32f16s_Sfs(const float *src, std::int16_t *dst, std::int32_t len,
                                 std::int32_t roundingMode, std::int32_t scaleFactor);
OrvStatus orvsConvert_32f32s_Sfs(const float *src, std::int32_t *dst, std::int32_t len,
                                 std::int32_t roundingMode, std::int32_t scaleFactor);
OrvStatus orvsConvert_64f32s_Sfs(const double *src, std::int32_t *dst, std::int32_t len,
                                 std::int32_t roundingMode, std::int32_t scaleFactor);

}  // namespace orv

#endif
