// What the cases of Gaussian scoring share: sizes, data, and the plain loop.

#ifndef ORV_BENCH_SCORING_H
#define ORV_BENCH_SCORING_H

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <tuple>
#include <type_traits>

#include "bench/data.h"
#include "bench/ratio.h"
#include "orvsr/gauss.h"

#if ORV_BENCH_EIGEN
#include <Eigen/Core>
#endif

namespace orv::bench {

// Rows of len values each. What is aimed at holds for 1024 rows of 39.
struct Size {
  std::int32_t len, rows;
  std::string text() const { return std::to_string(len) + "x" + std::to_string(rows); }
  bool isMain() const { return len == 39 && rows == 1024; }
  double aim(double ratio) const { return isMain() ? ratio : 0.0; }
};
inline constexpr Size kSizes[] = {{13, 1},    {13, 32}, {13, 1024}, {39, 1},   {39, 32},
                                  {39, 1024}, {60, 1},  {60, 32},   {60, 1024}};

inline constexpr std::int32_t kScaleFactor = 28;
inline constexpr std::int32_t kFrames = 8;  // of the families that take a block of both

// Limits of the numbers, which leave scores of either kind at some -40.
template <class T>
struct Limits {
  double rows = 2.0, vector = 1.0, leastWeight = 0.5, mostWeight = 2.0;
};
template <>
struct Limits<std::int16_t> {
  double rows = 2000.0, vector = 1000.0, leastWeight = 100.0, mostWeight = 200.0;
};

// Rows, and weights for each of them; a vector, or a few; constants and results for each row.
template <class T, class R>
struct Scoring {
  Size size;
  Array<T> rows, weights, vectors;
  Array<R> constants, results;

  explicit Scoring(Size s)
      : size(s),
        rows(beginningOf(pools().rows, s.rows)),
        weights(beginningOf(pools().weights, s.rows)),
        vectors(beginningOf(pools().vectors, kFrames)),
        constants(static_cast<std::size_t>(s.rows), static_cast<R>(-30)),
        results(static_cast<std::size_t>(std::max(s.rows, kFrames)), static_cast<R>(-1000)) {}

  const T *row(std::int32_t r) const { return &rows[at(r)]; }
  const T *weightsOf(std::int32_t r) const { return &weights[at(r)]; }
  // The same as arrays of row pointers.
  const T *const *rowPointers() { return pointersTo(rows, rowPointers_); }
  const T *const *weightPointers() { return pointersTo(weights, weightPointers_); }

 private:
  const T *const *pointersTo(const Array<T> &of, Array<const T *> &pointers) {
    for (auto r = static_cast<std::int32_t>(pointers.size()); r < size.rows; ++r)
      pointers.push_back(&of[at(r)]);
    return pointers.data();
  }
  Array<const T *> rowPointers_, weightPointers_;

