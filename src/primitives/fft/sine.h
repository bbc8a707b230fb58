// Sines of the first quarter turn, and the points of the unit circle read from them.

#ifndef ORV_PRIMITIVES_FFT_SINE_H
#define ORV_PRIMITIVES_FFT_SINE_H

#include <cstdint>

namespace orv::fft {

// sin(2 pi i / 1024), i = 0..256.
extern const float fft_fix_twiddle_table_32f[257];

// sin(2 pi i / 2^order), i = 0 .. 2^order / 4.
void buildSine(float *sine, std::int32_t order);

struct Twiddle {
  float re, im;
};

// exp(-2 pi i index / 2^order) for an order up to that of the sine table: a quadrant and an entry, no
// trigonometric call.
class UnitCircle {
 public:
  constexpr UnitCircle(const float *sine, std::int32_t sineOrder) : sine_(sine), order_(sineOrder) {}

  constexpr Twiddle at(std::int64_t index, std::int32_t order) const {
    const std::int64_t quarter = std::int64_t{1} << (order_ - 2);
    const std::int64_t turn = (index << (order_ - order)) & (4 * quarter - 1);
    const std::int64_t within = turn & (quarter - 1);
    const float s = sine_[within];
    const float c = sine_[quarter - within];
    switch (turn / quarter) {
      case 0:
        return {c, -s};
      case 1:
        return {-s, -c};
      case 2:
        return {-c, s};
      default:
        return {s, c};
    }
  }

 private:
  const float *sine_;
  std::int32_t order_;
};

}  // namespace orv::fft

#endif
