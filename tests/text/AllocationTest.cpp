// Holds the string to its allocation promises.
#include <support/CountingAllocator.h>

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
