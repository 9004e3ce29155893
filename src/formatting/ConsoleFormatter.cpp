#include <VantraCore/ConsoleFormatter.h>

#include <VantraCore/WellKnownType.h>

#include <algorithm>
#include <complex>
#include <cstdint>
#include <ostream>
#include <string>

namespace Tarvex::VantraCore {
namespace {

using Internal::WellKnownTypeValue;

void writeKey(std::ostream &out, InternedString key) {
  out.write(key.data(), static_cast<std::streamsize>(key.length()));
}

// Converts before writing anything, so a refused kind leaves no opening bracket behind.
template <class T, class Storage, class WriteElement>
void writeElements(std::ostream &out, VxVariantGeneric<Storage> const &value, bool bracketed,
                   WriteElement const &writeElement) {
  auto const elements = value.template asIterable<T>(conversionCast);
  if (bracketed) out << '[';
  char const *separator = "";
  for (T const &element : elements) {
    out << separator;
    writeElement(element);
    separator = ", ";
  }
  if (bracketed) out << ']';
}

template <class Storage>
void writeVariant(std::ostream &out, VxVariantGeneric<Storage> const &value) {
  if (value.numberOfElements() == 0) {
    out << (value.isNull() ? "null" : "[]");
    return;
  }
  ArrayDimensionsView const dims = value.dimensions();
  bool const bracketed = !std::all_of(dims.begin(), dims.end(), [](std::uint64_t size) { return size == 1; });
  WellKnownType const kind = value.wellKnownDataType();
  auto const code = static_cast<std::uint16_t>(kind.value());
  auto const plain = [&out](auto const &element) { out << element; };

  if (kind == WellKnownTypeValue::typeString) {
    writeElements<VxString>(out, value, bracketed, [&out](VxString const &text) {
      out << '\'';
      out.write(text.data(), static_cast<std::streamsize>(text.size()));
      out << '\'';
    });
  } else if ((code & Internal::wellKnownTypeComplexBit) != 0) {
    writeElements<std::complex<double>>(out, value, bracketed, plain);
  } else if (kind == WellKnownTypeValue::typeBool) {
    out << std::boolalpha;
    writeElements<bool>(out, value, bracketed, plain);
  } else if (kind == WellKnownTypeValue::typeDouble || kind == WellKnownTypeValue::typeFloat) {
    writeElements<double>(out, value, bracketed, plain);
  } else if ((code & Internal::wellKnownTypeUnsignedBit) != 0) {
    writeElements<std::uint64_t>(out, value, bracketed, plain);
  } else {
    // Time kinds end here too, and their conversion refuses them.
    writeElements<std::int64_t>(out, value, bracketed, plain);
  }
}

// The drawing of either tree, mutable or frozen. A nested entry's lead starts with the line end that
// its parent's line is still waiting for, and a value ends its own line: so the first entry under a
// key stands on the next line and the later ones follow an empty line.
template <class Node>
void drawTree(std::ostream &out, Node const &node, char const *lead, std::string const &indent,
              char const *mark) {
  switch (node.kind()) {
    case PropertyNodeKind::Value:
      writeVariant(out, node.value());
      out << '\n';
      return;
    case PropertyNodeKind::Map: {
      std::string const nested = indent + "    ";
      for (auto const &entry : node.map()) {
        out << lead << indent << mark << " '";
        writeKey(out, entry.key);
        out << "': ";
        drawTree(out, entry.node, "\n|", nested, "`-->");
      }
      return;
    }
    case PropertyNodeKind::List:
      for (Node const &element : node.list())
        drawTree(out, element, "|--->", std::string(), "");
      return;
    case PropertyNodeKind::Null:
      break;
  }
}

template <class Node>
std::ostream &drawRoot(std::ostream &out, Node const &node) {
  drawTree(out, node, "|--->", std::string(), "");
  return out;
}

}  // namespace

std::ostream &ConsoleFormatter::variantToStream(VxVariant const &value, std::ostream &out) {
  writeVariant(out, value);
  return out;
}

std::ostream &ConsoleFormatter::variantToStream(VxVariantAbi const &value, std::ostream &out) {
  writeVariant(out, value);
  return out;
}

std::ostream &ConsoleFormatter::serialize(PropertyNode node, std::ostream &out) {
  return drawRoot(out, node);
}

std::ostream &ConsoleFormatter::serialize(FPropertyNode node, std::ostream &out) {
  return drawRoot(out, node);
}

template <class Storage>
void PrintTo(VxVariantGeneric<Storage> const &value, std::ostream *out) {
  writeVariant(*out, value);
}
template VANTRACORE_API void PrintTo(VxVariant const &value, std::ostream *out);
template VANTRACORE_API void PrintTo(VxVariantAbi const &value, std::ostream *out);

void PrintTo(FPropertyNode const &node, std::ostream *out) {
  switch (node.kind()) {
    case PropertyNodeKind::Value:
      return writeVariant(*out, node.value());
    case PropertyNodeKind::List:
      return PrintTo(node.list(), out);
    case PropertyNodeKind::Map:
      return PrintTo(node.map(), out);
    case PropertyNodeKind::Null:
      break;
  }
  *out << "<NULL>";
}

void PrintTo(FPropertyList const &list, std::ostream *out) {
  *out << '{';
  char const *separator = "";
  for (FPropertyNode const &node : list) {
    *out << separator;
    PrintTo(node, out);
    separator = ", ";
  }
  *out << '}';
}

void PrintTo(FPropertyMap const &map, std::ostream *out) {
  *out << '{';
  char const *separator = "";
  for (FPropertyMapEntry const &entry : map) {
    *out << separator << "{'";
    writeKey(*out, entry.key);
    *out << "', ";
    PrintTo(entry.node, out);
    *out << '}';
    separator = ", ";
  }
  *out << '}';
}

void PrintTo(PropertyNode const &node, std::ostream *out) {
  PrintTo(FPropertyNode(node), out);
}

void PrintTo(PropertyList const &list, std::ostream *out) {
  PrintTo(FPropertyList(list), out);
}

void PrintTo(PropertyMap const &map, std::ostream *out) {
  PrintTo(FPropertyMap(map), out);
}

}  // namespace Tarvex::VantraCore
