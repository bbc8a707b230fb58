// Sums and updates over contiguous lines of doubles: what the decomposition spends its time in, and what the
// exported row routines do. Sums run in four lanes; which order they are added in is no part of the results.

#ifndef ORV_MATRIX_LINES_H
#define ORV_MATRIX_LINES_H

#include <cmath>
#include <cstdint>

#include "primitives/memory.h"
#include "primitives/simd.h"

namespace orv::matrix {

using simd::f64x2;
using simd::f64x4;

inline f64x4 loadFour(const double *p) { return {simd::load2(p), simd::load2(p + 2)}; }
inline void storeFour(double *p, f64x4 v) {
  simd::store2(p, v.low);
  simd::store2(p + 2, v.high);
}
inline f64x4 splatFour(double v) { return {simd::splat2(v), simd::splat2(v)}; }

// The sum of x over i of value(x[i]), vector(x[i .. i + 3]) being the same for four.
template <class Vector, class Value>
inline double sumOver(std::int32_t len, Vector vector, Value value) {
  f64x4 sums{};
  std::int32_t i = 0;
  for (; len - i >= 4; i += 4) sums = sums + vector(i);
  double sum = simd::sumLanes(sums);
  for (; i < len; ++i) sum += value(i);
  return sum;
}

inline double sumAbs(const double *x, std::int32_t len) {
  const f64x2 sign = simd::splat2(-0.0);
  return sumOver(
      len,
      [=](std::int32_t i) {
        const f64x4 v = loadFour(x + i);
        return f64x4{simd::andNot(sign, v.low), simd::andNot(sign, v.high)};
      },
      [=](std::int32_t i) { return std::fabs(load(x + i)); });
}

// x *= factor, and the sum of the squares of what results.
inline double scaleAndSumSquares(double *x, std::int32_t len, double factor) {
  return sumOver(
      len,
      [=](std::int32_t i) {
        const f64x4 v = loadFour(x + i) * factor;
        storeFour(x + i, v);
        return v * v;
      },
      [=](std::int32_t i) {
        const double v = load(x + i) * factor;
        store(x + i, v);
        return v * v;
      });
}

inline void scale(double *x, std::int32_t len, double factor) {
  std::int32_t i = 0;
  for (; len - i >= 4; i += 4) storeFour(x + i, loadFour(x + i) * factor);
  for (; i < len; ++i) store(x + i, load(x + i) * factor);
}

// y += factor * x.
inline void addMul(const double *x, double *y, std::int32_t len, double factor) {
  std::int32_t i = 0;
  for (; len - i >= 4; i += 4) storeFour(y + i, loadFour(y + i) + loadFour(x + i) * factor);
  for (; i < len; ++i) store(y + i, load(y + i) + factor * load(x + i));
}

inline double dot(const double *x, const double *y, std::int32_t len) {
  return sumOver(
      len, [=](std::int32_t i) { return loadFour(x + i) * loadFour(y + i); },
      [=](std::int32_t i) { return load(x + i) * load(y + i); });
}

}  // namespace orv::matrix

#endif
