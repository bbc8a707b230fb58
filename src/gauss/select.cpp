// orvsLogGaussMixture_Select*: frames under a mixture of which each frame's shortlist selects the Gaussians.
//
// Only orvsLogGaussMixture_Select_32f_D2 tests its result for null. The members with row pointers test every
// one of them, as no other scoring member does. Both are meant.

#include <algorithm>
#include <bit>

#include "core/alloc.h"
#include "core/integer.h"
#include "core/logadd.h"
#include "gauss/score.h"
#include "orvsr/core.h"
#include "orvsr/gauss.h"
#include "primitives/memory.h"
#include "primitives/rows.h"

using namespace orv;
using namespace orv::gauss;

namespace {

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
  Selected(const std::uint8_t *row, std::int32_t nMix) : row_(row), bits_(0), end_(nMix), left_(nMix) {}

  // Writes the next ones, at most so many, to m[0], m[apart], and so on. Returns how many there were.
  std::int32_t take(std::int32_t most, std::int32_t *m, std::int32_t apart) {
    std::int32_t count = 0;
    while (count < most) {
      while (bits_ == 0) {
        if (left_ == 0) return count;
        readBits();
      }
      const int bit = std::countl_zero(bits_);
      bits_ ^= kFirst >> bit;
      m[count++ * apart] = begin_ + bit;
    }
    return count;
  }

 private:
  static constexpr std::uint64_t kFirst = std::uint64_t{1} << 63;

  void readBits() {
    const std::int32_t width = std::min(left_, 64);
    for (std::int32_t i = 0; i < width; i += 8) bits_ |= std::uint64_t{*row_++} << (56 - i);
    bits_ = bits_ >> (64 - width) << (64 - width);
    begin_ = end_ - left_;
    left_ -= width;
  }

  const std::uint8_t *row_;
  std::uint64_t bits_;  // of 64 Gaussians from begin_ on, the first one at the top
  std::int32_t begin_, end_, left_;
};

// Frames, means and weights, which are the means without weighting, each row in its layout.
template <class Rows>
struct Selection {
  Rows frames, means, weights;
  Row<typename Rows::Elem> row(std::int32_t f, std::int32_t m) const {
    return {frames.row(f), means.row(m), weights.row(m)};
  }
};

// Some frames that go side by side, and the Gaussians that they take next, each frame one a round.
struct Rounds {
  static constexpr std::int32_t kFrames = 8, kRoom = 64;
  std::int32_t first, frames;
  std::int32_t count[kFrames];  // of each frame's Gaussians
  std::int32_t rounds, total;   // the greatest of these, and their sum
  std::int32_t m[kRoom];        // frame f takes m[frames * r + f] in round r
  float scores[kRoom];          // in the same order
};

// A frame's Gaussian in a round, and where its score goes.
struct Place {
  std::int32_t f, m, i;
};

// The score is that of orvsLogGaussSingle_*.
template <class Form, Weighting weighting, class Rows, class Score>
[[gnu::noinline]] void scoreOne(const Selection<Rows> &selection, std::int32_t len, const float *gconst,
                                const Score &score, const Place &place, Rounds &rounds) {
  const auto row = selection.row(rounds.first + place.f, place.m);
  rounds.scores[place.i] = scoreRow<Form, weighting>(row, len, row.w, load(gconst + place.m), score);
}

