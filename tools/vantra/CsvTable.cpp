#include "CsvTable.h"

#include "CsvText.h"
#include "Errors.h"
#include "PathText.h"
#include "Samples.h"
#include "TimeText.h"
#include "UnitSupport.h"

#include <VantraCore/VantraCore.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

namespace vantra {

using namespace Tarvex::VantraCore;

namespace {

std::string trimmed(std::string const &text) {
  std::size_t const first = text.find_first_not_of(" \t");
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

// "name [unit]" or "name (unit)": the name, and the unit when there is one.
void splitHeader(std::string const &header, std::string &name, std::string &unit) {
  name = trimmed(header);
  unit.clear();
  if (name.size() < 3) return;
  char const close = name.back();
  char const open = close == ']' ? '[' : close == ')' ? '(' : '\0';
  std::size_t const at = open == '\0' ? std::string::npos : name.rfind(open);
  if (at == std::string::npos || at == 0) return;
  unit = trimmed(name.substr(at + 1, name.size() - at - 2));
  name = trimmed(name.substr(0, at));
}

// The header that splitHeader reads back as `name` and `unit`: brackets that the unit holds none of,
// and empty ones after a name that would read as a name with a unit.
std::string headerOf(std::string const &name, std::string const &unit) {
  if (!unit.empty())
    return name + (unit.find('[') == std::string::npos ? " [" + unit + "]" : " (" + unit + ")");
  std::string readName, readUnit;
  splitHeader(name, readName, readUnit);
  return readName == name && readUnit.empty() ? name : name + " []";
}

bool parseNumber(std::string const &text, double &value) {
  std::string const cell = trimmed(text);
  if (cell.empty()) {
    value = std::nan("");
    return true;
  }
  char *end = nullptr;
  errno = 0;
  value = std::strtod(cell.c_str(), &end);
  return end == cell.c_str() + cell.size();
}

// One column as a variant: numbers (empty cells NaN), else times, else texts.
VxVariant columnValue(CsvRecords const &records, std::size_t column) {
  std::size_t const rows = records.size() - 1;
  std::vector<double> numbers(rows);
  bool allNumbers = true;
  for (std::size_t row = 0; row < rows && allNumbers; ++row)
    allNumbers = parseNumber(records[row + 1][column], numbers[row]);
  if (allNumbers) return VxVariant(std::move(numbers), {rows});
  std::vector<Timestamp> times(rows);
  bool allTimes = true;
  for (std::size_t row = 0; row < rows && allTimes; ++row)
    allTimes = parseTimestamp(trimmed(records[row + 1][column]), times[row]);
  if (allTimes) return VxVariant(std::move(times), {rows});
  std::vector<VxString> texts;
  for (std::size_t row = 0; row < rows; ++row)
    texts.emplace_back(records[row + 1][column]);
  return VxVariant(std::move(texts), {rows});
}

// One column of the export: its header and the text of each cell.
struct Column {
  std::string header;
  std::vector<std::string> cells;
};

Column columnOf(VxVariant const &value, std::string const &name, std::string const &unit,
                std::string const &where) {
  ArrayDimensionsView const dims = value.dimensions();
  if (std::count_if(dims.sizes, dims.sizes + dims.count, [](std::uint64_t size) { return size != 1; }) > 1)
    throw ToolError(where + " has " + std::to_string(dims.count) + " dimensions; a column has one");
  Column column{headerOf(name, unit), {}};
  WellKnownType const kind = value.wellKnownDataType();
  std::uint64_t const count = value.numberOfElements();
  if (kind == wellKnownTypeOf<Timestamp>()) {
    for (std::uint64_t i = 0; i < count; ++i)
      column.cells.push_back(timestampText(value.at<Timestamp>(i)));
  } else if (kind == wellKnownTypeOf<VxString>()) {
    for (std::uint64_t i = 0; i < count; ++i)
      column.cells.push_back(plainText(value.at<VxString>(i)));
  } else if (kind == wellKnownTypeOf<bool>()) {
    for (std::uint64_t i = 0; i < count; ++i)
      column.cells.push_back(value.at<bool>(i) ? "true" : "false");
  } else {
    forEachNumber(value, where, [&](std::uint64_t, double number) {
      column.cells.push_back(std::isnan(number) ? std::string() : shortestText(number));
    });
  }
  return column;
}

// The channels under one found node: a value is a column itself; a list or map holds channel maps.
void collectColumns(FoundNode const &found, std::string const &source, std::vector<Column> &columns) {
  std::string const where = quoted(found.path) + " in " + source;
  auto const channel = [&](PropertyNode &holder, std::string const &path) {
    PropertyNode *samples = nullptr;
    if (holder.kind() == PropertyNodeKind::Map) {
      auto const entry = holder.map().find(InternedString("samples"));
      if (entry != holder.map().end()) samples = &entry->node;
    }
    if (samples == nullptr || samples->kind() != PropertyNodeKind::Value)
      throw ToolError(quoted(path) + " in " + source +
                      " is no channel: it needs \"samples\" holding a value");
    std::string name = path;
    auto const named = holder.map().find(InternedString("name"));
    if (named != holder.map().end() && named->node.kind() == PropertyNodeKind::Value &&
        named->node.value().isType<VxString>() && named->node.value().numberOfElements() == 1)
      name = plainText(named->node.value().get<VxString>());
    PropertyNode const *unit = siblingUnit(&holder);
    columns.push_back(columnOf(samples->value(), name, unit ? unitText(*unit, quoted(path)) : "",
                               quoted(path + "/samples") + " in " + source));
  };
  switch (found.node->kind()) {
    case PropertyNodeKind::Value: {
      PropertyNode const *unit = siblingUnit(found.parent);
      columns.push_back(columnOf(found.node->value(), found.path, unit ? unitText(*unit, where) : "", where));
      break;
    }
    case PropertyNodeKind::List:
      for (std::size_t i = 0; i < found.node->list().size(); ++i)
        channel(found.node->list()[i], found.path + "/" + std::to_string(i));
      break;
    case PropertyNodeKind::Map:
      channel(*found.node, found.path);
      break;
    case PropertyNodeKind::Null:
      throw ToolError(where + " holds null");
  }
}

}  // namespace

PropertyNode documentOfCsv(std::string const &text, char delimiter, std::string const &source) {
  CsvRecords const records = parseCsv(text, delimiter, source);
  if (records.empty()) throw ToolError(source + " holds no header row");
  std::size_t const columns = records.front().size();
  for (std::size_t row = 1; row < records.size(); ++row) {
    if (records[row].size() != columns)
      throw ToolError(source + ": record " + std::to_string(row + 1) + " has " +
                      std::to_string(records[row].size()) + " fields, the header " + std::to_string(columns));
  }
  PropertyList channels;
  PropertyMap document;
  for (std::size_t column = 0; column < columns; ++column) {
    std::string name, unit;
    splitHeader(records.front()[column], name, unit);
    PropertyMap channel;
    channel.insertOrAssign(InternedString("name"), VxString(name));
    VxVariant const &samples =
        channel.insertOrAssign(InternedString("samples"), columnValue(records, column)).first->node.value();
    if (samples.isType<Timestamp>() && samples.numberOfElements() > 0 &&
        document.find(InternedString("acquired")) == document.end())
      document.insertOrAssign(InternedString("acquired"), VxVariant(samples.at<Timestamp>(0)));
    if (!unit.empty()) channel.insertOrAssign(InternedString("unit"), VxString(unit));
    channels.push_back(PropertyNode(std::move(channel)));
  }
  document.insertOrAssign(InternedString("channels"), PropertyNode(std::move(channels)));
  return PropertyNode(std::move(document));
}

std::string csvOfChannels(PropertyNode &tree, std::string const &at, std::string const &source,
                          char delimiter) {
  std::vector<Column> columns;
  for (FoundNode const &found : findNodes(tree, at, source))
    collectColumns(found, source, columns);
  std::size_t rows = 0;
  std::vector<std::string> fields;
  for (Column const &column : columns) {
    rows = std::max(rows, column.cells.size());
    fields.push_back(column.header);
  }
  std::string text = csvRecord(fields, delimiter);
  for (std::size_t row = 0; row < rows; ++row) {
    for (std::size_t c = 0; c < columns.size(); ++c)
      fields[c] = row < columns[c].cells.size() ? columns[c].cells[row] : std::string();
    text += csvRecord(fields, delimiter);
  }
  return text;
}

}  // namespace vantra
