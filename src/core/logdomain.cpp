// orvsLogAdd_*, orvsLogSub_*, orvsLogSum_*.

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

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

// m, c0 and H u of several pairs put together, given their larger values and differences and the rows of
// their segments. Side by side, since each pair's polynomial is one chain of dependent steps.
template <Grouping grouping, int degree, std::size_t... p>
[[gnu::always_inline]] inline void accurateSums(
    std::index_sequence<p...>, const typename SegmentPairs<degree>::Row *const (&rows)[sizeof...(p)],
    const f64x2 (&m)[sizeof...(p)], const f64x2 (&d)[sizeof...(p)], f64x2 (&sums)[sizeof...(p)]) {
  const f64x2 u[] = {(d[p] - loadAligned2(rows[p]->ends))...};
  f64x2 h[] = {loadAligned2(rows[p]->coefficients[0])...};
  for (int i = 1; i < degree; ++i)
    ((h[p] = h[p] * u[p] + loadAligned2(rows[p]->coefficients[i]), inOrder(h[p])), ...);
  ((sums[p] = logTerms<grouping>(m[p], loadAligned2(rows[p]->coefficients[degree]), h[p] * u[p])), ...);
}

// The greatest single value that is not above d: a single value is above the one just when it is above the
// other.
constexpr float singleBelow(double d) {
  const auto nearest = static_cast<float>(d);
  if (static_cast<double>(nearest) <= d) return nearest;
  return std::bit_cast<float>(std::bit_cast<std::uint32_t>(nearest) + (d < 0.0 ? 1U : ~0U));
}

// In the steps below x is the new value and y the running one, which becomes the sum. max(y, x) is the new
// one if they are equal or not comparable; the difference has its sign set, so that it is never positive.

template <int fours>
struct Accurate32f {
  static constexpr int lanes = 4 * fours;

  void operator()(const float *x, float *y) const {
    using Domain = LogDomain32f;
    f32x4 floored[fours], kept[fours], anyKept{};
    f64x2 m[2 * fours], d[2 * fours], sums[2 * fours];
    const SegmentPairs<Domain::degree>::Row *rows[2 * fours];
    for (int i = 0; i < fours; ++i) {
      const f32x4 running = load4(y + 4 * i);
      const f32x4 added = load4(x + 4 * i);
      const f32x4 larger = max(running, added);
      const f32x4 difference = (running - added) | signBits4();
      floored[i] = max(splat4(static_cast<float>(Domain::zero)), larger);
      kept[i] = notLess(difference, splat4(-singleBelow(-Domain::dropBelow)));
      anyKept = anyKept | kept[i];
      const auto inFirst = static_cast<unsigned>(signs(difference > splat4(singleBelow(Domain::firstEnd))));
      const auto inSecond = static_cast<unsigned>(signs(difference > splat4(singleBelow(Domain::secondEnd))));
      rows[2 * i] = &Domain::pairs().rows[(inFirst & 3U) | (inSecond & 3U) << 2U];
      rows[2 * i + 1] = &Domain::pairs().rows[inFirst >> 2U | (inSecond & 12U)];
      m[2 * i] = widenLow(larger);
      m[2 * i + 1] = widenHigh(larger);
      d[2 * i] = widenLow(difference);
      d[2 * i + 1] = widenHigh(difference);
    }
    if (signs(anyKept) != 0) {
      accurateSums<Grouping::constantFirst, Domain::degree>(std::make_index_sequence<2 * fours>(), rows, m, d,
                                                            sums);
      for (int i = 0; i < fours; ++i)
        floored[i] = select(kept[i], narrow(sums[2 * i], sums[2 * i + 1]), floored[i]);
    }
    for (int i = 0; i < fours; ++i) store4(y + 4 * i, floored[i]);
  }
};

template <int pairs, Grouping grouping = Grouping::constantFirst>
struct Accurate64f {
  static constexpr int lanes = 2 * pairs;

