#include "common/mixture.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

#include "common/error.h"
#include "orvsr/core.h"
#include "orvsr/gauss.h"
#include "orvsr/train.h"

namespace orv {

Mixture::Mixture(std::int32_t components, std::int32_t width)
    : weights(static_cast<std::size_t>(components), 1.0 / components) {
  means.resize(weights.size(), width);
  variances.resize(weights.size(), width);
}

void Mixture::prepare() {
  const std::size_t count = weights.size();
  const auto dimensions = static_cast<std::size_t>(width());
  inverses.resize(count, width());
  std::vector<double> logWeights(count), normalisers(count), sums(count), inverse(dimensions);
  for (std::size_t m = 0; m < count; ++m) {
    for (std::size_t j = 0; j < dimensions; ++j) {
      inverses.row(m)[j] = 1.0f / variances.row(m)[j];
      inverse[j] = inverses.row(m)[j];
    }
    logWeights[m] = std::log(weights[m]);
    require(orvsUpdateGConst_64f(inverse.data(), width(), &normalisers[m]), "orvsUpdateGConst_64f");
  }
  require(orvsOutProbPreCalc_64f(logWeights.data(), normalisers.data(), sums.data(), components()),
          "orvsOutProbPreCalc_64f");
  constants.assign(sums.begin(), sums.end());
}

// A block of frames under one component after the other takes the library 2.5 times less than one frame after
// the other under all of them (orvsLogGaussMixture_32f_D2), with the same result: log-additions of
// neighbouring frames do not wait for one another.
void Mixture::score(const Frames &frames, std::size_t first, std::size_t count, float *totals, float *scores,
                    std::size_t step) const {
  const auto len = static_cast<std::int32_t>(count);
  for (std::size_t m = 0; m < weights.size(); ++m) {
    float *to = scores + m * step;
    require(orvsLogGauss_32f_D2(frames.row(first), frames.step, means.row(m), inverses.row(m), width(), to,
                                len, constants[m]),
            "orvsLogGauss_32f_D2");
    if (m == 0) {
      std::copy_n(to, count, totals);
    } else {
      require(orvsLogAdd_32f(to, totals, len, orvAlgHintAccurate), "orvsLogAdd_32f");
    }
  }
}

double Mixture::score(const Frames &frames) const {
  constexpr std::size_t kBlock = 128;
  std::array<float, kBlock> totals, scores;
  double sum = 0;
  for (std::size_t first = 0; first < frames.rows; first += kBlock) {
    const std::size_t count = std::min(kBlock, frames.rows - first);
    score(frames, first, count, totals.data(), scores.data(), 0);
    sum = std::accumulate(totals.begin(), totals.begin() + static_cast<std::ptrdiff_t>(count), sum);
  }
  return sum / static_cast<double>(frames.rows);
}

}  // namespace orv
