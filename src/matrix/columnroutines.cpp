// The support routines of the decomposition: sums and updates along one column of a matrix of row pointers,
// and along one row.

#include <cmath>
#include <cstdint>

#include "matrix/lines.h"
#include "orvsr/matrix.h"
#include "primitives/memory.h"

using namespace orv;
using namespace orv::matrix;

namespace {

// The part of a column from a first row on.
template <class Row>
struct Column {
  Row *const *rows;
  std::int32_t first, count, column;

  template <class Visit>
  void each(Visit visit) const {
    for (std::int32_t r = first; r < count; ++r) visit(rows[r] + column);
  }
};

bool outside(std::int32_t index, std::int32_t count) { return index < 0 || index >= count; }

OrvStatus check(const void *matrix, const void *result, std::int32_t columns, std::int32_t rows,
                std::int32_t column1, std::int32_t column2, std::int32_t firstRow) {
  if (matrix == nullptr || result == nullptr) return orvStsNullPtrErr;
  if (columns < 1 || rows < 1 || outside(column1, columns) || outside(column2, columns) ||
      outside(firstRow, rows))
    return orvStsSizeErr;
  return orvStsNoErr;
}

OrvStatus checkRow(const void *a, const void *b, std::int32_t len) {
  if (a == nullptr || b == nullptr) return orvStsNullPtrErr;
  return len < 1 ? orvStsSizeErr : orvStsNoErr;
}

}  // namespace

OrvStatus orvsSumColumnAbs_64f_D2L(const double *const *ppSrc, int32_t columns, int32_t rows, double *pSum,
                                   int32_t column, int32_t firstRow) {
  if (const OrvStatus status = check(ppSrc, pSum, columns, rows, column, column, firstRow);
      status != orvStsNoErr)
    return status;
  double sum = 0;
  Column<const double>{ppSrc, firstRow, rows, column}.each(
      [&](const double *x) { sum += std::fabs(load(x)); });
  store(pSum, sum);
  return orvStsNoErr;
}

OrvStatus orvsSumColumnSqr_64f_D2L(double *const *ppSrcDst, int32_t columns, int32_t rows, double *pSum,
                                   int32_t column, int32_t firstRow, double factor) {
  if (const OrvStatus status = check(ppSrcDst, pSum, columns, rows, column, column, firstRow);
      status != orvStsNoErr)
    return status;
  double sum = 0;
  Column<double>{ppSrcDst, firstRow, rows, column}.each([&](double *x) {
    const double v = load(x) * factor;
    store(x, v);
    sum += v * v;
  });
  store(pSum, sum);
  return orvStsNoErr;
}

OrvStatus orvsDotProdColumn_64f_D2L(const double *const *ppSrc, int32_t columns, int32_t rows, double *pSum,
                                    int32_t column1, int32_t column2, int32_t firstRow) {
  if (const OrvStatus status = check(ppSrc, pSum, columns, rows, column1, column2, firstRow);
      status != orvStsNoErr)
    return status;
  double sum = 0;
  Column<const double>{ppSrc, firstRow, rows, column1}.each(
      [&](const double *x) { sum += load(x) * load(x + (column2 - column1)); });
  store(pSum, sum);
  return orvStsNoErr;
}

OrvStatus orvsAddMulColumn_64f_D2L(double *const *ppSrcDst, int32_t columns, int32_t rows, int32_t srcColumn,
                                   int32_t dstColumn, int32_t firstRow, double factor) {
  if (const OrvStatus status = check(ppSrcDst, ppSrcDst, columns, rows, srcColumn, dstColumn, firstRow);
      status != orvStsNoErr)
    return status;
  Column<double>{ppSrcDst, firstRow, rows, dstColumn}.each(
      [&](double *y) { store(y, load(y) + factor * load(y + (srcColumn - dstColumn))); });
  return orvStsNoErr;
}

OrvStatus orvsMulColumn_64f_D2L(double *const *ppSrcDst, int32_t columns, int32_t rows, int32_t column,
                                int32_t firstRow, double factor) {
  if (const OrvStatus status = check(ppSrcDst, ppSrcDst, columns, rows, column, column, firstRow);
      status != orvStsNoErr)
    return status;
  Column<double>{ppSrcDst, firstRow, rows, column}.each([&](double *x) { store(x, load(x) * factor); });
  return orvStsNoErr;
}

OrvStatus orvsQRTransColumn_64f_D2L(double *const *ppSrcDst, int32_t columns, int32_t rows, int32_t column1,
                                    int32_t column2, double c, double s) {
  if (const OrvStatus status = check(ppSrcDst, ppSrcDst, columns, rows, column1, column2, 0);
      status != orvStsNoErr)
    return status;
  Column<double>{ppSrcDst, 0, rows, column2}.each([&](double *at) {
    double *other = at + (column1 - column2);
    const double x = load(at), y = load(other);
    store(at, c * x + s * y);
    store(other, c * y - s * x);
  });
  return orvStsNoErr;
}

OrvStatus orvsSumRowAbs_64f(const double *pSrc, int32_t len, double *pSum) {
  if (const OrvStatus status = checkRow(pSrc, pSum, len); status != orvStsNoErr) return status;
  store(pSum, sumAbs(pSrc, len));
  return orvStsNoErr;
}

OrvStatus orvsSumRowSqr_64f(double *pSrcDst, int32_t len, double *pSum, double factor) {
  if (const OrvStatus status = checkRow(pSrcDst, pSum, len); status != orvStsNoErr) return status;
  store(pSum, scaleAndSumSquares(pSrcDst, len, factor));
  return orvStsNoErr;
}

OrvStatus orvsAddMulRow_64f(const double *pSrc, double *pSrcDst, int32_t len, double factor) {
  if (const OrvStatus status = checkRow(pSrc, pSrcDst, len); status != orvStsNoErr) return status;
  addMul(pSrc, pSrcDst, len, factor);
  return orvStsNoErr;
}
