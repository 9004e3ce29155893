#include <VantraCore/detail/ElementKinds.h>

#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>
#include <vector>

using namespace Tarvex::VantraCore;

namespace {

// All 25 kinds in a scrambled order, so that the branch predictor cannot learn one path.
std::vector<WellKnownType> mixedKinds() {
  std::vector<WellKnownType> kinds;
  Internal::forEachElementKind(
      [&](auto tag) { kinds.push_back(wellKnownTypeOf<typename decltype(tag)::type>()); });
  std::vector<WellKnownType> mixed;
  for (std::size_t i = 0; i < kinds.size(); ++i)
    mixed.push_back(kinds[(i * 7) % kinds.size()]);
  return mixed;
}

// The baseline: what a hand-written switch over the codes costs.
// clang-format off
std::size_t handWrittenSize(WellKnownType type) {
  switch (static_cast<std::uint16_t>(type.value())) {
    case 0x4003: case 0x0004: case 0x4004: return 1;
    case 0xC003: case 0x0005: case 0x4005: case 0x8004: case 0xC004: return 2;
    case 0x0002: case 0x0006: case 0x4006: case 0x8005: case 0xC005: return 4;
    case 0x0001: case 0x0007: case 0x4007: case 0x8002: case 0x8006: case 0xC006: return 8;
    case 0x8001: case 0x8007: case 0xC007: case 0x0030: case 0x0040: return 16;
    case 0x0010: return sizeof(VxString);
    default: throw std::runtime_error("unknown type");
  }
}
// clang-format on

void BM_DispatchElementSize(benchmark::State &state) {
  auto const kinds = mixedKinds();
  for (auto _ : state) {
    std::size_t total = 0;
    for (auto type : kinds) {
      total += Internal::dispatchWellKnownType(type,
                                               [](auto tag) { return sizeof(typename decltype(tag)::type); });
    }
    benchmark::DoNotOptimize(total);
  }
  state.SetItemsProcessed(state.iterations() * kinds.size());
}
BENCHMARK(BM_DispatchElementSize);

void BM_HandWrittenSwitchElementSize(benchmark::State &state) {
  auto const kinds = mixedKinds();
  for (auto _ : state) {
    std::size_t total = 0;
    for (auto type : kinds)
      total += handWrittenSize(type);
    benchmark::DoNotOptimize(total);
  }
  state.SetItemsProcessed(state.iterations() * kinds.size());
}
BENCHMARK(BM_HandWrittenSwitchElementSize);

void BM_ToString(benchmark::State &state) {
  auto const kinds = mixedKinds();
  for (auto _ : state) {
    for (auto type : kinds)
      benchmark::DoNotOptimize(type.toString());
  }
  state.SetItemsProcessed(state.iterations() * kinds.size());
}
BENCHMARK(BM_ToString);

void BM_ParseName(benchmark::State &state) {
  std::vector<std::string> names;
  for (auto type : mixedKinds())
    names.emplace_back(type.toString());
  for (auto _ : state) {
    for (auto const &name : names)
      benchmark::DoNotOptimize(WellKnownType(VxStringView(name.data(), name.size())));
  }
  state.SetItemsProcessed(state.iterations() * names.size());
}
BENCHMARK(BM_ParseName);

void BM_CommonType(benchmark::State &state) {
  auto const kinds = mixedKinds();
  for (auto _ : state) {
    for (std::size_t i = 0; i < kinds.size(); ++i) {
      benchmark::DoNotOptimize(
          WellKnownType::getCommonWellKnownType(kinds[i], kinds[(i + 3) % kinds.size()]));
    }
  }
  state.SetItemsProcessed(state.iterations() * kinds.size());
}
BENCHMARK(BM_CommonType);

}  // namespace
