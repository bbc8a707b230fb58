#include "common/trainer.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

#include "common/error.h"
#include "orvsr/train.h"

namespace orv {
namespace {

// Frames scored at once: their scores under all components stay in the cache.
constexpr std::size_t kBlock = 256;
// A component this far below the mixture adds nothing to it (the drop threshold of log-addition), so it takes
// no share of the frame either.
constexpr float kDropThreshold = -15.3195879547406f;
// Keeps a component that lost all its frames from a weight of zero, whose logarithm would be infinite.
constexpr double kWeightFloor = 1e-6;
constexpr std::size_t kFramesPerComponent = 10;
constexpr float kSplit = 0.2f;  // of the standard deviation, to either side
constexpr double kLeastVariance = 1e-6;

// What a pass over the frames gathers, for each component: occupation, and the sums of the differences from
// the component's present mean and of their squares, weighted by the component's share of the frame.
struct Statistics {
  Statistics(std::size_t components, std::size_t width)
      : occupations(components), first(components * width), second(components * width) {}

  double logLikelihood = 0;
  std::vector<double> occupations, first, second;
};

void accumulate(const float *frame, const float *mean, std::size_t width, double share, double *first,
                double *second) {
  for (std::size_t j = 0; j < width; ++j) {
    const double difference = static_cast<double>(frame[j]) - static_cast<double>(mean[j]);
    first[j] += share * difference;
    second[j] += share * difference * difference;
  }
}

Statistics expectation(const Frames &frames, const Mixture &mixture) {
  const std::size_t components = mixture.weights.size();
  const auto width = static_cast<std::size_t>(mixture.width());
  Statistics statistics(components, width);
  std::vector<float> scores(components * kBlock), totals(kBlock);

  for (std::size_t start = 0; start < frames.rows; start += kBlock) {
    const std::size_t count = std::min(kBlock, frames.rows - start);
    mixture.score(frames, start, count, totals.data(), scores.data(), kBlock);
    statistics.logLikelihood = std::accumulate(
        totals.begin(), totals.begin() + static_cast<std::ptrdiff_t>(count), statistics.logLikelihood);
    for (std::size_t m = 0; m < components; ++m) {
      const float *scored = scores.data() + m * kBlock;
      for (std::size_t f = 0; f < count; ++f) {
        const float difference = scored[f] - totals[f];
        if (difference < kDropThreshold) continue;
        const double share = std::exp(static_cast<double>(difference));
        statistics.occupations[m] += share;
        accumulate(frames.row(start + f), mixture.means.row(m), width, share, &statistics.first[m * width],
                   &statistics.second[m * width]);
      }
    }
  }
  return statistics;
}

void maximisation(Statistics &statistics, const std::vector<double> &floors, double frames,
                  Mixture &mixture) {
  const std::int32_t components = mixture.components(), width = mixture.width();
  std::vector<double> mean(floors.size()), variance(floors.size());
  for (std::size_t m = 0; m < mixture.weights.size(); ++m) {
    const double occupation = statistics.occupations[m];
    double *first = &statistics.first[m * floors.size()], *second = &statistics.second[m * floors.size()];
    std::copy_n(mixture.means.row(m), floors.size(), mean.begin());
    std::copy_n(mixture.variances.row(m), floors.size(), variance.begin());
    // A component without occupation stays as it is: both calls then warn and write nothing.
    require(orvsUpdateVar_64f(first, second, floors.data(), variance.data(), width, occupation, occupation),
            "orvsUpdateVar_64f");
    require(orvsUpdateMean_64f(first, mean.data(), width, occupation), "orvsUpdateMean_64f");
    for (std::size_t j = 0; j < floors.size(); ++j) {
      mixture.means.row(m)[j] = static_cast<float>(mean[j]);
      mixture.variances.row(m)[j] = static_cast<float>(variance[j]);
    }
  }
  double sum = 0;
  require(orvsUpdateWeight_64f(statistics.occupations.data(), mixture.weights.data(), components, &sum,
                               frames, kWeightFloor),
          "orvsUpdateWeight_64f");
  for (double &weight : mixture.weights) weight /= sum;
  mixture.prepare();
}

// Passes at one size. In exact arithmetic expectation-maximisation never lowers the likelihood, and a floor
// under the variances does not change that, since the maximum within the floor is taken and every start lies
// within it. Scores in single precision and floored weights can lower it by a last digit once nothing is left
// to gain. A pass that does is undone and ends the size, so that the mixture kept is always the best one
// reported.
void improve(const Frames &frames, const std::vector<double> &floors, const TrainingOptions &options,
             Mixture &mixture, const PassReport &report) {
  const auto count = static_cast<double>(frames.rows);
  double before = -std::numeric_limits<double>::infinity();
  Mixture kept = mixture;
  for (std::int32_t pass = 1;; ++pass) {
    Statistics statistics = expectation(frames, mixture);
    const double now = statistics.logLikelihood / count;
    if (!std::isfinite(now)) throw Error("training lost its way: a likelihood is not a finite number");
    if (now < before) {
      mixture = kept;
      return;
    }
    report(mixture.components(), pass, now);
    if (pass == options.passes || now - before < options.leastGain) return;
    before = now;
    kept = mixture;
    maximisation(statistics, floors, count, mixture);
  }
}

// The heaviest components become two, to either side of their mean.
void split(Mixture &mixture, std::int32_t components) {
  const std::size_t old = mixture.weights.size(), added = static_cast<std::size_t>(components) - old;
  std::vector<std::size_t> order(old);
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::stable_sort(order.begin(), order.end(),
                   [&](std::size_t a, std::size_t b) { return mixture.weights[a] > mixture.weights[b]; });
  mixture.weights.resize(old + added);
  mixture.means.resize(old + added, mixture.width());
  mixture.variances.resize(old + added, mixture.width());
  for (std::size_t i = 0; i < added; ++i) {
    const std::size_t from = order[i], to = old + i;
    mixture.weights[from] /= 2;
    mixture.weights[to] = mixture.weights[from];
    std::copy_n(mixture.variances.row(from), mixture.variances.step, mixture.variances.row(to));
    for (std::int32_t j = 0; j < mixture.width(); ++j) {
      const float shift = kSplit * std::sqrt(mixture.variances.row(from)[j]);
      mixture.means.row(to)[j] = mixture.means.row(from)[j] + shift;
      mixture.means.row(from)[j] -= shift;
    }
  }
  mixture.prepare();
}

}  // namespace

std::vector<double> varianceFloors(const std::vector<Frames> &blocks, double share) {
  const auto width = static_cast<std::size_t>(blocks.at(0).width);
  std::vector<float> mean(width, 0.0f);
  std::vector<double> first(width), second(width), floors(width);
  double rows = 0;
  for (const Frames &block : blocks) {
    for (std::size_t r = 0; r < block.rows; ++r) {
      accumulate(block.row(r), mean.data(), width, 1, first.data(), second.data());
    }
    rows += static_cast<double>(block.rows);
  }
  for (std::size_t j = 0; j < width; ++j) {
    const double m = first[j] / rows;
    floors[j] = std::max(kLeastVariance, share * (second[j] / rows - m * m));
  }
  return floors;
}

Mixture trainMixture(const Frames &frames, const std::vector<double> &floors, const TrainingOptions &options,
                     const PassReport &report) {
  // The first Gaussian is what a pass from any mean makes of all frames.
  Mixture mixture(1, frames.width);
  std::fill(mixture.variances.values.begin(), mixture.variances.values.end(), 1.0f);
  Statistics all(1, floors.size());
  all.occupations[0] = static_cast<double>(frames.rows);
  for (std::size_t r = 0; r < frames.rows; ++r) {
    accumulate(frames.row(r), mixture.means.row(0), floors.size(), 1, all.first.data(), all.second.data());
  }
  maximisation(all, floors, static_cast<double>(frames.rows), mixture);
  improve(frames, floors, options, mixture, report);

  const std::size_t most = std::max<std::size_t>(1, frames.rows / kFramesPerComponent);
  const auto goal = static_cast<std::int32_t>(std::min(static_cast<std::size_t>(options.components), most));
  while (mixture.components() < goal) {
    split(mixture, std::min(goal, 2 * mixture.components()));
    improve(frames, floors, options, mixture, report);
  }
  return mixture;
}

}  // namespace orv
