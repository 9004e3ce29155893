#include <VantraCore/ElementKinds.h>
#include <VantraCore/WellKnownType.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <complex>
#include <cstdint>
#include <ostream>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

namespace Tarvex::VantraCore {
inline void PrintTo(WellKnownType type, std::ostream *out) {
  *out << std::hex << "0x" << int(type.value()) << std::dec;
}
}  // namespace Tarvex::VantraCore

using namespace Tarvex::VantraCore;
using V = Internal::WellKnownTypeValue;

namespace {

constexpr WellKnownType code(std::uint16_t bits) {
  return static_cast<V>(bits);
}
constexpr std::uint16_t bits(WellKnownType type) {
  return static_cast<std::uint16_t>(type.value());
}
WellKnownType common(WellKnownType a, WellKnownType b) {
  return WellKnownType::getCommonWellKnownType(a, b);
}

template <class T>
struct Tag {
  using type = T;
};

// The kinds as the interface documents them, written out apart from the library's list, in dispatch
// order: visit(Tag<T>{}, code, name, name in failure messages).
template <class Visit>
void forEachDocumentedKind(Visit &&visit) {
  visit(Tag<bool>{}, 0x4003, "bool", "bool");
  visit(Tag<Complex<bool>>{}, 0xC003, "complexBool", "Tarvex::VantraCore::Complex<bool,void>");
  visit(Tag<double>{}, 0x0001, "double", "double");
  visit(Tag<float>{}, 0x0002, "float", "float");
  visit(Tag<signed char>{}, 0x0004, "int8", "int8_t");
  visit(Tag<short>{}, 0x0005, "int16", "int16_t");
  visit(Tag<int>{}, 0x0006, "int32", "int");
  visit(Tag<long>{}, 0x0007, "int64", "int64_t");
  visit(Tag<unsigned char>{}, 0x4004, "unsignedInt8", "uint8_t");
  visit(Tag<unsigned short>{}, 0x4005, "unsignedInt16", "uint16_t");
  visit(Tag<unsigned int>{}, 0x4006, "unsignedInt32", "unsigned int");
  visit(Tag<unsigned long>{}, 0x4007, "unsignedInt64", "uint64_t");
  visit(Tag<std::complex<double>>{}, 0x8001, "complexDouble", "std::complex<double>");
  visit(Tag<std::complex<float>>{}, 0x8002, "complexFloat", "std::complex<float>");
  visit(Tag<Complex<signed char>>{}, 0x8004, "complexInt8", "Tarvex::VantraCore::Complex<signed char,void>");
  visit(Tag<Complex<short>>{}, 0x8005, "complexInt16", "Tarvex::VantraCore::Complex<short,void>");
  visit(Tag<Complex<int>>{}, 0x8006, "complexInt32", "Tarvex::VantraCore::Complex<int,void>");
  visit(Tag<Complex<long>>{}, 0x8007, "complexInt64", "Tarvex::VantraCore::Complex<__int64,void>");
  visit(Tag<Complex<unsigned char>>{}, 0xC004, "complexUnsignedInt8",
        "Tarvex::VantraCore::Complex<unsigned char,void>");
  visit(Tag<Complex<unsigned short>>{}, 0xC005, "complexUnsignedInt16",
        "Tarvex::VantraCore::Complex<unsigned short,void>");
  visit(Tag<Complex<unsigned int>>{}, 0xC006, "complexUnsignedInt32",
        "Tarvex::VantraCore::Complex<unsigned int,void>");
  visit(Tag<Complex<unsigned long>>{}, 0xC007, "complexUnsignedInt64",
        "Tarvex::VantraCore::Complex<unsigned __int64,void>");
  visit(Tag<VxString>{}, 0x0010, "string", "Tarvex::VantraCore::VxString");
  visit(Tag<Duration>{}, 0x0030, "duration", "Tarvex::VantraCore::Duration");
  visit(Tag<Timestamp>{}, 0x0040, "timestamp", "Tarvex::VantraCore::Timestamp");
}

std::vector<std::uint16_t> documentedCodes() {
  std::vector<std::uint16_t> codes;
  forEachDocumentedKind([&](auto, std::uint16_t expected, auto, auto) { codes.push_back(expected); });
  return codes;
}

template <class Call>
std::string failure(Call &&call) {
  try {
    call();
  } catch (std::runtime_error const &e) {
    return e.what();
  }
  return "no exception";
}

// The kind a dispatch landed on, told by its type.
WellKnownType dispatchedTo(WellKnownType type) {
  return Internal::dispatchWellKnownType(
      type, [](auto kind) { return wellKnownTypeOf<typename decltype(kind)::type>(); });
}

}  // namespace

