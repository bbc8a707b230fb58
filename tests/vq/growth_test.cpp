// Trees against a plain growth: every distance of every round formed anew, every draw a pass over all rows.

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <deque>
#include <map>

#include "support/allocation.h"
#include "support/arrays.h"
#include "vq/api.h"
#include "vq/codebook.h"

using namespace orv::test;
using orv::cdbk::CdbkCluster;

namespace {

template <class T>
using Vectors = std::vector<std::vector<T>>;

bool exceeds(float a, float b) { return double{a} > double{b} * 1.000001; }
bool isNearZero(float a) {
  return double{std::abs(a)} <= std::abs(double{std::max(a, 0.0F)}) * 9.999999747378752e-5;
}

template <class T>
struct Node {
  float spread = 0;
  std::vector<T> centroid;
  int index = -1, count = 0, depth = 1;
  Node *left = nullptr, *right = nullptr;
  std::vector<int> neighbours;
};

template <class T>
struct Plain {
  static constexpr bool isFloat = std::is_same_v<T, float>;
  using Mean = std::conditional_t<isFloat, float, double>;

  const Vectors<T> &rows;
  const std::vector<T> &weights;
  std::size_t width = weights.size(), height = rows.size();
  std::deque<Node<T>> nodes = {};
  std::vector<Node<T> *> list = {};
  std::vector<std::size_t> cluster = std::vector<std::size_t>(height, 0);
  std::vector<float> recorded = std::vector<float>(height, 0.0F);
  OrvStatus status = orvStsNoErr;
  int pushes = 0, longest = 0;
  int lonely = 0;  // rows that stayed as the last of their cluster
  bool areNeighboursOrdered = true;

  float d(const std::vector<T> &x, const std::vector<T> &y) const {
    float sum = 0;
    for (std::size_t k = 0; k < width; ++k) {
      const float difference = static_cast<float>(x[k]) - static_cast<float>(y[k]);
      sum += difference * difference * static_cast<float>(weights[k]);
    }
    return sum;
  }
  static T rounded(Mean mean) {
    if constexpr (isFloat) return mean;
    return static_cast<T>(std::nearbyint(mean));
  }
  std::vector<Mean> meanOf(std::size_t j, int &count) const {
    std::vector<Mean> mean(width, 0);
    count = 0;
    for (std::size_t r = 0; r < height; ++r) {
      if (cluster[r] != j) continue;
      ++count;
      for (std::size_t k = 0; k < width; ++k) mean[k] += static_cast<Mean>(rows[r][k]);
    }
    for (Mean &m : mean) m /= static_cast<Mean>(count);
    return mean;
  }
  static std::vector<T> rounded(const std::vector<Mean> &mean) {
    std::vector<T> out;
    for (const Mean m : mean) out.push_back(rounded(m));
    return out;
  }

  void begin() {
    nodes.emplace_back();
    list = {&nodes[0]};
    Node<T> &root = nodes[0];
    for (const Mean m : meanOf(0, root.count)) root.centroid.push_back(rounded(static_cast<float>(m)));
    if (height == 1) root.centroid = rows[0];
    float c = -1;
    if (isFloat) {
      c = static_cast<float>(*std::max_element(root.centroid.begin(), root.centroid.end())) * 1e-6F;
      c = std::max(
          c, static_cast<float>(*std::min_element(root.centroid.begin(), root.centroid.end())) * -1e-6F);
    }
    for (std::size_t r = 0; r < height; ++r) {
      recorded[r] = d(rows[r], root.centroid);
      if (isFloat && !exceeds(recorded[r], c)) recorded[r] = 0;
      root.spread = std::max(root.spread, 2 * recorded[r]);
    }
  }

  bool push(std::vector<Mean> &mean, std::size_t n, std::size_t p, int parentCount) {
    ++pushes;
    std::size_t v = 0;
    const auto isEither = [&](std::size_t r) { return cluster[r] == n || cluster[r] == p; };
    for (int r = 1;; ++r) {
      for (; v < height; ++v) {
        if (!isEither(v)) continue;
        const float distance = d(rows[v], list[n]->centroid);
        if (isFloat ? !(distance < 1e-5) : distance != 0) break;
      }
      if (v == height || r > 1000) return false;
      for (std::size_t k = 0; k < width; ++k) {
        const Mean x = static_cast<Mean>(rows[v][k]);
        mean[k] += ((x + mean[k]) / 2 - mean[k]) * static_cast<Mean>(r) / Mean{100};
      }
      list[n]->centroid = rounded(mean);
      float sum = 0;
      for (std::size_t i = 0; i < height; ++i) {
        if (!isEither(i)) continue;
        const float a = d(rows[i], list[n]->centroid), b = d(rows[i], list[p]->centroid);
        sum += isNearZero(a) ? std::abs(a - b) : std::abs((a - b) / a);
      }
      if (isFloat ? !(parentCount * 1e-6 >= sum) : !isNearZero(sum)) return true;
    }
  }

