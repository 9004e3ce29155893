#include <VantraCore/ConsoleFormatter.h>

#include <benchmark/benchmark.h>

#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "SampleValues.h"

using namespace Tarvex::VantraCore;

namespace {

constexpr std::size_t elementCount = 65536;

// The formatter's cost over the stream's own number output (BM_StreamDoubleLoop).
void BM_ConsoleDoubleArray(benchmark::State &state) {
  VxVariant const value(sampleDoubles(elementCount));
  for (auto _ : state) {
    std::ostringstream out;
    ConsoleFormatter::serialize(value, out);
    benchmark::DoNotOptimize(out);
  }
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * elementCount));
}
BENCHMARK(BM_ConsoleDoubleArray)->Unit(benchmark::kMillisecond);

void BM_StreamDoubleLoop(benchmark::State &state) {
  std::vector<double> const values = sampleDoubles(elementCount);
  for (auto _ : state) {
    std::ostringstream out;
    out << '[';
    for (double const element : values)
      out << element << ", ";
    out << ']';
    benchmark::DoNotOptimize(out);
  }
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * elementCount));
}
BENCHMARK(BM_StreamDoubleLoop)->Unit(benchmark::kMillisecond);

// A 10M-element array drawn as a person would want it on a console: ten elements and the count of the
// rest. Its cost must not grow with the array (goal: at most 1 ms and 1 KB). int32 elements print
// through a conversion, which must touch only the ten shown.
template <class T>
void BM_ConsoleElidedLongArray(benchmark::State &state) {
  std::vector<double> const samples = sampleDoubles(10'000'000);
  VxVariant const value(std::vector<T>(samples.begin(), samples.end()));
  ConsoleOptions options;
  options.maxElements = 10;
  options.numbers = ConsoleOptions::Numbers::shortest;
  std::size_t bytes = 0;
  for (auto _ : state) {
    std::ostringstream out;
    ConsoleFormatter::serialize(value, out, options);
    bytes = out.str().size();
    benchmark::DoNotOptimize(out);
  }
  state.counters["bytes"] = static_cast<double>(bytes);
}
BENCHMARK_TEMPLATE(BM_ConsoleElidedLongArray, double)->Unit(benchmark::kMicrosecond);
BENCHMARK_TEMPLATE(BM_ConsoleElidedLongArray, std::int32_t)->Unit(benchmark::kMicrosecond);

// A configuration-sized tree: 100 maps of 10 scalar entries under one root.
PropertyNode sampleTree() {
  PropertyNode root;
  for (int group = 0; group < 100; ++group) {
    PropertyNode &child = root.set(InternedString(("group" + std::to_string(group)).c_str()), PropertyMap());
    for (int entry = 0; entry < 10; ++entry)
      child.set(InternedString(("value" + std::to_string(entry)).c_str()), VxVariant(entry * 1.5));
  }
  return root;
}

template <class Node>
void BM_ConsoleTree(benchmark::State &state) {
  Node const tree(sampleTree());
  for (auto _ : state) {
    std::ostringstream out;
    ConsoleFormatter::serialize(tree, out);
    benchmark::DoNotOptimize(out);
  }
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * 1000));
}
BENCHMARK_TEMPLATE(BM_ConsoleTree, PropertyNode)->Unit(benchmark::kMicrosecond);
BENCHMARK_TEMPLATE(BM_ConsoleTree, FPropertyNode)->Unit(benchmark::kMicrosecond);

}  // namespace
