// orvsVecMatMul_*, orvsMatVecMul_*: products of a vector and a matrix.

#include <algorithm>
#include <cstdint>

#include "core/integer.h"
#include "orvsr/matrix.h"
#include "primitives/columns.h"
#include "primitives/memory.h"
#include "primitives/reduce.h"
#include "primitives/rows.h"
#include "primitives/simd.h"

namespace orv {
namespace {

using namespace columns;

// --- vector by matrix: a sum of rows

// Four columns at `column` of the rows first, first + 1, ..., and those beside them; n fours in all, the last
// of which stands at lastColumn. Their sums begin at row 0 and grow by w x, row after row.
template <int n, class Rows>
inline void addRows(const float *vec, const Rows &rows, std::int32_t first, std::int32_t end,
                    std::int32_t column, std::int32_t lastColumn, float *sums) {
  simd::f32x4 sum[n];
  for (int i = 0; i < n; ++i) sum[i] = first == 0 ? simd::splat4(0.0F) : simd::load4(sums + 4 * i);
  for (std::int32_t r = first; r < end; ++r) {
    const simd::f32x4 w = simd::splat4(load(vec + r));
    const float *const x = rows.row(r) + column;
    for (int i = 0; i < n - 1; ++i) sum[i] = sum[i] + simd::load4(x + 4 * i) * w;
    sum[n - 1] = sum[n - 1] + simd::load4(x + (lastColumn - column)) * w;
  }
  for (int i = 0; i < n; ++i) simd::store4(sums + 4 * i, sum[i]);
}

// n is anything from 1 to most.
template <int most, class Rows>
[[gnu::noinline]] void addRowsOf(int n, const float *vec, const Rows &rows, std::int32_t first,
                                 std::int32_t end, std::int32_t column, std::int32_t lastColumn,
                                 float *sums) {
  if constexpr (most > 1)
    if (n < most) return addRowsOf<most - 1>(n, vec, rows, first, end, column, lastColumn, sums);
  addRows<most>(vec, rows, first, end, column, lastColumn, sums);
}

// The same for eight rows and any number of fours: rows that are long are read from one end to the other.
constexpr int kLongRows = 8;
template <class Rows>
void addLongRows(const float *vec, const Rows &rows, std::int32_t first, int fours, std::int32_t column,
                 std::int32_t lastColumn, float *sums) {
  const float *x[kLongRows];
  simd::f32x4 w[kLongRows];
  for (int i = 0; i < kLongRows; ++i) {
    x[i] = rows.row(first + i) + column;
    w[i] = simd::splat4(load(vec + first + i));
  }
  const auto add = [&](std::int32_t k, float *p) {
    simd::f32x4 sum = simd::load4(p);
    for (int i = 0; i < kLongRows; ++i) sum = sum + simd::load4(x[i] + k) * w[i];
    simd::store4(p, sum);
  };
  const std::int32_t body = 4 * fours - 4;
  for (std::int32_t k = 0; k < body; k += 4) add(k, sums + k);
  add(lastColumn - column, sums + body);
}

// The sums of sumColumns in the same order, with less around them.
// Eight fours of columns share a row's weight, at the end up to twelve, and rows are taken in blocks that
// stay near. The last four columns may hold some that the four before have too: they are added twice, in the
// same way.
template <class Rows>
void vecMat(const float *vec, const Rows &rows, std::int32_t height, float *dst, std::int32_t width) {
  if (width < 4) {
    sumColumns(WeightedMoments<float, SumSingle>{vec}, rows, height, width, FromZero{},
               [=](std::int32_t c, const auto &total) { store(dst + c, total.sum); });
    return;
  }
  constexpr std::int32_t together = 32, most = 48, nearby = 4096, longRow = 320;
  const std::int32_t rowsAtOnce = std::clamp(nearby / width, 8, 64);
  for (std::int32_t stripe = 0; stripe < width; stripe += std::min(kStripeColumns, width - stripe)) {
    float sums[kStripeColumns];
    const std::int32_t columns = std::min(kStripeColumns, width - stripe), fours = (columns + 3) / 4;
    const std::int32_t lastColumn = std::min(stripe + 4 * fours, width) - 4;
    std::int32_t r = 0;
    if (columns >= longRow) {
      for (int i = 0; i < fours; ++i) simd::store4(sums + 4 * i, simd::splat4(0.0F));
      for (; height - r >= kLongRows; r += kLongRows)
        addLongRows(vec, rows, r, fours, stripe, lastColumn, sums);
    }
    for (std::int32_t end; r < height; r = end) {
      end = r + std::min(rowsAtOnce, height - r);
      std::int32_t c = 0;
      for (; columns - c > most || columns - c == together; c += together)
        addRows<together / 4>(vec, rows, r, end, stripe + c, stripe + c + together - 4, sums + c);
      if (c < columns)
        addRowsOf<most / 4>(fours - c / 4, vec, rows, r, end, stripe + c, lastColumn, sums + c);
    }
    for (int i = 0; i < fours; ++i)
      simd::store4(dst + std::min(stripe + 4 * i, width - 4), simd::load4(sums + 4 * i));
  }
}

template <class Form, class Rows, class Out>
void vecMatScaled(const Form &form, const Rows &rows, std::int32_t height, Out *dst, std::int32_t width,
                  std::int32_t scaleFactor) {
  sumColumns(form, rows, height, width, FromZero{}, [=](std::int32_t c, const auto &total) {
    store(dst + c, saturate<Out>(shiftSum(total.sum, scaleFactor)));
  });
}

using ShortProducts = WeightedMoments<std::int16_t, SumExactWide>;

// --- matrix by vector: a dot product for each row

// Four rows, each in four lanes.
struct FourDots {
  simd::f32x4 a = simd::splat4(0.0F), b = a, c = a, d = a;

