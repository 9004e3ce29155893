#include <units/UnitGrammar.h>
#include <units/UnitParser.h>

#include <VantraCore/Unit.h>
#include <VantraCore/UnitString.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rapidcheck/gtest.h>
#include <support/Throws.h>

#include <climits>
#include <string>

namespace {

using namespace Tarvex::VantraCore;
using Experimental::Unit;
using Experimental::UnitDimensions;
using Experimental::UnitType;
using Internal::IviUnitImplementation::parseUnitsText;
using Internal::IviUnitImplementation::validateIviUnitString;

std::string const micro = "\u00B5", ohm = "\u03A9", degree = "\u00B0";

enum Outcome { rejected, parsed, exponentBeyondInt };

Outcome parse(std::string const &text) {
  try {
    parseUnitsText(text);
    return parsed;
  } catch (std::out_of_range const &) {
    return exponentBeyondInt;
  } catch (std::runtime_error const &) {
    return rejected;
  }
}

TEST(UnitTextGrammar, AcceptsAndRejectsTheSameTexts) {
  for (std::string const &text : std::vector<std::string>{
           "",           "m",          "kg",        "mm",     "mL",     "T",       "cm^2",    "km^2",
           "m^-1",       "m^+2",       "1",         "1/s",    "m/s^2",  "m/(s*s)", "(m/s)/s", "kg*m/(s^2*A)",
           "m/(1/s)",    "dB(mW)",     "dB(1)",     "dB(A)",  "log(V)", "(m",      "kBq",     "kdeg",
           "d" + degree, degree + "C", micro + "V", "k" + ohm}) {
    EXPECT_TRUE(validateIviUnitString(text)) << text;
    EXPECT_EQ(parse(text), parsed) << text;
  }
  // Ordered alternatives: "mol", "sr", "Wb", "Sv" stop after "m", "s", "W", "S"; "m" is tried as a
  // prefix first; the pattern skips a leading blank that the grammar then trips over.
  for (std::string const &text :
       std::vector<std::string>{"dB(", "dB()", "dB(m", "log(m))", "m^0", "m/s/s", "m/s*s", "(m)s", "2",
                                "1/1", " m",   "m ",   "Wb",      "mol", "sr",    "Sv",    "kmol", "min",
                                "mkg", "dBm",  "m*",   "m/",      "()",  micro,   "m^",    "m^1.5"}) {
    EXPECT_FALSE(validateIviUnitString(text)) << text;
    EXPECT_EQ(parse(text), rejected) << text;
  }
}

// The alternatives come from the symbol tables; their order decides which atom a text starts with.
TEST(UnitTextGrammar, AtomPatternListsTheTablesInOrder) {
  EXPECT_EQ(Internal::IviUnitImplementation::unitAtomPatternText(),
            "^\\s*(Y|Z|E|P|T|G|M|k|h|da|d|c|m|" + micro +
                "|n|p|f|a|z|y)?(m|g|s|A|K|mol|cd|Hz|N|Pa|J|W|C|V|F|" + ohm +
                "|S|Wb|T|H|lm|lx|Bq|Gy|Sv|kat|l|L|rad|sr|deg|" + degree + "C?)(\\^[+-]?[1-9]\\d*)?");
}

TEST(UnitTextGrammar, ExponentBeyondIntPassesOnlyTheValidator) {
  EXPECT_TRUE(validateIviUnitString("m^2147483648"));
  EXPECT_THROW(parseUnitsText("m^2147483648"), std::out_of_range);
  EXPECT_EQ(parseUnitsText("s^-2147483648").type.getDimensions(),
            UnitDimensions(0, 0, INT_MIN, 0, 0, 0, 0, 0, 0));
  EXPECT_THAT([] { Unit::fromIviUnitString("m^2147483648"); },
              throws<std::runtime_error>("Error constructing a unit from SI String m^2147483648"));
}

TEST(UnitTextGrammar, HugeTextsNeitherCrashNorChangeTheAnswer) {
  std::string product = "m";
  for (int i = 0; i < 100000; ++i)
    product += "*m";
  EXPECT_TRUE(validateIviUnitString(product));
  EXPECT_EQ(parseUnitsText(product.substr(0, 2001)).type.getDimensions().length(), 1001);
  EXPECT_TRUE(validateIviUnitString("m^1" + std::string(100000, '0')));
  EXPECT_FALSE(validateIviUnitString(std::string(100000, ' ') + "m"));
  EXPECT_FALSE(validateIviUnitString(std::string(100000, '(') + "m"));
  std::string nested = "m";
  for (int i = 0; i < 150; ++i)
    nested = "(" + nested + ")";
  EXPECT_TRUE(validateIviUnitString(nested));
}

struct Example {
  char const *text;
  double scale;
  UnitType const &type;
  double logMultiplier;
};

TEST(UnitTextGrammar, ScalesTypesAndLogMultipliers) {
  Example const examples[] = {
      {"kg", 1.0, UnitType::mass(), 0},
      {"cm^2", 0.01 * 0.01, UnitType::area(), 0},
      {"km^2", 1e6, UnitType::area(), 0},
      {"1/s", 1.0, UnitType::frequency(), 0},
      {"kBq", 1000.0, UnitType::radioactivity(), 0},
      {"km*km*nm", 1000.0 * (1000.0 * 1e-9), UnitType::volume(), 0},  // right-nested rounding
      {"m/(1/s)", 1.0, UnitType::findUnitType(UnitDimensions(1, 0, 1, 0, 0, 0, 0, 0, 0), "m*s"), 0},
      {"dB(mW)", 0.001, UnitType::power(), 10},
      {"dB(\u00B5V)", 1e-06, UnitType::electricPotential(), 20},
      {"dB(A)", 1.0, UnitType::electricCurrent(), 20},
      {"log(V)", 1.0, UnitType::electricPotential(), 1},
      {"", 1.0, UnitType::dimensionless(), 0},
      {"\u00B0C", 1.0, UnitType::dimensionless(), 0},
  };
  for (Example const &example : examples) {
    auto const parsed = parseUnitsText(example.text);
    EXPECT_EQ(parsed.scale, example.scale) << example.text;
    EXPECT_TRUE(parsed.type == example.type) << example.text << " " << parsed.type.getName();
    EXPECT_EQ(parsed.type.getDimensions(), example.type.getDimensions()) << example.text;
    EXPECT_EQ(parsed.logMultiplier, example.logMultiplier) << example.text;
  }
  EXPECT_NE(1000.0 * (1000.0 * 1e-9), (1000.0 * 1000.0) * 1e-9);
}

// The Greek mu reads as the micro sign wherever that is a prefix, and is refused where that is.
TEST(UnitTextGrammar, GreekMuIsTheMicroPrefix) {
  std::string const mu = "\u03BC";
  for (std::string const &pattern :
       std::vector<std::string>{"@V", "@m^2", "kg/(@s*A)", "dB(@V)", "log(@W)"}) {
    std::string greek = pattern, sign = pattern;
    greek.replace(greek.find('@'), 1, mu);
    sign.replace(sign.find('@'), 1, micro);
    EXPECT_TRUE(validateIviUnitString(greek)) << greek;
    auto const a = parseUnitsText(greek), b = parseUnitsText(sign);
    EXPECT_EQ(a.scale, b.scale) << greek;
    EXPECT_TRUE(a.type == b.type) << greek;
    EXPECT_EQ(a.logMultiplier, b.logMultiplier) << greek;
  }
  for (std::string const &text : {mu, mu + mu + "V", mu + "mol", " " + mu + "V", mu + "V" + mu}) {
    EXPECT_FALSE(validateIviUnitString(text)) << text;
    EXPECT_EQ(parse(text), rejected) << text;
  }
  // A digit run past the matched window is followed on the text itself.
  EXPECT_TRUE(validateIviUnitString(mu + "m^2147483648"));
  EXPECT_EQ(parse(mu + "m^2147483648"), exponentBeyondInt);
}

// Texts built from the grammar's own pieces, so that most of them come close to being well-formed.
RC_GTEST_PROP(UnitTextGrammar, ValidatorAgreesWithParser, ()) {
  static char const *const pieces[] = {"m", "k", "g", "s",  "mol", "\u00B5", "V", "dB(", "log(",   "(", ")",
                                       "*", "/", "1", "^2", "^-3", "^0",     " ", "Hz",  "\u00B0", "C"};
  auto const indices = *rc::gen::container<std::vector<std::size_t>>(
      rc::gen::inRange<std::size_t>(0, sizeof(pieces) / sizeof(*pieces)));
  std::string text;
  for (std::size_t index : indices)
    text += pieces[index];
  RC_ASSERT(validateIviUnitString(text) == (parse(text) != rejected));
}

}  // namespace
