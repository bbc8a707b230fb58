// orvsLogGaussSingle_*: one vector under one Gaussian.

#include <algorithm>

#include "core/alloc.h"
#include "gauss/blockrows.h"
#include "gauss/score.h"
#include "gauss/sinks.h"
#include "matrix/blockdiag.h"
#include "orvsr/gauss.h"
#include "primitives/arithmetic.h"
#include "primitives/reduce.h"
#include "primitives/rows.h"

using namespace orv;
using namespace orv::gauss;

// --- inverse variances

OrvStatus orvsLogGaussSingle_32f(const float *pSrc, const float *pMean, const float *pVar, int32_t len,
                                 float *pResult, float gconst) {
  const OrvStatus status = checkNullLength(len, pSrc, pMean, pVar, pResult);
  if (status != orvStsNoErr) return status;
  store(pResult, scoreRow<Single, Weighting::inverseVariance>({pSrc, pMean, pVar}, len, pVar, gconst,
                                                              HalvedSum<float>{}));
  return orvStsNoErr;
}

OrvStatus orvsLogGaussSingle_32f64f(const float *pSrc, const float *pMean, const float *pVar, int32_t len,
                                    double *pResult, double gconst) {
  const OrvStatus status = checkNullLength(len, pSrc, pMean, pVar, pResult);
  if (status != orvStsNoErr) return status;
  store(pResult, scoreRow<Widened, Weighting::inverseVariance>({pSrc, pMean, pVar}, len, pVar, gconst,
                                                               HalvedSum<double>{}));
  return orvStsNoErr;
}

OrvStatus orvsLogGaussSingle_64f(const double *pSrc, const double *pMean, const double *pVar, int32_t len,
                                 double *pResult, double gconst) {
  const OrvStatus status = checkNullLength(len, pSrc, pMean, pVar, pResult);
  if (status != orvStsNoErr) return status;
  store(pResult, scoreRow<Double, Weighting::inverseVariance>({pSrc, pMean, pVar}, len, pVar, gconst,
                                                              HalvedSum<double>{}));
  return orvStsNoErr;
}

OrvStatus orvsLogGaussSingle_16s32s_Sfs(const int16_t *pSrc, const int16_t *pMean, const int16_t *pVar,
                                        int32_t len, int32_t *pResult, int32_t gconst, int32_t scaleFactor) {
  const OrvStatus status = checkNullLength(len, pSrc, pMean, pVar, pResult);
  if (status != orvStsNoErr) return status;
  const std::int64_t sum = exactSumRow<Weighting::inverseVariance>({pSrc, pMean, pVar}, len);
  store(pResult, sat32(ExactScore{plusOne(scaleFactor)}(sum, gconst)));
  return orvStsNoErr;
}

OrvStatus orvsLogGaussSingle_Low_16s32s_Sfs(const int16_t *pSrc, const int16_t *pMean, const int16_t *pVar,
                                            int32_t len, int32_t *pResult, int32_t gconst,
                                            int32_t scaleFactor) {
  const OrvStatus status = checkNullLength(len, pSrc, pMean, pVar, pResult);
  if (status != orvStsNoErr) return status;
  const std::int64_t sum = exactSumRow<Weighting::inverseVariance>({pSrc, pMean, pVar}, len);
  store(pResult, wrap32(ExactScore{plusOne(scaleFactor)}(sum, gconst)));
  return orvStsNoErr;
}

OrvStatus orvsLogGaussSingle_Scaled_16s32f(const int16_t *pSrc, const int16_t *pMean, const int16_t *pVar,
                                           int32_t len, float *pResult, int32_t scaleFactor, float gconst) {
  const OrvStatus status = checkNullLength(len, pSrc, pMean, pVar, pResult);
  if (status != orvStsNoErr) return status;
  store(pResult, scoreRow<Converted, Weighting::inverseVariance>({pSrc, pMean, pVar}, len, pVar, gconst,
                                                                 ScaledSum{halvedScale(scaleFactor)}));
  return orvStsNoErr;
}

OrvStatus orvsLogGaussSingle_LowScaled_16s32f(const int16_t *pSrc, const int16_t *pMean, const int16_t *pVar,
                                              int32_t len, float *pResult, int32_t scaleFactor,
                                              float gconst) {
  const OrvStatus status = checkNullLength(len, pSrc, pMean, pVar, pResult);
  if (status != orvStsNoErr) return status;
  store(pResult,
        scoreRow<Converted, Weighting::inverseVariance>({pSrc, pMean, pVar}, len, pVar, gconst,
                                                        HalvedScaledSum{{GetScale_32s32f(scaleFactor)}}));
  return orvStsNoErr;
}