TEST(WellKnownType, EveryKindHasItsCodeNamesAndDispatch) {
  static_assert(sizeof(WellKnownType) == 2, "passed as a plain 16-bit value");
  forEachDocumentedKind([](auto tag, std::uint16_t expected, char const *name, char const *messageName) {
    using T = typename decltype(tag)::type;
    constexpr WellKnownType type = wellKnownTypeOf<T>();
    EXPECT_EQ(type, code(expected)) << name;
    EXPECT_EQ(wellKnownTypeOf<T const>(), type);
    EXPECT_EQ(std::string(type.toString()), name);
    EXPECT_EQ(WellKnownType(type.toString()), type) << name;
    EXPECT_EQ(std::string(Internal::messageTypeName(type)), messageName);
    EXPECT_TRUE(Internal::dispatchWellKnownType(type, [](auto kind) {
      return std::is_same_v<typename decltype(kind)::type, T>;
    })) << name;
    // Only the twenty kinds with a numeric base, the truth values aside, reach the numeric dispatch.
    if ((expected & 0xF) != 0 && (expected & 0x3FFF) != 0x0003) {
      EXPECT_TRUE(Internal::dispatchNumericType(
          type, [](auto kind) { return std::is_same_v<typename decltype(kind)::type, T>; }));
    } else {
      EXPECT_EQ(failure([&] { Internal::dispatchNumericType(type, [](auto) {}); }), "not a numeric type");
    }
  });
}

TEST(WellKnownType, EveryOtherCodeIsRefusedByStage) {
  auto const known = documentedCodes();
  for (std::uint32_t value = 0; value <= 0xFFFF; ++value) {
    auto const type = code(static_cast<std::uint16_t>(value));
    if (std::find(known.begin(), known.end(), value) != known.end()) {
      ASSERT_EQ(dispatchedTo(type), type);
      continue;
    }
    ASSERT_EQ(failure([&] { dispatchedTo(type); }),
              (value & 0xF) != 0 ? "not a numeric type" : "unknown type")
        << value;
    ASSERT_EQ(failure([&] { Internal::messageTypeName(type); }), "unknown type") << value;
    ASSERT_FALSE(Internal::findElementKind(
        type, [](auto) { return true; }, [] { return false; }));
    if (value != 0x0020) {
      ASSERT_EQ(std::string(type.toString()), "unknown") << value;
    }
  }
}

TEST(WellKnownType, ListsFollowTheDispatchOrder) {
  constexpr auto codes = Internal::makeElementKindTable(
      [](auto kind) { return bits(wellKnownTypeOf<typename decltype(kind)::type>()); });
  auto const documented = documentedCodes();
  EXPECT_EQ(std::vector<std::uint16_t>(codes.begin(), codes.end()), documented);
  std::vector<std::uint16_t> numeric;
  Internal::forEachElementKind<Internal::NumericElementKinds>(
      [&](auto kind) { numeric.push_back(bits(wellKnownTypeOf<typename decltype(kind)::type>())); });
  EXPECT_EQ(numeric, std::vector<std::uint16_t>(documented.begin() + 2, documented.end() - 3));
  static_assert(Internal::isElementKind<double const> && !Internal::isElementKind<long double>);
}

