#include "UnitSupport.h"

#include "Errors.h"

#include <complex>
#include <cstdint>
#include <locale>
#include <sstream>
#include <stdexcept>
#include <vector>

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

namespace {

// The variant's own conversion takes units with equal SI text for equal units and leaves the values
// as they are ("km/h" and "m/s"); converting element by element always applies scale and offset.
template <class Number>
VxVariant convertEach(VxVariant const &value, Unit const &from, Unit const &to) {
  std::vector<Number> converted;
  converted.reserve(static_cast<std::size_t>(value.numberOfElements()));
  for (Number const &element : value.asIterable<Number>(conversionCast))
    converted.push_back(from.convertTo(to, element));
  if (value.isScalarStorage() && converted.size() == 1) return VxVariant(converted.front());
  ArrayDimensionsView const dims = value.dimensions();
  std::vector<std::uint64_t> shape(dims.sizes, dims.sizes + dims.count);
  if (converted.empty()) return VxVariant::withShape<Number>(std::move(shape), value.dataOrdering());
  return VxVariant(std::move(converted), std::move(shape), value.dataOrdering());
}

// Truth values have a numeric base too, but no unit.
bool isNumberKind(WellKnownType kind) {
  using Internal::WellKnownTypeValue;
  if (kind == WellKnownTypeValue::typeBool || kind == WellKnownTypeValue::typeComplexBool) return false;
  return (static_cast<std::uint16_t>(kind.value()) & Internal::wellKnownTypeNumericBaseMask) != 0;
}

}  // namespace

VxVariant convertElements(VxVariant const &value, Unit const &from, Unit const &to) {
  if (value.isNull()) throw std::invalid_argument("the value is null, not a number");
  WellKnownType const kind = value.wellKnownDataType();
  if (!isNumberKind(kind))
    throw std::invalid_argument("the values are of kind " + std::string(kind.toString()) + ", not numbers");
  if (static_cast<std::uint16_t>(kind.value()) & Internal::wellKnownTypeComplexBit)
    return convertEach<std::complex<double>>(value, from, to);
  return convertEach<double>(value, from, to);
}

std::string numberText(double value) {
  std::ostringstream text;
  text.imbue(std::locale::classic());
  text.precision(12);
  text << value;
  return text.str();
}

}  // namespace vantra
