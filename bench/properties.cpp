// Maps hold a handful to a few dozen keys: lookup is one pointer comparison per entry, and building a
// node allocates nothing beyond the map's vector.
#include <VantraCore/FPropertyNode.h>
#include <VantraCore/InternedString.h>
#include <VantraCore/PropertyNode.h>
#include <VantraCore/VxVariant.h>

#include <benchmark/benchmark.h>
#include <nlohmann/json.hpp>

#include <string>
#include <vector>

using namespace Tarvex::VantraCore;

namespace {

std::vector<InternedString> keys(std::size_t count) {
  std::vector<InternedString> result;
  for (std::size_t i = 0; i < count; ++i)
    result.emplace_back(("key" + std::to_string(i)).c_str());
  return result;
}

PropertyNode mapOf(std::vector<InternedString> const &names) {
  PropertyNode node;
  for (InternedString name : names)
    node.set(name, 1.0);
  return node;
}

// The last key of the map: the longest walk.
void BM_MapLookupLastKey(benchmark::State &state) {
  std::vector<InternedString> const names = keys(static_cast<std::size_t>(state.range(0)));
  PropertyNode const node = mapOf(names);
  for (auto _ : state)
    benchmark::DoNotOptimize(&node.map().at(names.back()));
}
BENCHMARK(BM_MapLookupLastKey)->Arg(4)->Arg(16)->Arg(64);

void BM_BuildMapBySet(benchmark::State &state) {
  std::vector<InternedString> const names = keys(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state)
    benchmark::DoNotOptimize(mapOf(names));
}
BENCHMARK(BM_BuildMapBySet)->Arg(4)->Arg(16);

void BM_DeepCopy(benchmark::State &state) {
  std::vector<InternedString> const names = keys(16);
  PropertyNode tree = mapOf(names);
  for (InternedString name : names)
    tree.set(name, mapOf(keys(4)));
  for (auto _ : state) {
    PropertyNode copy(tree);
    benchmark::DoNotOptimize(copy);
  }
}
BENCHMARK(BM_DeepCopy);

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
  InternedString const *names = internedNames();
  PropertyList records;
  records.reserve(kRecords);
  for (int i = 0; i < kRecords; ++i) {
    PropertyNode record;
    record.set(names[0], VxVariant(static_cast<std::int32_t>(i)));
    record.set(names[1], VxVariant(1.5 * i));
    record.set(names[2], VxVariant(-0.25));
    record.set(names[3], VxVariant(48000.0));
    record.set(names[4], VxString("mV"));
    record.set(names[5], VxVariant(static_cast<std::int64_t>(i) * 1024));
    record.set(names[6], VxVariant(i % 2 == 0));
    record.set(names[7], VxString("probe"));
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
