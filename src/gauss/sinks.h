// What becomes of the scores of a block of rows.

#ifndef ORV_GAUSS_SINKS_H
#define ORV_GAUSS_SINKS_H

#include <cstdint>

#include "core/logadd.h"
#include "gauss/forms.h"
#include "primitives/memory.h"

namespace orv::gauss {

// Each score is written to its place.
template <class Form>
struct Store {
  typename Form::Sum *result;
  void four(std::int32_t r, typename Form::Four scores) const { Form::storeFour(result + r, scores); }
  void one(std::int32_t r, typename Form::Sum score) const { store(result + r, score); }
};

struct StoreExact {
  std::int32_t *result;
  void one(std::int32_t r, std::int32_t score) const { store(result + r, score); }
};

// The log-sum of all scores, strictly in the order of the rows. The first score starts it; what the result
// held before is never read.
template <class Form, class Domain>
class Mixture {
 public:
  using Sum = typename Form::Sum;

  explicit Mixture(Sum *result) : result_(result) {}

  void four(std::int32_t r, typename Form::Four scores) {
    Sum each[4];
    Form::storeFour(each, scores);
    for (int i = 0; i < 4; ++i) one(r + i, each[i]);
  }
  void one(std::int32_t r, Sum score) {
    running_ = r == 0 ? score : logAddStep<Grouping::constantLast>(domain_, running_, score);
    store(result_, running_);
  }

 private:
  Domain domain_;
  Sum running_ = 0;
  Sum *result_;
};

}  // namespace orv::gauss

#endif
