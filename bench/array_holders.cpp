// Array holders against a plain std::vector copy of the same bytes: building a holder from data (one
// allocation, one block copy), adopting a moved vector, and reordering a holder into the other
// ordering. Square double arrays of 32, 256 and 1024 per side.

#include <VantraCore/detail/IVariantData.h>
#include <VantraCore/detail/VectorVariantData.h>

#include <benchmark/benchmark.h>

#include <cstdint>
#include <vector>

using namespace Tarvex::VantraCore;
using namespace Tarvex::VantraCore::Internal;

namespace {

struct Square {
  std::vector<std::uint64_t> dims;
  std::vector<double> values;

  explicit Square(std::uint64_t side) : dims{side, side}, values(side * side) {
    for (std::uint64_t i = 0; i < values.size(); ++i)
      values[i] = double(i);
  }
  void report(benchmark::State &state) const {
    state.SetBytesProcessed(std::int64_t(state.iterations()) * std::int64_t(values.size() * sizeof(double)));
  }
};

void vectorCopy(benchmark::State &state) {
  Square const square(std::uint64_t(state.range(0)));
  for (auto _ : state) {
    std::vector<double> copy(square.values);
    benchmark::DoNotOptimize(copy.data());
  }
  square.report(state);
}

void holderFromData(benchmark::State &state) {
  Square const square(std::uint64_t(state.range(0)));
  for (auto _ : state) {
    IVariantData *holder = constructVariantVectorWithDataWithDimsUnresolved<double>(
        square.values.data(), square.values.size(), square.dims, rowMajor);
    benchmark::DoNotOptimize(holder->constStoredData());
    holder->destruct();
  }
  square.report(state);
}

// Includes the vector copy that feeds the factory, since a moved vector is used up.
void holderFromCopiedVector(benchmark::State &state) {
  Square const square(std::uint64_t(state.range(0)));
  for (auto _ : state) {
    IVariantData *holder = constructVariantDataFromMovedVector<double>(square.values, square.dims, rowMajor);
    benchmark::DoNotOptimize(holder->constStoredData());
    holder->destruct();
  }
  square.report(state);
}

void holderReorder(benchmark::State &state) {
  Square const square(std::uint64_t(state.range(0)));
  IVariantData *holder = constructVariantVectorWithDataWithDimsUnresolved<double>(
      square.values.data(), square.values.size(), square.dims, rowMajor);
  for (auto _ : state) {
    IVariantData *reordered = holder->reorderData(columnMajor);
    benchmark::DoNotOptimize(reordered->constStoredData());
    reordered->destruct();
  }
  holder->destruct();
  square.report(state);
}

void holderShare(benchmark::State &state) {
  Square const square(std::uint64_t(state.range(0)));
  IVariantData *holder = constructVariantVectorWithDataWithDimsUnresolved<double>(
      square.values.data(), square.values.size(), square.dims, rowMajor);
  for (auto _ : state) {
    holder->copy();
    benchmark::ClobberMemory();
    holder->destruct();
  }
  holder->destruct();
}

}  // namespace

BENCHMARK(vectorCopy)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(holderFromData)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(holderFromCopiedVector)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(holderReorder)->Arg(32)->Arg(256)->Arg(1024);
BENCHMARK(holderShare)->Arg(32);
