#include <VantraCore/SystemOfUnits.h>
#include <VantraCore/Unit.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <support/Throws.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace Tarvex::VantraCore;
using namespace Tarvex::VantraCore::Experimental;

// Names as they are, units by their labels.
template <class T>
std::vector<std::string> textsOf(std::vector<T> const &items) {
  std::vector<std::string> texts;
  for (T const &item : items) {
    if constexpr (std::is_same_v<T, Unit>)
      texts.push_back(item.getUnitsLabel().toStdString());
    else
      texts.push_back(item.toStdString());
  }
  return texts;
}

SystemOfUnits &units() {
  return SystemOfUnits::instance();
}

TEST(UnitText, StoredFormAndMessages) {
  Unit const millivolt = Unit::fromIviUnitString("mV");
  EXPECT_EQ(millivolt.getSiUnits(), "mV");
  EXPECT_EQ(millivolt.getDisplayUnit(), "mV");
  EXPECT_EQ(millivolt.getUnitTypeReferenceString(), "V");
  std::vector<std::string> keys;
  for (auto const &entry : millivolt.getPropertyNode().map())
    keys.push_back(entry.key.view().to_string());
  EXPECT_EQ(keys, (std::vector<std::string>{"Offset", "Scale", "LogMultiplier", "SiUnits", "DisplayUnit",
                                            "UnitTypeReferenceString"}));

  Unit const empty = Unit::fromIviUnitString("");
  EXPECT_EQ(empty.getUnitTypeReferenceString(), "1");

  EXPECT_THAT([] { Unit::fromIviUnitString("m/s/s"); },
              throws<std::runtime_error>("Error constructing a unit from SI String m/s/s"));
  EXPECT_THAT([] { Unit().parseAndSetSiUnits("Wb"); }, throws<std::runtime_error>("Invalid units string Wb"));
  EXPECT_THAT([] { UnitType::magneticFlux().getBaseMKSUnits(); },
              throws<std::runtime_error>("Error constructing a unit from SI String Wb"));
}

TEST(SystemOfUnits, DefaultTable) {
  std::vector<Unit> const all = units().getAllUnits();
  ASSERT_EQ(all.size(), 119u);
  // Byte order: "%" and the upper case before the lower case, the non-ASCII names last.
  EXPECT_EQ(all.front().getUnitsLabel(), "%");
  EXPECT_EQ(all.back().getUnitsLabel(), "\u03A9");

  Unit const dBm = units().getUnitsByName("dBm");
  EXPECT_EQ(dBm.getScale(), 0.001);
  EXPECT_EQ(dBm.getLogMultiplier(), 10.0);
  EXPECT_EQ(dBm.getSiUnits(), "dB(mW)");
  EXPECT_EQ(units().getUnitsByName("dB\u00B5").getScale(), 1e-06);
  EXPECT_EQ(units().getUnitsByName("dB").getUnitsLabel(), "dB10");
  EXPECT_EQ(units().getUnitsByName("mho").getUnitsLabel(), "1/\u03A9");
  EXPECT_THAT([] { units().getUnitsByName("1/\u03A9"); },
              throws<std::logic_error>("Error: in GetUnitsByName: unit-name '1/\u03A9' not found."));
}

TEST(SystemOfUnits, LenientLookup) {
  EXPECT_THAT([] { units().getUnitsByName("Ohm"); },
              throws<std::logic_error>("Error: in GetUnitsByName: unit-name 'Ohm' not found."));
  EXPECT_EQ(units().getUnitsFromString("Ohm").getUnitsLabel(), "\u03A9");
  EXPECT_EQ(units().getUnitsFromString("uV").getUnitsLabel(), "\u00B5V");
  Unit const celsius = units().getUnitsFromString("Celsius");
  EXPECT_EQ(celsius.getOffset(), 273.15);
  EXPECT_EQ(celsius.getUnitsLabel(), "\u00B0C");
  EXPECT_EQ(units().getUnitsFromString("thousands").getScale(), 1000.0);
  // Not a name: parsed after the rewriting.
  EXPECT_EQ(units().getUnitsFromString("kg*m/s^2").getUnitType().getName(), "force");
  EXPECT_THAT([] { units().getUnitsFromString("uuV"); },
              throws<std::runtime_error>("Error constructing a unit from SI String \u00B5uV"));
}

