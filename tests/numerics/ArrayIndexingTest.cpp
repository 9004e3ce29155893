#include <VantraCore/ArrayIndexing.h>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

using namespace Tarvex::VantraCore;
using AI = ArrayIndexing;
using Indices = std::vector<std::uint64_t>;

namespace {

// The failure kind and text of a call.
std::string failure(std::function<void()> const &call) {
  try {
    call();
  } catch (std::invalid_argument const &e) {
    return std::string("invalid_argument: ") + e.what();
  } catch (std::out_of_range const &e) {
    return std::string("out_of_range: ") + e.what();
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

// Walking every multi-index in an ordering's own sequence must meet offsets 0, 1, 2, ... and back,
// and each offset must be the sum of index times stride.
RC_GTEST_PROP(ArrayIndexing, OffsetsIndicesAndStridesFollowTheOrderingSequence, ()) {
  auto const dims = *rc::gen::container<Indices>(*rc::gen::inRange<std::size_t>(1, 5),
                                                 rc::gen::inRange<std::uint64_t>(1, 5));
  for (bool const row : {true, false}) {
    auto const strideOf = [&](std::uint64_t k) {
      return row ? AI::CalculateDimStrideRowMajor(k, dims) : AI::CalculateDimStrideColumnMajor(k, dims);
    };
    RC_ASSERT(strideOf(dims.size()) == 0u);  // none beyond the rank
    Indices indices(dims.size(), 0), back;
    std::uint64_t expected = 0;
    do {
      for (bool const checked : {true, false}) {
        auto const offset = row ? AI::calculateOffsetRowMajor(indices, dims, checked)
                                : AI::calculateOffsetColumnMajor(indices, dims, checked);
        RC_ASSERT(offset == expected);
        if (row)
          AI::CalculateIndicesRowMajor(back, offset, dims, checked);
        else
          AI::CalculateIndicesColumnMajor(back, offset, dims, checked);
        RC_ASSERT(back == indices);
      }
      std::uint64_t sum = 0;
      for (std::size_t k = 0; k < dims.size(); ++k)
        sum += indices[k] * strideOf(k);
      RC_ASSERT(sum == expected);
      ++expected;
    } while (advance(indices, dims, row));
    RC_ASSERT(expected == elementCount(dims));
  }
}

TEST(ArrayIndexing, EdgeShapes) {
  // No dimensions, or a zero among them, count no elements.
  EXPECT_EQ(elementCount(ArrayDimensionsView()), 0u);
  EXPECT_EQ(elementCount(Indices{2, 0, 3}), 0u);
  EXPECT_EQ(AI::calculateOffsetRowMajor({}, ArrayDimensionsView(), true), 0u);
  Indices out{9, 9, 9, 9};  // longer than the rank
  AI::CalculateIndicesColumnMajor(out, 3, Indices{1, 4}, true);
  EXPECT_EQ(out, (Indices{0, 3}));
  // Unchecked shapes with a zero size must not divide by it.
  AI::CalculateIndicesRowMajor(out, 5, Indices{3, 0, 2}, false);
  EXPECT_EQ(out.size(), 3u);
  AI::CalculateIndicesColumnMajor(out, 5, Indices{0, 3, 2}, false);
  EXPECT_EQ(out.size(), 3u);
}

TEST(ArrayIndexing, FailuresCarryTheirKindsAndMessages) {
  Indices const dims{2, 3}, lastOut{0, 3}, firstOut{2, 0};
  Indices out(8, 7);
  auto const capacity = out.capacity();
  std::pair<char const *, std::function<void()>> const cases[] = {
      {"invalid_argument: Wrong number of indices.", [&] { AI::calculateOffsetRowMajor({1}, dims, false); }},
      {"invalid_argument: Wrong number of indices.", [&] { AI::calculateOffsetColumnMajor({0}, {}, false); }},
      {"out_of_range: Indices out of bounds.", [&] { AI::calculateOffsetRowMajor(lastOut, dims, true); }},
      {"out_of_range: Indices out of bounds.", [&] { AI::calculateOffsetColumnMajor(firstOut, dims, true); }},
      {"invalid_argument: Too few indices.", [&] { AI::CalculateIndicesRowMajor(out, 6, dims, true); }},
      {"invalid_argument: Too few indices.", [&] { AI::CalculateIndicesColumnMajor(out, 0, {}, true); }}};
  for (auto const &[expected, call] : cases)
    EXPECT_EQ(failure(call), expected);
  EXPECT_TRUE(out.empty());  // emptied, its storage kept
  EXPECT_EQ(out.capacity(), capacity);
  EXPECT_EQ(AI::calculateOffsetRowMajor(firstOut, dims, false), 6u);  // unchecked: plain arithmetic
}
