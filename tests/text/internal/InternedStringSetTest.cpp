// Replaces the allocator of this program so that a chosen allocation fails.
#include <text/InternedStringSet.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>
#include <string>

namespace {
// Allocations to let pass before one fails; negative never fails.
thread_local long t_allocationsBeforeFailure = -1;
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

}  // namespace

TEST(InternedStringSet, GrowsEightfoldBelow512BucketsThenTwofold) {
  InternedStringSet set;
  EXPECT_EQ(set.bucketCount(), 8u);
  fill(set, 0, 8);
  EXPECT_EQ(set.bucketCount(), 8u);
  fill(set, 8, 9);
  EXPECT_EQ(set.bucketCount(), 64u);
  fill(set, 9, 65);
  EXPECT_EQ(set.bucketCount(), 512u);
  fill(set, 65, 513);
  EXPECT_EQ(set.bucketCount(), 1024u);
  fill(set, 0, 513);  // all present already
  EXPECT_EQ(set.size(), 513u);
  EXPECT_EQ(set.intern("77", 2).data(), set.intern("77", 2).data());
}

TEST(InternedStringSet, FailuresLeaveTheSetAsItWas) {
  InternedStringSet set;
  fill(set, 0, 8);
  // The candidate's node or its record cannot be made.
  for (long failing : {0L, 1L}) {
    t_allocationsBeforeFailure = failing;
    EXPECT_THROW(set.intern("new", 3), std::bad_alloc);
    EXPECT_EQ(set.size(), 8u);
  }
  // The ninth name is linked, then the table cannot grow: the name goes again.
  t_allocationsBeforeFailure = 2;
  EXPECT_THROW(set.intern("new", 3), std::bad_alloc);
  EXPECT_EQ(set.size(), 8u);
  EXPECT_EQ(set.bucketCount(), 8u);

  auto const &added = set.intern("new", 3);
  EXPECT_EQ(set.size(), 9u);
  EXPECT_EQ(set.bucketCount(), 64u);
  EXPECT_EQ(&set.intern("new", 3), &added);
  for (int i = 0; i < 8; ++i)
    EXPECT_EQ(set.intern(std::to_string(i).c_str(), 1).length(), 1u);
  EXPECT_EQ(set.size(), 9u);
}
