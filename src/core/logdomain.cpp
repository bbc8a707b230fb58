// orvsLogAdd_*, orvsLogSub_*, orvsLogSum_*.

#include <cmath>
#include <cstdint>
#include <cstring>

#include "core/integer.h"
#include "core/logadd.h"
#include "core/scale.h"
#include "orvsr/core.h"
#include "primitives/memory.h"
#include "primitives/simd.h"

namespace orv {
namespace {

using namespace simd;

// Lengths before pointers: the order of this family.
OrvStatus checkLogArrays(std::int32_t len, const void *a, const void *b) {
  if (len < 1) return orvStsSizeErr;
  if (a == nullptr || b == nullptr) return orvStsNullPtrErr;
  return orvStsNoErr;
}

bool isKnownHint(std::int32_t hint) {
  return hint == orvAlgHintNone || hint == orvAlgHintFast || hint == orvAlgHintAccurate;
}

// Log-addition of two pairs in double precision, given the larger values and the differences. Each lane takes
// its coefficients from its own segment.
template <class Domain>
inline f64x2 accurateSum2(const Domain &domain, f64x2 m, f64x2 d, f64x2 floored) {
  const f64x2 dropped = d < splat2(Domain::dropBelow);
  if (signs(dropped) == 3) return floored;
  const int aboveFirst = signs(d > splat2(Domain::firstEnd));
  const int aboveSecond = signs(d > splat2(Domain::secondEnd));
  static constexpr double ends[3] = {0.0, Domain::firstEnd, Domain::secondEnd};
  const int lane0 = 2 - (aboveFirst & 1) - (aboveSecond & 1);
  const int lane1 = 2 - (aboveFirst >> 1) - (aboveSecond >> 1);
  const double *c0 = domain.segments[lane0];
  const double *c1 = domain.segments[lane1];
  const f64x2 u = d - pack2(ends[lane0], ends[lane1]);
  f64x2 h = pack2(c0[0], c1[0]);
  for (int i = 1; i < Domain::degree; ++i) h = h * u + pack2(c0[i], c1[i]);
  const f64x2 sum = (m + pack2(c0[Domain::degree], c1[Domain::degree])) + h * u;
  return select(dropped, floored, sum);
}

inline f64x2 floored2(const LogDomain32f &, f64x2 m) {
  // A NaN passes: max takes its second operand then.
  return max(splat2(LogDomain32f::zero), m);
}
inline f64x2 floored2(const LogDomain64f &, f64x2 m) {
  return select(m < splat2(-9e9), splat2(LogDomain64f::zero), m);
}

// The larger of the running value and the new one (the new one if they are equal or not comparable), and
// minus the magnitude of their difference.
template <class Lanes>
struct LargerAndDifference {
  Lanes m, d;
  LargerAndDifference(Lanes x, Lanes y, Lanes signBits) : m(max(y, x)), d((y - x) | signBits) {}
};

struct Accurate32f {
  using Lanes = f32x4;
  LogDomain32f domain;

  f32x4 operator()(f32x4 x, f32x4 y) const {
    const LargerAndDifference<f32x4> pair(x, y, signBits4());
    const f64x2 mLow = widenLow(pair.m);
    const f64x2 mHigh = widenHigh(pair.m);
    return narrow(accurateSum2(domain, mLow, widenLow(pair.d), floored2(domain, mLow)),
                  accurateSum2(domain, mHigh, widenHigh(pair.d), floored2(domain, mHigh)));
  }
};

struct Accurate64f {
  using Lanes = f64x2;
  LogDomain64f domain;

  f64x2 operator()(f64x2 x, f64x2 y) const {
    const LargerAndDifference<f64x2> pair(x, y, splat2(-0.0));
    return accurateSum2(domain, pair.m, pair.d, floored2(domain, pair.m));
  }
};

struct Fast32f {
  using Lanes = f32x4;

