#include "primitives/fft/sine.h"

#include <cmath>

#include "primitives/simd.h"

namespace orv::fft {
namespace {

using simd::f64x2;

// Angles of a block: multiples of the step below the length of the block.
constexpr std::int32_t kBlock = 64;
struct Block {
  alignas(16) double sine[kBlock], cosine[kBlock];
};

// How far a sum of products below may be from what libm gives: a few units of the 53rd bit.
constexpr double kSlack = 0x1p-48;

// Four values rounded to single precision. `doubtful` where not all doubles within the slack round alike;
// what libm gives is within it, and rounds so too.
struct Rounded {
  simd::f32x4 values, doubtful;
};
Rounded rounded(f64x2 first, f64x2 second) {
  const f64x2 slack = simd::splat2(kSlack);
  const simd::f32x4 low = simd::narrow(first - slack, second - slack);
  const simd::f32x4 high = simd::narrow(first + slack, second + slack);
  return {low, low < high};
}

}  // namespace

// The library is asked for one angle in a block, and the others follow by the addition theorems, unless the
// rounding to single leaves a doubt. The table is the same as if it had been asked for each.
void buildSine(float *sine, std::int32_t order) {
  const std::int32_t len = std::int32_t{1} << order;
  const double step = 6.2831853071795862 / len;
  const std::int32_t quarter = len / 4, eighth = len / 8;
  Block within;
  for (std::int32_t i = 0; i < kBlock; ++i) {
    within.sine[i] = std::sin(i * step);
    within.cosine[i] = std::cos(i * step);
  }
  for (std::int32_t first = 0; first < eighth; first += kBlock) {
    const f64x2 s = simd::splat2(std::sin(first * step)), c = simd::splat2(std::cos(first * step));
    for (std::int32_t i = 0; i < kBlock; i += 4) {
      f64x2 rising[2], falling[2];
      for (int k = 0; k < 2; ++k) {
        const f64x2 sines = simd::loadAligned2(within.sine + i + 2 * k);
        const f64x2 cosines = simd::loadAligned2(within.cosine + i + 2 * k);
        rising[k] = s * cosines + c * sines;
        falling[k] = c * cosines - s * sines;
      }
      const Rounded up = rounded(rising[0], rising[1]), down = rounded(falling[0], falling[1]);
      const std::int32_t at = first + i;
      simd::store4(sine + at, up.values);
      simd::store4(sine + quarter - at - 3, simd::shuffle<3, 2, 1, 0>(down.values, down.values));
      if (simd::signs(up.doubtful | down.doubtful) != 0) [[unlikely]]
        for (std::int32_t k = at; k < at + 4; ++k) {
          sine[k] = static_cast<float>(std::sin(k * step));
          sine[quarter - k] = static_cast<float>(std::cos(k * step));
        }
    }
  }
  sine[eighth] = static_cast<float>(std::sin(eighth * step));
}

}  // namespace orv::fft
