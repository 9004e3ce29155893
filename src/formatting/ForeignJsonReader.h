#pragma once

#include <formatting/JsonDocument.h>
#include <formatting/PlainArrayVariant.h>

#include <VantraCore/PropertyNode.h>
#include <VantraCore/VxVariant.h>

#include <cstddef>

// The readers of JSON from elsewhere: plain JSON by inference (low fidelity), and documents whose
// metadata may be missing (mid fidelity). A tree reads plain arrays as the cursor's reading asks.
namespace Tarvex::VantraCore::Internal {

VxVariant readPlainVariant(JsonCursor const &cursor, std::size_t at);
PropertyNode readPlainNode(JsonCursor const &cursor, std::size_t at);
VxVariant readLenientVariant(JsonCursor const &cursor, std::size_t at);
PropertyNode readLenientNode(JsonCursor const &cursor, std::size_t at);

}  // namespace Tarvex::VantraCore::Internal
