// The only place that names machine instructions: four single or two double lanes, and the pairs of them that
// sums with two accumulators are written on. Built for a wider machine a pair may become one register; the
// lanes, and the order in which they are finally added, stay the same.
//
// Loads and stores take any address.

#ifndef ORV_PRIMITIVES_SIMD_H
#define ORV_PRIMITIVES_SIMD_H

#include <emmintrin.h>

#include <cstdint>
#include <cstring>

namespace orv::simd {

struct i32x4 {
  __m128i v;
};

struct f32x4 {
  static constexpr int lanes = 4;
  __m128 v;
};

struct f64x2 {
  static constexpr int lanes = 2;
  __m128d v;
};

// --- four single lanes

inline f32x4 load4(const float *p) { return {_mm_loadu_ps(p)}; }
inline void store4(float *p, f32x4 a) { _mm_storeu_ps(p, a.v); }
// From a 16-byte boundary: an operand of arithmetic by itself, where load4() is an instruction of its own.
inline f32x4 loadAligned4(const float *p) { return {_mm_load_ps(p)}; }
inline void storeAligned4(float *p, f32x4 a) { _mm_store_ps(p, a.v); }
inline f32x4 splat4(float a) { return {_mm_set1_ps(a)}; }
inline f32x4 firstLane4(float a) { return {_mm_set_ss(a)}; }
inline f32x4 operator+(f32x4 a, f32x4 b) { return {_mm_add_ps(a.v, b.v)}; }
inline f32x4 operator-(f32x4 a, f32x4 b) { return {_mm_sub_ps(a.v, b.v)}; }
inline f32x4 operator*(f32x4 a, f32x4 b) { return {_mm_mul_ps(a.v, b.v)}; }
inline f32x4 operator*(f32x4 a, float b) { return a * splat4(b); }
inline f32x4 operator/(f32x4 a, f32x4 b) { return {_mm_div_ps(a.v, b.v)}; }
// a > b ? a : b, and a < b ? a : b: the second operand where either is a NaN.
inline f32x4 max(f32x4 a, f32x4 b) { return {_mm_max_ps(a.v, b.v)}; }
inline f32x4 min(f32x4 a, f32x4 b) { return {_mm_min_ps(a.v, b.v)}; }
inline f32x4 operator<(f32x4 a, f32x4 b) { return {_mm_cmplt_ps(a.v, b.v)}; }
inline f32x4 operator>(f32x4 a, f32x4 b) { return {_mm_cmpgt_ps(a.v, b.v)}; }
inline f32x4 operator<=(f32x4 a, f32x4 b) { return {_mm_cmple_ps(a.v, b.v)}; }
inline f32x4 operator>=(f32x4 a, f32x4 b) { return {_mm_cmpge_ps(a.v, b.v)}; }
inline f32x4 notLess(f32x4 a, f32x4 b) { return {_mm_cmpnlt_ps(a.v, b.v)}; }  // also where either is a NaN
inline f32x4 operator==(f32x4 a, f32x4 b) { return {_mm_cmpeq_ps(a.v, b.v)}; }
inline f32x4 operator&(f32x4 a, f32x4 b) { return {_mm_and_ps(a.v, b.v)}; }
inline f32x4 operator|(f32x4 a, f32x4 b) { return {_mm_or_ps(a.v, b.v)}; }
inline f32x4 operator^(f32x4 a, f32x4 b) { return {_mm_xor_ps(a.v, b.v)}; }
inline f32x4 andNot(f32x4 mask, f32x4 a) { return {_mm_andnot_ps(mask.v, a.v)}; }
// mask ? a : b, lane by lane.
inline f32x4 select(f32x4 mask, f32x4 a, f32x4 b) { return (mask & a) | andNot(mask, b); }
// The sign bits of the lanes, lane 0 lowest.
inline int signs(f32x4 a) { return _mm_movemask_ps(a.v); }
inline f32x4 signBits4() { return splat4(-0.0F); }
inline f32x4 sqrt(f32x4 a) { return {_mm_sqrt_ps(a.v)}; }
// The processor's estimate of 1 / a, good to about 12 bits.
inline float approximateReciprocal(float a) { return _mm_cvtss_f32(_mm_rcp_ss(_mm_set_ss(a))); }
inline float firstOf(f32x4 a) { return _mm_cvtss_f32(a.v); }

// --- two double lanes

inline f64x2 load2(const double *p) { return {_mm_loadu_pd(p)}; }
inline f64x2 loadAligned2(const double *p) { return {_mm_load_pd(p)}; }  // from a 16-byte boundary
inline void store2(double *p, f64x2 a) { _mm_storeu_pd(p, a.v); }
inline f64x2 splat2(double a) { return {_mm_set1_pd(a)}; }
inline f64x2 firstLane2(double a) { return {_mm_set_sd(a)}; }
inline f64x2 pack2(double a, double b) { return {_mm_set_pd(b, a)}; }
inline f64x2 operator+(f64x2 a, f64x2 b) { return {_mm_add_pd(a.v, b.v)}; }
inline f64x2 operator-(f64x2 a, f64x2 b) { return {_mm_sub_pd(a.v, b.v)}; }
inline f64x2 operator*(f64x2 a, f64x2 b) { return {_mm_mul_pd(a.v, b.v)}; }
inline f64x2 operator/(f64x2 a, f64x2 b) { return {_mm_div_pd(a.v, b.v)}; }
inline f64x2 max(f64x2 a, f64x2 b) { return {_mm_max_pd(a.v, b.v)}; }
inline f64x2 min(f64x2 a, f64x2 b) { return {_mm_min_pd(a.v, b.v)}; }
inline f64x2 operator<(f64x2 a, f64x2 b) { return {_mm_cmplt_pd(a.v, b.v)}; }
inline f64x2 operator>(f64x2 a, f64x2 b) { return {_mm_cmpgt_pd(a.v, b.v)}; }
inline f64x2 notLess(f64x2 a, f64x2 b) { return {_mm_cmpnlt_pd(a.v, b.v)}; }
inline f64x2 operator==(f64x2 a, f64x2 b) { return {_mm_cmpeq_pd(a.v, b.v)}; }
inline f64x2 operator&(f64x2 a, f64x2 b) { return {_mm_and_pd(a.v, b.v)}; }
inline f64x2 operator|(f64x2 a, f64x2 b) { return {_mm_or_pd(a.v, b.v)}; }
inline f64x2 operator^(f64x2 a, f64x2 b) { return {_mm_xor_pd(a.v, b.v)}; }
inline f64x2 andNot(f64x2 mask, f64x2 a) { return {_mm_andnot_pd(mask.v, a.v)}; }
inline f64x2 select(f64x2 mask, f64x2 a, f64x2 b) { return (mask & a) | andNot(mask, b); }
inline f64x2 swapLanes(f64x2 a) {  // the one shuffle that does not overwrite its operand
  return {_mm_castsi128_pd(_mm_shuffle_epi32(_mm_castpd_si128(a.v), _MM_SHUFFLE(1, 0, 3, 2)))};
}
// One lane of a, then one of b.
inline f64x2 firstAndFirst(f64x2 a, f64x2 b) { return {_mm_shuffle_pd(a.v, b.v, 0)}; }
inline f64x2 secondAndFirst(f64x2 a, f64x2 b) { return {_mm_shuffle_pd(a.v, b.v, 1)}; }
inline f64x2 firstAndSecond(f64x2 a, f64x2 b) { return {_mm_shuffle_pd(a.v, b.v, 2)}; }
inline f64x2 secondAndSecond(f64x2 a, f64x2 b) { return {_mm_shuffle_pd(a.v, b.v, 3)}; }
inline int signs(f64x2 a) { return _mm_movemask_pd(a.v); }
inline f64x2 sqrt(f64x2 a) { return {_mm_sqrt_pd(a.v)}; }
inline double firstOf(f64x2 a) { return _mm_cvtsd_f64(a.v); }

// --- between the two

inline f64x2 widenLow(f32x4 a) { return {_mm_cvtps_pd(a.v)}; }
inline f64x2 widenHigh(f32x4 a) { return {_mm_cvtps_pd(_mm_movehl_ps(a.v, a.v))}; }
inline f32x4 narrow(f64x2 low, f64x2 high) {
  return {_mm_movelh_ps(_mm_cvtpd_ps(low.v), _mm_cvtpd_ps(high.v))};
}
// Two singles from any address, widened.
inline f64x2 loadWidened2(const float *p) {
  double bits;
  std::memcpy(&bits, p, sizeof bits);
  return {_mm_cvtps_pd(_mm_castpd_ps(_mm_set_sd(bits)))};
}

// --- final sums: the order is part of the results

inline float sumLanes(f32x4 a) {
  const __m128 pairs = _mm_add_ps(a.v, _mm_movehl_ps(a.v, a.v));  // 0 + 2, 1 + 3
  return _mm_cvtss_f32(_mm_add_ss(pairs, _mm_shuffle_ps(pairs, pairs, 1)));
}
inline double sumLanes(f64x2 a) { return _mm_cvtsd_f64(_mm_add_sd(a.v, _mm_unpackhi_pd(a.v, a.v))); }

// --- 16-bit integers in four lanes

// Four 16-bit values from any address, in the low half.
inline __m128i loadHalf16(const std::int16_t *p) {
  return _mm_loadl_epi64(reinterpret_cast<const __m128i *>(p));
}
inline __m128i loadEight16(const std::int16_t *p) {
  return _mm_loadu_si128(reinterpret_cast<const __m128i *>(p));
}
inline i32x4 loadWidened4(const std::int16_t *p) {
  const __m128i a = loadHalf16(p);
  return {_mm_srai_epi32(_mm_unpacklo_epi16(a, a), 16)};
}
// a[i] - b[i] for four 16-bit values, exact.
inline i32x4 difference4(const std::int16_t *a, const std::int16_t *b) {
  const __m128i plusMinus = _mm_set1_epi32(static_cast<int>(0xFFFF0001U));
  return {_mm_madd_epi16(_mm_unpacklo_epi16(loadHalf16(a), loadHalf16(b)), plusMinus)};
}
inline f32x4 toSingle(i32x4 a) { return {_mm_cvtepi32_ps(a.v)}; }
inline f64x2 toDoubleLow(i32x4 a) { return {_mm_cvtepi32_pd(a.v)}; }

// Four 16-bit values, each followed by 16 zero bits: ready to be multiplied.
struct i16x4 {
  __m128i v;
};
inline i16x4 load4(const std::int16_t *p) { return {_mm_unpacklo_epi16(loadHalf16(p), _mm_setzero_si128())}; }
inline i32x4 widen(i16x4 a) { return {_mm_srai_epi32(_mm_slli_epi32(a.v, 16), 16)}; }
// Products of 16-bit values, exact.
inline i32x4 operator*(i16x4 a, i16x4 b) { return {_mm_madd_epi16(a.v, b.v)}; }
inline i16x4 splat4(std::int16_t a) { return {_mm_set1_epi32(static_cast<std::uint16_t>(a))}; }

// Eight 16-bit values.
struct i16x8 {
  __m128i v;
};
inline i16x8 load8(const std::int16_t *p) { return {loadEight16(p)}; }
inline void store8(std::int16_t *p, i16x8 a) { _mm_storeu_si128(reinterpret_cast<__m128i *>(p), a.v); }
inline i16x8 operator+(i16x8 a, i16x8 b) { return {_mm_add_epi16(a.v, b.v)}; }
inline i16x8 narrowSaturated(i32x4 low, i32x4 high) { return {_mm_packs_epi32(low.v, high.v)}; }

// Sixteen bytes.
struct i8x16 {
  __m128i v;
};
inline i8x16 splat16(std::int8_t a) { return {_mm_set1_epi8(a)}; }
inline i8x16 operator+(i8x16 a, i8x16 b) { return {_mm_add_epi8(a.v, b.v)}; }
inline i8x16 narrowSaturated(i16x8 low, i16x8 high) { return {_mm_packs_epi16(low.v, high.v)}; }
// The last byte of the one before, then all of a but its last.
inline i8x16 oneBefore(i8x16 before, i8x16 a) {
  return {_mm_or_si128(_mm_srli_si128(before.v, 15), _mm_slli_si128(a.v, 1))};
}
// The sum of |a - b| over unsigned bytes, spread over the lanes.
inline i32x4 sumOfDistances(i8x16 a, i8x16 b) { return {_mm_sad_epu8(a.v, b.v)}; }

// a[0] b[0] + a[1] b[1], a[2] b[2] + a[3] b[3], ...: exact unless all four are -32768.
inline i32x4 sumsOfPairProducts(i16x8 a, i16x8 b) { return {_mm_madd_epi16(a.v, b.v)}; }
// Each pair of values as one lane: lane k of row r becomes lane r of row k.
inline void transposePairs(i16x8 (&rows)[4]) {
  const __m128i ab = _mm_unpacklo_epi32(rows[0].v, rows[1].v), AB = _mm_unpackhi_epi32(rows[0].v, rows[1].v);
  const __m128i cd = _mm_unpacklo_epi32(rows[2].v, rows[3].v), CD = _mm_unpackhi_epi32(rows[2].v, rows[3].v);
  rows[0].v = _mm_unpacklo_epi64(ab, cd);
  rows[1].v = _mm_unpackhi_epi64(ab, cd);
  rows[2].v = _mm_unpacklo_epi64(AB, CD);
  rows[3].v = _mm_unpackhi_epi64(AB, CD);
}
// Pair k in all lanes.
template <int k>
inline i16x8 splatPair(i16x8 a) {
  return {_mm_shuffle_epi32(a.v, _MM_SHUFFLE(k, k, k, k))};
}

// --- 32-bit integers in four lanes; what leaves the lane is dropped

inline i32x4 load4(const std::int32_t *p) { return {_mm_loadu_si128(reinterpret_cast<const __m128i *>(p))}; }
inline i32x4 splat4(std::int32_t a) { return {_mm_set1_epi32(a)}; }
inline i32x4 operator+(i32x4 a, i32x4 b) { return {_mm_add_epi32(a.v, b.v)}; }
inline i32x4 operator-(i32x4 a, i32x4 b) { return {_mm_sub_epi32(a.v, b.v)}; }
inline i32x4 operator&(i32x4 a, i32x4 b) { return {_mm_and_si128(a.v, b.v)}; }
inline i32x4 operator^(i32x4 a, i32x4 b) { return {_mm_xor_si128(a.v, b.v)}; }
inline f32x4 bitsOf(i32x4 a) { return {_mm_castsi128_ps(a.v)}; }
inline i32x4 bitsOf(f32x4 a) { return {_mm_castps_si128(a.v)}; }
// The sum of the lanes as unsigned numbers.
inline std::uint32_t sumLanes(i32x4 a) {
  const __m128i pairs = _mm_add_epi32(a.v, _mm_unpackhi_epi64(a.v, a.v));
  return static_cast<std::uint32_t>(_mm_cvtsi128_si32(_mm_add_epi32(pairs, _mm_shuffle_epi32(pairs, 1))));
}
inline i32x4 operator*(i32x4 a, i32x4 b) {
  const __m128i even = _mm_mul_epu32(a.v, b.v);
  const __m128i odd = _mm_mul_epu32(_mm_srli_epi64(a.v, 32), _mm_srli_epi64(b.v, 32));
  return {_mm_unpacklo_epi32(_mm_shuffle_epi32(even, _MM_SHUFFLE(3, 1, 2, 0)),
                             _mm_shuffle_epi32(odd, _MM_SHUFFLE(3, 1, 2, 0)))};
}
inline i32x4 operator<<(i32x4 a, int count) { return {_mm_sll_epi32(a.v, _mm_cvtsi32_si128(count))}; }
inline i32x4 operator>>(i32x4 a, int count) { return {_mm_sra_epi32(a.v, _mm_cvtsi32_si128(count))}; }
inline void store4(std::int32_t *p, i32x4 a) { _mm_storeu_si128(reinterpret_cast<__m128i *>(p), a.v); }
// Lanes of all ones or all zeros.
inline i32x4 operator>(i32x4 a, i32x4 b) { return {_mm_cmpgt_epi32(a.v, b.v)}; }
inline i32x4 operator<(i32x4 a, i32x4 b) { return {_mm_cmplt_epi32(a.v, b.v)}; }
inline i32x4 operator|(i32x4 a, i32x4 b) { return {_mm_or_si128(a.v, b.v)}; }
inline int signs(i32x4 a) { return _mm_movemask_ps(_mm_castsi128_ps(a.v)); }
// By the rounding in force, to an integer at most one away.
inline i32x4 roundToInteger(f32x4 a) { return {_mm_cvtps_epi32(a.v)}; }
// Toward zero; what does not fit gives the most negative number.
inline i32x4 truncate(f32x4 a) { return {_mm_cvttps_epi32(a.v)}; }
inline i32x4 firstLane4(std::int32_t a) { return {_mm_cvtsi32_si128(a)}; }
inline std::int32_t firstOf(i32x4 a) { return _mm_cvtsi128_si32(a.v); }
inline i32x4 andNot(i32x4 mask, i32x4 a) { return {_mm_andnot_si128(mask.v, a.v)}; }
inline i32x4 select(i32x4 mask, i32x4 a, i32x4 b) { return (mask & a) | andNot(mask, b); }
inline i32x4 min(i32x4 a, i32x4 b) { return select(a < b, a, b); }

// --- 64-bit integers

struct i64x4 {
  static constexpr int lanes = 4;
  __m128i low, high;
};
inline i64x4 operator+(i64x4 a, i64x4 b) {
  return {_mm_add_epi64(a.low, b.low), _mm_add_epi64(a.high, b.high)};
}
inline i64x4 widen(i32x4 a) {
  const __m128i signs = _mm_srai_epi32(a.v, 31);
  return {_mm_unpacklo_epi32(a.v, signs), _mm_unpackhi_epi32(a.v, signs)};
}
inline i64x4 load4(const std::int64_t *p) {
  return {_mm_loadu_si128(reinterpret_cast<const __m128i *>(p)),
          _mm_loadu_si128(reinterpret_cast<const __m128i *>(p + 2))};
}
inline void store4(std::int64_t *p, i64x4 a) {
  _mm_storeu_si128(reinterpret_cast<__m128i *>(p), a.low);
  _mm_storeu_si128(reinterpret_cast<__m128i *>(p + 2), a.high);
}

// 64-bit products of the unsigned values of four lanes.
struct u64products {
  __m128i even, odd;
};
inline u64products unsignedProducts(i32x4 a, i32x4 b) {
  return {_mm_mul_epu32(a.v, b.v), _mm_mul_epu32(_mm_srli_epi64(a.v, 32), _mm_srli_epi64(b.v, 32))};
}
inline u64products operator+(u64products a, u64products b) {
  return {_mm_add_epi64(a.even, b.even), _mm_add_epi64(a.odd, b.odd)};
}
inline i32x4 upperHalves(u64products a) {
  const __m128 odd = _mm_castsi128_ps(a.odd);
  const __m128i evenThenOdd =
      _mm_castps_si128(_mm_shuffle_ps(_mm_castsi128_ps(a.even), odd, _MM_SHUFFLE(3, 1, 3, 1)));
  return {_mm_shuffle_epi32(evenThenOdd, _MM_SHUFFLE(3, 1, 2, 0))};
}

// --- pairs

struct f32x8 {
  static constexpr int lanes = 8;
  f32x4 low, high;
};
inline f32x8 operator+(f32x8 a, f32x8 b) { return {a.low + b.low, a.high + b.high}; }
inline f32x8 operator-(f32x8 a, f32x8 b) { return {a.low - b.low, a.high - b.high}; }
inline f32x8 operator*(f32x8 a, f32x8 b) { return {a.low * b.low, a.high * b.high}; }
inline f32x8 operator*(f32x8 a, float b) { return {a.low * b, a.high * b}; }
inline float sumLanes(f32x8 a) { return sumLanes(a.low + a.high); }

struct i32x8 {
  static constexpr int lanes = 8;
  i32x4 low, high;
};
inline i32x8 operator+(i32x8 a, i32x8 b) { return {a.low + b.low, a.high + b.high}; }
inline i32x8 operator-(i32x8 a, i32x8 b) { return {a.low - b.low, a.high - b.high}; }
inline i32x8 operator*(i32x8 a, i32x8 b) { return {a.low * b.low, a.high * b.high}; }
inline i32x8 operator<<(i32x8 a, int count) { return {a.low << count, a.high << count}; }
inline i32x8 operator>>(i32x8 a, int count) { return {a.low >> count, a.high >> count}; }
inline f32x8 toSingle(i32x8 a) { return {toSingle(a.low), toSingle(a.high)}; }
inline i32x8 truncate(f32x8 a) { return {truncate(a.low), truncate(a.high)}; }
// Eight 16-bit values: widened from any address, and saturated to it.
inline i32x8 loadWidened8(const std::int16_t *p) {
  const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i *>(p));
  return {{_mm_srai_epi32(_mm_unpacklo_epi16(a, a), 16)}, {_mm_srai_epi32(_mm_unpackhi_epi16(a, a), 16)}};
}
inline void storeSaturated8(std::int16_t *p, i32x8 a) {
  _mm_storeu_si128(reinterpret_cast<__m128i *>(p), _mm_packs_epi32(a.low.v, a.high.v));
}

