#include "primitives/reduce.h"

#include <algorithm>
#include <limits>

#include "core/integer.h"
#include "primitives/memory.h"
#include "primitives/simd.h"

namespace orv {
namespace {

// 2^-scaleFactor times an exact sum, saturated to 32 bits: shifts right round to nearest, ties to even.
std::int32_t scaleSum(std::int64_t sum, std::int32_t scaleFactor) {
  if (scaleFactor > 0) {
    const int s = std::min(scaleFactor, 63);
    return sat32((sum + (std::int64_t{1} << (s - 1)) - 1 + ((sum >> s) & 1)) >> s);
  }
  const std::int64_t value = sat32(sum);
  if (scaleFactor < -31) return value > 0 ? INT32_MAX : value < 0 ? INT32_MIN : 0;
  return sat32(value * (std::int64_t{1} << -scaleFactor));
}

struct DotSingle {
  using Lanes = simd::f32x8;
  static Lanes first(float sum) { return {simd::firstLane4(sum), simd::splat4(0.0F)}; }
  static Lanes load(const float *p) { return {simd::load4(p), simd::load4(p + 4)}; }
};

struct DotDouble {
  using Lanes = simd::f64x4;
  static Lanes first(double sum) { return {simd::firstLane2(sum), simd::splat2(0.0)}; }
  static Lanes load(const double *p) { return {simd::load2(p), simd::load2(p + 2)}; }
};

template <class Form, class T>
OrvStatus dotProduct(const T *a, const T *b, std::int32_t len, T *result) {
  if (const OrvStatus status = checkArrays(len, a, b, result); status != orvStsNoErr) return status;
  constexpr int lanes = Form::Lanes::lanes;
  T sum = 0;
  std::int32_t i = 0;
  const auto serial = [&](std::int32_t end) {
    for (; i < end; ++i) sum += load(a + i) * load(b + i);
  };
  serial(alignedHead(b, len));
  if (len - i >= 8) {
    auto lanesSum = Form::first(sum);
    for (; len - i >= 8; i += 8)
      for (int part = 0; part < 8; part += lanes)
        lanesSum = lanesSum + Form::load(a + i + part) * Form::load(b + i + part);
    sum = sumLanes(lanesSum);
  }
  serial(len);
  store(result, sum);
  return orvStsNoErr;
}

std::int64_t exactDotProduct(const std::int16_t *a, const std::int16_t *b, std::int32_t len) {
  // Two products at a time fit 32 bits but for four times -32768, which comes out as -2^31. No other pair
  // reaches that value, so counted from the least other pair upwards every sum is an unsigned 32-bit number.
  constexpr std::int32_t least = -2 * 32768 * 32767;
  const __m128i bias = _mm_set1_epi32(-least);
  const __m128i zero = _mm_setzero_si128();
  __m128i sums = zero;
  std::int32_t i = 0;
  for (; len - i >= 8; i += 8) {
    const __m128i x = _mm_loadu_si128(reinterpret_cast<const __m128i *>(a + i));
    const __m128i y = _mm_loadu_si128(reinterpret_cast<const __m128i *>(b + i));
    const __m128i pairs = _mm_add_epi32(_mm_madd_epi16(x, y), bias);
    sums = _mm_add_epi64(sums, _mm_unpacklo_epi32(pairs, zero));
    sums = _mm_add_epi64(sums, _mm_unpackhi_epi32(pairs, zero));
  }
  std::int64_t lanes[2];
  _mm_storeu_si128(reinterpret_cast<__m128i *>(lanes), sums);
  std::int64_t sum = lanes[0] + lanes[1] + std::int64_t{least} * (i / 2);
  for (; i < len; ++i) sum += std::int64_t{load(a + i)} * load(b + i);
  return sum;
}

struct Greater {
  template <class V>
  static V extreme(V a, V b) {
    return max(a, b);
  }
  static float extreme(float a, float b) { return a > b ? a : b; }
  static double extreme(double a, double b) { return a > b ? a : b; }
};

struct Less {
  template <class V>
  static V extreme(V a, V b) {
    return min(a, b);
  }
  static float extreme(float a, float b) { return a < b ? a : b; }
  static double extreme(double a, double b) { return a < b ? a : b; }
};

inline simd::f32x4 loadLanes(const float *p) { return simd::load4(p); }
inline simd::f64x2 loadLanes(const double *p) { return simd::load2(p); }

template <class Order, class Lanes, class T>
T extremeOfLanes(Lanes low, Lanes high, T best) {
  const Lanes both = Order::extreme(low, high);
  T each[Lanes::lanes];
  std::memcpy(each, &both.v, sizeof each);
  for (const T v : each) best = Order::extreme(best, v);
  return best;
}

template <class Order, class T>
T extremeOf(const T *src, std::int32_t len) {
  using Lanes = decltype(loadLanes(src));
  constexpr int lanes = Lanes::lanes;
  T best = load(src);
  std::int32_t i = 0;
  if (len >= 2 * lanes) {
    Lanes low = loadLanes(src);
    Lanes high = loadLanes(src + lanes);
    for (i = 2 * lanes; len - i >= 2 * lanes; i += 2 * lanes) {
      low = Order::extreme(low, loadLanes(src + i));
      high = Order::extreme(high, loadLanes(src + i + lanes));
    }
    best = extremeOfLanes<Order>(low, high, best);
  }
  for (; i < len; ++i) best = Order::extreme(best, load(src + i));
  return best;
}

template <class Order, class T>
OrvStatus extreme(const T *src, std::int32_t len, T *result) {
  if (const OrvStatus status = checkArrays(len, src, result); status != orvStsNoErr) return status;
  store(result, extremeOf<Order>(src, len));
  return orvStsNoErr;
}

template <class Order, class T>
OrvStatus extremeIndex(const T *src, std::int32_t len, T *result, std::int32_t *index) {
  if (const OrvStatus status = checkArrays(len, src, result); status != orvStsNoErr) return status;
  const T best = extremeOf<Order>(src, len);
  std::int32_t i = 0;
  while (i < len - 1 && load(src + i) != best) ++i;
  store(result, load(src + i));
  if (index != nullptr) store(index, i);
  return orvStsNoErr;
}

}  // namespace

OrvStatus orvsSum_32f(const float *src, std::int32_t len, float *sum) {
  using namespace simd;
  if (const OrvStatus status = checkArrays(len, src, sum); status != orvStsNoErr) return status;
  f64x4 lanes{splat2(0.0), splat2(0.0)};
  std::int32_t i = 0;
  for (; len - i >= 4; i += 4) {
    const f32x4 four = load4(src + i);
    lanes = lanes + f64x4{widenLow(four), widenHigh(four)};
  }
  double total = sumLanes(lanes);
  for (; i < len; ++i) total += static_cast<double>(load(src + i));
  store(sum, static_cast<float>(total));
  return orvStsNoErr;
}

OrvStatus orvsSum_16s32s_Sfs(const std::int16_t *src, std::int32_t len, std::int32_t *sum,
                             std::int32_t scaleFactor) {
  if (const OrvStatus status = checkArrays(len, src, sum); status != orvStsNoErr) return status;
  // 65536 elements of 16 bits cannot leave 32 bits: each chunk is summed there and added to the wide total.
  constexpr std::int32_t chunk = 65536;
  std::int64_t total = 0;
  for (std::int32_t begin = 0; begin < len;) {
    const std::int32_t end = len - begin > chunk ? begin + chunk : len;
    std::int32_t partial = 0;
    for (; begin < end; ++begin) partial += load(src + begin);
    total += partial;
  }
  store(sum, scaleFactor > 48 ? 0 : scaleSum(total, scaleFactor));
  return orvStsNoErr;
}

OrvStatus orvsSum_32s_Sfs(const std::int32_t *src, std::int32_t len, std::int32_t *sum,
                          std::int32_t scaleFactor) {
  if (const OrvStatus status = checkArrays(len, src, sum); status != orvStsNoErr) return status;
  std::int64_t total = 0;
  for (std::int32_t i = 0; i < len; ++i) total += load(src + i);
  store(sum, scaleSum(total, scaleFactor));
  return orvStsNoErr;
}

OrvStatus orvsDotProd_32f(const float *a, const float *b, std::int32_t len, float *result) {
  return dotProduct<DotSingle>(a, b, len, result);
}
OrvStatus orvsDotProd_64f(const double *a, const double *b, std::int32_t len, double *result) {
  return dotProduct<DotDouble>(a, b, len, result);
}

OrvStatus orvsDotProd_32f64f(const float *a, const float *b, std::int32_t len, double *result) {
  using namespace simd;
  if (const OrvStatus status = checkArrays(len, a, b, result); status != orvStsNoErr) return status;
  f64x4 lanes{splat2(0.0), splat2(0.0)};
  std::int32_t i = 0;
  for (; len - i >= 8; i += 8)
    for (int part = 0; part < 8; part += 4) {
      const f32x4 x = load4(a + i + part);
      const f32x4 y = load4(b + i + part);
      lanes = lanes + f64x4{widenLow(x), widenHigh(x)} * f64x4{widenLow(y), widenHigh(y)};
    }
  double sum = sumLanes(lanes);
  for (; i < len; ++i) sum += static_cast<double>(load(a + i)) * static_cast<double>(load(b + i));
  store(result, sum);
  return orvStsNoErr;
}

OrvStatus orvsDotProd_16s64s(const std::int16_t *a, const std::int16_t *b, std::int32_t len,
                             std::int64_t *result) {
  if (const OrvStatus status = checkArrays(len, a, b, result); status != orvStsNoErr) return status;
  store(result, exactDotProduct(a, b, len));
  return orvStsNoErr;
}
OrvStatus orvsDotProd_16s32f(const std::int16_t *a, const std::int16_t *b, std::int32_t len, float *result) {
  if (const OrvStatus status = checkArrays(len, a, b, result); status != orvStsNoErr) return status;
  store(result, static_cast<float>(exactDotProduct(a, b, len)));
  return orvStsNoErr;
}

OrvStatus orvsMax_32f(const float *src, std::int32_t len, float *max) {
  return extreme<Greater>(src, len, max);
}
OrvStatus orvsMax_64f(const double *src, std::int32_t len, double *max) {
  return extreme<Greater>(src, len, max);
}
OrvStatus orvsMin_32f(const float *src, std::int32_t len, float *min) { return extreme<Less>(src, len, min); }
OrvStatus orvsMin_64f(const double *src, std::int32_t len, double *min) {
  return extreme<Less>(src, len, min);
}

OrvStatus orvsMinMax_32f(const float *src, std::int32_t len, float *min, float *max) {
  if (const OrvStatus status = checkArrays(len, src, min, max); status != orvStsNoErr) return status;
  float least = load(src), most = least;
  std::int32_t i = 0;
  if (len >= 8) {
    simd::f32x4 low[2] = {simd::load4(src), simd::load4(src + 4)}, high[2] = {low[0], low[1]};
    for (i = 8; len - i >= 8; i += 8)
      for (int k = 0; k < 2; ++k) {
        const simd::f32x4 v = simd::load4(src + i + 4 * k);
        low[k] = Less::extreme(low[k], v);
        high[k] = Greater::extreme(high[k], v);
      }
    least = extremeOfLanes<Less>(low[0], low[1], least);
    most = extremeOfLanes<Greater>(high[0], high[1], most);
  }
  for (; i < len; ++i) {
    least = Less::extreme(least, load(src + i));
    most = Greater::extreme(most, load(src + i));
  }
  store(min, least);
  store(max, most);
  return orvStsNoErr;
}

OrvStatus orvsMaxIndx_32f(const float *src, std::int32_t len, float *max, std::int32_t *index) {
  return extremeIndex<Greater>(src, len, max, index);
}
OrvStatus orvsMaxIndx_64f(const double *src, std::int32_t len, double *max, std::int32_t *index) {
  return extremeIndex<Greater>(src, len, max, index);
}
OrvStatus orvsMinIndx_32f(const float *src, std::int32_t len, float *min, std::int32_t *index) {
  return extremeIndex<Less>(src, len, min, index);
}

}  // namespace orv
