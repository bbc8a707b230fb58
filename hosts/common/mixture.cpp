#include "common/mixture.h"

#include <cmath>

#include "common/error.h"
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

double Mixture::score(const Frames &frames) const {
  double sum = 0;
  for (std::size_t f = 0; f < frames.rows; ++f) {
    float score = 0;
    require(orvsLogGaussMixture_32f_D2(frames.row(f), means.values.data(), inverses.values.data(),
                                       components(), means.step, width(), constants.data(), &score),
            "orvsLogGaussMixture_32f_D2");
    sum += score;
  }
  return sum / static_cast<double>(frames.rows);
}

}  // namespace orv
