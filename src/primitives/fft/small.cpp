#include "primitives/fft/small.h"

#include <cstring>

#include "primitives/fft/lanes.h"
#include "primitives/memory.h"

namespace orv::fft {
namespace {

// Straight-line code for 16 values and fewer. Even and odd samples are transformed each by themselves and
// joined, X[k] = E[k] + W^k O[k] and X[n/2 - k] = conj(E[k] - W^k O[k]). Spectra are laid out as R0, R(n/2),
// R1, I1, ...

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

// W_32^(column k), k = 1..4, columns 0..3.
struct Steps32 {
  float values[32] = {};
};
constexpr Steps32 steps32() {
  Steps32 steps;
  for (int k = 1; k <= 4; ++k)
    for (int n = 0; n < 4; ++n) {
      const Twiddle w = UnitCircle(fft_fix_twiddle_table_32f, 10).at(n * k, 5);
      steps.values[8 * (k - 1) + n] = w.re;
      steps.values[8 * (k - 1) + 4 + n] = w.im;
    }
  return steps;
}
alignas(16) constexpr Steps32 kSteps32 = steps32();

// As in real.h, with eight rows of four columns: one group of lanes, rows 1 to 4.
template <>
inline void smallForward<32>(const float *x, float *y) {
  simd::f32x4 v[8];
  for (int j = 0; j < 8; ++j) v[j] = simd::load4(x + 4 * j);
  const RealEight e = dft8(v);
  const float *w = kSteps32.values;
  Complex4 a = conjugateTimes(e.conj1, loadLanes(w)), b = e.y2 * loadLanes(w + 8),
           c = e.y3 * loadLanes(w + 16), d = loadLanes(w + 24) * e.y4;
  transpose(a, b, c, d);
  const Quad q = dft4(a, b, c, d);
  storeInterleaved(y + 2, q.y[0]);
  storeMirrored(y + 8, q.y[3]);
  storeInterleaved(y + 18, q.y[1]);
  storeMirrored(y + 24, q.y[2]);
  float row0[4], ends[4];
  simd::store4(row0, e.y0);
  smallForward<4>(row0, ends);
  y[0] = ends[0];
  y[1] = ends[1];
  y[16] = ends[2];
  y[17] = ends[3];
}

template <int n>
Ends bins(const float *src, float *bin1, float factor) {
  float x[n], y[n];
  std::memcpy(x, src, sizeof x);
  smallForward<n>(x, y);
  for (int i = 2; i < n; ++i) store(bin1 + i - 2, y[i] * factor);
  return {y[0] * factor, y[n > 1] * factor};
}

}  // namespace

void smallTransform(std::int32_t order, const float *x, float *y) {
  switch (order) {
    case 0:
      return smallForward<1>(x, y);
    case 1:
      return smallForward<2>(x, y);
    case 2:
      return smallForward<4>(x, y);
    case 3:
      return smallForward<8>(x, y);
    case 4:
      return smallForward<16>(x, y);
    default:
      return smallForward<32>(x, y);
  }
}

Ends smallBins(std::int32_t order, const float *src, float *bin1, float factor) {
  switch (order) {
    case 0:
      return bins<1>(src, bin1, factor);
    case 1:
      return bins<2>(src, bin1, factor);
    case 2:
      return bins<4>(src, bin1, factor);
    case 3:
      return bins<8>(src, bin1, factor);
    case 4:
      return bins<16>(src, bin1, factor);
    default:
      return bins<32>(src, bin1, factor);
  }
}

}  // namespace orv::fft
