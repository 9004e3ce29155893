#pragma once

/* The variant holders through plain C functions, for modules built apart from the library. This
 * header compiles as C and as C++. Every function but constructNull takes a transport record first;
 * a failure behind a function comes back in it (exceptionName set, message filled) with a zero
 * result, and all references stay as they were. Kinds are the 16-bit element kind codes, orderings
 * 0 (row-major) and 1 (column-major), policies the 32-bit conversion policies. */

#include <VantraCore/Export.h>
#include <VantraCore/StringCApi.h>

#ifdef __cplusplus
#include <VantraCore/ArrayIndexing.h>
#include <VantraCore/detail/IVariantData.h>

#include <cstdint>
#include <type_traits>

typedef Tarvex::VantraCore::Internal::IVariantData VxVariantData;
typedef Tarvex::VantraCore::ArrayDimensionsView VxArrayDimensionsView;
static_assert(std::is_trivially_copyable_v<VxArrayDimensionsView> && sizeof(VxArrayDimensionsView) == 16,
              "the shape crosses as two plain words");
#define VANTRACORE_C_NOEXCEPT noexcept
extern "C" {
#else
#include <stdbool.h>
#include <stdint.h>

typedef struct VxVariantData VxVariantData;
typedef struct VxArrayDimensionsView {
  uint64_t const *sizes;
  uint64_t count;
} VxArrayDimensionsView;
#define VANTRACORE_C_NOEXCEPT
#endif

/* Construction: each result carries a new reference, except the null holder, which is not counted. */

VANTRACORE_API VxVariantData *VxVariantData_C_API_constructNull(void) VANTRACORE_C_NOEXCEPT;
/* A counted heap scalar holding a copy of the element at `value`. */
VANTRACORE_API VxVariantData *VxVariantData_C_API_constructScalar(VxTransportRecord *record,
                                                                  void const *value,
                                                                  uint16_t kind) VANTRACORE_C_NOEXCEPT;
/* An array holding a copy of `count` elements. A shape without dimensions becomes [count]; a shape of
 * another element count fails with "length_error" "dimensions do not match data length". */
VANTRACORE_API VxVariantData *VxVariantData_C_API_constructArray(VxTransportRecord *record, void const *data,
                                                                 uint16_t kind, uint64_t count,
                                                                 VxArrayDimensionsView dimensions,
                                                                 uint32_t ordering) VANTRACORE_C_NOEXCEPT;
/* An array of default-valued elements; no dimensions means no elements. */
VANTRACORE_API VxVariantData *VxVariantData_C_API_createWithAllocatedArray(
    VxTransportRecord *record, uint16_t kind, VxArrayDimensionsView dimensions,
    uint32_t ordering) VANTRACORE_C_NOEXCEPT;

/* References. */

/* Adds a reference and returns `data`. */
VANTRACORE_API VxVariantData *VxVariantData_C_API_copy(VxTransportRecord *record,
                                                       VxVariantData *data) VANTRACORE_C_NOEXCEPT;
/* Gives up a reference; null does nothing. */
VANTRACORE_API void VxVariantData_C_API_destruct(VxTransportRecord *record,
                                                 VxVariantData *data) VANTRACORE_C_NOEXCEPT;

/* Reading; nothing changes hands. */

VANTRACORE_API void const *VxVariantData_C_API_constStoredData(
    VxTransportRecord *record, VxVariantData const *data) VANTRACORE_C_NOEXCEPT;
/* C++ sees the shape as a class with constructors, C as a plain pair; both are the same two words and
 * come back in the same two registers, so the C++ side's warning about it says nothing here. */
#if defined(__cplusplus) && defined(__clang__)
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wreturn-type-c-linkage"
#endif
VANTRACORE_API VxArrayDimensionsView
VxVariantData_C_API_dimensions(VxTransportRecord *record, VxVariantData const *data) VANTRACORE_C_NOEXCEPT;
#if defined(__cplusplus) && defined(__clang__)
#pragma clang diagnostic pop
#endif
VANTRACORE_API uint32_t VxVariantData_C_API_dataOrdering(VxTransportRecord *record,
                                                         VxVariantData const *data) VANTRACORE_C_NOEXCEPT;
VANTRACORE_API uint16_t VxVariantData_C_API_wellKnownDataType(
    VxTransportRecord *record, VxVariantData const *data) VANTRACORE_C_NOEXCEPT;
VANTRACORE_API bool VxVariantData_C_API_isScalarStorage(VxTransportRecord *record,
                                                        VxVariantData const *data) VANTRACORE_C_NOEXCEPT;
VANTRACORE_API uint64_t VxVariantData_C_API_numberAllocatedElements(
    VxTransportRecord *record, VxVariantData const *data) VANTRACORE_C_NOEXCEPT;
VANTRACORE_API bool VxVariantData_C_API_isIdenticalTo(VxTransportRecord *record, VxVariantData const *a,
                                                      VxVariantData const *b) VANTRACORE_C_NOEXCEPT;
VANTRACORE_API bool VxVariantData_C_API_isEquivalentTo(VxTransportRecord *record, VxVariantData const *a,
                                                       VxVariantData const *b,
                                                       uint32_t policy) VANTRACORE_C_NOEXCEPT;

/* Writing and new forms. */

/* Makes `data` unique and stores its block through `storedData`. Consumes the reference to `data` and
 * returns the one to use from now on (the same holder when it was not shared). */
VANTRACORE_API VxVariantData *VxVariantData_C_API_mutableStoredData(VxTransportRecord *record,
                                                                    VxVariantData *data,
                                                                    void **storedData) VANTRACORE_C_NOEXCEPT;
/* A new reference to the holder converted to `kind` (to `data` itself when it has that kind already),
 * or null with no exceptionName when an element cannot be converted under `policy`. The reference to
 * `data` stays. */
VANTRACORE_API VxVariantData *VxVariantData_C_API_convertDataTo(VxTransportRecord *record,
                                                                VxVariantData const *data, uint16_t kind,
                                                                uint32_t policy) VANTRACORE_C_NOEXCEPT;
/* The array in `ordering`. Consumes the reference to `data`, returns a new one. */
VANTRACORE_API VxVariantData *VxVariantData_C_API_reorderData(VxTransportRecord *record, VxVariantData *data,
                                                              uint32_t ordering) VANTRACORE_C_NOEXCEPT;
VANTRACORE_API void VxVariantData_C_API_reshapeNoRealloc(
    VxTransportRecord *record, VxVariantData *data, VxArrayDimensionsView dimensions) VANTRACORE_C_NOEXCEPT;
/* A new array of data's element kind in that shape and ordering, filled from `source` in storage
 * order. Consumes the reference to `source` (which may be null), returns a new one; the reference to
 * `data` stays. */
VANTRACORE_API VxVariantData *VxVariantData_C_API_reshapeToVxVariant(VxTransportRecord *record,
                                                                     VxVariantData const *data,
                                                                     VxVariantData *source,
                                                                     VxArrayDimensionsView dimensions,
                                                                     uint32_t ordering) VANTRACORE_C_NOEXCEPT;

#ifdef __cplusplus
}  // extern "C"
#endif
#undef VANTRACORE_C_NOEXCEPT
