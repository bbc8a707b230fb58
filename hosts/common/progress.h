// A line that tells how far long work has come; shown on a terminal only.

#ifndef ORV_HOSTS_COMMON_PROGRESS_H
#define ORV_HOSTS_COMMON_PROGRESS_H

#include <chrono>
#include <cstddef>
#include <string>

namespace orv {

class Progress {
 public:
  Progress(std::string task, std::size_t total);
  ~Progress();  // wipes the line, so that nothing of it stays beside results or errors
  Progress(const Progress &) = delete;
  Progress &operator=(const Progress &) = delete;

  void advance();

 private:
  void show();

  std::string task_;
  std::size_t total_;
  std::size_t done_ = 0;
  bool terminal_;
  std::chrono::steady_clock::time_point shown_;
};

}  // namespace orv

#endif
