// orvsLogGaussMixture_Select*: frames under a mixture of which each frame's shortlist selects the Gaussians.
//
// Only orvsLogGaussMixture_Select_32f_D2 tests its result for null. The members with row pointers test every
// one of them, as no other scoring member does. Both are meant.

#include <bit>

#include "core/alloc.h"
#include "core/integer.h"
#include "gauss/checks.h"
#include "gauss/rows.h"
#include "orvsr/core.h"
#include "orvsr/gauss.h"

using namespace orv;
using namespace orv::gauss;

namespace {

constexpr float kLogZero = -4.5e6F;

template <class T>
bool anyNullRow(const T *const *rows, std::int32_t count) {
  for (std::int32_t r = 0; r < count; ++r)
    if (rows[r] == nullptr) return true;
  return false;
}

// score(f, m) is the score of frame f under Gaussian m. Gaussians enter a frame's sum in ascending order, the
// first as it is: no frame with a bit sees the log-domain zero. Eight bits are looked at together, as most
// are clear.
template <class Score>
OrvStatus scoreSelected(const std::uint8_t *bits, std::int32_t nMix, float *result, std::int32_t frames,
                        float defaultValue, Score &&score) {
  // How many Gaussians each frame has taken so far. It wraps after 65536, and the frame then starts anew:
  // this is meant.
  const WorkArray<std::int16_t> taken(frames);
  if (!taken) return orvStsMemAllocErr;
  orvsSet_16s(0, taken.get(), frames);
  orvsSet_32f(kLogZero, result, frames);

  const std::int64_t rowBytes = (std::int64_t{nMix} + 7) / 8;
  for (std::int64_t byte = 0; byte < rowBytes; ++byte) {
    const std::int64_t padding = byte + 1 < rowBytes ? 0 : 8 * rowBytes - nMix;
    for (std::int32_t f = 0; f < frames; ++f) {
      auto selected = static_cast<std::uint8_t>(bits[f * rowBytes + byte] >> padding << padding);
      while (selected != 0) {
        const int bit = std::countl_zero(selected);
        selected = static_cast<std::uint8_t>(selected & ~(128U >> bit));
        const float s = score(f, static_cast<std::int32_t>(8 * byte + bit));
        std::int16_t &count = taken.get()[f];
        if (count == 0)
          store(result + f, s);
        else
          orvsLogAdd_32f(&s, result + f, 1, orvAlgHintNone);
        count = wrap16(count + 1);
      }
    }
  }
  for (std::int32_t f = 0; f < frames; ++f)
    if (taken.get()[f] == 0) store(result + f, defaultValue);
  return orvStsNoErr;
}

}  // namespace

OrvStatus orvsLogGaussMixture_Select_32f_D2(const float *pSrc, const float *pMean, const float *pVar,
                                            int32_t step, int32_t featLen, const float *pGConst,
                                            const uint8_t *pBits, int32_t nMix, float *pResult,
                                            int32_t frames, float defaultValue) {
  if (anyNull(pSrc, pMean, pVar, pGConst, pBits, pResult)) return orvStsNullPtrErr;
  if (featLen < 1 || nMix < 1 || frames < 1) return orvStsSizeErr;
  if (step < featLen) return orvStsStrideErr;
  const StridedRows<float> src{pSrc, step}, mean{pMean, step}, var{pVar, step};
  return scoreSelected(pBits, nMix, pResult, frames, defaultValue, [&](std::int32_t f, std::int32_t m) {
    float s = 0;
    orvsLogGaussSingle_32f(src.row(f), mean.row(m), var.row(m), featLen, &s, load(pGConst + m));
    return s;
  });
}

OrvStatus orvsLogGaussMixture_Select_32f_D2L(const float *const *ppSrc, const float *const *ppMean,
                                             const float *const *ppVar, int32_t featLen, const float *pGConst,
                                             const uint8_t *pBits, int32_t nMix, float *pResult,
                                             int32_t frames, float defaultValue) {
  if (anyNull(ppSrc, ppMean, ppVar, pGConst, pBits)) return orvStsNullPtrErr;
  if (featLen < 1 || nMix < 1 || frames < 1) return orvStsSizeErr;
  if (anyNullRow(ppSrc, frames) || anyNullRow(ppMean, nMix) || anyNullRow(ppVar, nMix))
    return orvStsNullPtrErr;
  return scoreSelected(pBits, nMix, pResult, frames, defaultValue, [&](std::int32_t f, std::int32_t m) {
    float s = 0;
    orvsLogGaussSingle_32f(ppSrc[f], ppMean[m], ppVar[m], featLen, &s, load(pGConst + m));
    return s;
  });
}

OrvStatus orvsLogGaussMixture_SelectIdVar_32f_D2(const float *pSrc, const float *pMean, int32_t step,
                                                 int32_t featLen, const float *pGConst, const uint8_t *pBits,
                                                 int32_t nMix, float *pResult, int32_t frames,
                                                 float defaultValue) {
  if (anyNull(pSrc, pMean, pGConst, pBits)) return orvStsNullPtrErr;
  if (featLen < 1 || nMix < 1 || frames < 1) return orvStsSizeErr;
  if (step < featLen) return orvStsStrideErr;
  const StridedRows<float> src{pSrc, step}, mean{pMean, step};
  return scoreSelected(pBits, nMix, pResult, frames, defaultValue, [&](std::int32_t f, std::int32_t m) {
    float s = 0;
    orvsLogGaussSingle_IdVar_32f(src.row(f), mean.row(m), featLen, &s, load(pGConst + m));
    return s;
  });
}

