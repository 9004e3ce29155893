#include <VantraCore/JsonFormatter.h>
#include <VantraCore/JsonFormatterLowFidelity.h>
#include <VantraCore/JsonFormatterMidFidelity.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <support/FullText.h>
#include <support/Throws.h>

#include <cmath>
#include <complex>
#include <cstdint>
#include <cstring>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

using namespace Tarvex::VantraCore;
using Internal::int128_t;
using Low = JsonFormatterLowFidelity;
using Mid = JsonFormatterMidFidelity;

namespace {

std::string low(VxVariant const &value) {
  return Low::serialize(value).data();
}

std::string asVariants(char const *text) {
  return full(Low::deserializePropertyNode(VxString(text), JsonArrays::asVariants));
}

Timestamp atSecond(std::int64_t seconds) {
  return Timestamp(Duration(int128_t(seconds) * int128_t(std::int64_t(1000000000000000))));
}

}  // namespace

TEST(LowFidelityWriting, DropsMetadataAndNestsArraysInLogicalOrder) {
  EXPECT_EQ(low(VxVariant(7)), "7");
  EXPECT_EQ(low(VxVariant(std::vector<std::int32_t>{7}, {1, 1})), "[[7]]");
  // 2x2x2 column-major: the value at (i,j,k) is ijk in decimal, stored with i fastest.
  std::vector<std::int32_t> cube;
  for (int k = 0; k < 2; ++k)
    for (int j = 0; j < 2; ++j)
      for (int i = 0; i < 2; ++i)
        cube.push_back(100 * i + 10 * j + k);
  EXPECT_EQ(low(VxVariant(cube, {2, 2, 2}, columnMajor)), "[[[0,1],[10,11]],[[100,101],[110,111]]]");
  EXPECT_EQ(std::string(Low::serialize(VxVariantAbi(cube, {2, 2, 2}, columnMajor)).data()),
            low(VxVariant(cube, {2, 2, 2}, columnMajor)));

  for (VxVariant const &nothing :
       {VxVariant(), VxVariant::withShape<double>({2, 0}), VxVariant(std::nan("")),
        VxVariant(std::complex<double>(1, 2)), VxVariant(Complex<bool>(true, false)),
        VxVariant(std::vector<std::complex<float>>{{1, 2}, {3, 4}})})
    EXPECT_EQ(low(nothing), "null") << full(nothing);

  PropertyNode tree{PropertyMap()};
  tree.set(InternedString("z"), PropertyNode(VxVariant(std::complex<double>(1, 2))));
  tree.set(InternedString("a"), PropertyNode(PropertyList()));
  EXPECT_EQ(Low::serialize(tree), R"({"a":null,"z":null})");
}

TEST(LowFidelityWriting, TimeValuesBecomeText) {
  // Whole seconds truncate toward zero, so 1.5 s before the epoch is its last second.
  EXPECT_EQ(low(Timestamp(Duration(int128_t(std::int64_t(-1500000000000000))))),
            R"("Wed Dec 31 23:59:59 1969\n")");
  EXPECT_EQ(low(atSecond(253402300800)), R"("Sat Jan  1 00:00:00 10000\n")");
}

TEST(LowFidelityReading, InfersDoubleBoolAndStringArrays) {
  EXPECT_EQ(full(Low::deserializeVxVariant(VxString("5"))), full(VxVariant(5.0)));
  EXPECT_EQ(full(Low::deserializeVxVariant(VxString("5.0"))), full(VxVariant(5.0)));
  EXPECT_EQ(full(Low::deserializeVxVariant(VxString("[[1,2],[3,4]]"))),
            full(VxVariant(std::vector<double>{1, 2, 3, 4}, {2, 2})));
  EXPECT_EQ(full(Low::deserializeVxVariant(VxString(R"(["a","b"])"))),
            full(VxVariant(std::vector<VxString>{VxString("a"), VxString("b")})));
  EXPECT_EQ(full(Low::deserializeVxVariant(VxString("[[[[[[[[true]]]]]]]]"))),
            full(VxVariant(std::vector<bool>{true}, {1, 1, 1, 1, 1, 1, 1, 1})));
  // A null or object innermost first element leaves the found shape with default elements.
  EXPECT_EQ(full(Low::deserializeVxVariant(VxString("[[null],[{}]]"))),
            full(VxVariant::withShape<double>({2, 1})));
  for (char const *nothing : {"null", "{}", R"({"a":[1,2]})", "[]", "[[]]", "[null,1]", "[{}]"})
    EXPECT_TRUE(Low::deserializeVxVariant(VxString(nothing)).isNull()) << nothing;

  auto const heterogeneous =
      throws<std::runtime_error>("VxVariant cannot be created because of heterogeneous data format");
  for (char const *mixed : {"[1,true]", "[true,1]", R"(["a",1])", "[1,null]", "[[1,2],[3]]", "[[1],2]",
                            "[1,[2]]", "[[[[[[[[[1]]]]]]]]]"})
    EXPECT_THAT([&] { Low::deserializeVxVariant(VxString(mixed)); }, heterogeneous) << mixed;
  // Ragged rows are not looked at, only the total count against the shape of the first elements.
  EXPECT_EQ(full(Low::deserializeVxVariant(VxString("[[1],[2,3],[]]"))),
            full(VxVariant(std::vector<double>{1, 2, 3}, {3, 1})));
}

