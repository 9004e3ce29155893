#include <formatting/PlainArrayVariant.h>

#include <VantraCore/ArrayIndexing.h>
#include <VantraCore/VxString.h>

#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace Tarvex::VantraCore::Internal {
namespace {

// What the innermost items have in common: one JSON type, all numbers counting as one.
struct Leaves {
  JsonType type = JsonType::null;
  bool integers = true;  // every number an integer that fits int64
};

JsonType leafType(JsonType type) {
  return type == JsonType::integer || type == JsonType::unsignedInteger ? JsonType::floating : type;
}

// The shape that first items spell, all the way down; false when it cannot be an array's.
bool firstItemShape(JsonCursor const &cursor, std::size_t at, std::vector<std::uint64_t> &dims) {
  for (std::size_t array = at;; ++array) {
    std::uint64_t const size = cursor.itemCount(array);
    if (size == 0) return false;
    dims.push_back(size);
    if (cursor.typeOf(array + 1) != JsonType::array) return true;
    if (dims.size() == plainJsonMaxRank) return false;
  }
}

// Whether the array at `at`, at nesting `depth`, has exactly the shape below it and leaves alike.
bool conforms(JsonCursor const &cursor, std::size_t at, std::vector<std::uint64_t> const &dims,
              std::size_t depth, Leaves &leaves) {
  bool const innermost = depth + 1 == dims.size();
  std::uint64_t count = 0;
  for (std::size_t item = at + 1; item < cursor.end(at); item = cursor.next(item)) {
    if (++count > dims[depth]) return false;
    JsonType const type = cursor.typeOf(item);
    if (!innermost) {
      if (type != JsonType::array || !conforms(cursor, item, dims, depth + 1, leaves)) return false;
      continue;
    }
    if (leafType(type) != leaves.type) return false;
    if (type == JsonType::floating ||
        (type == JsonType::unsignedInteger &&
         cursor.unsignedInteger(item) > std::uint64_t(std::numeric_limits<std::int64_t>::max()))) {
      leaves.integers = false;
    }
  }
  return count == dims[depth];
}

template <class T>
T leafValue(JsonCursor const &cursor, std::size_t at) {
  if constexpr (std::is_same_v<T, bool>) {
    return cursor.boolean(at);
  } else if constexpr (std::is_same_v<T, VxString>) {
    std::string_view const text = cursor.text(at);
    return VxString(text.data(), text.size());
  } else {
    return cursor.numberAs<T>(at);
  }
}

// The leaves of a conforming array are its values that are not arrays, in row-major order.
template <class T>
VxVariant filled(JsonCursor const &cursor, std::size_t at, std::vector<std::uint64_t> dims) {
  VxVariant result = VxVariant::withShape<T>(std::move(dims), rowMajor);
  T *out = result.mutableStoredData<T>();
  for (std::size_t item = at + 1; item < cursor.end(at);) {
    switch (cursor.typeOf(item)) {
      case JsonType::array:  // into it
      case JsonType::null:   // past a closing word: a conforming array has no null leaves
        ++item;
        break;
      default:
        *out++ = leafValue<T>(cursor, item);
        item = cursor.next(item);
    }
  }
  return result;
}

}  // namespace

bool readArrayVariant(JsonCursor const &cursor, std::size_t at, VxVariant &result) {
  // A row of doubles, the bulk of a measurement, is its tape words: checked and copied in one sweep each.
  std::size_t const first = at + 1, end = cursor.end(at);
  if (first < end && cursor.typeOf(first) == JsonType::floating && cursor.doublesOnly(first, end)) {
    result = VxVariant::withShape<double>({end - first}, rowMajor);
    cursor.copyDoubles(first, end, result.mutableStoredData<double>());
    return true;
  }
  std::vector<std::uint64_t> dims;
  if (!firstItemShape(cursor, at, dims)) return false;
  std::size_t leaf = at;
  while (cursor.typeOf(leaf) == JsonType::array)
    ++leaf;
  Leaves leaves{leafType(cursor.typeOf(leaf))};
  if (leaves.type != JsonType::floating && leaves.type != JsonType::boolean && leaves.type != JsonType::string)
    return false;
  if (!conforms(cursor, at, dims, 0, leaves)) return false;
  switch (leaves.type) {
    case JsonType::boolean:
      result = filled<bool>(cursor, at, std::move(dims));
      break;
    case JsonType::string:
      result = filled<VxString>(cursor, at, std::move(dims));
      break;
    default:
      result = leaves.integers ? filled<std::int64_t>(cursor, at, std::move(dims))
                               : filled<double>(cursor, at, std::move(dims));
  }
  return true;
}

}  // namespace Tarvex::VantraCore::Internal
