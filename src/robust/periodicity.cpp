// orvsPeriodicity_*, orvsPeriodicityLSPE_*: the lag at which a sequence repeats.

#include <cmath>
#include <cstdint>

#include "core/integer.h"
#include "orvsr/robust.h"
#include "primitives/memory.h"
#include "primitives/simd.h"

using namespace orv;

namespace {

// 1 / n and 1 / sqrt(n), in single and to the nearest integer with 30 fractional bits. A least-squares comb
// has at most 16 samples, since no sequence is longer than 16 periods.
constexpr float ONE_OVER_N[17] = {0,        1,        1.F / 2,  1.F / 3,  1.F / 4,  1.F / 5,
                                  1.F / 6,  1.F / 7,  1.F / 8,  1.F / 9,  1.F / 10, 1.F / 11,
                                  1.F / 12, 1.F / 13, 1.F / 14, 1.F / 15, 1.F / 16};
constexpr float ONE_OVER_SQRTN[17] = {0,
                                      1,
                                      0.707106781F,
                                      0.577350269F,
                                      0.5F,
                                      0.447213595F,
                                      0.40824829046F,  // a hair above the middle of two single values
                                      0.377964473F,
                                      0.353553391F,
                                      0.333333333F,
                                      0.316227766F,
                                      0.301511345F,
                                      0.288675135F,
                                      0.277350098F,
                                      0.267261242F,
                                      0.25819889F,
                                      0.25F};
constexpr std::int32_t ONE_OVER_N_Q30[17] = {
    0,         1073741824, 536870912, 357913941, 268435456, 214748365, 178956971, 153391689, 134217728,
    119304647, 107374182,  97612893,  89478485,  82595525,  76695845,  71582788,  67108864};
constexpr std::int32_t ONE_OVER_SQRTN_Q30[17] = {
    0,         1073741824, 759250125, 619925131, 536870912, 480191942, 438353264, 405836263, 379625062,
    357913941, 339546978,  323745341, 309962566, 297802400, 286969573, 277238947, 268435456};

// The samples of a comb beyond its first.
constexpr std::int32_t kCombTail = 5;

OrvStatus checkComb(std::int32_t len, std::int32_t maxPeriod, std::int32_t minPeriod) {
  if (minPeriod < 1 || maxPeriod <= minPeriod) return orvStsRangeErr;
  if (len <= maxPeriod || len > 4096) return orvStsLenRangeErr;
  return orvStsNoErr;
}

OrvStatus checkLeastSquares(std::int32_t len, std::int32_t maxPeriod, std::int32_t minPeriod) {
  if (minPeriod < 6 || maxPeriod <= minPeriod) return orvStsRangeErr;
  if (len <= maxPeriod || len > 1024 || len > 16 * std::int64_t{minPeriod}) return orvStsLenRangeErr;
  return orvStsNoErr;
}

template <class T>
bool anyNegative(const T *src, std::int32_t len) {
  for (std::int32_t i = 0; i < len; ++i)
    if (load(src + i) < 0) return true;
  return false;
}

// visit(p, c, n) for every period p and phase: c is the sum of the phase's comb, of n samples.
template <class Sum, class T, class Visit>
void overCombs(const T *src, std::int32_t len, std::int32_t maxPeriod, std::int32_t minPeriod, Visit visit) {
  for (std::int32_t p = minPeriod; p <= maxPeriod; ++p)
    for (std::int32_t f = 0; f < p; ++f) {
      Sum c = load(src + f);
      std::int32_t n = 1;
      for (; n <= kCombTail && f + n * p < len; ++n) c += load(src + f + n * p);
      visit(p, c, n);
    }
}

// visit(a, b, n) for every phase of period p: the sum of its samples, the sum of what square() makes of them,
// and how many they are.
template <class Sum, class T, class Square, class Visit>
void overPhases(const T *src, std::int32_t len, std::int32_t p, Square square, Visit visit) {
  for (std::int32_t f = 0; f < p; ++f) {
    Sum a = 0, b = 0;
    std::int32_t n = 0;
    for (std::int32_t i = f; i < len; i += p, ++n) {
      const Sum x = load(src + i);
      a += x;
      b = static_cast<Sum>(b + square(x));
    }
    visit(a, b, n);
  }
}

// The sum of the squares, the first one ahead of the others, which are grouped by the alignment of the second
// element: one by one up to a 16-byte boundary, then by eights in two accumulators.
float energy(const float *src, std::int32_t len) {
  const float first = load(src);
  float sum = first * first;
  ++src;
  --len;
  const std::int32_t head = alignedHead(src, len);
  std::int32_t i = 0;
  const auto add = [&] {
    const float x = load(src + i);
    sum += x * x;
  };
  for (; i < head; ++i) add();
  if (len - i >= 8) {
    simd::f32x8 sums{simd::firstLane4(sum), {}};
    for (; len - i >= 8; i += 8) {
      const simd::f32x8 x{simd::load4(src + i), simd::load4(src + i + 4)};
      sums = sums + x * x;
    }
    sum = simd::sumLanes(sums);
  }
  for (; i < len; ++i) add();
  return sum;
}

// A wide sum brought into 31 bits; returns by how many bits it was shifted.
std::int32_t reduce(std::int64_t *sum) {
  std::int32_t shift = 0;
  for (; *sum > INT32_MAX; *sum >>= 1) ++shift;
  return shift;
}

std::int16_t ratioQ15(std::int64_t numerator, std::int32_t denominator) {
  const std::int64_t v = numerator * 32768 / denominator;
  return static_cast<std::int16_t>(v >= INT16_MAX ? INT16_MAX : v);
}

}  // namespace

