#include <VantraCore/IVariantData.h>
#include <variant/ArrayHolders.h>
#include <variant/HolderReference.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>

using namespace Tarvex::VantraCore;
using namespace Tarvex::VantraCore::Internal;

namespace {

template <class T>
HolderReference custom(std::initializer_list<T> elements, std::uint64_t rows, DataOrdering ordering) {
  std::uint64_t const shape[] = {rows, elements.size() / rows};
  auto *holder = CustomVectorVariantData<T>::create({shape, 2}, ordering, elements.size());
  std::copy(elements.begin(), elements.end(), holder->elements());
  return HolderReference(holder);
}

}  // namespace

TEST(CustomHolderComparison, ComparesThroughTheFirstHoldersTable) {
  HolderReference const a = custom<double>({1, 2, 3, 4, 5, 6}, 2, rowMajor);
  HolderReference const same = custom<double>({1, 2, 3, 4, 5, 6}, 2, rowMajor);
  HolderReference const transposed = custom<double>({1, 4, 2, 5, 3, 6}, 2, columnMajor);
  EXPECT_TRUE(isIdenticalTo(*a, *same));
  EXPECT_FALSE(isIdenticalTo(*a, *transposed));
  EXPECT_TRUE(isEquivalentTo(*a, *transposed, conversionLossless));
  EXPECT_FALSE(isEquivalentTo(*a, *custom<double>({1, 2, 3, 4, 5, 7}, 2, rowMajor), conversionLossless));
}

TEST(CustomHolderComparison, CustomAndAKnownKindHaveNoCommonKind) {
  HolderReference const a = custom<double>({1, 2}, 1, rowMajor);
  std::uint64_t const shape[] = {1, 2};
  double const elements[] = {1, 2};
  HolderReference const plain(VectorVariantData<double>::createCopy({shape, 2}, rowMajor, 2, elements, 2));
  EXPECT_FALSE(isEquivalentTo(*a, *plain, conversionCast));
  EXPECT_FALSE(isIdenticalTo(*a, *plain));
}