struct f64x4 {
  static constexpr int lanes = 4;
  f64x2 low, high;
};
inline f64x4 operator+(f64x4 a, f64x4 b) { return {a.low + b.low, a.high + b.high}; }
inline f64x4 operator-(f64x4 a, f64x4 b) { return {a.low - b.low, a.high - b.high}; }
inline f64x4 operator*(f64x4 a, f64x4 b) { return {a.low * b.low, a.high * b.high}; }
inline f64x4 operator*(f64x4 a, double b) { return {a.low * splat2(b), a.high * splat2(b)}; }
inline f64x4 splat4(double a) { return {splat2(a), splat2(a)}; }
inline f64x4 load4(const double *p) { return {load2(p), load2(p + 2)}; }
inline void store4(double *p, f64x4 a) {
  store2(p, a.low);
  store2(p + 2, a.high);
}
inline f64x4 toDouble(i32x4 a) { return {toDoubleLow(a), toDoubleLow({_mm_unpackhi_epi64(a.v, a.v)})}; }
inline f64x4 widen(f32x4 a) { return {widenLow(a), widenHigh(a)}; }
// Toward zero; what does not fit gives the most negative number.
inline i32x4 truncate(f64x4 a) {
  return {_mm_unpacklo_epi64(_mm_cvttpd_epi32(a.low.v), _mm_cvttpd_epi32(a.high.v))};
}
inline f64x4 max(f64x4 a, f64x4 b) { return {max(a.low, b.low), max(a.high, b.high)}; }
inline double sumLanes(f64x4 a) { return sumLanes(a.low + a.high); }

