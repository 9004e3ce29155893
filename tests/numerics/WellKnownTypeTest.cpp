#include <VantraCore/WellKnownType.h>
#include <VantraCore/detail/ElementKinds.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <complex>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

using namespace Tarvex::VantraCore;
using V = Internal::WellKnownTypeValue;

namespace {

constexpr WellKnownType code(std::uint16_t bits) {
  return static_cast<V>(bits);
}
constexpr std::uint16_t bits(WellKnownType type) {
  return static_cast<std::uint16_t>(type.value());
}
constexpr bool numericBase(std::uint32_t bits) {
  return (bits & Internal::wellKnownTypeNumericBaseMask) != 0;
}
WellKnownType common(WellKnownType a, WellKnownType b) {
  return WellKnownType::getCommonWellKnownType(a, b);
}

// The kinds as the interface documents them, written out apart from the library's list, in dispatch
// order: code, name, and name in failure messages.
struct Documented {
  std::uint16_t code;
  char const *name, *messageName;
};
constexpr Documented documented[] = {
    {0x4003, "bool", "bool"},
    {0xC003, "complexBool", "Tarvex::VantraCore::Complex<bool,void>"},
    {0x0001, "double", "double"},
    {0x0002, "float", "float"},
    {0x0004, "int8", "int8_t"},
    {0x0005, "int16", "int16_t"},
    {0x0006, "int32", "int"},
    {0x0007, "int64", "int64_t"},
    {0x4004, "unsignedInt8", "uint8_t"},
    {0x4005, "unsignedInt16", "uint16_t"},
    {0x4006, "unsignedInt32", "unsigned int"},
    {0x4007, "unsignedInt64", "uint64_t"},
    {0x8001, "complexDouble", "std::complex<double>"},
    {0x8002, "complexFloat", "std::complex<float>"},
    {0x8004, "complexInt8", "Tarvex::VantraCore::Complex<signed char,void>"},
    {0x8005, "complexInt16", "Tarvex::VantraCore::Complex<short,void>"},
    {0x8006, "complexInt32", "Tarvex::VantraCore::Complex<int,void>"},
    {0x8007, "complexInt64", "Tarvex::VantraCore::Complex<__int64,void>"},
    {0xC004, "complexUnsignedInt8", "Tarvex::VantraCore::Complex<unsigned char,void>"},
    {0xC005, "complexUnsignedInt16", "Tarvex::VantraCore::Complex<unsigned short,void>"},
    {0xC006, "complexUnsignedInt32", "Tarvex::VantraCore::Complex<unsigned int,void>"},
    {0xC007, "complexUnsignedInt64", "Tarvex::VantraCore::Complex<unsigned __int64,void>"},
    {0x0010, "string", "Tarvex::VantraCore::VxString"},
    {0x0030, "duration", "Tarvex::VantraCore::Duration"},
    {0x0040, "timestamp", "Tarvex::VantraCore::Timestamp"},
};
// Their element types, in the same order.
using DocumentedTypes =
    Internal::TypeList<bool, Complex<bool>, double, float, signed char, short, int, long, unsigned char,
                       unsigned short, unsigned int, unsigned long, std::complex<double>, std::complex<float>,
                       Complex<signed char>, Complex<short>, Complex<int>, Complex<long>,
                       Complex<unsigned char>, Complex<unsigned short>, Complex<unsigned int>,
                       Complex<unsigned long>, VxString, Duration, Timestamp>;

template <class Call>
std::string failure(Call &&call) {
  try {
    call();
  } catch (std::runtime_error const &e) {
    return e.what();
  }
  return "no exception";
}

// The code of the element type a dispatch lands on.
constexpr auto codeOfKind = [](auto kind) { return wellKnownTypeOf<typename decltype(kind)::type>(); };

}  // namespace

TEST(WellKnownType, EveryKindHasItsTypeCodeAndNames) {
  static_assert(sizeof(WellKnownType) == 2, "passed as a plain 16-bit value");
  static_assert(std::is_same_v<Internal::ElementKinds, DocumentedTypes>);
  static_assert(wellKnownTypeOf<int const>() == V::typeInt32);
  constexpr auto listed = Internal::makeElementKindTable(codeOfKind);
  ASSERT_EQ(listed.size(), std::size(documented));
  for (std::size_t i = 0; i < listed.size(); ++i) {
    WellKnownType const type = code(documented[i].code);
    EXPECT_EQ(listed[i], type) << documented[i].name;
    EXPECT_EQ(std::string(type.toString()), documented[i].name);
    EXPECT_EQ(WellKnownType(type.toString()), type) << documented[i].name;
    EXPECT_EQ(std::string(Internal::messageTypeName(type)), documented[i].messageName);
  }
}

