#include "common/trainer.h"

#include <algorithm>
#include <array>
#include <bit>
#include <chrono>
#include <cmath>
#include <limits>
#include <numeric>
#include <optional>
#include <utility>

#include "common/codebook.h"
#include "common/error.h"
#include "common/framelists.h"
#include "orvsr/train.h"

namespace orv {
namespace {

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

// Frames with a component's share of each.
struct Shares {
  std::vector<const float *> frames;
  std::vector<double> values;

  Shares() = default;
  // All of each.
  explicit Shares(const Frames &all) : values(all.rows, 1.0) {
    for (std::size_t r = 0; r < all.rows; ++r) frames.push_back(all.row(r));
  }
  void clear() {
    frames.clear();
    values.clear();
  }
  // `difference` is the log of the share.
  void add(const float *frame, float difference) {
    if (difference < kDropThreshold) return;
    frames.push_back(frame);
    values.push_back(static_cast<double>(std::exp(difference)));
  }
};

// `count` frames at once, so that the sums are loaded and stored once for all of them.
template <std::size_t count>
void accumulate(const float *const *allFrames, const double *allShares, const float *__restrict mean,
                std::size_t width, double *__restrict first, double *__restrict second) {
  // Copies, of which the compiler knows that the loop does not write to them.
  std::array<const float *, count> frames;
  std::array<double, count> shares;
  std::copy_n(allFrames, count, frames.begin());
  std::copy_n(allShares, count, shares.begin());
  for (std::size_t j = 0; j < width; ++j) {
    const double from = mean[j];
    double f = first[j], s = second[j];
    for (std::size_t k = 0; k < count; ++k) {
      const double difference = static_cast<double>(frames[k][j]) - from;
      const double shared = shares[k] * difference;
      f += shared;
      s += shared * difference;
    }
    first[j] = f;
    second[j] = s;
  }
}

void accumulate(const Shares &shares, const float *mean, std::size_t width, double *first, double *second) {
  std::size_t i = 0;
  for (; i + 2 <= shares.frames.size(); i += 2)
    accumulate<2>(&shares.frames[i], &shares.values[i], mean, width, first, second);
  for (; i < shares.frames.size(); ++i)
    accumulate<1>(&shares.frames[i], &shares.values[i], mean, width, first, second);
}

// A pass over the frames: all components, or those that the lists have.
Statistics expectation(const Frames &frames, const Mixture &mixture, const FrameLists *lists) {
  const std::size_t components = mixture.weights.size();
  const auto width = static_cast<std::size_t>(mixture.width());
  Statistics statistics(components, width);
  Shares shares;
  std::vector<float> scores(lists == nullptr ? components * kFrameBlock : 0), totals(kFrameBlock);

  for (std::size_t start = 0; start < frames.rows; start += kFrameBlock) {
    const std::size_t count = std::min(kFrameBlock, frames.rows - start);
    if (lists == nullptr) {
      mixture.score(frames, start, count, totals.data(), scores.data(), kFrameBlock);
    } else {
      lists->score(frames, mixture, start, totals.data(), scores);
    }
    statistics.logLikelihood = std::accumulate(
        totals.begin(), totals.begin() + static_cast<std::ptrdiff_t>(count), statistics.logLikelihood);
    for (std::size_t m = 0; m < components; ++m) {
      shares.clear();
      if (lists == nullptr) {
        const float *scored = scores.data() + m * kFrameBlock;
        for (std::size_t f = 0; f < count; ++f) shares.add(frames.row(start + f), scored[f] - totals[f]);
      } else {
        const float *scored = scores.data() + lists->firstScore(start, m);
        for (const FrameLists::Entry &entry : lists->entries(start, m))
          shares.add(frames.row(start + entry.frame), *scored++ - totals[entry.frame]);
      }
      statistics.occupations[m] =
          std::accumulate(shares.values.begin(), shares.values.end(), statistics.occupations[m]);
      accumulate(shares, mixture.means.row(m), width, &statistics.first[m * width],
                 &statistics.second[m * width]);
    }
  }
  return statistics;
}

bool usesLists(const TrainingOptions &options, const Mixture &mixture) {
  return options.shortlist > 0 && options.shortlist < mixture.components();
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

}  // namespace

// In exact arithmetic expectation-maximisation never lowers the likelihood, and a floor
// under the variances does not change that, since the maximum within the floor is taken and every start lies
// within it. Scores in single precision and floored weights can lower it by a last digit once nothing is left
// to gain. A pass that does is undone and ends the size, so that the mixture kept is always the best one
// reported. Lists leave all this true: a pass raises what it reports, the likelihood under the listed
// components, and a coarse pass, which lists the best ones anew, cannot lower it.
void improve(const Frames &frames, const std::vector<double> &floors, const TrainingOptions &options,
             Mixture &mixture, const PassReport &report) {
  const auto count = static_cast<double>(frames.rows);
  double before = -std::numeric_limits<double>::infinity();
  Mixture kept = mixture;
  std::optional<FrameLists> lists;
  for (std::int32_t pass = 1;; ++pass) {
    if (usesLists(options, mixture) && std::has_single_bit(static_cast<std::uint32_t>(pass)))
      lists.emplace(frames, mixture, options.shortlist);
    Statistics statistics = expectation(frames, mixture, lists ? &*lists : nullptr);
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

namespace {

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
    accumulate(Shares(block), mean.data(), width, first.data(), second.data());
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
  const std::size_t most = std::max<std::size_t>(1, frames.rows / kFramesPerComponent);
  const auto goal = static_cast<std::int32_t>(std::min(static_cast<std::size_t>(options.components), most));
  if (options.start == Start::codebook) {
    Mixture mixture = mixtureOfClusters(frames, floors, goal);
    improve(frames, floors, options, mixture, report);
    return mixture;
  }
  // The first Gaussian is what a pass from any mean makes of all frames.
  Mixture mixture(1, frames.width);
  std::fill(mixture.variances.values.begin(), mixture.variances.values.end(), 1.0f);
  Statistics all(1, floors.size());
  all.occupations[0] = static_cast<double>(frames.rows);
  accumulate(Shares(frames), mixture.means.row(0), floors.size(), all.first.data(), all.second.data());
  maximisation(all, floors, static_cast<double>(frames.rows), mixture);
  improve(frames, floors, options, mixture, report);

  while (mixture.components() < goal) {
    split(mixture, std::min(goal, 2 * mixture.components()));
    improve(frames, floors, options, mixture, report);
  }
  return mixture;
}

ShortlistEffect shortlistEffect(const Frames &frames, const Mixture &mixture,
                                const TrainingOptions &options) {
  if (!usesLists(options, mixture)) return {};
  auto lap = [last = std::chrono::steady_clock::now()]() mutable {
    const auto now = std::chrono::steady_clock::now();
    return std::chrono::duration<double>(now - std::exchange(last, now)).count();
  };
  const double whole = expectation(frames, mixture, nullptr).logLikelihood;
  const double wholeSeconds = lap();
  const FrameLists lists(frames, mixture, options.shortlist);
  const double coarseSeconds = lap();
  const double listed = expectation(frames, mixture, &lists).logLikelihood;
  const double listedSeconds = lap();
  const auto coarse = static_cast<double>(std::bit_width(static_cast<std::uint32_t>(options.passes)));
  return {wholeSeconds / (coarseSeconds * coarse / options.passes + listedSeconds),
          (whole - listed) / static_cast<double>(frames.rows)};
}

}  // namespace orv
