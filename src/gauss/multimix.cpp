// orvsLogGaussMultiMix_*, orvsLogGaussMaxMultiMix_*, orvsLogGaussAddMultiMix_*: one vector against many
// Gaussians, with a score, a running maximum or a running log-sum for each.

#include "gauss/score.h"
#include "gauss/sinks.h"
#include "orvsr/gauss.h"
#include "primitives/rows.h"

using namespace orv;
using namespace orv::gauss;

namespace {

template <class Rows>
using MultiMixBlock = ComponentBlock<Rows, Deciding::weightsOfSingleRows>;

}  // namespace

// --- scores: the constants come in, and leave as the scores

OrvStatus orvsLogGaussMultiMix_32f_D2(const float *pMean, const float *pVar, int32_t step, const float *pSrc,
                                      int32_t featLen, float *pSrcDst, int32_t count) {
  const OrvStatus status = checkStrideNullSize(featLen, step, count, pMean, pVar, pSrc, pSrcDst);
  if (status != orvStsNoErr) return status;
  const MultiMixBlock<StridedRows<const float>> block{{pMean, step}, {pVar, step}, pSrc};
  scoreRows<Single, Weighting::inverseVariance>(count, featLen, block, RowConstants{pSrcDst},
                                                DoubledConstant<float>{}, Store<Single>{pSrcDst});
  return orvStsNoErr;
}

OrvStatus orvsLogGaussMultiMix_32f_D2L(const float *const *ppMean, const float *const *ppVar,
                                       const float *pSrc, int32_t featLen, float *pSrcDst, int32_t count) {
  const OrvStatus status = checkNullSize(featLen, count, ppMean, ppVar, pSrc, pSrcDst);
  if (status != orvStsNoErr) return status;
  const MultiMixBlock<RowPointers<const float>> block{{ppMean}, {ppVar}, pSrc};
  scoreRows<Single, Weighting::inverseVariance>(count, featLen, block, RowConstants{pSrcDst},
                                                DoubledConstant<float>{}, Store<Single>{pSrcDst});
  return orvStsNoErr;
}

OrvStatus orvsLogGaussMultiMix_64f_D2(const double *pMean, const double *pVar, int32_t step,
                                      const double *pSrc, int32_t featLen, double *pSrcDst, int32_t count) {
  const OrvStatus status = checkStrideNullSize(featLen, step, count, pMean, pVar, pSrc, pSrcDst);
  if (status != orvStsNoErr) return status;
  const MultiMixBlock<StridedRows<const double>> block{{pMean, step}, {pVar, step}, pSrc};
  scoreRows<Double, Weighting::inverseVariance>(count, featLen, block, RowConstants{pSrcDst},
                                                DoubledConstant<double>{}, Store<Double>{pSrcDst});
  return orvStsNoErr;
}

OrvStatus orvsLogGaussMultiMix_64f_D2L(const double *const *ppMean, const double *const *ppVar,
                                       const double *pSrc, int32_t featLen, double *pSrcDst, int32_t count) {
  const OrvStatus status = checkNullSize(featLen, count, ppMean, ppVar, pSrc, pSrcDst);
  if (status != orvStsNoErr) return status;
  const MultiMixBlock<RowPointers<const double>> block{{ppMean}, {ppVar}, pSrc};
  scoreRows<Double, Weighting::inverseVariance>(count, featLen, block, RowConstants{pSrcDst},
                                                DoubledConstant<double>{}, Store<Double>{pSrcDst});
  return orvStsNoErr;
}

OrvStatus orvsLogGaussMultiMix_16s32s_D2Sfs(const int16_t *pMean, const int16_t *pVar, int32_t step,
                                            const int16_t *pSrc, int32_t featLen, int32_t *pSrcDst,
                                            int32_t count, int32_t scaleFactor) {
  const OrvStatus status = checkStrideNullSize(featLen, step, count, pMean, pVar, pSrc, pSrcDst);
  if (status != orvStsNoErr) return status;
  const MultiMixBlock<StridedRows<const std::int16_t>> block{{pMean, step}, {pVar, step}, pSrc};
  scoreRowsExactly<Weighting::inverseVariance>(count, featLen, block, RowConstants{pSrcDst},
                                               ExactScore{plusOne(scaleFactor)}, StoreSaturated{pSrcDst});
  return orvStsNoErr;
}

