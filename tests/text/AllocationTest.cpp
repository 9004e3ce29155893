// Holds the string to its allocation promises.
#include <support/CountingAllocator.h>

#include <VantraCore/InternedString.h>
#include <VantraCore/StringUtilities.h>
#include <VantraCore/VxString.h>

#include <gtest/gtest.h>

using namespace Tarvex::VantraCore;

using CountingAllocator::Counter;

TEST(VxStringMemory, DefaultStringsAndCopiesAllocateNothing) {
  VxString const text("shared");
  Counter counter;
  {
    VxString empty, emptyCopy(empty);
    VxString a(text), b;
    b = a;
    VxString const c(std::move(b)), padded = padString(text, -3), stripped = stripQuotes(text);
  }
  EXPECT_EQ(counter.allocations(), 0u);
  EXPECT_EQ(counter.releases(), 0u);
}

TEST(VxStringMemory, BuildingAllocatesOnceAndTheLastReleaseFrees) {
  Counter counter;
  VxString const text("abcd");
  EXPECT_EQ(CountingAllocator::lastSize.load(), 4u + 17u);
  VxString const joined = text + "xyz", part = joined.substr(2, 3), padded = padString(text, 9);
  EXPECT_EQ(counter.allocations(), 4u);

  Counter records;
  Internal::TransportRecord transport;
  auto *record = VxStringData_C_API_constructCString(&transport, "abc", 3);
  VxStringData_C_API_copy(VxStringData_C_API_copy(record));
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(records.releases(), 0u);
    VxStringData_C_API_destruct(record);
  }
  EXPECT_EQ(records.allocations(), 1u);
  EXPECT_EQ(records.releases(), 1u);
}

TEST(VxStringMemory, InterningAKnownNameAllocatesNothing) {
  char const text[] = "known\0name";
  InternedString const whole(text, sizeof text - 1), prefix(text, 5);
  ASSERT_NE(prefix.data(), whole.data());  // the NUL and what follows it count
  Counter counter;
  InternedString const wholeAgain(text, sizeof text - 1), prefixAgain(text, 5);
  EXPECT_EQ(counter.allocations(), 0u);
  EXPECT_EQ(wholeAgain.data(), whole.data());
  EXPECT_EQ(prefixAgain.data(), prefix.data());
}
