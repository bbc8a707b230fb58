// Less work for nearly the same likelihood: merged Gaussians, lists of those near a frame.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "common/clustering.h"
#include "common/framelists.h"
#include "common/trainer.h"

namespace orv::test {
namespace {

// Gaussians about few points, in changing order.
Mixture scattered(std::int32_t components, std::int32_t points) {
  std::mt19937 random(11);
  Mixture mixture(components, 3);
  double sum = 0;
  for (std::size_t m = 0; m < mixture.weights.size(); ++m) {
    sum += mixture.weights[m] = 1 + static_cast<double>(random() % 5);
    for (std::size_t j = 0; j < 3; ++j) {
      const std::size_t point = m % static_cast<std::size_t>(points);
      mixture.means.row(m)[j] = 20 * static_cast<float>(point) + static_cast<float>(random() % 100) / 50 -
                                30 * static_cast<float>(j);
      mixture.variances.row(m)[j] = 0.5f + static_cast<float>(random() % 100) / 100;
    }
  }
  for (double &weight : mixture.weights) weight /= sum;
  mixture.prepare();
  return mixture;
}

// The likelihood of frames that belong to one Gaussian each, in nats per frame.
double likelihoodApart(const Mixture &mixture) {
  double sum = 0;
  for (std::size_t m = 0; m < mixture.weights.size(); ++m)
    for (std::int32_t j = 0; j < mixture.width(); ++j)
      sum -= 0.5 * mixture.weights[m] *
             (1 + std::log(2 * M_PI * static_cast<double>(mixture.variances.row(m)[j])));
  return sum;
}

TEST(Clustering, MergesWhatLiesTogetherAndKeepsMeansAndVariances) {
  const Mixture before = scattered(23, 4);
  Mixture after = before;
  const double cost = mergeGaussians(after, 4);
  ASSERT_EQ(after.components(), 4);
  EXPECT_NEAR(cost, likelihoodApart(before) - likelihoodApart(after), 1e-5);
  for (std::size_t point = 0; point < 4; ++point) {
    double weight = 0, mean[3] = {}, square[3] = {};
    for (std::size_t m = point; m < before.weights.size(); m += 4) {
      weight += before.weights[m];
      for (std::size_t j = 0; j < 3; ++j) {
        const double value = before.means.row(m)[j];
        mean[j] += before.weights[m] * value;
        square[j] += before.weights[m] * (value * value + before.variances.row(m)[j]);
      }
    }
    EXPECT_NEAR(after.weights[point], weight, 1e-12);  // the order is that of the first of each
    for (std::size_t j = 0; j < 3; ++j) {
      const double value = mean[j] / weight;
      EXPECT_NEAR(after.means.row(point)[j], value, 1e-4);
      EXPECT_NEAR(after.variances.row(point)[j], square[j] / weight - value * value, 1e-3);
    }
  }
}

// The choice of the pair, against trying all pairs at every step.
TEST(Clustering, TakesTheCheapestMergeAtEveryStep) {
  Mixture step = scattered(17, 17);
  for (std::int32_t components = 16; components >= 1; --components) {
    Mixture merged = step;
    const double cost = mergeGaussians(merged, components);
    double least = INFINITY;
    for (std::size_t a = 0; a < step.weights.size(); ++a)
      for (std::size_t b = 0; b < a; ++b) {
        double pair = 0;
        const double wa = step.weights[a], wb = step.weights[b], w = wa + wb;
        for (std::size_t j = 0; j < 3; ++j) {
          const double d = static_cast<double>(step.means.row(a)[j]) - step.means.row(b)[j];
          const double va = step.variances.row(a)[j], vb = step.variances.row(b)[j];
          const double v = (wa * va + wb * vb) / w + wa * wb / (w * w) * d * d;
          pair += 0.5 * (w * std::log(v) - wa * std::log(va) - wb * std::log(vb));
        }
        least = std::min(least, pair);
      }
    EXPECT_NEAR(cost, least, 1e-5) << components;
    Mixture direct = scattered(17, 17);
    mergeGaussians(direct, components);
    EXPECT_EQ(direct.weights.size(), merged.weights.size());
    for (std::size_t m = 0; m < merged.weights.size(); ++m)
      EXPECT_NEAR(direct.weights[m], merged.weights[m], 1e-12) << components;
    step = merged;
  }
  const Mixture before = step;
  EXPECT_EQ(mergeGaussians(step, 2), 0);
  EXPECT_EQ(step.means.values, before.means.values);
}

Frames sample(std::size_t rows) {
  std::mt19937 random(12);
  Frames frames;
  frames.resize(rows, 3);
  for (float &value : frames.values) value = static_cast<float>(random() % 10000) / 100 - 20;
  return frames;
}

TEST(FrameLists, HaveTheBestComponentsOfEachFrameAndScoreNoOthers) {
  const Frames frames = sample(600);
  Mixture mixture = scattered(9, 5);
  std::copy_n(mixture.means.row(2), 3, mixture.means.row(7));  // equal scores; the first counts
  std::copy_n(mixture.variances.row(2), 3, mixture.variances.row(7));
  mixture.weights[7] = mixture.weights[2];
  mixture.prepare();
  std::vector<float> all(9 * 600), totals(600), listedTotals(kFrameBlock), listed;
  mixture.score(frames, 0, 600, totals.data(), all.data(), 600);
  for (const std::int32_t best : {1, 3, 9}) {
    const FrameLists lists(frames, mixture, best);
    for (std::size_t start = 0; start < 600; start += kFrameBlock) {
      const std::size_t count = std::min<std::size_t>(kFrameBlock, 600 - start);
      lists.score(frames, mixture, start, listedTotals.data(), listed);
      std::vector<std::vector<std::size_t>> of(count);
      for (std::size_t m = 0; m < 9; ++m) {
        std::size_t at = lists.firstScore(start, m);
        for (const FrameLists::Entry &entry : lists.entries(start, m)) {
          of[entry.frame].push_back(m);
          EXPECT_FLOAT_EQ(listed[at++], all[m * 600 + start + entry.frame]);
        }
      }
      for (std::size_t f = 0; f < count; ++f) {
        std::vector<std::size_t> order{0, 1, 2, 3, 4, 5, 6, 7, 8};
        const auto score = [&](std::size_t m) { return all[m * 600 + start + f]; };
        std::stable_sort(order.begin(), order.end(),
                         [&](std::size_t a, std::size_t b) { return score(a) > score(b); });
        order.resize(static_cast<std::size_t>(best));
        double sum = 0;
        for (const std::size_t m : order) sum += std::exp(static_cast<double>(score(m) - score(order[0])));
        EXPECT_NEAR(listedTotals[f], score(order[0]) + std::log(sum),
                    1e-4 * std::abs(score(order[0])) + 1e-5);
        std::sort(order.begin(), order.end());
        ASSERT_EQ(of[f], order) << best << " " << start + f;
      }
    }
  }
}

TEST(Trainer, WithShortlistsNeverReportsAFallAndLosesLittle) {
  const Frames frames = sample(4000);
  TrainingOptions options;
  options.components = 16;
  options.passes = 20;
  const auto floors = varianceFloors({frames}, 0.01);
  const Mixture whole = trainMixture(frames, floors, options, [](std::int32_t, std::int32_t, double) {});
  options.shortlist = 4;
  std::int32_t size = 0;
  double last = 0;
  const Mixture listed = trainMixture(frames, floors, options, [&](std::int32_t n, std::int32_t, double now) {
    if (n == size) {
      EXPECT_GE(now, last) << n;
    }
    size = n;
    last = now;
  });
  const double score = listed.score(frames);
  EXPECT_GE(score, last - 1e-5);  // all components know more than those listed
  EXPECT_GT(score, whole.score(frames) - 0.1);
  const ShortlistEffect effect = shortlistEffect(frames, listed, options);
  EXPECT_GT(effect.timesAsFast, 0);
  EXPECT_GE(effect.lost, 0);
  EXPECT_LT(effect.lost, 0.1);
}

}  // namespace
}  // namespace orv::test
