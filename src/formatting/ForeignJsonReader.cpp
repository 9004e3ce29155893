#include <formatting/ForeignJsonReader.h>

#include <formatting/FullFidelityJsonReader.h>
#include <formatting/JsonKeys.h>

#include <VantraCore/ArrayIndexing.h>
#include <VantraCore/VxString.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <new>
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


// Any fault of a plain array, whatever its cause, is reported as this one.
[[noreturn]] void heterogeneous() {
  throw std::runtime_error("VxVariant cannot be created because of heterogeneous data format");
}

// The element kinds a plain array can hold, with the JSON type each takes.
template <class T>
T plainElement(JsonCursor const &cursor, std::size_t at) {
  JsonType const type = cursor.typeOf(at);
  if constexpr (std::is_same_v<T, double>) {
    if (!isNumber(type)) heterogeneous();
    return cursor.numberAs<double>(at);
  } else if constexpr (std::is_same_v<T, bool>) {
    if (type != JsonType::boolean) heterogeneous();
    return cursor.boolean(at);
  } else {
    std::string_view const text = cursor.text(at);
    return VxString(text.data(), text.size());
  }
}

// Walks the array at `at` and its nested arrays depth first, handing each item at the innermost depth
// to leaf(item); an item above it must be an array. With `exact`, each array at depth d must also hold
// dims[d] items. Otherwise ragged arrays pass here and only the total count is checked, when the
// variant is built from what was collected.
template <class Leaf>
void walkPlain(JsonCursor const &cursor, std::size_t at, std::vector<std::uint64_t> const &dims,
               std::size_t depth, bool exact, Leaf const &leaf) {
  if (cursor.typeOf(at) != JsonType::array) heterogeneous();
  bool const innermost = depth + 1 == dims.size();
  std::uint64_t count = 0;
  for (std::size_t item = at + 1; item < cursor.end(at); item = cursor.next(item)) {
    if (exact && ++count > dims[depth]) heterogeneous();
    if (innermost) {
      leaf(item);
    } else {
      walkPlain(cursor, item, dims, depth + 1, exact, leaf);
    }
  }
  if (exact && count != dims[depth]) heterogeneous();
}

template <class T>
VxVariant plainArrayOf(JsonCursor const &cursor, std::size_t at, std::vector<std::uint64_t> dims) {
  // Room for the shape, but never more than the text holds: the shape is only a guess until walked.
  std::uint64_t room = 0;
  if (!checkedElementCount(dims, room)) room = std::numeric_limits<std::uint64_t>::max();
  std::vector<T> elements;
  elements.reserve(std::min<std::uint64_t>(room, cursor.end(at) - at));
  walkPlain(cursor, at, dims, 0, false,
            [&](std::size_t item) { elements.push_back(plainElement<T>(cursor, item)); });
  return VxVariant(std::move(elements), std::move(dims), rowMajor);
}

// The shape follows first elements down; the innermost first element decides the kind.
VxVariant plainArray(JsonCursor const &cursor, std::size_t at) {
  std::vector<std::uint64_t> dims;
  std::size_t array = at;
  for (;;) {
    std::uint64_t const size = cursor.itemCount(array);
    // An empty array has no first element to infer from.
    if (size == 0) return VxVariant();
    dims.push_back(size);
    std::size_t const first = array + 1;
    if (cursor.typeOf(first) != JsonType::array) break;
    // Nesting beyond the deepest supported rank cannot fit the shape.
    if (dims.size() == plainJsonMaxRank) heterogeneous();
    array = first;
  }
  JsonType const kind = cursor.typeOf(array + 1);
  if (isNumber(kind)) return plainArrayOf<double>(cursor, at, std::move(dims));
  switch (kind) {
    case JsonType::boolean:
      return plainArrayOf<bool>(cursor, at, std::move(dims));
    case JsonType::string:
      return plainArrayOf<VxString>(cursor, at, std::move(dims));
    default:
      if (dims.size() == 1) return VxVariant();
      // Nothing is collected here, so the text must hold the whole shape before it is allocated.
      walkPlain(cursor, at, dims, 0, true, [](std::size_t) {});
      return VxVariant::withShape<double>(std::move(dims));
  }
}

VxVariant plainArrayOrFault(JsonCursor const &cursor, std::size_t at) {
  try {
    return plainArray(cursor, at);
  } catch (std::bad_alloc const &) {
    throw;
  } catch (...) {
    heterogeneous();
  }
}

