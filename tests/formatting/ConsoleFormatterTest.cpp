#include <VantraCore/ConsoleFormatter.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <support/Throws.h>

#include <complex>
#include <sstream>
#include <string>
#include <vector>

using namespace Tarvex::VantraCore;
using testing::PrintToString;

namespace {
template <class Printable>
std::string drawn(Printable const &value) {
  std::ostringstream out;
  ConsoleFormatter::serialize(value, out);
  return out.str();
}

PropertyNode mapOf(std::vector<std::pair<char const *, PropertyNode>> entries) {
  PropertyNode node{PropertyMap()};
  for (auto &entry : entries)
    node.set(entry.first, std::move(entry.second));
  return node;
}
}  // namespace

TEST(ConsoleFormatter, VariantsPrintFlatWithBracketsOnlyForSeveralElements) {
  EXPECT_EQ(drawn(VxVariant()), "null");
  EXPECT_EQ(drawn(VxVariant::withShape<double>({0})), "[]");
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
}

TEST(ConsoleFormatter, BoolsLeaveTheStreamPrintingWords) {
  std::ostringstream out;
  ConsoleFormatter::serialize(VxVariant(std::vector<bool>{true, false}), out) << ' ' << true;
  EXPECT_EQ(out.str(), "[true, false] true");
}

TEST(ConsoleFormatter, TimeKindsRefuseToPrint) {
  EXPECT_THAT([] { drawn(VxVariant(Duration(5))); },
              throws<std::runtime_error>(
                  "Cannot convert Tarvex::VantraCore::VxVariant of type 'Tarvex::VantraCore::Duration' "
                  "(size: 1) to 'int64_t'"));
}

TEST(ConsoleFormatter, TreesDrawNestedMapsIndentedAndListsFromTheMargin) {
  PropertyNode const nested =
      mapOf({{"x", VxVariant(1)}, {"y", mapOf({{"p", VxVariant(2)}, {"q", VxVariant(3)}})}});
  std::string const expected = "|---> 'x': 1\n|---> 'y': \n|    `--> 'p': 2\n\n|    `--> 'q': 3\n";
  EXPECT_EQ(drawn(nested), expected);
  EXPECT_EQ(drawn(FPropertyNode(nested)), expected);

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
