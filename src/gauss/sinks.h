// What becomes of the scores of a block of rows.

#ifndef ORV_GAUSS_SINKS_H
#define ORV_GAUSS_SINKS_H

#include <algorithm>
#include <cstdint>
#include <type_traits>

#include "core/integer.h"
#include "core/logadd.h"
#include "gauss/forms.h"
#include "orvsr/core.h"
#include "primitives/memory.h"

namespace orv::gauss {

// Each score is written to its place.
template <class Form>
struct Store {
  typename Form::Sum *result;
  void four(std::int32_t r, typename Form::Four scores) const { Form::storeFour(result + r, scores); }
  void one(std::int32_t r, typename Form::Sum score) const { store(result + r, score); }
};

// Exact scores in 32 bits: saturated, or their low half, which wraps silently. The two are meant to differ.
struct StoreSaturated {
  std::int32_t *result;
  void one(std::int32_t r, std::int64_t score) const { store(result + r, sat32(score)); }
};
struct StoreWrapped {
  std::int32_t *result;
  void one(std::int32_t r, std::int64_t score) const { store(result + r, wrap32(score)); }
};

// The result keeps the greater of what it holds and the score; a NaN score leaves it as it is.
template <class Form>
struct KeepMaximum {
  typename Form::Sum *result;
  void four(std::int32_t r, typename Form::Four scores) const {
    Form::storeFour(result + r, max(scores, Form::loadFour(result + r)));
  }
  void one(std::int32_t r, typename Form::Sum score) const {
    if (score > load(result + r)) store(result + r, score);
  }
};

struct KeepMaximumSaturated {
  std::int32_t *result;
  void one(std::int32_t r, std::int64_t score) const {
    store(result + r, std::max(load(result + r), sat32(score)));
  }
};

// The comparison is made in 64 bits and only then is the score cut to 32: one beyond them wins, and wraps as
// it is stored. This is meant; KeepMaximumSaturated differs.
struct KeepMaximumWrapped {
  std::int32_t *result;
  void one(std::int32_t r, std::int64_t score) const {
    if (score >= load(result + r)) store(result + r, wrap32(score));
  }
};

inline void addLogs(const float *scores, float *results, std::int32_t count) {
  orvsLogAdd_32f(scores, results, count, orvAlgHintNone);
}
inline void addLogs(const double *scores, double *results, std::int32_t count) {
  orvsLogAdd_64f(scores, results, count, orvAlgHintNone);
}

// Each result grows by its score, in the log domain. Scores, which come in the order of the results, wait for
// one another and are added many at a time.
template <class Form>
class AddLog {
 public:
  using Sum = typename Form::Sum;

  explicit AddLog(Sum *results) : results_(results) {}
  AddLog(const AddLog &) = delete;
  AddLog &operator=(const AddLog &) = delete;
  ~AddLog() { addWaiting(); }

  void four(std::int32_t, typename Form::Four scores) {
    Form::storeFour(waiting_ + count_, scores);
    count_ += 4;
    if (count_ == kRoom) addWaiting();
  }
  void one(std::int32_t, Sum score) {
    store(waiting_ + count_, score);
    ++count_;
    if (count_ == kRoom) addWaiting();
  }

 private:
  static constexpr int kRoom = 96;  // fours come before ones, and fit

  void addWaiting() {
    if (count_ == 0) return;
    addLogs(waiting_, results_, count_);
    results_ += count_;
    count_ = 0;
  }

  Sum *results_;
  int count_ = 0;
  Sum waiting_[kRoom];
};

// The log-sum of all scores, in another grouping of its additions than AddLog's; strictly in the order of the
// rows. The first score starts it; what the result held before is never read. Scores wait for one another, so
// that the branches of the log-sum do not hold up the loops over features.
template <class Form, class Domain>
class Mixture {
 public:
  using Sum = typename Form::Sum;

  explicit Mixture(Sum *result) : result_(result) {}
  Mixture(const Mixture &) = delete;
  Mixture &operator=(const Mixture &) = delete;
  ~Mixture() {
    addWaiting();
    store(result_, running_);
  }

  void four(std::int32_t, typename Form::Four scores) {
    if (count_ > kRoom - 4) addWaiting();
    Form::storeFour(waiting_ + count_, scores);
    count_ += 4;
  }
  void one(std::int32_t, Sum score) {
    if (count_ > kRoom - 1) addWaiting();
    store(waiting_ + count_, score);
    ++count_;
  }

 private:
  static constexpr int kRoom = 64;
  static constexpr int kInTurn = std::is_same_v<Sum, float> ? 1 : 16;  // in double many cost less together
  // The drop threshold in the type of the sums: no value of that type lies between the two.
  static constexpr Sum dropAbove = static_cast<Sum>(-Domain::dropBelow);
  static_assert(static_cast<double>(dropAbove) <= -Domain::dropBelow);

  [[gnu::noinline]] void addWaiting() {
    int i = 0;
    if (!started_) running_ = waiting_[i++];
    started_ = true;
    Sum running = running_;
    while (i < count_) {
      // Most scores lie so far below the running value that they are dropped and leave it as it is, unless
      // the floor takes its place: that one may lie lower, and keep a score that would have been dropped.
      if (count_ - i >= 4 &&
          allGreater(Form::splat(running) - Form::loadFour(waiting_ + i), Form::splat(dropAbove)) &&
          Domain::floored(running) == running) {
        i += 4;
      } else {
        const int more = std::min(count_ - i, kInTurn);
        running = addInTurn<Grouping::constantLast>(domain_, running, waiting_ + i, more);
        i += more;
      }
    }
    running_ = running;
    count_ = 0;
  }

  Domain domain_;
  Sum running_ = 0;
  bool started_ = false;
  int count_ = 0;
  Sum waiting_[kRoom];
  Sum *result_;
};

}  // namespace orv::gauss

#endif
