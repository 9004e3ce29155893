#include <VantraCore/ConsoleFormatter.h>

#include <VantraCore/detail/ElementKinds.h>
#include <VantraCore/WellKnownType.h>

#include <algorithm>
#include <complex>
#include <cstdint>
#include <ostream>
#include <string>
#include <type_traits>

namespace Tarvex::VantraCore {
namespace {

void writeKey(std::ostream &out, InternedString key) {
  out.write(key.data(), static_cast<std::streamsize>(key.length()));
}

// The type each element kind prints through: a time kind goes to int64_t, whose conversion refuses it.
template <class T>
using PrintedAs = std::conditional_t<
    std::is_same_v<T, VxString> || std::is_same_v<T, bool>, T,
    std::conditional_t<isComplexElement<T>, std::complex<double>,
                       std::conditional_t<isFloatingKind(wellKnownTypeOf<T>()), double,
                                          std::conditional_t<isUnsignedKind(wellKnownTypeOf<T>()),
                                                             std::uint64_t, std::int64_t>>>>;

template <class T>
void writeElement(std::ostream &out, T const &element) {
  if constexpr (std::is_same_v<T, VxString>) {
    out << '\'';
    out.write(element.data(), static_cast<std::streamsize>(element.size()));
    out << '\'';
  } else {
    out << element;
  }
}

// Converts before writing any element, so a refused kind leaves no opening bracket behind.
template <class T, class Storage>
void writeElements(std::ostream &out, VxVariantGeneric<Storage> const &value, bool bracketed) {
  if constexpr (std::is_same_v<T, bool>) out << std::boolalpha;
  auto const elements = value.template asIterable<T>(conversionCast);
  if (bracketed) out << '[';
  char const *separator = "";
  for (T const &element : elements) {
    out << separator;
    writeElement(out, element);
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
  // A kind outside the list (a custom one) goes the way of the signed integers.
  Internal::findElementKind(
      value.wellKnownDataType(),
      [&](auto tag) { writeElements<PrintedAs<typename decltype(tag)::type>>(out, value, bracketed); },
      [&] { writeElements<std::int64_t>(out, value, bracketed); });
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

}  // namespace Tarvex::VantraCore