OrvStatus orvsLogGaussMultiMix_16s32s_D2LSfs(const int16_t *const *ppMean, const int16_t *const *ppVar,
                                             const int16_t *pSrc, int32_t featLen, int32_t *pSrcDst,
                                             int32_t count, int32_t scaleFactor) {
  const OrvStatus status = checkNullSize(featLen, count, ppMean, ppVar, pSrc, pSrcDst);
  if (status != orvStsNoErr) return status;
  const MultiMixBlock<RowPointers<const std::int16_t>> block{{ppMean}, {ppVar}, pSrc};
  scoreRowsExactly<Weighting::inverseVariance>(count, featLen, block, RowConstants{pSrcDst},
                                               ExactScore{plusOne(scaleFactor)}, StoreSaturated{pSrcDst});
  return orvStsNoErr;
}

OrvStatus orvsLogGaussMultiMix_Low_16s32s_D2Sfs(const int16_t *pMean, const int16_t *pVar, int32_t step,
                                                const int16_t *pSrc, int32_t featLen, int32_t *pSrcDst,
                                                int32_t count, int32_t scaleFactor) {
  const OrvStatus status = checkStrideNullSize(featLen, step, count, pMean, pVar, pSrc, pSrcDst);
  if (status != orvStsNoErr) return status;
  const MultiMixBlock<StridedRows<const std::int16_t>> block{{pMean, step}, {pVar, step}, pSrc};
  scoreRowsExactly<Weighting::inverseVariance>(count, featLen, block, RowConstants{pSrcDst},
                                               ExactScore{plusOne(scaleFactor)}, StoreWrapped{pSrcDst});
  return orvStsNoErr;
}

OrvStatus orvsLogGaussMultiMix_Low_16s32s_D2LSfs(const int16_t *const *ppMean, const int16_t *const *ppVar,
                                                 const int16_t *pSrc, int32_t featLen, int32_t *pSrcDst,
                                                 int32_t count, int32_t scaleFactor) {
  const OrvStatus status = checkNullSize(featLen, count, ppMean, ppVar, pSrc, pSrcDst);
  if (status != orvStsNoErr) return status;
  const MultiMixBlock<RowPointers<const std::int16_t>> block{{ppMean}, {ppVar}, pSrc};
  scoreRowsExactly<Weighting::inverseVariance>(count, featLen, block, RowConstants{pSrcDst},
                                               ExactScore{plusOne(scaleFactor)}, StoreWrapped{pSrcDst});
  return orvStsNoErr;
}

OrvStatus orvsLogGaussMultiMix_Scaled_16s32f_D2(const int16_t *pMean, const int16_t *pVar, int32_t step,
                                                const int16_t *pSrc, int32_t featLen, float *pSrcDst,
                                                int32_t count, int32_t scaleFactor) {
  const OrvStatus status = checkStrideNullSize(featLen, step, count, pMean, pVar, pSrc, pSrcDst);
  if (status != orvStsNoErr) return status;
  const MultiMixBlock<StridedRows<const std::int16_t>> block{{pMean, step}, {pVar, step}, pSrc};
  scoreRows<Converted, Weighting::inverseVariance>(count, featLen, block, RowConstants{pSrcDst},
                                                   ScaledSum{halvedScale(scaleFactor)},
                                                   Store<Converted>{pSrcDst});
  return orvStsNoErr;
}

