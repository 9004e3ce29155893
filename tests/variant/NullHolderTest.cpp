#include <VantraCore/detail/IVariantData.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <support/Throws.h>

#include <cstdint>
#include <stdexcept>

using namespace Tarvex::VantraCore;
using namespace Tarvex::VantraCore::Internal;

TEST(NullHolder, IsUncountedReshapesToNoDimensionsAndConvertsToAnEmptyArray) {
  IVariantData *null = constructVariantNull();
  null->destruct();  // giving up more than was taken is harmless
  null->destruct();
  EXPECT_EQ(null->wellKnownDataType(), WellKnownType());
  EXPECT_EQ(null->ensureUnique(), null);
  EXPECT_NO_THROW(null->reshapeNoRealloc({}));
  std::uint64_t const zero[] = {0};
  char const *const nonEmpty =
      "Cannot reshape an empty VxVariant to one containing more than zero elements without reallocating.";
  auto const grow = [&] { null->reshapeNoRealloc({zero, 1}); };
  EXPECT_THAT(grow, throws<std::invalid_argument>(nonEmpty));

  EXPECT_EQ(null->convertDataTo(WellKnownType(), conversionLossless), null);
  IVariantData *empty = null->convertDataTo(WellKnownTypeValue::typeString, conversionLossless);
  ASSERT_NE(empty, nullptr);
  EXPECT_EQ(empty->wellKnownDataType(), WellKnownTypeValue::typeString);
  EXPECT_FALSE(empty->isScalarStorage());
  EXPECT_EQ(empty->dimensions().count, 0u);
  empty->destruct();
  EXPECT_THROW(null->convertDataTo(WellKnownTypeValue::typeCustom, conversionCast), std::runtime_error);
}
