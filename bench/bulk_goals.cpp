// The bulk-array goals, each workload beside its reference in one run, with the ratio table printed at
// the end from the medians of the repetitions. The peak-RSS row runs first in a child process, so that
// no other row's buffers raise its peak. Where /usr/bin/python3 has NumPy, its astype figure for the
// int16 -> double row stands beside the table.

#include <VantraCore/ArrayIndexing.h>
#include <VantraCore/Unit.h>
#include <VantraCore/VxVariant.h>

#include <benchmark/benchmark.h>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <vector>

using namespace Tarvex::VantraCore;
using namespace Tarvex::VantraCore::Experimental;

namespace {

constexpr std::uint64_t elements = std::uint64_t(1) << 24;  // 16M; 128 MiB as doubles
constexpr std::uint64_t side = 4096;

template <class T>
std::vector<T> const &samples() {
  static std::vector<T> const values = [] {
    std::vector<T> v(elements);
    for (std::uint64_t i = 0; i < elements; ++i)
      v[i] = T(std::int64_t(i % 60000) - 30000) / T(2);
    return v;
  }();
  return values;
}

template <class T>
VxVariant const &sampleVariant() {
  static VxVariant const variant(samples<T>());
  return variant;
}

void keep(void const *p) {
  benchmark::DoNotOptimize(p);
  benchmark::ClobberMemory();
}

// int16 -> double into a new result.
void convertInt16ToDouble(benchmark::State &state) {
  VxVariant const &input = sampleVariant<std::int16_t>();
  for (auto _ : state)
    keep(input.convertTo(wellKnownTypeOf<double>()).constStoredData<double>());
}
// The loop a user would write: a fresh vector, then a plain cast of each element into it.
template <class S, class U>
void castIntoFreshVector(benchmark::State &state) {
  std::vector<S> const &input = samples<S>();
  for (auto _ : state) {
    std::vector<U> out(elements);
    for (std::uint64_t i = 0; i < elements; ++i)
      out[i] = U(input[i]);
    keep(out.data());
  }
}
void plainInt16ToFreshVector(benchmark::State &state) {
  castIntoFreshVector<std::int16_t, double>(state);
}

void withShapeThenFill(benchmark::State &state) {
  for (auto _ : state) {
    VxVariant v = VxVariant::withShape<double>({elements});
    double *data = v.mutableStoredData<double>();
    std::fill(data, data + elements, 1.5);
    keep(data);
  }
}
void vectorThenFill(benchmark::State &state) {
  for (auto _ : state) {
    std::vector<double> v(elements);
    std::fill(v.begin(), v.end(), 1.5);
    keep(v.data());
  }
}

void reorderSquare(benchmark::State &state) {
  static VxVariant const square(samples<double>().data(), elements, {side, side}, rowMajor);
  for (auto _ : state)
    keep(square.reordered(columnMajor).constStoredData<double>());
}
void memcpyIntoExisting(benchmark::State &state) {
  std::vector<double> const &from = samples<double>();
  std::vector<double> to(elements);
  for (auto _ : state) {
    std::memcpy(to.data(), from.data(), elements * sizeof(double));
    keep(to.data());
  }
}

void losslessDoubleToFloat(benchmark::State &state) {
  VxVariant const &input = sampleVariant<double>();
  for (auto _ : state)
    keep(input.convertTo(wellKnownTypeOf<float>(), conversionLossless).constStoredData<float>());
}
void plainCastToFreshVector(benchmark::State &state) {
  castIntoFreshVector<double, float>(state);
}

void unitMillivoltsToVolts(benchmark::State &state) {
  Unit millivolt(UnitType::electricPotential(), "mV", 0.001, 0.0, 0.0);
  millivolt.setSiUnits("mV");  // as the parser stores it; equal SI texts would skip the arithmetic
  Unit const volt(UnitType::electricPotential(), "V", 1.0, 0.0, 0.0);
  VxVariant const &input = sampleVariant<std::int32_t>();
  for (auto _ : state)
    keep(millivolt.convertTo(volt, input).constStoredData<double>());
}
void plainScaleToFreshVector(benchmark::State &state) {
  std::vector<std::int32_t> const &input = samples<std::int32_t>();
  for (auto _ : state) {
    std::vector<double> out(elements);
    for (std::uint64_t i = 0; i < elements; ++i)
      out[i] = double(input[i]) * 0.001;
    keep(out.data());
  }
}

#define BULK_ROW(f) BENCHMARK(f)->Unit(benchmark::kMillisecond)->MinTime(0.3)->Repetitions(5)->UseRealTime()
BULK_ROW(convertInt16ToDouble);
BULK_ROW(plainInt16ToFreshVector);
BULK_ROW(withShapeThenFill);
BULK_ROW(vectorThenFill);
BULK_ROW(reorderSquare);
BULK_ROW(memcpyIntoExisting);
BULK_ROW(losslessDoubleToFloat);
BULK_ROW(plainCastToFreshVector);
BULK_ROW(unitMillivoltsToVolts);
BULK_ROW(plainScaleToFreshVector);

// Keeps the median of each benchmark's repetitions, in milliseconds.
class MedianCollector : public benchmark::ConsoleReporter {
 public:
  std::map<std::string, double> medians;

