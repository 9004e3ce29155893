#pragma once

// A module built by this project's compiler beside the library, called by modules built by others:
// its one function takes and gives variants and strings in their shared in-memory form, and carries
// its failures out in a transport record.
#include <VantraCore/ExceptionTransport.h>
#include <VantraCore/VxString.h>
#include <VantraCore/VxVariant.h>

extern "C" {
// `value` converted from the unit text `from` to `to` (e.g. "mV" to "V") and assigned to `result`.
// Fails with the library's unit messages.
__attribute__((visibility("default"))) void AbiCompanion_convertUnits(
    Tarvex::VantraCore::Internal::TransportRecord *record, Tarvex::VantraCore::VxVariantAbi const *value,
    Tarvex::VantraCore::VxString const *from, Tarvex::VantraCore::VxString const *to,
    Tarvex::VantraCore::VxVariantAbi *result) noexcept;
}

// The caller's side: the companion's failure thrown anew here.
inline Tarvex::VantraCore::VxVariantAbi convertUnits(Tarvex::VantraCore::VxVariantAbi const &value,
                                                     Tarvex::VantraCore::VxString const &from,
                                                     Tarvex::VantraCore::VxString const &to) {
  Tarvex::VantraCore::Internal::TransportRecord record;
  Tarvex::VantraCore::VxVariantAbi result;
  AbiCompanion_convertUnits(&record, &value, &from, &to, &result);
  Tarvex::VantraCore::Internal::rethrowTransportRecord(record);
  return result;
}