  void add(const float *const *rows, std::int32_t column, simd::f32x4 v) {
    a = a + simd::load4(rows[0] + column) * v;
    b = b + simd::load4(rows[1] + column) * v;
    c = c + simd::load4(rows[2] + column) * v;
    d = d + simd::load4(rows[3] + column) * v;
  }
  void add(const float *const *rows, std::int32_t column, simd::f32x4 v, simd::f32x4 mask) {
    a = a + ((simd::load4(rows[0] + column) * v) & mask);
    b = b + ((simd::load4(rows[1] + column) * v) & mask);
    c = c + ((simd::load4(rows[2] + column) * v) & mask);
    d = d + ((simd::load4(rows[3] + column) * v) & mask);
  }
  void put(float *dst) const { simd::store4(dst, simd::sumLanesOfFour(a, b, c, d)); }
};

// Mask of the last count of four lanes.
simd::f32x4 lastOfFour(std::int32_t count) {
  alignas(16) static constexpr std::uint32_t masks[8] = {0, 0, 0, 0, ~0U, ~0U, ~0U, ~0U};
  return simd::load4(reinterpret_cast<const float *>(masks + count));
}

// Rows of four elements or more. A last group of fewer than four is read with the elements before it, and
// only its own products count.
void dotFourRows(const float *const *rows, const float *vec, std::int32_t width, float *dst) {
  FourDots dots;
  std::int32_t c = 0;
  for (; width - c >= 4; c += 4) dots.add(rows, c, simd::load4(vec + c));
  if (c < width) dots.add(rows, width - 4, simd::load4(vec + width - 4), lastOfFour(width - c));
  dots.put(dst);
}
void dotEightRows(const float *const *rows, const float *vec, std::int32_t width, float *dst) {
  FourDots first, second;
  std::int32_t c = 0;
  for (; width - c >= 4; c += 4) {
    const simd::f32x4 v = simd::load4(vec + c);
    first.add(rows, c, v);
    second.add(rows + 4, c, v);
  }
  if (c < width) {
    const simd::f32x4 v = simd::load4(vec + width - 4), mask = lastOfFour(width - c);
    first.add(rows, width - 4, v, mask);
    second.add(rows + 4, width - 4, v, mask);
  }
  first.put(dst);
  second.put(dst + 4);
}

float shortDot(const float *row, const float *vec, std::int32_t width) {
  float sum = 0.0F;
  for (std::int32_t c = 0; c < width; ++c) sum += load(row + c) * load(vec + c);
  return sum;
}

template <class Rows>
void matVec(const Rows &rows, const float *vec, std::int32_t width, float *dst, std::int32_t height) {
  if (width < 4) {
    for (std::int32_t r = 0; r < height; ++r) store(dst + r, shortDot(rows.row(r), vec, width));
    return;
  }
  // Where fewer than eight or four rows are left, the last one takes the places that are free.
  for (std::int32_t r = 0; r < height; r += std::min(8, height - r)) {
    const std::int32_t count = std::min(8, height - r);
    const float *row[8];
    for (std::int32_t k = 0; k < 8; ++k) row[k] = rows.row(r + std::min(k, count - 1));
    float dots[8];
    if (count > 4) {
      dotEightRows(row, vec, width, dots);
    } else {
      dotFourRows(row, vec, width, dots);
    }
    for (std::int32_t k = 0; k < count; ++k) store(dst + r + k, dots[k]);
  }
}

std::int64_t dotProduct(const std::int16_t *row, const std::int16_t *vec, std::int32_t width) {
  std::int64_t sum = 0;
  orvsDotProd_16s64s(row, vec, width, &sum);
  return sum;
}
std::int64_t dotProduct(const std::int32_t *row, const std::int32_t *vec, std::int32_t width) {
  std::int64_t sum = 0;
  for (std::int32_t c = 0; c < width; ++c) sum = addWrap64(sum, std::int64_t{load(row + c)} * load(vec + c));
  return sum;
}

template <class Rows, class Out>
void matVecScaled(const Rows &rows, const typename Rows::Elem *vec, std::int32_t width, Out *dst,
                  std::int32_t height, std::int32_t scaleFactor) {
  for (std::int32_t r = 0; r < height; ++r)
    store(dst + r, saturate<Out>(shiftSum(dotProduct(rows.row(r), vec, width), scaleFactor)));
}

}  // namespace
}  // namespace orv

