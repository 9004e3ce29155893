// Holds scalar variants to no allocation of their own. A program of its own, so that no other test's
// replaced operators meet these.
#include <support/CountingAllocator.h>

#include <VantraCore/VxVariant.h>

#include <gtest/gtest.h>

#include <utility>

using namespace Tarvex::VantraCore;

TEST(VariantAllocation, ScalarsStandInPlace) {
  VxString const text = "short";
  CountingAllocator::Counter counter;
  {
    VxVariant number = 2.5, string = text;
    VxVariant const copies[] = {number, string, VxVariant(std::move(number))};
    string = copies[0];
  }
  EXPECT_EQ(counter.allocations(), 0u);
}
