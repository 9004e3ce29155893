#pragma once

#include <VantraCore/Complex.h>
#include <VantraCore/Export.h>
#include <VantraCore/Time.h>
#include <VantraCore/VxString.h>
#include <VantraCore/VxStringView.h>

#include <complex>
#include <cstdint>
#include <type_traits>

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
  // The kind named by `text` (see toString), or none when the text names no kind.
  explicit WellKnownType(VxStringView text) : m_value(parseValueString(text)) {}

  constexpr Internal::WellKnownTypeValue value() const { return m_value; }

  friend constexpr bool operator==(WellKnownType a, WellKnownType b) { return a.m_value == b.m_value; }
  friend constexpr bool operator!=(WellKnownType a, WellKnownType b) { return a.m_value != b.m_value; }

  // The kind's stored name, as documents carry it; "unknown" for any code that names no kind.
  VxStringView toString() const;

  // The kind that can stand for both, for comparing mixed arrays; none (0) when there is none.
  static WellKnownType getCommonWellKnownType(WellKnownType a, WellKnownType b);

 private:
  static Internal::WellKnownTypeValue parseValueString(VxStringView text);

  Internal::WellKnownTypeValue m_value = Internal::WellKnownTypeValue::typeNone;
};

// How much an element conversion may lose.
using ConversionPolicy = std::uint32_t;
inline constexpr ConversionPolicy conversionLossless = 0;  // convert and verify nothing was lost
inline constexpr ConversionPolicy conversionCast = 1;      // cast numbers without a test; no text or time
inline constexpr ConversionPolicy conversionParse = 2;     // as cast, and numbers to and from text

// Every element kind once, in the fixed dispatch order, as
//   X(element type, WellKnownTypeValue enumerator, stored name, name in failure messages).
// The traits below, the type lists, the dispatch and the text tables are all generated from it. The
// three runs are the three stages of the dispatch: the truth values, the codes with a numeric base,
// and the rest.
#define VANTRACORE_TRUTH_ELEMENT_KINDS(X) \
  X(bool, typeBool, "bool", "bool")       \
  X(Complex<bool>, typeComplexBool, "complexBool", "Tarvex::VantraCore::Complex<bool,void>")
#define VANTRACORE_NUMERIC_ELEMENT_KINDS(X)                                                                \
  X(double, typeDouble, "double", "double")                                                                \
  X(float, typeFloat, "float", "float")                                                                    \
  X(std::int8_t, typeInt8, "int8", "int8_t")                                                               \
  X(std::int16_t, typeInt16, "int16", "int16_t")                                                           \
  X(std::int32_t, typeInt32, "int32", "int")                                                               \
  X(std::int64_t, typeInt64, "int64", "int64_t")                                                           \
  X(std::uint8_t, typeUnsignedInt8, "unsignedInt8", "uint8_t")                                             \
  X(std::uint16_t, typeUnsignedInt16, "unsignedInt16", "uint16_t")                                         \
  X(std::uint32_t, typeUnsignedInt32, "unsignedInt32", "unsigned int")                                     \
  X(std::uint64_t, typeUnsignedInt64, "unsignedInt64", "uint64_t")                                         \
  X(std::complex<double>, typeComplexDouble, "complexDouble", "std::complex<double>")                      \
  X(std::complex<float>, typeComplexFloat, "complexFloat", "std::complex<float>")                          \
  X(Complex<std::int8_t>, typeComplexInt8, "complexInt8", "Tarvex::VantraCore::Complex<signed char,void>") \
  X(Complex<std::int16_t>, typeComplexInt16, "complexInt16", "Tarvex::VantraCore::Complex<short,void>")    \
  X(Complex<std::int32_t>, typeComplexInt32, "complexInt32", "Tarvex::VantraCore::Complex<int,void>")      \
  X(Complex<std::int64_t>, typeComplexInt64, "complexInt64", "Tarvex::VantraCore::Complex<__int64,void>")  \
  X(Complex<std::uint8_t>, typeComplexUnsignedInt8, "complexUnsignedInt8",                                 \
    "Tarvex::VantraCore::Complex<unsigned char,void>")                                                     \
  X(Complex<std::uint16_t>, typeComplexUnsignedInt16, "complexUnsignedInt16",                              \
    "Tarvex::VantraCore::Complex<unsigned short,void>")                                                    \
  X(Complex<std::uint32_t>, typeComplexUnsignedInt32, "complexUnsignedInt32",                              \
    "Tarvex::VantraCore::Complex<unsigned int,void>")                                                      \
  X(Complex<std::uint64_t>, typeComplexUnsignedInt64, "complexUnsignedInt64",                              \
    "Tarvex::VantraCore::Complex<unsigned __int64,void>")
