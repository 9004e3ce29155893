#pragma once

#include <VantraCore/PropertyNode.h>
#include <VantraCore/VxString.h>
#include <VantraCore/VxVariant.h>

#include <iosfwd>

// The strict reader of the full-fidelity documents. The JSON library stays behind these functions.
namespace Tarvex::VantraCore::Internal {

// Deeper nesting is refused while parsing, so that neither parser nor reader can run out of stack.
inline constexpr std::size_t jsonReaderMaxDepth = 1000;

VxVariant readJsonVariant(std::istream &in);
VxVariant readJsonVariant(VxString const &text);
PropertyNode readJsonPropertyNode(std::istream &in);
PropertyNode readJsonPropertyNode(VxString const &text);

}  // namespace Tarvex::VantraCore::Internal
