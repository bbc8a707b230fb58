// Element-wise arithmetic on arrays, for every pair of operation and type that some family needs: the set is
// uneven because nothing stands here that the library does not call.
//
// Every routine tests its pointers, then the length (below 1: orvStsSizeErr), and writes nothing on either
// failure. Arrays may lie at any address.

#ifndef ORV_PRIMITIVES_ARITHMETIC_H
#define ORV_PRIMITIVES_ARITHMETIC_H

#include <cstdint>

#include "orvsr/types.h"

namespace orv {

// A complex value; arrays of them are real and imaginary parts in turn.
struct Complex32f {
  float re, im;
};
struct Complex32s {
  std::int32_t re, im;
};

OrvStatus orvsAbs_64f(const double *src, double *dst, std::int32_t len);

// a + b; in place, srcDst += src.
OrvStatus orvsAdd_32f(const float *a, const float *b, float *dst, std::int32_t len);
OrvStatus orvsAdd_32f_I(const float *src, float *srcDst, std::int32_t len);
OrvStatus orvsAdd_64f_I(const double *src, double *srcDst, std::int32_t len);

// src + constant. A constant of 0 copies the bits, so that a negative zero stays one.
OrvStatus orvsAddC_32f(const float *src, float constant, float *dst, std::int32_t len);

// The second argument minus the first: every caller relies on this order. The 16s form saturates.
OrvStatus orvsSub_16s(const std::int16_t *subtrahend, const std::int16_t *minuend, std::int16_t *dst,
                      std::int32_t len);
OrvStatus orvsSub_32f(const float *subtrahend, const float *minuend, float *dst, std::int32_t len);
OrvStatus orvsSub_64f(const double *subtrahend, const double *minuend, double *dst, std::int32_t len);
OrvStatus orvsSub_32f_I(const float *src, float *srcDst, std::int32_t len);
OrvStatus orvsSub_64f_I(const double *src, double *srcDst, std::int32_t len);

OrvStatus orvsMul_32f(const float *a, const float *b, float *dst, std::int32_t len);

// The product, saturated to 16 bits and scaled: to the right with rounding to nearest, ties to even; to the
// left with the product saturated first, so that a product at the limit stays there.
OrvStatus orvsMul_16s_Sfs(const std::int16_t *a, const std::int16_t *b, std::int16_t *dst, std::int32_t len,
                          std::int32_t scaleFactor);

// src * constant. A constant of exactly 1 copies; a constant of 0 clears, so that 0 times an infinity or a
// NaN gives 0.
OrvStatus orvsMulC_32f(const float *src, float constant, float *dst, std::int32_t len);
OrvStatus orvsMulC_64f(const double *src, double constant, double *dst, std::int32_t len);
OrvStatus orvsMulC_32f_I(float *srcDst, float constant, std::int32_t len);
OrvStatus orvsMulC_64f_I(double *srcDst, double constant, std::int32_t len);

// The second argument over the first. A zero divisor gives an infinity of the dividend's sign, or the
// library's NaN for a dividend that is neither above nor below 0; the routine goes on and ends on
// orvStsDivByZeroWrn.
OrvStatus orvsDiv_32f(const float *divisor, const float *dividend, float *dst, std::int32_t len);
OrvStatus orvsDiv_64f(const double *divisor, const double *dividend, double *dst, std::int32_t len);

// src times the reciprocal of the constant, formed once in the type of the data. orvStsDivByZeroErr for a
// constant of 0.
OrvStatus orvsDivC_32f(const float *src, float constant, float *dst, std::int32_t len);
OrvStatus orvsDivC_64f(const double *src, double constant, double *dst, std::int32_t len);
OrvStatus orvsDivC_32f_I(float *srcDst, float constant, std::int32_t len);
OrvStatus orvsDivC_64f_I(double *srcDst, double constant, std::int32_t len);

// The square root of positive elements. A negative element becomes NaN, with orvStsNegSqrtWrn at the end;
// zeros and NaNs stay untouched.
OrvStatus orvsSqrt_64f_I(double *srcDst, std::int32_t len);

// sqrt(re^2 + im^2), in double, rounded once.
OrvStatus orvsMagnitude_32fc(const Complex32f *src, float *dst, std::int32_t len);
// The same scaled by 2^-scaleFactor and rounded: half up, saturated, for factors up to 0; ties to even for
// factors above 0, where nothing can saturate.
OrvStatus orvsMagnitude_32sc_Sfs(const Complex32s *src, std::int32_t *dst, std::int32_t len,
                                 std::int32_t scaleFactor);

// The element-wise extreme of both arrays, into the second.
OrvStatus orvsMaxEvery_32f_I(const float *src, float *srcDst, std::int32_t len);
OrvStatus orvsMinEvery_32f_I(const float *src, float *srcDst, std::int32_t len);
OrvStatus orvsMinEvery_32s_I(const std::int32_t *src, std::int32_t *srcDst, std::int32_t len);

// Natural logarithm of integers, scaled by 2^-scaleFactor. An element at or below 0 gives -2147483648, and
// the first such element decides the warning: orvStsInfResultWrn for zero, orvStsNegVarWrn for a negative
// one. With a factor of 0 or above the logarithm is the nearest integer, shifted right without rounding.
OrvStatus orvsLn_32s_Sfs(const std::int32_t *src, std::int32_t *dst, std::int32_t len,
                         std::int32_t scaleFactor);
OrvStatus orvsLn_32s_ISfs(std::int32_t *srcDst, std::int32_t len, std::int32_t scaleFactor);

}  // namespace orv

#endif
