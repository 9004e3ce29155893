// Counts every allocation of the process, the library's included (it calls the replaced operators of
// this program), to check the allocation promises of the string.
#include <VantraCore/VxString.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>

namespace {
std::atomic<std::uint64_t> g_allocations{0};
std::atomic<std::uint64_t> g_releases{0};
std::atomic<std::size_t> g_lastSize{0};
}  // namespace

void *operator new(std::size_t size) {
  g_allocations.fetch_add(1);
  g_lastSize.store(size);
  if (void *memory = std::malloc(size ? size : 1)) return memory;
  throw std::bad_alloc();
}
namespace {
void release(void *memory) noexcept {
  if (memory) g_releases.fetch_add(1);
  std::free(memory);
}
}  // namespace
void operator delete(void *memory) noexcept {
  release(memory);
}
void operator delete(void *memory, std::size_t) noexcept {
  release(memory);
}

using Tarvex::VantraCore::VxString;

namespace {

// Allocations and releases since construction.
struct Counter {
  std::uint64_t allocations0 = g_allocations.load();
  std::uint64_t releases0 = g_releases.load();
  std::uint64_t allocations() const { return g_allocations.load() - allocations0; }
  std::uint64_t releases() const { return g_releases.load() - releases0; }
};

std::uint32_t countOf(VxString const &text) {
  std::uint32_t count;
  std::memcpy(&count, reinterpret_cast<void const *>(text.data() - 16), sizeof count);
  return count;
}

}  // namespace

TEST(VxStringMemory, DefaultAndCopiesAllocateNothing) {
  Counter counter;
  {
    VxString empty;
    VxString copyOfEmpty(empty);
    copyOfEmpty = empty;
  }
  EXPECT_EQ(counter.allocations(), 0u);

  VxString const text("shared");
  EXPECT_EQ(countOf(text), 1u);
  Counter copies;
  {
    VxString a(text);
    VxString b;
    b = a;
    VxString c(std::move(b));
    EXPECT_EQ(countOf(text), 3u);
  }
  EXPECT_EQ(copies.allocations(), 0u);
  EXPECT_EQ(copies.releases(), 0u);
  EXPECT_EQ(countOf(text), 1u);
}

TEST(VxStringMemory, BuildingAllocatesOnceTheRecordSize) {
  Counter counter;
  VxString const text("abcd");
  std::size_t const size = g_lastSize.load();
  EXPECT_EQ(counter.allocations(), 1u);
  EXPECT_EQ(size, 4u + 17u);

  Counter derived;
  VxString const joined = text + "xyz";
  VxString const part = joined.substr(2, 3);
  VxString const fromStd(std::string("std"));
  EXPECT_EQ(derived.allocations(), 3u);
}

TEST(VxStringMemory, LastReleaseFreesTheRecordOnce) {
  Counter counter;
  Tarvex::VantraCore::Internal::TransportRecord transport;
  auto *record = VxStringData_C_API_constructCString(&transport, "abc", 3);
  EXPECT_EQ(VxStringData_C_API_copy(record), record);
  VxStringData_C_API_copy(record);
  VxStringData_C_API_destruct(record);
  VxStringData_C_API_destruct(record);
  EXPECT_EQ(counter.releases(), 0u);
  VxStringData_C_API_destruct(record);
  EXPECT_EQ(counter.allocations(), 1u);
  EXPECT_EQ(counter.releases(), 1u);
}
