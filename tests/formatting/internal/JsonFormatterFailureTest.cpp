#include <VantraCore/JsonFormatter.h>

#include <variant/ArrayHolders.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <support/Throws.h>

#include <sstream>

using namespace Tarvex::VantraCore;

TEST(JsonFormatterFailures, CustomKindFailsAnywhereAndLeavesTheStreamUntouched) {
  std::vector<std::uint64_t> const dims{2};
  VxVariant const custom =
      VxVariant::adoptHolder(Internal::CustomVectorVariantData<double>::create(dims, rowMajor, 2));
  auto const refused = throws<std::logic_error>("Cannot serialze custom types");
  EXPECT_THAT([&] { JsonFormatter::serialize(custom, -1); }, refused);
  PropertyMap map;
  map.insertOrAssign(InternedString("a"), PropertyNode(1.0));
  map.insertOrAssign(InternedString("z"), PropertyNode(PropertyList{PropertyNode(custom)}));
  std::ostringstream out;
  EXPECT_THAT([&] { JsonFormatter::serialize(PropertyNode(map), out, 2); }, refused);
  EXPECT_EQ(out.str(), "");
}
