// orvsLogGauss_*: many frames against one Gaussian.

#include "gauss/score.h"
#include "gauss/sinks.h"
#include "orvsr/gauss.h"
#include "primitives/rows.h"

using namespace orv;
using namespace orv::gauss;

OrvStatus orvsLogGauss_32f_D2(const float *pSrc, int32_t step, const float *pMean, const float *pVar,
                              int32_t featLen, float *pResult, int32_t frames, float gconst) {
  const OrvStatus status = checkStrideNullSize(featLen, step, frames, pSrc, pMean, pVar, pResult);
  if (status != orvStsNoErr) return status;
  const FrameBlock<StridedRows<const float>> block{{pSrc, step}, pMean, pVar};
  scoreRows<Single, Weighting::inverseVariance>(frames, featLen, block, OneConstant{gconst},
                                                DoubledConstant<float>{}, Store<Single>{pResult});
  return orvStsNoErr;
}

OrvStatus orvsLogGauss_32f_D2L(const float *const *ppSrc, const float *pMean, const float *pVar,
                               int32_t featLen, float *pResult, int32_t frames, float gconst) {
  const OrvStatus status = checkNullSize(featLen, frames, ppSrc, pMean, pVar, pResult);
  if (status != orvStsNoErr) return status;
  const FrameBlock<RowPointers<const float>> block{{ppSrc}, pMean, pVar};
  scoreRows<Single, Weighting::inverseVariance>(frames, featLen, block, OneConstant{gconst},
                                                DoubledConstant<float>{}, Store<Single>{pResult});
  return orvStsNoErr;
}

OrvStatus orvsLogGauss_64f_D2(const double *pSrc, int32_t step, const double *pMean, const double *pVar,
                              int32_t featLen, double *pResult, int32_t frames, double gconst) {
  const OrvStatus status = checkStrideNullSize(featLen, step, frames, pSrc, pMean, pVar, pResult);
  if (status != orvStsNoErr) return status;
  const FrameBlock<StridedRows<const double>> block{{pSrc, step}, pMean, pVar};
  scoreRows<Double, Weighting::inverseVariance>(frames, featLen, block, OneConstant{gconst},
                                                DoubledConstant<double>{}, Store<Double>{pResult});
  return orvStsNoErr;
}

OrvStatus orvsLogGauss_64f_D2L(const double *const *ppSrc, const double *pMean, const double *pVar,
                               int32_t featLen, double *pResult, int32_t frames, double gconst) {
  const OrvStatus status = checkNullSize(featLen, frames, ppSrc, pMean, pVar, pResult);
  if (status != orvStsNoErr) return status;
  const FrameBlock<RowPointers<const double>> block{{ppSrc}, pMean, pVar};
  scoreRows<Double, Weighting::inverseVariance>(frames, featLen, block, OneConstant{gconst},
                                                DoubledConstant<double>{}, Store<Double>{pResult});
  return orvStsNoErr;
}

OrvStatus orvsLogGauss_16s32s_D2Sfs(const int16_t *pSrc, int32_t step, const int16_t *pMean,
                                    const int16_t *pVar, int32_t featLen, int32_t *pResult, int32_t frames,
                                    int32_t gconst, int32_t scaleFactor) {
  const OrvStatus status = checkStrideNullSize(featLen, step, frames, pSrc, pMean, pVar, pResult);
  if (status != orvStsNoErr) return status;
  const FrameBlock<StridedRows<const std::int16_t>> block{{pSrc, step}, pMean, pVar};
  scoreRowsExactly<Weighting::inverseVariance>(frames, featLen, block, OneConstant{gconst},
                                               ExactScore{plusOne(scaleFactor)}, StoreSaturated{pResult});
  return orvStsNoErr;
}

OrvStatus orvsLogGauss_16s32s_D2LSfs(const int16_t *const *ppSrc, const int16_t *pMean, const int16_t *pVar,
                                     int32_t featLen, int32_t *pResult, int32_t frames, int32_t gconst,
                                     int32_t scaleFactor) {
  const OrvStatus status = checkNullSize(featLen, frames, ppSrc, pMean, pVar, pResult);
  if (status != orvStsNoErr) return status;
  const FrameBlock<RowPointers<const std::int16_t>> block{{ppSrc}, pMean, pVar};
  scoreRowsExactly<Weighting::inverseVariance>(frames, featLen, block, OneConstant{gconst},
                                               ExactScore{plusOne(scaleFactor)}, StoreSaturated{pResult});
  return orvStsNoErr;
}

