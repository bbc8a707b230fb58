// orvsNormEnergy*: the energy column of an utterance. orvsNormalizeInRange*: a signal stretched to a range.

#include <cfloat>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "core/integer.h"
#include "orvsr/frontend.h"
#include "primitives/memory.h"
#include "primitives/reduce.h"
#include "primitives/simd.h"

using namespace orv;

namespace {

constexpr float kNepersPerDecibel = 0.230259F;  // ln(10) / 10

template <class T>
struct Column {
  T *base;
  std::int32_t step;
  T *at(std::int32_t i) const { return base + static_cast<std::ptrdiff_t>(i) * step; }
};

template <class T>
float largest(Column<T> column, std::int32_t height, float start) {
  for (std::int32_t i = 0; i < height; ++i) {
    const auto x = static_cast<float>(load(column.at(i)));
    if (x > start) start = x;
  }
  return start;
}

// write((max - larger of x and the floor) * scale) for each x of the column.
template <class T, class Write>
void normEnergy(Column<T> column, std::int32_t height, float silenceFloor, float max, float scale,
                Write write) {
  const float floor = max - silenceFloor * kNepersPerDecibel;
  for (std::int32_t i = 0; i < height; ++i) {
    const auto x = static_cast<float>(load(column.at(i)));
    store(column.at(i), write((max - (x > floor ? x : floor)) * scale));
  }
}

void normEnergy(Column<float> column, std::int32_t height, float silenceFloor, float max, float scale) {
  normEnergy(column, height, silenceFloor, max, scale, [](float fall) { return 1 - fall; });
}

void normEnergy(Column<std::int16_t> column, std::int32_t height, float silenceFloor, float max,
                float valueAtMax, float scale) {
  normEnergy(column, height, silenceFloor, max, scale,
             [valueAtMax](float fall) { return saturateTruncated<std::int16_t>(valueAtMax - fall); });
}

struct Limits {
  float lowerRatio, upperRatio, range;

  bool valid() const { return !(lowerRatio < 0 || lowerRatio >= upperRatio || upperRatio > 1); }
};

// Values below the lower ratio of the way from min to max become 0, those above the upper ratio become range.
template <class In, class Out>
OrvStatus stretch(const In *src, Out *dst, std::int32_t len, In min, In max, const Limits &limits) {
  if (min == max) {
    for (std::int32_t i = 0; i < len; ++i) store(dst + i, Out{0});
    return orvStsDegenerateDataWrn;
  }
  const auto least = static_cast<float>(min);
  const float width = static_cast<float>(max) - least;
  const float low = least + limits.lowerRatio * width;
  const float high = limits.upperRatio * width + least;
  const float scale = limits.range / (limits.upperRatio * width - limits.lowerRatio * width);
  std::int32_t i = 0;
  if constexpr (std::is_same_v<In, float> && std::is_same_v<Out, float>)
#pragma GCC unroll 4
    for (; len - i >= 4; i += 4) {
      const simd::f32x4 above = simd::min(simd::splat4(high), simd::load4(src + i)) - simd::splat4(low);
      simd::store4(dst + i, simd::max(above, simd::splat4(0.0F)) * scale);
    }
  for (; i < len; ++i) {
    const auto x = static_cast<float>(load(src + i));
    const float above = (high < x ? high : x) - low;
    const float value = (0 < above ? above : 0) * scale;
    // Truncation without saturation: the clamp has put the value within the range.
    if constexpr (std::is_same_v<Out, float>)
      store(dst + i, value);
    else
      store(dst + i, static_cast<Out>(truncate32(value)));
  }
  return orvStsNoErr;
}

void extremes(const float *src, std::int32_t len, float *min, float *max) {
  orvsMinMax_32f(src, len, min, max);
}
void extremes(const std::int16_t *src, std::int32_t len, std::int16_t *min, std::int16_t *max) {
  std::int16_t least = load(src), most = least;
  for (std::int32_t i = 1; i < len; ++i) {
    const std::int16_t x = load(src + i);
    least = x < least ? x : least;
    most = x > most ? x : most;
  }
  *min = least;
  *max = most;
}

template <class In, class Out>
OrvStatus normalize(const In *src, Out *dst, std::int32_t len, const Limits &limits) {
  if (src == nullptr || dst == nullptr) return orvStsNullPtrErr;
  if (len < 1) return orvStsSizeErr;
  if (!limits.valid()) return orvStsBadArgErr;
  // Only where source and destination are both single is a negative range refused.
  if (std::is_same_v<In, Out> && std::is_same_v<Out, float> && limits.range < 0) return orvStsBadArgErr;
  In min, max;
  extremes(src, len, &min, &max);
  return stretch(src, dst, len, min, max, limits);
}

template <class In, class Out>
OrvStatus normalizeMinMax(const In *src, Out *dst, std::int32_t len, In min, In max, const Limits &limits) {
  if (src == nullptr || dst == nullptr) return orvStsNullPtrErr;
  if (len < 1) return orvStsSizeErr;
  if (!limits.valid()) return orvStsBadArgErr;
  if (std::is_same_v<In, Out> && std::is_same_v<Out, float> && limits.range < 0) return orvStsBadArgErr;
  if (min > max) return orvStsBadArgErr;
  return stretch(src, dst, len, min, max, limits);
}

float single(std::int32_t range) { return static_cast<float>(range); }

}  // namespace

