// The fundamental frequency of a voice, frame by frame.

#ifndef ORV_HOSTS_COMMON_PITCHTRACKER_H
#define ORV_HOSTS_COMMON_PITCHTRACKER_H

#include <vector>

#include "common/audio.h"

namespace orv {

struct PitchOptions {
  double hopMs = 10;
  double lowHz = 60;
  double highHz = 400;
};

struct PitchFrame {
  double seconds = 0;  // the middle of the frame
  double f0 = 0;       // in Hz; 0 where there is no voice
  double strength =
      0;  // the correlation of the period that was chosen, or the largest one where there is no voice
};

// Normalised cross-correlation of each frame with the signal one period later, for all periods in the range;
// its peaks are placed between samples; dynamic programming picks one of them or silence for each frame, so
// that the track is smooth. (D. Talkin, A robust algorithm for pitch tracking, in: Speech Coding and
// Synthesis, 1995.)
//
// Throws Error if an option is out of range, UnusableRecording if the recording is shorter than one frame.
std::vector<PitchFrame> trackPitch(const Recording &recording, const PitchOptions &options);

}  // namespace orv

#endif