OrvStatus orvsLogGaussMixture_SelectIdVar_32f_D2L(const float *const *ppSrc, const float *const *ppMean,
                                                  int32_t featLen, const float *pGConst, const uint8_t *pBits,
                                                  int32_t nMix, float *pResult, int32_t frames,
                                                  float defaultValue) {
  if (anyNull(ppSrc, ppMean, pGConst, pBits)) return orvStsNullPtrErr;
  if (featLen < 1 || nMix < 1 || frames < 1) return orvStsSizeErr;
  if (anyNullRow(ppSrc, frames) || anyNullRow(ppMean, nMix)) return orvStsNullPtrErr;
  return scoreSelected(pBits, nMix, pResult, frames, defaultValue, [&](std::int32_t f, std::int32_t m) {
    float s = 0;
    orvsLogGaussSingle_IdVar_32f(ppSrc[f], ppMean[m], featLen, &s, load(pGConst + m));
    return s;
  });
}

OrvStatus orvsLogGaussMixture_SelectScaled_16s32f_D2(const int16_t *pSrc, const int16_t *pMean,
                                                     const int16_t *pVar, int32_t step, int32_t featLen,
                                                     const float *pGConst, const uint8_t *pBits, int32_t nMix,
                                                     float *pResult, int32_t frames, int32_t scaleFactor,
                                                     float defaultValue) {
  if (anyNull(pSrc, pMean, pVar, pGConst, pBits)) return orvStsNullPtrErr;
  if (featLen < 1 || nMix < 1 || frames < 1) return orvStsSizeErr;
  if (step < featLen) return orvStsStrideErr;
  const StridedRows<std::int16_t> src{pSrc, step}, mean{pMean, step}, var{pVar, step};
  return scoreSelected(pBits, nMix, pResult, frames, defaultValue, [&](std::int32_t f, std::int32_t m) {
    float s = 0;
    orvsLogGaussSingle_Scaled_16s32f(src.row(f), mean.row(m), var.row(m), featLen, &s, scaleFactor,
                                     load(pGConst + m));
    return s;
  });
}

OrvStatus orvsLogGaussMixture_SelectScaled_16s32f_D2L(const int16_t *const *ppSrc,
                                                      const int16_t *const *ppMean,
                                                      const int16_t *const *ppVar, int32_t featLen,
                                                      const float *pGConst, const uint8_t *pBits,
                                                      int32_t nMix, float *pResult, int32_t frames,
                                                      int32_t scaleFactor, float defaultValue) {
  if (anyNull(ppSrc, ppMean, ppVar, pGConst, pBits)) return orvStsNullPtrErr;
  if (featLen < 1 || nMix < 1 || frames < 1) return orvStsSizeErr;
  if (anyNullRow(ppSrc, frames) || anyNullRow(ppMean, nMix) || anyNullRow(ppVar, nMix))
    return orvStsNullPtrErr;
  return scoreSelected(pBits, nMix, pResult, frames, defaultValue, [&](std::int32_t f, std::int32_t m) {
    float s = 0;
    orvsLogGaussSingle_Scaled_16s32f(ppSrc[f], ppMean[m], ppVar[m], featLen, &s, scaleFactor,
                                     load(pGConst + m));
    return s;
  });
}

OrvStatus orvsLogGaussMixture_SelectIdVarScaled_16s32f_D2(const int16_t *pSrc, const int16_t *pMean,
                                                          int32_t step, int32_t featLen, const float *pGConst,
                                                          const uint8_t *pBits, int32_t nMix, float *pResult,
                                                          int32_t frames, int32_t scaleFactor,
                                                          float defaultValue) {
  if (anyNull(pSrc, pMean, pGConst, pBits)) return orvStsNullPtrErr;
  if (featLen < 1 || nMix < 1 || frames < 1) return orvStsSizeErr;
  if (step < featLen) return orvStsStrideErr;
  const StridedRows<std::int16_t> src{pSrc, step}, mean{pMean, step};
  return scoreSelected(pBits, nMix, pResult, frames, defaultValue, [&](std::int32_t f, std::int32_t m) {
    float s = 0;
    orvsLogGaussSingle_IdVarScaled_16s32f(src.row(f), mean.row(m), featLen, &s, scaleFactor,
                                          load(pGConst + m));
    return s;
  });
}

OrvStatus orvsLogGaussMixture_SelectIdVarScaled_16s32f_D2L(const int16_t *const *ppSrc,
                                                           const int16_t *const *ppMean, int32_t featLen,
                                                           const float *pGConst, const uint8_t *pBits,
                                                           int32_t nMix, float *pResult, int32_t frames,
                                                           int32_t scaleFactor, float defaultValue) {
  if (anyNull(ppSrc, ppMean, pGConst, pBits)) return orvStsNullPtrErr;
  if (featLen < 1 || nMix < 1 || frames < 1) return orvStsSizeErr;
  if (anyNullRow(ppSrc, frames) || anyNullRow(ppMean, nMix)) return orvStsNullPtrErr;
  return scoreSelected(pBits, nMix, pResult, frames, defaultValue, [&](std::int32_t f, std::int32_t m) {
    float s = 0;
    orvsLogGaussSingle_IdVarScaled_16s32f(ppSrc[f], ppMean[m], featLen, &s, scaleFactor, load(pGConst + m));
    return s;
  });
}
