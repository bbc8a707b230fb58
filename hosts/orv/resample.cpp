#include <map>
#include <memory>
#include <string>

#include "common/error.h"
#include "common/resampler.h"
#include "orv/commands.h"

namespace orv {
namespace {

struct Arguments {
  std::filesystem::path input, output;
  int rate = 0;
  Quality quality = Quality::medium;
};

void run(const Arguments &arguments) {
  if (arguments.rate < 1)
    throw Error("a sample rate of " + std::to_string(arguments.rate) + " Hz is below 1 Hz");
  resampleFile(arguments.input, arguments.output, arguments.rate, arguments.quality);
}

}  // namespace

void addResample(CLI::App &app) {
  static const std::map<std::string, Quality> qualities = {
      {"fast", Quality::fast}, {"medium", Quality::medium}, {"best", Quality::best}};
  auto arguments = std::make_shared<Arguments>();
  CLI::App *command = app.add_subcommand("resample", "Convert a recording to another sample rate");
  command->add_option("input", arguments->input, "Recording, any number of channels")
      ->required()
      ->option_text("IN.wav");
  command->add_option("-o,--output", arguments->output, "Recording; the extension tells the format")
      ->required()
      ->option_text("OUT.wav");
  command->add_option("--rate", arguments->rate, "Sample rate in Hz")->required()->option_text("R");
  command->add_option("--quality", arguments->quality, "fast, medium (default) or best")
      ->transform(CLI::CheckedTransformer(qualities))
      ->option_text("NAME");
  command->callback([arguments] { run(*arguments); });
}

}  // namespace orv
