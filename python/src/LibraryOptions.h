#pragma once

#include <VantraCore/PropertyNode.h>
#include <VantraCore/Unit.h>
#include <VantraCore/VxString.h>
#include <VantraCore/VxStringView.h>
#include <VantraCore/VxVariant.h>

#include <cstdint>
#include <optional>

namespace vantracore {

// The choices of load, dump and convert that the library makes, each passed to it in one place below.
enum class Fidelity { full, mid, low };
enum class NumberText { roundTrip, fifteenDigits };
enum class ArrayForm { variants, lists };

// None of these needs the GIL. `maxElements` bounds the elements a document may declare beyond those
// it carries; without it, the larger of 16M and sixteen times what a text of its length can carry.
// The text is read where it lies, not copied.
Tarvex::VantraCore::PropertyNode parseDocument(Tarvex::VantraCore::VxStringView text, Fidelity fidelity,
                                               ArrayForm arrays, std::optional<std::uint64_t> maxElements);
Tarvex::VantraCore::VxString writeDocument(Tarvex::VantraCore::PropertyNode const &node, Fidelity fidelity,
                                           int indent, NumberText numbers);
// Every element through the unit formula, whatever the units' SI texts say.
Tarvex::VantraCore::VxVariant convertElements(Tarvex::VantraCore::Experimental::Unit const &from,
                                              Tarvex::VantraCore::Experimental::Unit const &to,
                                              Tarvex::VantraCore::VxVariant const &values);

}  // namespace vantracore
