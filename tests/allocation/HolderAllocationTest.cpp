// Holds the array holders to one allocation per array and scalar variants to none of their own. A
// program of its own, so that no other test's replaced operators meet these.
#include <support/CountingAllocator.h>

#include <VantraCore/VxVariant.h>
#include <VantraCore/detail/ElementKinds.h>
#include <VantraCore/detail/IVariantData.h>
#include <VantraCore/detail/VectorVariantData.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

using namespace Tarvex::VantraCore;
using namespace Tarvex::VantraCore::Internal;

using CountingAllocator::Counter;

namespace {
using Dims = std::vector<std::uint64_t>;
}  // namespace

// Every kind goes through the exported factories, so this program also fails to link when one is
// missing from the library.
TEST(ArrayAllocation, OneAllocationPerArrayOfAnyKindAndRank) {
  Dims const flat{240}, deep{2, 3, 4, 5, 2};
  forEachElementKind([&](auto tag) {
    using T = typename decltype(tag)::type;
    std::unique_ptr<T[]> const source(new T[240]());
    for (Dims const &dims : {flat, deep}) {
      Counter counter;
      IVariantData *empty = constructVariantVectorWithoutDataWithDimsUnresolved<T>(dims, rowMajor);
      IVariantData *filled =
          constructVariantVectorWithDataWithDimsUnresolved<T>(source.get(), 240, dims, rowMajor);
      EXPECT_EQ(counter.allocations(), 2u) << ElementKind<T>::name;
      EXPECT_GE(counter.largest(), 240 * sizeof(T));
      filled->copy();
      filled->destruct();
      empty->destruct();
      filled->destruct();
      EXPECT_EQ(counter.allocations(), 2u);
      EXPECT_EQ(counter.releases(), 2u);
    }
    if constexpr (!std::is_same_v<T, bool>) {
      std::vector<T> adopted(240);
      Counter counter;
      IVariantData *holder = constructVariantDataFromMovedVector<T>(std::move(adopted), deep, columnMajor);
      EXPECT_LT(counter.largest(), 240 * sizeof(T)) << "the elements are adopted, not copied";
      holder->destruct();
      EXPECT_EQ(counter.releases(), counter.allocations() + 1) << "the adopted block goes with the holder";
    }
  });
}

TEST(VariantAllocation, ScalarsStandInPlace) {
  VxString const text = "short";
  Counter counter;
  {
    VxVariant number = 2.5, string = text;
    VxVariant const copies[] = {number, string, VxVariant(std::move(number))};
    string = copies[0];
  }
  EXPECT_EQ(counter.allocations(), 0u);
}
