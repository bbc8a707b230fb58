// Where speech begins and ends in a recording.

#ifndef ORV_HOSTS_COMMON_ENDPOINTS_H
#define ORV_HOSTS_COMMON_ENDPOINTS_H

#include <cstddef>

#include "common/audio.h"

namespace orv {

// Cuts off what is quieter than so many decibels below the loudest 10 ms, at both ends, but for 30 ms around
// what stays and never below `least` samples.
void trimSilence(Recording &recording, double decibels, std::size_t least);

}  // namespace orv

#endif
