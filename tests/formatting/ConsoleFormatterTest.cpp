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
using testing::PrintToString;
using Numbers = ConsoleOptions::Numbers;
using Shapes = ConsoleOptions::Shapes;
using Order = ConsoleOptions::Order;

namespace {

// Through the overload without options, or with them.
template <class Printable>
std::string drawn(Printable const &value) {
  std::ostringstream out;
  ConsoleFormatter::serialize(value, out);
  return out.str();
}
template <class Printable>
std::string drawn(Printable const &value, ConsoleOptions const &options) {
  std::ostringstream out;
  ConsoleFormatter::serialize(value, out, options);
  return out.str();
}

PropertyNode mapOf(std::vector<std::pair<char const *, PropertyNode>> entries) {
  PropertyNode node{PropertyMap()};
  for (auto &entry : entries)
    node.set(entry.first, std::move(entry.second));
  return node;
}

ConsoleOptions numbers(Numbers numbers, int digits = 6) {
  ConsoleOptions options;
  options.numbers = numbers;
  options.significantDigits = digits;
  return options;
}

ConsoleOptions shown(Shapes shapes, Order order = Order::storage, std::uint64_t maxElements = ~0ull) {
  ConsoleOptions options;
  options.shapes = shapes;
  options.order = order;
  options.maxElements = maxElements;
  return options;
}

}  // namespace

TEST(ConsoleFormatter, VariantsPrintFlatWithBracketsOnlyForSeveralElements) {
  EXPECT_EQ(drawn(VxVariant()), "null");
  EXPECT_EQ(drawn(VxVariant::withShape<Duration>({2, 0})), "[]");
  EXPECT_EQ(drawn(VxVariant(7)), "7");
  EXPECT_EQ(drawn(VxVariant(std::vector<std::int32_t>{7}, {1, 1})), "7");
  EXPECT_EQ(drawn(VxVariant(std::vector<std::int32_t>{1, 2, 3, 4}, {2, 2})), "[1, 2, 3, 4]");
  EXPECT_EQ(drawn(VxVariant(std::vector<double>{1.5, -2})), "[1.5, -2]");
  EXPECT_EQ(drawn(VxVariant(std::uint64_t(18446744073709551615u))), "18446744073709551615");
  EXPECT_EQ(drawn(VxVariant(std::complex<double>(1, 2))), "(1,2)");
  EXPECT_EQ(drawn(VxVariant(Complex<std::int8_t>{-1, 3})), "(-1,3)");
  EXPECT_EQ(drawn(VxVariant(std::vector<VxString>{"it's", ""})), "['it's', '']");
  EXPECT_EQ(drawn(VxVariantAbi(std::vector<std::uint8_t>{200, 1})), "[200, 1]");
  EXPECT_EQ(drawn(VxVariantAbi(123456.789)), "123457");
  std::ostringstream out;  // bools leave the stream printing words
  ConsoleFormatter::serialize(VxVariant(std::vector<bool>{true, false}), out) << ' ' << true;
  EXPECT_EQ(out.str(), "[true, false] true");
}

TEST(ConsoleFormatter, TreesDrawNestedMapsIndentedAndListsFromTheMargin) {
  PropertyNode const nested =
      mapOf({{"x", VxVariant(1)}, {"y", mapOf({{"p", VxVariant(2)}, {"q", VxVariant(3)}})}});
  std::string const expected = "|---> 'x': 1\n|---> 'y': \n|    `--> 'p': 2\n\n|    `--> 'q': 3\n";
  EXPECT_EQ(drawn(nested), expected);
  EXPECT_EQ(drawn(FPropertyNode(nested)), expected);
  EXPECT_EQ(drawn(nested, ConsoleOptions()), expected);

  PropertyList const list{mapOf({{"b", VxVariant(1)}}), VxVariant("s")};
  PropertyNode const inList = mapOf({{"top", mapOf({{"a", list}})}});
  EXPECT_EQ(drawn(inList), "|---> 'top': \n|    `--> 'a': |---> 'b': 1\n's'\n");

  EXPECT_EQ(drawn(PropertyNode()), "");
  EXPECT_EQ(drawn(PropertyNode(PropertyList())), "");
  EXPECT_EQ(drawn(FPropertyNode()), "");
  EXPECT_EQ(drawn(mapOf({{"n", PropertyNode()}, {"e", PropertyMap()}, {"v", VxVariant(1)}})),
            "|---> 'n': |---> 'e': |---> 'v': 1\n");
}

TEST(ConsoleFormatter, GoogleTestPrintsTheCompactForm) {
  PropertyNode const map = mapOf({{"a", VxVariant(1)}, {"b", VxVariant(2)}});
  EXPECT_EQ(PrintToString(map), "{{'a', 1}, {'b', 2}}");
  EXPECT_EQ(PrintToString(map.map()), "{{'a', 1}, {'b', 2}}");
  PropertyList const list{VxVariant(1), PropertyNode(), PropertyMap(), PropertyList()};
  EXPECT_EQ(PrintToString(list), "{1, <NULL>, {}, {}}");
  EXPECT_EQ(PrintToString(PropertyNode()), "<NULL>");
  EXPECT_EQ(PrintToString(FPropertyNode()), "<NULL>");
  EXPECT_EQ(PrintToString(VxVariant(std::vector<double>{1, 2})), "[1, 2]");
  EXPECT_EQ(PrintToString(VxVariantAbi("x")), "'x'");
}

