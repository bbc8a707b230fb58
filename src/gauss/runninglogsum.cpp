// orvsLogGaussAdd_*: many frames against one Gaussian, each score added to a running sum in the log domain.
//
// Frames are taken one by one. The LowScaled members are the Scaled ones under another name, in this family
// only: this is meant, and elsewhere their factors differ at the ends of the range.

#include "gauss/score.h"
#include "gauss/sinks.h"
#include "orvsr/gauss.h"
#include "primitives/rows.h"

using namespace orv;
using namespace orv::gauss;

OrvStatus orvsLogGaussAdd_32f_D2(const float *pSrc, int32_t step, const float *pMean, const float *pVar,
                                 int32_t featLen, float *pResult, int32_t frames, float gconst) {
  const OrvStatus status = checkStrideNullSize(featLen, step, frames, pSrc, pMean, pVar, pResult);
  if (status != orvStsNoErr) return status;
  const FrameBlock<StridedRows<const float>> block{{pSrc, step}, pMean, pVar};
  scoreRowsSingly<Single, Weighting::inverseVariance>(frames, featLen, block, OneConstant{gconst},
                                                      DoubledConstant<float>{}, AddLog<Single>(pResult));
  return orvStsNoErr;
}

OrvStatus orvsLogGaussAdd_32f_D2L(const float *const *ppSrc, const float *pMean, const float *pVar,
                                  int32_t featLen, float *pResult, int32_t frames, float gconst) {
  const OrvStatus status = checkNullSize(featLen, frames, ppSrc, pMean, pVar, pResult);
  if (status != orvStsNoErr) return status;
  const FrameBlock<RowPointers<const float>> block{{ppSrc}, pMean, pVar};
  scoreRowsSingly<Single, Weighting::inverseVariance>(frames, featLen, block, OneConstant{gconst},
                                                      DoubledConstant<float>{}, AddLog<Single>(pResult));
  return orvStsNoErr;
}

OrvStatus orvsLogGaussAdd_64f_D2(const double *pSrc, int32_t step, const double *pMean, const double *pVar,
                                 int32_t featLen, double *pResult, int32_t frames, double gconst) {
  const OrvStatus status = checkStrideNullSize(featLen, step, frames, pSrc, pMean, pVar, pResult);
  if (status != orvStsNoErr) return status;
  const FrameBlock<StridedRows<const double>> block{{pSrc, step}, pMean, pVar};
  scoreRowsSingly<Double, Weighting::inverseVariance>(frames, featLen, block, OneConstant{gconst},
                                                      DoubledConstant<double>{}, AddLog<Double>(pResult));
  return orvStsNoErr;
}

OrvStatus orvsLogGaussAdd_64f_D2L(const double *const *ppSrc, const double *pMean, const double *pVar,
                                  int32_t featLen, double *pResult, int32_t frames, double gconst) {
  const OrvStatus status = checkNullSize(featLen, frames, ppSrc, pMean, pVar, pResult);
  if (status != orvStsNoErr) return status;
  const FrameBlock<RowPointers<const double>> block{{ppSrc}, pMean, pVar};
  scoreRowsSingly<Double, Weighting::inverseVariance>(frames, featLen, block, OneConstant{gconst},
                                                      DoubledConstant<double>{}, AddLog<Double>(pResult));
  return orvStsNoErr;
}

OrvStatus orvsLogGaussAdd_Scaled_16s32f_D2(const int16_t *pSrc, int32_t step, const int16_t *pMean,
                                           const int16_t *pVar, int32_t featLen, float *pResult,
                                           int32_t frames, int32_t scaleFactor, float gconst) {
  const OrvStatus status = checkStrideNullSize(featLen, step, frames, pSrc, pMean, pVar, pResult);
  if (status != orvStsNoErr) return status;
  const FrameBlock<StridedRows<const std::int16_t>> block{{pSrc, step}, pMean, pVar};
  scoreRowsSingly<Converted, Weighting::inverseVariance>(frames, featLen, block, OneConstant{gconst},
                                                         ScaledSum{halvedScale(scaleFactor)},
                                                         AddLog<Converted>(pResult));
  return orvStsNoErr;
}

