#include <formatting/JsonReader.h>

#include <formatting/JsonDocument.h>

#include <VantraCore/detail/ElementKinds.h>
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
  explicit DocumentBuilder(JsonDocument &document) : m_document(document) {}

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
  JsonEntry &push(JsonType type) {
    m_document.entries.push_back(JsonEntry{type, {}});
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

  JsonDocument &m_document;
  std::vector<std::size_t> m_open;
};

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

char const *typeName(JsonType type) {
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

}  // namespace

JsonDocument parseJsonDocument(std::istream &in) {
  if (!in.good()) throw std::invalid_argument("stream error");
  JsonDocument document;
  DocumentBuilder builder(document);
  nlohmann::json::sax_parse(in, &builder);
  return document;
}

JsonDocument parseJsonDocument(VxString const &text) {
  JsonDocument document;
  DocumentBuilder builder(document);
  nlohmann::json::sax_parse(text.data(), text.data() + text.length(), &builder);
  return document;
}

std::uint64_t JsonDocumentReader::itemCount(std::size_t container) const {
  std::uint64_t count = 0;
  for (std::size_t item = container + 1; item < end(container); item = next(item))
    ++count;
  // An object's members are counted by their keys.
  return typeOf(container) == JsonType::object ? count / 2 : count;
}

std::size_t JsonDocumentReader::member(std::size_t object, char const *name) const {
  if (typeOf(object) != JsonType::object) return absent;
  std::size_t found = absent;
  for (std::size_t key = object + 1; key < m_entries[object].end; key = next(key + 1)) {
    if (m_strings[m_entries[key].stringIndex] == name) found = key + 1;
  }
  return found;
}