// --- unit variances: the mean groups the sum in the place of the inverse variances

OrvStatus orvsLogGaussSingle_IdVar_32f(const float *pSrc, const float *pMean, int32_t len, float *pResult,
                                       float gconst) {
  const OrvStatus status = checkNullLength(len, pSrc, pMean, pResult);
  if (status != orvStsNoErr) return status;
  store(pResult,
        scoreRow<Single, Weighting::none>({pSrc, pMean, pMean}, len, pMean, gconst, HalvedSum<float>{}));
  return orvStsNoErr;
}

OrvStatus orvsLogGaussSingle_IdVar_32f64f(const float *pSrc, const float *pMean, int32_t len, double *pResult,
                                          double gconst) {
  const OrvStatus status = checkNullLength(len, pSrc, pMean, pResult);
  if (status != orvStsNoErr) return status;
  store(pResult,
        scoreRow<Widened, Weighting::none>({pSrc, pMean, pMean}, len, pMean, gconst, HalvedSum<double>{}));
  return orvStsNoErr;
}

OrvStatus orvsLogGaussSingle_IdVar_64f(const double *pSrc, const double *pMean, int32_t len, double *pResult,
                                       double gconst) {
  const OrvStatus status = checkNullLength(len, pSrc, pMean, pResult);
  if (status != orvStsNoErr) return status;
  store(pResult,
        scoreRow<Double, Weighting::none>({pSrc, pMean, pMean}, len, pMean, gconst, HalvedSum<double>{}));
  return orvStsNoErr;
}

OrvStatus orvsLogGaussSingle_IdVar_16s32s_Sfs(const int16_t *pSrc, const int16_t *pMean, int32_t len,
                                              int32_t *pResult, int32_t gconst, int32_t scaleFactor) {
  const OrvStatus status = checkNullLength(len, pSrc, pMean, pResult);
  if (status != orvStsNoErr) return status;
  const std::int64_t sum = exactSumRow<Weighting::none>({pSrc, pMean, pMean}, len);
  store(pResult, sat32(ExactScore{plusOne(scaleFactor)}(sum, gconst)));
  return orvStsNoErr;
}

OrvStatus orvsLogGaussSingle_IdVarLow_16s32s_Sfs(const int16_t *pSrc, const int16_t *pMean, int32_t len,
                                                 int32_t *pResult, int32_t gconst, int32_t scaleFactor) {
  const OrvStatus status = checkNullLength(len, pSrc, pMean, pResult);
  if (status != orvStsNoErr) return status;
  const std::int64_t sum = exactSumRow<Weighting::none>({pSrc, pMean, pMean}, len);
  store(pResult, wrap32(ExactScore{plusOne(scaleFactor)}(sum, gconst)));
  return orvStsNoErr;
}

OrvStatus orvsLogGaussSingle_IdVarScaled_16s32f(const int16_t *pSrc, const int16_t *pMean, int32_t len,
                                                float *pResult, int32_t scaleFactor, float gconst) {
  const OrvStatus status = checkNullLength(len, pSrc, pMean, pResult);
  if (status != orvStsNoErr) return status;
  store(pResult, scoreRow<Converted, Weighting::none>({pSrc, pMean, pMean}, len, pMean, gconst,
                                                      ScaledSum{halvedScale(scaleFactor)}));
  return orvStsNoErr;
}

OrvStatus orvsLogGaussSingle_IdVarLowScaled_16s32f(const int16_t *pSrc, const int16_t *pMean, int32_t len,
                                                   float *pResult, int32_t scaleFactor, float gconst) {
  const OrvStatus status = checkNullLength(len, pSrc, pMean, pResult);
  if (status != orvStsNoErr) return status;
  store(pResult, scoreRow<Converted, Weighting::none>({pSrc, pMean, pMean}, len, pMean, gconst,
                                                      HalvedScaledSum{{GetScale_32s32f(scaleFactor)}}));
  return orvStsNoErr;
}

// --- variances, by which the squares are divided

