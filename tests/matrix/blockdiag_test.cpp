// The layout of a block-diagonal matrix, which scoring reads directly.

#include "matrix/blockdiag.h"

#include <gtest/gtest.h>

#include <numeric>

#include "orvsr/matrix.h"
#include "support/allocation.h"
#include "support/arrays.h"

using namespace orv::test;

namespace {

template <class T, class MatrixType, auto initAlloc, auto release>
struct Type {
  using Elem = T;
  using Matrix = MatrixType;
  static constexpr auto init = initAlloc;
  static constexpr auto free = release;
};

template <class Type>
class BlockDMatrix : public ::testing::Test {};
using Types = ::testing::Types<
    Type<std::int16_t, OrvBlockDMatrix_16s, orvsBlockDMatrixInitAlloc_16s, orvsBlockDMatrixFree_16s>,
    Type<float, OrvBlockDMatrix_32f, orvsBlockDMatrixInitAlloc_32f, orvsBlockDMatrixFree_32f>,
    Type<double, OrvBlockDMatrix_64f, orvsBlockDMatrixInitAlloc_64f, orvsBlockDMatrixFree_64f>>;
TYPED_TEST_SUITE(BlockDMatrix, Types);

std::size_t padded(std::size_t bytes) { return (bytes + 15) & ~std::size_t{15}; }
template <class T>
std::size_t rowBytes(std::int32_t size) {
  return padded(static_cast<std::size_t>(size) * sizeof(T));
}

TYPED_TEST(BlockDMatrix, HoldsACopyOfEveryRowInOneBlockOfTheStatedSize) {
  using T = typename TypeParam::Elem;
  Random random(1);
  for (const std::vector<std::int32_t> &sizes : std::vector<std::vector<std::int32_t>>{
           {1}, {1, 1, 1, 1, 1}, {8}, {9, 3, 16, 1}, {40, 17}, std::vector<std::int32_t>(300, 2)}) {
    for (const std::size_t alignment : {8U, 16U}) {
      Allocations allocations;
      allocations.alignTo(alignment);
      const auto rowCount = static_cast<std::size_t>(std::accumulate(sizes.begin(), sizes.end(), 0));
      std::vector<std::vector<T>> source;
      std::size_t bytes = padded(4 * sizes.size()) + padded(8 * rowCount) + 47;
      for (const std::int32_t size : sizes) {
        const auto width = static_cast<std::size_t>(size);
        for (std::size_t i = 0; i < width; ++i) source.push_back(wholeNumbers<T>(random, width, 100));
        bytes += rowBytes<T>(size) * rowBytes<T>(size);
      }
      const std::vector<std::vector<T>> expected = source;
      std::vector<const T *> rows;
      for (const auto &row : source) rows.push_back(row.data());

      typename TypeParam::Matrix *matrix = nullptr;
      ASSERT_EQ(TypeParam::init(&matrix, rows.data(), sizes.data(), static_cast<std::int32_t>(sizes.size())),
                orvStsNoErr);
      EXPECT_EQ(allocations.sizes(), std::vector<std::size_t>{bytes});
      source.clear();
      ASSERT_EQ(matrix->rowCount, rowCount);
      ASSERT_EQ(matrix->blockCount, sizes.size());
      std::size_t r = 0;
      for (std::size_t b = 0; b < sizes.size(); ++b) {
        ASSERT_EQ(matrix->blockSizes[b], sizes[b]);
        for (std::int32_t i = 0; i < sizes[b]; ++i, ++r) {
          EXPECT_EQ(reinterpret_cast<std::uintptr_t>(matrix->rows[r]) % 16, 0U);
          if (i > 0) {
            EXPECT_EQ(
                reinterpret_cast<char *>(matrix->rows[r]) - reinterpret_cast<char *>(matrix->rows[r - 1]),
                static_cast<std::ptrdiff_t>(rowBytes<T>(sizes[b])));
          }
          ASSERT_EQ(std::vector<T>(matrix->rows[r], matrix->rows[r] + sizes[b]), expected[r]);
        }
      }
      // Nothing of the object lies outside its block.
      EXPECT_LE(reinterpret_cast<std::uint8_t *>(matrix->rows[r - 1] + sizes.back()), matrix->memory + bytes);
      EXPECT_EQ(TypeParam::free(matrix), orvStsNoErr);
    }
  }
}

TYPED_TEST(BlockDMatrix, RefusesInTheOrderOfItsChecks) {
  using T = typename TypeParam::Elem;
  const T value = 1;
  const T *const rows[3] = {&value, &value, &value};
  const std::int32_t sizes[3] = {1, 1, 0};
  typename TypeParam::Matrix *matrix = nullptr;
  {
    Allocations allocations;
    EXPECT_EQ(TypeParam::init(nullptr, rows, sizes, 0), orvStsNullPtrErr);
    EXPECT_EQ(TypeParam::init(&matrix, nullptr, sizes, 0), orvStsNullPtrErr);
    EXPECT_EQ(TypeParam::init(&matrix, rows, nullptr, 0), orvStsNullPtrErr);
    EXPECT_EQ(TypeParam::init(&matrix, rows, sizes, 0), orvStsSizeErr);
    EXPECT_EQ(TypeParam::init(&matrix, rows, sizes, 3), orvStsSizeErr);
    // Sizes that cannot be recorded, the second one in no 64-bit count of bytes either.
    const std::int32_t most[] = {65535, 1, INT32_MAX};
    EXPECT_EQ(TypeParam::init(&matrix, rows, most, 2), orvStsSizeErr);
    EXPECT_EQ(TypeParam::init(&matrix, rows, most + 2, 1), orvStsSizeErr);
    EXPECT_EQ(TypeParam::free(nullptr), orvStsNullPtrErr);
    // More bytes than can be asked for.
    EXPECT_EQ(TypeParam::init(&matrix, rows, most, 1), orvStsMemAllocErr);
    EXPECT_EQ(allocations.calls(), 0);
  }
  EXPECT_EQ(failEachAllocation([&](int) {
              const OrvStatus status = TypeParam::init(&matrix, rows, sizes, 2);
              if (status == orvStsNoErr) {
                TypeParam::free(matrix);
              } else {
                EXPECT_EQ(status, orvStsMemAllocErr);
                EXPECT_EQ(matrix, nullptr);
              }
            }),
            1);
}

}  // namespace
