#include <algorithm>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>

#include "common/error.h"
#include "common/recordings.h"
#include "common/templates.h"
#include "orv/commands.h"
#include "orv/options.h"

namespace orv {
namespace {

struct Arguments {
  std::vector<std::filesystem::path> templates, files;
  std::vector<std::string> names;
  FeatureOptions features;
  MatchOptions match;
  std::int32_t best = 3;
  std::optional<double> reject;
  bool json = false, skip = false, resample = true;
};

// Only the templates of the given names, if there are any. Throws Error for a name without a template.
void keepNames(std::vector<RecordingFolder> &folders, const std::vector<std::string> &names) {
  if (names.empty()) return;
  std::vector<bool> found(names.size());
  for (RecordingFolder &folder : folders) {
    std::erase_if(folder.files, [&](const std::filesystem::path &file) {
      const auto name = std::find(names.begin(), names.end(), file.stem().string());
      if (name == names.end()) return true;
      found[static_cast<std::size_t>(name - names.begin())] = true;
      return false;
    });
  }
  const auto missing = std::find(found.begin(), found.end(), false);
  if (missing != found.end())
    throw Error("no template is called '" + names[static_cast<std::size_t>(missing - found.begin())] + "'");
}

// With the reasons why recordings were left out.
Templates readTemplates(const Arguments &arguments, std::vector<std::string> &skipped) {
  std::vector<RecordingFolder> folders;
  // One by one, since folders of several voices may well have the same name.
  for (const std::filesystem::path &path : arguments.templates)
    folders.push_back(findRecordings({path}).front());
  keepNames(folders, arguments.names);
  Templates templates(arguments.features, arguments.match, arguments.resample);
  std::size_t count = 0;
  skipped =
      readAll(folders, "reading templates", arguments.skip, [&](std::size_t, const Recording &recording) {
        templates.add(recording);
        ++count;
      });
  if (count == 0) throw Error(arguments.templates[0], "holds no usable recordings");
  return templates;
}

struct Recognised {
  std::filesystem::path file;
  bool accepted = false;
  std::vector<Match> matches;
};

void printText(const std::vector<Recognised> &results, const std::vector<std::string> &skipped) {
  for (const std::string &reason : skipped) std::printf("skipped %s\n", reason.c_str());
  for (const Recognised &one : results) {
    std::printf("%s: %s", one.file.c_str(), one.accepted ? one.matches[0].name.c_str() : "none");
    const char *separator = ", distances ";
    for (const Match &match : one.matches) {
      std::printf("%s%s %.4f", separator, match.name.c_str(), static_cast<double>(match.distance));
      separator = ", ";
    }
    std::printf("\n");
  }
}

void printJson(const std::vector<Recognised> &results, const std::vector<std::string> &skipped) {
  using Json = nlohmann::ordered_json;
  Json utterances = Json::array();
  for (const Recognised &one : results) {
    Json best = Json::array();
    for (const Match &match : one.matches)
      best.push_back({{"name", match.name}, {"distance", match.distance}, {"template", match.file.string()}});
    utterances.push_back({{"file", one.file.string()},
                          {"name", one.accepted ? Json(one.matches[0].name) : Json(nullptr)},
                          {"best", best}});
  }
  const Json json = {{"utterances", utterances}, {"skipped", skipped}};
  // Names of files are bytes, and need not be UTF-8.
  std::printf("%s\n", json.dump(2, ' ', false, Json::error_handler_t::replace).c_str());
}

void run(const Arguments &arguments) {
  if (arguments.best < 1) throw Error("fewer than one name cannot be listed");
  if (arguments.reject && !(*arguments.reject >= 0)) throw Error("the distance of rejection is below 0");
  std::vector<std::string> skipped;
  Templates templates = readTemplates(arguments, skipped);
  std::vector<Recognised> results;
  const auto recognise = [&](std::size_t, const Recording &recording) {
    std::vector<Match> matches = templates.match(recording);
    matches.resize(std::min(matches.size(), static_cast<std::size_t>(arguments.best)));
    const bool near = !matches.empty() && !(arguments.reject && matches[0].distance > *arguments.reject);
    results.push_back({recording.file, near, std::move(matches)});
  };
  const RecordingFolder files{"", "", arguments.files};
  const auto left = readAll({files}, "recognising", arguments.skip, recognise);
  skipped.insert(skipped.end(), left.begin(), left.end());
  if (arguments.json) {
    printJson(results, skipped);
  } else {
    printText(results, skipped);
  }
}

}  // namespace

void addMatch(CLI::App &app) {
  auto arguments = std::make_shared<Arguments>();
  CLI::App *command =
      app.add_subcommand("match", "Recognise utterances by the recorded examples nearest to them");
  command
      ->add_option("--templates", arguments->templates,
                   "Folder of examples, named after their files; may be given again, as for other voices")
      ->required()
      ->allow_extra_args(false)
      ->option_text("DIR");
  command->add_option("files", arguments->files, "Recordings")->required()->option_text("FILE...");
  command->add_option("--names", arguments->names, "Only these names")
      ->delimiter(',')
      ->allow_extra_args(false)
      ->option_text("NAME,...");
  command->add_option("--best", arguments->best, "Names to list")->capture_default_str();
  command
      ->add_option("--reject", arguments->reject, "Recognise nothing where the nearest name is farther away")
      ->option_text("DISTANCE");
  MatchOptions &match = arguments->match;
  command->add_option("--band", match.band, "Frames by which the band of the time warping is widened")
      ->capture_default_str();
  command
      ->add_option("--slope", match.slope,
                   "Pass over templates that last more than so many times longer or shorter")
      ->capture_default_str();
  command
      ->add_option("--beam", match.beam,
                   "Cut the band to paths within this summed distance of the best one; default: no cut")
      ->option_text("DISTANCE");
  command
      ->add_option("--trim", match.trimDb,
                   "Cut off what is so many dB quieter than the loudest 10 ms, at both ends; 0: nothing")
      ->capture_default_str();
  command->add_flag("--json", arguments->json, "Results for machines");
  addSkipOption(*command, arguments->skip);
  addResampleOption(*command, arguments->resample);
  addFeatureOptions(*command, arguments->features);
  command->callback([arguments] { run(*arguments); });
}

}  // namespace orv
