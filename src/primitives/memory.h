// Reading, writing and moving array elements, at any address.

#ifndef ORV_PRIMITIVES_MEMORY_H
#define ORV_PRIMITIVES_MEMORY_H

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "orvsr/types.h"

namespace orv {

// One element, which may lie at an address that is no multiple of its size.
template <class T>
inline T load(const T *p) {
  T value;
  std::memcpy(&value, p, sizeof value);
  return value;
}

template <class T>
inline void store(T *p, T value) {
  std::memcpy(p, &value, sizeof value);
}

inline std::uintptr_t addressOf(const void *p) { return reinterpret_cast<std::uintptr_t>(p); }

inline bool isAligned(const void *p, std::size_t bytes) { return addressOf(p) % bytes == 0; }

// How many of len elements are taken one by one before p stands on a 16-byte boundary: all of them if it
// never will. This decides the grouping of sums, and so their last bits.
template <class T>
inline std::int32_t alignedHead(const T *p, std::int32_t len) {
  if (!isAligned(p, sizeof(T))) return len;
  const auto head = static_cast<std::int32_t>((0 - addressOf(p)) % 16 / sizeof(T));
  return head < len ? head : len;
}

// Null pointers first, then the length: the order of every routine of this folder.
inline OrvStatus checkArrays(std::int32_t len, const void *a, const void *b = "", const void *c = "",
                             const void *d = "") {
  if (a == nullptr || b == nullptr || c == nullptr || d == nullptr) return orvStsNullPtrErr;
  if (len < 1) return orvStsSizeErr;
  return orvStsNoErr;
}

// Bulk work on bytes and elements, without checks.
void ownsCopy_8u(const std::uint8_t *src, std::uint8_t *dst, std::size_t bytes);
void ownsSet_8u(std::uint8_t value, std::uint8_t *dst, std::size_t count);
void ownsSet_16u(std::uint16_t value, std::uint16_t *dst, std::size_t count);
void ownsSet_32s(std::int32_t value, std::int32_t *dst, std::size_t count);
void ownsSet_64s(std::int64_t value, std::int64_t *dst, std::size_t count);
void ownsZero_8u(std::uint8_t *dst, std::size_t bytes);

// dst[i] = src[i]; the arrays do not overlap.
OrvStatus orvsCopy_8u(const std::uint8_t *src, std::uint8_t *dst, std::int32_t len);
OrvStatus orvsCopy_16s(const std::int16_t *src, std::int16_t *dst, std::int32_t len);
OrvStatus orvsCopy_32s(const std::int32_t *src, std::int32_t *dst, std::int32_t len);
OrvStatus orvsCopy_32f(const float *src, float *dst, std::int32_t len);
OrvStatus orvsCopy_64f(const double *src, double *dst, std::int32_t len);

// dst[i] = src[i], right for any overlap.
OrvStatus orvsMove_32f(const float *src, float *dst, std::int32_t len);

// dst[i] = value.
OrvStatus orvsSet_8u(std::uint8_t value, std::uint8_t *dst, std::int32_t len);
OrvStatus orvsSet_16s(std::int16_t value, std::int16_t *dst, std::int32_t len);
OrvStatus orvsSet_32s(std::int32_t value, std::int32_t *dst, std::int32_t len);
OrvStatus orvsSet_32f(float value, float *dst, std::int32_t len);
OrvStatus orvsSet_64f(double value, double *dst, std::int32_t len);

// All bytes 0.
OrvStatus orvsZero_8u(std::uint8_t *dst, std::int32_t len);
OrvStatus orvsZero_16s(std::int16_t *dst, std::int32_t len);
OrvStatus orvsZero_32f(float *dst, std::int32_t len);
OrvStatus orvsZero_64f(double *dst, std::int32_t len);

}  // namespace orv

#endif
