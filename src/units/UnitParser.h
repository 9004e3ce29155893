#pragma once

#include <VantraCore/UnitType.h>

#include <string_view>

namespace Tarvex::VantraCore::Internal::IviUnitImplementation {

// What a whole unit text stands for.
struct ParsedUnitText {
  Experimental::UnitType type;
  double scale = 1.0;
  double logMultiplier = 0.0;
};

// The whole text: empty, "dB(" expression ")", "log(" expression ")" or an expression. Throws
// std::runtime_error "Invalid units string <text>", and std::out_of_range "stoi argument out of range"
// for an exponent beyond int. May register a new unit type for dimensions nobody has named yet.
ParsedUnitText parseUnitsText(std::string_view text);

inline std::string_view viewOf(VxString const &text) noexcept {
  return std::string_view(text.data(), text.size());
}

// std::runtime_error with `message` followed by `text`.
[[noreturn]] void throwWithText(char const *message, std::string_view text);

// The grammar's steps. Each reads from the start of `s`, fills dimensions and scale and the unread
// rest, and answers whether it matched. `scale` should start at 1.0: the bare "1" keeps it.
bool parseUnitExpression(std::string_view s, Experimental::UnitDimensions &dims, double &scale,
                         std::string_view &rest);
bool parseUnitProduct(std::string_view s, Experimental::UnitDimensions &dims, double &scale,
                      std::string_view &rest);
bool parseUnitFactor(std::string_view s, Experimental::UnitDimensions &dims, double &scale,
                     std::string_view &rest);
bool parseUnitAtom(std::string_view s, Experimental::UnitDimensions &dims, double &scale,
                   std::string_view &rest);

}  // namespace Tarvex::VantraCore::Internal::IviUnitImplementation
