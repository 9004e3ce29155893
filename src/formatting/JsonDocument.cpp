#include <formatting/JsonDocument.h>

#include <algorithm>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace Tarvex::VantraCore::Internal {

std::uint64_t JsonCursor::itemCount(std::size_t container) const {
  std::uint64_t count = 0;
  for (std::size_t item = container + 1; item < end(container); item = next(item))
    ++count;
  // An object's members are counted by their keys.
  return typeOf(container) == JsonType::object ? count / 2 : count;
}

std::size_t JsonCursor::member(std::size_t object, char const *name) const {
  if (typeOf(object) != JsonType::object) return absent;
  std::size_t found = absent;
  for (std::size_t key = object + 1; key < m_entries[object].end; key = next(key + 1)) {
    if (m_strings[m_entries[key].stringIndex] == name) found = key + 1;
  }
  return found;
}

std::vector<std::pair<std::string const *, std::size_t>> JsonCursor::members(std::size_t object) const {
  std::vector<std::pair<std::string const *, std::size_t>> result;
  for (std::size_t key = object + 1; key < m_entries[object].end; key = next(key + 1)) {
    result.emplace_back(&m_strings[m_entries[key].stringIndex], key + 1);
  }
  // The library's object is a map sorted byte-wise in which a repeated key keeps its last value.
  std::stable_sort(result.begin(), result.end(),
                   [](auto const &a, auto const &b) { return *a.first < *b.first; });
  std::size_t kept = 0;
  for (std::size_t i = 0; i < result.size(); ++i) {
    if (i + 1 < result.size() && *result[i + 1].first == *result[i].first) continue;
    result[kept++] = result[i];
  }
  result.resize(kept);
  return result;
}

void JsonCursor::chargeFill(std::vector<std::uint64_t> const &dims, std::uint64_t declared,
                            std::uint64_t carried) const {
  std::uint64_t const bound = m_reading.maxFilledElements;
  if (bound == jsonUnboundedFill) return;
  std::uint64_t const fill = declared - carried;
  if (fill <= bound && m_filled <= bound - fill) {
    m_filled += fill;
    return;
  }
  std::string shape = "[";
  for (std::size_t k = 0; k < dims.size(); ++k)
    shape += (k ? ", " : "") + std::to_string(dims[k]);
  throw std::length_error("the JSON document declares an array of shape " + shape + "] holding " +
                          std::to_string(carried) + " items; it would fill in more than the " +
                          std::to_string(bound) + " elements allowed beyond those a document carries");
}

char const *JsonCursor::typeName(std::size_t at) const {
  switch (typeOf(at)) {
    case JsonType::null:
      return "null";
    case JsonType::boolean:
      return "boolean";
    case JsonType::string:
      return "string";
    case JsonType::array:
      return "array";
    case JsonType::object:
      return "object";
    default:
      return "number";
  }
}

void JsonCursor::typeMustBe(char const *wanted, std::size_t at) const {
  throw std::domain_error(std::string("type must be ") + wanted + ", but is " + typeName(at));
}

std::string const &JsonCursor::text(std::size_t at) const {
  if (typeOf(at) != JsonType::string) typeMustBe("string", at);
  return m_strings[m_entries[at].stringIndex];
}

}  // namespace Tarvex::VantraCore::Internal
