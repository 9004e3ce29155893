#pragma once

#include <functional>
#include <ostream>
#include <string>
#include <string_view>

namespace vantra {

// Writes `text` whole to standard output. A write that fails (full disk, closed stream) throws
// ToolError "cannot write standard output: <reason>"; a reader that went away throws ReaderGone.
void writeOutput(std::string_view text);

// Hands `write` a stream onto standard output whose writes fail as writeOutput's do: the library's
// writers then pass their text to the output, a block at a time, without a copy of it in between.
void writeOutputThrough(std::function<void(std::ostream &)> const &write);

// Writes `text` as the whole of FILE ("-" for standard output), failing as writeOutput does.
void writeFile(std::string const &file, std::string_view text);

}  // namespace vantra
