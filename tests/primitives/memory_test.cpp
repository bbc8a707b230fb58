#include "primitives/memory.h"

#include <array>
#include <tuple>
#include <utility>

#include "primitives/arithmetic.h"
#include "primitives/convert.h"
#include "primitives/reduce.h"
#include "primitives/special.h"
#include "support/arrays.h"

namespace orv::test {
namespace {

constexpr int kNoHole = -1;

// Calls f with every pointer but number `hole` into scratch, every integer `len` and every real 1; the
// integers include the length, and scale factors and modes, which do not matter where the length is refused.
template <class... Args, std::size_t... i>
OrvStatus callWith(OrvStatus (*f)(Args...), std::byte *scratch, int hole, std::int32_t len,
                   std::index_sequence<i...>) {
  const auto argument = [&]<class A>(std::type_identity<A>, std::size_t n) -> A {
    if constexpr (std::is_pointer_v<A>) {
      return static_cast<int>(n) == hole ? nullptr : reinterpret_cast<A>(scratch + 64 * n);
    } else {
      return std::is_same_v<A, std::int32_t> ? static_cast<A>(len) : A{1};
    }
  };
  return f(argument(std::type_identity<Args>(), i)...);
}

template <class... Args>
void expectChecks(OrvStatus (*f)(Args...), int optional = kNoHole) {
  std::array<std::byte, 64 * sizeof...(Args)> scratch{};
  const auto indices = std::index_sequence_for<Args...>();
  const bool isPointer[] = {std::is_pointer_v<Args>...};
  for (int n = 0; n < static_cast<int>(sizeof...(Args)); ++n)
    if (isPointer[n] && n != optional) {
      EXPECT_EQ(callWith(f, scratch.data(), n, 0, indices), orvStsNullPtrErr);
      EXPECT_EQ(callWith(f, scratch.data(), n, 1, indices), orvStsNullPtrErr);
    }
  for (const int hole : {kNoHole, optional}) {
    EXPECT_EQ(callWith(f, scratch.data(), hole, 0, indices), orvStsSizeErr);
    EXPECT_EQ(callWith(f, scratch.data(), hole, -1, indices), orvStsSizeErr);
  }
  EXPECT_EQ(scratch, (std::array<std::byte, 64 * sizeof...(Args)>{}));
}

TEST(Primitives, CheckPointersThenLengthsAndWriteNothing) {
  const auto all = [](auto... f) { (expectChecks(f), ...); };
  all(orvsCopy_8u, orvsCopy_16s, orvsCopy_32s, orvsCopy_32f, orvsCopy_64f, orvsMove_32f, orvsZero_8u,
      orvsZero_16s, orvsZero_32f, orvsZero_64f, orvsSet_16s, orvsSet_32f, orvsSet_64f, orvsAbs_64f,
      orvsAdd_32f, orvsAdd_32f_I, orvsAdd_64f_I, orvsAddC_32f, orvsSub_16s, orvsSub_32f, orvsSub_64f,
      orvsSub_32f_I, orvsSub_64f_I, orvsMul_32f, orvsMul_16s_Sfs, orvsMulC_32f, orvsMulC_64f, orvsMulC_32f_I,
      orvsMulC_64f_I, orvsDiv_32f, orvsDiv_64f, orvsDivC_32f, orvsDivC_64f, orvsDivC_32f_I, orvsDivC_64f_I,
      orvsSqrt_64f_I, orvsMagnitude_32fc, orvsMagnitude_32sc_Sfs, orvsMaxEvery_32f_I, orvsMinEvery_32f_I,
      orvsMinEvery_32s_I, orvsLn_32s_Sfs, orvsLn_32s_ISfs, orvsSum_32f, orvsSum_16s32s_Sfs, orvsSum_32s_Sfs,
      orvsDotProd_32f, orvsDotProd_64f, orvsDotProd_32f64f, orvsDotProd_16s64s, orvsDotProd_16s32f,
      orvsMax_32f, orvsMax_64f, orvsMin_32f, orvsMin_64f, orvsMinMax_32f, orvsConvert_16s32f,
      orvsConvert_8u32f, orvsConvert_64f32f, orvsConvert_16s32f_Sfs, orvsConvert_32s32f_Sfs,
      orvsConvert_16s64f_Sfs, orvsConvert_32s16s_Sfs, orvsConvert_32f16s_Sfs, orvsConvert_32f32s_Sfs,
      orvsConvert_64f32s_Sfs);
  expectChecks(orvsSet_8u);
  expectChecks(orvsSet_32s);
  constexpr int index = 3;  // may be null
  expectChecks(orvsMaxIndx_32f, index);
  expectChecks(orvsMaxIndx_64f, index);
  expectChecks(orvsMinIndx_32f, index);
}

TEST(Primitives, SpecialValuesCarryTheirSigns) {
  EXPECT_EQ(std::bit_cast<std::uint64_t>(orvConstantOfNAN_64f), 0xFFF8000000000000U);
  EXPECT_EQ(std::bit_cast<std::uint32_t>(orvConstantOfNAN_32f), 0xFFC00000U);
  EXPECT_EQ(Special<double>::infinity(), HUGE_VAL);
  EXPECT_EQ(Special<double>::minusInfinity(), -HUGE_VAL);
  EXPECT_EQ(Special<float>::infinity(), HUGE_VALF);
  EXPECT_EQ(Special<float>::minusInfinity(), -HUGE_VALF);
}

template <class T>
void expectBulk(OrvStatus (*copy)(const T *, T *, std::int32_t), OrvStatus (*set)(T, T *, std::int32_t),
                OrvStatus (*zero)(T *, std::int32_t)) {
  Random random(1);
  for (std::size_t offset = 0; offset < 16; ++offset)
    for (std::size_t len = 1; len < 40; ++len) {
      const Guarded<T> src(anyIntegers<T>(random, len), 16 - offset);
      Guarded<T> dst(len, offset);
      ASSERT_EQ(copy(src.data(), dst.data(), dst.len()), orvStsNoErr);
      ASSERT_EQ(dst.values(), src.values());
      const auto value = static_cast<T>(101.5);
      ASSERT_EQ(set(value, dst.data(), dst.len()), orvStsNoErr);
      ASSERT_EQ(dst.values(), std::vector<T>(len, value));
      if (zero == nullptr) continue;
      ASSERT_EQ(zero(dst.data(), dst.len()), orvStsNoErr);
      ASSERT_EQ(dst.values(), std::vector<T>(len, T{0}));
    }
}

TEST(Primitives, CopyFillAndClear) {
  expectBulk(orvsCopy_8u, orvsSet_8u, orvsZero_8u);
  expectBulk(orvsCopy_16s, orvsSet_16s, orvsZero_16s);
  expectBulk<std::int32_t>(orvsCopy_32s, orvsSet_32s, nullptr);
  expectBulk(orvsCopy_32f, orvsSet_32f, orvsZero_32f);
  expectBulk(orvsCopy_64f, orvsSet_64f, orvsZero_64f);
}

TEST(Primitives, MovesAcrossAnyOverlap) {
  Random random(2);
  const auto values = anyIntegers<float>(random, 60);
  for (std::size_t from = 0; from < 20; ++from)
    for (std::size_t to = 0; to < 20; ++to) {
      Guarded<float> array(values, 2);
      ASSERT_EQ(orvsMove_32f(array.data() + from, array.data() + to, 40), orvStsNoErr);
      for (std::size_t i = 0; i < 40; ++i) ASSERT_EQ(array.at(to + i), values[from + i]);
    }
}

}  // namespace
}  // namespace orv::test
