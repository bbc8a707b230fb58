// Between the transform Z of M complex points and the spectrum X of the 2M real values that they hold.
//
//     X[k] = conj(Z[M-k]) + t (Z[k] - conj(Z[M-k])), ...    for pairs of bins k, M - k
//
// written with g = cos(a)/2 and f = 1/2 - sin(a)/2, a = pi k / M. The way back is the same with -g, and
// yields half of Z.
//
// Bins are handled in runs of eight: bins 8 r .. 8 r + 7, and the mirrored ones M - 8 r - 7 .. M - 8 r. In
// lanes they are paired so that a bin and its mirror stand in the same lane:
//     low[0]   8 r + 0, 1, 2, 3           high[0]  the mirrors of these
//     low[1]   8 r + 4, 7, 6, 5           high[1]  the mirrors of these, M - 8 r - 4, 7, 6, 5
// which is the order in which the two groups of a transform by eight columns keep residues 0..3 and 4, 7,
// 6, 5.

#ifndef ORV_PRIMITIVES_FFT_BINS_H
#define ORV_PRIMITIVES_FFT_BINS_H

#include "primitives/fft/lanes.h"

namespace orv::fft {

constexpr int kRun = 8;
constexpr std::size_t kRunFloats = 2 * kRun;

struct Run {
  Complex4 low[2], high[2];
};

enum class Direction { forward, inverse };

// Bins k and M - k in the places of each other's pair; `w` holds f and g of the low one as (g, f).
template <Direction direction>
inline void recombine(Complex4 &low, Complex4 &high, Complex4 w) {
  const simd::f32x4 d = low.re - high.re;
  const simd::f32x4 s = low.im + high.im;
  constexpr bool ahead = direction == Direction::forward;
  const simd::f32x4 u = ahead ? w.im * d + w.re * s : w.im * d - w.re * s;
  const simd::f32x4 v = ahead ? w.im * s - w.re * d : w.im * s + w.re * d;
  const Complex4 lower = {high.re + u, v - high.im};
  high = {low.re - u, v - low.im};
  low = lower;
}

template <Direction direction>
inline void recombine(Run &run, const float *w) {
  recombine<direction>(run.low[0], run.high[0], loadLanes(w));
  recombine<direction>(run.low[1], run.high[1], loadLanes(w + 8));
}

// Eight bins from `low` on in the order of low[0], low[1].
inline void storeLow(float *p, const Complex4 (&low)[2]) {
  storeInterleaved(p, low[0]);
  const simd::f32x4 v = simd::interleaveLow(low[1].re, low[1].im);   // 4 7
  const simd::f32x4 w = simd::interleaveHigh(low[1].re, low[1].im);  // 6 5
  simd::store4(p + 8, simd::shuffle<0, 1, 2, 3>(v, w));
  simd::store4(p + 12, simd::shuffle<0, 1, 2, 3>(w, v));
}

// Bins M - 8 r - 7 .. M - 8 r from p on.
inline void storeHigh(float *p, const Complex4 (&high)[2]) {
  const simd::f32x4 v = simd::interleaveLow(high[1].re, high[1].im);   // -4 -7
  const simd::f32x4 w = simd::interleaveHigh(high[1].re, high[1].im);  // -6 -5
  simd::store4(p, simd::shuffle<2, 3, 0, 1>(v, w));
  simd::store4(p + 4, simd::shuffle<2, 3, 0, 1>(w, v));
  const simd::f32x4 x = simd::interleaveLow(high[0].re, high[0].im);   // -0 -1
  const simd::f32x4 y = simd::interleaveHigh(high[0].re, high[0].im);  // -2 -3
  simd::store4(p + 8, simd::shuffle<2, 3, 0, 1>(y, y));
  simd::store4(p + 12, simd::shuffle<2, 3, 0, 1>(x, x));
}

inline Complex4 deinterleave(simd::f32x4 a, simd::f32x4 b) {
  return {simd::shuffle<0, 2, 0, 2>(a, b), simd::shuffle<1, 3, 1, 3>(a, b)};
}

// The ways back.
inline void loadLow(const float *p, Complex4 (&low)[2]) {
  low[0] = loadInterleaved(p);
  const simd::f32x4 a = simd::load4(p + 8), b = simd::load4(p + 12);  // 4 5, 6 7
  low[1] = deinterleave(simd::shuffle<0, 1, 2, 3>(a, b), simd::shuffle<0, 1, 2, 3>(b, a));
}
inline void loadHigh(const float *p, Complex4 (&high)[2]) {
  const simd::f32x4 a = simd::load4(p), b = simd::load4(p + 4);  // -7 -6, -5 -4
  high[1] = deinterleave(simd::shuffle<2, 3, 0, 1>(b, a), simd::shuffle<2, 3, 0, 1>(a, b));
  const simd::f32x4 c = simd::load4(p + 8), d = simd::load4(p + 12);  // -3 -2, -1 -0
  high[0] = deinterleave(simd::shuffle<2, 3, 0, 1>(d, d), simd::shuffle<2, 3, 0, 1>(c, c));
}

}  // namespace orv::fft

#endif
