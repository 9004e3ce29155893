#include <VantraCore/FPropertyNode.h>
#include <VantraCore/InternedString.h>
#include <VantraCore/PropertyNode.h>
#include <VantraCore/VxVariant.h>

#include <benchmark/benchmark.h>
#include <nlohmann/json.hpp>

#include <string>

using namespace Tarvex::VantraCore;

namespace {

// A document of a thousand records of eight scalars each, the shape a measurement log takes.
constexpr int kRecords = 1000;
char const *const kNames[8] = {"channel", "gain", "offset", "rate", "unit", "samples", "enabled", "label"};

InternedString const *internedNames() {
  // Hot paths keep their keys interned once.
  static InternedString const names[8] = {kNames[0], kNames[1], kNames[2], kNames[3],
                                          kNames[4], kNames[5], kNames[6], kNames[7]};
  return names;
}

PropertyNode buildDocument() {
  InternedString const *keys = internedNames();
  PropertyList records;
  records.reserve(kRecords);
  for (int i = 0; i < kRecords; ++i) {
    PropertyNode record;
    record.set(keys[0], VxVariant(static_cast<std::int32_t>(i)));
    record.set(keys[1], VxVariant(1.5 * i));
    record.set(keys[2], VxVariant(-0.25));
    record.set(keys[3], VxVariant(48000.0));
    record.set(keys[4], VxString("mV"));
    record.set(keys[5], VxVariant(static_cast<std::int64_t>(i) * 1024));
    record.set(keys[6], VxVariant(i % 2 == 0));
    record.set(keys[7], VxString("probe"));
    records.push_back(std::move(record));
  }
  return PropertyNode(std::move(records));
}

void BM_BuildAndFreeze(benchmark::State &state) {
  for (auto _ : state) {
    FPropertyNode frozen(buildDocument());
    benchmark::DoNotOptimize(frozen);
  }
  state.SetItemsProcessed(state.iterations() * kRecords);
}
BENCHMARK(BM_BuildAndFreeze)->Unit(benchmark::kMicrosecond);

void BM_BuildOnly(benchmark::State &state) {
  for (auto _ : state) {
    PropertyNode document = buildDocument();
    benchmark::DoNotOptimize(document);
  }
  state.SetItemsProcessed(state.iterations() * kRecords);
}
BENCHMARK(BM_BuildOnly)->Unit(benchmark::kMicrosecond);

void BM_FreezeOnly(benchmark::State &state) {
  PropertyNode const document = buildDocument();
  for (auto _ : state) {
    FPropertyNode frozen(document);
    benchmark::DoNotOptimize(frozen);
  }
  state.SetItemsProcessed(state.iterations() * kRecords);
}
BENCHMARK(BM_FreezeOnly)->Unit(benchmark::kMicrosecond);

// The same document as JSON objects, for comparison.
void BM_NlohmannBuild(benchmark::State &state) {
  for (auto _ : state) {
    nlohmann::json records = nlohmann::json::array();
    for (int i = 0; i < kRecords; ++i) {
      nlohmann::json record;
      record[kNames[0]] = static_cast<std::int32_t>(i);
      record[kNames[1]] = 1.5 * i;
      record[kNames[2]] = -0.25;
      record[kNames[3]] = 48000.0;
      record[kNames[4]] = "mV";
      record[kNames[5]] = static_cast<std::int64_t>(i) * 1024;
      record[kNames[6]] = i % 2 == 0;
      record[kNames[7]] = "probe";
      records.push_back(std::move(record));
    }
    benchmark::DoNotOptimize(records);
  }
  state.SetItemsProcessed(state.iterations() * kRecords);
}
BENCHMARK(BM_NlohmannBuild)->Unit(benchmark::kMicrosecond);

}  // namespace
