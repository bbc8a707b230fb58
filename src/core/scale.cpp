#include "core/scale.h"

#include <algorithm>
#include <array>
#include <limits>

namespace orv {
namespace {

constexpr double powerOfTwo(int exponent) {
  double power = 1.0;
  for (; exponent > 0; --exponent) power *= 2.0;
  for (; exponent < 0; ++exponent) power *= 0.5;
  return power;
}

constexpr std::int32_t kLeastFactor = -128;
constexpr std::int32_t kMostFactor = 150;

// Entry i is 2^-(i - 128); infinity stands at the low end and zero at the high end.
constexpr auto intfTable = [] {
  std::array<float, kMostFactor - kLeastFactor + 1> table{};
  table.front() = std::numeric_limits<float>::infinity();
  for (int factor = kLeastFactor + 1; factor < kMostFactor; ++factor)
    table[static_cast<std::size_t>(factor - kLeastFactor)] = static_cast<float>(powerOfTwo(-factor));
  table.back() = 0.0F;
  return table;
}();

constexpr std::int32_t kWideOffset = 1087;

// Row k is 2^(1087 - 64 k), with infinity in row 0.
constexpr auto intdTable = [] {
  std::array<double, 2 * kWideOffset / 64 + 1> table{};
  table.front() = std::numeric_limits<double>::infinity();
  for (std::size_t k = 1; k < table.size(); ++k)
    table[k] = powerOfTwo(kWideOffset - 64 * static_cast<int>(k));
  return table;
}();

}  // namespace

float GetScale_32s32f(std::int32_t scaleFactor) {
  const std::int32_t factor = std::clamp(scaleFactor, kLeastFactor, kMostFactor);
  return intfTable[static_cast<std::size_t>(factor - kLeastFactor)];
}

double GetScale_32s64f(std::int32_t scaleFactor) {
  const auto y = static_cast<std::size_t>(kWideOffset + std::clamp(scaleFactor, -1024, kWideOffset));
  return static_cast<double>(intfTable[y % 64 + 128]) * intdTable[y / 64];
}

}  // namespace orv
