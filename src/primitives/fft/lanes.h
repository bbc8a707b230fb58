// Four complex transforms side by side: element i of all four is four real parts, then four imaginary ones,
// at data + 8 i. Decimation in frequency by 8 and 4, in place.
//
// The plan of a length 2^order is radix 4 once or twice, if need be, and then radix 8 throughout (radix 2
// alone for two points), so that the last pass, which needs no twiddles, is a radix-8 one. Results stand in
// the order of reversed digits: see positionOf().

#ifndef ORV_PRIMITIVES_FFT_LANES_H
#define ORV_PRIMITIVES_FFT_LANES_H

#include <cstddef>
#include <cstdint>

#include "primitives/fft/sine.h"
#include "primitives/simd.h"

namespace orv::fft {

constexpr std::int32_t kLaneFloats = 8;  // floats of one element of four lanes

struct Complex4 {
  simd::f32x4 re, im;
};

inline Complex4 operator+(Complex4 a, Complex4 b) { return {a.re + b.re, a.im + b.im}; }
inline Complex4 operator-(Complex4 a, Complex4 b) { return {a.re - b.re, a.im - b.im}; }
inline Complex4 operator*(Complex4 a, Complex4 b) {
  return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
}
inline Complex4 conjugateTimes(Complex4 a, Complex4 b) {
  return {a.re * b.re + a.im * b.im, a.re * b.im - a.im * b.re};
}
inline Complex4 operator*(Complex4 a, simd::f32x4 b) { return {a.re * b, a.im * b}; }
inline simd::f32x4 norm(Complex4 a) { return a.re * a.re + a.im * a.im; }
// a - i b, and a + i b
inline Complex4 minusI(Complex4 a, Complex4 b) { return {a.re + b.im, a.im - b.re}; }
inline Complex4 plusI(Complex4 a, Complex4 b) { return {a.re - b.im, a.im + b.re}; }

// One element of four lanes, or four factors of a table: at a 16-byte boundary.
inline Complex4 loadLanes(const float *p) { return {simd::loadAligned4(p), simd::loadAligned4(p + 4)}; }
inline void storeLanes(float *p, Complex4 a) {
  simd::storeAligned4(p, a.re);
  simd::storeAligned4(p + 4, a.im);
}

// Four complex values that stand one behind the other.
inline Complex4 loadInterleaved(const float *p) {
  const simd::f32x4 low = simd::load4(p);
  const simd::f32x4 high = simd::load4(p + 4);
  return {simd::shuffle<0, 2, 0, 2>(low, high), simd::shuffle<1, 3, 1, 3>(low, high)};
}
inline void storeInterleaved(float *p, Complex4 a) {
  simd::store4(p, simd::interleaveLow(a.re, a.im));
  simd::store4(p + 4, simd::interleaveHigh(a.re, a.im));
}

// The same from the last one to the first.
inline Complex4 loadReversed(const float *p) {
  const simd::f32x4 a = simd::load4(p), b = simd::load4(p + 4);
  return {simd::shuffle<2, 0, 2, 0>(b, a), simd::shuffle<3, 1, 3, 1>(b, a)};
}
inline void storeReversed(float *p, Complex4 a) {
  const simd::f32x4 low = simd::interleaveLow(a.re, a.im), high = simd::interleaveHigh(a.re, a.im);
  simd::store4(p, simd::shuffle<2, 3, 0, 1>(high, high));
  simd::store4(p + 4, simd::shuffle<2, 3, 0, 1>(low, low));
}
// The conjugates, from the last one to the first.
inline void storeMirrored(float *p, Complex4 a) { storeReversed(p, {a.re, a.im ^ simd::signBits4()}); }

inline void transpose(Complex4 &a, Complex4 &b, Complex4 &c, Complex4 &d) {
  simd::transpose(a.re, b.re, c.re, d.re);
  simd::transpose(a.im, b.im, c.im, d.im);
}

struct Quad {
  Complex4 y[4];
};

// y[k] = sum of x[j] (-i)^(jk), given the sums and differences of x[0], x[2] and of x[1], x[3].
inline Quad joined(Complex4 sum02, Complex4 diff02, Complex4 sum13, Complex4 diff13) {
  return {{sum02 + sum13, minusI(diff02, diff13), sum02 - sum13, plusI(diff02, diff13)}};
}

inline Quad dft4(Complex4 a, Complex4 b, Complex4 c, Complex4 d) {
  return joined(a + c, a - c, b + d, b - d);
}

// y[k] = sum of x[j] exp(-2 pi i j k / 8), x[j] at p + j step, in place but for the results, which go to
// put(k, y[k]); slot k of x has been read by then. Between its halves the differences of x wait in slots that
// are free: sixteen registers do not hold them beside the sums, and spilling them costs more.
template <class Put>
inline void dft8(float *p, std::size_t step, Put put) {
  float *q = p + 4 * step;
  {
    const Complex4 x0 = loadLanes(p), x4 = loadLanes(q);
    const Complex4 x1 = loadLanes(p + step), x5 = loadLanes(q + step);
    const Complex4 s0 = x0 + x4;
    storeLanes(p + step, x0 - x4);
    const Complex4 x3 = loadLanes(p + 3 * step), x7 = loadLanes(q + 3 * step);
    const Complex4 s1 = x1 + x5;
    storeLanes(p + 3 * step, x1 - x5);
    const Complex4 x2 = loadLanes(p + 2 * step), x6 = loadLanes(q + 2 * step);
    const Complex4 s2 = x2 + x6;
    storeLanes(q + step, x2 - x6);
    const Complex4 s3 = x3 + x7;
    storeLanes(q + 3 * step, x3 - x7);
    const Quad even = dft4(s0, s1, s2, s3);
    put(0, even.y[0]);
    put(2, even.y[1]);
    put(4, even.y[2]);
    put(6, even.y[3]);
  }
  simd::forgetRegisters();
  const Complex4 d0 = loadLanes(p + step), d1 = loadLanes(p + 3 * step);
  const Complex4 d2 = loadLanes(q + step), d3 = loadLanes(q + 3 * step);
  // exp(-i pi/4) and exp(-3 i pi/4), but for the factor sqrt(1/2)
  const Complex4 r1 = {d1.re + d1.im, d1.im - d1.re};
  const Complex4 r3 = {d3.im - d3.re, d3.re + d3.im};
  const simd::f32x4 half = simd::splat4(0.70710677F);
  const Complex4 sum = Complex4{r1.re + r3.re, r1.im - r3.im} * half;
  const Complex4 diff = Complex4{r1.re - r3.re, r1.im + r3.im} * half;
  const Quad odd = joined(minusI(d0, d2), plusI(d0, d2), sum, diff);
  put(1, odd.y[0]);
  put(3, odd.y[1]);
  put(5, odd.y[2]);
  put(7, odd.y[3]);
}

// Eight real values, four columns side by side. conj1 is the conjugate of result 1.
struct RealEight {
  simd::f32x4 y0, y4;
  Complex4 conj1, y2, y3;
};

inline RealEight dft8(const simd::f32x4 (&x)[8]) {
  const simd::f32x4 half = simd::splat4(0.70710677F);
  const simd::f32x4 s0 = x[0] + x[4], s1 = x[1] + x[5], s2 = x[2] + x[6], s3 = x[3] + x[7];
  const simd::f32x4 d0 = x[0] - x[4], d1 = x[1] - x[5], d2 = x[2] - x[6], d3 = x[3] - x[7];
  const simd::f32x4 p = (d1 - d3) * half, q = (d1 + d3) * half;
  RealEight y;
  y.conj1 = {d0 + p, d2 + q};
  y.y3 = {d0 - p, d2 - q};
  y.y2 = {s0 - s2, s3 - s1};
  const simd::f32x4 even = s0 + s2, odd = s1 + s3;
  y.y0 = even + odd;
  y.y4 = even - odd;
  return y;
}

// The radix of the first pass of a transform of 2^order points.
constexpr std::int32_t firstRadixOrder(std::int32_t order) {
  return order < 3 ? order : order % 3 == 0 ? 3 : 2;
}

constexpr std::int32_t lastRadixOrder(std::int32_t order) { return order < 3 ? order : order == 4 ? 2 : 3; }

// Where result k of a transform of 2^order points stands.
constexpr std::int32_t positionOf(std::int32_t k, std::int32_t order) {
  std::int32_t position = 0;
  while (order > 0) {
    const std::int32_t radixOrder = firstRadixOrder(order);
    order -= radixOrder;
    position |= (k & ((1 << radixOrder) - 1)) << order;
    k >>= radixOrder;
  }
  return position;
}

// Floats of the twiddles of all passes but the last, each value four times: for the n-th butterfly of a pass,
// n > 0, the factors W^(n k), k = 1 .. radix - 1.
constexpr std::int64_t laneTwiddleFloats(std::int32_t order) {
  std::int64_t floats = 0;
  while (order > firstRadixOrder(order)) {
    const std::int32_t radixOrder = firstRadixOrder(order);
    floats += ((std::int64_t{1} << (order - radixOrder)) - 1) * ((1 << radixOrder) - 1) * kLaneFloats;
    order -= radixOrder;
  }
  return floats;
}

void buildLaneTwiddles(float *table, std::int32_t order, const UnitCircle &circle);

// Transforms `count` groups of four, one behind the other.
void transformLanes(float *data, std::int32_t order, std::int32_t count, const float *twiddles);
// Of one group, only as many of the first results as the radix of the first pass: where they are sums of
// neighbours. For an order of 5 or more.
void firstOfLanes(float *data, std::int32_t order, const float *twiddles);
// All passes but the last, which is left to the caller: a dft8() of every eight elements, or a dft4() of
// every four if lastRadixOrder() is 2.
void transformLanesButLast(float *data, std::int32_t order, std::int32_t count, const float *twiddles);

}  // namespace orv::fft

#endif