OrvStatus orvsLogGauss_Low_16s32s_D2Sfs(const int16_t *pSrc, int32_t step, const int16_t *pMean,
                                        const int16_t *pVar, int32_t featLen, int32_t *pResult,
                                        int32_t frames, int32_t gconst, int32_t scaleFactor) {
  const OrvStatus status = checkStrideNullSize(featLen, step, frames, pSrc, pMean, pVar, pResult);
  if (status != orvStsNoErr) return status;
  const FrameBlock<StridedRows<const std::int16_t>> block{{pSrc, step}, pMean, pVar};
  scoreRowsExactly<Weighting::inverseVariance>(frames, featLen, block, OneConstant{gconst},
                                               ExactScore{plusOne(scaleFactor)}, StoreWrapped{pResult});
  return orvStsNoErr;
}

OrvStatus orvsLogGauss_Low_16s32s_D2LSfs(const int16_t *const *ppSrc, const int16_t *pMean,
                                         const int16_t *pVar, int32_t featLen, int32_t *pResult,
                                         int32_t frames, int32_t gconst, int32_t scaleFactor) {
  const OrvStatus status = checkNullSize(featLen, frames, ppSrc, pMean, pVar, pResult);
  if (status != orvStsNoErr) return status;
  const FrameBlock<RowPointers<const std::int16_t>> block{{ppSrc}, pMean, pVar};
  scoreRowsExactly<Weighting::inverseVariance>(frames, featLen, block, OneConstant{gconst},
                                               ExactScore{plusOne(scaleFactor)}, StoreWrapped{pResult});
  return orvStsNoErr;
}

OrvStatus orvsLogGauss_Scaled_16s32f_D2(const int16_t *pSrc, int32_t step, const int16_t *pMean,
                                        const int16_t *pVar, int32_t featLen, float *pResult, int32_t frames,
                                        int32_t scaleFactor, float gconst) {
  const OrvStatus status = checkStrideNullSize(featLen, step, frames, pSrc, pMean, pVar, pResult);
  if (status != orvStsNoErr) return status;
  const FrameBlock<StridedRows<const std::int16_t>> block{{pSrc, step}, pMean, pVar};
  scoreRows<Converted, Weighting::inverseVariance>(frames, featLen, block, OneConstant{gconst},
                                                   ScaledSum{halvedScale(scaleFactor)},
                                                   Store<Converted>{pResult});
  return orvStsNoErr;
}

OrvStatus orvsLogGauss_Scaled_16s32f_D2L(const int16_t *const *ppSrc, const int16_t *pMean,
                                         const int16_t *pVar, int32_t featLen, float *pResult, int32_t frames,
                                         int32_t scaleFactor, float gconst) {
  const OrvStatus status = checkNullSize(featLen, frames, ppSrc, pMean, pVar, pResult);
  if (status != orvStsNoErr) return status;
  const FrameBlock<RowPointers<const std::int16_t>> block{{ppSrc}, pMean, pVar};
  scoreRows<Converted, Weighting::inverseVariance>(frames, featLen, block, OneConstant{gconst},
                                                   ScaledSum{halvedScale(scaleFactor)},
                                                   Store<Converted>{pResult});
  return orvStsNoErr;
}

OrvStatus orvsLogGauss_LowScaled_16s32f_D2(const int16_t *pSrc, int32_t step, const int16_t *pMean,
                                           const int16_t *pVar, int32_t featLen, float *pResult,
                                           int32_t frames, int32_t scaleFactor, float gconst) {
  const OrvStatus status = checkStrideNullSize(featLen, step, frames, pSrc, pMean, pVar, pResult);
  if (status != orvStsNoErr) return status;
  const FrameBlock<StridedRows<const std::int16_t>> block{{pSrc, step}, pMean, pVar};
  scoreRows<Converted, Weighting::inverseVariance>(frames, featLen, block, OneConstant{gconst},
                                                   ScaledSum{GetScale_32s32f(scaleFactor) * 0.5F},
                                                   Store<Converted>{pResult});
  return orvStsNoErr;
}

OrvStatus orvsLogGauss_LowScaled_16s32f_D2L(const int16_t *const *ppSrc, const int16_t *pMean,
                                            const int16_t *pVar, int32_t featLen, float *pResult,
                                            int32_t frames, int32_t scaleFactor, float gconst) {
  const OrvStatus status = checkNullSize(featLen, frames, ppSrc, pMean, pVar, pResult);
  if (status != orvStsNoErr) return status;
  const FrameBlock<RowPointers<const std::int16_t>> block{{ppSrc}, pMean, pVar};
  scoreRows<Converted, Weighting::inverseVariance>(frames, featLen, block, OneConstant{gconst},
                                                   ScaledSum{GetScale_32s32f(scaleFactor) * 0.5F},
                                                   Store<Converted>{pResult});
  return orvStsNoErr;
}

