// Growing a codebook by splitting clusters.
//
// After every split all rows are assigned anew to the nearest of all centroids, in up to 20 rounds. Done as
// that sounds, a round forms height * clusters distances. Most of them cannot have changed or cannot matter,
// and the same assignments come of much less work:
//
// - A cluster whose members are the same has the same centroid, and the same distances to all rows.
// - For every row a lower bound is kept on the distances to all centroids but its own. A round forms the
//   distances to the centroids that moved. If one centroid, the row's own or one that moved, is then nearer
//   than all others by more than the tolerance of the comparison, it is the answer, in whatever order
//   clusters are compared.
// - If not, the row is compared with all centroids in list order, which also makes its bound sharp again.
//
// Only distances as computed are compared, all summed in the same order, so that rounding cannot tell the two
// ways apart.

#include "vq/growth.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstring>
#include <limits>

#include "core/alloc.h"
#include "primitives/convert.h"
#include "primitives/memory.h"
#include "primitives/reduce.h"
#include "primitives/simd.h"
#include "vq/blocks.h"
#include "vq/nearestdraw.h"
#include "vq/tree.h"

using orv::simd::f32x8;

namespace orv::cdbk {
namespace {

constexpr std::int32_t kMostRounds = 20;
constexpr std::int32_t kMostPushes = 1000;
constexpr float kInfinity = std::numeric_limits<float>::infinity();

// A distance times this, rounded to single, is above the distance times the tolerance of a comparison.
constexpr float kClearly = 1.000002F;

// --- what differs between the element types

template <class T>
struct Form;

// Single precision throughout.
template <>
struct Form<float> {
  using Mean = float;

  static void round(const float *means, float *centroid, std::int32_t width) {
    std::copy_n(means, width, centroid);
  }
  static void roundFirst(const float *means, float *centroid, std::int32_t width) {
    round(means, centroid, width);
  }
  static float pushed(float mean, float v, std::int32_t r) {
    return mean + ((v + mean) / 2.0F - mean) * static_cast<float>(r) / 100.0F;
  }
  static bool coincide(float distance) { return 1e-6 >= double{distance}; }
  static bool isTooNear(float distance) { return double{distance} < 1e-5; }
  static bool areInseparable(float separation, std::int32_t count) {
    return count * 1e-6 >= double{separation};
  }
  // Distances to the first centroid that are mere rounding errors count as 0.
  static float negligible(const float *centroid, std::int32_t width) {
    float least = centroid[0], most = centroid[0];
    for (std::int32_t k = 1; k < width; ++k) {
      least = std::min(least, centroid[k]);
      most = std::max(most, centroid[k]);
    }
    return std::max(most * 1e-6F, least * -1e-6F);
  }
  static bool isNegligible(float distance, float negligible) {
    return !Own_Correct_Greater_32f(distance, negligible);
  }
};

// Means in double precision, centroids rounded to nearest (ties to even).
template <>
struct Form<std::int16_t> {
  using Mean = double;

