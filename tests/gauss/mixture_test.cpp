// orvsLogGaussMixture_*: every member against one reference that sums in the promised groups and folds the
// components in their order.

#include <gtest/gtest.h>

#include <functional>

#include "gauss/reference.h"
#include "support/logdomain.h"

namespace orv::test {
namespace {

template <class T, class R>
struct Arguments {
  const T *src;
  const T *mean, *var;
  const T *const *means, *const *vars;
  std::int32_t nMix, step, featLen;
  const R *gconst;
  R *result;
  std::int32_t scaleFactor;
};

enum class Score { halved, scaled, halvedThenScaled, halfScaled };

template <class T, class R>
struct Member {
  const char *name;
  Layout layout;
  bool weighted;
  Score score;
  std::function<OrvStatus(const Arguments<T, R> &)> call;
};

template <class T, class R, class F>
Member<T, R> member(const char *name, Score score, F f) {
  using S = Signature<F>;
  constexpr bool weighted = S::pointers == 5;
  const auto call = [f](const Arguments<T, R> &a) {
    // The scale factor ends the arguments of the 16s members.
    const auto with = [&](auto... head) {
      if constexpr (std::is_integral_v<T>)
        return f(head..., a.scaleFactor);
      else
        return f(head...);
    };
    if constexpr (S::strided && weighted)
      return with(a.src, a.mean, a.var, a.nMix, a.step, a.featLen, a.gconst, a.result);
    else if constexpr (S::strided)
      return with(a.src, a.mean, a.nMix, a.step, a.featLen, a.gconst, a.result);
    else if constexpr (weighted)
      return with(a.src, a.means, a.vars, a.nMix, a.featLen, a.gconst, a.result);
    else
      return with(a.src, a.means, a.nMix, a.featLen, a.gconst, a.result);
  };
  return {name, S::layout, weighted, score, call};
}

template <class T, class R>
std::vector<Member<T, R>> members() {
  const auto m = [](const char *name, Score score, auto f) { return member<T, R>(name, score, f); };
  if constexpr (std::is_same_v<T, float>)
    return {m("32f_D2", Score::halved, orvsLogGaussMixture_32f_D2),
            m("32f_D2L", Score::halved, orvsLogGaussMixture_32f_D2L),
            m("IdVar D2", Score::halved, orvsLogGaussMixture_IdVar_32f_D2),
            m("IdVar D2L", Score::halved, orvsLogGaussMixture_IdVar_32f_D2L)};
  else if constexpr (std::is_same_v<T, double>)
    return {m("64f_D2", Score::halved, orvsLogGaussMixture_64f_D2),
            m("64f_D2L", Score::halved, orvsLogGaussMixture_64f_D2L),
            m("IdVar D2", Score::halved, orvsLogGaussMixture_IdVar_64f_D2),
            m("IdVar D2L", Score::halved, orvsLogGaussMixture_IdVar_64f_D2L)};
  else
    return {m("D2", Score::scaled, orvsLogGaussMixture_Scaled_16s32f_D2),
            m("D2L", Score::scaled, orvsLogGaussMixture_Scaled_16s32f_D2L),
            m("Low D2", Score::halvedThenScaled, orvsLogGaussMixture_LowScaled_16s32f_D2),
            m("Low D2L", Score::halvedThenScaled, orvsLogGaussMixture_LowScaled_16s32f_D2L),
            m("IdVar D2", Score::scaled, orvsLogGaussMixture_IdVarScaled_16s32f_D2),
            m("IdVar D2L", Score::scaled, orvsLogGaussMixture_IdVarScaled_16s32f_D2L),
            m("IdVarLow D2", Score::halfScaled, orvsLogGaussMixture_IdVarLowScaled_16s32f_D2),
            m("IdVarLow D2L", Score::halfScaled, orvsLogGaussMixture_IdVarLowScaled_16s32f_D2L)};
}

template <class R>
R scaledScore(R gconst, R sum, Score score, std::int32_t scaleFactor) {
  switch (score) {
    case Score::scaled:
      return gconst - sum * scaleOf(std::int64_t{scaleFactor} + 1);
    case Score::halvedThenScaled:
      return gconst - (sum * 0.5F) * scaleOf(scaleFactor);
    default:
      return gconst - sum * (scaleOf(scaleFactor) * 0.5F);
  }
}

template <class T, class R>
class Mixture {
 public:
  Mixture(const Member<T, R> &member, Random &random) : member_(member), random_(random) {}

