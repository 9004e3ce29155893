#include <VantraCore/ConsoleFormatter.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <support/Throws.h>

#include <complex>
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

using namespace Tarvex::VantraCore;

namespace {
template <class Printable>
std::string drawn(Printable const &value, ConsoleOptions const &options) {
  std::ostringstream out;
  ConsoleFormatter::serialize(value, out, options);
  return out.str();
}

ConsoleOptions numbers(ConsoleOptions::Numbers numbers, int digits = 6) {
  ConsoleOptions options;
  options.numbers = numbers;
  options.significantDigits = digits;
  return options;
}

ConsoleOptions atMost(std::uint64_t elements) {
  ConsoleOptions options;
  options.maxElements = elements;
  return options;
}

ConsoleOptions withShapes(ConsoleOptions::Shapes shapes,
                          ConsoleOptions::Order order = ConsoleOptions::Order::storage) {
  ConsoleOptions options;
  options.shapes = shapes;
  options.order = order;
  return options;
}
}  // namespace

TEST(ConsoleOptions, DefaultsDrawThePlainText) {
  PropertyNode tree{PropertyMap()};
  tree.set("a", VxVariant(std::vector<double>{123456.789, 1795253400}));
  tree.set("n", PropertyNode());
  tree.set("l", PropertyList{VxVariant(1), PropertyMap()});
  std::ostringstream plain;
  ConsoleFormatter::serialize(tree, plain);
  EXPECT_EQ(drawn(tree, ConsoleOptions()), plain.str());
  EXPECT_EQ(drawn(FPropertyNode(tree), ConsoleOptions()), plain.str());
  EXPECT_EQ(drawn(VxVariantAbi(123456.789), ConsoleOptions()), "123457");
}

TEST(ConsoleOptions, NumbersAtSignificantDigitsOrShortest) {
  using Numbers = ConsoleOptions::Numbers;
  EXPECT_EQ(drawn(VxVariant(123456.789), numbers(Numbers::significantDigits, 9)), "123456.789");
  EXPECT_EQ(drawn(VxVariant(123456.789), numbers(Numbers::significantDigits, 3)), "1.23e+05");
  EXPECT_EQ(drawn(VxVariant(123456.789), numbers(Numbers::significantDigits, 0)), "1e+05");
  EXPECT_EQ(drawn(VxVariant(0.1), numbers(Numbers::significantDigits, 40)), "0.10000000000000001");
  EXPECT_EQ(drawn(VxVariant(std::vector<double>{1795253400, 0.1, -2.5e-300}), numbers(Numbers::shortest)),
            "[1795253400, 0.1, -2.5e-300]");
  // A float's shortest text is its own, not that of the double it widens to.
  EXPECT_EQ(drawn(VxVariant(std::vector<float>{0.1f, 3}), numbers(Numbers::shortest)), "[0.1, 3]");
  EXPECT_EQ(drawn(VxVariant(std::complex<double>(0.1, 1e20)), numbers(Numbers::shortest)), "(0.1,1e+20)");
  EXPECT_EQ(drawn(VxVariant(std::complex<float>(0.1f, -1)), numbers(Numbers::shortest)), "(0.1,-1)");
  EXPECT_EQ(drawn(VxVariant(std::complex<double>(123456.789, 1)), numbers(Numbers::significantDigits, 4)),
            "(1.235e+05,1)");
  // Integers are exact whatever the digits.
  EXPECT_EQ(drawn(VxVariant(std::int64_t(1234567890123)), numbers(Numbers::significantDigits, 3)),
            "1234567890123");
}

TEST(ConsoleOptions, ElisionShowsTheFirstElementsAndCountsTheRest) {
  std::vector<double> values(100);
  for (std::size_t i = 0; i < values.size(); ++i)
    values[i] = static_cast<double>(i);
  VxVariant const hundred(values);
  EXPECT_EQ(drawn(hundred, atMost(3)), "[0, 1, 2, ... 97 more]");
  EXPECT_EQ(drawn(hundred, atMost(0)), "[... 100 more]");
  EXPECT_EQ(drawn(hundred, atMost(100)), drawn(hundred, ConsoleOptions()));
  EXPECT_EQ(drawn(VxVariant(7), atMost(0)), "[... 1 more]");
  // Kinds that convert to print convert only what they show.
  EXPECT_EQ(drawn(VxVariantAbi(std::vector<std::uint8_t>{200, 1, 0}), atMost(1)), "[200, ... 2 more]");
  EXPECT_EQ(drawn(VxVariant(std::vector<bool>{false, true, true}), atMost(2)), "[false, true, ... 1 more]");
  EXPECT_EQ(drawn(VxVariant(std::vector<VxString>{"a", "b", "c"}), atMost(1)), "['a', ... 2 more]");
  // A refusal names the whole value, not the part shown.
  EXPECT_THAT([] { drawn(VxVariant(std::vector<Duration>(3)), atMost(1)); },
              throws<std::runtime_error>(
                  "Cannot convert Tarvex::VantraCore::VxVariant of type 'Tarvex::VantraCore::Duration' "
                  "(size: 3) to 'int64_t'"));
}

