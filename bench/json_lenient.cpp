#include <VantraCore/JsonFormatter.h>
#include <VantraCore/JsonFormatterLowFidelity.h>
#include <VantraCore/JsonFormatterMidFidelity.h>

#include <benchmark/benchmark.h>

#include <cstdint>
#include <vector>

#include "SampleValues.h"

using namespace Tarvex::VantraCore;

namespace {

constexpr std::uint64_t side = 1024;

VxVariant matrix(DataOrdering ordering) {
  return VxVariant(sampleDoubles(side * side), {side, side}, ordering);
}

// Plain nested text of a million doubles against the flat full document of the same array: the nested
// walk should cost little beyond the number text. The column-major form reads storage by stride.
void BM_LowWriteMatrix(benchmark::State &state) {
  VxVariant const value = matrix(state.range(0) == 0 ? rowMajor : columnMajor);
  for (auto _ : state)
    benchmark::DoNotOptimize(JsonFormatterLowFidelity::serialize(value));
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * side * side));
}
BENCHMARK(BM_LowWriteMatrix)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

void BM_FullWriteMatrix(benchmark::State &state) {
  VxVariant const value = matrix(rowMajor);
  for (auto _ : state)
    benchmark::DoNotOptimize(JsonFormatter::serialize(value));
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * side * side));
}
BENCHMARK(BM_FullWriteMatrix)->Unit(benchmark::kMillisecond);

// Reading the plain nested text back by inference, and the full document without its metadata.
void BM_LowReadMatrix(benchmark::State &state) {
  VxString const text = JsonFormatterLowFidelity::serialize(matrix(rowMajor));
  for (auto _ : state)
    benchmark::DoNotOptimize(JsonFormatterLowFidelity::deserializeVxVariant(text));
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.length()));
}
BENCHMARK(BM_LowReadMatrix)->Unit(benchmark::kMillisecond);

void BM_MidReadWithoutMetadata(benchmark::State &state) {
  VxString text("{\"_data_\":");
  text += JsonFormatterLowFidelity::serialize(VxVariant(std::vector<double>(side * side, 0.25)));
  text += "}";
  for (auto _ : state)
    benchmark::DoNotOptimize(JsonFormatterMidFidelity::deserializeVxVariant(text));
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.length()));
}
BENCHMARK(BM_MidReadWithoutMetadata)->Unit(benchmark::kMillisecond);

}  // namespace
