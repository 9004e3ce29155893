#include <formatting/FullFidelityJsonReader.h>

#include <formatting/JsonKeys.h>

#include <VantraCore/detail/ElementKinds.h>
#include <VantraCore/Time.h>

#include <cmath>
#include <complex>
#include <limits>
#include <stdexcept>
#include <string>
#include <type_traits>

namespace Tarvex::VantraCore::Internal {
namespace {

// A float value into an integer kind: truncated, then wrapped as the 64-bit casts wrap, with no
// out-of-range conversion left undefined.
template <class T>
T fromFloating(double value) {
  if constexpr (std::is_same_v<T, double>) {
    return value;
  } else if constexpr (std::is_same_v<T, float>) {
    // Beyond the largest float, values still round to it up to the midpoint towards the next power of
    // two; only from there on is the float infinite. The shortest text of the largest float lies there.
    constexpr double roundsToInfinity = 0x1.ffffffp+127;
    if (std::fabs(value) >= roundsToInfinity) return value < 0 ? -HUGE_VALF : HUGE_VALF;
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

template <class T>
T number(JsonCursor const &cursor, std::size_t at, bool acceptBoolean) {
  // An absent member reads as null, so the entry is looked at only once the type says it exists.
  switch (cursor.typeOf(at)) {
    case JsonType::integer:
      return static_cast<T>(cursor.integer(at));
    case JsonType::unsignedInteger:
      return static_cast<T>(cursor.unsignedInteger(at));
    case JsonType::floating:
      return fromFloating<T>(cursor.floating(at));
    case JsonType::boolean:
      if (acceptBoolean) return static_cast<T>(cursor.boolean(at));
      break;
    default:
      break;
  }
  cursor.typeMustBe("number", at);
}

// A member of an element object, as the library's operator[] finds it.
std::size_t part(JsonCursor const &cursor, std::size_t object, char const *name) {
  if (cursor.typeOf(object) != JsonType::object) {
    throw std::domain_error(std::string("cannot use operator[] with ") + cursor.typeName(object));
  }
  return cursor.member(object, name);
}

template <class T>
T element(JsonCursor const &cursor, std::size_t at) {
  if constexpr (std::is_same_v<T, bool>) {
    if (cursor.typeOf(at) != JsonType::boolean) cursor.typeMustBe("boolean", at);
    return cursor.boolean(at);
  } else if constexpr (std::is_same_v<T, VxString>) {
    std::string_view const value = cursor.text(at);
    return VxString(value.data(), value.size());
  } else if constexpr (isComplexElement<T>) {
    using Part = typename PartOf<T>::type;
    Part const re = element<Part>(cursor, part(cursor, at, JsonKey::real));
    return T(re, element<Part>(cursor, part(cursor, at, JsonKey::imaginary)));
  } else if constexpr (std::is_same_v<T, Duration> || std::is_same_v<T, Timestamp>) {
    // One formula undoes both splits of the writer, the subseconds read as signed.
    int128_t const seconds(number<std::int64_t>(cursor, part(cursor, at, JsonKey::seconds), false));
    int128_t const subseconds(number<std::int64_t>(cursor, part(cursor, at, JsonKey::subseconds), false));
    return T(Duration(seconds * int128_t(femtosecondsPerSecond) + subseconds));
  } else {
    // The widest kinds take numbers only; the narrower ones take true and false as 1 and 0 too.
    constexpr bool widest =
        std::is_same_v<T, double> || std::is_same_v<T, std::int64_t> || std::is_same_v<T, std::uint64_t>;
    return number<T>(cursor, at, !widest);
  }
}

template <class T>
VxVariant variantData(JsonCursor const &cursor, std::size_t data,
                      std::function<VariantShape()> const &shapeOf) {
  if (cursor.typeOf(data) != JsonType::array) return VxVariant(element<T>(cursor, data));
  VariantShape const shape = shapeOf();
  // A row of doubles is its tape words: counted, checked and copied in a sweep each.
  std::size_t const first = data + 1, end = cursor.end(data);
  bool const doubles = std::is_same_v<T, double> && cursor.doublesOnly(first, end);
  std::uint64_t const items = doubles ? end - first : cursor.itemCount(data);
  // A shape too large to count holds any number of items.
  std::uint64_t capacity = 0;
  if (!checkedElementCount(shape.dimensions, capacity)) capacity = std::numeric_limits<std::uint64_t>::max();
  if (items > capacity) {
    throw std::runtime_error("VxVariant dimensions less than actual data items in conversion from JSON");
  }
  cursor.chargeFill(shape.dimensions, capacity, items);
  VxVariant result = VxVariant::withShape<T>(shape.dimensions, shape.ordering);
  T *out = items == 0 ? nullptr : result.mutableStoredData<T>();
  if constexpr (std::is_same_v<T, double>) {
    if (doubles) {
      if (items > 0) cursor.copyDoubles(first, end, out);
      return result;
    }
  }
  for (std::size_t item = first; item < end; item = cursor.next(item))
    *out++ = element<T>(cursor, item);
  return result;
}

VariantShape documentShape(JsonCursor const &cursor, std::size_t object) {
  VariantShape result{{1}, rowMajor};
  std::size_t const dims = cursor.member(object, JsonKey::dimensions);
  if (dims != JsonCursor::absent) result.dimensions = readDimensions(cursor, dims);
  result.ordering =
      readDataOrder(cursor, object, {"dataOrder value: ", " is not recognized in conversion from JSON"});
  return result;
}

// The variant of the document at `at`, whose `_data_` is at `data`.
VxVariant documentVariant(JsonCursor const &cursor, std::size_t at, std::size_t data) {
  std::size_t const typeText = cursor.member(at, JsonKey::wellKnownType);
  if (typeText == JsonCursor::absent) throw std::runtime_error("wellKnownType key missing in conversion from JSON");
  return readVariantOfKind(cursor, data, readKind(cursor, typeText), [&] { return documentShape(cursor, at); });
}

}  // namespace

WellKnownType readKind(JsonCursor const &cursor, std::size_t at) {
  std::string_view const name = cursor.text(at);
  return WellKnownType(VxStringView(name.data(), name.size()));
}

std::vector<std::uint64_t> readDimensions(JsonCursor const &cursor, std::size_t at) {
  if (cursor.typeOf(at) != JsonType::array) cursor.typeMustBe("array", at);
  std::vector<std::uint64_t> result;
  for (std::size_t item = at + 1; item < cursor.end(at); item = cursor.next(item))
    result.push_back(number<std::uint64_t>(cursor, item, false));
  return result;
}

DataOrdering readDataOrder(JsonCursor const &cursor, std::size_t object, DataOrderWording wording) {
  std::size_t const order = cursor.member(object, JsonKey::dataOrder);
  if (order == JsonCursor::absent) return rowMajor;
  std::string_view const name = cursor.text(order);
  if (name == JsonKey::columnMajor) return columnMajor;
  if (name != JsonKey::rowMajor) throw std::runtime_error(wording.before + std::string(name) + wording.after);
  return rowMajor;
}

VxVariant readVariantOfKind(JsonCursor const &cursor, std::size_t data, WellKnownType type,
                            std::function<VariantShape()> const &shapeOf) {
  if (isCustomKind(type)) throw std::logic_error("Cannot deserialize custom types");
  if (type == WellKnownType()) return VxVariant();
  return dispatchWellKnownType(
      type, [&](auto tag) { return variantData<typename decltype(tag)::type>(cursor, data, shapeOf); });
}

VxVariant readFullVariant(JsonCursor const &cursor, std::size_t at) {
  return documentVariant(cursor, at, cursor.member(at, JsonKey::data));
}

PropertyNode readFullNode(JsonCursor const &cursor, std::size_t at) {
  auto const child = [&cursor](std::size_t item) { return readFullNode(cursor, item); };
  switch (cursor.typeOf(at)) {
    case JsonType::null:
      return PropertyNode();
    case JsonType::array:
      return cursor.list(at, child);
    case JsonType::object:
      break;
    default:
      throw std::runtime_error(
          "a JSON value without _data_ metadata cannot be read as a property node in full fidelity");
  }
  std::size_t const data = cursor.member(at, JsonKey::data);
  if (data == JsonCursor::absent) return cursor.map(at, child);
  if (cursor.typeOf(data) != JsonType::null) return PropertyNode(documentVariant(cursor, at, data));
  WellKnownType const type = readKind(cursor, cursor.member(at, JsonKey::wellKnownType));
  if (type == WellKnownType()) return PropertyNode(VxVariant());
  if (type == WellKnownTypeValue::typeCustom) {
    throw std::runtime_error("Creating with run-time wellknowntype is not allowed.");
  }
  return PropertyNode(dispatchWellKnownType(
      type, [](auto tag) { return VxVariant::withShape<typename decltype(tag)::type>({}); }));
}

}  // namespace Tarvex::VantraCore::Internal
