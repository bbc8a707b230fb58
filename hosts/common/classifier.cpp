#include "common/classifier.h"

namespace orv {

Decision Classifier::decide(const Recording &recording) {
  refuseSilence(recording);
  chain_.compute(recording, features_);
  Decision decision;
  std::optional<double> best, next;
  for (std::size_t i = 0; i < model_.classes.size(); ++i) {
    const double score = model_.classes[i].mixture.score(features_);
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

}  // namespace orv