OrvStatus orvsLogGaussAdd_Scaled_16s32f_D2L(const int16_t *const *ppSrc, const int16_t *pMean,
                                            const int16_t *pVar, int32_t featLen, float *pResult,
                                            int32_t frames, int32_t scaleFactor, float gconst) {
  const OrvStatus status = checkNullSize(featLen, frames, ppSrc, pMean, pVar, pResult);
  if (status != orvStsNoErr) return status;
  const FrameBlock<RowPointers<const std::int16_t>> block{{ppSrc}, pMean, pVar};
  scoreRowsSingly<Converted, Weighting::inverseVariance>(frames, featLen, block, OneConstant{gconst},
                                                         ScaledSum{halvedScale(scaleFactor)},
                                                         AddLog<Converted>(pResult));
  return orvStsNoErr;
}

OrvStatus orvsLogGaussAdd_LowScaled_16s32f_D2(const int16_t *pSrc, int32_t step, const int16_t *pMean,
                                              const int16_t *pVar, int32_t featLen, float *pResult,
                                              int32_t frames, int32_t scaleFactor, float gconst) {
  const OrvStatus status = checkStrideNullSize(featLen, step, frames, pSrc, pMean, pVar, pResult);
  if (status != orvStsNoErr) return status;
  const FrameBlock<StridedRows<const std::int16_t>> block{{pSrc, step}, pMean, pVar};
  scoreRowsSingly<Converted, Weighting::inverseVariance>(frames, featLen, block, OneConstant{gconst},
                                                         ScaledSum{halvedScale(scaleFactor)},
                                                         AddLog<Converted>(pResult));
  return orvStsNoErr;
}

OrvStatus orvsLogGaussAdd_LowScaled_16s32f_D2L(const int16_t *const *ppSrc, const int16_t *pMean,
                                               const int16_t *pVar, int32_t featLen, float *pResult,
                                               int32_t frames, int32_t scaleFactor, float gconst) {
  const OrvStatus status = checkNullSize(featLen, frames, ppSrc, pMean, pVar, pResult);
  if (status != orvStsNoErr) return status;
  const FrameBlock<RowPointers<const std::int16_t>> block{{ppSrc}, pMean, pVar};
  scoreRowsSingly<Converted, Weighting::inverseVariance>(frames, featLen, block, OneConstant{gconst},
                                                         ScaledSum{halvedScale(scaleFactor)},
                                                         AddLog<Converted>(pResult));
  return orvStsNoErr;
}

OrvStatus orvsLogGaussAdd_IdVar_32f_D2(const float *pSrc, int32_t step, const float *pMean, int32_t featLen,
                                       float *pResult, int32_t frames, float gconst) {
  const OrvStatus status = checkStrideNullSize(featLen, step, frames, pSrc, pMean, pResult);
  if (status != orvStsNoErr) return status;
  const FrameBlock<StridedRows<const float>> block{{pSrc, step}, pMean, pMean};
  scoreRowsSingly<Single, Weighting::none>(frames, featLen, block, OneConstant{gconst},
                                           DoubledConstant<float>{}, AddLog<Single>(pResult));
  return orvStsNoErr;
}

OrvStatus orvsLogGaussAdd_IdVar_32f_D2L(const float *const *ppSrc, const float *pMean, int32_t featLen,
                                        float *pResult, int32_t frames, float gconst) {
  const OrvStatus status = checkNullSize(featLen, frames, ppSrc, pMean, pResult);
  if (status != orvStsNoErr) return status;
  const FrameBlock<RowPointers<const float>> block{{ppSrc}, pMean, pMean};
  scoreRowsSingly<Single, Weighting::none>(frames, featLen, block, OneConstant{gconst},
                                           DoubledConstant<float>{}, AddLog<Single>(pResult));
  return orvStsNoErr;
}

