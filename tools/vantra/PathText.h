#pragma once

#include <VantraCore/PropertyNode.h>

#include <string>
#include <vector>

namespace vantra {

// One node a path reached, with the map or list holding it (nullptr for the root).
struct FoundNode {
  Tarvex::VantraCore::PropertyNode *node;
  Tarvex::VantraCore::PropertyNode *parent;
  std::string path;  // as pathText writes it
};

// The segments of a path as --at takes it: JSON Pointer text ("~1" for "/", "~0" for "~"), the
// leading "/" optional; "" and "/" name the root. An empty segment or a bad escape throws ToolError.
std::vector<std::string> parsePathText(std::string const &text);

// Segments joined back into path text, escaped so that parsePathText gives them again.
std::string pathText(std::vector<std::string> const &segments);

// Every node `text` reaches in `root`, in document order. A segment of digits is an index on a list and
// a key on a map; "*" is every child of a list or a map. Nothing reached throws ToolError "no property
// at '<text>' in <source>: <why>".
std::vector<FoundNode> findNodes(Tarvex::VantraCore::PropertyNode &root, std::string const &text,
                                 std::string const &source);

}  // namespace vantra
