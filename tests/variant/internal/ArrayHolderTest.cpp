#include <VantraCore/VxVariant.h>
#include <VantraCore/detail/ScalarVariantData.h>
#include <variant/ArrayHolders.h>

#include "Holders.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <support/Throws.h>

#include <algorithm>
#include <stdexcept>

using ::testing::ElementsAre;

using namespace HolderTesting;

namespace {

template <class T>
HolderReference moved(std::vector<T> values, Dims const &dims) {
  return HolderReference(constructVariantDataFromMovedVector<T>(std::move(values), dims, rowMajor));
}
HolderReference sixDoubles(DataOrdering ordering = rowMajor) {
  return array<double>({0, 1, 2, 3, 4, 5}, {2, 3}, ordering);
}
HolderReference share(HolderReference const &holder) {
  holder->copy();
  return HolderReference(holder.get());
}

HolderReference customOrNot(std::vector<double> const &elements, DataOrdering ordering, bool custom = true) {
  auto *holder = custom ? CustomVectorVariantData<double>::create(Dims{2, 3}, ordering, 6)
                        : VectorVariantData<double>::create(Dims{2, 3}, ordering, 6);
  std::copy(elements.begin(), elements.end(), holder->elements());
  return HolderReference(holder);
}

auto const mismatch = throws<std::length_error>("dimensions do not match data length");
auto const beyondStorage =
    throws<std::length_error>("Cannot reshape array to given dimensions without reallocating.");
auto const shared =
    throws<std::runtime_error>("Reference count is greater than 1 - cannot reshape without reallocating.");

}  // namespace

TEST(ArrayFactories, ResolveAnOpenShapeEachByItsOwnRuleAndFillTheElements) {
  std::vector<double> const five{1, 2, 3, 4, 5};
  EXPECT_THAT(shapeOf(*array(five, {})), ElementsAre(5u));
  EXPECT_THAT([&] { array(five, {0}); }, mismatch);
  // The moved vector takes any shape without elements for its own length.
  EXPECT_THAT(shapeOf(*moved(five, {5, 0})), ElementsAre(5u));
  EXPECT_THAT([&] { moved(five, {6}); }, mismatch);
  HolderReference const none = array<double>({}, {}), movedNone = moved<double>({}, {});
  for (HolderReference const *empty : {&none, &movedNone}) {
    EXPECT_EQ((*empty)->dimensions().count, 0u);
    EXPECT_EQ((*empty)->numberAllocatedElements(), 0u);
  }
  EXPECT_EQ(movedNone->constStoredData(), nullptr);
  std::vector<VxString> const texts{VxString("alpha"), VxString("beta")};
  EXPECT_EQ(elementsOf<VxString>(*array(texts, {}))[1].c_str(), texts[1].c_str());
  HolderReference blanks(constructVariantVectorWithoutDataWithDimsUnresolved<VxString>(Dims{3}, rowMajor));
  EXPECT_THAT(elementsOf<VxString>(*blanks), ElementsAre("", "", ""));
  EXPECT_THROW(constructVariantVectorWithDataWithDimsUnresolved<double>(nullptr, 3, {}, rowMajor),
               std::invalid_argument);
  EXPECT_THROW(
      constructVariantVectorWithoutDataWithDimsUnresolved<double>(Dims{1u << 31, 1u << 31}, rowMajor),
      std::bad_alloc);
  // A count beyond 64 bits would wrap to a small one; a zero size anywhere still makes an empty array.
  std::uint64_t const half = std::uint64_t(1) << 32;
  EXPECT_THAT(
      [&] {
        constructVariantVectorWithoutDataWithDimsUnresolved<double>(Dims{half, half}, rowMajor);
      },
      throws<std::length_error>("Array dimensions give more elements than 64 bits can count."));
  EXPECT_EQ(HolderReference(
                constructVariantVectorWithoutDataWithDimsUnresolved<double>(Dims{half, half, 0}, rowMajor))
                ->numberAllocatedElements(),
            0u);
}

TEST(ArrayReshape, VectorKeepsItsStorageAndTheLengthOfItsList) {
  HolderReference const a = sixDoubles();
  for (Dims const &dims : {Dims{3, 2}, Dims{6}, Dims{2}})
    a->reshapeNoRealloc(dims);
  EXPECT_EQ(a->numberAllocatedElements(), 6u);
  a->reshapeNoRealloc(Dims{2, 3});
  EXPECT_THAT(elementsOf<double>(*a), ElementsAre(0, 1, 2, 3, 4, 5));
  EXPECT_THAT([&] { a->reshapeNoRealloc(Dims{1, 2, 3}); }, beyondStorage);
  EXPECT_THAT([&] { a->reshapeNoRealloc(Dims{7}); }, beyondStorage);
  HolderReference const second = share(a);
  EXPECT_NO_THROW(a->reshapeNoRealloc(Dims{2, 3}));
  EXPECT_THAT([&] { a->reshapeNoRealloc(Dims{3, 2}); }, shared);
}

TEST(ArrayReshape, StdVectorTakesAnyListUpToItsCapacity) {
  std::vector<double> values{0, 1, 2, 3, 4, 5};
  values.reserve(8);
  HolderReference const a = moved(std::move(values), {2, 3});
  a->reshapeNoRealloc(Dims{1, 2, 3});
  a->reshapeNoRealloc({});
  EXPECT_THAT([&] { a->reshapeNoRealloc(Dims{9}); }, beyondStorage);
  // Growing into spare capacity keeps the block and gives every named element a value.
  void const *block = a->constStoredData();
  a->reshapeNoRealloc(Dims{2, 4});
  EXPECT_EQ(a->constStoredData(), block);
  EXPECT_THAT(elementsOf<double>(*a), ElementsAre(0, 1, 2, 3, 4, 5, 0, 0));
  HolderReference const second = share(a);
  EXPECT_THAT([&] { a->reshapeNoRealloc(Dims{8}); }, shared);
}

