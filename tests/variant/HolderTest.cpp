#include <VantraCore/detail/IVariantData.h>
#include <VantraCore/detail/ScalarVariantData.h>
#include <VantraCore/detail/VectorVariantData.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <support/Throws.h>

#include <complex>
#include <cstdint>
#include <iterator>
#include <limits>
#include <memory>
#include <stdexcept>
#include <vector>

using namespace Tarvex::VantraCore;
using namespace Tarvex::VantraCore::Internal;

namespace {

using Holder = std::shared_ptr<IVariantData>;
using Short = std::int16_t;

void release(IVariantData *holder) {
  holder->destruct();
}

template <class T>
Holder scalar(T value) {
  return Holder(constructVariantScalar<T>(nullptr, 0, value), release);
}

template <class T>
Holder array(std::vector<T> const &e, std::vector<std::uint64_t> const &shape,
             DataOrdering ordering = rowMajor) {
  return Holder(constructVariantVectorWithDataWithDimsUnresolved<T>(e.data(), e.size(), shape, ordering),
                release);
}

}  // namespace

// Identical is one value in one form: kind, dimension list, ordering and element bits. Equivalent is
// one logical array after conversion to a common kind, and all empty shapes are alike.
TEST(HolderComparison, IdenticalAndEquivalentPairs) {
  struct Case {
    Holder a, b;
    bool identical, equivalent;
    ConversionPolicy policy = conversionLossless;
  };
  Holder const null(constructVariantNull(), [](IVariantData *) {});
  Holder const rows = array<Short>({1, 2, 3, 4, 5, 6}, {2, 3});
  Holder const withNan = array<double>({1, std::numeric_limits<double>::quiet_NaN()}, {2});
  Case const cases[] = {
      {null, null, true, true},
      {null, array<double>({}, {}), false, true},
      {array<std::int32_t>({}, {0}), array<double>({}, {0, 3}), false, true},
      {array<double>({}, {0}), array<double>({}, {0, 3}), false, true},
      {array<double>({1, 2}, {2}), array<double>({1, 2}, {2, 1}), false, false, conversionCast},
      {scalar(2.0), array<double>({2}, {1}), true, true},
      {rows, array<Short>({1, 4, 2, 5, 3, 6}, {2, 3}, columnMajor), false, true},
      {rows, array<Short>({1, 2, 3, 4, 5, 6}, {2, 3}, columnMajor), false, false},
      // One long dimension: both orderings are the same bytes, and nothing is reordered.
      {array<float>({1, 2, 3}, {1, 3, 1}), array<float>({1, 2, 3}, {1, 3, 1}, columnMajor), false, true},
      {withNan, withNan, false, false, conversionCast},  // no short way for one holder
      {scalar(0.0), scalar(-0.0), true, true},
      {scalar(std::complex<float>(1, -0.0f)), scalar(std::complex<float>(1, 0)), true, true},
      {scalar(VxString("ab")), scalar(VxString("ab")), true, true},
      {scalar(VxString("ab")), scalar(VxString("abc")), false, false},
      {scalar(Duration(5)), scalar(Duration(-5)), false, false},
      {scalar(Complex<Short>(1, 2)), scalar(Complex<Short>(1, 3)), false, false},
      // Different kinds need a common kind and a conversion of one or both; no policy 7 exists.
      {scalar<std::int32_t>(1), scalar<std::uint32_t>(1), false, false, 7},
      {scalar(VxString("1")), scalar(1.0), false, false, conversionParse},
      {scalar(Duration(0)), scalar(Timestamp()), false, false},
      {array<float>({1, 2, 3, 4}, {2, 2}), array<std::int8_t>({1, 3, 2, 4}, {2, 2}, columnMajor), false,
       false, 7},
  };
  for (std::size_t i = 0; i < std::size(cases); ++i) {
    EXPECT_EQ(isIdenticalTo(*cases[i].a, *cases[i].b), cases[i].identical) << "case " << i;
    EXPECT_EQ(isEquivalentTo(*cases[i].a, *cases[i].b, cases[i].policy), cases[i].equivalent) << "case " << i;
  }
}

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