OrvStatus orvsLogGauss_IdVar_32f_D2(const float *pSrc, int32_t step, const float *pMean, int32_t featLen,
                                    float *pResult, int32_t frames, float gconst) {
  const OrvStatus status = checkStrideNullSize(featLen, step, frames, pSrc, pMean, pResult);
  if (status != orvStsNoErr) return status;
  const FrameBlock<StridedRows<const float>> block{{pSrc, step}, pMean, pMean};
  scoreRows<Single, Weighting::none>(frames, featLen, block, OneConstant{gconst}, DoubledConstant<float>{},
                                     Store<Single>{pResult});
  return orvStsNoErr;
}

OrvStatus orvsLogGauss_IdVar_32f_D2L(const float *const *ppSrc, const float *pMean, int32_t featLen,
                                     float *pResult, int32_t frames, float gconst) {
  const OrvStatus status = checkNullSize(featLen, frames, ppSrc, pMean, pResult);
  if (status != orvStsNoErr) return status;
  const FrameBlock<RowPointers<const float>> block{{ppSrc}, pMean, pMean};
  scoreRows<Single, Weighting::none>(frames, featLen, block, OneConstant{gconst}, DoubledConstant<float>{},
                                     Store<Single>{pResult});
  return orvStsNoErr;
}

OrvStatus orvsLogGauss_IdVar_64f_D2(const double *pSrc, int32_t step, const double *pMean, int32_t featLen,
                                    double *pResult, int32_t frames, double gconst) {
  const OrvStatus status = checkStrideNullSize(featLen, step, frames, pSrc, pMean, pResult);
  if (status != orvStsNoErr) return status;
  const FrameBlock<StridedRows<const double>> block{{pSrc, step}, pMean, pMean};
  scoreRows<Double, Weighting::none>(frames, featLen, block, OneConstant{gconst}, DoubledConstant<double>{},
                                     Store<Double>{pResult});
  return orvStsNoErr;
}

OrvStatus orvsLogGauss_IdVar_64f_D2L(const double *const *ppSrc, const double *pMean, int32_t featLen,
                                     double *pResult, int32_t frames, double gconst) {
  const OrvStatus status = checkNullSize(featLen, frames, ppSrc, pMean, pResult);
  if (status != orvStsNoErr) return status;
  const FrameBlock<RowPointers<const double>> block{{ppSrc}, pMean, pMean};
  scoreRows<Double, Weighting::none>(frames, featLen, block, OneConstant{gconst}, DoubledConstant<double>{},
                                     Store<Double>{pResult});
  return orvStsNoErr;
}

OrvStatus orvsLogGauss_IdVar_16s32s_D2Sfs(const int16_t *pSrc, int32_t step, const int16_t *pMean,
                                          int32_t featLen, int32_t *pResult, int32_t frames, int32_t gconst,
                                          int32_t scaleFactor) {
  const OrvStatus status = checkStrideNullSize(featLen, step, frames, pSrc, pMean, pResult);
  if (status != orvStsNoErr) return status;
  const FrameBlock<StridedRows<const std::int16_t>> block{{pSrc, step}, pMean, pMean};
  scoreRowsExactly<Weighting::none>(frames, featLen, block, OneConstant{gconst},
                                    ExactScore{plusOne(scaleFactor)}, StoreSaturated{pResult});
  return orvStsNoErr;
}

OrvStatus orvsLogGauss_IdVar_16s32s_D2LSfs(const int16_t *const *ppSrc, const int16_t *pMean, int32_t featLen,
                                           int32_t *pResult, int32_t frames, int32_t gconst,
                                           int32_t scaleFactor) {
  const OrvStatus status = checkNullSize(featLen, frames, ppSrc, pMean, pResult);
  if (status != orvStsNoErr) return status;
  const FrameBlock<RowPointers<const std::int16_t>> block{{ppSrc}, pMean, pMean};
  scoreRowsExactly<Weighting::none>(frames, featLen, block, OneConstant{gconst},
                                    ExactScore{plusOne(scaleFactor)}, StoreSaturated{pResult});
  return orvStsNoErr;
}

