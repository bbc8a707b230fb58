// orvsUpdateMean_*, orvsUpdateVar_*, orvsUpdateWeight_*, orvsUpdateGConst_*, orvsOutProbPreCalc_*: from the
// accumulators of a pass over the data to the parameters of a model.

#include <cmath>
#include <cstdint>
#include <limits>

#include "core/integer.h"
#include "orvsr/train.h"
#include "primitives/memory.h"
#include "primitives/simd.h"
#include "primitives/special.h"

namespace orv {
namespace {

// The smallest normal value counts as zero, and a negative value has been refused before.
template <class T>
OrvStatus checkOccupation(T occupation) {
  return occupation <= std::numeric_limits<T>::min() ? orvStsZeroOccupancyWrn : orvStsNoErr;
}

template <class T>
OrvStatus checkMeanOrWeight(T occupation) {
  if (occupation < T{0}) return orvStsNegOccupancyErr;
  return checkOccupation(occupation);
}

bool overlap(const float *a, const float *b, std::int32_t len) {
  const auto x = reinterpret_cast<std::uintptr_t>(a);
  const auto y = reinterpret_cast<std::uintptr_t>(b);
  const auto bytes = static_cast<std::uintptr_t>(len) * sizeof(float);
  return (x < y ? y - x : x - y) < bytes;
}

template <class T>
void addQuotients(const T *acc, T *mean, std::int32_t begin, std::int32_t end, T occupation) {
  for (std::int32_t i = begin; i < end; ++i) store(mean + i, load(acc + i) / occupation + load(mean + i));
}

// The test has this sense on purpose: a variance equal to its floor, or a NaN, is floored.
template <class T>
OrvStatus updateVariances(const T *meanAcc, const T *varAcc, const T *floor, T *dst, std::int32_t len,
                          T meanOccupation, T varOccupation) {
  if (const OrvStatus status = checkArrays(len, meanAcc, varAcc, floor, dst); status != orvStsNoErr)
    return status;
  if (meanOccupation < T{0} || varOccupation < T{0}) return orvStsNegOccupancyErr;
  if (const OrvStatus status = checkOccupation(meanOccupation); status != orvStsNoErr) return status;
  if (const OrvStatus status = checkOccupation(varOccupation); status != orvStsNoErr) return status;
  T kept = 0;  // 1 as soon as one is: of the type of the data, so that it shares its lanes
  for (std::int32_t i = 0; i < len; ++i) {
    const T m = load(meanAcc + i) / meanOccupation;
    const T v = load(varAcc + i) / varOccupation - m * m;
    const T least = load(floor + i);
    kept = v > least ? T{1} : kept;
    store(dst + i, v > least ? v : least);
  }
  return kept == T{0} ? orvStsAllFlooredWrn : orvStsNoErr;
}

// Unlike a variance, a weight that is a NaN is not floored. The sum grows in its place in memory, one weight
// after the other.
template <class T>
OrvStatus updateWeights(const T *acc, T *dst, std::int32_t len, T *sum, T occupation, T floor) {
  if (const OrvStatus status = checkArrays(len, acc, dst, sum); status != orvStsNoErr) return status;
  if (const OrvStatus status = checkMeanOrWeight(occupation); status != orvStsNoErr) return status;
  store(sum, T{0});
  bool allFloored = true;
  for (std::int32_t i = 0; i < len; ++i) {
    const T quotient = load(acc + i) / occupation;
    const bool floored = floor >= quotient;
    const T weight = floored ? floor : quotient;
    allFloored = allFloored && floored;
    store(dst + i, weight);
    store(sum, load(sum) + weight);
  }
  return allFloored ? orvStsAllFlooredWrn : orvStsNoErr;
}

// The earliest element whose logarithm cannot be taken decides the result.
template <class T>
OrvStatus checkVariances(const T *values, std::int32_t len, T *gconst) {
  for (std::int32_t i = 0; i < len; ++i) {
    const T v = load(values + i);
    if (std::fabs(v) <= std::numeric_limits<T>::min()) {
      store(gconst, Special<T>::infinity());
      return orvStsInfResultWrn;
    }
    if (v < T{0}) {
      store(gconst, Special<T>::nan());
      return orvStsNegVarWrn;
    }
  }
  return orvStsNoErr;
}

// sign is -1 for inverse variances and 1 for variances: a product with it is exact.
template <class T>
OrvStatus updateConstant(const T *values, std::int32_t len, T *gconst, T sign) {
  if (const OrvStatus status = checkArrays(len, values, gconst); status != orvStsNoErr) return status;
  if (const OrvStatus status = checkVariances(values, len, gconst); status != orvStsNoErr) return status;
  // ln(2 pi) cut to 14 digits: trained models carry this constant, and the distances have another one.
  constexpr double logTwoPi = 1.8378770664093;
  auto sum = static_cast<T>(len * logTwoPi);
  for (std::int32_t i = 0; i < len; ++i)
    sum += sign * static_cast<T>(std::log(static_cast<double>(load(values + i))));
  store(gconst, sum);
  return orvStsNoErr;
}

template <class T>
OrvStatus halveAndSubtract(const T *a, const T *b, T *dst, std::int32_t len) {
  if (const OrvStatus status = checkArrays(len, a, b, dst); status != orvStsNoErr) return status;
  for (std::int32_t i = 0; i < len; ++i) store(dst + i, load(a + i) - T{0.5} * load(b + i));
  return orvStsNoErr;
}

// Half of b is rounded up; everything wraps.
OrvStatus halveAndSubtract(const std::int32_t *a, const std::int32_t *b, std::int32_t *dst,
                           std::int32_t len) {
  if (const OrvStatus status = checkArrays(len, a, b, dst); status != orvStsNoErr) return status;
  for (std::int32_t i = 0; i < len; ++i)
    store(dst + i, subWrap32(load(a + i), addWrap32(load(b + i), 1) >> 1));
  return orvStsNoErr;
}

}  // namespace
}  // namespace orv

