#include <gtest/gtest.h>

#include <algorithm>
#include <cfloat>
#include <limits>
#include <numeric>

#include "books.h"
#include "orvsr/gauss.h"
#include "vq/codebook.h"

using namespace orv::test;
using namespace orv::cdbk;

namespace {

template <class T>
class VectorQuantisation : public ::testing::Test {
 protected:
  int pick(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); }
  std::vector<T> numbers(int count, int limit) {
    return wholeNumbers<T>(random, static_cast<std::size_t>(count), limit);
  }
  std::vector<T> weights(int width, bool weighted) {
    std::vector<T> w(static_cast<std::size_t>(width), T{1});
    if (weighted)
      for (T &v : w) v = static_cast<T>(pick(0, 4));
    return w;
  }
  Random random{11};
};
TYPED_TEST_SUITE(VectorQuantisation, Elements);

struct Found {
  double distance = 3.4028235e38;
  int index = -1;
};

template <class T>
Found scanAll(const T *x, const std::vector<T> &rows, const std::vector<T> &weights) {
  Found best;
  const std::size_t width = weights.size();
  for (std::size_t r = 0; r < rows.size() / width; ++r) {
    const double d = squaredDistance(x, rows.data() + r * width, weights);
    if (best.distance > d * 1.000001) best = {d, static_cast<int>(r)};
  }
  return best;
}

TYPED_TEST(VectorQuantisation, ScansAllRowsInOrder) {
  using T = TypeParam;
  for (int round = 0; round < 150; ++round) {
    const int width = round % 10 == 9 ? 131 : this->pick(1, 41);
    const int size = width > 2 ? this->pick(1, round % 20 ? 70 : 700) : this->pick(1, 10);  // without a field
    const int height = this->pick(1, round % 3 ? 150 : 20), step = width + this->pick(0, 3);
    // From many ties to few.
    const int limit = this->pick(1, 3) * this->pick(1, 60);
    const auto rows = this->numbers(size * width, limit);
    const auto weights = this->weights(width, round % 2);
    const auto book = buildBook(rows, weights, size, CDBK_DIRECT);
    const Guarded<T> x(this->numbers(height * step, limit + limit / 4), static_cast<std::size_t>(round % 4));
    const auto h = static_cast<std::size_t>(height), offset = static_cast<std::size_t>(round % 3);
    Guarded<std::int32_t> index(h, offset), sameIndex(h);
    Guarded<DistanceOf<T>> distance(h, offset);
    ASSERT_EQ(vqOf<T>(x.data(), step, index.data(), height, book.get()), orvStsNoErr);
    ASSERT_EQ(vqDist(x.data(), step, sameIndex.data(), distance.data(), height, book.get(), round % 5 - 2),
              orvStsNoErr);
    ASSERT_EQ(index.values(), sameIndex.values());
    const auto vectors = x.values();
    for (std::size_t i = 0; i < h; ++i) {
      const Found best = scanAll(vectors.data() + i * static_cast<std::size_t>(step), rows, weights);
      ASSERT_EQ(index.at(i), best.index) << "width " << width << " size " << size << " limit " << limit;
      ASSERT_EQ(distance.at(i), reported<T>(best.distance, round % 5 - 2));
    }
  }
}

