#include <VantraCore/StringUtilities.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>
#include <utf8.h>

#include <cstdio>

using namespace Tarvex::VantraCore;
using testing::Property;
using testing::Throws;

TEST(StringUtilities, NumbersToPaddedText) {
  EXPECT_EQ(fromDouble(2.25, static_cast<DoubleFormat>('x'), 6, -6), "2.25  ");
  EXPECT_EQ(fromInt(42, 5), "   42");
  EXPECT_EQ(fromInt(-2147483647 - 1, 0), "-2147483648");
  EXPECT_EQ(fromUnsignedInt(4294967295u, -11), "4294967295 ");
  EXPECT_EQ(padString("abcdef", 3), "abcdef");
  EXPECT_EQ(repeatChar('x', 3), "xxx");
}

// The C library's formatting with the same conversion, precision and width is the reference: its
// negative width pads on the right, as padString does.
RC_GTEST_PROP(StringUtilities, FromDoubleMatchesPrintf, (double value)) {
  int const precision = *rc::gen::inRange(0, 20), width = *rc::gen::inRange(-30, 30);
  char const conversion = *rc::gen::elementOf(std::string("eEfgG"));
  char expected[512];
  char const format[] = {'%', '*', '.', '*', conversion, '\0'};
  std::snprintf(expected, sizeof expected, format, width, precision, value);
  RC_ASSERT(fromDouble(value, static_cast<DoubleFormat>(conversion), precision, width) == expected);
}

TEST(StringUtilities, NumberSyntaxAndParsing) {
  for (char const *valid : {" +12 \n", "\t-7"})
    EXPECT_TRUE(isValidInt(valid)) << valid;
  for (char const *invalid : {"12\n ", "12\n\n", "+", "", "1.0", "+-1"})
    EXPECT_FALSE(isValidInt(invalid));
  for (char const *valid : {"1.", ".5", " -1.5E+3\n"})
    EXPECT_TRUE(isValidNumber(valid)) << valid;
  for (char const *invalid : {"1e", "1e+", ".", "inf", "nan", "0x10", "1,5"})
    EXPECT_FALSE(isValidNumber(invalid));
  EXPECT_FALSE(isValidNumber(VxString(std::string("1\0", 2))));

  EXPECT_EQ(toInt("2147483647.4"), 2147483647);
  EXPECT_EQ(toInt("2147483647.5"), nonstd::nullopt);
  EXPECT_EQ(toInt("-2147483648.5"), nonstd::nullopt);
  EXPECT_EQ(toInt("-2.5"), -3);
  EXPECT_EQ(toInt("1e3"), 1000);
  EXPECT_EQ(toUnsignedInt("-0.4"), nonstd::nullopt);
  EXPECT_EQ(toUnsignedInt("4294967295.4"), 4294967295u);
  EXPECT_EQ(toDouble(" 1.25e2 \n"), 125.0);
}

TEST(StringUtilities, QuotesAndTokens) {
  EXPECT_EQ(addQuotes("\"a\""), "\"\"a\"\"");
  EXPECT_EQ(stripQuotes("\"\"a\"\""), "\"a\"");
  EXPECT_EQ(stripQuotes("\"\""), "");
  EXPECT_EQ(stripQuotes("\"a"), "\"a");

  using Tokens = std::vector<std::string>;
  EXPECT_EQ(tokenizeToStd("a,,b", ",", false), (Tokens{"a", "b"}));
  EXPECT_EQ(tokenizeToStd("a,,b", ",", true), (Tokens{"a", "", "b"}));
  EXPECT_EQ(tokenizeToStd("a,", ",", true), (Tokens{"a", ""}));
  EXPECT_EQ(tokenizeToStd("", ",", false), Tokens{});
  EXPECT_EQ(tokenizeToStd("", ",", true), Tokens{""});
  EXPECT_EQ(tokenizeToStd("a;b c", "; ", false), (Tokens{"a", "b", "c"}));
}

// The library's utfcpp exceptions are caught by their own types on this side.
TEST(StringUtilities, EncodingsAndTheirExceptions) {
  EXPECT_EQ(toUtf16("\xc3\xa9\xf0\x9f\x98\x80"), u"\u00e9\U0001F600");
  EXPECT_EQ(toWString("\xc3\xa9\xf0\x9f\x98\x80"), L"\u00e9\U0001F600");
  EXPECT_EQ(toVxString(std::wstring(L"\u00e9\U0001F600")), "\xc3\xa9\xf0\x9f\x98\x80");
  EXPECT_THROW(toUtf16("\xc3"), utf8::not_enough_room);
  EXPECT_THROW(toWString("a\xff"), utf8::invalid_utf8);
  EXPECT_THROW(toWString("\xed\xa0\x80"), utf8::invalid_code_point);  // an encoded surrogate
  EXPECT_THAT([] { toVxString(std::u16string(1, 0xD800)); },
              Throws<utf8::invalid_utf16>(Property(&utf8::invalid_utf16::utf16_word, 0xD800)));
  EXPECT_THROW(toVxString(std::u16string{0xD800, u'a'}), utf8::invalid_utf16);
  EXPECT_THROW(toVxString(std::u16string{u'a', 0xDC00}), utf8::invalid_utf16);
  EXPECT_THROW(toVxString(std::wstring(1, static_cast<wchar_t>(0x110000))), utf8::invalid_code_point);
}

RC_GTEST_PROP(StringUtilities, WellFormedTextRoundTrips, (std::u16string text)) {
  for (char16_t &unit : text)
    unit = (unit >= 0xD800 && unit <= 0xDFFF) ? u'?' : unit;
  text += u"\U00010437";
  RC_ASSERT(toUtf16(toVxString(text)) == text);
  std::wstring const wide(text.begin(), text.end() - 2);
  RC_ASSERT(toWString(toVxString(wide)) == wide);
}
