#include <VantraCore/ScalarVariantData.h>
#include <VantraCore/VectorVariantData.h>
#include <variant/ArrayHolders.h>
#include <variant/HolderReference.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

using namespace Tarvex::VantraCore;
using namespace Tarvex::VantraCore::Internal;
using ::testing::ElementsAre;

namespace {

using Dims = std::vector<std::uint64_t>;

Dims shapeOf(HolderReference const &holder) {
  return {holder->dimensions().begin(), holder->dimensions().end()};
}
template <class T>
std::vector<T> elementsOf(HolderReference const &holder, std::uint64_t count = 0) {
  auto const *data = static_cast<T const *>(holder->constStoredData());
  return {data, data + (count ? count : holder->numberAllocatedElements())};
}
template <class T>
HolderReference array(std::vector<T> const &values, Dims const &dims, DataOrdering ordering = rowMajor) {
  return HolderReference(
      constructVariantVectorWithDataWithDimsUnresolved<T>(values.data(), values.size(), dims, ordering));
}
HolderReference sixDoubles(DataOrdering ordering = rowMajor) {
  return array<double>({0, 1, 2, 3, 4, 5}, {2, 3}, ordering);
}
HolderReference share(HolderReference const &holder) {
  holder->copy();
  return HolderReference(holder.get());
}

template <class E>
void expectThrowsWith(std::function<void()> const &action, std::string const &message) {
  try {
    action();
    ADD_FAILURE() << "nothing thrown, expected " << message;
  } catch (E const &e) {
    EXPECT_EQ(std::string(e.what()), message);
  }
}
std::string const mismatch = "dimensions do not match data length";
std::string const beyondStorage = "Cannot reshape array to given dimensions without reallocating.";
std::string const shared = "Reference count is greater than 1 - cannot reshape without reallocating.";

}  // namespace

TEST(ArrayFactories, ResolveAnOpenShapeEachByItsOwnRule) {
  std::vector<double> const five{1, 2, 3, 4, 5};
  EXPECT_THAT(shapeOf(array(five, {})), ElementsAre(5u));
  expectThrowsWith<std::length_error>([&] { array(five, {0}); }, mismatch);
  expectThrowsWith<std::length_error>([&] { array(five, {2, 3}); }, mismatch);
  // The moved vector takes any shape without elements for its own length.
  EXPECT_THAT(
      shapeOf(HolderReference(constructVariantDataFromMovedVector<double>(five, Dims{5, 0}, rowMajor))),
      ElementsAre(5u));
  expectThrowsWith<std::length_error>(
      [&] { constructVariantDataFromMovedVector<double>(five, Dims{6}, rowMajor); }, mismatch);
  for (HolderReference const &empty :
       {array<double>({}, {}),
        HolderReference(constructVariantDataFromMovedVector<double>({}, {}, rowMajor))}) {
    EXPECT_EQ(empty->dimensions().count, 0u);
    EXPECT_EQ(empty->numberAllocatedElements(), 0u);
  }
  EXPECT_THROW(constructVariantVectorWithDataWithDimsUnresolved<double>(nullptr, 3, {}, rowMajor),
               std::invalid_argument);
  EXPECT_THROW(
      constructVariantVectorWithoutDataWithDimsUnresolved<double>(Dims{1u << 31, 1u << 31}, rowMajor),
      std::bad_alloc);
}

TEST(ArrayFactories, ShareStringsAdoptVectorsAndDefaultTheRest) {
  std::vector<VxString> const texts{VxString("alpha"), VxString("beta")};
  EXPECT_EQ(elementsOf<VxString>(array(texts, {}))[1].c_str(), texts[1].c_str());
  std::vector<std::int64_t> big(1000, 7);
  std::int64_t const *block = big.data();
  HolderReference adopted(constructVariantDataFromMovedVector<std::int64_t>(std::move(big), {}, rowMajor));
  EXPECT_EQ(adopted->constStoredData(), block);
  HolderReference blanks(constructVariantVectorWithoutDataWithDimsUnresolved<VxString>(Dims{3}, rowMajor));
  EXPECT_THAT(elementsOf<VxString>(blanks), ElementsAre("", "", ""));
}