TEST(ArrayReorder, ConvertsTheLogicalArrayIntoTheOtherOrdering) {
  HolderReference const rows = sixDoubles(rowMajor);
  EXPECT_THAT(elementsOf<double>(*HolderReference(rows->reorderData(columnMajor))),
              ElementsAre(0, 3, 1, 4, 2, 5));
  HolderReference const same(rows->reorderData(rowMajor));
  EXPECT_EQ(same.get(), rows.get());
  EXPECT_EQ(dynamic_cast<CountedArrayData<double> const &>(*rows).referenceCount(), 2u);

  // After a shrinking reshape the shape's elements are the array; the spare ones stay behind, and a
  // clone keeps them with shape and ordering in storage of its own.
  HolderReference const shrunk = sixDoubles(rowMajor);
  shrunk->reshapeNoRealloc(Dims{2, 2});
  EXPECT_THAT(elementsOf<double>(*HolderReference(shrunk->reorderData(columnMajor))),
              ElementsAre(0, 2, 1, 3));
  HolderReference const columns = sixDoubles(columnMajor);
  columns->reshapeNoRealloc(Dims{2, 2});
  HolderReference const clone(columns->clone());
  EXPECT_THAT(shapeOf(*clone), ElementsAre(2u, 2u));
  EXPECT_TRUE(clone->dataOrdering() == columnMajor && clone->numberAllocatedElements() == 6u);
  EXPECT_NE(clone->constStoredData(), columns->constStoredData());

  HolderReference const reordered(
      moved<VxString>({VxString("a"), VxString("b"), VxString("c"), VxString("d")}, {2, 2})
          ->reorderData(columnMajor));
  EXPECT_NE(dynamic_cast<VectorVariantData<VxString> const *>(reordered.get()), nullptr);
  EXPECT_THAT(elementsOf<VxString>(*reordered), ElementsAre("a", "c", "b", "d"));
}

TEST(ArrayReshapeToVxVariant, CopiesTheSourceInStorageOrderIntoTheNewShape) {
  HolderReference const source = sixDoubles(columnMajor);
  HolderReference const larger(source->reshapeToVxVariant(source.get(), Dims{2, 4}, rowMajor));
  EXPECT_EQ(larger->dataOrdering(), rowMajor);
  EXPECT_THAT(elementsOf<double>(*larger), ElementsAre(0, 1, 2, 3, 4, 5, 0, 0));
  EXPECT_THAT([&] { source->reshapeToVxVariant(source.get(), Dims{5}, rowMajor); }, beyondStorage);
  EXPECT_THAT(elementsOf<double>(*HolderReference(source->reshapeToVxVariant(nullptr, Dims{2}, rowMajor))),
              ElementsAre(0, 0));
  // Reading numbers as strings, strings as numbers, or past the end of a narrower block is refused.
  HolderReference const strings = array<VxString>({VxString("x")}, {});
  HolderReference const floats = array<float>({1, 2}, {});
  EXPECT_THROW(strings->reshapeToVxVariant(source.get(), Dims{6}, rowMajor), std::invalid_argument);
  EXPECT_THROW(source->reshapeToVxVariant(strings.get(), Dims{6}, rowMajor), std::invalid_argument);
  EXPECT_THROW(source->reshapeToVxVariant(floats.get(), Dims{6}, rowMajor), std::invalid_argument);
}

// Custom holders stay custom through every operation, compare through the first holder's table and
// have no kind in common with others. A type tag is an address in one module, so only VxVariant may
// look through one.
TEST(CustomArray, StaysCustomComparesByItsTableAndOnlyVxVariantReadsIt) {
  HolderReference const custom = customOrNot({1, 2, 3, 4, 5, 6}, rowMajor);
  EXPECT_EQ(custom->wellKnownDataType(), WellKnownTypeValue::typeCustom);
  EXPECT_EQ(custom->customTypeTag(), customTypeTagOf<double>());
  for (HolderReference const &made :
       {HolderReference(custom->clone()), HolderReference(custom->reorderData(columnMajor)),
        HolderReference(custom->reshapeToVxVariant(custom.get(), Dims{6}, rowMajor)),
        HolderReference(custom->convertDataTo(wellKnownTypeOf<double>(), conversionCast))}) {
    EXPECT_NE(dynamic_cast<CustomVectorVariantData<double> const *>(made.get()), nullptr);
  }
  EXPECT_THAT([&] { custom->reshapeNoRealloc(Dims{1, 2, 3}); }, beyondStorage);

  EXPECT_TRUE(isIdenticalTo(*custom, *customOrNot({1, 2, 3, 4, 5, 6}, rowMajor)));
  EXPECT_TRUE(isEquivalentTo(*custom, *customOrNot({1, 4, 2, 5, 3, 6}, columnMajor), conversionLossless));
  EXPECT_FALSE(isEquivalentTo(*custom, *customOrNot({1, 2, 3, 4, 5, 7}, rowMajor), conversionLossless));
  EXPECT_FALSE(isEquivalentTo(*custom, *customOrNot({1, 2, 3, 4, 5, 6}, rowMajor, false), conversionCast));

  custom->copy();
  custom->copy();
  VxVariant const direct = VxVariant::adoptHolder(custom.get());
  VxVariantAbi const abi = VxVariantAbi::adoptHolder(custom.get());
  EXPECT_EQ(direct.at<double>(2), 3);
  EXPECT_FALSE(abi.isType<double>() || abi.isNull());
  EXPECT_THROW(abi.at<double>(0), std::invalid_argument);
}