TEST(LowFidelityReading, TreesHoldListsAndScalarsOnly) {
  EXPECT_EQ(
      full(Low::deserializePropertyNode(VxString(R"({"a":[1,[true]],"_data_":"x"})"))),
      R"({"_data_":{"_data_":"x","_wellknowntype_":"string"},"a":[{"_data_":1,"_wellknowntype_":"double"},)"
      R"([{"_data_":true,"_wellknowntype_":"bool"}]]})");
}

TEST(MidFidelityReading, FillsInMissingMetadata) {
  auto const mid = [](char const *text) { return full(Mid::deserializeVxVariant(VxString(text))); };
  EXPECT_EQ(mid(R"({"_data_":{"seconds":1,"subseconds":0}})"), full(atSecond(1)));
  EXPECT_EQ(mid(R"({"_data_":{"seconds":1,"subseconds":0},"_wellknowntype_":"duration"})"),
            full(VxVariant(Duration(atSecond(1).time_since_epoch()))));
  EXPECT_EQ(mid(R"({"_data_":[{"im":2,"re":1}]})"),
            full(VxVariant(std::vector<std::complex<double>>{{1, 2}})));
  EXPECT_EQ(mid(R"({"_data_":5})"), full(VxVariant(5.0)));
  EXPECT_EQ(mid(R"({"_data_":[1,2,3]})"), full(VxVariant(std::vector<double>{1, 2, 3})));
  EXPECT_EQ(mid(R"({"_data_":[1,2,3,4],"_dimensions_":[2,2],"_dataorder_":"columnMajor"})"),
            full(VxVariant(std::vector<double>{1, 2, 3, 4}, {2, 2}, columnMajor)));
  EXPECT_EQ(mid("[1,2]"), full(VxVariant(std::vector<double>{1, 2})));
  for (char const *nothing :
       {R"({"_data_":null})", R"({"_data_":[]})", R"({"_data_":{"x":1}})", "{\"_data_\":[[]]}"})
    EXPECT_TRUE(Mid::deserializeVxVariant(VxString(nothing)).isNull()) << nothing;

  EXPECT_EQ(full(Mid::deserializePropertyNode(VxString(R"({"a":1,"b":[true],"c":{"_data_":[2]}})"))),
            R"({"a":{"_data_":1,"_wellknowntype_":"double"},"b":[{"_data_":true,"_wellknowntype_":"bool"}],)"
            R"("c":{"_data_":[2],"_dataorder_":"rowMajor","_dimensions_":[1],"_wellknowntype_":"double"}})");
}

TEST(MidFidelityReading, Failures) {
  auto const variant = [](char const *text) { return [text] { Mid::deserializeVxVariant(VxString(text)); }; };
  EXPECT_THAT(
      variant(R"({"a":1})"),
      throws<std::runtime_error>("Cannot deserialize JSON object to VxVariant without VxVariant metadata."));
  EXPECT_THAT(
      variant(R"({"_data_":[1],"_dataorder_":"diagonal"})"),
      throws<std::runtime_error>("dataOrder value: 'diagonal' is not recognized in conversion from JSON."));
  EXPECT_THAT(variant(R"({"_data_":[1],"_dataorder_":1})"),
              throws<std::domain_error>("type must be string, but is number"));
  EXPECT_THAT(variant(R"({"_data_":5,"_dimensions_":{}})"),
              throws<std::domain_error>("type must be array, but is object"));
  EXPECT_THAT(variant(R"({"_data_":[1],"_wellknowntype_":"customType"})"),
              throws<std::logic_error>("Cannot deserialize custom types"));
  // The writer's document of an empty array fails by either path: both end in the strict variant reader.
  char const *const emptyArray = R"({"_data_":null,"_wellknowntype_":"double"})";
  auto const nullNumber = throws<std::domain_error>("type must be number, but is null");
  EXPECT_THAT(variant(emptyArray), nullNumber);
  EXPECT_THAT([&] { Mid::deserializePropertyNode(VxString(emptyArray)); }, nullNumber);
  // A time value missing one of its halves (a fuzzer's find: the absent member was read as an entry).
  EXPECT_THAT(variant(R"({"_data_":{"seconds":-6,"subsnconds":12345}})"), nullNumber);
}

