#include "common/recordings.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <string_view>

#include "common/error.h"
#include "common/progress.h"

namespace orv {
namespace {

namespace fs = std::filesystem;

bool looksLikeAudio(const fs::path &file) {
  static constexpr std::array<std::string_view, 15> kExtensions = {
      ".wav", ".wave", ".w64",  ".rf64", ".flac", ".ogg", ".oga", ".opus",
      ".mp3", ".aif",  ".aiff", ".aifc", ".au",   ".caf", ".sph"};
  std::string extension = file.extension().string();
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return std::find(kExtensions.begin(), kExtensions.end(), extension) != kExtensions.end();
}

bool hidden(const fs::path &file) { return file.filename().string().starts_with('.'); }

RecordingFolder findRecordings(const fs::path &path) {
  RecordingFolder folder;
  folder.path = path;
  // absolute() and lexically_normal() name "." and "voices/" too, and leave symbolic links their names.
  const fs::path whole = fs::absolute(path).lexically_normal();
  folder.name = (whole.has_filename() ? whole : whole.parent_path()).filename().string();
  std::error_code failure;
  if (!fs::exists(path, failure)) throw Error(path, "no such folder");
  if (!fs::is_directory(path, failure)) throw Error(path, "is not a folder");

  fs::recursive_directory_iterator entry(path, failure), end;
  for (; !failure && entry != end; entry.increment(failure)) {
    if (hidden(entry->path())) {
      entry.disable_recursion_pending();
    } else if (looksLikeAudio(entry->path()) && !entry->is_directory(failure)) {
      folder.files.push_back(entry->path());
    }
  }
  if (failure) throw Error(path, "cannot be read: " + failure.message());
  if (folder.files.empty()) throw Error(path, "holds no recordings");
  // By the text of the path, so that the order does not depend on the file system.
  std::sort(folder.files.begin(), folder.files.end(),
            [](const fs::path &a, const fs::path &b) { return a.native() < b.native(); });
  return folder;
}

}  // namespace

Fold Fold::parse(const std::string &text) {
  Fold fold;
  const char *end = text.data() + text.size();
  const auto first = std::from_chars(text.data(), end, fold.part);
  if (first.ec == std::errc() && first.ptr != end && *first.ptr == '/') {
    const auto second = std::from_chars(first.ptr + 1, end, fold.parts);
    if (second.ec == std::errc() && second.ptr == end && fold.part >= 1 && fold.part <= fold.parts &&
        fold.parts >= 2) {
      return fold;
    }
  }
  throw Error("'" + text + "' is not a fold K/N with K from 1 to N and N from 2");
}

void RecordingFolder::keep(const Fold &fold, bool inside) {
  std::vector<fs::path> kept;
  for (std::size_t i = 0; i < files.size(); ++i) {
    if (fold.holds(i) == inside) kept.push_back(files[i]);
  }
  files = std::move(kept);
  if (files.empty()) {
    throw Error(path,
                std::string("holds no recordings ") + (inside ? "in" : "outside") + " fold " + fold.text());
  }
}

std::vector<RecordingFolder> findRecordings(const std::vector<fs::path> &folders) {
  std::vector<RecordingFolder> found;
  for (const fs::path &folder : folders) {
    found.push_back(findRecordings(folder));
    for (std::size_t i = 0; i + 1 < found.size(); ++i) {
      if (found[i].name == found.back().name) throw Error(folder, "a folder of this name was given before");
    }
  }
  return found;
}

std::vector<std::string> readAll(const std::vector<RecordingFolder> &folders, const std::string &task,
                                 bool skip, const std::function<void(std::size_t, const Recording &)> &use) {
  std::size_t total = 0;
  for (const RecordingFolder &folder : folders) total += folder.files.size();
  Progress progress(task, total);
  std::vector<std::string> skipped;
  for (std::size_t i = 0; i < folders.size(); ++i) {
    for (const fs::path &file : folders[i].files) {
      try {
        use(i, readRecording(file));
      } catch (const UnusableRecording &reason) {
        if (!skip) throw;
        skipped.push_back(oneLine(reason.what()));
      }
      progress.advance();
    }
  }
  return skipped;
}

}  // namespace orv
