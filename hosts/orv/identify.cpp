#include <cstdio>
#include <memory>

#include "common/classifier.h"
#include "orv/commands.h"
#include "orv/options.h"

namespace orv {
namespace {

struct Arguments {
  std::filesystem::path model;
  std::vector<std::filesystem::path> files;
  bool resample = true;
};

void run(const Arguments &arguments) {
  const Model model = loadModel(arguments.model);
  Classifier classifier(model, arguments.resample);
  for (const std::filesystem::path &file : arguments.files) {
    const Decision decision = classifier.decide(readRecording(file));
    std::printf("%s: %s, score %.4f", file.c_str(), model.classes[decision.best].name.c_str(),
                decision.score);
    if (decision.margin) std::printf(", margin %.4f", *decision.margin);
    std::printf("\n");
  }
}

}  // namespace

void addIdentify(CLI::App &app) {
  auto arguments = std::make_shared<Arguments>();
  CLI::App *command = app.add_subcommand("identify", "Tell the class of each recording");
  command->add_option("model", arguments->model, "Model")->required()->option_text("MODEL");
  command->add_option("files", arguments->files, "Recordings")->required()->option_text("FILE...");
  addResampleOption(*command, arguments->resample);
  command->callback([arguments] { run(*arguments); });
}

}  // namespace orv