// All of them; four with the same head are formed together.
template <class Form, Weighting weighting, class Rows, class Score>
void scoreRounds(const Selection<Rows> &selection, std::int32_t len, const float *gconst, const Score &score,
                 Rounds &rounds) {
  constexpr int heads = Form::peels ? Form::Lanes::lanes : 1;
  Place places[heads][Rounds::kRoom];
  std::int32_t counts[heads] = {};
  const auto one = [&](const Place &p) {
    scoreOne<Form, weighting>(selection, len, gconst, score, p, rounds);
  };
  const auto each = [&](auto take) {
    for (std::int32_t f = 0; f < rounds.frames; ++f)
      for (std::int32_t r = 0; r < rounds.count[f]; ++r) {
        const std::int32_t i = rounds.frames * r + f;
        take(Place{f, rounds.m[i], i});
      }
  };
  if (rounds.total < 4) {
    each(one);
    return;
  }
  each([&](const Place &place) {
    const std::int32_t head = Form::peels ? alignedHead(selection.weights.row(place.m), len) : 0;
    if (head < Form::Lanes::lanes && len - head >= 8) {
      places[head][counts[head]++] = place;
    } else {
      one(place);
    }
  });
  const auto row = [&](const Place &p) { return selection.row(rounds.first + p.f, p.m); };
  const auto constant = [&](const Place &p) { return load(gconst + p.m); };
  for (int head = 0; head < heads; ++head) {
    const Place *p = places[head];
    const Place *const end = p + counts[head];
    for (; end - p >= 4; p += 4) {
      const auto a = row(p[0]), b = row(p[1]), c = row(p[2]), d = row(p[3]);
      const simd::f32x4 constants =
          simd::pack4(constant(p[0]), constant(p[1]), constant(p[2]), constant(p[3]));
      const simd::f32x4 sums = sumFourSingly<Form, weighting, typename Score::Fold>(
          FourRows<typename Form::Elem>{{a.a, b.a, c.a, d.a}, {a.b, b.b, c.b, d.b}, {a.w, b.w, c.w, d.w}},
          len, head, score.start(constants));
      float scores[4];
      simd::store4(scores, score.finish(sums, constants));
      for (int k = 0; k < 4; ++k) rounds.scores[p[k].i] = scores[k];
    }
    for (; p < end; ++p) one(*p);
  }
}

// Adds scores to their sums. A few of them cost less one by one.
void addLogs(const LogDomain32f &domain, const float *scores, float *sums, std::int32_t count) {
  constexpr std::int32_t kFew = 3;
  if (count > kFew) {
    orvsLogAdd_32f(scores, sums, count, orvAlgHintNone);
  } else {
    for (std::int32_t i = 0; i < count; ++i)
      sums[i] = logAddStep<Grouping::constantFirst>(domain, sums[i], scores[i]);
  }
}

// Adds round by round; in a round those of neighbouring frames together. taken tells how many scores each
// frame has had. It wraps after 65536, and the frame then starts anew: this is meant.
void addRounds(const LogDomain32f &domain, const Rounds &rounds, std::int16_t *taken, float *sums) {
  for (std::int32_t r = 0; r < rounds.rounds; ++r) {
    const float *const scores = rounds.scores + r * rounds.frames;
    for (std::int32_t f = 0; f < rounds.frames;) {
      if (r >= rounds.count[f]) {
        ++f;
      } else if (taken[f] == 0) {
        sums[f] = scores[f];
        taken[f++] = 1;
      } else {
        const std::int32_t begin = f;
        do {
          taken[f] = wrap16(taken[f] + 1);
          ++f;
        } while (f < rounds.frames && r < rounds.count[f] && taken[f] != 0);
        addLogs(domain, scores + begin, sums + begin, f - begin);
      }
    }
  }
}