  void operator()(const double *x, double *y) const {
    using Domain = LogDomain64f;
    f64x2 m[pairs], d[pairs], sums[pairs];
    const SegmentPairs<Domain::degree>::Row *rows[pairs];
    f64x2 anyDropped = splat2(0.0), anyKept = splat2(0.0);
    for (int p = 0; p < pairs; ++p) {
      const f64x2 running = load2(y + 2 * p);
      const f64x2 added = load2(x + 2 * p);
      sums[p] = m[p] = max(running, added);
      d[p] = (running - added) | splat2(-0.0);
      const auto inFirst = static_cast<unsigned>(signs(d[p] > splat2(Domain::firstEnd)));
      const auto inSecond = static_cast<unsigned>(signs(d[p] > splat2(Domain::secondEnd)));
      rows[p] = &Domain::pairs().rows[inFirst | inSecond << 2U];
      anyDropped = anyDropped | (d[p] < splat2(Domain::dropBelow));
      anyKept = anyKept | notLess(d[p], splat2(Domain::dropBelow));
    }
    if (signs(anyKept) != 0)
      accurateSums<grouping, Domain::degree>(std::make_index_sequence<pairs>(), rows, m, d, sums);
    if (signs(anyDropped) != 0)
      for (int p = 0; p < pairs; ++p) {
        const f64x2 floored = select(m[p] < splat2(-9e9), splat2(Domain::zero), m[p]);
        sums[p] = select(d[p] < splat2(Domain::dropBelow), floored, sums[p]);
      }
    for (int p = 0; p < pairs; ++p) store2(y + 2 * p, sums[p]);
  }
};

struct Fast32f {
  static constexpr int lanes = 4;

  void operator()(const float *x, float *y) const {
    const f32x4 running = load4(y);
    const f32x4 added = load4(x);
    const f32x4 m = max(running, added);
    const f32x4 distance = andNot(signBits4(), running - added);  // minus the difference
    const f32x4 floored = max(splat4(static_cast<float>(LogDomain32f::zero)), m);
    const f32x4 dropped = distance >= splat4(15.319588F);
    if (signs(dropped) == 15) {
      store4(y, floored);
      return;
    }
    // Lanes that are dropped, or not comparable, look into the first cell. The former are replaced below, the
    // latter become NaN by their place in the cell.
    const f32x4 perCell = splat4(4.177658F);
    const i32x4 cell = truncate((distance & (distance < splat4(15.319588F))) * perCell);
    f32x4 cells[4];
    loadRows4(QIP1_F1 + 1, cell, cells);
    transpose(cells);
    const auto &[a, b, c, unused] = cells;
    const f32x4 nodes = toSingle((cell + cell) + i32x4{_mm_set1_epi32(2)}) * splat4(0.11968428F);
    const f32x4 t = (nodes - distance) * perCell;
    const f32x4 v = t * (b + c * (t - splat4(1.0F)));
    const f32x4 sum =
        narrow((widenLow(m) + widenLow(a)) + widenLow(v), (widenHigh(m) + widenHigh(a)) + widenHigh(v));
    store4(y, select(dropped, floored, sum));
  }
};

// As many whole steps as there are from element i on, which moves on.
template <class Step, class T>
inline void addWhole(const Step &step, const T *src, T *srcDst, std::int32_t len, std::int32_t &i) {
  for (; len - i >= Step::lanes; i += Step::lanes) step(src + i, srcDst + i);
}

// Wide steps first, and the last elements one by one.
template <class Domain, class... Steps, class T>
void addAccurately(const T *src, T *srcDst, std::int32_t len) {
  std::int32_t i = 0;
  (addWhole(Steps(), src, srcDst, len, i), ...);
  const Domain domain;
  for (; i < len; ++i)
    store(srcDst + i, logAddStep<Grouping::constantFirst>(domain, load(srcDst + i), load(src + i)));
}