  // Scores spread over a few drop thresholds whatever the length.
  void check(std::size_t nMix, std::size_t len, std::size_t offset, std::int32_t scaleFactor, double spread) {
    const bool integer = std::is_integral_v<T>;
    const double reach = integer ? 60 : 3;
    const double weight = (integer ? 90 : 1.5) / static_cast<double>(len);
    const std::vector<T> src = uniform<T>(random_, len, -reach, reach);
    std::vector<std::vector<T>> means(nMix), vars(nMix);
    for (std::size_t m = 0; m < nMix; ++m) {
      means[m] = random_() % 8 == 0 ? src : uniform<T>(random_, len, -reach, reach);
      if (member_.weighted) vars[m] = uniform<T>(random_, len, 0, weight);
    }
    const std::vector<R> gconst = uniform<R>(random_, nMix, -spread, spread);

    // All rows and the vector at the same distance from a 16-byte boundary, or each at one of its own.
    const bool together = random_() % 2 == 0;
    const auto step = static_cast<std::int32_t>(together ? (len + 7) / 8 * 8 : len + random_() % 4);
    const std::size_t stray = together ? strayOf(random_, nMix) : 1;
    const Guarded<T> vector(src, together ? offset : (11 * offset + 3 * len) % 16);
    const Matrix<T> mean(member_.layout, means, step, offset, stray);
    const Matrix<T> var(member_.layout, member_.weighted ? vars : means, step,
                        together ? offset : (7 * offset + len) % 16, stray);
    const Guarded<R> constants(gconst, (5 * offset) % 16);
    Guarded<R> result(1, (3 * offset + 1) % 16);
    ASSERT_EQ(member_.call({vector.data(), mean.base(), var.base(), mean.pointers(), var.pointers(),
                            static_cast<std::int32_t>(nMix), step, static_cast<std::int32_t>(len),
                            constants.data(), result.data(), scaleFactor}),
              orvStsNoErr);

    R running{};
    for (std::size_t m = 0; m < nMix; ++m) {
      const bool inFour = m < nMix / 4 * 4;
      const Matrix<T> &decidingRows = member_.weighted ? var : mean;
      const T *deciding =
          member_.layout == Layout::pointers ? vector.data() : decidingRows.row(inFour ? m / 4 * 4 + 3 : m);
      const std::vector<R> terms = termsOf<R>(src, means[m], vars[m]);
      const std::size_t accumulators = inFour ? 1 : 2;
      R score;
      if constexpr (std::is_integral_v<T>)
        score = scaledScore(gconst[m], groupedSum(R{0}, R{1}, terms, 0, accumulators), member_.score,
                            scaleFactor);
      else
        score = groupedSum(gconst[m] + gconst[m], R{-1}, terms, headOf(deciding, len), accumulators) * R{0.5};
      running = m == 0 ? score : logStep(running, score, true);
    }
    ASSERT_TRUE(sameBits(result.at(0), running))
        << nMix << " components, length " << len << ", offset " << offset << ", scale factor " << scaleFactor;
  }

