#include <VantraCore/IVariantData.h>
#include <variant/ArrayHolders.h>
#include <variant/HolderReference.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>

using namespace Tarvex::VantraCore;
using namespace Tarvex::VantraCore::Internal;

// Custom holders compare through the first holder's table, and have no kind in common with others.
TEST(CustomHolderComparison, ComparesThroughTheFirstHoldersTable) {
  auto make = [](std::initializer_list<double> elements, DataOrdering ordering, bool custom) {
    std::uint64_t const shape[] = {2, 3};
    auto *holder = custom ? CustomVectorVariantData<double>::create({shape, 2}, ordering, 6)
                          : VectorVariantData<double>::create({shape, 2}, ordering, 6);
    std::copy(elements.begin(), elements.end(), holder->elements());
    return HolderReference(holder);
  };
  HolderReference const a = make({1, 2, 3, 4, 5, 6}, rowMajor, true);
  EXPECT_TRUE(isIdenticalTo(*a, *make({1, 2, 3, 4, 5, 6}, rowMajor, true)));
  EXPECT_TRUE(isEquivalentTo(*a, *make({1, 4, 2, 5, 3, 6}, columnMajor, true), conversionLossless));
  EXPECT_FALSE(isEquivalentTo(*a, *make({1, 2, 3, 4, 5, 7}, rowMajor, true), conversionLossless));
  EXPECT_FALSE(isEquivalentTo(*a, *make({1, 2, 3, 4, 5, 6}, rowMajor, false), conversionCast));
}
