// Cases: a loop of the library beside peers that do the same work, measured in the same run.
//
//     Case("gauss/LogGauss_32f_D2/39")
//         .ours([] { return [in = Frames(39)]() mutable { orvsLogGauss_32f_D2(...); }; })
//         .peer("plain scalar", 4.0, [] { return [in = Frames(39)]() mutable { logGauss(...); }; });
//
// Each contender is given as a function that prepares its data and returns the work of one iteration. After
// the run a table shows for each peer the ratio of its time to ours, and whether it reaches the target; and
// the ratio of the least times, which is that of a machine with nothing else to do.
//
// A case of many sizes is a row of a second table, with a cell for each size:
//
//     for (const Size size : sizes)
//       Case("gauss/MahDist_32f_D2", size.text()).ours(...).peer("plain scalar", size.aim(4.0), ...);
//
// There are hundreds of cells. Those without a target are measured more briefly.

#ifndef ORV_BENCH_RATIO_H
#define ORV_BENCH_RATIO_H

#include <benchmark/benchmark.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace orv::bench {

struct Peer {
  std::string caseName;
  std::string row, cell;  // of the second table, where there is a cell
  std::string name;
  double target;  // least ratio aimed at, 0 where none is
  bool installed = true;
  std::optional<double> known;  // seconds, of a peer that is not run
};

class Case {
 public:
  explicit Case(const std::string &name) : name_(name), row_(name) {}
  Case(const std::string &row, const std::string &cell) : name_(row + "/" + cell), row_(row), cell_(cell) {}
  Case(const Case &) = delete;
  Case &operator=(const Case &) = delete;
  ~Case() {
    if (cell_.empty() || aimed_) return;
    for (auto *const contender : contenders_) contender->Repetitions(7)->MinTime(0.002);
  }

  template <class Prepare>
  Case &ours(Prepare prepare) {
    return contender("ours", prepare);
  }
  template <class Prepare>
  Case &peer(const std::string &name, double target, Prepare prepare) {
    peers().push_back({name_, row_, cell_, name, target, true, std::nullopt});
    aimed_ = aimed_ || target > 0.0;
    return contender(name, prepare);
  }
  // A peer whose time is known: the duration of the signal that is worked on, say.
  Case &fixedPeer(const std::string &name, double target, double seconds) {
    peers().push_back({name_, row_, cell_, name, target, true, seconds});
    return *this;
  }
  // Of the contenders that follow, where one takes a tenth of a second or more.
  Case &repetitions(int count) {
    repetitions_ = count;
    return *this;
  }
  Case &absentPeer(const std::string &name) {
    peers().push_back({name_, row_, cell_, name, 0.0, false, std::nullopt});
    return *this;
  }

  static std::vector<Peer> &peers();

 private:
  template <class Prepare>
  Case &contender(const std::string &contender, Prepare prepare) {
    auto *const registered =
        benchmark::RegisterBenchmark((name_ + "/" + contender).c_str(), [prepare](benchmark::State &state) {
          auto work = prepare();
          for (auto _ : state) {
            work();
            benchmark::ClobberMemory();
          }
        });
    contenders_.push_back(registered);
    if (repetitions_ > 0) registered->Repetitions(repetitions_);
    return *this;
  }

  std::string name_, row_, cell_;
  std::vector<benchmark::internal::Benchmark *> contenders_;
  int repetitions_ = 0;
  bool aimed_ = false;
};

// Collects the processor time of every repetition; writes the tables of medians and ratios when all are done.
class RatioTable : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context &) override { return true; }
  void ReportRuns(const std::vector<Run> &runs) override;
  void Finalize() override;

 private:
  void writeCases() const;
  void writeCells() const;
  // Of a contender; none where it has not run.
  const std::vector<double> &times(const std::string &contender) const;

  // Median times, the ratio of theirs to ours, and that of the least times. The ratio is the median of those
  // of each of their repetitions to each of ours: of several that were tried it moves least from run to run
  // without being that of the best moments.
  struct Result {
    double ours, theirs, ratio, least;
  };
  std::optional<Result> result(const Peer &peer) const;

  // Seconds of one iteration, for each repetition of each contender.
  std::map<std::string, std::vector<double>> times_;
};

}  // namespace orv::bench

#endif
