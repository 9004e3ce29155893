// The vantra tool end to end: each case runs the built program in the examples folder and compares
// its exit code, standard output and standard error.
#include "RunTool.h"

#include <string>

namespace {

using namespace vantra_test;

char const scalarDocument[] =
    R"({"v":{"_data_":2500,"_wellknowntype_":"int32"},"unit":{"_data_":"mV","_wellknowntype_":"string"}})";

// AddressSanitizer ends the process on an allocation it cannot serve instead of throwing.
#ifndef __SANITIZE_ADDRESS__
TEST(ToolTest, AShapeTooLargeForMemoryIsReportedAsSuch) {
  expectRuns({{"show - --max-elements 18446744073709551615",
               R"({"a":{"_data_":[1],"_dimensions_":[99999999999],"_wellknowntype_":"double"}})",
               "", "vantra: cannot read standard input as full-fidelity JSON: out of memory\n"}},
             2);
}
#endif

TEST(ToolTest, BadInputEndsWithExitTwoAndOneLine) {
  expectRuns(
      {
          {"json missing.json --to full", "", "",
           "vantra: cannot open 'missing.json': No such file or directory\n"},
          {"json . --to full", "", "", "vantra: cannot read '.': is a directory\n"},
          {"json - --to full", "{\"a\":", "",
           "vantra: cannot read standard input as full-fidelity JSON: parse error at line 1, column 6: "
           "syntax error while parsing value - unexpected end of input; expected '[', '{', or a literal\n"},
          {"json - --to full", "{\"a\":5}", "",
           "vantra: cannot read standard input as full-fidelity JSON: a JSON value without _data_ "
           "metadata cannot be read as a property node in full fidelity\n"},
          {"json - --to fancy", "", "", "vantra: --to: fancy not in {full,mid,low} (see --help)\n"},
          {"show - --max-elements 18446744073709551615",
           R"({"a":{"_data_":[1],"_dimensions_":[99999999999,99999999999],"_wellknowntype_":"double"}})", "",
           "vantra: cannot read standard input as full-fidelity JSON: Array dimensions give more elements "
           "than 64 bits can count.\n"},
          {"json - --from mid --to low", R"({"a":{"_data_":[1,2],"_dataorder_":"diagonal"}})", "",
           "vantra: cannot read standard input as mid-fidelity JSON: dataOrder value: 'diagonal' is not "
           "recognized in conversion from JSON.\n"},
          {"json - --to full --indent 1000000", "", "",
           "vantra: --indent: Value 1000000 not in range -1 to 32 (see --help)\n"},
          {"", "", "", "vantra: A subcommand is required (see --help)\n"},
          {"convert measurement.json --at channels/5/samples --to V", "", "",
           "vantra: no property at 'channels/5/samples' in 'measurement.json': List index out of range: 5\n"},
          {"convert measurement.json --at channels//samples --to V", "", "",
           "vantra: bad property path 'channels//samples': empty segment\n"},
          {"convert measurement.json --at channels/0 --to V", "", "",
           "vantra: 'channels/0' in 'measurement.json' holds a map, not a value\n"},
          {"convert measurement.json --at device/channels --to V", "", "",
           "vantra: no unit for 'device/channels' in 'measurement.json': give --from or put a \"unit\" "
           "key beside the value\n"},
          {"convert measurement.json --at channels/0/name --from mV --to V", "", "",
           "vantra: cannot convert 'channels/0/name' in 'measurement.json': the values are of kind "
           "string, not numbers\n"},
          {"convert measurement.json --at channels/0/samples --to kg", "", "",
           "vantra: cannot convert 'mV' to 'kg': m^2*kg/(s^3*A) and kg are not commensurable\n"},
          {"units convert 1 V yards", "", "",
           "vantra: unknown unit 'yards': Error constructing a unit from SI String yards\n"},
          {"units convert 1e999 V mV", "", "", "vantra: '1e999' is not a number\n"},
          {"units check Wb", "", "",
           "vantra: unknown unit 'Wb': Error constructing a unit from SI String Wb\n"},
          {"units list --type colour", "", "",
           "vantra: unknown quantity 'colour': `vantra units list` shows the known ones\n"},
      },
      2);
}

TEST(ToolTest, JsonReencodesInEachFidelity) {
  Outcome const run = vantra("json measurement.json --to full");
  EXPECT_EQ(run.code, 0) << run.err;
  EXPECT_EQ(run.out, slurp(VANTRA_EXAMPLES "/measurement.json"));
  expectRuns(
      {{"json - --to full --indent -1", scalarDocument,
        "{\"unit\":{\"_data_\":\"mV\",\"_wellknowntype_\":\"string\"},\"v\":{\"_data_\":2500,"
        "\"_wellknowntype_\":\"int32\"}}\n",
        ""},
       {"json - --to low --indent -1", scalarDocument, "{\"unit\":\"mV\",\"v\":2500}\n", ""},
       // Low fidelity drops complex values and keeps shape as nesting; mid infers kinds.
       {"json - --from mid --to low --indent -1", R"({"c":{"_data_":{"re":1,"im":2}},"m":[[1,2],[3,4]]})",
        "{\"c\":null,\"m\":[[1,2],[3,4]]}\n", ""}},
      0);
}

TEST(ToolTest, ShowDrawsTheTreeWithReadableTimes) {
  expectRuns({{"show -", scalarDocument, "|---> 'unit': 'mV'\n|---> 'v': 2500\n", ""},
              {"show - --fidelity full",
               R"({"d":{"_data_":{"seconds":-2,"subseconds":500000000000000},"_wellknowntype_":"duration"},)"
               R"("t":{"_data_":[{"seconds":-1,"subseconds":500000000000000},{"seconds":0,"subseconds":0}],)"
               R"("_dataorder_":"rowMajor","_dimensions_":[2],"_wellknowntype_":"timestamp"}})",
               "|---> 'd': '-1.5 s'\n|---> 't': ['1969-12-31T23:59:59.5Z', '1970-01-01T00:00:00Z']\n", ""}},
             0);
}

// Element by element with scale and offset: the variant's own conversion would pass "km/h" to "m/s"
// through unchanged, their SI texts being equal.
TEST(ToolTest, ConvertAppliesScaleAndOffsetAndRelabels) {
  char const speed[] = R"({"s":{"_data_":[36,72],"_dataorder_":"columnMajor","_dimensions_":[1,2],)"
                       R"("_wellknowntype_":"int32"},"unit":{"_data_":"km/h","_wellknowntype_":"string"}})";
  expectRuns(
      {{"convert - --at s --to m/s --indent -1", speed,
        "{\"s\":{\"_data_\":[10,20],\"_dataorder_\":\"columnMajor\",\"_dimensions_\":[1,2],"
        "\"_wellknowntype_\":\"double\"},\"unit\":{\"_data_\":\"m/s\",\"_wellknowntype_\":\"string\"}}\n",
        ""},
       {"convert - --at v --from kV --to mV --indent -1", scalarDocument,
        "{\"unit\":{\"_data_\":\"mV\",\"_wellknowntype_\":\"string\"},\"v\":{\"_data_\":2.5e+09,"
        "\"_wellknowntype_\":\"double\"}}\n",
        "vantra: warning: 'v': converted from --from 'kV', but its \"unit\" says 'mV'\n"},
       {"convert - --at z --from Celsius --to K --indent -1",
        R"({"z":{"_data_":{"re":1,"im":-1},"_wellknowntype_":"complexFloat"}})",
        "{\"z\":{\"_data_\":{\"im\":272.15,\"re\":274.15},\"_wellknowntype_\":\"complexDouble\"}}\n", ""}},
      0);
  Outcome const run = vantra("convert measurement.json --at channels/1/samples --to K --indent -1");
  EXPECT_NE(run.out.find(R"({"_data_":[314.4,314.65,314.9,315.15],)"), std::string::npos) << run.err;
  EXPECT_NE(run.out.find(R"("unit":{"_data_":"K",)"), std::string::npos);
}

TEST(ToolTest, UnitsConvertCheckAndList) {
  expectRuns(
      {{"units convert 100 km/h m/s", "", "27.77777777777778 m/s\n", ""},
       {"units convert -40 Celsius °F", "", "-40.000000000000064 °F\n", ""},
       {"units convert 0 dBm W", "", "0.001 W\n", ""},
       {"units convert 2.2 kOhm Ohm", "", "2200 Ohm\n", ""},
       {"units check kg*m/s^2", "",
        "text:           kg*m/s^2\ngrammar:        valid\nlabel:          kg*m/s^2\nquantity:       force\n"
        "dimensions:     m*kg/s^2\nscale:          1\noffset:         0\nlog multiplier: 0\n",
        ""},
       {"units list --type 'thermodynamic temperature'", "",
        "name        scale                 offset                log multiplier\n"
        "Celsius     1                     273.15                0\n"
        "Fahrenheit  0.555555555556        255.372222222         0\n"
        "K           1                     0                     0\n"
        "°C          1                     273.15                0\n"
        "°F          0.555555555556        255.372222222         0\n",
        ""}},
      0);
  Outcome const list = vantra("units list");
  EXPECT_NE(list.out.find("\nelectric potential [V]: V, dBV, dBmV, dBµV, kV, mV, nV, pV, µV\n"),
            std::string::npos);
}

TEST(ToolTest, EveryCommandHasHelp) {
  for (char const *command :
       {"", "show", "json", "convert", "units", "units list", "units convert", "units check"}) {
    Outcome const run = vantra(std::string(command) + " --help");
    EXPECT_EQ(run.code, 0) << command;
    EXPECT_NE(run.out.find("Usage: vantra"), std::string::npos) << command;
  }
}

}  // namespace
