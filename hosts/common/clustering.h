// Smaller mixtures by merging Gaussians.

#ifndef ORV_HOSTS_COMMON_CLUSTERING_H
#define ORV_HOSTS_COMMON_CLUSTERING_H

#include <cstdint>

#include "common/mixture.h"

namespace orv {

// Merges the two Gaussians whose merge costs the least likelihood, until no more than `components` are left.
// Returns what the merges cost: the fall of the log-likelihood, in nats per frame, of frames that belong to
// one Gaussian each. A mixture that is small enough stays as it is, and the cost is 0.
//
// Source: S. Young and P. Woodland, State clustering in hidden Markov model-based continuous speech
// recognition, Computer Speech and Language 8 (1994).
double mergeGaussians(Mixture &mixture, std::int32_t components);

}  // namespace orv

#endif
