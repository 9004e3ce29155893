#include <VantraCore/VxVariant.h>
#include <variant/ArrayHolders.h>

#include <gtest/gtest.h>

using namespace Tarvex::VantraCore;
using namespace Tarvex::VantraCore::Internal;

// A type tag is an address in one module, so only VxVariant may look through a custom holder.
TEST(VxVariantCustom, OnlyTheDirectStorageKnowsTheCustomElementType) {
  std::uint64_t const shape[] = {3};
  IVariantData *holder = CustomVectorVariantData<double>::create({shape, 1}, rowMajor, 3);
  holder->copy();
  VxVariant const direct = VxVariant::adoptHolder(holder);
  VxVariantAbi const abi = VxVariantAbi::adoptHolder(holder);
  EXPECT_EQ(direct.at<double>(2), 0);
  EXPECT_FALSE(abi.isType<double>() || abi.isNull());
  EXPECT_THROW(abi.at<double>(0), std::invalid_argument);
}
