#pragma once

#include <formatting/JsonDocument.h>

#include <VantraCore/PropertyNode.h>
#include <VantraCore/VxVariant.h>

#include <cstddef>

// The readers of JSON from elsewhere: plain JSON by inference (low fidelity), and documents whose
// metadata may be missing (mid fidelity).
namespace Tarvex::VantraCore::Internal {

// Arrays nest at most this deep in a plain variant.
inline constexpr std::size_t plainJsonMaxRank = 8;

VxVariant readPlainVariant(JsonCursor const &cursor, std::size_t at);
PropertyNode readPlainNode(JsonCursor const &cursor, std::size_t at);
VxVariant readLenientVariant(JsonCursor const &cursor, std::size_t at);
PropertyNode readLenientNode(JsonCursor const &cursor, std::size_t at);

}  // namespace Tarvex::VantraCore::Internal
