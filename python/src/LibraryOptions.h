#pragma once

#include <VantraCore/PropertyNode.h>
#include <VantraCore/Unit.h>
#include <VantraCore/VxString.h>
#include <VantraCore/VxVariant.h>

namespace vantracore {

// The choices of load, dump and convert that the library makes, each passed to it in one place below.
enum class Fidelity { full, mid, low };
enum class NumberText { roundTrip, fifteenDigits };
enum class ArrayForm { variants, lists };

// None of these needs the GIL.
Tarvex::VantraCore::PropertyNode parseDocument(Tarvex::VantraCore::VxString const &text, Fidelity fidelity,
                                               ArrayForm arrays);
Tarvex::VantraCore::VxString writeDocument(Tarvex::VantraCore::PropertyNode const &node, Fidelity fidelity,
                                           int indent, NumberText numbers);
// Every element through the unit formula, whatever the units' SI texts say.
Tarvex::VantraCore::VxVariant convertElements(Tarvex::VantraCore::Experimental::Unit const &from,
                                              Tarvex::VantraCore::Experimental::Unit const &to,
                                              Tarvex::VantraCore::VxVariant const &values);

}  // namespace vantracore
