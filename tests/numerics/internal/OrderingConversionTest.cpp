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
// multi-index of i modulo the element count.
template <typename T>
void referenceConversion(std::vector<T> const &source, DataOrdering from, std::vector<T> &destination,
                         Shape const &dims) {
  std::uint64_t const total = elementCount(dims);
  if ((from != rowMajor && from != columnMajor) || total == 0) return;
  Shape indices;
  for (std::uint64_t i = 0; i < source.size(); ++i) {
    ArrayIndexing::CalculateIndicesRowMajor(indices, i % total, dims, true);
    std::uint64_t const offset = ArrayIndexing::calculateOffsetColumnMajor(indices, dims, true);
    if (from == rowMajor && offset < destination.size()) destination[offset] = source[i];
    if (from == columnMajor && i < destination.size() && offset < source.size())
      destination[i] = source[offset];
  }
}

template <typename T>
T element(std::uint64_t i) {
  if constexpr (std::is_same_v<T, std::string>) {
    return "s" + std::to_string(i);
  } else if constexpr (std::is_same_v<T, std::complex<double>>) {
    return {double(i), -double(i)};
  } else {
    return T(i * 2654435761u);
  }
}

template <typename T>
std::vector<T> elements(std::uint64_t count, std::uint64_t seed) {
  std::vector<T> values(count);
  for (std::uint64_t i = 0; i < count; ++i)
    values[i] = element<T>(seed + i);
  return values;
}

// Converts with both routines from `from`, with buffers of the given sizes, and compares.
template <typename T>
void expectAsReference(Shape const &dims, DataOrdering from, std::uint64_t sourceCount,
                       std::uint64_t destinationCount) {
  auto const source = elements<T>(sourceCount, 1);
  auto expected = elements<T>(destinationCount, 1000000);
  auto actual = expected;
  referenceConversion(source, from, expected, dims);
  convertOrdering(source.data(), source.size(), from, actual.data(), actual.size(),
                  ArrayDimensionsView(dims));
  RC_ASSERT(actual == expected);
}

template <typename T>
void expectRoundTrip(Shape const &dims) {
  auto const source = elements<T>(elementCount(dims), 1);
  std::vector<T> columns(source.size()), back(source.size());
  convertOrdering(source.data(), source.size(), rowMajor, columns.data(), columns.size(),
                  ArrayDimensionsView(dims));
  convertOrdering(columns.data(), columns.size(), columnMajor, back.data(), back.size(),
                  ArrayDimensionsView(dims));
  RC_ASSERT(back == source);
}

template <typename T>
void checkShape(Shape const &dims) {
  std::uint64_t const total = elementCount(dims);
  for (DataOrdering from : {rowMajor, columnMajor})
    expectAsReference<T>(dims, from, total, total);
  expectRoundTrip<T>(dims);
}

// Every element size with its own code path, and a kind that is not copied as bytes.
void checkAllKinds(Shape const &dims) {
  checkShape<std::uint8_t>(dims);
  checkShape<std::uint16_t>(dims);
  checkShape<float>(dims);
  checkShape<double>(dims);
  checkShape<std::complex<double>>(dims);
  checkShape<std::string>(dims);
}

}  // namespace

RC_GTEST_PROP(OrderingConversion, MatchesTheWalkForRanksUpToFour, ()) {
  checkAllKinds(*rc::gen::container<Shape>(*rc::gen::inRange<std::size_t>(0, 5),
                                           rc::gen::inRange<std::uint64_t>(0, 7)));
}

// Shapes that cross tiles, blocks and their edges, and that drop dimensions of size 1.
TEST(OrderingConversion, MatchesTheWalkAcrossTilesAndBlocks) {
  for (Shape const &dims : {Shape{300, 270}, Shape{17, 513}, Shape{1, 260, 1, 9}, Shape{19, 3, 33},
                            Shape{9, 2, 5, 131}, Shape{1, 1, 1}, Shape{1000}}) {
    checkAllKinds(dims);
  }
}

// Buffers that disagree with the shape: the walk covers the source and skips what lies outside.
RC_GTEST_PROP(OrderingConversion, MatchesTheWalkForMismatchedBuffers, ()) {
  auto const dims =
      *rc::gen::container<Shape>(*rc::gen::inRange<std::size_t>(0, 4), rc::gen::inRange<std::uint64_t>(1, 5));
  std::uint64_t const total = elementCount(dims);
  auto const sourceCount = *rc::gen::inRange<std::uint64_t>(0, 3 * total + 2);
  auto const destinationCount = *rc::gen::inRange<std::uint64_t>(0, 3 * total + 2);
  for (DataOrdering from : {rowMajor, columnMajor}) {
    expectAsReference<double>(dims, from, sourceCount, destinationCount);
    expectAsReference<std::string>(dims, from, sourceCount, destinationCount);
  }
}

TEST(OrderingConversion, UnknownOrderingCopiesNothing) {
  std::vector<double> const source{1, 2, 3, 4, 5, 6};
  std::vector<double> destination(6, 0.0);
  Shape const dims{2, 3};
  convertOrdering(source.data(), 6, DataOrdering(2), destination.data(), 6, ArrayDimensionsView(dims));
  EXPECT_EQ(destination, std::vector<double>(6, 0.0));
  convertOrdering(source.data(), 6, rowMajor, destination.data(), 6, ArrayDimensionsView(dims));
  EXPECT_EQ(destination, (std::vector<double>{1, 4, 2, 5, 3, 6}));
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
