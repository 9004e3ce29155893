// The vantra tool's --at paths on arbitrary text, over a fixed document or over plain JSON that the
// input carries after a NUL byte. A path that reaches nothing is refused by a ToolError that says why;
// each node found sits under the parent given with it and, unless an empty key is on its way, is
// reached again by the path given with it; the segments of a path survive being written back as text.
#include "Errors.h"
#include "PathText.h"

#include <VantraCore/JsonFormatterMidFidelity.h>
#include <VantraCore/PropertyNode.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <set>
#include <string>
#include <vector>

using namespace Tarvex::VantraCore;

namespace {

// Keys a path must escape or that look like its other parts, and the empty list and map.
char const fixedDocument[] = R"({
  "channels": [{"name": "supply", "samples": [1, 2, 3], "unit": "mV"}, {"name": "t", "samples": []}],
  "odd": {"a/b": 1, "~": 2, "*": 3, "0": {"00": null}, "": 4, "~1": 5},
  "empty": [], "none": {}, "nil": null
})";

// The document the input carries, or the fixed one when it carries none that reads.
PropertyNode documentOf(char const *nul, char const *end) {
  if (nul != nullptr) {
    try {
      return JsonFormatterMidFidelity::deserializePropertyNode(VxString(nul + 1, end - nul - 1),
                                                               JsonArrays::asLists, 1 << 16);
    } catch (std::exception const &) {
    }
  }
  static PropertyNode const fixed =
      JsonFormatterMidFidelity::deserializePropertyNode(VxString(fixedDocument));
  return fixed;
}

bool isChildOf(PropertyNode const *node, PropertyNode &parent) {
  if (parent.kind() == PropertyNodeKind::List) {
    for (PropertyNode &child : parent.list())
      if (&child == node) return true;
  } else if (parent.kind() == PropertyNodeKind::Map) {
    for (PropertyMapEntry &entry : parent.map())
      if (&entry.node == node) return true;
  }
  return false;
}

// The nodes under an empty key, which no path names: "" is the root and an empty segment is refused.
void collectUnnamed(PropertyNode &node, bool unnamed, std::set<PropertyNode const *> &out) {
  if (unnamed) out.insert(&node);
  if (node.kind() == PropertyNodeKind::List) {
    for (PropertyNode &child : node.list())
      collectUnnamed(child, unnamed, out);
  } else if (node.kind() == PropertyNodeKind::Map) {
    for (PropertyMapEntry &entry : node.map())
      collectUnnamed(entry.node, unnamed || entry.key.length() == 0, out);
  }
}

void requireRefusal(vantra::ToolError const &refusal, std::string const &path) {
  std::string const message = refusal.what();
  std::string const missed = "no property at " + vantra::quoted(path) + " in input: ";
  bool const explained = message.size() > missed.size() && message.compare(0, missed.size(), missed) == 0;
  if (!explained && message.rfind("bad property path " + vantra::quoted(path) + ": ", 0) != 0) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
  char const *text = reinterpret_cast<char const *>(data);
  char const *nul = static_cast<char const *>(std::memchr(text, 0, size));
  std::string const path(text, nul ? nul : text + size);
  PropertyNode root = documentOf(nul, text + size);
  try {
    std::vector<std::string> const segments = vantra::parsePathText(path);
    if (vantra::parsePathText(vantra::pathText(segments)) != segments) std::abort();
  } catch (vantra::ToolError const &refusal) {
    requireRefusal(refusal, path);
  }
  std::vector<vantra::FoundNode> found;
  try {
    found = vantra::findNodes(root, path, "input");
  } catch (vantra::ToolError const &refusal) {
    requireRefusal(refusal, path);
    return 0;
  }
  std::set<PropertyNode const *> unnamed;
  collectUnnamed(root, false, unnamed);
  for (vantra::FoundNode const &each : found) {
    if (each.parent == nullptr ? each.node != &root : !isChildOf(each.node, *each.parent)) std::abort();
    if (unnamed.count(each.node) != 0) continue;
    std::vector<vantra::FoundNode> const again = vantra::findNodes(root, each.path, "input");
    if (std::none_of(again.begin(), again.end(),
                     [&](vantra::FoundNode const &n) { return n.node == each.node; }))
      std::abort();
  }
  return 0;
}
