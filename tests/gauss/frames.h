// The families over frames as tests see them: members of one argument list, blocks of frames to call them
// with, and what becomes of each result.

#ifndef ORV_TESTS_GAUSS_FRAMES_H
#define ORV_TESTS_GAUSS_FRAMES_H

#include <functional>

#include "gauss/reference.h"
#include "support/logdomain.h"

namespace orv::test {

template <class T, class R>
struct Types {
  using Elem = T;
  using Result = R;
};
// Of feature values and of scores, in most families.
using ScoreTypes = ::testing::Types<Types<float, float>, Types<double, double>,
                                    Types<std::int16_t, std::int32_t>, Types<std::int16_t, float>>;

template <class T, class R>
struct FrameArguments {
  const T *src;
  const T *const *rows;
  std::int32_t step;
  const T *mean, *var;
  std::int32_t featLen;
  R *result;
  std::int32_t frames;
  R gconst;
  std::int32_t scaleFactor;
};

template <class T, class R>
struct FrameMember {
  const char *name;
  Layout layout;
  bool weighted;
  bool low;
  std::function<OrvStatus(const FrameArguments<T, R> &)> call;
};

// What follows the number of frames: nothing, gconst alone, gconst and scale factor, or, of the Scaled forms,
// scale factor and gconst.
template <class R, class A, class F>
OrvStatus withFrameTail(const A &a, F &&f) {
  if constexpr (std::is_invocable_v<F>)
    return f();
  else if constexpr (std::is_invocable_v<F, R>)
    return f(a.gconst);
  else if constexpr (std::is_integral_v<R>)
    return f(a.gconst, a.scaleFactor);
  else
    return f(a.scaleFactor, a.gconst);
}

template <class T, class R, class... Tail>
FrameMember<T, R> frameMember(const char *name,
                              OrvStatus (*f)(const T *, int32_t, const T *, const T *, int32_t, R *, int32_t,
                                             Tail...),
                              bool low = false) {
  return {name, Layout::strided, true, low, [f](const FrameArguments<T, R> &a) {
            return withFrameTail<R>(a, [&](Tail... tail) {
              return f(a.src, a.step, a.mean, a.var, a.featLen, a.result, a.frames, tail...);
            });
          }};
}
template <class T, class R, class... Tail>
FrameMember<T, R> frameMember(const char *name,
                              OrvStatus (*f)(const T *const *, const T *, const T *, int32_t, R *, int32_t,
                                             Tail...),
                              bool low = false) {
  return {name, Layout::pointers, true, low, [f](const FrameArguments<T, R> &a) {
            return withFrameTail<R>(a, [&](Tail... tail) {
              return f(a.rows, a.mean, a.var, a.featLen, a.result, a.frames, tail...);
            });
          }};
}
template <class T, class R, class... Tail>
FrameMember<T, R> frameMember(const char *name,
                              OrvStatus (*f)(const T *, int32_t, const T *, int32_t, R *, int32_t, Tail...),
                              bool low = false) {
  return {name, Layout::strided, false, low, [f](const FrameArguments<T, R> &a) {
            return withFrameTail<R>(a, [&](Tail... tail) {
              return f(a.src, a.step, a.mean, a.featLen, a.result, a.frames, tail...);
            });
          }};
}
template <class T, class R, class... Tail>
FrameMember<T, R> frameMember(const char *name,
                              OrvStatus (*f)(const T *const *, const T *, int32_t, R *, int32_t, Tail...),
                              bool low = false) {
  return {name, Layout::pointers, false, low, [f](const FrameArguments<T, R> &a) {
            return withFrameTail<R>(
                a, [&](Tail... tail) { return f(a.rows, a.mean, a.featLen, a.result, a.frames, tail...); });
          }};
}

// One frame and its Gaussian. `deciding` is the pointer whose alignment groups the sum.
template <class T, class R>
struct FrameCase {
  const std::vector<T> &frame, &mean, &var;
  const T *deciding;
  std::size_t accumulators;
  R gconst;
  std::int32_t scaleFactor;
  bool low;
};

template <class T, class R>
std::int64_t exactSum(const FrameCase<T, R> &c) {
  std::int64_t sum = 0;
  for (const std::int64_t t : termsOf<std::int64_t>(c.frame, c.mean, c.var)) sum += t;
  return sum;
}

// The floating-point score: the constant doubled first and all halved last; of 16s frames, scaled last.
template <class T, class R>
R frameScore(const FrameCase<T, R> &c, bool low) {
  const std::vector<R> terms = termsOf<R>(c.frame, c.mean, c.var);
  if constexpr (std::is_integral_v<T>) {
    const R factor = low ? scaleOf(c.scaleFactor) * 0.5F : scaleOf(std::int64_t{c.scaleFactor} + 1);
    return c.gconst - groupedSum(R{0}, R{1}, terms, 0, c.accumulators) * factor;
  } else {
    const std::size_t head = headOf(c.deciding, terms.size());
    return groupedSum(c.gconst + c.gconst, R{-1}, terms, head, c.accumulators) * R{0.5};
  }
}

// What a family makes of a frame: the result it finds and the one it owes. Families that take frames in fours
// group the sums of those by another rule.
template <class T, class R>
struct FrameFamily {
  bool inFours;
  std::function<R(const FrameCase<T, R> &, Random &)> before;
  std::function<R(const FrameCase<T, R> &, R before)> after;
};

// With whole numbers the groups make no difference, and the formula alone must give the same.
template <class T, class R>
FrameFamily<T, R> scoreFamily() {
  return {true, [](const FrameCase<T, R> &, Random &) { return R{77}; },
          [](const FrameCase<T, R> &c, R) {
            if constexpr (std::is_same_v<R, std::int32_t>) {
              return exactScore(exactSum(c), c.gconst, c.scaleFactor, c.low);
            } else {
              const R score = frameScore(c, c.low);
              if (std::is_integral_v<T> || c.mean[0] != std::trunc(c.mean[0])) return score;
              double sum = 0;
              for (std::size_t j = 0; j < c.mean.size(); ++j)
                sum += std::pow(static_cast<double>(c.frame[j] - c.mean[j]), 2) *
                       static_cast<double>(c.var.empty() ? T{1} : c.var[j]);
              EXPECT_EQ(score, static_cast<R>(static_cast<double>(c.gconst) - sum / 2));
              return score;
            }
          }};
}

// gconst + (-sum >> (scaleFactor + 1)), rounded down, in 64 bits.
inline std::int64_t negatedScore(std::int64_t sum, std::int32_t gconst, std::int32_t scaleFactor) {
  return wrappedSum(gconst, shifted(-sum, std::int64_t{scaleFactor} + 1));
}

// Results stand just above, at and just below the score, and far from it.
template <class T, class R>
FrameFamily<T, R> maxFamily() {
  if constexpr (std::is_integral_v<R>) {
    return {true,
            [](const FrameCase<T, R> &c, Random &random) {
              const std::int64_t score = saturated(negatedScore(exactSum(c), c.gconst, c.scaleFactor));
              const std::int64_t choices[] = {INT32_MIN, score - 1, score, score + 1,
                                              static_cast<std::int32_t>(random())};
              return saturated(choices[random() % 5]);
            },
            [](const FrameCase<T, R> &c, R before) {
              const std::int64_t score = negatedScore(exactSum(c), c.gconst, c.scaleFactor);
              if (c.low) return score >= before ? static_cast<R>(score) : before;
              return std::max(before, saturated(score));
            }};
  } else {
    return {true,
            [](const FrameCase<T, R> &c, Random &random) {
              const R score = frameScore(c, c.low);
              const R least = std::numeric_limits<R>::lowest();
              const R choices[] = {std::nextafter(score, least), score, std::nextafter(score, -least), least};
              return choices[random() % 4];
            },
            [](const FrameCase<T, R> &c, R before) {
              const R score = frameScore(c, c.low);
              return score > before ? score : before;
            }};
  }
}

// In one family the factors of the LowScaled members are those of the Scaled ones.
enum class LowFactor { own, ofScaled };

template <class T, class R>
FrameFamily<T, R> addFamily(LowFactor factor) {
  const auto score = [factor](const FrameCase<T, R> &c) {
    return frameScore(c, c.low && factor == LowFactor::own);
  };
  return {false,
          [score](const FrameCase<T, R> &c, Random &random) {
            return random() % 8 == 0 ? score(c) : score(c) + uniform<R>(random, 1, -25, 25)[0];
          },
          [score](const FrameCase<T, R> &c, R before) { return logStep(before, score(c), false); }};
}

enum class Data { random, whole };

// Whole numbers are integers whose differences mostly fit 16 bits.
template <class T>
std::vector<T> draw(Random &random, std::size_t len, Data data, double low = -3) {
  if constexpr (std::is_integral_v<T>) {
    std::vector<T> values = integersOrAnEnd<T>(random, len);
    if (data == Data::whole && random() % 16 != 0)
      for (T &v : values) v = static_cast<T>(v >> 2);
    return values;
  } else
    return data == Data::whole ? wholeNumbers<T>(random, len, 9) : uniform<T>(random, len, low, 3);
}

template <class T, class R>
void checkFrames(const FrameMember<T, R> &member, const FrameFamily<T, R> &family, Random &random,
                 std::size_t rows, std::size_t len, std::size_t offset, Data data, std::int32_t scaleFactor) {
  std::vector<std::vector<T>> frames(rows);
  const std::vector<T> mean = draw<T>(random, len, data);
  for (auto &frame : frames) frame = random() % 8 == 0 ? mean : draw<T>(random, len, data);
  const std::vector<T> var = member.weighted ? draw<T>(random, len, data, 0) : std::vector<T>{};
  const R gconst = draw<R>(random, 1, data)[0] * static_cast<R>(random() % 2);

  // All rows and vectors at the same distance from a 16-byte boundary, or each at one of its own.
  const bool together = random() % 2 == 0;
  const auto step = static_cast<std::int32_t>(together ? (len + 7) / 8 * 8 : len + random() % 4);
  const Matrix<T> matrix(member.layout, frames, step, offset, together ? strayOf(random, rows) : 1);
  const Guarded<T> means(mean, together ? offset : (11 * offset + 3 * len) % 16);
  const Guarded<T> vars(var, together ? offset : (7 * offset + len) % 16);
  Guarded<R> results(rows, (3 * offset + 1) % 16);
  std::vector<FrameCase<T, R>> cases;
  for (std::size_t r = 0; r < rows; ++r) {
    const bool inFour = family.inFours && r < rows / 4 * 4;
    const T *deciding = inFour && member.layout == Layout::strided ? matrix.row(r / 4 * 4 + 3)
                        : member.weighted                          ? vars.data()
                                                                   : means.data();
    cases.push_back({frames[r], mean, var, deciding, inFour ? 1U : 2U, gconst, scaleFactor, member.low});
    results.set(r, family.before(cases[r], random));
  }
  const std::vector<R> before = results.values();
  ASSERT_EQ(member.call({matrix.base(), matrix.pointers(), step, means.data(), vars.data(),
                         static_cast<std::int32_t>(len), results.data(), static_cast<std::int32_t>(rows),
                         gconst, scaleFactor}),
            orvStsNoErr);
  for (std::size_t r = 0; r < rows; ++r)
    ASSERT_TRUE(sameBits(results.at(r), family.after(cases[r], before[r])))
        << "row " << r << " of " << rows << ", length " << len << ", offset " << offset << ", scale factor "
        << scaleFactor << ", before " << before[r];
}

// Every length to 40 at every alignment, in blocks of all kinds; a quarter of the addresses in turn.
template <class T, class R>
void sweepFrames(const std::vector<FrameMember<T, R>> &members, const FrameFamily<T, R> &family) {
  Random random(1);
  for (const auto &member : members) {
    SCOPED_TRACE(member.name);
    for (std::size_t len = 1; len <= 40; ++len)
      for (const std::size_t rows : {1U, 2U, 3U, 4U, 5U, 8U, 13U})
        for (std::size_t offset = (len + rows) % 4; offset < 16; offset += 4)
          for (const Data data : {Data::random, Data::whole}) {
            checkFrames(member, family, random, rows, len, offset, data,
                        static_cast<std::int32_t>(random() % 48) - 8);
            if (::testing::Test::HasFatalFailure()) return;
          }
    for (std::size_t rows = 60; rows < 330; rows += 11)  // more than wait for one another
      checkFrames(member, family, random, rows, 1 + rows % 9, rows % 16, Data::random, 3);
  }
}

template <class R>
void sweepScaleFactors(const std::vector<FrameMember<std::int16_t, R>> &members,
                       const FrameFamily<std::int16_t, R> &family) {
  Random random(2);
  for (const auto &member : members) {
    SCOPED_TRACE(member.name);
    for (const std::int32_t scaleFactor : scaleFactors())
      for (std::size_t n = 0; n < 40; ++n)
        checkFrames(member, family, random, 1 + n % 5, 1 + n % 9, 0, Data::random, scaleFactor);
  }
}

// The order of checks of every family over frames: stride, pointers, sizes.
template <class T, class R>
void checkOrderOfFrames(const std::vector<FrameMember<T, R>> &members) {
  enum : unsigned { stride = 1, src = 2, mean = 4, var = 8, result = 16, length = 32, frames = 64 };
  const T row[4] = {};
  const T *const rows[1] = {row};
  for (const auto &member : members) {
    SCOPED_TRACE(member.name);
    std::vector<Fault> order{{src, orvStsNullPtrErr},
                             {mean, orvStsNullPtrErr},
                             {result, orvStsNullPtrErr},
                             {length, orvStsSizeErr},
                             {frames, orvStsSizeErr}};
    if (member.weighted) order.insert(order.begin(), {var, orvStsNullPtrErr});
    if (member.layout == Layout::strided) order.insert(order.begin(), {stride, orvStsStrideErr});
    Guarded<R> results(1);
    for (const std::int32_t badSize : {0, -1, INT32_MIN + 1})
      expectOrderOfChecks(order, [&](unsigned faults) {
        const auto given = [faults](unsigned bit, const auto *p) {
          return (faults & bit) != 0 ? nullptr : p;
        };
        const std::int32_t featLen = (faults & length) != 0 ? badSize : 4;
        return member.call({given(src, row), given(src, rows), (faults & stride) != 0 ? featLen - 1 : featLen,
                            given(mean, row), given(var, row), featLen,
                            (faults & result) != 0 ? nullptr : results.data(),
                            (faults & frames) != 0 ? badSize : 1, R{0}, 0});
      });
    EXPECT_TRUE(results.untouched());
  }
}

}  // namespace orv::test

#endif
