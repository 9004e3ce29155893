#pragma once

#include <string>
#include <string_view>

namespace vantra {

// Writes `text` whole to standard output. A write that fails (full disk, closed stream) throws
// ToolError "cannot write standard output: <reason>"; a reader that went away throws ReaderGone.
void writeOutput(std::string_view text);

// Writes `text` as the whole of FILE ("-" for standard output), failing as writeOutput does.
void writeFile(std::string const &file, std::string_view text);

}  // namespace vantra
