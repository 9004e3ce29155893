#include "Commands.h"
#include "Document.h"
#include "Errors.h"
#include "Output.h"
#include "PathText.h"
#include "Samples.h"
#include "UnitSupport.h"

#include <cmath>
#include <limits>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace vantra {

using namespace Tarvex::VantraCore;

namespace {

struct StatsOptions {
  std::string file;
  std::vector<std::string> at;
  ReadOptions read;
};

// Welford's running mean and spread: one pass, no cancellation on large offsets.
struct Summary {
  std::uint64_t count = 0;
  std::uint64_t nans = 0;
  double min = std::numeric_limits<double>::quiet_NaN();
  double max = std::numeric_limits<double>::quiet_NaN();
  double mean = 0.0;
  double squares = 0.0;

  void add(double value) {
    ++count;
    if (std::isnan(value)) {
      ++nans;
      return;
    }
    std::uint64_t const numbers = count - nans;
    min = numbers == 1 || value < min ? value : min;
    max = numbers == 1 || value > max ? value : max;
    double const step = value - mean;
    mean += step / static_cast<double>(numbers);
    squares += step * (value - mean);
  }
  // The sample standard deviation, over the numbers that are not NaN.
  double deviation() const {
    std::uint64_t const numbers = count - nans;
    return numbers < 2 ? std::numeric_limits<double>::quiet_NaN()
                       : std::sqrt(squares / static_cast<double>(numbers - 1));
  }
};

std::string cell(double value) {
  return std::isnan(value) ? std::string("-") : shortestText(value);
}

void stats(StatsOptions const &options) {
  PropertyNode tree = readDocument(options.file, options.read);
  std::string const source = describeSource(options.file);
  std::ostringstream table;
  table << "path\tunit\tcount\tmin\tmax\tmean\tstd dev\tNaN\n";
  for (std::string const &at : options.at) {
    for (FoundNode const &found : findNodes(tree, at, source)) {
      std::string const where = quoted(found.path) + " in " + source;
      if (found.node->kind() != PropertyNodeKind::Value) throw ToolError(where + " holds no value");
      Summary summary;
      forEachNumber(found.node->value(), where, [&](std::uint64_t, double value) { summary.add(value); });
      PropertyNode const *unit = siblingUnit(found.parent);
      table << found.path << '\t' << (unit != nullptr ? unitText(*unit, where) : std::string("-")) << '\t'
            << summary.count << '\t' << cell(summary.min) << '\t' << cell(summary.max) << '\t'
            << cell(summary.count > summary.nans ? summary.mean : std::nan("")) << '\t'
            << cell(summary.deviation()) << '\t' << summary.nans << '\n';
    }
  }
  writeOutput(table.str());
}

}  // namespace

void addStatsCommand(CLI::App &tool) {
  auto options = std::make_shared<StatsOptions>();
  CLI::App *command = tool.add_subcommand(
      "stats", "Count, min, max, mean, standard deviation and NaNs of arrays, one tab-separated row each");
  command->add_option("FILE", options->file, "the document, - for standard input")->required();
  command->add_option("--at", options->at, "property path, * for every child, as channels/*/samples")
      ->required();
  addReadOptions(*command, options->read);
  command->callback([options] { stats(*options); });
}

}  // namespace vantra
