// Unit texts: the validator and the parser must agree on every text, except that an exponent beyond
// int passes the validator and fails the parser. Whatever parses converts numbers and variants without
// crashing, and the lenient lookup of the system of units fails only by exception.
#include <VantraCore/SystemOfUnits.h>
#include <VantraCore/Unit.h>
#include <VantraCore/UnitString.h>
#include <VantraCore/UnitType.h>
#include <VantraCore/VxVariant.h>

#include <cmath>
#include <complex>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <limits>
#include <stdexcept>
#include <string_view>
#include <vector>

using namespace Tarvex::VantraCore;
using namespace Tarvex::VantraCore::Experimental;

namespace {

// True when some "^" is followed by a signed run of digits whose value does not fit an int.
bool hasExponentBeyondInt(std::string_view text) {
  for (std::size_t at = text.find('^'); at != std::string_view::npos; at = text.find('^', at + 1)) {
    std::size_t i = at + 1;
    bool const negative = i < text.size() && text[i] == '-';
    if (i < text.size() && (text[i] == '+' || text[i] == '-')) ++i;
    long long value = 0;
    for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i) {
      value = value * 10 + (text[i] - '0');
      if (value > std::numeric_limits<int>::max() + 1LL) break;
    }
    if (value > std::numeric_limits<int>::max() + (negative ? 1LL : 0LL)) return true;
  }
  return false;
}

// A few samples, real and complex, through both variant conversions to a unit of the same text and
// to the volt; only the two specified messages may refuse them.
void convertSamples(Unit const &unit) {
  VxVariant const samples[] = {VxVariant(std::vector<double>{1, -2.5, 1e300}, {3}),
                               VxVariant(std::vector<std::complex<double>>{{1, 2}, {0, -1}}, {2}),
                               VxVariant(std::vector<std::int32_t>{1, -2, 7}, {3}),
                               VxVariant(2.5),
                               VxVariant(std::vector<VxString>{VxString("1")}, {1}),
                               VxVariant()};
  Unit const targets[] = {unit, Unit::fromIviUnitString(VxString("V"))};
  for (VxVariant const &value : samples)
    for (Unit const &target : targets) {
      try {
        static_cast<void>(unit.convertTo(target, value));
        static_cast<void>(unit.convertElements(target, value));
      } catch (std::runtime_error const &error) {
        std::string_view const message(error.what());
        if (message.rfind("Failed convering units from ", 0) != 0 &&
            message.rfind("To units are not commensurable - from: ", 0) != 0)
          std::abort();
      }
    }
}

// Units compare their numbers as doubles: one whose scale overflowed to NaN ("km^400/km^400") is not
// equal to itself, and is known by its label instead.
bool isItself(Unit const &found, Unit const &unit) {
  if (!std::isnan(unit.getScale())) return found == unit;
  return std::isnan(found.getScale()) && found.getUnitsLabel() == unit.getUnitsLabel();
}

// What else a parsed unit answers: its type's reference text leads back to a type of that text, its
// base unit is read from that text when the grammar reads it, and the combined units carry the
// combined dimensions.
void typeAndCombinations(Unit const &unit) {
  UnitType const &type = unit.getUnitType();
  VxString const reference = type.getReferenceSIString();
  if (UnitType::findByReferenceSiString(reference).getReferenceSIString() != reference) std::abort();
  try {
    static_cast<void>(type.getBaseMKSUnits());
  } catch (std::runtime_error const &error) {
    // A reference text the grammar does not read, such as one holding "mol".
    if (std::string_view(error.what()).rfind("Error constructing a unit from SI String ", 0) != 0)
      std::abort();
  }
  static_cast<void>(SystemOfUnits::instance().getUnitNames(type).size() + unit.isDimensionless() +
                    unit.isLogarithmic());
  static_cast<void>(unit.convertTo(unit, std::complex<double>(1, -2)));  // commensurable with itself
  try {
    static_cast<void>(unit.convertTo(Unit::fromIviUnitString(VxString("V")), std::complex<double>(1, -2)));
  } catch (std::runtime_error const &error) {
    if (std::string_view(error.what()).rfind("Units V is not Commensurable to ", 0) != 0) std::abort();
  }
  UnitDimensions const dims = type.getDimensions();
  if (!((unit * unit).getUnitType().getDimensions() == dims * dims) ||
      !((unit / unit).getUnitType().getDimensions() == UnitDimensions()) ||
      !((unit ^ 2).getUnitType().getDimensions() == (dims ^ 2)))
    std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
  VxString const text(reinterpret_cast<char const *>(data), size);
  try {
    bool const valid = Internal::IviUnitImplementation::validateIviUnitString(text);
    bool parsed = false;
    try {
      Unit const unit = Unit::fromIviUnitString(text);
      parsed = true;
      static_cast<void>(unit.convertTo(unit, 1.0));
      static_cast<void>(unit.convertTo(Unit::fromIviUnitString(VxString("V")), 2.0));
      static_cast<void>(unit.getSiUnits().size() + unit.getDisplayUnit().size() +
                        unit.getUnitsLabel().size() + unit.getUnitTypeReferenceString().size());
    } catch (std::runtime_error const &) {
    }
    if (parsed) {
      Unit const unit = Unit::fromIviUnitString(text);
      convertSamples(unit);
      typeAndCombinations(unit);
      // The units of its kind in the system: the first is the unit itself.
      if (!isItself(SystemOfUnits::instance().getCompatibleUnits(unit).front(), unit)) std::abort();
    }
    if (parsed && !valid) std::abort();
    if (valid && !parsed && !hasExponentBeyondInt(std::string_view(text.data(), text.size()))) std::abort();
    try {
      static_cast<void>(SystemOfUnits::instance().getUnitsFromString(text));
    } catch (std::exception const &) {
    }
  } catch (...) {
    std::abort();
  }
  return 0;
}
