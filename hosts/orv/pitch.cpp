#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <sstream>

#include "common/outputfile.h"
#include "common/pitchtracker.h"
#include "common/voiceplot.h"
#include "orv/commands.h"

namespace orv {
namespace {

struct Arguments {
  std::string input, output, picture;
  bool json = false;
  PitchOptions pitch;
};

std::string table(std::span<const PitchFrame> track) {
  std::string text = "seconds,f0,strength\n";
  char line[64];
  for (const PitchFrame &frame : track) {
    std::snprintf(line, sizeof line, "%.4f,%.2f,%.3f\n", frame.seconds, frame.f0, frame.strength);
    text += line;
  }
  return text;
}

std::string json(std::span<const PitchFrame> track, const Recording &recording) {
  nlohmann::json frames = nlohmann::json::array();
  for (const PitchFrame &frame : track)
    frames.push_back({{"seconds", frame.seconds}, {"f0", frame.f0}, {"strength", frame.strength}});
  return nlohmann::json{{"sampleRate", recording.sampleRate}, {"frames", frames}}.dump(2) + "\n";
}

void run(const Arguments &arguments) {
  std::optional<OutputFile> output, picture;
  if (!arguments.output.empty()) output.emplace(arguments.output);
  if (!arguments.picture.empty()) {
    checkPicture(arguments.picture);
    picture.emplace(arguments.picture);
  }
  const Recording recording = readRecording(arguments.input);
  const auto track = trackPitch(recording, arguments.pitch);
  // The picture first: where it cannot be drawn nothing is written at all.
  if (picture) picture->write(drawVoice(recording, track, arguments.picture));
  const std::string text = arguments.json ? json(track, recording) : table(track);
  if (output) {
    output->write(text);
  } else {
    std::fwrite(text.data(), 1, text.size(), stdout);
  }
}

}  // namespace

void addPitch(CLI::App &app) {
  auto arguments = std::make_shared<Arguments>();
  CLI::App *command = app.add_subcommand("pitch", "Track the pitch of a voice");
  command->add_option("input", arguments->input, "Recording, one channel")->required()->option_text("IN.wav");
  command->add_option("-o,--output", arguments->output, "Where the track goes instead of standard output")
      ->option_text("FILE");
  command->add_flag("--json", arguments->json, "Write JSON instead of comma-separated values");
  command->add_option("--plot", arguments->picture, "Draw waveform, spectrogram and track (.png or .svg)")
      ->option_text("PICTURE");
  command->add_option("--hop", arguments->pitch.hopMs, "From frame to frame in ms")->capture_default_str();
  command->add_option("--low", arguments->pitch.lowHz, "Lowest pitch in Hz")->capture_default_str();
  command->add_option("--high", arguments->pitch.highHz, "Highest pitch in Hz")->capture_default_str();
  command->callback([arguments] { run(*arguments); });
}

}  // namespace orv
