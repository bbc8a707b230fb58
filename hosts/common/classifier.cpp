#include "common/classifier.h"

namespace orv {

Decision decision(const std::vector<double> &scores) {
  Decision decision;
  std::optional<double> best, next;
  for (std::size_t i = 0; i < scores.size(); ++i) {
    const double score = scores[i];
    if (!best || score > *best) {
      next = best;
      best = score;
      decision.best = i;
    } else if (!next || score > *next) {
      next = score;
    }
  }
  decision.score = *best;
  if (next) decision.margin = *best - *next;
  return decision;
}

std::vector<double> fullScores(const Model &model, const Frames &features) {
  std::vector<double> scores;
  for (const Model::Class &one : model.classes) scores.push_back(one.mixture.score(features));
  return scores;
}

Decision Classifier::decide(const Recording &recording) {
  refuseSilence(recording);
  chain_.compute(recording, features_);
  model_.transform.apply(features_);
  return decision(fullScores(model_, features_));
}

}  // namespace orv
