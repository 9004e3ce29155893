#include <VantraCore/IVariantData.h>
#include <VantraCore/ScalarVariantData.h>

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <cstdint>
#include <limits>
#include <memory>

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

TEST(HolderComparison, FloatingElementsCompareByValue) {
  Holder const nan = scalar(std::numeric_limits<double>::quiet_NaN());
  EXPECT_FALSE(isIdenticalTo(*nan, *nan)) << "no short way for one holder";
  EXPECT_FALSE(isEquivalentTo(*nan, *nan, conversionCast));
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
