// orvsGaussianDist_*, orvsGaussianMerge_*, orvsGaussianSplit_*, orvsBhatDist*: comparing and combining two
// Gaussians with direct variances.

#include <cmath>
#include <cstdint>

#include "orvsr/train.h"
#include "primitives/memory.h"
#include "primitives/special.h"

using namespace orv;

namespace {

// ln(2 pi) cut to 14 digits, as the constants of trained models have it; the cluster likelihoods use more
// digits.
constexpr double kLogTwoPi = 1.8378770664093;

template <class T>
struct Gaussians {
  const T *mean1, *var1, *mean2, *var2;
  std::int32_t len;

  bool anyNull() const { return mean1 == nullptr || var1 == nullptr || mean2 == nullptr || var2 == nullptr; }
};

// Mean and variance of the merged element i, in double. The weights of the single-precision members are added
// in single before they are widened.
struct Moments {
  double mean, var;
};

template <class T>
Moments merged(const Gaussians<T> &g, std::int32_t i, T w1, T w2) {
  const double m1 = load(g.mean1 + i), v1 = load(g.var1 + i), m2 = load(g.mean2 + i), v2 = load(g.var2 + i);
  const double a = w1, b = w2, total = w1 + w2;
  const double mean = (a * m1 + b * m2) / total;
  return {mean, ((m1 * m1 + v1) * a + (m2 * m2 + v2) * b) / total - mean * mean};
}

// -sum of ln v over the merged variances v, each element handed to visit before it is judged. A variance that
// has no logarithm ends the sum and decides the result.
template <class T, class Visit>
OrvStatus sumNegLogs(const Gaussians<T> &g, T w1, T w2, T *result, double *sum, Visit visit) {
  double s = 0;
  for (std::int32_t i = 0; i < g.len; ++i) {
    const Moments m = merged(g, i, w1, w2);
    visit(i, m);
    if (m.var == 0) {
      store(result, Special<T>::infinity());
      return orvStsInfResultWrn;
    }
    if (m.var < 0) {
      store(result, Special<T>::nan());
      return orvStsNegVarWrn;
    }
    s -= std::log(m.var);
  }
  *sum = s;
  return orvStsNoErr;
}

template <class T>
OrvStatus gaussianDist(const Gaussians<T> &g, T *dist, T w1, T d1, T w2, T d2) {
  // The length comes first here and in the merge.
  if (g.len < 1) return orvStsSizeErr;
  if (g.anyNull() || dist == nullptr) return orvStsNullPtrErr;
  double sum;
  const OrvStatus status = sumNegLogs(g, w1, w2, dist, &sum, [](std::int32_t, const Moments &) {});
  if (status != orvStsNoErr) return status;
  const double apart = w1 * d1 + w2 * d2, total = w1 + w2;  // both formed in the type of the data
  store(dist, static_cast<T>(apart - total * (g.len * kLogTwoPi + sum)));
  return orvStsNoErr;
}

template <class T>
OrvStatus gaussianMerge(const Gaussians<T> &g, T *mean, T *var, T *gconst, T w1, T w2) {
  if (g.len < 1) return orvStsSizeErr;
  if (g.anyNull() || mean == nullptr || var == nullptr || gconst == nullptr) return orvStsNullPtrErr;
  double sum;
  const OrvStatus status = sumNegLogs(g, w1, w2, gconst, &sum, [&](std::int32_t i, const Moments &m) {
    store(mean + i, static_cast<T>(m.mean));
    store(var + i, static_cast<T>(m.var));
  });
  if (status != orvStsNoErr) return status;
  // The logarithms enter with the opposite sign of a score's constant; the distance expects them so.
  store(gconst, static_cast<T>(g.len * kLogTwoPi + sum));
  return orvStsNoErr;
}

template <class T>
void gaussianSplit(T *mean1, const T *var1, T *mean2, T *var2, std::int32_t len, T factor) {
  for (std::int32_t i = 0; i < len; ++i) {
    const T mean = load(mean1 + i), var = load(var1 + i);
    const auto shift = static_cast<T>(std::sqrt(static_cast<double>(var)) * static_cast<double>(factor));
    store(mean2 + i, mean - shift);
    store(mean1 + i, mean + shift);
    store(var2 + i, var);
  }
}

// Every input is judged, the means too: none may be negative or nearly zero. That is the family's contract,
// odd as it is for means.
template <class Out>
OrvStatus checkBhat(const Gaussians<float> &g, Out *dist) {
  if (g.anyNull() || dist == nullptr) return orvStsNullPtrErr;
  if (g.len < 1) return orvStsSizeErr;
  for (std::int32_t i = 0; i < g.len; ++i) {
    const float x[] = {load(g.mean1 + i), load(g.mean2 + i), load(g.var1 + i), load(g.var2 + i)};
    for (const float value : x)
      if (value < 0) {
        store(dist, Special<Out>::nan());
        return orvStsNegVarWrn;
      }
    for (const float value : x)
      if (std::fabs(value) < 1e-6F) {
        store(dist, Special<Out>::infinity());
        return orvStsInfResultWrn;
      }
  }
  return orvStsNoErr;
}

template <class T>
T logarithm(T x) {
  return static_cast<T>(std::log(static_cast<double>(x)));
}

// The two sums of the distance, in the type of the result: of d^2 / s, and of ln(s / 2) less what own() makes
// of the two variances.
template <class T, class Own>
void bhatSums(const Gaussians<float> &g, T *distances, T *logs, Own own) {
  T a = 0, b = 0;
  for (std::int32_t i = 0; i < g.len; ++i) {
    const T v1 = load(g.var1 + i), v2 = load(g.var2 + i);
    const T d = static_cast<T>(load(g.mean1 + i)) - static_cast<T>(load(g.mean2 + i));
    const T s = v1 + v2;
    a += d * d / s;
    b += own(logarithm(T{0.5} * s), v1, v2);
  }
  *distances = a;
  *logs = b;
}

template <class T>
OrvStatus bhatDist(const Gaussians<float> &g, T *dist) {
  const OrvStatus status = checkBhat(g, dist);
  if (status != orvStsNoErr) return status;
  T a, b;
  bhatSums(g, &a, &b, [](T log, T v1, T v2) { return log - (logarithm(v1) + logarithm(v2)) * T{0.5}; });
  store(dist, a * T{0.25} + b * T{0.5});
  return orvStsNoErr;
}

template <class T>
OrvStatus bhatDistSLog(const Gaussians<float> &g, T *dist, float sumLog1, float sumLog2) {
  const OrvStatus status = checkBhat(g, dist);
  if (status != orvStsNoErr) return status;
  T a, b;
  bhatSums(g, &a, &b, [](T log, T, T) { return log; });
  const T sums = sumLog1 + sumLog2;  // in single, in both members
  store(dist, (a - sums) * T{0.25} + b * T{0.5});
  return orvStsNoErr;
}

}  // namespace

