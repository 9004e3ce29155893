#include <VantraCore/JsonFormatter.h>

#include <benchmark/benchmark.h>
#include <nlohmann/json.hpp>

#include <cstdint>
#include <vector>

#include "JsonReferences.h"
#include "SampleValues.h"

using namespace Tarvex::VantraCore;

namespace {

constexpr std::size_t elementCount = 1048576;

// The writer's goal: a large double array as compact text, at least twice as fast as the same document
// built and dumped through the JSON library (BM_JsonLibraryDoubleArray).
void BM_JsonFormatterDoubleArray(benchmark::State &state) {
  VxVariant const value(sampleDoubles(elementCount));
  for (auto _ : state) {
    VxString text = JsonFormatter::serialize(value, -1);
    benchmark::DoNotOptimize(text);
  }
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * elementCount));
}
BENCHMARK(BM_JsonFormatterDoubleArray)->Unit(benchmark::kMillisecond);

void BM_JsonLibraryDoubleArray(benchmark::State &state) {
  std::vector<double> const values = sampleDoubles(elementCount);
  for (auto _ : state) {
    std::string text = libraryDoubleDocument(values);
    benchmark::DoNotOptimize(text);
  }
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * elementCount));
}
BENCHMARK(BM_JsonLibraryDoubleArray)->Unit(benchmark::kMillisecond);

}  // namespace
