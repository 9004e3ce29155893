// The property tree's writes, copies and freezing with each allocation failing in turn: a failed set
// leaves the node as it was.
#include "FailEveryAllocation.h"

#include <VantraCore/FPropertyNode.h>
#include <VantraCore/JsonFormatter.h>
#include <VantraCore/PropertyNode.h>

#include <gtest/gtest.h>

using namespace Tarvex::VantraCore;

namespace {

PropertyNode sampleTree() {
  return JsonFormatter::deserializePropertyNode(
      R"({"name":{"_wellknowntype_":"string","_dimensions_":[],"_data_":"probe"},)"
      R"("channels":[{"gain":{"_wellknowntype_":"double","_dimensions_":[3],"_data_":[1,2,3]}},null],)"
      R"("limits":{"low":{"_wellknowntype_":"int32","_dimensions_":[],"_data_":-4}}})");
}

}  // namespace

// Each write is undone at the end of a run without allocating, so every run starts from the same tree
// and a failed one must leave it so.
TEST(TreeAllocationFailure, FailedSetLeavesTheNodeAsItWas) {
  PropertyNode const subtree = sampleTree();
  InternedString const fresh("fresh"), existing("limits");
  PropertyNode null, tree = sampleTree();
  PropertyNode const treeBefore = tree;
  auto const treeUnchanged = [&] { EXPECT_EQ(tree, treeBefore); };

  failEveryAllocation(
      "set on a null node",
      [&] {
        EXPECT_EQ(null.set(fresh, subtree), subtree);
        null = PropertyNode();
      },
      [&] { EXPECT_TRUE(null.isNull()); });
  failEveryAllocation(
      "set of a new key",
      [&] {
        tree.set(fresh, subtree);
        EXPECT_EQ(tree.map().erase(fresh), 1u);
      },
      treeUnchanged);
  failEveryAllocation(
      "set of an existing key", [&] { tree.set(existing, treeBefore.map().at(existing)); }, treeUnchanged);
  failEveryAllocation(
      "set of a text", [&] { tree.set(existing, VxString("a text of its own block")); },
      [&] { EXPECT_EQ(tree.map().at(existing).value().get<VxString>(), "a text of its own block"); });
}

TEST(TreeAllocationFailure, CopiesAndFreezing) {
  PropertyNode const tree = sampleTree();
  FPropertyNode const frozen(tree);
  failEveryAllocation("deep copy", [&] { EXPECT_EQ(PropertyNode(tree), tree); });
  failEveryAllocation("freezing", [&] { EXPECT_EQ(FPropertyNode(tree).thaw(), tree); });
  failEveryAllocation("thawing", [&] { EXPECT_EQ(frozen.thaw(), tree); });
}
