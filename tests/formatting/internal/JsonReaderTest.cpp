#include <formatting/JsonReader.h>

#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>
#include <string>

using namespace Tarvex::VantraCore;
using Internal::readJsonPropertyNode;
using Internal::readJsonVariant;

namespace {

template <class Exception, class Read>
void expectFailure(Read read, std::string const &text, std::string const &message) {
  SCOPED_TRACE(text);
  try {
    read(VxString(text));
    ADD_FAILURE() << "no exception";
  } catch (Exception const &error) {
    EXPECT_EQ(std::string(error.what()).substr(0, message.size()), message);
  }
}

VxVariant variant(std::string const &text) {
  return readJsonVariant(VxString(text));
}

}  // namespace

TEST(JsonReader, RefusesEachMalformedVariantDocumentWithItsMessage) {
  auto read = [](VxString const &text) { return readJsonVariant(text); };
  struct Case {
    char const *text;
    char const *message;
  };
  Case const domainErrors[] = {
      {R"({"_data_":true,"_wellknowntype_":"double"})", "type must be number, but is boolean"},
      {R"({"_data_":true,"_wellknowntype_":"int64"})", "type must be number, but is boolean"},
      {R"({"_data_":false,"_wellknowntype_":"unsignedInt64"})", "type must be number, but is boolean"},
      {R"({"_data_":null,"_wellknowntype_":"double"})", "type must be number, but is null"},
      {R"({"_wellknowntype_":"int8"})", "type must be number, but is null"},
      {R"({"_data_":[1,null],"_dimensions_":[2],"_wellknowntype_":"float"})",
       "type must be number, but is null"},
      {R"({"_data_":1,"_wellknowntype_":"bool"})", "type must be boolean, but is number"},
      {R"({"_data_":null,"_wellknowntype_":"string"})", "type must be string, but is null"},
      {R"({"_data_":1,"_wellknowntype_":5})", "type must be string, but is number"},
      {R"({"_data_":[1],"_dimensions_":1,"_wellknowntype_":"int32"})", "type must be array, but is number"},
      {R"({"_data_":[1],"_dimensions_":[true],"_wellknowntype_":"int32"})",
       "type must be number, but is boolean"},
      {R"({"_data_":{"re":1},"_wellknowntype_":"complexInt16"})", "type must be number, but is null"},
      {R"({"_data_":{"im":1,"re":2},"_wellknowntype_":"complexBool"})",
       "type must be boolean, but is number"},
      {R"({"_data_":[{"re":1}],"_wellknowntype_":"complexDouble"})", "type must be number, but is null"},
      {R"({"_data_":5,"_wellknowntype_":"complexDouble"})", "cannot use operator[] with number"},
      {R"({"_data_":{"seconds":1},"_wellknowntype_":"duration"})", "type must be number, but is null"},
      {R"({"_data_":{"seconds":true,"subseconds":0},"_wellknowntype_":"timestamp"})",
       "type must be number, but is boolean"},
  };
  for (Case const &c : domainErrors)
    expectFailure<std::domain_error>(read, c.text, c.message);
  Case const runtimeErrors[] = {
      {R"({"_data_":1})", "wellKnownType key missing in conversion from JSON"},
      {"[1]", "wellKnownType key missing in conversion from JSON"},
      {R"({"_data_":[1,2],"_wellknowntype_":"int32"})",
       "VxVariant dimensions less than actual data items in conversion from JSON"},
      {R"({"_data_":[1,2,3],"_dimensions_":[2,1],"_wellknowntype_":"int32"})",
       "VxVariant dimensions less than actual data items in conversion from JSON"},
      {R"({"_data_":[1],"_dataorder_":"diagonal","_wellknowntype_":"int32"})",
       "dataOrder value: diagonal is not recognized in conversion from JSON"},
  };
  for (Case const &c : runtimeErrors)
    expectFailure<std::runtime_error>(read, c.text, c.message);
  expectFailure<std::logic_error>(read, R"({"_data_":1,"_wellknowntype_":"customType"})",
                                  "Cannot deserialize custom types");
}

