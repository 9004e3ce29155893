// The C functions that make holders without storage of their own: external storage and views.

#include <VantraCore/ExternalVariantStorage.h>
#include <VantraCore/TransmuteVariant.h>
#include <text/TransportGuard.h>

using namespace Tarvex::VantraCore;
using namespace Tarvex::VantraCore::Internal;

extern "C" {

VxVariantData *VxVariantData_C_API_createWithExternalStorage(
    VxTransportRecord *record, ExternalVariantStorageInterface *storage) noexcept {
  return guardTransport(record, [&] { return constructVariantExternal(storage); });
}

VxVariantData *VxVariantData_C_API_constructTransmuteComplexToRealVariant(VxTransportRecord *record,
                                                                          VxVariantData *inner) noexcept {
  return guardTransport(record, [&] { return constructTransmuteComplexToRealVariant(inner); });
}

VxVariantData *VxVariantData_C_API_constructTransmuteRealToComplexVariant(VxTransportRecord *record,
                                                                          VxVariantData *inner) noexcept {
  return guardTransport(record, [&] { return constructTransmuteRealToComplexVariant(inner); });
}

}  // extern "C"