OrvStatus orvsLogGaussMultiMix_Scaled_16s32f_D2L(const int16_t *const *ppMean, const int16_t *const *ppVar,
                                                 const int16_t *pSrc, int32_t featLen, float *pSrcDst,
                                                 int32_t count, int32_t scaleFactor) {
  const OrvStatus status = checkNullSize(featLen, count, ppMean, ppVar, pSrc, pSrcDst);
  if (status != orvStsNoErr) return status;
  const MultiMixBlock<RowPointers<const std::int16_t>> block{{ppMean}, {ppVar}, pSrc};
  scoreRows<Converted, Weighting::inverseVariance>(count, featLen, block, RowConstants{pSrcDst},
                                                   ScaledSum{halvedScale(scaleFactor)},
                                                   Store<Converted>{pSrcDst});
  return orvStsNoErr;
}

OrvStatus orvsLogGaussMultiMix_LowScaled_16s32f_D2(const int16_t *pMean, const int16_t *pVar, int32_t step,
                                                   const int16_t *pSrc, int32_t featLen, float *pSrcDst,
                                                   int32_t count, int32_t scaleFactor) {
  const OrvStatus status = checkStrideNullSize(featLen, step, count, pMean, pVar, pSrc, pSrcDst);
  if (status != orvStsNoErr) return status;
  const MultiMixBlock<StridedRows<const std::int16_t>> block{{pMean, step}, {pVar, step}, pSrc};
  scoreRows<Converted, Weighting::inverseVariance>(count, featLen, block, RowConstants{pSrcDst},
                                                   ScaledSum{GetScale_32s32f(scaleFactor) * 0.5F},
                                                   Store<Converted>{pSrcDst});
  return orvStsNoErr;
}

OrvStatus orvsLogGaussMultiMix_LowScaled_16s32f_D2L(const int16_t *const *ppMean, const int16_t *const *ppVar,
                                                    const int16_t *pSrc, int32_t featLen, float *pSrcDst,
                                                    int32_t count, int32_t scaleFactor) {
  const OrvStatus status = checkNullSize(featLen, count, ppMean, ppVar, pSrc, pSrcDst);
  if (status != orvStsNoErr) return status;
  const MultiMixBlock<RowPointers<const std::int16_t>> block{{ppMean}, {ppVar}, pSrc};
  scoreRows<Converted, Weighting::inverseVariance>(count, featLen, block, RowConstants{pSrcDst},
                                                   ScaledSum{GetScale_32s32f(scaleFactor) * 0.5F},
                                                   Store<Converted>{pSrcDst});
  return orvStsNoErr;
}

// --- running maxima
//
// Of all members with a row step only the Scaled and LowScaled ones here test the stride last. This is meant.
// The integer members shift the negated sum and so round a score down, where the scores above round it up.

OrvStatus orvsLogGaussMaxMultiMix_32f_D2(const float *pMean, const float *pVar, int32_t step,
                                         const float *pSrc, int32_t featLen, const float *pGConst,
                                         float *pSrcDst, int32_t count) {
  const OrvStatus status = checkStrideNullSize(featLen, step, count, pMean, pVar, pSrc, pGConst, pSrcDst);
  if (status != orvStsNoErr) return status;
  const MultiMixBlock<StridedRows<const float>> block{{pMean, step}, {pVar, step}, pSrc};
  scoreRows<Single, Weighting::inverseVariance>(count, featLen, block, RowConstants{pGConst},
                                                DoubledConstant<float>{}, KeepMaximum<Single>{pSrcDst});
  return orvStsNoErr;
}

OrvStatus orvsLogGaussMaxMultiMix_32f_D2L(const float *const *ppMean, const float *const *ppVar,
                                          const float *pSrc, int32_t featLen, const float *pGConst,
                                          float *pSrcDst, int32_t count) {
  const OrvStatus status = checkNullSize(featLen, count, ppMean, ppVar, pSrc, pGConst, pSrcDst);
  if (status != orvStsNoErr) return status;
  const MultiMixBlock<RowPointers<const float>> block{{ppMean}, {ppVar}, pSrc};
  scoreRows<Single, Weighting::inverseVariance>(count, featLen, block, RowConstants{pGConst},
                                                DoubledConstant<float>{}, KeepMaximum<Single>{pSrcDst});
  return orvStsNoErr;
}

