// Reading a unit text against its floor: one search of the atom pattern per atom, with the pattern
// already compiled. "kg*m/(s^2*A)" has four atoms.
#include <units/UnitGrammar.h>
#include <units/UnitParser.h>

#include <VantraCore/SystemOfUnits.h>
#include <VantraCore/Unit.h>
#include <VantraCore/UnitString.h>

#include <benchmark/benchmark.h>

#include <regex>
#include <string>

namespace {

using namespace Tarvex::VantraCore;
using namespace Tarvex::VantraCore::Internal::IviUnitImplementation;

std::string const s_text = "kg*m/(s^2*A)";
// The text left in front of each atom as the parser reaches it.
char const *const s_atomTexts[] = {"kg*m/(s^2*A)", "m/(s^2*A)", "s^2*A)", "A)"};

void BM_AtomSearchesAlone(benchmark::State &state) {
  std::regex const &pattern = unitAtomRegex();
  std::cmatch match;
  for (auto _ : state) {
    for (char const *text : s_atomTexts)
      benchmark::DoNotOptimize(std::regex_search(text, match, pattern));
  }
}
BENCHMARK(BM_AtomSearchesAlone);

void BM_ValidateText(benchmark::State &state) {
  VxString const text(s_text);
  for (auto _ : state)
    benchmark::DoNotOptimize(validateIviUnitString(text));
}
BENCHMARK(BM_ValidateText);

// Dimensions, scale and the unit type.
void BM_ParseUnitsText(benchmark::State &state) {
  for (auto _ : state)
    benchmark::DoNotOptimize(parseUnitsText(s_text));
}
BENCHMARK(BM_ParseUnitsText);

// The whole unit, with its stored node.
void BM_FromIviUnitString(benchmark::State &state) {
  VxString const text(s_text);
  for (auto _ : state)
    benchmark::DoNotOptimize(Experimental::Unit::fromIviUnitString(text));
}
BENCHMARK(BM_FromIviUnitString);

void BM_SystemOfUnitsByName(benchmark::State &state) {
  Experimental::SystemOfUnits const &units = Experimental::SystemOfUnits::instance();
  VxString const name("mV");
  for (auto _ : state)
    benchmark::DoNotOptimize(units.getUnitsFromString(name));
}
BENCHMARK(BM_SystemOfUnitsByName);

}  // namespace
