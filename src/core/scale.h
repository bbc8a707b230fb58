// Powers of two for the scale factors of the integer forms.

#ifndef ORV_CORE_SCALE_H
#define ORV_CORE_SCALE_H

#include <cstdint>

namespace orv {

// 2^-scaleFactor in single precision: plus infinity at -128 and below, zero at 150 and above, exact between,
// subnormal where need be.
float GetScale_32s32f(std::int32_t scaleFactor);

// 2^-scaleFactor in double precision: plus infinity at -1024 and below, zero at 1075 and above, exact
// between.
double GetScale_32s64f(std::int32_t scaleFactor);

// scaleFactor + 1, for the forms in which the factor 1/2 of the exponent is one more bit of shift. It stays
// within 32 bits at the top of the range, where every user has reached its limit anyway.
inline std::int64_t plusOne(std::int32_t scaleFactor) { return std::int64_t{scaleFactor} + 1; }

inline float halvedScale(std::int32_t scaleFactor) {
  return GetScale_32s32f(scaleFactor == INT32_MAX ? scaleFactor : scaleFactor + 1);
}

}  // namespace orv

#endif