OrvStatus orvsLogGaussMaxMultiMix_64f_D2(const double *pMean, const double *pVar, int32_t step,
                                         const double *pSrc, int32_t featLen, const double *pGConst,
                                         double *pSrcDst, int32_t count) {
  const OrvStatus status = checkStrideNullSize(featLen, step, count, pMean, pVar, pSrc, pGConst, pSrcDst);
  if (status != orvStsNoErr) return status;
  const MultiMixBlock<StridedRows<const double>> block{{pMean, step}, {pVar, step}, pSrc};
  scoreRows<Double, Weighting::inverseVariance>(count, featLen, block, RowConstants{pGConst},
                                                DoubledConstant<double>{}, KeepMaximum<Double>{pSrcDst});
  return orvStsNoErr;
}

OrvStatus orvsLogGaussMaxMultiMix_64f_D2L(const double *const *ppMean, const double *const *ppVar,
                                          const double *pSrc, int32_t featLen, const double *pGConst,
                                          double *pSrcDst, int32_t count) {
  const OrvStatus status = checkNullSize(featLen, count, ppMean, ppVar, pSrc, pGConst, pSrcDst);
  if (status != orvStsNoErr) return status;
  const MultiMixBlock<RowPointers<const double>> block{{ppMean}, {ppVar}, pSrc};
  scoreRows<Double, Weighting::inverseVariance>(count, featLen, block, RowConstants{pGConst},
                                                DoubledConstant<double>{}, KeepMaximum<Double>{pSrcDst});
  return orvStsNoErr;
}

OrvStatus orvsLogGaussMaxMultiMix_16s32s_D2Sfs(const int16_t *pMean, const int16_t *pVar, int32_t step,
                                               const int16_t *pSrc, int32_t featLen, const int32_t *pGConst,
                                               int32_t *pSrcDst, int32_t count, int32_t scaleFactor) {
  const OrvStatus status = checkStrideNullSize(featLen, step, count, pMean, pVar, pSrc, pGConst, pSrcDst);
  if (status != orvStsNoErr) return status;
  const MultiMixBlock<StridedRows<const std::int16_t>> block{{pMean, step}, {pVar, step}, pSrc};
  scoreRowsExactly<Weighting::inverseVariance>(count, featLen, block, RowConstants{pGConst},
                                               NegatedExactScore{plusOne(scaleFactor)},
                                               KeepMaximumSaturated{pSrcDst});
  return orvStsNoErr;
}

OrvStatus orvsLogGaussMaxMultiMix_16s32s_D2LSfs(const int16_t *const *ppMean, const int16_t *const *ppVar,
                                                const int16_t *pSrc, int32_t featLen, const int32_t *pGConst,
                                                int32_t *pSrcDst, int32_t count, int32_t scaleFactor) {
  const OrvStatus status = checkNullSize(featLen, count, ppMean, ppVar, pSrc, pGConst, pSrcDst);
  if (status != orvStsNoErr) return status;
  const MultiMixBlock<RowPointers<const std::int16_t>> block{{ppMean}, {ppVar}, pSrc};
  scoreRowsExactly<Weighting::inverseVariance>(count, featLen, block, RowConstants{pGConst},
                                               NegatedExactScore{plusOne(scaleFactor)},
                                               KeepMaximumSaturated{pSrcDst});
  return orvStsNoErr;
}

OrvStatus orvsLogGaussMaxMultiMix_Low_16s32s_D2Sfs(const int16_t *pMean, const int16_t *pVar, int32_t step,
                                                   const int16_t *pSrc, int32_t featLen,
                                                   const int32_t *pGConst, int32_t *pSrcDst, int32_t count,
                                                   int32_t scaleFactor) {
  const OrvStatus status = checkStrideNullSize(featLen, step, count, pMean, pVar, pSrc, pGConst, pSrcDst);
  if (status != orvStsNoErr) return status;
  const MultiMixBlock<StridedRows<const std::int16_t>> block{{pMean, step}, {pVar, step}, pSrc};
  scoreRowsExactly<Weighting::inverseVariance>(count, featLen, block, RowConstants{pGConst},
                                               NegatedExactScore{plusOne(scaleFactor)},
                                               KeepMaximumWrapped{pSrcDst});
  return orvStsNoErr;
}

