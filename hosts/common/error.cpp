#include "common/error.h"

#include <cctype>

namespace orv {

void require(OrvStatus status, const char *function) {
  if (status == orvStsMemAllocErr) throw Error("out of memory");
  if (status < 0) throw Error(std::string(function) + " failed with status " + std::to_string(status));
}

std::string oneLine(std::string message) {
  while (!message.empty() && std::isspace(static_cast<unsigned char>(message.back()))) message.pop_back();
  for (char &c : message) {
    if (std::iscntrl(static_cast<unsigned char>(c))) c = '?';
  }
  return message;
}

}  // namespace orv
