// orvsLogGaussMultiMix_*, orvsLogGaussMaxMultiMix_*, orvsLogGaussAddMultiMix_*: one vector against many
// Gaussians, with the scores and results of the families over frames.

#include <gtest/gtest.h>

#include "gauss/frames.h"

namespace orv::test {
namespace {

template <class T, class R>
struct Arguments {
  const T *mean, *var;
  const T *const *means, *const *vars;
  std::int32_t step;
  const T *src;
  std::int32_t featLen;
  const R *gconst;
  R *srcDst;
  std::int32_t count, scaleFactor;
};

enum Traits : unsigned { low = 1, strideLast = 2 };

template <class T, class R>
struct Member {
  const char *name;
  Layout layout;
  bool ownConstants;  // an array of their own, not the result
  unsigned traits;
  std::function<OrvStatus(const Arguments<T, R> &)> call;
};

// The type of a member tells which arguments it has.
template <class T, class R, class First, class... Others>
Member<T, R> member(const char *name, OrvStatus (*f)(First, Others...), unsigned traits = 0) {
  constexpr bool strided = std::is_same_v<First, const T *>;
  constexpr bool constants = std::is_pointer_v<std::tuple_element_t<strided ? 5 : 4, std::tuple<Others...>>>;
  return {
      name, strided ? Layout::strided : Layout::pointers, constants, traits, [f](const Arguments<T, R> &a) {
        const auto rows = [](const T *base, const T *const *pointers) {
          return std::get<First>(std::tuple(base, pointers));
        };
        return std::apply(
            f, std::tuple_cat(std::tuple(rows(a.mean, a.means), rows(a.var, a.vars)), onlyIf<strided>(a.step),
                              std::tuple(a.src, a.featLen), onlyIf<constants>(a.gconst),
                              std::tuple(a.srcDst, a.count), onlyIf<std::is_integral_v<T>>(a.scaleFactor)));
      }};
}

template <class T, class R>
struct Families {
  std::vector<Member<T, R>> scores, maxima, sums;
};

template <class T, class R>
Families<T, R> families() {
  if constexpr (std::is_same_v<T, float>) {
    return {{member<T, R>("32f_D2", orvsLogGaussMultiMix_32f_D2),
             member<T, R>("32f_D2L", orvsLogGaussMultiMix_32f_D2L)},
            {member<T, R>("Max 32f_D2", orvsLogGaussMaxMultiMix_32f_D2),
             member<T, R>("Max 32f_D2L", orvsLogGaussMaxMultiMix_32f_D2L)},
            {member<T, R>("Add 32f_D2", orvsLogGaussAddMultiMix_32f_D2),
             member<T, R>("Add 32f_D2L", orvsLogGaussAddMultiMix_32f_D2L)}};
  } else if constexpr (std::is_same_v<T, double>) {
    return {{member<T, R>("64f_D2", orvsLogGaussMultiMix_64f_D2),
             member<T, R>("64f_D2L", orvsLogGaussMultiMix_64f_D2L)},
            {member<T, R>("Max 64f_D2", orvsLogGaussMaxMultiMix_64f_D2),
             member<T, R>("Max 64f_D2L", orvsLogGaussMaxMultiMix_64f_D2L)},
            {member<T, R>("Add 64f_D2", orvsLogGaussAddMultiMix_64f_D2),
             member<T, R>("Add 64f_D2L", orvsLogGaussAddMultiMix_64f_D2L)}};
  } else if constexpr (std::is_same_v<R, std::int32_t>) {
    return {{member<T, R>("D2Sfs", orvsLogGaussMultiMix_16s32s_D2Sfs),
             member<T, R>("D2LSfs", orvsLogGaussMultiMix_16s32s_D2LSfs),
             member<T, R>("Low D2Sfs", orvsLogGaussMultiMix_Low_16s32s_D2Sfs, low),
             member<T, R>("Low D2LSfs", orvsLogGaussMultiMix_Low_16s32s_D2LSfs, low)},
            {member<T, R>("Max D2Sfs", orvsLogGaussMaxMultiMix_16s32s_D2Sfs),
             member<T, R>("Max D2LSfs", orvsLogGaussMaxMultiMix_16s32s_D2LSfs),
             member<T, R>("Max Low D2Sfs", orvsLogGaussMaxMultiMix_Low_16s32s_D2Sfs, low),
             member<T, R>("Max Low D2LSfs", orvsLogGaussMaxMultiMix_Low_16s32s_D2LSfs, low)},
            {}};
  } else {
    return {{member<T, R>("Scaled D2", orvsLogGaussMultiMix_Scaled_16s32f_D2),
             member<T, R>("Scaled D2L", orvsLogGaussMultiMix_Scaled_16s32f_D2L),
             member<T, R>("LowScaled D2", orvsLogGaussMultiMix_LowScaled_16s32f_D2, low),
             member<T, R>("LowScaled D2L", orvsLogGaussMultiMix_LowScaled_16s32f_D2L, low)},
            {member<T, R>("Max Scaled D2", orvsLogGaussMaxMultiMix_Scaled_16s32f_D2, strideLast),
             member<T, R>("Max Scaled D2L", orvsLogGaussMaxMultiMix_Scaled_16s32f_D2L),
             member<T, R>("Max LowScaled D2", orvsLogGaussMaxMultiMix_LowScaled_16s32f_D2, low | strideLast),
             member<T, R>("Max LowScaled D2L", orvsLogGaussMaxMultiMix_LowScaled_16s32f_D2L, low)},
            {member<T, R>("Add Scaled D2", orvsLogGaussAddMultiMix_Scaled_16s32f_D2),
             member<T, R>("Add Scaled D2L", orvsLogGaussAddMultiMix_Scaled_16s32f_D2L),
             member<T, R>("Add LowScaled D2", orvsLogGaussAddMultiMix_LowScaled_16s32f_D2, low),
             member<T, R>("Add LowScaled D2L", orvsLogGaussAddMultiMix_LowScaled_16s32f_D2L, low)}};
  }
}

template <class T, class R>
void check(const Member<T, R> &member, const FrameFamily<T, R> &family, Random &random, std::size_t count,
           std::size_t len, Data data, std::int32_t scaleFactor) {
  const auto offset = [&random] { return random() % 2 == 0 ? random() % 16 : random() % 4 * 4; };
  const std::vector<T> src = draw<T>(random, len, data);
  std::vector<std::vector<T>> means(count), vars(count);
  for (auto &mean : means) mean = random() % 8 == 0 ? src : draw<T>(random, len, data);
  for (auto &var : vars) var = draw<T>(random, len, data, 0);
  std::vector<R> gconst = draw<R>(random, count, data);
  for (R &g : gconst) g *= static_cast<R>(random() % 4 > 0);  // beside 0 the smallest sums are seen

  const auto step = static_cast<std::int32_t>(len + random() % 4);
  const Guarded<T> vector(src, offset());
  const std::size_t stray = random() % 2 == 0 ? strayOf(random, count) : 1;
  const Matrix<T> mean(member.layout, means, step, offset(), stray);
  const Matrix<T> var(member.layout, vars, step, offset(), stray);
  const Guarded<R> constants(gconst, offset());
  Guarded<R> results(count, offset());
  std::vector<FrameCase<T, R>> cases;
  for (std::size_t m = 0; m < count; ++m) {
    // Groups by the fourth row of weights or by the vector, single rows by their own weights.
    const bool inFour = family.inFours && m < count / 4 * 4;
    const T *deciding = !inFour                             ? var.row(m)
                        : member.layout == Layout::pointers ? vector.data()
                                                            : var.row(m / 4 * 4 + 3);
    cases.push_back({src, means[m], vars[m], deciding, inFour ? 1U : 2U, gconst[m], scaleFactor,
                     (member.traits & low) != 0});
    const R start = member.ownConstants ? family.before(cases[m], random) : gconst[m];
    results.set(m, start == start ? start : R{1});  // so that a NaN can only come from the score
  }
  const std::vector<R> before = results.values();
  ASSERT_EQ(member.call({mean.base(), var.base(), mean.pointers(), var.pointers(), step, vector.data(),
                         static_cast<std::int32_t>(len), constants.data(), results.data(),
                         static_cast<std::int32_t>(count), scaleFactor}),
            orvStsNoErr);
  for (std::size_t m = 0; m < count; ++m)
    ASSERT_TRUE(sameBits(results.at(m), family.after(cases[m], before[m])))
        << "Gaussian " << m << " of " << count << ", length " << len << ", scale factor " << scaleFactor
        << ", before " << before[m];
}

template <class T, class R>
void sweep(const std::vector<Member<T, R>> &members, const FrameFamily<T, R> &family) {
  Random random(5);
  for (const auto &member : members) {
    SCOPED_TRACE(member.name);
    for (std::size_t len = 1; len <= 40; ++len)
      for (const std::size_t count : {1U, 2U, 3U, 4U, 5U, 8U, 21U})
        for (int places = 0; places < 4; ++places)
          for (const Data data : {Data::random, Data::whole}) {
            check(member, family, random, count, len, data, static_cast<std::int32_t>(random() % 48) - 8);
            if (::testing::Test::HasFatalFailure()) return;
          }
    for (std::size_t count = 60; count < 330; count += 11)
      check(member, family, random, count, 1 + count % 9, Data::random, 3);
    if (std::is_integral_v<T>)
      for (const std::int32_t scaleFactor : scaleFactors())
        for (std::size_t n = 0; n < 40; ++n)
          check(member, family, random, 1 + n % 5, 1 + n % 9, Data::random, scaleFactor);
  }
}

template <class T, class R>
void checkOrder(const std::vector<Member<T, R>> &members) {
  enum : unsigned {
    stride = 1,
    src = 2,
    mean = 4,
    var = 8,
    gconst = 16,
    srcDst = 32,
    length = 64,
    count = 128
  };
  const T row[4] = {};
  const T *const rows[1] = {row};
  const R constant[1] = {};
  for (const auto &member : members) {
    SCOPED_TRACE(member.name);
    std::vector<Fault> order{{src, orvStsNullPtrErr},
                             {mean, orvStsNullPtrErr},
                             {var, orvStsNullPtrErr},
                             {srcDst, orvStsNullPtrErr}};
    if (member.ownConstants) order.push_back({gconst, orvStsNullPtrErr});
    order.push_back({length, orvStsSizeErr});
    order.push_back({count, orvStsSizeErr});
    if (member.layout == Layout::strided)
      order.insert((member.traits & strideLast) != 0 ? order.end() : order.begin(),
                   {stride, orvStsStrideErr});
    Guarded<R> results(1);
    for (const std::int32_t badSize : {0, INT32_MIN + 1})
      expectOrderOfChecks(order, [&](unsigned faults) {
        const auto given = [faults](unsigned bit, auto *p) { return (faults & bit) != 0 ? nullptr : p; };
        const std::int32_t featLen = (faults & length) != 0 ? badSize : 4;
        return member.call({given(mean, row), given(var, row), given(mean, rows), given(var, rows),
                            (faults & stride) != 0 ? featLen - 1 : featLen, given(src, row), featLen,
                            given(gconst, constant), given(srcDst, results.data()),
                            (faults & count) != 0 ? badSize : 1, 0});
      });
    EXPECT_TRUE(results.untouched());
  }
}

template <class Types>
class MultiMixTest : public ::testing::Test {};
TYPED_TEST_SUITE(MultiMixTest, ScoreTypes);

TYPED_TEST(MultiMixTest, ScoresMaximaAndLogSums) {
  using T = typename TypeParam::Elem;
  using R = typename TypeParam::Result;
  sweep(families<T, R>().scores, scoreFamily<T, R>());
  sweep(families<T, R>().maxima, maxFamily<T, R>());
  if constexpr (std::is_floating_point_v<R>) sweep(families<T, R>().sums, addFamily<T, R>(LowFactor::own));
}

TYPED_TEST(MultiMixTest, OrderOfChecks) {
  const auto all = families<typename TypeParam::Elem, typename TypeParam::Result>();
  checkOrder(all.scores);
  checkOrder(all.maxima);
  checkOrder(all.sums);
}

}  // namespace
}  // namespace orv::test
