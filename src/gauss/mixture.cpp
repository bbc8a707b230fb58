// orvsLogGaussMixture_*: one vector under a mixture of Gaussians.
//
// The orders of checks are not uniform and are meant to differ: the 32f and 64f members with a row step test
// pointers before the stride, the Scaled and LowScaled ones the stride before pointers. LowScaled members
// halve every sum, IdVarLowScaled ones their factor once: at the end of its range they differ, and are meant
// to.

#include "gauss/score.h"
#include "gauss/sinks.h"
#include "orvsr/gauss.h"
#include "primitives/rows.h"

using namespace orv;
using namespace orv::gauss;

OrvStatus orvsLogGaussMixture_32f_D2(const float *pSrc, const float *pMean, const float *pVar, int32_t nMix,
                                     int32_t step, int32_t featLen, const float *pGConst, float *pResult) {
  const OrvStatus status = checkNullStrideSize(featLen, step, nMix, pSrc, pMean, pVar, pGConst, pResult);
  if (status != orvStsNoErr) return status;
  const ComponentBlock<StridedRows<const float>> block{{pMean, step}, {pVar, step}, pSrc};
  scoreRows<Single, Weighting::inverseVariance>(nMix, featLen, block, RowConstants{pGConst},
                                                DoubledConstant<float>{},
                                                Mixture<Single, LogDomain32f>(pResult));
  return orvStsNoErr;
}

OrvStatus orvsLogGaussMixture_32f_D2L(const float *pSrc, const float *const *ppMean,
                                      const float *const *ppVar, int32_t nMix, int32_t featLen,
                                      const float *pGConst, float *pResult) {
  const OrvStatus status = checkNullSize(featLen, nMix, pSrc, ppMean, ppVar, pGConst, pResult);
  if (status != orvStsNoErr) return status;
  const ComponentBlock<RowPointers<const float>> block{{ppMean}, {ppVar}, pSrc};
  scoreRows<Single, Weighting::inverseVariance>(nMix, featLen, block, RowConstants{pGConst},
                                                DoubledConstant<float>{},
                                                Mixture<Single, LogDomain32f>(pResult));
  return orvStsNoErr;
}

OrvStatus orvsLogGaussMixture_64f_D2(const double *pSrc, const double *pMean, const double *pVar,
                                     int32_t nMix, int32_t step, int32_t featLen, const double *pGConst,
                                     double *pResult) {
  const OrvStatus status = checkNullStrideSize(featLen, step, nMix, pSrc, pMean, pVar, pGConst, pResult);
  if (status != orvStsNoErr) return status;
  const ComponentBlock<StridedRows<const double>> block{{pMean, step}, {pVar, step}, pSrc};
  scoreRows<Double, Weighting::inverseVariance>(nMix, featLen, block, RowConstants{pGConst},
                                                DoubledConstant<double>{},
                                                Mixture<Double, LogDomain64f>(pResult));
  return orvStsNoErr;
}

OrvStatus orvsLogGaussMixture_64f_D2L(const double *pSrc, const double *const *ppMean,
                                      const double *const *ppVar, int32_t nMix, int32_t featLen,
                                      const double *pGConst, double *pResult) {
  const OrvStatus status = checkNullSize(featLen, nMix, pSrc, ppMean, ppVar, pGConst, pResult);
  if (status != orvStsNoErr) return status;
  const ComponentBlock<RowPointers<const double>> block{{ppMean}, {ppVar}, pSrc};
  scoreRows<Double, Weighting::inverseVariance>(nMix, featLen, block, RowConstants{pGConst},
                                                DoubledConstant<double>{},
                                                Mixture<Double, LogDomain64f>(pResult));
  return orvStsNoErr;
}

OrvStatus orvsLogGaussMixture_Scaled_16s32f_D2(const int16_t *pSrc, const int16_t *pMean, const int16_t *pVar,
                                               int32_t nMix, int32_t step, int32_t featLen,
                                               const float *pGConst, float *pResult, int32_t scaleFactor) {
  const OrvStatus status = checkStrideNullSize(featLen, step, nMix, pSrc, pMean, pVar, pGConst, pResult);
  if (status != orvStsNoErr) return status;
  const ComponentBlock<StridedRows<const std::int16_t>> block{{pMean, step}, {pVar, step}, pSrc};
  scoreRows<Converted, Weighting::inverseVariance>(nMix, featLen, block, RowConstants{pGConst},
                                                   ScaledSum{halvedScale(scaleFactor)},
                                                   Mixture<Converted, LogDomain32f>(pResult));
  return orvStsNoErr;
}

