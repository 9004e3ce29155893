#pragma once

#include <VantraCore/Export.h>
#include <VantraCore/VxString.h>

namespace Tarvex::VantraCore::Internal::IviUnitImplementation {

// True when `text` is a well-formed unit string such as "mV", "kg*m/(s^2*A)", "dB(mW)" or "log(V)";
// the empty text is one. Only the form is checked: an exponent beyond int passes here and fails when
// the text is parsed into a unit. Never throws for a bad text.
VANTRACORE_API bool validateIviUnitString(VxString const &text);

}  // namespace Tarvex::VantraCore::Internal::IviUnitImplementation
