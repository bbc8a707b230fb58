// orv_bench: all cases, or those that --benchmark_filter selects. The flags of Google Benchmark apply.

#include <benchmark/benchmark.h>

#include <vector>

#include "bench/ratio.h"

namespace orv::bench {
void addAnalysisCases();
void addCoreCases();
void addPrimitiveCases();
void addGaussCases();
void addFrontendCases();
void addMatrixCases();
void addResampleCases();
void addRobustCases();
void addTrainCases();
void addVqCases();
void addVqTrainingCases();
void addHostCases();
void printResampleQuality();
}  // namespace orv::bench

int main(int argc, char **argv) {
  // Contenders take turns in random order, so that whatever else the machine does falls on all of them: many
  // short turns, each of which meets the machine in another state.
  char repetitions[] = "--benchmark_repetitions=45";
  char interleaving[] = "--benchmark_enable_random_interleaving=true";
  char time[] = "--benchmark_min_time=0.01";
  std::vector<char *> arguments{argv[0], repetitions, interleaving, time};
  arguments.insert(arguments.end(), argv + 1, argv + argc);
  int count = static_cast<int>(arguments.size());
  arguments.push_back(nullptr);
  benchmark::Initialize(&count, arguments.data());
  if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 1;

  orv::bench::addAnalysisCases();
  orv::bench::addCoreCases();
  orv::bench::addPrimitiveCases();
  orv::bench::addGaussCases();
  orv::bench::addFrontendCases();
  orv::bench::addMatrixCases();
  orv::bench::addResampleCases();
  orv::bench::addRobustCases();
  orv::bench::addTrainCases();
  orv::bench::addVqCases();
  orv::bench::addVqTrainingCases();
#if ORV_BENCH_HOSTS
  orv::bench::addHostCases();
#endif
  orv::bench::RatioTable table;
  benchmark::RunSpecifiedBenchmarks(&table);
  orv::bench::printResampleQuality();
  return 0;
}
