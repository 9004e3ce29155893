// What vantra makes for people and other programs: the tree on the console, statistics, a chart, CSV.
#include "RunTool.h"

#include <chrono>
#include <fstream>
#include <string>

namespace {

using namespace vantra_test;

TEST(ToolOutputTest, ShowIsReadableByDefault) {
  std::string longArray = R"({"a":{"_data_":[)";
  for (int i = 0; i < 1000000; ++i)
    longArray += std::to_string(i % 7) + ",";
  longArray.back() = ']';
  longArray += R"(,"_dimensions_":[1000000],"_wellknowntype_":"int32"}})";
  Outcome const elided = vantra("show -", longArray);
  EXPECT_EQ(elided.out, "|---> 'a': [0, 1, 2, 3, 4, 5, 6, 0, 1, 2, ... 999990 more]\n") << elided.err;
  EXPECT_EQ(vantra("show - --max-items 2", longArray).out, "|---> 'a': [0, 1, ... 999998 more]\n");
  char const records[] = R"({"r":[{"x":{"_data_":0.1,"_wellknowntype_":"double"}},)"
                         R"({"n":null,"x":{"_data_":123456.789,"_wellknowntype_":"double"}}]})";
  Outcome const shown = vantra("show -", records);
  EXPECT_NE(shown.out.find("0.1"), std::string::npos) << shown.out;
  EXPECT_NE(shown.out.find("123456.789"), std::string::npos) << shown.out;
  EXPECT_NE(shown.out.find("null"), std::string::npos) << shown.out;
  EXPECT_NE(shown.out.find("[1]"), std::string::npos) << shown.out;
  EXPECT_EQ(vantra("show - --console", records).out, "|---> 'r': |---> 'x': 0.1\n|---> 'n': |---> 'x': 123457\n");
}

TEST(ToolOutputTest, StatsSummariseEachArrayWithItsUnit) {
  expectRuns({{"stats measurement.json --at 'channels/*/samples'", "",
               "path\tunit\tcount\tmin\tmax\tmean\tstd dev\tNaN\n"
               "channels/0/samples\tmV\t6\t4996.8\t5003.1\t5000.016666666666\t2.2868464457996898\t0\n"
               "channels/1/samples\t°C\t4\t41.25\t42\t41.625\t0.3227486121839514\t0\n"
               "channels/2/samples\tmA\t6\t120\t261\t189.66666666666669\t68.30129330156689\t0\n",
               ""}},
             0);
  expectRuns({{"stats measurement.json --at channels/0/name", "", "",
               "vantra: 'channels/0/name' in 'measurement.json' holds string values, not real numbers\n"}},
             2);
}

// The chart is valid XML, renders, and stays small and quick for ten million samples.
TEST(ToolOutputTest, PlotDrawsAnSvgChart) {
  std::string const svg = testing::TempDir() + "vantra_plot.svg";
  Outcome const run = vantra("plot measurement.json --at channels/0/samples --at channels/2/samples -o '" + svg + "'");
  ASSERT_EQ(run.code, 0) << run.err;
  std::string const drawn = slurp(svg);
  EXPECT_NE(drawn.find(">supply [mV]</text>"), std::string::npos);
  EXPECT_NE(drawn.find(">load current, two bursts [mA]</text>"), std::string::npos);
  EXPECT_NE(drawn.find(">[mV] [mA]</text>"), std::string::npos);
  std::string const check = "python3 -c \"import sys, xml.etree.ElementTree as E; r = E.parse(sys.argv[1]).getroot(); "
                            "sys.exit(0 if len(r.findall('{http://www.w3.org/2000/svg}polyline')) == 2 else 1)\" '" +
                            svg + "'";
  EXPECT_EQ(std::system(check.c_str()), 0);
  EXPECT_EQ(std::system(("rsvg-convert -o '" + svg + ".png' '" + svg + "'").c_str()), 0);
  EXPECT_GT(slurp(svg + ".png").size(), 1000u);

  std::string const big = testing::TempDir() + "vantra_big.json";
  {
    std::ofstream out(big);
    out << R"({"s":{"_data_":[)";
    for (int i = 0; i < 10000000; ++i)
      out << (i % 1000 == 0 ? "-5," : i % 2 ? "1," : "0,");
    out << R"(0],"_dimensions_":[10000001],"_wellknowntype_":"int8"}})";
  }
  auto const start = std::chrono::steady_clock::now();
  Outcome const large = vantra("plot '" + big + "' --at s -o '" + svg + "'");
  double const seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  EXPECT_EQ(large.code, 0) << large.err;
  EXPECT_LT(slurp(svg).size(), 200000u);
  RecordProperty("plot_10M_seconds", std::to_string(seconds));
  std::remove(big.c_str());
  std::remove(svg.c_str());
  std::remove((svg + ".png").c_str());
}

TEST(ToolOutputTest, CsvComesInAndGoesOut) {
  char const exported[] =
      "time,supply [V],note (text)\r\n"
      "2026-11-21T14:03:07.25Z,5.001,\"a, b\"\r\n"
      "2026-11-21 14:03:08+01:00,,\"two\nlines \"\"quoted\"\"\"\r\n";
  Outcome const imported = vantra("import csv - --indent -1", exported);
  ASSERT_EQ(imported.code, 0) << imported.err;
  EXPECT_NE(imported.out.find(R"("acquired":{"_data_":{"seconds":1795269787,"subseconds":250000000000000})"),
            std::string::npos)
      << imported.out;
  EXPECT_NE(imported.out.find(R"({"name":{"_data_":"supply","_wellknowntype_":"string"},"samples":{"_data_":[5.001,null])"),
            std::string::npos)
      << imported.out;
  EXPECT_EQ(imported.err,
            "vantra: warning: 'channels/1/samples': 1 of 2 numbers are not finite and are written as null; the "
            "document will not read back\n");
  Outcome const back = vantra("export csv - --at channels", imported.out.substr(0, 0) +
                                                              vantra("import csv -", "a [V];b\n1;x\n2;y\n").out);
  EXPECT_EQ(back.out, "a [V],b\r\n1,x\r\n2,y\r\n") << back.err;
  Outcome const texts = vantra("export csv - --at 'channels/*' --delimiter tab",
                               vantra("import csv -", "t (s)\tnote\n1.5\t\"a\tb\"\n2\t\"two\nlines \"\"q\"\"\"\n").out);
  EXPECT_EQ(texts.out, "t [s]\tnote\r\n1.5\t\"a\tb\"\r\n2\t\"two\nlines \"\"q\"\"\"\r\n") << texts.err;
  expectRuns({{"import csv -", "a,b\n1\n", "", "vantra: standard input: record 2 has 1 fields, the header 2\n"},
              {"import csv -", "a\n\"open\n", "", "vantra: cannot read standard input as CSV: error parsing data while strict checking enabled in record 2\n"},
              {"export csv measurement.json --at channels", "", "",
               "vantra: 'channels/2/samples' in 'measurement.json' has 2 dimensions; a column has one\n"}},
             2);
}

// Cells that a CSV reader drops or trims unless they are quoted, headers with brackets of their own,
// and times early in the calendar come back from an export as they went in; a time the export could
// not write back stays text.
TEST(ToolOutputTest, CsvExportReadsBackAsItWasImported) {
  struct {
    char const *imported, *exported;
  } const cases[] = {
      {"a\n\"\"\nx\n", "a\r\n\"\"\r\nx\r\n"},
      {"\"\"\n1\n", "\"\"\r\n1\r\n"},
      {",b\n1,2\n", ",b\r\n1,2\r\n"},
      {"x (a[b);y [] []\n1;2\n", "x (a[b),y [] []\r\n1,2\r\n"},
      {"a;b\n\" x\";\"y\t\"\n", "a,b\r\n\" x\",\"y\t\"\r\n"},
      {"t\n0999-01-01T00:00:00.5Z\n", "t\r\n0999-01-01T00:00:00.5Z\r\n"},
      {"t\n0000-01-01T00:00:00+01:00\n", "t\r\n0000-01-01T00:00:00+01:00\r\n"},
  };
  for (auto const &each : cases) {
    Outcome const imported = vantra("import csv -", each.imported);
    Outcome const exported = vantra("export csv -", imported.out);
    EXPECT_EQ(exported.out, each.exported) << each.imported << imported.err << exported.err;
    EXPECT_EQ(vantra("export csv -", vantra("import csv -", exported.out).out).out, each.exported);
  }
}

}  // namespace
