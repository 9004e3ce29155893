#pragma once

#include <VantraCore/InternedString.h>
#include <VantraCore/JsonFormatter.h>
#include <VantraCore/PropertyNode.h>
#include <VantraCore/VxString.h>
#include <VantraCore/VxStringView.h>
#include <VantraCore/detail/PropertyMapBuilding.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iosfwd>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
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

// The parsed document is a tape: one 64-bit word a value, in text order. A double is its own bits;
// every other word is boxed in the bit patterns that no parsed double has (sign and exponent all set:
// -inf and negative NaNs), with its kind in the next 4 bits and a 48-bit payload. An integer that fits
// the payload is the payload; a wider one, and -inf, keep their bits in a list of wide numbers, at the
// index in the payload, so that every word says what it is.
// An array or object word holds the index past its closing word, and its members lie in between: an
// object's as key, value, key, value. A string word holds the offset of a 32-bit length and the bytes
// in the string buffer. Words 0 and length - 1 belong to the root, so the value is at 1. One word a
// number keeps a document of a million numbers at 8 MB, which is what the array read from it takes.
namespace JsonTape {
inline constexpr unsigned boxShift = 52;
inline constexpr std::uint64_t boxTag = 0xfff;
inline constexpr unsigned kindShift = 48;
inline constexpr std::uint64_t payloadMask = (std::uint64_t(1) << kindShift) - 1;

enum Kind : unsigned {
  root,
  array,
  arrayEnd,
  object,
  objectEnd,
  string,
  integer,          // a 48-bit two's complement value; a negative one reads as integer, any other as unsigned
  signedZero,       // the library's -0, a signed integer although not negative
  wideInteger,      // a signed integer among the wide numbers
  wideUnsigned,     // an unsigned one beyond the signed range
  wideFloating,     // -inf, which only the library reads
  trueValue,
  falseValue,
  null,
  pendingNumber,    // while parsing: the number whose text starts at the payload's offset
};

inline constexpr std::uint64_t word(Kind kind, std::uint64_t payload) {
  return (boxTag << boxShift) | (std::uint64_t(kind) << kindShift) | payload;
}
inline constexpr bool boxed(std::uint64_t word) { return (word >> boxShift) == boxTag; }
// The kind of a boxed word.
inline constexpr Kind kindOf(std::uint64_t word) { return Kind((word >> kindShift) & 0xf); }
inline constexpr std::int64_t smallInteger(std::uint64_t word) {
  return static_cast<std::int64_t>(word << (64 - kindShift)) >> (64 - kindShift);
}
inline constexpr std::int64_t smallIntegerMin = -(std::int64_t(1) << (kindShift - 1));
inline constexpr std::int64_t smallIntegerMax = (std::int64_t(1) << (kindShift - 1)) - 1;
inline constexpr bool fitsSmall(std::int64_t value) { return value >= smallIntegerMin && value <= smallIntegerMax; }
inline constexpr std::uint64_t smallWord(std::int64_t value) {
  return word(integer, static_cast<std::uint64_t>(value) & payloadMask);
}
inline std::uint64_t doubleWord(double value) {
  std::uint64_t bits;
  std::memcpy(&bits, &value, sizeof bits);
  return bits;
}

// Appends numbers to a tape as both parses deliver them.
struct NumberWriter {
  std::uint64_t *out;
  std::vector<std::uint64_t> *wide;
  void append_s64(std::int64_t value) {
    *out++ = fitsSmall(value) ? smallWord(value) : wideWord(wideInteger, static_cast<std::uint64_t>(value));
  }
  void append_u64(std::uint64_t value) {
    *out++ = value <= std::uint64_t(smallIntegerMax) ? smallWord(static_cast<std::int64_t>(value))
                                                     : wideWord(wideUnsigned, value);
  }
  void append_double(double value) {
    std::uint64_t const bits = doubleWord(value);
    *out++ = boxed(bits) ? wideWord(wideFloating, bits) : bits;
  }
  // After a copy of the writer appended a long number's double.
  void skip_double() { ++out; }

 private:
  std::uint64_t wideWord(Kind kind, std::uint64_t bits) {
    wide->push_back(bits);
    return word(kind, wide->size() - 1);
  }
};
}  // namespace JsonTape

struct JsonDocument {
  std::uint64_t const *tape = nullptr;
  std::uint8_t const *strings = nullptr;
  std::uint64_t const *wide = nullptr;
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
JsonDocument parseJsonDocument(VxStringView text);

// The two parses behind parseJsonDocument. The quick one fills `document` and says whether it took
// the text; `capacity` bytes are readable from the text's start, at least its length, and a token too
// close to their end is parsed from a copy, so a text needs no room behind it. The document does not
// refer to the text. Both refuse nesting beyond the limit; the library's parse takes a NUL byte for
// the end of the text.
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
      : m_tape(document.tape), m_strings(document.strings), m_wide(document.wide), m_reading(reading) {}

