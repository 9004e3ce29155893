#include "UnitCompanion.h"

#include <VantraCore/detail/ElementKinds.h>
#include <VantraCore/SystemOfUnits.h>
#include <VantraCore/Unit.h>
#include <text/TransportGuard.h>

#include <cstdint>
#include <vector>

using namespace Tarvex::VantraCore;
using Tarvex::VantraCore::Experimental::SystemOfUnits;

namespace {

// No conversion between the two variant flavours is exported: the elements are copied over.
template <class To, class From>
To copyVariant(From const &value) {
  if (value.isNull()) return To();
  ArrayDimensionsView const dims = value.dimensions();
  std::vector<std::uint64_t> const shape(dims.begin(), dims.end());
  return Internal::dispatchWellKnownType(value.wellKnownDataType(), [&](auto tag) {
    using T = typename decltype(tag)::type;
    if (value.isScalarStorage()) return To(value.template at<T>(0));
    return To(value.template constStoredData<T>(), value.numberOfElements(), shape, value.dataOrdering());
  });
}

}  // namespace

extern "C" void AbiCompanion_convertUnits(Internal::TransportRecord *record, VxVariantAbi const *value,
                                          VxString const *from, VxString const *to,
                                          VxVariantAbi *result) noexcept {
  Internal::guardTransport(record, [&] {
    SystemOfUnits const &units = SystemOfUnits::instance();
    VxVariant const converted = units.getUnitsFromString(*from).convertTo(units.getUnitsFromString(*to),
                                                                          copyVariant<VxVariant>(*value));
    *result = copyVariant<VxVariantAbi>(converted);
  });
}
