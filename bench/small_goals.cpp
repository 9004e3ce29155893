// Small values beside what a user would write instead, in one run, with the ratio of the medians:
//   bench_small_goals [--benchmark_repetitions=N]
// A ratio at or under its goal meets it. CPU times: the machine is shared, and the wall clock counts
// the other programs' turns.
#include <VantraCore/InternedString.h>
#include <VantraCore/VxVariant.h>

#include <benchmark/benchmark.h>

#include <any>
#include <cstdio>
#include <map>
#include <mutex>
#include <string>
#include <unordered_set>
#include <vector>

using namespace Tarvex::VantraCore;

namespace {

// A scalar double made, copied, read and dropped.
void BM_ScalarDoubleVariant(benchmark::State &state) {
  double value = 1.5;
  for (auto _ : state) {
    benchmark::DoNotOptimize(value);
    VxVariant const original = value;
    VxVariant const copy = original;
    benchmark::DoNotOptimize(copy.at<double>(0));
  }
}
BENCHMARK(BM_ScalarDoubleVariant);

void BM_ScalarDoubleAny(benchmark::State &state) {
  double value = 1.5;
  for (auto _ : state) {
    benchmark::DoNotOptimize(value);
    std::any const original = value;
    std::any const copy = original;
    benchmark::DoNotOptimize(std::any_cast<double>(copy));
  }
}
BENCHMARK(BM_ScalarDoubleAny);

char const knownName[] = "DisplayUnit";

void BM_InternExistingName(benchmark::State &state) {
  InternedString const first(knownName, sizeof knownName - 1);
  for (auto _ : state) {
    InternedString again(knownName, sizeof knownName - 1);
    benchmark::DoNotOptimize(again);
  }
}
BENCHMARK(BM_InternExistingName);

void BM_InternExistingNameLockedStdSet(benchmark::State &state) {
  std::mutex mutex;
  std::unordered_set<std::string> names{knownName};
  for (auto _ : state) {
    std::lock_guard<std::mutex> const lock(mutex);
    benchmark::DoNotOptimize(&*names.insert(std::string(knownName, sizeof knownName - 1)).first);
  }
}
BENCHMARK(BM_InternExistingNameLockedStdSet);

struct Goal {
  char const *workload;
  char const *row;
  char const *reference;
  double limit;
};
Goal const goals[] = {
    {"scalar double create + copy + at", "BM_ScalarDoubleVariant", "BM_ScalarDoubleAny", 1.5},
    {"InternedString of an existing name", "BM_InternExistingName", "BM_InternExistingNameLockedStdSet", 1.5},
};

// Keeps the median of every row as it is reported.
class MedianCollector : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(std::vector<Run> const &runs) override {
    for (Run const &run : runs) {
      if (run.run_type == Run::RT_Aggregate && run.aggregate_name == "median")
        medians[run.run_name.function_name] = run.GetAdjustedCPUTime();
    }
    ConsoleReporter::ReportRuns(runs);
  }
  std::map<std::string, double> medians;
};

}  // namespace

int main(int argc, char **argv) {
  std::vector<char *> args(argv, argv + argc);
  std::string repetitions = "--benchmark_repetitions=9";
  args.insert(args.begin() + 1, repetitions.data());
  int count = static_cast<int>(args.size());
  benchmark::Initialize(&count, args.data());
  MedianCollector collector;
  benchmark::RunSpecifiedBenchmarks(&collector);
  benchmark::Shutdown();

  std::printf("\n%-36s %10s %10s %7s %6s\n", "workload (medians, ns)", "VantraCore", "reference", "ratio", "goal");
  bool allMet = true;
  for (Goal const &goal : goals) {
    auto const row = collector.medians.find(goal.row), reference = collector.medians.find(goal.reference);
    if (row == collector.medians.end() || reference == collector.medians.end()) continue;
    double const ratio = row->second / reference->second;
    allMet = allMet && ratio <= goal.limit;
    std::printf("%-36s %10.2f %10.2f %6.2fx %5.2fx%s\n", goal.workload, row->second, reference->second, ratio,
                goal.limit, ratio <= goal.limit ? "" : "  missed");
  }
  return allMet ? 0 : 1;
}
