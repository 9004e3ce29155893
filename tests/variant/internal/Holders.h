#pragma once

// Shape, elements and construction of array holders for the internal holder tests.
#include <VantraCore/detail/VectorVariantData.h>
#include <variant/HolderReference.h>

#include <cstdint>
#include <vector>

namespace HolderTesting {
using namespace Tarvex::VantraCore;
using namespace Tarvex::VantraCore::Internal;
using Dims = std::vector<std::uint64_t>;

inline Dims shapeOf(IVariantData const &holder) {
  return {holder.dimensions().begin(), holder.dimensions().end()};
}
// Every allocated element, spare ones after a shrinking reshape included.
template <class T>
std::vector<T> elementsOf(IVariantData const &holder) {
  auto const *data = static_cast<T const *>(holder.constStoredData());
  return {data, data + holder.numberAllocatedElements()};
}
template <class T>
HolderReference array(std::vector<T> const &values, Dims const &dims, DataOrdering ordering = rowMajor) {
  return HolderReference(
      constructVariantVectorWithDataWithDimsUnresolved<T>(values.data(), values.size(), dims, ordering));
}
}  // namespace HolderTesting