// Gaussians enter a frame's sum in ascending order, the first as it is: no frame with a bit sees the
// log-domain zero that all results start from. Some frames go side by side, since a frame's additions wait
// for one another.
template <class Form, Weighting weighting, class Rows, class Score>
OrvStatus scoreSelected(const Selection<Rows> &selection, std::int32_t len, const float *gconst,
                        const std::uint8_t *bits, std::int32_t nMix, const Score &score, float *result,
                        std::int32_t frames, float defaultValue) {
  const WorkArray<std::int16_t> taken(frames);
  if (!taken) return orvStsMemAllocErr;
  orvsSet_16s(0, taken.get(), frames);
  orvsSet_32f(static_cast<float>(LogDomain32f::zero), result, frames);
  const std::int64_t rowBytes = (std::int64_t{nMix} + 7) / 8;
  const LogDomain32f domain;
  Rounds rounds;
  for (rounds.first = 0; rounds.first < frames; rounds.first += rounds.frames) {
    rounds.frames = std::min(Rounds::kFrames, frames - rounds.first);
    Selected selected[Rounds::kFrames];
    std::int16_t *const takenHere = taken.get() + rounds.first;
    for (std::int32_t f = 0; f < rounds.frames; ++f)
      selected[f] = Selected(bits + (rounds.first + f) * rowBytes, nMix);
    float sums[Rounds::kFrames] = {};
    const std::int32_t most = Rounds::kRoom / rounds.frames;
    do {
      rounds.rounds = rounds.total = 0;
      for (std::int32_t f = 0; f < rounds.frames; ++f) {
        rounds.count[f] = selected[f].take(most, rounds.m + f, rounds.frames);
        rounds.rounds = std::max(rounds.rounds, rounds.count[f]);
        rounds.total += rounds.count[f];
      }
      scoreRounds<Form, weighting>(selection, len, gconst, score, rounds);
      addRounds(domain, rounds, takenHere, sums);
    } while (rounds.rounds == most);
    for (std::int32_t f = 0; f < rounds.frames; ++f)
      store(result + rounds.first + f, takenHere[f] == 0 ? defaultValue : sums[f]);
  }
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
  const Selection<StridedRows<const float>> rows{{pSrc, step}, {pMean, step}, {pVar, step}};
  return scoreSelected<Single, Weighting::inverseVariance>(rows, featLen, pGConst, pBits, nMix,
                                                           HalvedSum<float>{}, pResult, frames, defaultValue);
}

OrvStatus orvsLogGaussMixture_Select_32f_D2L(const float *const *ppSrc, const float *const *ppMean,
                                             const float *const *ppVar, int32_t featLen, const float *pGConst,
                                             const uint8_t *pBits, int32_t nMix, float *pResult,
                                             int32_t frames, float defaultValue) {
  if (anyNull(ppSrc, ppMean, ppVar, pGConst, pBits)) return orvStsNullPtrErr;
  if (featLen < 1 || nMix < 1 || frames < 1) return orvStsSizeErr;
  if (anyNullRow(ppSrc, frames) || anyNullRow(ppMean, nMix) || anyNullRow(ppVar, nMix))
    return orvStsNullPtrErr;
  const Selection<RowPointers<const float>> rows{{ppSrc}, {ppMean}, {ppVar}};
  return scoreSelected<Single, Weighting::inverseVariance>(rows, featLen, pGConst, pBits, nMix,
                                                           HalvedSum<float>{}, pResult, frames, defaultValue);
}

OrvStatus orvsLogGaussMixture_SelectIdVar_32f_D2(const float *pSrc, const float *pMean, int32_t step,
                                                 int32_t featLen, const float *pGConst, const uint8_t *pBits,
                                                 int32_t nMix, float *pResult, int32_t frames,
                                                 float defaultValue) {
  if (anyNull(pSrc, pMean, pGConst, pBits)) return orvStsNullPtrErr;
  if (featLen < 1 || nMix < 1 || frames < 1) return orvStsSizeErr;
  if (step < featLen) return orvStsStrideErr;
  const Selection<StridedRows<const float>> rows{{pSrc, step}, {pMean, step}, {pMean, step}};
  return scoreSelected<Single, Weighting::none>(rows, featLen, pGConst, pBits, nMix, HalvedSum<float>{},
                                                pResult, frames, defaultValue);
}