  static void round(const double *means, std::int16_t *centroid, std::int32_t width) {
    for (std::int32_t k = 0; k < width; ++k) {
      std::int32_t whole = 0;
      orvsConvert_64f32s_Sfs(means + k, &whole, 1, kRoundNearestEven, 0);
      orvsConvert_32s16s_Sfs(&whole, centroid + k, 1, 0);
    }
  }
  // The first centroid goes by way of single precision, unlike all later ones: a mean just beside a half may
  // become the half.
  static void roundFirst(const double *means, std::int16_t *centroid, std::int32_t width) {
    for (std::int32_t k = 0; k < width; ++k) {
      const auto single = static_cast<float>(means[k]);
      orvsConvert_32f16s_Sfs(&single, centroid + k, 1, kRoundNearestEven, 0);
    }
  }
  static double pushed(double mean, std::int16_t v, std::int32_t r) {
    return mean + ((v + mean) * 0.5 - mean) * r / 100.0;
  }
  static bool coincide(float distance) { return Own_Correct_Equ_32f(distance, 0.0F); }
  static bool isTooNear(float distance) { return distance == 0.0F; }
  static bool areInseparable(float separation, std::int32_t) { return Own_Correct_Equ_32f(separation, 0.0F); }
  static float negligible(const std::int16_t *, std::int32_t) { return 0.0F; }
  static bool isNegligible(float, float) { return false; }
};

// --- the trainer

// Whether the centroid of a cluster has to be formed anew.
enum Age : std::uint8_t { kFresh, kStale, kNew };

template <class T>
class Growth {
 public:
  Growth(CdbkState &cdbk, const T *src, std::int32_t step, std::int32_t height, std::int32_t cdbkSize,
         CdbkCluster **list)
      : cdbk_(cdbk),
        src_(src),
        step_(step),
        height_(height),
        width_(cdbk.width),
        list_(list),
        tree_(cdbkSize, cdbk.width),
        draw_(height),
        weights_(cdbk.width),
        rounded_(cdbk.width),
        row_(cdbk.width),
        rows_(lengthOf(roundUpToBlock(height) * cdbk.width)),
        members_(height),
        cluster_(lengthOf(roundUpToBlock(height))),
        recorded_(lengthOf(roundUpToBlock(height))),
        others_(lengthOf(roundUpToBlock(height))),
        means_(lengthOf(std::int64_t{cdbkSize} * cdbk.width)),
        centroids_(lengthOf(std::int64_t{cdbkSize} * cdbk.width)),
        centroidBlocks_(lengthOf(roundUpToBlock(cdbkSize) * cdbk.width)),
        counts_(cdbkSize),
        changed_(cdbkSize),
        ages_(cdbkSize) {
    if (tree_) cdbk_.pRoot = tree_.node(0);  // from here on it belongs to the codebook
  }
  explicit operator bool() const {
    return tree_ && draw_ && weights_ && rounded_ && row_ && rows_ && members_ && cluster_ && recorded_ &&
           others_ && means_ && centroids_ && centroidBlocks_ && counts_ && changed_ && ages_;
  }

  OrvStatus run(std::int32_t cdbkSize) {
    loadRows();
    makeFirstCluster();
    while (clusters_ < cdbkSize) {
      const std::int32_t p = selectCluster();
      if (p < 0) break;
      const OrvStatus status = isWeighted(cdbk_) ? split<true>(p) : split<false>(p);
      if (status != orvStsNoErr) return status;
    }
    cdbk_.size = clusters_;
    finishLeaves();
    finishInnerNodes();
    findNeighbours();
    return orvStsNoErr;
  }

 private:
  using Mean = typename Form<T>::Mean;

  const T *source(std::int32_t r) const { return src_ + std::int64_t{r} * step_; }
  float *rowInBlock(std::int32_t r) { return inBlock(rows_.get(), r, width_); }
  Mean *mean(std::int32_t j) { return means_.get() + std::int64_t{j} * width_; }
  float *centroid(std::int32_t j) { return centroids_.get() + std::int64_t{j} * width_; }

  template <bool weighted>
  float distanceTo(std::int32_t j, std::int32_t r) {
    return distance<weighted>(rowInBlock(r), centroid(j), weights_.get(), width_);
  }

  // --- beginning

  void loadRows() {
    double weightSum = 0.0;
    for (std::int32_t k = 0; k < width_; ++k) {
      weights_.get()[k] = static_cast<float>(weightsOf<T>(cdbk_)[k]);
      weightSum += double{weights_.get()[k]};
    }
    double largest = 0.0;
    bool areNumbers = true;
    std::fill_n(rows_.get(), roundUpToBlock(height_) * width_, 0.0F);
    for (std::int32_t r = 0; r < height_; ++r)
      for (std::int32_t k = 0; k < width_; ++k) {
        const auto x = static_cast<float>(load(source(r) + k));
        rowInBlock(r)[k * kBlock] = x;
        largest = std::max(largest, double{std::abs(x)});
        areNumbers = areNumbers && !std::isnan(x);
      }
    // Where a sum of rows or a distance could be infinite, every row is compared with all centroids: a sum
    // that is no number passes no test against a bound.
    hasBounds_ =
        areNumbers && largest * height_ < FLT_MAX / 2 && largest * largest * 4.0 * weightSum < FLT_MAX / 2;
  }

