// From sums to scores, and the walk over the rows. A family is put together from
//
//   a block      which rows meet which vector                          rows.h
//   a weighting  none, or inverse variances                            distance.h
//   a form       the number types of elements and sums                 forms.h, exact.h
//   a score      where the 1/2, the gconst and the scale enter         here
//   a sink       what becomes of a score                               sinks.h
//
// Variances to divide by, and block-diagonal covariances, weigh single vectors only: single.cpp.

#ifndef ORV_GAUSS_SCORE_H
#define ORV_GAUSS_SCORE_H

#include <algorithm>
#include <cstdint>

#include "core/integer.h"
#include "core/scale.h"
#include "gauss/distance.h"
#include "gauss/exact.h"
#include "gauss/rows.h"
#include "gauss/singlerows.h"

namespace orv::gauss {

// gconst - sum / 2 as half of (2 gconst - sum): the constant is doubled and enters the sum first. Scores of
// single vectors subtract half of a sum from zero instead; the two may differ in the last bits, and are meant
// to.
template <class T>
struct DoubledConstant {
  using Fold = Subtract;
  template <class V>
  V start(V gconst) const {
    return gconst + gconst;
  }
  template <class V>
  V finish(V sum, V) const {
    return sum * T{0.5};
  }
};

// gconst - sum * factor.
struct ScaledSum {
  using Fold = Add;
  float factor;
  template <class V>
  V start(V) const {
    return V{};
  }
  template <class V>
  V finish(V sum, V gconst) const {
    return gconst - sum * factor;
  }
};

// gconst - (sum / 2) * factor. Half of a subnormal sum, or a factor at the end of its range, sets it apart
// from ScaledSum.
struct HalvedScaledSum : ScaledSum {
  template <class V>
  V finish(V sum, V gconst) const {
    return gconst - (sum * 0.5F) * factor;
  }
};

// gconst - sum / 2: the scores of single vectors. See DoubledConstant.
template <class T>
struct HalvedSum {
  using Fold = Add;
  template <class V>
  V start(V) const {
    return V{};
  }
  template <class V>
  V finish(V sum, V gconst) const {
    return gconst - sum * T{0.5};
  }
};

// The sum itself: a distance, without the 1/2 and with no constant.
struct PlainSum {
  using Fold = Add;
  template <class V>
  V start(V) const {
    return V{};
  }
  template <class V>
  V finish(V sum, V) const {
    return sum;
  }
};

// Exact integer scores, in 64 bits and modulo them; their sinks saturate or wrap to 32.
//
// gconst - (sum >> shift). The sum is positive when it is shifted: it rounds down, and the score up.
struct ExactScore {
  std::int64_t shift;
  std::int64_t operator()(std::int64_t sum, std::int32_t gconst) const {
    return subWrap64(gconst, shiftSum(sum, shift));
  }
};

// gconst + (-sum >> shift), for running maxima. The sum is negated before it is shifted, so the score rounds
// down and may come out 1 below that of ExactScore. The difference is meant, and callers rely on either.
struct NegatedExactScore {
  std::int64_t shift;
  std::int64_t operator()(std::int64_t sum, std::int32_t gconst) const {
    return addWrap64(gconst, shiftSum(subWrap64(0, sum), shift));
  }
};

// The score of one row. The alignment of `deciding` groups its sum, in the forms that care.
template <class Form, Weighting weighting, class Score>
inline typename Form::Sum scoreRow(const Row<typename Form::Elem> &row, std::int32_t len,
                                   const typename Form::Elem *deciding, typename Form::Sum gconst,
                                   const Score &score) {
  const std::int32_t head = Form::peels ? alignedHead(deciding, len) : 0;
  const auto sum = sumRow<Form, weighting, typename Score::Fold>(row, len, head, score.start(gconst));
  return score.finish(sum, gconst);
}

// The scores of rows from row r on, one after the other.
template <class Form, Weighting weighting, class Block, class Constants, class Score, class Sink>
inline void scoreRest(std::int32_t r, std::int32_t rows, std::int32_t len, const Block &block,
                      const Constants &constants, const Score &score, Sink &&sink) {
  for (; r < rows; ++r)
    sink.one(r, scoreRow<Form, weighting>(block.one(r), len, block.decidingOne(r), constants.one(r), score));
}

// The scores of four rows, each summed as a single one: side by side if they are alike.
template <class Form, Weighting weighting, class Block, class Constants, class Score>
[[gnu::always_inline]] inline typename Form::Four scoreFourSingly(std::int32_t r, std::int32_t apart,
                                                                  std::int32_t len, const Block &block,
                                                                  const Constants &constants,
                                                                  const Score &score) {
  static_assert(Block::oneByWeights);
  using Fold = typename Score::Fold;
  const std::int32_t head = Form::peels ? alignedHead(block.decidingOne(r), len) : 0;
  bool alike = head < Form::Lanes::lanes && len - head >= 8;
  if constexpr (Form::peels && !Block::oneWeight)
    for (int i = 1; i < 4; ++i) alike &= alignedHead(block.decidingOne(r + i * apart), len) == head;
  const auto each = [&](auto value) {
    return Form::four(value(r), value(r + apart), value(r + 2 * apart), value(r + 3 * apart));
  };
  if (!alike) [[unlikely]]
    return each([&](std::int32_t i) {
      return scoreRow<Form, weighting>(block.one(i), len, block.decidingOne(i), constants.one(i), score);
    });
  const typename Form::Four gconst = each([&](std::int32_t i) { return constants.one(i); });
  return score.finish(
      sumFourSingly<Form, weighting, Fold>(block.four(r, apart), len, head, score.start(gconst)), gconst);
}

// The scores of all rows, each summed as a single one. Rows that are four apart have the same head, whatever
// their step.
template <class Form, Weighting weighting, class Block, class Constants, class Score, class Sink>
[[gnu::always_inline]] inline void scoreRowsSingly(std::int32_t rows, std::int32_t len, const Block &block,
                                                   const Constants &constants, const Score &score,
                                                   Sink &&sink) {
  std::int32_t r = 0;
  if constexpr (Form::peels && !Block::oneWeight)
    for (; rows - r >= 16; r += 16) {
      typename Form::Four scores[4];
      for (int i = 0; i < 4; ++i)
        scores[i] = scoreFourSingly<Form, weighting>(r + i, 4, len, block, constants, score);
      transposeFours(scores);
      for (int i = 0; i < 4; ++i) sink.four(r + 4 * i, scores[i]);
    }
  for (; rows - r >= 4; r += 4)
    sink.four(r, scoreFourSingly<Form, weighting>(r, 1, len, block, constants, score));
  scoreRest<Form, weighting>(r, rows, len, block, constants, score, sink);
}

// The scores of all rows: four at a time, for the count rounded down to a multiple of four, then one by one.
// A group's four scores are complete before the sink sees the first.
template <class Form, Weighting weighting, class Block, class Constants, class Score, class Sink>
[[gnu::always_inline]] inline void scoreRows(std::int32_t rows, std::int32_t len, const Block &block,
                                             const Constants &constants, const Score &score, Sink &&sink) {
  using Fold = typename Score::Fold;
  using Four = typename Form::Four;
  std::int32_t head = Form::peels && rows >= 4 ? alignedHead(block.decidingFour(0), len) : 0;
  std::int32_t r = 0;
  if constexpr (Block::twoGroups) {
    if (rows >= 8 && len - head >= Form::Lanes::lanes)
      for (const auto eight = block.eightRows(); rows - r >= 8; r += 8) {
        const Four gconst[2] = {constants.template four<Form>(r), constants.template four<Form>(r + 4)};
        Four sums[2] = {score.start(gconst[0]), score.start(gconst[1])};
        sumGroups<Form, weighting, Fold>(eight(r), len, head, block.alignedEight(r), sums);
        sink.four(r, score.finish(sums[0], gconst[0]));
        sink.four(r + 4, score.finish(sums[1], gconst[1]));
      }
  }
  for (; rows - r >= 4; r += 4) {
    if (Form::peels && !Block::oneHead) head = alignedHead(block.decidingFour(r), len);
    const Four gconst = constants.template four<Form>(r);
    const Four sums =
        sumFourRows<Form, weighting, Fold>(block.four(r), len, head, block.aligned(r), score.start(gconst));
    sink.four(r, score.finish(sums, gconst));
  }
  scoreRest<Form, weighting>(r, rows, len, block, constants, score, sink);
}

// The scores of exact integer sums: of pairs of rows, from row r on, while their differences are small.
// Returns the first row that is left.
template <Weighting weighting, class Block, class Constants, class Score, class Sink>
inline std::int32_t scorePairsNarrowly(std::int32_t r, std::int32_t rows, std::int32_t len,
                                       const Block &block, const Constants &constants, const Score &score,
                                       Sink &&sink) {
  const std::int16_t bound = narrowBound(vectorsIn(len));
  const __m128i lastMask = lastOfEight(len);
  for (; rows - r >= 2; r += 2) {
    const Row<std::int16_t> pair[2] = {block.one(r), block.one(r + 1)};
    const auto sums = exactSums<NarrowSums<weighting, 2>>(pair, len, lastMask);
    if (!sums.below(bound)) break;
    sink.one(r, score(sums.total(0), constants.one(r)));
    sink.one(r + 1, score(sums.total(1), constants.one(r + 1)));
  }
  return r;
}

// The scores of all pairs of rows of eight elements or more, whatever the data. Out of line, where it takes
// no registers from the loop above.
template <Weighting weighting, class Block, class Constants, class Score, class Sink>
[[gnu::noinline]] void scorePairsWidely(std::int32_t r, std::int32_t rows, std::int32_t len,
                                        const Block &block, const Constants &constants, const Score &score,
                                        Sink &&sink) {
  for (; rows - r >= 2; r += 2) {
    const Row<std::int16_t> pair[2] = {block.one(r), block.one(r + 1)};
    const auto sums = exactSums<WideSums<weighting, 2>>(pair, len, lastOfEight(len));
    sink.one(r, score(sums.total(0), constants.one(r)));
    sink.one(r + 1, score(sums.total(1), constants.one(r + 1)));
  }
}

// All rows. Where differences are large they mostly stay so, and a few rows are spared the attempt.
template <Weighting weighting, class Block, class Constants, class Score, class Sink>
inline void scoreRowsExactly(std::int32_t rows, std::int32_t len, const Block &block,
                             const Constants &constants, const Score &score, Sink &&sink) {
  constexpr std::int32_t spared = 16;
  std::int32_t r = 0;
  if (len >= 8)
    while (rows - r >= 2) {
      r = scorePairsNarrowly<weighting>(r, rows, len, block, constants, score, sink);
      const std::int32_t end = r + std::min(spared, (rows - r) / 2 * 2);
      scorePairsWidely<weighting>(r, end, len, block, constants, score, sink);
      r = end;
    }
  for (; r < rows; ++r) sink.one(r, score(exactSumRow<weighting>(block.one(r), len), constants.one(r)));
}

}  // namespace orv::gauss

#endif
