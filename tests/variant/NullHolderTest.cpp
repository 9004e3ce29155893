#include <VantraCore/IVariantData.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <stdexcept>

using namespace Tarvex::VantraCore;
using namespace Tarvex::VantraCore::Internal;

TEST(NullHolder, IsTheEmptyUncountedValue) {
  IVariantData *null = constructVariantNull();
  EXPECT_EQ(constructVariantNull(), null);
  null->copy();
  null->destruct();
  null->destruct();  // uncounted: giving up more than was taken is harmless
  EXPECT_EQ(null->ensureUnique(), null);
  EXPECT_EQ(null->clone(), null);
  EXPECT_EQ(null->reorderData(columnMajor), null);
  EXPECT_EQ(null->wellKnownDataType(), WellKnownType());
  EXPECT_EQ(null->numberAllocatedElements(), 0u);
  EXPECT_EQ(null->dimensions().sizes, nullptr);
  EXPECT_EQ(null->dimensions().count, 0u);
  EXPECT_FALSE(null->isScalarStorage());
  EXPECT_EQ(null->dataOrdering(), rowMajor);
  EXPECT_EQ(null->customTypeTag(), nullptr);
  EXPECT_EQ(null->customTypeOperations(), nullptr);
  EXPECT_EQ(null->constStoredData(), nullptr);
  EXPECT_EQ(null->mutableStoredData(), nullptr);
  EXPECT_EQ(null->reshapeToVxVariant(null, {}, rowMajor), nullptr);
}

TEST(NullHolder, ReshapesOnlyToNoDimensions) {
  IVariantData *null = constructVariantNull();
  EXPECT_NO_THROW(null->reshapeNoRealloc({}));
  std::uint64_t const zero[] = {0};
  try {
    null->reshapeNoRealloc({zero, 1});
    ADD_FAILURE() << "reshaped";
  } catch (std::invalid_argument const &e) {
    EXPECT_STREQ(
        e.what(),
        "Cannot reshape an empty VxVariant to one containing more than zero elements without reallocating.");
  }
}

TEST(NullHolder, ConvertsToItselfOrToAnEmptyArray) {
  IVariantData *null = constructVariantNull();
  EXPECT_EQ(null->convertDataTo(WellKnownType(), conversionLossless), null);
  for (auto kind :
       {WellKnownTypeValue::typeString, WellKnownTypeValue::typeTimestamp, WellKnownTypeValue::typeBool}) {
    IVariantData *empty = null->convertDataTo(kind, conversionLossless);
    ASSERT_NE(empty, nullptr);
    EXPECT_EQ(empty->wellKnownDataType(), kind);
    EXPECT_FALSE(empty->isScalarStorage());
    EXPECT_EQ(empty->dimensions().count, 0u);
    EXPECT_EQ(empty->numberAllocatedElements(), 0u);
    EXPECT_EQ(empty->dataOrdering(), rowMajor);
    empty->destruct();
  }
  try {
    null->convertDataTo(WellKnownTypeValue::typeCustom, conversionCast);
    ADD_FAILURE() << "converted";
  } catch (std::runtime_error const &e) {
    EXPECT_STREQ(e.what(), "unknown type");
  }
}
