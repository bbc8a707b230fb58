// Which of a model's classes a recording belongs to.

#ifndef ORV_HOSTS_COMMON_CLASSIFIER_H
#define ORV_HOSTS_COMMON_CLASSIFIER_H

#include <cstddef>
#include <optional>
#include <vector>

#include "common/audio.h"
#include "common/featurechain.h"
#include "common/model.h"

namespace orv {

struct Decision {
  std::size_t best = 0;          // index of the class
  double score = 0;              // mean log-likelihood of a frame under it
  std::optional<double> margin;  // to the next class; none if the model has one class only
};

// From the score of each class.
Decision decision(const std::vector<double> &scores);

// The score of each class from all Gaussians: the mean log-likelihood of a frame.
std::vector<double> fullScores(const Model &model, const Frames &features);

class Classifier {
 public:
  // Recordings of another sample rate than the model's are converted, or else refused.
  explicit Classifier(const Model &model, bool resample = true) : model_(model), chain_(model.chain()) {
    if (!resample) chain_.refuseOtherRates();
  }

  // Throws Error or UnusableRecording, also for a silent recording.
  Decision decide(const Recording &recording);

  // The features of the recording that was decided on last, as the mixtures take them.
  const Frames &features() const { return features_; }

 private:
  const Model &model_;
  FeatureChain chain_;
  Frames features_;
};

}  // namespace orv

#endif
