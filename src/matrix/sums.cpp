// orvsSumColumn_*, orvsSumRow_*, orvsAddAllRowSum_*: sums along the columns and rows of a matrix.

#include <algorithm>
#include <cstdint>

#include "core/integer.h"
#include "orvsr/matrix.h"
#include "primitives/columns.h"
#include "primitives/memory.h"
#include "primitives/rows.h"
#include "primitives/simd.h"

namespace orv {
namespace {

using namespace columns;

// The integer sums are shifted without rounding, in contrast with the rounding scale of the array sums.
struct Scaled {
  std::int32_t scaleFactor;
  std::int32_t operator()(std::int64_t sum) const { return sat32(shiftSum(sum, scaleFactor)); }
};

// One rounding at most.
template <class Out>
struct Rounded {
  template <class Sum>
  Out operator()(Sum sum) const {
    return static_cast<Out>(sum);
  }
};

// --- down the columns

template <class Sum, class Rows, class Out, class Finish>
void columnSums(const Rows &rows, std::int32_t height, Out *dst, std::int32_t width, Finish finish) {
  sumColumns(Moments<typename Rows::Elem, Sum>{}, rows, height, width, FromZero{},
             [=](std::int32_t c, const auto &total) { store(dst + c, finish(total.sum)); });
}

// The sum of the rows is formed in single, and then added to what stands there.
template <class Rows>
void addAllRows(const Rows &rows, std::int32_t height, float *srcDst, std::int32_t width) {
  sumColumns(Moments<float, SumSingle>{}, rows, height, width, FromZero{},
             [=](std::int32_t c, const auto &total) { store(srcDst + c, load(srcDst + c) + total.sum); });
}

// --- along the rows

// One column of four rows, in double.
simd::f64x4 fourOfColumn(const float *const *rows, std::int32_t c) {
  return widen(simd::pack4(load(rows[0] + c), load(rows[1] + c), load(rows[2] + c), load(rows[3] + c)));
}
simd::f64x4 fourOfColumn(const double *const *rows, std::int32_t c) {
  return {simd::pack2(load(rows[0] + c), load(rows[1] + c)),
          simd::pack2(load(rows[2] + c), load(rows[3] + c))};
}

// Eight rows at a time, each added from its first element to its last; where fewer are left, the last row
// takes the places that are free.
template <class Rows, class Out>
void rowSums(const Rows &rows, std::int32_t height, Out *dst, std::int32_t width) {
  for (std::int32_t r = 0; r < height; r += std::min(8, height - r)) {
    const std::int32_t count = std::min(8, height - r);
    const typename Rows::Elem *row[8];
    for (std::int32_t k = 0; k < 8; ++k) row[k] = rows.row(r + std::min(k, count - 1));
    simd::f64x4 first = simd::splat4(0.0);
    simd::f64x4 second = first;
    for (std::int32_t c = 0; c < width; ++c) {
      first = first + fourOfColumn(row, c);
      second = second + fourOfColumn(row + 4, c);
    }
    double sums[8];
    store4(sums, first);
    store4(sums + 4, second);
    for (std::int32_t k = 0; k < count; ++k) store(dst + r + k, static_cast<Out>(sums[k]));
  }
}

// 32 bits hold the sum of 65536 elements of 16.
std::int64_t exactSum(const std::int16_t *src, std::int32_t len) {
  std::int64_t total = 0;
  for (std::int32_t begin = 0; begin < len;) {
    const std::int32_t end = begin + std::min(65536, len - begin);
    std::int32_t part = 0;
    for (; begin < end; ++begin) part += load(src + begin);
    total += part;
  }
  return total;
}

template <class Rows, class Out, class Finish>
void exactRowSums(const Rows &rows, std::int32_t height, Out *dst, std::int32_t width, Finish finish) {
  for (std::int32_t r = 0; r < height; ++r) store(dst + r, finish(exactSum(rows.row(r), width)));
}

}  // namespace
}  // namespace orv

using namespace orv;

OrvStatus orvsSumColumn_32f_D2(const float *pSrc, int32_t step, int32_t height, float *pDst, int32_t width) {
  const OrvStatus status = checkNullSizeStride(width, step, height, pSrc, pDst);
  if (status != orvStsNoErr) return status;
  columnSums<SumDouble>(StridedRows{pSrc, step}, height, pDst, width, Rounded<float>{});
  return orvStsNoErr;
}

OrvStatus orvsSumColumn_32f_D2L(const float *const *ppSrc, int32_t height, float *pDst, int32_t width) {
  const OrvStatus status = checkNullSize(width, height, ppSrc, pDst);
  if (status != orvStsNoErr) return status;
  columnSums<SumDouble>(RowPointers{ppSrc}, height, pDst, width, Rounded<float>{});
  return orvStsNoErr;
}

OrvStatus orvsSumColumn_64f_D2(const double *pSrc, int32_t step, int32_t height, double *pDst,
                               int32_t width) {
  const OrvStatus status = checkNullSizeStride(width, step, height, pSrc, pDst);
  if (status != orvStsNoErr) return status;
  columnSums<SumDouble>(StridedRows{pSrc, step}, height, pDst, width, Rounded<double>{});
  return orvStsNoErr;
}

OrvStatus orvsSumColumn_64f_D2L(const double *const *ppSrc, int32_t height, double *pDst, int32_t width) {
  const OrvStatus status = checkNullSize(width, height, ppSrc, pDst);
  if (status != orvStsNoErr) return status;
  columnSums<SumDouble>(RowPointers{ppSrc}, height, pDst, width, Rounded<double>{});
  return orvStsNoErr;
}

