// The JSON goals, each workload beside its reference in one run; the summary prints the ratios of their
// wall times, since a large parse spreads its numbers over threads.
#include <VantraCore/JsonFormatter.h>
#include <VantraCore/JsonFormatterLowFidelity.h>

#include <benchmark/benchmark.h>
#include <nlohmann/json.hpp>
#include <simdjson.h>

#include <sys/wait.h>
#include <spawn.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "JsonReferences.h"
#include "SampleValues.h"

using namespace Tarvex::VantraCore;

namespace {

constexpr std::size_t elementCount = 1 << 20;
constexpr std::size_t keyCount = 200000;
constexpr std::size_t largeCount = 10000000;

// A writer's document of a million doubles at 15 significant digits.
std::string const &variantDocument() {
  static std::string const text = [] {
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> values(-1e6, 1e6);
    std::vector<double> data(elementCount);
    for (double &value : data)
      value = values(random);
    return std::string(JsonFormatter::serialize(VxVariant(data)).c_str());
  }();
  return text;
}

// A plain export as another program writes it.
std::string const &plainExport() {
  static std::string const text = [] {
    std::string samples = JsonFormatterLowFidelity::serialize(VxVariant(sampleDoubles(elementCount))).c_str();
    return "{\"unit\":\"mV\",\"samples\":" + samples + "}";
  }();
  return text;
}

// The same export with ten million numbers: integers and fractions as instruments write them.
std::string const &largeExport() {
  static std::string const text = [] {
    std::vector<double> samples = sampleDoubles(largeCount);
    std::string out = "{\"unit\":\"mV\",\"samples\":";
    out += JsonFormatterLowFidelity::serialize(VxVariant(std::move(samples))).c_str();
    return out + "}";
  }();
  return text;
}

std::string const &manyKeys() {
  static std::string const text = [] {
    std::string result = "{";
    for (std::size_t i = 0; i < keyCount; ++i)
      result += (i ? ",\"k" : "\"k") + std::to_string(i * 7919 % keyCount) + "\":" + std::to_string(i);
    return result + "}";
  }();
  return text;
}

std::string const &textOf(benchmark::State const &state) {
  switch (state.range(0)) {
    case 0:
      return variantDocument();
    case 1:
      return plainExport();
    case 3:
      return largeExport();
  }
  return manyKeys();
}

void BM_NlohmannParse(benchmark::State &state) {
  std::string const &text = textOf(state);
  for (auto _ : state)
    benchmark::DoNotOptimize(nlohmann::json::parse(text));
}
BENCHMARK(BM_NlohmannParse)->Arg(0)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_NlohmannParse)->Arg(3)->Iterations(1)->Unit(benchmark::kMillisecond);

void BM_SimdjsonDomParse(benchmark::State &state) {
  simdjson::padded_string const text(textOf(state));
  simdjson::dom::parser parser;
  for (auto _ : state)
    benchmark::DoNotOptimize(parser.parse(text).error());
}
BENCHMARK(BM_SimdjsonDomParse)->Arg(0)->Unit(benchmark::kMillisecond);

void BM_FullReadVariant(benchmark::State &state) {
  VxString const text(textOf(state));
  for (auto _ : state)
    benchmark::DoNotOptimize(JsonFormatter::deserializeVxVariant(text));
}
BENCHMARK(BM_FullReadVariant)->Arg(0)->Unit(benchmark::kMillisecond);

void BM_LowReadTree(benchmark::State &state) {
  VxString const text(textOf(state));
  for (auto _ : state)
    benchmark::DoNotOptimize(JsonFormatterLowFidelity::deserializePropertyNode(text));
}
BENCHMARK(BM_LowReadTree)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);

void BM_LowReadTreeAsVariants(benchmark::State &state) {
  VxString const text(textOf(state));
  for (auto _ : state)
    benchmark::DoNotOptimize(JsonFormatterLowFidelity::deserializePropertyNode(text, JsonArrays::asVariants));
}
BENCHMARK(BM_LowReadTreeAsVariants)->Arg(3)->Iterations(1)->Unit(benchmark::kMillisecond);

// Peak memory is measured in a process of its own that reads the export from a file and nothing else.
constexpr char const *peakRssFlag = "--read-as-variants";

// The reading process writes its own peak in KiB behind the text's path. The kernel's count of a
// spawned child's peak starts from its parent's, which has built the text and much else.
int readAsVariants(char const *path) {
  std::ifstream in(path, std::ios::binary);
  PropertyNode const tree = JsonFormatterLowFidelity::deserializePropertyNode(in, JsonArrays::asVariants);
  std::ifstream status("/proc/self/status");
  std::string line;
  while (std::getline(status, line) && line.rfind("VmHWM:", 0) != 0) {
  }
  std::ofstream(std::string(path) + ".peak") << std::strtol(line.c_str() + 6, nullptr, 10);
  return tree.map().size() == 2 ? 0 : 1;
}