// Names are spelt with the micro sign; the Greek mu finds them and the label stays as written.
TEST(SystemOfUnits, GreekMuFindsMicroNames) {
  std::string const mu = "\u03BC";
  Unit const greek = units().getUnitsByName(VxString(mu + "V"));
  Unit const sign = units().getUnitsByName("\u00B5V");
  EXPECT_EQ(greek.getUnitsLabel(), mu + "V");
  EXPECT_EQ(greek.getScale(), sign.getScale());
  EXPECT_TRUE(greek.getUnitType() == sign.getUnitType());
  EXPECT_EQ(units().getUnitsByName("\u00B5V").getUnitsLabel(), "\u00B5V");  // the table keeps its own

  Unit const decibels = units().getUnitsFromString(VxString("dB" + mu + "V"));
  EXPECT_EQ(decibels.getUnitsLabel(), "dB" + mu + "V");
  EXPECT_EQ(decibels.getScale(), 1e-06);
  EXPECT_EQ(decibels.getLogMultiplier(), 20.0);

  // Not a name: parsed, with the text as written.
  Unit const parsed = units().getUnitsFromString(VxString(mu + "m/s"));
  EXPECT_EQ(parsed.getUnitsLabel(), mu + "m/s");
  EXPECT_EQ(parsed.getScale(), 1e-06);
  EXPECT_THROW(units().getUnitsFromString(VxString("k" + mu + "m")), std::runtime_error);  // two prefixes
  Unit const fromText = Unit::fromIviUnitString(VxString(mu + "A"));
  EXPECT_EQ(fromText.getSiUnits(), mu + "A");
  EXPECT_EQ(fromText.getScale(), units().getUnitsByName("\u00B5A").getScale());
  EXPECT_THAT([&] { units().getUnitsByName(VxString(mu + "X")); },
              throws<std::logic_error>("Error: in GetUnitsByName: unit-name '" + mu + "X' not found."));
}

TEST(SystemOfUnits, ListingsOfAType) {
  EXPECT_EQ(textsOf(units().getUnits(UnitType::thermodynamicTemperature())),
            (std::vector<std::string>{"\u00B0C", "\u00B0F", "K"}));
  EXPECT_EQ(textsOf(units().getUnitNames(UnitType::thermodynamicTemperature())),
            (std::vector<std::string>{"Celsius", "Fahrenheit", "K", "\u00B0C", "\u00B0F"}));

  Unit const rankine(UnitType::thermodynamicTemperature(), "R", 0.5555555555555556, 0, 0);
  EXPECT_EQ(textsOf(units().getCompatibleUnits(rankine)),
            (std::vector<std::string>{"R", "\u00B0C", "\u00B0F", "K"}));
}

TEST(SystemOfUnits, InsertAndRemove) {
  Unit const furlong(UnitType::length(), "furlong", 201.168, 0, 0);
  units().insertUnits(furlong);
  EXPECT_EQ(units().getUnitsByName("furlong").getScale(), 201.168);
  EXPECT_THAT([&] { units().insertUnits(furlong); },
              throws<std::logic_error>("Error: insertUnits: Cannot insert duplicate unit-name 'furlong'."));
  units().insertUnits("fur", furlong);
  EXPECT_EQ(units().getUnitNames(UnitType::length()).size(), 10u);
  units().removeUnits("furlong");
  units().removeUnits("fur");
  units().removeUnits("no such name");
  EXPECT_EQ(units().getAllUnits().size(), 119u);
}

// Readers look up, list and parse while one writer inserts and removes names of its own.
TEST(SystemOfUnitsThreads, ReadersBesideAWriter) {
  std::atomic<bool> stop{false};
  std::atomic<int> failures{0};
  std::thread writer([&] {
    Unit const gallon(UnitType::volume(), "gal", 0.003785411784, 0, 0);
    for (int round = 0; round < 300; ++round) {
      units().insertUnits("gal" + std::to_string(round % 7), gallon);
      units().removeUnits("gal" + std::to_string((round + 3) % 7));
    }
    stop = true;
  });
  std::vector<std::thread> readers;
  for (int t = 0; t < 8; ++t) {
    readers.emplace_back([&, t] {
      do {
        if (units().getUnitsFromString("mV").getScale() != 0.001) ++failures;
        if (units().getUnitsFromString(t % 2 ? "kg*m/s^2" : "uA/s").getScale() != (t % 2 ? 1.0 : 1e-06))
          ++failures;
        if (units().getUnits(UnitType::thermodynamicTemperature()).size() != 3) ++failures;
        if (units().getAllUnits().size() < 119) ++failures;
      } while (!stop);
    });
  }
  writer.join();
  for (std::thread &reader : readers)
    reader.join();
  EXPECT_EQ(failures, 0);
  for (int i = 0; i < 7; ++i)
    units().removeUnits("gal" + std::to_string(i));
  EXPECT_EQ(units().getAllUnits().size(), 119u);
}

}  // namespace
