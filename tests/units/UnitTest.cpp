#include <VantraCore/Complex.h>
#include <VantraCore/Unit.h>
#include <VantraCore/WellKnownType.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <support/Throws.h>

#include <cmath>
#include <complex>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

using namespace Tarvex::VantraCore;
using namespace Tarvex::VantraCore::Experimental;

namespace {

std::vector<std::string> keysOf(Unit const &unit) {
  std::vector<std::string> keys;
  for (auto const &entry : unit.getPropertyNode().map())
    keys.emplace_back(entry.key.data(), entry.key.length());
  return keys;
}

// As a parsed unit would be: the SI text is the unit's own text, not its type's reference string.
Unit labelled(UnitType const &type, char const *text, double scale, double offset, double logMultiplier) {
  Unit unit(type, text, scale, offset, logMultiplier);
  unit.setSiUnits(text);
  return unit;
}

Unit const volt = labelled(UnitType::electricPotential(), "V", 1.0, 0.0, 0.0);
Unit const millivolt = labelled(UnitType::electricPotential(), "mV", 0.001, 0.0, 0.0);
Unit const watt = labelled(UnitType::power(), "W", 1.0, 0.0, 0.0);
Unit const dBm = labelled(UnitType::power(), "dBm", 0.001, 0.0, 10.0);
Unit const kelvin = labelled(UnitType::thermodynamicTemperature(), "K", 1.0, 0.0, 0.0);
Unit const celsius = labelled(UnitType::thermodynamicTemperature(), "C", 1.0, 273.15, 0.0);
Unit const fahrenheit =
    labelled(UnitType::thermodynamicTemperature(), "F", 0.5555555555555556, 255.37222222222223, 0.0);
Unit const km = labelled(UnitType::length(), "km", 1000.0, 0.0, 0.0);

TEST(Unit, ConstructorsFillTheStoredForm) {
  Unit const plain;
  EXPECT_EQ(keysOf(plain), (std::vector<std::string>{"Scale", "Offset", "LogMultiplier", "SiUnits",
                                                     "UnitTypeReferenceString", "DisplayUnit"}));
  EXPECT_TRUE(plain.isDimensionless());
  Unit const mV(UnitType::electricPotential(), "mV", 0.001, 0.0, 0.0);
  EXPECT_EQ(mV.getSiUnits(), "V");
  EXPECT_EQ(mV.getUnitTypeReferenceString(ReferenceTypeSemantics()), "V");
  EXPECT_TRUE(dBm.isLogarithmic());
  EXPECT_FALSE(Unit(UnitType::length(), "", 1, 0, std::nan("")).getLogMultiplier() == 0.0);
}

TEST(Unit, StoredNodeIsValidatedButTheTypeIsNotRestored) {
  Unit const restored(millivolt.getPropertyNode());
  EXPECT_EQ(restored.getScale(), 0.001);
  EXPECT_TRUE(restored.isDimensionless());
  EXPECT_THAT([] { Unit u{PropertyNode()}; }, throws("schema validation failed"));
  PropertyNode node = millivolt.getPropertyNode();
  node.map().erase("LogMultiplier");
  Unit const noLog(node);
  EXPECT_THAT([&] { noLog.isLogarithmic(); }, throws<std::out_of_range>("Key not found: LogMultiplier"));
  node.map().erase("DisplayUnit");
  EXPECT_THAT([&] { Unit u(node); }, throws("schema validation failed"));
}

TEST(Unit, MalformedEntriesFailOrFallBackByOverload) {
  PropertyNode node = millivolt.getPropertyNode();
  node.set("Offset", "not a number");
  node.set("SiUnits", VxVariant(std::int32_t(3)));
  node.set("Scale", PropertyMap());
  Unit unit(node);
  EXPECT_EQ(unit.getOffset(), 0.0);
  EXPECT_THAT([&] { unit.getSiUnits(ReferenceTypeSemantics()); },
              throws<std::invalid_argument>("Wrong data type."));
  EXPECT_THAT([&] { unit.getScale(); }, throws<std::out_of_range>("PropertyNode is not a value"));
  unit.setScale(2.5);
  EXPECT_EQ(unit.getScale(), 2.5);
}

TEST(Unit, ScalarConversionFollowsTheOneFormula) {
  EXPECT_DOUBLE_EQ(dBm.convertTo(watt, 0.0), 0.001);
  EXPECT_DOUBLE_EQ(watt.convertTo(dBm, 1.0), 30.0);
  EXPECT_DOUBLE_EQ(celsius.convertTo(kelvin, 0.0), 273.15);
  EXPECT_NEAR(fahrenheit.convertTo(celsius, 32.0), 0.0, 1e-12);
  EXPECT_DOUBLE_EQ(watt.convertTo(dBm, -1.0), -3000.0);
  EXPECT_TRUE(std::isinf(dBm.convertTo(watt, 1e6)));
  EXPECT_TRUE(std::isnan(watt.convertTo(dBm, std::nan(""))));
  EXPECT_TRUE(std::isinf(volt.convertTo(Unit(UnitType::electricPotential(), "", 0, 0, 0), 1.0)));
  EXPECT_THAT([] { volt.convertTo(watt, 1.0); }, throws("Units W is not commensurable to V"));
  EXPECT_THAT([] { volt.convertTo(watt, std::complex<double>()); },
              throws("Units W is not Commensurable to V"));
  std::complex<double> const c = celsius.convertTo(kelvin, std::complex<double>(1.0, 2.0));
  EXPECT_DOUBLE_EQ(c.real(), 274.15);
  EXPECT_DOUBLE_EQ(c.imag(), 275.15);
}

// Arrays of doubles are converted in place of the variant's own block; other kinds take the element
// conversion's route, tested with it below.
TEST(Unit, VariantConversionConvertsDoublesInPlaceAndHandsSameTextsBack) {
  VxVariant doubles(std::vector<double>{1.0, 0.0, 3.0, 4.0}, {2, 2}, columnMajor);
  VxVariant const logs = watt.convertTo(dBm, doubles);
  EXPECT_EQ(logs.dataOrdering(), columnMajor);
  EXPECT_EQ(logs.dimensions().sizes[1], 2u);
  EXPECT_DOUBLE_EQ(logs.at<double>(0), 30.0);
  EXPECT_DOUBLE_EQ(logs.at<double>(1), -3000.0);
  EXPECT_EQ(doubles.at<double>(1), 0.0) << "a shared block is copied first";
  VxVariant const z = celsius.convertTo(kelvin, VxVariant(std::complex<double>(1.0, 2.0)));
  EXPECT_DOUBLE_EQ(z.at<std::complex<double>>(0).imag(), 275.15);

  // Same SI text: handed back untouched even though the scales differ.
  VxVariant const ints(std::vector<std::int32_t>{1, -2, 3, 4, 5, 6}, {2, 3}, columnMajor);
  Unit const sameText(UnitType::electricPotential(), "kV", 1000.0, 0.0, 0.0);
  EXPECT_TRUE(sameText.convertTo(volt, ints).isIdenticalTo(ints));
  EXPECT_EQ(millivolt.convertTo(volt, ints).at<double>(1), millivolt.convertTo(volt, -2.0));
}

TEST(Unit, LabelsWriteThroughAndArithmeticDropsScales) {
  Unit const bare(UnitType::length(), "", 1.0, 0.0, 0.0);
  EXPECT_EQ(bare.getUnitsLabel(), "m");
  EXPECT_EQ(bare.getDisplayUnit(), "");
  EXPECT_EQ(bare.getUnitsLabel(ReferenceTypeSemantics()), "m");
  EXPECT_EQ(bare.getDisplayUnit(), "m");

  Unit const square = km * km;
  EXPECT_EQ(square.getUnitsLabel(), "(km)*km");
  EXPECT_EQ(square.getUnitType(), UnitType::area());
  EXPECT_EQ(square.convertTo(Unit(UnitType::area(), "m^2", 1, 0, 0), 1.0), 1.0);
  Unit const hour(UnitType::time(), "h", 3600.0, 0.0, 0.0);
  Unit const speed = km / hour;
  EXPECT_EQ(speed.getUnitsLabel(), "km/(h)");
  EXPECT_EQ(speed.getSiUnits(), "m/s");
  EXPECT_EQ(speed.getScale(), 1.0);
  EXPECT_EQ((km ^ -2).getUnitsLabel(), "(km)^-2");
}

TEST(Unit, EqualityIgnoresTypeNamesButNotNumbers) {
  Unit const renamed(UnitType::findUnitType(UnitType::absorbedDose().getDimensions(), "Sv"), "x", 1, 0, 0);
  Unit const other(UnitType::absorbedDose(), "x", 1, 0, 0);
  EXPECT_TRUE(renamed == other);
  Unit shifted = other;
  shifted.setOffset(1.0);
  EXPECT_TRUE(shifted != other);
  EXPECT_FALSE(celsius == kelvin);
}

// The default table's temperatures: both SI texts read "K", so convertTo hands the variant back.
Unit const kelvinByType(UnitType::thermodynamicTemperature(), "K", 1.0, 0.0, 0.0);
Unit const celsiusByType(UnitType::thermodynamicTemperature(), "\u00B0C", 1.0, 273.15, 0.0);
Unit const fahrenheitByType(UnitType::thermodynamicTemperature(), "\u00B0F", 0.5555555555555556,
                            255.37222222222223, 0.0);

std::vector<std::uint64_t> shapeOf(VxVariant const &value) {
  return std::vector<std::uint64_t>(value.dimensions().begin(), value.dimensions().end());
}

TEST(UnitConvertElements, ConvertsEveryElementWhateverTheSiTexts) {
  VxVariant const temperatures(std::vector<double>{0, 1, 2, 3, 4, -273.15}, {2, 3}, rowMajor);
  EXPECT_TRUE(celsiusByType.convertTo(kelvinByType, temperatures).isIdenticalTo(temperatures));
  VxVariant const kelvins = celsiusByType.convertElements(kelvinByType, temperatures);
  ASSERT_TRUE(kelvins.isType<double>());
  EXPECT_EQ(shapeOf(kelvins), (std::vector<std::uint64_t>{2, 3}));
  EXPECT_EQ(kelvins.dataOrdering(), rowMajor);
  for (std::uint64_t i = 0; i < 6; ++i)
    EXPECT_EQ(kelvins.at<double>(i), temperatures.at<double>(i) + 273.15) << i;
  EXPECT_EQ(temperatures.at<double>(0), 0.0);  // the input stays as it was

  VxVariant const fahrenheits(std::vector<float>{212.0f, -40.0f});
  VxVariant const celsiusValues = fahrenheitByType.convertElements(celsiusByType, fahrenheits);
  EXPECT_NEAR(celsiusValues.at<double>(0), 100.0, 1e-12);
  EXPECT_NEAR(celsiusValues.at<double>(1), -40.0, 1e-12);

  // A scalar stays a scalar.
  VxVariant const one = millivolt.convertElements(volt, VxVariant(std::int32_t(7)));
  EXPECT_TRUE(one.isScalarStorage());
  EXPECT_EQ(one.get<double>(), 0.007);
}

TEST(UnitConvertElements, IntegersKeepTheirOrderAcrossCastRuns) {
  // More elements than one run of the cast, in both orderings, each element in its own place.
  std::vector<std::int16_t> ints(3000);
  for (std::size_t i = 0; i < ints.size(); ++i)
    ints[i] = std::int16_t(int(i) * 7 - 10000);
  for (DataOrdering ordering : {rowMajor, columnMajor}) {
    VxVariant const volts = millivolt.convertElements(volt, VxVariant(ints, {3, 1000}, ordering));
    ASSERT_TRUE(volts.isType<double>());
    EXPECT_EQ(volts.dataOrdering(), ordering);
    EXPECT_EQ(shapeOf(volts), (std::vector<std::uint64_t>{3, 1000}));
    for (std::uint64_t i = 0; i < ints.size(); ++i)
      ASSERT_EQ(volts.at<double>(i), millivolt.convertTo(volt, double(ints[i]))) << i;
  }
  // The cast is the variant's own, also for the largest unsigned value.
  VxVariant const huge(std::vector<std::uint64_t>{~std::uint64_t(0), 3});
  EXPECT_EQ(kelvinByType.convertElements(kelvinByType, huge).at<double>(0),
            huge.convertTo(wellKnownTypeOf<double>(), conversionCast).at<double>(0));
  EXPECT_EQ(shapeOf(millivolt.convertElements(volt, VxVariant::withShape<std::int8_t>({0, 4}))),
            (std::vector<std::uint64_t>{0, 4}));
}

TEST(UnitConvertElements, ComplexAndLogarithmicElements) {
  VxVariant const z(std::vector<Complex<std::int32_t>>{{1, 2}, {-3, 4}});
  VxVariant const kelvins = celsiusByType.convertElements(kelvinByType, z);
  ASSERT_TRUE(kelvins.isType<std::complex<double>>());
  EXPECT_EQ(kelvins.at<std::complex<double>>(0), std::complex<double>(274.15, 275.15));
  EXPECT_EQ(kelvins.at<std::complex<double>>(1), std::complex<double>(-3 + 273.15, 4 + 273.15));

  VxVariant const logs = watt.convertElements(dBm, VxVariant(std::vector<double>{1.0, 0.0, 0.001}));
  EXPECT_DOUBLE_EQ(logs.at<double>(0), 30.0);
  EXPECT_DOUBLE_EQ(logs.at<double>(1), -3000.0);
  EXPECT_DOUBLE_EQ(logs.at<double>(2), 0.0);
  VxVariant const watts = dBm.convertElements(watt, VxVariant(std::vector<std::int8_t>{0, 30, -30}));
  EXPECT_DOUBLE_EQ(watts.at<double>(0), 0.001);
  EXPECT_DOUBLE_EQ(watts.at<double>(1), 1.0);
  EXPECT_DOUBLE_EQ(watts.at<double>(2), 1e-6);
}

TEST(UnitConvertElements, FailuresOfBothConversionsCarryTheVariantMessages) {
  EXPECT_THAT([] { volt.convertTo(watt, VxVariant(1.0)); },
              throws("To units are not commensurable - from: V to W"));
  EXPECT_THAT([] { volt.convertElements(watt, VxVariant(1.0)); },
              throws("To units are not commensurable - from: V to W"));
  auto const failed = throws("Failed convering units from mV to V");
  EXPECT_THAT([] { millivolt.convertTo(volt, VxVariant("text")); }, failed);
  EXPECT_THAT([] { millivolt.convertTo(volt, VxVariant()); }, failed);
  EXPECT_THAT([] { millivolt.convertElements(volt, VxVariant(std::vector<VxString>{"1", "2"})); }, failed);
  EXPECT_THAT([] { celsiusByType.convertElements(kelvinByType, VxVariant()); },
              throws("Failed convering units from K to K"));
}

}  // namespace
