#include <VantraCore/FPropertyNode.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <support/Throws.h>

using namespace Tarvex::VantraCore;

namespace {

// {"a": 1, "list": [2.5, null, []], "m": {"x": "text"}}
PropertyNode sample() {
  PropertyNode inner;
  inner.set("x", VxString("text"));
  PropertyList list;
  list.push_back(PropertyNode(VxVariant(2.5)));
  list.push_back(PropertyNode());
  list.push_back(PropertyNode(PropertyList()));
  PropertyNode root;
  root.set("a", VxVariant(1));
  root.set("list", PropertyNode(std::move(list)));
  root.set("m", std::move(inner));
  return root;
}

TEST(FPropertyNode, FreezesEachKindKeepsMapOrderAndTheFirstOfDuplicateKeys) {
  FPropertyNode const null{PropertyNode()};
  EXPECT_TRUE(null.isNull());
  EXPECT_EQ(null.useCount(), 0);
  EXPECT_THAT([&] { null.value(); }, throws<std::out_of_range>("FPropertyNode is not a value"));
  EXPECT_THAT([&] { null.list(); }, throws<std::out_of_range>("FPropertyNode is not a list"));
  EXPECT_THAT([&] { null.map(); }, throws<std::out_of_range>("FPropertyNode is not a map"));

  PropertyNode source = sample();
  FPropertyNode const frozen(source);
  source.set("a", VxVariant(7));  // later changes stay out of the frozen tree
  FPropertyMap const map = frozen.map();
  std::vector<std::string> keys;
  for (FPropertyMapEntry const &entry : map)
    keys.emplace_back(entry.key.data());
  EXPECT_EQ(keys, (std::vector<std::string>{"a", "list", "m"}));
  EXPECT_EQ(map.at("a").value().get<int>(), 1);
  EXPECT_THAT([&] { map.at("gone"); }, throws<std::out_of_range>("Key not found: gone"));

  FPropertyList const list = map.at("list").list();
  ASSERT_EQ(list.size(), 3u);
  EXPECT_EQ(list[0].value().get<double>(), 2.5);
  EXPECT_TRUE(list[1].isNull());
  EXPECT_EQ(list[2].kind(), PropertyNodeKind::List);  // an empty list is still a list
  EXPECT_TRUE(list[2].list().empty());

  long const before = frozen.useCount();
  FPropertyNode const copy = frozen;
  EXPECT_EQ(copy.useCount(), before + 1);

  FPropertyMap const duplicates(  // the first key wins
      {{"k", FPropertyNode(VxVariant(1))}, {"j", FPropertyNode()}, {"k", FPropertyNode(VxVariant(2))}});
  ASSERT_EQ(duplicates.size(), 2u);
  EXPECT_EQ(duplicates.at("k").value().get<int>(), 1);
  EXPECT_EQ(std::next(duplicates.begin())->key, InternedString("j"));
}

TEST(FPropertyNode, ThawsBackToAnEqualTreeAndWalksPaths) {
  FPropertyNode frozen(sample());
  EXPECT_TRUE(frozen.thaw() == sample());
  EXPECT_TRUE(FPropertyNode().thaw().isNull());
  EXPECT_EQ(resolvePropertyPath(frozen, PropertyPath({"list", 0})).value().get<double>(), 2.5);
  PropertyPath const pastTheEnd({"list", 3}), throughAValue({"a", "b"});
  EXPECT_THAT([&] { resolvePropertyPath(frozen, pastTheEnd); },
              throws<std::out_of_range>("List index out of range: 3"));
  EXPECT_THAT([&] { resolvePropertyPath(frozen, throughAValue); },
              throws<std::out_of_range>("FPropertyNode is not a map"));
}

}  // namespace
