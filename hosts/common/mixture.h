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
  // the log of its weight less half of the Gaussian's normalising constant.
  Frames inverses;
  std::vector<float> constants;

  void prepare();

  // Mean log-likelihood of a frame; prepare() must have been called.
  double score(const Frames &frames) const;
};

}  // namespace orv

#endif
