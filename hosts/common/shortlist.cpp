#include "common/shortlist.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>

#include "common/error.h"
#include "orvsr/core.h"
#include "orvsr/gauss.h"

namespace orv {
namespace {

constexpr std::size_t kMostCentroids = 32;
constexpr int kRounds = 10;
constexpr std::size_t kPoints = 20000, kLeastDraws = 8;
// What a point counts for the lists of a class that it was not drawn from: enough to fill them where the
// class has no points, but what a wrong class loses is no loss.
constexpr double kForeignShare = 0.01;

// Points of one Gaussian, normal but for their outermost tails: sums of twelve uniform numbers.
void draw(const Mixture &mixture, std::size_t component, std::size_t count, std::mt19937 &random,
          Frames &points) {
  points.resize(count, mixture.width());
  for (std::size_t r = 0; r < count; ++r)
    for (std::int32_t j = 0; j < mixture.width(); ++j) {
      double sum = -6;
      for (int i = 0; i < 12; ++i) sum += static_cast<double>(random()) / 4294967296.0;
      points.row(r)[j] = mixture.means.row(component)[j] +
                         static_cast<float>(sum) * std::sqrt(mixture.variances.row(component)[j]);
    }
}

}  // namespace

Shortlists::Shortlists(const Model &model, std::int32_t best)
    : model_(model), width_(model.classes.at(0).mixture.width()) {
  findCentroids();
  makeLists(best);
}

// Each cell lists the Gaussians of a class that have the largest share of the points in it. The points are
// drawn from the mixtures themselves: what lies about a centroid is often nearer to other Gaussians than the
// centroid is.
void Shortlists::makeLists(std::int32_t best) {
  std::size_t gaussians = 0;
  for (const Model::Class &one : model_.classes) gaussians += one.mixture.weights.size();
  const std::size_t draws = std::max(kLeastDraws, kPoints / gaussians);
  std::vector<std::vector<std::vector<double>>> shares(centroids_.rows);
  for (auto &cell : shares)
    for (const Model::Class &one : model_.classes) cell.emplace_back(one.mixture.weights.size());

  std::mt19937 random(1);
  Frames points;
  std::vector<float> totals(draws), scores;
  for (const Model::Class &from : model_.classes)
    for (std::size_t g = 0; g < from.mixture.weights.size(); ++g) {
      draw(from.mixture, g, draws, random, points);
      assign(points, members_);
      for (std::size_t i = 0; i < model_.classes.size(); ++i) {
        const Mixture &mixture = model_.classes[i].mixture;
        scores.resize(mixture.weights.size() * draws);
        mixture.score(points, 0, draws, totals.data(), scores.data(), draws);
        for (std::size_t c = 0; c < centroids_.rows; ++c)
          for (const std::size_t f : members_[c])
            for (std::size_t m = 0; m < mixture.weights.size(); ++m)
              shares[c][i][m] += (&from == &model_.classes[i] ? 1.0 : kForeignShare) *
                                 from.mixture.weights[g] *
                                 static_cast<double>(std::exp(scores[m * draws + f] - totals[f]));
      }
    }

  lists_.resize(centroids_.rows);
  for (std::size_t c = 0; c < centroids_.rows; ++c)
    for (std::size_t i = 0; i < model_.classes.size(); ++i) {
      const std::vector<double> &share = shares[c][i];
      std::vector<std::size_t> order(share.size());
      std::iota(order.begin(), order.end(), std::size_t{0});
      const auto kept = std::min(order.size(), static_cast<std::size_t>(best));
      std::stable_sort(order.begin(), order.end(),
                       [&](std::size_t a, std::size_t b) { return share[a] > share[b]; });
      order.resize(kept);
      lists_[c].push_back(order);
    }
}

// Rounds of the mean of each centroid's members, from means taken at even distances.
void Shortlists::findCentroids() {
  Frames means;
  for (const Model::Class &one : model_.classes) means.append(one.mixture.means);
  const auto width = static_cast<std::size_t>(width_);
  scale_.assign(width, 0);
  for (std::size_t j = 0; j < width; ++j) {
    double sum = 0, squares = 0;
    for (std::size_t r = 0; r < means.rows; ++r) {
      sum += means.row(r)[j];
      squares += means.row(r)[j] * means.row(r)[j];
    }
    const auto count = static_cast<double>(means.rows);
    const double variance = squares / count - sum / count * (sum / count);
    scale_[j] = variance > 1e-12 ? static_cast<float>(1 / variance) : 1.0f;
  }
  centroids_.resize(std::min(kMostCentroids, means.rows), width_);
  for (std::size_t c = 0; c < centroids_.rows; ++c)
    std::copy_n(means.row(c * means.rows / centroids_.rows), width, centroids_.row(c));
  for (int round = 0; round < kRounds; ++round) {
    assign(means, members_);
    for (std::size_t c = 0; c < centroids_.rows; ++c) {
      if (members_[c].empty()) continue;
      std::vector<double> sums(width, 0.0);
      for (const std::size_t r : members_[c])
        for (std::size_t j = 0; j < width; ++j) sums[j] += means.row(r)[j];
      for (std::size_t j = 0; j < width; ++j)
        centroids_.row(c)[j] = static_cast<float>(sums[j] / static_cast<double>(members_[c].size()));
    }
  }
}

void Shortlists::assign(const Frames &points, std::vector<std::vector<std::size_t>> &members) {
  const std::size_t count = points.rows;
  distances_.resize(count);
  totals_.resize(count);
  nearest_.assign(count, 0);
  for (std::size_t c = 0; c < centroids_.rows; ++c) {
    float *to = c == 0 ? totals_.data() : distances_.data();
    require(orvsLogGauss_32f_D2(points.row(0), points.step, centroids_.row(c), scale_.data(), width_, to,
                                static_cast<std::int32_t>(count), 0),
            "orvsLogGauss_32f_D2");
    for (std::size_t f = 0; c != 0 && f < count; ++f) {
      if (distances_[f] <= totals_[f]) continue;
      totals_[f] = distances_[f];
      nearest_[f] = c;
    }
  }
  members.assign(centroids_.rows, {});
  for (std::size_t f = 0; f < count; ++f) members[nearest_[f]].push_back(f);
}

std::vector<double> Shortlists::scores(const Frames &frames) {
  assign(frames, members_);
  std::vector<double> sums(model_.classes.size(), 0.0);
  std::vector<const float *> rows;
  for (std::size_t c = 0; c < centroids_.rows; ++c) {
    if (members_[c].empty()) continue;
    rows.clear();
    for (const std::size_t f : members_[c]) rows.push_back(frames.row(f));
    const auto count = static_cast<std::int32_t>(rows.size());
    totals_.resize(rows.size());
    component_.resize(rows.size());
    for (std::size_t i = 0; i < sums.size(); ++i) {
      const Mixture &mixture = model_.classes[i].mixture;
      bool first = true;
      for (const std::size_t m : lists_[c][i]) {
        float *to = first ? totals_.data() : component_.data();
        require(orvsLogGauss_32f_D2L(rows.data(), mixture.means.row(m), mixture.inverses.row(m), width_, to,
                                     count, mixture.constants[m]),
                "orvsLogGauss_32f_D2L");
        if (!first) require(orvsLogAdd_32f(to, totals_.data(), count, orvAlgHintAccurate), "orvsLogAdd_32f");
        first = false;
      }
      sums[i] = std::accumulate(totals_.begin(), totals_.end(), sums[i]);
    }
  }
  for (double &sum : sums) sum /= static_cast<double>(frames.rows);
  return sums;
}

}  // namespace orv
