#include "Commands.h"
#include "Document.h"
#include "Errors.h"
#include "TimeText.h"

#include <VantraCore/VantraCore.h>

#include <iostream>
#include <memory>
#include <sstream>
#include <string>

namespace vantra {

namespace {

struct ShowOptions {
  std::string file;
  Fidelity fidelity = Fidelity::full;
};

}  // namespace

void addShowCommand(CLI::App &tool) {
  auto options = std::make_shared<ShowOptions>();
  CLI::App *command = tool.add_subcommand("show", "Draw a document as a tree on the console");
  command->add_option("FILE", options->file, "the document, - for standard input")->required();
  addFidelityOption(*command, "--fidelity", options->fidelity,
                    "fidelity the document is in: full (default), mid or low");
  command->callback([options] {
    Tarvex::VantraCore::PropertyNode const tree =
        readableTimes(readDocument(options->file, options->fidelity));
    // Drawn whole before any of it is printed, so a failure leaves no half tree behind.
    std::ostringstream drawing;
    withContext("cannot draw " + describeSource(options->file),
                [&] { Tarvex::VantraCore::ConsoleFormatter::serialize(tree, drawing); });
    std::cout << drawing.str();
  });
}

}  // namespace vantra