// Whatever was stored before is loaded again after this, instead of being kept in a register that some other
// value would have to leave.
inline void forgetRegisters() { asm volatile("" : : : "memory"); }

// Whatever is computed from a is computed after this, and what it comes from before, in the order of these
// calls: chains of steps stay side by side, as they are written. (The compiler would rather finish one chain
// after the other, and the processor does not look far enough ahead to put that right.)
inline void inOrder(f64x2 &a) { asm volatile("" : "+x"(a.v)); }

// The same value, of which the compiler knows nothing more: what is computed from it is computed where it is
// used, as part of an address, instead of being kept.
template <class T>
inline T opaque(T value) {
  asm("" : "+r"(value));
  return value;
}

// Asks for the cache line of an address, which may be anything. (GCC takes a call that does nothing else for
// one without effect, and drops it, unless it is inlined first.)
[[gnu::always_inline]] inline void prefetch(std::uintptr_t address) {
  _mm_prefetch(reinterpret_cast<const char *>(address), _MM_HINT_T0);
}

// --- lanes that change places

// a[i], a[j], b[k], b[l]
template <int i, int j, int k, int l>
inline f32x4 shuffle(f32x4 a, f32x4 b) {
  return {_mm_shuffle_ps(a.v, b.v, i | j << 2 | k << 4 | l << 6)};
}
// a0 b0 a1 b1, and a2 b2 a3 b3
inline f32x4 interleaveLow(f32x4 a, f32x4 b) { return {_mm_unpacklo_ps(a.v, b.v)}; }
inline f32x4 interleaveHigh(f32x4 a, f32x4 b) { return {_mm_unpackhi_ps(a.v, b.v)}; }
// b0 a1 a2 a3
inline f32x4 withFirstOf(f32x4 a, f32x4 b) { return {_mm_move_ss(a.v, b.v)}; }
inline void transpose(f32x4 &a, f32x4 &b, f32x4 &c, f32x4 &d) { _MM_TRANSPOSE4_PS(a.v, b.v, c.v, d.v); }

