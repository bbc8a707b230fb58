// Scores of recordings from the Gaussians near each frame only.

#ifndef ORV_HOSTS_COMMON_SHORTLIST_H
#define ORV_HOSTS_COMMON_SHORTLIST_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "common/frames.h"
#include "common/model.h"

namespace orv {

// A coarse pass finds the nearest of a few centroids, which stand for the means of all mixtures together;
// each centroid has a list of the Gaussians of each class that have most of what lies near it, and only those
// are scored on its frames: one Gaussian after the other on all of them.
//
// Source: E. Bocchieri, Vector quantization for the efficient computation of continuous density likelihoods,
// ICASSP 1993.
class Shortlists {
 public:
  // `best` Gaussians for each centroid and class. The model must outlive this.
  Shortlists(const Model &model, std::int32_t best);

  // Mean log-likelihood of a frame under each class.
  std::vector<double> scores(const Frames &frames);

 private:
  void findCentroids();
  void makeLists(std::int32_t best);
  // The rows of `points` sorted by their nearest centroid.
  void assign(const Frames &points, std::vector<std::vector<std::size_t>> &members);

  const Model &model_;
  std::int32_t width_;
  Frames centroids_;
  std::vector<float> scale_;                                  // inverse variances of all means
  std::vector<std::vector<std::vector<std::size_t>>> lists_;  // centroid, class: components
  std::vector<std::vector<std::size_t>> members_;
  std::vector<float> distances_, totals_, component_;
  std::vector<std::size_t> nearest_;
};

}  // namespace orv

#endif
