#include "common/transform.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include "common/error.h"
#include "common/progress.h"
#include "common/trainer.h"
#include "orvsr/matrix.h"
#include "orvsr/train.h"

namespace orv {
namespace {

constexpr std::int32_t kIterations = 60;
// Variances below this share of the largest are taken for it before they are divided by.
constexpr double kLeastShare = 1e-9;
constexpr std::int32_t kSounds = 16;  // of a voice
constexpr double kVarianceFloor = 0.01;

// A square matrix, row by row.
struct Square {
  explicit Square(std::int32_t width)
      : width(width), values(static_cast<std::size_t>(width) * static_cast<std::size_t>(width)) {}
  double &at(std::int32_t row, std::int32_t column) { return values[place(row, column)]; }
  double at(std::int32_t row, std::int32_t column) const { return values[place(row, column)]; }
  std::size_t place(std::int32_t row, std::int32_t column) const {
    return static_cast<std::size_t>(row) * static_cast<std::size_t>(width) + static_cast<std::size_t>(column);
  }

  std::int32_t width;
  std::vector<double> values;
};

// Eigenvalues of a covariance matrix in descending order, and eigenvectors as the columns of a matrix: its
// singular values and right singular vectors, which are orthonormal even where a value is zero.
std::pair<std::vector<double>, Square> eigenvectors(Square covariance) {
  const std::int32_t width = covariance.width;
  std::vector<double> values(static_cast<std::size_t>(width));
  Square vectors(width);
  require(orvsSVDSort_64f_D2_I(covariance.values.data(), width, values.data(), vectors.values.data(), width,
                               width, kIterations),
          "orvsSVDSort_64f_D2_I");
  return {std::move(values), std::move(vectors)};
}

std::vector<float> meanOf(const FrameSet &frames, std::int32_t width) {
  std::vector<float> mean(static_cast<std::size_t>(width));
  const auto count = static_cast<std::int32_t>(frames.size());
  require(orvsSumColumn_32f_D2L(frames.data(), count, mean.data(), width), "orvsSumColumn_32f_D2L");
  for (float &value : mean) value = static_cast<float>(value / static_cast<double>(count));
  return mean;
}

void addScatter(const FrameSet &frames, const std::vector<float> &mean, Square &scatter) {
  std::vector<double *> rows;
  for (std::int32_t r = 0; r < scatter.width; ++r) rows.push_back(&scatter.at(r, 0));
  require(orvsAccCovarianceMatrix_32f64f_D2L(frames.data(), static_cast<std::int32_t>(frames.size()),
                                             mean.data(), rows.data(), scatter.width, 1),
          "orvsAccCovarianceMatrix_32f64f_D2L");
}

FrameSet allOf(const std::vector<FrameSet> &classes) {
  FrameSet all;
  for (const FrameSet &frames : classes) all.insert(all.end(), frames.begin(), frames.end());
  return all;
}

FrameSet rowsOf(const Frames &frames) {
  FrameSet rows;
  for (std::size_t r = 0; r < frames.rows; ++r) rows.push_back(frames.row(r));
  return rows;
}

// The first columns of the matrix as the rows of a transform, each with its largest entry positive.
void setRows(const Square &columns, std::int32_t dims, Transform &transform) {
  transform.matrix.resize(static_cast<std::size_t>(dims), columns.width);
  for (std::int32_t r = 0; r < dims; ++r) {
    double largest = 0;
    for (std::int32_t j = 0; j < columns.width; ++j)
      if (std::abs(columns.at(j, r)) > std::abs(largest)) largest = columns.at(j, r);
    for (std::int32_t j = 0; j < columns.width; ++j)
      transform.matrix.row(static_cast<std::size_t>(r))[j] =
          static_cast<float>(largest < 0 ? -columns.at(j, r) : columns.at(j, r));
  }
}

// The frames of a voice by the Gaussian of a small mixture that scores best.
void appendSounds(const Frames &frames, const std::vector<double> &floors, std::vector<FrameSet> &classes) {
  TrainingOptions options;
  options.components = kSounds;
  const Mixture mixture = trainMixture(frames, floors, options, [](std::int32_t, std::int32_t, double) {});
  std::vector<FrameSet> sounds(mixture.weights.size());
  constexpr std::size_t kBlock = 256;
  std::vector<float> totals(kBlock), scores(kBlock * sounds.size());
  for (std::size_t start = 0; start < frames.rows; start += kBlock) {
    const std::size_t count = std::min(kBlock, frames.rows - start);
    mixture.score(frames, start, count, totals.data(), scores.data(), kBlock);
    for (std::size_t f = 0; f < count; ++f) {
      std::size_t best = 0;
      for (std::size_t m = 1; m < sounds.size(); ++m)
        if (scores[m * kBlock + f] > scores[best * kBlock + f]) best = m;
      sounds[best].push_back(frames.row(start + f));
    }
  }
  classes.insert(classes.end(), sounds.begin(), sounds.end());
}

}  // namespace

void TransformOptions::check(std::int32_t width) const {
  if (kind == TransformKind::none) {
    if (dims != 0) throw Error("--dims needs --transform");
  } else if (dims < 0 || dims > width) {
    throw Error(std::to_string(dims) + " dimensions are not within 1 to the " + std::to_string(width) +
                " values of a frame");
  }
}

void Transform::apply(Frames &frames) const {
  if (kind == TransformKind::none || frames.rows == 0) return;
  require(orvsSubRow_32f_D2(mean.data(), frames.row(0), frames.step, static_cast<std::int32_t>(frames.rows),
                            frames.width),
          "orvsSubRow_32f_D2");
  Frames transformed;
  const auto dims = static_cast<std::int32_t>(matrix.rows);
  transformed.resize(frames.rows, dims);
  for (std::size_t r = 0; r < frames.rows; ++r)
    require(orvsMatVecMul_32f_D2(matrix.row(0), matrix.step, frames.row(r), frames.width, transformed.row(r),
                                 dims),
            "orvsMatVecMul_32f_D2");
  frames = std::move(transformed);
}

Transform principalComponents(const std::vector<FrameSet> &classes, std::int32_t width, std::int32_t dims) {
  const FrameSet all = allOf(classes);
  Transform transform;
  transform.kind = TransformKind::pca;
  transform.mean = meanOf(all, width);
  Square scatter(width);
  addScatter(all, transform.mean, scatter);
  setRows(eigenvectors(scatter).second, dims, transform);
  return transform;
}

Transform discriminants(const std::vector<FrameSet> &classes, std::int32_t width, std::int32_t dims) {
  Transform transform;
  transform.kind = TransformKind::lda;
  const FrameSet all = allOf(classes);
  transform.mean = meanOf(all, width);

  Square within(width);
  Frames means;  // each as far from the mean of all as the square root of its count makes it
  for (const FrameSet &frames : classes) {
    if (frames.empty()) continue;
    const std::vector<float> mean = meanOf(frames, width);
    addScatter(frames, mean, within);
    means.resize(means.rows + 1, width);
    const double weight = std::sqrt(static_cast<double>(frames.size()) / static_cast<double>(all.size()));
    for (std::size_t j = 0; j < mean.size(); ++j)
      means.row(means.rows - 1)[j] = static_cast<float>(weight * (mean[j] - transform.mean[j]));
  }

  // Whitening: columns of variance 1 within the classes.
  auto [variances, whitening] = eigenvectors(within);
  const double least = std::max(kLeastShare * variances[0], 1e-300);
  for (std::int32_t r = 0; r < width; ++r)
    for (std::int32_t c = 0; c < width; ++c) {
      const double variance = std::max(variances[static_cast<std::size_t>(c)], least);
      whitening.at(r, c) /= std::sqrt(variance / static_cast<double>(all.size()));
    }

  Frames whitened;
  whitened.resize(means.rows, width);
  for (std::size_t m = 0; m < means.rows; ++m)
    for (std::int32_t c = 0; c < width; ++c) {
      double sum = 0;
      for (std::int32_t r = 0; r < width; ++r) sum += means.row(m)[r] * whitening.at(r, c);
      whitened.row(m)[c] = static_cast<float>(sum);
    }
  Square between(width);
  addScatter(rowsOf(whitened), std::vector<float>(static_cast<std::size_t>(width)), between);
  Square rotation = eigenvectors(between).second;

  Square columns(width);
  for (std::int32_t r = 0; r < width; ++r)
    for (std::int32_t c = 0; c < width; ++c)
      for (std::int32_t k = 0; k < width; ++k) columns.at(r, c) += whitening.at(r, k) * rotation.at(k, c);
  setRows(columns, dims, transform);
  return transform;
}

Transform estimateTransform(const TransformOptions &options, const std::vector<Frames> &blocks) {
  if (options.kind == TransformKind::none) return {};
  const std::int32_t width = blocks.at(0).width, dims = options.dims == 0 ? width : options.dims;
  std::vector<FrameSet> classes;
  if (options.kind == TransformKind::pca) {
    for (const Frames &frames : blocks) classes.push_back(rowsOf(frames));
    return principalComponents(classes, width, dims);
  }
  const std::vector<double> floors = varianceFloors(blocks, kVarianceFloor);
  Progress progress("estimating the transform", blocks.size());
  for (const Frames &frames : blocks) {
    appendSounds(frames, floors, classes);
    progress.advance();
  }
  return discriminants(classes, width, dims);
}

}  // namespace orv
