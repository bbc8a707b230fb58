#include "primitives/arithmetic.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "core/integer.h"
#include "core/scale.h"
#include "primitives/memory.h"
#include "primitives/simd.h"
#include "primitives/special.h"

namespace orv {
namespace {

constexpr std::int32_t kMost32s = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kLeast32s = std::numeric_limits<std::int32_t>::min();

template <class From, class To, class Function>
OrvStatus mapArray(const From *src, To *dst, std::int32_t len, Function f) {
  if (const OrvStatus status = checkArrays(len, src, dst); status != orvStsNoErr) return status;
  for (std::int32_t i = 0; i < len; ++i) store(dst + i, static_cast<To>(f(load(src + i))));
  return orvStsNoErr;
}

template <class T, class Function>
OrvStatus mapArrays(const T *a, const T *b, T *dst, std::int32_t len, Function f) {
  if (const OrvStatus status = checkArrays(len, a, b, dst); status != orvStsNoErr) return status;
  for (std::int32_t i = 0; i < len; ++i) store(dst + i, static_cast<T>(f(load(a + i), load(b + i))));
  return orvStsNoErr;
}

template <class T>
OrvStatus multiplyByConstant(const T *src, T constant, T *dst, std::int32_t len) {
  if (const OrvStatus status = checkArrays(len, src, dst); status != orvStsNoErr) return status;
  const auto bytes = static_cast<std::size_t>(len) * sizeof(T);
  if (constant == T{1}) {
    std::memmove(dst, src, bytes);
  } else if (constant == T{0}) {
    std::memset(dst, 0, bytes);
  } else {
    for (std::int32_t i = 0; i < len; ++i) store(dst + i, load(src + i) * constant);
  }
  return orvStsNoErr;
}

template <class T>
OrvStatus divideByConstant(const T *src, T constant, T *dst, std::int32_t len) {
  if (const OrvStatus status = checkArrays(len, src, dst); status != orvStsNoErr) return status;
  if (constant == T{0}) return orvStsDivByZeroErr;
  return multiplyByConstant(src, T{1} / constant, dst, len);
}

template <class T>
OrvStatus divide(const T *divisor, const T *dividend, T *dst, std::int32_t len) {
  if (const OrvStatus status = checkArrays(len, divisor, dividend, dst); status != orvStsNoErr) return status;
  OrvStatus status = orvStsNoErr;
  for (std::int32_t i = 0; i < len; ++i) {
    const T x = load(dividend + i);
    const T y = load(divisor + i);
    T quotient = x / y;
    if (y == T{0}) {
      status = orvStsDivByZeroWrn;
      quotient = x > T{0}   ? Special<T>::infinity()
                 : x < T{0} ? Special<T>::minusInfinity()
                            : Special<T>::nan();
    }
    store(dst + i, quotient);
  }
  return status;
}

// The nearest integer to ln v for v >= 1: the number of thresholds ceil(exp(j + 1/2)) that v reaches.
std::int32_t nearestLog(std::int32_t v) {
  static constexpr std::int32_t kThresholds[21] = {
      2,     5,      13,     34,      91,      245,      666,      1809,      4915,      13360,    36316,
      98716, 268338, 729417, 1982760, 5389699, 14650720, 39824785, 108254988, 294267567, 799902178};
  return static_cast<std::int32_t>(std::upper_bound(kThresholds, kThresholds + 21, v) - kThresholds);
}

// Rounds half up and stops at the largest 32-bit integer.
std::int32_t roundHalfUp(double v) {
  const double t = v + 0.5;
  return t > kMost32s ? kMost32s : truncate32(t);
}

}  // namespace

OrvStatus orvsAbs_64f(const double *src, double *dst, std::int32_t len) {
  return mapArray(src, dst, len, [](double v) { return std::fabs(v); });
}

OrvStatus orvsAdd_32f(const float *a, const float *b, float *dst, std::int32_t len) {
  return mapArrays(a, b, dst, len, [](float x, float y) { return x + y; });
}
OrvStatus orvsAdd_32f_I(const float *src, float *srcDst, std::int32_t len) {
  return mapArrays(src, srcDst, srcDst, len, [](float x, float y) { return y + x; });
}
OrvStatus orvsAdd_64f_I(const double *src, double *srcDst, std::int32_t len) {
  return mapArrays(src, srcDst, srcDst, len, [](double x, double y) { return y + x; });
}

OrvStatus orvsAddC_32f(const float *src, float constant, float *dst, std::int32_t len) {
  if (constant == 0.0F) return mapArray(src, dst, len, [](float v) { return v; });
  return mapArray(src, dst, len, [constant](float v) { return v + constant; });
}

OrvStatus orvsSub_16s(const std::int16_t *subtrahend, const std::int16_t *minuend, std::int16_t *dst,
                      std::int32_t len) {
  return mapArrays(subtrahend, minuend, dst, len,
                   [](std::int32_t x, std::int32_t y) { return sat16(y - x); });
}
OrvStatus orvsSub_32f(const float *subtrahend, const float *minuend, float *dst, std::int32_t len) {
  return mapArrays(subtrahend, minuend, dst, len, [](float x, float y) { return y - x; });
}
OrvStatus orvsSub_64f(const double *subtrahend, const double *minuend, double *dst, std::int32_t len) {
  return mapArrays(subtrahend, minuend, dst, len, [](double x, double y) { return y - x; });
}
OrvStatus orvsSub_32f_I(const float *src, float *srcDst, std::int32_t len) {
  return orvsSub_32f(src, srcDst, srcDst, len);
}
OrvStatus orvsSub_64f_I(const double *src, double *srcDst, std::int32_t len) {
  return orvsSub_64f(src, srcDst, srcDst, len);
}

OrvStatus orvsMul_32f(const float *a, const float *b, float *dst, std::int32_t len) {
  return mapArrays(a, b, dst, len, [](float x, float y) { return x * y; });
}

OrvStatus orvsMul_16s_Sfs(const std::int16_t *a, const std::int16_t *b, std::int16_t *dst, std::int32_t len,
                          std::int32_t scaleFactor) {
  const std::int32_t s = scaleFactor;
  if (s == 0) return mapArrays(a, b, dst, len, [](std::int32_t x, std::int32_t y) { return sat16(x * y); });
  if (s < -15)
    return mapArrays(a, b, dst, len, [](std::int32_t x, std::int32_t y) {
      const std::int32_t p = x * y;
      return p > 0 ? INT16_MAX : p < 0 ? INT16_MIN : 0;
    });
  if (s < 0)
    return mapArrays(a, b, dst, len, [s](std::int32_t x, std::int32_t y) {
      return sat16(std::int64_t{sat16(x * y)} * (std::int64_t{1} << -s));
    });
  if (s > 30) {
    if (const OrvStatus status = checkArrays(len, a, b, dst); status != orvStsNoErr) return status;
    return orvsZero_16s(dst, len);
  }
  // Ties go to the even neighbour: bit s of the product tips the half. For s = 1 that half is the bit alone.
  return mapArrays(a, b, dst, len, [s](std::int32_t x, std::int32_t y) {
    const std::int64_t p = std::int64_t{x} * y;
    return sat16((p + (std::int64_t{1} << (s - 1)) - 1 + ((p >> s) & 1)) >> s);
  });
}

OrvStatus orvsMulC_32f(const float *src, float constant, float *dst, std::int32_t len) {
  return multiplyByConstant(src, constant, dst, len);
}
OrvStatus orvsMulC_64f(const double *src, double constant, double *dst, std::int32_t len) {
  return multiplyByConstant(src, constant, dst, len);
}
OrvStatus orvsMulC_32f_I(float *srcDst, float constant, std::int32_t len) {
  return multiplyByConstant<float>(srcDst, constant, srcDst, len);
}
OrvStatus orvsMulC_64f_I(double *srcDst, double constant, std::int32_t len) {
  return multiplyByConstant<double>(srcDst, constant, srcDst, len);
}

OrvStatus orvsDiv_32f(const float *divisor, const float *dividend, float *dst, std::int32_t len) {
  return divide(divisor, dividend, dst, len);
}
OrvStatus orvsDiv_64f(const double *divisor, const double *dividend, double *dst, std::int32_t len) {
  return divide(divisor, dividend, dst, len);
}

OrvStatus orvsDivC_32f(const float *src, float constant, float *dst, std::int32_t len) {
  return divideByConstant(src, constant, dst, len);
}
OrvStatus orvsDivC_64f(const double *src, double constant, double *dst, std::int32_t len) {
  return divideByConstant(src, constant, dst, len);
}
OrvStatus orvsDivC_32f_I(float *srcDst, float constant, std::int32_t len) {
  return orvsDivC_32f(srcDst, constant, srcDst, len);
}
OrvStatus orvsDivC_64f_I(double *srcDst, double constant, std::int32_t len) {
  return orvsDivC_64f(srcDst, constant, srcDst, len);
}

OrvStatus orvsSqrt_64f_I(double *srcDst, std::int32_t len) {
  if (const OrvStatus status = checkArrays(len, srcDst); status != orvStsNoErr) return status;
  OrvStatus status = orvStsNoErr;
  for (std::int32_t i = 0; i < len; ++i) {
    const double v = load(srcDst + i);
    if (v > 0.0) {
      store(srcDst + i, std::sqrt(v));
    } else if (v < 0.0) {
      store(srcDst + i, orvConstantOfNAN_64f);
      status = orvStsNegSqrtWrn;
    }
  }
  return status;
}

OrvStatus orvsMagnitude_32fc(const Complex32f *src, float *dst, std::int32_t len) {
  using namespace simd;
  if (const OrvStatus status = checkArrays(len, src, dst); status != orvStsNoErr) return status;
  const auto *parts = reinterpret_cast<const float *>(src);
  // re^2 + im^2 of two neighbours.
  const auto power = [](f32x4 two) {
    const f64x2 a = widenLow(two);
    const f64x2 b = widenHigh(two);
    const f64x2 aa = a * a;
    const f64x2 bb = b * b;
    return f64x2{_mm_unpacklo_pd(aa.v, bb.v)} + f64x2{_mm_unpackhi_pd(aa.v, bb.v)};
  };
  std::int32_t i = 0;
  for (; i < (len & ~3); i += 4) {
    const float *p = parts + std::ptrdiff_t{2} * i;
    store4(dst + i, narrow(sqrt(power(load4(p))), sqrt(power(load4(p + 4)))));
  }
  for (; i < len; ++i) {
    const auto re = static_cast<double>(load(parts + std::ptrdiff_t{2} * i));
    const auto im = static_cast<double>(load(parts + std::ptrdiff_t{2} * i + 1));
    store(dst + i, static_cast<float>(std::sqrt(re * re + im * im)));
  }
  return orvStsNoErr;
}

OrvStatus orvsMagnitude_32sc_Sfs(const Complex32s *src, std::int32_t *dst, std::int32_t len,
                                 std::int32_t scaleFactor) {
  if (const OrvStatus status = checkArrays(len, src, dst); status != orvStsNoErr) return status;
  const double scale = GetScale_32s64f(scaleFactor);
  for (std::int32_t i = 0; i < len; ++i) {
    const Complex32s z = load(src + i);
    const double m = std::sqrt(static_cast<double>(z.re) * z.re + static_cast<double>(z.im) * z.im);
    std::int32_t result = 0;
    if (scaleFactor < -30) {
      result = z.re == 0 && z.im == 0 ? 0 : kMost32s;
    } else if (scaleFactor <= 0) {
      result = roundHalfUp(m * scale);
    } else if (scaleFactor <= 32) {
      // Only here do ties go to the even neighbour; the branch for enlarging factors rounds them up.
      const double t = m * scale + 0.5;
      result = truncate32(t);
      if (result % 2 != 0 && t == result) --result;
    }
    store(dst + i, result);
  }
  return orvStsNoErr;
}

OrvStatus orvsMaxEvery_32f_I(const float *src, float *srcDst, std::int32_t len) {
  return mapArrays(src, srcDst, srcDst, len, [](float x, float y) { return x > y ? x : y; });
}
OrvStatus orvsMinEvery_32f_I(const float *src, float *srcDst, std::int32_t len) {
  return mapArrays(src, srcDst, srcDst, len, [](float x, float y) { return x < y ? x : y; });
}
OrvStatus orvsMinEvery_32s_I(const std::int32_t *src, std::int32_t *srcDst, std::int32_t len) {
  return mapArrays(src, srcDst, srcDst, len, [](std::int32_t x, std::int32_t y) { return x < y ? x : y; });
}

OrvStatus orvsLn_32s_Sfs(const std::int32_t *src, std::int32_t *dst, std::int32_t len,
                         std::int32_t scaleFactor) {
  OrvStatus firstWarning = orvStsNoErr;
  const double scale = scaleFactor < 0 ? std::pow(2.0, -static_cast<double>(scaleFactor)) : 1.0;
  const OrvStatus status = mapArray(src, dst, len, [&](std::int32_t v) {
    if (v <= 0) {
      if (firstWarning == orvStsNoErr) firstWarning = v == 0 ? orvStsInfResultWrn : orvStsNegVarWrn;
      return kLeast32s;
    }
    if (scaleFactor >= 0) return nearestLog(v) >> (scaleFactor % 32);
    return roundHalfUp(std::log(static_cast<double>(v)) * scale);
  });
  return status != orvStsNoErr ? status : firstWarning;
}
OrvStatus orvsLn_32s_ISfs(std::int32_t *srcDst, std::int32_t len, std::int32_t scaleFactor) {
  return orvsLn_32s_Sfs(srcDst, srcDst, len, scaleFactor);
}

}  // namespace orv
