// Births of codebooks, what is read back from them, their release, and the fields of direct ones.

#include "vq/codebook.h"

#include <gtest/gtest.h>

#include <cfloat>

#include "support/allocation.h"
#include "support/arrays.h"
#include "vq/books.h"

using namespace orv::test;
using orv::cdbk::CdbkGridField;

namespace {

template <class T>
struct Codebook : ::testing::Test {};
TYPED_TEST_SUITE(Codebook, Elements);

// The first of these that is violated decides, and nothing is stored.
TYPED_TEST(Codebook, ChecksInOrder) {
  using T = TypeParam;
  const Guarded<T> src(wholeNumbers<T>(*std::make_unique<Random>(1), 40, 9));
  const Guarded<T> ones(std::vector<T>(4, 1)), negative(std::vector<T>{1, -1, 1, 1});
  CdbkState *const untouched = reinterpret_cast<CdbkState *>(8);
  CdbkState *cdbk = untouched;
  const auto alloc = [&](const T *s, int width, int step, int height, int size, int method) {
    return Api<T>::build(&cdbk, s, width, step, height, size, method);
  };
  const auto weighted = [&](const T *s, const T *w, int width, int step, int height, int size, int method) {
    return Api<T>::buildWeighted(&cdbk, s, w, width, step, height, size, method);
  };
  EXPECT_EQ(alloc(nullptr, 0, 4, 10, 10, 1), orvStsSizeErr);
  EXPECT_EQ(alloc(nullptr, 4, 0, 10, 10, 1), orvStsNullPtrErr);
  EXPECT_EQ(weighted(nullptr, ones.data(), 0, 4, 10, 10, 9), orvStsNullPtrErr);
  EXPECT_EQ(weighted(src.data(), nullptr, 0, 4, 10, 10, 9), orvStsNullPtrErr);
  const int badSizes[][4] = {{0, 4, 10, 10}, {4, 0, 10, 10}, {4, 4, 0, 10},       {4, 4, 10, 0},
                             {4, 3, 10, 10}, {4, 4, 9, 10},  {4, 4, 16384, 16384}};
  Guarded<std::int32_t> size(1);
  Guarded<std::uint8_t> memory(64);
  auto *const pCdbk = reinterpret_cast<CdbkState *>(memory.data());
  for (const auto &[width, step, height, rows] : badSizes) {
    EXPECT_EQ(alloc(src.data(), width, step, height, rows, 9), orvStsSizeErr);
    EXPECT_EQ(weighted(src.data(), negative.data(), width, step, height, rows, 9), orvStsSizeErr);
    EXPECT_EQ(Api<T>::getSize(width, step, height, rows, 9, size.data()), orvStsSizeErr);
    EXPECT_EQ(Api<T>::getSize(width, step, height, rows, 9, nullptr), orvStsNullPtrErr);
    EXPECT_EQ(Api<T>::init(pCdbk, src.data(), width, step, height, rows, 9), orvStsSizeErr);
    EXPECT_EQ(Api<T>::init(nullptr, src.data(), width, step, height, rows, 9), orvStsNullPtrErr);
    EXPECT_EQ(Api<T>::init(pCdbk, nullptr, width, step, height, rows, 9), orvStsNullPtrErr);
    for (const int method : {CDBK_SPLIT_SPREAD, CDBK_SPLIT_COUNT}) {
      EXPECT_EQ(Api<T>::getSize(width, step, height, rows, method, nullptr), orvStsCdbkMethodErr);
      EXPECT_EQ(Api<T>::init(nullptr, nullptr, width, step, height, rows, method), orvStsCdbkMethodErr);
    }
  }
  // In caller memory every row is held; a size that no 32-bit number expresses is refused.
  EXPECT_EQ(Api<T>::getSize(4, 4, 10, 9, CDBK_DIRECT, size.data()), orvStsSizeErr);
  EXPECT_EQ(Api<T>::init(pCdbk, src.data(), 4, 4, 10, 9, CDBK_DIRECT), orvStsSizeErr);
  EXPECT_EQ(Api<T>::getSize(5, INT32_MAX, 2, 2, CDBK_DIRECT, size.data()), orvStsSizeErr);
  EXPECT_EQ(weighted(src.data(), negative.data(), 4, 4, 10, 10, 9), orvStsBadArgErr);
  EXPECT_EQ(alloc(src.data(), 5, INT32_MAX, 10, 2, CDBK_SPLIT_COUNT), orvStsMemAllocErr);
  EXPECT_TRUE(memory.untouched());
  EXPECT_TRUE(size.untouched());
  {
    Allocations allocations;
    EXPECT_EQ(alloc(src.data(), 4, 4, 10, 10, 7), orvStsCdbkMethodErr);
    EXPECT_GT(allocations.calls(), 4);  // the method is looked at once the object is there
  }
  EXPECT_EQ(cdbk, untouched);

  Guarded<T> out(4);
  EXPECT_EQ(Api<T>::rows(nullptr, size.data()), orvStsNullPtrErr);
  EXPECT_EQ(Api<T>::read(nullptr, out.data(), 4), orvStsNullPtrErr);
  EXPECT_EQ(Api<T>::release(nullptr), orvStsNullPtrErr);
  const std::vector<T> weights = {1, 0, static_cast<T>(-0.0), 2};
  ASSERT_EQ(weighted(src.data(), weights.data(), 4, 4, 10, 10, CDBK_DIRECT), orvStsNoErr);
  EXPECT_EQ(Api<T>::rows(cdbk, nullptr), orvStsNullPtrErr);
  EXPECT_EQ(Api<T>::read(cdbk, nullptr, 0), orvStsNullPtrErr);
  EXPECT_EQ(Api<T>::read(cdbk, out.data(), 3), orvStsSizeErr);
  EXPECT_EQ(Api<T>::read(cdbk, out.data(), 0), orvStsSizeErr);
  EXPECT_TRUE(out.untouched());
  cdbk->method = 5;
  EXPECT_EQ(Api<T>::release(cdbk), orvStsCdbkKindErr);
  void *const data = std::exchange(cdbk->pData, nullptr);
  EXPECT_EQ(Api<T>::release(cdbk), orvStsNullPtrErr);
  cdbk->pData = data;
  cdbk->method = CDBK_DIRECT;
  EXPECT_EQ(Api<T>::release(cdbk), orvStsNoErr);
}

template <class T>
void expectRows(const CdbkState *cdbk, const Guarded<T> &src, int width, int step, int height) {
  std::int32_t rows = 0;
  ASSERT_EQ(Api<T>::rows(cdbk, &rows), orvStsNoErr);
  ASSERT_EQ(rows, height);
  Guarded<T> out(static_cast<std::size_t>((height - 1) * (width + 1) + width), 1);
  ASSERT_EQ(Api<T>::read(cdbk, out.data(), width + 1), orvStsNoErr);
  for (int r = 0; r < height; ++r)
    for (int k = 0; k < width; ++k)
      ASSERT_EQ(out.at(static_cast<std::size_t>(r * (width + 1) + k)),
                src.at(static_cast<std::size_t>(r * step + k)));
}

// Codebooks in memory of exactly the reported size at any address, and allocated ones: the strides differ by
// birth, by type and by method.
TYPED_TEST(Codebook, HoldsEveryRowWhoeverOwnsTheMemory) {
  using T = TypeParam;
  constexpr bool isFloat = std::is_same_v<T, float>;
  Random random(2);
  for (int width = 1; width <= 40; ++width)
    for (const int height : {1, 2, 9, 33}) {
      const int step = width + height % 4;
      const Guarded<T> src(wholeNumbers<T>(random, static_cast<std::size_t>(height * step), 99), 1);
      const int stride = width == 1 || width == 2 || width == 4 ? width : (step + 7) / 8 * 8;
      std::int32_t bytes = 0;
      ASSERT_EQ(Api<T>::getSize(width, step, height, height, 7, &bytes), orvStsNoErr);
      ASSERT_EQ(bytes, isFloat ? (width + height + stride * height) * 4 + 176
                               : height * 4 + 208 + (width + stride * height) * 2);
      Guarded<std::uint8_t> memory(static_cast<std::size_t>(bytes), static_cast<std::size_t>(width * 5 % 64));
      auto *const placed = reinterpret_cast<CdbkState *>(memory.data());
      ASSERT_EQ(Api<T>::init(placed, src.data(), width, step, height, height, 7), orvStsNoErr);
      const CdbkState &head = *orv::cdbk::codebookIn(placed);
      EXPECT_EQ(head.stride, stride);
      EXPECT_EQ(head.method, 7);
      EXPECT_EQ(head.maxDepth, height - 1);
      EXPECT_EQ(head.sizeBits, std::bit_width(static_cast<unsigned>(height - 1)));
      EXPECT_EQ(head.flags, 0U);
      for (const void *part : {head.pData, head.pWeights, static_cast<void *>(head.pScratch)})
        EXPECT_TRUE(orv::isAligned(part, 32));
      for (int k = 0; k < width; ++k) EXPECT_EQ(orv::cdbk::weightsOf<T>(head)[k], 1);
      std::fill_n(head.pScratch, height, 0.0F);  // within the memory
      expectRows(placed, src, width, step, height);

      CdbkState *cdbk = nullptr;
      ASSERT_EQ(Api<T>::build(&cdbk, src.data(), width, step, height, (height + 1) / 2, CDBK_DIRECT),
                height == 1 ? orvStsNoErr : orvStsCdbkShortWrn);
      const int unit = isFloat ? 4 : 8;
      EXPECT_EQ(cdbk->stride, width == 1 || width == 2 || width == 4 || (isFloat && width == 8)
                                  ? width
                                  : (step + unit - 1) / unit * unit);
      EXPECT_EQ(cdbk->maxDepth, height - 1);
      expectRows(cdbk, src, width, step, height);
      EXPECT_EQ(Api<T>::release(cdbk), orvStsNoErr);
    }
}

TYPED_TEST(Codebook, GrowsByHand) {
  using T = TypeParam;
  const auto grow = [](const std::vector<T> &values, int size, int method, std::vector<T> expected,
                       OrvStatus status) {
    CdbkState *cdbk = nullptr;
    EXPECT_EQ(Api<T>::build(&cdbk, values.data(), 1, 1, static_cast<int>(values.size()), size, method),
              status);
    std::vector<T> rows(expected.size());
    ASSERT_EQ(static_cast<std::size_t>(cdbk->size), rows.size());
    EXPECT_EQ(Api<T>::read(cdbk, rows.data(), 1), orvStsNoErr);
    EXPECT_EQ(rows, expected);
    EXPECT_EQ(Api<T>::release(cdbk), orvStsNoErr);
  };
  for (const int method : {CDBK_SPLIT_SPREAD, CDBK_SPLIT_COUNT}) {
    grow({7}, 1, method, {7}, orvStsNoErr);
    grow({7, 7, 7, 7}, 3, method, {7}, orvStsCdbkShortWrn);
    grow({2, 8}, 2, method, {8, 2}, orvStsNoErr);  // the first of two equals moves to the end
    grow({2, 8, 2, 8, 8}, 3, method, {2, 8}, orvStsCdbkShortWrn);
    grow({0, 10, 100}, 2, method, {100, 5}, orvStsNoErr);
  }
  // The nearest two of five move and take a third along; both clusters have the same spread then, and the
  // first of them is split. The other has more rows: its middle one moves away but stays the mean of all, so
  // that its centroid is pushed towards the first row.
  grow({0, 80, -20, 120, 20}, 3, CDBK_SPLIT_SPREAD, {120, 0, 80}, orvStsNoErr);
  grow({0, 80, -20, 120, 20}, 3, CDBK_SPLIT_COUNT, {100, 20, -10}, orvStsNoErr);
}

TYPED_TEST(Codebook, ReleasesEverythingWhereAnAllocationFails) {
  using T = TypeParam;
  Random random(3);
  for (int width = 1; width <= 3; ++width)
    for (const int method : {CDBK_DIRECT, CDBK_SPLIT_SPREAD, CDBK_SPLIT_COUNT}) {
      const std::vector<T> src = wholeNumbers<T>(random, static_cast<std::size_t>(200 * width), 999);
      const int failures = failEachAllocation([&](int) {
        CdbkState *cdbk = nullptr;
        const OrvStatus status = Api<T>::build(&cdbk, src.data(), width, width, 200, 20, method);
        EXPECT_EQ(cdbk == nullptr, status == orvStsMemAllocErr) << status;
        EXPECT_EQ(Api<T>::release(cdbk), cdbk == nullptr ? orvStsNullPtrErr : orvStsNoErr);
      });
      EXPECT_GT(failures, method == CDBK_DIRECT && width == 3 ? 5 : 6);
    }
}

// --- fields

bool less(float a, float b) { return double{b} > double{a} * 1.000001; }
bool isAtMost(float a, float b) {
  return less(a, b) || double{std::abs(a - b)} <= std::abs(double{std::max(a, b)}) * 9.999999747378752e-5;
}

// Candidates of a cell of the grid, by the smallest and the largest distance of every row.
template <class T>
std::vector<int> candidates(const std::vector<T> &rows, const std::vector<T> &weights, float left,
                            float right, float bottom, float top) {
  std::vector<float> nearest, farthest;
  for (std::size_t r = 0; r < rows.size() / 2; ++r) {
    const auto x = static_cast<float>(rows[2 * r]), y = static_cast<float>(rows[2 * r + 1]);
    const auto dx = [&](float e) { return (x - e) * (x - e) * static_cast<float>(weights[0]); };
    const auto dy = [&](float e) { return (y - e) * (y - e) * static_cast<float>(weights[1]); };
    std::vector<float> all = {dx(left) + dy(top), dx(right) + dy(top), dx(left) + dy(bottom),
                              dx(right) + dy(bottom)};
    if (x >= left && x <= right) all.insert(all.end(), {dy(top), dy(bottom)});
    if (y >= bottom && y <= top) all.insert(all.end(), {dx(left), dx(right)});
    float near = FLT_MAX, far = 0;
    for (const float d : all) {
      if (less(d, near)) near = d;
      if (less(far, d)) far = d;
    }
    nearest.push_back(near);
    farthest.push_back(far);
  }
  const float minimax = *std::min_element(farthest.begin(), farthest.end());
  std::vector<int> found;
  for (std::size_t r = 0; r < nearest.size(); ++r)
    if (isAtMost(nearest[r], minimax)) found.push_back(static_cast<int>(r));
  return found;
}

// Of one element of all rows.
struct Limits {
  float low, high, extent;

