#include <VantraCore/IVariantData.h>
#include <VantraCore/ScalarVariantData.h>
#include <VantraCore/VectorVariantData.h>

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <cstdint>
#include <limits>
#include <memory>
#include <vector>

using namespace Tarvex::VantraCore;
using namespace Tarvex::VantraCore::Internal;

namespace {

struct Release {
  void operator()(IVariantData *holder) const { holder->destruct(); }
};
using Holder = std::unique_ptr<IVariantData, Release>;

template <class T>
Holder scalar(T value) {
  return Holder(constructVariantScalar<T>(nullptr, 0, value));
}

template <class T>
Holder array(std::vector<T> const &elements, std::vector<std::uint64_t> const &shape,
             DataOrdering ordering = rowMajor) {
  return Holder(
      constructVariantVectorWithDataWithDimsUnresolved<T>(elements.data(), elements.size(), shape, ordering));
}

}  // namespace

TEST(HolderComparison, NullHolders) {
  IVariantData &null = *constructVariantNull();
  EXPECT_TRUE(isIdenticalTo(null, null));
  EXPECT_TRUE(isEquivalentTo(null, null, conversionLossless));
  Holder const one = scalar(1.0);
  EXPECT_FALSE(isIdenticalTo(null, *one));
  EXPECT_FALSE(isIdenticalTo(*one, null));
  EXPECT_FALSE(isEquivalentTo(null, *one, conversionCast));
}

TEST(HolderComparison, EmptyShapesAreAllEquivalentButNotIdentical) {
  IVariantData &null = *constructVariantNull();
  Holder const noDoubles = array<double>({}, {});
  Holder const zero = array<std::int32_t>({}, {0});
  Holder const zeroByThree = array<double>({}, {0, 3});
  EXPECT_TRUE(isEquivalentTo(null, *noDoubles, conversionLossless));
  EXPECT_TRUE(isEquivalentTo(*noDoubles, null, conversionLossless));
  EXPECT_FALSE(isIdenticalTo(null, *noDoubles));
  EXPECT_TRUE(isEquivalentTo(*zero, *zeroByThree, conversionLossless));
  EXPECT_FALSE(isIdenticalTo(*zeroByThree, *array<double>({}, {0})));
}

TEST(HolderComparison, DimensionListsAreComparedAsTheyStand) {
  Holder const five = array<double>({1, 2, 3, 4, 5}, {5});
  Holder const fiveByOne = array<double>({1, 2, 3, 4, 5}, {5, 1});
  EXPECT_FALSE(isEquivalentTo(*five, *fiveByOne, conversionCast));
  EXPECT_FALSE(isIdenticalTo(*five, *fiveByOne));
  EXPECT_TRUE(isIdenticalTo(*five, *array<double>({1, 2, 3, 4, 5}, {5})));
  EXPECT_FALSE(isIdenticalTo(*five, *array<double>({1, 2, 3, 4, 6}, {5})));
  EXPECT_TRUE(isIdenticalTo(*scalar(2.0), *array<double>({2}, {1}))) << "same kind, shape, ordering, value";
}

TEST(HolderComparison, OrderingIsLookedThroughOnlyByEquivalence) {
  Holder const rows = array<std::int16_t>({1, 2, 3, 4, 5, 6}, {2, 3}, rowMajor);
  Holder const columns = array<std::int16_t>({1, 4, 2, 5, 3, 6}, {2, 3}, columnMajor);
  EXPECT_TRUE(isEquivalentTo(*rows, *columns, conversionLossless));
  EXPECT_TRUE(isEquivalentTo(*columns, *rows, conversionLossless));
  EXPECT_FALSE(isIdenticalTo(*rows, *columns));
  EXPECT_FALSE(isEquivalentTo(*rows, *array<std::int16_t>({1, 2, 3, 4, 5, 6}, {2, 3}, columnMajor),
                              conversionLossless));
  // One long dimension: both orderings are the same bytes.
  EXPECT_TRUE(isEquivalentTo(*array<float>({1, 2, 3}, {1, 3, 1}, rowMajor),
                             *array<float>({1, 2, 3}, {1, 3, 1}, columnMajor), conversionLossless));
}

TEST(HolderComparison, RefusedConversionIsNotEquivalent) {
  // No policy 7 exists: every conversion refuses it.
  EXPECT_FALSE(isEquivalentTo(*scalar<std::int32_t>(1), *scalar(1.0), 7));
  EXPECT_FALSE(isEquivalentTo(*array<float>({1, 2, 3, 4}, {2, 2}),
                              *array<std::int8_t>({1, 2, 3, 4}, {2, 2}, columnMajor), 7));
}

TEST(HolderComparison, FloatingElementsCompareByValue) {
  Holder const nan = scalar(std::numeric_limits<double>::quiet_NaN());
  EXPECT_FALSE(isIdenticalTo(*nan, *nan)) << "no short way for one holder";
  EXPECT_FALSE(isEquivalentTo(*nan, *nan, conversionCast));
  Holder const withNan = array<double>({1, std::numeric_limits<double>::quiet_NaN()}, {2});
  EXPECT_FALSE(isIdenticalTo(*withNan, *withNan));
  EXPECT_FALSE(isEquivalentTo(*withNan, *withNan, conversionCast));
  EXPECT_TRUE(isIdenticalTo(*scalar(0.0), *scalar(-0.0)));
  EXPECT_TRUE(isIdenticalTo(*scalar(std::complex<float>(1, -0.0f)), *scalar(std::complex<float>(1, 0))));
  EXPECT_FALSE(isIdenticalTo(*scalar(std::complex<float>(1, 2)), *scalar(std::complex<float>(1, 3))));
}

TEST(HolderComparison, OtherKindsCompareStoredValues) {
  EXPECT_TRUE(isIdenticalTo(*scalar(VxString("ab")), *scalar(VxString("ab"))));
  EXPECT_FALSE(isIdenticalTo(*scalar(VxString("ab")), *scalar(VxString("abc"))));
  EXPECT_TRUE(isIdenticalTo(*scalar(Duration(5)), *scalar(Duration(5))));
  EXPECT_FALSE(isIdenticalTo(*scalar(Duration(5)), *scalar(Duration(-5))));
  EXPECT_FALSE(isIdenticalTo(*scalar(Complex<std::int16_t>(1, 2)), *scalar(Complex<std::int16_t>(1, 3))));
  EXPECT_FALSE(isIdenticalTo(*scalar<std::int32_t>(1), *scalar<std::uint32_t>(1))) << "kinds differ";
}

TEST(HolderComparison, DifferentKindsWithoutACommonOneAreNotEquivalent) {
  EXPECT_FALSE(isEquivalentTo(*scalar(VxString("1")), *scalar(1.0), conversionParse));
  EXPECT_FALSE(isEquivalentTo(*scalar(Duration(0)), *scalar(Timestamp()), conversionLossless));
}
