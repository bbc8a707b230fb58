#include "primitives/memory.h"

#include <bit>

namespace orv {
namespace {

template <class T>
void fill(T value, T *dst, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) store(dst + i, value);
}

template <class T>
OrvStatus copyArray(const T *src, T *dst, std::int32_t len) {
  if (const OrvStatus status = checkArrays(len, src, dst); status != orvStsNoErr) return status;
  ownsCopy_8u(reinterpret_cast<const std::uint8_t *>(src), reinterpret_cast<std::uint8_t *>(dst),
              static_cast<std::size_t>(len) * sizeof(T));
  return orvStsNoErr;
}

template <class T>
OrvStatus zeroArray(T *dst, std::int32_t len) {
  if (const OrvStatus status = checkArrays(len, dst); status != orvStsNoErr) return status;
  ownsZero_8u(reinterpret_cast<std::uint8_t *>(dst), static_cast<std::size_t>(len) * sizeof(T));
  return orvStsNoErr;
}

}  // namespace

void ownsCopy_8u(const std::uint8_t *src, std::uint8_t *dst, std::size_t bytes) {
  std::memcpy(dst, src, bytes);
}
void ownsSet_8u(std::uint8_t value, std::uint8_t *dst, std::size_t count) { std::memset(dst, value, count); }
void ownsSet_16u(std::uint16_t value, std::uint16_t *dst, std::size_t count) { fill(value, dst, count); }
void ownsSet_32s(std::int32_t value, std::int32_t *dst, std::size_t count) { fill(value, dst, count); }
void ownsSet_64s(std::int64_t value, std::int64_t *dst, std::size_t count) { fill(value, dst, count); }
void ownsZero_8u(std::uint8_t *dst, std::size_t bytes) { std::memset(dst, 0, bytes); }

OrvStatus orvsCopy_8u(const std::uint8_t *src, std::uint8_t *dst, std::int32_t len) {
  return copyArray(src, dst, len);
}
OrvStatus orvsCopy_16s(const std::int16_t *src, std::int16_t *dst, std::int32_t len) {
  return copyArray(src, dst, len);
}
OrvStatus orvsCopy_32s(const std::int32_t *src, std::int32_t *dst, std::int32_t len) {
  return copyArray(src, dst, len);
}
OrvStatus orvsCopy_32f(const float *src, float *dst, std::int32_t len) { return copyArray(src, dst, len); }
OrvStatus orvsCopy_64f(const double *src, double *dst, std::int32_t len) { return copyArray(src, dst, len); }

OrvStatus orvsMove_32f(const float *src, float *dst, std::int32_t len) {
  if (const OrvStatus status = checkArrays(len, src, dst); status != orvStsNoErr) return status;
  std::memmove(dst, src, static_cast<std::size_t>(len) * sizeof(float));
  return orvStsNoErr;
}

OrvStatus orvsSet_8u(std::uint8_t value, std::uint8_t *dst, std::int32_t len) {
  if (const OrvStatus status = checkArrays(len, dst); status != orvStsNoErr) return status;
  ownsSet_8u(value, dst, static_cast<std::size_t>(len));
  return orvStsNoErr;
}
OrvStatus orvsSet_16s(std::int16_t value, std::int16_t *dst, std::int32_t len) {
  if (const OrvStatus status = checkArrays(len, dst); status != orvStsNoErr) return status;
  ownsSet_16u(static_cast<std::uint16_t>(value), reinterpret_cast<std::uint16_t *>(dst),
              static_cast<std::size_t>(len));
  return orvStsNoErr;
}
OrvStatus orvsSet_32s(std::int32_t value, std::int32_t *dst, std::int32_t len) {
  if (const OrvStatus status = checkArrays(len, dst); status != orvStsNoErr) return status;
  ownsSet_32s(value, dst, static_cast<std::size_t>(len));
  return orvStsNoErr;
}
OrvStatus orvsSet_32f(float value, float *dst, std::int32_t len) {
  if (const OrvStatus status = checkArrays(len, dst); status != orvStsNoErr) return status;
  ownsSet_32s(std::bit_cast<std::int32_t>(value), reinterpret_cast<std::int32_t *>(dst),
              static_cast<std::size_t>(len));
  return orvStsNoErr;
}
OrvStatus orvsSet_64f(double value, double *dst, std::int32_t len) {
  if (const OrvStatus status = checkArrays(len, dst); status != orvStsNoErr) return status;
  ownsSet_64s(std::bit_cast<std::int64_t>(value), reinterpret_cast<std::int64_t *>(dst),
              static_cast<std::size_t>(len));
  return orvStsNoErr;
}

OrvStatus orvsZero_8u(std::uint8_t *dst, std::int32_t len) { return zeroArray(dst, len); }
OrvStatus orvsZero_16s(std::int16_t *dst, std::int32_t len) { return zeroArray(dst, len); }
OrvStatus orvsZero_32f(float *dst, std::int32_t len) { return zeroArray(dst, len); }
OrvStatus orvsZero_64f(double *dst, std::int32_t len) { return zeroArray(dst, len); }

}  // namespace orv
