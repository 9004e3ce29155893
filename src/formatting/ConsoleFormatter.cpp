#include <VantraCore/ConsoleFormatter.h>

#include "ConsoleVariantText.h"

#include <ostream>
#include <string>

namespace Tarvex::VantraCore {
namespace {

void writeKey(std::ostream &out, InternedString key) {
  out.write(key.data(), static_cast<std::streamsize>(key.length()));
}

// The drawing of either tree, mutable or frozen. A nested entry's lead starts with the line end that
// its parent's line is still waiting for, and a value ends its own line: so the first entry under a
// key stands on the next line and the later ones follow an empty line.
template <class Node>
class TreeDrawing {
 public:
  TreeDrawing(std::ostream &out, ConsoleOptions const &options) : m_out(out), m_options(options) {}

  void draw(Node const &node, char const *lead, std::string const &indent, char const *mark) {
    switch (node.kind()) {
      case PropertyNodeKind::Value:
        Internal::writeConsoleVariant(m_out, node.value(), m_options);
        m_out << '\n';
        return;
      case PropertyNodeKind::Map: {
        if (node.map().empty()) return drawEmpty("{}\n");
        std::string const nested = indent + "    ";
        for (auto const &entry : node.map()) {
          m_out << lead << indent << mark << " '";
          writeKey(m_out, entry.key);
          m_out << "': ";
          draw(entry.node, "\n|", nested, "`-->");
        }
        return;
      }
      case PropertyNodeKind::List: {
        if (node.list().empty()) return drawEmpty("[]\n");
        if (m_options.listElements == ConsoleOptions::ListElements::indexed) {
          std::string const nested = indent + "    ";
          std::size_t index = 0;
          for (Node const &element : node.list()) {
            m_out << lead << indent << mark << " [" << std::to_string(index++) << "]: ";
            draw(element, "\n|", nested, "`-->");
          }
          return;
        }
        for (Node const &element : node.list())
          draw(element, "|--->", std::string(), "");
        return;
      }
      case PropertyNodeKind::Null:
        return drawEmpty("null\n");
    }
  }

 private:
  void drawEmpty(char const *text) {
    if (m_options.showEmptyNodes) m_out << text;
  }

  std::ostream &m_out;
  ConsoleOptions const &m_options;
};

template <class Node>
std::ostream &drawRoot(std::ostream &out, Node const &node, ConsoleOptions const &options) {
  TreeDrawing<Node>(out, options).draw(node, "|--->", std::string(), "");
  return out;
}

}  // namespace

std::ostream &ConsoleFormatter::variantToStream(VxVariant const &value, std::ostream &out) {
  return variantToStream(value, out, ConsoleOptions());
}

std::ostream &ConsoleFormatter::variantToStream(VxVariantAbi const &value, std::ostream &out) {
  return variantToStream(value, out, ConsoleOptions());
}

std::ostream &ConsoleFormatter::variantToStream(VxVariant const &value, std::ostream &out,
                                                ConsoleOptions const &options) {
  Internal::writeConsoleVariant(out, value, options);
  return out;
}

std::ostream &ConsoleFormatter::variantToStream(VxVariantAbi const &value, std::ostream &out,
                                                ConsoleOptions const &options) {
  Internal::writeConsoleVariant(out, value, options);
  return out;
}

std::ostream &ConsoleFormatter::serialize(PropertyNode node, std::ostream &out) {
  return drawRoot(out, node, ConsoleOptions());
}

std::ostream &ConsoleFormatter::serialize(FPropertyNode node, std::ostream &out) {
  return drawRoot(out, node, ConsoleOptions());
}

std::ostream &ConsoleFormatter::serialize(PropertyNode node, std::ostream &out,
                                          ConsoleOptions const &options) {
  return drawRoot(out, node, options);
}

std::ostream &ConsoleFormatter::serialize(FPropertyNode node, std::ostream &out,
                                          ConsoleOptions const &options) {
  return drawRoot(out, node, options);
}

}  // namespace Tarvex::VantraCore
