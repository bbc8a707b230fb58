#include "primitives/fft/sine.h"

#include <cmath>

namespace orv::fft {

void buildSine(float *sine, std::int32_t order) {
  const std::int32_t len = std::int32_t{1} << order;
  const double step = 6.2831853071795862 / len;
  const std::int32_t quarter = len / 4;
  for (std::int32_t i = 0; i <= len / 8; ++i) sine[i] = static_cast<float>(std::sin(i * step));
  for (std::int32_t i = len / 8 + 1; i <= quarter; ++i)
    sine[i] = static_cast<float>(std::cos((quarter - i) * step));
}

}  // namespace orv::fft