  f32x4 operator()(f32x4 x, f32x4 y) const {
    const LargerAndDifference<f32x4> pair(x, y, signBits4());
    const f32x4 perCell = splat4(4.177658F);
    const f32x4 kept = pair.d > splat4(-15.319588F);
    const f32x4 floored = max(splat4(static_cast<float>(LogDomain32f::zero)), pair.m);
    if (signs(kept) == 0) return select(pair.d == pair.d, floored, pair.d);
    // Lanes that are dropped, or not comparable, look into the first cell and are replaced below.
    const f32x4 d = pair.d & kept;
    const __m128i cell = _mm_cvttps_epi32((splat4(0.0F) - d * perCell).v);
    const __m128i row = _mm_add_epi32(cell, _mm_set1_epi32(1));
    std::int32_t rows[4];
    std::memcpy(rows, &row, sizeof rows);
    f32x4 a = load4(QIP1_F1[rows[0]]);
    f32x4 b = load4(QIP1_F1[rows[1]]);
    f32x4 c = load4(QIP1_F1[rows[2]]);
    f32x4 unused = load4(QIP1_F1[rows[3]]);
    _MM_TRANSPOSE4_PS(a.v, b.v, c.v, unused.v);
    const f32x4 node = f32x4{_mm_cvtepi32_ps(_mm_add_epi32(row, row))} * splat4(-0.11968428F);
    const f32x4 t = (d - node) * perCell;
    const f32x4 v = t * (b + c * (t - splat4(1.0F)));
    const f32x4 sum = narrow((widenLow(pair.m) + widenLow(a)) + widenLow(v),
                             (widenHigh(pair.m) + widenHigh(a)) + widenHigh(v));
    const f32x4 settled = select(kept, sum, floored);
    return select(pair.d == pair.d, settled, pair.d);
  }
};

// The last lanes go through padded copies, so that every element takes the same steps.
template <class Step, class T>
void addArrays(const Step &step, const T *src, T *srcDst, std::int32_t len) {
  using Lanes = typename Step::Lanes;
  constexpr int lanes = Lanes::lanes;
  const auto addLanes = [&step](const T *x, T *y) {
    Lanes a, b;
    std::memcpy(&a, x, sizeof a);
    std::memcpy(&b, y, sizeof b);
    const Lanes sum = step(a, b);
    std::memcpy(y, &sum, sizeof sum);
  };
  std::int32_t i = 0;
  for (; len - i >= lanes; i += lanes) addLanes(src + i, srcDst + i);
  if (i < len) {
    const auto bytes = static_cast<std::size_t>(len - i) * sizeof(T);
    T x[lanes] = {};
    T y[lanes] = {};
    std::memcpy(x, src + i, bytes);
    std::memcpy(y, srcDst + i, bytes);
    addLanes(x, y);
    std::memcpy(srcDst + i, y, bytes);
  }
}

// The fast path of the integer forms: the steps of the 32f form in double precision. The drop threshold lies
// a hair beyond the last cell, so the cell is bounded.
double fastSum64f(double m, double d) {
  constexpr double perCell = 4.1776580810546875;
  if (!(d == d)) return d;
  const int cell = std::min(truncate32(-d * perCell), 63);
  const float *row = QIP1_F1[cell + 1];
  const double t = (d - 2.0 * (cell + 1) * -0.11968427896499634) * perCell;
  const double v = t * (static_cast<double>(row[1]) + static_cast<double>(row[2]) * (t - 1.0));
  return (m + static_cast<double>(row[0])) + v;
}

template <class Int>
OrvStatus addIntegers(const Int *src, Int *srcDst, std::int32_t len, std::int32_t scaleFactor,
                      std::int32_t hint) {
  if (const OrvStatus status = checkLogArrays(len, src, srcDst); status != orvStsNoErr) return status;
  if (!isKnownHint(hint)) return orvStsNoErr;
  const LogDomain32f domain;
  const double scale = GetScale_32s64f(scaleFactor);
  for (std::int32_t i = 0; i < len; ++i) {
    const double x = load(src + i) * scale;
    const double y = load(srcDst + i) * scale;
    const double m = y > x ? y : x;
    const double d = y > x ? -(y - x) : y - x;
    double sum = m;  // kept as it is where a term is dropped: these forms have no floor
    if (!(LogDomain32f::dropBelow > d))
      sum = hint == orvAlgHintFast ? fastSum64f(m, d) : logTail<Grouping::constantFirst>(domain, m, d);
    store(srcDst + i, saturateTruncated<Int>(sum / scale));
  }
  return orvStsNoErr;
}

template <class Domain, class T>
OrvStatus sumArray(const T *src, T *result, std::int32_t len) {
  if (const OrvStatus status = checkLogArrays(len, src, result); status != orvStsNoErr) return status;
  const Domain domain;
  T sum = load(src);
  store(result, sum);
  for (std::int32_t i = 1; i < len; ++i) {
    sum = logAddStep<Grouping::constantFirst>(domain, sum, load(src + i));
    store(result, sum);
  }
  return orvStsNoErr;
}

template <class Int>
OrvStatus sumIntegers(const Int *src, Int *result, std::int32_t len, std::int32_t scaleFactor) {
  if (const OrvStatus status = checkLogArrays(len, src, result); status != orvStsNoErr) return status;
  if (len == 1) {
    store(result, load(src));
    return orvStsNoErr;
  }
  const LogDomain32f domain;
  const double scale = GetScale_32s64f(scaleFactor);
  double sum = load(src) * scale;
  for (std::int32_t i = 1; i < len; ++i) {
    const double x = load(src + i) * scale;
    const double m = sum > x ? sum : x;
    const double d = sum > x ? -(sum - x) : sum - x;
    // The running value is rounded to single after every step in the 32s form too: 24 bits are what it
    // carries.
    sum = static_cast<double>(LogDomain32f::dropBelow > d
                                  ? static_cast<float>(LogDomain32f::floored(m))
                                  : logTailRounded<Grouping::constantFirst>(domain, m, d));
  }
  store(result, saturateTruncated<Int>(sum / scale));
  return orvStsNoErr;
}

// Least value of 1 - exp(d) whose logarithm is taken.
constexpr double leastRemainder(const LogDomain32f &) { return 1.0057e-37; }
constexpr double leastRemainder(const LogDomain64f &) { return 2.45e-308; }

template <class Domain, class T>
OrvStatus subtractArrays(const T *src, T *srcDst, std::int32_t len) {
  if (const OrvStatus status = checkLogArrays(len, src, srcDst); status != orvStsNoErr) return status;
  for (std::int32_t i = 0; i < len; ++i)
    if (load(srcDst + i) - load(src + i) >= T{0}) return orvStsRangeErr;
  const Domain domain;
  for (std::int32_t i = 0; i < len; ++i) {
    const double x = load(src + i);
    const double d = load(srcDst + i) - load(src + i);
    double difference = 0.0;
    if (d < Domain::dropBelow) {
      difference = Domain::floored(x);
    } else {
      const double remainder = 1.0 - std::exp(d);
      difference = remainder <= leastRemainder(domain) ? Domain::zero : x + std::log(remainder);
    }
    store(srcDst + i, static_cast<T>(difference));
  }
  return orvStsNoErr;
}

// The scale acts on the difference, and so on the test and the exponential, but the log term is added to the
// stored integer as it is. Callers' models are tuned to this.
template <class Int>
OrvStatus subtractIntegers(const Int *src, Int *srcDst, std::int32_t len, std::int32_t scaleFactor) {
  if (const OrvStatus status = checkLogArrays(len, src, srcDst); status != orvStsNoErr) return status;
  for (std::int32_t i = 0; i < len; ++i)
    if (subWrap32(load(srcDst + i), load(src + i)) >= 0) return orvStsRangeErr;
  const float scale = GetScale_32s32f(scaleFactor);
  for (std::int32_t i = 0; i < len; ++i) {
    const double x = load(src + i);
    const float d = (static_cast<float>(load(srcDst + i)) - static_cast<float>(load(src + i))) * scale;
    double difference = 0.0;
    if (LogDomain32f::dropBelow > static_cast<double>(d)) {
      difference = LogDomain32f::floored(x);
    } else {
      const double remainder = 1.0 - std::exp(static_cast<double>(d));
      difference = leastRemainder(LogDomain32f()) >= remainder ? LogDomain32f::zero : x + std::log(remainder);
    }
    // Limited to 32 bits in both forms: the 16s form stores the low half of that, without saturation.
    store(srcDst + i, static_cast<Int>(saturateTruncated<std::int32_t>(difference)));
  }
  return orvStsNoErr;
}

}  // namespace
}  // namespace orv

