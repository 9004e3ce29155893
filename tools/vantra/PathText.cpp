#include "PathText.h"

#include "Errors.h"

#include <VantraCore/VantraCore.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdlib>

namespace vantra {

using namespace Tarvex::VantraCore;

namespace {

bool allDigits(std::string const &segment) {
  return !segment.empty() &&
         std::all_of(segment.begin(), segment.end(), [](unsigned char c) { return std::isdigit(c) != 0; });
}

std::string unescaped(std::string const &segment, std::string const &text) {
  std::string plain;
  for (std::size_t i = 0; i < segment.size(); ++i) {
    if (segment[i] != '~') {
      plain += segment[i];
      continue;
    }
    char const next = i + 1 < segment.size() ? segment[i + 1] : '\0';
    if (next != '0' && next != '1')
      throw ToolError("bad property path " + quoted(text) + ": '~' must be followed by 0 or 1");
    plain += next == '0' ? '~' : '/';
    ++i;
  }
  return plain;
}

struct Walk {
  std::vector<std::string> const &segments;
  std::vector<FoundNode> found;
  std::string firstMiss;  // why the first branch that reached nothing stopped

  void miss(std::string why) {
    if (firstMiss.empty()) firstMiss = std::move(why);
  }

  void step(PropertyNode &node, PropertyNode *parent, std::vector<std::string> &at, std::size_t depth) {
    if (depth == segments.size()) {
      found.push_back(FoundNode{&node, parent, pathText(at)});
      return;
    }
    std::string const &segment = segments[depth];
    auto const into = [&](PropertyNode &child, std::string name) {
      at.push_back(std::move(name));
      step(child, &node, at, depth + 1);
      at.pop_back();
    };
    if (node.kind() == PropertyNodeKind::List) {
      PropertyList &list = node.list();
      if (segment == "*") {
        if (list.empty()) miss(quoted(pathText(at)) + " is an empty list");
        for (std::size_t i = 0; i < list.size(); ++i)
          into(list[i], std::to_string(i));
      } else if (!allDigits(segment)) {
        miss(quoted(pathText(at)) + " is a list; " + quoted(segment) + " is no index");
      } else {
        errno = 0;
        unsigned long long const index = std::strtoull(segment.c_str(), nullptr, 10);
        if (errno == ERANGE || index >= list.size())
          miss("List index out of range: " + segment);
        else
          into(list[static_cast<std::size_t>(index)], segment);
      }
    } else if (node.kind() == PropertyNodeKind::Map) {
      PropertyMap &map = node.map();
      if (segment == "*") {
        if (map.empty()) miss(quoted(pathText(at)) + " is an empty map");
        for (PropertyMapEntry &entry : map)
          into(entry.node, std::string(entry.key.data(), entry.key.length()));
      } else {
        auto const entry = map.find(InternedString(segment.data(), segment.size()));
        if (entry == map.end())
          miss("no key " + quoted(segment) + (at.empty() ? "" : " in " + quoted(pathText(at))));
        else
          into(entry->node, segment);
      }
    } else {
      miss(quoted(pathText(at)) + " holds " + (node.isNull() ? "null" : "a value") + ", nothing under it");
    }
  }
};

}  // namespace

std::vector<std::string> parsePathText(std::string const &text) {
  std::vector<std::string> segments;
  std::string::size_type start = text.empty() || text.front() != '/' ? 0 : 1;
  if (start == text.size()) return segments;
  for (;;) {
    std::string::size_type const slash = text.find('/', start);
    std::string const segment =
        text.substr(start, slash == std::string::npos ? std::string::npos : slash - start);
    if (segment.empty()) throw ToolError("bad property path " + quoted(text) + ": empty segment");
    segments.push_back(unescaped(segment, text));
    if (slash == std::string::npos) break;
    start = slash + 1;
  }
  return segments;
}

std::string pathText(std::vector<std::string> const &segments) {
  std::string text;
  for (std::string const &segment : segments) {
    if (!text.empty()) text += '/';
    for (char c : segment)
      text += c == '~' ? std::string("~0") : c == '/' ? std::string("~1") : std::string(1, c);
  }
  return text;
}

std::vector<FoundNode> findNodes(PropertyNode &root, std::string const &text, std::string const &source) {
  std::vector<std::string> const segments = parsePathText(text);
  Walk walk{segments, {}, {}};
  std::vector<std::string> at;
  walk.step(root, nullptr, at, 0);
  if (walk.found.empty())
    throw ToolError("no property at " + quoted(text) + " in " + source + ": " + walk.firstMiss);
  return std::move(walk.found);
}

}  // namespace vantra
