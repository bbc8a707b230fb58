// orvsAddNRows_32f_D2: the sum of chosen rows of a matrix.

#include "orvsr/gauss.h"
#include "primitives/memory.h"
#include "primitives/rows.h"
#include "primitives/simd.h"

using namespace orv;

namespace {

struct RowNumbers {
  const std::int32_t *index;
  const std::uint16_t *indexAdd;
  std::int64_t operator()(std::int32_t i) const { return std::int64_t{load(index + i)} + load(indexAdd + i); }
};

// Vectors of four columns from column c on: value first, then the rows in their order.
template <int vectors>
void addColumns(const StridedRows<const float> &matrix, const RowNumbers &numbers, std::int32_t count,
                std::ptrdiff_t c, float *dst, float value) {
  simd::f32x4 sums[vectors];
  for (auto &sum : sums) sum = simd::splat4(value);
  for (std::int32_t i = 0; i < count; ++i) {
    const float *row = matrix.row(static_cast<std::int32_t>(numbers(i))) + c;
    for (int v = 0; v < vectors; ++v) sums[v] = sums[v] + simd::load4(row + 4 * v);
  }
  for (int v = 0; v < vectors; ++v) simd::store4(dst + c + 4 * v, sums[v]);
}

}  // namespace

OrvStatus orvsAddNRows_32f_D2(const float *pSrc, int32_t height, int32_t offset, int32_t step,
                              const int32_t *pIndex, const uint16_t *pIndexAdd, int32_t count, float *pDst,
                              int32_t len, float value) {
  if (anyNull(pSrc, pDst, pIndexAdd, pIndex)) return orvStsNullPtrErr;
  if (count < 1 || height < 1 || len < 1 || offset < 0) return orvStsSizeErr;
  if (step < std::int64_t{offset} + len) return orvStsStrideErr;
  const RowNumbers numbers{pIndex, pIndexAdd};
  for (std::int32_t i = 0; i < count; ++i)
    if (numbers(i) < 0 || numbers(i) >= height) return orvStsSizeErr;

  const StridedRows<const float> matrix{pSrc + offset, step};
  std::ptrdiff_t c = 0;
  for (; len - c >= 16; c += 16) addColumns<4>(matrix, numbers, count, c, pDst, value);
  for (; len - c >= 4; c += 4) addColumns<1>(matrix, numbers, count, c, pDst, value);
  for (; c < len; ++c) {
    float sum = value;
    for (std::int32_t i = 0; i < count; ++i)
      sum += load(matrix.row(static_cast<std::int32_t>(numbers(i))) + c);
    store(pDst + c, sum);
  }
  return orvStsNoErr;
}
