// From sums to scores, and the walk over the rows. A family is put together from
//
//   a block      which rows meet which vector                          rows.h
//   a form       the number types of elements and sums                 forms.h, exact.h
//   a score      where the 1/2, the gconst and the scale enter         here
//   a sink       what becomes of a score                               sinks.h

#ifndef ORV_GAUSS_SCORE_H
#define ORV_GAUSS_SCORE_H

#include <cstdint>

#include "core/integer.h"
#include "core/scale.h"
#include "gauss/distance.h"
#include "gauss/exact.h"
#include "gauss/rows.h"

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

// gconst - (sum >> factor), saturated or wrapped to 32 bits. The sum is positive when it is shifted, so it
// rounds down and the score up.
struct ExactScore {
  std::int64_t shift;
  bool saturated;
  std::int32_t operator()(std::int64_t sum, std::int32_t gconst) const {
    const std::int64_t score = subWrap64(gconst, shiftSum(sum, shift));
    return saturated ? sat32(score) : wrap32(score);
  }
};

// The scores of all rows: four at a time, for the count rounded down to a multiple of four, then one by one.
// A group's four scores are complete before the sink sees the first.
template <class Form, Weighting weighting, class Block, class Constants, class Score, class Sink>
inline void scoreRows(std::int32_t rows, std::int32_t len, const Block &block, const Constants &constants,
                      const Score &score, Sink &&sink) {
  using Fold = typename Score::Fold;
  std::int32_t r = 0;
  for (; rows - r >= 4; r += 4) {
    const std::int32_t head = Form::peels ? alignedHead(block.decidingFour(r), len) : 0;
    const typename Form::Four gconst = constants.template four<Form>(r);
    const auto sums = sumFourRows<Form, weighting, Fold>(block.four(r), len, head, score.start(gconst));
    sink.four(r, score.finish(sums, gconst));
  }
  for (; r < rows; ++r) {
    const std::int32_t head = Form::peels ? alignedHead(block.decidingOne(r), len) : 0;
    const typename Form::Sum gconst = constants.one(r);
    const auto sum = sumRow<Form, weighting, Fold>(block.one(r), len, head, score.start(gconst));
    sink.one(r, score.finish(sum, gconst));
  }
}

// The same for exact integer sums, where groups change nothing.
template <Weighting weighting, class Block, class Constants, class Score, class Sink>
inline void scoreRowsExactly(std::int32_t rows, std::int32_t len, const Block &block,
                             const Constants &constants, const Score &score, Sink &&sink) {
  for (std::int32_t r = 0; r < rows; ++r)
    sink.one(r, score(exactSumRow<weighting>(block.one(r), len), constants.one(r)));
}

}  // namespace orv::gauss

#endif
