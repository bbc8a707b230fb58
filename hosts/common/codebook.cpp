#include "common/codebook.h"

#include <algorithm>
#include <string>

#include "common/error.h"
#include "common/framesample.h"

namespace orv {
namespace {

constexpr double kLeastVariance = 1e-6;
// More frames than these do not make better clusters to start from, and the time to grow the codebook is
// proportional to them.
constexpr std::size_t kFramesPerCluster = 100;
constexpr std::size_t kMostClusterFrames = 10000;

// Mean and variances of rows, in double: all rows for the mean first, then all for the variances.
struct Moments {
  explicit Moments(std::size_t width) : mean(width), variance(width) {}
  std::size_t count = 0;
  std::vector<double> mean, variance;

  void addToMean(const float *row) {
    for (std::size_t j = 0; j < mean.size(); ++j) mean[j] += static_cast<double>(row[j]);
    ++count;
  }
  void finishMean() {
    if (count == 0) return;
    for (double &m : mean) m /= static_cast<double>(count);
  }
  void addToVariance(const float *row) {
    for (std::size_t j = 0; j < mean.size(); ++j) {
      const double difference = static_cast<double>(row[j]) - mean[j];
      variance[j] += difference * difference / static_cast<double>(count);
    }
  }
};

}  // namespace

void Codebook::Release::operator()(CdbkState *state) const { orvsCdbkFree_32f(state); }

Codebook::Codebook(const Frames &frames, const std::vector<float> &weights, std::int32_t size,
                   CodebookMethod method) {
  if (frames.rows < static_cast<std::size_t>(size)) {
    throw Error("a codebook of " + std::to_string(size) + " vectors needs as many frames; there are " +
                std::to_string(frames.rows));
  }
  CdbkState *state = nullptr;
  const OrvStatus status =
      orvsCdbkInitAlloc_WgtL2_32f(&state, frames.row(0), weights.data(), frames.width, frames.step,
                                  static_cast<std::int32_t>(frames.rows), size,
                                  method == CodebookMethod::spread ? CDBK_SPLIT_SPREAD : CDBK_SPLIT_COUNT);
  if (status == orvStsBadArgErr) throw Error("the frames differ too little for a codebook");
  require(status, "orvsCdbkInitAlloc_WgtL2_32f");
  state_.reset(state);
  std::int32_t grown = 0;
  require(orvsGetCdbkSize_32f(state, &grown), "orvsGetCdbkSize_32f");
  vectors_.resize(static_cast<std::size_t>(grown), frames.width);
  require(orvsGetCodebook_32f(state, vectors_.row(0), vectors_.step), "orvsGetCodebook_32f");
}

void Codebook::find(const Frames &frames, std::vector<std::int32_t> &indices,
                    std::vector<float> &distances) const {
  indices.resize(frames.rows);
  distances.resize(frames.rows);
  require(orvsVQDist_32f(frames.row(0), frames.step, indices.data(), distances.data(),
                         static_cast<std::int32_t>(frames.rows), state_.get()),
          "orvsVQDist_32f");
}

double Codebook::distortion(const Frames &frames) const {
  std::vector<std::int32_t> indices;
  std::vector<float> distances;
  find(frames, indices, distances);
  double sum = 0;
  for (const float root : distances) sum += static_cast<double>(root) * static_cast<double>(root);
  return sum / static_cast<double>(frames.rows);
}

std::vector<float> inverseVariances(const Frames &frames) {
  Moments moments(static_cast<std::size_t>(frames.width));
  for (std::size_t r = 0; r < frames.rows; ++r) moments.addToMean(frames.row(r));
  moments.finishMean();
  for (std::size_t r = 0; r < frames.rows; ++r) moments.addToVariance(frames.row(r));
  std::vector<float> inverses;
  for (const double v : moments.variance)
    inverses.push_back(static_cast<float>(1 / std::max(kLeastVariance, v)));
  return inverses;
}

Mixture mixtureOfClusters(const Frames &frames, const std::vector<double> &floors, std::int32_t components) {
  const auto clustersWanted = static_cast<std::size_t>(components);
  FrameSample sample(
      std::max(clustersWanted, std::min(kMostClusterFrames, kFramesPerCluster * clustersWanted)));
  sample.add(frames);
  const Codebook codebook(sample.frames(), inverseVariances(sample.frames()), components,
                          CodebookMethod::count);
  std::vector<std::int32_t> indices;
  std::vector<float> distances;
  codebook.find(frames, indices, distances);

  std::vector<Moments> clusters(codebook.vectors().rows, Moments(floors.size()));
  const auto cluster = [&](std::size_t r) -> Moments & {
    return clusters[static_cast<std::size_t>(indices[r])];
  };
  for (std::size_t r = 0; r < frames.rows; ++r) cluster(r).addToMean(frames.row(r));
  for (Moments &one : clusters) one.finishMean();
  for (std::size_t r = 0; r < frames.rows; ++r) cluster(r).addToVariance(frames.row(r));
  // The tree may lead no frame to a cluster.
  std::erase_if(clusters, [](const Moments &one) { return one.count == 0; });

  Mixture mixture(static_cast<std::int32_t>(clusters.size()), frames.width);
  for (std::size_t m = 0; m < clusters.size(); ++m) {
    mixture.weights[m] = static_cast<double>(clusters[m].count) / static_cast<double>(frames.rows);
    for (std::size_t j = 0; j < floors.size(); ++j) {
      mixture.means.row(m)[j] = static_cast<float>(clusters[m].mean[j]);
      mixture.variances.row(m)[j] = static_cast<float>(std::max(floors[j], clusters[m].variance[j]));
    }
  }
  mixture.prepare();
  return mixture;
}

}  // namespace orv
