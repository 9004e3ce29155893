#include <VantraCore/detail/ElementKinds.h>
#include <VantraCore/detail/ScalarVariantData.h>
#include <variant/ArrayHolders.h>
#include <variant/HolderReference.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <support/Throws.h>

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
template <class T>
T const &valueOf(IVariantData const *holder) {
  return *static_cast<T const *>(holder->constStoredData());
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
  HolderReference const onHeap(constructVariantScalar<VxString>(buffer, size - 1, VxString("text")));
  EXPECT_EQ(countOf<VxString>(onHeap.get()), 1u);
  EXPECT_EQ(countOf<double>(HolderReference(constructVariantScalar<double>(nullptr, 0, 1.0)).get()), 1u);
}

TEST(ScalarHolder, CountedReferencesUniquenessAndTheOneShape) {
  IVariantData *a = constructVariantScalar<std::int32_t>(nullptr, 0, 7);
  EXPECT_EQ(a->ensureUnique(), a);
  EXPECT_EQ(a->reorderData(columnMajor), a);
  EXPECT_EQ(countOf<std::int32_t>(a), 2u);
  IVariantData *b = a->ensureUnique();  // takes over one of a's two references
  ASSERT_NE(b, a);
  EXPECT_EQ(countOf<std::int32_t>(a), 1u);
  EXPECT_EQ(countOf<std::int32_t>(b), 1u);
  *static_cast<std::int32_t *>(b->mutableStoredData()) = 9;
  EXPECT_EQ(valueOf<std::int32_t>(a), 7);

  std::uint64_t const sizes[] = {1, 1};
  EXPECT_NO_THROW(a->reshapeNoRealloc({sizes, 1}));
  EXPECT_THROW(a->reshapeNoRealloc({sizes, 2}), std::invalid_argument);
  EXPECT_THROW(a->reshapeNoRealloc({}), std::invalid_argument);
  a->destruct();
  b->destruct();
}

// The in-place holder is its own clone: copies, conversions and reshapes make new holders.
TEST(ScalarHolder, InPlaceHolderOnlyEverGivesItself) {
  VxVariantDirectStorage source;
  source.data = constructVariantScalar<VxString>(source.buffer, sizeof source.buffer, VxString("abc"));
  EXPECT_EQ(source.data->clone(), source.data);
  VxVariantDirectStorage target;
  target.data = copyConstructVariantScalar(target.buffer, sizeof target.buffer, source);
  EXPECT_EQ(static_cast<void *>(target.data), target.buffer);
  EXPECT_EQ(valueOf<VxString>(source.data).c_str(), valueOf<VxString>(target.data).c_str()) << "shared";
  target.data->~IVariantData();

  HolderReference const converted(
      source.data->convertDataTo(WellKnownTypeValue::typeString, conversionLossless));
  EXPECT_EQ(countOf<VxString>(converted.get()), 1u);
  EXPECT_EQ(valueOf<VxString>(converted.get()), "abc");
  std::uint64_t const one[] = {1};
  HolderReference const reshaped(source.data->reshapeToVxVariant(source.data, {one, 1}, columnMajor));
  EXPECT_NE(dynamic_cast<VectorVariantData<VxString> const *>(reshaped.get()), nullptr);
  EXPECT_EQ(valueOf<VxString>(reshaped.get()), "abc");
  source.data->~IVariantData();

  VxVariantDirectStorage null{constructVariantNull(), {}};
  EXPECT_THAT([&] { copyConstructVariantScalar(nullptr, 0, null); },
              throws<std::runtime_error>("unknown type"));
}
