#include <numerics/OrderingConversion.h>

#include <VantraCore/ArrayIndexing.h>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <complex>
#include <cstdint>
#include <string>
#include <vector>

using namespace Tarvex::VantraCore;
using Tarvex::VantraCore::Internal::convertOrdering;
using Shape = std::vector<std::uint64_t>;

namespace {

// The walk spelled out with divisions instead of an odometer: step i stands for the row-major
// multi-index of i modulo the element count. Writes only the first `count` of the destination.
template <typename T>
void referenceConversion(std::vector<T> const &source, DataOrdering from, std::vector<T> &destination,
                         std::uint64_t count, Shape const &dims) {
  std::uint64_t const total = elementCount(dims);
  if ((from != rowMajor && from != columnMajor) || total == 0) return;
  Shape indices;
  for (std::uint64_t i = 0; i < source.size(); ++i) {
    ArrayIndexing::CalculateIndicesRowMajor(indices, i % total, dims, true);
    std::uint64_t const offset = ArrayIndexing::calculateOffsetColumnMajor(indices, dims, true);
    if (from == rowMajor && offset < count) destination[offset] = source[i];
    if (from == columnMajor && i < count && offset < source.size()) destination[i] = source[offset];
  }
}

// Distinct values; strings are not copied as bytes.
template <typename T>
std::vector<T> elements(std::uint64_t count, std::uint64_t seed) {
  std::vector<T> values;
  for (std::uint64_t i = seed; i < seed + count; ++i) {
    if constexpr (std::is_same_v<T, std::string>)
      values.push_back("s" + std::to_string(i));
    else if constexpr (std::is_same_v<T, std::complex<double>>)
      values.emplace_back(double(i), -double(i));
    else
      values.push_back(T(i * 2654435761u));
  }
  return values;
}

// Converts with both routines from each ordering, an unknown one included, with buffers of the given
// sizes, and compares; a pass's worth of guards past the destination must stay as they were.
template <typename T>
void expectAsReference(Shape const &dims, std::uint64_t sourceCount, std::uint64_t destinationCount) {
  auto const source = elements<T>(sourceCount, 1);
  for (DataOrdering from : {rowMajor, columnMajor, DataOrdering(2)}) {
    auto expected = elements<T>(destinationCount + elementCount(dims) + 1, 1000000);
    auto actual = expected;
    referenceConversion(source, from, expected, destinationCount, dims);
    convertOrdering(source.data(), source.size(), from, actual.data(), destinationCount,
                    ArrayDimensionsView(dims));
    RC_ASSERT(actual == expected);
  }
}

// Every element size with its own code path, and a kind that is not copied as bytes.
void checkAllKinds(Shape const &dims, std::uint64_t sourceCount, std::uint64_t destinationCount) {
  auto const check = [&](auto... kinds) {
    (expectAsReference<decltype(kinds)>(dims, sourceCount, destinationCount), ...);
  };
  check(std::uint8_t(), std::uint16_t(), float(), double(), std::complex<double>(), std::string());
}

}  // namespace

// Buffers that fit the shape, and buffers that disagree with it have the walk cover the source and
// skip what lies outside.
RC_GTEST_PROP(OrderingConversion, MatchesTheWalkForSmallShapesAndAnyBuffers, ()) {
  auto const dims =
      *rc::gen::container<Shape>(*rc::gen::inRange<std::size_t>(0, 5), rc::gen::inRange<std::uint64_t>(0, 7));
  std::uint64_t const total = elementCount(dims);
  auto const count = rc::gen::weightedOneOf<std::uint64_t>(
      {{1, rc::gen::just(total)}, {1, rc::gen::inRange<std::uint64_t>(0, 3 * total + 2)}});
  std::uint64_t const sourceCount = *count, destinationCount = *count;
  checkAllKinds(dims, sourceCount, destinationCount);
}

// Shapes that cross tiles, blocks and their edges, and that drop dimensions of size 1.
TEST(OrderingConversion, MatchesTheWalkAcrossTilesAndBlocks) {
  for (Shape const &dims : {Shape{300, 270}, Shape{17, 513}, Shape{1, 260, 1, 9}, Shape{19, 3, 33},
                            Shape{9, 2, 5, 131}, Shape{1, 1, 1}, Shape{1000}}) {
    std::uint64_t const total = elementCount(dims);
    checkAllKinds(dims, total, total);
    checkAllKinds(dims, 2 * total + 1, total - 1);  // whole passes beyond a short destination
  }
}

// A product beyond 64 bits must not wrap into a small count that the whole-pass copy would trust.
TEST(OrderingConversion, ShapesBeyondAnyBufferStayInsideTheBuffers) {
  Shape const dims{3, std::uint64_t(1) << 40, std::uint64_t(1) << 40};
  std::vector<double> const source{1, 2, 3, 4};
  for (DataOrdering from : {rowMajor, columnMajor}) {
    std::vector<double> destination(4, 0.0);
    convertOrdering(source.data(), 4, from, destination.data(), 4, ArrayDimensionsView(dims));
    EXPECT_EQ(destination, (std::vector<double>{1, 0, 0, 0}));
  }
}
