#include <formatting/JsonDocument.h>
#include <formatting/JsonQuickWalk.h>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <cstring>
#include <memory>

#include <stdexcept>
#include <string>
#include <vector>

using namespace Tarvex::VantraCore;
using namespace Tarvex::VantraCore::Internal;

namespace {

bool quickTakes(std::string const &text, JsonDocument &document) {
  return parseJsonDocumentQuickly(text, text.size(), document);
}

bool libraryTakes(std::string const &text, JsonDocument &document) {
  try {
    document = parseJsonDocumentByLibrary(text);
    return true;
  } catch (std::invalid_argument const &) {
    return false;
  }
}

std::string parseFailure(std::string const &text) {
  try {
    parseJsonDocument(VxString(text.data(), text.size()));
  } catch (std::invalid_argument const &error) {
    return error.what();
  }
  return "accepted";
}

}  // namespace

// Texts that the grammar allows: both parses give the same document, numbers to the bit.
TEST(JsonParseRoutes, AgreeOnEveryTextTheGrammarAllows) {
  std::vector<std::string> const texts = {
      " \t\r\n[1, -1, 0, -0, 9223372036854775807, 9223372036854775808, 18446744073709551615, "
      "-9223372036854775808] ",
      "[0.1, 1e-400, -1e-400, 2.2250738585072011e-308, 4.9e-324, 1.7976931348623157e308, 1E+2, "
      "123456789012345678901234567890e-10, 0.30000000000000004, "
      "1.00000000000000011102230246251565404236316680908203125]",
      R"({"b":[true,false,null],"a":{"":""},"a":"\u00e9\ud83d\ude00\"\\\/\b\f\n\r\t","c":{}})",
      "\"caf\xC3\xA9 \xF0\x9F\x98\x80\"",
      "[[[[[]]]],{}]",
      // Fractions of the shapes read eight digits at a time, and just past them.
      "[0.5, -0.0, 1234567.891, 12345678.9, 0.1234567890123456, 0.12345678901234567, 9.999999999999999,"
      "1234567.123456789012, 999999.9999999999999, 0.30000000000000004, -7.25e-3, 5.0]",
  };
  for (std::string const &text : texts) {
    SCOPED_TRACE(text);
    JsonDocument quick, library;
    ASSERT_TRUE(quickTakes(text, quick));
    ASSERT_TRUE(libraryTakes(text, library));
    EXPECT_TRUE(sameJsonDocument(quick, library));
  }
}

// Numbers near the shape read without the general parser, and just off it: any count of digits on
// either side of the point, leading zeros, an exponent, white space behind, and numbers so close to
// the start that the digits cannot be loaded from before them.
RC_GTEST_PROP(JsonParseRoutes, AgreeOnNumbersOfEveryShape, ()) {
  auto const digits = [](int most) {
    auto const digit = rc::gen::inRange('0', char('9' + 1));
    return *rc::gen::container<std::string>(*rc::gen::inRange(0, most + 1), digit);
  };
  std::string number = *rc::gen::element<std::string>("", "-") + digits(9);
  if (*rc::gen::arbitrary<bool>()) number += "." + digits(20);
  if (*rc::gen::inRange(0, 4) == 0) number += *rc::gen::element<std::string>("e", "E-", "e+") + digits(3);
  std::string const text = "[" + std::string(*rc::gen::inRange(0, 20), ' ') + number +
                           *rc::gen::element<std::string>("", " ", "\n") + "," + number + "]" +
                           std::string(quickReadAhead, ' ');  // room to parse the numbers in place
  JsonDocument quick, library;
  bool const quickly = quickTakes(text, quick);
  RC_ASSERT(quickly == libraryTakes(text, library));
  if (quickly) RC_ASSERT(sameJsonDocument(quick, library));
}

