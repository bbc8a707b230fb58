// Gaussian mixtures by expectation-maximisation.

#ifndef ORV_HOSTS_COMMON_TRAINER_H
#define ORV_HOSTS_COMMON_TRAINER_H

#include <cstdint>
#include <functional>
#include <vector>

#include "common/frames.h"
#include "common/mixture.h"

namespace orv {

// What a mixture grows from: one Gaussian that is split, or a Gaussian for each cluster of a codebook.
enum class Start { split, codebook };

struct TrainingOptions {
  Start start = Start::split;
  std::int32_t components = 64;
  std::int32_t passes = 12;     // at most so many for each size of the mixture
  double leastGain = 0.001;     // a size is done when a pass gains less, in nats per frame
  double varianceFloor = 0.01;  // share of the variance of all the training data
  std::int32_t shortlist = 0;   // Gaussians that are scored on a frame; 0: all
};

// Called after each pass with the size of the mixture, the number of the pass (from 1) and the mean
// log-likelihood of a frame.
using PassReport = std::function<void(std::int32_t components, std::int32_t pass, double logLikelihood)>;

// Per column the variance over all rows of all blocks, times the share, and at least 1e-6.
std::vector<double> varianceFloors(const std::vector<Frames> &blocks, double share);

// Grows a mixture from one Gaussian to options.components by splitting the heaviest components, with passes
// of expectation-maximisation at each size; or starts with all of them, one for each cluster of a codebook,
// and passes at that one size. The reported log-likelihoods never fall within a size. A mixture is not grown
// beyond one component for every ten frames.
//
// With a shortlist, each size begins with a coarse pass that scores all components on each frame, and there
// is another before passes 2, 4, 8 and so on; the passes score just the components that were best on a frame
// in the last of these, and report their log-likelihoods.
//
// The method: A. Dempster, N. Laird and D. Rubin, Maximum likelihood from incomplete data via the EM
// algorithm, 1977; splitting as in S. Young et al., The HTK Book, 2006, section 10.6.
Mixture trainMixture(const Frames &frames, const std::vector<double> &floors, const TrainingOptions &options,
                     const PassReport &report);

// Passes at the size that the mixture has, as trainMixture() makes them at each size.
void improve(const Frames &frames, const std::vector<double> &floors, const TrainingOptions &options,
             Mixture &mixture, const PassReport &report);

// What shortlists do to the passes over the frames under a mixture.
struct ShortlistEffect {
  double timesAsFast = 1;  // with the coarse passes
  double lost = 0;         // of the log-likelihood, in nats per frame
};
ShortlistEffect shortlistEffect(const Frames &frames, const Mixture &mixture, const TrainingOptions &options);

}  // namespace orv

#endif
