#include <unistd.h>

#include <bit>
#include <cstdint>
#include <cstdio>
#include <map>
#include <memory>
#include <optional>

#include "common/clustering.h"
#include "common/error.h"
#include "common/model.h"
#include "common/outputfile.h"
#include "common/progress.h"
#include "common/recordings.h"
#include "common/trainer.h"
#include "orv/commands.h"
#include "orv/options.h"

namespace orv {
namespace {

struct Arguments {
  std::vector<std::filesystem::path> folders;
  std::string output, heldOut;
  FeatureOptions features;
  TransformOptions transform;
  TrainingOptions training;
  std::int32_t cluster = 0;  // most Gaussians of a class; 0: as many as were trained
  bool skip = false, resample = true;
};

void checkOptions(const Arguments &arguments) {
  const TrainingOptions &o = arguments.training;
  if (o.components < 1 || o.components > 4096)
    throw Error("the number of components is not within 1 to 4096");
  if (o.passes < 1) throw Error("the number of passes is below 1");
  if (!(o.leastGain >= 0)) throw Error("the least gain is below 0");
  if (o.shortlist < 0) throw Error("a shortlist of fewer than no Gaussians cannot be made");
  if (arguments.cluster < 0) throw Error("mixtures cannot be merged to fewer than no Gaussians");
  if (!(o.varianceFloor >= 0 && o.varianceFloor <= 1)) throw Error("the variance floor is not within 0 to 1");
}

// The frames of each folder. The first recording sets the sample rate for all.
struct Data {
  int sampleRate = 0;
  std::vector<Frames> frames;
  std::vector<std::size_t> recordings;
};

Data readData(const Arguments &arguments, const std::vector<RecordingFolder> &folders) {
  Data data;
  data.frames.resize(folders.size());
  data.recordings.resize(folders.size());
  std::optional<FeatureChain> chain;
  Frames features;
  const auto use = [&](std::size_t folder, const Recording &recording) {
    if (!chain) {
      chain.emplace(arguments.features, recording.sampleRate);
      if (!arguments.resample) chain->refuseOtherRates();
      arguments.transform.check(chain->width());
    }
    refuseSilence(recording);
    chain->compute(recording, features);
    data.frames[folder].append(features);
    ++data.recordings[folder];
  };
  for (const std::string &reason : readAll(folders, "reading", arguments.skip, use)) {
    std::printf("skipped %s\n", reason.c_str());
  }
  for (std::size_t i = 0; i < folders.size(); ++i) {
    if (data.recordings[i] == 0) throw Error(folders[i].path, "holds no usable recordings");
  }
  data.sampleRate = chain->sampleRate();
  return data;
}

// The mixture of a class, with a report of every step.
Mixture trainClass(const Arguments &arguments, const std::string &name, const Frames &frames,
                   const std::vector<double> &floors, std::optional<Progress> &progress) {
  const TrainingOptions &training = arguments.training;
  const auto report = [&](std::int32_t components, std::int32_t pass, double logLikelihood) {
    std::printf("%s: %d components, pass %d: log-likelihood %.6f\n", name.c_str(), components, pass,
                logLikelihood);
    std::fflush(stdout);
    if (progress && pass == 1) progress->advance();
  };
  Mixture mixture = trainMixture(frames, floors, training, report);
  if (arguments.cluster > 0 && arguments.cluster < mixture.components()) {
    const std::int32_t before = mixture.components();
    const double cost = mergeGaussians(mixture, arguments.cluster);
    std::printf("%s: %d components merged to %d, at a cost of about %.6f\n", name.c_str(), before,
                mixture.components(), cost);
    improve(frames, floors, training, mixture, report);
  }
  if (training.shortlist > 0) {
    const ShortlistEffect effect = shortlistEffect(frames, mixture, training);
    std::printf("%s: shortlists of %d Gaussians: passes %.1f times as fast, log-likelihood lower by %.6f\n",
                name.c_str(), training.shortlist, effect.timesAsFast, effect.lost);
  }
  return mixture;
}

void run(const Arguments &arguments) {
  checkOptions(arguments);
  Model model;
  model.features = arguments.features;
  if (!arguments.heldOut.empty()) model.heldOut = Fold::parse(arguments.heldOut);
  const OutputFile output(arguments.output);
  std::vector<RecordingFolder> folders = findRecordings(arguments.folders);
  for (RecordingFolder &folder : folders) folder.keep(model.heldOut, false);

  Data data = readData(arguments, folders);
  model.sampleRate = data.sampleRate;
  model.transform = estimateTransform(arguments.transform, data.frames);
  for (Frames &frames : data.frames) model.transform.apply(frames);
  const std::vector<double> floors = varianceFloors(data.frames, arguments.training.varianceFloor);
  // On a terminal the report itself tells how far training is.
  std::optional<Progress> progress;
  if (isatty(STDOUT_FILENO) == 0) {
    const TrainingOptions &training = arguments.training;
    const auto sizes = (training.start == Start::codebook
                            ? 1
                            : 1 + std::bit_width(static_cast<std::uint32_t>(training.components - 1))) +
                       (arguments.cluster > 0 ? 1 : 0);
    progress.emplace("training", folders.size() * static_cast<std::size_t>(sizes));
  }
  for (std::size_t i = 0; i < folders.size(); ++i) {
    const std::string &name = folders[i].name;
    const Frames &frames = data.frames[i];
    std::printf("%s: %zu recordings, %zu frames\n", name.c_str(), data.recordings[i], frames.rows);
    model.classes.push_back({name, trainClass(arguments, name, frames, floors, progress)});
  }
  output.write(encode(model));
}

}  // namespace

void addTrain(CLI::App &app) {
  auto arguments = std::make_shared<Arguments>();
  CLI::App *command = app.add_subcommand("train", "Train a Gaussian mixture for each folder of recordings");
  command->add_option("folders", arguments->folders, "Folders; each is a class, named after it")
      ->required()
      ->option_text("DIR...");
  command->add_option("-o,--output", arguments->output, "Model")->required()->option_text("MODEL");
  command
      ->add_option("--hold-out", arguments->heldOut,
                   "Leave out every Nth recording of a folder, from the Kth")
      ->option_text("K/N");
  TrainingOptions &training = arguments->training;
  static const std::map<std::string, Start> starts = {{"split", Start::split}, {"codebook", Start::codebook}};
  command
      ->add_option("--init", training.start,
                   "What a mixture starts from. split (default): one Gaussian, which is split; codebook: a "
                   "Gaussian for each cluster of a codebook of the class")
      ->transform(CLI::CheckedTransformer(starts))
      ->option_text("NAME");
  command->add_option("--components", training.components, "Gaussians in a mixture")->capture_default_str();
  command->add_option("--passes", training.passes, "Most passes for each size of a mixture")
      ->capture_default_str();
  command
      ->add_option("--least-gain", training.leastGain, "Log-likelihood per frame below which a size is done")
      ->capture_default_str();
  command
      ->add_option("--variance-floor", training.varianceFloor,
                   "Least variance, as a share of that of all recordings")
      ->capture_default_str();
  command
      ->add_option("--cluster", arguments->cluster,
                   "Merge the nearest Gaussians of a class until N are left, and train these again")
      ->option_text("N");
  command
      ->add_option("--shortlist", training.shortlist,
                   "Score the N Gaussians that were best on a frame in a coarse pass, and tell what is "
                   "gained and lost")
      ->option_text("N");
  addTransformOptions(*command, arguments->transform);
  addSkipOption(*command, arguments->skip);
  addResampleOption(*command, arguments->resample);
  addFeatureOptions(*command, arguments->features);
  command->callback([arguments] { run(*arguments); });
}

}  // namespace orv
