#include <VantraCore/UnitType.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <support/Throws.h>

#include <atomic>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

using namespace Tarvex::VantraCore;
using namespace Tarvex::VantraCore::Experimental;

namespace {

std::string text(VxString const &s) {
  return s.toStdString();
}
std::string si(UnitDimensions const &d) {
  return text(d.SIUnitsString());
}

TEST(UnitDimensions, SiTextPutsSeveralDenominatorFactorsInParentheses) {
  EXPECT_EQ(si(UnitDimensions()), "1");
  EXPECT_EQ(si(UnitDimensions(0, 0, -1, 0, 0, 0, 0, 0, 0)), "1/s");
  EXPECT_EQ(si(UnitDimensions(-1, 0, -1, 0, 0, 0, 0, 0, 0)), "1/(m*s)");
  EXPECT_EQ(si(UnitType::velocity().getDimensions()), "m/s");
  EXPECT_EQ(si(UnitType::pressure().getDimensions()), "kg/(m*s^2)");
  EXPECT_EQ(si(UnitType::electricCapacitance().getDimensions()), "s^4*A^2/(m^2*kg)");
  EXPECT_EQ(si(UnitDimensions(0, 0, 0, 0, 0, 3, 1, -1, 2)), "mol^3*cd*sr^2/rad");
}

TEST(UnitDimensions, ArithmeticWorksExponentWise) {
  UnitDimensions const m = UnitType::length().getDimensions(), s = UnitType::time().getDimensions();
  EXPECT_EQ(m / (s ^ 2), UnitType::acceleration().getDimensions());
  EXPECT_EQ(m * m, UnitType::area().getDimensions());
  EXPECT_EQ((m ^ -3) ^ -1, UnitType::volume().getDimensions());
  EXPECT_NE(m, s);
}

TEST(UnitType, PredefinedEntriesKeepTheirTextsAndOrder) {
  EXPECT_EQ(text(UnitType::electricResistance().getReferenceSIString()), "\xCE\xA9");
  EXPECT_EQ(text(UnitType::absorbedDose().getName()), "absorbed dose of radiation");
  EXPECT_EQ(text(UnitType::dimensionless().getName()), "scalar");
  EXPECT_EQ(UnitType::findByReferenceSiString("Bq"), UnitType::radioactivity());
  EXPECT_EQ(UnitType::findByReferenceSiString("1"), UnitType::dimensionless());
  std::vector<UnitType> const hz = UnitType::findCompatibleTypes(UnitType::frequency().getDimensions());
  ASSERT_GE(hz.size(), 2u);
  EXPECT_EQ(hz[0], UnitType::frequency());
  EXPECT_EQ(hz[1], UnitType::radioactivity());
  EXPECT_FALSE(UnitType() == UnitType::dimensionless());
  EXPECT_EQ(text(UnitType().getName()), "none");
  EXPECT_THAT([] { UnitType::findByReferenceSiString("furlong"); },
              throws<std::runtime_error>("Could not find a UnitType with reference SI string furlong"));
}

TEST(UnitType, FindUnitTypeTellsSharedDimensionsApartByReferenceText) {
  UnitDimensions const dose = UnitType::absorbedDose().getDimensions();
  EXPECT_EQ(UnitType::findUnitType(dose, "mSv"), UnitType::equivalentDose());
  EXPECT_EQ(UnitType::findUnitType(dose, "foo"), UnitType::absorbedDose());
  UnitDimensions const perSecond = UnitType::frequency().getDimensions();
  EXPECT_EQ(UnitType::findUnitType(perSecond, "kBq"), UnitType::radioactivity());
  EXPECT_EQ(UnitType::findUnitType(perSecond, "1/s"), UnitType::frequency());
  EXPECT_EQ(UnitType::findUnitType(UnitType::force().getDimensions(), "kN"), UnitType::force());
}

TEST(UnitType, UnknownDimensionsRegisterOnceUnderTheUnitText) {
  UnitDimensions const odd(7, 0, 0, 0, 0, 0, 0, 0, -5);
  UnitType const first = UnitType::findUnitType(odd, "weird");
  EXPECT_EQ(text(first.getName()), "weird");
  EXPECT_EQ(text(first.getReferenceSIString()), "m^7/sr^5");
  EXPECT_EQ(UnitType::findUnitType(odd, "other"), first);
  EXPECT_EQ(UnitType::findCompatibleTypes(odd).size(), 1u);

  UnitDimensions const dup(0, 7, 0, 0, 0, 0, 0, 0, 0);
  UnitType const &created = UnitType::create("dup", dup, "x");
  UnitType::create("dup", dup, "");
  std::vector<UnitType> const both = UnitType::findCompatibleTypes(dup);
  ASSERT_EQ(both.size(), 2u);
  EXPECT_EQ(text(both[1].getReferenceSIString()), "kg^7");
  EXPECT_EQ(text(created.getReferenceSIString()), "x");  // still valid after the registry grew
}

TEST(UnitType, DecibelTypeFollowsDimensionsOnly) {
  EXPECT_EQ(UnitType::getDBType(UnitType::electricCurrent()), UnitType::dbAmplitude);
  EXPECT_EQ(UnitType::getDBType(UnitType::electricPotential()), UnitType::dbAmplitude);
  EXPECT_EQ(UnitType::getDBType(UnitType::power()), UnitType::dbPower);
  EXPECT_EQ(UnitType::getDBType(UnitType::length()), UnitType::dbPower);
}

TEST(UnitTypeThreads, RegisteringBesideReadersIsSafeAndRegistersOnce) {
  std::atomic<bool> failed{false};
  std::vector<std::thread> threads;
  for (int t = 0; t < 8; ++t) {
    threads.emplace_back([t, &failed] {
      for (int i = 0; i < 200; ++i) {
        UnitDimensions const fresh(0, 0, 0, 0, 0, 0, 11 + i, 0, 0);
        UnitType const found = UnitType::findUnitType(fresh, VxString("t" + std::to_string(t)));
        UnitType const known = UnitType::findUnitType(UnitType::energy().getDimensions(), "J");
        if (!(known == UnitType::energy()) || !(found.getDimensions() == fresh)) failed = true;
        if (UnitType::findByReferenceSiString("kat").getName() != "catalytic activity") failed = true;
      }
    });
  }
  for (int r = 0; r < 2; ++r) {
    threads.emplace_back([&failed] {
      for (int i = 0; i < 400; ++i)
        if (UnitType::findCompatibleTypes(UnitType::absorbedDose().getDimensions()).size() != 2)
          failed = true;
    });
  }
  for (auto &thread : threads)
    thread.join();
  EXPECT_FALSE(failed);
  for (int i = 0; i < 200; ++i)
    EXPECT_EQ(UnitType::findCompatibleTypes(UnitDimensions(0, 0, 0, 0, 0, 0, 11 + i, 0, 0)).size(), 1u);
}

}  // namespace