namespace {

// The sum of squared differences over variances, strictly from first to last; quotients are taken as vectors.
// A zero variance ends it with the warning of a division by zero, and callers then write nothing, though the
// sum would be infinite.
template <class Form>
OrvStatus sumQuotients(const Row<typename Form::Elem> &row, std::int32_t len, typename Form::Sum &sum) {
  using Lanes = typename Form::Lanes;
  const auto [a, b, w] = row;
  sum = 0;
  std::int32_t j = 0;
  for (; len - j >= Lanes::lanes; j += Lanes::lanes) {
    const Lanes variances = Form::weights(w + j);
    if (signs(variances == Form::firstLane(0)) != 0) return orvStsDivByZeroWrn;
    typename Form::Sum quotients[Lanes::lanes];
    Form::storeLanes(quotients, terms<Form, Weighting::none>(a + j, b + j, w + j) / variances);
    for (const typename Form::Sum quotient : quotients) sum += quotient;
  }
  for (; j < len; ++j) {
    const typename Form::Sum variance = Form::value(w + j);
    if (variance == 0) return orvStsDivByZeroWrn;
    sum += term<Form, Weighting::none>(a + j, b + j, w + j) / variance;
  }
  return orvStsNoErr;
}

}  // namespace

OrvStatus orvsLogGaussSingle_DirectVar_32f(const float *pSrc, const float *pMean, const float *pVar,
                                           int32_t len, float *pResult, float gconst) {
  OrvStatus status = checkNullLength(len, pSrc, pMean, pVar, pResult);
  if (status != orvStsNoErr) return status;
  double sum;
  status = sumQuotients<Widened>({pSrc, pMean, pVar}, len, sum);
  if (status != orvStsNoErr) return status;
  store(pResult, static_cast<float>(gconst - sum * 0.5));
  return orvStsNoErr;
}

OrvStatus orvsLogGaussSingle_DirectVar_32f64f(const float *pSrc, const float *pMean, const float *pVar,
                                              int32_t len, double *pResult, double gconst) {
  OrvStatus status = checkNullLength(len, pSrc, pMean, pVar, pResult);
  if (status != orvStsNoErr) return status;
  double sum;
  status = sumQuotients<Widened>({pSrc, pMean, pVar}, len, sum);
  if (status != orvStsNoErr) return status;
  store(pResult, gconst - sum * 0.5);
  return orvStsNoErr;
}

OrvStatus orvsLogGaussSingle_DirectVar_64f(const double *pSrc, const double *pMean, const double *pVar,
                                           int32_t len, double *pResult, double gconst) {
  OrvStatus status = checkNullLength(len, pSrc, pMean, pVar, pResult);
  if (status != orvStsNoErr) return status;
  double sum;
  status = sumQuotients<Double>({pSrc, pMean, pVar}, len, sum);
  if (status != orvStsNoErr) return status;
  store(pResult, gconst - sum * 0.5);
  return orvStsNoErr;
}

// The one form of the family that rounds: half up, not down as the others. Differences carry eight fraction
// bits, so the sum carries sixteen; they and the 1/2 leave it together. The rounding term is 1 shifted in 32
// bits, with the count taken modulo 32: beyond scale factors of -16 to 14 it is no half, and stays like this.
OrvStatus orvsLogGaussSingle_DirectVar_16s32s_Sfs(const int16_t *pSrc, const int16_t *pMean,
                                                  const int16_t *pVar, int32_t len, int32_t *pResult,
                                                  int32_t gconst, int32_t scaleFactor) {
  const OrvStatus status = checkNullLength(len, pSrc, pMean, pVar, pResult);
  if (status != orvStsNoErr) return status;
  std::int64_t sum = 0;
  for (std::int32_t j = 0; j < len; ++j) {
    const std::int16_t variance = load(pVar + j);
    if (variance == 0) return orvStsDivByZeroWrn;
    const std::int64_t d = (std::int64_t{load(pSrc + j)} - load(pMean + j)) * 256;
    // Truncated towards zero. The quotient in double truncates to the same integer: the square has 48 bits,
    // so a quotient that is no integer lies at least 1/variance from the next one, more than it is rounded
    // by.
    sum = addWrap64(sum, static_cast<std::int64_t>(static_cast<double>(d * d) / variance));
  }
  const std::int64_t shift = std::int64_t{scaleFactor} + 17;
  if (shift > 0) sum = addWrap64(sum, shiftLeft32(1, static_cast<unsigned>(shift + 31)));
  store(pResult, sat32(ExactScore{shift}(sum, gconst)));
  return orvStsNoErr;
}

OrvStatus orvsLogGaussSingle_DirectVarScaled_16s32f(const int16_t *pSrc, const int16_t *pMean,
                                                    const int16_t *pVar, int32_t len, float *pResult,
                                                    int32_t scaleFactor, float gconst) {
  OrvStatus status = checkNullLength(len, pSrc, pMean, pVar, pResult);
  if (status != orvStsNoErr) return status;
  float sum;
  status = sumQuotients<Converted>({pSrc, pMean, pVar}, len, sum);
  if (status != orvStsNoErr) return status;
  store(pResult, gconst - sum * (GetScale_32s32f(scaleFactor) * 0.5F));
  return orvStsNoErr;
}

