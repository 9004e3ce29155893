#pragma once

#include <VantraCore/Export.h>

#include <cstdint>

namespace Tarvex::VantraCore {

namespace Internal {

// The element kind codes. They cross module boundaries as plain 16-bit numbers, so the values are
// a binary interface; any other code is representable too (static_cast from the number).
enum class WellKnownTypeValue : std::uint16_t {
  typeNone = 0x0000,

  typeDouble = 0x0001,
  typeFloat = 0x0002,
  typeInt8 = 0x0004,
  typeInt16 = 0x0005,
  typeInt32 = 0x0006,
  typeInt64 = 0x0007,

  typeBool = 0x4003,
  typeUnsignedInt8 = 0x4004,
  typeUnsignedInt16 = 0x4005,
  typeUnsignedInt32 = 0x4006,
  typeUnsignedInt64 = 0x4007,

  typeComplexDouble = 0x8001,
  typeComplexFloat = 0x8002,
  typeComplexInt8 = 0x8004,
  typeComplexInt16 = 0x8005,
  typeComplexInt32 = 0x8006,
  typeComplexInt64 = 0x8007,

  typeComplexBool = 0xC003,
  typeComplexUnsignedInt8 = 0xC004,
  typeComplexUnsignedInt16 = 0xC005,
  typeComplexUnsignedInt32 = 0xC006,
  typeComplexUnsignedInt64 = 0xC007,

  typeString = 0x0010,
  typeCustom = 0x0020,
  typeDuration = 0x0030,
  typeTimestamp = 0x0040,
};

// The bit structure of a code.
inline constexpr std::uint16_t wellKnownTypeNumericBaseMask = 0x000F;
inline constexpr std::uint16_t wellKnownTypeUnsignedBit = 0x4000;
inline constexpr std::uint16_t wellKnownTypeComplexBit = 0x8000;

}  // namespace Internal

// The element kind of a variant: a plain 16-bit value.
class VANTRACORE_API WellKnownType {
 public:
  constexpr WellKnownType() = default;
  constexpr WellKnownType(Internal::WellKnownTypeValue value) : m_value(value) {}

  constexpr Internal::WellKnownTypeValue value() const { return m_value; }

  friend constexpr bool operator==(WellKnownType a, WellKnownType b) { return a.m_value == b.m_value; }
  friend constexpr bool operator!=(WellKnownType a, WellKnownType b) { return a.m_value != b.m_value; }

  // The kind that can stand for both, for comparing mixed arrays; none (0) when there is none.
  static WellKnownType getCommonWellKnownType(WellKnownType a, WellKnownType b);

 private:
  Internal::WellKnownTypeValue m_value = Internal::WellKnownTypeValue::typeNone;
};

// How much an element conversion may lose.
using ConversionPolicy = std::uint32_t;
inline constexpr ConversionPolicy conversionLossless = 0;  // convert and verify nothing was lost
inline constexpr ConversionPolicy conversionCast = 1;      // cast numbers without a test; no text or time
inline constexpr ConversionPolicy conversionParse = 2;     // as cast, and numbers to and from text

}  // namespace Tarvex::VantraCore