OrvStatus orvsLogGauss_IdVarLow_16s32s_D2Sfs(const int16_t *pSrc, int32_t step, const int16_t *pMean,
                                             int32_t featLen, int32_t *pResult, int32_t frames,
                                             int32_t gconst, int32_t scaleFactor) {
  const OrvStatus status = checkStrideNullSize(featLen, step, frames, pSrc, pMean, pResult);
  if (status != orvStsNoErr) return status;
  const FrameBlock<StridedRows<const std::int16_t>> block{{pSrc, step}, pMean, pMean};
  scoreRowsExactly<Weighting::none>(frames, featLen, block, OneConstant{gconst},
                                    ExactScore{plusOne(scaleFactor)}, StoreWrapped{pResult});
  return orvStsNoErr;
}

OrvStatus orvsLogGauss_IdVarLow_16s32s_D2LSfs(const int16_t *const *ppSrc, const int16_t *pMean,
                                              int32_t featLen, int32_t *pResult, int32_t frames,
                                              int32_t gconst, int32_t scaleFactor) {
  const OrvStatus status = checkNullSize(featLen, frames, ppSrc, pMean, pResult);
  if (status != orvStsNoErr) return status;
  const FrameBlock<RowPointers<const std::int16_t>> block{{ppSrc}, pMean, pMean};
  scoreRowsExactly<Weighting::none>(frames, featLen, block, OneConstant{gconst},
                                    ExactScore{plusOne(scaleFactor)}, StoreWrapped{pResult});
  return orvStsNoErr;
}

OrvStatus orvsLogGauss_IdVarScaled_16s32f_D2(const int16_t *pSrc, int32_t step, const int16_t *pMean,
                                             int32_t featLen, float *pResult, int32_t frames,
                                             int32_t scaleFactor, float gconst) {
  const OrvStatus status = checkStrideNullSize(featLen, step, frames, pSrc, pMean, pResult);
  if (status != orvStsNoErr) return status;
  const FrameBlock<StridedRows<const std::int16_t>> block{{pSrc, step}, pMean, pMean};
  scoreRows<Converted, Weighting::none>(frames, featLen, block, OneConstant{gconst},
                                        ScaledSum{halvedScale(scaleFactor)}, Store<Converted>{pResult});
  return orvStsNoErr;
}

OrvStatus orvsLogGauss_IdVarScaled_16s32f_D2L(const int16_t *const *ppSrc, const int16_t *pMean,
                                              int32_t featLen, float *pResult, int32_t frames,
                                              int32_t scaleFactor, float gconst) {
  const OrvStatus status = checkNullSize(featLen, frames, ppSrc, pMean, pResult);
  if (status != orvStsNoErr) return status;
  const FrameBlock<RowPointers<const std::int16_t>> block{{ppSrc}, pMean, pMean};
  scoreRows<Converted, Weighting::none>(frames, featLen, block, OneConstant{gconst},
                                        ScaledSum{halvedScale(scaleFactor)}, Store<Converted>{pResult});
  return orvStsNoErr;
}

OrvStatus orvsLogGauss_IdVarLowScaled_16s32f_D2(const int16_t *pSrc, int32_t step, const int16_t *pMean,
                                                int32_t featLen, float *pResult, int32_t frames,
                                                int32_t scaleFactor, float gconst) {
  const OrvStatus status = checkStrideNullSize(featLen, step, frames, pSrc, pMean, pResult);
  if (status != orvStsNoErr) return status;
  const FrameBlock<StridedRows<const std::int16_t>> block{{pSrc, step}, pMean, pMean};
  scoreRows<Converted, Weighting::none>(frames, featLen, block, OneConstant{gconst},
                                        ScaledSum{GetScale_32s32f(scaleFactor) * 0.5F},
                                        Store<Converted>{pResult});
  return orvStsNoErr;
}

OrvStatus orvsLogGauss_IdVarLowScaled_16s32f_D2L(const int16_t *const *ppSrc, const int16_t *pMean,
                                                 int32_t featLen, float *pResult, int32_t frames,
                                                 int32_t scaleFactor, float gconst) {
  const OrvStatus status = checkNullSize(featLen, frames, ppSrc, pMean, pResult);
  if (status != orvStsNoErr) return status;
  const FrameBlock<RowPointers<const std::int16_t>> block{{ppSrc}, pMean, pMean};
  scoreRows<Converted, Weighting::none>(frames, featLen, block, OneConstant{gconst},
                                        ScaledSum{GetScale_32s32f(scaleFactor) * 0.5F},
                                        Store<Converted>{pResult});
  return orvStsNoErr;
}
