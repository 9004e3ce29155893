#include "Commands.h"
#include "Document.h"
#include "Errors.h"
#include "Output.h"
#include "TimeText.h"

#include <VantraCore/VantraCore.h>

#include <memory>
#include <sstream>
#include <string>

namespace vantra {

using namespace Tarvex::VantraCore;

namespace {

struct ShowOptions {
  std::string file;
  ReadOptions read;
  std::uint64_t maxItems = 10;
  bool console = false;
};

// What a person wants to see: every number exact, long arrays cut short, shapes, nulls and records.
ConsoleOptions readable(std::uint64_t maxItems) {
  ConsoleOptions options;
  options.numbers = ConsoleOptions::Numbers::shortest;
  options.maxElements = maxItems == 0 ? ConsoleOptions::allElements : maxItems;
  options.shapes = ConsoleOptions::Shapes::rank2AndAbove;
  options.order = ConsoleOptions::Order::logical;
  options.showEmptyNodes = true;
  options.listElements = ConsoleOptions::ListElements::indexed;
  return options;
}

void show(ShowOptions const &options) {
  PropertyNode const tree = readableTimes(readDocument(options.file, options.read));
  // Drawn whole before any of it is printed, so a failure leaves no half tree behind.
  std::ostringstream drawing;
  withContext("cannot draw " + describeSource(options.file), [&] {
    if (options.console)
      ConsoleFormatter::serialize(tree, drawing);
    else
      ConsoleFormatter::serialize(tree, drawing, readable(options.maxItems));
  });
  writeOutput(drawing.str());
}

}  // namespace

void addShowCommand(CLI::App &tool) {
  auto options = std::make_shared<ShowOptions>();
  CLI::App *command = tool.add_subcommand("show", "Draw a document as a tree on the console");
  command->add_option("FILE", options->file, "the document, - for standard input")->required();
  addReadOptions(*command, options->read, "--fidelity");
  command->add_option("--max-items", options->maxItems, "elements shown per array, 0 for all")
      ->capture_default_str();
  command->add_flag("--console", options->console,
                    "the library's plain console text: 6 digits, every element, no shapes or nulls");
  command->callback([options] { show(*options); });
}

}  // namespace vantra
