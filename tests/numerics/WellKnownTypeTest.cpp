#include <VantraCore/WellKnownType.h>

#include "numerics/ExpectedKinds.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

using Tarvex::VantraCore::WellKnownType;
using Tarvex::VantraCore::Internal::WellKnownTypeValue;

namespace {

WellKnownType code(std::uint16_t bits) {
  return static_cast<WellKnownTypeValue>(bits);
}
std::uint16_t bits(WellKnownType type) {
  return static_cast<std::uint16_t>(type.value());
}

WellKnownType common(WellKnownType a, WellKnownType b) {
  return WellKnownType::getCommonWellKnownType(a, b);
}

// The real numeric kinds, signed then unsigned.
std::vector<WellKnownType> const realKinds = {
    WellKnownTypeValue::typeDouble,        WellKnownTypeValue::typeFloat,
    WellKnownTypeValue::typeInt8,          WellKnownTypeValue::typeInt16,
    WellKnownTypeValue::typeInt32,         WellKnownTypeValue::typeInt64,
    WellKnownTypeValue::typeBool,          WellKnownTypeValue::typeUnsignedInt8,
    WellKnownTypeValue::typeUnsignedInt16, WellKnownTypeValue::typeUnsignedInt32,
    WellKnownTypeValue::typeUnsignedInt64,
};

WellKnownType complexOf(WellKnownType real) {
  return code(bits(real) | 0x8000);
}

std::vector<WellKnownType> allCodesOfInterest() {
  std::vector<WellKnownType> all = realKinds;
  for (auto real : realKinds)
    all.push_back(complexOf(real));
  for (auto other :
       {WellKnownTypeValue::typeString, WellKnownTypeValue::typeCustom, WellKnownTypeValue::typeDuration,
        WellKnownTypeValue::typeTimestamp, WellKnownTypeValue::typeNone}) {
    all.push_back(other);
  }
  return all;
}

}  // namespace

TEST(WellKnownType, CodesAreTheBinaryInterface) {
  EXPECT_EQ(bits(WellKnownType()), 0);
  // Complex kinds are their real kind plus bit 15; unsigned ones their signed kind plus bit 14.
  EXPECT_EQ(bits(WellKnownTypeValue::typeComplexDouble), 0x8001);
  EXPECT_EQ(bits(WellKnownTypeValue::typeComplexUnsignedInt64), 0xC007);
  EXPECT_EQ(bits(WellKnownTypeValue::typeComplexBool), 0xC003);
  for (auto real : realKinds) {
    EXPECT_NE(bits(real) & 0x000F, 0) << bits(real);
    EXPECT_EQ(bits(real) & 0xBFF0, 0) << bits(real);
  }
  EXPECT_EQ(bits(WellKnownTypeValue::typeUnsignedInt32), bits(WellKnownTypeValue::typeInt32) | 0x4000);
  EXPECT_EQ(bits(WellKnownTypeValue::typeString), 0x10);
  EXPECT_EQ(bits(WellKnownTypeValue::typeCustom), 0x20);
  EXPECT_EQ(bits(WellKnownTypeValue::typeDuration), 0x30);
  EXPECT_EQ(bits(WellKnownTypeValue::typeTimestamp), 0x40);
  static_assert(sizeof(WellKnownType) == 2, "passed as a plain 16-bit value");
}

TEST(WellKnownType, CommonTypePromotesAndTakesSignedSuccessors) {
  using V = WellKnownTypeValue;
  EXPECT_EQ(common(V::typeInt32, V::typeUnsignedInt32), V::typeInt64);
  EXPECT_EQ(common(V::typeUnsignedInt8, V::typeInt8), V::typeInt16);
  EXPECT_EQ(common(V::typeUnsignedInt16, V::typeInt32), V::typeInt32);
  EXPECT_EQ(common(V::typeFloat, V::typeUnsignedInt64), V::typeFloat);
  EXPECT_EQ(common(V::typeBool, V::typeUnsignedInt8), V::typeUnsignedInt8);
  EXPECT_EQ(common(V::typeBool, V::typeInt8), V::typeInt8);
  EXPECT_EQ(common(V::typeComplexUnsignedInt8, V::typeInt8), V::typeComplexInt16);
  EXPECT_EQ(common(V::typeDouble, V::typeComplexFloat), V::typeComplexDouble);
  EXPECT_EQ(common(V::typeDouble, V::typeComplexDouble), V::typeComplexDouble);
  EXPECT_EQ(common(V::typeBool, V::typeComplexBool), V::typeComplexBool);
  EXPECT_EQ(common(V::typeInt64, V::typeUnsignedInt64), V::typeDouble);
  EXPECT_EQ(common(V::typeComplexInt64, V::typeUnsignedInt64), V::typeComplexDouble);
  EXPECT_EQ(common(V::typeUnsignedInt32, V::typeUnsignedInt64), V::typeUnsignedInt64);
}