using namespace orv;

OrvStatus orvsVecMatMul_32f_D2(const float *pVec, const float *pMat, int32_t step, int32_t height,
                               float *pDst, int32_t width) {
  const OrvStatus status = checkNullSizeStride(width, step, height, pVec, pMat, pDst);
  if (status != orvStsNoErr) return status;
  vecMat(pVec, StridedRows{pMat, step}, height, pDst, width);
  return orvStsNoErr;
}

OrvStatus orvsVecMatMul_32f_D2L(const float *pVec, const float *const *ppMat, int32_t height, float *pDst,
                                int32_t width) {
  const OrvStatus status = checkNullSize(width, height, pVec, ppMat, pDst);
  if (status != orvStsNoErr) return status;
  vecMat(pVec, RowPointers{ppMat}, height, pDst, width);
  return orvStsNoErr;
}

OrvStatus orvsVecMatMul_16s_D2Sfs(const int16_t *pVec, const int16_t *pMat, int32_t step, int32_t height,
                                  int16_t *pDst, int32_t width, int32_t scaleFactor) {
  const OrvStatus status = checkNullSizeStride(width, step, height, pVec, pMat, pDst);
  if (status != orvStsNoErr) return status;
  vecMatScaled(ShortProducts{pVec}, StridedRows{pMat, step}, height, pDst, width, scaleFactor);
  return orvStsNoErr;
}

OrvStatus orvsVecMatMul_16s_D2LSfs(const int16_t *pVec, const int16_t *const *ppMat, int32_t height,
                                   int16_t *pDst, int32_t width, int32_t scaleFactor) {
  const OrvStatus status = checkNullSize(width, height, pVec, ppMat, pDst);
  if (status != orvStsNoErr) return status;
  vecMatScaled(ShortProducts{pVec}, RowPointers{ppMat}, height, pDst, width, scaleFactor);
  return orvStsNoErr;
}

OrvStatus orvsVecMatMul_16s32s_D2Sfs(const int16_t *pVec, const int16_t *pMat, int32_t step, int32_t height,
                                     int32_t *pDst, int32_t width, int32_t scaleFactor) {
  const OrvStatus status = checkNullSizeStride(width, step, height, pVec, pMat, pDst);
  if (status != orvStsNoErr) return status;
  vecMatScaled(ShortProducts{pVec}, StridedRows{pMat, step}, height, pDst, width, scaleFactor);
  return orvStsNoErr;
}

OrvStatus orvsVecMatMul_16s32s_D2LSfs(const int16_t *pVec, const int16_t *const *ppMat, int32_t height,
                                      int32_t *pDst, int32_t width, int32_t scaleFactor) {
  const OrvStatus status = checkNullSize(width, height, pVec, ppMat, pDst);
  if (status != orvStsNoErr) return status;
  vecMatScaled(ShortProducts{pVec}, RowPointers{ppMat}, height, pDst, width, scaleFactor);
  return orvStsNoErr;
}

OrvStatus orvsVecMatMul_32s_D2Sfs(const int32_t *pVec, const int32_t *pMat, int32_t step, int32_t height,
                                  int32_t *pDst, int32_t width, int32_t scaleFactor) {
  const OrvStatus status = checkNullSizeStride(width, step, height, pVec, pMat, pDst);
  if (status != orvStsNoErr) return status;
  vecMatScaled(WideProducts{pVec}, StridedRows{pMat, step}, height, pDst, width, scaleFactor);
  return orvStsNoErr;
}

