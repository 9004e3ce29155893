#include <VantraCore/ConsoleFormatter.h>
#include <VantraCore/FPropertyNode.h>
#include <VantraCore/PropertyNode.h>
#include <VantraCore/VxVariant.h>

#include <ostream>

// The compact one-line texts of variants and trees: a variant as the console formatter writes it.
namespace Tarvex::VantraCore {

template <class Storage>
void PrintTo(VxVariantGeneric<Storage> const &value, std::ostream *out) {
  ConsoleFormatter::serialize(value, *out);
}
template VANTRACORE_API void PrintTo(VxVariant const &value, std::ostream *out);
template VANTRACORE_API void PrintTo(VxVariantAbi const &value, std::ostream *out);

void PrintTo(FPropertyNode const &node, std::ostream *out) {
  switch (node.kind()) {
    case PropertyNodeKind::Value:
      ConsoleFormatter::serialize(node.value(), *out);
      return;
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
    out->write(entry.key.data(), static_cast<std::streamsize>(entry.key.length()));
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