TEST(ArrayReshape, VectorKeepsItsStorageAndTheLengthOfItsList) {
  HolderReference const a = sixDoubles();
  for (Dims const &dims : {Dims{3, 2}, Dims{6}, Dims{2}})
    a->reshapeNoRealloc(dims);
  EXPECT_EQ(a->numberAllocatedElements(), 6u);
  a->reshapeNoRealloc(Dims{2, 3});
  EXPECT_THAT(elementsOf<double>(a), ElementsAre(0, 1, 2, 3, 4, 5));
  expectThrowsWith<std::length_error>([&] { a->reshapeNoRealloc(Dims{1, 2, 3}); }, beyondStorage);
  expectThrowsWith<std::length_error>([&] { a->reshapeNoRealloc(Dims{7}); }, beyondStorage);
  HolderReference const second = share(a);
  EXPECT_NO_THROW(a->reshapeNoRealloc(Dims{2, 3}));
  expectThrowsWith<std::runtime_error>([&] { a->reshapeNoRealloc(Dims{3, 2}); }, shared);
}

TEST(ArrayReshape, StdVectorTakesAnyListUpToItsCapacity) {
  std::vector<double> values{0, 1, 2, 3, 4, 5};
  values.reserve(8);
  HolderReference const a(
      constructVariantDataFromMovedVector<double>(std::move(values), Dims{2, 3}, rowMajor));
  a->reshapeNoRealloc(Dims{1, 2, 3});
  a->reshapeNoRealloc({});
  expectThrowsWith<std::length_error>([&] { a->reshapeNoRealloc(Dims{9}); }, beyondStorage);
  // Growing into spare capacity keeps the block and gives every named element a value.
  void const *block = a->constStoredData();
  a->reshapeNoRealloc(Dims{2, 4});
  EXPECT_EQ(a->constStoredData(), block);
  EXPECT_THAT(elementsOf<double>(a), ElementsAre(0, 1, 2, 3, 4, 5, 0, 0));
  HolderReference const second = share(a);
  expectThrowsWith<std::runtime_error>([&] { a->reshapeNoRealloc(Dims{8}); }, shared);
}

TEST(ArrayReorder, ConvertsTheLogicalArrayIntoTheOtherOrdering) {
  HolderReference const rows = sixDoubles(rowMajor);
  HolderReference const columns(rows->reorderData(columnMajor));
  EXPECT_THAT(elementsOf<double>(columns), ElementsAre(0, 3, 1, 4, 2, 5));
  HolderReference const same(rows->reorderData(rowMajor));
  EXPECT_EQ(same.get(), rows.get());
  EXPECT_EQ(dynamic_cast<CountedArrayData<double> const &>(*rows).referenceCount(), 2u);

  // After a shrinking reshape the shape's elements are the array; the spare ones stay behind.
  HolderReference const shrunk = sixDoubles(rowMajor);
  shrunk->reshapeNoRealloc(Dims{2, 2});
  EXPECT_THAT(elementsOf<double>(HolderReference(shrunk->reorderData(columnMajor))), ElementsAre(0, 2, 1, 3));

  std::vector<VxString> const texts{VxString("a"), VxString("b"), VxString("c"), VxString("d")};
  HolderReference const adopted(constructVariantDataFromMovedVector<VxString>(texts, Dims{2, 2}, rowMajor));
  HolderReference const reordered(adopted->reorderData(columnMajor));
  EXPECT_NE(dynamic_cast<VectorVariantData<VxString> const *>(reordered.get()), nullptr);
  EXPECT_THAT(elementsOf<VxString>(reordered), ElementsAre("a", "c", "b", "d"));
}