std::vector<std::pair<std::string const *, std::size_t>> JsonDocumentReader::members(
    std::size_t object) const {
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

std::size_t JsonDocumentReader::part(std::size_t object, char const *name) const {
  if (typeOf(object) != JsonType::object) {
    throw std::domain_error(std::string("cannot use operator[] with ") + typeName(typeOf(object)));
  }
  return member(object, name);
}

void JsonDocumentReader::typeMustBe(char const *wanted, std::size_t at) const {
  throw std::domain_error(std::string("type must be ") + wanted + ", but is " + typeName(typeOf(at)));
}

std::string const &JsonDocumentReader::text(std::size_t at) const {
  if (typeOf(at) != JsonType::string) typeMustBe("string", at);
  return m_strings[m_entries[at].stringIndex];
}

WellKnownType JsonDocumentReader::parseType(std::size_t at) const {
  std::string const &name = text(at);
  return WellKnownType(VxStringView(name.data(), name.size()));
}

template <class T>
T JsonDocumentReader::number(std::size_t at, bool acceptBoolean) const {
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
T JsonDocumentReader::element(std::size_t at) const {
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

std::vector<std::uint64_t> JsonDocumentReader::unsignedArray(std::size_t at) const {
  if (typeOf(at) != JsonType::array) typeMustBe("array", at);
  std::vector<std::uint64_t> result;
  for (std::size_t item = at + 1; item < m_entries[at].end; item = next(item)) {
    result.push_back(number<std::uint64_t>(item, false));
  }
  return result;
}

VariantShape JsonDocumentReader::shape(std::size_t object) const {
  VariantShape result{{1}, rowMajor};
  std::size_t const dims = member(object, "_dimensions_");
  if (dims != absent) result.dimensions = unsignedArray(dims);
  std::size_t const order = member(object, "_dataorder_");
  if (order != absent) {
    std::string const &name = text(order);
    if (name == "columnMajor") {
      result.ordering = columnMajor;
    } else if (name != "rowMajor") {
      throw std::runtime_error("dataOrder value: " + name + " is not recognized in conversion from JSON");
    }
  }
  return result;
}

template <class T, class ShapeOf>
VxVariant JsonDocumentReader::variantData(std::size_t data, ShapeOf const &shapeOf) const {
  if (typeOf(data) != JsonType::array) return VxVariant(element<T>(data));
  VariantShape const shape = shapeOf();
  std::uint64_t const items = itemCount(data);
  std::uint64_t capacity = shape.dimensions.empty() ? 0 : 1;
  for (std::uint64_t const dim : shape.dimensions) {
    bool const overflows = dim != 0 && capacity > std::numeric_limits<std::uint64_t>::max() / dim;
    capacity = overflows ? std::numeric_limits<std::uint64_t>::max() : capacity * dim;
  }
  if (items > capacity) {
    throw std::runtime_error("VxVariant dimensions less than actual data items in conversion from JSON");
  }
  VxVariant result = VxVariant::withShape<T>(shape.dimensions, shape.ordering);
  T *out = items == 0 ? nullptr : result.mutableStoredData<T>();
  for (std::size_t item = data + 1; item < m_entries[data].end; item = next(item))
    *out++ = element<T>(item);
  return result;
}

template <class ShapeOf>
VxVariant JsonDocumentReader::variantOfKind(std::size_t at, WellKnownType type,
                                            ShapeOf const &shapeOf) const {
  auto const code = static_cast<std::uint16_t>(type.value());
  if ((code & 0x7FFF) == static_cast<std::uint16_t>(WellKnownTypeValue::typeCustom)) {
    throw std::logic_error("Cannot deserialize custom types");
  }
  if (code == 0) return VxVariant();
  std::size_t const data = member(at, "_data_");
  return dispatchWellKnownType(
      type, [&](auto tag) { return variantData<typename decltype(tag)::type>(data, shapeOf); });
}

VxVariant JsonDocumentReader::variant(std::size_t at) const {
  std::size_t const typeText = member(at, "_wellknowntype_");
  if (typeText == absent) throw std::runtime_error("wellKnownType key missing in conversion from JSON");
  return variantOfKind(at, parseType(typeText), [&] { return shape(at); });
}

VxVariant JsonDocumentReader::variant(std::size_t at, WellKnownType type, VariantShape const &shape) const {
  return variantOfKind(at, type, [&]() -> VariantShape const & { return shape; });
}

PropertyNode JsonDocumentReader::node(std::size_t at) const {
  switch (typeOf(at)) {
    case JsonType::null:
      return PropertyNode();
    case JsonType::array:
      return list(at, [this](std::size_t item) { return node(item); });
    case JsonType::object:
      break;
    default:
      throw std::runtime_error(
          "a JSON value without _data_ metadata cannot be read as a property node in full fidelity");
  }
  std::size_t const data = member(at, "_data_");
  if (data == absent) return map(at, [this](std::size_t item) { return node(item); });
  if (typeOf(data) != JsonType::null) return PropertyNode(variant(at));
  WellKnownType const type = parseType(member(at, "_wellknowntype_"));
  if (type.value() == WellKnownTypeValue::typeNone) return PropertyNode(VxVariant());
  if (type.value() == WellKnownTypeValue::typeCustom) {
    throw std::runtime_error("Creating with run-time wellknowntype is not allowed.");
  }
  return PropertyNode(dispatchWellKnownType(
      type, [](auto tag) { return VxVariant::withShape<typename decltype(tag)::type>({}); }));
}

// The parsed document lives to the end of each full expression, as long as its reader.
VxVariant readJsonVariant(std::istream &in) {
  return JsonDocumentReader(parseJsonDocument(in)).variant(0);
}
VxVariant readJsonVariant(VxString const &text) {
  return JsonDocumentReader(parseJsonDocument(text)).variant(0);
}
PropertyNode readJsonPropertyNode(std::istream &in) {
  return JsonDocumentReader(parseJsonDocument(in)).node(0);
}
PropertyNode readJsonPropertyNode(VxString const &text) {
  return JsonDocumentReader(parseJsonDocument(text)).node(0);
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
