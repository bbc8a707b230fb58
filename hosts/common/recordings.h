// Folders of recordings: a class each.

#ifndef ORV_HOSTS_COMMON_RECORDINGS_H
#define ORV_HOSTS_COMMON_RECORDINGS_H

#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "common/audio.h"

namespace orv {

// Recordings k, k + n, k + 2n, ... of a folder in the order of their paths; written k/n.
struct Fold {
  std::size_t part = 0;   // k, from 1 to n
  std::size_t parts = 0;  // n; 0 is the fold of no recordings

  // Throws Error unless the text is k/n with 1 <= k <= n and n >= 2.
  static Fold parse(const std::string &text);
  std::string text() const { return std::to_string(part) + "/" + std::to_string(parts); }
  bool holds(std::size_t index) const { return parts != 0 && index % parts == part - 1; }
};

struct RecordingFolder {
  std::string name;  // the folder's own name
  std::filesystem::path path;
  std::vector<std::filesystem::path> files;  // at least one

  // Only the recordings in the fold, or only those outside it; Error if none is left.
  void keep(const Fold &fold, bool inside);
};

// All files below each folder with an extension of audio, sorted by path; names that start with a dot are
// passed over. Throws Error for a folder that is missing or holds no recording, and for two of the same name.
std::vector<RecordingFolder> findRecordings(const std::vector<std::filesystem::path> &folders);

// Reads every recording of the folders in order and hands it to `use` with the index of its folder, and shows
// progress. Where `skip` is set, recordings that are unusable (also if `use` finds so) are left out and the
// reasons returned; otherwise they end the command.
std::vector<std::string> readAll(const std::vector<RecordingFolder> &folders, const std::string &task,
                                 bool skip, const std::function<void(std::size_t, const Recording &)> &use);

}  // namespace orv

#endif
