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

// The nearest single values where all doubles within the slack have the same, which is what the library's
// sine of the angle itself then has too.
bool settled(f64x2 v) {
  const f64x2 slack = simd::splat2(kSlack);
  return simd::signs(simd::narrow(v - slack, v + slack) == simd::narrow(v, v)) == 15;
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
    for (std::int32_t i = 0; i < kBlock; i += 2) {
      const f64x2 cosine = simd::loadAligned2(within.cosine + i), sines = simd::loadAligned2(within.sine + i);
      const f64x2 rising = s * cosine + c * sines, falling = c * cosine - s * sines;
      float values[4];
      simd::store4(values, simd::narrow(rising, falling));
      const std::int32_t at = first + i;
      if (!settled(rising) || !settled(falling)) [[unlikely]]
        for (std::int32_t k = 0; k < 2; ++k) {
          values[k] = static_cast<float>(std::sin((at + k) * step));
          values[k + 2] = static_cast<float>(std::cos((at + k) * step));
        }
      for (std::int32_t k = 0; k < 2; ++k) {
        sine[at + k] = values[k];
        sine[quarter - at - k] = values[k + 2];
      }
    }
  }
  sine[eighth] = static_cast<float>(std::sin(eighth * step));
}

}  // namespace orv::fft
