#include <VantraCore/ExternalVariantStorage.h>
#include <VantraCore/TransmuteVariant.h>
#include <VantraCore/detail/VectorVariantData.h>

#include <benchmark/benchmark.h>

#include <complex>
#include <cstdint>
#include <vector>

using namespace Tarvex::VantraCore;
using namespace Tarvex::VantraCore::Internal;

namespace {

struct Storage final : ExternalVariantStorageInterface {
  std::vector<double> block;
  std::vector<std::uint64_t> shape;
  explicit Storage(std::uint64_t n) : block(n, 1.0), shape{n} {}
  std::uint64_t numberAllocatedElements() const override { return block.size(); }
  ArrayDimensionsView dimensions() const override { return shape; }
  DataOrdering dataOrdering() const override { return rowMajor; }
  WellKnownType wellKnownDataType() const override { return WellKnownTypeValue::typeDouble; }
  void reshapeNoRealloc(ArrayDimensionsView) override {}
  void const *constStoredData() const override { return block.data(); }
  void *mutableStoredData() override { return block.data(); }
  void release() override {}
};

IVariantData *complexArray(std::uint64_t n) {
  std::vector<std::uint64_t> const dims{n};
  return constructVariantVectorWithoutDataWithDimsUnresolved<std::complex<double>>(dims, rowMajor);
}

double sum(IVariantData const &holder) {
  auto const *x = static_cast<double const *>(holder.constStoredData());
  double total = 0;
  for (std::uint64_t i = 0, n = holder.numberAllocatedElements(); i < n; ++i)
    total += x[i];
  return total;
}

// A view costs one small allocation whatever the size of the array; a copy grows with it.
void BM_TransmuteView(benchmark::State &state) {
  IVariantData *inner = complexArray(state.range(0));
  for (auto _ : state) {
    inner->copy();
    IVariantData *view = constructTransmuteComplexToRealVariant(inner);
    benchmark::DoNotOptimize(view->constStoredData());
    view->destruct();
  }
  inner->destruct();
}
BENCHMARK(BM_TransmuteView)->Arg(1 << 10)->Arg(1 << 20);

void BM_CloneInstead(benchmark::State &state) {
  IVariantData *inner = complexArray(state.range(0));
  for (auto _ : state) {
    IVariantData *copy = inner->clone();
    benchmark::DoNotOptimize(copy->constStoredData());
    copy->destruct();
  }
  inner->destruct();
}
BENCHMARK(BM_CloneInstead)->Arg(1 << 10)->Arg(1 << 20);

// Element loops over an attached adaptor run on the client's block itself.
void BM_SumThroughAdaptor(benchmark::State &state) {
  Storage storage(state.range(0));
  IVariantData *adaptor = constructVariantExternal(&storage);
  for (auto _ : state)
    benchmark::DoNotOptimize(sum(*adaptor));
  adaptor->destruct();
}
BENCHMARK(BM_SumThroughAdaptor)->Arg(1 << 16);

void BM_SumPlainArray(benchmark::State &state) {
  std::vector<double> const values(state.range(0), 1.0);
  IVariantData *array =
      constructVariantVectorWithDataWithDimsUnresolved<double>(values.data(), values.size(), {}, rowMajor);
  for (auto _ : state)
    benchmark::DoNotOptimize(sum(*array));
  array->destruct();
}
BENCHMARK(BM_SumPlainArray)->Arg(1 << 16);

}  // namespace
