#pragma once

/* The shared string's record through plain C functions, for modules built apart from the library.
 * This header compiles as C and as C++. The record is a binary format between modules: a 32-bit
 * count changed only atomically, 4 bytes of padding, the 64-bit length, then the text and a NUL, all
 * in one allocation (16-byte header). Only these functions look inside. The two constructing
 * functions take a transport record first and report a failure in it with a null result. */

#include <VantraCore/Export.h>

#ifdef __cplusplus
#include <VantraCore/ExceptionTransport.h>

#include <cstdint>

namespace Tarvex::VantraCore::Internal {

struct VxStringRecord;

// What VxStringData_C_API_constructCStringWithSize answers: the record and where its text goes.
struct VxStringRecordAndText {
  VxStringRecord *record;
  char *text;
};

}  // namespace Tarvex::VantraCore::Internal

typedef Tarvex::VantraCore::Internal::TransportRecord VxTransportRecord;
typedef Tarvex::VantraCore::Internal::VxStringRecord VxStringData;
typedef Tarvex::VantraCore::Internal::VxStringRecordAndText VxStringDataAndText;
#define VANTRACORE_C_NOEXCEPT noexcept
extern "C" {
#else
#include <stdint.h>

typedef struct VxTransportRecord {
  char const *exceptionName; /* null when the call succeeded */
  char message[200];         /* NUL-terminated, at most 199 characters */
} VxTransportRecord;
typedef struct VxStringData VxStringData;
typedef struct VxStringDataAndText {
  VxStringData *record;
  char *text;
} VxStringDataAndText;
#define VANTRACORE_C_NOEXCEPT
#endif

/* A record with count 1 holding a copy of `length` bytes and a NUL. A length that cannot be
 * allocated fails with "bad_alloc", a null text of non-zero length with "invalid_argument". */
VANTRACORE_API VxStringData *VxStringData_C_API_constructCString(VxTransportRecord *transport,
                                                                 char const *text,
                                                                 uint64_t length) VANTRACORE_C_NOEXCEPT;
/* A record with count 1 and room for `length` bytes and a NUL, copying nothing: the caller writes
 * the text and owes the terminator. Failures give {null, null}. */
VANTRACORE_API VxStringDataAndText VxStringData_C_API_constructCStringWithSize(
    VxTransportRecord *transport, uint64_t length) VANTRACORE_C_NOEXCEPT;
/* Adds a reference; `record` must not be null. */
VANTRACORE_API VxStringData *VxStringData_C_API_copy(VxStringData *record) VANTRACORE_C_NOEXCEPT;
/* Gives up a reference and frees the record with the last one; null does nothing. */
VANTRACORE_API void VxStringData_C_API_destruct(VxStringData *record) VANTRACORE_C_NOEXCEPT;
VANTRACORE_API char const *VxStringData_C_API_getConstDataPointer(VxStringData const *record)
    VANTRACORE_C_NOEXCEPT;
VANTRACORE_API uint64_t VxStringData_C_API_getLength(VxStringData const *record) VANTRACORE_C_NOEXCEPT;

#ifdef __cplusplus
}  // extern "C"
#endif
#undef VANTRACORE_C_NOEXCEPT
