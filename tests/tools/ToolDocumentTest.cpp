// vantra reading, converting and writing documents: what it cannot keep it says, by path.
#include "RunTool.h"

#include <cfloat>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>

namespace {

using namespace vantra_test;

std::string valueOf(char const *kind, std::string const &data) {
  return R"({"_data_":)" + data + R"(,"_wellknowntype_":")" + kind + R"("})";
}

TEST(ToolDocumentTest, NumbersComeBackBitIdentical) {
  std::mt19937_64 random(24);
  std::string doubles = "[";
  for (int i = 0; i < 1000; ++i) {
    std::uint64_t bits = random();
    double value;
    std::memcpy(&value, &bits, sizeof value);
    if (value != value || value - value != 0) value = 0.1 + 0.2;
    char text[32];
    std::snprintf(text, sizeof text, "%.17g,", i == 0 ? DBL_MAX : i == 1 ? DBL_MIN : i == 2 ? 4.9e-324 : value);
    doubles += text;
  }
  doubles.back() = ']';
  std::string const document = R"({"d":{"_data_":)" + doubles + R"(,"_dimensions_":[1000],"_wellknowntype_":"double"},)" +
                               R"("f":)" + valueOf("float", "3.4028234663852886e+38") + "}";
  Outcome const once = vantra("json - --to full --indent -1", document);
  Outcome const twice = vantra("json - --to full --indent -1", once.out);
  EXPECT_EQ(once.code, 0) << once.err;
  EXPECT_EQ(twice.out, once.out);
  EXPECT_NE(once.out.find("1.7976931348623157e+308"), std::string::npos);
  EXPECT_NE(once.out.find("3.4028235e+38"), std::string::npos);
}

TEST(ToolDocumentTest, PlainExportsReadAsArrays) {
  char const exported[] = R"({"unit":"mV","samples":[1000,2500.5,-3]})";
  expectRuns({{"json - --from low --to full --indent -1", exported,
               R"({"samples":{"_data_":[1000,2500.5,-3],"_dataorder_":"rowMajor","_dimensions_":[3],)"
               R"("_wellknowntype_":"double"},"unit":{"_data_":"mV","_wellknowntype_":"string"}})"
               "\n",
               ""},
              {"convert - --from low --at samples --to V --indent -1 --digits 15", exported,
               R"({"samples":{"_data_":[1,2.5005,-0.003],"_dataorder_":"rowMajor","_dimensions_":[3],)"
               R"("_wellknowntype_":"double"},"unit":{"_data_":"V","_wellknowntype_":"string"}})"
               "\n",
               ""}},
             0);
}

// A few bytes may not make the tool fill in hundreds of millions of zeros.
TEST(ToolDocumentTest, DeclaredShapesAreCapped) {
  char const hostile[] = R"({"_data_":[1,2],"_dimensions_":[300000000],"_wellknowntype_":"double"})";
  Outcome const refused = vantra("json - --to full", hostile);
  EXPECT_EQ(refused.code, 2);
  EXPECT_NE(refused.err.find("[300000000]"), std::string::npos) << refused.err;
  Outcome const allowed = vantra("json - --to low --indent -1 --max-elements 4", R"({"_data_":[1],"_dimensions_":[5],"_wellknowntype_":"int32"})");
  EXPECT_EQ(allowed.code, 0) << allowed.err;
  EXPECT_EQ(allowed.out, "[1,0,0,0,0]\n");
}

TEST(ToolDocumentTest, ListsKeepTheSpecifiedTree) {
  expectRuns({{"json - --from low --lists --to low --indent -1", R"({"samples":[1,2]})", "{\"samples\":[1,2]}\n",
               ""},
              {"show - --from mid --lists --console", R"({"s":[1,2]})", "|---> 's': 1\n2\n", ""}},
             0);
}

TEST(ToolDocumentTest, SilentLossesAreNamedByPath) {
  std::string const misspelt = R"({"a":[{"x":)" + valueOf("doubel", "1.5") + "}]}";
  std::string const shortData = R"({"m":{"_data_":[1],"_dimensions_":[3],"_wellknowntype_":"int32"}})";
  expectRuns({{"json - --to low --indent -1", misspelt.c_str(), "{\"a\":[{\"x\":null}]}\n",
               "vantra: warning: 'a/0/x': \"_wellknowntype_\" 'doubel' names no kind; the value reads as null\n"},
              {"json - --to low --indent -1", shortData.c_str(), "{\"m\":[1,0,0]}\n",
               "vantra: warning: 'm': \"_data_\" holds 1 of 3 elements; the rest read as zeros\n"},
              // The same found in a document that only the slower parse reads.
              {"json - --to low --indent -1", ("\xEF\xBB\xBF" + shortData).c_str(), "{\"m\":[1,0,0]}\n",
               "vantra: warning: 'm': \"_data_\" holds 1 of 3 elements; the rest read as zeros\n"}},
             0);
  expectRuns({{"json - --to low --strict", misspelt.c_str(), "",
               "vantra: 'a/0/x': \"_wellknowntype_\" 'doubel' names no kind; the value reads as null "
               "(refused by --strict)\n"}},
             2);
}

TEST(ToolDocumentTest, NonFiniteResultsAreWarnedOfOrRefused) {
  std::string const far = R"({"d":)" + valueOf("double", "1e300") + R"(,"unit":)" + valueOf("string", "\"km\"") + "}";
  Outcome const warned = vantra("convert - --at d --to nm --indent -1", far);
  EXPECT_EQ(warned.code, 0);
  EXPECT_EQ(warned.err,
            "vantra: warning: 'd': 1 of 1 numbers are not finite and are written as null; the document will not "
            "read back\n");
  expectRuns({{"convert - --at d --to nm --strict", far.c_str(), "",
               "vantra: 'd': 1 of 1 numbers are not finite and are written as null; the document will not read "
               "back (refused by --strict)\n"}},
             2);
}

TEST(ToolDocumentTest, WriteFailuresEndWithExitTwoAndABrokenPipeQuietly) {
  Outcome const full = vantra("json measurement.json --to full", "", "> /dev/full");
  EXPECT_EQ(full.code, 2);
  EXPECT_EQ(full.err, "vantra: cannot write standard output: No space left on device\n");
  Outcome const closed = vantra("units list", "", ">&-");
  EXPECT_EQ(closed.code, 2);
  EXPECT_EQ(closed.err, "vantra: cannot write standard output: Bad file descriptor\n");
  Outcome const piped = vantra("json measurement.json --to full", "", "| head -c 1 >/dev/null");
  EXPECT_EQ(piped.err, "");
}

TEST(ToolDocumentTest, MessagesNameWhatWasTyped) {
  expectRuns({{"frob", "", "", "vantra: unknown command 'frob' (see --help)\n"},
              {"json - --to full --indent abc", "", "", "vantra: --indent: 'abc' is not a number (see --help)\n"}},
             2);
  Outcome const version = vantra("--version");
  EXPECT_EQ(version.code, 0);
  EXPECT_EQ(version.out.rfind("vantra ", 0), 0u) << version.out;
  EXPECT_NE(version.out.find(", library "), std::string::npos) << version.out;
}

TEST(ToolDocumentTest, PathsAreJsonPointers) {
  std::string const awkward = R"({"m":{"0":)" + valueOf("double", "1") + R"(,"a/b":)" + valueOf("double", "2") +
                              R"(,"t~":)" + valueOf("double", "3") + R"(,"unit":)" + valueOf("string", "\"V\"") + "}}";
  Outcome const zero = vantra("convert - --at /m/0 --to mV --indent -1", awkward);
  EXPECT_NE(zero.out.find(R"("0":{"_data_":1000,)"), std::string::npos) << zero.err;
  Outcome const slash = vantra("convert - --at 'm/a~1b' --to mV --indent -1", awkward);
  EXPECT_NE(slash.out.find(R"("a/b":{"_data_":2000,)"), std::string::npos) << slash.err;
  Outcome const tilde = vantra("stats - --at 'm/t~0'", awkward);
  EXPECT_EQ(tilde.out, "path\tunit\tcount\tmin\tmax\tmean\tstd dev\tNaN\nm/t~0\tV\t1\t3\t3\t3\t-\t0\n") << tilde.err;
  expectRuns({{"stats - --at 'm/x~2'", awkward.c_str(), "", "vantra: bad property path 'm/x~2': '~' must be followed by 0 or 1\n"},
              {"stats measurement.json --at 'channels/*/nothing'", "", "",
               "vantra: no property at 'channels/*/nothing' in 'measurement.json': no key 'nothing' in 'channels/0'\n"},
              {"stats - --at 'l/*'", R"({"l":[]})", "", "vantra: no property at 'l/*' in standard input: 'l' is an empty list\n"},
              {"stats - --at '*'", "{}", "", "vantra: no property at '*' in standard input: '' is an empty map\n"}},
             2);
}

TEST(ToolDocumentTest, WildcardsConvertEachByItsOwnUnitOrNothingAtAll) {
  Outcome const each = vantra("convert measurement.json --at 'channels/*/samples' --to K --indent -1");
  EXPECT_EQ(each.code, 2);
  EXPECT_EQ(each.out, "");
  EXPECT_EQ(each.err, "vantra: cannot convert 'mV' to 'K': m^2*kg/(s^3*A) and K are not commensurable\n");
  std::string const two = R"({"c":[{"s":)" + valueOf("double", "1500") + R"(,"unit":)" + valueOf("string", "\"mV\"") +
                          R"(},{"s":)" + valueOf("double", "2") + R"(,"unit":)" + valueOf("string", "\"kV\"") + "}]}";
  Outcome const mixed = vantra("convert - --at 'c/*/s' --to V --indent -1", two);
  EXPECT_EQ(mixed.out,
            R"({"c":[{"s":{"_data_":1.5,"_wellknowntype_":"double"},"unit":{"_data_":"V","_wellknowntype_":"string"}},)"
            R"({"s":{"_data_":2000,"_wellknowntype_":"double"},"unit":{"_data_":"V","_wellknowntype_":"string"}}]})"
            "\n")
      << mixed.err;
}

TEST(ToolDocumentTest, SharedOrDisagreeingUnitsAreWarnedOf) {
  std::string const shared = R"({"unit":)" + valueOf("string", "\"mV\"") + R"(,"x":)" + valueOf("double", "1") +
                             R"(,"y":)" + valueOf("double", "2") + "}";
  Outcome const run = vantra("convert - --at x --to V --indent -1", shared);
  EXPECT_EQ(run.code, 0);
  EXPECT_EQ(run.err, "vantra: warning: 'y' shares the \"unit\" of 'x', now 'V', but was not converted: it is still in 'mV'\n");
  Outcome const disagree = vantra("convert - --at x --from V --to mV --indent -1", shared);
  EXPECT_EQ(disagree.err,
            "vantra: warning: 'x': converted from --from 'V', but its \"unit\" says 'mV'\n");
}

TEST(ToolDocumentTest, ConversionsAreRightOrRefused) {
  expectRuns({{"units convert 1 mV/°C V", "", "",
               "vantra: cannot use 'mV/°C': '°C' has an offset, which a compound unit cannot apply; convert to K "
               "first\n"},
              {"units convert 0 mW dBm", "", "",
               "vantra: cannot convert '0 mW' to 'dBm': element 0 is 0 mW, whose logarithm is not finite "
               "(--allow-nonfinite converts it all the same)\n"},
              {"units convert -- -1 mW dBm", "", "",
               "vantra: cannot convert '-1 mW' to 'dBm': element 0 is -1 mW, whose logarithm is not finite "
               "(--allow-nonfinite converts it all the same)\n"}},
             2);
  expectRuns({{"units convert 0.1 V mV", "", "100 mV\n", ""},
              {"units convert 1 mV/K V/K", "", "0.001 V/K\n", ""}},
             0);
  Outcome const list = vantra("units list --type pressure");
  EXPECT_EQ(list.code, 0) << list.err;
  Outcome const check = vantra("units check kPa");
  EXPECT_NE(check.out.find("quantity:       pressure\n"), std::string::npos);
  EXPECT_NE(vantra("units list --help").out.find("pressure"), std::string::npos);
}

}  // namespace
