#include <VantraCore/VxVariant.h>

#include <benchmark/benchmark.h>

#include <any>
#include <cstdint>
#include <vector>

using namespace Tarvex::VantraCore;

namespace {

// The point of the direct storage: a scalar variant made, copied and dropped costs what std::any costs
// for a double, with no allocation.
template <class Value>
void createCopyDestroy(benchmark::State &state, Value const &value) {
  for (auto _ : state) {
    VxVariant original = value;
    benchmark::DoNotOptimize(original);
    VxVariant copy = original;
    benchmark::DoNotOptimize(copy);
  }
}
void BM_VxVariantDouble(benchmark::State &state) {
  createCopyDestroy(state, 1.5);
}
BENCHMARK(BM_VxVariantDouble);

void BM_VxVariantShortString(benchmark::State &state) {
  createCopyDestroy(state, VxString("short"));
}
BENCHMARK(BM_VxVariantShortString);

void BM_AnyDouble(benchmark::State &state) {
  for (auto _ : state) {
    std::any original = 1.5;
    benchmark::DoNotOptimize(original);
    std::any copy = original;
    benchmark::DoNotOptimize(copy);
  }
}
BENCHMARK(BM_AnyDouble);

// Between modules every scalar is a counted heap holder, and every question a C call.
void BM_VxVariantAbiDouble(benchmark::State &state) {
  for (auto _ : state) {
    VxVariantAbi original = 1.5;
    benchmark::DoNotOptimize(original);
    VxVariantAbi copy = original;
    benchmark::DoNotOptimize(copy);
  }
}
BENCHMARK(BM_VxVariantAbiDouble);

// Summing an array: asIterable asks its few questions once and then walks the block, so its cost
// beyond the plain loop stays flat as the array grows; at<T> asks them again for every element.
template <class Variant>
void sumByIterable(benchmark::State &state) {
  Variant const array(std::vector<double>(static_cast<std::size_t>(state.range(0)), 1.0));
  for (auto _ : state) {
    double sum = 0;
    for (double x : array.template asIterable<double>())
      sum += x;
    benchmark::DoNotOptimize(sum);
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
template <class Variant>
void sumByAt(benchmark::State &state) {
  Variant const array(std::vector<double>(static_cast<std::size_t>(state.range(0)), 1.0));
  for (auto _ : state) {
    double sum = 0;
    for (std::int64_t i = 0; i < state.range(0); ++i)
      sum += array.template at<double>(static_cast<std::uint64_t>(i));
    benchmark::DoNotOptimize(sum);
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(sumByIterable<VxVariant>)->Arg(1)->Arg(64)->Arg(4096);
BENCHMARK(sumByIterable<VxVariantAbi>)->Arg(1)->Arg(64)->Arg(4096);
BENCHMARK(sumByAt<VxVariant>)->Arg(1)->Arg(64)->Arg(4096);
BENCHMARK(sumByAt<VxVariantAbi>)->Arg(1)->Arg(64)->Arg(4096);

}  // namespace