// Many vectors at once are compared by other means than a single one; the answers are the same to the last
// bit, for numbers of any size, far outside the rows, or close to two of them.
TYPED_TEST(VectorQuantisation, FindsTheSameForManyVectorsAsForOne) {
  using T = TypeParam;
  constexpr bool single = std::is_same_v<T, float>;
  for (int round = 0; round < 60; ++round) {
    const int width = this->pick(3, 50), size = this->pick(2, 900), height = 200;
    const double spread = single ? std::pow(10.0, round % 12 * 4 - 22) : std::pow(2.0, round % 16);
    const double centre = round % 5 == 4 ? 20 * spread : 0;
    auto rows =
        uniform<T>(this->random, static_cast<std::size_t>(size * width), centre - spread, centre + spread);
    auto x = uniform<T>(this->random, static_cast<std::size_t>(height * width), centre - 2 * spread,
                        centre + 1.5 * spread);
    for (int i = 0; i < 30; ++i) {
      auto *vector = x.data() + i * width;
      const T *one = rows.data() + this->pick(0, size - 1) * width;
      const T *other = rows.data() + this->pick(0, size - 1) * width;
      // On a row, or halfway between two rows.
      for (int k = 0; k < width; ++k) vector[k] = i % 2 ? one[k] : static_cast<T>(one[k] / 2 + other[k] / 2);
    }
    if (single && round % 4 == 0) {
      x[1] = std::numeric_limits<T>::quiet_NaN();
      x[static_cast<std::size_t>(width)] = std::numeric_limits<T>::infinity();
      x[static_cast<std::size_t>(2 * width)] = static_cast<T>(1e30);
      rows[0] = std::numeric_limits<T>::quiet_NaN();
    }
    const auto book = buildBook(rows, this->weights(width, round % 3 == 0), size, CDBK_DIRECT);
    std::vector<std::int32_t> index(200), indexOfOne(200);
    std::vector<DistanceOf<T>> distance(200), distanceOfOne(200);
    vqDist(x.data(), width, index.data(), distance.data(), height, book.get(), 0);
    for (int i = 0; i < height; ++i)
      vqDist(x.data() + i * width, width, &indexOfOne[static_cast<std::size_t>(i)],
             &distanceOfOne[static_cast<std::size_t>(i)], 1, book.get(), 0);
    ASSERT_EQ(index, indexOfOne) << "round " << round;
    ASSERT_EQ(distance, distanceOfOne);
  }
}

TEST(VectorQuantisationOf32f, TakesRowsWithinAMillionthForEqual) {
  const float second = std::nextafter(2.0F, 0.0F);
  for (const float first : {second, 2.0F, 2.0000002F, 2.00001F}) {
    const std::vector<float> rows{first, first, first, second, second, second};
    PlainBook<float> book(rows, 3);
    const float x[3] = {};
    std::int32_t index = -1;
    EXPECT_EQ(orvsVQ_32f(x, 3, &index, 1, book.get()), orvStsNoErr);
    EXPECT_EQ(index, first > 2.000005F ? 1 : 0) << first;
  }
}

TYPED_TEST(VectorQuantisation, LooksIntoTheCellOfAField) {
  using T = TypeParam;
  // Rows that say which list they stand in.
  std::vector<T> rows(30);
  std::int32_t numbers[15];
  std::int32_t *lists[15];
  std::int32_t counts[15];
  std::iota(numbers, numbers + 15, 0);
  for (int i = 0; i < 15; ++i) {
    lists[i] = numbers + i;
    counts[i] = 1;
  }
  counts[7] = 0;
  CdbkState book{};
  book.size = 15;
  book.method = CDBK_DIRECT;
  book.pData = rows.data();
  book.flags = kFieldInUse;

  book.width = book.stride = 1;
  CdbkLineField line{4, 10, 20, 60, lists, counts};
  book.pField = &line;
  const std::vector<T> x{-100, 19, 20, 29, 30, 59, 60, 99, 30000};
  std::vector<std::int32_t> index(9);
  EXPECT_EQ(vqOf<T>(x.data(), 1, index.data(), 9, &book), orvStsNoErr);
  EXPECT_EQ(index, (std::vector<std::int32_t>{0, 0, 1, 1, 2, 4, 5, 5, 5}));

  // Three columns of 10 from 0, one row of 20 below 40: lines of five cells, the second one is the interior.
  book.width = book.stride = 2;
  CdbkGridField grid{3, 1, 10, 20, 0, 40, 30, 20, lists, counts};
  book.pField = &grid;
  const std::vector<T> points{-1, 41, 0,  41, 99, 41, -1, 40, 0, 40, 29,
                              21, 30, 21, -1, 20, 5,  19, 30, 0, 10, 30};
  std::vector<std::int32_t> cells(11);
  std::vector<DistanceOf<T>> distances(11);
  EXPECT_EQ(vqDist(points.data(), 2, cells.data(), distances.data(), 11, &book, 40), orvStsNoErr);
  EXPECT_EQ(cells, (std::vector<std::int32_t>{0, 1, 4, 5, 6, 8, 9, 10, 11, 14, -1}));
  EXPECT_EQ(distances.back(), reported<T>(3.4028235e38, 40));
}