TEST(JsonReader, ReadsElementFormsByTheirStrictRules) {
  EXPECT_EQ(variant(R"({"_data_":300,"_wellknowntype_":"int8"})").at<std::int8_t>(0), 44);
  EXPECT_EQ(variant(R"({"_data_":true,"_wellknowntype_":"int32"})").at<std::int32_t>(0), 1);
  EXPECT_EQ(variant(R"({"_data_":-2.7,"_wellknowntype_":"int16"})").at<std::int16_t>(0), -2);
  EXPECT_EQ(variant(R"({"_data_":true,"_wellknowntype_":"float"})").at<float>(0), 1.0f);
  EXPECT_EQ(
      variant(R"({"_data_":18446744073709551615,"_wellknowntype_":"unsignedInt64"})").at<std::uint64_t>(0),
      18446744073709551615u);
  auto const complex = variant(R"({"_data_":{"im":-1,"re":true},"_wellknowntype_":"complexInt8"})");
  EXPECT_EQ(complex.at<Complex<std::int8_t>>(0), Complex<std::int8_t>(1, -1));
  EXPECT_EQ(variant(R"({"_data_":"a\u00e9","_wellknowntype_":"string"})").at<VxString>(0),
            VxString("a\xc3\xa9"));
  // A timestamp just before the epoch comes with a subseconds value that only the signed reading restores.
  auto const justBefore =
      variant(R"({"_data_":{"seconds":0,"subseconds":18446744073709551115},"_wellknowntype_":"timestamp"})");
  EXPECT_EQ(justBefore.at<Timestamp>(0).time_since_epoch().count(), Internal::int128_t(-501));
  EXPECT_EQ(variant(R"({"_data_":{"seconds":-2,"subseconds":500000000000000},"_wellknowntype_":"duration"})")
                .at<Duration>(0)
                .count(),
            Internal::int128_t(-1500000000000000));
}

TEST(JsonReader, AppliesDefaultShapeOrderingAndShortData) {
  VxVariant const one = variant(R"({"_data_":[7],"_wellknowntype_":"int32"})");
  EXPECT_FALSE(one.isScalarStorage());
  EXPECT_EQ(one.numberOfElements(), 1u);
  VxVariant const shortData =
      variant(R"({"_data_":[1],"_dataorder_":"columnMajor","_dimensions_":[3],"_wellknowntype_":"int32"})");
  EXPECT_EQ(shortData.numberOfElements(), 3u);
  EXPECT_EQ(shortData.dataOrdering(), columnMajor);
  EXPECT_EQ(shortData.at<std::int32_t>(0), 1);
  EXPECT_EQ(shortData.at<std::int32_t>(2), 0);
  EXPECT_TRUE(variant(R"({"_data_":[1],"_wellknowntype_":"nonsense","x":1})").isNull());
  EXPECT_TRUE(variant(R"({"_data_":null,"_wellknowntype_":"unknown"})").isNull());
  EXPECT_EQ(
      variant(R"({"_data_":7,"_wellknowntype_":"int32","_wellknowntype_":"double"})").wellKnownDataType(),
      WellKnownType(Internal::WellKnownTypeValue::typeDouble));
}

TEST(JsonReader, ReadsTreesAndRefusesWhatIsNoTreeDocument) {
  PropertyNode const tree = readJsonPropertyNode(VxString(
      R"({"b":[null,{"_data_":null,"_wellknowntype_":"double"}],"a":{"_data_":2,"_wellknowntype_":"int8"},"e":{},"l":[]})"));
  ASSERT_EQ(tree.kind(), PropertyNodeKind::Map);
  EXPECT_EQ(tree.map().begin()->key, InternedString("a"));  // sorted
  EXPECT_EQ(tree.map().at("a").value().at<std::int8_t>(0), 2);
  PropertyList const &list = tree.map().at("b").list();
  EXPECT_TRUE(list.begin()->isNull());
  EXPECT_TRUE((list.begin() + 1)->value().isType<double>());
  EXPECT_EQ((list.begin() + 1)->value().numberOfElements(), 0u);
  EXPECT_EQ(tree.map().at("e").kind(), PropertyNodeKind::Map);  // empty, never written so
  EXPECT_TRUE(readJsonPropertyNode(VxString("null")).isNull());

  auto read = [](VxString const &text) { return readJsonPropertyNode(text); };
  for (char const *primitive : {"5", R"({"a":5})", R"(["x"])", "true"}) {
    expectFailure<std::runtime_error>(read, primitive, "a JSON value without _data_ metadata");
  }
  expectFailure<std::runtime_error>(read, R"({"_data_":null,"_wellknowntype_":"customType"})",
                                    "Creating with run-time wellknowntype is not allowed.");
  expectFailure<std::domain_error>(read, R"({"_data_":null})", "type must be string, but is null");
  expectFailure<std::logic_error>(read, R"({"_data_":1,"_wellknowntype_":"customType"})",
                                  "Cannot deserialize custom types");
}

TEST(JsonReader, TranslatesParserFailures) {
  auto read = [](VxString const &text) { return readJsonPropertyNode(text); };
  for (char const *bad : {"", "{", "[1,]", "null x", "1e400"})
    expectFailure<std::invalid_argument>(read, bad, "parse error");
  expectFailure<std::invalid_argument>(read, std::string(100000, '['),
                                       "parse error - document nested deeper");
  std::istringstream failed("null");
  failed.setstate(std::ios::failbit);
  expectFailure<std::invalid_argument>([&](VxString const &) { return readJsonVariant(failed); }, "",
                                       "stream error");
  std::istringstream good(R"({"_data_":[1.5,2],"_dimensions_":[2],"_wellknowntype_":"double"})");
  EXPECT_EQ(readJsonVariant(good).at<double>(1), 2.0);
}