  void makeFirstCluster() {
    const std::int64_t padded = roundUpToBlock(height_);
    std::fill_n(cluster_.get(), height_, 0);
    std::fill(cluster_.get() + height_, cluster_.get() + padded, -1);
    std::fill_n(recorded_.get(), padded, 0.0F);
    std::fill_n(others_.get(), padded, kInfinity);

    std::fill_n(mean(0), width_, Mean{0});
    for (std::int32_t r = 0; r < height_; ++r) addRow(r, mean(0));
    for (std::int32_t k = 0; k < width_; ++k) mean(0)[k] /= static_cast<Mean>(height_);
    if (height_ == 1) {
      for (std::int32_t k = 0; k < width_; ++k) rounded_.get()[k] = load(src_ + k);
    } else {
      Form<T>::roundFirst(mean(0), rounded_.get(), width_);
    }
    storeCentroid(0);
    counts_.get()[0] = height_;
    ages_.get()[0] = kFresh;
    clusters_ = 1;

    const float negligible = Form<T>::negligible(rounded_.get(), width_);
    float farthest = 0.0F;
    for (std::int32_t r = 0; r < height_; ++r) {
      const float d = distanceTo<true>(0, r);
      if (Form<T>::isNegligible(d, negligible)) continue;  // stays recorded as 0
      recorded_.get()[r] = d;
      farthest = std::max(farthest, d);
    }
    list_[0] = tree_.addNode(1);
    list_[0]->count = height_;
    list_[0]->spread = height_ == 1 ? 0.0F : 2.0F * farthest;
  }

  // --- selecting

  // The position of the cluster to split, or -1. The first of nearly equal candidates is kept.
  std::int32_t selectCluster() const {
    std::int32_t selected = -1;
    float best = 0.0F;
    for (std::int32_t j = 0; j < clusters_; ++j) {
      const CdbkCluster &cluster = *list_[j];
      const bool byCount = cdbk_.method == CDBK_SPLIT_COUNT;
      const float size = byCount ? static_cast<float>(cluster.count) : cluster.spread;
      if (!Own_Correct_Greater_32f(size, best)) continue;
      if (byCount && !Own_Correct_Greater_32f(cluster.spread, 0.0F)) continue;
      best = size;
      selected = j;
    }
    return selected;
  }

  // --- splitting

  // A split that fails ends the build, and its two new clusters go with the rest of the tree.
  template <bool weighted>
  OrvStatus split(std::int32_t p) {
    CdbkCluster &parent = *list_[p];
    if (parent.count < 2) return orvStsSizeErr;
    const std::int32_t added = clusters_++;
    parent.isLeaf = 0;
    parent.pLeft = list_[added] = tree_.addNode(parent.depth + 1);
    parent.pRight = list_[p] = tree_.addNode(parent.depth + 1);
    moveInnerHalf(p, added, parent.count);

    // A round without a move would be repeated to the bit by the next one, whatever the change of the
    // distortion: it is the last.
    for (std::int32_t round = 0; round < kMostRounds; ++round) {
      formCentroids();
      if (Form<T>::coincide(distanceOfCentroids<weighted>(added, p)) &&
          !push<weighted>(added, p, parent.count))
        return orvStsBadArgErr;
      if (!assignRows<weighted>()) break;
    }
    updateClusters();
    return orvStsNoErr;
  }

