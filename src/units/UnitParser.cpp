#include <units/UnitParser.h>

#include <units/UnitGrammar.h>

#include <VantraCore/Unit.h>

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <stdexcept>
#include <string>

namespace Tarvex::VantraCore::Internal::IviUnitImplementation {

using Experimental::Unit;
using Experimental::UnitDimensions;
using Experimental::UnitType;

namespace {

struct PrefixRow {
  std::string_view symbol;
  char const *name;
  int exponent;
};

constexpr PrefixRow s_prefixes[] = {
    {"Y", "yatto", 24}, {"Z", "zetta", 21},  {"E", "exa", 18},   {"P", "peta", 15},       {"T", "tera", 12},
    {"G", "giga", 9},   {"M", "mega", 6},    {"k", "kilo", 3},   {"h", "hecto", 2},       {"da", "deca", 1},
    {"d", "deci", -1},  {"c", "centi", -2},  {"m", "milli", -3}, {"\u00B5", "micro", -6}, {"n", "nano", -9},
    {"p", "pico", -12}, {"f", "femto", -15}, {"a", "atto", -18}, {"z", "zetto", -21},     {"y", "yacto", -24},
};

struct UnitSymbolRow {
  std::string_view symbol;
  char const *name;
  UnitType const *type;
  double scale;
};

// Rows for "mol", "sr", "Wb" and "Sv" are kept although the pattern's order never reaches them.
UnitSymbolRow const s_unitSymbols[] = {
    {"m", "meters", &UnitType::s_length, 1},
    {"g", "grams", &UnitType::s_mass, 0.001},
    {"s", "seconds", &UnitType::s_time, 1},
    {"A", "amperes", &UnitType::s_electricCurrent, 1},
    {"K", "kelvins", &UnitType::s_thermodynamicTemperature, 1},
    {"mol", "moles", &UnitType::s_amountOfSubstance, 1},
    {"cd", "candelas", &UnitType::s_luminousIntensity, 1},
    {"Hz", "hertz", &UnitType::s_frequency, 1},
    {"N", "newtons", &UnitType::s_force, 1},
    {"Pa", "pascals", &UnitType::s_pressure, 1},
    {"J", "joules", &UnitType::s_energy, 1},
    {"W", "watts", &UnitType::s_power, 1},
    {"C", "coulombs", &UnitType::s_electricCharge, 1},
    {"V", "volts", &UnitType::s_electricPotential, 1},
    {"F", "farads", &UnitType::s_electricCapacitance, 1},
    {"\u03A9", "ohms", &UnitType::s_electricResistance, 1},
    {"S", "siemens", &UnitType::s_conductance, 1},
    {"Wb", "webers", &UnitType::s_magneticFlux, 1},
    {"T", "teslas", &UnitType::s_magneticFluxDensity, 1},
    {"H", "henries", &UnitType::s_inductance, 1},
    {"lm", "lumens", &UnitType::s_luminousFlux, 1},
    {"lx", "lux", &UnitType::s_illuminance, 1},
    {"Bq", "becquerels", &UnitType::s_radioactivity, 1},
    {"Gy", "grays", &UnitType::s_absorbedDose, 1},
    {"Sv", "seiverts", &UnitType::s_equivalentDose, 1},
    {"kat", "katals", &UnitType::s_catalyticActivity, 1},
    {"l", "liters", &UnitType::s_volume, 0.001},
    {"L", "liters", &UnitType::s_volume, 0.001},
    {"rad", "radians", &UnitType::s_planeAngle, 1},
    {"deg", "degrees", &UnitType::s_planeAngle, 0.017453292519943295},
    {"sr", "steradians", &UnitType::s_solidAngle, 1},
};

// `std::stoi` of "[+-]?[1-9][0-9]*": the pattern guarantees the digits, so only the range can fail.
int exponentValue(std::string_view digits) {
  if (!digits.empty() && digits.front() == '+') digits.remove_prefix(1);
  int value = 0;
  auto const [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (error == std::errc::result_out_of_range) throw std::out_of_range("stoi argument out of range");
  static_cast<void>(end);
  return value;
}

// The parser's policy: dimensions and scale.
struct Quantity {
  struct Value {
    UnitDimensions dimensions;
    double scale = 1.0;
  };

  static void atom(UnitAtomGroups const &groups, Value &value) {
    double b = 1.0;
    UnitDimensions d;
    if (!groups.prefix.empty()) {
      for (PrefixRow const &row : s_prefixes) {
        if (row.symbol == groups.prefix) {
          b = std::pow(10.0, row.exponent);
          break;
        }
      }
    }
    // "°" and "°C" have no row: they stay dimensionless and keep only the prefix's factor.
    for (UnitSymbolRow const &row : s_unitSymbols) {
      if (row.symbol == groups.unit) {
        d = row.type->getDimensions();
        b *= row.scale;
        break;
      }
    }
    if (!groups.exponent.empty()) {
      int const n = exponentValue(groups.exponent.substr(1));
      if (b != 1.0) b = n == 2 ? b * b : std::pow(b, n);
      d = d ^ n;
    }
    value.dimensions = d;
    value.scale = b;
  }
  static void one(Value &value) noexcept { value.dimensions = UnitDimensions(); }
  static void multiply(Value &left, Value const &right) noexcept {
    left.dimensions = left.dimensions * right.dimensions;
    left.scale *= right.scale;
  }
  static void divide(Value &left, Value const &right) noexcept {
    left.dimensions = left.dimensions / right.dimensions;
    left.scale /= right.scale;
  }
};

using Parser = UnitGrammar<Quantity>;

// Runs one grammar step on the public types of the step functions.
template <class Step>
bool runStep(Step step, std::string_view s, UnitDimensions &dims, double &scale, std::string_view &rest) {
  Quantity::Value value{dims, scale};
  bool const matched = step(s, value, rest);
  dims = value.dimensions;
  scale = value.scale;
  return matched;
}

}  // namespace

[[noreturn]] void throwWithText(char const *message, std::string_view text) {
  throw std::runtime_error(std::string(message).append(text.data(), text.size()));
}

bool parseUnitExpression(std::string_view s, UnitDimensions &dims, double &scale, std::string_view &rest) {
  return runStep([](auto &&...args) { return Parser::expression(args..., 0); }, s, dims, scale, rest);
}

bool parseUnitProduct(std::string_view s, UnitDimensions &dims, double &scale, std::string_view &rest) {
  return runStep([](auto &&...args) { return Parser::product(args..., 0); }, s, dims, scale, rest);
}

bool parseUnitFactor(std::string_view s, UnitDimensions &dims, double &scale, std::string_view &rest) {
  return runStep([](auto &&...args) { return Parser::factor(args..., 0); }, s, dims, scale, rest);
}

bool parseUnitAtom(std::string_view s, UnitDimensions &dims, double &scale, std::string_view &rest) {
  return runStep([](auto &&...args) { return Parser::atom(args...); }, s, dims, scale, rest);
}

ParsedUnitText parseUnitsText(std::string_view text) {
  Quantity::Value value;
  UnitTextForm form;
  if (!Parser::text(text, value, form)) throwWithText("Invalid units string ", text);
  ParsedUnitText parsed;
  parsed.scale = value.scale;
  if (form == UnitTextForm::empty) {
    parsed.type = UnitType::dimensionless();
    return parsed;
  }
  parsed.type = UnitType::findUnitType(value.dimensions, VxString(text.data(), text.size()));
  if (form == UnitTextForm::decibel) {
    parsed.logMultiplier = UnitType::getDBType(parsed.type) == UnitType::dbAmplitude ? 20.0 : 10.0;
  } else if (form == UnitTextForm::logarithm) {
    parsed.logMultiplier = 1.0;
  }
  return parsed;
}

}  // namespace Tarvex::VantraCore::Internal::IviUnitImplementation

namespace Tarvex::VantraCore::Experimental {

using Internal::IviUnitImplementation::throwWithText;
using Internal::IviUnitImplementation::viewOf;

void Unit::parseAndSetSiUnits(VxString const &text) {
  try {
    auto const parsed = Internal::IviUnitImplementation::parseUnitsText(viewOf(text));
    setUnitType(parsed.type);
    setOffset(0.0);
    setScale(parsed.scale);
    setLogMultiplier(parsed.logMultiplier);
    setSiUnits(text);
  } catch (...) {
    throwWithText("Invalid units string ", viewOf(text));
  }
}

Unit Unit::fromIviUnitString(VxString const &text) {
  Unit unit;
  // Parsing writes into a null node, which fixes the stored key order of a unit read from text.
  unit.m_node = PropertyNode();
  try {
    unit.parseAndSetSiUnits(text);
    unit.setDisplayUnit(text);
    unit.setUnitTypeReferenceString(unit.m_unitType.getReferenceSIString());
  } catch (...) {
    throwWithText("Error constructing a unit from SI String ", viewOf(text));
  }
  return unit;
}

Unit UnitType::getBaseMKSUnits() const {
  return Unit::fromIviUnitString(m_referenceSi);
}

}  // namespace Tarvex::VantraCore::Experimental