// --- trees

template <class T>
const T *centroid(const CdbkCluster *n) {
  return static_cast<const T *>(n->pCentroid);
}

// The scores of the weighted search; larger is better.
float logScoreOf(const float *row, const float *x, const CdbkState &book) {
  float score = 0;
  orvsLogGaussSingle_32f(row, x, weightsOf<float>(book), book.width, &score, 0);
  return score;
}
std::int32_t logScoreOf(const std::int16_t *row, const std::int16_t *x, const CdbkState &book) {
  int scale = 1;
  while (book.width >> scale) ++scale;
  std::int32_t score = 0;
  orvsLogGaussSingle_16s32s_Sfs(row, x, weightsOf<std::int16_t>(book), book.width, &score, 0, scale);
  return score;
}

struct Walk {
  const CdbkCluster *leaf, *end;
};

template <class T>
Walk walkTree(const CdbkState &book, const T *x) {
  const bool weighted = isWeighted(book);
  const auto score = [&](const CdbkCluster *n) {
    return weighted ? static_cast<double>(logScoreOf(centroid<T>(n), x, book))
                    : static_cast<double>(OwnDistanceE(x, centroid<T>(n), book.width));
  };
  // a is better than b by more than the tolerance.
  const auto better = [&](double a, double b) { return weighted ? a > b * 1.000001 : b > a * 1.000001; };
  const CdbkCluster *n = book.pRoot;
  while (!n->isLeaf) {
    const auto child = [](const CdbkCluster *c, bool right) {
      return c->isLeaf ? c : right ? c->pRight : c->pLeft;
    };
    const double LL = score(child(n->pLeft, false)), LR = score(child(n->pLeft, true));
    const double RL = score(child(n->pRight, false)), RR = score(child(n->pRight, true));
    const bool left = (better(LL, RL) && better(LL, RR)) || (better(LR, RL) && better(LR, RR));
    n = left ? n->pLeft : n->pRight;
  }
  Walk walk{n, n};
  for (bool moved = true; moved;) {
    moved = false;
    const double b = score(walk.end);
    for (int i = 0; i < walk.end->neighbourCount && !moved; ++i) {
      const double s = score(walk.end->ppNeighbours[i]);
      if (!better(s, b) || std::abs(s - b) <= std::abs(std::max(s, b)) * 1e-4) continue;
      walk.end = walk.end->ppNeighbours[i];
      moved = true;
    }
  }
  return walk;
}

TYPED_TEST(VectorQuantisation, DescendsTreesAndWalksOn) {
  using T = TypeParam;
  int walked = 0;
  for (int round = 0; round < 60; ++round) {
    const int width = this->pick(1, 20), height = this->pick(round % 6 ? 2 : 1, 150);
    const int size = round % 8 == 0 ? std::min(height, 3) : this->pick(1, std::min(height, 60));
    // Small numbers give integer scores their ties; far points, whose distances hardly differ, near ones.
    const int limit = round % 3 == 0 ? 4 : 500;
    const auto rows = this->numbers(height * width, limit);
    auto weights = this->weights(width, round % 2);
    weights[0] = 1;
    const auto book = buildBook(rows, weights, size, round % 4 < 2 ? CDBK_SPLIT_SPREAD : CDBK_SPLIT_COUNT);
    const auto x = this->numbers(100 * width, round % 9 == 0 ? 20000 : limit + limit / 10);
    std::vector<std::int32_t> index(100);
    std::vector<DistanceOf<T>> distance(100);
    ASSERT_EQ(vqDist(x.data(), width, index.data(), distance.data(), 100, book.get(), 0), orvStsNoErr);
    for (int i = 0; i < 100; ++i) {
      const T *vector = x.data() + i * width;
      const Walk walk = walkTree(*book, vector);
      const auto at = static_cast<std::size_t>(i);
      ASSERT_EQ(index[at], walk.end->index) << "round " << round;
      const float d = OwnDistance(vector, rowOf<T>(*book, index[at]), weights.data(), width);
      ASSERT_EQ(distance[at], reported<T>(static_cast<double>(d), 0));
      ASSERT_LE(d, OwnDistance(vector, centroid<T>(walk.leaf), weights.data(), width) * 1.0001F);
      walked += walk.end != walk.leaf;
    }
  }
  EXPECT_GT(walked, 50);
}

