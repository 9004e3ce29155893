// Replaces the allocator of this program so that a chosen allocation fails.
#include <text/InternedStringSet.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>
#include <string>
#include <utility>
#include <vector>

namespace {
thread_local long t_allocationsBeforeFailure = -1;  // negative: none fails
}  // namespace

void *operator new(std::size_t size) {
  if (t_allocationsBeforeFailure == 0) {
    t_allocationsBeforeFailure = -1;
    throw std::bad_alloc();
  }
  if (t_allocationsBeforeFailure > 0) --t_allocationsBeforeFailure;
  if (void *memory = std::malloc(size ? size : 1)) return memory;
  throw std::bad_alloc();
}
void operator delete(void *memory) noexcept {
  std::free(memory);
}
void operator delete(void *memory, std::size_t) noexcept {
  std::free(memory);
}

using Tarvex::VantraCore::Internal::InternedStringSet;

namespace {
void fill(InternedStringSet &set, int from, int to) {
  for (int i = from; i < to; ++i)
    set.intern(std::to_string(i).c_str(), std::to_string(i).size());
}
// Interns "new" with allocation number `passing` (from 0) failing: the node, its record, the table.
void internFailing(InternedStringSet &set, long passing) {
  EXPECT_THROW((t_allocationsBeforeFailure = passing, set.intern("new", 3)), std::bad_alloc);
  t_allocationsBeforeFailure = -1;
}
}  // namespace

TEST(InternedStringSet, GrowsEightfoldBelow512BucketsThenTwofold) {
  InternedStringSet set;
  std::vector<std::pair<int, std::uint64_t>> const steps{{8, 8}, {9, 64}, {64, 64}, {65, 512}, {513, 1024}};
  int size = 0;
  for (auto [newSize, buckets] : steps) {
    fill(set, size, newSize);
    size = newSize;
    EXPECT_EQ(set.bucketCount(), buckets) << "at size " << newSize;
  }
  fill(set, 0, 513);
  EXPECT_EQ(set.size(), 513u);
}

TEST(InternedStringSet, FailuresLeaveTheSetAsItWas) {
  InternedStringSet set;
  fill(set, 0, 8);
  for (long failing : {0L, 1L, 2L}) {
    internFailing(set, failing);
    EXPECT_EQ(set.size(), 8u);
    EXPECT_EQ(set.bucketCount(), 8u);
  }
  auto const *added = &set.intern("new", 3);
  EXPECT_EQ(set.size(), 9u);
  EXPECT_EQ(&set.intern("new", 3), added);
}

// A name is found by its whole length: equal hashes of a prefix or of a longer text never match it.
TEST(InternedStringSet, FindsByHashLengthAndEveryByte) {
  using Tarvex::VantraCore::Internal::fnv1aHash;
  InternedStringSet set;
  char const text[] = "a\0b";
  auto const *whole = &set.intern(text, 3, fnv1aHash({text, 3}));
  auto const *prefix = &set.intern(text, 1);
  EXPECT_NE(whole, prefix);
  EXPECT_EQ(&set.intern(text, 3), whole);
  EXPECT_EQ(&set.intern("a", 1, fnv1aHash({"a", 1})), prefix);
  auto const *empty = &set.intern("", 0);
  EXPECT_EQ(&set.intern(nullptr, 0), empty);
  EXPECT_EQ(set.size(), 3u);
}
