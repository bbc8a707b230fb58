// Codebooks of feature frames, grown by the library, and mixtures that start from them.

#ifndef ORV_HOSTS_COMMON_CODEBOOK_H
#define ORV_HOSTS_COMMON_CODEBOOK_H

#include <cstdint>
#include <memory>
#include <vector>

#include "common/frames.h"
#include "common/mixture.h"
#include "orvsr/vq.h"

namespace orv {

// Which cluster is divided next: that of the largest spread, or the most populous.
enum class CodebookMethod { spread, count };

class Codebook {
 public:
  // At most so many code vectors, fewer where the frames do not differ enough. The distance of two frames is
  // the sum of their squared differences, each times its weight. Throws Error if there are fewer frames than
  // code vectors, or if they differ by no more than rounding.
  Codebook(const Frames &frames, const std::vector<float> &weights, std::int32_t size, CodebookMethod method);

  const Frames &vectors() const { return vectors_; }

  // The code vector of each frame, and the root of the distance to it, as the tree finds them: nearly always
  // the nearest.
  void find(const Frames &frames, std::vector<std::int32_t> &indices, std::vector<float> &distances) const;

  // Mean distance of the frames to their code vectors.
  double distortion(const Frames &frames) const;

 private:
  struct Release {
    void operator()(CdbkState *state) const;
  };
  std::unique_ptr<CdbkState, Release> state_;
  Frames vectors_;
};

// The inverse of each value's variance over the frames, or of 1e-6 if it is below.
std::vector<float> inverseVariances(const Frames &frames);

// A Gaussian for each of at most so many clusters of the frames: its share of the frames, their mean, their
// variances above the floors. The clusters are those of a codebook grown by count on a sample of the frames,
// 100 for a cluster but at most 10000.
Mixture mixtureOfClusters(const Frames &frames, const std::vector<double> &floors, std::int32_t components);

}  // namespace orv

#endif