// --- lists of one vector

TYPED_TEST(VectorQuantisation, SortsRowsByDistance) {
  using T = TypeParam;
  for (int round = 0; round < 60; ++round) {
    const int width = this->pick(1, 12), size = this->pick(1, 60),
              count = round % 2 ? size : this->pick(1, size);
    const auto rows = this->numbers(size * width, 6);
    const auto weights = this->weights(width, round % 3 == 0);
    // The method does not matter: rows are read from the object in their order.
    const auto book = buildBook(rows, weights, size, round % 5 ? CDBK_DIRECT : CDBK_SPLIT_SPREAD);
    const auto x = this->numbers(width, 8);
    const int held = book->size, wanted = std::min(count, held);
    std::vector<double> distances;
    for (int r = 0; r < held; ++r)
      distances.push_back(squaredDistance(x.data(), rowOf<T>(*book, r), weights));
    std::vector<std::int32_t> order(static_cast<std::size_t>(held));
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(), [&](std::int32_t a, std::int32_t b) {
      return distances[static_cast<std::size_t>(a)] < distances[static_cast<std::size_t>(b)];
    });
    order.resize(static_cast<std::size_t>(wanted));
    Guarded<std::int32_t> index(order.size(), 1), indexWithDistance(order.size());
    Guarded<DistanceOf<T>> distance(order.size(), static_cast<std::size_t>(round % 4));
    ASSERT_EQ(vqSortOf<T>(x.data(), index.data(), book.get(), wanted), orvStsNoErr);
    ASSERT_EQ(vqDistSort(x.data(), indexWithDistance.data(), distance.data(), book.get(), wanted, -3),
              orvStsNoErr);
    ASSERT_EQ(index.values(), order);
    ASSERT_EQ(indexWithDistance.values(), order);
    for (std::size_t i = 0; i < order.size(); ++i)
      ASSERT_EQ(distance.at(i), reported<T>(distances[static_cast<std::size_t>(order[i])], -3));
  }
}

TYPED_TEST(VectorQuantisation, ListsRowsWithinAFactor) {
  using T = TypeParam;
  const std::vector<T> rows{30, 10, 11, 20, 12, 10, 15};  // distances of 0
  PlainBook<T> book(rows, 1);
  const T x = 0;
  const auto list = [&](float threshold, int scale) {
    Guarded<std::int32_t> index(7), indexWithDistance(7);
    Guarded<DistanceOf<T>> distance(7);
    std::int32_t count = -1, countWithDistance = -1;
    EXPECT_EQ(vqThreshOf<T>(&x, index.data(), book.get(), &count, threshold), orvStsNoErr);
    EXPECT_EQ(vqDistThresh(&x, indexWithDistance.data(), distance.data(), book.get(), &countWithDistance,
                           scale, threshold),
              orvStsNoErr);
    auto indices = index.values(), same = indexWithDistance.values();
    indices.resize(static_cast<std::size_t>(count));
    same.resize(static_cast<std::size_t>(countWithDistance));
    for (std::size_t i = 0; i < same.size(); ++i) {
      const auto d = static_cast<double>(rows[static_cast<std::size_t>(same[i])]);
      EXPECT_EQ(distance.at(i), reported<T>(d * d, scale));
    }
    return std::pair(indices, same);
  };
  const std::vector<std::int32_t> nearest{1, 5}, near{1, 5, 2, 4}, all{1, 5, 2, 4, 6, 3, 0};
  EXPECT_EQ(list(1.0F, 0), std::pair(nearest, nearest));
  EXPECT_EQ(list(1.2F, 0), std::pair(near, near));  // 12 is on the edge
  EXPECT_EQ(list(3.0F, 0), std::pair(all, all));
  EXPECT_EQ(list(INFINITY, 0), std::pair(all, all));
  if constexpr (!std::is_same_v<T, float>) {
    // The limit is not scaled as the distances are. At 2^2 they begin with 40, and the limit is 12; at 2^-4
    // they are all 1 or 2, the limit is 19, and what ends the list is the bound of the squares, 16 * 1.2
    // squared.
    EXPECT_EQ(list(1.2F, -2).second, std::vector<std::int32_t>{});
    EXPECT_EQ(list(1.2F, 4).second, (std::vector<std::int32_t>{1, 5, 2, 4, 6}));
  }
}