OrvStatus orvsLogGaussMixture_Scaled_16s32f_D2L(const int16_t *pSrc, const int16_t *const *ppMean,
                                                const int16_t *const *ppVar, int32_t nMix, int32_t featLen,
                                                const float *pGConst, float *pResult, int32_t scaleFactor) {
  const OrvStatus status = checkNullSize(featLen, nMix, pSrc, ppMean, ppVar, pGConst, pResult);
  if (status != orvStsNoErr) return status;
  const ComponentBlock<RowPointers<const std::int16_t>> block{{ppMean}, {ppVar}, pSrc};
  scoreRows<Converted, Weighting::inverseVariance>(nMix, featLen, block, RowConstants{pGConst},
                                                   ScaledSum{halvedScale(scaleFactor)},
                                                   Mixture<Converted, LogDomain32f>(pResult));
  return orvStsNoErr;
}

OrvStatus orvsLogGaussMixture_LowScaled_16s32f_D2(const int16_t *pSrc, const int16_t *pMean,
                                                  const int16_t *pVar, int32_t nMix, int32_t step,
                                                  int32_t featLen, const float *pGConst, float *pResult,
                                                  int32_t scaleFactor) {
  const OrvStatus status = checkStrideNullSize(featLen, step, nMix, pSrc, pMean, pVar, pGConst, pResult);
  if (status != orvStsNoErr) return status;
  const ComponentBlock<StridedRows<const std::int16_t>> block{{pMean, step}, {pVar, step}, pSrc};
  scoreRows<Converted, Weighting::inverseVariance>(nMix, featLen, block, RowConstants{pGConst},
                                                   HalvedScaledSum{{GetScale_32s32f(scaleFactor)}},
                                                   Mixture<Converted, LogDomain32f>(pResult));
  return orvStsNoErr;
}

OrvStatus orvsLogGaussMixture_LowScaled_16s32f_D2L(const int16_t *pSrc, const int16_t *const *ppMean,
                                                   const int16_t *const *ppVar, int32_t nMix, int32_t featLen,
                                                   const float *pGConst, float *pResult,
                                                   int32_t scaleFactor) {
  const OrvStatus status = checkNullSize(featLen, nMix, pSrc, ppMean, ppVar, pGConst, pResult);
  if (status != orvStsNoErr) return status;
  const ComponentBlock<RowPointers<const std::int16_t>> block{{ppMean}, {ppVar}, pSrc};
  scoreRows<Converted, Weighting::inverseVariance>(nMix, featLen, block, RowConstants{pGConst},
                                                   HalvedScaledSum{{GetScale_32s32f(scaleFactor)}},
                                                   Mixture<Converted, LogDomain32f>(pResult));
  return orvStsNoErr;
}

OrvStatus orvsLogGaussMixture_IdVar_32f_D2(const float *pSrc, const float *pMean, int32_t nMix, int32_t step,
                                           int32_t featLen, const float *pGConst, float *pResult) {
  const OrvStatus status = checkNullStrideSize(featLen, step, nMix, pSrc, pMean, pGConst, pResult);
  if (status != orvStsNoErr) return status;
  const ComponentBlock<StridedRows<const float>> block{{pMean, step}, {pMean, step}, pSrc};
  scoreRows<Single, Weighting::none>(nMix, featLen, block, RowConstants{pGConst}, DoubledConstant<float>{},
                                     Mixture<Single, LogDomain32f>(pResult));
  return orvStsNoErr;
}

OrvStatus orvsLogGaussMixture_IdVar_32f_D2L(const float *pSrc, const float *const *ppMean, int32_t nMix,
                                            int32_t featLen, const float *pGConst, float *pResult) {
  const OrvStatus status = checkNullSize(featLen, nMix, pSrc, ppMean, pGConst, pResult);
  if (status != orvStsNoErr) return status;
  const ComponentBlock<RowPointers<const float>> block{{ppMean}, {ppMean}, pSrc};
  scoreRows<Single, Weighting::none>(nMix, featLen, block, RowConstants{pGConst}, DoubledConstant<float>{},
                                     Mixture<Single, LogDomain32f>(pResult));
  return orvStsNoErr;
}

