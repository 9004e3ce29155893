// A whole int32 array converted from millivolts to volts against a plain loop that turns the same ints
// into doubles. 16,777,216 elements. The unit path converts through the variant's element converter and
// then scales in place; the plain loop writes into a fresh vector each time, as the unit path allocates
// its result, and once more into a reused one for the bare loop cost.

#include <VantraCore/Unit.h>
#include <VantraCore/VxVariant.h>

#include <benchmark/benchmark.h>

#include <cstdint>
#include <vector>

using namespace Tarvex::VantraCore;
using namespace Tarvex::VantraCore::Experimental;

namespace {

constexpr std::uint64_t elements = std::uint64_t(1) << 24;

std::vector<std::int32_t> const &source() {
  static std::vector<std::int32_t> const ints = [] {
    std::vector<std::int32_t> values(elements);
    for (std::uint64_t i = 0; i < elements; ++i)
      values[i] = std::int32_t(i % 60000) - 30000;
    return values;
  }();
  return ints;
}

void report(benchmark::State &state) {
  state.SetItemsProcessed(std::int64_t(state.iterations() * elements));
}

void unitConvertMillivoltsToVolts(benchmark::State &state) {
  Unit millivolt(UnitType::electricPotential(), "mV", 0.001, 0.0, 0.0);
  millivolt.setSiUnits("mV");  // as the parser stores it; equal SI texts would skip the arithmetic
  Unit const volt(UnitType::electricPotential(), "V", 1.0, 0.0, 0.0);
  VxVariant const input(source());
  for (auto _ : state) {
    VxVariant result = millivolt.convertTo(volt, input);
    benchmark::DoNotOptimize(result.constStoredData<double>());
  }
  report(state);
}

void plainIntsToNewDoubles(benchmark::State &state) {
  std::vector<std::int32_t> const &ints = source();
  for (auto _ : state) {
    std::vector<double> doubles(elements);
    for (std::uint64_t i = 0; i < elements; ++i)
      doubles[i] = double(ints[i]);
    benchmark::DoNotOptimize(doubles.data());
    benchmark::ClobberMemory();
  }
  report(state);
}

void plainIntsToReusedDoubles(benchmark::State &state) {
  std::vector<std::int32_t> const &ints = source();
  std::vector<double> doubles(elements);
  for (auto _ : state) {
    for (std::uint64_t i = 0; i < elements; ++i)
      doubles[i] = double(ints[i]);
    benchmark::DoNotOptimize(doubles.data());
    benchmark::ClobberMemory();
  }
  report(state);
}

}  // namespace

BENCHMARK(unitConvertMillivoltsToVolts)->Unit(benchmark::kMillisecond);
BENCHMARK(plainIntsToNewDoubles)->Unit(benchmark::kMillisecond);
BENCHMARK(plainIntsToReusedDoubles)->Unit(benchmark::kMillisecond);