TEST(ArrayReshapeToVxVariant, CopiesTheSourceInStorageOrderIntoTheNewShape) {
  HolderReference const source = sixDoubles(columnMajor);
  HolderReference const larger(source->reshapeToVxVariant(source.get(), Dims{2, 4}, rowMajor));
  EXPECT_EQ(larger->dataOrdering(), rowMajor);
  EXPECT_THAT(elementsOf<double>(larger), ElementsAre(0, 1, 2, 3, 4, 5, 0, 0));
  expectThrowsWith<std::length_error>([&] { source->reshapeToVxVariant(source.get(), Dims{5}, rowMajor); },
                                      beyondStorage);
  EXPECT_THAT(elementsOf<double>(HolderReference(source->reshapeToVxVariant(nullptr, Dims{2}, rowMajor))),
              ElementsAre(0, 0));
  HolderReference const scalar(constructVariantScalar<double>(nullptr, 0, 4.5));
  HolderReference const fromScalar(scalar->reshapeToVxVariant(scalar.get(), Dims{1, 1}, rowMajor));
  EXPECT_FALSE(fromScalar->isScalarStorage());
  EXPECT_THAT(elementsOf<double>(fromScalar), ElementsAre(4.5));

  // Reading numbers as strings, strings as numbers, or past the end of a narrower block is refused.
  HolderReference const strings = array<VxString>({VxString("x")}, {});
  HolderReference const floats = array<float>({1, 2}, {});
  EXPECT_THROW(strings->reshapeToVxVariant(source.get(), Dims{6}, rowMajor), std::invalid_argument);
  EXPECT_THROW(source->reshapeToVxVariant(strings.get(), Dims{6}, rowMajor), std::invalid_argument);
  EXPECT_THROW(source->reshapeToVxVariant(floats.get(), Dims{6}, rowMajor), std::invalid_argument);
}

TEST(ArrayCopies, CloneAndEnsureUniqueGiveIndependentStorage) {
  HolderReference const a = sixDoubles(columnMajor);
  a->reshapeNoRealloc(Dims{2, 2});
  HolderReference const clone(a->clone());
  EXPECT_EQ(clone->numberAllocatedElements(), 6u);
  EXPECT_NE(clone->constStoredData(), a->constStoredData());

  HolderReference const other = share(a);
  HolderReference const unique(share(a).release()->ensureUnique());
  EXPECT_NE(unique.get(), a.get());
  static_cast<double *>(unique->mutableStoredData())[0] = 42;
  EXPECT_THAT(elementsOf<double>(a, 1), ElementsAre(0));
  HolderReference const none(constructVariantDataFromMovedVector<VxString>({}, {}, rowMajor));
  EXPECT_EQ(none->constStoredData(), nullptr);
}

TEST(CustomArray, ReportsCustomTypeAndStaysCustomThroughEveryOperation) {
  HolderReference const custom(CustomVectorVariantData<double>::create(Dims{2, 3}, rowMajor, 6));
  EXPECT_EQ(custom->wellKnownDataType(), WellKnownTypeValue::typeCustom);
  EXPECT_EQ(custom->customTypeTag(), customTypeTagOf<double>());
  double const zeros[6] = {};
  EXPECT_TRUE(custom->customTypeOperations()->equal(zeros, custom->constStoredData(), 6, true));
  for (HolderReference const &made :
       {HolderReference(custom->clone()), HolderReference(custom->reorderData(columnMajor)),
        HolderReference(custom->reshapeToVxVariant(custom.get(), Dims{6}, rowMajor)),
        HolderReference(custom->convertDataTo(wellKnownTypeOf<double>(), conversionCast))}) {
    EXPECT_NE(dynamic_cast<CustomVectorVariantData<double> const *>(made.get()), nullptr);
  }
  expectThrowsWith<std::length_error>([&] { custom->reshapeNoRealloc(Dims{1, 2, 3}); }, beyondStorage);
}

// Threads share one array while one of them repeatedly writes a private copy, clones and reorders it.
TEST(ArrayThreads, SharedReadersAndAWriterThroughEnsureUnique) {
  std::vector<VxString> texts;
  for (int i = 0; i < 64; ++i)
    texts.emplace_back(std::to_string(i));
  HolderReference const original = array(texts, {8, 8});
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&, t] {
      for (int i = 0; i < 2000; ++i) {
        HolderReference mine = share(original);
        if (t == 0 && i % 10 == 0) {
          mine.reset(mine.release()->ensureUnique());
          static_cast<VxString *>(mine->mutableStoredData())[i % 64] = VxString("written");
          HolderReference(HolderReference(mine->clone())->reorderData(columnMajor));
        } else {
          EXPECT_EQ(elementsOf<VxString>(mine)[i % 64], texts[i % 64]);
        }
      }
    });
  }
  for (std::thread &thread : threads)
    thread.join();
  EXPECT_EQ(dynamic_cast<CountedArrayData<VxString> const &>(*original).referenceCount(), 1u);
}