OrvStatus orvsLogGaussMaxMultiMix_Low_16s32s_D2LSfs(const int16_t *const *ppMean, const int16_t *const *ppVar,
                                                    const int16_t *pSrc, int32_t featLen,
                                                    const int32_t *pGConst, int32_t *pSrcDst, int32_t count,
                                                    int32_t scaleFactor) {
  const OrvStatus status = checkNullSize(featLen, count, ppMean, ppVar, pSrc, pGConst, pSrcDst);
  if (status != orvStsNoErr) return status;
  const MultiMixBlock<RowPointers<const std::int16_t>> block{{ppMean}, {ppVar}, pSrc};
  scoreRowsExactly<Weighting::inverseVariance>(count, featLen, block, RowConstants{pGConst},
                                               NegatedExactScore{plusOne(scaleFactor)},
                                               KeepMaximumWrapped{pSrcDst});
  return orvStsNoErr;
}

OrvStatus orvsLogGaussMaxMultiMix_Scaled_16s32f_D2(const int16_t *pMean, const int16_t *pVar, int32_t step,
                                                   const int16_t *pSrc, int32_t featLen, const float *pGConst,
                                                   float *pSrcDst, int32_t count, int32_t scaleFactor) {
  const OrvStatus status = checkNullSizeStride(featLen, step, count, pMean, pVar, pSrc, pGConst, pSrcDst);
  if (status != orvStsNoErr) return status;
  const MultiMixBlock<StridedRows<const std::int16_t>> block{{pMean, step}, {pVar, step}, pSrc};
  scoreRows<Converted, Weighting::inverseVariance>(count, featLen, block, RowConstants{pGConst},
                                                   ScaledSum{halvedScale(scaleFactor)},
                                                   KeepMaximum<Converted>{pSrcDst});
  return orvStsNoErr;
}

OrvStatus orvsLogGaussMaxMultiMix_Scaled_16s32f_D2L(const int16_t *const *ppMean, const int16_t *const *ppVar,
                                                    const int16_t *pSrc, int32_t featLen,
                                                    const float *pGConst, float *pSrcDst, int32_t count,
                                                    int32_t scaleFactor) {
  const OrvStatus status = checkNullSize(featLen, count, ppMean, ppVar, pSrc, pGConst, pSrcDst);
  if (status != orvStsNoErr) return status;
  const MultiMixBlock<RowPointers<const std::int16_t>> block{{ppMean}, {ppVar}, pSrc};
  scoreRows<Converted, Weighting::inverseVariance>(count, featLen, block, RowConstants{pGConst},
                                                   ScaledSum{halvedScale(scaleFactor)},
                                                   KeepMaximum<Converted>{pSrcDst});
  return orvStsNoErr;
}

OrvStatus orvsLogGaussMaxMultiMix_LowScaled_16s32f_D2(const int16_t *pMean, const int16_t *pVar, int32_t step,
                                                      const int16_t *pSrc, int32_t featLen,
                                                      const float *pGConst, float *pSrcDst, int32_t count,
                                                      int32_t scaleFactor) {
  const OrvStatus status = checkNullSizeStride(featLen, step, count, pMean, pVar, pSrc, pGConst, pSrcDst);
  if (status != orvStsNoErr) return status;
  const MultiMixBlock<StridedRows<const std::int16_t>> block{{pMean, step}, {pVar, step}, pSrc};
  scoreRows<Converted, Weighting::inverseVariance>(count, featLen, block, RowConstants{pGConst},
                                                   ScaledSum{GetScale_32s32f(scaleFactor) * 0.5F},
                                                   KeepMaximum<Converted>{pSrcDst});
  return orvStsNoErr;
}

