#include <VantraCore/IndexSet.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <support/Throws.h>

#include <memory>
#include <new>
#include <stdexcept>
#include <vector>

using namespace Tarvex::VantraCore;
using Positions = std::vector<std::uint64_t>;
using testing::AnyOf;
using testing::Throws;

TEST(IndexValue, ResolvesFromEitherEnd) {
  EXPECT_EQ(IndexValue(0, true).expand(7), Positions{6});
  EXPECT_EQ(IndexValue(6, true).expand(7), Positions{0});
  EXPECT_TRUE(IndexValue(6).isValid(7));
  EXPECT_FALSE(IndexValue(7).isValid(7));
  EXPECT_FALSE(IndexValue(0, true).isValid(0));
  EXPECT_THAT([] { IndexValue(7, true).expand(7); }, throws<std::out_of_range>("Index value out-of-range"));
}

TEST(IndexRange, ExpandsForwardByStepIncludingAStopItLandsOn) {
  EXPECT_EQ(IndexRange::all.expand(4), (Positions{0, 1, 2, 3}));
  EXPECT_EQ(IndexRange(1, 6, 2).expand(7), (Positions{1, 3, 5}));
  EXPECT_EQ(IndexRange(1, 5, 2).expand(7), (Positions{1, 3, 5}));
  EXPECT_EQ(IndexRange(0, IndexValue(1, true), 3).expand(8), (Positions{0, 3, 6}));
  EXPECT_EQ(IndexRange(4, 4).expand(5), Positions{4});
  EXPECT_THROW(IndexRange(0, 5).expand(5), std::out_of_range);
  EXPECT_THROW(IndexRange(5, 0).expand(5), std::out_of_range);
  // Validity needs both ends and a step.
  EXPECT_TRUE(IndexRange::all.isValid(1));
  EXPECT_FALSE(IndexRange::all.isValid(0));
  EXPECT_FALSE(IndexRange(0, 3, 0).isValid(4));
  EXPECT_FALSE(IndexRange(0, 4).isValid(4));
}

// A range counts only forward: a reversed one wraps to a count no vector can hold.
TEST(IndexRange, ReversedRangeFailsInsteadOfCountingBackward) {
  for (std::uint64_t step : {1u, 2u, 64u})
    EXPECT_THAT([&] { IndexRange(5, 1, step).expand(8); },
                AnyOf(throws<std::length_error>("vector<T> too long"), Throws<std::bad_alloc>()))
        << "step " << step;
}

// Items are cloned through the base: type, both ends with their sides, and the step survive.
TEST(IndexSet, OwnsClonesAndCopiesDeeply) {
  IndexRange const range(IndexValue(6, true), 7, 2);
  std::unique_ptr<IndexItem> clone(static_cast<IndexItem const &>(range).clone());
  EXPECT_EQ(clone->expand(9), (Positions{2, 4, 6}));

  IndexValue value(1);
  IndexSet set(value, IndexRange::all);
  value.value = 3;  // the set holds its own copy
  ASSERT_EQ(set.size(), 2u);
  EXPECT_EQ(set[0].expand(4), Positions{1});
  EXPECT_NE(&set[1], static_cast<IndexItem const *>(&IndexRange::all));

  auto copy = std::make_unique<IndexSet>(set);
  EXPECT_NE(&(*copy)[0], &set[0]);
  copy->add(IndexValue(0, true));
  EXPECT_EQ(set.size(), 2u);

  IndexSet assigned;
  assigned = *copy;
  copy.reset();  // the assigned copy must not share its items
  ASSERT_EQ(assigned.size(), 3u);
  EXPECT_EQ(assigned[2].expand(4), Positions{3});
  EXPECT_EQ(assigned[1].expand(2), (Positions{0, 1}));
}
