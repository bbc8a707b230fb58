// Pictures of a voice, drawn by gnuplot.

#ifndef ORV_HOSTS_COMMON_VOICEPLOT_H
#define ORV_HOSTS_COMMON_VOICEPLOT_H

#include <filesystem>
#include <span>
#include <string>

#include "common/audio.h"
#include "common/pitchtracker.h"

namespace orv {

// Throws Error unless the name of the picture ends in .png or .svg.
void checkPicture(const std::filesystem::path &file);

// The bytes of a picture of the waveform, the wide-band spectrogram and the pitch track, above one another on
// one time axis. `file` decides the format. Throws Error if gnuplot is not there or fails.
std::string drawVoice(const Recording &recording, std::span<const PitchFrame> track,
                      const std::filesystem::path &file);

}  // namespace orv

#endif
