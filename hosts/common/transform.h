// Linear transforms of feature frames, estimated from the training data.

#ifndef ORV_HOSTS_COMMON_TRANSFORM_H
#define ORV_HOSTS_COMMON_TRANSFORM_H

#include <cstdint>
#include <vector>

#include "common/frames.h"

namespace orv {

enum class TransformKind { none, pca, lda };

struct TransformOptions {
  TransformKind kind = TransformKind::none;
  std::int32_t dims = 0;  // values of a transformed frame; 0: as many as before

  // Throws Error unless frames of so many values can be transformed to dims values.
  void check(std::int32_t width) const;
};

// y = matrix * (x - mean)
struct Transform {
  TransformKind kind = TransformKind::none;  // none: frames stay as they are, and the rest is empty
  std::vector<float> mean;
  Frames matrix;  // a row for each value of y

  void apply(Frames &frames) const;
};

// Frames of one class, wherever they stand.
using FrameSet = std::vector<const float *>;

// The directions in which the frames vary most, in descending order, orthonormal; their signs are such that
// the largest entry of each is positive.
//
// Source: K. Fukunaga, Introduction to Statistical Pattern Recognition, 1990, section 9.1.
Transform principalComponents(const std::vector<FrameSet> &classes, std::int32_t width, std::int32_t dims);

// The directions in which the means of the classes vary most where the frames of a class vary by 1 in every
// direction, in descending order. Classes without frames do not count. Directions beyond the number of
// classes less one tell no classes apart, and only bring the variance within classes to 1.
//
// Source: K. Fukunaga, Introduction to Statistical Pattern Recognition, 1990, sections 10.1 and 10.2.
Transform discriminants(const std::vector<FrameSet> &classes, std::int32_t width, std::int32_t dims);

// The transform that the options ask for, from a block of frames for each class of recordings.
//
// The means of these are useless as classes of lda, since mean normalisation makes them all zero. So each
// block is divided by a small mixture trained on it, a frame going to the Gaussian that scores best; the
// classes are the sounds of a voice.
//
// Source: T. Hastie and R. Tibshirani, Discriminant analysis by Gaussian mixtures, Journal of the Royal
// Statistical Society B 58 (1996).
Transform estimateTransform(const TransformOptions &options, const std::vector<Frames> &blocks);

}  // namespace orv

#endif
