// The costs the text types promise: a copy is one atomic increment, building is one allocation,
// interned names compare by pointer, and ASCII skips the UTF decoder.
#include <VantraCore/InternedString.h>
#include <VantraCore/StringUtilities.h>
#include <VantraCore/VxString.h>

#include <benchmark/benchmark.h>

#include <string>

using namespace Tarvex::VantraCore;

namespace {

std::string const longText(64, 'x');

void BM_VxStringCopy(benchmark::State &state) {
  VxString const text(longText);
  for (auto _ : state) {
    VxString copy(text);
    benchmark::DoNotOptimize(copy);
  }
}
BENCHMARK(BM_VxStringCopy);

void BM_StdStringCopy(benchmark::State &state) {
  for (auto _ : state) {
    std::string copy(longText);
    benchmark::DoNotOptimize(copy);
  }
}
BENCHMARK(BM_StdStringCopy);

void BM_VxStringBuild(benchmark::State &state) {
  for (auto _ : state) {
    VxString built(longText);
    benchmark::DoNotOptimize(built);
  }
}
BENCHMARK(BM_VxStringBuild);

void BM_VxStringConcatenate(benchmark::State &state) {
  VxString const a(longText), b("suffix");
  for (auto _ : state) {
    VxString joined = a + b;
    benchmark::DoNotOptimize(joined);
  }
}
BENCHMARK(BM_VxStringConcatenate);

void BM_ViewFind(benchmark::State &state) {
  std::string const hay = std::string(4096, 'a') + "needle";
  VxStringView const view(hay);
  for (auto _ : state)
    benchmark::DoNotOptimize(view.find("needle"));
}
BENCHMARK(BM_ViewFind);

// Interning an existing name, beside a locked standard set, is a goal row of bench/small_goals.cpp.

void BM_InternedCompare(benchmark::State &state) {
  InternedString const a("UnitTypeReferenceString"), b("UnitTypeReferenceString");
  for (auto _ : state)
    benchmark::DoNotOptimize(a == b);
}
BENCHMARK(BM_InternedCompare);

void BM_VxStringCompare(benchmark::State &state) {
  VxString const a("UnitTypeReferenceString"), b("UnitTypeReferenceString");
  for (auto _ : state)
    benchmark::DoNotOptimize(a == b);
}
BENCHMARK(BM_VxStringCompare);

void BM_ToUtf16Ascii(benchmark::State &state) {
  VxString const text(std::string(256, 'a'));
  for (auto _ : state)
    benchmark::DoNotOptimize(toUtf16(text));
}
BENCHMARK(BM_ToUtf16Ascii);

void BM_ToUtf16NonAscii(benchmark::State &state) {
  VxString const text(std::string(255, 'a') + "\xc3\xa9");
  for (auto _ : state)
    benchmark::DoNotOptimize(toUtf16(text));
}
BENCHMARK(BM_ToUtf16NonAscii);

}  // namespace
