// Ordering conversion of a 4096 x 4096 double array against memcpy of the same bytes, in one run.
// The goal is within 3x of memcpy; the plain odometer loop shows what the tiling buys.

#include <VantraCore/ArrayIndexing.h>
#include <numerics/OrderingConversion.h>

#include <benchmark/benchmark.h>

#include <complex>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

using namespace Tarvex::VantraCore;

namespace {

constexpr std::uint64_t side = 4096;

template <typename T>
struct Arrays {
  std::vector<std::uint64_t> dims;
  std::vector<T> source;
  std::vector<T> destination;

  explicit Arrays(std::vector<std::uint64_t> dims_) : dims(std::move(dims_)) {
    std::uint64_t const count = elementCount(dims);
    source.resize(count);
    destination.resize(count);
    for (std::uint64_t i = 0; i < count; ++i)
      source[i] = T(double(i));
  }

  void report(benchmark::State &state) const {
    state.SetBytesProcessed(std::int64_t(state.iterations()) * std::int64_t(source.size() * sizeof(T)));
  }
};

Arrays<double> &square() {
  static Arrays<double> arrays({side, side});
  return arrays;
}

void memcpySameBytes(benchmark::State &state) {
  auto &a = square();
  for (auto _ : state) {
    std::memcpy(a.destination.data(), a.source.data(), a.source.size() * sizeof(double));
    benchmark::ClobberMemory();
  }
  a.report(state);
}

template <DataOrdering from>
void convertSquare(benchmark::State &state) {
  auto &a = square();
  for (auto _ : state) {
    Internal::convertOrdering(a.source.data(), a.source.size(), from, a.destination.data(),
                              a.destination.size(), a.dims);
    benchmark::ClobberMemory();
  }
  a.report(state);
}

// The walk as written down: one odometer step and one offset computation per element.
void naiveOdometer(benchmark::State &state) {
  auto &a = square();
  ArrayDimensionsView const dims(a.dims);
  std::vector<std::uint64_t> indices(dims.count);
  for (auto _ : state) {
    std::fill(indices.begin(), indices.end(), 0);
    for (std::uint64_t i = 0; i < a.source.size(); ++i) {
      a.destination[ArrayIndexing::calculateOffsetColumnMajor(indices, dims, false)] = a.source[i];
      for (std::uint64_t k = dims.count; k-- > 0;) {
        if (++indices[k] < dims[k]) break;
        indices[k] = 0;
      }
    }
    benchmark::ClobberMemory();
  }
  a.report(state);
}

template <typename T>
void convertShape(benchmark::State &state, std::vector<std::uint64_t> const &dims) {
  Arrays<T> a(dims);
  for (auto _ : state) {
    Internal::convertOrdering(a.source.data(), a.source.size(), rowMajor, a.destination.data(),
                              a.destination.size(), a.dims);
    benchmark::ClobberMemory();
  }
  a.report(state);
}

template <typename T>
void memcpyShape(benchmark::State &state, std::vector<std::uint64_t> const &dims) {
  Arrays<T> a(dims);
  for (auto _ : state) {
    std::memcpy(a.destination.data(), a.source.data(), a.source.size() * sizeof(T));
    benchmark::ClobberMemory();
  }
  a.report(state);
}

BENCHMARK(memcpySameBytes)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(convertSquare, rowMajor)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(convertSquare, columnMajor)->Unit(benchmark::kMillisecond);
BENCHMARK(naiveOdometer)->Unit(benchmark::kMillisecond);

// Other element sizes and ranks, each with memcpy of its own bytes beside it.
template <typename T>
void registerShape(char const *name, std::vector<std::uint64_t> const &dims) {
  benchmark::RegisterBenchmark((std::string("memcpyShape/") + name).c_str(), memcpyShape<T>, dims)
      ->Unit(benchmark::kMillisecond);
  benchmark::RegisterBenchmark((std::string("convertShape/") + name).c_str(), convertShape<T>, dims)
      ->Unit(benchmark::kMillisecond);
}

bool const registered = [] {
  registerShape<float>("float_4096x4096", {side, side});
  registerShape<std::complex<double>>("complex_2048x4096", {2048, side});
  registerShape<double>("double_256x256x256", {256, 256, 256});
  registerShape<double>("double_64x64x64x64", {64, 64, 64, 64});
  registerShape<std::uint8_t>("uint8_4096x4096", {side, side});
  return true;
}();

}  // namespace
