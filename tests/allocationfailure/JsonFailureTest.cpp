// The JSON readers and writers of every fidelity, variant and tree, with each allocation failing in turn.
#include "FailEveryAllocation.h"

#include <VantraCore/FPropertyNode.h>
#include <VantraCore/JsonFormatter.h>
#include <VantraCore/JsonFormatterLowFidelity.h>
#include <VantraCore/JsonFormatterMidFidelity.h>

#include <gtest/gtest.h>

#include <sstream>
#include <string>

using namespace Tarvex::VantraCore;

namespace {

VxString const fullVariant(
    R"({"_wellknowntype_":"complexDouble","_dataorder_":"columnMajor","_dimensions_":[2,1],)"
    R"("_data_":[{"re":1,"im":-2},{"re":0.5,"im":3}]})");
VxString const fullTree(R"({"a":{"_wellknowntype_":"string","_dimensions_":[2],"_data_":["x","yz"]},)"
                        R"("b":[null,{"c":{"_wellknowntype_":"int32","_dimensions_":[2,2],"_data_":[1,2,3,4]}}]})");
VxString const plainVariant(R"({"_data_":[1.5,2,3,4]})");
VxString const plainTree(R"({"name":"probe","gain":[1,2,3],"nested":{"on":true,"at":[1,2,3,4]}})");
VxString const lenientTree(R"({"name":"probe","gain":[[1,2],[3,4]],"nested":{"on":[true,false],"at":["a","b"]}})");

template <class Formatter>
void readAndWrite(std::string const &fidelity, VxString const &variantText, VxString const &treeText) {
  VxVariant const value = Formatter::deserializeVxVariant(variantText);
  PropertyNode const tree = Formatter::deserializePropertyNode(treeText);
  FPropertyNode const frozen(tree);
  VxString const writtenValue = Formatter::serialize(value), indentedValue = Formatter::serialize(value, 2),
                 writtenTree = Formatter::serialize(tree);

  failEveryAllocation((fidelity + " variant reader").c_str(), [&] {
    EXPECT_EQ(Formatter::serialize(Formatter::deserializeVxVariant(variantText)), writtenValue);
  });
  failEveryAllocation((fidelity + " tree reader").c_str(), [&] {
    EXPECT_EQ(Formatter::deserializePropertyNode(treeText), tree);
  });
  failEveryAllocation((fidelity + " stream reader").c_str(), [&] {
    std::istringstream in(std::string(treeText.data(), treeText.size()));
    EXPECT_EQ(Formatter::deserializePropertyNode(in), tree);
  });
  failEveryAllocation((fidelity + " variant writer").c_str(), [&] {
    EXPECT_EQ(Formatter::serialize(value, 2), indentedValue);
  });
  failEveryAllocation((fidelity + " tree writer").c_str(), [&] { EXPECT_EQ(Formatter::serialize(tree), writtenTree); });
  failEveryAllocation((fidelity + " frozen tree writer").c_str(), [&] {
    // A stream keeps a failure to itself unless asked to throw it.
    std::ostringstream out;
    out.exceptions(std::ios::badbit);
    Formatter::serialize(frozen, out);
    EXPECT_EQ(out.str(), std::string(writtenTree.data(), writtenTree.size()));
  });
}

}  // namespace

TEST(JsonAllocationFailure, FullFidelity) {
  readAndWrite<JsonFormatter>("full-fidelity", fullVariant, fullTree);
}

TEST(JsonAllocationFailure, MidFidelity) {
  readAndWrite<JsonFormatterMidFidelity>("mid-fidelity", plainVariant, plainTree);
}

TEST(JsonAllocationFailure, LowFidelity) {
  readAndWrite<JsonFormatterLowFidelity>("low-fidelity", plainVariant, lenientTree);
}
