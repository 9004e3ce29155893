#include <VantraCore/detail/ElementKinds.h>
#include <VantraCore/JsonFormatter.h>

#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

using namespace Tarvex::VantraCore;

namespace {

VxVariant variant(std::string const &text) {
  return JsonFormatter::deserializeVxVariant(VxString(text));
}

// Which exception a failing read throws, by the first letter of its name, and the start of its text.
struct Failure {
  bool tree;
  char const *text;
  char kind;
  char const *message;
};

void expectFailure(Failure const &f) {
  SCOPED_TRACE(f.text);
  try {
    f.tree ? (void)JsonFormatter::deserializePropertyNode(VxString(f.text)) : (void)variant(f.text);
    ADD_FAILURE() << "no exception";
  } catch (std::exception const &error) {
    bool const rightType = f.kind == 'd'   ? dynamic_cast<std::domain_error const *>(&error) != nullptr
                           : f.kind == 'i' ? dynamic_cast<std::invalid_argument const *>(&error) != nullptr
                           : f.kind == 'l' ? dynamic_cast<std::logic_error const *>(&error) != nullptr
                                           : dynamic_cast<std::runtime_error const *>(&error) != nullptr;
    EXPECT_TRUE(rightType) << error.what();
    EXPECT_EQ(std::string(error.what()).substr(0, std::strlen(f.message)), f.message);
  }
}

template <class P>
P partOf(std::complex<P> const &);
template <class P>
P partOf(Complex<P> const &);

// A distinct, exactly printable value of kind T for each i.
template <class T>
T sample(int i) {
  if constexpr (std::is_same_v<T, bool>) {
    return i % 2 == 0;
  } else if constexpr (std::is_same_v<T, VxString>) {
    return VxString("s\"\n" + std::to_string(i));
  } else if constexpr (std::is_same_v<T, Duration> || std::is_same_v<T, Timestamp>) {
    return T(
        Duration(Internal::int128_t(-1500000000000000) * Internal::int128_t(i + 1) + Internal::int128_t(7)));
  } else if constexpr (std::is_arithmetic_v<T>) {
    return static_cast<T>(std::is_floating_point_v<T> ? i + 0.25 : i * 3 - 1);
  } else {
    return T(sample<decltype(partOf(T()))>(i), sample<decltype(partOf(T()))>(i + 1));
  }
}

VxVariant roundTrip(VxVariant const &value) {
  std::stringstream text;
  JsonFormatter::serialize(value, text, -1);
  return JsonFormatter::deserializeVxVariant(text);
}

}  // namespace

TEST(JsonReader, RefusesEachMalformedDocumentWithItsMessage) {
  Failure const failures[] = {
      {false, R"({"_data_":true,"_wellknowntype_":"double"})", 'd', "type must be number, but is boolean"},
      {false, R"({"_data_":null,"_wellknowntype_":"double"})", 'd', "type must be number, but is null"},
      {false, R"({"_data_":[1,null],"_dimensions_":[2],"_wellknowntype_":"float"})", 'd',
       "type must be number, but is null"},
      {false, R"({"_data_":1,"_wellknowntype_":"bool"})", 'd', "type must be boolean, but is number"},
      {false, R"({"_data_":null,"_wellknowntype_":"string"})", 'd', "type must be string, but is null"},
      {false, R"({"_data_":[1],"_dimensions_":1,"_wellknowntype_":"int32"})", 'd',
       "type must be array, but is number"},
      {false, R"({"_data_":5,"_wellknowntype_":"complexDouble"})", 'd', "cannot use operator[] with number"},
      {false, R"({"_data_":1})", 'r', "wellKnownType key missing in conversion from JSON"},
      {false, R"({"_data_":[1,2],"_wellknowntype_":"int32"})", 'r',
       "VxVariant dimensions less than actual data items in conversion from JSON"},
      {false, R"({"_data_":[1],"_dataorder_":"diagonal","_wellknowntype_":"int32"})", 'r',
       "dataOrder value: diagonal is not recognized in conversion from JSON"},
      {true, R"({"_data_":1,"_wellknowntype_":"customType"})", 'l', "Cannot deserialize custom types"},
      {true, R"({"_data_":null,"_wellknowntype_":"customType"})", 'r',
       "Creating with run-time wellknowntype is not allowed."},
      {true, R"({"_data_":null})", 'd', "type must be string, but is null"},
      {true, "5", 'r', "a JSON value without _data_ metadata"},
      {true, R"({"a":[true]})", 'r', "a JSON value without _data_ metadata"},
      {true, "null x", 'i', "parse error"},
      {false, "1e400", 'i', "parse error"},
  };
  for (Failure const &f : failures)
    expectFailure(f);
  std::string const deep(100000, '[');
  expectFailure({true, deep.c_str(), 'i', "parse error - document nested deeper"});
  std::istringstream failed("null");
  failed.setstate(std::ios::failbit);
  EXPECT_THROW(JsonFormatter::deserializePropertyNode(failed), std::invalid_argument);
}

