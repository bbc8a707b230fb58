// orvsAccCovarianceMatrix_*: accumulated products of centred features.

#include <algorithm>
#include <cstdint>

#include "core/alloc.h"
#include "orvsr/train.h"
#include "primitives/memory.h"
#include "primitives/rows.h"
#include "primitives/simd.h"

namespace orv {
namespace {

using namespace simd;

// Four differences to the mean. Those of single features are formed in single and then widened.
f64x4 centred(const float *x, const float *mean) { return widen(load4(x) - load4(mean)); }
f64x4 centred(const std::int16_t *x, const std::int16_t *mean) { return toDouble(difference4(x, mean)); }

// Centred rows, four columns next to one another: those of column c of row k, c a multiple of 4, stand at
// c * capacity + 4 k. Zeros fill up the last four.
struct Panel {
  double *values;
  std::int32_t capacity;
  std::int32_t count;

  double *fourColumns(std::int32_t c) const { return values + std::ptrdiff_t{c} * capacity; }
};

template <class Src, class T>
void fillPanel(const Panel &panel, const Src &src, std::int32_t first, const T *mean, std::int32_t width) {
  const std::int32_t body = width - width % 4;
  T restMean[4] = {};
  for (std::int32_t c = body; c < width; ++c) restMean[c - body] = load(mean + c);
  for (std::int32_t k = 0; k < panel.count; ++k) {
    const T *const row = src.row(first + k);
    for (std::int32_t c = 0; c < body; c += 4)
      store4(panel.fourColumns(c) + std::ptrdiff_t{4} * k, centred(row + c, mean + c));
    if (body == width) continue;
    T rest[4] = {};
    for (std::int32_t c = body; c < width; ++c) rest[c - body] = load(row + c);
    store4(panel.fourColumns(body) + std::ptrdiff_t{4} * k, centred(rest, restMean));
  }
}

// Four sums of products of two elements with two: straight has (0, 0) and (1, 1), crossed (0, 1) and (1, 0).
struct TwoByTwo {
  f64x2 straight, crossed;
};

void addProduct(f64x2 &sum, f64x2 a, f64x2 b) { sum = sum + a * b; }

// Such sums from and to two rows of a matrix; on the diagonal without (0, 1), which lies in the upper
// triangle.
TwoByTwo take(const double *upper, const double *lower) {
  const f64x2 u = load2(upper), l = load2(lower);
  return {firstAndSecond(u, l), secondAndFirst(u, l)};
}
void put(const TwoByTwo &sums, double *upper, double *lower) {
  store2(upper, firstAndFirst(sums.straight, sums.crossed));
  store2(lower, swapLanes(secondAndSecond(sums.straight, sums.crossed)));
}
TwoByTwo takeDiagonal(const double *upper, const double *lower) {
  return {pack2(load(upper), load(lower + 1)), pack2(0.0, load(lower))};
}
void putDiagonal(const TwoByTwo &sums, double *upper, double *lower) {
  store(upper, firstOf(sums.straight));
  store2(lower, swapLanes(secondAndSecond(sums.straight, sums.crossed)));
}

// t[k][l] += a[k] * b[l] for the elements a = i + k and b = j + l of each row of the panel in turn: the order
// in which every element of the matrix grows.
void addProducts(const Panel &panel, std::int32_t i, std::int32_t j, double *t0, double *t1, double *t2,
                 double *t3) {
  TwoByTwo nw = take(t0, t1), ne = take(t0 + 2, t1 + 2), sw = take(t2, t3), se = take(t2 + 2, t3 + 2);
  const double *const a = panel.fourColumns(i);
  const double *const b = panel.fourColumns(j);
  const std::ptrdiff_t end = std::ptrdiff_t{4} * panel.count;
  for (std::ptrdiff_t k = 0; k < end; k += 4) {
    const f64x2 a0 = load2(a + k), a1 = load2(a + k + 2), b0 = load2(b + k), b1 = load2(b + k + 2);
    const f64x2 s0 = swapLanes(b0), s1 = swapLanes(b1);
    addProduct(nw.straight, a0,
               b0);  // both products of a vector in turn, so that the second may overwrite it
    addProduct(sw.straight, a1, b0);
    addProduct(nw.crossed, a0, s0);
    addProduct(sw.crossed, a1, s0);
    addProduct(ne.straight, a0, b1);
    addProduct(se.straight, a1, b1);
    addProduct(ne.crossed, a0, s1);
    addProduct(se.crossed, a1, s1);
  }
  put(nw, t0, t1);
  put(ne, t0 + 2, t1 + 2);
  put(sw, t2, t3);
  put(se, t2 + 2, t3 + 2);
}

// The same for j = i: what lies in the upper triangle is neither read nor written.
void addSquares(const Panel &panel, std::int32_t i, double *t0, double *t1, double *t2, double *t3) {
  TwoByTwo nw = takeDiagonal(t0, t1), sw = take(t2, t3), se = takeDiagonal(t2 + 2, t3 + 2);
  const double *const a = panel.fourColumns(i);
  const std::ptrdiff_t end = std::ptrdiff_t{4} * panel.count;
  for (std::ptrdiff_t k = 0; k < end; k += 4) {
    const f64x2 a0 = load2(a + k), a1 = load2(a + k + 2);
    const f64x2 s0 = swapLanes(a0);
    addProduct(nw.straight, a0, a0);
    addProduct(nw.crossed, a0, s0);
    addProduct(sw.straight, a1, a0);
    addProduct(sw.crossed, a1, s0);
    addProduct(se.straight, a1, a1);
    addProduct(se.crossed, a1, swapLanes(a1));
  }
  putDiagonal(nw, t0, t1);
  put(sw, t2, t3);
  putDiagonal(se, t2 + 2, t3 + 2);
}

template <class Dst>
void addPanel(const Panel &panel, const Dst &dst, std::int32_t width) {
  for (std::int32_t i = 0; i < width; i += 4) {
    // The rows that the last tiles lack: sums of zeros, which nobody reads.
    double none[4] = {};
    const std::int32_t rows = std::min(4, width - i);
    const auto at = [&](std::int32_t k, std::int32_t j) { return k < rows ? dst.row(i + k) + j : none; };
    for (std::int32_t j = 0; j < i; j += 4) addProducts(panel, i, j, at(0, j), at(1, j), at(2, j), at(3, j));
    addSquares(panel, i, at(0, i), at(1, i), at(2, i), at(3, i));
  }
}

// The factor scales what the triangle held before as well, and what the upper triangle held is lost without
// having been read: callers that accumulate over several calls give the factor to the last one only.
template <class Dst>
void scaleAndMirror(const Dst &dst, std::int32_t width, double factor) {
  for (std::int32_t i = 0; i < width; ++i)
    for (std::int32_t j = 0; j <= i; ++j) {
      const double value = load(dst.row(i) + j) * factor;
      store(dst.row(i) + j, value);
      store(dst.row(j) + i, value);
    }
}

template <class Src, class T, class Dst>
OrvStatus accumulate(const Src &src, std::int32_t height, const T *mean, const Dst &dst, std::int32_t width,
                     double factor) {
  constexpr std::int32_t stackWidth = 512;
  constexpr std::int32_t stackRows = 8;
  const std::int64_t columns = (std::int64_t{width} + 3) / 4 * 4;
  const bool onStack = width <= stackWidth;
  StackArray<double, stackWidth * stackRows> values(stackRows * columns, onStack);
  if (!values) return orvStsMemAllocErr;
  const auto capacity = onStack ? stackWidth * stackRows / static_cast<std::int32_t>(columns) : stackRows;
  for (std::int32_t r = 0, count; r < height; r += count) {
    count = std::min(capacity, height - r);
    const Panel panel{values.get(), capacity, count};
    fillPanel(panel, src, r, mean, width);
    addPanel(panel, dst, width);
  }
  scaleAndMirror(dst, width, factor);
  return orvStsNoErr;
}

// Pointers, sizes, strides.
template <class T>
OrvStatus accumulateStrided(const T *src, std::int32_t height, std::int32_t srcStep, const T *mean,
                            double *dst, std::int32_t dstStep, std::int32_t width, double factor) {
  const OrvStatus status = checkNullSizeStride(width, std::min(srcStep, dstStep), height, src, mean, dst);
  if (status != orvStsNoErr) return status;
  return accumulate(StridedRows{src, srcStep}, height, mean, StridedRows{dst, dstStep}, width, factor);
}

template <class T>
OrvStatus accumulateRows(const T *const *src, std::int32_t height, const T *mean, double *const *dst,
                         std::int32_t width, double factor) {
  const OrvStatus status = checkNullSize(width, height, src, mean, dst);
  if (status != orvStsNoErr) return status;
  return accumulate(RowPointers{src}, height, mean, RowPointers{dst}, width, factor);
}

}  // namespace
}  // namespace orv

