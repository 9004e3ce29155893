#include <VantraCore/JsonFormatter.h>

#include <benchmark/benchmark.h>
#include <nlohmann/json.hpp>

#include <random>
#include <string>

using namespace Tarvex::VantraCore;

namespace {

constexpr std::size_t elementCount = 1 << 20;

// A writer's document of a million doubles at 15 significant digits.
std::string const &doubleArrayDocument() {
  static std::string const text = [] {
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> values(-1e6, 1e6);
    nlohmann::json data = nlohmann::json::array();
    for (std::size_t i = 0; i < elementCount; ++i)
      data.push_back(values(random));
    nlohmann::json document{{"_data_", std::move(data)},
                            {"_dataorder_", "rowMajor"},
                            {"_dimensions_", {elementCount}},
                            {"_wellknowntype_", "double"}};
    return document.dump();
  }();
  return text;
}

void BM_LibraryParseAlone(benchmark::State &state) {
  std::string const &text = doubleArrayDocument();
  for (auto _ : state)
    benchmark::DoNotOptimize(nlohmann::json::parse(text));
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
}
BENCHMARK(BM_LibraryParseAlone)->Unit(benchmark::kMillisecond);

void BM_ReadDoubleArrayVariant(benchmark::State &state) {
  VxString const text(doubleArrayDocument());
  for (auto _ : state)
    benchmark::DoNotOptimize(JsonFormatter::deserializeVxVariant(text));
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.length()));
}
BENCHMARK(BM_ReadDoubleArrayVariant)->Unit(benchmark::kMillisecond);

}  // namespace