OrvStatus orvsGaussianDist_32f(const float *pMean1, const float *pVar1, const float *pMean2,
                               const float *pVar2, int32_t len, float *pDist, float weight1, float gconst1,
                               float weight2, float gconst2) {
  return gaussianDist<float>({pMean1, pVar1, pMean2, pVar2, len}, pDist, weight1, gconst1, weight2, gconst2);
}

OrvStatus orvsGaussianDist_64f(const double *pMean1, const double *pVar1, const double *pMean2,
                               const double *pVar2, int32_t len, double *pDist, double weight1,
                               double gconst1, double weight2, double gconst2) {
  return gaussianDist<double>({pMean1, pVar1, pMean2, pVar2, len}, pDist, weight1, gconst1, weight2, gconst2);
}

OrvStatus orvsGaussianMerge_32f(const float *pMean1, const float *pVar1, const float *pMean2,
                                const float *pVar2, float *pDstMean, float *pDstVar, int32_t len,
                                float *pGConst, float weight1, float weight2) {
  return gaussianMerge<float>({pMean1, pVar1, pMean2, pVar2, len}, pDstMean, pDstVar, pGConst, weight1,
                              weight2);
}

OrvStatus orvsGaussianMerge_64f(const double *pMean1, const double *pVar1, const double *pMean2,
                                const double *pVar2, double *pDstMean, double *pDstVar, int32_t len,
                                double *pGConst, double weight1, double weight2) {
  return gaussianMerge<double>({pMean1, pVar1, pMean2, pVar2, len}, pDstMean, pDstVar, pGConst, weight1,
                               weight2);
}

OrvStatus orvsGaussianSplit_32f(float *pMean1, const float *pVar1, float *pMean2, float *pVar2, int32_t len,
                                float factor) {
  // The length first; the 64f member tests its pointers first. Callers rely on both.
  if (len < 1) return orvStsSizeErr;
  if (pMean1 == nullptr || pVar1 == nullptr || pMean2 == nullptr || pVar2 == nullptr) return orvStsNullPtrErr;
  gaussianSplit(pMean1, pVar1, pMean2, pVar2, len, factor);
  return orvStsNoErr;
}

OrvStatus orvsGaussianSplit_64f(double *pMean1, const double *pVar1, double *pMean2, double *pVar2,
                                int32_t len, double factor) {
  if (pMean1 == nullptr || pVar1 == nullptr || pMean2 == nullptr || pVar2 == nullptr) return orvStsNullPtrErr;
  if (len < 1) return orvStsSizeErr;
  gaussianSplit(pMean1, pVar1, pMean2, pVar2, len, factor);
  return orvStsNoErr;
}

OrvStatus orvsBhatDist_32f(const float *pMean1, const float *pVar1, const float *pMean2, const float *pVar2,
                           int32_t len, float *pDist) {
  return bhatDist({pMean1, pVar1, pMean2, pVar2, len}, pDist);
}

OrvStatus orvsBhatDist_32f64f(const float *pMean1, const float *pVar1, const float *pMean2,
                              const float *pVar2, int32_t len, double *pDist) {
  return bhatDist({pMean1, pVar1, pMean2, pVar2, len}, pDist);
}

OrvStatus orvsBhatDistSLog_32f(const float *pMean1, const float *pVar1, const float *pMean2,
                               const float *pVar2, int32_t len, float *pDist, float sumLogVar1,
                               float sumLogVar2) {
  return bhatDistSLog({pMean1, pVar1, pMean2, pVar2, len}, pDist, sumLogVar1, sumLogVar2);
}

OrvStatus orvsBhatDistSLog_32f64f(const float *pMean1, const float *pVar1, const float *pMean2,
                                  const float *pVar2, int32_t len, double *pDist, float sumLogVar1,
                                  float sumLogVar2) {
  return bhatDistSLog({pMean1, pVar1, pMean2, pVar2, len}, pDist, sumLogVar1, sumLogVar2);
}
