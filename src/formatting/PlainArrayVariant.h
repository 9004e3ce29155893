#pragma once

#include <formatting/JsonDocument.h>

#include <VantraCore/VxVariant.h>

#include <cstddef>

namespace Tarvex::VantraCore::Internal {

// Arrays nest at most this deep in a plain variant.
inline constexpr std::size_t plainJsonMaxRank = 8;

// The array variant that the plain JSON array at `at` makes when a tree reads arrays as variants;
// false for an array that stays a list: empty, mixed, ragged, too deep, or holding objects or nulls.
bool readArrayVariant(JsonCursor const &cursor, std::size_t at, VxVariant &result);

}  // namespace Tarvex::VantraCore::Internal
