// orvsMeanColumn_*, orvsVarColumn_*, orvsMeanVarColumn_*, orvsWeighted*Column_*, orvsSumMeanVar_*: statistics
// of the columns of a feature matrix.

#include <cstdint>

#include "core/integer.h"
#include "orvsr/train.h"
#include "primitives/columns.h"
#include "primitives/memory.h"
#include "primitives/rows.h"

namespace orv {
namespace {

using namespace columns;

// Two factors that look alike and are not: that of the plain variances, and of all 16-bit ones, is formed in
// single, that of the 32f mean-and-variance members in double and rounded once. Beyond 2^24 rows they differ
// in the last bit, and stored results do with them.
float singleFactor(std::int32_t height) { return 1.0F / static_cast<float>(height - 1); }
float roundedFactor(std::int32_t height) { return static_cast<float>(1.0 / static_cast<double>(height - 1)); }

// In the 16-bit members the sum is exact, but each square is rounded to single before it is added.
using IntegerMoments = Moments<std::int16_t, SumExact, SumSingle>;

struct IntegerMean {
  float reciprocal;
  explicit IntegerMean(std::int32_t height) : reciprocal(1.0F / static_cast<float>(height)) {}
  float operator()(std::int64_t sum) const { return static_cast<float>(sum) * reciprocal; }
};

// Truncated and shifted, nowhere rounded.
struct IntegerVariance {
  float height, factor;
  std::int32_t scaleFactor;
  IntegerVariance(std::int32_t rows, std::int32_t scale)
      : height(static_cast<float>(rows)), factor(singleFactor(rows)), scaleFactor(scale) {}
  std::int64_t operator()(float squares, float mean) const {
    return shiftSum(static_cast<std::int64_t>((squares - mean * mean * height) * factor), scaleFactor);
  }
};

template <class Rows>
void meanSingle(const Rows &rows, std::int32_t height, float *mean, std::int32_t width) {
  const float reciprocal = 1.0F / static_cast<float>(height);
  sumColumns(Moments<float, SumSingle>{}, rows, height, width, FromZero{},
             [=](std::int32_t c, const auto &total) { store(mean + c, total.sum * reciprocal); });
}

// The mean is truncated toward zero, not rounded: it may even lie one below the mean of equal values.
template <class Rows>
void meanInteger(const Rows &rows, std::int32_t height, std::int16_t *mean, std::int32_t width) {
  const IntegerMean meanOf(height);
  sumColumns(Moments<std::int16_t, SumExact>{}, rows, height, width, FromZero{},
             [=](std::int32_t c, const auto &total) {
               store(mean + c, static_cast<std::int16_t>(meanOf(total.sum)));
             });
}

// The squares are added to what will be taken off for the mean, and not the other way round.
template <class Rows>
void varSingle(const Rows &rows, std::int32_t height, const float *mean, float *var, std::int32_t width) {
  using Form = Moments<float, NoSum, SumSingle>;
  const float factor = singleFactor(height);
  sumColumns(
      Form{}, rows, height, width,
      [=](std::int32_t c) {
        const float m = load(mean + c);
        return Form::Column{{}, -(static_cast<float>(height) * (m * m))};
      },
      [=](std::int32_t c, const auto &total) { store(var + c, total.squares * factor); });
}

template <class Rows>
void varInteger(const Rows &rows, std::int32_t height, const std::int16_t *mean, std::int16_t *var,
                std::int32_t width, std::int32_t scaleFactor) {
  const IntegerVariance variance(height, scaleFactor);
  sumColumns(Moments<std::int16_t, NoSum, SumSingle>{}, rows, height, width, FromZero{},
             [=](std::int32_t c, const auto &total) {
               store(var + c, sat16(variance(total.squares, static_cast<float>(load(mean + c)))));
             });
}

template <class Rows>
void meanVarSingle(const Rows &rows, std::int32_t height, float *mean, float *var, std::int32_t width) {
  const float reciprocal = 1.0F / static_cast<float>(height);
  const float factor = roundedFactor(height);
  sumColumns(Moments<float, SumSingle, SumSingle>{}, rows, height, width, FromZero{},
             [=](std::int32_t c, const auto &total) {
               const float m = total.sum * reciprocal;
               store(mean + c, m);
               store(var + c, (total.squares - static_cast<float>(height) * (m * m)) * factor);
             });
}

// The variance is taken about the mean before that is truncated.
template <class Rows, class Mean, class Var>
void meanVarInteger(const Rows &rows, std::int32_t height, Mean *mean, Var *var, std::int32_t width,
                    std::int32_t scaleFactor) {
  const IntegerMean meanOf(height);
  const IntegerVariance variance(height, scaleFactor);
  sumColumns(IntegerMoments{}, rows, height, width, FromZero{}, [=](std::int32_t c, const auto &total) {
    const float m = meanOf(total.sum);
    store(mean + c, static_cast<Mean>(m));
    store(var + c, saturate<Var>(variance(total.squares, m)));
  });
}

// The weights are taken to add up to 1, and nothing divides by their sum.
template <class Sum, class Rows, class T>
void weightedMean(const Rows &rows, const T *weights, std::int32_t height, T *mean, std::int32_t width) {
  sumColumns(WeightedMoments<T, Sum>{weights}, rows, height, width, FromZero{},
             [=](std::int32_t c, const auto &total) { store(mean + c, total.sum); });
}

template <class Sum, class Rows, class T>
void weightedVar(const Rows &rows, const T *weights, std::int32_t height, const T *mean, T *var,
                 std::int32_t width) {
  sumColumns(WeightedMoments<T, NoSum, Sum>{weights}, rows, height, width, FromZero{},
             [=](std::int32_t c, const auto &total) {
               const T m = load(mean + c);
               store(var + c, total.squares - m * m);
             });
}

template <class Sum, class Rows, class T>
void weightedMeanVar(const Rows &rows, const T *weights, std::int32_t height, T *mean, T *var,
                     std::int32_t width) {
  sumColumns(WeightedMoments<T, Sum, Sum>{weights}, rows, height, width, FromZero{},
             [=](std::int32_t c, const auto &total) {
               store(mean + c, total.sum);
               store(var + c, total.squares - total.sum * total.sum);
             });
}

// Sums in single that begin at zero or, in place, at what stands there.
template <class T, class Begin>
void sumMeanVar(const T *src, std::int32_t step, std::int32_t height, float *sums, float *squares,
                std::int32_t width, Begin begin) {
  sumColumns(Moments<T, SumSingle, SumSingle>{}, StridedRows{src, step}, height, width, begin,
             [=](std::int32_t c, const auto &total) {
               store(sums + c, total.sum);
               store(squares + c, total.squares);
             });
}

auto fromOld(const float *sums, const float *squares) {
  return [=](std::int32_t c) { return Totals<SumSingle, SumSingle>{load(sums + c), load(squares + c)}; };
}

using ExactMoments = Moments<std::int16_t, SumExact, SumExactWide>;

template <class Begin>
void sumMeanVarScaled(const std::int16_t *src, std::int32_t step, std::int32_t height, std::int32_t *sums,
                      std::int32_t *squares, std::int32_t width, std::int32_t scaleFactor, Begin begin) {
  sumColumns(ExactMoments{}, StridedRows{src, step}, height, width, begin,
             [=](std::int32_t c, const auto &total) {
               store(sums + c, sat32(shiftSum(total.sum, scaleFactor)));
               store(squares + c, sat32(shiftSum(total.squares, scaleFactor)));
             });
}

// Stride, pointers, sizes; a variance needs two rows.
template <class... Pointers>
OrvStatus checkVariance(std::int32_t width, std::int32_t step, std::int32_t height,
                        const Pointers *...pointers) {
  return checkStrideNullSize(width, step, height < 2 ? 0 : height, pointers...);
}
template <class... Pointers>
OrvStatus checkVarianceRows(std::int32_t width, std::int32_t height, const Pointers *...pointers) {
  return checkNullSize(width, height < 2 ? 0 : height, pointers...);
}

}  // namespace
}  // namespace orv