OrvStatus orvsNormEnergy_32f(float *pSrcDst, int32_t step, int32_t height, float silenceFloor, float scale) {
  if (pSrcDst == nullptr) return orvStsNullPtrErr;
  if (step < 1 || height < 1) return orvStsSizeErr;
  const Column<float> column{pSrcDst, step};
  normEnergy(column, height, silenceFloor, largest(column, height, -FLT_MAX), scale);
  return orvStsNoErr;
}

OrvStatus orvsNormEnergy_16s(int16_t *pSrcDst, int32_t step, int32_t height, int16_t silenceFloor,
                             int16_t valueAtMax, float scale) {
  if (pSrcDst == nullptr) return orvStsNullPtrErr;
  if (step < 1 || height < 1) return orvStsSizeErr;
  const Column<std::int16_t> column{pSrcDst, step};
  normEnergy(column, height, silenceFloor, largest(column, height, -32768.0F), valueAtMax, scale);
  return orvStsNoErr;
}

OrvStatus orvsNormEnergy_RT_32f(float *pSrcDst, int32_t step, int32_t height, float silenceFloor,
                                float maxEnergy, float scale) {
  if (pSrcDst == nullptr) return orvStsNullPtrErr;
  if (step < 1 || height < 1) return orvStsSizeErr;
  normEnergy(Column<float>{pSrcDst, step}, height, silenceFloor, maxEnergy, scale);
  return orvStsNoErr;
}

OrvStatus orvsNormEnergy_RT_16s(int16_t *pSrcDst, int32_t step, int32_t height, int16_t silenceFloor,
                                int16_t maxEnergy, int16_t valueAtMax, float scale) {
  if (pSrcDst == nullptr) return orvStsNullPtrErr;
  if (step < 1 || height < 1) return orvStsSizeErr;
  normEnergy(Column<std::int16_t>{pSrcDst, step}, height, silenceFloor, maxEnergy, valueAtMax, scale);
  return orvStsNoErr;
}

OrvStatus orvsNormalizeInRange_32f(const float *pSrc, float *pDst, int32_t len, float lowerRatio,
                                   float upperRatio, float range) {
  return normalize(pSrc, pDst, len, {lowerRatio, upperRatio, range});
}

OrvStatus orvsNormalizeInRange_32f16s(const float *pSrc, int16_t *pDst, int32_t len, float lowerRatio,
                                      float upperRatio, int32_t range) {
  return normalize(pSrc, pDst, len, {lowerRatio, upperRatio, single(range)});
}

