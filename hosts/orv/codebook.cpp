#include "common/codebook.h"

#include <chrono>
#include <cstdio>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>

#include "common/error.h"
#include "common/framesample.h"
#include "common/npy.h"
#include "common/outputfile.h"
#include "common/recordings.h"
#include "orv/commands.h"
#include "orv/options.h"

namespace orv {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::int32_t kLargest = 16383;  // of the library
constexpr std::int32_t kMostFrames = 10000000;

struct Arguments {
  std::vector<std::filesystem::path> folders;
  std::string output;
  FeatureOptions features;
  std::int32_t size = 256;
  CodebookMethod method = CodebookMethod::spread;
  std::int32_t frames = 20000;
  bool weighted = false, json = false, skip = false, resample = true;
};

struct Data {
  explicit Data(std::int32_t frames) : sample(static_cast<std::size_t>(frames)) {}
  FrameSample sample;
  std::vector<std::string> skipped;
  std::size_t recordings = 0;
};

Data readData(const Arguments &arguments) {
  Data data(arguments.frames);
  std::optional<FeatureChain> chain;
  Frames features;
  data.skipped = readAll(findRecordings(arguments.folders), "reading", arguments.skip,
                         [&](std::size_t, const Recording &recording) {
                           if (!chain) {
                             chain.emplace(arguments.features, recording.sampleRate);
                             if (!arguments.resample) chain->refuseOtherRates();
                           }
                           refuseSilence(recording);
                           chain->compute(recording, features);
                           data.sample.add(features);
                           ++data.recordings;
                         });
  if (data.recordings == 0) throw Error(arguments.folders[0], "holds no usable recordings");
  return data;
}

void run(const Arguments &arguments) {
  if (arguments.size < 1 || arguments.size > kLargest)
    throw Error("the size of the codebook is not within 1 to " + std::to_string(kLargest));
  if (arguments.frames < 1 || arguments.frames > kMostFrames)
    throw Error("the number of frames is not within 1 to " + std::to_string(kMostFrames));
  const OutputFile output(arguments.output);
  const Data data = readData(arguments);
  const Frames &frames = data.sample.frames();

  const auto start = Clock::now();
  const std::vector<float> weights = arguments.weighted
                                         ? inverseVariances(frames)
                                         : std::vector<float>(static_cast<std::size_t>(frames.width), 1.0f);
  const Codebook codebook(frames, weights, arguments.size, arguments.method);
  const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
  const double distortion = codebook.distortion(frames);
  output.write(npy(codebook.vectors()));

  if (arguments.json) {
    const nlohmann::ordered_json json = {{"size", codebook.vectors().rows},
                                         {"width", frames.width},
                                         {"recordings", data.recordings},
                                         {"framesSeen", data.sample.seen()},
                                         {"frames", frames.rows},
                                         {"distortion", distortion},
                                         {"seconds", seconds},
                                         {"weights", weights},
                                         {"skipped", data.skipped}};
    // Names of files are bytes, and need not be UTF-8.
    std::printf("%s\n", json.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace).c_str());
    return;
  }
  for (const std::string &reason : data.skipped) std::printf("skipped %s\n", reason.c_str());
  std::printf("%zu vectors of %d values, from %zu of the %zu frames of %zu recordings\n",
              codebook.vectors().rows, frames.width, frames.rows, data.sample.seen(), data.recordings);
  std::printf("mean distortion %.4f, grown in %.2f s\n", distortion, seconds);
}

}  // namespace

void addCodebook(CLI::App &app) {
  static const std::map<std::string, CodebookMethod> methods = {{"spread", CodebookMethod::spread},
                                                                {"count", CodebookMethod::count}};
  auto arguments = std::make_shared<Arguments>();
  CLI::App *command = app.add_subcommand("codebook", "Grow a codebook from the features of recordings");
  command->add_option("folders", arguments->folders, "Folders of recordings")
      ->required()
      ->option_text("DIR...");
  command->add_option("-o,--output", arguments->output, "Codebook: code vectors x values, as a .npy file")
      ->required()
      ->option_text("BOOK");
  command->add_option("--size", arguments->size, "Code vectors")->capture_default_str();
  command
      ->add_option("--method", arguments->method,
                   "Which cluster is divided next. spread (default): the widest; count: the most populous")
      ->transform(CLI::CheckedTransformer(methods))
      ->option_text("NAME");
  command
      ->add_option("--frames", arguments->frames,
                   "Most frames to grow it from; of more than these as many are drawn at random")
      ->capture_default_str();
  command->add_flag("--weighted", arguments->weighted, "Weigh each value by the inverse of its variance");
  command->add_flag("--json", arguments->json, "Results for machines, with the weights");
  addSkipOption(*command, arguments->skip);
  addResampleOption(*command, arguments->resample);
  addFeatureOptions(*command, arguments->features);
  command->callback([arguments] { run(*arguments); });
}

}  // namespace orv
