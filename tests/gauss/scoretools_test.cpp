// orvsNthMaxElement_*, orvsAddNRows_32f_D2, orvsScaleLM_*.

#include <gtest/gtest.h>

#include <algorithm>

#include "gauss/reference.h"
#include "support/allocation.h"

namespace orv::test {
namespace {

template <class T>
void checkRanks(OrvStatus (*f)(const T *, int32_t, int32_t, T *)) {
  Random random(9);
  for (std::size_t len = 1; len <= 40; ++len)
    for (const int limit : {0, 1, 3, 1000}) {
      const std::vector<T> values = wholeNumbers<T>(random, len, limit);
      const Guarded<T> src(values, len % 16);
      std::vector<T> sorted = values;
      std::sort(sorted.begin(), sorted.end(), std::greater<T>());
      for (std::size_t n = 0; n < len; ++n) {
        Guarded<T> result(1, n % 16);
        ASSERT_EQ(f(src.data(), src.len(), static_cast<std::int32_t>(n), result.data()), orvStsNoErr);
        ASSERT_EQ(result.at(0), sorted[n]) << "rank " << n << " of " << len;
      }
      ASSERT_EQ(src.values(), values);
    }

  enum : unsigned { source = 1, result = 2, length = 4, rank = 8, memory = 16 };
  const T values[3] = {1, 2, 3};
  Guarded<T> out(1);
  for (const std::int32_t wrongRank : {-1, 3, INT32_MAX})
    expectOrderOfChecks({{source, orvStsNullPtrErr},
                         {result, orvStsNullPtrErr},
                         {length, orvStsSizeErr},
                         {rank, orvStsBadArgErr},
                         {memory, orvStsMemAllocErr}},
                        [&](unsigned faults) {
                          Allocations allocations;
                          allocations.failAt(0);
                          return f((faults & source) != 0 ? nullptr : values, (faults & length) != 0 ? 0 : 3,
                                   (faults & rank) != 0 ? wrongRank : 2,
                                   (faults & result) != 0 ? nullptr : out.data());
                        });
  EXPECT_TRUE(out.untouched());
}

TEST(NthMaxElement, IsThatOfASortedCopy) {
  checkRanks(orvsNthMaxElement_32f);
  checkRanks(orvsNthMaxElement_32s);
  checkRanks(orvsNthMaxElement_64f);
}

TEST(NthMaxElement, EndsOnNaNsToo) {
  const std::vector<float> values(9, std::numeric_limits<float>::quiet_NaN());
  for (std::int32_t n = 0; n < 9; ++n) {
    float result = 0;
    ASSERT_EQ(orvsNthMaxElement_32f(values.data(), 9, n, &result), orvStsNoErr);
    EXPECT_TRUE(std::isnan(result));
  }
}

// Zeros of either sign are equal: the first of them is the pivot, and all ranks are its own.
TEST(NthMaxElement, TakesTheFirstPivotForAllThatEqualIt) {
  const float zeros[4] = {-0.0F, 0.0F, 0.0F, -0.0F};
  for (std::int32_t n = 0; n < 4; ++n)
    for (std::int32_t first = 0; first < 2; ++first) {
      float result = 1;
      ASSERT_EQ(orvsNthMaxElement_32f(zeros + first, 4 - first, n % (4 - first), &result), orvStsNoErr);
      EXPECT_TRUE(sameBits(result, zeros[first]));
    }
}

TEST(AddNRows, AddsFromTheValueThroughTheRowsInOrder) {
  Random random(10);
  for (std::size_t len = 1; len <= 40; ++len)
    for (std::size_t count = 1; count <= 4; ++count) {
      const std::size_t offset = random() % 5, height = 1 + random() % 3, step = offset + len + random() % 2;
      const std::vector<float> matrix = uniform<float>(random, (height - 1) * step + offset + len, -3, 3);
      std::vector<std::int32_t> index(count);
      std::vector<std::uint16_t> add = anyIntegers<std::uint16_t>(random, count);
      std::vector<float> expected(len, 0.1F);
      for (std::size_t i = 0; i < count; ++i) {
        const std::size_t row = i == 0 ? height - 1 : random() % height;
        index[i] = static_cast<std::int32_t>(row) - add[i];
        for (std::size_t c = 0; c < len; ++c) expected[c] += matrix[row * step + offset + c];
      }
      const Guarded<float> src(matrix, len % 16);
      const Guarded<std::int32_t> numbers(index, 1);
      const Guarded<std::uint16_t> numbersAdd(add, 1);
      Guarded<float> dst(len, (3 * len) % 16);
      const auto call = [&](std::size_t rows, std::size_t rowStep, const std::int32_t *first) {
        return orvsAddNRows_32f_D2(src.data(), static_cast<std::int32_t>(rows),
                                   static_cast<std::int32_t>(offset), static_cast<std::int32_t>(rowStep),
                                   first, numbersAdd.data(), static_cast<std::int32_t>(count), dst.data(),
                                   dst.len(), 0.1F);
      };
      std::vector<std::int32_t> wrong = index;
      for (const std::int32_t bad : {-1, static_cast<std::int32_t>(height), INT32_MIN + 65535}) {
        wrong[count - 1] = bad - add[count - 1];
        ASSERT_EQ(call(height, step, wrong.data()), orvStsSizeErr);
      }
      ASSERT_EQ(call(height, offset + len - 1, numbers.data()), orvStsStrideErr);
      ASSERT_EQ(call(height - 1, step, numbers.data()), orvStsSizeErr);  // the first row is the last of all
      ASSERT_TRUE(dst.untouched());
      ASSERT_EQ(call(height, step, numbers.data()), orvStsNoErr);
      for (std::size_t c = 0; c < len; ++c)
        ASSERT_TRUE(sameBits(dst.at(c), expected[c])) << c << " of " << len;
    }
}

TEST(AddNRows, OrderOfChecks) {
  enum : unsigned {
    src = 1,
    dst = 2,
    add = 4,
    index = 8,
    count = 16,
    height = 32,
    length = 64,
    offset = 128,
    stride = 256,
    row = 512
  };
  const float matrix[8] = {};
  const std::uint16_t sums[1] = {65535};
  Guarded<float> out(4);
  expectOrderOfChecks({{src, orvStsNullPtrErr},
                       {dst, orvStsNullPtrErr},
                       {add, orvStsNullPtrErr},
                       {index, orvStsNullPtrErr},
                       {count, orvStsSizeErr},
                       {height, orvStsSizeErr},
                       {length, orvStsSizeErr},
                       {offset, orvStsSizeErr},
                       {stride, orvStsStrideErr},
                       {row, orvStsSizeErr}},
                      [&](unsigned faults) {
                        const auto has = [faults](unsigned bit) { return (faults & bit) != 0; };
                        const std::int32_t numbers[1] = {has(row) ? INT32_MAX : -65535};
                        return orvsAddNRows_32f_D2(has(src) ? nullptr : matrix, has(height) ? 0 : 2,
                                                   has(offset)   ? -1
                                                   : has(stride) ? INT32_MAX
                                                                 : 0,
                                                   4, has(index) ? nullptr : numbers,
                                                   has(add) ? nullptr : sums, has(count) ? 0 : 1,
                                                   has(dst) ? nullptr : out.data(), has(length) ? 0 : 4, 0);
                      });
  EXPECT_TRUE(out.untouched());
}

TEST(ScaleLM, FloorsScalesAndAdds) {
  Random random(11);
  for (std::size_t len = 1; len <= 40; ++len) {
    std::vector<float> single = uniform<float>(random, len, -30, 0);
    if (len > 6) single[len - 6] = std::numeric_limits<float>::quiet_NaN();
    single[len - 1] = std::numeric_limits<float>::quiet_NaN();
    const std::vector<std::int16_t> fixed = anyIntegers<std::int16_t>(random, len);
    const Guarded<float> src(single, len % 16);
    const Guarded<std::int16_t> src16(fixed, (3 * len) % 16);
    Guarded<float> dst(len, (5 * len) % 16);
    Guarded<std::int32_t> dst32(len, (7 * len) % 16);
    ASSERT_EQ(orvsScaleLM_32f(src.data(), dst.data(), src.len(), -17.3F, 9.7F, -3.1F), orvStsNoErr);
    for (std::size_t i = 0; i < len; ++i)
      ASSERT_TRUE(sameBits(dst.at(i), (single[i] > -17.3F ? single[i] : -17.3F) * 9.7F + -3.1F));
    for (const std::int16_t scale : anyIntegers<std::int16_t>(random, 3))
      for (const std::int32_t offset : {INT32_MIN, 5, INT32_MAX}) {
        ASSERT_EQ(orvsScaleLM_16s32s(src16.data(), dst32.data(), src16.len(), -20000, scale, offset),
                  orvStsNoErr);
        for (std::size_t i = 0; i < len; ++i)
          ASSERT_EQ(dst32.at(i),
                    static_cast<std::int32_t>(std::int64_t{std::max<std::int16_t>(fixed[i], -20000)} * scale +
                                              offset));
      }
  }
}

template <class T, class R, class... Values>
void checkScaleOrder(OrvStatus (*f)(const T *, R *, int32_t, Values...)) {
  const T src[1] = {};
  Guarded<R> dst(1);
  expectOrderOfChecks({{1, orvStsNullPtrErr}, {2, orvStsNullPtrErr}, {4, orvStsSizeErr}},
                      [&](unsigned faults) {
                        return f((faults & 1) != 0 ? nullptr : src, (faults & 2) != 0 ? nullptr : dst.data(),
                                 (faults & 4) != 0 ? 0 : 1, Values{}...);
                      });
  EXPECT_TRUE(dst.untouched());
}

TEST(ScaleLM, OrderOfChecks) {
  checkScaleOrder(orvsScaleLM_32f);
  checkScaleOrder(orvsScaleLM_16s32s);
}

}  // namespace
}  // namespace orv::test