OrvStatus orvsNormalizeInRange_32f8u(const float *pSrc, uint8_t *pDst, int32_t len, float lowerRatio,
                                     float upperRatio, int32_t range) {
  return normalize(pSrc, pDst, len, {lowerRatio, upperRatio, single(range)});
}

OrvStatus orvsNormalizeInRange_16s(const int16_t *pSrc, int16_t *pDst, int32_t len, float lowerRatio,
                                   float upperRatio, int32_t range) {
  return normalize(pSrc, pDst, len, {lowerRatio, upperRatio, single(range)});
}

OrvStatus orvsNormalizeInRange_16s8u(const int16_t *pSrc, uint8_t *pDst, int32_t len, float lowerRatio,
                                     float upperRatio, int32_t range) {
  return normalize(pSrc, pDst, len, {lowerRatio, upperRatio, single(range)});
}

OrvStatus orvsNormalizeInRange_32f_I(float *pSrcDst, int32_t len, float lowerRatio, float upperRatio,
                                     float range) {
  return normalize<float>(pSrcDst, pSrcDst, len, {lowerRatio, upperRatio, range});
}

OrvStatus orvsNormalizeInRange_16s_I(int16_t *pSrcDst, int32_t len, float lowerRatio, float upperRatio,
                                     int32_t range) {
  return normalize<int16_t>(pSrcDst, pSrcDst, len, {lowerRatio, upperRatio, single(range)});
}

OrvStatus orvsNormalizeInRangeMinMax_32f(const float *pSrc, float *pDst, int32_t len, float min, float max,
                                         float lowerRatio, float upperRatio, float range) {
  return normalizeMinMax(pSrc, pDst, len, min, max, {lowerRatio, upperRatio, range});
}

OrvStatus orvsNormalizeInRangeMinMax_32f16s(const float *pSrc, int16_t *pDst, int32_t len, float min,
                                            float max, float lowerRatio, float upperRatio, int32_t range) {
  return normalizeMinMax(pSrc, pDst, len, min, max, {lowerRatio, upperRatio, single(range)});
}

OrvStatus orvsNormalizeInRangeMinMax_32f8u(const float *pSrc, uint8_t *pDst, int32_t len, float min,
                                           float max, float lowerRatio, float upperRatio, int32_t range) {
  return normalizeMinMax(pSrc, pDst, len, min, max, {lowerRatio, upperRatio, single(range)});
}

OrvStatus orvsNormalizeInRangeMinMax_16s(const int16_t *pSrc, int16_t *pDst, int32_t len, int16_t min,
                                         int16_t max, float lowerRatio, float upperRatio, int32_t range) {
  return normalizeMinMax(pSrc, pDst, len, min, max, {lowerRatio, upperRatio, single(range)});
}

OrvStatus orvsNormalizeInRangeMinMax_16s8u(const int16_t *pSrc, uint8_t *pDst, int32_t len, int16_t min,
                                           int16_t max, float lowerRatio, float upperRatio, int32_t range) {
  return normalizeMinMax(pSrc, pDst, len, min, max, {lowerRatio, upperRatio, single(range)});
}

OrvStatus orvsNormalizeInRangeMinMax_32f_I(float *pSrcDst, int32_t len, float min, float max,
                                           float lowerRatio, float upperRatio, float range) {
  return normalizeMinMax<float>(pSrcDst, pSrcDst, len, min, max, {lowerRatio, upperRatio, range});
}

OrvStatus orvsNormalizeInRangeMinMax_16s_I(int16_t *pSrcDst, int32_t len, int16_t min, int16_t max,
                                           float lowerRatio, float upperRatio, int32_t range) {
  return normalizeMinMax<int16_t>(pSrcDst, pSrcDst, len, min, max, {lowerRatio, upperRatio, single(range)});
}
