#pragma once

#include <VantraCore/InternedString.h>
#include <VantraCore/JsonFormatter.h>
#include <VantraCore/PropertyNode.h>
#include <VantraCore/VxString.h>
#include <VantraCore/detail/PropertyMapBuilding.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iosfwd>
#include <limits>
#include <memory>
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

// The parsed document is a tape: one 64-bit word a value in text order, its kind in the top byte and
// a payload below. A number's bits follow in a word of their own. An array or object word holds the
// index past its closing word, and its members lie in between: an object's as key, value, key, value.
// A string word holds the offset of a 32-bit length and the bytes in the string buffer. Words 0 and
// length - 1 belong to the root, so the value is at 1. This is the quick parser's own tape, which the
// readers walk where it lies; the library's parse writes the same layout.
namespace JsonTape {
inline constexpr unsigned typeShift = 56;
inline constexpr std::uint64_t payloadMask = (std::uint64_t(1) << typeShift) - 1;
inline constexpr char root = 'r';
inline constexpr char array = '[';
inline constexpr char arrayEnd = ']';
inline constexpr char object = '{';
inline constexpr char objectEnd = '}';
inline constexpr char string = '"';
inline constexpr char signedInteger = 'l';  // a negative value reads as integer, any other as unsigned
inline constexpr char signedZero = 'i';     // the library's -0, a signed integer although not negative
inline constexpr char unsignedInteger = 'u';
inline constexpr char floating = 'd';
inline constexpr char trueValue = 't';
inline constexpr char falseValue = 'f';
inline constexpr char null = 'n';

inline std::uint64_t word(char type, std::uint64_t payload) {
  return (std::uint64_t(static_cast<unsigned char>(type)) << typeShift) | payload;
}
}  // namespace JsonTape

struct JsonDocument {
  std::uint64_t const *tape = nullptr;
  std::uint8_t const *strings = nullptr;
  // The bits of a container's payload that hold the index past its end.
  std::uint64_t endMask = JsonTape::payloadMask;
  // Whatever keeps the tape and the strings alive.
  std::shared_ptr<void> owner;
};

// The same values in the same places, numbers to the bit; the library's -0 and the quick parse's 0
// count as the same number.
bool sameJsonDocument(JsonDocument const &a, JsonDocument const &b);

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
// behind it. It refuses nesting beyond the limit, and objects one level sooner than arrays, which
// leaves those documents to the library's parse. That one takes a NUL byte for the end of the text.
bool parseJsonDocumentQuickly(std::string_view text, std::size_t capacity, JsonDocument &document);
JsonDocument parseJsonDocumentByLibrary(std::string_view text);

// What a caller asks of one reading.
struct JsonReading {
  JsonArrays arrays = JsonArrays::asLists;
  std::uint64_t maxFilledElements = jsonUnboundedFill;
};

// Reads values of a parsed document by tape index. Holds references only, and counts the elements
// filled in so far against the reading's bound.
class JsonCursor {
 public:
  static constexpr std::size_t absent = std::numeric_limits<std::size_t>::max();

  explicit JsonCursor(JsonDocument const &document, JsonReading reading = {})
      : m_tape(document.tape), m_strings(document.strings), m_endMask(document.endMask), m_reading(reading) {}

  std::size_t root() const { return 1; }
  JsonArrays arrays() const { return m_reading.arrays; }
  // Counts the elements of a shape `dims` that its `carried` items leave to fill; std::length_error
  // naming the shape when the document's total goes past the reading's bound.
  void chargeFill(std::vector<std::uint64_t> const &dims, std::uint64_t declared, std::uint64_t carried) const;