  void moveInnerHalf(std::int32_t from, std::int32_t to, std::int32_t count) {
    float *distances = draw_.distances(count);
    std::int32_t *members = members_.get();
    for (std::int32_t r = 0, n = 0; r < height_; ++r) {
      if (cluster_.get()[r] != from) continue;
      members[n] = r;
      distances[n++] = recorded_.get()[r];
    }
    draw_.begin();
    std::int32_t first = 0;
    for (std::int32_t n = 0; n < count / 2; ++n) {
      std::int32_t drawn = draw_.draw();
      if (drawn < 0) {  // no distance that is left is finite: the first row
        while (cluster_.get()[members[first]] == to) ++first;
        drawn = first;
      }
      cluster_.get()[members[drawn]] = to;
    }
    counts_.get()[to] = count / 2;
    counts_.get()[from] = count - count / 2;
    ages_.get()[to] = ages_.get()[from] = kNew;
  }

  void addRow(std::int32_t r, Mean *sums) const {
    const T *row = source(r);
    for (std::int32_t k = 0; k < width_; ++k) sums[k] += static_cast<Mean>(load(row + k));
  }

  // The means of all clusters whose members changed; changed_ lists those that have another centroid than
  // before.
  void formCentroids() {
    for (std::int32_t j = 0; j < clusters_; ++j)
      if (ages_.get()[j] != kFresh) std::fill_n(mean(j), width_, Mean{0});
    for (std::int32_t r = 0; r < height_; ++r)
      if (const std::int32_t j = cluster_.get()[r]; ages_.get()[j] != kFresh) addRow(r, mean(j));
    changedCount_ = 0;
    for (std::int32_t j = 0; j < clusters_; ++j) {
      if (ages_.get()[j] == kFresh) continue;
      for (std::int32_t k = 0; k < width_; ++k) mean(j)[k] /= static_cast<Mean>(counts_.get()[j]);
      Form<T>::round(mean(j), rounded_.get(), width_);
      if (ages_.get()[j] == kNew || std::memcmp(rounded_.get(), rowOf<T>(cdbk_, j),
                                                static_cast<std::size_t>(width_) * sizeof(T)) != 0) {
        storeCentroid(j);
        changed_.get()[changedCount_++] = j;
      }
      ages_.get()[j] = kFresh;
    }
  }

  void storeCentroid(std::int32_t j) {
    std::copy_n(rounded_.get(), width_, rowOf<T>(cdbk_, j));
    float *block = inBlock(centroidBlocks_.get(), j, width_);
    for (std::int32_t k = 0; k < width_; ++k)
      centroid(j)[k] = block[k * kBlock] = static_cast<float>(rounded_.get()[k]);
  }

  template <bool weighted>
  float distanceOfCentroids(std::int32_t i, std::int32_t j) {
    return distance<weighted>(inBlock(centroidBlocks_.get(), i, width_), centroid(j), weights_.get(), width_);
  }

  // Two centroids that coincide would never part: the one of `added` is pushed towards rows of the two
  // clusters until the rows tell them apart. False if none of 1000 pushes did, or no row is left to push to.
  template <bool weighted>
  bool push(std::int32_t added, std::int32_t p, std::int32_t count) {
    std::int32_t v = 0;
    for (std::int32_t r = 1;; ++r) {
      while (v < height_ && !(isOneOf(v, added, p) && !Form<T>::isTooNear(distanceTo<weighted>(added, v))))
        ++v;
      if (v == height_ || r > kMostPushes) return false;
      for (std::int32_t k = 0; k < width_; ++k)
        mean(added)[k] = Form<T>::pushed(mean(added)[k], load(source(v) + k), r);
      Form<T>::round(mean(added), rounded_.get(), width_);
      storeCentroid(added);
      if (!Form<T>::areInseparable(separation<weighted>(added, p), count)) break;
    }
    ages_.get()[added] = kStale;
    if (std::find(changed_.get(), changed_.get() + changedCount_, added) == changed_.get() + changedCount_)
      changed_.get()[changedCount_++] = added;
    return true;
  }