OrvStatus orvsSumColumn_16s32f_D2(const int16_t *pSrc, int32_t step, int32_t height, float *pDst,
                                  int32_t width) {
  const OrvStatus status = checkNullSizeStride(width, step, height, pSrc, pDst);
  if (status != orvStsNoErr) return status;
  columnSums<SumExact>(StridedRows{pSrc, step}, height, pDst, width, Rounded<float>{});
  return orvStsNoErr;
}

OrvStatus orvsSumColumn_16s32f_D2L(const int16_t *const *ppSrc, int32_t height, float *pDst, int32_t width) {
  const OrvStatus status = checkNullSize(width, height, ppSrc, pDst);
  if (status != orvStsNoErr) return status;
  columnSums<SumExact>(RowPointers{ppSrc}, height, pDst, width, Rounded<float>{});
  return orvStsNoErr;
}

OrvStatus orvsSumColumn_16s32s_D2Sfs(const int16_t *pSrc, int32_t step, int32_t height, int32_t *pDst,
                                     int32_t width, int32_t scaleFactor) {
  const OrvStatus status = checkNullSizeStride(width, step, height, pSrc, pDst);
  if (status != orvStsNoErr) return status;
  columnSums<SumExact>(StridedRows{pSrc, step}, height, pDst, width, Scaled{scaleFactor});
  return orvStsNoErr;
}

OrvStatus orvsSumColumn_16s32s_D2LSfs(const int16_t *const *ppSrc, int32_t height, int32_t *pDst,
                                      int32_t width, int32_t scaleFactor) {
  const OrvStatus status = checkNullSize(width, height, ppSrc, pDst);
  if (status != orvStsNoErr) return status;
  columnSums<SumExact>(RowPointers{ppSrc}, height, pDst, width, Scaled{scaleFactor});
  return orvStsNoErr;
}

OrvStatus orvsSumRow_32f_D2(const float *pSrc, int32_t step, int32_t height, float *pDst, int32_t width) {
  const OrvStatus status = checkNullSizeStride(width, step, height, pSrc, pDst);
  if (status != orvStsNoErr) return status;
  rowSums(StridedRows{pSrc, step}, height, pDst, width);
  return orvStsNoErr;
}

OrvStatus orvsSumRow_32f_D2L(const float *const *ppSrc, int32_t height, float *pDst, int32_t width) {
  const OrvStatus status = checkNullSize(width, height, ppSrc, pDst);
  if (status != orvStsNoErr) return status;
  rowSums(RowPointers{ppSrc}, height, pDst, width);
  return orvStsNoErr;
}

OrvStatus orvsSumRow_64f_D2(const double *pSrc, int32_t step, int32_t height, double *pDst, int32_t width) {
  const OrvStatus status = checkNullSizeStride(width, step, height, pSrc, pDst);
  if (status != orvStsNoErr) return status;
  rowSums(StridedRows{pSrc, step}, height, pDst, width);
  return orvStsNoErr;
}

OrvStatus orvsSumRow_64f_D2L(const double *const *ppSrc, int32_t height, double *pDst, int32_t width) {
  const OrvStatus status = checkNullSize(width, height, ppSrc, pDst);
  if (status != orvStsNoErr) return status;
  rowSums(RowPointers{ppSrc}, height, pDst, width);
  return orvStsNoErr;
}

OrvStatus orvsSumRow_16s32f_D2(const int16_t *pSrc, int32_t step, int32_t height, float *pDst,
                               int32_t width) {
  const OrvStatus status = checkNullSizeStride(width, step, height, pSrc, pDst);
  if (status != orvStsNoErr) return status;
  exactRowSums(StridedRows{pSrc, step}, height, pDst, width, Rounded<float>{});
  return orvStsNoErr;
}

OrvStatus orvsSumRow_16s32f_D2L(const int16_t *const *ppSrc, int32_t height, float *pDst, int32_t width) {
  const OrvStatus status = checkNullSize(width, height, ppSrc, pDst);
  if (status != orvStsNoErr) return status;
  exactRowSums(RowPointers{ppSrc}, height, pDst, width, Rounded<float>{});
  return orvStsNoErr;
}

OrvStatus orvsSumRow_16s32s_D2Sfs(const int16_t *pSrc, int32_t step, int32_t height, int32_t *pDst,
                                  int32_t width, int32_t scaleFactor) {
  const OrvStatus status = checkNullSizeStride(width, step, height, pSrc, pDst);
  if (status != orvStsNoErr) return status;
  exactRowSums(StridedRows{pSrc, step}, height, pDst, width, Scaled{scaleFactor});
  return orvStsNoErr;
}

OrvStatus orvsSumRow_16s32s_D2LSfs(const int16_t *const *ppSrc, int32_t height, int32_t *pDst, int32_t width,
                                   int32_t scaleFactor) {
  const OrvStatus status = checkNullSize(width, height, ppSrc, pDst);
  if (status != orvStsNoErr) return status;
  exactRowSums(RowPointers{ppSrc}, height, pDst, width, Scaled{scaleFactor});
  return orvStsNoErr;
}

OrvStatus orvsAddAllRowSum_32f_D2(const float *pSrc, int32_t step, int32_t height, float *pSrcDst,
                                  int32_t width) {
  const OrvStatus status = checkNullSizeStride(width, step, height, pSrc, pSrcDst);
  if (status != orvStsNoErr) return status;
  addAllRows(StridedRows{pSrc, step}, height, pSrcDst, width);
  return orvStsNoErr;
}

OrvStatus orvsAddAllRowSum_32f_D2L(const float *const *ppSrc, int32_t height, float *pSrcDst, int32_t width) {
  const OrvStatus status = checkNullSize(width, height, ppSrc, pSrcDst);
  if (status != orvStsNoErr) return status;
  addAllRows(RowPointers{ppSrc}, height, pSrcDst, width);
  return orvStsNoErr;
}
