#include "primitives/special.h"

#include <bit>
#include <cstdint>

namespace orv {

constexpr double orvConstantOfNAN_64f = std::bit_cast<double>(std::uint64_t{0xFFF8000000000000});
constexpr double orvConstantOfINF_64f = std::bit_cast<double>(std::uint64_t{0x7FF0000000000000});
constexpr double orvConstantOfINF_NEG_64f = std::bit_cast<double>(std::uint64_t{0xFFF0000000000000});
constexpr float orvConstantOfNAN_32f = std::bit_cast<float>(std::uint32_t{0xFFC00000});
constexpr float orvConstantOfINF_32f = std::bit_cast<float>(std::uint32_t{0x7F800000});
constexpr float orvConstantOfINF_NEG_32f = std::bit_cast<float>(std::uint32_t{0xFF800000});

}  // namespace orv
