#pragma once

#include <VantraCore/VantraCore.h>

#include <string>

namespace vantra {

using Unit = Tarvex::VantraCore::Experimental::Unit;

// The unit a person typed: a name of the system of units ("mV", "kOhm", "Celsius") or a unit text
// ("kg*m/s^2", "dB(mW)"). ToolError "unknown unit '<text>': ..." when it is neither.
Unit lookupUnit(std::string const &text);

// ToolError naming both texts and their dimensions unless `from` converts to `to`.
void requireCommensurable(std::string const &fromText, Unit const &from, std::string const &toText,
                          Unit const &to);

// Every element of `value` converted from `from` to `to` in one pass, with scale, offset and logarithm
// applied to each, as doubles (complex doubles for complex kinds) of the same shape and ordering.
// Elements that are not numbers throw std::invalid_argument naming their kind.
Tarvex::VantraCore::VxVariant convertElements(Tarvex::VantraCore::VxVariant const &value, Unit const &from,
                                              Unit const &to);

// The bytes of a library string.
inline std::string plainText(Tarvex::VantraCore::VxString const &text) {
  return std::string(text.data(), text.length());
}

// A number for people, at 12 significant digits: at the documents' 15, unit arithmetic shows its
// rounding (-40 degrees Celsius would read -40.0000000000001 degrees Fahrenheit).
std::string numberText(double value);

// The unit's dimensions as SI text: "kg*m/s^2" reads "m*kg/s^2".
std::string dimensionsText(Unit const &unit);

}  // namespace vantra
