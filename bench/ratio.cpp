#include "bench/ratio.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>

namespace orv::bench {
namespace {

double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

std::string readable(double seconds) {
  char text[32];
  if (seconds < 1e-6) {
    std::snprintf(text, sizeof text, "%.1f ns", seconds * 1e9);
  } else if (seconds < 1e-3) {
    std::snprintf(text, sizeof text, "%.2f us", seconds * 1e6);
  } else if (seconds < 1.0) {
    std::snprintf(text, sizeof text, "%.2f ms", seconds * 1e3);
  } else {
    std::snprintf(text, sizeof text, "%.2f s", seconds);
  }
  return text;
}

}  // namespace

std::vector<Peer> &Case::peers() {
  static std::vector<Peer> all;
  return all;
}

void RatioTable::ReportRuns(const std::vector<Run> &runs) {
  for (const Run &run : runs) {
    if (run.run_type != Run::RT_Iteration || run.error_occurred) continue;
    times_[run.run_name.function_name].push_back(run.cpu_accumulated_time /
                                                 static_cast<double>(run.iterations));
  }
}

void RatioTable::Finalize() {
  std::size_t width = 0;
  for (const Peer &peer : Case::peers()) width = std::max(width, peer.caseName.size());
  const int column = static_cast<int>(width);
  std::printf("%-*s  %-17s %10s %10s %9s %8s\n", column, "case", "peer", "ours", "peer", "ratio", "target");
  for (const Peer &peer : Case::peers()) {
    const auto ours = times_.find(peer.caseName + "/ours");
    if (ours == times_.end()) continue;
    std::printf("%-*s  %-17s ", column, peer.caseName.c_str(), peer.name.c_str());
    const auto theirs = times_.find(peer.caseName + "/" + peer.name);
    if (!peer.known && theirs == times_.end()) {
      std::printf("%10s\n", peer.installed ? "not run" : "not installed");
      continue;
    }
    const double time = peer.known ? *peer.known : median(theirs->second);
    const double oursTime = median(ours->second);
    const double ratio = time / oursTime;
    std::printf("%10s %10s %9.2f", readable(oursTime).c_str(), readable(time).c_str(), ratio);
    if (peer.target > 0.0) std::printf(" %8.2f  %s", peer.target, ratio >= peer.target ? "ok" : "short");
    std::printf("\n");
  }
}

}  // namespace orv::bench