using namespace orv;

OrvStatus orvsUpdateMean_32f(const float *pAcc, float *pMean, int32_t len, float occupation) {
  using namespace simd;
  if (const OrvStatus status = checkArrays(len, pAcc, pMean); status != orvStsNoErr) return status;
  if (const OrvStatus status = checkMeanOrWeight(occupation); status != orvStsNoErr) return status;
  const std::int32_t head = overlap(pAcc, pMean, len) ? len : alignedHead(pMean, len);
  const std::int32_t body = (len - head) & ~7;
  addQuotients(pAcc, pMean, 0, head, occupation);
  if (body > 0) {
    const float x = approximateReciprocal(occupation);
    const f32x4 reciprocal = splat4((x + x) - occupation * x * x);
    for (std::int32_t i = head; i < head + body; i += 4)
      store4(pMean + i, load4(pAcc + i) * reciprocal + load4(pMean + i));
  }
  addQuotients(pAcc, pMean, head + body, len, occupation);
  return orvStsNoErr;
}

OrvStatus orvsUpdateMean_64f(const double *pAcc, double *pMean, int32_t len, double occupation) {
  if (const OrvStatus status = checkArrays(len, pAcc, pMean); status != orvStsNoErr) return status;
  if (const OrvStatus status = checkMeanOrWeight(occupation); status != orvStsNoErr) return status;
  addQuotients(pAcc, pMean, 0, len, occupation);
  return orvStsNoErr;
}

OrvStatus orvsUpdateVar_32f(const float *pMeanAcc, const float *pVarAcc, const float *pVarFloor, float *pDst,
                            int32_t len, float meanOccupation, float varOccupation) {
  return updateVariances(pMeanAcc, pVarAcc, pVarFloor, pDst, len, meanOccupation, varOccupation);
}

OrvStatus orvsUpdateVar_64f(const double *pMeanAcc, const double *pVarAcc, const double *pVarFloor,
                            double *pDst, int32_t len, double meanOccupation, double varOccupation) {
  return updateVariances(pMeanAcc, pVarAcc, pVarFloor, pDst, len, meanOccupation, varOccupation);
}

OrvStatus orvsUpdateWeight_32f(const float *pAcc, float *pDst, int32_t len, float *pSum, float occupation,
                               float weightFloor) {
  return updateWeights(pAcc, pDst, len, pSum, occupation, weightFloor);
}

OrvStatus orvsUpdateWeight_64f(const double *pAcc, double *pDst, int32_t len, double *pSum, double occupation,
                               double weightFloor) {
  return updateWeights(pAcc, pDst, len, pSum, occupation, weightFloor);
}

OrvStatus orvsUpdateGConst_32f(const float *pInvVar, int32_t len, float *pGConst) {
  return updateConstant(pInvVar, len, pGConst, -1.0F);
}

OrvStatus orvsUpdateGConst_64f(const double *pInvVar, int32_t len, double *pGConst) {
  return updateConstant(pInvVar, len, pGConst, -1.0);
}

OrvStatus orvsUpdateGConst_DirectVar_32f(const float *pVar, int32_t len, float *pGConst) {
  return updateConstant(pVar, len, pGConst, 1.0F);
}

OrvStatus orvsUpdateGConst_DirectVar_64f(const double *pVar, int32_t len, double *pGConst) {
  return updateConstant(pVar, len, pGConst, 1.0);
}

OrvStatus orvsOutProbPreCalc_32f(const float *pSrc1, const float *pSrc2, float *pDst, int32_t len) {
  return halveAndSubtract(pSrc1, pSrc2, pDst, len);
}

OrvStatus orvsOutProbPreCalc_64f(const double *pSrc1, const double *pSrc2, double *pDst, int32_t len) {
  return halveAndSubtract(pSrc1, pSrc2, pDst, len);
}

OrvStatus orvsOutProbPreCalc_32s(const int32_t *pSrc1, const int32_t *pSrc2, int32_t *pDst, int32_t len) {
  return halveAndSubtract(pSrc1, pSrc2, pDst, len);
}

OrvStatus orvsOutProbPreCalc_32f_I(const float *pSrc, float *pSrcDst, int32_t len) {
  return halveAndSubtract<float>(pSrc, pSrcDst, pSrcDst, len);
}

OrvStatus orvsOutProbPreCalc_64f_I(const double *pSrc, double *pSrcDst, int32_t len) {
  return halveAndSubtract<double>(pSrc, pSrcDst, pSrcDst, len);
}

OrvStatus orvsOutProbPreCalc_32s_I(const int32_t *pSrc, int32_t *pSrcDst, int32_t len) {
  return halveAndSubtract(pSrc, pSrcDst, pSrcDst, len);
}
