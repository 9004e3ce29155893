#include <VantraCore/VxVariant.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <support/Throws.h>

#include <cstdint>
#include <memory>
#include <numeric>
#include <stdexcept>
#include <string>
#include <vector>

using namespace Tarvex::VantraCore;

namespace {

// Every behaviour holds for both flavours alike.
template <class V>
struct Variant : testing::Test {
  static std::string name() { return std::is_same_v<V, VxVariant> ? "VxVariant" : "VxVariantAbi"; }
  static std::string refusal(char const *rest) {
    return "Cannot convert Tarvex::VantraCore::" + name() + rest;
  }
  static V doubles(std::uint64_t count, std::vector<std::uint64_t> dims = {}) {
    std::vector<double> values(count);
    std::iota(values.begin(), values.end(), 1.0);
    return V(values.data(), count, dims, rowMajor);
  }
};
using Flavours = testing::Types<VxVariant, VxVariantAbi>;
TYPED_TEST_SUITE(Variant, Flavours);

}  // namespace

TYPED_TEST(Variant, NullScalarsAndElementAccess) {
  TypeParam const null, number = std::int32_t(7), text = "abc";
  EXPECT_TRUE(null.isNull() && null.numberOfElements() == 0);
  EXPECT_THAT([&] { null.template at<double>(0); },
              throws<std::invalid_argument>("Cannot access element of null variant."));
  EXPECT_THAT([&] { number.template at<double>(0); }, throws<std::invalid_argument>("Wrong data type."));
  EXPECT_THAT([&] { number.template at<std::int32_t>(1); },
              throws<std::out_of_range>("Indices out of bounds."));
  TypeParam moved = text, copy = moved;
  EXPECT_EQ(copy.template at<VxString>(0).c_str(), text.template at<VxString>(0).c_str());
  TypeParam const target = std::move(moved);
  EXPECT_THAT([&] { moved.isNull(); }, throws<std::invalid_argument>("VxVariant data is null"));
  moved = number;
  EXPECT_EQ(moved.template get<double>(conversionCast), 7) << "converted, where at<double> refuses";
}

TYPED_TEST(Variant, ArrayShapesAgreeAcrossFlavours) {
  TypeParam const zero(std::vector<double>(5, 1.0), {0}),
      bits(std::vector<bool>{true, false, true}, {3, 1}, columnMajor);
  EXPECT_TRUE(zero.dimensions().count == 1 && zero.numberOfElements() == 5) << "no elements: the vector's";
  EXPECT_TRUE(bits.template at<bool>(2) && bits.dataOrdering() == columnMajor);
  EXPECT_THROW(TestFixture::doubles(5, {2, 3}), std::length_error);
  EXPECT_EQ(TypeParam::template withShape<float>({2, 2}).template at<float>(3), 0.0f);
}

TYPED_TEST(Variant, CopiesShareUntilOneWrites) {
  for (TypeParam const &original :
       {TestFixture::doubles(6, {2, 3}), TypeParam(std::vector<double>{1}), TypeParam(1.0)}) {
    TypeParam copy = original;
    copy.template mutableStoredData<double>()[0] = 9;
    EXPECT_EQ(original.template at<double>(0), 1);
    EXPECT_EQ(copy.template at<double>(0), 9);
  }
  TypeParam array = TestFixture::doubles(6, {2, 3}), shared = array;
  EXPECT_EQ(shared.template constStoredData<double>(), array.template constStoredData<double>());
  EXPECT_THROW(array.reshape({3, 2}), std::runtime_error) << "a shared holder refuses";
  shared = TypeParam();
  array.reshape({3, 2});
  EXPECT_THROW(array.reshape({1, 2, 3}), std::length_error);
  TypeParam const columns = array.reordered(columnMajor);
  EXPECT_EQ(columns.template at<double>(1), 3);
  EXPECT_TRUE(columns.isEquivalentTo(array) && !columns.isIdenticalTo(array));
}

TYPED_TEST(Variant, ConversionsAndTheirMessage) {
  TypeParam const five = TestFixture::doubles(5), null;
  EXPECT_EQ(five.convertTo(wellKnownTypeOf<double>()).constStoredData(), five.constStoredData()) << "shared";
  EXPECT_THAT([&] { five.convertTo(wellKnownTypeOf<Timestamp>(), conversionCast); },
              throws<std::runtime_error>(
                  TestFixture::refusal(" of type 'double' (size: 5) to 'Tarvex::VantraCore::Timestamp'")));
  EXPECT_TRUE(five.tryConvertTo(wellKnownTypeOf<Timestamp>()).isNull());
  EXPECT_TRUE(TypeParam(0.5).tryConvertTo(wellKnownTypeOf<std::int32_t>()).isNull()) << "lossless refuses";
  EXPECT_EQ(five.convertTo(wellKnownTypeOf<std::int8_t>()).template at<std::int8_t>(4), 5);
  EXPECT_TRUE(null.convertTo(wellKnownTypeOf<float>()).template isType<float>());
  EXPECT_THAT([&] { null.template get<double>(); }, throws<std::runtime_error>("unknown type"));
  EXPECT_EQ(TypeParam(std::vector<double>{4}, {1, 1, 1}).template get<double>(), 4);
  EXPECT_THAT([&] { TypeParam::template withShape<double>({0}).template get<double>(); },
              throws<std::runtime_error>(TestFixture::refusal(" of type 'double' (size: 0) to 'double'")));
}

TYPED_TEST(Variant, IterationSharesTheHolder) {
  TypeParam const five = TestFixture::doubles(5), null, ints(std::vector<std::int32_t>{1, 2});
  auto const range = five.template asIterable<double>();
  EXPECT_EQ(range.begin(), five.template constStoredData<double>());
  EXPECT_EQ(std::accumulate(range.begin(), range.end(), 0.0), 15);
  EXPECT_TRUE(null.template asIterable<double>().empty() &&
              null.template asIterable<double>(conversionCast).empty());
  EXPECT_THAT([&] { ints.template asIterable<double>(); },
              throws<std::runtime_error>("Data type mismatch, cannot provide iterable container"));
  auto const converted = ints.template asIterable<double>(conversionLossless);
  EXPECT_EQ(std::vector<double>(converted.begin(), converted.end()), (std::vector<double>{1, 2}));
  using Range = typename TypeParam::template Iterable<double>;
  auto original = std::make_unique<Range>(TypeParam(2.5).template asIterable<double>());
  Range const copy = *original;
  original.reset();
  EXPECT_EQ(*copy.begin(), 2.5) << "an in-place scalar's range follows its variant";
}
