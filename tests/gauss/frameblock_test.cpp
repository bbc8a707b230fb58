// orvsLogGauss_*: every member against one reference that sums in the promised groups.

#include <gtest/gtest.h>

#include <functional>

#include "gauss/reference.h"

namespace orv::test {
namespace {

template <class T, class R>
struct Arguments {
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
struct Member {
  const char *name;
  Layout layout;
  bool weighted;
  bool low;
  std::function<OrvStatus(const Arguments<T, R> &)> call;
};

// What follows the number of frames: gconst alone, gconst and scale factor, or, of the Scaled forms, scale
// factor and gconst.
template <class R, class A, class F>
OrvStatus withTail(const A &a, F &&f) {
  if constexpr (std::is_invocable_v<F, R>)
    return f(a.gconst);
  else if constexpr (std::is_integral_v<R>)
    return f(a.gconst, a.scaleFactor);
  else
    return f(a.scaleFactor, a.gconst);
}

template <class T, class R, class... Tail>
Member<T, R> member(const char *name,
                    OrvStatus (*f)(const T *, int32_t, const T *, const T *, int32_t, R *, int32_t, Tail...),
                    bool low = false) {
  return {name, Layout::strided, true, low, [f](const Arguments<T, R> &a) {
            return withTail<R>(a, [&](Tail... tail) {
              return f(a.src, a.step, a.mean, a.var, a.featLen, a.result, a.frames, tail...);
            });
          }};
}
template <class T, class R, class... Tail>
Member<T, R> member(const char *name,
                    OrvStatus (*f)(const T *const *, const T *, const T *, int32_t, R *, int32_t, Tail...),
                    bool low = false) {
  return {name, Layout::pointers, true, low, [f](const Arguments<T, R> &a) {
            return withTail<R>(a, [&](Tail... tail) {
              return f(a.rows, a.mean, a.var, a.featLen, a.result, a.frames, tail...);
            });
          }};
}
template <class T, class R, class... Tail>
Member<T, R> member(const char *name,
                    OrvStatus (*f)(const T *, int32_t, const T *, int32_t, R *, int32_t, Tail...),
                    bool low = false) {
  return {name, Layout::strided, false, low, [f](const Arguments<T, R> &a) {
            return withTail<R>(a, [&](Tail... tail) {
              return f(a.src, a.step, a.mean, a.featLen, a.result, a.frames, tail...);
            });
          }};
}
template <class T, class R, class... Tail>
Member<T, R> member(const char *name,
                    OrvStatus (*f)(const T *const *, const T *, int32_t, R *, int32_t, Tail...),
                    bool low = false) {
  return {name, Layout::pointers, false, low, [f](const Arguments<T, R> &a) {
            return withTail<R>(
                a, [&](Tail... tail) { return f(a.rows, a.mean, a.featLen, a.result, a.frames, tail...); });
          }};
}

template <class T, class R>
std::vector<Member<T, R>> members() {
  if constexpr (std::is_same_v<T, float>) {
    return {member("32f_D2", orvsLogGauss_32f_D2), member("32f_D2L", orvsLogGauss_32f_D2L),
            member("IdVar_32f_D2", orvsLogGauss_IdVar_32f_D2),
            member("IdVar_32f_D2L", orvsLogGauss_IdVar_32f_D2L)};
  } else if constexpr (std::is_same_v<T, double>) {
    return {member("64f_D2", orvsLogGauss_64f_D2), member("64f_D2L", orvsLogGauss_64f_D2L),
            member("IdVar_64f_D2", orvsLogGauss_IdVar_64f_D2),
            member("IdVar_64f_D2L", orvsLogGauss_IdVar_64f_D2L)};
  } else if constexpr (std::is_same_v<R, std::int32_t>) {
    return {member("D2Sfs", orvsLogGauss_16s32s_D2Sfs),
            member("D2LSfs", orvsLogGauss_16s32s_D2LSfs),
            member("Low D2Sfs", orvsLogGauss_Low_16s32s_D2Sfs, true),
            member("Low D2LSfs", orvsLogGauss_Low_16s32s_D2LSfs, true),
            member("IdVar D2Sfs", orvsLogGauss_IdVar_16s32s_D2Sfs),
            member("IdVar D2LSfs", orvsLogGauss_IdVar_16s32s_D2LSfs),
            member("IdVarLow D2Sfs", orvsLogGauss_IdVarLow_16s32s_D2Sfs, true),
            member("IdVarLow D2LSfs", orvsLogGauss_IdVarLow_16s32s_D2LSfs, true)};
  } else {
    return {member("Scaled D2", orvsLogGauss_Scaled_16s32f_D2),
            member("Scaled D2L", orvsLogGauss_Scaled_16s32f_D2L),
            member("LowScaled D2", orvsLogGauss_LowScaled_16s32f_D2, true),
            member("LowScaled D2L", orvsLogGauss_LowScaled_16s32f_D2L, true),
            member("IdVarScaled D2", orvsLogGauss_IdVarScaled_16s32f_D2),
            member("IdVarScaled D2L", orvsLogGauss_IdVarScaled_16s32f_D2L),
            member("IdVarLowScaled D2", orvsLogGauss_IdVarLowScaled_16s32f_D2, true),
            member("IdVarLowScaled D2L", orvsLogGauss_IdVarLowScaled_16s32f_D2L, true)};
  }
}

// The score of one frame. `deciding` is the pointer whose alignment groups the sum.
template <class T, class R>
R expected(const std::vector<T> &frame, const std::vector<T> &mean, const std::vector<T> &var,
           const T *deciding, bool inFour, R gconst, std::int32_t scaleFactor, bool low) {
  const std::size_t accumulators = inFour ? 1 : 2;
  if constexpr (std::is_same_v<R, std::int32_t>) {
    std::int64_t sum = 0;
    for (const std::int64_t t : termsOf<std::int64_t>(frame, mean, var)) sum += t;
    return exactScore(sum, gconst, scaleFactor, low);
  } else if constexpr (std::is_same_v<T, std::int16_t>) {
    const float factor = low ? scaleOf(scaleFactor) * 0.5F : scaleOf(std::int64_t{scaleFactor} + 1);
    return gconst - groupedSum(0.0F, 1.0F, termsOf<float>(frame, mean, var), 0, accumulators) * factor;
  } else {
    const std::vector<R> terms = termsOf<R>(frame, mean, var);
    return groupedSum(gconst + gconst, R{-1}, terms, headOf(deciding, terms.size()), accumulators) * R{0.5};
  }
}

enum class Data { random, whole };

template <class T>
std::vector<T> draw(Random &random, std::size_t len, Data data, double low = -3) {
  if constexpr (std::is_integral_v<T>)
    return anyIntegers<T>(random, len);
  else
    return data == Data::whole ? wholeNumbers<T>(random, len, 9) : uniform<T>(random, len, low, 3);
}

template <class T, class R>
class FrameBlock {
 public:
  FrameBlock(const Member<T, R> &member, Random &random) : member_(member), random_(random) {}

