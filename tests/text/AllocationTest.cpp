// Counts every allocation of the process, the library's included (it calls the replaced operators of
// this program), to hold the string to its allocation promises.
#include <VantraCore/StringUtilities.h>
#include <VantraCore/VxString.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>

namespace {
std::atomic<std::uint64_t> g_allocations{0}, g_releases{0}, g_lastSize{0};
void release(void *memory) noexcept {
  if (memory) g_releases.fetch_add(1);
  std::free(memory);
}
}  // namespace

void *operator new(std::size_t size) {
  g_allocations.fetch_add(1);
  g_lastSize.store(size);
  if (void *memory = std::malloc(size ? size : 1)) return memory;
  throw std::bad_alloc();
}
void operator delete(void *memory) noexcept {
  release(memory);
}
void operator delete(void *memory, std::size_t) noexcept {
  release(memory);
}

using namespace Tarvex::VantraCore;

namespace {
struct Counter {
  std::uint64_t allocations0 = g_allocations.load(), releases0 = g_releases.load();
  std::uint64_t allocations() const { return g_allocations.load() - allocations0; }
  std::uint64_t releases() const { return g_releases.load() - releases0; }
};
}  // namespace

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
  EXPECT_EQ(g_lastSize.load(), 4u + 17u);
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
