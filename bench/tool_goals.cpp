// The tool's goals, each run as a whole process beside its reference in the same run: re-encoding a
// 20 MB document against the tool as it was before the quick parse (its path in VANTRA_REFERENCE;
// skipped without it), converting every channel of a 10M-sample export against jq reading the same
// file, and plotting 10M samples. The summary prints ratios, peaks and sizes.
#include <VantraCore/JsonFormatter.h>
#include <VantraCore/JsonFormatterLowFidelity.h>

#include <benchmark/benchmark.h>

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <fcntl.h>
#include <spawn.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "SampleValues.h"

using namespace Tarvex::VantraCore;

namespace {

std::string const directory = "/tmp/vantra_tool_goals";
std::string const document20 = directory + "/doc20.json";
std::string const export10M = directory + "/export10M.json";
std::string const chart = directory + "/chart.svg";

void writeFile(std::string const &path, VxString const &text) {
  std::ofstream(path, std::ios::binary).write(text.data(), static_cast<std::streamsize>(text.size()));
}

// A writer's document of 1.15M doubles (about 20 MB), and a plain export of two channels of 5M samples.
void writeInputs() {
  mkdir(directory.c_str(), 0700);
  std::mt19937_64 random(7);
  std::uniform_real_distribution<double> values(-1e6, 1e6);
  std::vector<double> data(1150000);
  for (double &value : data)
    value = values(random);
  writeFile(document20, JsonFormatter::serialize(VxVariant(std::move(data))));
  std::string samples = JsonFormatterLowFidelity::serialize(VxVariant(sampleDoubles(5000000))).c_str();
  std::ofstream(export10M, std::ios::binary) << R"({"channels":[{"unit":"mV","samples":)" << samples
                                             << R"(},{"unit":"mV","samples":)" << samples << "}]}";
}

struct Run {
  bool ok;
  double peakMiB;
};

// Runs the command with standard output to `out`; the peak is the process's own, which starts from
// this one's size at the fork, a few MiB.
Run run(std::vector<std::string> arguments, std::string const &out = "/dev/null") {
  std::vector<char *> argv;
  for (std::string &argument : arguments)
    argv.push_back(argument.data());
  argv.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 1, out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  pid_t child = 0;
  Run result{false, -1};
  if (posix_spawnp(&child, argv[0], &actions, nullptr, argv.data(), environ) == 0) {
    int status = 0;
    rusage usage{};
    if (wait4(child, &status, 0, &usage) == child) {
      result.ok = WIFEXITED(status) && WEXITSTATUS(status) == 0;
      result.peakMiB = static_cast<double>(usage.ru_maxrss) / 1024.0;
    }
  }
  posix_spawn_file_actions_destroy(&actions);
  return result;
}

std::map<std::string, double> peaks;

void timeCommand(benchmark::State &state, std::string const &name, std::vector<std::string> const &command,
                 std::string const &out = "/dev/null") {
  for (auto _ : state) {
    Run const result = run(command, out);
    if (!result.ok) {
      state.SkipWithError((name + " failed").c_str());
      return;
    }
    peaks[name] = std::max(peaks[name], result.peakMiB);
  }
}

void BM_Json(benchmark::State &state) {
  timeCommand(state, "json", {VANTRA_TOOL, "json", document20, "--to", "full"});
}
BENCHMARK(BM_Json)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_JsonBefore(benchmark::State &state) {
  char const *reference = std::getenv("VANTRA_REFERENCE");
  if (reference == nullptr) {
    state.SkipWithError("VANTRA_REFERENCE names no tool to compare with");
    return;
  }
  timeCommand(state, "json before", {reference, "json", document20, "--to", "full"});
}
BENCHMARK(BM_JsonBefore)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_Convert(benchmark::State &state) {
  timeCommand(state, "convert",
              {VANTRA_TOOL, "convert", export10M, "--from", "low", "--at", "channels/*/samples", "--to", "V"});
}
BENCHMARK(BM_Convert)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_JqRead(benchmark::State &state) {
  timeCommand(state, "jq", {"jq", "empty", export10M});
}
BENCHMARK(BM_JqRead)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_Plot(benchmark::State &state) {
  timeCommand(state, "plot",
              {VANTRA_TOOL, "plot", export10M, "--from", "low", "--at", "channels/0/samples", "-o", chart});
}
BENCHMARK(BM_Plot)->Unit(benchmark::kMillisecond)->UseRealTime();

class RecordingReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(std::vector<Run> const &runs) override {
    for (Run const &run : runs)
      if (!run.error_occurred) times[run.run_name.function_name] = run.GetAdjustedRealTime();
    ConsoleReporter::ReportRuns(runs);
  }
  std::map<std::string, double> times;
};

void line(char const *goal, double measured, double reference, double limit) {
  double const ratio = measured / reference;
  std::printf("%-46s %9.1f %9.1f %6.3f %6.2f %s\n", goal, measured, reference, ratio, limit,
              measured >= 0 && reference > 0 && ratio <= limit ? "met" : "MISSED");
}

}  // namespace

int main(int argc, char **argv) {
  benchmark::Initialize(&argc, argv);
  writeInputs();
  RecordingReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  auto const time = [&](char const *name) {
    auto const found = reporter.times.find(name);
    return found == reporter.times.end() ? -1.0 : found->second;
  };
  struct stat file {};
  stat(export10M.c_str(), &file);
  double const textMiB = static_cast<double>(file.st_size) / (1 << 20);
  struct stat svg {};
  stat(chart.c_str(), &svg);
  std::printf("\n%-46s %9s %9s %6s %6s\n", "goal", "ours", "ref", "ratio", "limit");
  line("json 20 MB, ms / before the quick parse", time("BM_Json"), time("BM_JsonBefore"), 0.5);
  line("convert 10M samples, ms / jq reading it", time("BM_Convert"), time("BM_JqRead"), 2);
  line("convert 10M samples, peak MiB / text MiB", peaks["convert"], textMiB, 2);
  line("plot 10M samples, ms / 1 s", time("BM_Plot"), 1000, 1);
  line("plot 10M samples, SVG KB / 200 KB", static_cast<double>(svg.st_size) / 1000, 200, 1);
  benchmark::Shutdown();
}
