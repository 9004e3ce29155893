#include <VantraCore/detail/IVariantData.h>
#include <VantraCore/detail/ScalarVariantData.h>
#include <VantraCore/VariantCApi.h>

#include <benchmark/benchmark.h>

#include <new>

using namespace Tarvex::VantraCore;
using namespace Tarvex::VantraCore::Internal;

namespace {

// The point of the in-place scalar: making and dropping one costs no allocation.
void BM_ScalarInPlace(benchmark::State &state) {
  VxVariantDirectStorage storage;
  for (auto _ : state) {
    storage.data = constructVariantScalar<double>(storage.buffer, sizeof storage.buffer, 1.5);
    benchmark::DoNotOptimize(storage.data);
    storage.data->~IVariantData();
  }
}
BENCHMARK(BM_ScalarInPlace);

void BM_ScalarOnHeap(benchmark::State &state) {
  for (auto _ : state) {
    IVariantData *holder = constructVariantScalar<double>(nullptr, 0, 1.5);
    benchmark::DoNotOptimize(holder);
    holder->destruct();
  }
}
BENCHMARK(BM_ScalarOnHeap);

// Copying a variant of an in-place scalar builds a second holder; of a counted one, shares it.
void BM_CopyInPlaceScalar(benchmark::State &state) {
  VxVariantDirectStorage source;
  source.data = constructVariantScalar<double>(source.buffer, sizeof source.buffer, 1.5);
  VxVariantDirectStorage target;
  for (auto _ : state) {
    target.data = copyConstructVariantScalar(target.buffer, sizeof target.buffer, source);
    benchmark::DoNotOptimize(target.data);
    target.data->~IVariantData();
  }
  source.data->~IVariantData();
}
BENCHMARK(BM_CopyInPlaceScalar);

void BM_CopyCountedHolder(benchmark::State &state) {
  IVariantData *holder = constructVariantScalar<double>(nullptr, 0, 1.5);
  for (auto _ : state) {
    holder->copy();
    benchmark::ClobberMemory();
    holder->destruct();
  }
  holder->destruct();
}
BENCHMARK(BM_CopyCountedHolder);

// What a question costs through the C function with its record, against the virtual call.
void BM_KindByVirtualCall(benchmark::State &state) {
  IVariantData *holder = constructVariantScalar<double>(nullptr, 0, 1.5);
  for (auto _ : state) {
    benchmark::DoNotOptimize(holder);
    benchmark::DoNotOptimize(holder->wellKnownDataType());
  }
  holder->destruct();
}
BENCHMARK(BM_KindByVirtualCall);

void BM_KindByCFunction(benchmark::State &state) {
  IVariantData *holder = constructVariantScalar<double>(nullptr, 0, 1.5);
  VxTransportRecord record;
  for (auto _ : state) {
    benchmark::DoNotOptimize(holder);
    benchmark::DoNotOptimize(VxVariantData_C_API_wellKnownDataType(&record, holder));
    rethrowTransportRecord(record);
  }
  holder->destruct();
}
BENCHMARK(BM_KindByCFunction);

}  // namespace
