// The element converter against a plain static_cast loop over the same buffers: int16 to double under
// conversionCast, and double to float under conversionLossless with every value representable, so the
// test runs to the end. 16,777,216 elements each. The holder pair adds the allocation of the result,
// as convertDataTo does, against a plain loop into a fresh vector.

#include <VantraCore/detail/IVariantData.h>
#include <VantraCore/detail/VectorVariantData.h>
#include <numerics/ElementConversion.h>

#include <benchmark/benchmark.h>

#include <cstdint>
#include <vector>

using namespace Tarvex::VantraCore;
using namespace Tarvex::VantraCore::Internal;

namespace {

constexpr std::uint64_t elements = std::uint64_t(1) << 24;

template <class S, class U>
struct Buffers {
  std::vector<S> source;
  std::vector<U> target;

  Buffers() : source(elements), target(elements) {
    for (std::uint64_t i = 0; i < elements; ++i)
      source[i] = S(std::int64_t(i % 60000) - 30000) / S(2);
  }
  void report(benchmark::State &state) const {
    state.SetItemsProcessed(std::int64_t(state.iterations() * elements));
  }
};

template <class S, class U>
void plainCast(benchmark::State &state) {
  Buffers<S, U> buffers;
  for (auto _ : state) {
    for (std::uint64_t i = 0; i < elements; ++i)
      buffers.target[i] = static_cast<U>(buffers.source[i]);
    benchmark::DoNotOptimize(buffers.target.data());
    benchmark::ClobberMemory();
  }
  buffers.report(state);
}

template <class S, class U, ConversionPolicy policy>
void converterRun(benchmark::State &state) {
  Buffers<S, U> buffers;
  ElementConverter const convert = elementConverter(wellKnownTypeOf<S>(), wellKnownTypeOf<U>());
  for (auto _ : state) {
    if (!convert(buffers.source.data(), buffers.target.data(), elements, policy))
      state.SkipWithError("refused");
    benchmark::ClobberMemory();
  }
  buffers.report(state);
}

void plainCastIntoNewVector(benchmark::State &state) {
  Buffers<std::int16_t, double> buffers;
  for (auto _ : state) {
    std::vector<double> target(elements);
    for (std::uint64_t i = 0; i < elements; ++i)
      target[i] = static_cast<double>(buffers.source[i]);
    benchmark::DoNotOptimize(target.data());
  }
  buffers.report(state);
}

void holderConvertDataTo(benchmark::State &state) {
  Buffers<std::int16_t, double> buffers;
  IVariantData *holder = constructVariantVectorWithDataWithDimsUnresolved<std::int16_t>(
      buffers.source.data(), elements, {}, rowMajor);
  for (auto _ : state) {
    IVariantData *converted = holder->convertDataTo(WellKnownTypeValue::typeDouble, conversionCast);
    benchmark::DoNotOptimize(converted);
    converted->destruct();
  }
  holder->destruct();
  buffers.report(state);
}

}  // namespace

BENCHMARK(plainCast<std::int16_t, double>)->Unit(benchmark::kMillisecond);
BENCHMARK(converterRun<std::int16_t, double, conversionCast>)->Unit(benchmark::kMillisecond);
BENCHMARK(plainCast<double, float>)->Unit(benchmark::kMillisecond);
BENCHMARK(converterRun<double, float, conversionLossless>)->Unit(benchmark::kMillisecond);
BENCHMARK(plainCastIntoNewVector)->Unit(benchmark::kMillisecond);
BENCHMARK(holderConvertDataTo)->Unit(benchmark::kMillisecond);
BENCHMARK(converterRun<double, float, conversionCast>)->Unit(benchmark::kMillisecond);
