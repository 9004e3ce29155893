#pragma once

#include <VantraCore/WellKnownType.h>

#include <cstdint>

namespace Tarvex::VantraCore::Internal {

// Converts the run of `count` elements at `source` into the run at `target`, whose elements are
// constructed, though those of kinds without construction may hold anything. A run that succeeds
// writes every element. False when the policy refuses the pair or an element; a lossless run then
// stops at the first element that fails the test, and the target is left to be thrown away.
using ElementConverter = bool (*)(void const *source, void *target, std::uint64_t count,
                                  ConversionPolicy policy);

// The converter of the ordered pair (source kind, target kind). Selects on the source kind and then on
// the target kind, each in the fixed order of the kind dispatch: a code with a numeric base that names
// no kind throws std::runtime_error "not a numeric type", any other unknown code (customType and none
// among them) "unknown type".
ElementConverter elementConverter(WellKnownType source, WellKnownType target);

}  // namespace Tarvex::VantraCore::Internal
