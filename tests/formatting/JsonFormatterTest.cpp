#include <VantraCore/JsonFormatter.h>
#include <VantraCore/JsonFormatterLowFidelity.h>

#include <VantraCore/Complex.h>
#include <VantraCore/Time.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <complex>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

using namespace Tarvex::VantraCore;

namespace {

template <class Variant>
std::string compact(Variant const &value) {
  return JsonFormatter::serialize(value, -1).c_str();
}

// The `_data_` text of a scalar document, cut out of its frame.
std::string dataOf(VxVariant const &value) {
  std::string const text = compact(value);
  std::string const head = "{\"_data_\":", tail = ",\"_wellknowntype_\":\"";
  std::size_t const end = text.find(tail);
  EXPECT_EQ(text.rfind(head, 0), 0u) << text;
  EXPECT_EQ(text.substr(end + tail.size()), std::string(value.wellKnownDataType().toString().data()) + "\"}");
  return text.substr(head.size(), end - head.size());
}

Duration fs(std::int64_t count) {
  return Duration(Internal::int128_t(count));
}
Timestamp at(std::int64_t count) {
  return Timestamp(fs(count));
}
constexpr std::int64_t second = 1000000000000000;

}  // namespace

TEST(JsonFormatter, ElementFormOfEveryKind) {
  struct Case {
    VxVariant value;
    char const *data;
  };
  Case const cases[] = {
      {0.1, "0.1"},
      {1.0, "1"},
      {1e20, "1e+20"},
      {0.0, "0.0"},
      {-0.0, "-0.0"},
      {0.1f, "0.100000001490116"},
      {0.12345678901234567, "0.123456789012346"},
      {std::numeric_limits<double>::quiet_NaN(), "null"},
      {-std::numeric_limits<double>::infinity(), "null"},
      {std::int8_t(-128), "-128"},
      {std::int32_t(5), "5"},
      {std::numeric_limits<std::int64_t>::min(), "-9223372036854775808"},
      {std::uint8_t(255), "255"},
      {std::uint32_t(4000000000u), "4000000000"},
      {std::numeric_limits<std::uint64_t>::max(), "18446744073709551615"},
      {true, "true"},
      {VxString("a\"\\\b\f\n\r\t\x01\x1f\x7f\xc3\xa9/"), R"("a\"\\\b\f\n\r\t\u0001\u001f)"
                                                         "\x7f\xc3\xa9/\""},
      {std::complex<double>(1, 2), R"({"im":2,"re":1})"},
      {std::complex<double>(std::numeric_limits<double>::infinity(), 0.5), R"({"im":0.5,"re":null})"},
      {std::complex<float>(0.1f, 0), R"({"im":0.0,"re":0.100000001490116})"},
      {Complex<signed char>(-1, 2), R"({"im":2,"re":-1})"},
      {Complex<std::int64_t>(-7, 8), R"({"im":8,"re":-7})"},
      {Complex<unsigned char>(200, 1), R"({"im":1,"re":200})"},
      {Complex<std::uint64_t>(~std::uint64_t(0), 1), R"({"im":1,"re":18446744073709551615})"},
      {Complex<bool>(true, false), R"({"im":false,"re":true})"},
      {fs(second * 3 / 2), R"({"seconds":1,"subseconds":500000000000000})"},
      {at(second * 3 / 2), R"({"seconds":1,"subseconds":500000000000000})"},
  };
  for (Case const &c : cases)
    EXPECT_EQ(dataOf(c.value), c.data) << c.value.wellKnownDataType().toString().data();
}

TEST(JsonFormatter, DurationAndTimestampSplitNegativeCountsDifferently) {
  EXPECT_EQ(dataOf(fs(-second)), R"({"seconds":-1,"subseconds":0})");
  EXPECT_EQ(dataOf(fs(-second / 2)), R"({"seconds":-1,"subseconds":500000000000000})");
  EXPECT_EQ(dataOf(fs(-second * 3 / 2)), R"({"seconds":-2,"subseconds":500000000000000})");
  EXPECT_EQ(dataOf(at(-second)), R"({"seconds":-2,"subseconds":1000000000000000})");
  EXPECT_EQ(dataOf(at(-second * 3 / 2)), R"({"seconds":-2,"subseconds":500000000000000})");
  // Between minus one second and zero the quotient is 0: the remainder stays, in two's complement.
  EXPECT_EQ(dataOf(at(-second / 2)), R"({"seconds":0,"subseconds":18446244073709551616})");
}