using namespace orv;

OrvStatus orvsMeanColumn_32f_D2(const float *pSrc, int32_t height, int32_t step, float *pMean,
                                int32_t width) {
  const OrvStatus status = checkStrideNullSize(width, step, height, pSrc, pMean);
  if (status != orvStsNoErr) return status;
  meanSingle(StridedRows{pSrc, step}, height, pMean, width);
  return orvStsNoErr;
}

OrvStatus orvsMeanColumn_32f_D2L(const float *const *ppSrc, int32_t height, float *pMean, int32_t width) {
  const OrvStatus status = checkNullSize(width, height, ppSrc, pMean);
  if (status != orvStsNoErr) return status;
  meanSingle(RowPointers{ppSrc}, height, pMean, width);
  return orvStsNoErr;
}

OrvStatus orvsMeanColumn_16s_D2(const int16_t *pSrc, int32_t height, int32_t step, int16_t *pMean,
                                int32_t width) {
  const OrvStatus status = checkStrideNullSize(width, step, height, pSrc, pMean);
  if (status != orvStsNoErr) return status;
  meanInteger(StridedRows{pSrc, step}, height, pMean, width);
  return orvStsNoErr;
}

OrvStatus orvsMeanColumn_16s_D2L(const int16_t *const *ppSrc, int32_t height, int16_t *pMean, int32_t width) {
  const OrvStatus status = checkNullSize(width, height, ppSrc, pMean);
  if (status != orvStsNoErr) return status;
  meanInteger(RowPointers{ppSrc}, height, pMean, width);
  return orvStsNoErr;
}

