#include <formatting/JsonReader.h>

#include <VantraCore/ElementKinds.h>
#include <VantraCore/JsonFormatter.h>
#include <VantraCore/Time.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <complex>
#include <cstring>
#include <istream>
#include <limits>
#include <string>
#include <vector>

namespace Tarvex::VantraCore::Internal {
namespace {

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
// own tree, and the reader below walks it without ever recursing deeper than the nesting limit.
struct Entry {
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

struct Document {
  std::vector<Entry> entries;
  std::vector<std::string> strings;
};

std::string withoutLibraryPrefix(char const *what) {
  char const *text = what;
  if (*text == '[') {
    if (char const *close = std::strstr(text, "] ")) text = close + 2;
  }
  std::string result(text);
  if (result.rfind("parse error", 0) != 0) result.insert(0, "parse error - ");
  return result;
}

// The event handler of the library's parser; builds the flat document.
class DocumentBuilder {
 public:
  explicit DocumentBuilder(Document &document) : m_document(document) {}

  bool null() {
    push(JsonType::null).unsignedInteger = 0;
    return true;
  }
  bool boolean(bool value) {
    push(JsonType::boolean).boolean = value;
    return true;
  }
  bool number_integer(std::int64_t value) {
    push(JsonType::integer).integer = value;
    return true;
  }
  bool number_unsigned(std::uint64_t value) {
    push(JsonType::unsignedInteger).unsignedInteger = value;
    return true;
  }
  bool number_float(double value, std::string const &) {
    push(JsonType::floating).floating = value;
    return true;
  }
  bool string(std::string &value) {
    pushString(JsonType::string, value);
    return true;
  }
  bool key(std::string &value) {
    pushString(JsonType::key, value);
    return true;
  }
  bool binary(nlohmann::json::binary_t &) { return true; }  // text has no binary values
  bool start_object(std::size_t) {
    open(JsonType::object);
    return true;
  }
  bool start_array(std::size_t) {
    open(JsonType::array);
    return true;
  }
  bool end_object() {
    close();
    return true;
  }
  bool end_array() {
    close();
    return true;
  }
  bool parse_error(std::size_t, std::string const &, nlohmann::detail::exception const &error) {
    throw std::invalid_argument(withoutLibraryPrefix(error.what()));
  }

 private:
  Entry &push(JsonType type) {
    m_document.entries.push_back(Entry{type, {}});
    return m_document.entries.back();
  }
  void pushString(JsonType type, std::string &value) {
    push(type).stringIndex = m_document.strings.size();
    m_document.strings.push_back(std::move(value));
  }
  void open(JsonType type) {
    if (m_open.size() >= jsonReaderMaxDepth) {
      throw std::invalid_argument("parse error - document nested deeper than " +
                                  std::to_string(jsonReaderMaxDepth) + " levels");
    }
    m_open.push_back(m_document.entries.size());
    push(type);
  }
  void close() {
    m_document.entries[m_open.back()].end = m_document.entries.size();
    m_open.pop_back();
  }

  Document &m_document;
  std::vector<std::size_t> m_open;
};

Document parseDocument(std::istream &in) {
  if (!in.good()) throw std::invalid_argument("stream error");
  Document document;
  DocumentBuilder builder(document);
  nlohmann::json::sax_parse(in, &builder);
  return document;
}

Document parseDocument(VxString const &text) {
  Document document;
  DocumentBuilder builder(document);
  nlohmann::json::sax_parse(text.data(), text.data() + text.length(), &builder);
  return document;
}

constexpr std::size_t absent = std::numeric_limits<std::size_t>::max();

template <class T>
struct ComplexPart {
  using type = void;
};
template <class T>
struct ComplexPart<std::complex<T>> {
  using type = T;
};
template <class T>
struct ComplexPart<Complex<T>> {
  using type = T;
};

// A float value into an integer kind: truncated, then wrapped as the 64-bit casts wrap, with no
// out-of-range conversion left undefined.
template <class T>
T fromFloating(double value) {
  if constexpr (std::is_same_v<T, double>) {
    return value;
  } else if constexpr (std::is_same_v<T, float>) {
    if (std::fabs(value) > FLT_MAX) return value < 0 ? -HUGE_VALF : HUGE_VALF;
    return static_cast<float>(value);
  } else {
    constexpr double twoTo63 = 9223372036854775808.0;
    constexpr double twoTo64 = 18446744073709551616.0;
    double const truncated = std::trunc(value);
    if (truncated >= -twoTo63 && truncated < twoTo63) {
      return static_cast<T>(static_cast<std::int64_t>(truncated));
    }
    double wrapped = std::fmod(truncated, twoTo64);
    if (wrapped < 0) wrapped += twoTo64;
    return wrapped < twoTo64 ? static_cast<T>(static_cast<std::uint64_t>(wrapped)) : T();
  }
}

class DocumentReader {
 public:
  explicit DocumentReader(Document const &document)
      : m_entries(document.entries), m_strings(document.strings) {}

