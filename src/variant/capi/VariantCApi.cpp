#include <VantraCore/detail/ElementKinds.h>
#include <VantraCore/detail/IVariantData.h>
#include <VantraCore/detail/ScalarVariantData.h>
#include <VantraCore/VariantCApi.h>
#include <VantraCore/detail/VectorVariantData.h>
#include <text/TransportGuard.h>

#include <cstdint>
#include <stdexcept>

using namespace Tarvex::VantraCore;
using namespace Tarvex::VantraCore::Internal;

namespace {

// A null holder is a caller's mistake that would otherwise crash behind the boundary.
template <class Holder>
Holder *checked(Holder *data) {
  if (data == nullptr) throw std::invalid_argument("VxVariant data is null");
  return data;
}

WellKnownType kindOf(std::uint16_t code) {
  return WellKnownType(static_cast<WellKnownTypeValue>(code));
}

DataOrdering orderingOf(std::uint32_t ordering) {
  return static_cast<DataOrdering>(ordering);
}

}  // namespace

extern "C" {

VxVariantData *VxVariantData_C_API_constructNull(void) noexcept {
  // The C functions' own null holder, never destroyed.
  static NullVariantData *const instance = new NullVariantData;
  return instance;
}

VxVariantData *VxVariantData_C_API_constructScalar(VxTransportRecord *record, void const *value,
                                                   uint16_t kind) noexcept {
  return guardTransport(record, [&] {
    return dispatchWellKnownType(kindOf(kind), [&](auto tag) {
      using T = typename decltype(tag)::type;
      return constructVariantScalar<T>(nullptr, 0, *static_cast<T const *>(checked(value)));
    });
  });
}

VxVariantData *VxVariantData_C_API_constructArray(VxTransportRecord *record, void const *data, uint16_t kind,
                                                  uint64_t count, VxArrayDimensionsView dimensions,
                                                  uint32_t ordering) noexcept {
  return guardTransport(record, [&] {
    return dispatchWellKnownType(kindOf(kind), [&](auto tag) {
      using T = typename decltype(tag)::type;
      return constructVariantVectorWithDataWithDimsUnresolved<T>(data, count, dimensions,
                                                                 orderingOf(ordering));
    });
  });
}

VxVariantData *VxVariantData_C_API_createWithAllocatedArray(VxTransportRecord *record, uint16_t kind,
                                                            VxArrayDimensionsView dimensions,
                                                            uint32_t ordering) noexcept {
  return guardTransport(record, [&] {
    return dispatchWellKnownType(kindOf(kind), [&](auto tag) {
      using T = typename decltype(tag)::type;
      return constructVariantVectorWithoutDataWithDimsUnresolved<T>(dimensions, orderingOf(ordering));
    });
  });
}

VxVariantData *VxVariantData_C_API_copy(VxTransportRecord *record, VxVariantData *data) noexcept {
  return guardTransport(record, [&] {
    checked(data)->copy();
    return data;
  });
}

void VxVariantData_C_API_destruct(VxTransportRecord *record, VxVariantData *data) noexcept {
  guardTransport(record, [&] {
    if (data != nullptr) data->destruct();
  });
}

void const *VxVariantData_C_API_constStoredData(VxTransportRecord *record,
                                                VxVariantData const *data) noexcept {
  return guardTransport(record, [&] { return checked(data)->constStoredData(); });
}

VxArrayDimensionsView VxVariantData_C_API_dimensions(VxTransportRecord *record,
                                                     VxVariantData const *data) noexcept {
  return guardTransport(record, [&] { return checked(data)->dimensions(); });
}

uint32_t VxVariantData_C_API_dataOrdering(VxTransportRecord *record, VxVariantData const *data) noexcept {
  return guardTransport(record, [&] { return static_cast<std::uint32_t>(checked(data)->dataOrdering()); });
}

uint16_t VxVariantData_C_API_wellKnownDataType(VxTransportRecord *record,
                                               VxVariantData const *data) noexcept {
  return guardTransport(
      record, [&] { return static_cast<std::uint16_t>(checked(data)->wellKnownDataType().value()); });
}

bool VxVariantData_C_API_isScalarStorage(VxTransportRecord *record, VxVariantData const *data) noexcept {
  return guardTransport(record, [&] { return checked(data)->isScalarStorage(); });
}

uint64_t VxVariantData_C_API_numberAllocatedElements(VxTransportRecord *record,
                                                     VxVariantData const *data) noexcept {
  return guardTransport(record, [&] { return checked(data)->numberAllocatedElements(); });
}

bool VxVariantData_C_API_isIdenticalTo(VxTransportRecord *record, VxVariantData const *a,
                                       VxVariantData const *b) noexcept {
  return guardTransport(record, [&] { return isIdenticalTo(*checked(a), *checked(b)); });
}

bool VxVariantData_C_API_isEquivalentTo(VxTransportRecord *record, VxVariantData const *a,
                                        VxVariantData const *b, uint32_t policy) noexcept {
  return guardTransport(record, [&] { return isEquivalentTo(*checked(a), *checked(b), policy); });
}

VxVariantData *VxVariantData_C_API_mutableStoredData(VxTransportRecord *record, VxVariantData *data,
                                                     void **storedData) noexcept {
  return guardTransport(record, [&] {
    if (storedData == nullptr) throw std::invalid_argument("VxVariant data pointer target is null");
    VxVariantData *unique = checked(data)->ensureUnique();
    *storedData = unique->mutableStoredData();
    return unique;
  });
}

VxVariantData *VxVariantData_C_API_convertDataTo(VxTransportRecord *record, VxVariantData const *data,
                                                 uint16_t kind, uint32_t policy) noexcept {
  return guardTransport(record, [&]() -> VxVariantData * {
    if (checked(data)->wellKnownDataType() == kindOf(kind)) {
      data->copy();
      return const_cast<VxVariantData *>(data);
    }
    return data->convertDataTo(kindOf(kind), policy);
  });
}

VxVariantData *VxVariantData_C_API_reorderData(VxTransportRecord *record, VxVariantData *data,
                                               uint32_t ordering) noexcept {
  return guardTransport(record, [&] {
    VxVariantData *reordered = checked(data)->reorderData(orderingOf(ordering));
    data->destruct();
    return reordered;
  });
}

void VxVariantData_C_API_reshapeNoRealloc(VxTransportRecord *record, VxVariantData *data,
                                          VxArrayDimensionsView dimensions) noexcept {
  guardTransport(record, [&] { checked(data)->reshapeNoRealloc(dimensions); });
}

VxVariantData *VxVariantData_C_API_reshapeToVxVariant(VxTransportRecord *record, VxVariantData const *data,
                                                      VxVariantData *source, VxArrayDimensionsView dimensions,
                                                      uint32_t ordering) noexcept {
  return guardTransport(record, [&] {
    VxVariantData *reshaped = checked(data)->reshapeToVxVariant(source, dimensions, orderingOf(ordering));
    if (source != nullptr) source->destruct();
    return reshaped;
  });
}

}  // extern "C"