// Four rows of four, from a table on a 16-byte boundary. Indices are not negative.
inline void loadRows4(const float (*table)[4], i32x4 indices, f32x4 (&rows)[4]) {
  const auto low = static_cast<std::uint64_t>(_mm_cvtsi128_si64(indices.v));
  const auto high =
      static_cast<std::uint64_t>(_mm_cvtsi128_si64(_mm_shuffle_epi32(indices.v, _MM_SHUFFLE(3, 2, 3, 2))));
  rows[0] = loadAligned4(table[static_cast<std::uint32_t>(low)]);
  rows[1] = loadAligned4(table[low >> 32]);
  rows[2] = loadAligned4(table[static_cast<std::uint32_t>(high)]);
  rows[3] = loadAligned4(table[high >> 32]);
}

// Two values from p, then two from q.
inline f32x4 loadPairs(const float *p, const float *q) {
  double low, high;
  std::memcpy(&low, p, sizeof low);
  std::memcpy(&high, q, sizeof high);
  return {_mm_castpd_ps(_mm_setr_pd(low, high))};
}

// --- the same element of four rows

inline bool allGreater(f32x4 a, f32x4 b) { return signs(a > b) == 15; }
inline bool allGreater(f64x4 a, f64x4 b) { return signs((a.low > b.low) & (a.high > b.high)) == 3; }