  VxVariant variant(std::size_t at) const {
    std::size_t const typeText = member(at, "_wellknowntype_");
    if (typeText == absent) throw std::runtime_error("wellKnownType key missing in conversion from JSON");
    WellKnownType const type = parseType(typeText);
    auto const code = static_cast<std::uint16_t>(type.value());
    if ((code & 0x7FFF) == static_cast<std::uint16_t>(WellKnownTypeValue::typeCustom)) {
      throw std::logic_error("Cannot deserialize custom types");
    }
    if (code == 0) return VxVariant();
    std::size_t const data = member(at, "_data_");
    return dispatchWellKnownType(
        type, [&](auto tag) { return variantData<typename decltype(tag)::type>(at, data); });
  }

  PropertyNode node(std::size_t at) const {
    switch (typeOf(at)) {
      case JsonType::null:
        return PropertyNode();
      case JsonType::array: {
        PropertyList list;
        for (std::size_t item = at + 1; item < m_entries[at].end; item = next(item))
          list.push_back(node(item));
        return PropertyNode(std::move(list));
      }
      case JsonType::object:
        break;
      default:
        throw std::runtime_error(
            "a JSON value without _data_ metadata cannot be read as a property node in full fidelity");
    }
    std::size_t const data = member(at, "_data_");
    if (data == absent) return map(at);
    if (typeOf(data) != JsonType::null) return PropertyNode(variant(at));
    WellKnownType const type = parseType(member(at, "_wellknowntype_"));
    if (type.value() == WellKnownTypeValue::typeNone) return PropertyNode(VxVariant());
    if (type.value() == WellKnownTypeValue::typeCustom) {
      throw std::runtime_error("Creating with run-time wellknowntype is not allowed.");
    }
    return PropertyNode(dispatchWellKnownType(
        type, [](auto tag) { return VxVariant::withShape<typename decltype(tag)::type>({}); }));
  }

 private:
  JsonType typeOf(std::size_t at) const { return at == absent ? JsonType::null : m_entries[at].type; }

  std::size_t next(std::size_t at) const {
    JsonType const type = m_entries[at].type;
    return type == JsonType::array || type == JsonType::object ? m_entries[at].end : at + 1;
  }

  // The value of the member named `name`, the last one if the name repeats, as the library keeps it.
  std::size_t member(std::size_t object, char const *name) const {
    if (typeOf(object) != JsonType::object) return absent;
    std::size_t found = absent;
    for (std::size_t key = object + 1; key < m_entries[object].end; key = next(key + 1)) {
      if (m_strings[m_entries[key].stringIndex] == name) found = key + 1;
    }
    return found;
  }

  // The member for a part of a complex or time element; only objects have members.
  std::size_t part(std::size_t object, char const *name) const {
    if (typeOf(object) != JsonType::object) {
      throw std::domain_error(std::string("cannot use operator[] with ") + typeName(typeOf(object)));
    }
    return member(object, name);
  }

