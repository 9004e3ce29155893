#include "Commands.h"
#include "Document.h"

#include <iostream>
#include <memory>
#include <string>

namespace vantra {

namespace {

struct JsonOptions {
  std::string file;
  Fidelity from = Fidelity::full;
  Fidelity to = Fidelity::full;
  int indent = 2;
};

}  // namespace

void addJsonCommand(CLI::App &tool) {
  auto options = std::make_shared<JsonOptions>();
  CLI::App *command = tool.add_subcommand("json", "Re-encode a document in another fidelity");
  command->add_option("FILE", options->file, "the document, - for standard input")->required();
  addFidelityOption(*command, "--to", options->to, "fidelity to write: full, mid or low")->required();
  addFidelityOption(*command, "--from", options->from,
                    "fidelity the document is in: full (default), mid or low");
  addIndentOption(*command, options->indent);
  command->callback([options] {
    std::cout << documentText(readDocument(options->file, options->from), options->to, options->indent);
  });
}

}  // namespace vantra
