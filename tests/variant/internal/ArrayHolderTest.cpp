#include <VantraCore/IVariantData.h>
#include <VantraCore/ScalarVariantData.h>
#include <VantraCore/VectorVariantData.h>
#include <variant/ArrayHolders.h>
#include <variant/HolderReference.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

using namespace Tarvex::VantraCore;
using namespace Tarvex::VantraCore::Internal;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

namespace {

using Dims = std::vector<std::uint64_t>;

std::vector<std::uint64_t> shapeOf(HolderReference const &holder) {
  ArrayDimensionsView const dims = holder->dimensions();
  return {dims.begin(), dims.end()};
}

template <class T>
std::vector<T> elementsOf(HolderReference const &holder, std::uint64_t count) {
  auto const *data = static_cast<T const *>(holder->constStoredData());
  return {data, data + count};
}
template <class T>
std::vector<T> elementsOf(HolderReference const &holder) {
  return elementsOf<T>(holder, holder->numberAllocatedElements());
}

template <class T>
std::uint32_t countOf(HolderReference const &holder) {
  return dynamic_cast<CountedArrayData<T> const &>(*holder).referenceCount();
}

// 0 to 5 as a [2, 3] array in `ordering`.
HolderReference sixDoubles(DataOrdering ordering = rowMajor, Dims const &dims = {2, 3}) {
  std::vector<double> const values{0, 1, 2, 3, 4, 5};
  return HolderReference(
      constructVariantVectorWithDataWithDimsUnresolved<double>(values.data(), 6, dims, ordering));
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
  HolderReference copied(
      constructVariantVectorWithDataWithDimsUnresolved<double>(five.data(), 5, {}, rowMajor));
  EXPECT_THAT(shapeOf(copied), ElementsAre(5u));
  EXPECT_THAT(elementsOf<double>(copied), ElementsAreArray(five));
  expectThrowsWith<std::length_error>(
      [&] { constructVariantVectorWithDataWithDimsUnresolved<double>(five.data(), 5, Dims{0}, rowMajor); },
      mismatch);
  expectThrowsWith<std::length_error>(
      [&] {
        constructVariantVectorWithDataWithDimsUnresolved<double>(five.data(), 5, Dims{2, 3}, rowMajor);
      },
      mismatch);

  // The moved vector takes any shape without elements for its own length.
  HolderReference moved(constructVariantDataFromMovedVector<double>(five, Dims{0}, columnMajor));
  EXPECT_THAT(shapeOf(moved), ElementsAre(5u));
  EXPECT_EQ(moved->dataOrdering(), columnMajor);
  HolderReference movedZeroAmong(constructVariantDataFromMovedVector<double>(five, Dims{5, 0}, rowMajor));
  EXPECT_THAT(shapeOf(movedZeroAmong), ElementsAre(5u));
  expectThrowsWith<std::length_error>(
      [&] {
        constructVariantDataFromMovedVector<double>(five, Dims{2, 3}, rowMajor);
      },
      mismatch);

  HolderReference const empties[] = {
      HolderReference(constructVariantVectorWithDataWithDimsUnresolved<double>(nullptr, 0, {}, rowMajor)),
      HolderReference(constructVariantDataFromMovedVector<double>({}, {}, rowMajor)),
      HolderReference(constructVariantVectorWithoutDataWithDimsUnresolved<double>({}, rowMajor))};
  for (HolderReference const &empty : empties) {
    EXPECT_EQ(empty->dimensions().count, 0u);
    EXPECT_EQ(empty->numberAllocatedElements(), 0u);
  }
}

TEST(ArrayFactories, CopyShareOrAdoptTheElements) {
  std::vector<VxString> const texts{VxString("alpha"), VxString("beta")};
  HolderReference strings(
      constructVariantVectorWithDataWithDimsUnresolved<VxString>(texts.data(), 2, {}, rowMajor));
  auto const *stored = static_cast<VxString const *>(strings->constStoredData());
  EXPECT_EQ(stored[1], "beta");
  EXPECT_EQ(stored[1].c_str(), texts[1].c_str()) << "strings are shared, not copied";

  std::vector<std::int64_t> big(1000, 7);
  std::int64_t const *block = big.data();
  HolderReference adopted(constructVariantDataFromMovedVector<std::int64_t>(std::move(big), {}, rowMajor));
  EXPECT_EQ(adopted->constStoredData(), block);
  EXPECT_EQ(dynamic_cast<StdVectorVariantData<std::int64_t> const &>(*adopted).data().size(), 1000u);

  HolderReference zeros(
      constructVariantVectorWithoutDataWithDimsUnresolved<Timestamp>(Dims{2, 2}, columnMajor));
  EXPECT_THAT(elementsOf<Timestamp>(zeros), ElementsAre(Timestamp(), Timestamp(), Timestamp(), Timestamp()));
  HolderReference blanks(constructVariantVectorWithoutDataWithDimsUnresolved<VxString>(Dims{3}, rowMajor));
  EXPECT_THAT(elementsOf<VxString>(blanks), ElementsAre("", "", ""));

  EXPECT_THROW(constructVariantVectorWithDataWithDimsUnresolved<double>(nullptr, 3, {}, rowMajor),
               std::invalid_argument);
  EXPECT_THROW(constructVariantVectorWithoutDataWithDimsUnresolved<double>({nullptr, 2}, rowMajor),
               std::invalid_argument);
  EXPECT_THROW(
      constructVariantVectorWithoutDataWithDimsUnresolved<double>(Dims{1u << 31, 1u << 31}, rowMajor),
      std::bad_alloc);
}

TEST(ArrayReshape, VectorKeepsItsStorageAndTheLengthOfItsList) {
  HolderReference array = sixDoubles();
  array->reshapeNoRealloc(Dims{3, 2});
  array->reshapeNoRealloc(Dims{6});
  array->reshapeNoRealloc(Dims{2});
  EXPECT_EQ(array->numberAllocatedElements(), 6u);
  array->reshapeNoRealloc(Dims{2, 3});
  EXPECT_THAT(shapeOf(array), ElementsAre(2u, 3u));
  EXPECT_THAT(elementsOf<double>(array), ElementsAre(0, 1, 2, 3, 4, 5));

  expectThrowsWith<std::length_error>([&] { array->reshapeNoRealloc(Dims{1, 2, 3}); }, beyondStorage);
  expectThrowsWith<std::length_error>([&] { array->reshapeNoRealloc(Dims{7}); }, beyondStorage);
  EXPECT_THAT(shapeOf(array), ElementsAre(2u, 3u));

  array->copy();
  HolderReference second(array.get());
  EXPECT_NO_THROW(array->reshapeNoRealloc(Dims{2, 3}));
  expectThrowsWith<std::runtime_error>([&] { array->reshapeNoRealloc(Dims{3, 2}); }, shared);
}

TEST(ArrayReshape, StdVectorTakesAnyListUpToItsCapacity) {
  std::vector<double> values{0, 1, 2, 3, 4, 5};
  values.reserve(8);
  HolderReference array(constructVariantDataFromMovedVector<double>(std::move(values), Dims{2, 3}, rowMajor));
  array->reshapeNoRealloc(Dims{1, 2, 3});
  EXPECT_THAT(shapeOf(array), ElementsAre(1u, 2u, 3u));
  array->reshapeNoRealloc({});
  EXPECT_EQ(array->dimensions().count, 0u);
  expectThrowsWith<std::length_error>([&] { array->reshapeNoRealloc(Dims{9}); }, beyondStorage);

  // Growing into spare capacity keeps the block and gives every named element a value.
  void const *block = array->constStoredData();
  array->reshapeNoRealloc(Dims{2, 4});
  EXPECT_EQ(array->constStoredData(), block);
  EXPECT_THAT(elementsOf<double>(array, 8), ElementsAre(0, 1, 2, 3, 4, 5, 0, 0));

  array->copy();
  HolderReference second(array.get());
  expectThrowsWith<std::runtime_error>([&] { array->reshapeNoRealloc(Dims{8}); }, shared);
}

TEST(ArrayReorder, ConvertsTheLogicalArrayIntoTheOtherOrdering) {
  HolderReference rows = sixDoubles(rowMajor);
  HolderReference columns(rows->reorderData(columnMajor));
  EXPECT_EQ(columns->dataOrdering(), columnMajor);
  EXPECT_THAT(elementsOf<double>(columns), ElementsAre(0, 3, 1, 4, 2, 5));
  HolderReference back(columns->reorderData(rowMajor));
  EXPECT_THAT(elementsOf<double>(back), ElementsAre(0, 1, 2, 3, 4, 5));

  HolderReference same(rows->reorderData(rowMajor));
  EXPECT_EQ(same.get(), rows.get());
  EXPECT_EQ(countOf<double>(rows), 2u);

  // After a shrinking reshape the shape's elements are the array; the spare ones stay behind.
  rows.reset(sixDoubles(rowMajor).release());
  rows->reshapeNoRealloc(Dims{2, 2});
  HolderReference shrunk(rows->reorderData(columnMajor));
  EXPECT_EQ(shrunk->numberAllocatedElements(), 4u);
  EXPECT_THAT(elementsOf<double>(shrunk), ElementsAre(0, 2, 1, 3));

  std::vector<VxString> texts{VxString("a"), VxString("b"), VxString("c"), VxString("d")};
  HolderReference strings(constructVariantDataFromMovedVector<VxString>(texts, Dims{2, 2}, rowMajor));
  HolderReference reordered(strings->reorderData(columnMajor));
  EXPECT_NE(dynamic_cast<VectorVariantData<VxString> const *>(reordered.get()), nullptr);
  EXPECT_THAT(elementsOf<VxString>(reordered), ElementsAre("a", "c", "b", "d"));
  EXPECT_EQ(elementsOf<VxString>(reordered)[1].c_str(), texts[2].c_str());
}

TEST(ArrayReshapeToVxVariant, CopiesTheSourceInStorageOrderIntoTheNewShape) {
  HolderReference source = sixDoubles(columnMajor);
  HolderReference larger(source->reshapeToVxVariant(source.get(), Dims{2, 4}, rowMajor));
  EXPECT_THAT(shapeOf(larger), ElementsAre(2u, 4u));
  EXPECT_EQ(larger->dataOrdering(), rowMajor);
  EXPECT_THAT(elementsOf<double>(larger), ElementsAre(0, 1, 2, 3, 4, 5, 0, 0));
  expectThrowsWith<std::length_error>([&] { source->reshapeToVxVariant(source.get(), Dims{5}, rowMajor); },
                                      beyondStorage);

  HolderReference fromNothing(source->reshapeToVxVariant(nullptr, Dims{2}, rowMajor));
  EXPECT_THAT(elementsOf<double>(fromNothing), ElementsAre(0, 0));

  std::vector<double> const values{1.5, 2.5};
  HolderReference adopted(constructVariantDataFromMovedVector<double>(values, {}, rowMajor));
  HolderReference fromStd(adopted->reshapeToVxVariant(adopted.get(), Dims{1, 2}, rowMajor));
  EXPECT_NE(dynamic_cast<VectorVariantData<double> const *>(fromStd.get()), nullptr);

  HolderReference scalar(constructVariantScalar<double>(nullptr, 0, 4.5));
  HolderReference fromScalar(scalar->reshapeToVxVariant(scalar.get(), Dims{1, 1}, rowMajor));
  EXPECT_FALSE(fromScalar->isScalarStorage());
  EXPECT_THAT(elementsOf<double>(fromScalar), ElementsAre(4.5));

  // Reading numbers as strings, or past the end of a narrower block, is refused.
  std::vector<VxString> const texts{VxString("x")};
  HolderReference strings(constructVariantDataFromMovedVector<VxString>(texts, {}, rowMajor));
  EXPECT_THROW(strings->reshapeToVxVariant(source.get(), Dims{6}, rowMajor), std::invalid_argument);
  EXPECT_THROW(source->reshapeToVxVariant(strings.get(), Dims{6}, rowMajor), std::invalid_argument);
  std::vector<float> const narrow{1, 2};
  HolderReference floats(constructVariantDataFromMovedVector<float>(narrow, {}, rowMajor));
  EXPECT_THROW(source->reshapeToVxVariant(floats.get(), Dims{6}, rowMajor), std::invalid_argument);
}

TEST(ArrayCopies, CloneAndEnsureUniqueGiveIndependentStorage) {
  HolderReference array = sixDoubles(columnMajor);
  array->reshapeNoRealloc(Dims{2, 2});
  HolderReference clone(array->clone());
  EXPECT_EQ(clone->numberAllocatedElements(), 6u);
  EXPECT_THAT(shapeOf(clone), ElementsAre(2u, 2u));
  EXPECT_EQ(clone->dataOrdering(), columnMajor);
  EXPECT_NE(clone->constStoredData(), array->constStoredData());
  EXPECT_EQ(countOf<double>(array), 1u);

  IVariantData *alone = array.release();
  EXPECT_EQ(alone->ensureUnique(), alone);
  alone->copy();
  HolderReference other(alone);
  HolderReference unique(alone->ensureUnique());
  EXPECT_NE(unique.get(), alone);
  EXPECT_EQ(countOf<double>(other), 1u);
  static_cast<double *>(unique->mutableStoredData())[0] = 42;
  EXPECT_THAT(elementsOf<double>(other, 1), ElementsAre(0));

  std::vector<VxString> const texts{VxString("kept")};
  HolderReference adopted(constructVariantDataFromMovedVector<VxString>(texts, {}, rowMajor));
  HolderReference adoptedClone(adopted->clone());
  EXPECT_NE(dynamic_cast<StdVectorVariantData<VxString> const *>(adoptedClone.get()), nullptr);
  EXPECT_THAT(elementsOf<VxString>(adoptedClone), ElementsAre("kept"));
  HolderReference none(constructVariantDataFromMovedVector<VxString>({}, {}, rowMajor));
  EXPECT_EQ(none->constStoredData(), nullptr);
}

TEST(CustomArray, ReportsCustomTypeAndStaysCustomThroughEveryOperation) {
  HolderReference custom(CustomVectorVariantData<double>::create(Dims{2, 3}, rowMajor, 6));
  std::vector<double> const values{0, 1, 2, 3, 4, 5};
  std::copy(values.begin(), values.end(), static_cast<double *>(custom->mutableStoredData()));
  EXPECT_EQ(custom->wellKnownDataType(), WellKnownTypeValue::typeCustom);
  EXPECT_EQ(custom->customTypeTag(), customTypeTagOf<double>());

  CustomTypeOperations const *operations = custom->customTypeOperations();
  ASSERT_NE(operations, nullptr);
  std::vector<double> const other{0, 1, 2, 3, 4, NAN};
  EXPECT_TRUE(operations->equal(values.data(), custom->constStoredData(), 6, true));
  EXPECT_FALSE(operations->equal(other.data(), custom->constStoredData(), 6, false));

  HolderReference const made[] = {
      HolderReference(custom->clone()), HolderReference(custom->reorderData(columnMajor)),
      HolderReference(custom->reshapeToVxVariant(custom.get(), Dims{6}, rowMajor)),
      HolderReference(custom->convertDataTo(wellKnownTypeOf<double>(), conversionCast))};
  for (HolderReference const &result : made) {
    ASSERT_NE(result, nullptr);
    EXPECT_EQ(result->wellKnownDataType(), WellKnownTypeValue::typeCustom);
    EXPECT_NE(dynamic_cast<CustomVectorVariantData<double> const *>(result.get()), nullptr);
  }
  expectThrowsWith<std::length_error>([&] { custom->reshapeNoRealloc(Dims{1, 2, 3}); }, beyondStorage);
}

TEST(ArrayComparison, IdentityAndEquivalenceLookAtShapeOrderingAndElements) {
  HolderReference rows = sixDoubles(rowMajor);
  HolderReference columns(rows->reorderData(columnMajor));
  EXPECT_TRUE(isEquivalentTo(*rows, *columns, conversionLossless));
  EXPECT_FALSE(isIdenticalTo(*rows, *columns));
  HolderReference again = sixDoubles(rowMajor);
  EXPECT_TRUE(isIdenticalTo(*rows, *again));
  EXPECT_FALSE(isEquivalentTo(*rows, *sixDoubles(rowMajor, {6}), conversionLossless));

  HolderReference emptyDouble(constructVariantVectorWithoutDataWithDimsUnresolved<double>(Dims{0}, rowMajor));
  HolderReference emptyStrings(
      constructVariantVectorWithoutDataWithDimsUnresolved<VxString>(Dims{0, 3}, rowMajor));
  EXPECT_TRUE(isEquivalentTo(*emptyDouble, *emptyStrings, conversionLossless));
  EXPECT_FALSE(isIdenticalTo(*emptyDouble, *emptyStrings));
  EXPECT_TRUE(isEquivalentTo(*constructVariantNull(), *emptyDouble, conversionLossless));
  EXPECT_FALSE(isIdenticalTo(*constructVariantNull(), *emptyDouble));

  double const nan = NAN;
  HolderReference withNan(constructVariantVectorWithDataWithDimsUnresolved<double>(&nan, 1, {}, rowMajor));
  EXPECT_FALSE(isIdenticalTo(*withNan, *withNan));
  EXPECT_FALSE(isEquivalentTo(*withNan, *withNan, conversionLossless));

  HolderReference custom(CustomVectorVariantData<double>::create(Dims{2, 3}, rowMajor, 6));
  HolderReference customToo(custom->clone());
  EXPECT_TRUE(isIdenticalTo(*custom, *customToo));
  EXPECT_TRUE(isEquivalentTo(*custom, *customToo, conversionLossless));
}

TEST(ArrayThreads, SharedReadersAndAWriterThroughEnsureUnique) {
  std::vector<VxString> texts;
  for (int i = 0; i < 64; ++i)
    texts.emplace_back(std::to_string(i));
  HolderReference original(
      constructVariantVectorWithDataWithDimsUnresolved<VxString>(texts.data(), 64, {}, rowMajor));

  std::vector<std::thread> threads;
  std::atomic<int> mismatches{0};
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&, t] {
      for (int i = 0; i < 2000; ++i) {
        original->copy();
        HolderReference mine(original.get());
        if (t == 0 && i % 10 == 0) {
          mine.reset(mine.release()->ensureUnique());
          static_cast<VxString *>(mine->mutableStoredData())[i % 64] = VxString("written");
          HolderReference copy(mine->clone());
          HolderReference reordered(copy->reorderData(columnMajor));
        } else if (static_cast<VxString const *>(mine->constStoredData())[i % 64] != texts[i % 64]) {
          ++mismatches;
        }
      }
    });
  }
  for (std::thread &thread : threads)
    thread.join();
  EXPECT_EQ(mismatches.load(), 0);
  EXPECT_EQ(countOf<VxString>(original), 1u);
  EXPECT_THAT(elementsOf<VxString>(original), ElementsAreArray(texts));
}
