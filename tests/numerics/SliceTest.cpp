#include <VantraCore/ArraySlice.h>
#include <VantraCore/VxVariant.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <support/Throws.h>

#include <stdexcept>
#include <string>
#include <vector>

using namespace Tarvex::VantraCore;
using testing::ElementsAre;
using Flat = Internal::SliceFlattener;
using Offsets = std::vector<std::uint64_t>;

namespace {
IndexSet const all(IndexRange::all);
Offsets const shape{2, 3};
}  // namespace

TEST(SliceFlattener, EnumerationAndStorageOrderingStayApart) {
  Flat const column(ArraySlice{all, IndexSet(IndexValue(1))}, shape, rowMajor, useStorageOrdering);
  EXPECT_TRUE(column.offsets() == (Offsets{1, 4}) && column.dimensions() == (Offsets{2, 1}));
  EXPECT_THAT(Flat({all, IndexSet(IndexValue(1))}, shape, columnMajor, useRowMajor).offsets(),
              ElementsAre(2, 3));
  EXPECT_THAT(Flat({all, all}, shape, rowMajor, useColumnMajor).offsets(), ElementsAre(0, 3, 1, 4, 2, 5));
  EXPECT_THAT(Flat({all, all, all}, Offsets{2, 2, 3}, columnMajor, useRowMajor).offsets(),
              ElementsAre(0, 4, 8, 2, 6, 10, 1, 5, 9, 3, 7, 11));
  // Every other row (the first named twice, once from the end), the last column but one.
  IndexSet const rows(IndexRange(IndexValue(0), IndexValue(0, true), 2), IndexValue(4, true));
  Flat const stepped({rows, IndexSet(IndexValue(1, true))}, Offsets{5, 4}, rowMajor, useStorageOrdering);
  EXPECT_THAT(stepped.offsets(), ElementsAre(2, 10, 18));
  Flat const rankOne(ArraySlice{IndexSet(IndexValue(4), IndexValue(2), IndexValue(2))}, Offsets{5},
                     columnMajor, UseDataOrdering(3));
  EXPECT_THAT(rankOne.offsets(), ElementsAre(2, 4)) << "rank 1 ignores a bad use";
  Flat const one(ArraySliceFromIndices({1, 2}), shape, rowMajor, useStorageOrdering);
  EXPECT_TRUE(one.offsets() == Offsets{5} && one.dimensions() == (Offsets{1, 1}));
}

TEST(SliceFlattener, RefusesInOrder) {
  IndexSet const bad(IndexValue(3)), zeroStep(IndexRange(IndexValue(0), IndexValue(1), 0));
  IndexSet const reversed(IndexRange(IndexValue(1), IndexValue(0), 2));
  auto const flat = [](ArraySlice s, UseDataOrdering use = useStorageOrdering) {
    return [=] { Flat(s, shape, rowMajor, use); };
  };
  using Bad = std::invalid_argument;
  EXPECT_THAT(flat({bad}), throws<Bad>("slice dimensions don't match VxVariant dimensions"));
  EXPECT_THAT(flat({all, bad}, UseDataOrdering(3)), throws<Bad>("slice dimensions are out of bounds"));
  EXPECT_THAT(flat({all, zeroStep}), throws<Bad>("slice dimensions are out of bounds"));
  EXPECT_THROW(flat({reversed, bad})(), std::length_error) << "dimension 0 is expanded before 1 is checked";
  EXPECT_THAT(flat({all, all}, UseDataOrdering(3)), throws<Bad>("invalid UseDataOrdering"));
}

TEST(SliceFlattener, FlatPositionsFollowTheRequestedOrdering) {
  IndexSet const positions(IndexValue(1), IndexValue(0, true));
  EXPECT_THAT(Flat(positions, shape, rowMajor, useColumnMajor).offsets(), ElementsAre(3, 5));
  EXPECT_THAT(Flat(positions, shape, columnMajor, useRowMajor).offsets(), ElementsAre(2, 5));
  EXPECT_THAT(Flat(positions, Offsets{1, 6}, rowMajor, useColumnMajor).offsets(), ElementsAre(1, 5));
  EXPECT_THAT(Flat(positions, shape, rowMajor, useRowMajor).dimensions(), ElementsAre(2));
  EXPECT_THAT([&] { Flat(positions, shape, rowMajor, UseDataOrdering(7)); },
              throws<std::invalid_argument>("invalid UseDataOrdering"));
  EXPECT_THAT([&] { Flat(IndexSet(IndexValue(6)), shape, rowMajor, useRowMajor); },
              throws<std::out_of_range>("Index value out-of-range"));
}

template <class V>
struct Slice : testing::Test {};
using Flavours = testing::Types<VxVariant, VxVariantAbi>;
TYPED_TEST_SUITE(Slice, Flavours);

TYPED_TEST(Slice, CopiesTheSelectionIntoAVariantOfItsOwn) {
  auto const elements = [](TypeParam const &v) {
    auto const range = v.template asIterable<double>();
    return std::vector<double>(range.begin(), range.end());
  };
  TypeParam const columns(std::vector<double>{1, 2, 3, 4, 5, 6, 7, 8}, {2, 4}, columnMajor);
  TypeParam const part = columns.slice({all, IndexSet(IndexRange(IndexValue(1), IndexValue(3)))});
  EXPECT_EQ(part.dataOrdering(), columnMajor);
  EXPECT_THAT(elements(part), ElementsAre(3, 4, 5, 6, 7, 8));
  TypeParam const rows(std::vector<double>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}, {3, 4});
  IndexSet const mixedRuns(IndexRange(IndexValue(0), IndexValue(1)), IndexValue(3));
  TypeParam const corners = rows.slice({IndexSet(IndexValue(0), IndexValue(0, true)), mixedRuns});
  EXPECT_THAT(elements(corners), ElementsAre(1, 2, 4, 9, 10, 12));
  EXPECT_EQ(corners.dimensions()[1], 3u);
  TypeParam const words = TypeParam(std::vector<VxString>{"a", "b", "c", "d"}).slice({mixedRuns});
  EXPECT_STREQ(words.template at<VxString>(2).c_str(), "d");
  EXPECT_EQ(TypeParam(2.5).slice(ArraySliceFromIndices({0})).template at<double>(0), 2.5);
  EXPECT_THAT([] { TypeParam().slice({}); },
              throws<std::invalid_argument>("The given ArraySlice is invalid."));
  EXPECT_THAT([&] { rows.slice({all}); },
              throws<std::invalid_argument>("slice dimensions don't match VxVariant dimensions"));
}
