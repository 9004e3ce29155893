// Maps hold a handful to a few dozen keys: lookup is one pointer comparison per entry, and building a
// node allocates nothing beyond the map's vector.
#include <VantraCore/PropertyNode.h>

#include <benchmark/benchmark.h>

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

}  // namespace