TEST(JsonReader, ReadsElementsByTheirStrictFormsAndShapesByDefaults) {
  EXPECT_EQ(variant(R"({"_data_":300,"_wellknowntype_":"int8"})").at<std::int8_t>(0), 44);
  EXPECT_EQ(variant(R"({"_data_":true,"_wellknowntype_":"int32"})").at<std::int32_t>(0), 1);
  auto const complex = variant(R"({"_data_":{"im":-1,"re":true},"_wellknowntype_":"complexInt8"})");
  EXPECT_EQ(complex.at<Complex<std::int8_t>>(0), Complex<std::int8_t>(1, -1));
  // Just before the epoch the writer's subseconds only come back when read as signed.
  auto const justBefore =
      variant(R"({"_data_":{"seconds":0,"subseconds":18446744073709551115},"_wellknowntype_":"timestamp"})");
  EXPECT_EQ(justBefore.at<Timestamp>(0).time_since_epoch().count(), Internal::int128_t(-501));

  VxVariant const one = variant(R"({"_data_":[7],"_wellknowntype_":"int32"})");
  EXPECT_TRUE(one.isIdenticalTo(VxVariant(std::vector<std::int32_t>{7})));
  VxVariant const shortData =
      variant(R"({"_data_":[1],"_dataorder_":"columnMajor","_dimensions_":[3],"_wellknowntype_":"int32"})");
  EXPECT_TRUE(shortData.isIdenticalTo(VxVariant(std::vector<std::int32_t>{1, 0, 0}, {3}, columnMajor)));
  EXPECT_TRUE(variant(R"({"_data_":[1],"_wellknowntype_":"nonsense","x":1})").isNull());
  PropertyNode const empties = JsonFormatter::deserializePropertyNode(VxString(R"({"e":{},"l":[]})"));
  EXPECT_EQ(empties.map().at("e").kind(), PropertyNodeKind::Map);
  EXPECT_EQ(empties.map().at("l").kind(), PropertyNodeKind::List);
}

TEST(JsonReader, TakesBackEveryElementKindAsScalarAndInBothOrderings) {
  Internal::forEachElementKind([](auto tag) {
    using T = typename decltype(tag)::type;
    SCOPED_TRACE(Internal::ElementKind<T>::name);
    VxVariant const scalar(sample<T>(1));
    EXPECT_TRUE(roundTrip(scalar).isIdenticalTo(scalar));
    std::vector<T> values;
    for (int i = 0; i < 6; ++i)
      values.push_back(sample<T>(i));
    for (DataOrdering ordering : {rowMajor, columnMajor}) {
      VxVariant const array(values, {2, 3}, ordering);
      EXPECT_TRUE(roundTrip(array).isIdenticalTo(array));
    }
  });
}

TEST(JsonReader, TakesBackTreesButForTheWritersLosses) {
  PropertyNode tree;
  tree.set("b", VxVariant(std::vector<std::int32_t>{1, 2}));
  tree.set("a", PropertyList{PropertyNode(), VxVariant(0.123456789012345678), VxVariant("x"), PropertyMap()});
  tree.set("c", VxVariant::withShape<double>({0}));
  tree.set("e", PropertyList());
  PropertyNode expected;
  expected.set("a",
               PropertyList{PropertyNode(), VxVariant(0.123456789012346), VxVariant("x"), PropertyNode()});
  expected.set("b", VxVariant(std::vector<std::int32_t>{1, 2}));
  expected.set("c", VxVariant::withShape<double>({}));
  expected.set("e", PropertyNode());
  EXPECT_EQ(JsonFormatter::deserializePropertyNode(JsonFormatter::serialize(tree, 2)), expected);
}