  // The numbers of the largest size, which are made once.
  struct Pools {
    static constexpr std::size_t len = std::size_t{1024} * 60;
    static constexpr Limits<T> limits{};
    Array<T> rows = uniform<T>(len, -limits.rows, limits.rows, 1);
    Array<T> weights = uniform<T>(len, limits.leastWeight, limits.mostWeight, 2);
    Array<T> vectors = uniform<T>(len, -limits.vector, limits.vector, 3);
  };
  static const Pools &pools() {
    static const Pools all;
    return all;
  }
  std::size_t at(std::int32_t r) const {
    return static_cast<std::size_t>(r) * static_cast<std::size_t>(size.len);
  }
  Array<T> beginningOf(const Array<T> &all, std::int32_t count) const {
    return Array<T>(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(at(count)));
  }
};

// --- the plain loop

enum class Weights { none, times, divided };
enum class Then { store, replaceConstant, keepMaximum, addLog, mixture };

// How a family's rows are scored. The constant and the weights are one for all rows, or each row's own.
struct Family {
  Weights weights;
  bool eachItsOwn;
  Then then;
};

// The type that sums are formed in, by the type of the results.
template <class R>
using SumOf = std::conditional_t<std::is_integral_v<R>, std::int64_t, R>;

struct PlainSum {
  template <class S, Weights weights, class T>
  static S sum(const T *a, const T *b, const T *w, std::int32_t len) {
    S sum = 0;
    for (std::int32_t j = 0; j < len; ++j) {
      const S d = static_cast<S>(a[j]) - static_cast<S>(b[j]);
      if constexpr (weights == Weights::none) sum += d * d;
      if constexpr (weights == Weights::times) sum += d * d * static_cast<S>(w[j]);
      if constexpr (weights == Weights::divided) sum += d * d / static_cast<S>(w[j]);
    }
    return sum;
  }
};

#if ORV_BENCH_EIGEN
struct EigenSum {
  template <class S, Weights weights, class T>
  static S sum(const T *a, const T *b, const T *w, std::int32_t len) {
    using Map = Eigen::Map<const Eigen::Array<T, 1, Eigen::Dynamic>>;
    if constexpr (weights == Weights::none) return (Map(a, len) - Map(b, len)).square().sum();
    return ((Map(a, len) - Map(b, len)).square() * Map(w, len)).sum();
  }
};
#endif

// Not known to the compiler, as they are not to the library.
inline volatile float halvedScale = 1.0F / (1 << 29);
inline volatile std::int32_t shiftOfSums = kScaleFactor + 1;

template <class T, class R>
R scoreOf(SumOf<R> sum, R constant, SumOf<R> factor) {
  if constexpr (std::is_integral_v<R>)
    return static_cast<R>(std::clamp<std::int64_t>(constant - (sum >> factor), std::numeric_limits<R>::min(),
                                                   std::numeric_limits<R>::max()));
  else
    return constant - sum * factor;
}
template <class T, class R>
SumOf<R> scoreFactor() {
  if constexpr (std::is_integral_v<R>) return shiftOfSums;
  if constexpr (std::is_integral_v<T>) return static_cast<SumOf<R>>(halvedScale);
  return static_cast<SumOf<R>>(0.5);
}

template <class R>
R logSum(R a, R b) {
  const double larger = a > b ? a : b;
  const double d = a > b ? b - a : a - b;
  return static_cast<R>(larger + std::log1p(std::exp(d)));
}

template <Family family, class Sum, class T, class R>
[[gnu::noinline]] void scorePlainly(Scoring<T, R> &in) {
  const std::int32_t len = in.size.len;
  const auto factor = scoreFactor<T, R>();
  R running = 0;
  for (std::int32_t r = 0; r < in.size.rows; ++r) {
    const auto i = static_cast<std::size_t>(r);
    const auto sum = Sum::template sum<SumOf<R>, family.weights>(
        in.row(r), in.vectors.data(), in.weightsOf(family.eachItsOwn ? r : 0), len);
    const R constant =
        family.then == Then::replaceConstant ? in.results[i] : in.constants[family.eachItsOwn ? i : 0];
    const R score = scoreOf<T, R>(sum, constant, factor);
    if constexpr (family.then == Then::store || family.then == Then::replaceConstant) in.results[i] = score;
    if constexpr (family.then == Then::keepMaximum)
      if (score > in.results[i]) in.results[i] = score;
    if constexpr (family.then == Then::addLog) in.results[i] = logSum(in.results[i], score);
    if constexpr (family.then == Then::mixture) running = r == 0 ? score : logSum(running, score);
  }
  if constexpr (family.then == Then::mixture) in.results[0] = running;
}

// Constants that put the scores of all rows between -55 and -45, so that none is dropped from their log-sum.
template <Family family, class T, class R>
void drawTogether(Scoring<T, R> &in) {
  if constexpr (std::is_floating_point_v<R>) {
    const Array<R> places = uniform<R>(in.constants.size(), -55.0, -45.0, 4);
    for (std::int32_t r = 0; r < in.size.rows; ++r) {
      const auto i = static_cast<std::size_t>(r);
      const auto sum =
          PlainSum::sum<SumOf<R>, family.weights>(in.row(r), in.vectors.data(), in.weightsOf(r), in.size.len);
      in.constants[i] = places[i] + sum * scoreFactor<T, R>();
    }
  }
}

template <class T, class R>
double aimOf(Then then) {
  if (then == Then::addLog || then == Then::mixture || std::is_same_v<R, double>) return 2.0;
  return std::is_integral_v<R> ? 3.0 : 4.0;
}

// Rows of the table: a member of a family in all sizes, beside the plain loop, Eigen, and the member that
// takes row pointers. Double precision is measured in one size.
template <Family family, class T, class R, class Ours, class Pointers>
void addMember(const std::string &name, Ours ours, Pointers pointers) {
  for (const Size size : kSizes) {
    if (std::is_same_v<R, double> && !size.isMain()) continue;
    const auto on = [size](auto work) {
      return [size, work] {
        Scoring<T, R> in(size);
        if (family.then == Then::mixture) drawTogether<family>(in);
        return [work, data = std::move(in)]() mutable { work(data); };
      };
    };
    Case member("gauss/" + name, size.text());
    member.ours(on(ours)).peer("plain scalar", size.aim(aimOf<T, R>(family.then)),
                               on(scorePlainly<family, PlainSum, T, R>));
    constexpr bool simple = family.then != Then::addLog && family.then != Then::mixture;
    if constexpr (std::is_same_v<T, float> && std::is_same_v<R, float> && simple &&
                  family.weights != Weights::divided) {
#if ORV_BENCH_EIGEN
      member.peer("Eigen", size.aim(1.3), on(scorePlainly<family, EigenSum, T, R>));
#endif
    }
    member.peer("row pointers", 0.0, on(pointers));
  }
}

// Lists of types, by which members are told apart: the arguments that those with a step and those with row
// pointers have in common.
template <class... Types>
struct List {};

template <class Member, class... Arguments>
void call(Member member, std::tuple<Arguments...> matrices, auto others) {
  std::apply(member, std::tuple_cat(matrices, others));
}

}  // namespace orv::bench

#endif