  bool isOneOf(std::int32_t r, std::int32_t i, std::int32_t j) const {
    return cluster_.get()[r] == i || cluster_.get()[r] == j;
  }

  template <bool weighted>
  float separation(std::int32_t added, std::int32_t p) {
    float sum = 0.0F;
    for (std::int32_t r = 0; r < height_; ++r) {
      if (!isOneOf(r, added, p)) continue;
      const float a = distanceTo<weighted>(added, r), b = distanceTo<weighted>(p, r);
      sum += std::abs(Own_Correct_Equ_32f(a, 0.0F) ? a - b : (a - b) / a);
    }
    return sum;
  }

  // --- assigning

  struct Nearest {
    std::int32_t cluster;
    float distance;
    float others;  // no other centroid is nearer than this
  };

  // Whether a row moved to another cluster. Where another centroid is nearest to the last row of a cluster,
  // the row stays.
  template <bool weighted>
  bool assignRows() {
    bool hasMoved = false;
    for (std::int32_t first = 0; first < height_; first += kBlock) {
      const float *block = rowInBlock(first);
      const f32x8 clusters = simd::toSingle(
          simd::i32x8{simd::load4(cluster_.get() + first), simd::load4(cluster_.get() + first + 4)});
      f32x8 own = load8(recorded_.get() + first);
      const f32x8 bound = load8(others_.get() + first);
      f32x8 best = splat8(kInfinity), second = best, which = best;
      for (std::int32_t c = 0; c < changedCount_; ++c) {
        const std::int32_t j = changed_.get()[c];
        const f32x8 index = splat8(static_cast<float>(j));
        const f32x8 isOwn = clusters == index;
        // What is not below the bound changes neither it nor any decision.
        const f32x8 limits = select(isOwn, splat8(kInfinity), bound);
        f32x8 formed{};
        if (!hasBounds_) {
          formed = distances<weighted>(block, centroid(j), weights_.get(), width_);
        } else if (!distancesWithin<weighted>(limits, block, centroid(j), weights_.get(), width_, &formed)) {
          continue;
        }
        own = select(isOwn, formed, own);
        const f32x8 d = select(isOwn, splat8(kInfinity), formed);
        which = select(d < best, index, which);
        second = min(second, max(best, d));
        best = min(best, d);
      }
      const f32x8 others = min(best, bound);
      store8(recorded_.get() + first, own);
      store8(others_.get() + first, others);
      const int stay = hasBounds_ ? signs(own * kClearly < others) : 0;
      if (stay == 255) continue;

      float bestOf[kBlock], whichOf[kBlock], restOf[kBlock];
      store8(bestOf, best);
      store8(whichOf, which);
      store8(restOf, min(min(second, bound), own));
      const std::int32_t rows = std::min(height_ - first, kBlock);
      for (std::int32_t i = 0; i < rows; ++i) {
        if ((stay >> i & 1) != 0) continue;
        const bool isClear = hasBounds_ && bestOf[i] * kClearly < restOf[i];
        const Nearest nearest = isClear ? Nearest{static_cast<std::int32_t>(whichOf[i]), bestOf[i], restOf[i]}
                                        : compareWithAll<weighted>(first + i);
        hasMoved = moveRow(first + i, nearest) || hasMoved;
      }
    }
    return hasMoved;
  }

  bool moveRow(std::int32_t r, const Nearest &nearest) {
    std::int32_t &cluster = cluster_.get()[r];
    others_.get()[r] = nearest.others;
    if (nearest.cluster == cluster) return false;
    std::int32_t *counts = counts_.get();
    if (nearest.cluster < 0 || counts[cluster] < 2) {
      others_.get()[r] = 0.0F;
      return false;
    }
    --counts[cluster];
    ++counts[nearest.cluster];
    ages_.get()[cluster] = ages_.get()[nearest.cluster] = kStale;
    cluster = nearest.cluster;
    recorded_.get()[r] = nearest.distance;
    return true;
  }