inline f32x4 pack4(float a, float b, float c, float d) { return {_mm_setr_ps(a, b, c, d)}; }

// Lane i of row k becomes lane k of row i.
inline void transpose(f32x4 (&rows)[4]) { _MM_TRANSPOSE4_PS(rows[0].v, rows[1].v, rows[2].v, rows[3].v); }

// Lane r in lane 0 of the r-th vector, whose other lanes are zero.
inline void firstLanes4(f32x4 a, f32x4 (&first)[4]) {
  const __m128i low = _mm_castps_si128(_mm_unpacklo_ps(a.v, _mm_setzero_ps()));
  const __m128i high = _mm_castps_si128(_mm_unpackhi_ps(a.v, _mm_setzero_ps()));
  first[0] = {_mm_castsi128_ps(_mm_move_epi64(low))};
  first[1] = {_mm_castsi128_ps(_mm_srli_si128(low, 8))};
  first[2] = {_mm_castsi128_ps(_mm_move_epi64(high))};
  first[3] = {_mm_castsi128_ps(_mm_srli_si128(high, 8))};
}
inline void firstLanes2(f64x4 a, f64x2 (&first)[4]) {
  const __m128d zero = _mm_setzero_pd();
  first[0] = {_mm_move_sd(zero, a.low.v)};
  first[1] = {_mm_unpackhi_pd(a.low.v, zero)};
  first[2] = {_mm_move_sd(zero, a.high.v)};
  first[3] = {_mm_unpackhi_pd(a.high.v, zero)};
}