// Texts that the grammar refuses: both parses refuse them, and the library words the message.
TEST(JsonParseRoutes, RefuseEveryTextTheGrammarRefuses) {
  std::vector<std::string> const texts = {
      "",           " ",    "01",       "1.",          ".5",          "+1",        "-",        "1e",
      "0x10",       "NaN",  "Infinity", "[1,]",        "{\"a\":1,}",  "'a'",       "[1 2]",    "{\"a\" 1}",
      "{1:2}",      "[\f]", "\"\\x\"",  "\"\\ud800\"", "\"\\udc00\"", "\"a\x01\"", "\"\xff\"", "\"\xC0\xAF\"",
      "\"unclosed", "tru",  "nul",      "[1] x",       "{} {}",       "1e400",     "-1e400",   "[\"a\"\x00]",
      "[01.5]",     "[1.]", "[-.5]",    "[1.5x]",      "[0.5.5]",     "[1.5-]",
  };
  for (std::string const &text : texts) {
    SCOPED_TRACE(text);
    JsonDocument document;
    EXPECT_FALSE(quickTakes(text, document));
    EXPECT_FALSE(libraryTakes(text, document));
    EXPECT_EQ(parseFailure(text).rfind("parse error", 0), 0u);
  }
}

// The quick parse refuses what the library alone reads; the library's reading then stands.
TEST(JsonParseRoutes, IntegersBeyondSixtyFourBitsAndAByteOrderMarkReadAsBefore) {
  for (std::string const text :
       {"[18446744073709551616, -9223372036854775809, 1]", "\xEF\xBB\xBF{\"a\":1}"}) {
    JsonDocument quick;
    EXPECT_FALSE(quickTakes(text, quick));
    JsonDocument library;
    ASSERT_TRUE(libraryTakes(text, library));
    EXPECT_TRUE(sameJsonDocument(parseJsonDocument(VxString(text)), library));
  }
  JsonDocument const big = parseJsonDocument(VxString("[18446744073709551616]"));
  JsonCursor const cursor(big);
  std::size_t const item = cursor.root() + 1;
  EXPECT_EQ(cursor.typeOf(item), JsonType::floating);
  EXPECT_EQ(cursor.floating(item), 18446744073709551616.0);
}

// The library stops at a NUL byte; the grammar allows nothing but white space behind the value.
TEST(JsonParseRoutes, RefuseANulByteAfterTheValue) {
  for (std::string const &text :
       {std::string("123\0", 4), std::string("[1]\0garbage", 11), std::string("{}\n \0", 5)}) {
    JsonDocument library;
    EXPECT_TRUE(libraryTakes(text, library));
    EXPECT_EQ(parseFailure(text).rfind("parse error", 0), 0u) << parseFailure(text);
  }
  EXPECT_EQ(parseFailure(std::string("{}\n \0", 5)),
            "parse error at line 2, column 2: syntax error while parsing value - unexpected NUL byte after "
            "the value; expected end of input");
}

TEST(JsonParseRoutes, NestingLimitHoldsOnBothRoutes) {
  std::string const deepest = std::string(1000, '[') + std::string(1000, ']');
  // Each array's opening and closing words, and the root's two.
  EXPECT_EQ(parseJsonDocument(VxString(deepest)).tape[0] & JsonTape::payloadMask, 2002u);
  std::string members;
  for (int level = 0; level < 1001; ++level)
    members += "{\"a\":";
  members += "1" + std::string(1001, '}');
  // Within the quick parser's own limit, beyond it, and unfinished.
  for (std::string const &text :
       {std::string(1001, '[') + std::string(1001, ']'), members,
        std::string(2000, '[') + std::string(2000, ']'), std::string(1001, '[') + "1"}) {
    EXPECT_EQ(parseFailure(text).rfind("parse error - document nested deeper than 1000 levels", 0), 0u)
        << parseFailure(text);
  }
}