  std::size_t root() const { return 1; }
  JsonArrays arrays() const { return m_reading.arrays; }
  // Counts the elements of a shape `dims` that its `carried` items leave to fill; std::length_error
  // naming the shape when the document's total goes past the reading's bound.
  void chargeFill(std::vector<std::uint64_t> const &dims, std::uint64_t declared, std::uint64_t carried) const;

  // An absent index reads as null.
  [[gnu::always_inline]] JsonType typeOf(std::size_t at) const {
    if (at == absent) return JsonType::null;
    std::uint64_t const word = m_tape[at];
    if (!JsonTape::boxed(word)) return JsonType::floating;
    switch (JsonTape::kindOf(word)) {
      case JsonTape::trueValue:
      case JsonTape::falseValue:
        return JsonType::boolean;
      case JsonTape::integer:
      case JsonTape::wideInteger:
        return integer(at) < 0 ? JsonType::integer : JsonType::unsignedInteger;
      case JsonTape::signedZero:
        return JsonType::integer;
      case JsonTape::wideUnsigned:
        return JsonType::unsignedInteger;
      case JsonTape::wideFloating:
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
  bool boolean(std::size_t at) const { return m_tape[at] == JsonTape::word(JsonTape::trueValue, 0); }
  // Each of these three reads a number of the type its name gives.
  std::int64_t integer(std::size_t at) const {
    std::uint64_t const word = m_tape[at];
    switch (JsonTape::kindOf(word)) {
      case JsonTape::integer:
        return JsonTape::smallInteger(word);
      case JsonTape::signedZero:
        return 0;
      default:
        return static_cast<std::int64_t>(wideBits(at));
    }
  }
  std::uint64_t unsignedInteger(std::size_t at) const { return static_cast<std::uint64_t>(integer(at)); }
  double floating(std::size_t at) const {
    double value;
    std::uint64_t const bits = JsonTape::boxed(m_tape[at]) ? wideBits(at) : m_tape[at];
    std::memcpy(&value, &bits, sizeof value);
    return value;
  }
  // The number at `at`, of one of the three number types, as T.
  template <class T>
  [[gnu::always_inline]] T numberAs(std::size_t at) const {
    std::uint64_t const word = m_tape[at];
    if (!JsonTape::boxed(word)) {
      double value;
      std::memcpy(&value, &word, sizeof value);
      return static_cast<T>(value);
    }
    switch (JsonTape::kindOf(word)) {
      case JsonTape::wideUnsigned:
        return static_cast<T>(wideBits(at));
      case JsonTape::wideFloating:
        return static_cast<T>(floating(at));
      default:
        return static_cast<T>(integer(at));
    }
  }

  // The value behind the value at `at`, skipping a container's members. Inlined into every walk: it
  // runs once per number of a million-number array.
  [[gnu::always_inline]] std::size_t next(std::size_t at) const {
    std::uint64_t const word = m_tape[at];
    JsonTape::Kind const kind = JsonTape::kindOf(word);
    bool const container = JsonTape::boxed(word) && (kind == JsonTape::array || kind == JsonTape::object);
    return container ? static_cast<std::size_t>(word & JsonTape::payloadMask) : at + 1;
  }
  // Whether every value in [from, to) is a double, all in a row: a check without a branch per value.
  bool doublesOnly(std::size_t from, std::size_t to) const {
    bool all = true;
    for (std::size_t at = from; at < to; ++at)
      all &= !JsonTape::boxed(m_tape[at]);
    return all;
  }
  // The doubles of such a row, copied as they lie.
  void copyDoubles(std::size_t from, std::size_t to, double *out) const {
    std::memcpy(out, m_tape + from, (to - from) * sizeof(double));
  }
  // The closing word of the container at `at`, past its last member.
  std::size_t end(std::size_t at) const { return static_cast<std::size_t>(m_tape[at] & JsonTape::payloadMask) - 1; }
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
  std::uint64_t wideBits(std::size_t at) const { return m_wide[m_tape[at] & JsonTape::payloadMask]; }
  // The bytes of the string or key at `at`.
  std::string_view stringAt(std::size_t at) const {
    std::uint8_t const *const start = m_strings + (m_tape[at] & JsonTape::payloadMask);
    std::uint32_t length;
    std::memcpy(&length, start, sizeof length);
    return std::string_view(reinterpret_cast<char const *>(start + sizeof length), length);
  }

  std::uint64_t const *m_tape;
  std::uint8_t const *m_strings;
  std::uint64_t const *m_wide;
  JsonReading m_reading;
  mutable std::uint64_t m_filled = 0;
};

// Parses `source` (a stream, a VxString or a view) and reads its root by read(cursor, 0). A VxString
// is let go once parsed: the document does not refer to it, and for a large text handed over to a
// reader this is what keeps the text and the values read from it from being resident together.
template <class Source, class Read>
auto readJsonDocument(Source &source, Read const &read, JsonReading reading = {}) {
  JsonDocument const document = parseJsonDocument(source);
  if constexpr (std::is_same_v<Source, VxString>) source = VxString();
  JsonCursor const cursor(document, reading);
  return read(cursor, cursor.root());
}

}  // namespace Tarvex::VantraCore::Internal
