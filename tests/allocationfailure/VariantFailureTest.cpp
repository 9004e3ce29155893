// Conversions, reordering, slices, units and strings with each allocation failing in turn; the
// source values stay as they were.
#include "FailEveryAllocation.h"

#include <VantraCore/InternedString.h>
#include <VantraCore/SystemOfUnits.h>
#include <VantraCore/Unit.h>
#include <VantraCore/VxVariant.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <vector>

using namespace Tarvex::VantraCore;
using namespace Tarvex::VantraCore::Experimental;

TEST(VariantAllocationFailure, ConversionsReorderingAndSlices) {
  VxVariant const numbers(std::vector<std::int32_t>{1, 2, 3, 4, 5, 6}, {2, 3});
  VxVariant const texts(std::vector<VxString>{"1.5", "-2", "3e2", "4"}, {2, 2});
  VxVariant const numbersBefore(std::vector<std::int32_t>{1, 2, 3, 4, 5, 6}, {2, 3});
  auto const unchanged = [&] { EXPECT_TRUE(numbers.isEquivalentTo(numbersBefore)); };

  failEveryAllocation(
      "convertTo double", [&] { EXPECT_EQ(numbers.convertTo(wellKnownTypeOf<double>()).at<double>(0), 1.0); }, unchanged);
  failEveryAllocation("convertTo string",
                      [&] { EXPECT_EQ(numbers.convertTo(wellKnownTypeOf<VxString>(), conversionParse).at<VxString>(0), "1"); });
  failEveryAllocation("convertTo from strings",
                      [&] { EXPECT_EQ(texts.convertTo(wellKnownTypeOf<double>(), conversionParse).at<double>(0), 1.5); });
  failEveryAllocation(
      "reordered", [&] { EXPECT_EQ(numbers.reordered(columnMajor).dataOrdering(), columnMajor); }, unchanged);
  failEveryAllocation("reordered strings", [&] { EXPECT_EQ(texts.reordered(columnMajor).at<VxString>(0), "1.5"); });
  ArraySlice const column{IndexSet(IndexRange::all), IndexSet(IndexValue(1))};
  failEveryAllocation(
      "slice", [&] { EXPECT_EQ(numbers.slice(column).at<std::int32_t>(0), 2); }, unchanged);
  failEveryAllocation("slice of strings", [&] { EXPECT_EQ(texts.slice(column).at<VxString>(0), "-2"); });
}

namespace {

// Parsing and conversion replace any failure, an allocation's too, by a message of their own.
auto startsWith(char const *prefix) {
  return [prefix](char const *message) { return std::strncmp(message, prefix, std::strlen(prefix)) == 0; };
}

}  // namespace

TEST(UnitAllocationFailure, ParsingAndConversion) {
  VxString const text("kg*m^2/(s^3*A)"), millivoltText("mV");
  Unit const volt = Unit::fromIviUnitString("V"), millivolt = Unit::fromIviUnitString(millivoltText);
  VxVariant const samples(std::vector<double>{1, 2, 3});
  auto const notParsed = startsWith("Error constructing a unit from SI String ");
  auto const notConverted = startsWith("Failed convering units from ");

  failEveryAllocation(
      "Unit parsing", [&] { EXPECT_NEAR(Unit::fromIviUnitString(text).convertTo(volt, 2.0), 2.0, 1e-12); }, {},
      Keeps::nothing, notParsed);
  failEveryAllocation(
      "Unit lookup",
      [&] { EXPECT_EQ(SystemOfUnits::instance().getUnitsFromString(millivoltText), millivolt); }, {},
      Keeps::nothing, notParsed);
  failEveryAllocation("Unit conversion of a number", [&] { EXPECT_EQ(millivolt.convertTo(volt, 1000.0), 1.0); });
  failEveryAllocation(
      "Unit conversion of a variant", [&] { EXPECT_EQ(millivolt.convertTo(volt, samples).at<double>(0), 0.001); },
      {}, Keeps::nothing, notConverted);
  failEveryAllocation(
      "Unit conversion element by element",
      [&] { EXPECT_EQ(millivolt.convertElements(volt, samples).at<double>(0), 0.001); }, {}, Keeps::nothing,
      notConverted);
}

TEST(StringAllocationFailure, ConcatenationAndInterning) {
  VxString const a("a string long enough"), b(" to need its own block");
  failEveryAllocation("VxString concatenation", [&] { EXPECT_EQ((a + b).size(), a.size() + b.size()); });
  failEveryAllocation("VxString append", [&] {
    VxString text = a;
    text += b;
    EXPECT_EQ(text, a + b);
  });

  // A fresh name each run: a completed run keeps its name for the life of the process.
  int run = 0;
  failEveryAllocation(
      "interning",
      [&] {
        char name[64];
        std::snprintf(name, sizeof name, "never interned before %d", ++run);
        InternedString const interned(name);
        EXPECT_EQ(interned, InternedString(name));
      },
      {}, Keeps::cached);
}
