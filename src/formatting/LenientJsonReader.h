#pragma once

#include <VantraCore/PropertyNode.h>
#include <VantraCore/VxVariant.h>

#include <formatting/JsonDocument.h>

#include <cstddef>

// The readers that take JSON from elsewhere: plain JSON by inference (low fidelity), and documents
// whose metadata may be missing (mid fidelity).
namespace Tarvex::VantraCore::Internal {

// Arrays nest at most this deep in a plain variant.
inline constexpr std::size_t plainJsonMaxRank = 8;

VxVariant readPlainVariant(JsonDocumentReader const &reader, std::size_t at);
PropertyNode readPlainNode(JsonDocumentReader const &reader, std::size_t at);
VxVariant readLenientVariant(JsonDocumentReader const &reader, std::size_t at);
PropertyNode readLenientNode(JsonDocumentReader const &reader, std::size_t at);

}  // namespace Tarvex::VantraCore::Internal
