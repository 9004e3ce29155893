#include <units/UnitParser.h>

#include <units/UnitGrammar.h>
#include <units/UnitSymbols.h>

#include <charconv>
#include <cmath>
#include <stdexcept>
#include <string>

namespace Tarvex::VantraCore::Internal::IviUnitImplementation {

using Experimental::UnitDimensions;
using Experimental::UnitType;

namespace {

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
      std::string_view const prefix = groups.prefix == s_greekMu ? s_microSign : groups.prefix;
      for (PrefixRow const &row : s_prefixes) {
        if (row.symbol == prefix) {
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

}  // namespace

[[noreturn]] void throwWithText(char const *message, std::string_view text) {
  throw std::runtime_error(std::string(message).append(text.data(), text.size()));
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