TEST(ConsoleOptions, NumbersAtSignificantDigitsOrShortest) {
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
  auto const atMost = [](std::uint64_t elements) { return shown(Shapes::hidden, Order::storage, elements); };
  std::vector<double> values(100);
  for (std::size_t i = 0; i < values.size(); ++i)
    values[i] = static_cast<double>(i);
  VxVariant const hundred(values);
  EXPECT_EQ(drawn(hundred, atMost(3)), "[0, 1, 2, ... 97 more]");
  EXPECT_EQ(drawn(hundred, atMost(0)), "[... 100 more]");
  EXPECT_EQ(drawn(hundred, atMost(100)), drawn(hundred));
  EXPECT_EQ(drawn(VxVariant(7), atMost(0)), "[... 1 more]");
  // Kinds that convert to print convert only what they show.
  EXPECT_EQ(drawn(VxVariantAbi(std::vector<std::uint8_t>{200, 1, 0}), atMost(1)), "[200, ... 2 more]");
  EXPECT_EQ(drawn(VxVariant(std::vector<bool>{false, true, true}), atMost(2)), "[false, true, ... 1 more]");
  EXPECT_EQ(drawn(VxVariant(std::vector<VxString>{"a", "b", "c"}), atMost(1)), "['a', ... 2 more]");
  // Time kinds refuse to print; the refusal names the whole value, not the part shown.
  EXPECT_THAT([&] { drawn(VxVariant(std::vector<Duration>(3)), atMost(1)); },
              throws<std::runtime_error>(
                  "Cannot convert Tarvex::VantraCore::VxVariant of type 'Tarvex::VantraCore::Duration' "
                  "(size: 3) to 'int64_t'"));
}

TEST(ConsoleOptions, ShapeAndKindForArraysOfRankTwoOrOnRequest) {
  VxVariant const matrix(std::vector<std::int32_t>{1, 2, 3, 4, 5, 6}, {2, 3});
  EXPECT_EQ(drawn(matrix, shown(Shapes::rank2AndAbove)), "int32[2x3] [1, 2, 3, 4, 5, 6]");
  EXPECT_EQ(drawn(VxVariant(std::vector<double>{1, 2}), shown(Shapes::rank2AndAbove)), "[1, 2]");
  EXPECT_EQ(drawn(VxVariant(std::vector<VxString>{"a", "b"}), shown(Shapes::always)), "string[2] ['a', 'b']");
  EXPECT_EQ(drawn(VxVariant(1.5), shown(Shapes::always)), "double 1.5");
  EXPECT_EQ(drawn(VxVariant(std::vector<double>{1.5}), shown(Shapes::always)), "double[1] 1.5");
  EXPECT_EQ(drawn(VxVariant::withShape<std::uint16_t>({2, 0}), shown(Shapes::always)), "unsignedInt16[2x0] []");
  EXPECT_EQ(drawn(VxVariant(), shown(Shapes::always)), "null");
  EXPECT_EQ(drawn(matrix, shown(Shapes::rank2AndAbove, Order::storage, 2)), "int32[2x3] [1, 2, ... 4 more]");
}

TEST(ConsoleOptions, LogicalOrderReadsColumnMajorArraysRowByRow) {
  // Logically [[1, 2, 3], [4, 5, 6]], stored column by column.
  VxVariant const matrix(std::vector<std::int32_t>{1, 4, 2, 5, 3, 6}, {2, 3}, DataOrdering::columnMajor);
  EXPECT_EQ(drawn(matrix), "[1, 4, 2, 5, 3, 6]");
  EXPECT_EQ(drawn(matrix, shown(Shapes::rank2AndAbove)), "int32[2x3 column-major] [1, 4, 2, 5, 3, 6]");
  EXPECT_EQ(drawn(matrix, shown(Shapes::rank2AndAbove, Order::logical)), "int32[2x3] [1, 2, 3, 4, 5, 6]");
  EXPECT_EQ(drawn(matrix, shown(Shapes::hidden, Order::logical, 4)), "[1, 2, 3, 4, ... 2 more]");

  // Element (i, j, k) is 100i + 10j + k, stored at i + 2j + 4k.
  std::vector<double> cube(8);
  for (int i = 0; i < 2; ++i)
    for (int j = 0; j < 2; ++j)
      for (int k = 0; k < 2; ++k)
        cube[static_cast<std::size_t>(i + 2 * j + 4 * k)] = 100 * i + 10 * j + k;
  EXPECT_EQ(drawn(VxVariant(cube, {2, 2, 2}, DataOrdering::columnMajor), shown(Shapes::hidden, Order::logical)),
            "[0, 1, 10, 11, 100, 101, 110, 111]");
  // Row-major arrays are already in logical order.
  VxVariant const rows(std::vector<std::int32_t>{1, 2, 3, 4}, {2, 2});
  EXPECT_EQ(drawn(rows, shown(Shapes::hidden, Order::logical)), "[1, 2, 3, 4]");
}

TEST(ConsoleOptions, TreesShowEmptyNodesAndIndexListElements) {
  ConsoleOptions showEmpty;
  showEmpty.showEmptyNodes = true;
  PropertyNode const empties =
      mapOf({{"n", PropertyNode()}, {"e", PropertyMap()}, {"l", PropertyList()}, {"v", VxVariant(1)}});
  EXPECT_EQ(drawn(empties, showEmpty), "|---> 'n': null\n|---> 'e': {}\n|---> 'l': []\n|---> 'v': 1\n");
  EXPECT_EQ(drawn(PropertyNode(), showEmpty), "null\n");

  PropertyNode const records =
      mapOf({{"channels", PropertyList{mapOf({{"name", VxVariant("a")}, {"x", VxVariant(1)}}), VxVariant(2)}}});
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