OrvStatus orvsVarColumn_32f_D2(const float *pSrc, int32_t height, int32_t step, const float *pMean,
                               float *pVar, int32_t width) {
  const OrvStatus status = checkVariance(width, step, height, pSrc, pMean, pVar);
  if (status != orvStsNoErr) return status;
  varSingle(StridedRows{pSrc, step}, height, pMean, pVar, width);
  return orvStsNoErr;
}

OrvStatus orvsVarColumn_32f_D2L(const float *const *ppSrc, int32_t height, const float *pMean, float *pVar,
                                int32_t width) {
  const OrvStatus status = checkVarianceRows(width, height, ppSrc, pMean, pVar);
  if (status != orvStsNoErr) return status;
  varSingle(RowPointers{ppSrc}, height, pMean, pVar, width);
  return orvStsNoErr;
}

OrvStatus orvsVarColumn_16s_D2Sfs(const int16_t *pSrc, int32_t height, int32_t step, const int16_t *pMean,
                                  int16_t *pVar, int32_t width, int32_t scaleFactor) {
  const OrvStatus status = checkVariance(width, step, height, pSrc, pMean, pVar);
  if (status != orvStsNoErr) return status;
  varInteger(StridedRows{pSrc, step}, height, pMean, pVar, width, scaleFactor);
  return orvStsNoErr;
}

OrvStatus orvsVarColumn_16s_D2LSfs(const int16_t *const *ppSrc, int32_t height, const int16_t *pMean,
                                   int16_t *pVar, int32_t width, int32_t scaleFactor) {
  const OrvStatus status = checkVarianceRows(width, height, ppSrc, pMean, pVar);
  if (status != orvStsNoErr) return status;
  varInteger(RowPointers{ppSrc}, height, pMean, pVar, width, scaleFactor);
  return orvStsNoErr;
}

OrvStatus orvsMeanVarColumn_32f_D2(const float *pSrc, int32_t height, int32_t step, float *pMean, float *pVar,
                                   int32_t width) {
  const OrvStatus status = checkVariance(width, step, height, pSrc, pMean, pVar);
  if (status != orvStsNoErr) return status;
  meanVarSingle(StridedRows{pSrc, step}, height, pMean, pVar, width);
  return orvStsNoErr;
}

