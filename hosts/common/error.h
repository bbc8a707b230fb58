// What stops a command: one line for the user.

#ifndef ORV_HOSTS_COMMON_ERROR_H
#define ORV_HOSTS_COMMON_ERROR_H

#include <filesystem>
#include <stdexcept>
#include <string>

#include "orvsr/types.h"

namespace orv {

class Error : public std::runtime_error {
 public:
  explicit Error(const std::string &reason) : std::runtime_error(reason) {}
  Error(const std::filesystem::path &file, const std::string &reason)
      : std::runtime_error(file.string() + ": " + reason) {}
};

// A recording that is sound audio and yet of no use: empty, too short or silent. Commands that read whole
// folders can be told to leave such recordings out.
class UnusableRecording : public Error {
 public:
  using Error::Error;
};

// Throws if a library function reports an error; warnings pass. The functions' arguments are checked before,
// so this stops on a lack of memory or on a fault of the program.
void require(OrvStatus status, const char *function);

// A message as exactly one line: control characters, which a file name may hold, become question marks.
std::string oneLine(std::string message);

}  // namespace orv

#endif
