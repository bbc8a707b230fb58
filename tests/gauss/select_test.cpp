// orvsLogGaussMixture_Select*: against single scores folded one by one where the shortlist has a bit.

#include <gtest/gtest.h>

#include <functional>

#include "gauss/reference.h"
#include "support/allocation.h"
#include "support/logdomain.h"

namespace orv::test {
namespace {

template <class T>
struct Arguments {
  const T *src, *mean, *var;
  const T *const *srcs, *const *means, *const *vars;
  std::int32_t step, featLen;
  const float *gconst;
  const std::uint8_t *bits;
  std::int32_t nMix;
  float *result;
  std::int32_t frames, scaleFactor;
  float defaultValue;
};

template <class T>
struct Member {
  Layout layout;
  bool weighted;
  bool testsResult;
  std::function<OrvStatus(const Arguments<T> &)> call;
};

// The type of a member tells which arguments it has.
template <class T, class First, class... Others>
Member<T> member(OrvStatus (*f)(First, Others...), bool testsResult = false) {
  constexpr bool strided = std::is_same_v<First, const T *>;
  constexpr bool weighted = std::is_pointer_v<std::tuple_element_t<1, std::tuple<Others...>>>;
  return {strided ? Layout::strided : Layout::pointers, weighted, testsResult, [f](const Arguments<T> &a) {
            const auto rows = [](const T *base, const T *const *pointers) {
              return std::get<First>(std::tuple(base, pointers));
            };
            return std::apply(
                f, std::tuple_cat(std::tuple(rows(a.src, a.srcs), rows(a.mean, a.means)),
                                  onlyIf<weighted>(rows(a.var, a.vars)), onlyIf<strided>(a.step),
                                  std::tuple(a.featLen, a.gconst, a.bits, a.nMix, a.result, a.frames),
                                  onlyIf<std::is_integral_v<T>>(a.scaleFactor), std::tuple(a.defaultValue)));
          }};
}

template <class T>
std::vector<Member<T>> members() {
  if constexpr (std::is_same_v<T, float>)
    return {member<T>(orvsLogGaussMixture_Select_32f_D2, true), member<T>(orvsLogGaussMixture_Select_32f_D2L),
            member<T>(orvsLogGaussMixture_SelectIdVar_32f_D2),
            member<T>(orvsLogGaussMixture_SelectIdVar_32f_D2L)};
  else
    return {member<T>(orvsLogGaussMixture_SelectScaled_16s32f_D2),
            member<T>(orvsLogGaussMixture_SelectScaled_16s32f_D2L),
            member<T>(orvsLogGaussMixture_SelectIdVarScaled_16s32f_D2),
            member<T>(orvsLogGaussMixture_SelectIdVarScaled_16s32f_D2L)};
}

template <class T>
void check(const Member<T> &member, Random &random, std::size_t nMix, std::size_t frames, std::size_t len,
           std::int32_t scaleFactor, double spread) {
  const auto matrix = [&](std::size_t rows, double from) {
    std::vector<std::vector<T>> values(rows);
    for (auto &row : values) row = uniform<T>(random, len, from, std::is_integral_v<T> ? 60 : 3);
    return values;
  };
  const auto srcs = matrix(frames, -3), means = matrix(nMix, -3), vars = matrix(nMix, 0);
  const std::vector<float> gconst = uniform<float>(random, nMix, -spread, spread);
  const std::size_t rowBytes = (nMix + 7) / 8;
  std::vector<std::uint8_t> bits = anyIntegers<std::uint8_t>(random, frames * rowBytes);
  for (std::uint8_t &byte : bits)
    if (random() % 3 == 0) byte = static_cast<std::uint8_t>(byte & random() & random());

  const auto step = static_cast<std::int32_t>(len + random() % 4);
  const Matrix<T> src(member.layout, srcs, step, random() % 16);
  const Matrix<T> mean(member.layout, means, step, random() % 16);
  const Matrix<T> var(member.layout, vars, step, random() % 16);
  const Guarded<float> constants(gconst, random() % 16);
  const Guarded<std::uint8_t> shortlist(bits);
  Guarded<float> result(frames, random() % 16);
  {
    Allocations allocations;
    ASSERT_EQ(member.call({src.base(), mean.base(), var.base(), src.pointers(), mean.pointers(),
                           var.pointers(), step, static_cast<std::int32_t>(len), constants.data(),
                           shortlist.data(), static_cast<std::int32_t>(nMix), result.data(),
                           static_cast<std::int32_t>(frames), scaleFactor, -123.5F}),
              orvStsNoErr);
    EXPECT_EQ(allocations.sizes(), std::vector<std::size_t>{2 * frames});
  }
  for (std::size_t f = 0; f < frames; ++f) {
    float expected = -123.5F;
    bool selected = false;
    for (std::size_t m = 0; m < nMix; ++m) {
      if ((bits[f * rowBytes + m / 8] & 128 >> m % 8) == 0) continue;
      const std::vector<float> terms =
          termsOf<float>(srcs[f], means[m], member.weighted ? vars[m] : std::vector<T>{});
      const std::size_t head =
          std::is_integral_v<T> ? 0 : headOf(member.weighted ? var.row(m) : mean.row(m), len);
      const float factor = std::is_integral_v<T> ? scaleOf(scaleFactor + 1) : 0.5F;
      const float score = gconst[m] - groupedSum(0.0F, 1.0F, terms, head, 2) * factor;
      expected = selected ? logStep(expected, score, false) : score;
      selected = true;
    }
    ASSERT_TRUE(sameBits(result.at(f), expected))
        << "frame " << f << ", " << nMix << " Gaussians, length " << len;
  }
}

template <class T>
void sweep() {
  Random random(6);
  for (const auto &member : members<T>())
    for (const std::size_t nMix : {1U, 8U, 9U, 21U, 71U})
      for (const std::size_t frames : {1U, 2U, 4U, 11U})
        for (std::size_t len = 1; len <= 21; ++len)
          for (const double spread : {1., 30., 1e7}) {
            check(member, random, nMix, frames, len, 8 + static_cast<std::int32_t>(random() % 6), spread);
            if (::testing::Test::HasFatalFailure()) return;
          }
}

TEST(Selection, FoldsTheSelectedGaussiansInTheirOrder) {
  sweep<float>();
  sweep<std::int16_t>();
}

// The count of a frame's Gaussians has 16 bits.
TEST(Selection, StartsAnewAfter65536Gaussians) {
  const float zero = 0;
  std::vector<float> gconst(65537, -5);
  gconst.back() = -7;
  const std::vector<std::uint8_t> bits(65537 / 8 + 1, 0xFF);
  const std::vector<const float *> rows(65537, &zero);
  const float *const frame = &zero;
  float result[3];
  for (int i = 0; i < 3; ++i)
    ASSERT_EQ(orvsLogGaussMixture_SelectIdVar_32f_D2L(&frame, rows.data(), 1, gconst.data(), bits.data(),
                                                      65535 + i, result + i, 1, 99),
              orvStsNoErr);
  EXPECT_NEAR(result[0], std::log(65535.0) - 5, 0.1);
  EXPECT_EQ(result[1], 99);
  EXPECT_EQ(result[2], -7);
}

// Seven members do not test their result, and the row pointers are tested before any memory is taken.
template <class T>
void checkOrder() {
  enum : unsigned {
    src = 1,
    mean = 2,
    var = 4,
    gconst = 8,
    bits = 16,
    result = 32,
    length = 64,
    nMix = 128,
    frames = 256,
    rows = 512,
    memory = 1024
  };
  const T row[4] = {};
  const T *const complete[2] = {row, row};
  const T *const broken[2][2] = {{nullptr, row}, {row, nullptr}};
  const float constants[2] = {};
  const std::uint8_t list[2] = {0xFF, 0xFF};
  for (const auto &member : members<T>()) {
    std::vector<Fault> order{{src, orvStsNullPtrErr},
                             {mean, orvStsNullPtrErr},
                             {gconst, orvStsNullPtrErr},
                             {bits, orvStsNullPtrErr}};
    if (member.weighted) order.push_back({var, orvStsNullPtrErr});
    if (member.testsResult) order.push_back({result, orvStsNullPtrErr});
    for (const unsigned size : {length, nMix, frames}) order.push_back({size, orvStsSizeErr});
    order.push_back({rows, member.layout == Layout::strided ? orvStsStrideErr : orvStsNullPtrErr});
    order.push_back({memory, orvStsMemAllocErr});
    Guarded<float> results(2);
    for (unsigned which = 0; which < (member.weighted ? 6U : 4U); ++which)
      expectOrderOfChecks(order, [&](unsigned faults) {
        Allocations allocations;
        allocations.failAt(0);
        const auto given = [faults](unsigned bit, auto *p) { return (faults & bit) != 0 ? nullptr : p; };
        const auto matrix = [&](unsigned bit, unsigned place) {
          return given(bit, (faults & rows) != 0 && place == which / 2 ? broken[which % 2] : complete);
        };
        const auto size = [faults](unsigned bit, std::int32_t good) {
          return (faults & bit) != 0 ? 0 : good;
        };
        return member.call({given(src, row), given(mean, row), given(var, row), matrix(src, 0),
                            matrix(mean, 1), matrix(var, 2), (faults & rows) != 0 ? -1 : 4, size(length, 4),
                            given(gconst, constants), given(bits, list), size(nMix, 2),
                            member.testsResult ? given(result, results.data()) : nullptr, size(frames, 2), 0,
                            0});
      });
    EXPECT_TRUE(results.untouched());
  }
}

TEST(Selection, OrderOfChecks) {
  checkOrder<float>();
  checkOrder<std::int16_t>();
}

}  // namespace
}  // namespace orv::test