  bool split(std::size_t p) {
    Node<T> &parent = *list[p];
    const std::size_t n = list.size();
    nodes.emplace_back().depth = parent.depth + 1;
    list.push_back(parent.left = &nodes.back());
    nodes.emplace_back().depth = parent.depth + 1;
    list[p] = parent.right = &nodes.back();
    for (int half = parent.count / 2; half > 0; --half) {
      std::size_t drawn = height;
      float best = FLT_MAX;
      for (std::size_t r = 0; r < height; ++r)
        if (cluster[r] == p && exceeds(best, recorded[r])) {
          best = recorded[r];
          drawn = r;
        }
      // Where no distance that is left is finite: the first row.
      if (drawn == height)
        drawn = static_cast<std::size_t>(std::find(cluster.begin(), cluster.end(), p) - cluster.begin());
      cluster[drawn] = n;
      recorded[drawn] = FLT_MAX;
    }
    float total = 0;
    for (int round = 0; round < 20; ++round) {
      longest = std::max(longest, round + 1);
      const float previous = total;
      total = 0;
      std::vector<Mean> added;
      for (std::size_t j = 0; j < list.size(); ++j) {
        const std::vector<Mean> mean = meanOf(j, list[j]->count);
        list[j]->centroid = rounded(mean);
        if (j == n) added = mean;
      }
      const float apart = d(list[n]->centroid, list[p]->centroid);
      if ((isFloat ? 1e-6 >= apart : isNearZero(apart)) && !push(added, n, p, parent.count)) return false;
      int moves = 0;
      for (std::size_t r = 0; r < height; ++r) {
        float best = FLT_MAX;
        std::size_t nearest = cluster[r];
        for (std::size_t j = 0; j < list.size(); ++j)
          if (const float distance = d(rows[r], list[j]->centroid); exceeds(best, distance)) {
            best = distance;
            nearest = j;
          }
        lonely += nearest != cluster[r] && list[cluster[r]]->count < 2;
        if (nearest != cluster[r] && list[cluster[r]]->count >= 2) {
          --list[cluster[r]]->count;
          ++list[nearest]->count;
          cluster[r] = nearest;
          ++moves;
        }
        recorded[r] = d(rows[r], list[cluster[r]]->centroid);
        total += recorded[r];
      }
      if (std::abs(total - previous) <= 0.0001 * total && moves == 0) break;
    }
    for (Node<T> *node : list) node->spread = 0;
    for (std::size_t r = 0; r < height; ++r)
      if (exceeds(recorded[r], list[cluster[r]]->spread)) list[cluster[r]]->spread = recorded[r];
    for (Node<T> *node : list) node->spread = node->count < 2 ? 0 : 2 * node->spread;
    return true;
  }

  void recompute(Node<T> &node) {
    if (node.left == nullptr) return;
    std::vector<Mean> sum(width, 0);
    for (Node<T> *child : {node.left, node.right}) {
      recompute(*child);
      for (int i = 0; i < child->count; ++i)
        for (std::size_t k = 0; k < width; ++k) sum[k] += static_cast<Mean>(child->centroid[k]);
    }
    for (Mean &s : sum) s /= static_cast<Mean>(node.left->count + node.right->count);
    node.centroid = rounded(sum);
  }

