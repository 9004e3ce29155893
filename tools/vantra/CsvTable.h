#pragma once

#include <VantraCore/PropertyNode.h>

#include <string>

namespace vantra {

// CSV text with a header row as a document of channels: {"channels": [{"name", "samples", "unit"}...]},
// and "acquired" from the first column of times. Cells become numbers (empty ones NaN), else times,
// else texts, a column at a time. Malformed text, or a record whose field count is not the header's,
// throws ToolError naming `source`.
Tarvex::VantraCore::PropertyNode documentOfCsv(std::string const &text, char delimiter,
                                               std::string const &source);

// The channels `at` reaches in `tree` as CSV text, one column each, headed "name [unit]" ("name (unit)"
// for a unit holding "["), records ending in CRLF. A document made by documentOfCsv, written so and
// read again, is the same document.
std::string csvOfChannels(Tarvex::VantraCore::PropertyNode &tree, std::string const &at,
                          std::string const &source, char delimiter);

}  // namespace vantra
