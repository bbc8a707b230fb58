// Autocorrelation of a frame.

#ifndef ORV_PRIMITIVES_AUTOCORR_H
#define ORV_PRIMITIVES_AUTOCORR_H

#include <cstdint>

#include "orvsr/types.h"

namespace orv {

// dst[k] = sum over i of src[i] src[i + k] for k below both lengths, not normalised; 0 for k from srcLen on.
// Up to 599 lags are summed directly, in single; from 600 on they come from the transform of the power
// spectrum. orvStsNullPtrErr, orvStsSizeErr (a length below 1), then the statuses of the transform.
OrvStatus orvsAutoCorr_32f(const float *src, std::int32_t srcLen, float *dst, std::int32_t dstLen);

// Spectra in Pack format: the first times the conjugate of the second, stored in the second. Both may be one
// array.
OrvStatus orvsMulPackConj_32f_I(const float *src, float *srcDst, std::int32_t len);

// The direct sums for lags firstLag .. firstLag + count - 1, all below len. Every four lags are added from i
// = 0 on in step; the rest of the count are dot products.
void ownsLagSums_32f(const float *src, std::int32_t len, std::int32_t firstLag, std::int32_t count,
                     float *dst);

}  // namespace orv

#endif
