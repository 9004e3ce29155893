#pragma once

#include <VantraCore/VantraCore.h>

#include <string>

namespace vantra {

using Unit = Tarvex::VantraCore::Experimental::Unit;

// The unit a person typed: a name of the system of units ("mV", "kOhm", "Celsius") or a unit text
// ("kg*m/s^2", "dB(mW)"). ToolError "unknown unit '<text>': ..." when it is neither, and a refusal when
// a unit text holds a unit with an offset (°C, °F), whose offset a compound cannot apply.
Unit lookupUnit(std::string const &text);

// ToolError naming both texts and their dimensions unless `from` converts to `to`.
void requireCommensurable(std::string const &fromText, Unit const &from, std::string const &toText,
                          Unit const &to);

// ToolError when converting `value` from a linear to a logarithmic unit meets zero or a negative
// number, whose logarithm is not finite. `where` names the value for the message.
void requireFiniteLogarithm(Tarvex::VantraCore::VxVariant const &value, Unit const &from,
                            std::string const &fromText, Unit const &to, std::string const &toText,
                            std::string const &where);

// Every element of `value` converted from `from` to `to` in one pass, with scale, offset and logarithm
// applied to each, as doubles (complex doubles for complex kinds) of the same shape and ordering.
// Elements that are not numbers throw std::invalid_argument naming their kind.
Tarvex::VantraCore::VxVariant convertElements(Tarvex::VantraCore::VxVariant const &value, Unit const &from,
                                              Unit const &to);

// The "unit" entry of `parent`, or nullptr when it is no map or has none.
Tarvex::VantraCore::PropertyNode *siblingUnit(Tarvex::VantraCore::PropertyNode *parent);

// The text of a "unit" entry, or ToolError naming `where` when it holds no text.
std::string unitText(Tarvex::VantraCore::PropertyNode const &unit, std::string const &where);

// The bytes of a library string.
inline std::string plainText(Tarvex::VantraCore::VxString const &text) {
  return std::string(text.data(), text.length());
}

// A number for tables, at 12 significant digits: at the documents' 15, unit arithmetic shows its
// rounding (-40 degrees Celsius would read -40.0000000000001 degrees Fahrenheit).
std::string numberText(double value);

// The shortest text that reads back as the same double.
std::string shortestText(double value);

// The unit's dimensions as SI text: "kg*m/s^2" reads "m*kg/s^2".
std::string dimensionsText(Unit const &unit);

}  // namespace vantra
