#include "Commands.h"
#include "Document.h"
#include "Errors.h"
#include "PathText.h"
#include "UnitSupport.h"

#include <VantraCore/VantraCore.h>

#include <iostream>
#include <memory>
#include <string>

namespace vantra {

using namespace Tarvex::VantraCore;

namespace {

struct ConvertOptions {
  std::string file;
  std::string at;
  std::string to;
  std::string from;
  int indent = 2;
};

InternedString unitKey() {
  return InternedString("unit");
}

// The "unit" entry beside the value at `path`, or nullptr when its parent is no map or has none.
PropertyNode *siblingUnit(PropertyNode &root, PropertyPath const &path) {
  if (path.empty()) return nullptr;
  std::vector<PropertyPath::Segment> parentSteps(path.begin(), path.end() - 1);
  PropertyNode &parent = resolvePropertyPath(root, PropertyPath(std::move(parentSteps)));
  if (parent.kind() != PropertyNodeKind::Map) return nullptr;
  auto const entry = parent.map().find(unitKey());
  return entry == parent.map().end() ? nullptr : &entry->node;
}

std::string unitText(PropertyNode const &unit, std::string const &where) {
  if (unit.kind() == PropertyNodeKind::Value && unit.value().isType<VxString>() &&
      unit.value().numberOfElements() == 1)
    return plainText(unit.value().get<VxString>());
  throw ToolError("the \"unit\" beside " + where + " is not a text");
}

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

void convertDocument(ConvertOptions const &options) {
  PropertyNode tree = readDocument(options.file, Fidelity::full);
  PropertyPath const path = parsePropertyPath(options.at);
  std::string const where = quoted(options.at) + " in " + describeSource(options.file);
  PropertyNode &target = withContext("no property at " + where,
                                     [&]() -> PropertyNode & { return resolvePropertyPath(tree, path); });
  if (target.kind() != PropertyNodeKind::Value)
    throw ToolError(where + " holds " + kindName(target.kind()) + ", not a value");
  PropertyNode *const unit = siblingUnit(tree, path);
  std::string fromText = options.from;
  if (fromText.empty()) {
    if (unit == nullptr)
      throw ToolError("no unit for " + where + ": give --from or put a \"unit\" key beside the value");
    fromText = unitText(*unit, where);
  }
  Unit const from = lookupUnit(fromText);
  Unit const to = lookupUnit(options.to);
  requireCommensurable(fromText, from, options.to, to);
  VxVariant converted =
      withContext("cannot convert " + where, [&] { return convertElements(target.value(), from, to); });
  target = std::move(converted);
  if (unit != nullptr && unit != &target) *unit = VxString(options.to);
  std::cout << documentText(tree, Fidelity::full, options.indent);
}

}  // namespace

void addConvertCommand(CLI::App &tool) {
  auto options = std::make_shared<ConvertOptions>();
  CLI::App *command = tool.add_subcommand(
      "convert", "Convert the value at a property path to another unit and write the document");
  command->add_option("FILE", options->file, "the document, full fidelity, - for standard input")->required();
  command
      ->add_option("--at", options->at,
                   "property path: keys and list indices separated by /, as channels/0/samples")
      ->required();
  command->add_option("--to", options->to, "unit to convert to, as V, kOhm, dB(mW) or kg*m/s^2")->required();
  command->add_option("--from", options->from, "unit the value is in (default: the \"unit\" key beside it)");
  addIndentOption(*command, options->indent);
  command->callback([options] { convertDocument(*options); });
}

}  // namespace vantra
