#include <VantraCore/WellKnownType.h>

#include <VantraCore/detail/ElementKinds.h>

#include <cstddef>
#include <cstring>
#include <limits>
#include <type_traits>

namespace Tarvex::VantraCore {

namespace {

using Internal::WellKnownTypeValue;

// What promotion knows of a real kind (bool among them). Integers rank by the bits of value they
// hold, so a signed kind comes before the unsigned one of its width; floating kinds rank above every
// integer, by precision.
struct Promotion {
  WellKnownTypeValue code;
  bool ranked;
  bool floating;
  int digits;

  constexpr bool below(Promotion const &other) const {
    return floating != other.floating ? other.floating : digits < other.digits;
  }
};

constexpr auto promotions = Internal::makeElementKindTable([](auto tag) {
  using T = typename decltype(tag)::type;
  constexpr WellKnownTypeValue code = wellKnownTypeOf<T>().value();
  if constexpr (std::is_arithmetic_v<T>)
    return Promotion{code, true, std::is_floating_point_v<T>, std::numeric_limits<T>::digits};
  else
    return Promotion{code, false, false, 0};
});

constexpr Promotion const *findPromotion(WellKnownType kind) {
  for (Promotion const &promotion : promotions) {
    if (promotion.ranked && promotion.code == kind.value()) return &promotion;
  }
  return nullptr;
}

// A numeric-looking code that names no kind ranks with bool; nothing is remembered about it.
constexpr std::size_t promotionRank(WellKnownType kind) {
  Promotion const *const promotion = findPromotion(kind);
  if (promotion == nullptr) return 0;
  std::size_t rank = 0;
  for (Promotion const &other : promotions) {
    if (other.ranked && other.below(*promotion)) ++rank;
  }
  return rank;
}

// The lowest-ranked signed kind that holds every value of an unsigned one. uint64 has none and goes to
// the top kind, double, on purpose.
constexpr WellKnownType signedSuccessor(WellKnownType kind) {
  Promotion const *const from = findPromotion(kind);
  if (from == nullptr) return WellKnownType();
  Promotion const *successor = nullptr;
  Promotion const *top = nullptr;
  for (Promotion const &candidate : promotions) {
    if (!candidate.ranked) continue;
    if (top == nullptr || top->below(candidate)) top = &candidate;
    bool const holdsAll = !isUnsignedKind(candidate.code) && candidate.digits >= from->digits;
    if (holdsAll && (successor == nullptr || candidate.below(*successor))) successor = &candidate;
  }
  return (successor != nullptr ? successor : top)->code;
}

static_assert(promotionRank(WellKnownTypeValue::typeBool) == 0 &&
                  promotionRank(WellKnownTypeValue::typeUnsignedInt64) == 8 &&
                  promotionRank(WellKnownTypeValue::typeDouble) == 10,
              "bool lowest, integers by width, floating kinds on top");
static_assert(signedSuccessor(WellKnownTypeValue::typeUnsignedInt8) == WellKnownTypeValue::typeInt16 &&
                  signedSuccessor(WellKnownTypeValue::typeUnsignedInt64) == WellKnownTypeValue::typeDouble,
              "the next wider signed kind, and double above uint64");

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
  if (a == b) return a;
  if (a == WellKnownType()) return b;
  if (b == WellKnownType()) return a;
  if (!hasNumericBase(a) || !hasNumericBase(b)) return WellKnownType();
  bool const complex = isComplexKind(a) || isComplexKind(b);
  bool const bothUnsigned = isUnsignedKind(a) && isUnsignedKind(b);
  WellKnownType const realA = realPartKind(a);
  WellKnownType const realB = realPartKind(b);

  WellKnownType result = promotionRank(realA) > promotionRank(realB) ? realA : realB;
  if (isUnsignedKind(result) && !bothUnsigned) result = signedSuccessor(result);
  // An unsigned code outside the tables has no successor, and so no common kind.
  if (complex && result != WellKnownType()) result = complexKindOf(result);
  return result;
}

}  // namespace Tarvex::VantraCore
