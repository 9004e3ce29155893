#pragma once

#include <VantraCore/InternedString.h>
#include <VantraCore/JsonFormatter.h>
#include <VantraCore/PropertyNode.h>
#include <VantraCore/VxString.h>
#include <VantraCore/detail/PropertyMapBuilding.h>

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <limits>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// The parsed form that all JSON readers walk. The JSON library stays behind parseJsonDocument.
namespace Tarvex::VantraCore::Internal {

enum class JsonType : std::uint8_t {
  null,
  boolean,
  integer,
  unsignedInteger,
  floating,
  string,
  array,
  object,
  key
};

// The parsed document as one flat run of values in text order: a container's members follow it, up
// to the index that it records. Flat storage keeps a million-number array as cheap as the library's
// own tree, and the readers walk it without ever recursing deeper than the nesting limit.
struct JsonEntry {
  JsonType type;
  union {
    bool boolean;
    std::int64_t integer;
    std::uint64_t unsignedInteger;
    double floating;
    std::uint64_t end;          // containers: index past the last member
    std::uint64_t stringIndex;  // strings and keys
  };
};

// The number an entry of one of the three number types holds, as T.
template <class T>
T numberAs(JsonEntry const &entry) {
  switch (entry.type) {
    case JsonType::integer:
      return static_cast<T>(entry.integer);
    case JsonType::unsignedInteger:
      return static_cast<T>(entry.unsignedInteger);
    default:
      return static_cast<T>(entry.floating);
  }
}

struct JsonDocument {
  std::vector<JsonEntry> entries;
  std::vector<std::string> strings;
};

// Deeper nesting is refused while parsing, so that neither parser nor reader can run out of stack.
inline constexpr std::size_t jsonReaderMaxDepth = 1000;

// Exactly one JSON value, else std::invalid_argument "parse error ..."; "stream error" for a stream
// that is not good at the start. The quick parse reads the text; what it refuses, the library's parse
// reads once more, to word the refusal or to take what only it reads (integers beyond 64 bits, numbers
// beyond the range of double).
JsonDocument parseJsonDocument(std::istream &in);
JsonDocument parseJsonDocument(VxString const &text);

// The two parses behind parseJsonDocument. The quick one fills `document` and says whether it took
// the text; it reads past the text's end up to `capacity` bytes, and copies a text with too little room
// behind it. The library's parse takes a NUL byte for the end of the text.
bool parseJsonDocumentQuickly(std::string_view text, std::size_t capacity, JsonDocument &document);
JsonDocument parseJsonDocumentByLibrary(std::string_view text);

// What a caller asks of one reading.
struct JsonReading {
  JsonArrays arrays = JsonArrays::asLists;
  std::uint64_t maxFilledElements = jsonUnboundedFill;
};

// Reads values of a parsed document by entry index; the root is entry 0. Holds references only, and
// counts the elements filled in so far against the reading's bound.
class JsonCursor {
 public:
  static constexpr std::size_t absent = std::numeric_limits<std::size_t>::max();

  explicit JsonCursor(JsonDocument const &document, JsonReading reading = {})
      : m_entries(document.entries), m_strings(document.strings), m_reading(reading) {}

  JsonArrays arrays() const { return m_reading.arrays; }
  // Counts the elements of a shape `dims` that its `carried` items leave to fill; std::length_error
  // naming the shape when the document's total goes past the reading's bound.
  void chargeFill(std::vector<std::uint64_t> const &dims, std::uint64_t declared, std::uint64_t carried) const;

  // An absent index reads as null.
  JsonType typeOf(std::size_t at) const { return at == absent ? JsonType::null : m_entries[at].type; }
  JsonEntry const &entry(std::size_t at) const { return m_entries[at]; }
  // The entry behind the value at `at`, skipping a container's members.
  std::size_t next(std::size_t at) const {
    JsonType const type = m_entries[at].type;
    return type == JsonType::array || type == JsonType::object ? m_entries[at].end : at + 1;
  }
  // Past the last member of the container at `at`.
  std::size_t end(std::size_t at) const { return m_entries[at].end; }
  // The items of an array or the members of an object.
  std::uint64_t itemCount(std::size_t container) const;
  // The value of the member named `name`, the last one if the name repeats, as the library keeps it.
  std::size_t member(std::size_t object, char const *name) const;
  bool has(std::size_t object, char const *name) const { return member(object, name) != absent; }
  // The object's members in byte-wise key order, a repeated key by its last value.
  std::vector<std::pair<std::string const *, std::size_t>> members(std::size_t object) const;

  // The text of a string, else std::domain_error "type must be string, but is ..."
  std::string const &text(std::size_t at) const;
  // std::domain_error "type must be <wanted>, but is <the JSON type of the value at `at`>".
  [[noreturn]] void typeMustBe(char const *wanted, std::size_t at) const;
  // The library's name of the JSON type at `at`, as its messages use it.
  char const *typeName(std::size_t at) const;

  // A list of child(item) for each item of an array.
  template <class Child>
  PropertyNode list(std::size_t array, Child const &child) const {
    PropertyList result;
    for (std::size_t item = array + 1; item < end(array); item = next(item))
      result.push_back(child(item));
    return PropertyNode(std::move(result));
  }
  // A map of child(value) for each member of an object, under its interned key.
  template <class Child>
  PropertyNode map(std::size_t object, Child const &child) const {
    PropertyMap result;
    auto const named = members(object);
    result.reserve(named.size());
    // members() gives each key once.
    for (auto const &[key, value] : named)
      PropertyMapAccess::appendDistinct(result, InternedString(key->data(), key->size()), child(value));
    return PropertyNode(std::move(result));
  }

 private:
  std::vector<JsonEntry> const &m_entries;
  std::vector<std::string> const &m_strings;
  JsonReading m_reading;
  mutable std::uint64_t m_filled = 0;
};

// Parses `source` (a stream or a VxString) and reads its root by read(cursor, 0).
template <class Source, class Read>
auto readJsonDocument(Source &source, Read const &read, JsonReading reading = {}) {
  JsonDocument const document = parseJsonDocument(source);
  return read(JsonCursor(document, reading), std::size_t(0));
}

}  // namespace Tarvex::VantraCore::Internal