  void check(std::size_t rows, std::size_t len, std::size_t offset, Data data, std::int32_t scaleFactor) {
    std::vector<std::vector<T>> frames(rows);
    const std::vector<T> mean = draw<T>(random_, len, data);
    for (auto &frame : frames) frame = random_() % 8 == 0 ? mean : draw<T>(random_, len, data);
    const std::vector<T> var = member_.weighted ? draw<T>(random_, len, data, 0) : std::vector<T>{};
    const R gconst = draw<R>(random_, 1, data)[0] * static_cast<R>(random_() % 2);

    const auto step = static_cast<std::int32_t>(len + random_() % 4);
    const Matrix<T> matrix(member_.layout, frames, step, offset);
    const Guarded<T> means(mean, (11 * offset + 3 * len) % 16);
    const Guarded<T> vars(var, (7 * offset + len) % 16);
    Guarded<R> results(rows, (3 * offset + 1) % 16);
    ASSERT_EQ(member_.call({matrix.base(), matrix.pointers(), step, means.data(), vars.data(),
                            static_cast<std::int32_t>(len), results.data(), static_cast<std::int32_t>(rows),
                            gconst, scaleFactor}),
              orvStsNoErr);
    const T *shared = member_.weighted ? vars.data() : means.data();
    for (std::size_t r = 0; r < rows; ++r) {
      const bool inFour = r < rows / 4 * 4;
      const T *deciding = inFour && member_.layout == Layout::strided ? matrix.row(r / 4 * 4 + 3) : shared;
      if (std::is_floating_point_v<T> && data == Data::whole) {
        double sum = 0;
        for (std::size_t j = 0; j < len; ++j)
          sum += std::pow(static_cast<double>(frames[r][j] - mean[j]), 2) *
                 static_cast<double>(var.empty() ? T{1} : var[j]);
        ASSERT_EQ(results.at(r), static_cast<R>(static_cast<double>(gconst) - sum / 2));
      } else {
        ASSERT_TRUE(sameBits(results.at(r), expected(frames[r], mean, var, deciding, inFour, gconst,
                                                     scaleFactor, member_.low)))
            << "row " << r << " of " << rows << ", length " << len << ", offset " << offset
            << ", scale factor " << scaleFactor;
      }
    }
  }