// --- block-diagonal inverse covariances

namespace {

// How the difference of a vector and a mean enters a quadratic form: as a whole block, by array routines, and
// element by element. FourDots says how four rows of the matrix meet the block side by side.
struct BlockSingle {
  using Elem = float;
  using Sum = float;
  using FourDots = FourDotsSingle;
  static constexpr auto subtract = orvsSub_32f;
  static constexpr auto dotProduct = orvsDotProd_32f;
  Sum difference(const Elem *a, const Elem *b) const { return load(a) - load(b); }
  auto fourDifferences(const Elem *a, const Elem *b) const { return simd::load4(a) - simd::load4(b); }
};
struct BlockWidened : BlockSingle {
  using Sum = double;
  using FourDots = FourDotsWidened;
  static constexpr auto dotProduct = orvsDotProd_32f64f;
  auto fourDifferences(const Elem *a, const Elem *b) const {
    return simd::widen(simd::load4(a) - simd::load4(b));
  }
};
struct BlockDouble {
  using Elem = double;
  using Sum = double;
  using FourDots = FourDotsDouble;
  static constexpr auto subtract = orvsSub_64f;
  static constexpr auto dotProduct = orvsDotProd_64f;
  Sum difference(const Elem *a, const Elem *b) const { return load(a) - load(b); }
  auto fourDifferences(const Elem *a, const Elem *b) const { return simd::load4(a) - simd::load4(b); }
};
// The same 16-bit difference enters the dot product saturated and its multiplier exact. This is meant.
struct BlockInteger {
  using Elem = std::int16_t;
  using Sum = float;
  using FourDots = FourDotsExact;
  static constexpr auto subtract = orvsSub_16s;
  static constexpr auto dotProduct = orvsDotProd_16s32f;
  float scale;
  Sum difference(const Elem *a, const Elem *b) const {
    return static_cast<float>(std::int32_t{load(a)} - load(b)) * scale;
  }
  auto fourDifferences(const Elem *a, const Elem *b) const {
    return simd::toSingle(simd::difference4(a, b)) * scale;
  }
};

// From this length on the differences of a vector stand in allocated memory.
constexpr std::int32_t kLeastAllocated = 112;

// d' M d with d = src - mean. `differences` has room for the largest block, and `room` tells for how much.
template <class Form, class Elem = typename Form::Elem>
OrvStatus quadraticForm(const Form &form, const Elem *src, const Elem *mean, const BlockDMatrix<Elem> &matrix,
                        Elem *differences, std::int32_t room, typename Form::Sum &sum) {
  OrvStatus status = orvStsNoErr;
  sum = 0;
  std::int32_t offset = 0;
  for (std::int32_t b = 0; b < matrix.blockCount; ++b) {
    const std::int32_t size = matrix.blockSizes[b];
    const std::int32_t end = offset + size;
    if (const std::int32_t whole = (size + 7) / 8 * 8; whole <= room && isAligned(differences, 16)) {
      Form::FourDots::subtract(src + offset, mean + offset, differences, size);
      for (; end - offset >= 2; offset += std::min(4, end - offset)) {
        const std::int32_t count = std::min(4, end - offset);
        typename Form::Sum products[4];
        const auto dots = Form::FourDots::dots(matrix.rows + offset, count, differences, size);
        if (count == 4) {
          simd::store4(products, dots * form.fourDifferences(src + offset, mean + offset));
        } else {
          simd::store4(products, dots);
          for (std::int32_t k = 0; k < count; ++k)
            products[k] *= form.difference(src + offset + k, mean + offset + k);
        }
        for (std::int32_t k = 0; k < count; ++k) sum += products[k];
      }
    } else {
      status = Form::subtract(mean + offset, src + offset, differences, size);
    }
    for (; offset < end; ++offset) {
      typename Form::Sum product = 0;
      status = Form::dotProduct(matrix.rows[offset], differences, size, &product);
      sum += product * form.difference(src + offset, mean + offset);
    }
  }
  return status;
}

// The same with working memory of its own, then finish(sum).
template <class Form, class Finish, class Elem = typename Form::Elem>
OrvStatus scoreByBlocks(const Form &form, const Elem *src, const Elem *mean, const BlockDMatrix<Elem> &matrix,
                        Finish &&finish) {
  alignas(16) Elem local[kLeastAllocated];
  const std::int32_t len = matrix.rowCount;
  const WorkArray<Elem> block(len < kLeastAllocated ? 0 : len);
  Elem *const differences = len < kLeastAllocated ? local : block.get();
  if (differences == nullptr) return orvStsMemAllocErr;
  typename Form::Sum sum;
  const OrvStatus status =
      quadraticForm(form, src, mean, matrix, differences, std::max(len, kLeastAllocated), sum);
  finish(sum);
  return status;
}

template <class Matrix, class... Pointers>
OrvStatus checkByBlocks(std::int32_t len, const Matrix *matrix, const Pointers *...pointers) {
  const OrvStatus status = checkNullLength(len, matrix, pointers...);
  if (status != orvStsNoErr) return status;
  return len == matrix->rowCount ? orvStsNoErr : orvStsSizeErr;
}

}  // namespace