OrvStatus orvsVecMatMul_32s_D2LSfs(const int32_t *pVec, const int32_t *const *ppMat, int32_t height,
                                   int32_t *pDst, int32_t width, int32_t scaleFactor) {
  const OrvStatus status = checkNullSize(width, height, pVec, ppMat, pDst);
  if (status != orvStsNoErr) return status;
  vecMatScaled(WideProducts{pVec}, RowPointers{ppMat}, height, pDst, width, scaleFactor);
  return orvStsNoErr;
}

OrvStatus orvsMatVecMul_32f_D2(const float *pMat, int32_t step, const float *pVec, int32_t width, float *pDst,
                               int32_t height) {
  const OrvStatus status = checkNullSizeStride(width, step, height, pMat, pVec, pDst);
  if (status != orvStsNoErr) return status;
  matVec(StridedRows{pMat, step}, pVec, width, pDst, height);
  return orvStsNoErr;
}

OrvStatus orvsMatVecMul_32f_D2L(const float *const *ppMat, const float *pVec, int32_t width, float *pDst,
                                int32_t height) {
  const OrvStatus status = checkNullSize(width, height, ppMat, pVec, pDst);
  if (status != orvStsNoErr) return status;
  matVec(RowPointers{ppMat}, pVec, width, pDst, height);
  return orvStsNoErr;
}

OrvStatus orvsMatVecMul_16s_D2Sfs(const int16_t *pMat, int32_t step, const int16_t *pVec, int32_t width,
                                  int16_t *pDst, int32_t height, int32_t scaleFactor) {
  const OrvStatus status = checkNullSizeStride(width, step, height, pMat, pVec, pDst);
  if (status != orvStsNoErr) return status;
  matVecScaled(StridedRows{pMat, step}, pVec, width, pDst, height, scaleFactor);
  return orvStsNoErr;
}

OrvStatus orvsMatVecMul_16s_D2LSfs(const int16_t *const *ppMat, const int16_t *pVec, int32_t width,
                                   int16_t *pDst, int32_t height, int32_t scaleFactor) {
  const OrvStatus status = checkNullSize(width, height, ppMat, pVec, pDst);
  if (status != orvStsNoErr) return status;
  matVecScaled(RowPointers{ppMat}, pVec, width, pDst, height, scaleFactor);
  return orvStsNoErr;
}

OrvStatus orvsMatVecMul_16s32s_D2Sfs(const int16_t *pMat, int32_t step, const int16_t *pVec, int32_t width,
                                     int32_t *pDst, int32_t height, int32_t scaleFactor) {
  const OrvStatus status = checkNullSizeStride(width, step, height, pMat, pVec, pDst);
  if (status != orvStsNoErr) return status;
  matVecScaled(StridedRows{pMat, step}, pVec, width, pDst, height, scaleFactor);
  return orvStsNoErr;
}

OrvStatus orvsMatVecMul_16s32s_D2LSfs(const int16_t *const *ppMat, const int16_t *pVec, int32_t width,
                                      int32_t *pDst, int32_t height, int32_t scaleFactor) {
  const OrvStatus status = checkNullSize(width, height, ppMat, pVec, pDst);
  if (status != orvStsNoErr) return status;
  matVecScaled(RowPointers{ppMat}, pVec, width, pDst, height, scaleFactor);
  return orvStsNoErr;
}

OrvStatus orvsMatVecMul_32s_D2Sfs(const int32_t *pMat, int32_t step, const int32_t *pVec, int32_t width,
                                  int32_t *pDst, int32_t height, int32_t scaleFactor) {
  const OrvStatus status = checkNullSizeStride(width, step, height, pMat, pVec, pDst);
  if (status != orvStsNoErr) return status;
  matVecScaled(StridedRows{pMat, step}, pVec, width, pDst, height, scaleFactor);
  return orvStsNoErr;
}

OrvStatus orvsMatVecMul_32s_D2LSfs(const int32_t *const *ppMat, const int32_t *pVec, int32_t width,
                                   int32_t *pDst, int32_t height, int32_t scaleFactor) {
  const OrvStatus status = checkNullSize(width, height, ppMat, pVec, pDst);
  if (status != orvStsNoErr) return status;
  matVecScaled(RowPointers{ppMat}, pVec, width, pDst, height, scaleFactor);
  return orvStsNoErr;
}
