#include <VantraCore/ArrayIndexing.h>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

using namespace Tarvex::VantraCore;
using Indices = std::vector<std::uint64_t>;

namespace {

template <typename Exception, typename Call>
std::string failure(Call call) {
  try {
    call();
  } catch (Exception const &e) {
    return e.what();
  }
  return "no exception";
}

// Steps a multi-index through a shape, the last index turning fastest or the first. False at the end.
bool advance(Indices &indices, Indices const &dims, bool lastFastest) {
  for (std::size_t n = 0; n < dims.size(); ++n) {
    std::size_t const k = lastFastest ? dims.size() - 1 - n : n;
    if (++indices[k] < dims[k]) return true;
    indices[k] = 0;
  }
  return false;
}

}  // namespace

TEST(ArrayIndexing, ElementCountIsZeroWithoutDimensionsOrWithAZero) {
  EXPECT_EQ(elementCount(ArrayDimensionsView()), 0u);
  EXPECT_EQ(elementCount(Indices{2, 0, 3}), 0u);
  EXPECT_EQ(elementCount(Indices{2, 3, 4}), 24u);
}

TEST(ArrayIndexing, StridesOfBothOrderings) {
  Indices const dims{2, 3, 4};
  EXPECT_EQ(ArrayIndexing::CalculateDimStrideRowMajor(0, dims), 12u);
  EXPECT_EQ(ArrayIndexing::CalculateDimStrideRowMajor(2, dims), 1u);
  EXPECT_EQ(ArrayIndexing::CalculateDimStrideColumnMajor(0, dims), 1u);
  EXPECT_EQ(ArrayIndexing::CalculateDimStrideColumnMajor(2, dims), 6u);
  EXPECT_EQ(ArrayIndexing::CalculateDimStrideRowMajor(5, Indices{2, 3}), 0u);
  EXPECT_EQ(ArrayIndexing::CalculateDimStrideColumnMajor(2, Indices{2, 3}), 0u);
}

// Walking every multi-index in an ordering's own sequence must meet offsets 0, 1, 2, ... and back.
RC_GTEST_PROP(ArrayIndexing, OffsetsAndIndicesFollowTheOrderingSequence, ()) {
  auto const dims = *rc::gen::container<Indices>(*rc::gen::inRange<std::size_t>(1, 5),
                                                 rc::gen::inRange<std::uint64_t>(1, 5));
  for (bool const row : {true, false}) {
    Indices indices(dims.size(), 0), back;
    std::uint64_t expected = 0;
    do {
      auto const offset = row ? ArrayIndexing::calculateOffsetRowMajor(indices, dims, true)
                              : ArrayIndexing::calculateOffsetColumnMajor(indices, dims, true);
      RC_ASSERT(offset == expected);
      for (bool const checked : {true, false}) {
        if (row)
          ArrayIndexing::CalculateIndicesRowMajor(back, offset, dims, checked);
        else
          ArrayIndexing::CalculateIndicesColumnMajor(back, offset, dims, checked);
        RC_ASSERT(back == indices);
      }
      ++expected;
    } while (advance(indices, dims, row));
    RC_ASSERT(expected == elementCount(dims));
  }
}

TEST(ArrayIndexing, KnownPositions) {
  Indices const dims{2, 3};
  EXPECT_EQ(ArrayIndexing::calculateOffsetRowMajor({1, 0}, dims, true), 3u);
  EXPECT_EQ(ArrayIndexing::calculateOffsetColumnMajor({1, 0}, dims, true), 1u);
  Indices out{9, 9, 9, 9};
  ArrayIndexing::CalculateIndicesColumnMajor(out, 3, Indices{1, 4}, true);
  EXPECT_EQ(out, (Indices{0, 3}));
  EXPECT_EQ(ArrayIndexing::calculateOffsetRowMajor({}, ArrayDimensionsView(), true), 0u);
}

TEST(ArrayIndexing, FailuresCarryTheirMessages) {
  Indices const dims{2, 3};
  Indices out;
  EXPECT_EQ(failure<std::invalid_argument>([&] { ArrayIndexing::calculateOffsetRowMajor({1}, dims, false); }),
            "Wrong number of indices.");
  EXPECT_EQ(failure<std::invalid_argument>(
                [&] { ArrayIndexing::calculateOffsetColumnMajor({0}, ArrayDimensionsView(), false); }),
            "Wrong number of indices.");
  EXPECT_EQ(failure<std::out_of_range>([&] {
              ArrayIndexing::calculateOffsetRowMajor({0, 3}, dims, true);
            }),
            "Indices out of bounds.");
  EXPECT_EQ(failure<std::out_of_range>([&] {
              ArrayIndexing::calculateOffsetColumnMajor({2, 0}, dims, true);
            }),
            "Indices out of bounds.");
  EXPECT_EQ(ArrayIndexing::calculateOffsetRowMajor({2, 0}, dims, false), 6u);  // unchecked: plain arithmetic

  out.assign(8, 7);
  auto const capacity = out.capacity();
  EXPECT_EQ(
      failure<std::invalid_argument>([&] { ArrayIndexing::CalculateIndicesRowMajor(out, 6, dims, true); }),
      "Too few indices.");
  EXPECT_TRUE(out.empty());
  EXPECT_EQ(out.capacity(), capacity);
  EXPECT_EQ(failure<std::invalid_argument>(
                [&] { ArrayIndexing::CalculateIndicesColumnMajor(out, 0, ArrayDimensionsView(), true); }),
            "Too few indices.");
}

TEST(ArrayIndexing, UncheckedShapesWithAZeroDoNotTrap) {
  Indices out;
  ArrayIndexing::CalculateIndicesRowMajor(out, 5, Indices{3, 0, 2}, false);
  EXPECT_EQ(out.size(), 3u);
  ArrayIndexing::CalculateIndicesColumnMajor(out, 5, Indices{0, 3, 2}, false);
  EXPECT_EQ(out.size(), 3u);
}
