// The JSON goals, each workload beside its reference in one run; the summary prints their ratios.
#include <VantraCore/JsonFormatter.h>
#include <VantraCore/JsonFormatterLowFidelity.h>

#include <benchmark/benchmark.h>
#include <nlohmann/json.hpp>
#include <simdjson.h>

#include <cstdio>
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
  }
  return manyKeys();
}

void BM_NlohmannParse(benchmark::State &state) {
  std::string const &text = textOf(state);
  for (auto _ : state)
    benchmark::DoNotOptimize(nlohmann::json::parse(text));
}
BENCHMARK(BM_NlohmannParse)->Arg(0)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);

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
        times[run.run_name.str()] = run.GetAdjustedCPUTime();
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
  benchmark::Initialize(&argc, argv);
  RecordingReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  Goal const goals[] = {
      {"full read, 1M doubles / nlohmann parse", "BM_FullReadVariant/0", "BM_NlohmannParse/0", 0.35},
      {"full read, 1M doubles / simdjson DOM parse", "BM_FullReadVariant/0", "BM_SimdjsonDomParse/0", 2},
      {"low tree read, plain export / nlohmann parse", "BM_LowReadTree/1", "BM_NlohmannParse/1", 0.5},
      {"low tree read, 200k keys / nlohmann parse", "BM_LowReadTree/2", "BM_NlohmannParse/2", 2},
      {"serialize fifteenDigits / nlohmann build+dump", "BM_Serialize/0", "BM_NlohmannBuildAndDump", 0.4},
      {"serialize shortestRoundTrip / nlohmann build+dump", "BM_Serialize/1", "BM_NlohmannBuildAndDump", 0.4},
  };
  std::printf("\n%-52s %8s %8s %6s %6s\n", "goal (CPU ms)", "ours", "ref", "ratio", "limit");
  for (Goal const &goal : goals) {
    auto const measured = reporter.times.find(goal.measured);
    auto const reference = reporter.times.find(goal.reference);
    if (measured == reporter.times.end() || reference == reporter.times.end()) continue;
    double const ratio = measured->second / reference->second;
    std::printf("%-52s %8.2f %8.2f %6.3f %6.2f %s\n", goal.workload, measured->second, reference->second, ratio,
                goal.limit, ratio <= goal.limit ? "met" : "MISSED");
  }
  benchmark::Shutdown();
}