// The last elements go through padded copies.
void addFast(const float *src, float *srcDst, std::int32_t len) {
  constexpr Fast32f step;
  std::int32_t i = 0;
  addWhole(step, src, srcDst, len, i);
  if (i < len) {
    const auto bytes = static_cast<std::size_t>(len - i) * sizeof(float);
    float x[Fast32f::lanes] = {};
    float y[Fast32f::lanes] = {};
    std::memcpy(x, src + i, bytes);
    std::memcpy(y, srcDst + i, bytes);
    step(x, y);
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

// H u of the tables of degree 21 with its terms taken in pairs: the same value up to rounding, from a fifth
// of the latency.
[[gnu::always_inline]] inline double pairedProduct(const double *c, double u) {
  const double u2 = u * u, u4 = u2 * u2, u8 = u4 * u4;
  const auto four = [&](int i) { return (c[i + 3] + c[i + 2] * u) + (c[i + 1] + c[i] * u) * u2; };
  const double low = four(17) + four(13) * u4;
  const double middle = four(9) + four(5) * u4;
  const double high = four(1) + c[0] * u4;
  return (low * u + high * (u8 * (u8 * u))) + middle * (u8 * u);
}

// As logAddStep, but for its last bits.
template <Grouping grouping>
[[gnu::always_inline]] inline double quickStep(const LogDomain64f &domain, double running, double score) {
  const double m = running > score ? running : score;
  const double d = -std::fabs(running - score);
  if (LogDomain64f::dropBelow > d) return LogDomain64f::floored(m);
  const LogSegment s(domain, d);
  return logTerms<grouping>(m, s.coefficients[LogDomain64f::degree], pairedProduct(s.coefficients, s.u));
}

// Each step waits for the one before, and Horner's chain would be most of that wait. So the sum is run ahead
// by the paired form, which nearly always rounds to the same, and then all steps are taken exactly, side by
// side, from where they began in the run. Up to the first that ends elsewhere they are what single steps
// give. Returns how many.
template <Grouping grouping, std::int32_t ahead>
std::int32_t runAhead(const LogDomain64f &domain, double &running, const double *values) {
  double begins[ahead + 1], ends[ahead];
  begins[0] = running;
  for (std::int32_t k = 0; k < ahead; ++k)
    begins[k + 1] = running = quickStep<grouping>(domain, running, values[k]);
  std::memcpy(ends, begins, sizeof ends);
  Accurate64f<ahead / 2, grouping>()(values, ends);
  for (std::int32_t k = 0; k < ahead; ++k)
    if (std::memcmp(ends + k, begins + k + 1, sizeof running) != 0) {
      running = ends[k];
      return k + 1;
    }
  return ahead;
}

}  // namespace

template <Grouping grouping>
double addInTurn(const LogDomain64f &domain, double running, const double *values, std::int32_t count) {
  constexpr std::int32_t far = 16, near = 4;
  std::int32_t i = 0, single = 0;
  while (i < count) {
    if (single > 0 || count - i < near) {
      running = logAddStep<grouping>(domain, running, values[i++]);
      --single;
      continue;
    }
    const std::int32_t ahead = count - i >= far ? far : near;
    const std::int32_t right = ahead == far ? runAhead<grouping, far>(domain, running, values + i)
                                            : runAhead<grouping, near>(domain, running, values + i);
    i += right;
    single = ahead - right;  // where the run did not come to much, single steps go on for a while
  }
  return running;
}

template double addInTurn<Grouping::constantLast>(const LogDomain64f &, double, const double *, std::int32_t);

}  // namespace orv

using namespace orv;

OrvStatus orvsLogAdd_32f(const float *pSrc, float *pSrcDst, int32_t len, int32_t hint) {
  if (const OrvStatus status = checkLogArrays(len, pSrc, pSrcDst); status != orvStsNoErr) return status;
  if (!isKnownHint(hint)) return orvStsNoErr;  // not an error: nothing is written
  if (hint == orvAlgHintFast) {
    addFast(pSrc, pSrcDst, len);
  } else {
    addAccurately<LogDomain32f, Accurate32f<4>, Accurate32f<2>, Accurate32f<1>>(pSrc, pSrcDst, len);
  }
  return orvStsNoErr;
}

OrvStatus orvsLogAdd_64f(const double *pSrc, double *pSrcDst, int32_t len, int32_t hint) {
  if (const OrvStatus status = checkLogArrays(len, pSrc, pSrcDst); status != orvStsNoErr) return status;
  if (!isKnownHint(hint)) return orvStsNoErr;  // not an error: nothing is written
  addAccurately<LogDomain64f, Accurate64f<8>, Accurate64f<4>, Accurate64f<2>>(pSrc, pSrcDst, len);
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
