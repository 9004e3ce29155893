#include <VantraCore/WellKnownType.h>

#include <VantraCore/detail/ElementKinds.h>

#include <cstddef>
#include <cstring>

namespace Tarvex::VantraCore {

namespace {

using Internal::WellKnownTypeValue;

constexpr std::uint16_t bits(WellKnownTypeValue value) {
  return static_cast<std::uint16_t>(value);
}
constexpr WellKnownTypeValue fromBits(std::uint16_t bits) {
  return static_cast<WellKnownTypeValue>(bits);
}

// Real numeric kinds from lowest to highest promotion rank.
constexpr WellKnownTypeValue promotionOrder[] = {
    WellKnownTypeValue::typeBool,          WellKnownTypeValue::typeInt8,
    WellKnownTypeValue::typeUnsignedInt8,  WellKnownTypeValue::typeInt16,
    WellKnownTypeValue::typeUnsignedInt16, WellKnownTypeValue::typeInt32,
    WellKnownTypeValue::typeUnsignedInt32, WellKnownTypeValue::typeInt64,
    WellKnownTypeValue::typeUnsignedInt64, WellKnownTypeValue::typeFloat,
    WellKnownTypeValue::typeDouble,
};

// A numeric-looking code that names no kind ranks with bool; nothing is remembered about it.
constexpr std::size_t promotionRank(WellKnownTypeValue value) {
  for (std::size_t rank = 0; rank < sizeof promotionOrder / sizeof promotionOrder[0]; ++rank) {
    if (promotionOrder[rank] == value) return rank;
  }
  return 0;
}

// The signed kind that holds every value of an unsigned one; uint64 has none and goes to double.
constexpr WellKnownTypeValue signedSuccessor(WellKnownTypeValue value) {
  switch (value) {
    case WellKnownTypeValue::typeBool:
      return WellKnownTypeValue::typeInt8;
    case WellKnownTypeValue::typeUnsignedInt8:
      return WellKnownTypeValue::typeInt16;
    case WellKnownTypeValue::typeUnsignedInt16:
      return WellKnownTypeValue::typeInt32;
    case WellKnownTypeValue::typeUnsignedInt32:
      return WellKnownTypeValue::typeInt64;
    case WellKnownTypeValue::typeUnsignedInt64:
      return WellKnownTypeValue::typeDouble;
    default:
      return WellKnownTypeValue::typeNone;
  }
}

constexpr WellKnownTypeValue commonType(WellKnownTypeValue a, WellKnownTypeValue b) {
  if (a == b) return a;
  if (a == WellKnownTypeValue::typeNone) return b;
  if (b == WellKnownTypeValue::typeNone) return a;
  if ((bits(a) & Internal::wellKnownTypeNumericBaseMask) == 0 ||
      (bits(b) & Internal::wellKnownTypeNumericBaseMask) == 0) {
    return WellKnownTypeValue::typeNone;
  }
  bool const complex = ((bits(a) | bits(b)) & Internal::wellKnownTypeComplexBit) != 0;
  bool const bothUnsigned = (bits(a) & bits(b) & Internal::wellKnownTypeUnsignedBit) != 0;
  auto const realA = fromBits(bits(a) & ~Internal::wellKnownTypeComplexBit);
  auto const realB = fromBits(bits(b) & ~Internal::wellKnownTypeComplexBit);

  WellKnownTypeValue result = promotionRank(realA) > promotionRank(realB) ? realA : realB;
  if ((bits(result) & Internal::wellKnownTypeUnsignedBit) != 0 && !bothUnsigned) {
    result = signedSuccessor(result);
  }
  // An unsigned code outside the tables has no successor, and so no common kind.
  if (complex && result != WellKnownTypeValue::typeNone) {
    result = fromBits(bits(result) | Internal::wellKnownTypeComplexBit);
  }
  return result;
}

struct NamedCode {
  char const *text;
  std::size_t length;
  WellKnownTypeValue code;
};

template <std::size_t N>
constexpr NamedCode named(char const (&text)[N], WellKnownTypeValue code) {
  return {text, N - 1, code};
}

constexpr auto elementKindNames = Internal::makeElementKindTable([](auto tag) {
  using Kind = Internal::ElementKind<typename decltype(tag)::type>;
  return named(Kind::name, Kind::code);
});
// customType is no element kind but has a name; "string8" is a second name of string.
constexpr NamedCode customTypeName = named("customType", WellKnownTypeValue::typeCustom);
constexpr NamedCode string8Name = named("string8", WellKnownTypeValue::typeString);
constexpr NamedCode unknownName = named("unknown", WellKnownTypeValue::typeNone);

VxStringView view(NamedCode const &named) {
  return VxStringView(named.text, named.length);
}

bool matches(NamedCode const &named, VxStringView text) {
  return text.size() == named.length && std::memcmp(text.data(), named.text, named.length) == 0;
}

}  // namespace

VxStringView WellKnownType::toString() const {
  if (m_value == WellKnownTypeValue::typeCustom) return view(customTypeName);
  return Internal::findElementKind(
      *this,
      [](auto tag) {
        using Kind = Internal::ElementKind<typename decltype(tag)::type>;
        return view(named(Kind::name, Kind::code));
      },
      [] { return view(unknownName); });
}

Internal::WellKnownTypeValue WellKnownType::parseValueString(VxStringView text) {
  for (NamedCode const &named : elementKindNames) {
    if (matches(named, text)) return named.code;
  }
  if (matches(customTypeName, text)) return customTypeName.code;
  if (matches(string8Name, text)) return string8Name.code;
  return WellKnownTypeValue::typeNone;
}

WellKnownType WellKnownType::getCommonWellKnownType(WellKnownType a, WellKnownType b) {
  return commonType(a.value(), b.value());
}

}  // namespace Tarvex::VantraCore