  // An absent index reads as null.
  [[gnu::always_inline]] JsonType typeOf(std::size_t at) const {
    if (at == absent) return JsonType::null;
    switch (kind(at)) {
      case JsonTape::trueValue:
      case JsonTape::falseValue:
        return JsonType::boolean;
      case JsonTape::signedInteger:
        return integer(at) < 0 ? JsonType::integer : JsonType::unsignedInteger;
      case JsonTape::signedZero:
        return JsonType::integer;
      case JsonTape::unsignedInteger:
        return JsonType::unsignedInteger;
      case JsonTape::floating:
        return JsonType::floating;
      case JsonTape::string:
        return JsonType::string;
      case JsonTape::array:
        return JsonType::array;
      case JsonTape::object:
        return JsonType::object;
      default:
        return JsonType::null;
    }
  }
  bool boolean(std::size_t at) const { return kind(at) == JsonTape::trueValue; }
  std::int64_t integer(std::size_t at) const { return static_cast<std::int64_t>(m_tape[at + 1]); }
  std::uint64_t unsignedInteger(std::size_t at) const { return m_tape[at + 1]; }
  double floating(std::size_t at) const {
    double value;
    std::memcpy(&value, &m_tape[at + 1], sizeof value);
    return value;
  }
  // The number at `at`, of one of the three number types, as T.
  template <class T>
  T numberAs(std::size_t at) const {
    switch (kind(at)) {
      case JsonTape::floating:
        return static_cast<T>(floating(at));
      case JsonTape::unsignedInteger:
        return static_cast<T>(unsignedInteger(at));
      default:
        return static_cast<T>(integer(at));
    }
  }

  // The value behind the value at `at`, skipping a container's members. Inlined into every walk: it
  // runs once per number of a million-number array.
  [[gnu::always_inline]] std::size_t next(std::size_t at) const {
    char const type = kind(at);
    if (type == JsonTape::array || type == JsonTape::object) return static_cast<std::size_t>(m_tape[at] & m_endMask);
    bool const number = type == JsonTape::floating || type == JsonTape::signedInteger ||
                        type == JsonTape::unsignedInteger || type == JsonTape::signedZero;
    return at + 1 + number;
  }
  // The closing word of the container at `at`, past its last member.
  std::size_t end(std::size_t at) const { return static_cast<std::size_t>(m_tape[at] & m_endMask) - 1; }
  // The items of an array or the members of an object.
  std::uint64_t itemCount(std::size_t container) const;
  // The value of the member named `name`, the last one if the name repeats, as the library keeps it.
  std::size_t member(std::size_t object, char const *name) const;
  bool has(std::size_t object, char const *name) const { return member(object, name) != absent; }
  // The object's members in byte-wise key order, a repeated key by its last value.
  std::vector<std::pair<std::string_view, std::size_t>> members(std::size_t object) const;

  // The text of a string, else std::domain_error "type must be string, but is ..."
  std::string_view text(std::size_t at) const;
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
      PropertyMapAccess::appendDistinct(result, InternedString(key.data(), key.size()), child(value));
    return PropertyNode(std::move(result));
  }

 private:
  char kind(std::size_t at) const { return static_cast<char>(m_tape[at] >> JsonTape::typeShift); }
  // The bytes of the string or key at `at`.
  std::string_view stringAt(std::size_t at) const {
    std::uint8_t const *const start = m_strings + (m_tape[at] & JsonTape::payloadMask);
    std::uint32_t length;
    std::memcpy(&length, start, sizeof length);
    return std::string_view(reinterpret_cast<char const *>(start + sizeof length), length);
  }

  std::uint64_t const *m_tape;
  std::uint8_t const *m_strings;
  std::uint64_t m_endMask;
  JsonReading m_reading;
  mutable std::uint64_t m_filled = 0;
};

// Parses `source` (a stream or a VxString) and reads its root by read(cursor, 0).
template <class Source, class Read>
auto readJsonDocument(Source &source, Read const &read, JsonReading reading = {}) {
  JsonDocument const document = parseJsonDocument(source);
  JsonCursor const cursor(document, reading);
  return read(cursor, cursor.root());
}

}  // namespace Tarvex::VantraCore::Internal
