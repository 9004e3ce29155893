#include <VantraCore/ElementKinds.h>
#include <VantraCore/ScalarVariantData.h>
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

TEST(ScalarHolder, StandsInPlaceWhenTheBufferHoldsIt) {
  forEachElementKind([](auto tag) {
    using T = typename decltype(tag)::type;
    VxVariantDirectStorage storage;
    storage.data = constructVariantScalar<T>(storage.buffer, sizeof storage.buffer, T());
    EXPECT_EQ(static_cast<void *>(storage.data), storage.buffer) << "every kind fits in place";
    EXPECT_EQ(storage.data->wellKnownDataType(), wellKnownTypeOf<T>());
    storage.data->~IVariantData();
  });
  alignas(8) unsigned char buffer[64];
  std::size_t const size = sizeof(ScalarVariantDataNonCounted<VxString>);
  IVariantData *onHeap = constructVariantScalar<VxString>(buffer, size - 1, VxString("text"));
  EXPECT_EQ(countOf<VxString>(onHeap), 1u);
  onHeap->destruct();
  IVariantData *noBuffer = constructVariantScalar<double>(nullptr, 0, 1.0);
  EXPECT_EQ(countOf<double>(noBuffer), 1u);
  noBuffer->destruct();
}

TEST(ScalarHolder, CountedReferencesAndUniqueness) {
  IVariantData *a = constructVariantScalar<std::int32_t>(nullptr, 0, 7);
  EXPECT_EQ(a->ensureUnique(), a);
  EXPECT_EQ(a->reorderData(columnMajor), a);
  EXPECT_EQ(countOf<std::int32_t>(a), 2u);

  IVariantData *b = a->ensureUnique();  // takes over one of a's two references
  ASSERT_NE(b, a);
  EXPECT_EQ(countOf<std::int32_t>(a), 1u);
  EXPECT_EQ(countOf<std::int32_t>(b), 1u);
  *static_cast<std::int32_t *>(b->mutableStoredData()) = 9;
  EXPECT_EQ(*static_cast<std::int32_t const *>(a->constStoredData()), 7);
  a->destruct();
  b->destruct();
}

TEST(ScalarHolder, InPlaceHolderIsItsOwnCloneAndCopyConstructionCopies) {
  VxVariantDirectStorage source;
  source.data = constructVariantScalar<VxString>(source.buffer, sizeof source.buffer, VxString("abc"));
  EXPECT_EQ(source.data->clone(), source.data);
  VxVariantDirectStorage target;
  target.data = copyConstructVariantScalar(target.buffer, sizeof target.buffer, source);
  EXPECT_EQ(static_cast<void *>(target.data), target.buffer);
  EXPECT_EQ(static_cast<VxString const *>(source.data->constStoredData())->c_str(),
            static_cast<VxString const *>(target.data->constStoredData())->c_str())
      << "the text is shared";
  target.data->~IVariantData();
  source.data->~IVariantData();

  VxVariantDirectStorage null{constructVariantNull(), {}};
  EXPECT_THROW(copyConstructVariantScalar(nullptr, 0, null), std::runtime_error);
}

TEST(ScalarHolder, ReshapingMakesAnArrayEvenOfOneElement) {
  IVariantData *holder = constructVariantScalar<std::int64_t>(nullptr, 0, 5);
  std::uint64_t const ones[] = {1, 1};
  EXPECT_NO_THROW(holder->reshapeNoRealloc({ones, 1}));
  EXPECT_THROW(holder->reshapeNoRealloc({ones, 2}), std::invalid_argument);
  IVariantData *reshaped = holder->reshapeToVxVariant(holder, {ones, 1}, columnMajor);
  EXPECT_NE(dynamic_cast<VectorVariantData<std::int64_t> *>(reshaped), nullptr);
  EXPECT_EQ(*static_cast<std::int64_t const *>(reshaped->constStoredData()), 5);
  reshaped->destruct();
  holder->destruct();
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