OrvStatus orvsLogGaussMixture_SelectIdVar_32f_D2L(const float *const *ppSrc, const float *const *ppMean,
                                                  int32_t featLen, const float *pGConst, const uint8_t *pBits,
                                                  int32_t nMix, float *pResult, int32_t frames,
                                                  float defaultValue) {
  if (anyNull(ppSrc, ppMean, pGConst, pBits)) return orvStsNullPtrErr;
  if (featLen < 1 || nMix < 1 || frames < 1) return orvStsSizeErr;
  if (anyNullRow(ppSrc, frames) || anyNullRow(ppMean, nMix)) return orvStsNullPtrErr;
  const Selection<RowPointers<const float>> rows{{ppSrc}, {ppMean}, {ppMean}};
  return scoreSelected<Single, Weighting::none>(rows, featLen, pGConst, pBits, nMix, HalvedSum<float>{},
                                                pResult, frames, defaultValue);
}

OrvStatus orvsLogGaussMixture_SelectScaled_16s32f_D2(const int16_t *pSrc, const int16_t *pMean,
                                                     const int16_t *pVar, int32_t step, int32_t featLen,
                                                     const float *pGConst, const uint8_t *pBits, int32_t nMix,
                                                     float *pResult, int32_t frames, int32_t scaleFactor,
                                                     float defaultValue) {
  if (anyNull(pSrc, pMean, pVar, pGConst, pBits)) return orvStsNullPtrErr;
  if (featLen < 1 || nMix < 1 || frames < 1) return orvStsSizeErr;
  if (step < featLen) return orvStsStrideErr;
  const Selection<StridedRows<const std::int16_t>> rows{{pSrc, step}, {pMean, step}, {pVar, step}};
  return scoreSelected<Converted, Weighting::inverseVariance>(rows, featLen, pGConst, pBits, nMix,
                                                              ScaledSum{halvedScale(scaleFactor)}, pResult,
                                                              frames, defaultValue);
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
  const Selection<RowPointers<const std::int16_t>> rows{{ppSrc}, {ppMean}, {ppVar}};
  return scoreSelected<Converted, Weighting::inverseVariance>(rows, featLen, pGConst, pBits, nMix,
                                                              ScaledSum{halvedScale(scaleFactor)}, pResult,
                                                              frames, defaultValue);
}

OrvStatus orvsLogGaussMixture_SelectIdVarScaled_16s32f_D2(const int16_t *pSrc, const int16_t *pMean,
                                                          int32_t step, int32_t featLen, const float *pGConst,
                                                          const uint8_t *pBits, int32_t nMix, float *pResult,
                                                          int32_t frames, int32_t scaleFactor,
                                                          float defaultValue) {
  if (anyNull(pSrc, pMean, pGConst, pBits)) return orvStsNullPtrErr;
  if (featLen < 1 || nMix < 1 || frames < 1) return orvStsSizeErr;
  if (step < featLen) return orvStsStrideErr;
  const Selection<StridedRows<const std::int16_t>> rows{{pSrc, step}, {pMean, step}, {pMean, step}};
  return scoreSelected<Converted, Weighting::none>(rows, featLen, pGConst, pBits, nMix,
                                                   ScaledSum{halvedScale(scaleFactor)}, pResult, frames,
                                                   defaultValue);
}

OrvStatus orvsLogGaussMixture_SelectIdVarScaled_16s32f_D2L(const int16_t *const *ppSrc,
                                                           const int16_t *const *ppMean, int32_t featLen,
                                                           const float *pGConst, const uint8_t *pBits,
                                                           int32_t nMix, float *pResult, int32_t frames,
                                                           int32_t scaleFactor, float defaultValue) {
  if (anyNull(ppSrc, ppMean, pGConst, pBits)) return orvStsNullPtrErr;
  if (featLen < 1 || nMix < 1 || frames < 1) return orvStsSizeErr;
  if (anyNullRow(ppSrc, frames) || anyNullRow(ppMean, nMix)) return orvStsNullPtrErr;
  const Selection<RowPointers<const std::int16_t>> rows{{ppSrc}, {ppMean}, {ppMean}};
  return scoreSelected<Converted, Weighting::none>(rows, featLen, pGConst, pBits, nMix,
                                                   ScaledSum{halvedScale(scaleFactor)}, pResult, frames,
                                                   defaultValue);
}
