// orvsDcsClustL*: the log-likelihood of a cluster of Gaussians, without the data.

#include <cmath>
#include <cstdint>

#include "orvsr/train.h"
#include "primitives/memory.h"
#include "primitives/special.h"

using namespace orv;

namespace {

// ln(2 pi) in full, unlike the constant of models and distances; both stay as they are.
constexpr double kLogTwoPi = 1.8378770664093456;

// secondMoment(mean, v) is the mean square of one element.
template <class T, class SecondMoment>
OrvStatus accumulate(const T *mean, const T *values, T *first, T *second, std::int32_t len, T occupation,
                     SecondMoment secondMoment) {
  if (mean == nullptr || values == nullptr || first == nullptr || second == nullptr) return orvStsNullPtrErr;
  if (len < 1) return orvStsSizeErr;
  for (std::int32_t i = 0; i < len; ++i) {
    const T m = load(mean + i), v = load(values + i);
    store(first + i, m * occupation);
    store(second + i, secondMoment(m, v) * occupation);
  }
  return orvStsNoErr;
}

template <class T>
OrvStatus accumulateInverse(const T *mean, const T *inverse, T *first, T *second, std::int32_t len,
                            T occupation) {
  return accumulate(mean, inverse, first, second, len, occupation, [](T m, T v) { return T{1} / v + m * m; });
}

template <class T>
OrvStatus accumulateDirect(const T *mean, const T *var, T *first, T *second, std::int32_t len, T occupation) {
  return accumulate(mean, var, first, second, len, occupation, [](T m, T v) { return m * m + v; });
}

template <class T>
OrvStatus compute(const T *first, const T *second, std::int32_t len, double *likelihood, T occupation) {
  if (first == nullptr || second == nullptr || likelihood == nullptr) return orvStsNullPtrErr;
  if (len < 1) return orvStsSizeErr;
  if (occupation < 0) return orvStsNegOccupancyErr;
  // Every later return leaves something defined.
  store(likelihood, -1e10);
  // Exactly zero: a tiny occupation is computed with, unlike in the updates of a model.
  if (occupation == 0) return orvStsZeroOccupancyWrn;
  const double o = occupation;
  const double logO = std::log(o);
  double sum = 0;
  bool flat = false;
  for (std::int32_t i = 0; i < len; ++i) {
    const double a = load(first + i), b = load(second + i);
    const double d = b * o - a * a;
    if (d == 0) {
      flat = true;
    } else if (d < 0) {
      store(likelihood, orvConstantOfNAN_64f);
      return orvStsNegVarWrn;
    } else {
      sum += std::log(d);
    }
  }
  // Told last: a negative variance behind a zero one has priority.
  if (flat) {
    store(likelihood, orvConstantOfINF_NEG_64f);
    return orvStsInfResultWrn;
  }
  store(likelihood, 0.5 * o * (len * (logO - 1 - kLogTwoPi + logO) - sum));
  return orvStsNoErr;
}

}  // namespace

OrvStatus orvsDcsClustLAccumulate_32f(const float *pMean, const float *pVar, float *pFirst, float *pSecond,
                                      int32_t len, float occupation) {
  return accumulateInverse(pMean, pVar, pFirst, pSecond, len, occupation);
}

OrvStatus orvsDcsClustLAccumulate_64f(const double *pMean, const double *pVar, double *pFirst,
                                      double *pSecond, int32_t len, double occupation) {
  return accumulateInverse(pMean, pVar, pFirst, pSecond, len, occupation);
}

OrvStatus orvsDcsClustLAccumulate_DirectVar_32f(const float *pMean, const float *pVar, float *pFirst,
                                                float *pSecond, int32_t len, float occupation) {
  return accumulateDirect(pMean, pVar, pFirst, pSecond, len, occupation);
}

OrvStatus orvsDcsClustLAccumulate_DirectVar_64f(const double *pMean, const double *pVar, double *pFirst,
                                                double *pSecond, int32_t len, double occupation) {
  return accumulateDirect(pMean, pVar, pFirst, pSecond, len, occupation);
}

OrvStatus orvsDcsClustLCompute_64f(const double *pFirst, const double *pSecond, int32_t len,
                                   double *pLikelihood, double occupation) {
  return compute(pFirst, pSecond, len, pLikelihood, occupation);
}

OrvStatus orvsDcsClustLCompute_32f64f(const float *pFirst, const float *pSecond, int32_t len,
                                      double *pLikelihood, float occupation) {
  return compute(pFirst, pSecond, len, pLikelihood, occupation);
}
