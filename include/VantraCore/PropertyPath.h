#pragma once

#include <VantraCore/Export.h>
#include <VantraCore/InternedString.h>

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace Tarvex::VantraCore {

// A place in a property tree: from the root down, each step a key into a map or an index into a list.
// Header-level like PropertyNode; its in-memory form is shared between modules.
class PropertyPath {
 public:
  class Segment {
   public:
    Segment(InternedString name) noexcept : m_name(name), m_isIndex(0) {}
    Segment(char const *name) : Segment(InternedString(name)) {}
    Segment(std::uint64_t index) noexcept : m_index(index), m_isIndex(1) {}
    // Any integer, so that a literal 0 is an index rather than a null name. std::invalid_argument
    // "Property Path index is negative: " and the index.
    template <class Integer,
              std::enable_if_t<std::is_integral_v<Integer> && !std::is_same_v<Integer, bool>, int> = 0>
    Segment(Integer index) : Segment(checkedIndex(index)) {}

    bool isIndex() const noexcept { return m_isIndex != 0; }
    // std::runtime_error on a segment of the other sort.
    InternedString name() const {
      if (isIndex()) throw std::runtime_error("Property Path segment is an index, not a name.");
      return m_name;
    }
    std::uint64_t index() const {
      if (!isIndex()) throw std::runtime_error("Property Path segment is a name, not an index.");
      return m_index;
    }

    friend bool operator==(Segment const &a, Segment const &b) noexcept {
      if (a.isIndex() != b.isIndex()) return false;
      return a.isIndex() ? a.m_index == b.m_index : a.m_name == b.m_name;
    }
    friend bool operator!=(Segment const &a, Segment const &b) noexcept { return !(a == b); }

   private:
    template <class Integer>
    static std::uint64_t checkedIndex(Integer index) {
      if constexpr (std::is_signed_v<Integer>) {
        if (index < 0)
          throw std::invalid_argument("Property Path index is negative: " + std::to_string(index));
      }
      return static_cast<std::uint64_t>(index);
    }

    // The index lies over the name's length.
    union {
      InternedString m_name;
      std::uint64_t m_index;
    };
    std::uint32_t m_isIndex;
  };

  using const_iterator = std::vector<Segment>::const_iterator;

  PropertyPath() = default;
  PropertyPath(std::vector<Segment> segments) noexcept : m_segments(std::move(segments)) {}

  std::vector<Segment> const &segments() const noexcept { return m_segments; }
  std::size_t size() const noexcept { return m_segments.size(); }
  bool empty() const noexcept { return m_segments.empty(); }
  const_iterator begin() const noexcept { return m_segments.begin(); }
  const_iterator end() const noexcept { return m_segments.end(); }

  friend bool operator==(PropertyPath const &a, PropertyPath const &b) {
    return a.m_segments == b.m_segments;
  }
  friend bool operator!=(PropertyPath const &a, PropertyPath const &b) { return !(a == b); }

 private:
  std::vector<Segment> m_segments;
};

static_assert(sizeof(PropertyPath::Segment) == 24, "Segment: name or index, then the flag");

// "{a, 0, b}": names bare, indices as numbers, for diagnostics only.
VANTRACORE_API void PrintTo(PropertyPath const &path, std::ostream *os);

// The node that `path` names below `root`, for any tree whose nodes offer map().at(key) and list()
// with size() and operator[] (PropertyNode, FPropertyNode). The reference lives as long as `root`'s
// tree. A name step fails as map().at does ("PropertyNode is not a map", "Key not found: " ...); an
// index step as list() does, or with std::out_of_range "List index out of range: " and the index.
template <class Node>
Node &resolvePropertyPath(Node &root, PropertyPath const &path) {
  Node *node = &root;
  for (PropertyPath::Segment const &segment : path) {
    if (segment.isIndex()) {
      auto &&list = node->list();
      std::uint64_t const index = segment.index();
      if (index >= list.size()) throw std::out_of_range("List index out of range: " + std::to_string(index));
      node = &list[static_cast<std::size_t>(index)];
    } else {
      node = &node->map().at(segment.name());
    }
  }
  return *node;
}

}  // namespace Tarvex::VantraCore
