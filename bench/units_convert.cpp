// A whole int32 array converted from millivolts to volts against a plain loop that turns the same ints
// into doubles. 16,777,216 elements. The unit path casts and scales in one pass; the plain loop writes
// into a fresh vector each time, as the unit path allocates its result, and once more into a reused one
// for the bare loop cost. Then convertElements from degrees Celsius to kelvins on doubles, timed
// alternately with a plain loop into a fresh vector in the same run, with the ratio of the two.

#include <VantraCore/Unit.h>
#include <VantraCore/VxVariant.h>

#include <benchmark/benchmark.h>

#include <chrono>
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

std::vector<double> const &celsiusValues() {
  static std::vector<double> const values = [] {
    std::vector<double> made(elements);
    for (std::uint64_t i = 0; i < elements; ++i)
      made[i] = double(i % 2000) * 0.125 - 100.0;
    return made;
  }();
  return values;
}

// As the default table has them: both SI texts are "K", so only convertElements applies the offset.
void convertElementsCelsiusToKelvinBesidePlainLoop(benchmark::State &state) {
  Unit const celsius(UnitType::thermodynamicTemperature(), "\u00B0C", 1.0, 273.15, 0.0);
  Unit const kelvin(UnitType::thermodynamicTemperature(), "K", 1.0, 0.0, 0.0);
  std::vector<double> const &values = celsiusValues();
  VxVariant const input(values);
  using Clock = std::chrono::steady_clock;
  Clock::duration unit{}, plain{};
  for (auto _ : state) {
    Clock::time_point const start = Clock::now();
    {
      VxVariant const result = celsius.convertElements(kelvin, input);
      benchmark::DoNotOptimize(result.constStoredData<double>());
      benchmark::ClobberMemory();
    }
    Clock::time_point const middle = Clock::now();
    {
      std::vector<double> kelvins(elements);
      for (std::uint64_t i = 0; i < elements; ++i)
        kelvins[i] = values[i] + 273.15;
      benchmark::DoNotOptimize(kelvins.data());
      benchmark::ClobberMemory();
    }
    Clock::time_point const end = Clock::now();
    unit += middle - start;
    plain += end - middle;
  }
  double const iterations = double(state.iterations());
  state.counters["convertElements_ms"] = std::chrono::duration<double, std::milli>(unit).count() / iterations;
  state.counters["plainLoop_ms"] = std::chrono::duration<double, std::milli>(plain).count() / iterations;
  state.counters["ratio"] = double(unit.count()) / double(plain.count());
  report(state);
}

}  // namespace

BENCHMARK(unitConvertMillivoltsToVolts)->Unit(benchmark::kMillisecond);
BENCHMARK(plainIntsToNewDoubles)->Unit(benchmark::kMillisecond);
BENCHMARK(plainIntsToReusedDoubles)->Unit(benchmark::kMillisecond);
BENCHMARK(convertElementsCelsiusToKelvinBesidePlainLoop)->Unit(benchmark::kMillisecond);