inline void transpose(const f64x2 (&rows)[4], f64x4 (&columns)[2]) {
  columns[0] = {{_mm_unpacklo_pd(rows[0].v, rows[1].v)}, {_mm_unpacklo_pd(rows[2].v, rows[3].v)}};
  columns[1] = {{_mm_unpackhi_pd(rows[0].v, rows[1].v)}, {_mm_unpackhi_pd(rows[2].v, rows[3].v)}};
}

// The final sums of four rows at once, each in the order of sumLanes.
inline f32x4 sumLanesOfFour(f32x4 a, f32x4 b, f32x4 c, f32x4 d) {
  const __m128 ab = _mm_add_ps(_mm_unpacklo_ps(a.v, b.v), _mm_unpackhi_ps(a.v, b.v));
  const __m128 cd = _mm_add_ps(_mm_unpacklo_ps(c.v, d.v), _mm_unpackhi_ps(c.v, d.v));
  return {_mm_add_ps(_mm_movelh_ps(ab, cd), _mm_movehl_ps(cd, ab))};
}
inline f64x4 sumLanesOfFour(f64x2 a, f64x2 b, f64x2 c, f64x2 d) {
  return {{_mm_add_pd(_mm_unpacklo_pd(a.v, b.v), _mm_unpackhi_pd(a.v, b.v))},
          {_mm_add_pd(_mm_unpacklo_pd(c.v, d.v), _mm_unpackhi_pd(c.v, d.v))}};
}

}  // namespace orv::simd

#endif
