#include <VantraCore/ElementKinds.h>
#include <VantraCore/IVariantData.h>
#include <VantraCore/ScalarVariantData.h>
#include <VantraCore/VectorVariantData.h>
#include <variant/ArrayHolders.h>

#include <gtest/gtest.h>

#include <cstdint>

using namespace Tarvex::VantraCore;
using namespace Tarvex::VantraCore::Internal;

namespace {

template <class T>
std::uint32_t countOf(IVariantData const *holder) {
  auto const *counted = dynamic_cast<ScalarVariantDataRefCounted<T> const *>(holder);
  EXPECT_NE(counted, nullptr) << "not a counted scalar";
  return counted ? counted->referenceCount() : 0;
}

}  // namespace

TEST(ScalarHolder, StandsInPlaceWhenTheBufferHoldsItElseOnTheHeap) {
  VxVariantDirectStorage storage;
  storage.data = constructVariantScalar<double>(storage.buffer, sizeof storage.buffer, 2.5);
  EXPECT_EQ(static_cast<void *>(storage.data), storage.buffer);
  EXPECT_NE(dynamic_cast<ScalarVariantDataNonCounted<double> *>(storage.data), nullptr);

  IVariantData *heap = constructVariantScalar<double>(storage.buffer, 4, 2.5);
  EXPECT_NE(static_cast<void *>(heap), storage.buffer);
  EXPECT_EQ(countOf<double>(heap), 1u);
  heap->destruct();
  storage.data->~IVariantData();

  IVariantData *noBuffer = constructVariantScalar<VxString>(nullptr, 0, VxString("text"));
  EXPECT_EQ(countOf<VxString>(noBuffer), 1u);
  noBuffer->destruct();
}

TEST(ScalarHolder, StringGoesToTheHeapJustBelowItsSize) {
  alignas(8) unsigned char buffer[64];
  std::size_t const size = sizeof(ScalarVariantDataNonCounted<VxString>);
  VxString const text("shared");
  IVariantData *inPlace = constructVariantScalar<VxString>(buffer, size, text);
  EXPECT_EQ(static_cast<void *>(inPlace), buffer);
  EXPECT_EQ(*static_cast<VxString const *>(inPlace->constStoredData()), "shared");
  inPlace->~IVariantData();
  IVariantData *onHeap = constructVariantScalar<VxString>(buffer, size - 1, text);
  EXPECT_NE(static_cast<void *>(onHeap), buffer);
  onHeap->destruct();
}

TEST(ScalarHolder, CountedReferencesAndUniqueness) {
  IVariantData *a = constructVariantScalar<std::int32_t>(nullptr, 0, 7);
  EXPECT_EQ(a->ensureUnique(), a);
  a->copy();
  EXPECT_EQ(countOf<std::int32_t>(a), 2u);
  EXPECT_EQ(a->reorderData(columnMajor), a);
  EXPECT_EQ(countOf<std::int32_t>(a), 3u);
  a->destruct();

  IVariantData *b = a->ensureUnique();  // gives up one of a's two references
  ASSERT_NE(b, a);
  EXPECT_EQ(countOf<std::int32_t>(a), 1u);
  EXPECT_EQ(countOf<std::int32_t>(b), 1u);
  *static_cast<std::int32_t *>(b->mutableStoredData()) = 9;
  EXPECT_EQ(*static_cast<std::int32_t const *>(a->constStoredData()), 7);

  IVariantData *c = a->clone();
  EXPECT_EQ(countOf<std::int32_t>(a), 1u);
  EXPECT_EQ(*static_cast<std::int32_t const *>(c->constStoredData()), 7);
  for (IVariantData *holder : {a, b, c})
    holder->destruct();
}