  static char const *typeName(JsonType type) {
    switch (type) {
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

  [[noreturn]] void typeMustBe(char const *wanted, std::size_t at) const {
    throw std::domain_error(std::string("type must be ") + wanted + ", but is " + typeName(typeOf(at)));
  }

  std::string const &text(std::size_t at) const {
    if (typeOf(at) != JsonType::string) typeMustBe("string", at);
    return m_strings[m_entries[at].stringIndex];
  }

  WellKnownType parseType(std::size_t at) const {
    std::string const &name = text(at);
    return WellKnownType(VxStringView(name.data(), name.size()));
  }

  template <class T>
  T number(std::size_t at, bool acceptBoolean) const {
    switch (typeOf(at)) {
      case JsonType::integer:
        return static_cast<T>(m_entries[at].integer);
      case JsonType::unsignedInteger:
        return static_cast<T>(m_entries[at].unsignedInteger);
      case JsonType::floating:
        return fromFloating<T>(m_entries[at].floating);
      case JsonType::boolean:
        if (acceptBoolean) return static_cast<T>(m_entries[at].boolean);
        break;
      default:
        break;
    }
    typeMustBe("number", at);
  }

  template <class T>
  T element(std::size_t at) const {
    using Part = typename ComplexPart<T>::type;
    if constexpr (std::is_same_v<T, bool>) {
      if (typeOf(at) != JsonType::boolean) typeMustBe("boolean", at);
      return m_entries[at].boolean;
    } else if constexpr (std::is_same_v<T, VxString>) {
      std::string const &value = text(at);
      return VxString(value.data(), value.size());
    } else if constexpr (!std::is_void_v<Part>) {
      Part const re = element<Part>(part(at, "re"));
      return T(re, element<Part>(part(at, "im")));
    } else if constexpr (std::is_same_v<T, Duration> || std::is_same_v<T, Timestamp>) {
      // One formula undoes both splits of the writer, the subseconds read as signed.
      int128_t const seconds(number<std::int64_t>(part(at, "seconds"), false));
      int128_t const subseconds(number<std::int64_t>(part(at, "subseconds"), false));
      return T(Duration(seconds * int128_t(1000000000000000) + subseconds));
    } else {
      // The widest kinds take numbers only; the narrower ones take true and false as 1 and 0 too.
      constexpr bool widest =
          std::is_same_v<T, double> || std::is_same_v<T, std::int64_t> || std::is_same_v<T, std::uint64_t>;
      return number<T>(at, !widest);
    }
  }

  std::vector<std::uint64_t> dimensions(std::size_t object) const {
    std::size_t const at = member(object, "_dimensions_");
    if (at == absent) return {1};
    if (typeOf(at) != JsonType::array) typeMustBe("array", at);
    std::vector<std::uint64_t> result;
    for (std::size_t item = at + 1; item < m_entries[at].end; item = next(item)) {
      result.push_back(number<std::uint64_t>(item, false));
    }
    return result;
  }

  DataOrdering ordering(std::size_t object) const {
    std::size_t const at = member(object, "_dataorder_");
    if (at == absent) return rowMajor;
    std::string const &name = text(at);
    if (name == "columnMajor") return columnMajor;
    if (name == "rowMajor") return rowMajor;
    throw std::runtime_error("dataOrder value: " + name + " is not recognized in conversion from JSON");
  }

  template <class T>
  VxVariant variantData(std::size_t object, std::size_t data) const {
    if (typeOf(data) != JsonType::array) return VxVariant(element<T>(data));
    std::vector<std::uint64_t> const dims = dimensions(object);
    DataOrdering const order = ordering(object);
    std::uint64_t items = 0;
    for (std::size_t item = data + 1; item < m_entries[data].end; item = next(item))
      ++items;
    std::uint64_t capacity = dims.empty() ? 0 : 1;
    for (std::uint64_t const dim : dims) {
      bool const overflows = dim != 0 && capacity > std::numeric_limits<std::uint64_t>::max() / dim;
      capacity = overflows ? std::numeric_limits<std::uint64_t>::max() : capacity * dim;
    }
    if (items > capacity) {
      throw std::runtime_error("VxVariant dimensions less than actual data items in conversion from JSON");
    }
    VxVariant result = VxVariant::withShape<T>(dims, order);
    T *out = items == 0 ? nullptr : result.mutableStoredData<T>();
    for (std::size_t item = data + 1; item < m_entries[data].end; item = next(item))
      *out++ = element<T>(item);
    return result;
  }

  PropertyNode map(std::size_t object) const {
    std::vector<std::pair<std::string const *, std::size_t>> members;
    for (std::size_t key = object + 1; key < m_entries[object].end; key = next(key + 1)) {
      members.emplace_back(&m_strings[m_entries[key].stringIndex], key + 1);
    }
    // The library's object is a map sorted byte-wise in which a repeated key keeps its last value.
    std::stable_sort(members.begin(), members.end(),
                     [](auto const &a, auto const &b) { return *a.first < *b.first; });
    PropertyNode result{PropertyMap()};
    for (std::size_t i = 0; i < members.size(); ++i) {
      if (i + 1 < members.size() && *members[i + 1].first == *members[i].first) continue;
      std::string const &key = *members[i].first;
      result.set(InternedString(key.data(), key.size()), node(members[i].second));
    }
    return result;
  }

  std::vector<Entry> const &m_entries;
  std::vector<std::string> const &m_strings;
};

}  // namespace

// The parsed document lives to the end of each full expression, as long as its reader.
VxVariant readJsonVariant(std::istream &in) {
  return DocumentReader(parseDocument(in)).variant(0);
}
VxVariant readJsonVariant(VxString const &text) {
  return DocumentReader(parseDocument(text)).variant(0);
}
PropertyNode readJsonPropertyNode(std::istream &in) {
  return DocumentReader(parseDocument(in)).node(0);
}
PropertyNode readJsonPropertyNode(VxString const &text) {
  return DocumentReader(parseDocument(text)).node(0);
}

}  // namespace Tarvex::VantraCore::Internal

namespace Tarvex::VantraCore {

VxVariant JsonFormatter::deserializeVxVariant(std::istream &in) {
  return Internal::readJsonVariant(in);
}
VxVariant JsonFormatter::deserializeVxVariant(VxString text) {
  return Internal::readJsonVariant(text);
}
PropertyNode JsonFormatter::deserializePropertyNode(std::istream &in) {
  return Internal::readJsonPropertyNode(in);
}
PropertyNode JsonFormatter::deserializePropertyNode(VxString text) {
  return Internal::readJsonPropertyNode(text);
}

}  // namespace Tarvex::VantraCore
