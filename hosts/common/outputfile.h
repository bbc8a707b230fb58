// Outputs that appear whole or not at all.

#ifndef ORV_HOSTS_COMMON_OUTPUTFILE_H
#define ORV_HOSTS_COMMON_OUTPUTFILE_H

#include <filesystem>
#include <string_view>

namespace orv {

// A file that is written aside, in the same folder, and then renamed, so that a failure at any moment leaves
// what stood there. Throws Error when the file cannot be written: already on construction where this can be
// known, so that nobody trains for an hour to learn it.
class OutputFile {
 public:
  explicit OutputFile(const std::filesystem::path &file);
  void write(std::string_view contents) const;

 private:
  std::filesystem::path file_;    // as given, for messages
  std::filesystem::path target_;  // behind symbolic links
};

}  // namespace orv

#endif
