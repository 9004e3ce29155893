#include "UnitSupport.h"

#include "Errors.h"

#include <locale>
#include <sstream>
#include <stdexcept>

namespace vantra {

using namespace Tarvex::VantraCore;
using Experimental::SystemOfUnits;

Unit lookupUnit(std::string const &text) {
  return withContext("unknown unit " + quoted(text),
                     [&] { return SystemOfUnits::instance().getUnitsFromString(VxString(text)); });
}

std::string dimensionsText(Unit const &unit) {
  return plainText(unit.getUnitType().getDimensions().SIUnitsString());
}

void requireCommensurable(std::string const &fromText, Unit const &from, std::string const &toText,
                          Unit const &to) {
  if (!from.isCommensurable(to))
    throw ToolError("cannot convert " + quoted(fromText) + " to " + quoted(toText) + ": " +
                    dimensionsText(from) + " and " + dimensionsText(to) + " are not commensurable");
}

VxVariant convertElements(VxVariant const &value, Unit const &from, Unit const &to) {
  if (value.isNull()) throw std::invalid_argument("the value is null, not a number");
  WellKnownType const kind = value.wellKnownDataType();
  if (!isNumberKind(kind))
    throw std::invalid_argument("the values are of kind " + std::string(kind.toString()) + ", not numbers");
  return from.convertElements(to, value);
}

std::string numberText(double value) {
  std::ostringstream text;
  text.imbue(std::locale::classic());
  text.precision(12);
  text << value;
  return text.str();
}

}  // namespace vantra
