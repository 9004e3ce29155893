#include "Commands.h"
#include "Document.h"

#include <memory>
#include <string>

namespace vantra {

namespace {

struct JsonOptions {
  std::string file;
  ReadOptions read;
  WriteOptions write;
};

}  // namespace

void addJsonCommand(CLI::App &tool) {
  auto options = std::make_shared<JsonOptions>();
  CLI::App *command = tool.add_subcommand("json", "Re-encode a document in another fidelity");
  command->add_option("FILE", options->file, "the document, - for standard input")->required();
  addFidelityOption(*command, "--to", options->write.fidelity, "fidelity to write: full, mid or low")->required();
  addReadOptions(*command, options->read);
  addWriteOptions(*command, options->write);
  command->callback([options] { writeDocument(readDocument(options->file, options->read), options->write); });
}

}  // namespace vantra
