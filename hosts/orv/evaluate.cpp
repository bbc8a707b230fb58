#include <algorithm>
#include <chrono>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>

#include "common/classifier.h"
#include "common/error.h"
#include "common/recordings.h"
#include "common/shortlist.h"
#include "orv/commands.h"
#include "orv/options.h"

namespace orv {
namespace {

using Clock = std::chrono::steady_clock;

struct Arguments {
  std::filesystem::path model;
  std::vector<std::filesystem::path> folders;
  bool heldOut = false, skip = false, json = false, resample = true;
  std::int32_t shortlist = 0;  // Gaussians of a class that are scored on a frame; 0: all
};

struct Result {
  std::vector<std::string> classes;
  std::vector<std::vector<int>> confusion;  // rows: the recordings' class; columns: the class recognised
  std::vector<std::string> skipped;
  double audioSeconds = 0;
  double decisionSeconds = 0;  // features and scores
  double totalSeconds = 0;     // with reading the files
  // Scoring again, from all Gaussians and from those of the shortlists.
  std::int32_t shortlist = 0;
  int shortlistCorrect = 0;
  double fullScoreSeconds = 0, shortlistScoreSeconds = 0;

  int recordings(std::size_t row) const {
    int sum = 0;
    for (const int count : confusion[row]) sum += count;
    return sum;
  }
  int recordings() const {
    int sum = 0;
    for (std::size_t row = 0; row < confusion.size(); ++row) sum += recordings(row);
    return sum;
  }
  int correct() const {
    int sum = 0;
    for (std::size_t row = 0; row < confusion.size(); ++row) sum += confusion[row][row];
    return sum;
  }
  double shortlistAccuracy() const { return static_cast<double>(shortlistCorrect) / recordings(); }
  double accuracy() const { return static_cast<double>(correct()) / recordings(); }
};

double secondsSince(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

Result evaluate(const Arguments &arguments) {
  const Model model = loadModel(arguments.model);
  if (arguments.heldOut && model.heldOut.parts == 0)
    throw Error(arguments.model, "was trained without --hold-out");

  Result result;
  for (const Model::Class &one : model.classes) result.classes.push_back(one.name);
  std::vector<RecordingFolder> folders = findRecordings(arguments.folders);
  std::vector<std::size_t> classOf;
  for (RecordingFolder &folder : folders) {
    if (arguments.heldOut) folder.keep(model.heldOut, true);
    const auto found = std::find(result.classes.begin(), result.classes.end(), folder.name);
    if (found == result.classes.end()) throw Error(folder.path, "the model has no class of this name");
    classOf.push_back(static_cast<std::size_t>(found - result.classes.begin()));
  }
  result.confusion.assign(result.classes.size(), std::vector<int>(result.classes.size(), 0));

  if (arguments.shortlist < 0) throw Error("a shortlist of fewer than no Gaussians cannot be made");
  result.shortlist = arguments.shortlist;
  std::optional<Shortlists> shortlists;
  if (arguments.shortlist > 0) shortlists.emplace(model, arguments.shortlist);

  Classifier classifier(model, arguments.resample);
  const auto start = Clock::now();
  result.skipped =
      readAll(folders, "recognising", arguments.skip, [&](std::size_t folder, const Recording &recording) {
        const auto read = Clock::now();
        const Decision decision = classifier.decide(recording);
        result.decisionSeconds += secondsSince(read);
        result.audioSeconds += recording.seconds();
        ++result.confusion[classOf[folder]][decision.best];
        if (!shortlists) return;
        const auto full = Clock::now();
        fullScores(model, classifier.features());
        result.fullScoreSeconds += secondsSince(full);
        const auto listed = Clock::now();
        const std::vector<double> scores = shortlists->scores(classifier.features());
        result.shortlistScoreSeconds += secondsSince(listed);
        result.shortlistCorrect += orv::decision(scores).best == classOf[folder];
      });
  result.totalSeconds = secondsSince(start);
  if (result.recordings() == 0) throw Error(folders[0].path, "holds no usable recordings");
  return result;
}

void printJson(const Result &result) {
  nlohmann::ordered_json json = {{"recordings", result.recordings()},
                                 {"correct", result.correct()},
                                 {"accuracy", result.accuracy()},
                                 {"classes", result.classes},
                                 {"confusion", result.confusion},
                                 {"skipped", result.skipped},
                                 {"audioSeconds", result.audioSeconds},
                                 {"decisionSeconds", result.decisionSeconds},
                                 {"totalSeconds", result.totalSeconds},
                                 {"realTimeFactor", result.decisionSeconds / result.audioSeconds}};
  if (result.shortlist > 0) {
    json["shortlist"] = {{"gaussians", result.shortlist},
                         {"correct", result.shortlistCorrect},
                         {"accuracy", result.shortlistAccuracy()},
                         {"scoreSeconds", result.shortlistScoreSeconds},
                         {"fullScoreSeconds", result.fullScoreSeconds}};
  }
  // Names of files are bytes, and need not be UTF-8.
  std::printf("%s\n", json.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace).c_str());
}

void printText(const Result &result) {
  std::size_t width = 0;
  for (const std::string &name : result.classes) width = std::max(width, name.size());
  const int name = static_cast<int>(width);
  std::printf("    %-*s  recognised as\n    %-*s", name, "", name, "");
  for (std::size_t column = 0; column < result.classes.size(); ++column) std::printf(" %6zu", column + 1);
  std::printf("\n");
  for (std::size_t row = 0; row < result.classes.size(); ++row) {
    std::printf("%3zu %-*s", row + 1, name, result.classes[row].c_str());
    for (const int count : result.confusion[row]) std::printf(" %6d", count);
    if (const int of = result.recordings(row); of > 0) {
      std::printf("  %6.2f %%", 100.0 * result.confusion[row][row] / of);
    }
    std::printf("\n");
  }
  std::printf("%d of %d recordings recognised, %.2f %%\n", result.correct(), result.recordings(),
              100 * result.accuracy());
  if (!result.skipped.empty()) {
    std::printf("%zu skipped as empty, too short or silent (--json names them)\n", result.skipped.size());
  }
  std::printf(
      "%.1f s of audio in %.3f s, %.0f times faster than real time (%.0f times with reading the files)\n",
      result.audioSeconds, result.decisionSeconds, result.audioSeconds / result.decisionSeconds,
      result.audioSeconds / result.totalSeconds);
  if (result.shortlist > 0) {
    std::printf("with shortlists of %d Gaussians: %.2f %% recognised (%+.2f), scores %.1f times as fast\n",
                result.shortlist, 100 * result.shortlistAccuracy(),
                100 * (result.shortlistAccuracy() - result.accuracy()),
                result.fullScoreSeconds / result.shortlistScoreSeconds);
  }
}

void run(const Arguments &arguments) {
  const Result result = evaluate(arguments);
  if (arguments.json) {
    printJson(result);
  } else {
    printText(result);
  }
}

}  // namespace

void addEvaluate(CLI::App &app) {
  auto arguments = std::make_shared<Arguments>();
  CLI::App *command =
      app.add_subcommand("evaluate", "Tell how well a model recognises recordings of known class");
  command->add_option("model", arguments->model, "Model")->required()->option_text("MODEL");
  command->add_option("folders", arguments->folders, "Folders named after classes of the model")
      ->required()
      ->option_text("DIR...");
  command->add_flag("--held-out", arguments->heldOut, "Only the recordings that training held out");
  command->add_flag("--json", arguments->json, "Results for machines");
  command
      ->add_option(
          "--shortlist", arguments->shortlist,
          "Score again from the N Gaussians of each class near a frame, and tell what is gained and lost")
      ->option_text("N");
  addSkipOption(*command, arguments->skip);
  addResampleOption(*command, arguments->resample);
  command->callback([arguments] { run(*arguments); });
}

}  // namespace orv