  // All centroids in list order, one taking over from another that is tolerantly farther.
  template <bool weighted>
  Nearest compareWithAll(std::int32_t r) {
    const float *inRow = rowInBlock(r);
    for (std::int32_t k = 0; k < width_; ++k) row_.get()[k] = inRow[k * kBlock];
    Nearest nearest{-1, kFarthest, kInfinity};
    f32x8 least = splat8(kInfinity), second = least;
    for (std::int32_t first = 0; first < clusters_; first += kBlock) {
      float d[kBlock];
      store8(d, distances<weighted>(inBlock(centroidBlocks_.get(), first, width_), row_.get(), weights_.get(),
                                    width_));
      const std::int32_t n = std::min(clusters_ - first, kBlock);
      std::fill(d + n, d + kBlock, kInfinity);
      const f32x8 all = load8(d);
      second = min(second, max(least, all));
      least = min(least, all);
      if (signs(all < splat8(nearest.distance)) == 0) continue;
      for (std::int32_t i = 0; i < n; ++i)
        if (Own_Correct_Greater_32f(nearest.distance, d[i])) {
          nearest.distance = d[i];
          nearest.cluster = first + i;
        }
    }
    // The smallest of all distances but one that equals that of the nearest.
    float leastOf[kBlock], secondOf[kBlock];
    store8(leastOf, least);
    store8(secondOf, second);
    bool isLeftOut = false;
    for (std::int32_t i = 0; i < kBlock; ++i) {
      const bool isNearest = !isLeftOut && leastOf[i] == nearest.distance;
      isLeftOut = isLeftOut || isNearest;
      nearest.others = std::min(nearest.others, isNearest ? secondOf[i] : leastOf[i]);
    }
    return nearest;
  }

  // Counts, and spreads from the distances recorded last, the larger taking over tolerantly.
  void updateClusters() {
    for (std::int32_t j = 0; j < clusters_; ++j) {
      list_[j]->count = counts_.get()[j];
      list_[j]->spread = 0.0F;
    }
    for (std::int32_t r = 0; r < height_; ++r) {
      float &spread = list_[cluster_.get()[r]]->spread;
      if (Own_Correct_Greater_32f(recorded_.get()[r], spread)) spread = recorded_.get()[r];
    }
    for (std::int32_t j = 0; j < clusters_; ++j)
      list_[j]->spread = list_[j]->count < 2 ? 0.0F : 2.0F * list_[j]->spread;
  }

  // --- finishing

  void finishLeaves() {
    cdbk_.maxDepth = 0;
    for (std::int32_t j = 0; j < clusters_; ++j) {
      CdbkCluster &leaf = *list_[j];
      leaf.index = j;
      leaf.pCentroid = copyOf(rowOf<T>(cdbk_, j));
      cdbk_.maxDepth = std::max(cdbk_.maxDepth, leaf.depth);
    }
  }

  T *copyOf(const T *vector) { return std::copy_n(vector, width_, tree_.addElements(width_)) - width_; }

  static const T *centroidOf(const CdbkCluster *cluster) {
    return static_cast<const T *>(cluster->pCentroid);
  }

  // Children first. An inner node's centroid is the mean of its children's, each of them added once for every
  // member.
  void finishInnerNodes() {
    for (std::int32_t i = tree_.count() - 1; i >= 0; --i) {
      CdbkCluster &node = *tree_.node(i);
      if (node.isLeaf != 0) continue;
      Mean *sums = means_.get();
      std::fill_n(sums, width_, Mean{0});
      for (const CdbkCluster *child : {node.pLeft, node.pRight})
        for (std::int32_t k = 0; k < width_; ++k)
          for (std::int32_t n = 0; n < child->count; ++n) sums[k] += static_cast<Mean>(centroidOf(child)[k]);
      for (std::int32_t k = 0; k < width_; ++k)
        sums[k] /= static_cast<Mean>(node.pLeft->count + node.pRight->count);
      Form<T>::round(sums, rounded_.get(), width_);
      node.pCentroid = copyOf(rounded_.get());

      if (node.pPacked == nullptr) continue;
      T *packed = tree_.addElements(4 * width_);
      node.pPacked->pGrandchildren = packed;
      for (const CdbkCluster *child : {node.pLeft, node.pRight})
        for (const CdbkCluster *grandchild : {child->pLeft, child->pRight})
          packed = std::copy_n(centroidOf(child->isLeaf != 0 ? child : grandchild), width_, packed);
    }
  }

