#include <VantraCore/ExternalVariantStorage.h>
#include <VantraCore/TransmuteVariant.h>
#include <variant/ArrayHolders.h>

#include "Holders.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <support/Throws.h>

#include <complex>
#include <memory>
#include <stdexcept>

using ::testing::ElementsAre;
using namespace HolderTesting;
using cd = std::complex<double>;

namespace {

// A client's block of doubles that counts how often the adaptor lets it go.
struct DoubleStorage final : ExternalVariantStorageInterface {
  std::vector<double> block;
  Dims shape;
  WellKnownType kind = WellKnownTypeValue::typeDouble;
  int releases = 0;
  DoubleStorage(std::vector<double> values, Dims dims) : block(std::move(values)), shape(std::move(dims)) {}
  std::uint64_t numberAllocatedElements() const override { return block.size(); }
  ArrayDimensionsView dimensions() const override { return shape; }
  DataOrdering dataOrdering() const override { return rowMajor; }
  WellKnownType wellKnownDataType() const override { return kind; }
  void reshapeNoRealloc(ArrayDimensionsView dims) override { shape.assign(dims.begin(), dims.end()); }
  void const *constStoredData() const override { return block.data(); }
  void *mutableStoredData() override { return block.data(); }
  void release() override { ++releases; }
};

TEST(ExternalStorage, AttachedAdaptorWorksInTheClientsBlock) {
  DoubleStorage storage({1, 2, 3, 4, 5, 6}, {2, 3});
  HolderReference adaptor(constructVariantExternal(&storage));
  EXPECT_EQ(adaptor->constStoredData(), storage.block.data());
  ASSERT_EQ(adaptor->ensureUnique(), adaptor.get());  // a sole owner writes into the block itself
  static_cast<double *>(adaptor->mutableStoredData())[0] = 9;
  EXPECT_EQ(storage.block[0], 9);
  EXPECT_THAT([&] { HolderReference(adaptor->reorderData(rowMajor)); },
              throws<std::runtime_error>("Not implemented!"));
  HolderReference clone(adaptor->clone());
  storage.block[1] = 7;
  EXPECT_THAT(elementsOf<double>(*clone), ElementsAre(9, 2, 3, 4, 5, 6));
  HolderReference converted(adaptor->convertDataTo(WellKnownTypeValue::typeInt32, conversionCast));
  EXPECT_THAT(elementsOf<std::int32_t>(*converted), ElementsAre(9, 7, 3, 4, 5, 6));
  HolderReference custom(adaptor->reshapeToVxVariant(clone.get(), Dims{6}, columnMajor));
  EXPECT_EQ(custom->wellKnownDataType(), WellKnownTypeValue::typeCustom);
  storage.shape = {2, 2};  // holds more elements than its shape names
  EXPECT_THAT([&] { HolderReference(adaptor->clone()); },
              throws<std::length_error>("dimensions do not match data length"));
  storage.kind = WellKnownType();
  EXPECT_THAT([&] { HolderReference(adaptor->convertDataTo(WellKnownTypeValue::typeFloat, conversionCast)); },
              throws<std::runtime_error>("unknown type"));
}

TEST(ExternalStorage, ReleasedOnceWhenTheLastReferenceGoes) {
  DoubleStorage storage({1, 2}, {2});
  IVariantData *adaptor = constructVariantExternal(&storage);
  adaptor->copy();
  adaptor->destruct();
  EXPECT_EQ(storage.releases, 0);
  adaptor->destruct();
  EXPECT_EQ(storage.releases, 1);
  storage.detachCallback();  // the adaptor is gone: nothing to detach
}

TEST(ExternalStorage, DetachKeepsSharingVariantsWorkingWithoutRelease) {
  auto storage = std::make_unique<DoubleStorage>(std::vector<double>{1, 2, 3, 4, 5, 6}, Dims{3, 2});
  HolderReference first(constructVariantExternal(storage.get()));
  first->copy();
  HolderReference second(first.get());
  storage->detachCallback();
  void const *firstCopy = first->constStoredData();
  storage->detachCallback();  // again: a new private copy
  EXPECT_NE(first->constStoredData(), firstCopy);
  EXPECT_EQ(storage->releases, 0);
  storage.reset();  // the owner's memory is gone
  for (IVariantData const *holder : {first.get(), second.get()}) {
    EXPECT_EQ(holder->wellKnownDataType(), WellKnownTypeValue::typeDouble);
    EXPECT_EQ(shapeOf(*holder), (Dims{3, 2}));
    EXPECT_THAT(elementsOf<double>(*holder), ElementsAre(1, 2, 3, 4, 5, 6));
  }
  HolderReference reordered(first->reorderData(columnMajor));
  EXPECT_THAT(elementsOf<double>(*reordered), ElementsAre(1, 3, 5, 2, 4, 6));
  HolderReference same(first->reorderData(rowMajor));
  EXPECT_EQ(same.get(), first.get());
  EXPECT_THROW(first->reshapeNoRealloc(Dims{6}), std::runtime_error);  // still shared after detaching
}

TEST(TransmuteViews, ComplexToRealDoublesTheFastestDimension) {
  std::vector<cd> values(12);
  for (int i = 0; i < 12; ++i)
    values[i] = {double(2 * i), double(2 * i + 1)};
  for (DataOrdering ordering : {rowMajor, columnMajor}) {
    HolderReference inner = array(values, {3, 4}, ordering);
    inner->copy();
    HolderReference view(constructTransmuteComplexToRealVariant(inner.get()));
    EXPECT_EQ(view->wellKnownDataType(), WellKnownTypeValue::typeDouble);
    EXPECT_EQ(shapeOf(*view), ordering == rowMajor ? (Dims{3, 8}) : (Dims{6, 4}));
    EXPECT_EQ(view->numberAllocatedElements(), 24u);
    EXPECT_EQ(view->constStoredData(), inner->constStoredData());
    EXPECT_EQ(elementsOf<double>(*view)[23], 23);
  }
}

TEST(TransmuteViews, RealToComplexHalvesRoundingDownAndChecksTheKindLate) {
  HolderReference view(
      constructTransmuteRealToComplexVariant(array<double>({1, 2, 3, 4, 5.5}, {5}).release()));
  EXPECT_EQ(shapeOf(*view), (Dims{2}));
  EXPECT_EQ(view->numberAllocatedElements(), 2u);
  EXPECT_THAT(elementsOf<cd>(*view), ElementsAre(cd(1, 2), cd(3, 4)));
  EXPECT_EQ(view->convertDataTo(WellKnownTypeValue::typeComplexInt8, conversionLossless), nullptr);
  HolderReference strings(
      constructTransmuteRealToComplexVariant(array<VxString>({VxString("a"), VxString("b")}, {2}).release()));
  char const *const message = "Can not convert non-numeric data type to complex numeric type";
  EXPECT_THAT([&] { strings->wellKnownDataType(); }, throws(message));
  HolderReference reals(constructTransmuteComplexToRealVariant(array<cd>({cd(1, 2)}, {1}).release()));
  EXPECT_THAT([&] { HolderReference(reals->convertDataTo(WellKnownTypeValue::typeString, conversionParse)); },
              throws(message));
  HolderReference floats(reals->convertDataTo(WellKnownTypeValue::typeFloat, conversionCast));
  EXPECT_THAT(elementsOf<float>(*floats), ElementsAre(1.f, 2.f));
}

TEST(TransmuteViews, ViewIsLiveAndWritingMakesAPlainArray) {
  HolderReference inner = array<cd>({cd(1, 2), cd(3, 4)}, {2});
  inner->copy();
  HolderReference view(constructTransmuteComplexToRealVariant(inner.get()));
  static_cast<cd *>(inner->mutableStoredData())[1] = cd(7, 8);
  EXPECT_THAT(elementsOf<double>(*view), ElementsAre(1, 2, 7, 8));
  EXPECT_THAT([&] { HolderReference(view->reshapeToVxVariant(nullptr, Dims{4}, rowMajor)); },
              throws<std::runtime_error>("Reshaping to VxVariant is not allowed for Transmute Variant"));
  HolderReference same(view->reorderData(rowMajor));
  EXPECT_EQ(same.get(), view.get());
  EXPECT_THROW(view->reshapeNoRealloc(Dims{2, 2}), std::runtime_error);  // shared
  same.reset();
  view->reshapeNoRealloc(Dims{2, 1, 2});  // a longer list fits, the inner shape stays
  EXPECT_EQ(shapeOf(*inner), (Dims{2}));
  EXPECT_THAT([&] { view->reshapeNoRealloc(Dims{5}); },
              throws<std::length_error>("Cannot reshape array to given dimensions without reallocating."));
  HolderReference reordered(view->reorderData(columnMajor));
  EXPECT_THAT(elementsOf<double>(*reordered), ElementsAre(1, 7, 2, 8));
  HolderReference unique(view.release()->ensureUnique());
  EXPECT_NE(dynamic_cast<VectorVariantData<double> *>(unique.get()), nullptr);
  EXPECT_EQ(static_cast<CountedArrayData<cd> &>(*inner).referenceCount(), 1u);
}

TEST(TransmuteViews, CFunctionsGoThroughTheTransport) {
  TransportRecord record;
  EXPECT_EQ(VxVariantData_C_API_createWithExternalStorage(&record, nullptr), nullptr);
  EXPECT_STREQ(record.exceptionName, "invalid_argument");
  HolderReference view(VxVariantData_C_API_constructTransmuteComplexToRealVariant(
      &record, array<cd>({cd(1, 2)}, {1}).release()));
  EXPECT_EQ(record.exceptionName, nullptr);
  DoubleStorage storage({1}, {1});
  HolderReference adaptor(VxVariantData_C_API_createWithExternalStorage(&record, &storage));
  EXPECT_EQ(adaptor->constStoredData(), storage.block.data());
}

}  // namespace
