#include <VantraCore/PropertyNode.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <support/Throws.h>

#include <string>
#include <vector>

using namespace Tarvex::VantraCore;

namespace {

std::vector<std::string> keysOf(PropertyMap const &map) {
  std::vector<std::string> keys;
  for (auto const &entry : map)
    keys.emplace_back(entry.key.data(), entry.key.length());
  return keys;
}

PropertyNode sampleTree() {
  PropertyNode root;
  root.set("b", 1.5);
  root.set("a", PropertyList{PropertyNode("x"), PropertyNode(VxVariant(std::vector<int>{1, 2}))});
  root.set("c", PropertyNode()).set("inner", std::int32_t{7});
  return root;
}

}  // namespace

TEST(PropertyNode, KeysAreInternedIdentityAndKeepFirstInsertionOrder) {
  std::string const text = "gain";  // a second, separate buffer of the same text
  PropertyNode node;
  node.set(InternedString("gain"), 1.0).value() = VxVariant(0.5);
  node.set("offset", 2.0);
  node.set(InternedString(text.c_str()), 3.0);
  EXPECT_EQ(keysOf(node.map()), (std::vector<std::string>{"gain", "offset"}));
  EXPECT_EQ(node.map().at("gain").value().get<double>(), 3.0);

  EXPECT_EQ(node.map().insertOrAssign("offset", VxVariant(4.0)),
            std::make_pair(node.map().begin() + 1, false));
  EXPECT_TRUE(node.map().insertOrAssign("z", PropertyNode()).second);
  EXPECT_EQ(node.map().erase("gain"), 1u);
  EXPECT_EQ(node.map().erase("gain"), 0u);
  EXPECT_EQ(keysOf(node.map()), (std::vector<std::string>{"offset", "z"}));
}

TEST(PropertyNode, CopiesAreDeepAndIndependent) {
  PropertyNode const original = sampleTree();
  PropertyNode copy = original;
  EXPECT_EQ(copy, original);
  copy.map().at("c").set("inner", 8);
  copy.map().at("a").list().push_back(PropertyNode());
  copy.map().at("b").value().mutableStoredData<double>()[0] = 9.0;
  EXPECT_EQ(original, sampleTree());
}

TEST(PropertyNode, MovedFromNodesAreNullInEveryBranch) {
  for (PropertyNode source : {PropertyNode(1), PropertyNode(PropertyList{PropertyNode(1)}), sampleTree()}) {
    PropertyNode const expected = source;
    PropertyNode target(std::move(source));
    EXPECT_EQ(source.kind(), PropertyNodeKind::Null);
    EXPECT_EQ(target, expected);
    for (PropertyNode assigned :
         {PropertyNode(), PropertyNode(2), PropertyNode(PropertyList{}), sampleTree()}) {
      assigned = std::move(target);
      EXPECT_EQ(target.kind(), PropertyNodeKind::Null);
      EXPECT_EQ(assigned, expected);
      target = std::move(assigned);
    }
  }
}

TEST(PropertyNode, AssignmentFromOwnSubtreeIsSafe) {
  PropertyNode root = sampleTree();
  PropertyNode &self = root;
  root = std::move(self);
  EXPECT_EQ(root, sampleTree());
  root = root.map().at("c");
  EXPECT_EQ(root.map().at("inner").value().get<int>(), 7);
  root = PropertyNode(PropertyList{PropertyNode(PropertyList{PropertyNode(5)})});
  root = std::move(root.list()[0]);
  EXPECT_EQ(root.list()[0].value().get<int>(), 5);
}

TEST(PropertyNode, FailuresKeepTheNodeAndSayWhy) {
  PropertyNode value(VxVariant{});
  EXPECT_FALSE(value.isNull());
  EXPECT_THAT([&] { value.set("k", 1); }, throws<std::out_of_range>("PropertyNode is not a Map"));
  EXPECT_TRUE(value.value().isNull());

  PropertyNode const null;
  EXPECT_THAT([&] { null.map(); }, throws<std::out_of_range>("PropertyNode is not a map"));
  EXPECT_THAT([&] { null.list(); }, throws<std::out_of_range>("PropertyNode is not a list"));
  EXPECT_THAT([&] { null.value(); }, throws<std::out_of_range>("PropertyNode is not a value"));
  EXPECT_THAT([] { sampleTree().map().at(""); }, throws<std::out_of_range>("Key not found: "));
}
