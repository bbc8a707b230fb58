// Cosine transform with lifter, in every form of birth, against the formulas in plain loops.

#include <algorithm>
#include <type_traits>
#include <utility>

#include "orvsr/frontend.h"
#include "support/allocation.h"
#include "support/arrays.h"

namespace orv::test {
namespace {

using State32f = OrvsDCTLifterState_32f;
using State16s = OrvsDCTLifterState_16s;

enum Form { plain, c0, mul, mulC0 };

struct Shape {
  std::int32_t dctLen, numCeps;
  std::int32_t param = 22;
};

// The members of one state type; C is what the odd table constructor reads.
template <class S, class C>
struct Members {
  OrvStatus (*alloc)(S **, int32_t, int32_t, int32_t, float);
  OrvStatus (*allocC0)(S **, int32_t, int32_t, int32_t, float, float);
  OrvStatus (*allocMul)(S **, int32_t, const float *, int32_t);
  OrvStatus (*allocMulC0)(S **, int32_t, const float *, int32_t);
  OrvStatus (*init)(S *, int32_t, int32_t, int32_t, float);
  OrvStatus (*initC0)(S *, int32_t, int32_t, int32_t, float, float);
  OrvStatus (*initMul)(S *, int32_t, const float *, int32_t);
  OrvStatus (*initMulC0)(S *, int32_t, const C *, int32_t);
  OrvStatus (*size[4])(int32_t, int32_t, int32_t *);
  OrvStatus (*free)(S *);

  static constexpr float val = 1.7F, val0 = -0.3F;
  static S *at(std::uint8_t *buffer) { return reinterpret_cast<S *>(buffer); }
  // Whole numbers, so that both kinds of table can hold them; one is no single.
  static std::vector<std::int32_t> table(std::int32_t n) {
    std::vector<std::int32_t> gains(static_cast<std::size_t>(n));
    for (std::int32_t i = 0; i < n; ++i) gains[static_cast<std::size_t>(i)] = 5 * i - 11;
    gains[0] = 16777217;
    return gains;
  }

  // An allocated object for an S **, one in the caller's buffer for an S *.
  OrvStatus born(Form form, S **state, Shape s) const {
    return make(form, state, s, alloc, allocC0, allocMul, allocMulC0);
  }
  OrvStatus born(Form form, S *buffer, Shape s) const {
    return make(form, buffer, s, init, initC0, initMul, initMulC0);
  }

