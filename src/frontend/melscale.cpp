// orvsLinearToMel_32f, orvsMelToLinear_32f.
//
// The roundings are those of filter bank construction: products and quotients in extended precision,
// logarithm and exponential in double, the result in single. The reciprocal is rounded to double, once.

#include <cmath>

#include "orvsr/frontend.h"
#include "primitives/memory.h"

namespace orv {
namespace {

using Extended = long double;

// A NaN passes.
OrvStatus checkScale(const float *pSrc, const float *pDst, std::int32_t len, float melMul, float melDiv) {
  if (pSrc == nullptr || pDst == nullptr) return orvStsNullPtrErr;
  if (len <= 0 || melMul <= 0.0F || melDiv <= 0.0F) return orvStsSizeErr;
  return orvStsNoErr;
}

double reciprocal(float v) { return static_cast<double>(1 / Extended{v}); }

}  // namespace
}  // namespace orv

using namespace orv;

OrvStatus orvsLinearToMel_32f(const float *pSrc, float *pDst, int32_t len, float melMul, float melDiv) {
  if (const OrvStatus status = checkScale(pSrc, pDst, len, melMul, melDiv); status != orvStsNoErr)
    return status;
  const double inverse = reciprocal(melDiv);
  for (std::int32_t i = 0; i < len; ++i) {
    const auto ratio = static_cast<double>(1 + Extended{load(pSrc + i)} * inverse);
    store(pDst + i, static_cast<float>(Extended{melMul} * std::log(ratio)));
  }
  return orvStsNoErr;
}

OrvStatus orvsMelToLinear_32f(const float *pSrc, float *pDst, int32_t len, float melMul, float melDiv) {
  if (const OrvStatus status = checkScale(pSrc, pDst, len, melMul, melDiv); status != orvStsNoErr)
    return status;
  const double inverse = reciprocal(melMul);
  for (std::int32_t i = 0; i < len; ++i) {
    const auto exponent = static_cast<double>(Extended{load(pSrc + i)} * inverse);
    store(pDst + i, static_cast<float>(melDiv * (Extended{std::exp(exponent)} - 1)));
  }
  return orvStsNoErr;
}