OrvStatus orvsLogGaussMaxMultiMix_LowScaled_16s32f_D2L(const int16_t *const *ppMean,
                                                       const int16_t *const *ppVar, const int16_t *pSrc,
                                                       int32_t featLen, const float *pGConst, float *pSrcDst,
                                                       int32_t count, int32_t scaleFactor) {
  const OrvStatus status = checkNullSize(featLen, count, ppMean, ppVar, pSrc, pGConst, pSrcDst);
  if (status != orvStsNoErr) return status;
  const MultiMixBlock<RowPointers<const std::int16_t>> block{{ppMean}, {ppVar}, pSrc};
  scoreRows<Converted, Weighting::inverseVariance>(count, featLen, block, RowConstants{pGConst},
                                                   ScaledSum{GetScale_32s32f(scaleFactor) * 0.5F},
                                                   KeepMaximum<Converted>{pSrcDst});
  return orvStsNoErr;
}

// --- running log-sums, one row after the other
//
// Unlike in orvsLogGaussAdd_* the LowScaled members have a factor of their own, half of a scale that is
// narrowed from double precision. This is meant.

OrvStatus orvsLogGaussAddMultiMix_32f_D2(const float *pMean, const float *pVar, int32_t step,
                                         const float *pSrc, int32_t featLen, const float *pGConst,
                                         float *pSrcDst, int32_t count) {
  const OrvStatus status = checkStrideNullSize(featLen, step, count, pMean, pVar, pSrc, pGConst, pSrcDst);
  if (status != orvStsNoErr) return status;
  const MultiMixBlock<StridedRows<const float>> block{{pMean, step}, {pVar, step}, pSrc};
  scoreRowsSingly<Single, Weighting::inverseVariance>(count, featLen, block, RowConstants{pGConst},
                                                      DoubledConstant<float>{}, AddLog<Single>(pSrcDst));
  return orvStsNoErr;
}

OrvStatus orvsLogGaussAddMultiMix_32f_D2L(const float *const *ppMean, const float *const *ppVar,
                                          const float *pSrc, int32_t featLen, const float *pGConst,
                                          float *pSrcDst, int32_t count) {
  const OrvStatus status = checkNullSize(featLen, count, ppMean, ppVar, pSrc, pGConst, pSrcDst);
  if (status != orvStsNoErr) return status;
  const MultiMixBlock<RowPointers<const float>> block{{ppMean}, {ppVar}, pSrc};
  scoreRowsSingly<Single, Weighting::inverseVariance>(count, featLen, block, RowConstants{pGConst},
                                                      DoubledConstant<float>{}, AddLog<Single>(pSrcDst));
  return orvStsNoErr;
}

OrvStatus orvsLogGaussAddMultiMix_64f_D2(const double *pMean, const double *pVar, int32_t step,
                                         const double *pSrc, int32_t featLen, const double *pGConst,
                                         double *pSrcDst, int32_t count) {
  const OrvStatus status = checkStrideNullSize(featLen, step, count, pMean, pVar, pSrc, pGConst, pSrcDst);
  if (status != orvStsNoErr) return status;
  const MultiMixBlock<StridedRows<const double>> block{{pMean, step}, {pVar, step}, pSrc};
  scoreRowsSingly<Double, Weighting::inverseVariance>(count, featLen, block, RowConstants{pGConst},
                                                      DoubledConstant<double>{}, AddLog<Double>(pSrcDst));
  return orvStsNoErr;
}

OrvStatus orvsLogGaussAddMultiMix_64f_D2L(const double *const *ppMean, const double *const *ppVar,
                                          const double *pSrc, int32_t featLen, const double *pGConst,
                                          double *pSrcDst, int32_t count) {
  const OrvStatus status = checkNullSize(featLen, count, ppMean, ppVar, pSrc, pGConst, pSrcDst);
  if (status != orvStsNoErr) return status;
  const MultiMixBlock<RowPointers<const double>> block{{ppMean}, {ppVar}, pSrc};
  scoreRowsSingly<Double, Weighting::inverseVariance>(count, featLen, block, RowConstants{pGConst},
                                                      DoubledConstant<double>{}, AddLog<Double>(pSrcDst));
  return orvStsNoErr;
}