TEST(ScalarHolder, InPlaceHolderIsItsOwnCloneAndCopyConstructionCopies) {
  VxVariantDirectStorage source;
  source.data = constructVariantScalar<VxString>(source.buffer, sizeof source.buffer, VxString("abc"));
  EXPECT_EQ(source.data->clone(), source.data);
  EXPECT_EQ(source.data->ensureUnique(), source.data);

  VxVariantDirectStorage target;
  target.data = copyConstructVariantScalar(target.buffer, sizeof target.buffer, source);
  EXPECT_EQ(static_cast<void *>(target.data), target.buffer);
  auto const &a = *static_cast<VxString const *>(source.data->constStoredData());
  auto const &b = *static_cast<VxString const *>(target.data->constStoredData());
  EXPECT_EQ(a.c_str(), b.c_str()) << "the text is shared";

  IVariantData *heap = copyConstructVariantScalar(nullptr, 0, source);
  EXPECT_EQ(countOf<VxString>(heap), 1u);
  heap->destruct();
  target.data->~IVariantData();
  source.data->~IVariantData();

  VxVariantDirectStorage null{constructVariantNull(), {}};
  EXPECT_THROW(copyConstructVariantScalar(nullptr, 0, null), std::runtime_error);
}

TEST(ScalarHolder, EveryKindAnswersItsShapeAndKind) {
  forEachElementKind([](auto tag) {
    using T = typename decltype(tag)::type;
    VxVariantDirectStorage storage;
    storage.data = constructVariantScalar<T>(storage.buffer, sizeof storage.buffer, T());
    IVariantData const &holder = *storage.data;
    EXPECT_EQ(static_cast<void const *>(&holder), storage.buffer) << "every kind fits in place";
    EXPECT_EQ(holder.wellKnownDataType(), wellKnownTypeOf<T>());
    EXPECT_EQ(holder.customTypeTag(), customTypeTagOf<T>());
    EXPECT_TRUE(holder.isScalarStorage());
    ASSERT_EQ(holder.dimensions().count, 1u);
    EXPECT_EQ(holder.dimensions()[0], 1u);
    EXPECT_EQ(holder.constStoredData(),
              static_cast<void const *>(&static_cast<ScalarVariantData<T> const &>(holder).value));
    storage.data->~IVariantData();
  });
}

TEST(ScalarHolder, ReshapesOnlyToOneDimensionOfOne) {
  IVariantData *holder = constructVariantScalar<float>(nullptr, 0, 1.0f);
  std::uint64_t const one[] = {1, 1};
  std::uint64_t const two[] = {2};
  EXPECT_NO_THROW(holder->reshapeNoRealloc({one, 1}));
  for (ArrayDimensionsView refused :
       {ArrayDimensionsView(one, 2), ArrayDimensionsView(two, 1), ArrayDimensionsView()}) {
    try {
      holder->reshapeNoRealloc(refused);
      ADD_FAILURE() << "reshaped";
    } catch (std::invalid_argument const &e) {
      EXPECT_STREQ(e.what(),
                   "Cannot reshape a scalar VxVariant to different dimensions without reallocating.");
    }
  }
  EXPECT_EQ(holder->dataOrdering(), rowMajor);
  holder->destruct();
}

TEST(ScalarHolder, ReshapingMakesAnArrayEvenOfOneElement) {
  VxVariantDirectStorage storage;
  storage.data = constructVariantScalar<std::int64_t>(storage.buffer, sizeof storage.buffer, 5);
  std::uint64_t const one[] = {1};
  IVariantData *reshaped = storage.data->reshapeToVxVariant(storage.data, {one, 1}, columnMajor);
  EXPECT_NE(dynamic_cast<VectorVariantData<std::int64_t> *>(reshaped), nullptr);
  EXPECT_FALSE(reshaped->isScalarStorage());
  EXPECT_EQ(reshaped->dataOrdering(), columnMajor);
  EXPECT_EQ(*static_cast<std::int64_t const *>(reshaped->constStoredData()), 5);
  reshaped->destruct();
  storage.data->~IVariantData();
}

TEST(ScalarHolder, ConversionIsAlwaysANewCountedHolder) {
  VxVariantDirectStorage storage;
  storage.data = constructVariantScalar<double>(storage.buffer, sizeof storage.buffer, 0.5);
  IVariantData *converted = storage.data->convertDataTo(wellKnownTypeOf<double>(), conversionLossless);
  ASSERT_NE(converted, nullptr);
  EXPECT_EQ(countOf<double>(converted), 1u);
  EXPECT_EQ(*static_cast<double const *>(converted->constStoredData()), 0.5);
  converted->destruct();
  EXPECT_THROW(storage.data->convertDataTo(WellKnownTypeValue::typeCustom, conversionCast),
               std::runtime_error);
  storage.data->~IVariantData();
}
