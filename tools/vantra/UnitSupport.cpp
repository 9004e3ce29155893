#include "UnitSupport.h"

#include "Errors.h"

#include <charconv>
#include <locale>
#include <sstream>
#include <stdexcept>
#include <vector>

namespace vantra {

using namespace Tarvex::VantraCore;
using Experimental::SystemOfUnits;

namespace {

// The unit names in a unit text: what stands between its operators, exponents and parentheses.
std::vector<std::string> namesIn(std::string const &text) {
  std::vector<std::string> names;
  std::string name;
  bool exponent = false;
  for (char const c : text + "*") {
    bool const separator = c == '*' || c == '/' || c == '^' || c == '(' || c == ')' || c == ' ';
    if (!separator) {
      if (!exponent) name += c;
      continue;
    }
    if (!name.empty()) names.push_back(name);
    name.clear();
    exponent = c == '^';
  }
  return names;
}

bool isName(std::string const &text, Unit *unit = nullptr) {
  try {
    Unit const named = SystemOfUnits::instance().getUnitsByName(VxString(text));
    if (unit != nullptr) *unit = named;
    return true;
  } catch (std::exception const &) {
    return false;
  }
}

}  // namespace

Unit lookupUnit(std::string const &text) {
  Unit named;
  if (isName(text, &named)) return named;
  Unit const unit = withContext("unknown unit " + quoted(text),
                                [&] { return SystemOfUnits::instance().getUnitsFromString(VxString(text)); });
  for (std::string const &name : namesIn(text)) {
    Unit part;
    if (isName(name, &part) && part.getOffset() != 0.0)
      throw ToolError("cannot use " + quoted(text) + ": " + quoted(name) +
                      " has an offset, which a compound unit cannot apply; convert to K first");
  }
  return unit;
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

void requireFiniteLogarithm(VxVariant const &value, Unit const &from, std::string const &fromText,
                            Unit const &to, std::string const &toText, std::string const &where) {
  if (!to.isLogarithmic() || from.isLogarithmic() || !isNumberKind(value.wellKnownDataType()) ||
      isComplexKind(value.wellKnownDataType()))
    return;
  // The values as doubles in their own unit: the same numbers, whatever their kind.
  VxVariant const numbers = from.convertElements(from, value);
  std::uint64_t position = 0;
  for (double const number : numbers.asIterable<double>()) {
    if (number <= 0.0)
      throw ToolError("cannot convert " + where + " to " + quoted(toText) + ": element " +
                      std::to_string(position) + " is " + shortestText(number) + " " + fromText +
                      ", whose logarithm is not finite (--allow-nonfinite converts it all the same)");
    ++position;
  }
}

VxVariant convertElements(VxVariant const &value, Unit const &from, Unit const &to) {
  if (value.isNull()) throw std::invalid_argument("the value is null, not a number");
  WellKnownType const kind = value.wellKnownDataType();
  if (!isNumberKind(kind))
    throw std::invalid_argument("the values are of kind " + std::string(kind.toString()) + ", not numbers");
  return from.convertElements(to, value);
}

PropertyNode *siblingUnit(PropertyNode *parent) {
  if (parent == nullptr || parent->kind() != PropertyNodeKind::Map) return nullptr;
  auto const entry = parent->map().find(InternedString("unit"));
  return entry == parent->map().end() ? nullptr : &entry->node;
}

std::string unitText(PropertyNode const &unit, std::string const &where) {
  if (unit.kind() == PropertyNodeKind::Value && unit.value().isType<VxString>() &&
      unit.value().numberOfElements() == 1)
    return plainText(unit.value().get<VxString>());
  throw ToolError("the \"unit\" beside " + where + " is not a text");
}

std::string numberText(double value) {
  std::ostringstream text;
  text.imbue(std::locale::classic());
  text.precision(12);
  text << value;
  return text.str();
}

std::string shortestText(double value) {
  char text[32];
  auto const end = std::to_chars(text, text + sizeof text, value).ptr;
  return std::string(text, end);
}

}  // namespace vantra
