// orvsBlindEqualization_Aurora_*: cepstra less a bias that follows their distance from a reference.
//
// The arrays may overlap in any way: every element is read after all earlier ones were written.

#include <algorithm>
#include <cstdint>

#include "core/integer.h"
#include "orvsr/robust.h"
#include "primitives/memory.h"

namespace orv {
namespace {

OrvStatus check(const void *pRef, const void *pCep, const void *pBias, std::int32_t len) {
  if (pRef == nullptr || pCep == nullptr || pBias == nullptr) return orvStsNullPtrErr;
  return len < 1 ? orvStsSizeErr : orvStsNoErr;
}

}  // namespace
}  // namespace orv

using namespace orv;

OrvStatus orvsBlindEqualization_Aurora_32f(const float *pRef, float *pCep, float *pBias, int32_t len,
                                           float logEnergy) {
  if (const OrvStatus status = check(pRef, pCep, pBias, len); status != orvStsNoErr) return status;
  const float step = std::min(1.0F, std::max(0.0F, logEnergy - 3.296875F)) * 0.0087890625F;
  for (std::int32_t i = 0; i < len; ++i) {
    const float c = load(pCep + i) - load(pBias + i);
    store(pCep + i, c);
    store(pBias + i, load(pBias + i) + (c - load(pRef + i)) * step);
  }
  return orvStsNoErr;
}

// The bias follows the difference before that is saturated.
OrvStatus orvsBlindEqualization_Aurora_16s(const int16_t *pRef, int16_t *pCep, int16_t *pBias, int32_t len,
                                           int32_t logEnergy) {
  if (const OrvStatus status = check(pRef, pCep, pBias, len); status != orvStsNoErr) return status;
  const std::int32_t step = (std::clamp(logEnergy, 211, 211 + 64) - 211) * 9;
  for (std::int32_t i = 0; i < len; ++i) {
    const std::int32_t c = load(pCep + i) - load(pBias + i);
    store(pCep + i, sat16(c));
    store(pBias + i, sat16(load(pBias + i) + (((c - load(pRef + i)) * step) >> 16)));
  }
  return orvStsNoErr;
}
