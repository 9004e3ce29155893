#include <formatting/LenientJsonReader.h>

#include <VantraCore/VxString.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace Tarvex::VantraCore::Internal {
namespace {

bool isNumber(JsonType type) {
  return type == JsonType::integer || type == JsonType::unsignedInteger || type == JsonType::floating;
}

double numberOf(JsonEntry const &entry) {
  switch (entry.type) {
    case JsonType::integer:
      return static_cast<double>(entry.integer);
    case JsonType::unsignedInteger:
      return static_cast<double>(entry.unsignedInteger);
    default:
      return entry.floating;
  }
}

// Any fault of a plain array, whatever its cause, is reported as this one.
[[noreturn]] void heterogeneous() {
  throw std::runtime_error("VxVariant cannot be created because of heterogeneous data format");
}

// The element kinds a plain array can hold, with the JSON type each takes.
template <class T>
T plainElement(JsonDocumentReader const &reader, std::size_t at) {
  JsonEntry const &entry = reader.entry(at);
  if constexpr (std::is_same_v<T, double>) {
    if (!isNumber(entry.type)) heterogeneous();
    return numberOf(entry);
  } else if constexpr (std::is_same_v<T, bool>) {
    if (entry.type != JsonType::boolean) heterogeneous();
    return entry.boolean;
  } else {
    std::string const &text = reader.text(at);
    return VxString(text.data(), text.size());
  }
}

// Walks the array at `at` and its nested arrays depth first, handing each item at the innermost depth
// to leaf(item); an item above it must be an array. With `exact`, each array at depth d must also hold
// dims[d] items. Otherwise ragged arrays pass here and only the total count is checked, when the
// variant is built from what was collected.
template <class Leaf>
void walkPlain(JsonDocumentReader const &reader, std::size_t at, std::vector<std::uint64_t> const &dims,
               std::size_t depth, bool exact, Leaf const &leaf) {
  if (reader.typeOf(at) != JsonType::array) heterogeneous();
  bool const innermost = depth + 1 == dims.size();
  std::uint64_t count = 0;
  for (std::size_t item = at + 1; item < reader.end(at); item = reader.next(item)) {
    if (exact && ++count > dims[depth]) heterogeneous();
    if (innermost) {
      leaf(item);
    } else {
      walkPlain(reader, item, dims, depth + 1, exact, leaf);
    }
  }
  if (exact && count != dims[depth]) heterogeneous();
}

template <class T>
VxVariant plainArrayOf(JsonDocumentReader const &reader, std::size_t at, std::vector<std::uint64_t> dims) {
  // Room for the shape, but never more than the text holds: the shape is only a guess until walked.
  std::uint64_t room = 1;
  for (std::uint64_t const size : dims)
    room = __builtin_mul_overflow(room, size, &room) ? std::numeric_limits<std::uint64_t>::max() : room;
  std::vector<T> elements;
  elements.reserve(std::min<std::uint64_t>(room, reader.end(at) - at));
  walkPlain(reader, at, dims, 0, false,
            [&](std::size_t item) { elements.push_back(plainElement<T>(reader, item)); });
  return VxVariant(std::move(elements), std::move(dims), rowMajor);
}

// The shape follows first elements down; the innermost first element decides the kind.
VxVariant plainArray(JsonDocumentReader const &reader, std::size_t at) {
  std::vector<std::uint64_t> dims;
  std::size_t array = at;
  for (;;) {
    std::uint64_t const size = reader.itemCount(array);
    // An empty array has no first element to infer from.
    if (size == 0) return VxVariant();
    dims.push_back(size);
    std::size_t const first = array + 1;
    if (reader.typeOf(first) != JsonType::array) break;
    // Nesting beyond the deepest supported rank cannot fit the shape.
    if (dims.size() == plainJsonMaxRank) heterogeneous();
    array = first;
  }
  JsonType const kind = reader.typeOf(array + 1);
  if (isNumber(kind)) return plainArrayOf<double>(reader, at, std::move(dims));
  switch (kind) {
    case JsonType::boolean:
      return plainArrayOf<bool>(reader, at, std::move(dims));
    case JsonType::string:
      return plainArrayOf<VxString>(reader, at, std::move(dims));
    default:
      if (dims.size() == 1) return VxVariant();
      // Nothing is collected here, so the text must hold the whole shape before it is allocated.
      walkPlain(reader, at, dims, 0, true, [](std::size_t) {});
      return VxVariant::withShape<double>(std::move(dims));
  }
}

VxVariant plainArrayOrFault(JsonDocumentReader const &reader, std::size_t at) {
  try {
    return plainArray(reader, at);
  } catch (...) {
    heterogeneous();
  }
}

// The kind of a `_data_` without `_wellknowntype_`.
WellKnownType inferKind(JsonDocumentReader const &reader, std::size_t data) {
  // An array is of the kind of its first element, all the way down.
  while (reader.typeOf(data) == JsonType::array) {
    if (reader.end(data) == data + 1) return WellKnownType();
    ++data;
  }
  JsonType const type = reader.typeOf(data);
  if (isNumber(type)) return WellKnownTypeValue::typeDouble;
  switch (type) {
    case JsonType::string:
      return WellKnownTypeValue::typeString;
    case JsonType::boolean:
      return WellKnownTypeValue::typeBool;
    case JsonType::object: {
      auto const has = [&](char const *name) {
        return reader.member(data, name) != JsonDocumentReader::absent;
      };
      if (has("re") || has("im")) return WellKnownTypeValue::typeComplexDouble;
      // The two splits look alike; a timestamp is the likelier meaning.
      if (has("seconds") || has("subseconds")) return WellKnownTypeValue::typeTimestamp;
      return WellKnownType();
    }
    default:
      return WellKnownType();
  }
}

// Completes the metadata of an object with `_data_` and reads it as a full-fidelity document.
VxVariant readWithMetadata(JsonDocumentReader const &reader, std::size_t at) {
  std::size_t const data = reader.member(at, "_data_");
  std::size_t const typeText = reader.member(at, "_wellknowntype_");
  WellKnownType const type =
      typeText != JsonDocumentReader::absent ? reader.parseType(typeText) : inferKind(reader, data);

  VariantShape shape{{}, rowMajor};
  std::size_t const order = reader.member(at, "_dataorder_");
  if (order != JsonDocumentReader::absent) {
    std::string const &name = reader.text(order);
    if (name == "columnMajor") {
      shape.ordering = columnMajor;
    } else if (name != "rowMajor") {
      throw std::runtime_error("dataOrder value: '" + name + "' is not recognized in conversion from JSON.");
    }
  }
  std::size_t const dims = reader.member(at, "_dimensions_");
  if (dims != JsonDocumentReader::absent) {
    shape.dimensions = reader.unsignedArray(dims);
  } else {
    JsonType const dataType = reader.typeOf(data);
    bool const container = dataType == JsonType::array || dataType == JsonType::object;
    shape.dimensions = {container ? reader.itemCount(data) : dataType == JsonType::null ? 0 : 1};
  }
  return reader.variant(at, type, shape);
}

// Arrays are lists and objects maps; with `metadata`, an object with `_data_` is a value instead.
PropertyNode readTree(JsonDocumentReader const &reader, std::size_t at, bool metadata) {
  auto const child = [&](std::size_t item) { return readTree(reader, item, metadata); };
  switch (reader.typeOf(at)) {
    case JsonType::null:
      return PropertyNode();
    case JsonType::array:
      return reader.list(at, child);
    case JsonType::object:
      if (metadata && reader.member(at, "_data_") != JsonDocumentReader::absent) {
        return PropertyNode(readWithMetadata(reader, at));
      }
      return reader.map(at, child);
    case JsonType::key:
      throw std::runtime_error("Unknown JSON syntax encountered when deserializing to PropertyNode.");
    default:
      return PropertyNode(readPlainVariant(reader, at));
  }
}

}  // namespace