OrvStatus orvsPeriodicity_32f(const float *pSrc, int32_t len, float *pResult, int32_t *pPeriod,
                              int32_t maxPeriod, int32_t minPeriod) {
  if (pSrc == nullptr || pResult == nullptr || pPeriod == nullptr) return orvStsNullPtrErr;
  const OrvStatus status = checkComb(len, maxPeriod, minPeriod);
  if (status != orvStsNoErr) return status;
  if (anyNegative(pSrc, len)) return orvStsRangeErr;
  float total = 0;
  for (std::int32_t i = len - 1; i >= 0; --i) total += load(pSrc + i);  // from the last to the first
  store(pPeriod, 0);
  store(pResult, 0.0F);
  const float most = total > 0 ? total : 0;
  if (std::fabs(total) <= std::fabs(static_cast<double>(most) * 1e-6)) return orvStsNoErr;
  // The first of equal combs wins: the smallest period, then the smallest phase.
  float best = 0, raw = 0;
  std::int32_t period = 0;
  overCombs<float>(pSrc, len, maxPeriod, minPeriod, [&](std::int32_t p, float c, std::int32_t n) {
    const float mean = c * ONE_OVER_N[n];
    if (!(mean > best)) return;
    best = mean;
    raw = c;
    period = p;
  });
  store(pPeriod, period);
  store(pResult, raw / total);  // the winner's sum, not its mean
  return orvStsNoErr;
}

OrvStatus orvsPeriodicity_32s16s(const int32_t *pSrc, int32_t len, int16_t *pResult, int32_t *pPeriod,
                                 int32_t maxPeriod, int32_t minPeriod) {
  if (pSrc == nullptr || pResult == nullptr || pPeriod == nullptr) return orvStsNullPtrErr;
  const OrvStatus status = checkComb(len, maxPeriod, minPeriod);
  if (status != orvStsNoErr) return status;
  if (anyNegative(pSrc, len)) return orvStsRangeErr;
  std::int64_t total = 0;
  for (std::int32_t i = 0; i < len; ++i) total += load(pSrc + i);
  const std::int32_t shift = reduce(&total);
  store(pPeriod, 0);
  store(pResult, std::int16_t{0});
  if (total == 0) return orvStsNoErr;
  std::int32_t best = 0, period = 0;
  std::int64_t raw = 0;
  overCombs<std::int64_t>(pSrc, len, maxPeriod, minPeriod,
                          [&](std::int32_t p, std::int64_t c, std::int32_t n) {
                            const std::int32_t score = wrap32((ONE_OVER_N_Q30[n] * c) >> 30);
                            if (score <= best) return;
                            best = score;
                            raw = c >> shift;
                            period = p;
                          });
  store(pPeriod, period);
  store(pResult, ratioQ15(raw, static_cast<std::int32_t>(total)));
  return orvStsNoErr;
}

