#pragma once

#include <VantraCore/ArrayIndexing.h>
#include <VantraCore/Export.h>
#include <VantraCore/detail/IVariantData.h>

#include <cstdint>
#include <vector>

// The factories of the array holders. Each returns a holder with one reference, the caller's. They
// exist for every element kind T; the moved-vector factory for all but bool.
namespace Tarvex::VantraCore::Internal {

// An array of `count` elements copied from `data` (strings shared). A shape without entries becomes
// [count] when count is not 0. Throws std::length_error "dimensions do not match data length" when the
// shape's element count is not `count`.
template <class T>
VANTRACORE_API IVariantData *constructVariantVectorWithDataWithDimsUnresolved(void const *data,
                                                                              std::uint64_t count,
                                                                              ArrayDimensionsView dimensions,
                                                                              DataOrdering ordering);

// An array of the shape's element count (0 for a shape without entries), all default-valued: zero, or
// the empty string.
template <class T>
VANTRACORE_API IVariantData *constructVariantVectorWithoutDataWithDimsUnresolved(
    ArrayDimensionsView dimensions, DataOrdering ordering);

// An array that takes over the vector's buffer without copying. A shape without elements (no entries,
// or a 0 among them) becomes [data.size()] when the vector is not empty. Throws std::length_error
// "dimensions do not match data length" when the shape's element count is not the vector's size.
template <class T>
VANTRACORE_API IVariantData *constructVariantDataFromMovedVector(std::vector<T> data,
                                                                 ArrayDimensionsView dimensions,
                                                                 DataOrdering ordering);
// std::vector<bool> keeps no contiguous block of bool.
template <>
IVariantData *constructVariantDataFromMovedVector<bool>(std::vector<bool>, ArrayDimensionsView,
                                                        DataOrdering) = delete;

}  // namespace Tarvex::VantraCore::Internal