TEST(ConsoleOptions, ShapeAndKindForArraysOfRankTwoOrOnRequest) {
  using Shapes = ConsoleOptions::Shapes;
  VxVariant const matrix(std::vector<std::int32_t>{1, 2, 3, 4, 5, 6}, {2, 3});
  EXPECT_EQ(drawn(matrix, withShapes(Shapes::rank2AndAbove)), "int32[2x3] [1, 2, 3, 4, 5, 6]");
  EXPECT_EQ(drawn(VxVariant(std::vector<double>{1, 2}), withShapes(Shapes::rank2AndAbove)), "[1, 2]");
  EXPECT_EQ(drawn(VxVariant(std::vector<VxString>{"a", "b"}), withShapes(Shapes::always)),
            "string[2] ['a', 'b']");
  EXPECT_EQ(drawn(VxVariant(1.5), withShapes(Shapes::always)), "double 1.5");
  EXPECT_EQ(drawn(VxVariant(std::vector<double>{1.5}), withShapes(Shapes::always)), "double[1] 1.5");
  EXPECT_EQ(drawn(VxVariant::withShape<std::uint16_t>({2, 0}), withShapes(Shapes::always)),
            "unsignedInt16[2x0] []");
  EXPECT_EQ(drawn(VxVariant(), withShapes(Shapes::always)), "null");

  ConsoleOptions shapeAndElision = withShapes(Shapes::rank2AndAbove);
  shapeAndElision.maxElements = 2;
  EXPECT_EQ(drawn(matrix, shapeAndElision), "int32[2x3] [1, 2, ... 4 more]");
}

TEST(ConsoleOptions, LogicalOrderReadsColumnMajorArraysRowByRow) {
  using Shapes = ConsoleOptions::Shapes;
  using Order = ConsoleOptions::Order;
  // Logically [[1, 2, 3], [4, 5, 6]], stored column by column.
  VxVariant const matrix(std::vector<std::int32_t>{1, 4, 2, 5, 3, 6}, {2, 3}, DataOrdering::columnMajor);
  EXPECT_EQ(drawn(matrix, ConsoleOptions()), "[1, 4, 2, 5, 3, 6]");
  EXPECT_EQ(drawn(matrix, withShapes(Shapes::rank2AndAbove)), "int32[2x3 column-major] [1, 4, 2, 5, 3, 6]");
  EXPECT_EQ(drawn(matrix, withShapes(Shapes::rank2AndAbove, Order::logical)),
            "int32[2x3] [1, 2, 3, 4, 5, 6]");
  ConsoleOptions firstFour = withShapes(Shapes::hidden, Order::logical);
  firstFour.maxElements = 4;
  EXPECT_EQ(drawn(matrix, firstFour), "[1, 2, 3, 4, ... 2 more]");

  // Element (i, j, k) is 100i + 10j + k, stored at i + 2j + 4k.
  std::vector<double> cube(8);
  for (int i = 0; i < 2; ++i)
    for (int j = 0; j < 2; ++j)
      for (int k = 0; k < 2; ++k)
        cube[static_cast<std::size_t>(i + 2 * j + 4 * k)] = 100 * i + 10 * j + k;
  EXPECT_EQ(drawn(VxVariant(cube, {2, 2, 2}, DataOrdering::columnMajor),
                  withShapes(Shapes::hidden, Order::logical)),
            "[0, 1, 10, 11, 100, 101, 110, 111]");
  // Row-major arrays are already in logical order.
  VxVariant const rows(std::vector<std::int32_t>{1, 2, 3, 4}, {2, 2});
  EXPECT_EQ(drawn(rows, withShapes(Shapes::hidden, Order::logical)), "[1, 2, 3, 4]");
}

TEST(ConsoleOptions, TreesShowEmptyNodesAndIndexListElements) {
  PropertyNode tree{PropertyMap()};
  tree.set("n", PropertyNode());
  tree.set("e", PropertyMap());
  tree.set("l", PropertyList());
  tree.set("v", VxVariant(1));
  ConsoleOptions showEmpty;
  showEmpty.showEmptyNodes = true;
  EXPECT_EQ(drawn(tree, showEmpty), "|---> 'n': null\n|---> 'e': {}\n|---> 'l': []\n|---> 'v': 1\n");
  EXPECT_EQ(drawn(PropertyNode(), showEmpty), "null\n");

  PropertyNode record{PropertyMap()};
  record.set("name", VxVariant("a"));
  record.set("x", VxVariant(1));
  PropertyNode records{PropertyMap()};
  records.set("channels", PropertyList{record, VxVariant(2)});
  ConsoleOptions indexed;
  indexed.listElements = ConsoleOptions::ListElements::indexed;
  std::string const expected =
      "|---> 'channels': \n"
      "|    `--> [0]: \n"
      "|        `--> 'name': 'a'\n"
      "\n"
      "|        `--> 'x': 1\n"
      "\n"
      "|    `--> [1]: 2\n";
  EXPECT_EQ(drawn(records, indexed), expected);
  EXPECT_EQ(drawn(FPropertyNode(records), indexed), expected);
  EXPECT_EQ(drawn(PropertyNode(PropertyList{VxVariant(5)}), indexed), "|---> [0]: 5\n");
}
