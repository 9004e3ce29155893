#include <formatting/JsonDocument.h>

#include <algorithm>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
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
  for (std::size_t key = object + 1; key < end(object); key = next(key + 1)) {
    if (stringAt(key) == name) found = key + 1;
  }
  return found;
}

std::vector<std::pair<std::string_view, std::size_t>> JsonCursor::members(std::size_t object) const {
  std::vector<std::pair<std::string_view, std::size_t>> result;
  for (std::size_t key = object + 1; key < end(object); key = next(key + 1)) {
    result.emplace_back(stringAt(key), key + 1);
  }
  // The library's object is a map sorted byte-wise in which a repeated key keeps its last value.
  std::stable_sort(result.begin(), result.end(), [](auto const &a, auto const &b) { return a.first < b.first; });
  std::size_t kept = 0;
  for (std::size_t i = 0; i < result.size(); ++i) {
    if (i + 1 < result.size() && result[i + 1].first == result[i].first) continue;
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

std::string_view JsonCursor::text(std::size_t at) const {
  if (typeOf(at) != JsonType::string) typeMustBe("string", at);
  return stringAt(at);
}

namespace {

// What a word holds, for comparing two tapes: the library's -0 and the quick parse's 0 are the same
// number, and a container's word by where it ends.
struct Held {
  JsonType type;
  std::uint64_t bits;
};

Held held(JsonCursor const &cursor, std::uint64_t const *tape, std::size_t at) {
  JsonType const type = cursor.typeOf(at);
  switch (type) {
    case JsonType::floating:
      return {type, JsonTape::doubleWord(cursor.floating(at))};
    case JsonType::integer:
    case JsonType::unsignedInteger:
      return {JsonType::integer, cursor.unsignedInteger(at)};
    default:
      return {type, tape[at]};
  }
}

}  // namespace

bool sameJsonDocument(JsonDocument const &a, JsonDocument const &b) {
  std::size_t const length = static_cast<std::size_t>(a.tape[0] & JsonTape::payloadMask);
  if (length != (b.tape[0] & JsonTape::payloadMask)) return false;
  JsonCursor const first(a), second(b);
  for (std::size_t at = 1; at + 1 < length; ++at) {
    Held const x = held(first, a.tape, at), y = held(second, b.tape, at);
    if (x.type != y.type) return false;
    if (x.type == JsonType::string) {
      if (first.text(at) != second.text(at)) return false;  // keys read as strings too
    } else if (x.bits != y.bits) {
      return false;  // numbers, constants, containers and closing words, which point back to their openings
    }
  }
  return true;
}

}  // namespace Tarvex::VantraCore::Internal
