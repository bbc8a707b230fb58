// Real transforms of 1 to 32 values: straight-line code without tables.
//
// Even and odd samples are transformed each by themselves and joined, X[k] = E[k] + W^k O[k] and
// X[n/2 - k] = conj(E[k] - W^k O[k]); the inverse goes the same way back. Spectra are laid out as
// R0, R(n/2), R1, I1, ...

#ifndef ORV_PRIMITIVES_FFT_SMALL_H
#define ORV_PRIMITIVES_FFT_SMALL_H

#include "primitives/fft/sine.h"

namespace orv::fft {

// exp(-2 pi i k / n), k < n / 4
template <int n>
constexpr Twiddle smallTwiddle(int k) {
  return {fft_fix_twiddle_table_32f[256 - k * (1024 / n)], -fft_fix_twiddle_table_32f[k * (1024 / n)]};
}

template <int n, int stride = 1>
inline void smallForward(const float *x, float *y) {
  if constexpr (n == 1) {
    y[0] = x[0];
  } else if constexpr (n == 2) {
    y[0] = x[0] + x[stride];
    y[1] = x[0] - x[stride];
  } else {
    float even[n / 2], odd[n / 2];
    smallForward<n / 2, 2 * stride>(x, even);
    smallForward<n / 2, 2 * stride>(x + stride, odd);
    y[0] = even[0] + odd[0];
    y[1] = even[0] - odd[0];
#pragma GCC unroll 8
    for (int k = 1; k < n / 4; ++k) {
      constexpr int last = n / 2;
      const Twiddle w = smallTwiddle<n>(k);
      const float re = w.re * odd[2 * k] - w.im * odd[2 * k + 1];
      const float im = w.re * odd[2 * k + 1] + w.im * odd[2 * k];
      y[2 * k] = even[2 * k] + re;
      y[2 * k + 1] = even[2 * k + 1] + im;
      y[2 * (last - k)] = even[2 * k] - re;
      y[2 * (last - k) + 1] = im - even[2 * k + 1];
    }
    y[n / 2] = even[1];
    y[n / 2 + 1] = -odd[1];
  }
}

template <int n, int stride = 1>
inline void smallInverse(const float *y, float *x) {
  if constexpr (n == 1) {
    x[0] = y[0];
  } else if constexpr (n == 2) {
    x[0] = y[0] + y[1];
    x[stride] = y[0] - y[1];
  } else {
    float even[n / 2], odd[n / 2];
    even[0] = y[0] + y[1];
    odd[0] = y[0] - y[1];
#pragma GCC unroll 8
    for (int k = 1; k < n / 4; ++k) {
      constexpr int last = n / 2;
      const Twiddle w = smallTwiddle<n>(k);
      const float re = y[2 * k] - y[2 * (last - k)];
      const float im = y[2 * k + 1] + y[2 * (last - k) + 1];
      even[2 * k] = y[2 * k] + y[2 * (last - k)];
      even[2 * k + 1] = y[2 * k + 1] - y[2 * (last - k) + 1];
      odd[2 * k] = w.re * re + w.im * im;
      odd[2 * k + 1] = w.re * im - w.im * re;
    }
    even[1] = 2 * y[n / 2];
    odd[1] = -2 * y[n / 2 + 1];
    smallInverse<n / 2, 2 * stride>(even, x);
    smallInverse<n / 2, 2 * stride>(odd, x + stride);
  }
}

}  // namespace orv::fft

#endif