  void run(std::size_t size, int method) {
    begin();
    while (list.size() < size) {
      float best = 0;
      std::size_t selected = size;
      for (std::size_t j = 0; j < list.size(); ++j) {
        const float value =
            method == CDBK_SPLIT_SPREAD ? list[j]->spread : static_cast<float>(list[j]->count);
        if (exceeds(value, best) && (method == CDBK_SPLIT_SPREAD || exceeds(list[j]->spread, 0))) {
          best = value;
          selected = j;
        }
      }
      if (selected == size) break;
      if (!split(selected)) {
        status = orvStsBadArgErr;
        return;
      }
    }
    status = list.size() == size ? orvStsNoErr : orvStsCdbkShortWrn;
    const std::size_t leaves = list.size();
    for (std::size_t j = 0; j < leaves; ++j) list[j]->index = static_cast<int>(j);
    recompute(nodes[0]);
    if (leaves < 3) return;
    int count = std::max(4, static_cast<int>(std::log(static_cast<double>(leaves)) / std::log(2.0)));
    if (static_cast<double>(leaves) > std::pow(2.0, count)) ++count;
    for (std::size_t j = 0; j < leaves; ++j) {
      std::vector<float> distances;
      for (std::size_t i = 0; i < leaves; ++i)
        distances.push_back(i == j ? FLT_MAX : d(list[i]->centroid, list[j]->centroid));
      for (const float x : distances) areNeighboursOrdered = areNeighboursOrdered && !std::isnan(x);
      for (int i = 0; i < count; ++i) {
        const auto least = std::min_element(distances.begin(), distances.end());
        if (static_cast<std::size_t>(i) < leaves)
          list[j]->neighbours.push_back(static_cast<int>(least - distances.begin()));
        else
          list[j]->neighbours.push_back(list[j]->neighbours.back());
        *least = FLT_MAX;
      }
    }
  }
};

template <class T>
bool hasElements(const void *actual, const std::vector<T> &expected) {
  const T *values = static_cast<const T *>(actual);
  for (std::size_t k = 0; k < expected.size(); ++k)
    if (values == nullptr || !sameBits(values[k], expected[k])) return false;
  return true;
}

template <class T>
void expectNode(const CdbkCluster *actual, const Node<T> *expected, const Plain<T> &plain) {
  ASSERT_NE(actual, nullptr);
  const bool isLeaf = expected->left == nullptr;
  EXPECT_TRUE(sameBits(actual->spread, expected->spread));
  EXPECT_TRUE(hasElements(actual->pCentroid, expected->centroid));
  EXPECT_EQ(actual->count, expected->count);
  EXPECT_EQ(actual->isLeaf, isLeaf);
  EXPECT_EQ(actual->depth, expected->depth);
  const bool isPacked = plain.width == 1 || plain.width == 2 || plain.width == 4 ||
                        (plain.width == 8 && std::is_same_v<T, float>);
  ASSERT_EQ(actual->pPacked != nullptr, isPacked);
  std::vector<T> packed;
  if (isLeaf) {
    EXPECT_EQ(actual->index, expected->index);
    ASSERT_EQ(actual->neighbourCount, expected->neighbours.size());
    for (std::size_t i = 0; i < expected->neighbours.size() && plain.areNeighboursOrdered; ++i) {
      const Node<T> *neighbour = plain.list[static_cast<std::size_t>(expected->neighbours[i])];
      EXPECT_EQ(actual->ppNeighbours[i]->index, neighbour->index);
      if (isPacked) {
        EXPECT_EQ(actual->pPacked->ppClusters[i], actual->ppNeighbours[i]);
      }
      packed.insert(packed.end(), neighbour->centroid.begin(), neighbour->centroid.end());
    }
    EXPECT_TRUE(!isPacked || packed.empty() || hasElements(actual->pPacked->pNeighbours, packed));
    return;
  }
  for (const Node<T> *child : {expected->left, expected->right})
    for (const Node<T> *grandchild : {child->left, child->right}) {
      const Node<T> *shown = grandchild == nullptr ? child : grandchild;
      packed.insert(packed.end(), shown->centroid.begin(), shown->centroid.end());
    }
  EXPECT_TRUE(!isPacked || hasElements(actual->pPacked->pGrandchildren, packed));
  expectNode(actual->pLeft, expected->left, plain);
  expectNode(actual->pRight, expected->right, plain);
}

// Builds from an array of its own at any alignment, and compares with the plain growth. Returns the status.
template <class T>
OrvStatus expectGrowth(const Vectors<T> &rows, const std::vector<T> &weights, int gap, std::size_t size,
                       int method, Plain<T> &plain) {
  const std::size_t width = weights.size(), step = width + static_cast<std::size_t>(gap);
  std::vector<T> flat((rows.size() - 1) * step + width, 99);
  for (std::size_t r = 0; r < rows.size(); ++r)
    std::copy(rows[r].begin(), rows[r].end(), flat.begin() + static_cast<std::ptrdiff_t>(r * step));
  const Guarded<T> src(flat, rows.size() % 5), w(weights, width % 3);
  bool isWeighted = false;
  for (const T v : weights) isWeighted = isWeighted || v != 1;
  plain.run(size, method);

  Allocations allocations;
  CdbkState *cdbk = nullptr;
  const auto n = static_cast<std::int32_t>(width), h = static_cast<std::int32_t>(rows.size());
  const OrvStatus status =
      isWeighted ? Api<T>::buildWeighted(&cdbk, src.data(), w.data(), n, n + gap, h,
                                         static_cast<std::int32_t>(size), method)
                 : Api<T>::build(&cdbk, src.data(), n, n + gap, h, static_cast<std::int32_t>(size), method);
  EXPECT_EQ(status, plain.status);
  EXPECT_EQ(cdbk != nullptr, status >= 0);
  if (cdbk == nullptr || status != plain.status) return status;
  EXPECT_EQ(cdbk->size, plain.list.size());
  if (static_cast<std::size_t>(cdbk->size) == plain.list.size()) {
    int deepest = 0;
    for (std::size_t j = 0; j < plain.list.size(); ++j) {
      EXPECT_TRUE(
          hasElements(orv::cdbk::rowOf<T>(*cdbk, static_cast<std::int64_t>(j)), plain.list[j]->centroid));
      deepest = std::max(deepest, plain.list[j]->depth);
    }
    EXPECT_EQ(cdbk->maxDepth, deepest);
    EXPECT_EQ(cdbk->sizeBits, std::bit_width(plain.list.size() - 1));
    EXPECT_EQ(cdbk->flags, isWeighted ? 2U : 0U);
    EXPECT_EQ(cdbk->stride,
              (static_cast<std::size_t>(n + gap) + 16 / sizeof(T) - 1) / (16 / sizeof(T)) * (16 / sizeof(T)));
    EXPECT_EQ(cdbk->pField, nullptr);
    expectNode(cdbk->pRoot, &plain.nodes[0], plain);
  }
  EXPECT_EQ(Api<T>::release(cdbk), orvStsNoErr);
  return status;
}

template <class T>
struct Growth : ::testing::Test {};
TYPED_TEST_SUITE(Growth, Elements);

// Whole numbers give ties by the dozen, reals none; few distinct rows give clusters that cannot be split or
// told apart, crowded ones a perturbation. Numbers of any size give distances that are infinite or no
// numbers.
TYPED_TEST(Growth, FollowsThePlainOneRowByRow) {
  using T = TypeParam;
  Random random(61);
  const auto pick = [&](int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); };
  std::map<OrvStatus, int> seen;
  int pushes = 0, longest = 0, lonely = 0;
  for (int round = 0; round < 200; ++round) {
    const auto width = static_cast<std::size_t>(round < 80 ? round / 2 + 1 : pick(1, 9));
    const auto height = static_cast<std::size_t>(pick(1, round % 7 == 0 ? 250 : 60));
    const int kind = pick(0, 5);
    Vectors<T> rows;
    for (std::size_t r = 0; r < height; ++r) {
      std::vector<T> row = wholeNumbers<T>(random, width,
                                           kind == 0   ? 2
                                           : kind == 1 ? 9
                                           : kind == 5 ? 30000
                                                       : 3000);
      if (kind == 2 && std::is_same_v<T, float>) row = uniform<T>(random, width, -3, 3);
      if (kind == 3 && r > 0 && pick(0, 2) != 0)
        row = rows[static_cast<std::size_t>(pick(0, static_cast<int>(r) - 1))];
      if (kind == 3 && pick(0, 5) == 0) row[0] = static_cast<T>(row[0] + 1);
      if (kind == 4 && std::is_same_v<T, float>)
        for (T &x : row) x = static_cast<T>(x * 1e-6);
      // Squares overflow for some pairs of rows and not for others.
      if (kind == 5 && std::is_same_v<T, float>) {
        row[0] = static_cast<T>(static_cast<double>(row[0]) * (round % 3 == 0 ? 1e15 : 4e14));
        if (round % 16 == 0 && r == height / 2) row[0] = static_cast<T>(round % 32 == 0 ? NAN : -INFINITY);
      }
      rows.push_back(row);
    }
    std::vector<T> weights(width, 1);
    if (round % 3 == 0)
      for (T &w : weights)
        w = static_cast<T>(pick(0, 4) + (std::is_same_v<T, float> ? 0.25 * (round % 2) : 0));
    const auto size = static_cast<std::size_t>(pick(1, static_cast<int>(std::min<std::size_t>(height, 70))));
    Plain<T> plain{rows, weights};
    ++seen[expectGrowth(rows, weights, pick(0, 9), size, round % 2 ? CDBK_SPLIT_SPREAD : CDBK_SPLIT_COUNT,
                        plain)];
    pushes += plain.pushes;
    lonely += plain.lonely;
    longest = std::max(longest, plain.longest);
    ASSERT_FALSE(this->HasFailure()) << "round " << round << ": " << height << " rows of " << width
                                     << ", kind " << kind;
  }
  EXPECT_GT(seen[orvStsNoErr], 80);
  EXPECT_GT(seen[orvStsCdbkShortWrn], 10);
  EXPECT_EQ(seen[orvStsBadArgErr] > 5, (std::is_same_v<T, float>));
  EXPECT_GT(pushes, 30);
  EXPECT_EQ(longest, 20);
  EXPECT_TRUE(lonely > 0 || (std::is_same_v<T, float>));
}

}  // namespace
