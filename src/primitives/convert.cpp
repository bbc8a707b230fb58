#include "primitives/convert.h"

#include <algorithm>
#include <array>
#include <bit>
#include <limits>

#include "core/integer.h"
#include "core/scale.h"
#include "primitives/memory.h"

namespace orv {
namespace {

// 2^-scaleFactor built in the exponent field; the caller's clamp keeps it a normal number.
float singlePower(std::int32_t scaleFactor) {
  return std::bit_cast<float>(static_cast<std::uint32_t>(127 - scaleFactor) << 23);
}
double doublePower(std::int32_t scaleFactor) {
  return std::bit_cast<double>(static_cast<std::uint64_t>(1023 - scaleFactor) << 52);
}

template <class From, class To>
OrvStatus convertScaled(const From *src, To *dst, std::int32_t len, std::int32_t scaleFactor, To power) {
  if (const OrvStatus status = checkArrays(len, src, dst); status != orvStsNoErr) return status;
  if (scaleFactor == 0) {
    for (std::int32_t i = 0; i < len; ++i) store(dst + i, static_cast<To>(load(src + i)));
  } else {
    for (std::int32_t i = 0; i < len; ++i) store(dst + i, static_cast<To>(load(src + i)) * power);
  }
  return orvStsNoErr;
}

// Nearest, ties to even: the half is added, and a sum that lands exactly on an odd integer came from a tie.
double nearestEven(double v) {
  const double t = v >= 0.0 ? v + 0.5 : v - 0.5;
  auto k = static_cast<double>(static_cast<std::int64_t>(t));
  if (static_cast<std::int64_t>(k) % 2 != 0 && t == k) k -= v >= 0.0 ? 1.0 : -1.0;
  return k;
}

// The value is compared with the limits of the type before it is rounded, so only what fits is converted; the
// last clamp catches a value within half a unit of the limit.
template <class Int, class From>
Int roundValue(From source, double scale, std::int32_t mode, bool unscaled) {
  constexpr double most = std::numeric_limits<Int>::max();
  constexpr double least = std::numeric_limits<Int>::min();
  const double v = unscaled ? static_cast<double>(source) : static_cast<double>(source) * scale;
  if (v > most) return std::numeric_limits<Int>::max();
  if (v < least) return std::numeric_limits<Int>::min();
  if (!(v == v)) return 0;
  double rounded = v;
  if (mode == kRoundNearestEven) {
    rounded = nearestEven(v);
  } else if (mode != kRoundTowardZero) {
    // Unscaled 32f to 16s adds its half in single precision, and only this form does: 0.49999997f gives 1
    // here and 0 with any other scale factor. It is kept because callers' data depend on it.
    if (std::is_same_v<From, float> && std::is_same_v<Int, std::int16_t> && unscaled) {
      const auto single = static_cast<float>(source);
      rounded = single >= 0.0F ? single + 0.5F : single - 0.5F;
    } else {
      rounded = v >= 0.0 ? v + 0.5 : v - 0.5;
    }
  }
  return static_cast<Int>(truncate32(std::clamp(rounded, least, most)));
}

template <class From, class Int>
OrvStatus convertRounded(const From *src, Int *dst, std::int32_t len, std::int32_t mode,
                         std::int32_t scaleFactor) {
  if (const OrvStatus status = checkArrays(len, src, dst); status != orvStsNoErr) return status;
  const double scale = GetScale_32s64f(scaleFactor);
  for (std::int32_t i = 0; i < len; ++i)
    store(dst + i, roundValue<Int>(load(src + i), scale, mode, scaleFactor == 0));
  return orvStsNoErr;
}

constexpr auto kByteAsFloat = [] {
  std::array<float, 256> table{};
  for (std::size_t i = 0; i < table.size(); ++i) table[i] = static_cast<float>(i);
  return table;
}();

}  // namespace

OrvStatus orvsConvert_16s32f(const std::int16_t *src, float *dst, std::int32_t len) {
  return convertScaled(src, dst, len, 0, 1.0F);
}

OrvStatus orvsConvert_8u32f(const std::uint8_t *src, float *dst, std::int32_t len) {
  if (const OrvStatus status = checkArrays(len, src, dst); status != orvStsNoErr) return status;
  for (std::int32_t i = 0; i < len; ++i) store(dst + i, kByteAsFloat[src[i]]);
  return orvStsNoErr;
}

OrvStatus orvsConvert_64f32f(const double *src, float *dst, std::int32_t len) {
  if (const OrvStatus status = checkArrays(len, src, dst); status != orvStsNoErr) return status;
  constexpr float most = std::numeric_limits<float>::max();
  for (std::int32_t i = 0; i < len; ++i) {
    const double v = load(src + i);
    store(dst + i, v >= static_cast<double>(most)    ? most
                   : v <= -static_cast<double>(most) ? -most
                                                     : static_cast<float>(v));
  }
  return orvStsNoErr;
}

OrvStatus orvsConvert_16s32f_Sfs(const std::int16_t *src, float *dst, std::int32_t len,
                                 std::int32_t scaleFactor) {
  return convertScaled(src, dst, len, scaleFactor, singlePower(std::clamp(scaleFactor, -112, 126)));
}

OrvStatus orvsConvert_32s32f_Sfs(const std::int32_t *src, float *dst, std::int32_t len,
                                 std::int32_t scaleFactor) {
  if (const OrvStatus status = checkArrays(len, src, dst); status != orvStsNoErr) return status;
  // Elements are of one size, so moving the integers first makes every overlap harmless.
  std::memmove(dst, src, static_cast<std::size_t>(len) * sizeof(float));
  const auto *moved = reinterpret_cast<const std::int32_t *>(dst);
  return convertScaled(moved, dst, len, scaleFactor, singlePower(std::clamp(scaleFactor, -96, 126)));
}

OrvStatus orvsConvert_16s64f_Sfs(const std::int16_t *src, double *dst, std::int32_t len,
                                 std::int32_t scaleFactor) {
  return convertScaled(src, dst, len, scaleFactor, doublePower(std::clamp(scaleFactor, -1008, 1022)));
}

OrvStatus orvsConvert_32s16s_Sfs(const std::int32_t *src, std::int16_t *dst, std::int32_t len,
                                 std::int32_t scaleFactor) {
  if (const OrvStatus status = checkArrays(len, src, dst); status != orvStsNoErr) return status;
  const int s = std::clamp(scaleFactor, -15, 31);
  for (std::int32_t i = 0; i < len; ++i) {
    std::int64_t v = load(src + i);
    if (s > 0) v = (v + (std::int64_t{1} << (s - 1)) - 1 + ((v >> s) & 1)) >> s;
    if (s < 0) v *= std::int64_t{1} << -s;
    store(dst + i, sat16(v));
  }
  return orvStsNoErr;
}

OrvStatus orvsConvert_32f16s_Sfs(const float *src, std::int16_t *dst, std::int32_t len,
                                 std::int32_t roundingMode, std::int32_t scaleFactor) {
  return convertRounded(src, dst, len, roundingMode, scaleFactor);
}
OrvStatus orvsConvert_32f32s_Sfs(const float *src, std::int32_t *dst, std::int32_t len,
                                 std::int32_t roundingMode, std::int32_t scaleFactor) {
  return convertRounded(src, dst, len, roundingMode, scaleFactor);
}
OrvStatus orvsConvert_64f32s_Sfs(const double *src, std::int32_t *dst, std::int32_t len,
                                 std::int32_t roundingMode, std::int32_t scaleFactor) {
  return convertRounded(src, dst, len, roundingMode, scaleFactor);
}

}  // namespace orv
