// orvsMahDist*: squared distances weighted by inverse variances, without the 1/2 and the constant of a score.

#include "gauss/score.h"
#include "gauss/sinks.h"
#include "orvsr/gauss.h"
#include "primitives/rows.h"

using namespace orv;
using namespace orv::gauss;

// --- one vector, one mean

OrvStatus orvsMahDistSingle_32f(const float *pSrc, const float *pMean, const float *pVar, int32_t len,
                                float *pResult) {
  const OrvStatus status = checkNullLength(len, pSrc, pMean, pVar, pResult);
  if (status != orvStsNoErr) return status;
  store(pResult,
        scoreRow<Single, Weighting::inverseVariance>({pSrc, pMean, pVar}, len, pVar, {}, PlainSum{}));
  return orvStsNoErr;
}

OrvStatus orvsMahDistSingle_64f(const double *pSrc, const double *pMean, const double *pVar, int32_t len,
                                double *pResult) {
  const OrvStatus status = checkNullLength(len, pSrc, pMean, pVar, pResult);
  if (status != orvStsNoErr) return status;
  store(pResult,
        scoreRow<Double, Weighting::inverseVariance>({pSrc, pMean, pVar}, len, pVar, {}, PlainSum{}));
  return orvStsNoErr;
}

OrvStatus orvsMahDistSingle_32f64f(const float *pSrc, const float *pMean, const float *pVar, int32_t len,
                                   double *pResult) {
  const OrvStatus status = checkNullLength(len, pSrc, pMean, pVar, pResult);
  if (status != orvStsNoErr) return status;
  store(pResult,
        scoreRow<Widened, Weighting::inverseVariance>({pSrc, pMean, pVar}, len, pVar, {}, PlainSum{}));
  return orvStsNoErr;
}

OrvStatus orvsMahDistSingle_16s32f(const int16_t *pSrc, const int16_t *pMean, const int16_t *pVar,
                                   int32_t len, float *pResult) {
  const OrvStatus status = checkNullLength(len, pSrc, pMean, pVar, pResult);
  if (status != orvStsNoErr) return status;
  store(pResult,
        scoreRow<Converted, Weighting::inverseVariance>({pSrc, pMean, pVar}, len, pVar, {}, PlainSum{}));
  return orvStsNoErr;
}

// The shift is the scale factor itself: there is no 1/2 here that would be one more bit of it.
OrvStatus orvsMahDistSingle_16s32s_Sfs(const int16_t *pSrc, const int16_t *pMean, const int16_t *pVar,
                                       int32_t len, int32_t *pResult, int32_t scaleFactor) {
  const OrvStatus status = checkNullLength(len, pSrc, pMean, pVar, pResult);
  if (status != orvStsNoErr) return status;
  const std::int64_t sum = exactSumRow<Weighting::inverseVariance>({pSrc, pMean, pVar}, len);
  store(pResult, sat32(shiftSum(sum, scaleFactor)));
  return orvStsNoErr;
}

// --- many frames, one mean

OrvStatus orvsMahDist_32f_D2(const float *pSrc, int32_t step, const float *pMean, const float *pVar,
                             int32_t featLen, float *pResult, int32_t frames) {
  const OrvStatus status = checkStrideNullSize(featLen, step, frames, pSrc, pMean, pVar, pResult);
  if (status != orvStsNoErr) return status;
  const FrameBlock<StridedRows<const float>> block{{pSrc, step}, pMean, pVar};
  scoreRows<Single, Weighting::inverseVariance>(frames, featLen, block, OneConstant<float>{}, PlainSum{},
                                                Store<Single>{pResult});
  return orvStsNoErr;
}

OrvStatus orvsMahDist_32f_D2L(const float *const *ppSrc, const float *pMean, const float *pVar,
                              int32_t featLen, float *pResult, int32_t frames) {
  const OrvStatus status = checkNullSize(featLen, frames, ppSrc, pMean, pVar, pResult);
  if (status != orvStsNoErr) return status;
  const FrameBlock<RowPointers<const float>> block{{ppSrc}, pMean, pVar};
  scoreRows<Single, Weighting::inverseVariance>(frames, featLen, block, OneConstant<float>{}, PlainSum{},
                                                Store<Single>{pResult});
  return orvStsNoErr;
}

