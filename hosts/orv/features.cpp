#include <memory>

#include "common/aurorachain.h"
#include "common/error.h"
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

// A stream of any length in little memory: rows go to the file as they come, and are normalised there.
void runAurora(const Arguments &arguments, const OutputFile &output) {
  RecordingReader reader(arguments.input);
  const FeatureChain checked(arguments.features, reader.sampleRate());
  AuroraChain chain(reader.sampleRate());
  NpyStream rows(output, AuroraChain::kWidth);
  Normalisation normalisation;
  const auto keep = [&](const float *row, bool speech) {
    if (arguments.features.dropPauses && !speech) return;
    rows.append(row);
    normalisation.add(row);
  };
  std::size_t total = 0;
  for (auto samples = reader.read(); !samples.empty(); samples = reader.read()) {
    total += samples.size();
    chain.push(samples, keep);
  }
  checked.requireLength(arguments.input, total);
  chain.flush(keep);
  if (rows.rows() == 0) throw UnusableRecording(arguments.input, "holds no speech");
  if (arguments.features.meanNormalisation) rows.change([&](float *row) { normalisation.apply(row); });
  rows.commit();
}

void run(const Arguments &arguments) {
  const OutputFile output(arguments.output);
  if (arguments.features.frontEnd == FrontEnd::aurora) {
    runAurora(arguments, output);
    return;
  }
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
  command->add_option("input", arguments->input, "Recording, one channel; - for standard input")
      ->required()
      ->option_text("IN.wav");
  command->add_option("-o,--output", arguments->output, "Features: frames x values")
      ->required()
      ->option_text("OUT.npy");
  addFeatureOptions(*command, arguments->features);
  command->callback([arguments] { run(*arguments); });
}

}  // namespace orv