TEST(JsonFormatter, DocumentLayoutOfScalarsArraysAndEmptyVariants) {
  EXPECT_EQ(compact(VxVariant()), R"({"_data_":null,"_wellknowntype_":"unknown"})");
  EXPECT_EQ(compact(VxVariant(std::vector<double>{1.5, 2})),
            R"({"_data_":[1.5,2],"_dataorder_":"rowMajor","_dimensions_":[2],"_wellknowntype_":"double"})");
  EXPECT_EQ(compact(VxVariant(std::vector<double>{0.25})),
            R"({"_data_":[0.25],"_dataorder_":"rowMajor","_dimensions_":[1],"_wellknowntype_":"double"})");
  EXPECT_EQ(compact(VxVariant(std::vector<std::int32_t>{1, 2, 3, 4, 5, 6}, {2, 3}, columnMajor)),
            R"({"_data_":[1,2,3,4,5,6],"_dataorder_":"columnMajor","_dimensions_":[2,3],)"
            R"("_wellknowntype_":"int32"})");
  EXPECT_EQ(compact(VxVariant::withShape<VxString>({2, 0})),
            R"({"_data_":null,"_dataorder_":"rowMajor","_dimensions_":[2,0],"_wellknowntype_":"string"})");
  EXPECT_EQ(
      compact(VxVariant(std::vector<double>{1, std::nan(""), 3})),
      R"({"_data_":[1,null,3],"_dataorder_":"rowMajor","_dimensions_":[3],"_wellknowntype_":"double"})");
  // The flavour that crosses modules writes the same document.
  EXPECT_EQ(
      compact(VxVariantAbi(std::vector<bool>{true, false})),
      R"({"_data_":[true,false],"_dataorder_":"rowMajor","_dimensions_":[2],"_wellknowntype_":"bool"})");
}

TEST(JsonFormatter, IndentFormsAndStreams) {
  VxVariant const value(std::vector<std::int32_t>{1, 2});
  EXPECT_EQ(compact(value), JsonFormatter::serialize(value, -17).c_str());
  EXPECT_EQ(std::string(JsonFormatter::serialize(value, 2).c_str()),
            "{\n  \"_data_\": [\n    1,\n    2\n  ],\n  \"_dataorder_\": \"rowMajor\",\n"
            "  \"_dimensions_\": [\n    2\n  ],\n  \"_wellknowntype_\": \"int32\"\n}");
  EXPECT_EQ(std::string(JsonFormatter::serialize(VxVariant(std::int32_t(5)), 0).c_str()),
            "{\n\"_data_\": 5,\n\"_wellknowntype_\": \"int32\"\n}");
  std::ostringstream out;
  JsonFormatter::serialize(value, out, 3);
  JsonFormatter::serialize(PropertyNode(value), out, 3);
  std::string const pretty = JsonFormatter::serialize(value, 3).c_str();
  EXPECT_EQ(out.str(), pretty + pretty);
}

TEST(JsonFormatter, TreesSortKeysAndWriteEmptyContainersAsNull) {
  PropertyMap map;
  map.insertOrAssign(InternedString("b"), PropertyNode(PropertyList()));
  map.insertOrAssign(InternedString("a"), PropertyNode(PropertyMap()));
  map.insertOrAssign(InternedString("_data_"), PropertyNode());
  map.insertOrAssign(InternedString("\xc3\xa9"), PropertyNode(VxVariant(std::int8_t(1))));
  map.insertOrAssign(InternedString("B"), PropertyNode(PropertyList{PropertyNode(), PropertyNode(true)}));
  EXPECT_EQ(std::string(JsonFormatter::serialize(PropertyNode(map), -1).c_str()),
            R"({"B":[null,{"_data_":true,"_wellknowntype_":"bool"}],"_data_":null,"a":null,"b":null,)"
            "\"\xc3\xa9\":{\"_data_\":1,\"_wellknowntype_\":\"int8\"}}");
  // A frozen tree writes the same document; the empty handle is null.
  EXPECT_EQ(JsonFormatter::serialize(FPropertyNode(PropertyNode(map)), -1),
            JsonFormatter::serialize(PropertyNode(map), -1));
  EXPECT_EQ(std::string(JsonFormatter::serialize(FPropertyNode(), 2).c_str()), "null");
  EXPECT_EQ(std::string(JsonFormatter::serialize(PropertyNode(PropertyMap()), 2).c_str()), "null");
  EXPECT_EQ(std::string(JsonFormatter::serialize(PropertyNode(PropertyList{PropertyNode()}), 1).c_str()),
            "[\n null\n]");
}

// Writing a block at a time gives the text of the writers that hold it whole, across many blocks and
// in every layout.
TEST(JsonWritingInBlocks, GivesTheWholeWritersText) {
  std::vector<double> samples(400000);
  for (std::size_t i = 0; i < samples.size(); ++i)
    samples[i] = 1.0 / static_cast<double>(i + 3);
  PropertyMap map;
  map.insertOrAssign(InternedString("unit"), PropertyNode(VxVariant(VxString("mV"))));
  map.insertOrAssign(InternedString("samples"), PropertyNode(VxVariant(samples)));
  map.insertOrAssign(InternedString("empty"), PropertyNode(PropertyList()));
  PropertyNode const tree(map);
  for (int indent : {-1, 0, 3}) {
    for (JsonNumberText numbers : {JsonNumberText::fifteenDigits, JsonNumberText::shortestRoundTrip}) {
      std::ostringstream whole, blocks, plainWhole, plainBlocks;
      JsonFormatter::serialize(tree, whole, indent, numbers);
      JsonFormatter::serializeInBlocks(tree, blocks, indent, numbers);
      EXPECT_GT(whole.str().size(), std::size_t(4) << 20);
      EXPECT_TRUE(whole.str() == blocks.str()) << indent;
      JsonFormatterLowFidelity::serialize(tree, plainWhole, indent, numbers);
      JsonFormatterLowFidelity::serializeInBlocks(tree, plainBlocks, indent, numbers);
      EXPECT_TRUE(plainWhole.str() == plainBlocks.str()) << indent;
    }
  }
}