OrvStatus orvsMeanVarColumn_32f_D2L(const float *const *ppSrc, int32_t height, float *pMean, float *pVar,
                                    int32_t width) {
  const OrvStatus status = checkVarianceRows(width, height, ppSrc, pMean, pVar);
  if (status != orvStsNoErr) return status;
  meanVarSingle(RowPointers{ppSrc}, height, pMean, pVar, width);
  return orvStsNoErr;
}

OrvStatus orvsMeanVarColumn_16s_D2Sfs(const int16_t *pSrc, int32_t height, int32_t step, int16_t *pMean,
                                      int16_t *pVar, int32_t width, int32_t scaleFactor) {
  const OrvStatus status = checkVariance(width, step, height, pSrc, pMean, pVar);
  if (status != orvStsNoErr) return status;
  meanVarInteger(StridedRows{pSrc, step}, height, pMean, pVar, width, scaleFactor);
  return orvStsNoErr;
}

OrvStatus orvsMeanVarColumn_16s_D2LSfs(const int16_t *const *ppSrc, int32_t height, int16_t *pMean,
                                       int16_t *pVar, int32_t width, int32_t scaleFactor) {
  const OrvStatus status = checkVarianceRows(width, height, ppSrc, pMean, pVar);
  if (status != orvStsNoErr) return status;
  meanVarInteger(RowPointers{ppSrc}, height, pMean, pVar, width, scaleFactor);
  return orvStsNoErr;
}

OrvStatus orvsMeanVarColumn_16s32s_D2Sfs(const int16_t *pSrc, int32_t height, int32_t step, int32_t *pMean,
                                         int32_t *pVar, int32_t width, int32_t scaleFactor) {
  const OrvStatus status = checkVariance(width, step, height, pSrc, pMean, pVar);
  if (status != orvStsNoErr) return status;
  meanVarInteger(StridedRows{pSrc, step}, height, pMean, pVar, width, scaleFactor);
  return orvStsNoErr;
}

OrvStatus orvsMeanVarColumn_16s32s_D2LSfs(const int16_t *const *ppSrc, int32_t height, int32_t *pMean,
                                          int32_t *pVar, int32_t width, int32_t scaleFactor) {
  const OrvStatus status = checkVarianceRows(width, height, ppSrc, pMean, pVar);
  if (status != orvStsNoErr) return status;
  meanVarInteger(RowPointers{ppSrc}, height, pMean, pVar, width, scaleFactor);
  return orvStsNoErr;
}

OrvStatus orvsMeanVarColumn_16s16s32s_D2(const int16_t *pSrc, int32_t height, int32_t step, int16_t *pMean,
                                         int32_t *pVar, int32_t width) {
  const OrvStatus status = checkVariance(width, step, height, pSrc, pMean, pVar);
  if (status != orvStsNoErr) return status;
  meanVarInteger(StridedRows{pSrc, step}, height, pMean, pVar, width, 0);
  return orvStsNoErr;
}

OrvStatus orvsMeanVarColumn_16s16s32s_D2L(const int16_t *const *ppSrc, int32_t height, int16_t *pMean,
                                          int32_t *pVar, int32_t width) {
  const OrvStatus status = checkVarianceRows(width, height, ppSrc, pMean, pVar);
  if (status != orvStsNoErr) return status;
  meanVarInteger(RowPointers{ppSrc}, height, pMean, pVar, width, 0);
  return orvStsNoErr;
}

OrvStatus orvsWeightedMeanColumn_32f_D2(const float *pSrc, int32_t step, const float *pWeights,
                                        int32_t height, float *pMean, int32_t width) {
  const OrvStatus status = checkNullStrideSize(width, step, height, pSrc, pWeights, pMean);
  if (status != orvStsNoErr) return status;
  weightedMean<SumSingle>(StridedRows{pSrc, step}, pWeights, height, pMean, width);
  return orvStsNoErr;
}

OrvStatus orvsWeightedMeanColumn_32f_D2L(const float *const *ppSrc, const float *pWeights, int32_t height,
                                         float *pMean, int32_t width) {
  const OrvStatus status = checkNullSize(width, height, ppSrc, pWeights, pMean);
  if (status != orvStsNoErr) return status;
  weightedMean<SumSingle>(RowPointers{ppSrc}, pWeights, height, pMean, width);
  return orvStsNoErr;
}