  // A count beyond that of the other clusters draws the first of the list, whichever that is, and beyond that
  // of all clusters repeats it: lists of three or four clusters have such ends.
  void findNeighbours() {
    const std::int32_t count = neighboursAmong(clusters_);
    if (count == 0) return;
    float *d = cdbk_.pScratch;
    for (std::int32_t j = 0; j < clusters_; ++j) {
      CdbkCluster &leaf = *list_[j];
      for (std::int32_t i = 0; i < clusters_; ++i) d[i] = distanceOfCentroids<true>(i, j);
      d[j] = kFarthest;
      leaf.neighbourCount = count;
      leaf.ppNeighbours = tree_.addLinks(count);
      std::int32_t nearest = 0;
      for (std::int32_t n = 0; n < count; ++n) {
        float least = 0.0F;
        if (n < clusters_) {
          orvsMinIndx_32f(d, clusters_, &least, &nearest);
          d[nearest] = kFarthest;
        }
        leaf.ppNeighbours[n] = list_[nearest];
      }
      if (leaf.pPacked == nullptr) continue;
      leaf.pPacked->ppClusters = std::copy_n(leaf.ppNeighbours, count, tree_.addLinks(count)) - count;
      T *packed = tree_.addElements(std::int64_t{count} * width_);
      leaf.pPacked->pNeighbours = packed;
      for (std::int32_t n = 0; n < count; ++n)
        packed = std::copy_n(centroidOf(leaf.ppNeighbours[n]), width_, packed);
    }
  }

  CdbkState &cdbk_;
  const T *src_;
  std::int32_t step_, height_, width_;
  CdbkCluster **list_;
  TreeMemory<T> tree_;
  NearestDraw draw_;
  std::int32_t clusters_ = 0;
  std::int32_t changedCount_ = 0;
  bool hasBounds_ = false;

  WorkArray<float> weights_;
  WorkArray<T> rounded_;   // a centroid in the making
  WorkArray<float> row_;   // a row that is compared with all centroids
  WorkArray<float> rows_;  // in blocks
  WorkArray<std::int32_t> members_;

  // Of each row; rows that fill up the last block belong to no cluster.
  WorkArray<std::int32_t> cluster_;
  WorkArray<float> recorded_;  // the distance to the centroid of its cluster
  WorkArray<float> others_;    // no other centroid is nearer than this

  // Of each cluster, in list order.
  WorkArray<Mean> means_;
  WorkArray<float> centroids_;
  WorkArray<float> centroidBlocks_;
  WorkArray<std::int32_t> counts_;
  WorkArray<std::int32_t> changed_;  // the first changedCount_: clusters whose centroid changed in this round
  WorkArray<Age> ages_;
};

}  // namespace

template <class T>
OrvStatus growTree(CdbkState &cdbk, const T *src, std::int32_t step, std::int32_t height,
                   std::int32_t cdbkSize, CdbkCluster **list) {
  Growth<T> growth(cdbk, src, step, height, cdbkSize, list);
  return growth ? growth.run(cdbkSize) : orvStsMemAllocErr;
}

template OrvStatus growTree<float>(CdbkState &, const float *, std::int32_t, std::int32_t, std::int32_t,
                                   CdbkCluster **);
template OrvStatus growTree<std::int16_t>(CdbkState &, const std::int16_t *, std::int32_t, std::int32_t,
                                          std::int32_t, CdbkCluster **);

}  // namespace orv::cdbk