// The kind of a `_data_` without `_wellknowntype_`.
WellKnownType inferKind(JsonCursor const &cursor, std::size_t data) {
  // An array is of the kind of its first element, all the way down.
  while (cursor.typeOf(data) == JsonType::array) {
    if (cursor.end(data) == data + 1) return WellKnownType();
    ++data;
  }
  JsonType const type = cursor.typeOf(data);
  if (isNumber(type)) return WellKnownTypeValue::typeDouble;
  switch (type) {
    case JsonType::string:
      return WellKnownTypeValue::typeString;
    case JsonType::boolean:
      return WellKnownTypeValue::typeBool;
    case JsonType::object: {
      if (cursor.has(data, JsonKey::real) || cursor.has(data, JsonKey::imaginary)) {
        return WellKnownTypeValue::typeComplexDouble;
      }
      // The two splits look alike; a timestamp is the likelier meaning.
      if (cursor.has(data, JsonKey::seconds) || cursor.has(data, JsonKey::subseconds)) {
        return WellKnownTypeValue::typeTimestamp;
      }
      return WellKnownType();
    }
    default:
      return WellKnownType();
  }
}

// Completes the metadata of the object at `at`, whose `_data_` is at `data`, and reads it as a
// full-fidelity document.
VxVariant readWithMetadata(JsonCursor const &cursor, std::size_t at, std::size_t data) {
  std::size_t const typeText = cursor.member(at, JsonKey::wellKnownType);
  WellKnownType const type = typeText != JsonCursor::absent ? readKind(cursor, typeText) : inferKind(cursor, data);

  VariantShape shape{
      {}, readDataOrder(cursor, at, {"dataOrder value: '", "' is not recognized in conversion from JSON."})};
  std::size_t const dims = cursor.member(at, JsonKey::dimensions);
  if (dims != JsonCursor::absent) {
    shape.dimensions = readDimensions(cursor, dims);
  } else {
    JsonType const dataType = cursor.typeOf(data);
    bool const container = dataType == JsonType::array || dataType == JsonType::object;
    shape.dimensions = {container ? cursor.itemCount(data) : dataType == JsonType::null ? 0 : 1};
  }
  return readVariantOfKind(cursor, data, type, [&shape] { return shape; });
}

// Arrays are lists and objects maps; with `metadata`, an object with `_data_` is a value instead.
PropertyNode readTree(JsonCursor const &cursor, std::size_t at, bool metadata) {
  auto const child = [&](std::size_t item) { return readTree(cursor, item, metadata); };
  switch (cursor.typeOf(at)) {
    case JsonType::null:
      return PropertyNode();
    case JsonType::array: {
      VxVariant array;
      if (cursor.arrays() == JsonArrays::asVariants && readArrayVariant(cursor, at, array))
        return PropertyNode(std::move(array));
      return cursor.list(at, child);
    }
    case JsonType::object: {
      std::size_t const data = metadata ? cursor.member(at, JsonKey::data) : JsonCursor::absent;
      if (data != JsonCursor::absent) return PropertyNode(readWithMetadata(cursor, at, data));
      return cursor.map(at, child);
    }
    case JsonType::key:
      throw std::runtime_error("Unknown JSON syntax encountered when deserializing to PropertyNode.");
    default:
      return PropertyNode(readPlainVariant(cursor, at));
  }
}

}  // namespace

VxVariant readPlainVariant(JsonCursor const &cursor, std::size_t at) {
  switch (cursor.typeOf(at)) {
    case JsonType::integer:
    case JsonType::unsignedInteger:
    case JsonType::floating:
      return VxVariant(cursor.numberAs<double>(at));
    case JsonType::boolean:
      return VxVariant(cursor.boolean(at));
    case JsonType::string: {
      std::string_view const text = cursor.text(at);
      return VxVariant(VxString(text.data(), text.size()));
    }
    case JsonType::array:
      return plainArrayOrFault(cursor, at);
    default:
      return VxVariant();
  }
}

PropertyNode readPlainNode(JsonCursor const &cursor, std::size_t at) {
  return readTree(cursor, at, false);
}

VxVariant readLenientVariant(JsonCursor const &cursor, std::size_t at) {
  switch (cursor.typeOf(at)) {
    case JsonType::object: {
      std::size_t const data = cursor.member(at, JsonKey::data);
      if (data == JsonCursor::absent) {
        throw std::runtime_error("Cannot deserialize JSON object to VxVariant without VxVariant metadata.");
      }
      return readWithMetadata(cursor, at, data);
    }
    case JsonType::key:
      throw std::runtime_error("Unknown JSON syntax encountered when deserializing to VxVariant.");
    default:
      return readPlainVariant(cursor, at);
  }
}

PropertyNode readLenientNode(JsonCursor const &cursor, std::size_t at) {
  return readTree(cursor, at, true);
}

}  // namespace Tarvex::VantraCore::Internal
