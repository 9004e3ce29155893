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

}  // namespace Tarvex::VantraCore::Internal::IviUnitImplementation
