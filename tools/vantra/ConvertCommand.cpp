#include "Commands.h"
#include "Document.h"
#include "Errors.h"
#include "PathText.h"
#include "UnitSupport.h"

#include <VantraCore/VantraCore.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace vantra {

using namespace Tarvex::VantraCore;

namespace {

struct ConvertOptions {
  std::string file;
  std::string at;
  std::string to;
  std::string from;  // a unit
  std::vector<std::string> fromTexts;
  bool allowNonfinite = false;
  ReadOptions read;
  WriteOptions write;
};

char const *kindName(PropertyNodeKind kind) {
  switch (kind) {
    case PropertyNodeKind::Map:
      return "a map";
    case PropertyNodeKind::List:
      return "a list";
    default:
      return "nothing";
  }
}

// One value to convert, worked out in full before any value changes.
struct Conversion {
  FoundNode target;
  PropertyNode *unit;  // the "unit" beside it, if any
  VxVariant converted;
};

// Numbers beside the relabelled unit that were not converted would now claim the new unit.
void warnOfSharedUnit(Conversion const &done, std::vector<Conversion> const &all, std::string const &to,
                      std::string const &was) {
  if (done.target.parent == nullptr || done.target.parent->kind() != PropertyNodeKind::Map) return;
  std::vector<std::string> steps = parsePathText(done.target.path);
  steps.pop_back();
  for (PropertyMapEntry const &entry : done.target.parent->map()) {
    if (&entry.node == done.unit || entry.node.kind() != PropertyNodeKind::Value ||
        !isNumberKind(entry.node.value().wellKnownDataType()))
      continue;
    bool const converted = std::any_of(all.begin(), all.end(),
                                       [&](Conversion const &other) { return other.target.node == &entry.node; });
    if (converted) continue;
    steps.emplace_back(entry.key.data(), entry.key.length());
    warn(quoted(pathText(steps)) + " shares the \"unit\" of " + quoted(done.target.path) + ", now " +
         quoted(to) + ", but was not converted: it is still in " + quoted(was));
    steps.pop_back();
  }
}

Conversion planConversion(FoundNode const &found, ConvertOptions const &options, Unit const &to,
                          std::string const &source) {
  std::string const where = quoted(found.path) + " in " + source;
  if (found.node->kind() != PropertyNodeKind::Value)
    throw ToolError(where + " holds " + kindName(found.node->kind()) + ", not a value");
  PropertyNode *const unit = siblingUnit(found.parent);
  std::string fromText = options.from;
  if (unit != nullptr) {
    std::string const labelled = unitText(*unit, where);
    if (fromText.empty())
      fromText = labelled;
    else if (labelled != fromText)
      warn(quoted(found.path) + ": converted from --from " + quoted(fromText) + ", but its \"unit\" says " +
           quoted(labelled));
  } else if (fromText.empty()) {
    throw ToolError("no unit for " + where + ": give --from or put a \"unit\" key beside the value");
  }
  Unit const from = lookupUnit(fromText);
  requireCommensurable(fromText, from, options.to, to);
  VxVariant const &value = found.node->value();
  if (!options.allowNonfinite) requireFiniteLogarithm(value, from, fromText, to, options.to, where);
  VxVariant converted =
      withContext("cannot convert " + where, [&] { return convertElements(value, from, to); });
  return Conversion{found, unit, std::move(converted)};
}

// All or nothing: a failure at any match leaves the document unwritten.
void convertDocument(ConvertOptions const &options) {
  PropertyNode tree = readDocument(options.file, options.read);
  std::string const source = describeSource(options.file);
  Unit const to = lookupUnit(options.to);
  std::vector<Conversion> conversions;
  for (FoundNode const &found : findNodes(tree, options.at, source))
    conversions.push_back(planConversion(found, options, to, source));
  for (Conversion &conversion : conversions)
    *conversion.target.node = std::move(conversion.converted);
  for (Conversion const &conversion : conversions) {
    if (conversion.unit == nullptr || conversion.unit == conversion.target.node) continue;
    std::string const was = unitText(*conversion.unit, quoted(conversion.target.path));
    if (was != options.to) warnOfSharedUnit(conversion, conversions, options.to, was);
    *conversion.unit = VxString(options.to);
  }
  writeDocument(tree, options.write);
}

}  // namespace

void addConvertCommand(CLI::App &tool) {
  auto options = std::make_shared<ConvertOptions>();
  CLI::App *command = tool.add_subcommand(
      "convert", "Convert the values at a property path to another unit and write the document");
  command->add_option("FILE", options->file, "the document, - for standard input")->required();
  command
      ->add_option("--at", options->at,
                   "property path: keys and list indices separated by /, as channels/0/samples; "
                   "* for every child, as channels/*/samples; ~1 for / and ~0 for ~ in a key")
      ->required();
  command->add_option("--to", options->to, "unit to convert to, as V, kOhm, dB(mW) or kg*m/s^2")->required();
  command->add_option("--from", options->fromTexts,
                      "the unit the values are in (default: the \"unit\" key beside them), or the fidelity "
                      "the document is in: full (default), mid or low; both as --from low --from mV")
      ->expected(1, 2)
      ->take_all();
  command->add_flag("--allow-nonfinite", options->allowNonfinite,
                    "convert zero or negative values to a logarithmic unit all the same");
  addListsOption(*command, options->read);
  addWriteOptions(*command, options->write);
  command->callback([options] {
    for (std::string const &text : options->fromTexts) {
      if (!parseFidelity(text, options->read.fidelity)) {
        if (!options->from.empty()) throw ToolError("--from: give one unit, not " + quoted(options->from) + " and " + quoted(text));
        options->from = text;
      }
    }
    convertDocument(*options);
  });
}

}  // namespace vantra
