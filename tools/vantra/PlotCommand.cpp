#include "Chart.h"
#include "Commands.h"
#include "Document.h"
#include "Errors.h"
#include "Output.h"
#include "PathText.h"
#include "Samples.h"
#include "TimeText.h"
#include "UnitSupport.h"

#include <memory>
#include <string>
#include <vector>

namespace vantra {

using namespace Tarvex::VantraCore;

namespace {

struct PlotOptions {
  std::string file;
  std::vector<std::string> at;
  std::string x;
  std::string output;
  ReadOptions read;
};

// A value found by path, with what the chart says of it: its name and its unit.
struct Channel {
  VxVariant const *value;
  std::string label;
  std::string unit;
};

std::vector<Channel> channelsAt(PropertyNode &tree, std::string const &at, std::string const &source) {
  std::vector<Channel> channels;
  for (FoundNode const &found : findNodes(tree, at, source)) {
    std::string const where = quoted(found.path) + " in " + source;
    if (found.node->kind() != PropertyNodeKind::Value) throw ToolError(where + " holds no value");
    Channel channel{&found.node->value(), found.path, ""};
    if (PropertyNode const *unit = siblingUnit(found.parent)) channel.unit = unitText(*unit, where);
    if (found.parent != nullptr && found.parent->kind() == PropertyNodeKind::Map) {
      auto const name = found.parent->map().find(InternedString("name"));
      if (name != found.parent->map().end() && name->node.kind() == PropertyNodeKind::Value &&
          name->node.value().isType<VxString>() && name->node.value().numberOfElements() == 1)
        channel.label = plainText(name->node.value().get<VxString>());
    }
    channels.push_back(channel);
  }
  return channels;
}

std::string joinedUnits(std::vector<Channel> const &channels) {
  std::string units;
  for (Channel const &channel : channels) {
    if (channel.unit.empty() || units.find("[" + channel.unit + "]") != std::string::npos) continue;
    units += (units.empty() ? "" : " ") + ("[" + channel.unit + "]");
  }
  return units;
}

void plot(PlotOptions const &options) {
  PropertyNode tree = readDocument(options.file, options.read);
  std::string const source = describeSource(options.file);
  std::vector<Channel> channels;
  for (std::string const &at : options.at)
    for (Channel const &channel : channelsAt(tree, at, source))
      channels.push_back(channel);

  std::vector<double> xs;
  std::string xTitle = "index";
  if (!options.x.empty()) {
    std::vector<Channel> const found = channelsAt(tree, options.x, source);
    if (found.size() != 1) throw ToolError("--x " + quoted(options.x) + " reaches " + std::to_string(found.size()) + " values, not one");
    VxVariant const &x = *found.front().value;
    Timestamp origin;
    xTitle = found.front().label + (found.front().unit.empty() ? "" : " [" + found.front().unit + "]");
    if (x.isType<Timestamp>() && x.numberOfElements() > 0) {
      origin = x.constStoredData<Timestamp>()[0];
      xTitle = "seconds since " + plainText(readableTimes(PropertyNode(VxVariant(origin))).value().get<VxString>());
    }
    xs.reserve(x.numberOfElements());
    forEachNumber(x, quoted(options.x), [&](std::uint64_t, double value) { xs.push_back(value); }, origin);
  }

  std::vector<ChartLine> lines;
  for (Channel const &channel : channels) {
    std::uint64_t const count = channel.value->numberOfElements();
    if (!xs.empty() && xs.size() != count)
      throw ToolError(quoted(channel.label) + " has " + std::to_string(count) + " samples, --x " +
                      std::to_string(xs.size()));
    ColumnReducer reducer(count, chartColumns);
    forEachNumber(*channel.value, quoted(channel.label), [&](std::uint64_t i, double y) {
      reducer.add(i, xs.empty() ? static_cast<double>(i) : xs[i], y);
    });
    lines.push_back(reducer.finish(channel.label + (channel.unit.empty() ? "" : " [" + channel.unit + "]")));
  }
  writeFile(options.output, chartSvg(lines, xTitle, joinedUnits(channels)));
}

}  // namespace

void addPlotCommand(CLI::App &tool) {
  auto options = std::make_shared<PlotOptions>();
  CLI::App *command = tool.add_subcommand("plot", "Draw arrays as an SVG line chart");
  command->add_option("FILE", options->file, "the document, - for standard input")->required();
  command->add_option("--at", options->at, "an array to draw, * for every child; give --at again for more")
      ->required();
  command->add_option("--x", options->x, "an array of the same length to draw against (default: the index)");
  command->add_option("-o,--output", options->output, "the SVG file to write, - for standard output")->required();
  addReadOptions(*command, options->read);
  command->callback([options] { plot(*options); });
}

}  // namespace vantra