OrvStatus orvsLogGaussAdd_IdVar_64f_D2(const double *pSrc, int32_t step, const double *pMean, int32_t featLen,
                                       double *pResult, int32_t frames, double gconst) {
  const OrvStatus status = checkStrideNullSize(featLen, step, frames, pSrc, pMean, pResult);
  if (status != orvStsNoErr) return status;
  const FrameBlock<StridedRows<const double>> block{{pSrc, step}, pMean, pMean};
  scoreRowsSingly<Double, Weighting::none>(frames, featLen, block, OneConstant{gconst},
                                           DoubledConstant<double>{}, AddLog<Double>(pResult));
  return orvStsNoErr;
}

OrvStatus orvsLogGaussAdd_IdVar_64f_D2L(const double *const *ppSrc, const double *pMean, int32_t featLen,
                                        double *pResult, int32_t frames, double gconst) {
  const OrvStatus status = checkNullSize(featLen, frames, ppSrc, pMean, pResult);
  if (status != orvStsNoErr) return status;
  const FrameBlock<RowPointers<const double>> block{{ppSrc}, pMean, pMean};
  scoreRowsSingly<Double, Weighting::none>(frames, featLen, block, OneConstant{gconst},
                                           DoubledConstant<double>{}, AddLog<Double>(pResult));
  return orvStsNoErr;
}

OrvStatus orvsLogGaussAdd_IdVarScaled_16s32f_D2(const int16_t *pSrc, int32_t step, const int16_t *pMean,
                                                int32_t featLen, float *pResult, int32_t frames,
                                                int32_t scaleFactor, float gconst) {
  const OrvStatus status = checkStrideNullSize(featLen, step, frames, pSrc, pMean, pResult);
  if (status != orvStsNoErr) return status;
  const FrameBlock<StridedRows<const std::int16_t>> block{{pSrc, step}, pMean, pMean};
  scoreRowsSingly<Converted, Weighting::none>(frames, featLen, block, OneConstant{gconst},
                                              ScaledSum{halvedScale(scaleFactor)},
                                              AddLog<Converted>(pResult));
  return orvStsNoErr;
}

OrvStatus orvsLogGaussAdd_IdVarScaled_16s32f_D2L(const int16_t *const *ppSrc, const int16_t *pMean,
                                                 int32_t featLen, float *pResult, int32_t frames,
                                                 int32_t scaleFactor, float gconst) {
  const OrvStatus status = checkNullSize(featLen, frames, ppSrc, pMean, pResult);
  if (status != orvStsNoErr) return status;
  const FrameBlock<RowPointers<const std::int16_t>> block{{ppSrc}, pMean, pMean};
  scoreRowsSingly<Converted, Weighting::none>(frames, featLen, block, OneConstant{gconst},
                                              ScaledSum{halvedScale(scaleFactor)},
                                              AddLog<Converted>(pResult));
  return orvStsNoErr;
}

OrvStatus orvsLogGaussAdd_IdVarLowScaled_16s32f_D2(const int16_t *pSrc, int32_t step, const int16_t *pMean,
                                                   int32_t featLen, float *pResult, int32_t frames,
                                                   int32_t scaleFactor, float gconst) {
  const OrvStatus status = checkStrideNullSize(featLen, step, frames, pSrc, pMean, pResult);
  if (status != orvStsNoErr) return status;
  const FrameBlock<StridedRows<const std::int16_t>> block{{pSrc, step}, pMean, pMean};
  scoreRowsSingly<Converted, Weighting::none>(frames, featLen, block, OneConstant{gconst},
                                              ScaledSum{halvedScale(scaleFactor)},
                                              AddLog<Converted>(pResult));
  return orvStsNoErr;
}

OrvStatus orvsLogGaussAdd_IdVarLowScaled_16s32f_D2L(const int16_t *const *ppSrc, const int16_t *pMean,
                                                    int32_t featLen, float *pResult, int32_t frames,
                                                    int32_t scaleFactor, float gconst) {
  const OrvStatus status = checkNullSize(featLen, frames, ppSrc, pMean, pResult);
  if (status != orvStsNoErr) return status;
  const FrameBlock<RowPointers<const std::int16_t>> block{{ppSrc}, pMean, pMean};
  scoreRowsSingly<Converted, Weighting::none>(frames, featLen, block, OneConstant{gconst},
                                              ScaledSum{halvedScale(scaleFactor)},
                                              AddLog<Converted>(pResult));
  return orvStsNoErr;
}