OrvStatus orvsLogGaussSingle_BlockDVar_32f(const float *pSrc, const float *pMean,
                                           const OrvBlockDMatrix_32f *pBlockDMatrix, int32_t len,
                                           float *pResult, float gconst) {
  const OrvStatus status = checkByBlocks(len, pBlockDMatrix, pSrc, pMean, pResult);
  if (status != orvStsNoErr) return status;
  return scoreByBlocks(BlockSingle{}, pSrc, pMean, *pBlockDMatrix, [=](float sum) {
    store(pResult, static_cast<float>(double{gconst} - double{sum} * 0.5));
  });
}

OrvStatus orvsLogGaussSingle_BlockDVar_32f64f(const float *pSrc, const float *pMean,
                                              const OrvBlockDMatrix_32f *pBlockDMatrix, int32_t len,
                                              double *pResult, double gconst) {
  const OrvStatus status = checkByBlocks(len, pBlockDMatrix, pSrc, pMean, pResult);
  if (status != orvStsNoErr) return status;
  return scoreByBlocks(BlockWidened{}, pSrc, pMean, *pBlockDMatrix,
                       [=](double sum) { store(pResult, gconst - sum * 0.5); });
}

OrvStatus orvsLogGaussSingle_BlockDVar_64f(const double *pSrc, const double *pMean,
                                           const OrvBlockDMatrix_64f *pBlockDMatrix, int32_t len,
                                           double *pResult, double gconst) {
  const OrvStatus status = checkByBlocks(len, pBlockDMatrix, pSrc, pMean, pResult);
  if (status != orvStsNoErr) return status;
  return scoreByBlocks(BlockDouble{}, pSrc, pMean, *pBlockDMatrix,
                       [=](double sum) { store(pResult, gconst - sum * 0.5); });
}

// The working memory of this one form has an element to spare and, from the length at which it is allocated
// on, is never released. This is how the form is settled; callers at such lengths budget for it.
OrvStatus orvsLogGaussSingle_BlockDVar_16s32s_Sfs(const int16_t *pSrc, const int16_t *pMean,
                                                  const OrvBlockDMatrix_16s *pBlockDMatrix, int32_t len,
                                                  int32_t *pResult, int32_t gconst, int32_t scaleFactor) {
  OrvStatus status = checkByBlocks(len, pBlockDMatrix, pSrc, pMean, pResult);
  if (status != orvStsNoErr) return status;
  alignas(16) std::int16_t local[kLeastAllocated];
  std::int16_t *const differences = len < kLeastAllocated ? local : orvsMalloc_16s(len + 1);
  if (differences == nullptr) return orvStsMemAllocErr;
  float sum;
  status = quadraticForm(BlockInteger{GetScale_32s32f(scaleFactor)}, pSrc, pMean, *pBlockDMatrix, differences,
                         std::max(len, kLeastAllocated), sum);
  store(pResult, saturateTruncated<std::int32_t>(static_cast<float>(gconst) - sum * 0.5F));
  return status;
}

OrvStatus orvsLogGaussSingle_BlockDVarScaled_16s32f(const int16_t *pSrc, const int16_t *pMean,
                                                    const OrvBlockDMatrix_16s *pBlockDMatrix, int32_t len,
                                                    float *pResult, int32_t scaleFactor, float gconst) {
  const OrvStatus status = checkByBlocks(len, pBlockDMatrix, pSrc, pMean, pResult);
  if (status != orvStsNoErr) return status;
  return scoreByBlocks(BlockInteger{1}, pSrc, pMean, *pBlockDMatrix, [=](float sum) {
    store(pResult, gconst - (sum * 0.5F) * GetScale_32s32f(scaleFactor));
  });
}
