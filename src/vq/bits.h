// Indices in a stream of bits: the highest bit of an index first, the first bit of a byte its most
// significant.

#ifndef ORV_VQ_BITS_H
#define ORV_VQ_BITS_H

#include <cstdint>

namespace orv::cdbk {

// An index has up to 31 bits: a codebook that copies its rows holds all of them, however many they are. With
// its offset in a byte it lies within five bytes.

// Bytes outside those that hold the index are not touched; the bits of the index are 0 before.
inline void putBits(std::uint8_t *stream, std::int64_t position, std::int32_t bits, std::int32_t index) {
  std::uint8_t *bytes = stream + position / 8;
  const auto end = static_cast<std::int32_t>(position % 8) + bits;
  const std::uint32_t mask = (1U << bits) - 1;
  const std::uint64_t window = std::uint64_t{static_cast<std::uint32_t>(index) & mask} << (40 - end);
  for (std::int32_t b = 0; 8 * b < end; ++b)
    bytes[b] = static_cast<std::uint8_t>(bytes[b] | ((window >> (32 - 8 * b)) & 255));
}

inline std::int32_t getBits(const std::uint8_t *stream, std::int64_t position, std::int32_t bits) {
  const std::uint8_t *bytes = stream + position / 8;
  const auto end = static_cast<std::int32_t>(position % 8) + bits;
  const std::uint32_t mask = (1U << bits) - 1;
  std::uint64_t window = 0;
  if (bits > 0)
    for (std::int32_t b = 0; 8 * b < end; ++b) window |= std::uint64_t{bytes[b]} << (32 - 8 * b);
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(window >> (40 - end)) & mask);
}

}  // namespace orv::cdbk

#endif
