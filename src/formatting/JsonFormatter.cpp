#include <VantraCore/JsonFormatter.h>

#include <VantraCore/Complex.h>
#include <VantraCore/ElementKinds.h>
#include <VantraCore/Time.h>

#include <formatting/JsonTextWriter.h>

#include <algorithm>
#include <complex>
#include <ostream>
#include <stdexcept>
#include <string_view>
#include <type_traits>
#include <vector>

namespace Tarvex::VantraCore {
namespace {

using Internal::int128_t;
using Internal::JsonTextWriter;

// 10^15: ticks of a Duration per second.
int128_t const ticksPerSecond(std::int64_t(1000000000000000));

void writeSplit(JsonTextWriter &out, std::int64_t seconds, int128_t const &subseconds) {
  out.beginObject();
  out.key("seconds");
  out.integer(seconds);
  out.key("subseconds");
  out.unsignedInteger(subseconds.lower());
  out.endObject();
}

// A negative remainder folds into the second below, so subseconds stays within [0, 10^15).
void writeElement(JsonTextWriter &out, Duration const &value) {
  int128_t const count = value.count();
  auto seconds = static_cast<std::int64_t>(count / ticksPerSecond);
  int128_t rest = count - int128_t(seconds) * ticksPerSecond;
  if (seconds < 1 && rest < int128_t(0)) {
    --seconds;
    rest = ticksPerSecond - int128_t(rest.magnitude());
  }
  writeSplit(out, seconds, rest);
}

// Unlike a duration, a negative quotient always steps one second down, exact or not: documents written
// so far carry that form, and readers restore the count from it either way.
void writeElement(JsonTextWriter &out, Timestamp const &value) {
  int128_t const count = value.time_since_epoch().count();
  int128_t quotient = count / ticksPerSecond;
  if (quotient < int128_t(0)) --quotient;
  auto const seconds = static_cast<std::int64_t>(quotient);
  writeSplit(out, seconds, count - int128_t(seconds) * ticksPerSecond);
}

void writeElement(JsonTextWriter &out, VxString const &value) {
  out.string(std::string_view(value.data(), value.size()));
}

template <class T>
void writeElement(JsonTextWriter &out, T value) {
  if constexpr (std::is_same_v<T, bool>) {
    out.boolean(value);
  } else if constexpr (std::is_floating_point_v<T>) {
    out.number(static_cast<double>(value));
  } else if constexpr (std::is_signed_v<T>) {
    out.integer(value);
  } else {
    out.unsignedInteger(value);
  }
}

template <class T>
void writeComplex(JsonTextWriter &out, T re, T im) {
  out.beginObject();
  out.key("im");
  writeElement(out, im);
  out.key("re");
  writeElement(out, re);
  out.endObject();
}

template <class T>
void writeElement(JsonTextWriter &out, std::complex<T> const &value) {
  writeComplex(out, value.real(), value.imag());
}

template <class T>
void writeElement(JsonTextWriter &out, Complex<T, void> const &value) {
  writeComplex(out, value.re, value.im);
}

// Bytes a compact element of T takes at most, roughly: what the buffer reserves ahead of an array.
template <class T>
constexpr std::size_t typicalElementBytes() {
  if constexpr (std::is_arithmetic_v<T>) return 24;
  return 48;
}

template <class Storage>
void writeVariant(JsonTextWriter &out, VxVariantGeneric<Storage> const &value) {
  WellKnownType const kind = value.wellKnownDataType();
  if (kind == Internal::WellKnownTypeValue::typeCustom)
    throw std::logic_error("Cannot serialze custom types");

  out.beginObject();
  out.key("_data_");
  bool const scalar = value.isScalarStorage();
  bool const null = kind == WellKnownType();
  if (null || value.numberOfElements() == 0) {
    out.null();
  } else {
    Internal::dispatchWellKnownType(kind, [&](auto tag) {
      using T = typename decltype(tag)::type;
      auto const elements = value.template asIterable<T>();
      if (scalar) {
        for (T const &element : elements)
          writeElement(out, element);
        return;
      }
      out.reserve(elements.size() * typicalElementBytes<T>());
      out.beginArray();
      for (T const &element : elements)
        writeElement(out, element);
      out.endArray();
    });
  }
  if (!null && !scalar) {
    DataOrdering const ordering = value.dataOrdering();
    if (ordering == rowMajor || ordering == columnMajor) {
      out.key("_dataorder_");
      out.string(ordering == rowMajor ? "rowMajor" : "columnMajor");
    }
    ArrayDimensionsView const dims = value.dimensions();
    if (dims.count > 0) {
      out.key("_dimensions_");
      out.beginArray();
      for (std::uint64_t const size : dims)
        out.unsignedInteger(size);
      out.endArray();
    }
  }
  out.key("_wellknowntype_");
  VxStringView const name = kind.toString();
  out.string(std::string_view(name.data(), name.size()));
  out.endObject();
}

// Either tree, mutable or frozen: both walk alike and write the same document.
template <class Node>
void writeNode(JsonTextWriter &out, Node const &node) {
  switch (node.kind()) {
    case PropertyNodeKind::Value:
      return writeVariant(out, node.value());
    case PropertyNodeKind::List: {
      auto const &list = node.list();
      if (list.empty()) return out.null();
      out.beginArray();
      for (Node const &child : list)
        writeNode(out, child);
      return out.endArray();
    }
    case PropertyNodeKind::Map: {
      auto const &map = node.map();
      if (map.empty()) return out.null();
      // Members in byte order of their keys, whatever the order of insertion.
      using Entry = std::remove_reference_t<decltype(*map.begin())>;
      std::vector<Entry *> entries;
      entries.reserve(map.size());
      for (Entry &entry : map)
        entries.push_back(&entry);
      auto const keyOf = [](Entry *entry) {
        return std::string_view(entry->key.data(), entry->key.length());
      };
      std::sort(entries.begin(), entries.end(), [&](Entry *a, Entry *b) { return keyOf(a) < keyOf(b); });
      out.beginObject();
      for (Entry *entry : entries) {
        out.key(keyOf(entry));
        writeNode(out, entry->node);
      }
      return out.endObject();
    }
    case PropertyNodeKind::Null:
      break;
  }
  out.null();
}

template <class Write>
VxString toText(int indent, Write const &write) {
  JsonTextWriter out(indent);
  write(out);
  return VxString(out.text().data(), out.text().size());
}

template <class Write>
void toStream(std::ostream &stream, int indent, Write const &write) {
  JsonTextWriter out(indent);
  write(out);
  stream.write(out.text().data(), static_cast<std::streamsize>(out.text().size()));
}

}  // namespace

VxString JsonFormatter::variantText(VxVariant const &value, int indent) {
  return toText(indent, [&](JsonTextWriter &out) { writeVariant(out, value); });
}

VxString JsonFormatter::variantText(VxVariantAbi const &value, int indent) {
  return toText(indent, [&](JsonTextWriter &out) { writeVariant(out, value); });
}

void JsonFormatter::variantToStream(VxVariant const &value, std::ostream &out, int indent) {
  toStream(out, indent, [&](JsonTextWriter &text) { writeVariant(text, value); });
}

void JsonFormatter::variantToStream(VxVariantAbi const &value, std::ostream &out, int indent) {
  toStream(out, indent, [&](JsonTextWriter &text) { writeVariant(text, value); });
}

VxString JsonFormatter::serialize(PropertyNode node, int indent) {
  return toText(indent, [&](JsonTextWriter &out) { writeNode(out, node); });
}

void JsonFormatter::serialize(PropertyNode node, std::ostream &out, int indent) {
  toStream(out, indent, [&](JsonTextWriter &text) { writeNode(text, node); });
}

VxString JsonFormatter::serialize(FPropertyNode node, int indent) {
  return toText(indent, [&](JsonTextWriter &out) { writeNode(out, node); });
}

void JsonFormatter::serialize(FPropertyNode node, std::ostream &out, int indent) {
  toStream(out, indent, [&](JsonTextWriter &text) { writeNode(text, node); });
}

}  // namespace Tarvex::VantraCore
