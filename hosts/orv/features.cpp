#include <memory>

#include "common/featurechain.h"
#include "common/npy.h"
#include "common/outputfile.h"
#include "orv/commands.h"
#include "orv/options.h"

namespace orv {
namespace {

struct Arguments {
  std::string input, output;
  FeatureOptions features;
};

void run(const Arguments &arguments) {
  const OutputFile output(arguments.output);
  const Recording recording = readRecording(arguments.input);
  FeatureChain chain(arguments.features, recording.sampleRate);
  Frames features;
  chain.compute(recording, features);
  output.write(npy(features));
}

}  // namespace

void addFeatures(CLI::App &app) {
  auto arguments = std::make_shared<Arguments>();
  CLI::App *command =
      app.add_subcommand("features", "Write the feature vectors of a recording as a .npy file");
  command->add_option("input", arguments->input, "Recording, one channel")->required()->option_text("IN.wav");
  command->add_option("-o,--output", arguments->output, "Features: frames x values")
      ->required()
      ->option_text("OUT.npy");
  addFeatureOptions(*command, arguments->features);
  command->callback([arguments] { run(*arguments); });
}

}  // namespace orv
