#include <VantraCore/PropertyNode.h>
#include <VantraCore/PropertyPath.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <support/Throws.h>

#include <sstream>
#include <string>

using namespace Tarvex::VantraCore;

namespace {
std::string printed(PropertyPath const &path) {
  std::ostringstream out;
  PrintTo(path, &out);
  return out.str();
}
}  // namespace

TEST(PropertyPath, PrintsNamesBareAndIndicesAsNumbers) {
  EXPECT_EQ(printed(PropertyPath()), "{}");
  EXPECT_EQ(printed(PropertyPath({"name"})), "{name}");
  EXPECT_EQ(printed(PropertyPath({"a", 0, "b"})), "{a, 0, b}");
  EXPECT_EQ(printed(PropertyPath({"", std::uint64_t{18446744073709551615u}, ""})),
            "{, 18446744073709551615, }");
}

TEST(PropertyPath, SegmentsAnswerOnlyForTheirOwnSort) {
  PropertyPath::Segment const name("gain"), index(3);
  EXPECT_THAT([&] { name.index(); },
              throws<std::runtime_error>("Property Path segment is a name, not an index."));
  EXPECT_THAT([&] { index.name(); },
              throws<std::runtime_error>("Property Path segment is an index, not a name."));
  EXPECT_THROW(PropertyPath::Segment(-1), std::invalid_argument);
}

TEST(PropertyPath, ResolvesWithTheAccessorsFailures) {
  PropertyNode root;
  root.set("list", PropertyList{PropertyNode(1), PropertyNode()}).list()[1].set("leaf", 2.5);
  EXPECT_EQ(resolvePropertyPath(root, PropertyPath({"list", 1, "leaf"})).value().get<double>(), 2.5);
  resolvePropertyPath(root, PropertyPath({"list", 0})) = VxString("changed");
  PropertyNode const &constRoot = root;
  EXPECT_EQ(resolvePropertyPath(constRoot, PropertyPath({"list", 0})).value().get<VxString>(),
            VxString("changed"));

  auto const fails = [&](PropertyPath path, char const *message) {
    EXPECT_THAT([&] { resolvePropertyPath(constRoot, path); }, throws<std::out_of_range>(message));
  };
  fails(PropertyPath({"missing"}), "Key not found: missing");
  fails(PropertyPath({"list", 2}), "List index out of range: 2");
  fails(PropertyPath({"list", "leaf"}), "PropertyNode is not a map");
  fails(PropertyPath({0}), "PropertyNode is not a list");
}
