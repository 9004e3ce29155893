#pragma once

#include <VantraCore/PropertyNode.h>

#include <CLI/CLI.hpp>

#include <cstdint>
#include <string>

namespace vantra {

// How much of a value's description a JSON document carries.
enum class Fidelity { full, mid, low };

char const *fidelityName(Fidelity fidelity);

// Sets `fidelity` when `text` names one; false when it names none.
bool parseFidelity(std::string const &text, Fidelity &fidelity);

// An option choosing a fidelity by its name ("full", "mid", "low").
CLI::Option *addFidelityOption(CLI::App &command, std::string const &name, Fidelity &fidelity,
                               std::string const &description);

struct ReadOptions {
  Fidelity fidelity = Fidelity::full;
  // Plain JSON arrays stay lists of values, as the lenient readers make them by default.
  bool lists = false;
  // The most elements a document may declare beyond those it carries; 0 for the default, the larger
  // of 16M and 16 times the most elements its text can carry.
  std::uint64_t maxElements = 0;
};

// --from (and `alias`, when given, for the same) and --lists.
void addReadOptions(CLI::App &command, ReadOptions &options, std::string const &alias = "");

// --lists and --max-elements.
void addListsOption(CLI::App &command, ReadOptions &options);

// The tree in FILE ("-" for standard input). A file that cannot be read or a text that is no such
// document throws ToolError naming the file; values the reader loses silently are warned of by path.
Tarvex::VantraCore::PropertyNode readDocument(std::string const &file, ReadOptions const &options);

// How numbers are written: the shortest text that reads back to the same value, or 15 digits.
enum class NumberText { shortest, fifteenDigits };

struct WriteOptions {
  Fidelity fidelity = Fidelity::full;
  int indent = 2;
  NumberText numbers = NumberText::shortest;
  bool strict = false;
};

// --indent, --digits and --strict.
void addWriteOptions(CLI::App &command, WriteOptions &options);

// --indent alone.
CLI::Option *addIndentOption(CLI::App &command, int &indent);

// Writes `tree` to standard output as a document, ending in a line break, after warning of every value
// that will not read back the same (with --strict refusing instead, before anything is written).
void writeDocument(Tarvex::VantraCore::PropertyNode const &tree, WriteOptions const &options);

// Where a document came from, for messages: "standard input" or the quoted file name.
std::string describeSource(std::string const &file);

// The whole of FILE ("-" for standard input), or ToolError naming it.
std::string readAll(std::string const &file);

}  // namespace vantra