// Each dispatch lands on the kind of a code, or refuses it at its stage: only the twenty kinds with a
// numeric base, the truth values aside, reach the numeric dispatch.
TEST(WellKnownType, EveryCodeIsDispatchedOrRefusedByStage) {
  for (std::uint32_t value = 0; value <= 0xFFFF; ++value) {
    auto const type = code(static_cast<std::uint16_t>(value));
    auto const dispatched = [&] { return Internal::dispatchWellKnownType(type, codeOfKind); };
    auto const numeric = [&] { return Internal::dispatchNumericType(type, codeOfKind); };
    bool const known = std::any_of(std::begin(documented), std::end(documented),
                                   [&](Documented const &kind) { return kind.code == value; });
    if (known && numericBase(value) && !isTruthKind(type)) {
      ASSERT_EQ(numeric(), type) << value;
    } else {
      ASSERT_EQ(failure(numeric), "not a numeric type") << value;
    }
    if (known) {
      ASSERT_EQ(dispatched(), type) << value;
      continue;
    }
    ASSERT_EQ(failure(dispatched), numericBase(value) ? "not a numeric type" : "unknown type") << value;
    ASSERT_EQ(failure([&] { Internal::messageTypeName(type); }), "unknown type") << value;
    ASSERT_FALSE(Internal::findElementKind(
        type, [](auto) { return true; }, [] { return false; }));
    if (type != V::typeCustom) {
      ASSERT_EQ(std::string(type.toString()), "unknown") << value;
    }
  }
}

TEST(WellKnownType, NamesOutsideTheKindsAndRefusedNames) {
  EXPECT_EQ(std::string(WellKnownType(V::typeCustom).toString()), "customType");
  EXPECT_EQ(WellKnownType(VxStringView("customType")), V::typeCustom);
  EXPECT_EQ(WellKnownType(VxStringView("string8")), V::typeString);
  for (char const *refused : {"", "Double", "unknown", "string ", "int", "complexInt", "timestamps"}) {
    EXPECT_EQ(WellKnownType(VxStringView(refused)), WellKnownType()) << refused;
  }
  EXPECT_EQ(WellKnownType(VxStringView("int16", 3)), WellKnownType());
  EXPECT_EQ(WellKnownType(VxStringView("int8\0", 5)), WellKnownType());
}

// Symmetry, the complex bit and the two rules for equal and missing kinds hold over all pairs; the
// examples pin the promotion rank and the signed successors.
TEST(WellKnownType, CommonKind) {
  struct Case {
    V a, b, expected;
  };
  for (auto [a, b, expected] :
       std::initializer_list<Case>{{V::typeInt32, V::typeUnsignedInt32, V::typeInt64},
                                   {V::typeUnsignedInt8, V::typeInt8, V::typeInt16},
                                   {V::typeUnsignedInt16, V::typeInt32, V::typeInt32},
                                   {V::typeFloat, V::typeUnsignedInt64, V::typeFloat},
                                   {V::typeFloat, V::typeDouble, V::typeDouble},
                                   {V::typeBool, V::typeUnsignedInt8, V::typeUnsignedInt8},
                                   {V::typeBool, V::typeInt8, V::typeInt8},
                                   {V::typeUnsignedInt32, V::typeUnsignedInt64, V::typeUnsignedInt64},
                                   {V::typeInt64, V::typeUnsignedInt64, V::typeDouble},
                                   {V::typeString, V::typeDouble, V::typeNone},
                                   {V::typeDuration, V::typeTimestamp, V::typeNone}}) {
    EXPECT_EQ(common(a, b), expected) << bits(a) << " " << bits(b);
  }
  std::vector<WellKnownType> kinds{V::typeCustom, V::typeNone};
  for (auto const &kind : documented)
    kinds.push_back(code(kind.code));
  auto const complexOf = [](WellKnownType type) {
    return code(bits(type) | Internal::wellKnownTypeComplexBit);
  };
  for (auto a : kinds) {
    EXPECT_EQ(common(a, a), a);
    EXPECT_EQ(common(a, WellKnownType()), a);
    for (auto b : kinds) {
      EXPECT_EQ(common(a, b), common(b, a));
      if (numericBase(bits(a)) && numericBase(bits(b))) {
        EXPECT_EQ(common(complexOf(a), b), complexOf(common(a, b)));
      }
    }
  }
  // Codes that name no kind rank with bool, and nothing is remembered of them.
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(common(code(0x0003), V::typeInt16), V::typeInt16);
    EXPECT_EQ(common(V::typeBool, code(0x0003)), code(0x0003));
    EXPECT_EQ(common(code(0x0003), code(0xC001)), V::typeNone);  // unsigned without a successor
  }
}