TEST(WellKnownType, CommonTypeOfNonNumericKinds) {
  using V = WellKnownTypeValue;
  EXPECT_EQ(common(V::typeString, V::typeString), V::typeString);
  EXPECT_EQ(common(V::typeCustom, V::typeCustom), V::typeCustom);
  EXPECT_EQ(common(V::typeString, V::typeDouble), V::typeNone);
  EXPECT_EQ(common(V::typeDuration, V::typeTimestamp), V::typeNone);
  EXPECT_EQ(common(V::typeNone, V::typeDuration), V::typeDuration);
  EXPECT_EQ(common(V::typeComplexInt8, V::typeNone), V::typeComplexInt8);
}

TEST(WellKnownType, CommonTypeOfCodesThatNameNoKind) {
  // They rank with bool and are not remembered: asking twice answers the same.
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(common(code(0x0003), WellKnownTypeValue::typeInt16), WellKnownTypeValue::typeInt16);
    EXPECT_EQ(common(WellKnownTypeValue::typeInt16, code(0x0003)), WellKnownTypeValue::typeInt16);
    EXPECT_EQ(common(WellKnownTypeValue::typeBool, code(0x0003)), code(0x0003));
  }
  // An unsigned code without a signed successor has no common kind, complex or not.
  EXPECT_EQ(common(code(0x0003), code(0xC001)), WellKnownTypeValue::typeNone);
}

TEST(WellKnownType, CommonTypeIsSymmetricAndIdempotent) {
  auto const all = allCodesOfInterest();
  for (auto a : all) {
    EXPECT_EQ(common(a, a), a);
    EXPECT_EQ(common(a, WellKnownType()), a);
    for (auto b : all) {
      EXPECT_EQ(common(a, b), common(b, a)) << bits(a) << " " << bits(b);
    }
  }
  // The complex bit does not take part in the promotion.
  for (auto a : realKinds) {
    for (auto b : realKinds) {
      auto const real = common(a, b);
      EXPECT_EQ(common(complexOf(a), b), complexOf(real)) << bits(a) << " " << bits(b);
      EXPECT_EQ(common(complexOf(a), complexOf(b)), complexOf(real)) << bits(a) << " " << bits(b);
    }
  }
}

TEST(WellKnownType, EveryKindHasItsCodeAndNames) {
  int count = 0;
  ExpectedKinds::forEach([&](auto tag, std::uint16_t expected, char const *name, char const *messageName) {
    using T = typename decltype(tag)::type;
    static_assert(std::is_same_v<decltype(Tarvex::VantraCore::wellKnownTypeOf<T>()), WellKnownType>);
    constexpr WellKnownType type = Tarvex::VantraCore::wellKnownTypeOf<T>();
    EXPECT_EQ(type, code(expected)) << name;
    EXPECT_EQ(Tarvex::VantraCore::wellKnownTypeOf<T const>(), type);
    EXPECT_EQ(std::string(type.toString()), name);
    EXPECT_EQ(WellKnownType(type.toString()), type) << name;
    EXPECT_EQ(std::string(Tarvex::VantraCore::Internal::ElementKind<T>::messageName), messageName);
    ++count;
  });
  EXPECT_EQ(count, 25);
}

TEST(WellKnownType, TextsOutsideTheKinds) {
  EXPECT_EQ(std::string(WellKnownType(WellKnownTypeValue::typeCustom).toString()), "customType");
  EXPECT_EQ(WellKnownType(Tarvex::VantraCore::VxStringView("customType")), WellKnownTypeValue::typeCustom);
  EXPECT_EQ(WellKnownType(Tarvex::VantraCore::VxStringView("string8")), WellKnownTypeValue::typeString);
  EXPECT_EQ(std::string(WellKnownType().toString()), "unknown");
  for (std::uint16_t unnamed : {0x0003, 0x4001, 0x8003, 0x0011, 0x0050, 0xFFFF}) {
    EXPECT_EQ(std::string(code(unnamed).toString()), "unknown") << unnamed;
  }
  // Names are exact: no case folding, no prefixes, no trailing bytes.
  for (char const *refused : {"", "Double", "unknown", "string ", "int", "complexInt", "timestamps", "8"}) {
    EXPECT_EQ(WellKnownType(Tarvex::VantraCore::VxStringView(refused)), WellKnownType()) << refused;
  }
  EXPECT_EQ(WellKnownType(Tarvex::VantraCore::VxStringView("int16", 3)), WellKnownType());
  EXPECT_EQ(WellKnownType(Tarvex::VantraCore::VxStringView("int8\0", 5)), WellKnownType());
}
