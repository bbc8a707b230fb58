// Vectors in blocks of eight, so that eight distances are formed at once.

#ifndef ORV_VQ_BLOCKS_H
#define ORV_VQ_BLOCKS_H

#include <cstdint>

#include "primitives/simd.h"

namespace orv::cdbk {

constexpr std::int32_t kBlock = 8;

constexpr std::int64_t blocksOf(std::int64_t n) { return (n + kBlock - 1) / kBlock; }
constexpr std::int64_t roundUpToBlock(std::int64_t n) { return blocksOf(n) * kBlock; }

// Vector i begins at lane i % 8 of block i / 8; its elements are eight apart.
inline float *inBlock(float *blocks, std::int64_t i, std::int32_t width) {
  return blocks + i / kBlock * width * kBlock + i % kBlock;
}

inline simd::f32x8 load8(const float *p) { return {simd::load4(p), simd::load4(p + 4)}; }
inline void store8(float *p, simd::f32x8 a) {
  simd::store4(p, a.low);
  simd::store4(p + 4, a.high);
}
inline simd::f32x8 splat8(float a) { return {simd::splat4(a), simd::splat4(a)}; }
inline simd::f32x8 min(simd::f32x8 a, simd::f32x8 b) {
  return {simd::min(a.low, b.low), simd::min(a.high, b.high)};
}
inline simd::f32x8 max(simd::f32x8 a, simd::f32x8 b) {
  return {simd::max(a.low, b.low), simd::max(a.high, b.high)};
}
inline simd::f32x8 select(simd::f32x8 mask, simd::f32x8 a, simd::f32x8 b) {
  return {simd::select(mask.low, a.low, b.low), simd::select(mask.high, a.high, b.high)};
}
inline simd::f32x8 operator<(simd::f32x8 a, simd::f32x8 b) { return {a.low < b.low, a.high < b.high}; }
inline simd::f32x8 operator==(simd::f32x8 a, simd::f32x8 b) { return {a.low == b.low, a.high == b.high}; }
inline int signs(simd::f32x8 a) { return simd::signs(a.low) | simd::signs(a.high) << 4; }

template <bool weighted>
inline simd::f32x8 term(const float *elements, const float *v, const float *w, std::int32_t k) {
  const simd::f32x8 d = load8(elements) - splat8(v[k]);
  if constexpr (weighted) {
    return d * d * w[k];
  } else {
    return d * d;
  }
}

// Distances of a vector to the eight of a block, each summed element by element.
template <bool weighted>
inline simd::f32x8 distances(const float *block, const float *v, const float *w, std::int32_t width) {
  simd::f32x8 sums = splat8(0.0F);
  for (std::int32_t k = 0; k < width; ++k, block += kBlock) sums = sums + term<weighted>(block, v, w, k);
  return sums;
}

// The same, but given up where the sums of some of the elements have reached all limits: the distances are
// not below them either, since a sum only grows. True if they were formed.
template <bool weighted>
inline bool distancesWithin(simd::f32x8 limits, const float *block, const float *v, const float *w,
                            std::int32_t width, simd::f32x8 *formed) {
  constexpr std::int32_t kStep = 4;
  std::int32_t k = width < 2 * kStep ? width : width / 2;
  simd::f32x8 sums = distances<weighted>(block, v, w, k);
  while (k < width) {
    if (signs(sums < limits) == 0) return false;
    const std::int32_t end = width - k < 2 * kStep ? width : k + kStep;
    for (; k < end; ++k) sums = sums + term<weighted>(block + std::int64_t{k} * kBlock, v, w, k);
  }
  *formed = sums;
  return true;
}

// One distance, to the same bits.
template <bool weighted>
inline float distance(const float *inBlock, const float *v, const float *w, std::int32_t width) {
  float sum = 0.0F;
  for (std::int32_t k = 0; k < width; ++k, inBlock += kBlock) {
    const float d = *inBlock - v[k];
    if constexpr (weighted) {
      sum += d * d * w[k];
    } else {
      sum += d * d;
    }
  }
  return sum;
}

}  // namespace orv::cdbk

#endif
