#include <VantraCore/JsonFormatter.h>
#include <VantraCore/JsonFormatterLowFidelity.h>
#include <VantraCore/JsonFormatterMidFidelity.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <support/FullText.h>
#include <support/Throws.h>

#include <cstdint>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

using namespace Tarvex::VantraCore;
using Low = JsonFormatterLowFidelity;
using Mid = JsonFormatterMidFidelity;

namespace {

std::string asVariants(char const *text) {
  return full(Low::deserializePropertyNode(VxString(text), JsonArrays::asVariants));
}

}  // namespace

TEST(PlainArraysAsVariants, KindShapeAndOrderFollowTheText) {
  EXPECT_EQ(asVariants("[3,-1,9223372036854775807]"),
            full(VxVariant(std::vector<std::int64_t>{3, -1, 9223372036854775807})));
  // One fraction, or one integer beyond int64, makes the whole array double.
  EXPECT_EQ(asVariants("[[1,2,3],[4,5,6.5]]"), full(VxVariant(std::vector<double>{1, 2, 3, 4, 5, 6.5}, {2, 3})));
  EXPECT_EQ(asVariants("[1,9223372036854775808]"),
            full(VxVariant(std::vector<double>{1, 9223372036854775808.0})));
  EXPECT_EQ(asVariants("[[[true],[false]],[[false],[true]]]"),
            full(VxVariant(std::vector<bool>{true, false, false, true}, {2, 2, 1})));
  EXPECT_EQ(asVariants(R"([["a","b"],["c","d"],["e","f"]])"),
            full(VxVariant(std::vector<VxString>{VxString("a"), VxString("b"), VxString("c"), VxString("d"),
                                                 VxString("e"), VxString("f")},
                           {3, 2})));
  EXPECT_EQ(asVariants("[[[[[[[[7]]]]]]]]"), full(VxVariant(std::vector<std::int64_t>{7}, {1, 1, 1, 1, 1, 1, 1, 1})));

  // Inside a tree; the mid reader too, its metadata objects read as before.
  PropertyNode const tree = Mid::deserializePropertyNode(
      VxString(R"({"unit":"mV","samples":[1,2],"doc":{"_data_":[1,2]}})"), JsonArrays::asVariants);
  EXPECT_EQ(full(tree.map().at(InternedString("samples")).value()), full(VxVariant(std::vector<std::int64_t>{1, 2})));
  EXPECT_EQ(full(tree.map().at(InternedString("doc")).value()), full(VxVariant(std::vector<double>{1, 2})));
  std::istringstream stream("[1.5]");
  EXPECT_EQ(full(Low::deserializePropertyNode(stream, JsonArrays::asVariants)), full(VxVariant(std::vector<double>{1.5})));
}

TEST(PlainArraysAsVariants, EveryOtherArrayStaysAList) {
  for (char const *text : {"[]", "[[]]", "[[],[]]", "[1,\"a\"]", "[1,true]", "[1,null]", "[null]", "[{}]"})
    EXPECT_EQ(asVariants(text), full(Low::deserializePropertyNode(VxString(text)))) << text;
  // A list's own items still become arrays where they can: ragged rows, mixed rows, one level too deep.
  auto const int64s = [](std::vector<std::int64_t> values, std::vector<std::uint64_t> dims) {
    return PropertyNode(VxVariant(std::move(values), std::move(dims)));
  };
  EXPECT_EQ(asVariants("[[1,2],[3]]"), full(PropertyNode(PropertyList{int64s({1, 2}, {2}), int64s({3}, {1})})));
  EXPECT_EQ(asVariants(R"([[1],["a"]])"),
            full(PropertyNode(PropertyList{int64s({1}, {1}),
                                           PropertyNode(VxVariant(std::vector<VxString>{VxString("a")}))})));
  EXPECT_EQ(asVariants("[[[[[[[[[1]]]]]]]]]"), full(PropertyNode(PropertyList{int64s({1}, {1, 1, 1, 1, 1, 1, 1, 1})})));
  // The default keeps every array a list.
  EXPECT_EQ(Low::deserializePropertyNode(VxString("[1,2]")).kind(), PropertyNodeKind::List);
}

TEST(ReadingCap, RefusesShapesBeyondWhatTheDocumentCarriesBeforeAllocating) {
  VxString const declared(R"({"_wellknowntype_":"double","_dimensions_":[300000000],"_data_":[1,2]})");
  std::string const refusal =
      "the JSON document declares an array of shape [300000000] holding 2 items; it would fill in more than "
      "the 1000 elements allowed beyond those a document carries";
  EXPECT_THAT([&] { JsonFormatter::deserializeVxVariant(declared, 1000); }, throws<std::length_error>(refusal));
  EXPECT_THAT([&] { JsonFormatter::deserializePropertyNode(declared, 1000); }, throws<std::length_error>(refusal));
  EXPECT_THAT([&] { Mid::deserializeVxVariant(declared, 1000); }, throws<std::length_error>(refusal));
  EXPECT_THAT([&] { Mid::deserializePropertyNode(declared, JsonArrays::asLists, 1000); },
              throws<std::length_error>(refusal));

  // At the cap accepted; the cap counts fills over the whole document.
  VxString const small(R"({"_wellknowntype_":"int32","_dimensions_":[2,3],"_data_":[1,2]})");
  EXPECT_EQ(JsonFormatter::deserializeVxVariant(small, 4).numberOfElements(), 6u);
  VxString const twice(std::string("[") + small.data() + "," + small.data() + "]");
  EXPECT_EQ(JsonFormatter::deserializePropertyNode(twice, 8).list().size(), 2u);
  EXPECT_THAT([&] { JsonFormatter::deserializePropertyNode(twice, 7); },
              throws<std::length_error>("the JSON document declares an array of shape [2, 3] holding 2 items; it "
                                        "would fill in more than the 7 elements allowed beyond those a document "
                                        "carries"));
  // By default nothing is bounded.
  EXPECT_EQ(Mid::deserializeVxVariant(small).numberOfElements(), 6u);
}