OrvStatus orvsMahDist_64f_D2(const double *pSrc, int32_t step, const double *pMean, const double *pVar,
                             int32_t featLen, double *pResult, int32_t frames) {
  const OrvStatus status = checkStrideNullSize(featLen, step, frames, pSrc, pMean, pVar, pResult);
  if (status != orvStsNoErr) return status;
  const FrameBlock<StridedRows<const double>> block{{pSrc, step}, pMean, pVar};
  scoreRows<Double, Weighting::inverseVariance>(frames, featLen, block, OneConstant<double>{}, PlainSum{},
                                                Store<Double>{pResult});
  return orvStsNoErr;
}

OrvStatus orvsMahDist_64f_D2L(const double *const *ppSrc, const double *pMean, const double *pVar,
                              int32_t featLen, double *pResult, int32_t frames) {
  const OrvStatus status = checkNullSize(featLen, frames, ppSrc, pMean, pVar, pResult);
  if (status != orvStsNoErr) return status;
  const FrameBlock<RowPointers<const double>> block{{ppSrc}, pMean, pVar};
  scoreRows<Double, Weighting::inverseVariance>(frames, featLen, block, OneConstant<double>{}, PlainSum{},
                                                Store<Double>{pResult});
  return orvStsNoErr;
}

// --- one vector, many means

OrvStatus orvsMahDistMultiMix_32f_D2(const float *pMean, const float *pVar, int32_t step, const float *pSrc,
                                     int32_t featLen, float *pResult, int32_t count) {
  const OrvStatus status = checkStrideNullSize(featLen, step, count, pMean, pVar, pSrc, pResult);
  if (status != orvStsNoErr) return status;
  const ComponentBlock<StridedRows<const float>> block{{pMean, step}, {pVar, step}, pSrc};
  scoreRows<Single, Weighting::inverseVariance>(count, featLen, block, OneConstant<float>{}, PlainSum{},
                                                Store<Single>{pResult});
  return orvStsNoErr;
}

OrvStatus orvsMahDistMultiMix_32f_D2L(const float *const *ppMean, const float *const *ppVar,
                                      const float *pSrc, int32_t featLen, float *pResult, int32_t count) {
  const OrvStatus status = checkNullSize(featLen, count, ppMean, ppVar, pSrc, pResult);
  if (status != orvStsNoErr) return status;
  const ComponentBlock<RowPointers<const float>, Deciding::weights> block{{ppMean}, {ppVar}, pSrc};
  scoreRows<Single, Weighting::inverseVariance>(count, featLen, block, OneConstant<float>{}, PlainSum{},
                                                Store<Single>{pResult});
  return orvStsNoErr;
}

OrvStatus orvsMahDistMultiMix_64f_D2(const double *pMean, const double *pVar, int32_t step,
                                     const double *pSrc, int32_t featLen, double *pResult, int32_t count) {
  const OrvStatus status = checkStrideNullSize(featLen, step, count, pMean, pVar, pSrc, pResult);
  if (status != orvStsNoErr) return status;
  const ComponentBlock<StridedRows<const double>> block{{pMean, step}, {pVar, step}, pSrc};
  scoreRows<Double, Weighting::inverseVariance>(count, featLen, block, OneConstant<double>{}, PlainSum{},
                                                Store<Double>{pResult});
  return orvStsNoErr;
}

OrvStatus orvsMahDistMultiMix_64f_D2L(const double *const *ppMean, const double *const *ppVar,
                                      const double *pSrc, int32_t featLen, double *pResult, int32_t count) {
  const OrvStatus status = checkNullSize(featLen, count, ppMean, ppVar, pSrc, pResult);
  if (status != orvStsNoErr) return status;
  const ComponentBlock<RowPointers<const double>, Deciding::weights> block{{ppMean}, {ppVar}, pSrc};
  scoreRows<Double, Weighting::inverseVariance>(count, featLen, block, OneConstant<double>{}, PlainSum{},
                                                Store<Double>{pResult});
  return orvStsNoErr;
}