using namespace orv;

OrvStatus orvsLogAdd_32f(const float *pSrc, float *pSrcDst, int32_t len, int32_t hint) {
  if (const OrvStatus status = checkLogArrays(len, pSrc, pSrcDst); status != orvStsNoErr) return status;
  if (!isKnownHint(hint)) return orvStsNoErr;  // not an error: nothing is written
  if (hint == orvAlgHintFast) {
    addArrays(Fast32f(), pSrc, pSrcDst, len);
  } else {
    addArrays(Accurate32f(), pSrc, pSrcDst, len);
  }
  return orvStsNoErr;
}

OrvStatus orvsLogAdd_64f(const double *pSrc, double *pSrcDst, int32_t len, int32_t hint) {
  if (const OrvStatus status = checkLogArrays(len, pSrc, pSrcDst); status != orvStsNoErr) return status;
  if (!isKnownHint(hint)) return orvStsNoErr;  // not an error: nothing is written
  addArrays(Accurate64f(), pSrc, pSrcDst, len);
  return orvStsNoErr;
}

OrvStatus orvsLogAdd_16s_Sfs(const int16_t *pSrc, int16_t *pSrcDst, int32_t len, int32_t scaleFactor,
                             int32_t hint) {
  return addIntegers(pSrc, pSrcDst, len, scaleFactor, hint);
}

