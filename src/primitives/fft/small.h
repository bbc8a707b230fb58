// Real transforms of 1 to 32 values, without tables of their own.

#ifndef ORV_PRIMITIVES_FFT_SMALL_H
#define ORV_PRIMITIVES_FFT_SMALL_H

#include "primitives/fft/engine.h"

namespace orv::fft {

// 2^order values to R0, R(N/2), R1, I1, R2, I2, ... in another array.
void smallTransform(std::int32_t order, const float *x, float *y);

// Bins 1 to N/2 - 1 go to bin1[], times factor. src and bin1 may be the same array.
Ends smallBins(std::int32_t order, const float *src, float *bin1, float factor);

}  // namespace orv::fft

#endif
