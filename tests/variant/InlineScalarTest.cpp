// Plain-number scalars are built, copied, read and dropped in this module without calling the
// library; the library's holders and these must stay one and the same thing.
#include <VantraCore/JsonFormatter.h>
#include <VantraCore/VxVariant.h>
#include <VantraCore/detail/ElementKinds.h>
#include <VantraCore/detail/ScalarVariantData.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <support/Throws.h>

#include <cstdint>
#include <stdexcept>

using namespace Tarvex::VantraCore;
namespace In = Tarvex::VantraCore::Internal;

namespace {

template <class T>
T sample(int which) {
  return static_cast<T>(which == 1 ? 1 : 0);
}

// The first word of the holder standing in the variant's buffer, which sits behind the holder pointer.
void const *identityOf(VxVariant const &variant) {
  return In::holderIdentity(reinterpret_cast<unsigned char const *>(&variant) + sizeof(void *));
}
bool storedInside(VxVariant const &variant) {
  auto const *self = reinterpret_cast<char const *>(&variant);
  auto const *data = static_cast<char const *>(variant.constStoredData());
  return data > self && data < self + sizeof variant;
}

}  // namespace

TEST(InlineScalar, EveryPlainKindIsTheLibrarysHolderAndCopiesAreIndependent) {
  In::forEachElementKind<In::InlineScalarKinds>([](auto tag) {
    using T = typename decltype(tag)::type;
    SCOPED_TRACE(In::ElementKind<T>::name);
    VxVariant const variant = sample<T>(1);
    In::VxVariantDirectStorage library;
    library.data = In::constructVariantScalar<T>(library.buffer, sizeof library.buffer, sample<T>(1));
    EXPECT_EQ(identityOf(variant), In::holderIdentity(library.buffer)) << "one vtable in both modules";
    EXPECT_EQ(In::holderIdentity(library.buffer), In::inPlaceHolderIdentity<T>());
    EXPECT_TRUE(storedInside(variant) && variant.isScalarStorage());
    EXPECT_EQ(variant.wellKnownDataType(), wellKnownTypeOf<T>());
    EXPECT_THAT([&] { variant.template at<T>(1); }, throws<std::out_of_range>("Indices out of bounds."));
    EXPECT_TRUE(variant.isIdenticalTo(VxVariant(sample<T>(1))));
    library.data->~IVariantData();

    VxVariant copy = variant;
    EXPECT_TRUE(storedInside(copy) && identityOf(copy) == identityOf(variant));
    copy.template mutableStoredData<T>()[0] = sample<T>(2);
    EXPECT_EQ(variant.template at<T>(0), sample<T>(1));
    EXPECT_EQ(copy.template at<T>(0), sample<T>(2));
    VxVariant moved = std::move(copy);
    EXPECT_EQ(moved.template at<T>(0), sample<T>(2));
    EXPECT_THAT([&] { copy.template at<T>(0); }, throws<std::invalid_argument>("VxVariant data is null"));
    moved = VxVariant("text");
    EXPECT_EQ(moved.template at<VxString>(0), "text");
    moved = variant;
    EXPECT_EQ(moved.template at<T>(0), sample<T>(1));
  });
  // The kind is compared, not the size.
  EXPECT_THAT([] { VxVariant(2.0).at<float>(0); }, throws<std::invalid_argument>("Wrong data type."));
  EXPECT_THAT([] { VxVariant(std::int64_t(2)).at<std::uint64_t>(0); },
              throws<std::invalid_argument>("Wrong data type."));
}

TEST(InlineScalar, ConvertsAndTravelsThroughTheLibrary) {
  VxVariant const number = std::int32_t(7);
  EXPECT_EQ(number.get<double>(), 7.0);
  EXPECT_TRUE(number.isEquivalentTo(VxVariant(7.0)) && !number.isIdenticalTo(VxVariant(7.0)));
  EXPECT_EQ(number.reordered(columnMajor).at<std::int32_t>(0), 7);

  // Built in the library, read here by the short way: the holder's identity is the same.
  VxVariant const back = JsonFormatter::deserializeVxVariant(JsonFormatter::serialize(VxVariant(2.5)));
  ASSERT_TRUE(back.isType<double>() && back.isScalarStorage());
  EXPECT_EQ(identityOf(back), In::inPlaceHolderIdentity<double>());
  EXPECT_EQ(back.at<double>(0), 2.5);
  VxVariant const copy = back;
  EXPECT_EQ(copy.at<double>(0), 2.5);
}
