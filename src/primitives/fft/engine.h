// The transforms behind the checks.

#ifndef ORV_PRIMITIVES_FFT_ENGINE_H
#define ORV_PRIMITIVES_FFT_ENGINE_H

#include "primitives/fft/state.h"

namespace orv::fft {

// How a spectrum of N/2 + 1 bins, the first and the last of them real, is laid out:
//   perm  R0 Rn R1 I1 R2 I2 ...
//   pack  R0 R1 I1 R2 I2 ... Rn
//   ccs   R0 0 R1 I1 R2 I2 ... Rn 0
enum class Layout { perm, pack, ccs };

// Bins 0 and N/2, which are real.
struct Ends {
  float zero, last;
};

// src and dst may be the same array. `work` has the bytes that the object names, at any address.
void forward(const OrvRealFftState32f &spec, const float *src, float *dst, Layout layout, std::uint8_t *work);
void inverse(const OrvRealFftState32f &spec, const float *packed, float *dst, std::uint8_t *work);

// dst[k] = factor * sum over n of src[n] (cos + sin)(2 pi n k / N), of at most 4096 values. With Rk - Ik at k
// and Rk + Ik at N - k as its source this is the inverse transform of a spectrum. The arrays may be the same.
void hartley(const OrvRealFftState32f &spec, const float *src, float *dst, float factor);

}  // namespace orv::fft

#endif