 private:
  const Member<T, R> &member_;
  Random &random_;
};

template <class T, class R>
void checkGroups() {
  Random random(3);
  for (const auto &member : members<T, R>()) {
    SCOPED_TRACE(member.name);
    Mixture<T, R> mixture(member, random);
    for (std::size_t len = 1; len <= 40; ++len)
      for (const std::size_t nMix : {1U, 2U, 3U, 4U, 5U, 8U})
        for (std::size_t offset = (len + nMix) % 4; offset < 16; offset += 4)  // a quarter in turn
          for (const double spread : {2., 30.}) {
            mixture.check(nMix, len, offset, 12, spread);
            if (::testing::Test::HasFatalFailure()) return;
          }
    // Many components, with most of them dropped, and with scores below log-zero.
    for (const std::size_t nMix : {61U, 64U, 65U, 67U, 68U, 70U, 87U, 100U, 128U, 129U, 131U, 135U})
      for (const double spread : {2., 30., 300., 2e7}) mixture.check(nMix, 5, nMix % 4, 12, spread);
  }
}

TEST(Mixture, SumsInGroupsAtEveryLengthAndAlignment) {
  checkGroups<float, float>();
  checkGroups<double, double>();
  checkGroups<std::int16_t, float>();
}

TEST(Mixture, ScaleFactorsToBothEnds) {
  Random random(4);
  for (const auto &member : members<std::int16_t, float>()) {
    SCOPED_TRACE(member.name);
    Mixture<std::int16_t, float> mixture(member, random);
    for (const std::int32_t scaleFactor : scaleFactors())
      for (std::size_t n = 0; n < 40; ++n) mixture.check(1, 1 + n % 5, 0, scaleFactor, n % 2 == 0 ? 0 : 10);
  }
}

// With the vector at every mean the scores are the constants themselves.
template <class R, class F>
R mixtureOf(F f, const std::vector<R> &scores) {
  const std::vector<R> zeros(scores.size());
  Guarded<R> result(1);
  EXPECT_EQ(f(zeros.data(), zeros.data(), static_cast<std::int32_t>(scores.size()), 1, 1, scores.data(),
              result.data()),
            orvStsNoErr);
  R expected = scores[0];
  for (std::size_t m = 1; m < scores.size(); ++m) expected = logStep(expected, scores[m], true);
  EXPECT_TRUE(sameBits(result.at(0), expected));
  return result.at(0);
}

TEST(Mixture, DropsWeakComponentsAndOnlyThenRaisesToTheFloor) {
  const auto of = [](const std::vector<float> &scores) {
    return mixtureOf(orvsLogGaussMixture_IdVar_32f_D2, scores);
  };
  const float inf = std::numeric_limits<float>::infinity();
  EXPECT_EQ(of({-1e7F}), -1e7F);
  EXPECT_EQ(of({-1e7F, -1e7F}), -1e7F + 1);  // log 2, in steps of 1
  EXPECT_EQ(of({-1e7F, -2e7F}), -4.5e6F);
  EXPECT_EQ(of({-1e7F, -2e7F, -4.5e6F}), -4.5e6F + 0.5F);
  EXPECT_EQ(of({-1e7F, -2e7F, -2e7F, -3e7F, -2e7F}), -4.5e6F);
  EXPECT_GT(of({3e-7F, -20, -20, -20, -15.3F}), 4e-7F);
  EXPECT_TRUE(std::isnan(of({0, -20, static_cast<float>(NAN), -20, -20})));
  EXPECT_EQ(of({3, -12.4F}), 3);
  EXPECT_EQ(of({-12.4F, 3}), 3);
  EXPECT_GT(of({3e-7F, -15.3F}), 4e-7F);
  EXPECT_EQ(of({-inf, 2}), 2);
  EXPECT_EQ(of({-inf, -1e9F}), -4.5e6F);
  EXPECT_TRUE(std::isnan(of({-inf, -inf, 0})));
  // Sums so close to the middle between two single values that the last bit of the polynomial decides.
  for (const float d : {-15.3194628F, -15.3190804F, -15.3190775F, -15.3186159F}) of({0, d});
}

TEST(Mixture, DropsAndRaisesInDoublePrecision) {
  const auto of = [](const std::vector<double> &scores) {
    return mixtureOf(orvsLogGaussMixture_IdVar_64f_D2, scores);
  };
  EXPECT_EQ(of({-2e10}), -2e10);
  EXPECT_EQ(of({-2e10, -3e10}), -1e10);
  EXPECT_EQ(of({-2e10, -3e10, -3e10, -3e10, -4e10}), -1e10);
  EXPECT_EQ(of({-9e9, -3e10}), -9e9);
  EXPECT_EQ(of({-9.1e9, -3e10}), -1e10);
  // The floor may lie below what it is put in place of: then a score is not dropped that was weak before.
  EXPECT_GT(of({-9.5e9, -2e10, -2e10, -2e10, -1e10 + 5}), -1e10 + 5);
  EXPECT_EQ(of({-2e10, -2e10}), -2e10 + 0.693147180559947);
  EXPECT_EQ(of({1, -22.1}), 1);
  EXPECT_GT(of({0, -23.0258509299405}), 0);
  EXPECT_EQ(of({0, std::nextafter(-23.0258509299405, -24)}), 0);
  for (const double d : {-3.5, std::nextafter(-3.5, 0), -9.0, std::nextafter(-9.0, 0)}) of({0, d});
}

template <class T, class R>
void checkOrder() {
  enum : unsigned {
    stride = 1,
    src = 2,
    mean = 4,
    var = 8,
    gconst = 16,
    result = 32,
    length = 64,
    count = 128
  };
  const T row[4] = {};
  const T *const rows[1] = {row};
  const R constant[1] = {};
  for (const auto &member : members<T, R>()) {
    SCOPED_TRACE(member.name);
    std::vector<Fault> order{{src, orvStsNullPtrErr},
                             {mean, orvStsNullPtrErr},
                             {gconst, orvStsNullPtrErr},
                             {result, orvStsNullPtrErr}};
    if (member.weighted) order.push_back({var, orvStsNullPtrErr});
    // The stride comes first for 16s data only.
    if (member.layout == Layout::strided)
      order.insert(std::is_integral_v<T> ? order.begin() : order.end(), {stride, orvStsStrideErr});
    order.push_back({length, orvStsSizeErr});
    order.push_back({count, orvStsSizeErr});
    Guarded<R> results(1);
    for (const std::int32_t badSize : {0, -1, INT32_MIN + 1})
      expectOrderOfChecks(order, [&](unsigned faults) {
        const auto given = [faults](unsigned bit, auto *p) { return (faults & bit) != 0 ? nullptr : p; };
        const std::int32_t featLen = (faults & length) != 0 ? badSize : 4;
        return member.call({given(src, row), given(mean, row), given(var, row), given(mean, rows),
                            given(var, rows), (faults & count) != 0 ? badSize : 1,
                            (faults & stride) != 0 ? featLen - 1 : featLen, featLen, given(gconst, constant),
                            given(result, results.data()), 0});
      });
    EXPECT_TRUE(results.untouched());
  }
}

TEST(Mixture, OrderOfChecksDiffersByType) {
  checkOrder<float, float>();
  checkOrder<double, double>();
  checkOrder<std::int16_t, float>();
}

}  // namespace
}  // namespace orv::test
