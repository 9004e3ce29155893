#pragma once

#include <VantraCore/PropertyNode.h>
#include <VantraCore/VxString.h>

#include <formatting/JsonTextWriter.h>

#include <algorithm>
#include <cstddef>
#include <ostream>
#include <string_view>
#include <type_traits>
#include <vector>

// What the JSON writers of every fidelity share: the plain element forms and the walk of a tree.
namespace Tarvex::VantraCore::Internal {

inline void writeElement(JsonTextWriter &out, VxString const &value) {
  out.string(std::string_view(value.data(), value.size()));
}

template <class T, std::enable_if_t<std::is_arithmetic_v<T>, int> = 0>
void writeElement(JsonTextWriter &out, T value) {
  if constexpr (std::is_same_v<T, bool>) {
    out.boolean(value);
  } else if constexpr (std::is_floating_point_v<T>) {
    out.number(value);
  } else if constexpr (std::is_signed_v<T>) {
    out.integer(value);
  } else {
    out.unsignedInteger(value);
  }
}

// Bytes a compact element of T takes at most, roughly: what the buffer reserves ahead of an array.
template <class T>
constexpr std::size_t typicalElementBytes() {
  if constexpr (std::is_arithmetic_v<T>) return 24;
  return 48;
}

// Either tree, mutable or frozen, with each variant written by writeValue(out, variant). Empty lists
// and maps write null.
template <class Node, class WriteValue>
void writeNode(JsonTextWriter &out, Node const &node, WriteValue const &writeValue) {
  switch (node.kind()) {
    case PropertyNodeKind::Value:
      return writeValue(out, node.value());
    case PropertyNodeKind::List: {
      auto const &list = node.list();
      if (list.empty()) return out.null();
      out.beginArray();
      for (Node const &child : list)
        writeNode(out, child, writeValue);
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
        writeNode(out, entry->node, writeValue);
      }
      return out.endObject();
    }
    case PropertyNodeKind::Null:
      break;
  }
  out.null();
}

// The whole text is built before any of it is handed over, so a failure leaves a stream untouched.
template <class Write>
VxString jsonText(int indent, JsonNumberText numbers, Write const &write) {
  JsonTextWriter out(indent, numbers);
  write(out);
  return VxString(out.text().data(), out.text().size());
}

template <class Write>
void jsonToStream(std::ostream &stream, int indent, JsonNumberText numbers, Write const &write) {
  JsonTextWriter out(indent, numbers);
  write(out);
  stream.write(out.text().data(), static_cast<std::streamsize>(out.text().size()));
}

// The text of the in-blocks writers goes out a block of this size at a time.
inline constexpr std::size_t jsonStreamBlockBytes = std::size_t(1) << 20;

template <class Write>
void jsonToStreamInBlocks(std::ostream &stream, int indent, JsonNumberText numbers, Write const &write) {
  JsonTextWriter out(indent, numbers);
  out.passOnTo(stream, jsonStreamBlockBytes);
  write(out);
  out.flush();
}

}  // namespace Tarvex::VantraCore::Internal
