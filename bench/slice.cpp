// Every other row and column of a 2048 x 2048 double array, sliced into a variant of its own, against
// a plain nested copy loop of the same elements in the same run. The goal is within 2x of the loop.

#include <VantraCore/ArraySlice.h>
#include <VantraCore/VxVariant.h>

#include <benchmark/benchmark.h>

#include <cstdint>
#include <numeric>
#include <vector>

using namespace Tarvex::VantraCore;

namespace {

constexpr std::uint64_t side = 2048;
constexpr std::uint64_t half = side / 2;

std::vector<double> const &values() {
  static std::vector<double> const source = [] {
    std::vector<double> v(side * side);
    std::iota(v.begin(), v.end(), 0.0);
    return v;
  }();
  return source;
}

ArraySlice everyOther() {
  IndexSet const even(IndexRange(IndexValue(0), IndexValue(0, true), 2));
  return {even, even};
}

void nestedLoop(benchmark::State &state) {
  double const *source = values().data();
  for (auto _ : state) {
    std::vector<double> result(half * half);
    for (std::uint64_t r = 0; r < half; ++r) {
      for (std::uint64_t c = 0; c < half; ++c)
        result[r * half + c] = source[2 * r * side + 2 * c];
    }
    benchmark::DoNotOptimize(result.data());
  }
}

template <class V>
void sliceVariant(benchmark::State &state) {
  V const grid(values().data(), side * side, {side, side}, rowMajor);
  ArraySlice const slice = everyOther();
  for (auto _ : state) {
    V const result = grid.slice(slice);
    benchmark::DoNotOptimize(result.template constStoredData<double>());
  }
}

void flattenOnly(benchmark::State &state) {
  std::vector<std::uint64_t> const dims{side, side};
  ArraySlice const slice = everyOther();
  for (auto _ : state) {
    Internal::SliceFlattener const flat(slice, dims, rowMajor, useStorageOrdering);
    benchmark::DoNotOptimize(flat.offsets().data());
  }
}

}  // namespace

BENCHMARK(nestedLoop)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(sliceVariant, VxVariant)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(sliceVariant, VxVariantAbi)->Unit(benchmark::kMillisecond);
BENCHMARK(flattenOnly)->Unit(benchmark::kMillisecond);