 private:
  const Member<T, R> &member_;
  Random &random_;
};

template <class Types>
class FrameBlockTest : public ::testing::Test {};
template <class T, class R>
struct Types {
  using Elem = T;
  using Result = R;
};
using All = ::testing::Types<Types<float, float>, Types<double, double>, Types<std::int16_t, std::int32_t>,
                             Types<std::int16_t, float>>;
TYPED_TEST_SUITE(FrameBlockTest, All);

TYPED_TEST(FrameBlockTest, SumsInGroupsAtEveryLengthAndAlignment) {
  using T = typename TypeParam::Elem;
  using R = typename TypeParam::Result;
  Random random(1);
  for (const auto &member : members<T, R>()) {
    SCOPED_TRACE(member.name);
    FrameBlock<T, R> block(member, random);
    for (std::size_t len = 1; len <= 40; ++len)
      for (const std::size_t rows : {1U, 2U, 3U, 4U, 5U, 8U})
        for (std::size_t offset = 0; offset < 16; ++offset)
          for (const Data data : {Data::random, Data::whole}) {
            block.check(rows, len, offset, data, static_cast<std::int32_t>(random() % 48) - 8);
            if (this->HasFatalFailure()) return;
          }
  }
}

template <class R>
void checkScaleFactors() {
  Random random(2);
  for (const auto &member : members<std::int16_t, R>()) {
    SCOPED_TRACE(member.name);
    FrameBlock<std::int16_t, R> block(member, random);
    for (const std::int32_t scaleFactor : scaleFactors())
      for (std::size_t n = 0; n < 40; ++n) block.check(1 + n % 5, 1 + n % 9, 0, Data::random, scaleFactor);
  }
}

TEST(FrameBlock, ScaleFactorsToBothEnds) {
  checkScaleFactors<std::int32_t>();
  checkScaleFactors<float>();
}

TYPED_TEST(FrameBlockTest, ChecksStridePointersSizes) {
  using T = typename TypeParam::Elem;
  using R = typename TypeParam::Result;
  enum : unsigned { stride = 1, src = 2, mean = 4, var = 8, result = 16, length = 32, frames = 64 };
  const T row[4] = {};
  const T *const rows[1] = {row};
  for (const auto &member : members<T, R>()) {
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

// The constant is doubled before the sum and the sum halved after it, so a constant beyond half of the range
// is lost.
TEST(FrameBlock, ScoreAtTheMeanIsTheConstantUntilItsDoubleOverflows) {
  const float frames[5] = {0.1F, 0.1F, 0.1F, 0.1F, 0.1F};
  const float weight = 7;
  for (const float gconst : {-83.7F, 1.7e38F, 1.8e38F}) {
    float scores[5];
    ASSERT_EQ(orvsLogGauss_32f_D2(frames, 1, frames, &weight, 1, scores, 5, gconst), orvStsNoErr);
    for (const float score : scores)
      EXPECT_EQ(score, gconst < 1.75e38F ? gconst : std::numeric_limits<float>::infinity());
  }
}

// Four rows of the largest terms: the sums of 64 bits are not cut to 53 or fewer on the way.
TEST(FrameBlock, IntegerSumsAreExact) {
  const std::vector<std::int16_t> frames(4099, INT16_MIN);
  std::vector<std::int16_t> mean(4099, INT16_MAX);
  std::vector<std::int16_t> var(4099, INT16_MAX);
  mean.back() = INT16_MIN + 1;
  var.back() = 2;
  std::int32_t score = 0;
  const std::int64_t sum = 4098 * (std::int64_t{65535} * 65535 * 32767) + 2;
  for (const std::int32_t scaleFactor : {-1, 0, 28}) {
    ASSERT_EQ(orvsLogGauss_Low_16s32s_D2Sfs(frames.data(), 4099, mean.data(), var.data(), 4099, &score, 1, 5,
                                            scaleFactor),
              orvStsNoErr);
    EXPECT_EQ(score, static_cast<std::int32_t>(5 - (sum >> (scaleFactor + 1))));
  }
}

}  // namespace
}  // namespace orv::test
