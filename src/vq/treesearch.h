// The search of a tree of clusters: a descent to a leaf, then a walk from leaf to neighbouring leaf. It finds
// a good code vector, not always the best one.

#ifndef ORV_VQ_TREESEARCH_H
#define ORV_VQ_TREESEARCH_H

#include <cmath>
#include <cstdint>

#include "orvsr/gauss.h"
#include "vq/codebook.h"
#include "vq/distance.h"

namespace orv::cdbk {

template <class T>
const T *centroidOf(const CdbkCluster *cluster) {
  return static_cast<const T *>(cluster->pCentroid);
}

// The clusters two levels down, a leaf child standing in for both of its places.
struct Grandchildren {
  explicit Grandchildren(const CdbkCluster *n)
      : LL(n->pLeft->isLeaf ? n->pLeft : n->pLeft->pLeft),
        LR(n->pLeft->isLeaf ? n->pLeft : n->pLeft->pRight),
        RL(n->pRight->isLeaf ? n->pRight : n->pRight->pLeft),
        RR(n->pRight->isLeaf ? n->pRight : n->pRight->pRight) {}
  const CdbkCluster *LL, *LR, *RL, *RR;
};

// Squared distances: smaller is better.
template <class T>
class PlainScores {
 public:
  explicit PlainScores(const CdbkState &cdbk) : width_(cdbk.width) {}

  OrvStatus leftIsBetter(const Grandchildren &of, const T *x, bool *left) const {
    const T *const rows[4] = {centroidOf<T>(of.LL), centroidOf<T>(of.LR), centroidOf<T>(of.RL),
                              centroidOf<T>(of.RR)};
    const T *const unweighted = nullptr;
    float score[4];
    simd::store4(score, distancesToFour(x, rows, unweighted, width_));
    const auto [LL, LR, RL, RR] = score;
    *left = (Own_Correct_Greater_32f(RL, LL) && Own_Correct_Greater_32f(RR, LL)) ||
            (Own_Correct_Greater_32f(RL, LR) && Own_Correct_Greater_32f(RR, LR));
    return orvStsNoErr;
  }

  using Score = float;
  OrvStatus score(const CdbkCluster *leaf, const T *x, Score *score) const {
    *score = OwnDistanceE(x, centroidOf<T>(leaf), width_);
    return orvStsNoErr;
  }
  static bool beats(Score s, Score b) { return Own_Correct_Greater_32f(b, s) && !Own_Correct_Equ_32f(s, b); }

 private:
  std::int32_t width_;
};

inline OrvStatus logScores(const float *const *rows, std::int32_t count, const float *x, const float *weights,
                           std::int32_t width, std::int32_t, float *scores) {
  return orvsLogGauss_32f_D2L(rows, x, weights, width, scores, count, 0);
}
inline OrvStatus logScores(const std::int16_t *const *rows, std::int32_t count, const std::int16_t *x,
                           const std::int16_t *weights, std::int32_t width, std::int32_t scale,
                           std::int32_t *scores) {
  return orvsLogGauss_16s32s_D2LSfs(rows, x, weights, width, scores, count, 0, scale);
}
inline OrvStatus logScore(const float *row, const float *x, const float *weights, std::int32_t width,
                          std::int32_t, float *score) {
  return orvsLogGaussSingle_32f(row, x, weights, width, score, 0);
}
inline OrvStatus logScore(const std::int16_t *row, const std::int16_t *x, const std::int16_t *weights,
                          std::int32_t width, std::int32_t scale, std::int32_t *score) {
  return orvsLogGaussSingle_16s32s_Sfs(row, x, weights, width, score, 0, scale);
}

template <class T>
struct LogScore;
template <>
struct LogScore<float> {
  using Type = float;
};
template <>
struct LogScore<std::int16_t> {
  using Type = std::int32_t;
};

// Log-likelihoods under the weights: larger is better, and none is positive. The tolerant factor thus lowers
// the bound: of two near-equal scores either passes. That is meant, and decides which way ties go.
template <class T>
class LogScores {
 public:
  using Score = typename LogScore<T>::Type;

  explicit LogScores(const CdbkState &cdbk)
      : width_(cdbk.width),
        weights_(weightsOf<T>(cdbk)),
        scale_(static_cast<std::int32_t>(std::log(static_cast<double>(cdbk.width)) / std::log(2.0)) + 1) {}

  // A child that is a leaf is scored once.
  OrvStatus leftIsBetter(const Grandchildren &of, const T *x, bool *left) const {
    const T *rows[4] = {centroidOf<T>(of.LL)};
    std::int32_t last = 0;
    if (of.LR != of.LL) rows[++last] = centroidOf<T>(of.LR);
    const std::int32_t atLR = last, atRL = ++last;
    rows[atRL] = centroidOf<T>(of.RL);
    if (of.RR != of.RL) rows[++last] = centroidOf<T>(of.RR);
    Score score[4];
    const OrvStatus status = logScores(rows, last + 1, x, weights_, width_, scale_, score);
    if (status != orvStsNoErr) return status;
    const Score LL = score[0], LR = score[atLR], RL = score[atRL], RR = score[last];
    *left = (above(LL, RL) && greater(LL, RR)) || (greater(LR, RL) && greater(LR, RR));
    return orvStsNoErr;
  }

  OrvStatus score(const CdbkCluster *leaf, const T *x, Score *score) const {
    return logScore(centroidOf<T>(leaf), x, weights_, width_, scale_, score);
  }
  static bool beats(Score s, Score b) {
    return above(s, b) && !Own_Correct_Equ_32f(static_cast<float>(s), static_cast<float>(b));
  }

 private:
  // Integer scores are compared as they are in some places and rounded to single precision in others.
  static bool above(Score a, Score b) { return static_cast<double>(a) > static_cast<double>(b) * kTolerance; }
  static bool greater(Score a, Score b) {
    return Own_Correct_Greater_32f(static_cast<float>(a), static_cast<float>(b));
  }

  std::int32_t width_;
  const T *weights_;
  std::int32_t scale_;
};

// The row number of the leaf found.
template <class T, class Scores>
OrvStatus searchTree(const Scores &scores, const CdbkCluster *n, const T *x, std::int32_t *index) {
  while (!n->isLeaf) {
    bool left = false;
    const OrvStatus status = scores.leftIsBetter(Grandchildren(n), x, &left);
    if (status != orvStsNoErr) return status;
    n = left ? n->pLeft : n->pRight;
  }
  if (n->neighbourCount > 0) {
    typename Scores::Score best;
    OrvStatus status = scores.score(n, x, &best);
    for (std::int32_t i = 0; status == orvStsNoErr && i < n->neighbourCount;) {
      const CdbkCluster *neighbour = n->ppNeighbours[i++];
      typename Scores::Score candidate;
      status = scores.score(neighbour, x, &candidate);
      if (status == orvStsNoErr && Scores::beats(candidate, best)) {
        n = neighbour;
        best = candidate;
        i = 0;
      }
    }
    if (status != orvStsNoErr) return status;
  }
  *index = n->index;
  return orvStsNoErr;
}

}  // namespace orv::cdbk

#endif
