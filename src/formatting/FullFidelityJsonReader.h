#pragma once

#include <formatting/JsonDocument.h>

#include <VantraCore/ArrayIndexing.h>
#include <VantraCore/PropertyNode.h>
#include <VantraCore/VxVariant.h>
#include <VantraCore/WellKnownType.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

// The strict reading of the documents that JsonFormatter writes, and the pieces of it that the
// lenient readers complete their documents for.
namespace Tarvex::VantraCore::Internal {

VxVariant readFullVariant(JsonCursor const &cursor, std::size_t at);
PropertyNode readFullNode(JsonCursor const &cursor, std::size_t at);

// What a variant document says of its shape.
struct VariantShape {
  std::vector<std::uint64_t> dimensions;
  DataOrdering ordering;
};

// The variant of kind `type` from `data`, a document's `_data_` (absent reads as null), whatever the
// document's own `_wellknowntype_` says. shapeOf() is asked only for an array `data`.
VxVariant readVariantOfKind(JsonCursor const &cursor, std::size_t data, WellKnownType type,
                            std::function<VariantShape()> const &shapeOf);

// The kind that the string at `at` names.
WellKnownType readKind(JsonCursor const &cursor, std::size_t at);
// An array of unsigned numbers.
std::vector<std::uint64_t> readDimensions(JsonCursor const &cursor, std::size_t at);

// How an unknown `_dataorder_` text is told: `before`, the text, `after`.
struct DataOrderWording {
  char const *before;
  char const *after;
};
// The `_dataorder_` of the object at `object`; row-major when it has none.
DataOrdering readDataOrder(JsonCursor const &cursor, std::size_t object, DataOrderWording wording);

}  // namespace Tarvex::VantraCore::Internal