OrvStatus orvsLogGaussAddMultiMix_Scaled_16s32f_D2(const int16_t *pMean, const int16_t *pVar, int32_t step,
                                                   const int16_t *pSrc, int32_t featLen, const float *pGConst,
                                                   float *pSrcDst, int32_t count, int32_t scaleFactor) {
  const OrvStatus status = checkStrideNullSize(featLen, step, count, pMean, pVar, pSrc, pGConst, pSrcDst);
  if (status != orvStsNoErr) return status;
  const MultiMixBlock<StridedRows<const std::int16_t>> block{{pMean, step}, {pVar, step}, pSrc};
  scoreRowsSingly<Converted, Weighting::inverseVariance>(count, featLen, block, RowConstants{pGConst},
                                                         ScaledSum{halvedScale(scaleFactor)},
                                                         AddLog<Converted>(pSrcDst));
  return orvStsNoErr;
}

OrvStatus orvsLogGaussAddMultiMix_Scaled_16s32f_D2L(const int16_t *const *ppMean, const int16_t *const *ppVar,
                                                    const int16_t *pSrc, int32_t featLen,
                                                    const float *pGConst, float *pSrcDst, int32_t count,
                                                    int32_t scaleFactor) {
  const OrvStatus status = checkNullSize(featLen, count, ppMean, ppVar, pSrc, pGConst, pSrcDst);
  if (status != orvStsNoErr) return status;
  const MultiMixBlock<RowPointers<const std::int16_t>> block{{ppMean}, {ppVar}, pSrc};
  scoreRowsSingly<Converted, Weighting::inverseVariance>(count, featLen, block, RowConstants{pGConst},
                                                         ScaledSum{halvedScale(scaleFactor)},
                                                         AddLog<Converted>(pSrcDst));
  return orvStsNoErr;
}

OrvStatus orvsLogGaussAddMultiMix_LowScaled_16s32f_D2(const int16_t *pMean, const int16_t *pVar, int32_t step,
                                                      const int16_t *pSrc, int32_t featLen,
                                                      const float *pGConst, float *pSrcDst, int32_t count,
                                                      int32_t scaleFactor) {
  const OrvStatus status = checkStrideNullSize(featLen, step, count, pMean, pVar, pSrc, pGConst, pSrcDst);
  if (status != orvStsNoErr) return status;
  const MultiMixBlock<StridedRows<const std::int16_t>> block{{pMean, step}, {pVar, step}, pSrc};
  scoreRowsSingly<Converted, Weighting::inverseVariance>(
      count, featLen, block, RowConstants{pGConst},
      ScaledSum{static_cast<float>(GetScale_32s64f(scaleFactor)) * 0.5F}, AddLog<Converted>(pSrcDst));
  return orvStsNoErr;
}

OrvStatus orvsLogGaussAddMultiMix_LowScaled_16s32f_D2L(const int16_t *const *ppMean,
                                                       const int16_t *const *ppVar, const int16_t *pSrc,
                                                       int32_t featLen, const float *pGConst, float *pSrcDst,
                                                       int32_t count, int32_t scaleFactor) {
  const OrvStatus status = checkNullSize(featLen, count, ppMean, ppVar, pSrc, pGConst, pSrcDst);
  if (status != orvStsNoErr) return status;
  const MultiMixBlock<RowPointers<const std::int16_t>> block{{ppMean}, {ppVar}, pSrc};
  scoreRowsSingly<Converted, Weighting::inverseVariance>(
      count, featLen, block, RowConstants{pGConst},
      ScaledSum{static_cast<float>(GetScale_32s64f(scaleFactor)) * 0.5F}, AddLog<Converted>(pSrcDst));
  return orvStsNoErr;
}