// The peak resident size of that process in MB, or a negative number when it failed.
double peakRssOfReading(std::string const &text) {
  char path[] = "/tmp/json_goals_XXXXXX";
  int const file = mkstemp(path);
  if (file < 0 || write(file, text.data(), text.size()) != static_cast<ssize_t>(text.size())) return -1;
  close(file);
  char self[] = "/proc/self/exe";
  char flag[32];
  std::strcpy(flag, peakRssFlag);
  char *const args[] = {self, flag, path, nullptr};
  pid_t child = 0;
  double result = -1;
  if (posix_spawn(&child, self, nullptr, nullptr, args, environ) == 0) {
    int status = 0;
    double peakKiB = -1;
    if (waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0 &&
        std::ifstream(std::string(path) + ".peak") >> peakKiB)
      result = peakKiB / 1024.0;
  }
  unlink(path);
  unlink((std::string(path) + ".peak").c_str());
  return result;
}

void BM_NlohmannBuildAndDump(benchmark::State &state) {
  std::vector<double> const values = sampleDoubles(elementCount);
  for (auto _ : state) {
    benchmark::DoNotOptimize(libraryDoubleDocument(values));
  }
}
BENCHMARK(BM_NlohmannBuildAndDump)->Unit(benchmark::kMillisecond);

void BM_Serialize(benchmark::State &state) {
  VxVariant const value(sampleDoubles(elementCount));
  auto const numbers = static_cast<JsonNumberText>(state.range(0));
  for (auto _ : state)
    benchmark::DoNotOptimize(JsonFormatter::serialize(value, -1, numbers));
}
BENCHMARK(BM_Serialize)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

// Keeps each run's CPU time per iteration beside the console output: on a machine shared with other
// work, wall time counts the others too.
class RecordingReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(std::vector<Run> const &runs) override {
    for (Run const &run : runs)
      if (run.run_type == Run::RT_Iteration || run.aggregate_name == "median")
        times[run.run_name.str()] = run.GetAdjustedRealTime();
    ConsoleReporter::ReportRuns(runs);
  }
  std::map<std::string, double> times;
};

struct Goal {
  char const *workload, *measured, *reference;
  double limit;
};

}  // namespace

int main(int argc, char **argv) {
  if (argc == 3 && std::strcmp(argv[1], peakRssFlag) == 0) return readAsVariants(argv[2]);
  benchmark::Initialize(&argc, argv);
  RecordingReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  Goal const goals[] = {
      {"full read, 1M doubles / nlohmann parse", "BM_FullReadVariant/0", "BM_NlohmannParse/0", 0.35},
      {"full read, 1M doubles / simdjson DOM parse", "BM_FullReadVariant/0", "BM_SimdjsonDomParse/0", 2},
      {"low tree read, plain export / nlohmann parse", "BM_LowReadTree/1", "BM_NlohmannParse/1", 0.5},
      {"low tree read, 200k keys / nlohmann parse", "BM_LowReadTree/2", "BM_NlohmannParse/2", 2},
      {"asVariants tree read, 10M numbers / nlohmann parse", "BM_LowReadTreeAsVariants/3/iterations:1",
       "BM_NlohmannParse/3/iterations:1", 0.5},
      {"serialize fifteenDigits / nlohmann build+dump", "BM_Serialize/0", "BM_NlohmannBuildAndDump", 0.4},
      {"serialize shortestRoundTrip / nlohmann build+dump", "BM_Serialize/1", "BM_NlohmannBuildAndDump", 0.4},
  };
  std::printf("\n%-52s %8s %8s %6s %6s\n", "goal (wall ms)", "ours", "ref", "ratio", "limit");
  for (Goal const &goal : goals) {
    auto const measured = reporter.times.find(goal.measured);
    auto const reference = reporter.times.find(goal.reference);
    if (measured == reporter.times.end() || reference == reporter.times.end()) continue;
    double const ratio = measured->second / reference->second;
    std::printf("%-52s %8.2f %8.2f %6.3f %6.2f %s\n", goal.workload, measured->second, reference->second, ratio,
                goal.limit, ratio <= goal.limit ? "met" : "MISSED");
  }
  std::string const &large = largeExport();
  double const peak = peakRssOfReading(large);
  double const budget = 1.5 * (static_cast<double>(large.size()) / (1 << 20) + 80);
  std::printf("%-52s %8.1f %8.1f %6.3f %6.2f %s\n", "asVariants read, 10M numbers: peak MB / budget", peak, budget,
              peak / budget, 1.0, peak >= 0 && peak <= budget ? "met" : "MISSED");
  benchmark::Shutdown();
}