  template <class T>
  Limits(const std::vector<T> &rows, std::size_t k, std::size_t width) {
    float least = FLT_MAX, most = -FLT_MAX;
    for (; k < rows.size(); k += width) {
      least = std::min(least, static_cast<float>(rows[k]));
      most = std::max(most, static_cast<float>(rows[k]));
    }
    low = least * (least > 0 ? 0.9F : 1.1F);
    high = most * (most > 0 ? 1.1F : 0.9F);
    extent = most - least;
  }
  float cell(int cells) const { return extent * 1.1F / static_cast<float>(cells); }
};

// Columns and rows of the grid; none where there is no field.
template <class T>
std::pair<int, int> cellsOfGrid(const std::vector<T> &rows, const std::vector<T> &weights) {
  const Limits x(rows, 0, 2), y(rows, 1, 2);
  const auto cost = [&](int columns, int lines) {
    std::size_t sum = 0;
    const float w = x.cell(columns), h = y.cell(lines);
    for (float j = 0; j < static_cast<float>(lines); ++j)
      for (float i = 0; i < static_cast<float>(columns); ++i)
        sum += candidates(rows, weights, x.low + i * w, x.low + (i + 1) * w, y.high - (j + 1) * h,
                          y.high - j * h)
                   .size();
    return static_cast<float>(sum) / static_cast<float>(columns * lines);
  };
  std::pair cells{4, 4};
  float least = cost(4, 4);
  for (;;) {
    const float taller = cost(cells.first, cells.second + 1), wider = cost(cells.first + 1, cells.second);
    const float best = less(taller, wider) ? taller : wider;
    if (least - best <= 0.05F * least) break;
    least = best;
    ++(less(taller, wider) ? cells.second : cells.first);
  }
  return isAtMost(least, static_cast<float>(rows.size() / 2) / 10) ? cells : std::pair{0, 0};
}

// The list of a cell of a line: the rows in it, then the nearest one on either side.
template <class T>
std::vector<int> listOfLine(const std::vector<T> &rows, const Limits &x, int cells, int j) {
  std::vector<int> inside;
  int below = -1, above = -1;
  for (std::size_t r = 0; r < rows.size(); ++r) {
    const auto at = [&](int row) { return static_cast<float>(rows[static_cast<std::size_t>(row)]) - x.low; };
    const int row = static_cast<int>(r), c = std::min(static_cast<int>(at(row) / x.cell(cells)), cells - 1);
    const auto takeNearer = [&](int &nearest, int edge) {
      const auto d = [&](int i) { return std::abs(at(i) - static_cast<float>(edge) * x.cell(cells)); };
      if (nearest < 0 || d(row) < d(nearest)) nearest = row;
    };
    if (c == j) inside.push_back(row);
    if (c < j) takeNearer(below, j);
    if (c > j) takeNearer(above, j + 1);
  }
  for (const int row : {below, above})
    if (row >= 0) inside.push_back(row);
  return inside;
}

// Wherever a point lies, the search finds a row as near as any, also for rows far from zero, where the cells
// do not reach all of them; and every cell of a grid lists its candidates.
TYPED_TEST(Codebook, FieldsLoseNoNearestRow) {
  using T = TypeParam;
  Random random(4);
  int fields[2] = {0, 0};
  for (int round = 0; round < 48; ++round) {
    const int width = 1 + round % 2, any = 11 + static_cast<int>(random() % 150),
              height = round < 6 ? 10 : (round == 17 ? 121 : any);
    const auto n = static_cast<std::size_t>(width);
    const double centre = (static_cast<int>(random() % 5) - 2) * 700;
    std::vector<T> rows =
        uniform<T>(random, n * static_cast<std::size_t>(height), centre - 500, centre + 500);
    // Equal rows; a square of rows, where a column is worth as much as a line and comes first.
    if (width == 1 && round % 4 == 0)
      for (T &x : rows) x = static_cast<T>(static_cast<int>(x) / 50 * 50);
    if (round == 17) {
      rows.clear();
      for (int r = 0; r < height; ++r)
        rows.insert(rows.end(), {static_cast<T>(r % 11 * 120 - 600), static_cast<T>(r / 11 * 120 - 600)});
    }
    std::vector<T> weights(n, 1);
    if (round % 3 == 0) weights[n - 1] = 3;
    const Book book = buildBook(rows, weights, height, CDBK_DIRECT);
    EXPECT_EQ(book->flags, (book->pField != nullptr ? 1U : 0U) | (weights[n - 1] == 3 ? 2U : 0U));
    EXPECT_TRUE(height > 10 || book->pField == nullptr);
    const auto cells = width == 2 && height > 10 ? cellsOfGrid(rows, weights) : std::pair{0, 0};
    if (width == 2) {
      EXPECT_EQ(book->pField != nullptr, cells.first > 0);
    }
    if (book->pField == nullptr) continue;
    ++fields[width - 1];
    for (int i = 0; i < 300; ++i) {
      const std::vector<T> point = uniform<T>(random, n, centre - 900, centre + 900);
      std::int32_t found = -1;
      ASSERT_EQ(vqOf<T>(point.data(), width, &found, 1, book.get()), orvStsNoErr);
      double best = DBL_MAX;
      for (std::size_t r = 0; r < rows.size(); r += n)
        best = std::min(best, squaredDistance(point.data(), &rows[r], weights));
      ASSERT_GE(found, 0);
      ASSERT_LE(squaredDistance(point.data(), &rows[static_cast<std::size_t>(found) * n], weights),
                best * 1.000003)
          << "round " << round << ": " << point[0] << " of " << centre;
    }
    if (width == 1) {
      const orv::cdbk::CdbkLineField &line = *orv::cdbk::lineFieldOf(*book);
      const Limits x(rows, 0, 1);
      EXPECT_GE(line.cellCount, 10);
      EXPECT_TRUE(line.low == x.low && line.high == x.high && line.cellWidth == x.cell(line.cellCount));
      for (int at = 0; at < line.cellCount + 2; ++at)
        EXPECT_EQ(std::vector<int>(line.ppLists[at], line.ppLists[at] + line.pCounts[at]),
                  listOfLine(rows, x, line.cellCount, std::clamp(at - 1, 0, line.cellCount - 1)));
      continue;
    }
    const CdbkGridField &field = *orv::cdbk::gridFieldOf(*book);
    const Limits x(rows, 0, 2), y(rows, 1, 2);
    EXPECT_EQ(cells, (std::pair{field.columns, field.rows}));
    EXPECT_TRUE(field.left == x.low && field.right == x.high && field.cellWidth == x.cell(field.columns));
    EXPECT_TRUE(field.bottom == y.low && field.top == y.high && field.cellHeight == y.cell(field.rows));
    for (int j = 0; j < field.rows; ++j)
      for (int i = 0; i < field.columns; ++i) {
        const int at = (j + 1) * (field.columns + 2) + i + 1;
        const auto column = static_cast<float>(i), row = static_cast<float>(j);
        EXPECT_EQ(std::vector<int>(field.ppLists[at], field.ppLists[at] + field.pCounts[at]),
                  candidates(rows, weights, field.left + column * field.cellWidth,
                             field.left + (column + 1) * field.cellWidth,
                             field.top - (row + 1) * field.cellHeight, field.top - row * field.cellHeight));
      }
  }
  EXPECT_GT(fields[0], 4);
  EXPECT_GT(fields[1], 4);

  for (const std::size_t width : {1U, 2U})
    EXPECT_EQ(buildBook(std::vector<T>(20 * width, 5), std::vector<T>(width, 1), 20, CDBK_DIRECT)->pField,
              nullptr);
}

}  // namespace
