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

// The ends of a row: the ratio of least times, and the target, where there is one.
std::string leastAndTarget(double least, double ratio, double target) {
  char text[48];
  if (target > 0.0)
    std::snprintf(text, sizeof text, " %8.2f %8.2f  %s", least, target, ratio >= target ? "ok" : "short");
  else
    std::snprintf(text, sizeof text, " %8.2f", least);
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

const std::vector<double> &RatioTable::times(const std::string &contender) const {
  static const std::vector<double> none;
  const auto times = times_.find(contender);
  return times == times_.end() ? none : times->second;
}

std::optional<RatioTable::Result> RatioTable::result(const Peer &peer) const {
  const std::vector<double> &ours = times(peer.caseName + "/ours");
  const std::vector<double> theirs =
      peer.known ? std::vector<double>{*peer.known} : times(peer.caseName + "/" + peer.name);
  if (ours.empty() || theirs.empty()) return std::nullopt;
  std::vector<double> ratios;
  for (const double their : theirs)
    for (const double our : ours) ratios.push_back(their / our);
  const auto least = [](const std::vector<double> &values) {
    return *std::min_element(values.begin(), values.end());
  };
  return Result{median(ours), median(theirs), median(ratios), least(theirs) / least(ours)};
}

void RatioTable::Finalize() {
  writeCases();
  writeCells();
}

void RatioTable::writeCases() const {
  std::size_t width = 0;
  for (const Peer &peer : Case::peers())
    if (peer.cell.empty()) width = std::max(width, peer.caseName.size());
  const int column = static_cast<int>(width);
  std::printf("%-*s  %-17s %10s %10s %9s %8s %8s\n", column, "case", "peer", "ours", "peer", "ratio", "least",
              "target");
  for (const Peer &peer : Case::peers()) {
    if (!peer.cell.empty() || times(peer.caseName + "/ours").empty()) continue;
    std::printf("%-*s  %-17s ", column, peer.caseName.c_str(), peer.name.c_str());
    if (const auto all = result(peer))
      std::printf("%10s %10s %9.2f%s\n", readable(all->ours).c_str(), readable(all->theirs).c_str(),
                  all->ratio, leastAndTarget(all->least, all->ratio, peer.target).c_str());
    else
      std::printf("%10s\n", peer.installed ? "not run" : "not installed");
  }
}

// Ratios only. The target, and the ratio of least times, are those of one of the cells, which is marked. Rows
// that have no cell in common stand in different tables.
void RatioTable::writeCells() const {
  struct Table {
    std::vector<std::string> cells;
    std::vector<const Peer *> rows;  // the first cell of each
    std::size_t width = 0;
  };
  const auto sameRow = [](const Peer *a, const Peer *b) { return a->row == b->row && a->name == b->name; };
  std::vector<Table> tables;
  for (const Peer &peer : Case::peers()) {
    if (peer.cell.empty() || !result(peer)) continue;
    const auto isRow = [&](const Peer *other) { return sameRow(other, &peer); };
    const auto has = [&](const Table &t) {
      return std::find(t.cells.begin(), t.cells.end(), peer.cell) != t.cells.end() ||
             std::any_of(t.rows.begin(), t.rows.end(),
                         [&](const Peer *other) { return other->row == peer.row; });
    };
    auto table = std::find_if(tables.begin(), tables.end(), has);
    if (table == tables.end()) table = tables.insert(tables.end(), Table());
    if (std::find(table->cells.begin(), table->cells.end(), peer.cell) == table->cells.end())
      table->cells.push_back(peer.cell);
    if (std::none_of(table->rows.begin(), table->rows.end(), isRow)) table->rows.push_back(&peer);
    table->width = std::max(table->width, peer.row.size());
  }

  for (const Table &table : tables) {
    const int column = static_cast<int>(table.width);
    std::printf("\n%-*s  %-17s", column, "ratio by size", "peer");
    for (const std::string &cell : table.cells) std::printf(" %8s", cell.c_str());
    std::printf("    least   target\n");
    for (const Peer *row : table.rows) {
      std::printf("%-*s  %-17s", column, row->row.c_str(), row->name.c_str());
      std::string end;
      for (const std::string &cell : table.cells) {
        const auto peer = std::find_if(Case::peers().begin(), Case::peers().end(),
                                       [&](const Peer &p) { return sameRow(&p, row) && p.cell == cell; });
        const auto all = peer == Case::peers().end() ? std::nullopt : result(*peer);
        if (!all) {
          std::printf(" %8s", "");
          continue;
        }
        const bool aimed = peer->target > 0.0;
        std::printf(" %7.2f%s", all->ratio, aimed ? "*" : " ");
        if (aimed) end = leastAndTarget(all->least, all->ratio, peer->target);
      }
      std::printf("%s\n", end.c_str());
    }
  }
}

}  // namespace orv::bench