OrvStatus orvsWeightedVarColumn_32f_D2(const float *pSrc, int32_t step, const float *pWeights, int32_t height,
                                       const float *pMean, float *pVar, int32_t width) {
  const OrvStatus status = checkNullStrideSize(width, step, height, pSrc, pWeights, pMean, pVar);
  if (status != orvStsNoErr) return status;
  weightedVar<SumSingle>(StridedRows{pSrc, step}, pWeights, height, pMean, pVar, width);
  return orvStsNoErr;
}

OrvStatus orvsWeightedVarColumn_32f_D2L(const float *const *ppSrc, const float *pWeights, int32_t height,
                                        const float *pMean, float *pVar, int32_t width) {
  const OrvStatus status = checkNullSize(width, height, ppSrc, pWeights, pMean, pVar);
  if (status != orvStsNoErr) return status;
  weightedVar<SumSingle>(RowPointers{ppSrc}, pWeights, height, pMean, pVar, width);
  return orvStsNoErr;
}

OrvStatus orvsWeightedMeanVarColumn_32f_D2(const float *pSrc, int32_t step, const float *pWeights,
                                           int32_t height, float *pMean, float *pVar, int32_t width) {
  const OrvStatus status = checkNullStrideSize(width, step, height, pSrc, pWeights, pMean, pVar);
  if (status != orvStsNoErr) return status;
  weightedMeanVar<SumSingle>(StridedRows{pSrc, step}, pWeights, height, pMean, pVar, width);
  return orvStsNoErr;
}

OrvStatus orvsWeightedMeanVarColumn_32f_D2L(const float *const *ppSrc, const float *pWeights, int32_t height,
                                            float *pMean, float *pVar, int32_t width) {
  const OrvStatus status = checkNullSize(width, height, ppSrc, pWeights, pMean, pVar);
  if (status != orvStsNoErr) return status;
  weightedMeanVar<SumSingle>(RowPointers{ppSrc}, pWeights, height, pMean, pVar, width);
  return orvStsNoErr;
}

OrvStatus orvsWeightedMeanColumn_64f_D2(const double *pSrc, int32_t step, const double *pWeights,
                                        int32_t height, double *pMean, int32_t width) {
  const OrvStatus status = checkNullStrideSize(width, step, height, pSrc, pWeights, pMean);
  if (status != orvStsNoErr) return status;
  weightedMean<SumDouble>(StridedRows{pSrc, step}, pWeights, height, pMean, width);
  return orvStsNoErr;
}

OrvStatus orvsWeightedMeanColumn_64f_D2L(const double *const *ppSrc, const double *pWeights, int32_t height,
                                         double *pMean, int32_t width) {
  const OrvStatus status = checkNullSize(width, height, ppSrc, pWeights, pMean);
  if (status != orvStsNoErr) return status;
  weightedMean<SumDouble>(RowPointers{ppSrc}, pWeights, height, pMean, width);
  return orvStsNoErr;
}

OrvStatus orvsWeightedVarColumn_64f_D2(const double *pSrc, int32_t step, const double *pWeights,
                                       int32_t height, const double *pMean, double *pVar, int32_t width) {
  const OrvStatus status = checkNullStrideSize(width, step, height, pSrc, pWeights, pMean, pVar);
  if (status != orvStsNoErr) return status;
  weightedVar<SumDouble>(StridedRows{pSrc, step}, pWeights, height, pMean, pVar, width);
  return orvStsNoErr;
}

OrvStatus orvsWeightedVarColumn_64f_D2L(const double *const *ppSrc, const double *pWeights, int32_t height,
                                        const double *pMean, double *pVar, int32_t width) {
  const OrvStatus status = checkNullSize(width, height, ppSrc, pWeights, pMean, pVar);
  if (status != orvStsNoErr) return status;
  weightedVar<SumDouble>(RowPointers{ppSrc}, pWeights, height, pMean, pVar, width);
  return orvStsNoErr;
}

