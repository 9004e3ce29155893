#pragma once

#include <VantraCore/Export.h>
#include <VantraCore/detail/IVariantData.h>
#include <VantraCore/VariantCApi.h>

// Views that reinterpret another holder's block without copying it: N complex values as 2N
// interleaved reals, and the reverse. The dimension whose elements are adjacent in memory (the last in
// row-major, the first in column-major) doubles or halves, rounding down. A view keeps its inner
// holder alive and shows what is written into it; writing through the view (ensureUnique) makes a
// plain array and leaves the inner holder alone. The inner kind is not examined at construction:
// transmuting real data to reals reads past its block, which is the caller's to avoid.
namespace Tarvex::VantraCore::Internal {

// Each takes over the caller's reference to `inner` and returns the view with count 1. On failure the
// caller keeps its reference; a null `inner` throws std::invalid_argument.
VANTRACORE_API IVariantData *constructTransmuteComplexToRealVariant(IVariantData *inner);
VANTRACORE_API IVariantData *constructTransmuteRealToComplexVariant(IVariantData *inner);

}  // namespace Tarvex::VantraCore::Internal

extern "C" {
// The factories above through the transport: each takes over the reference to `inner` on success and
// returns a new one.
VANTRACORE_API VxVariantData *VxVariantData_C_API_constructTransmuteComplexToRealVariant(
    VxTransportRecord *record, VxVariantData *inner) noexcept;
VANTRACORE_API VxVariantData *VxVariantData_C_API_constructTransmuteRealToComplexVariant(
    VxTransportRecord *record, VxVariantData *inner) noexcept;
}
