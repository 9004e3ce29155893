#include "CsvText.h"

#include "Errors.h"

#include <csv.h>

#include <algorithm>

namespace vantra {

namespace {

struct Collect {
  CsvRecords records;
  std::vector<std::string> record;
};

void endField(void *field, std::size_t size, void *state) {
  static_cast<Collect *>(state)->record.emplace_back(static_cast<char const *>(field), size);
}

void endRecord(int, void *state) {
  Collect &collect = *static_cast<Collect *>(state);
  collect.records.push_back(std::move(collect.record));
  collect.record.clear();
}

}  // namespace

CsvRecords parseCsv(std::string const &text, char delimiter, std::string const &source) {
  csv_parser parser;
  if (csv_init(&parser, CSV_STRICT | CSV_STRICT_FINI | CSV_APPEND_NULL) != 0)
    throw ToolError("cannot read " + source + " as CSV: out of memory");
  csv_set_delim(&parser, static_cast<unsigned char>(delimiter));
  Collect collect;
  std::size_t const used = csv_parse(&parser, text.data(), text.size(), endField, endRecord, &collect);
  int const failure = used == text.size() ? csv_fini(&parser, endField, endRecord, &collect) : -1;
  std::string const message = csv_strerror(csv_error(&parser));
  csv_free(&parser);
  if (used != text.size() || failure != 0)
    throw ToolError("cannot read " + source + " as CSV: " + message + " in record " +
                    std::to_string(collect.records.size() + 1));
  return std::move(collect.records);
}

char guessDelimiter(std::string const &text) {
  std::string const header = text.substr(0, text.find('\n'));
  std::size_t best = 0;
  char chosen = ',';
  for (char const candidate : {',', ';', '\t'}) {
    std::size_t const count = static_cast<std::size_t>(std::count(header.begin(), header.end(), candidate));
    if (count > best) {
      best = count;
      chosen = candidate;
    }
  }
  return chosen;
}

std::string csvField(std::string const &field, char delimiter) {
  auto const blank = [](char c) { return c == ' ' || c == '\t'; };
  bool const bare = field.find_first_of(std::string("\"\r\n") + delimiter) == std::string::npos &&
                    (field.empty() || (!blank(field.front()) && !blank(field.back())));
  if (bare) return field;
  std::string out = "\"";
  for (char const c : field) {
    if (c == '"') out += '"';
    out += c;
  }
  return out + "\"";
}

std::string csvRecord(std::vector<std::string> const &fields, char delimiter) {
  if (fields.size() == 1 && fields.front().empty()) return "\"\"\r\n";
  std::string record;
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (i > 0) record += delimiter;
    record += csvField(fields[i], delimiter);
  }
  return record + "\r\n";
}

}  // namespace vantra
