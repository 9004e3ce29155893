#include <VantraCore/JsonFormatter.h>
#include <VantraCore/JsonFormatterLowFidelity.h>
#include <VantraCore/JsonFormatterMidFidelity.h>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <charconv>
#include <cmath>
#include <complex>
#include <cstdint>
#include <cstring>
#include <limits>
#include <sstream>
#include <vector>

using namespace Tarvex::VantraCore;

namespace {

constexpr JsonNumberText shortest = JsonNumberText::shortestRoundTrip;

template <class T>
std::vector<T> readBack(std::vector<T> const &values) {
  VxVariant const back =
      JsonFormatter::deserializeVxVariant(JsonFormatter::serialize(VxVariant(values), -1, shortest));
  std::vector<T> result;
  for (std::size_t i = 0; i < values.size(); ++i)
    result.push_back(back.at<T>(i));
  return result;
}

template <class T>
bool sameBits(std::vector<T> const &a, std::vector<T> const &b) {
  return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(T)) == 0;
}

template <class T>
std::vector<T> edgeValues() {
  using Limits = std::numeric_limits<T>;
  return {Limits::max(),
          Limits::lowest(),
          Limits::min(),
          -Limits::min(),
          Limits::denorm_min(),
          -Limits::denorm_min(),
          Limits::min() / 3,
          T(0.1),
          T(1) / T(3),
          T(-0.0),
          T(0),
          T(1e20),
          T(123456789)};
}

template <class T, class Bits>
std::vector<T> finiteFromBits(std::vector<Bits> const &patterns) {
  std::vector<T> values;
  for (Bits const pattern : patterns) {
    T value;
    std::memcpy(&value, &pattern, sizeof value);
    if (std::isfinite(value)) values.push_back(value);
  }
  return values;
}

// The plain low-fidelity text of each value, and the standard library's shortest text of it.
template <class T>
void expectTextsOfStandardLibrary(std::vector<T> const &values) {
  for (T const value : values) {
    if (value == 0) continue;  // written with a fraction, as the other texts are
    char text[64];
    std::to_chars_result const end = std::to_chars(text, text + sizeof text, value);
    RC_ASSERT(JsonFormatterLowFidelity::serialize(VxVariant(value), -1, shortest) ==
              VxString(text, static_cast<std::size_t>(end.ptr - text)));
  }
}

}  // namespace

// The digit search is not the standard library's; its texts must still be, character for character.
RC_GTEST_PROP(JsonLosslessNumbers, ShortestTextIsTheStandardLibrarysText,
              (std::vector<std::uint64_t> doubleBits, std::vector<std::uint32_t> floatBits)) {
  expectTextsOfStandardLibrary(finiteFromBits<double>(doubleBits));
  expectTextsOfStandardLibrary(finiteFromBits<float>(floatBits));
  expectTextsOfStandardLibrary(edgeValues<double>());
  expectTextsOfStandardLibrary(edgeValues<float>());
  // Where fixed and scientific notation change places, and integers of every length.
  for (int power = -8; power <= 24; ++power) {
    double const ten = std::pow(10.0, power);
    expectTextsOfStandardLibrary(std::vector<double>{ten, 1.5 * ten, 123456.0 * ten, -ten});
    expectTextsOfStandardLibrary(std::vector<float>{float(ten), float(1.5 * ten), float(-ten)});
  }
}

RC_GTEST_PROP(JsonLosslessNumbers, EveryFiniteValueReadsBackBitIdentical,
              (std::vector<std::uint64_t> doubleBits, std::vector<std::uint32_t> floatBits)) {
  for (std::vector<double> const &values : {finiteFromBits<double>(doubleBits), edgeValues<double>()})
    if (!values.empty()) RC_ASSERT(sameBits(readBack(values), values));
  for (std::vector<float> const &values : {finiteFromBits<float>(floatBits), edgeValues<float>()})
    if (!values.empty()) RC_ASSERT(sameBits(readBack(values), values));
}

TEST(JsonLosslessNumbers, TextIsShortestAndOtherwiseAsFifteenDigits) {
  VxVariant const doubles(std::vector<double>{0.1, 0.30000000000000004, 1e20, 1, -0.0, 5e-324, NAN});
  EXPECT_EQ(JsonFormatter::serialize(doubles, -1, shortest),
            R"({"_data_":[0.1,0.30000000000000004,1e+20,1,-0.0,5e-324,null],"_dataorder_":"rowMajor",)"
            R"("_dimensions_":[7],"_wellknowntype_":"double"})");
  EXPECT_EQ(JsonFormatter::serialize(doubles),
            JsonFormatter::serialize(doubles, -1, JsonNumberText::fifteenDigits));
  EXPECT_EQ(JsonFormatterLowFidelity::serialize(VxVariant(0.1f), -1, shortest), "0.1");
  EXPECT_EQ(JsonFormatterLowFidelity::serialize(VxVariant(0.1f)), "0.100000001490116");
  EXPECT_EQ(JsonFormatterMidFidelity::serialize(VxVariant(std::int64_t(-9007199254740993)), -1, shortest),
            R"({"_data_":-9007199254740993,"_wellknowntype_":"int64"})");

  PropertyNode tree;
  tree.set("c", VxVariant(std::complex<float>(0.1f, 2.5f)));
  tree.set("x", VxVariant(0.30000000000000004));
  std::ostringstream stream;
  JsonFormatter::serialize(tree, stream, -1, shortest);
  EXPECT_EQ(stream.str(), R"({"c":{"_data_":{"im":2.5,"re":0.1},"_wellknowntype_":"complexFloat"},)"
                          R"("x":{"_data_":0.30000000000000004,"_wellknowntype_":"double"}})");
  EXPECT_EQ(JsonFormatterLowFidelity::serialize(FPropertyNode(tree), -1, shortest),
            R"({"c":null,"x":0.30000000000000004})");
}