using namespace orv;

OrvStatus orvsAccCovarianceMatrix_32f64f_D2(const float *pSrc, int32_t height, int32_t srcStep,
                                            const float *pMean, double *pDst, int32_t dstStep, int32_t width,
                                            double factor) {
  return accumulateStrided(pSrc, height, srcStep, pMean, pDst, dstStep, width, factor);
}

OrvStatus orvsAccCovarianceMatrix_16s64f_D2(const int16_t *pSrc, int32_t height, int32_t srcStep,
                                            const int16_t *pMean, double *pDst, int32_t dstStep,
                                            int32_t width, double factor) {
  return accumulateStrided(pSrc, height, srcStep, pMean, pDst, dstStep, width, factor);
}

OrvStatus orvsAccCovarianceMatrix_32f64f_D2L(const float *const *ppSrc, int32_t height, const float *pMean,
                                             double *const *ppDst, int32_t width, double factor) {
  return accumulateRows(ppSrc, height, pMean, ppDst, width, factor);
}

OrvStatus orvsAccCovarianceMatrix_16s64f_D2L(const int16_t *const *ppSrc, int32_t height,
                                             const int16_t *pMean, double *const *ppDst, int32_t width,
                                             double factor) {
  return accumulateRows(ppSrc, height, pMean, ppDst, width, factor);
}
