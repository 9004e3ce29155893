#include <VantraCore/ElementKinds.h>

#include "numerics/ExpectedKinds.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

using ExpectedKinds::bits;
using ExpectedKinds::code;
using Tarvex::VantraCore::VxStringView;
using Tarvex::VantraCore::WellKnownType;
using Tarvex::VantraCore::wellKnownTypeOf;
namespace Internal = Tarvex::VantraCore::Internal;

namespace {

std::vector<std::uint16_t> expectedCodes() {
  std::vector<std::uint16_t> codes;
  ExpectedKinds::forEach([&](auto, std::uint16_t expected, auto, auto) { codes.push_back(expected); });
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

}  // namespace

TEST(ElementKinds, DispatchCallsWithTheKindsType) {
  ExpectedKinds::forEach([](auto tag, std::uint16_t expected, char const *name, auto) {
    using Expected = typename decltype(tag)::type;
    bool const sameType = Internal::dispatchWellKnownType(
        code(expected), [](auto kind) { return std::is_same_v<typename decltype(kind)::type, Expected>; });
    EXPECT_TRUE(sameType) << name;
    bool const isNumeric = (expected & 0xF) != 0 && (expected & 0x3FFF) != 0x0003;
    if (isNumeric) {
      EXPECT_TRUE(Internal::dispatchNumericType(code(expected), [](auto kind) {
        return std::is_same_v<typename decltype(kind)::type, Expected>;
      })) << name;
    } else {
      EXPECT_EQ(failure([&] { Internal::dispatchNumericType(code(expected), [](auto) {}); }),
                "not a numeric type")
          << name;
    }
  });
}

TEST(ElementKinds, DispatchRefusesEveryOtherCodeWithTheStageMessage) {
  auto const known = expectedCodes();
  int dispatched = 0;
  for (std::uint32_t bitsOfCode = 0; bitsOfCode <= 0xFFFF; ++bitsOfCode) {
    auto const type = code(static_cast<std::uint16_t>(bitsOfCode));
    bool const isKind = std::find(known.begin(), known.end(), bitsOfCode) != known.end();
    std::string const message = failure([&] {
      auto const reported = Internal::dispatchWellKnownType(
          type, [](auto kind) { return wellKnownTypeOf<typename decltype(kind)::type>(); });
      EXPECT_EQ(reported, type);
      ++dispatched;
    });
    if (isKind) continue;
    ASSERT_EQ(message, (bitsOfCode & 0xF) != 0 ? "not a numeric type" : "unknown type") << bitsOfCode;
    bool const found = Internal::findElementKind(
        type, [](auto) { return true; }, [] { return false; });
    ASSERT_FALSE(found) << bitsOfCode;
  }
  EXPECT_EQ(dispatched, 25);
}

TEST(ElementKinds, ListsFollowTheDispatchOrder) {
  constexpr auto codes = Internal::makeElementKindTable(
      [](auto kind) { return bits(wellKnownTypeOf<typename decltype(kind)::type>()); });
  EXPECT_EQ(std::vector<std::uint16_t>(codes.begin(), codes.end()), expectedCodes());

  std::vector<std::uint16_t> visited;
  Internal::forEachElementKind<Internal::NumericElementKinds>(
      [&](auto kind) { visited.push_back(bits(wellKnownTypeOf<typename decltype(kind)::type>())); });
  auto const all = expectedCodes();
  EXPECT_EQ(visited, std::vector<std::uint16_t>(all.begin() + 2, all.end() - 3));

  static_assert(Internal::isElementKind<Tarvex::VantraCore::Complex<bool>>);
  static_assert(Internal::isElementKind<double const>);
  static_assert(!Internal::isElementKind<long double>);
  static_assert(!Internal::isElementKind<char>);
}

TEST(ElementKinds, MessageTypeNames) {
  ExpectedKinds::forEach([](auto, std::uint16_t expected, auto, char const *messageName) {
    EXPECT_EQ(std::string(Internal::messageTypeName(code(expected))), messageName);
  });
  EXPECT_EQ(failure([] { Internal::messageTypeName(code(0x0020)); }), "unknown type");
  EXPECT_EQ(failure([] { Internal::messageTypeName(code(0x0000)); }), "unknown type");
  EXPECT_EQ(failure([] { Internal::messageTypeName(code(0x0003)); }), "unknown type");
}
