#include "common/clustering.h"

#include <cstddef>
#include <limits>
#include <utility>
#include <vector>

#include "common/error.h"
#include "orvsr/train.h"

namespace orv {
namespace {

constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();

struct Cluster {
  double weight = 0, constant = 0;
  std::vector<double> mean, variance;
  // Sums over the Gaussians that went into it, and the likelihood that they had apart.
  std::vector<double> first, second;
  double apart = 0;
  // Of the clusters behind this one, the one that costs least to merge with.
  std::size_t nearest = kNone;
  double cost = 0;

  std::int32_t width() const { return static_cast<std::int32_t>(mean.size()); }
};

double likelihood(const Cluster &cluster) {
  double value = 0;
  require(orvsDcsClustLCompute_64f(cluster.first.data(), cluster.second.data(), cluster.width(), &value,
                                   cluster.weight),
          "orvsDcsClustLCompute_64f");
  return value;
}

Cluster clusterOf(const Mixture &mixture, std::size_t m) {
  const auto width = static_cast<std::size_t>(mixture.width());
  Cluster one;
  one.weight = mixture.weights[m];
  one.mean.assign(mixture.means.row(m), mixture.means.row(m) + width);
  one.variance.assign(mixture.variances.row(m), mixture.variances.row(m) + width);
  one.first.resize(width);
  one.second.resize(width);
  // Of variances, where inverse ones are usual: the form of the constant that distances take.
  require(orvsUpdateGConst_64f(one.variance.data(), one.width(), &one.constant), "orvsUpdateGConst_64f");
  require(orvsDcsClustLAccumulate_DirectVar_64f(one.mean.data(), one.variance.data(), one.first.data(),
                                                one.second.data(), one.width(), one.weight),
          "orvsDcsClustLAccumulate_DirectVar_64f");
  one.apart = likelihood(one);
  return one;
}

double mergeCost(const Cluster &a, const Cluster &b) {
  double cost = 0;
  require(orvsGaussianDist_64f(a.mean.data(), a.variance.data(), b.mean.data(), b.variance.data(), a.width(),
                               &cost, a.weight, a.constant, b.weight, b.constant),
          "orvsGaussianDist_64f");
  return cost;
}

void mergeInto(Cluster &a, const Cluster &b) {
  require(orvsGaussianMerge_64f(a.mean.data(), a.variance.data(), b.mean.data(), b.variance.data(),
                                a.mean.data(), a.variance.data(), a.width(), &a.constant, a.weight, b.weight),
          "orvsGaussianMerge_64f");
  a.weight += b.weight;
  a.apart += b.apart;
  for (std::size_t j = 0; j < a.mean.size(); ++j) {
    a.first[j] += b.first[j];
    a.second[j] += b.second[j];
  }
}

void findNearest(std::vector<Cluster> &clusters, std::size_t a) {
  clusters[a].nearest = kNone;
  for (std::size_t b = a + 1; b < clusters.size(); ++b) {
    const double cost = mergeCost(clusters[a], clusters[b]);
    if (clusters[a].nearest != kNone && !(cost < clusters[a].cost)) continue;
    clusters[a].nearest = b;
    clusters[a].cost = cost;
  }
}

void mergeNearest(std::vector<Cluster> &clusters) {
  std::size_t a = 0;
  for (std::size_t i = 1; i + 1 < clusters.size(); ++i)
    if (clusters[i].cost < clusters[a].cost) a = i;
  const std::size_t b = clusters[a].nearest;
  mergeInto(clusters[a], clusters[b]);
  clusters.erase(clusters.begin() + static_cast<std::ptrdiff_t>(b));

  // Only the neighbours of the two have to look again, and those ahead of the new cluster to look at it.
  for (std::size_t i = 0; i + 1 < clusters.size(); ++i) {
    Cluster &one = clusters[i];
    if (i == a || one.nearest == a || one.nearest == b) {
      findNearest(clusters, i);
      continue;
    }
    if (one.nearest > b) --one.nearest;
    if (i > a) continue;
    if (const double cost = mergeCost(one, clusters[a]); cost < one.cost) {
      one.nearest = a;
      one.cost = cost;
    }
  }
}

}  // namespace

double mergeGaussians(Mixture &mixture, std::int32_t components) {
  if (mixture.components() <= components) return 0;
  std::vector<Cluster> clusters;
  for (std::size_t m = 0; m < mixture.weights.size(); ++m) clusters.push_back(clusterOf(mixture, m));
  for (std::size_t i = 0; i + 1 < clusters.size(); ++i) findNearest(clusters, i);
  while (clusters.size() > static_cast<std::size_t>(components)) mergeNearest(clusters);

  Mixture merged(components, mixture.width());
  double cost = 0;
  for (std::size_t m = 0; m < clusters.size(); ++m) {
    const Cluster &one = clusters[m];
    merged.weights[m] = one.weight;
    for (std::size_t j = 0; j < one.mean.size(); ++j) {
      merged.means.row(m)[j] = static_cast<float>(one.mean[j]);
      merged.variances.row(m)[j] = static_cast<float>(one.variance[j]);
    }
    cost += one.apart - likelihood(one);
  }
  merged.prepare();
  mixture = std::move(merged);
  return cost;
}

}  // namespace orv