TYPED_TEST(VectorQuantisation, ListsAroundTheAnswerOfTheTree) {
  using T = TypeParam;
  for (int round = 0; round < 30; ++round) {
    const int width = this->pick(2, 8);
    const auto weights = this->weights(width, false);
    const auto book = buildBook(this->numbers(100 * width, 300), weights, 40, CDBK_SPLIT_SPREAD);
    const auto x = this->numbers(width, 300);
    std::int32_t reference = -1, count = 0;
    std::vector<std::int32_t> index(40);
    vqOf<T>(x.data(), width, &reference, 1, book.get());
    ASSERT_EQ(vqThreshOf<T>(x.data(), index.data(), book.get(), &count, 1.0F), orvStsNoErr);
    const auto distance = [&](int r) { return OwnDistanceE(x.data(), rowOf<T>(*book, r), width); };
    int within = 0;
    for (int r = 0; r < book->size; ++r) within += distance(r) <= distance(reference);
    ASSERT_EQ(count, within);
    ASSERT_EQ(index[static_cast<std::size_t>(count - 1)], reference);
  }
}

TYPED_TEST(VectorQuantisation, ChecksArgumentsInOrder) {
  using T = TypeParam;
  const std::vector<T> rows(12);
  PlainBook<T> plain(rows, 3), unknown(rows, 3, 7);
  CdbkState *const book = plain.get();
  const T x[6] = {};
  Guarded<std::int32_t> index(4), count(1);
  Guarded<DistanceOf<T>> distance(4);
  std::int32_t *const i = index.data(), *const n = count.data();
  auto *const d = distance.data();
  EXPECT_EQ(vqOf<T>(nullptr, 0, i, 0, book), orvStsNullPtrErr);
  EXPECT_EQ(vqOf<T>(x, 0, nullptr, 0, book), orvStsNullPtrErr);
  EXPECT_EQ(vqOf<T>(x, 0, i, 0, nullptr), orvStsNullPtrErr);
  EXPECT_EQ(vqDist(x, 0, i, nullptr, 0, book, 0), orvStsNullPtrErr);
  for (const auto &[step, height] : {std::pair{0, 1}, {2, 1}, {3, 0}}) {
    EXPECT_EQ(vqOf<T>(x, step, i, height, book), orvStsSizeErr);
    EXPECT_EQ(vqDist(x, step, i, d, height, book, 0), orvStsSizeErr);
  }
  EXPECT_EQ(vqSortOf<T>(x, i, nullptr, 0), orvStsNullPtrErr);
  EXPECT_EQ(vqDistSort(x, i, nullptr, book, 0, 0), orvStsNullPtrErr);
  for (const int wanted : {0, 5}) {
    EXPECT_EQ(vqSortOf<T>(x, i, book, wanted), orvStsSizeErr);
    EXPECT_EQ(vqDistSort(x, i, d, book, wanted, 0), orvStsSizeErr);
  }
  EXPECT_EQ(vqThreshOf<T>(x, i, book, nullptr, 0.5F), orvStsNullPtrErr);
  EXPECT_EQ(vqDistThresh(x, i, nullptr, book, n, 0, 0.5F), orvStsNullPtrErr);
  EXPECT_EQ(vqThreshOf<T>(x, i, book, n, 0.999F), orvStsBadArgErr);
  EXPECT_EQ(vqDistThresh(x, i, d, book, n, 0, 0.999F), orvStsBadArgErr);
  // A method without a search is passed over.
  EXPECT_EQ(vqOf<T>(x, 3, i, 2, unknown.get()), orvStsNoErr);
  EXPECT_TRUE(index.untouched() && count.untouched() && distance.untouched());
}

}  // namespace
