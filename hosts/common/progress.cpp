#include "common/progress.h"

#include <unistd.h>

#include <cstdio>
#include <utility>

namespace orv {

Progress::Progress(std::string task, std::size_t total)
    : task_(std::move(task)), total_(total), terminal_(isatty(STDERR_FILENO) == 1) {
  show();
}

Progress::~Progress() {
  if (terminal_) std::fputs("\r\033[K", stderr);
}

void Progress::advance() {
  ++done_;
  if (std::chrono::steady_clock::now() - shown_ >= std::chrono::milliseconds(100)) show();
}

void Progress::show() {
  if (!terminal_) return;
  shown_ = std::chrono::steady_clock::now();
  std::fprintf(stderr, "\r\033[K%s: %zu of %zu", task_.c_str(), done_, total_);
  std::fflush(stderr);
}

}  // namespace orv
