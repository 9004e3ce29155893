#pragma once

#include <VantraCore/PropertyNode.h>

#include <CLI/CLI.hpp>

#include <iosfwd>
#include <string>

namespace vantra {

// How much of a value's description a JSON document carries.
enum class Fidelity { full, mid, low };

// A required option choosing a fidelity by its name ("full", "mid", "low").
CLI::Option *addFidelityOption(CLI::App &command, std::string const &name, Fidelity &fidelity,
                               std::string const &description);

// --indent: spaces per level of a written document, -1 for one compact line.
CLI::Option *addIndentOption(CLI::App &command, int &indent);

// The tree in FILE ("-" for standard input), read in `fidelity`. A file that cannot be read or a
// text that is no such document throws ToolError naming the file.
Tarvex::VantraCore::PropertyNode readDocument(std::string const &file, Fidelity fidelity);

// The document text of `tree` in `fidelity`, ending in a line break.
std::string documentText(Tarvex::VantraCore::PropertyNode const &tree, Fidelity fidelity, int indent);

// Where a document came from, for messages: "standard input" or the quoted file name.
std::string describeSource(std::string const &file);

}  // namespace vantra