OrvStatus orvsLogAdd_32s_Sfs(const int32_t *pSrc, int32_t *pSrcDst, int32_t len, int32_t scaleFactor,
                             int32_t hint) {
  return addIntegers(pSrc, pSrcDst, len, scaleFactor, hint);
}

OrvStatus orvsLogSub_32f(const float *pSrc, float *pSrcDst, int32_t len) {
  return subtractArrays<LogDomain32f>(pSrc, pSrcDst, len);
}

OrvStatus orvsLogSub_64f(const double *pSrc, double *pSrcDst, int32_t len) {
  return subtractArrays<LogDomain64f>(pSrc, pSrcDst, len);
}

OrvStatus orvsLogSub_16s_Sfs(const int16_t *pSrc, int16_t *pSrcDst, int32_t len, int32_t scaleFactor) {
  return subtractIntegers(pSrc, pSrcDst, len, scaleFactor);
}

OrvStatus orvsLogSub_32s_Sfs(const int32_t *pSrc, int32_t *pSrcDst, int32_t len, int32_t scaleFactor) {
  return subtractIntegers(pSrc, pSrcDst, len, scaleFactor);
}

OrvStatus orvsLogSum_32f(const float *pSrc, float *pResult, int32_t len) {
  return sumArray<LogDomain32f>(pSrc, pResult, len);
}

OrvStatus orvsLogSum_64f(const double *pSrc, double *pResult, int32_t len) {
  return sumArray<LogDomain64f>(pSrc, pResult, len);
}

OrvStatus orvsLogSum_16s_Sfs(const int16_t *pSrc, int16_t *pResult, int32_t len, int32_t scaleFactor) {
  return sumIntegers(pSrc, pResult, len, scaleFactor);
}

OrvStatus orvsLogSum_32s_Sfs(const int32_t *pSrc, int32_t *pResult, int32_t len, int32_t scaleFactor) {
  return sumIntegers(pSrc, pResult, len, scaleFactor);
}