OrvStatus orvsWeightedMeanVarColumn_64f_D2(const double *pSrc, int32_t step, const double *pWeights,
                                           int32_t height, double *pMean, double *pVar, int32_t width) {
  const OrvStatus status = checkNullStrideSize(width, step, height, pSrc, pWeights, pMean, pVar);
  if (status != orvStsNoErr) return status;
  weightedMeanVar<SumDouble>(StridedRows{pSrc, step}, pWeights, height, pMean, pVar, width);
  return orvStsNoErr;
}

OrvStatus orvsWeightedMeanVarColumn_64f_D2L(const double *const *ppSrc, const double *pWeights,
                                            int32_t height, double *pMean, double *pVar, int32_t width) {
  const OrvStatus status = checkNullSize(width, height, ppSrc, pWeights, pMean, pVar);
  if (status != orvStsNoErr) return status;
  weightedMeanVar<SumDouble>(RowPointers{ppSrc}, pWeights, height, pMean, pVar, width);
  return orvStsNoErr;
}

OrvStatus orvsSumMeanVar_32f(const float *pSrc, int32_t step, int32_t height, float *pSum, float *pSumSqr,
                             int32_t width) {
  const OrvStatus status = checkStrideNullSize(width, step, height, pSrc, pSum, pSumSqr);
  if (status != orvStsNoErr) return status;
  sumMeanVar(pSrc, step, height, pSum, pSumSqr, width, FromZero{});
  return orvStsNoErr;
}

OrvStatus orvsSumMeanVar_32f_I(const float *pSrc, int32_t step, int32_t height, float *pSum, float *pSumSqr,
                               int32_t width) {
  const OrvStatus status = checkStrideNullSize(width, step, height, pSrc, pSum, pSumSqr);
  if (status != orvStsNoErr) return status;
  sumMeanVar(pSrc, step, height, pSum, pSumSqr, width, fromOld(pSum, pSumSqr));
  return orvStsNoErr;
}

OrvStatus orvsSumMeanVar_16s32f(const int16_t *pSrc, int32_t step, int32_t height, float *pSum,
                                float *pSumSqr, int32_t width) {
  const OrvStatus status = checkStrideNullSize(width, step, height, pSrc, pSum, pSumSqr);
  if (status != orvStsNoErr) return status;
  sumMeanVar(pSrc, step, height, pSum, pSumSqr, width, FromZero{});
  return orvStsNoErr;
}

OrvStatus orvsSumMeanVar_16s32f_I(const int16_t *pSrc, int32_t step, int32_t height, float *pSum,
                                  float *pSumSqr, int32_t width) {
  const OrvStatus status = checkStrideNullSize(width, step, height, pSrc, pSum, pSumSqr);
  if (status != orvStsNoErr) return status;
  sumMeanVar(pSrc, step, height, pSum, pSumSqr, width, fromOld(pSum, pSumSqr));
  return orvStsNoErr;
}

OrvStatus orvsSumMeanVar_16s32s_Sfs(const int16_t *pSrc, int32_t step, int32_t height, int32_t *pSum,
                                    int32_t *pSumSqr, int32_t width, int32_t scaleFactor) {
  const OrvStatus status = checkStrideNullSize(width, step, height, pSrc, pSum, pSumSqr);
  if (status != orvStsNoErr) return status;
  sumMeanVarScaled(pSrc, step, height, pSum, pSumSqr, width, scaleFactor, FromZero{});
  return orvStsNoErr;
}

OrvStatus orvsSumMeanVar_16s32s_ISfs(const int16_t *pSrc, int32_t step, int32_t height, int32_t *pSum,
                                     int32_t *pSumSqr, int32_t width, int32_t scaleFactor) {
  const OrvStatus status = checkStrideNullSize(width, step, height, pSrc, pSum, pSumSqr);
  if (status != orvStsNoErr) return status;
  sumMeanVarScaled(pSrc, step, height, pSum, pSumSqr, width, scaleFactor, [=](std::int32_t c) {
    return ExactMoments::Column{load(pSum + c), load(pSumSqr + c)};
  });
  return orvStsNoErr;
}
