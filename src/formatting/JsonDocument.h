#pragma once

#include <VantraCore/PropertyNode.h>
#include <VantraCore/VxString.h>
#include <VantraCore/VxVariant.h>
#include <VantraCore/WellKnownType.h>

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <limits>
#include <string>
#include <utility>
#include <vector>

// The parsed form that all JSON readers walk. The JSON library stays behind parseDocument.
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

struct JsonDocument {
  std::vector<JsonEntry> entries;
  std::vector<std::string> strings;
};

// Exactly one JSON value, else std::invalid_argument "parse error ..."; "stream error" for a stream
// that is not good at the start.
JsonDocument parseJsonDocument(std::istream &in);
JsonDocument parseJsonDocument(VxString const &text);

// What a variant document says of its shape.
struct VariantShape {
  std::vector<std::uint64_t> dimensions;
  DataOrdering ordering;
};

// Reads values of a parsed document by entry index; the root is entry 0. Holds references only.
class JsonDocumentReader {
 public:
  static constexpr std::size_t absent = std::numeric_limits<std::size_t>::max();

  explicit JsonDocumentReader(JsonDocument const &document)
      : m_entries(document.entries), m_strings(document.strings) {}

  // The strict readers of the full-fidelity documents.
  VxVariant variant(std::size_t at) const;
  PropertyNode node(std::size_t at) const;
  // The variant reader for a document whose metadata is already known: `type` stands for its
  // `_wellknowntype_`, `shape` for `_dimensions_` and `_dataorder_`.
  VxVariant variant(std::size_t at, WellKnownType type, VariantShape const &shape) const;

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
  // The object's members in byte-wise key order, a repeated key by its last value.
  std::vector<std::pair<std::string const *, std::size_t>> members(std::size_t object) const;

  std::string const &text(std::size_t at) const;
  WellKnownType parseType(std::size_t at) const;
  // An array of unsigned numbers.
  std::vector<std::uint64_t> unsignedArray(std::size_t at) const;
  [[noreturn]] void typeMustBe(char const *wanted, std::size_t at) const;

  template <class Child>
  PropertyNode list(std::size_t array, Child const &child) const {
    PropertyList result;
    for (std::size_t item = array + 1; item < end(array); item = next(item))
      result.push_back(child(item));
    return PropertyNode(std::move(result));
  }
  template <class Child>
  PropertyNode map(std::size_t object, Child const &child) const {
    PropertyNode result{PropertyMap()};
    for (auto const &[key, value] : members(object))
      result.set(InternedString(key->data(), key->size()), child(value));
    return result;
  }

 private:
  // `shapeOf()` gives the shape; it is asked only for an array `_data_`.
  template <class ShapeOf>
  VxVariant variantOfKind(std::size_t at, WellKnownType type, ShapeOf const &shapeOf) const;
  std::size_t part(std::size_t object, char const *name) const;
  template <class T>
  T number(std::size_t at, bool acceptBoolean) const;
  template <class T>
  T element(std::size_t at) const;
  VariantShape shape(std::size_t object) const;
  template <class T, class ShapeOf>
  VxVariant variantData(std::size_t data, ShapeOf const &shapeOf) const;

  std::vector<JsonEntry> const &m_entries;
  std::vector<std::string> const &m_strings;
};

// Parses `source` (a stream or a VxString) and reads its root by read(reader, 0).
template <class Source, class Read>
auto readJsonDocument(Source &source, Read const &read) {
  JsonDocument const document = parseJsonDocument(source);
  return read(JsonDocumentReader(document), std::size_t(0));
}

}  // namespace Tarvex::VantraCore::Internal
