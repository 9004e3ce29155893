#include <VantraCore/IVariantData.h>
#include <VantraCore/ScalarVariantData.h>
#include <VantraCore/VectorVariantData.h>

#include <gtest/gtest.h>

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

double const notANumber = std::numeric_limits<double>::quiet_NaN();

}  // namespace

TEST(HolderComparison, EmptyShapesAreAllEquivalentButNotIdentical) {
  IVariantData &null = *constructVariantNull();
  EXPECT_TRUE(isIdenticalTo(null, null));
  EXPECT_TRUE(isEquivalentTo(null, *array<double>({}, {}), conversionLossless));
  EXPECT_FALSE(isIdenticalTo(null, *array<double>({}, {})));
  EXPECT_TRUE(isEquivalentTo(*array<std::int32_t>({}, {0}), *array<double>({}, {0, 3}), conversionLossless));
  EXPECT_FALSE(isIdenticalTo(*array<double>({}, {0}), *array<double>({}, {0, 3})));
}

TEST(HolderComparison, ShapesAndOrderings) {
  EXPECT_FALSE(isEquivalentTo(*array<double>({1, 2}, {2}), *array<double>({1, 2}, {2, 1}), conversionCast));
  EXPECT_TRUE(isIdenticalTo(*scalar(2.0), *array<double>({2}, {1})));
  Holder const rows = array<std::int16_t>({1, 2, 3, 4, 5, 6}, {2, 3}, rowMajor);
  Holder const columns = array<std::int16_t>({1, 4, 2, 5, 3, 6}, {2, 3}, columnMajor);
  EXPECT_TRUE(isEquivalentTo(*rows, *columns, conversionLossless));
  EXPECT_FALSE(isIdenticalTo(*rows, *columns));
  EXPECT_FALSE(isEquivalentTo(*rows, *array<std::int16_t>({1, 2, 3, 4, 5, 6}, {2, 3}, columnMajor), 0));
  // One long dimension: both orderings are the same bytes, and nothing is reordered.
  EXPECT_TRUE(isEquivalentTo(*array<float>({1, 2, 3}, {1, 3, 1}, rowMajor),
                             *array<float>({1, 2, 3}, {1, 3, 1}, columnMajor), conversionLossless));
}

TEST(HolderComparison, ElementEquality) {
  Holder const withNan = array<double>({1, notANumber}, {2});
  EXPECT_FALSE(isIdenticalTo(*withNan, *withNan)) << "no short way for one holder";
  EXPECT_FALSE(isEquivalentTo(*withNan, *withNan, conversionCast));
  EXPECT_TRUE(isIdenticalTo(*scalar(0.0), *scalar(-0.0)));
  EXPECT_TRUE(isIdenticalTo(*scalar(std::complex<float>(1, -0.0f)), *scalar(std::complex<float>(1, 0))));
  EXPECT_TRUE(isIdenticalTo(*scalar(VxString("ab")), *scalar(VxString("ab"))));
  EXPECT_FALSE(isIdenticalTo(*scalar(VxString("ab")), *scalar(VxString("abc"))));
  EXPECT_FALSE(isIdenticalTo(*scalar(Duration(5)), *scalar(Duration(-5))));
  EXPECT_FALSE(isIdenticalTo(*scalar(Complex<std::int16_t>(1, 2)), *scalar(Complex<std::int16_t>(1, 3))));
}

TEST(HolderComparison, DifferentKindsNeedACommonKindAndAConversion) {
  EXPECT_FALSE(isIdenticalTo(*scalar<std::int32_t>(1), *scalar<std::uint32_t>(1)));
  EXPECT_FALSE(isEquivalentTo(*scalar(VxString("1")), *scalar(1.0), conversionParse));
  EXPECT_FALSE(isEquivalentTo(*scalar(Duration(0)), *scalar(Timestamp()), conversionLossless));
  // No policy 7 exists, so every conversion refuses it.
  EXPECT_FALSE(isEquivalentTo(*scalar<std::int32_t>(1), *scalar(1.0), 7));
  EXPECT_FALSE(isEquivalentTo(*array<float>({1, 2, 3, 4}, {2, 2}),
                              *array<std::int8_t>({1, 3, 2, 4}, {2, 2}, columnMajor), 7));
}
