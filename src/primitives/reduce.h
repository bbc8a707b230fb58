// Sums, dot products and extremes of arrays.
//
// Every routine tests its pointers, then the length (below 1: orvStsSizeErr), and writes nothing on either
// failure. Arrays may lie at any address.

#ifndef ORV_PRIMITIVES_REDUCE_H
#define ORV_PRIMITIVES_REDUCE_H

#include <cstdint>

#include "orvsr/types.h"

namespace orv {

// The sum in double, in four running lanes, rounded once.
OrvStatus orvsSum_32f(const float *src, std::int32_t len, float *sum);
// Exact sums scaled by 2^-scaleFactor, ties to even, saturated.
OrvStatus orvsSum_16s32s_Sfs(const std::int16_t *src, std::int32_t len, std::int32_t *sum,
                             std::int32_t scaleFactor);
OrvStatus orvsSum_32s_Sfs(const std::int32_t *src, std::int32_t len, std::int32_t *sum,
                          std::int32_t scaleFactor);

// Sum of products. In single and in double: one by one until b stands on a 16-byte boundary, then eight
// products a round in two accumulators, then one by one; all one by one where b is not aligned to its
// elements or fewer than eight remain. The mixed form takes eight a round from the first; the integer forms
// are exact, and the one with a 32f result rounds once.
OrvStatus orvsDotProd_32f(const float *a, const float *b, std::int32_t len, float *result);
OrvStatus orvsDotProd_64f(const double *a, const double *b, std::int32_t len, double *result);
OrvStatus orvsDotProd_32f64f(const float *a, const float *b, std::int32_t len, double *result);
OrvStatus orvsDotProd_16s64s(const std::int16_t *a, const std::int16_t *b, std::int32_t len,
                             std::int64_t *result);
OrvStatus orvsDotProd_16s32f(const std::int16_t *a, const std::int16_t *b, std::int32_t len, float *result);

// Extremes. With an array that holds a NaN the result is not defined.
OrvStatus orvsMax_32f(const float *src, std::int32_t len, float *max);
OrvStatus orvsMax_64f(const double *src, std::int32_t len, double *max);
OrvStatus orvsMin_32f(const float *src, std::int32_t len, float *min);
OrvStatus orvsMin_64f(const double *src, std::int32_t len, double *min);
OrvStatus orvsMinMax_32f(const float *src, std::int32_t len, float *min, float *max);

// The extreme and the index of its first occurrence. A null index pointer leaves the index out.
OrvStatus orvsMaxIndx_32f(const float *src, std::int32_t len, float *max, std::int32_t *index);
OrvStatus orvsMaxIndx_64f(const double *src, std::int32_t len, double *max, std::int32_t *index);
OrvStatus orvsMinIndx_32f(const float *src, std::int32_t len, float *min, std::int32_t *index);

}  // namespace orv

#endif
