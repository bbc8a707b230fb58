// orvsDurbin_*, orvsSchur_*, orvsLinearPrediction*: linear prediction of a frame.

#include <cstdint>

#include "core/alloc.h"
#include "orvsr/frontend.h"
#include "primitives/autocorr.h"
#include "primitives/convert.h"
#include "primitives/memory.h"
#include "primitives/simd.h"

using namespace orv;

namespace {

// Lengths and orders below these have their working memory on the stack.
constexpr std::int32_t kStackOrder = 64;
constexpr std::int32_t kSchurStackOrder = 1024;

// At these orders, and at no other, a stage up to the fourth stores its own coefficient ahead of the test
// that it fails. That is odd and stays: callers see what dst holds.
bool storesBeforeItsTest(std::int32_t order, std::int32_t stage) {
  return order >= 9 && order <= 12 && stage <= 4;
}

// The Levinson-Durbin recursion. dst holds the coefficients of the last completed order when it fails.
OrvStatus durbin(const float *r, float *dst, std::int32_t order, float *err) {
  const float r0 = load(r);
  if (!(r0 > 0)) return orvStsDurbinErr;
  float k = load(r + 1) / r0;
  float e = r0 * (1 - k * k);
  if (!(e > 0)) return orvStsDurbinErr;
  StackArray<float, kStackOrder> scratch(std::int64_t{order} + 1, order < kStackOrder);
  if (!scratch) return orvStsMemAllocErr;
  float *a = scratch.get();
  a[0] = 0 - k;
  std::int32_t m = 2;  // coefficients below m - 1 stand
  for (; m <= order; ++m) {
    float s = load(r + m);
    for (std::int32_t j = 1; j < m; ++j) s += load(r + m - j) * a[j - 1];
    k = s / e;
    e = e * (1 - k * k);
    if (!(e > 0)) {
      if (storesBeforeItsTest(order, m)) store(dst + m - 1, 0 - k);
      break;
    }
    // From both ends towards the middle, where an element meets itself.
    for (std::int32_t low = 0, high = m - 2; low <= high; ++low, --high) {
      const float x = a[low], y = a[high];
      a[low] = x - y * k;
      a[high] = y - x * k;
    }
    a[m - 1] = 0 - k;
  }
  orvsCopy_32f(a, dst, m - 1);
  if (m <= order) return orvStsDurbinErr;
  store(err, e);
  return orvStsNoErr;
}

// `negated` flips the signs of whatever the recursion left, failed or not: callers find it so.
template <bool negated>
OrvStatus predictionAuto(const float *src, std::int32_t len, float *dst, std::int32_t order) {
  StackArray<float, kStackOrder> lags(std::int64_t{order} + 1, order + std::int64_t{1} < kStackOrder);
  if (!lags) return orvStsMemAllocErr;
  if (const OrvStatus status = orvsAutoCorr_32f(src, len, lags.get(), order + 1); status != orvStsNoErr)
    return status;
  float err;
  const OrvStatus status = durbin(lags.get(), dst, order, &err);
  if (negated)
    for (std::int32_t i = 0; i < order; ++i) store(dst + i, 0 - load(dst + i));
  return status;
}

// The k-th row of the lower triangle, and of the packed factor.
std::int64_t triangle(std::int64_t row) { return row * (row + 1) / 2; }

// phi[j] = sum over i = 0 .. n - r - 2 of x[i] x[i + r - j], j = 0 .. r. The upper limit depends on the row
// alone; this is not the strict covariance window, and callers rely on it. Products are rounded to single,
// their sums kept in double.
void covarianceRow(const float *x, std::int32_t n, std::int32_t r, float *phi) {
  const std::int32_t terms = n - r - 1;
  std::int32_t j = 0;
  for (; r - j >= 3; j += 4) {
    // Lane m is column j + 3 - m.
    const float *shifted = x + (r - j - 3);
    simd::f64x2 low{}, high{};
    for (std::int32_t i = 0; i < terms; ++i) {
      const simd::f32x4 products = simd::splat4(load(x + i)) * simd::load4(shifted + i);
      low = low + simd::widenLow(products);
      high = high + simd::widenHigh(products);
    }
    double sums[4];
    simd::store2(sums, low);
    simd::store2(sums + 2, high);
    for (std::int32_t m = 0; m < 4; ++m) phi[j + 3 - m] = static_cast<float>(sums[m]);
  }
  for (; j <= r; ++j) {
    double sum = 0;
    for (std::int32_t i = 0; i < terms; ++i) sum += static_cast<double>(load(x + i) * load(x + i + r - j));
    phi[j] = static_cast<float>(sum);
  }
}

OrvStatus predictionCov(const float *x, std::int32_t n, float *dst, std::int32_t order) {
  const std::int64_t p = order, packed = triangle(p - 1);
  const std::int64_t blockLen = packed + triangle(p) + 3 * p;
  if (blockLen > INT32_MAX) return orvStsMemAllocErr;
  const WorkArray<float> block(static_cast<std::int32_t>(blockLen));
  if (!block) return orvStsMemAllocErr;
  const WorkArray<float> scaledRow(order);
  if (!scaledRow) return orvStsMemAllocErr;
  float *l = block.get(), *phi = l + packed, *c = phi + triangle(p), *d = c + p, *y = d + p;
  float *w = scaledRow.get();

  // Lags go in whole groups, of which the last may hold too many, so that every sum is added in order: no bit
  // of a predictor may depend on where the frame lies.
  std::int32_t done = (order < n ? order : n - 1) & ~3;
  ownsLagSums_32f(x, n, 1, done, c);
  if (done < order && done + 4 < n) {
    float last[4];
    ownsLagSums_32f(x, n, done + 1, 4, last);
    for (; done < order; ++done) c[done] = last[done % 4];
  }
  // Orders near the length; the last sum has no term when they are equal.
  for (; done < order; ++done) {
    c[done] = 0;
    for (std::int32_t i = 0; i < n - done - 1; ++i) c[done] += load(x + i) * load(x + i + done + 1);
  }
  for (std::int32_t r = 0; r < order; ++r) covarianceRow(x, n, r, phi + triangle(r));

  d[0] = phi[0];
  for (std::int32_t i = 1; i < order; ++i) {
    float *row = l + triangle(i - 1);
    const float *phiRow = phi + triangle(i);
    for (std::int32_t j = 0; j < i; ++j) {
      float v = phiRow[j];
      // The sum runs over the start of the packed factor, not over its row j. It is the row for j = 1 only,
      // so from order 4 on this is no exact factorisation. Stored predictors depend on it: leave it.
      for (std::int32_t m = 0; m < j; ++m) v -= w[m] * l[m];
      row[j] = v / d[j];
      w[j] = row[j] * d[j];
    }
    float v = phiRow[i];
    for (std::int32_t m = 0; m < i; ++m) v -= w[m] * row[m];
    d[i] = v;
  }
  // A zero pivot is not tested for: infinities and NaNs run through.
  for (std::int32_t i = 0; i < order; ++i) {
    float v = c[i];
    for (std::int32_t m = 0; m < i; ++m) v -= l[triangle(i - 1) + m] * y[m];
    y[i] = v;
  }
  for (std::int32_t i = order - 1; i >= 0; --i) {
    float v = y[i] / d[i];
    for (std::int32_t m = order - 1; m > i; --m) v -= l[triangle(m - 1) + i] * load(dst + m);
    store(dst + i, v);
  }
  return orvStsNoErr;
}

// The Schur recursion; g and p have places 1 .. order. Nothing tests the divisors.
template <class T>
struct SchurArrays {
  StackArray<float, kSchurStackOrder> g, p, k;