OrvStatus orvsLogGaussMixture_IdVar_64f_D2(const double *pSrc, const double *pMean, int32_t nMix,
                                           int32_t step, int32_t featLen, const double *pGConst,
                                           double *pResult) {
  const OrvStatus status = checkNullStrideSize(featLen, step, nMix, pSrc, pMean, pGConst, pResult);
  if (status != orvStsNoErr) return status;
  const ComponentBlock<StridedRows<const double>> block{{pMean, step}, {pMean, step}, pSrc};
  scoreRows<Double, Weighting::none>(nMix, featLen, block, RowConstants{pGConst}, DoubledConstant<double>{},
                                     Mixture<Double, LogDomain64f>(pResult));
  return orvStsNoErr;
}

OrvStatus orvsLogGaussMixture_IdVar_64f_D2L(const double *pSrc, const double *const *ppMean, int32_t nMix,
                                            int32_t featLen, const double *pGConst, double *pResult) {
  const OrvStatus status = checkNullSize(featLen, nMix, pSrc, ppMean, pGConst, pResult);
  if (status != orvStsNoErr) return status;
  const ComponentBlock<RowPointers<const double>> block{{ppMean}, {ppMean}, pSrc};
  scoreRows<Double, Weighting::none>(nMix, featLen, block, RowConstants{pGConst}, DoubledConstant<double>{},
                                     Mixture<Double, LogDomain64f>(pResult));
  return orvStsNoErr;
}

OrvStatus orvsLogGaussMixture_IdVarScaled_16s32f_D2(const int16_t *pSrc, const int16_t *pMean, int32_t nMix,
                                                    int32_t step, int32_t featLen, const float *pGConst,
                                                    float *pResult, int32_t scaleFactor) {
  const OrvStatus status = checkStrideNullSize(featLen, step, nMix, pSrc, pMean, pGConst, pResult);
  if (status != orvStsNoErr) return status;
  const ComponentBlock<StridedRows<const std::int16_t>> block{{pMean, step}, {pMean, step}, pSrc};
  scoreRows<Converted, Weighting::none>(nMix, featLen, block, RowConstants{pGConst},
                                        ScaledSum{halvedScale(scaleFactor)},
                                        Mixture<Converted, LogDomain32f>(pResult));
  return orvStsNoErr;
}

OrvStatus orvsLogGaussMixture_IdVarScaled_16s32f_D2L(const int16_t *pSrc, const int16_t *const *ppMean,
                                                     int32_t nMix, int32_t featLen, const float *pGConst,
                                                     float *pResult, int32_t scaleFactor) {
  const OrvStatus status = checkNullSize(featLen, nMix, pSrc, ppMean, pGConst, pResult);
  if (status != orvStsNoErr) return status;
  const ComponentBlock<RowPointers<const std::int16_t>> block{{ppMean}, {ppMean}, pSrc};
  scoreRows<Converted, Weighting::none>(nMix, featLen, block, RowConstants{pGConst},
                                        ScaledSum{halvedScale(scaleFactor)},
                                        Mixture<Converted, LogDomain32f>(pResult));
  return orvStsNoErr;
}

OrvStatus orvsLogGaussMixture_IdVarLowScaled_16s32f_D2(const int16_t *pSrc, const int16_t *pMean,
                                                       int32_t nMix, int32_t step, int32_t featLen,
                                                       const float *pGConst, float *pResult,
                                                       int32_t scaleFactor) {
  const OrvStatus status = checkStrideNullSize(featLen, step, nMix, pSrc, pMean, pGConst, pResult);
  if (status != orvStsNoErr) return status;
  const ComponentBlock<StridedRows<const std::int16_t>> block{{pMean, step}, {pMean, step}, pSrc};
  scoreRows<Converted, Weighting::none>(nMix, featLen, block, RowConstants{pGConst},
                                        ScaledSum{GetScale_32s32f(scaleFactor) * 0.5F},
                                        Mixture<Converted, LogDomain32f>(pResult));
  return orvStsNoErr;
}

OrvStatus orvsLogGaussMixture_IdVarLowScaled_16s32f_D2L(const int16_t *pSrc, const int16_t *const *ppMean,
                                                        int32_t nMix, int32_t featLen, const float *pGConst,
                                                        float *pResult, int32_t scaleFactor) {
  const OrvStatus status = checkNullSize(featLen, nMix, pSrc, ppMean, pGConst, pResult);
  if (status != orvStsNoErr) return status;
  const ComponentBlock<RowPointers<const std::int16_t>> block{{ppMean}, {ppMean}, pSrc};
  scoreRows<Converted, Weighting::none>(nMix, featLen, block, RowConstants{pGConst},
                                        ScaledSum{GetScale_32s32f(scaleFactor) * 0.5F},
                                        Mixture<Converted, LogDomain32f>(pResult));
  return orvStsNoErr;
}