VxVariant readPlainVariant(JsonDocumentReader const &reader, std::size_t at) {
  JsonEntry const &entry = reader.entry(at);
  switch (entry.type) {
    case JsonType::integer:
    case JsonType::unsignedInteger:
    case JsonType::floating:
      return VxVariant(numberOf(entry));
    case JsonType::boolean:
      return VxVariant(entry.boolean);
    case JsonType::string: {
      std::string const &text = reader.text(at);
      return VxVariant(VxString(text.data(), text.size()));
    }
    case JsonType::array:
      return plainArrayOrFault(reader, at);
    default:
      return VxVariant();
  }
}

PropertyNode readPlainNode(JsonDocumentReader const &reader, std::size_t at) {
  return readTree(reader, at, false);
}

VxVariant readLenientVariant(JsonDocumentReader const &reader, std::size_t at) {
  switch (reader.typeOf(at)) {
    case JsonType::object:
      if (reader.member(at, "_data_") == JsonDocumentReader::absent) {
        throw std::runtime_error("Cannot deserialize JSON object to VxVariant without VxVariant metadata.");
      }
      return readWithMetadata(reader, at);
    case JsonType::key:
      throw std::runtime_error("Unknown JSON syntax encountered when deserializing to VxVariant.");
    default:
      return readPlainVariant(reader, at);
  }
}

PropertyNode readLenientNode(JsonDocumentReader const &reader, std::size_t at) {
  return readTree(reader, at, true);
}

}  // namespace Tarvex::VantraCore::Internal
