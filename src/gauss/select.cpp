// orvsLogGaussMixture_Select*: frames under a mixture of which each frame's shortlist selects the Gaussians.
//
// Only orvsLogGaussMixture_Select_32f_D2 tests its result for null. The members with row pointers test every
// one of them, as no other scoring member does. Both are meant.

#include <bit>

#include "core/alloc.h"
#include "core/integer.h"
#include "core/logadd.h"
#include "orvsr/core.h"
#include "orvsr/gauss.h"
#include "primitives/memory.h"
#include "primitives/rows.h"

using namespace orv;

namespace {

constexpr float kLogZero = -4.5e6F;

template <class T>
bool anyNullRow(const T *const *rows, std::int32_t count) {
  for (std::int32_t r = 0; r < count; ++r)
    if (rows[r] == nullptr) return true;
  return false;
}

// The Gaussians that a frame's row of the shortlist selects, in ascending order.
class Selected {
 public:
  Selected() = default;
  Selected(const std::uint8_t *row, std::int32_t nMix)
      : row_(row), bytes_((std::int64_t{nMix} + 7) / 8), padding_(8 * bytes_ - nMix) {}

  // The next one, or -1 after the last. Eight bits are looked at together, as most are clear.
  std::int32_t next() {
    while (bits_ == 0) {
      if (read_ == bytes_) return -1;
      bits_ = row_[read_++];
      if (read_ == bytes_) bits_ = bits_ >> padding_ << padding_;
    }
    const int bit = std::countl_zero(static_cast<std::uint8_t>(bits_));
    bits_ &= ~(128U >> bit);
    return static_cast<std::int32_t>(8 * (read_ - 1) + bit);
  }

 private:
  const std::uint8_t *row_ = nullptr;
  std::int64_t bytes_ = 0, padding_ = 0, read_ = 0;
  std::uint32_t bits_ = 0;
};

// Adds each score to its sum. A few of them cost less one by one than a whole block of orvsLogAdd_32f, which
// gives the same sums.
void addLogs(const float *scores, float *sums, std::int32_t count) {
  constexpr std::int32_t kFew = 3;
  if (count > kFew) {
    orvsLogAdd_32f(scores, sums, count, orvAlgHintNone);
  } else {
    const LogDomain32f domain;
    for (std::int32_t i = 0; i < count; ++i)
      sums[i] = logAddStep<Grouping::constantFirst>(domain, sums[i], scores[i]);
  }
}

// score(f, m) is the score of frame f under Gaussian m. Gaussians enter a frame's sum in ascending order, the
// first as it is: no frame with a bit sees the log-domain zero. Some frames go side by side, a Gaussian of
// each at a time, since a frame's additions wait for one another.
template <class Score>
OrvStatus scoreSelected(const std::uint8_t *bits, std::int32_t nMix, float *result, std::int32_t frames,
                        float defaultValue, Score &&score) {
  // How many Gaussians each frame has taken so far. It wraps after 65536, and the frame then starts anew:
  // this is meant.
  const WorkArray<std::int16_t> taken(frames);
  if (!taken) return orvStsMemAllocErr;
  orvsSet_16s(0, taken.get(), frames);
  orvsSet_32f(kLogZero, result, frames);

  constexpr std::int32_t kSideBySide = 8;
  const std::int64_t rowBytes = (std::int64_t{nMix} + 7) / 8;
  for (std::int32_t first = 0; first < frames; first += kSideBySide) {
    std::int32_t unfinished[kSideBySide];
    Selected selected[kSideBySide];
    std::int32_t count = 0;
    for (std::int32_t f = first; f < frames && count < kSideBySide; ++f, ++count) {
      unfinished[count] = f;
      selected[count] = Selected(bits + f * rowBytes, nMix);
    }
    while (count > 0) {
      float scores[kSideBySide], sums[kSideBySide];
      std::int32_t adding[kSideBySide], additions = 0, left = 0;
      for (std::int32_t i = 0; i < count; ++i) {
        const std::int32_t f = unfinished[i], m = selected[i].next();
        if (m < 0) continue;
        const float s = score(f, m);
        std::int16_t &number = taken.get()[f];
        if (number == 0) {
          store(result + f, s);
        } else {
          scores[additions] = s;
          sums[additions] = load(result + f);
          adding[additions++] = f;
        }
        number = wrap16(number + 1);
        unfinished[left] = f;
        selected[left++] = selected[i];
      }
      count = left;
      addLogs(scores, sums, additions);
      for (std::int32_t i = 0; i < additions; ++i) store(result + adding[i], sums[i]);
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
  const StridedRows<const float> src{pSrc, step}, mean{pMean, step}, var{pVar, step};
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
  const StridedRows<const float> src{pSrc, step}, mean{pMean, step};
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
  const StridedRows<const std::int16_t> src{pSrc, step}, mean{pMean, step}, var{pVar, step};
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
  const StridedRows<const std::int16_t> src{pSrc, step}, mean{pMean, step};
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
