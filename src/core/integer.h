// Integer arithmetic that wraps, shifts or saturates, free of undefined behaviour.

#ifndef ORV_CORE_INTEGER_H
#define ORV_CORE_INTEGER_H

#include <emmintrin.h>

#include <algorithm>
#include <cstdint>
#include <limits>

namespace orv {

constexpr std::int16_t wrap16(std::int64_t v) { return static_cast<std::int16_t>(v); }
constexpr std::int32_t wrap32(std::int64_t v) { return static_cast<std::int32_t>(v); }

template <class Int>
constexpr Int saturate(std::int64_t v) {
  return static_cast<Int>(
      std::clamp<std::int64_t>(v, std::numeric_limits<Int>::min(), std::numeric_limits<Int>::max()));
}
constexpr std::int16_t sat16(std::int64_t v) { return saturate<std::int16_t>(v); }
constexpr std::int32_t sat32(std::int64_t v) { return saturate<std::int32_t>(v); }

constexpr std::int64_t addWrap64(std::int64_t a, std::int64_t b) {
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) + static_cast<std::uint64_t>(b));
}
constexpr std::int64_t subWrap64(std::int64_t a, std::int64_t b) {
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) - static_cast<std::uint64_t>(b));
}
constexpr std::int32_t addWrap32(std::int32_t a, std::int32_t b) { return wrap32(std::int64_t{a} + b); }
constexpr std::int32_t subWrap32(std::int32_t a, std::int32_t b) { return wrap32(std::int64_t{a} - b); }
constexpr std::int32_t mulWrap32(std::int32_t a, std::int32_t b) { return wrap32(std::int64_t{a} * b); }

// Shift to the left that drops what leaves the word. Only the low bits of the count take effect, as in the
// processor's own shift.
constexpr std::int32_t shiftLeft32(std::int32_t v, unsigned count) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(v) << (count % 32));
}
constexpr std::int64_t shiftLeft64(std::int64_t v, unsigned count) {
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(v) << (count % 64));
}

// The shift of a wide sum by a scale factor: right, rounding towards minus infinity, for a positive factor;
// left for a negative one. Only the low six bits of the count take effect, so a count of 64 leaves the sum as
// it is; this is what every processor does with such a count, and callers see it.
constexpr std::int64_t shiftSum(std::int64_t sum, std::int64_t factor) {
  return factor > 0 ? sum >> (factor % 64) : shiftLeft64(sum, static_cast<unsigned>(-factor % 64));
}

// Truncation toward zero to 32 bits. What does not fit, a NaN included, gives the most negative number, as
// the processor's instruction does.
inline std::int32_t truncate32(double v) { return _mm_cvttsd_si32(_mm_set_sd(v)); }

// Comparison with the limits of the type, then truncation toward zero.
template <class Int>
inline Int saturateTruncated(double v) {
  constexpr double most = std::numeric_limits<Int>::max();
  constexpr double least = std::numeric_limits<Int>::min();
  if (v > most) return std::numeric_limits<Int>::max();
  if (v < least) return std::numeric_limits<Int>::min();
  return static_cast<Int>(truncate32(v));
}

}  // namespace orv

#endif