 private:
  template <class P, class C1>
  static OrvStatus make(Form form, P place, Shape s, OrvStatus (*first)(P, int32_t, int32_t, int32_t, float),
                        OrvStatus (*withC0)(P, int32_t, int32_t, int32_t, float, float),
                        OrvStatus (*fromTable)(P, int32_t, const float *, int32_t),
                        OrvStatus (*fromTableC0)(P, int32_t, const C1 *, int32_t)) {
    const auto whole = table(std::max(s.numCeps, 1));
    const std::vector<float> gains(whole.begin(), whole.end());
    const std::vector<C1> gainsC0(whole.begin(), whole.end());
    if (form == plain) return first(place, s.dctLen, s.numCeps, s.param, val);
    if (form == c0) return withC0(place, s.dctLen, s.numCeps, s.param, val, val0);
    if (form == mul) return fromTable(place, s.dctLen, gains.data(), s.numCeps);
    return fromTableC0(place, s.dctLen, gainsC0.data(), s.numCeps);
  }
};

const Members<State32f, float> k32f{orvsDCTLifterInitAlloc_32f,
                                    orvsDCTLifterInitAlloc_C0_32f,
                                    orvsDCTLifterInitAlloc_Mul_32f,
                                    orvsDCTLifterInitAlloc_MulC0_32f,
                                    orvsDCTLifterInit_32f,
                                    orvsDCTLifterInit_C0_32f,
                                    orvsDCTLifterInit_Mul_32f,
                                    orvsDCTLifterInit_MulC0_32f,
                                    {orvsDCTLifterGetSize_32f, orvsDCTLifterGetSize_C0_32f,
                                     orvsDCTLifterGetSize_Mul_32f, orvsDCTLifterGetSize_MulC0_32f},
                                    orvsDCTLifterFree_32f};

const Members<State16s, std::int32_t> k16s{orvsDCTLifterInitAlloc_16s,
                                           orvsDCTLifterInitAlloc_C0_16s,
                                           orvsDCTLifterInitAlloc_Mul_16s,
                                           orvsDCTLifterInitAlloc_MulC0_16s,
                                           orvsDCTLifterInit_16s,
                                           orvsDCTLifterInit_C0_16s,
                                           orvsDCTLifterInit_Mul_16s,
                                           orvsDCTLifterInit_MulC0_16s,
                                           {orvsDCTLifterGetSize_16s, orvsDCTLifterGetSize_C0_16s,
                                            orvsDCTLifterGetSize_Mul_16s, orvsDCTLifterGetSize_MulC0_16s},
                                           orvsDCTLifterFree_16s};

template <class F>
void forEachType(F &&f) {
  f(k32f);
  f(k16s);
}

// --- reference

float gainOf(Form form, Shape s, std::int32_t i) {
  const auto table = decltype(k32f)::table(s.numCeps);
  if (form == mulC0 && i == 0) i = s.numCeps;
  if (form >= mul) return static_cast<float>(table[static_cast<std::size_t>(i - 1)]);
  if (form == c0 && i == 0) return decltype(k32f)::val0;
  const double sine = std::sin(i * 3.141592653589793 / s.param);
  return static_cast<float>(sine * static_cast<double>(static_cast<float>(s.param) * 0.5F) + 1.0) *
         decltype(k32f)::val;
}

// One by one up to head, then two sums of four lanes, then one by one.
float dot(const std::vector<float> &x, const std::vector<float> &row, std::size_t head) {
  float sum = 0, lanes[8];
  std::size_t i = 0;
  for (; i < head; ++i) sum += x[i] * row[i];
  if (x.size() - i >= 8) {
    std::fill_n(lanes, 8, 0.0F);
    lanes[0] = sum;
    for (; x.size() - i >= 8; i += 8)
      for (std::size_t k = 0; k < 8; ++k) lanes[k] += x[i + k] * row[i + k];
    for (std::size_t k = 0; k < 4; ++k) lanes[k] += lanes[k + 4];
    sum = (lanes[0] + lanes[2]) + (lanes[1] + lanes[3]);
  }
  for (; i < x.size(); ++i) sum += x[i] * row[i];
  return sum;
}

std::vector<float> expected(Form form, Shape s, const std::vector<float> &x, std::size_t head) {
  std::vector<float> results;
  const auto add = [&](std::int32_t i) {
    std::vector<float> row;
    for (std::int32_t j = 1; j <= s.dctLen; ++j)
      row.push_back(static_cast<float>(std::cos((j - 0.5) * (i * 3.141592653589793) / s.dctLen)));
    results.push_back(dot(x, row, head) * gainOf(form, s, i));
  };
  for (std::int32_t i = 1; i <= s.numCeps; ++i) add(i);
  if (form == c0 || form == mulC0) add(0);
  return results;
}

template <class T>
std::size_t headOf(const T *src, std::size_t len) {
  const auto address = reinterpret_cast<std::uintptr_t>(src);
  return address % sizeof(T) != 0 ? len : std::min(len, (16 - address % 16) % 16 / sizeof(T));
}

void expectTransform(const State32f *state, Form form, Shape s, std::size_t offset) {
  Random random(offset);
  const auto x = uniform<float>(random, static_cast<std::size_t>(s.dctLen), -9, 9);
  const Guarded<float> src(x, offset);
  const auto want = expected(form, s, x, headOf(src.data(), x.size()));
  Guarded<float> dst(want.size(), offset / 3);
  ASSERT_EQ(orvsDCTLifter_32f(src.data(), dst.data(), state), orvStsNoErr);
  for (std::size_t i = 0; i < want.size(); ++i)
    EXPECT_TRUE(sameBits(dst.at(i), want[i])) << form << ' ' << s.dctLen << ' ' << i << ' ' << offset;
}

template <class T>
void expectIntegers(OrvStatus (*transform)(const T *, int16_t *, State16s *, int32_t), State16s *state,
                    Form form, Shape s, std::size_t offset, std::int32_t scaleFactor) {
  Random random(offset);
  const auto x = anyIntegers<T>(random, static_cast<std::size_t>(s.dctLen));
  const Guarded<T> src(x, offset);
  const std::size_t head = sizeof(T) == 2 ? 0 : headOf(src.data(), x.size());
  const auto want = expected(form, s, std::vector<float>(x.begin(), x.end()), head);
  Guarded<std::int16_t> dst(want.size(), offset / 3);
  ASSERT_EQ(transform(src.data(), dst.data(), state, scaleFactor), orvStsNoErr);
  for (std::size_t i = 0; i < want.size(); ++i) {
    const double scaled = std::nearbyint(std::ldexp(static_cast<double>(want[i]), -scaleFactor));
    EXPECT_EQ(dst.at(i), std::clamp(scaled, -32768.0, 32767.0))
        << form << ' ' << s.dctLen << ' ' << i << ' ' << offset << ' ' << scaleFactor;
  }
}

void expectTransform(State16s *state, Form form, Shape s, std::size_t offset) {
  expectIntegers(orvsDCTLifter_16s_Sfs, state, form, s, offset, 4);
  expectIntegers(orvsDCTLifter_32s16s_Sfs, state, form, s, offset, 21);
}

constexpr Form kForms[] = {plain, c0, mul, mulC0};
constexpr Shape kShapes[] = {{1, 1, 1},  {2, 1},   {9, 1},   {9, 2}, {8, 8},
                             {15, 7, 3}, {23, 12}, {26, 13}, {40, 5}};

// --- tests

TEST(DCTLifter, BufferOfReportedSizeAtEveryAlignment) {
  forEachType([](const auto &members) {
    for (std::size_t offset = 0; offset < 64; ++offset)
      for (const Form form : kForms)
        for (const Shape s : kShapes) {
          std::int32_t bytes = 0;
          ASSERT_EQ(members.size[form](s.dctLen, s.numCeps, &bytes), orvStsNoErr);
          Guarded<std::uint8_t> buffer(static_cast<std::size_t>(bytes), offset);
          auto *object = members.at(buffer.data());
          ASSERT_EQ(members.born(form, object, s), orvStsNoErr);
          expectTransform(object, form, s, offset / 2);
        }
  });
}

TEST(DCTLifter, AllocatedStateAndEveryFailure) {
  forEachType([](const auto &members) {
    constexpr bool integers = std::is_same_v<decltype(members.at(nullptr)), State16s *>;
    constexpr int required = 3, all = integers ? 4 : 3;
    for (const Form form : kForms)
      for (const Shape s : kShapes) {
        const int failures = failEachAllocation([&](int n) {
          auto *state = members.at(nullptr);
          const OrvStatus status = members.born(form, &state, s);
          // The last block of an integer state is its working array, which the constructor does not report.
          ASSERT_EQ(status, n < required ? orvStsMemAllocErr : orvStsNoErr);
          if (status != orvStsNoErr) {
            EXPECT_EQ(state, nullptr);
            return;
          }
          if (n == all) expectTransform(state, form, s, 4);
          if constexpr (integers) {
            if (n < all) {
              const std::vector<std::int16_t> x(static_cast<std::size_t>(s.dctLen));
              Guarded<std::int16_t> dst(static_cast<std::size_t>(s.numCeps) + 1);
              EXPECT_EQ(orvsDCTLifter_16s_Sfs(x.data(), dst.data(), state, 0), orvStsMemAllocErr);
              EXPECT_TRUE(dst.untouched());
            }
          }
          EXPECT_EQ(members.free(state), orvStsNoErr);
        });
        EXPECT_EQ(failures, all);
      }
  });

  Allocations allocations;
  allocations.alignTo(16);
  State32f *state = nullptr;
  ASSERT_EQ(k32f.born(c0, &state, {23, 12}), orvStsNoErr);
  expectTransform(state, c0, {23, 12}, 0);
  EXPECT_EQ(orvsDCTLifterFree_32f(state), orvStsNoErr);
}

TEST(DCTLifter, ConversionAtBothEndsOfTheScale) {
  State16s *state = nullptr;
  ASSERT_EQ(k16s.born(c0, &state, {26, 13}), orvStsNoErr);
  for (const std::int32_t scaleFactor : {-200, -15, -1, 0, 1, 8, 15, 30, 200}) {
    expectIntegers(orvsDCTLifter_16s_Sfs, state, c0, {26, 13}, 0, scaleFactor);
    expectIntegers(orvsDCTLifter_32s16s_Sfs, state, c0, {26, 13}, 4, scaleFactor);
  }
  orvsDCTLifterFree_16s(state);
}

TEST(DCTLifter, Sizes) {
  forEachType([](const auto &members) {
    for (const Form form : kForms) {
      const bool integers = static_cast<const void *>(&members) == &k16s;
      std::int32_t bytes = -1;
      EXPECT_EQ(members.size[form](23, 12, &bytes), orvStsNoErr);
      EXPECT_EQ(bytes, !integers ? 1528 : form == mulC0 ? 1956 : 1620);
      EXPECT_EQ(members.size[form](23, 12, nullptr), orvStsNullPtrErr);
      bytes = -1;
      for (const auto &[dctLen, numCeps] : {std::pair{0, 1},
                                            {1, 0},
                                            {-5, -6},
                                            {12, 13},
                                            {INT32_MAX, 1},
                                            {INT32_MAX, INT32_MAX},
                                            {50000, 50000}})
        EXPECT_EQ(members.size[form](dctLen, numCeps, &bytes), orvStsSizeErr) << dctLen << ' ' << numCeps;
      EXPECT_EQ(bytes, -1);
      // One form alone has a limit of its own.
      EXPECT_EQ(members.size[form](8192, 1, &bytes), orvStsNoErr);
      EXPECT_EQ(members.size[form](8193, 1, &bytes), integers && form == mulC0 ? orvStsSizeErr : orvStsNoErr);
    }
  });
  // The last size that 32 bits can state, and the first that they cannot.
  std::int32_t bytes = 0;
  EXPECT_EQ(orvsDCTLifterGetSize_32f(268435432, 1, &bytes), orvStsNoErr);
  EXPECT_EQ(bytes, 2147483604);
  EXPECT_EQ(orvsDCTLifterGetSize_32f(268435433, 1, &bytes), orvStsSizeErr);
}

TEST(DCTLifter, ChecksOfConstructors) {
  forEachType([](const auto &members) {
    Guarded<std::uint8_t> buffer(64);
    auto *const place = members.at(buffer.data());
    auto *untouched = place;
    for (const Form form : kForms) {
      EXPECT_EQ(members.born(form, decltype(&untouched){}, {0, 0}), orvStsNullPtrErr);
      EXPECT_EQ(members.born(form, decltype(untouched){}, {0, 0}), orvStsNullPtrErr);
      for (const Shape s : {Shape{0, 1}, {-1, -2}, {4, 0}, {4, 5}}) {
        EXPECT_EQ(members.born(form, &untouched, s), orvStsSizeErr);
        EXPECT_EQ(members.born(form, place, s), orvStsSizeErr);
      }
      const OrvStatus noParam = form < mul ? orvStsSizeErr : orvStsMemAllocErr;
      EXPECT_EQ(members.born(form, &untouched, {INT32_MAX, 1, 0}), noParam);
      EXPECT_EQ(members.born(form, &untouched, {INT32_MAX, 1}), orvStsMemAllocErr);
      EXPECT_EQ(members.born(form, place, {INT32_MAX, 1}), orvStsSizeErr);
    }
    EXPECT_EQ(members.allocMul(&untouched, 0, nullptr, 0), orvStsNullPtrErr);
    EXPECT_EQ(members.allocMulC0(&untouched, 0, nullptr, 0), orvStsNullPtrErr);
    EXPECT_EQ(members.initMul(place, 0, nullptr, 0), orvStsNullPtrErr);
    EXPECT_EQ(members.initMulC0(place, 0, nullptr, 0), orvStsNullPtrErr);
    EXPECT_EQ(members.free(nullptr), orvStsNullPtrErr);
    EXPECT_EQ(untouched, place);
    EXPECT_TRUE(buffer.untouched());
  });
  // Garbage counts whose table could not even be read.
  State32f *state = nullptr;
  const float one = 1;
  EXPECT_EQ(orvsDCTLifterInitAlloc_Mul_32f(&state, INT32_MAX, &one, INT32_MAX), orvStsMemAllocErr);
}

TEST(DCTLifter, ChecksOfTransforms) {
  State16s *state = nullptr;
  State32f *single = nullptr;
  ASSERT_EQ(k16s.born(plain, &state, {1, 1}), orvStsNoErr);
  ASSERT_EQ(k32f.born(plain, &single, {1, 1}), orvStsNoErr);
  const float x = 0;
  const std::int16_t x16 = 0;
  const std::int32_t x32 = 0;
  float y = 0;
  std::int16_t y16 = 0;
  for (int missing = 0; missing < 3; ++missing) {
    const auto given = [missing](int i, auto *p) { return i == missing ? nullptr : p; };
    EXPECT_EQ(orvsDCTLifter_32f(given(0, &x), given(1, &y), given(2, single)), orvStsNullPtrErr);
    EXPECT_EQ(orvsDCTLifter_16s_Sfs(given(0, &x16), given(1, &y16), given(2, state), 0), orvStsNullPtrErr);
    EXPECT_EQ(orvsDCTLifter_32s16s_Sfs(given(0, &x32), given(1, &y16), given(2, state), 0), orvStsNullPtrErr);
  }
  orvsDCTLifterFree_16s(state);
  orvsDCTLifterFree_32f(single);
}

}  // namespace
}  // namespace orv::test