OrvStatus orvsPeriodicityLSPE_32f(const float *pSrc, int32_t len, float *pResult, int32_t *pPeriod,
                                  int32_t maxPeriod, int32_t minPeriod) {
  if (pSrc == nullptr || pResult == nullptr || pPeriod == nullptr) return orvStsNullPtrErr;
  const OrvStatus status = checkLeastSquares(len, maxPeriod, minPeriod);
  if (status != orvStsNoErr) return status;
  const float total = energy(pSrc, len);
  float best = 0;
  std::int32_t period = 0;
  for (std::int32_t p = minPeriod; p <= maxPeriod; ++p) {
    float u = 0, w = 0;
    overPhases<float>(
        pSrc, len, p, [](float x) { return x * x; },
        [&](float a, float b, std::int32_t n) {
          const float projection = a * ONE_OVER_SQRTN[n];
          u += projection * projection;
          w += b * ONE_OVER_N[n];
        });
    const float numerator = u - w, denominator = total - w;
    if (!(numerator > 0) || !(denominator > 0)) continue;
    const float ratio = numerator / denominator;
    if (!(ratio > best)) continue;
    best = ratio;
    period = p;
  }
  store(pResult, best);
  store(pPeriod, period);
  return orvStsNoErr;
}

OrvStatus orvsPeriodicityLSPE_16s(const int16_t *pSrc, int32_t len, int16_t *pResult, int32_t *pPeriod,
                                  int32_t maxPeriod, int32_t minPeriod) {
  if (pSrc == nullptr || pResult == nullptr || pPeriod == nullptr) return orvStsNullPtrErr;
  const OrvStatus status = checkLeastSquares(len, maxPeriod, minPeriod);
  if (status != orvStsNoErr) return status;
  std::int64_t energy = 0;
  for (std::int32_t i = 0; i < len; ++i) {
    const std::int64_t x = load(pSrc + i);
    energy += x * x;
  }
  // The two factors of a square take out the shift of the energy together, half of it each, rounded down and
  // up.
  const std::int32_t shift = reduce(&energy), half = shift >> 1;
  const std::int32_t total = wrap32(energy);
  std::int16_t best = 0;
  std::int32_t period = 0;
  for (std::int32_t p = minPeriod; p <= maxPeriod; ++p) {
    std::int32_t u = 0, w = 0;
    overPhases<std::int32_t>(
        pSrc, len, p, [shift](std::int32_t x) { return (x * x) >> shift; },
        [&](std::int32_t a, std::int32_t b, std::int32_t n) {
          const std::int64_t t = std::int64_t{a} * ONE_OVER_SQRTN_Q30[n];
          u = wrap32(u + (t >> (half + 30)) * (t >> (shift - half + 30)));
          w = addWrap32(w, wrap32((std::int64_t{b} * ONE_OVER_N_Q30[n]) >> 30));
        });
    const std::int32_t numerator = subWrap32(u, w), denominator = subWrap32(total, w);
    if (denominator < 1 || numerator < 1) continue;
    const std::int16_t ratio = ratioQ15(numerator, denominator);
    if (ratio <= best) continue;
    best = ratio;
    period = p;
  }
  store(pResult, best);
  store(pPeriod, period);
  return orvStsNoErr;
}