// A thread's parser buffers serve one document at a time; a second one alive at once, or a large
// text, gets buffers of its own, and each document keeps reading its own values.
TEST(JsonParseRoutes, DocumentsAliveAtOnceKeepTheirOwnValues) {
  std::string large = "[";
  for (int i = 0; i < 200000; ++i)
    large += std::to_string(i) + ".5,";
  large += "\"end\"]";
  ASSERT_GT(large.size(), std::size_t(1) << 20);
  JsonDocument const first = parseJsonDocument(VxString("[\"first\", 1.5]"));
  JsonDocument const second = parseJsonDocument(VxString("{\"second\": [true]}"));
  JsonDocument const third = parseJsonDocument(VxString(large));
  JsonCursor const one(first), two(second), three(third);
  EXPECT_EQ(one.text(one.root() + 1), "first");
  EXPECT_EQ(one.floating(one.next(one.root() + 1)), 1.5);
  EXPECT_EQ(two.member(two.root(), "second"), two.root() + 2);
  EXPECT_EQ(three.itemCount(three.root()), 200001u);
  EXPECT_EQ(three.text(three.end(three.root()) - 1), "end");
}

// Enough numbers to be parsed on several threads, of every width: those beyond a tape word's payload
// lie among those parsed late, and each keeps its value to the bit.
TEST(JsonParseRoutes, ManyNumbersOfEveryWidthAgree) {
  char const *const numbers[] = {"0.5e-3",     "-1234567", "18446744073709551615", "-9223372036854775808",
                                 "140737488355328", "-0",  "3.141592653589793",   "1e22"};
  std::string text = "[";
  for (int i = 0; i < 600000; ++i)
    text += std::string(numbers[i % 8]) + ",";
  text += "0]";
  JsonDocument quick, library;
  ASSERT_TRUE(quickTakes(text, quick));
  ASSERT_TRUE(libraryTakes(text, library));
  EXPECT_TRUE(sameJsonDocument(quick, library));
  JsonCursor const cursor(quick);
  EXPECT_EQ(cursor.unsignedInteger(cursor.root() + 3), 18446744073709551615u);
  EXPECT_EQ(cursor.integer(cursor.root() + 5), 140737488355328);
}

// A text of several megabytes is searched a slice at a time while the walk follows. Slices that end
// on a comma inside a string, closings 998 deep across a slice's end, and faults in the last slice
// must all come out as a single search would have them.
TEST(JsonParseRoutes, TextsSearchedInSlicesAgree) {
  std::string commas = "[";
  while (commas.size() < (std::size_t(5) << 20))
    commas += "\"" + std::string(3000, ',') + "\",1.5,";
  commas += "0]";
  std::string deep = "[";
  std::string const group = std::string(998, '[') + "-2.25" + std::string(998, ']') + ",";
  while (deep.size() < (std::size_t(5) << 20))
    deep += group;
  deep += "0]";
  for (std::string const &text : {commas, deep}) {
    JsonDocument quick, library;
    ASSERT_TRUE(quickTakes(text, quick));
    ASSERT_TRUE(libraryTakes(text, library));
    EXPECT_TRUE(sameJsonDocument(quick, library));
  }
  std::string const valid = commas;
  for (std::string const &text : {valid + " x", valid.substr(0, valid.size() - 1), valid + "\"", 
                                  valid.substr(0, valid.size() - 2) + "\"\xff\"]"}) {
    JsonDocument document;
    EXPECT_FALSE(quickTakes(text, document));
    EXPECT_FALSE(libraryTakes(text, document));
  }
}

// The quick parse reads a text in place even with not one byte readable behind it: a token near the
// end is parsed from a copy (the sanitizer builds catch a read past the block).
TEST(JsonParseRoutes, TextsWithNoRoomBehindThem) {
  for (std::string const &text : std::vector<std::string>{"[1.5]", "12", "-0.25e-2", "\"s\\n\"", "[true,null]", "{\"a\":\"xyz\"}",
                                 "[\"" + std::string(300, 'x') + "\",123456789012345678]"}) {
    SCOPED_TRACE(text);
    std::unique_ptr<char[]> const exact(new char[text.size()]);
    std::memcpy(exact.get(), text.data(), text.size());
    JsonDocument quick, library;
    ASSERT_TRUE(parseJsonDocumentQuickly(std::string_view(exact.get(), text.size()), text.size(), quick));
    ASSERT_TRUE(libraryTakes(text, library));
    EXPECT_TRUE(sameJsonDocument(quick, library));
  }
}
