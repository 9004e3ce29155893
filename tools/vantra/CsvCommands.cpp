#include "Commands.h"
#include "CsvTable.h"
#include "CsvText.h"
#include "Document.h"
#include "Errors.h"
#include "Output.h"

#include <VantraCore/VantraCore.h>

#include <memory>
#include <string>

namespace vantra {

using namespace Tarvex::VantraCore;

namespace {

struct CsvOptions {
  std::string file;
  std::string at = "channels";
  std::string delimiter;
  ReadOptions read;
  WriteOptions write;
};

char delimiterOf(std::string const &option, std::string const &text) {
  if (option.empty()) return guessDelimiter(text);
  if (option == "tab" || option == "\\t") return '\t';
  if (option.size() != 1) throw ToolError("--delimiter: " + quoted(option) + " is not one character or tab");
  return option.front();
}

void importCsv(CsvOptions const &options) {
  std::string const text = readAll(options.file);
  writeDocument(documentOfCsv(text, delimiterOf(options.delimiter, text), describeSource(options.file)),
                options.write);
}

void exportCsv(CsvOptions const &options) {
  PropertyNode tree = readDocument(options.file, options.read);
  char const delimiter = options.delimiter.empty() ? ',' : delimiterOf(options.delimiter, "");
  writeOutput(csvOfChannels(tree, options.at, describeSource(options.file), delimiter));
}

}  // namespace

void addCsvCommands(CLI::App &tool) {
  auto options = std::make_shared<CsvOptions>();
  CLI::App *import = tool.add_subcommand("import", "Make a document from another program's export");
  import->require_subcommand(1);
  CLI::App *importCsvCommand = import->add_subcommand(
      "csv", "A CSV or TSV file with a header row, as \"name [unit]\" or \"name (unit)\"; ISO 8601 "
             "columns become timestamps (UTC when no zone is given), number columns doubles");
  importCsvCommand->add_option("FILE", options->file, "the CSV file, - for standard input")->required();
  importCsvCommand->add_option("--delimiter", options->delimiter,
                               "field delimiter: one character or tab (default: guessed from the header)");
  addWriteOptions(*importCsvCommand, options->write);
  importCsvCommand->callback([options] { importCsv(*options); });

  CLI::App *exportCommand = tool.add_subcommand("export", "Write a document's channels for another program");
  exportCommand->require_subcommand(1);
  CLI::App *exportCsvCommand = exportCommand->add_subcommand(
      "csv", "The channels under a path as CSV columns (RFC 4180), headed \"name [unit]\"");
  exportCsvCommand->add_option("FILE", options->file, "the document, - for standard input")->required();
  exportCsvCommand
      ->add_option("--at", options->at,
                   "a list or map of channels (maps with \"samples\", \"name\" and \"unit\"), or one "
                   "array; * for every child")
      ->capture_default_str();
  exportCsvCommand->add_option("--delimiter", options->delimiter, "field delimiter: one character or tab (default ,)");
  addReadOptions(*exportCsvCommand, options->read);
  exportCsvCommand->callback([options] { exportCsv(*options); });
}

}  // namespace vantra