  SchurArrays(const T *src, std::int32_t order)
      : g(std::int64_t{order} + 1, order < kSchurStackOrder),
        p(std::int64_t{order} + 1, order < kSchurStackOrder),
        k(std::int64_t{order} + 1, order < kSchurStackOrder) {
    if (!allocated()) return;
    for (std::int32_t i = 1; i <= order; ++i) {
      g.get()[i] = static_cast<float>(load(src + i - 1));
      p.get()[i] = static_cast<float>(load(src + i));
    }
  }
  bool allocated() const { return g && p && k; }

  // Leaves the reflection coefficients in k and returns the error.
  float run(std::int32_t order) {
    float *a = g.get(), *b = p.get();
    float reflection = 0;
    for (std::int32_t m = 1; m <= order; ++m) {
      reflection = (0 - b[m]) / a[m];
      k.get()[m - 1] = reflection;
      for (std::int32_t i = order; i > m; --i) {
        b[i] = reflection * a[i] + b[i];
        a[i] = reflection * b[i - 1] + a[i - 1];
      }
    }
    return b[order] * reflection + a[order];
  }
};

// Pointers, size, then the error pointer: callers rely on this order.
OrvStatus checkRecursion(const void *src, const void *dst, std::int32_t order, const void *err) {
  if (src == nullptr || dst == nullptr) return orvStsNullPtrErr;
  if (order < 1) return orvStsSizeErr;
  return err == nullptr ? orvStsNullPtrErr : orvStsNoErr;
}

OrvStatus checkPrediction(const void *src, std::int32_t len, const void *dst, std::int32_t order) {
  if (src == nullptr || dst == nullptr) return orvStsNullPtrErr;
  return len < 1 || order < 1 || order > len ? orvStsSizeErr : orvStsNoErr;
}

// A frame of integers through a predictor of singles.
template <class Predict>
OrvStatus predictIntegers(const std::int16_t *src, std::int32_t len, std::int16_t *dst, std::int32_t order,
                          std::int32_t scaleFactor, bool convertAlways, Predict predict) {
  const bool onStack = len < kStackOrder && order < kStackOrder;
  StackArray<float, kStackOrder> x(len, onStack), a(order, onStack);
  if (!x || !a) return orvStsMemAllocErr;
  orvsConvert_16s32f(src, x.get(), len);
  orvsZero_32f(a.get(), order);
  const OrvStatus status = predict(x.get(), len, a.get(), order);
  if (status != orvStsNoErr && !convertAlways) return status;
  orvsConvert_32f16s_Sfs(a.get(), dst, order, kRoundNearestEven, scaleFactor);
  return status;
}

}  // namespace