TEST(LenientJson, RoundTripsKeepWhatEachFidelityPromises) {
  PropertyNode tree{PropertyMap()};
  tree.set(
      InternedString("ints"),
      PropertyNode(VxVariant(std::vector<std::int64_t>{1, 3, 2, 9007199254740993}, {2, 2}, columnMajor)));
  tree.set(InternedString("z"), PropertyNode(VxVariant(std::complex<float>(1.5f, -2))));
  tree.set(InternedString("t"), PropertyNode(VxVariant(Timestamp(Duration(int128_t(-7))))));
  tree.set(InternedString("d"), PropertyNode(VxVariant(Duration(int128_t(std::int64_t(-1500000000000001))))));
  tree.set(InternedString("names"), PropertyNode(PropertyList{PropertyNode(VxVariant("x")), PropertyNode()}));

  std::string const written = Mid::serialize(tree, 2).data();
  EXPECT_EQ(written, JsonFormatter::serialize(tree, 2).data());
  VxVariantAbi const abi(std::vector<float>{0.5f});
  EXPECT_EQ(std::string(Mid::serialize(abi).data()), JsonFormatter::serialize(abi).data());
  EXPECT_EQ(full(Mid::deserializePropertyNode(VxString(written.c_str()))), full(tree));

  std::string const plain = Low::serialize(tree).data();
  EXPECT_EQ(plain, R"({"d":"-1500000000000001","ints":[[1,2],[3,9007199254740993]],"names":["x",null],)"
                   R"("t":"Thu Jan  1 00:00:00 1970\n","z":null})");
  // Integers above 2^53 come back rounded, as doubles.
  EXPECT_EQ(full(Low::deserializeVxVariant(VxString("[[1,2],[3,9007199254740993]]"))),
            full(VxVariant(std::vector<double>{1, 2, 3, 9007199254740992.0}, {2, 2})));
}

TEST(PlainArraysAsVariants, KindShapeAndOrderFollowTheText) {
  EXPECT_EQ(asVariants("[3,-1,9223372036854775807]"),
            full(VxVariant(std::vector<std::int64_t>{3, -1, 9223372036854775807})));
  // One fraction, or one integer beyond int64, makes the whole array double.
  EXPECT_EQ(asVariants("[[1,2,3],[4,5,6.5]]"), full(VxVariant(std::vector<double>{1, 2, 3, 4, 5, 6.5}, {2, 3})));
  EXPECT_EQ(asVariants("[1,9223372036854775808]"),
            full(VxVariant(std::vector<double>{1, 9223372036854775808.0})));
  // A row of fractions only, and one that ends in an integer.
  EXPECT_EQ(asVariants("[0.5,-2.25,1e300]"), full(VxVariant(std::vector<double>{0.5, -2.25, 1e300})));
  EXPECT_EQ(asVariants("[0.5,-2.25,3]"), full(VxVariant(std::vector<double>{0.5, -2.25, 3})));
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

// Reading bytes in place gives the tree that the string forms give, at every fidelity, and the bytes
// need no room behind them.
TEST(InPlaceReading, GivesTheTreesOfTheStringForms) {
  auto const exactly = [](std::string const &text) {
    std::unique_ptr<char[]> bytes(new char[text.size()]);
    std::memcpy(bytes.get(), text.data(), text.size());
    return bytes;
  };
  std::string const document = R"({"at":{"_data_":[1,2],"_dimensions_":[2],"_wellknowntype_":"int32"}})";
  auto const documentBytes = exactly(document);
  EXPECT_EQ(full(JsonFormatter::deserializePropertyNodeInPlace(VxStringView(documentBytes.get(), document.size()))),
            full(JsonFormatter::deserializePropertyNode(VxString(document))));
  std::string const plain = R"({"unit":"mV","samples":[[1,2.5],[3,4]],"at":{"_data_":[1,2]}})";
  auto const plainBytes = exactly(plain);
  VxStringView const bytes(plainBytes.get(), plain.size());
  EXPECT_EQ(full(Mid::deserializePropertyNodeInPlace(bytes, JsonArrays::asVariants)),
            full(Mid::deserializePropertyNode(VxString(plain), JsonArrays::asVariants)));
  EXPECT_EQ(full(Low::deserializePropertyNodeInPlace(bytes, JsonArrays::asVariants)),
            full(Low::deserializePropertyNode(VxString(plain), JsonArrays::asVariants)));
  EXPECT_THROW(Low::deserializePropertyNodeInPlace(VxStringView("[1,"), JsonArrays::asLists), std::invalid_argument);
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
