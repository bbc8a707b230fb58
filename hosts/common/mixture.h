// Gaussian mixtures with diagonal covariances.

#ifndef ORV_HOSTS_COMMON_MIXTURE_H
#define ORV_HOSTS_COMMON_MIXTURE_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "common/frames.h"

namespace orv {

struct Mixture {
  Mixture() = default;
  Mixture(std::int32_t components, std::int32_t width);

  std::int32_t components() const { return static_cast<std::int32_t>(weights.size()); }
  std::int32_t width() const { return means.width; }

  // The parameters: components weights, which add up to 1, and as many rows of means and variances.
  std::vector<double> weights;
  Frames means, variances;

  // What the scores take, formed by prepare() from the parameters: inverse variances, and for each component
  // the log of its weight less half of the Gaussian's normalising constant. The scores need them to be up to
  // date.
  Frames inverses;
  std::vector<float> constants;

  void prepare();

  // Log-likelihoods of the frames first .. first + count - 1 under the mixture, and under each component:
  // those of component m stand from scores[m * step] on. With a step of 0 each component overwrites the one
  // before.
  void score(const Frames &frames, std::size_t first, std::size_t count, float *totals, float *scores,
             std::size_t step) const;

  // Mean log-likelihood of a frame.
  double score(const Frames &frames) const;
};

}  // namespace orv

#endif
