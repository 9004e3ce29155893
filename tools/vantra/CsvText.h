#pragma once

#include <string>
#include <vector>

namespace vantra {

using CsvRecords = std::vector<std::vector<std::string>>;

// The records of CSV text (RFC 4180: quoted fields may hold the delimiter, doubled quotes and line
// breaks), with `delimiter` between fields. Malformed quoting throws ToolError naming `source`.
CsvRecords parseCsv(std::string const &text, char delimiter, std::string const &source);

// The delimiter of a header line: the most frequent of tab, semicolon and comma (comma on a tie).
char guessDelimiter(std::string const &text);

// One field as CSV writes it: quoted when it holds the delimiter, a quote or a line break, or begins or
// ends with a space or tab, which a reader trims from a bare field.
std::string csvField(std::string const &field, char delimiter);

// One record as CSV writes it, ending in CRLF. A record of one empty field is written "", since a
// reader skips an empty line.
std::string csvRecord(std::vector<std::string> const &fields, char delimiter);

}  // namespace vantra
