// Squared distances of one vector to four code vectors at once.

#ifndef ORV_VQ_DISTANCE_H
#define ORV_VQ_DISTANCE_H

#include <cstdint>

#include "vq/codebook.h"

namespace orv::cdbk {

// With a null pointer for the weights the plain distance: multiplying by weights of one gives the same bits.
template <class T>
inline float distanceTo(const T *x, const T *y, const T *w, std::int32_t width) {
  return w == nullptr ? OwnDistanceE(x, y, width) : OwnDistance(x, y, w, width);
}

// Each of the four sums is grouped as that of distanceTo(): the same vectors are equally far apart wherever
// they meet.
template <class T>
inline simd::f32x4 distancesToFour(const T *x, const T *const (&y)[4], const T *w, std::int32_t width) {
  simd::f32x4 lanes[4] = {};
  std::int32_t k = 0;
  for (; width - k >= 4; k += 4) {
    const simd::f32x4 from = singles4(x + k);
    for (int r = 0; r < 4; ++r) {
      const simd::f32x4 d = from - singles4(y[r] + k);
      lanes[r] = lanes[r] + (w == nullptr ? d * d : d * d * singles4(w + k));
    }
  }
  simd::f32x4 sums = simd::sumLanesOfFour(lanes[0], lanes[1], lanes[2], lanes[3]);
  for (; k < width; ++k) {
    const auto single = [k](const T *p) { return static_cast<float>(load(p + k)); };
    const simd::f32x4 row = simd::pack4(single(y[0]), single(y[1]), single(y[2]), single(y[3]));
    const simd::f32x4 d = simd::splat4(single(x)) - row;
    sums = sums + (w == nullptr ? d * d : d * d * single(w));
  }
  return sums;
}

}  // namespace orv::cdbk

#endif