  void ReportRuns(std::vector<Run> const &runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (Run const &run : runs) {
      if (run.aggregate_name == "median") medians[run.run_name.function_name] = run.GetAdjustedRealTime();
    }
  }
};

long peakKiB() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

// The peak RSS a child gains while one filled 128 MiB double array exists, in MiB; -1 on failure.
double peakRssOfOneArray() {
  int pipeEnds[2];
  if (pipe(pipeEnds) != 0) return -1;
  pid_t const child = fork();
  if (child == 0) {
    long const baseline = peakKiB();
    {
      VxVariant v = VxVariant::withShape<double>({elements});
      double *data = v.mutableStoredData<double>();
      std::fill(data, data + elements, 1.5);
      keep(data);
    }
    double const mib = double(peakKiB() - baseline) / 1024.0;
    ssize_t const written = write(pipeEnds[1], &mib, sizeof mib);
    _exit(written == ssize_t(sizeof mib) ? 0 : 1);
  }
  close(pipeEnds[1]);
  double mib = -1;
  if (child < 0 || read(pipeEnds[0], &mib, sizeof mib) != ssize_t(sizeof mib)) mib = -1;
  close(pipeEnds[0]);
  if (child > 0) waitpid(child, nullptr, 0);
  return mib;
}

// NumPy's int16 -> float64 astype of 16M elements, median of 7, in ms; negative when unavailable.
double numpyAstypeMs() {
  char const *script =
      "/usr/bin/python3 -c 'import numpy as n,timeit as t;a=(n.arange(1<<24)%60000-30000).astype(n.int16);"
      "print(sorted(t.repeat(lambda:a.astype(n.float64),number=1,repeat=7))[3]*1e3)' 2>/dev/null";
  FILE *pipe = popen(script, "r");
  if (pipe == nullptr) return -1;
  double ms = -1;
  if (std::fscanf(pipe, "%lf", &ms) != 1) ms = -1;
  pclose(pipe);
  return ms;
}

struct Row {
  char const *workload, *ours, *reference;
  double goal;
};

void printTable(std::map<std::string, double> const &ms, double rssMib, double numpyMs) {
  Row const rows[] = {
      {"int16 -> double convertTo, 16M", "convertInt16ToDouble", "plainInt16ToFreshVector", 0.35},
      {"withShape + fill, 16M doubles", "withShapeThenFill", "vectorThenFill", 0.5},
      {"reordered 4096^2 doubles", "reorderSquare", "memcpyIntoExisting", 3.0},
      {"lossless double -> float, 16M", "losslessDoubleToFloat", "plainCastToFreshVector", 1.1},
      {"Unit::convertTo mV -> V, 16M int32", "unitMillivoltsToVolts", "plainScaleToFreshVector", 0.5},
  };
  std::printf("\n%-36s %10s %10s %7s %7s  %s\n", "Workload", "ours ms", "ref ms", "ratio", "goal", "met");
  for (Row const &row : rows) {
    auto const a = ms.find(row.ours);
    auto const b = ms.find(row.reference);
    if (a == ms.end() || b == ms.end()) continue;
    double const ratio = a->second / b->second;
    std::printf("%-36s %10.2f %10.2f %7.3f %7.2f  %s\n", row.workload, a->second, b->second, ratio, row.goal,
                ratio <= row.goal ? "yes" : "NO");
  }
  if (rssMib >= 0)
    std::printf("%-36s %10.1f %10s %7s %7s  %s\n", "peak RSS, one 128 MiB array (MiB)", rssMib, "-", "-",
                "132", rssMib <= 132 ? "yes" : "NO");
  if (numpyMs >= 0) std::printf("NumPy int16 -> float64 astype, 16M: %.2f ms\n", numpyMs);
}

}  // namespace

int main(int argc, char **argv) {
  double const rssMib = peakRssOfOneArray();
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  MedianCollector reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  printTable(reporter.medians, rssMib, numpyAstypeMs());
  benchmark::Shutdown();
  return 0;
}