TEST(WellKnownType, NamesOutsideTheKindsAndRefusedNames) {
  EXPECT_EQ(std::string(WellKnownType(V::typeCustom).toString()), "customType");
  EXPECT_EQ(WellKnownType(VxStringView("customType")), V::typeCustom);
  EXPECT_EQ(WellKnownType(VxStringView("string8")), V::typeString);
  EXPECT_EQ(std::string(WellKnownType().toString()), "unknown");
  for (char const *refused : {"", "Double", "unknown", "string ", "int", "complexInt", "timestamps"}) {
    EXPECT_EQ(WellKnownType(VxStringView(refused)), WellKnownType()) << refused;
  }
  EXPECT_EQ(WellKnownType(VxStringView("int16", 3)), WellKnownType());
  EXPECT_EQ(WellKnownType(VxStringView("int8\0", 5)), WellKnownType());
}

TEST(WellKnownType, CommonKind) {
  EXPECT_EQ(common(V::typeInt32, V::typeUnsignedInt32), V::typeInt64);
  EXPECT_EQ(common(V::typeUnsignedInt8, V::typeInt8), V::typeInt16);
  EXPECT_EQ(common(V::typeUnsignedInt16, V::typeInt32), V::typeInt32);
  EXPECT_EQ(common(V::typeFloat, V::typeUnsignedInt64), V::typeFloat);
  EXPECT_EQ(common(V::typeBool, V::typeUnsignedInt8), V::typeUnsignedInt8);
  EXPECT_EQ(common(V::typeBool, V::typeInt8), V::typeInt8);
  EXPECT_EQ(common(V::typeUnsignedInt32, V::typeUnsignedInt64), V::typeUnsignedInt64);
  EXPECT_EQ(common(V::typeInt64, V::typeUnsignedInt64), V::typeDouble);
  EXPECT_EQ(common(V::typeComplexUnsignedInt8, V::typeInt8), V::typeComplexInt16);
  EXPECT_EQ(common(V::typeDouble, V::typeComplexFloat), V::typeComplexDouble);
  EXPECT_EQ(common(V::typeBool, V::typeComplexBool), V::typeComplexBool);
  EXPECT_EQ(common(V::typeComplexInt64, V::typeUnsignedInt64), V::typeComplexDouble);
  EXPECT_EQ(common(V::typeCustom, V::typeCustom), V::typeCustom);
  EXPECT_EQ(common(V::typeString, V::typeDouble), V::typeNone);
  EXPECT_EQ(common(V::typeDuration, V::typeTimestamp), V::typeNone);
  EXPECT_EQ(common(V::typeNone, V::typeDuration), V::typeDuration);
  // Codes that name no kind rank with bool, and nothing is remembered of them.
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(common(code(0x0003), V::typeInt16), V::typeInt16);
    EXPECT_EQ(common(V::typeBool, code(0x0003)), code(0x0003));
    EXPECT_EQ(common(code(0x0003), code(0xC001)), V::typeNone);  // unsigned without a successor
  }
}

TEST(WellKnownType, CommonKindIsSymmetricAndIgnoresTheComplexBit) {
  std::vector<WellKnownType> kinds;
  for (auto value : documentedCodes())
    kinds.push_back(code(value));
  for (auto other : {V::typeCustom, V::typeNone})
    kinds.push_back(other);
  auto const complexOf = [](WellKnownType type) { return code(bits(type) | 0x8000); };
  for (auto a : kinds) {
    EXPECT_EQ(common(a, a), a);
    EXPECT_EQ(common(a, WellKnownType()), a);
    for (auto b : kinds) {
      EXPECT_EQ(common(a, b), common(b, a));
      if ((bits(a) & 0xF) != 0 && (bits(b) & 0xF) != 0) {
        EXPECT_EQ(common(complexOf(a), b), complexOf(common(a, b)));
      }
    }
  }
}