OrvStatus orvsDurbin_32f(const float *pSrc, float *pDst, int32_t order, float *pErr) {
  const OrvStatus status = checkRecursion(pSrc, pDst, order, pErr);
  if (status != orvStsNoErr) return status;
  return durbin(pSrc, pDst, order, pErr);
}

OrvStatus orvsDurbin_16s_Sfs(const int16_t *pSrc, int16_t *pDst, int32_t order, float *pErr,
                             int32_t scaleFactor) {
  if (const OrvStatus status = checkRecursion(pSrc, pDst, order, pErr); status != orvStsNoErr) return status;
  if (order == INT32_MAX) return orvStsMemAllocErr;
  StackArray<float, kStackOrder> r(std::int64_t{order} + 1, order < kStackOrder),
      a(order, order < kStackOrder);
  if (!r || !a) return orvStsMemAllocErr;
  orvsConvert_16s32f(pSrc, r.get(), order + 1);
  const OrvStatus status = durbin(r.get(), a.get(), order, pErr);
  if (status != orvStsNoErr) return status;
  return orvsConvert_32f16s_Sfs(a.get(), pDst, order, kRoundNearestEven, scaleFactor);
}

OrvStatus orvsSchur_32f(const float *pSrc, float *pDst, int32_t order, float *pErr) {
  if (const OrvStatus status = checkRecursion(pSrc, pDst, order, pErr); status != orvStsNoErr) return status;
  SchurArrays<float> arrays(pSrc, order);
  if (!arrays.allocated()) return orvStsMemAllocErr;
  store(pErr, arrays.run(order));
  return orvsCopy_32f(arrays.k.get(), pDst, order);
}

OrvStatus orvsSchur_16s_Sfs(const int16_t *pSrc, int16_t *pDst, int32_t order, float *pErr,
                            int32_t scaleFactor) {
  if (const OrvStatus status = checkRecursion(pSrc, pDst, order, pErr); status != orvStsNoErr) return status;
  SchurArrays<std::int16_t> arrays(pSrc, order);
  if (!arrays.allocated()) return orvStsMemAllocErr;
  store(pErr, arrays.run(order));
  return orvsConvert_32f16s_Sfs(arrays.k.get(), pDst, order, kRoundNearestEven, scaleFactor);
}

OrvStatus orvsLinearPrediction_Auto_32f(const float *pSrc, int32_t len, float *pDst, int32_t order) {
  if (const OrvStatus status = checkPrediction(pSrc, len, pDst, order); status != orvStsNoErr) return status;
  return predictionAuto<false>(pSrc, len, pDst, order);
}

OrvStatus orvsLinearPredictionNeg_Auto_32f(const float *pSrc, int32_t len, float *pDst, int32_t order) {
  if (const OrvStatus status = checkPrediction(pSrc, len, pDst, order); status != orvStsNoErr) return status;
  return predictionAuto<true>(pSrc, len, pDst, order);
}

OrvStatus orvsLinearPrediction_Auto_16s_Sfs(const int16_t *pSrc, int32_t len, int16_t *pDst, int32_t order,
                                            int32_t scaleFactor) {
  if (const OrvStatus status = checkPrediction(pSrc, len, pDst, order); status != orvStsNoErr) return status;
  return predictIntegers(pSrc, len, pDst, order, scaleFactor, false, predictionAuto<false>);
}

OrvStatus orvsLinearPredictionNeg_Auto_16s_Sfs(const int16_t *pSrc, int32_t len, int16_t *pDst, int32_t order,
                                               int32_t scaleFactor) {
  if (const OrvStatus status = checkPrediction(pSrc, len, pDst, order); status != orvStsNoErr) return status;
  return predictIntegers(pSrc, len, pDst, order, scaleFactor, false, predictionAuto<true>);
}

OrvStatus orvsLinearPrediction_Cov_32f(const float *pSrc, int32_t len, float *pDst, int32_t order) {
  if (const OrvStatus status = checkPrediction(pSrc, len, pDst, order); status != orvStsNoErr) return status;
  return predictionCov(pSrc, len, pDst, order);
}

OrvStatus orvsLinearPrediction_Cov_16s_Sfs(const int16_t *pSrc, int32_t len, int16_t *pDst, int32_t order,
                                           int32_t scaleFactor) {
  if (const OrvStatus status = checkPrediction(pSrc, len, pDst, order); status != orvStsNoErr) return status;
  // Alone among the integer forms this one converts its result after a failure too.
  return predictIntegers(pSrc, len, pDst, order, scaleFactor, true, predictionCov);
}