#define VANTRACORE_OTHER_ELEMENT_KINDS(X)                               \
  X(VxString, typeString, "string", "Tarvex::VantraCore::VxString")     \
  X(Duration, typeDuration, "duration", "Tarvex::VantraCore::Duration") \
  X(Timestamp, typeTimestamp, "timestamp", "Tarvex::VantraCore::Timestamp")
#define VANTRACORE_ELEMENT_KINDS(X) \
  VANTRACORE_TRUTH_ELEMENT_KINDS(X) VANTRACORE_NUMERIC_ELEMENT_KINDS(X) VANTRACORE_OTHER_ELEMENT_KINDS(X)

namespace Internal {

// What the library knows of an element type. Only the element kinds have it.
template <class T>
struct ElementKind;

#define VANTRACORE_ELEMENT_KIND_TRAITS(Type, Code, Name, MessageName)    \
  template <>                                                            \
  struct ElementKind<Type> {                                             \
    static constexpr WellKnownTypeValue code = WellKnownTypeValue::Code; \
    static constexpr char name[] = Name;                                 \
    static constexpr char messageName[] = MessageName;                   \
  };
VANTRACORE_ELEMENT_KINDS(VANTRACORE_ELEMENT_KIND_TRAITS)
#undef VANTRACORE_ELEMENT_KIND_TRAITS

}  // namespace Internal

// The code of element type T, at compile time. Only the element kinds have one.
template <class T>
constexpr WellKnownType wellKnownTypeOf() {
  return Internal::ElementKind<std::remove_cv_t<T>>::code;
}

// Questions about a kind, answered from the bits of its code; any 16-bit code may be asked.
constexpr std::uint16_t kindBits(WellKnownType kind) {
  return static_cast<std::uint16_t>(kind.value());
}
// A numeric base: the twenty numeric kinds and the two truth kinds (bool, Complex<bool>).
constexpr bool hasNumericBase(WellKnownType kind) {
  return (kindBits(kind) & Internal::wellKnownTypeNumericBaseMask) != 0;
}
constexpr bool isTruthKind(WellKnownType kind) {
  return kind == Internal::WellKnownTypeValue::typeBool || kind == Internal::WellKnownTypeValue::typeComplexBool;
}
// A number with a unit: a numeric base that is not a truth value.
constexpr bool isNumberKind(WellKnownType kind) {
  return hasNumericBase(kind) && !isTruthKind(kind);
}
constexpr bool isComplexKind(WellKnownType kind) {
  return (kindBits(kind) & Internal::wellKnownTypeComplexBit) != 0;
}
constexpr bool isUnsignedKind(WellKnownType kind) {
  return (kindBits(kind) & Internal::wellKnownTypeUnsignedBit) != 0;
}
constexpr bool isFloatingKind(WellKnownType kind) {
  auto const base = kindBits(kind) & ~Internal::wellKnownTypeComplexBit;
  return base == kindBits(Internal::WellKnownTypeValue::typeDouble) ||
         base == kindBits(Internal::WellKnownTypeValue::typeFloat);
}
constexpr bool isTimeKind(WellKnownType kind) {
  return kind == Internal::WellKnownTypeValue::typeDuration || kind == Internal::WellKnownTypeValue::typeTimestamp;
}
// The custom code, with or without the complex bit.
constexpr bool isCustomKind(WellKnownType kind) {
  return (kindBits(kind) & ~Internal::wellKnownTypeComplexBit) == kindBits(Internal::WellKnownTypeValue::typeCustom);
}
// The kind of a complex kind's parts; any other kind is its own.
constexpr WellKnownType realPartKind(WellKnownType kind) {
  return static_cast<Internal::WellKnownTypeValue>(kindBits(kind) & ~Internal::wellKnownTypeComplexBit);
}
// The complex kind over a real kind's values (the code with the complex bit set).
constexpr WellKnownType complexKindOf(WellKnownType kind) {
  return static_cast<Internal::WellKnownTypeValue>(kindBits(kind) | Internal::wellKnownTypeComplexBit);
}

// The same questions of an element type, at compile time.
template <class T>
inline constexpr bool isComplexElement = isComplexKind(wellKnownTypeOf<T>());

}  // namespace Tarvex::VantraCore
