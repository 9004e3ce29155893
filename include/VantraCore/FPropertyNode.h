#pragma once

#include <VantraCore/Export.h>
#include <VantraCore/InternedString.h>
#include <VantraCore/PropertyNode.h>
#include <VantraCore/PropertyPath.h>
#include <VantraCore/VxVariant.h>
#include <VantraCore/detail/PropertyMapBuilding.h>

#include <cstddef>
#include <iosfwd>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace Tarvex::VantraCore {

namespace Internal {
struct FPropertyNodeImpl;
struct FPropertyListData;
struct FPropertyMapData;
}  // namespace Internal

class FPropertyList;
class FPropertyMap;

// A handle to a constant subtree. Copies share it, so any number of threads may read one tree; a
// change means freezing a new tree. The empty handle is the null node.
class FPropertyNode {
 public:
  FPropertyNode() noexcept = default;
  explicit FPropertyNode(PropertyNode const &node);
  explicit FPropertyNode(VxVariant value);
  explicit FPropertyNode(FPropertyList list);
  explicit FPropertyNode(FPropertyMap map);

  PropertyNodeKind kind() const noexcept;
  bool isNull() const noexcept { return kind() == PropertyNodeKind::Null; }

  VxVariant value() const;
  FPropertyList list() const;
  FPropertyMap map() const;

  // A mutable copy, rebuilt element by element in the frozen order.
  PropertyNode thaw() const;

  // Lets tests and callers see that a copy shares rather than walks.
  long useCount() const noexcept { return m_impl.use_count(); }

 private:
  std::shared_ptr<Internal::FPropertyNodeImpl const> m_impl;
};

// A constant list of frozen nodes. The empty handle walks the static empty list, so no walker branches.
class FPropertyList {
 public:
  using const_iterator = std::vector<FPropertyNode>::const_iterator;

  FPropertyList() noexcept = default;
  explicit FPropertyList(PropertyList const &list);
  explicit FPropertyList(std::vector<FPropertyNode> nodes);

  const_iterator begin() const noexcept;
  const_iterator end() const noexcept;
  std::size_t size() const noexcept;
  bool empty() const noexcept { return size() == 0; }
  // Throws std::out_of_range "List index out of range: " and the index past the end. References stay
  // valid while any handle to this list lives.
  FPropertyNode const &at(std::size_t index) const;
  FPropertyNode const &operator[](std::size_t index) const noexcept;

  PropertyList thaw() const;

 private:
  std::vector<FPropertyNode> const &nodes() const noexcept;

  std::shared_ptr<Internal::FPropertyListData const> m_data;
  VANTRACORE_API static Internal::FPropertyListData const s_nullListData;
};

// One key and its frozen node, as PropertyMap's entries.
struct FPropertyMapEntry {
  InternedString key;
  FPropertyNode node;
};

// A constant map in the order of first insertion; keys match by their interned address.
class FPropertyMap {
 public:
  using const_iterator = std::vector<FPropertyMapEntry>::const_iterator;

  FPropertyMap() noexcept = default;
  explicit FPropertyMap(PropertyMap const &map);
  // Later duplicates of a key are dropped: the first wins.
  explicit FPropertyMap(std::vector<FPropertyMapEntry> entries);

  const_iterator begin() const noexcept;
  const_iterator end() const noexcept;
  std::size_t size() const noexcept;
  bool empty() const noexcept { return size() == 0; }
  const_iterator find(InternedString key) const noexcept;
  bool contains(InternedString key) const noexcept { return find(key) != end(); }
  // Throws std::out_of_range "Key not found: " and the key. References stay valid while any handle to
  // this map lives.
  FPropertyNode const &at(InternedString key) const;

  PropertyMap thaw() const;

 private:
  std::vector<FPropertyMapEntry> const &entries() const noexcept;

  std::shared_ptr<Internal::FPropertyMapData const> m_data;
  VANTRACORE_API static Internal::FPropertyMapData const s_nullMapData;
};

namespace Internal {

struct FPropertyListData {
  std::vector<FPropertyNode> nodes;
};

struct FPropertyMapData {
  std::vector<FPropertyMapEntry> entries;
};

// The payload first and the kind behind it; only ever made const, in one block with its counts.
struct FPropertyNodeImpl {
  // Freezing copies straight into the payload: no temporary variant to move from and release.
  explicit FPropertyNodeImpl(VxVariant const &value) : kind(PropertyNodeKind::Value) {
    new (&payload.value) VxVariant(value);
  }
  explicit FPropertyNodeImpl(VxVariant &&value) : kind(PropertyNodeKind::Value) {
    new (&payload.value) VxVariant(std::move(value));
  }
  explicit FPropertyNodeImpl(FPropertyList list) : kind(PropertyNodeKind::List) {
    new (&payload.list) FPropertyList(std::move(list));
  }
  explicit FPropertyNodeImpl(FPropertyMap map) : kind(PropertyNodeKind::Map) {
    new (&payload.map) FPropertyMap(std::move(map));
  }
  FPropertyNodeImpl(FPropertyNodeImpl const &) = delete;
  FPropertyNodeImpl &operator=(FPropertyNodeImpl const &) = delete;
  ~FPropertyNodeImpl() {
    switch (kind) {
      case PropertyNodeKind::Value:
        payload.value.~VxVariant();
        break;
      case PropertyNodeKind::List:
        payload.list.~FPropertyList();
        break;
      case PropertyNodeKind::Map:
        payload.map.~FPropertyMap();
        break;
      default:
        break;
    }
  }

  union Payload {
    Payload() noexcept {}
    ~Payload() {}
    VxVariant value;
    FPropertyList list;
    FPropertyMap map;
  } payload;
  PropertyNodeKind kind;
};

}  // namespace Internal

// ---- FPropertyNode

inline FPropertyNode::FPropertyNode(PropertyNode const &node) {
  switch (node.kind()) {
    case PropertyNodeKind::Value:
      m_impl = std::make_shared<Internal::FPropertyNodeImpl const>(node.value());
      break;
    case PropertyNodeKind::List:
      m_impl = std::make_shared<Internal::FPropertyNodeImpl const>(FPropertyList(node.list()));
      break;
    case PropertyNodeKind::Map:
      m_impl = std::make_shared<Internal::FPropertyNodeImpl const>(FPropertyMap(node.map()));
      break;
    default:
      break;
  }
}
inline FPropertyNode::FPropertyNode(VxVariant value)
    : m_impl(std::make_shared<Internal::FPropertyNodeImpl const>(std::move(value))) {}
inline FPropertyNode::FPropertyNode(FPropertyList list)
    : m_impl(std::make_shared<Internal::FPropertyNodeImpl const>(std::move(list))) {}
inline FPropertyNode::FPropertyNode(FPropertyMap map)
    : m_impl(std::make_shared<Internal::FPropertyNodeImpl const>(std::move(map))) {}

inline PropertyNodeKind FPropertyNode::kind() const noexcept {
  return m_impl ? m_impl->kind : PropertyNodeKind::Null;
}
inline VxVariant FPropertyNode::value() const {
  if (kind() != PropertyNodeKind::Value) throw std::out_of_range("FPropertyNode is not a value");
  return m_impl->payload.value;
}
inline FPropertyList FPropertyNode::list() const {
  if (kind() != PropertyNodeKind::List) throw std::out_of_range("FPropertyNode is not a list");
  return m_impl->payload.list;
}
inline FPropertyMap FPropertyNode::map() const {
  if (kind() != PropertyNodeKind::Map) throw std::out_of_range("FPropertyNode is not a map");
  return m_impl->payload.map;
}
inline PropertyNode FPropertyNode::thaw() const {
  switch (kind()) {
    case PropertyNodeKind::Value:
      return PropertyNode(m_impl->payload.value);
    case PropertyNodeKind::List:
      return PropertyNode(m_impl->payload.list.thaw());
    case PropertyNodeKind::Map:
      return PropertyNode(m_impl->payload.map.thaw());
    default:
      return PropertyNode();
  }
}

// ---- FPropertyList

inline FPropertyList::FPropertyList(PropertyList const &list) {
  auto data = std::make_shared<Internal::FPropertyListData>();
  data->nodes.reserve(list.size());
  for (PropertyNode const &node : list)
    data->nodes.emplace_back(node);
  m_data = std::move(data);
}
inline FPropertyList::FPropertyList(std::vector<FPropertyNode> nodes)
    : m_data(std::make_shared<Internal::FPropertyListData const>(
          Internal::FPropertyListData{std::move(nodes)})) {}

inline std::vector<FPropertyNode> const &FPropertyList::nodes() const noexcept {
  return (m_data ? *m_data : s_nullListData).nodes;
}
inline FPropertyList::const_iterator FPropertyList::begin() const noexcept {
  return nodes().begin();
}
inline FPropertyList::const_iterator FPropertyList::end() const noexcept {
  return nodes().end();
}
inline std::size_t FPropertyList::size() const noexcept {
  return nodes().size();
}
inline FPropertyNode const &FPropertyList::operator[](std::size_t index) const noexcept {
  return nodes()[index];
}
inline FPropertyNode const &FPropertyList::at(std::size_t index) const {
  if (index >= size()) throw std::out_of_range("List index out of range: " + std::to_string(index));
  return nodes()[index];
}
inline PropertyList FPropertyList::thaw() const {
  FPropertyList const keep = *this;
  PropertyList list;
  list.reserve(keep.size());
  for (FPropertyNode const &node : keep)
    list.push_back(node.thaw());
  return list;
}

// ---- FPropertyMap

inline FPropertyMap::FPropertyMap(PropertyMap const &map) {
  auto data = std::make_shared<Internal::FPropertyMapData>();
  data->entries.reserve(map.size());
  Internal::forFirstOfEachKey(map, [&](PropertyMapEntry const &entry) {
    data->entries.push_back(FPropertyMapEntry{entry.key, FPropertyNode(entry.node)});
  });
  m_data = std::move(data);
}
inline FPropertyMap::FPropertyMap(std::vector<FPropertyMapEntry> entries) {
  auto data = std::make_shared<Internal::FPropertyMapData>();
  data->entries.reserve(entries.size());
  Internal::forFirstOfEachKey(entries,
                              [&](FPropertyMapEntry &entry) { data->entries.push_back(std::move(entry)); });
  m_data = std::move(data);
}

inline std::vector<FPropertyMapEntry> const &FPropertyMap::entries() const noexcept {
  return (m_data ? *m_data : s_nullMapData).entries;
}
inline FPropertyMap::const_iterator FPropertyMap::begin() const noexcept {
  return entries().begin();
}
inline FPropertyMap::const_iterator FPropertyMap::end() const noexcept {
  return entries().end();
}
inline std::size_t FPropertyMap::size() const noexcept {
  return entries().size();
}
inline FPropertyMap::const_iterator FPropertyMap::find(InternedString key) const noexcept {
  const_iterator it = begin();
  const_iterator const last = end();
  while (it != last && it->key != key)
    ++it;
  return it;
}
inline FPropertyNode const &FPropertyMap::at(InternedString key) const {
  const_iterator const it = find(key);
  if (it == end()) throw std::out_of_range("Key not found: " + std::string(key.data(), key.length()));
  return it->node;
}
inline PropertyMap FPropertyMap::thaw() const {
  FPropertyMap const keep = *this;
  PropertyMap map;
  // The frozen map's keys are distinct already.
  for (FPropertyMapEntry const &entry : keep)
    Internal::PropertyMapAccess::appendDistinct(map, entry.key, entry.node.thaw());
  return map;
}

// One line for test failure messages: a null node as "<NULL>", a value as its variant text, a list as
// "{1, 2}", a map as "{{'a', 1}, {'b', 2}}"; empty lists and maps as "{}". Declared beside the classes
// so that argument-dependent lookup finds them; defined in src/formatting, the layer that draws trees.
VANTRACORE_API void PrintTo(FPropertyNode const &node, std::ostream *out);
VANTRACORE_API void PrintTo(FPropertyList const &list, std::ostream *out);
VANTRACORE_API void PrintTo(FPropertyMap const &map, std::ostream *out);

// The frozen tree is only ever read, so a path walk from a mutable handle gives a constant node.
inline FPropertyNode const &resolvePropertyPath(FPropertyNode &root, PropertyPath const &path) {
  return resolvePropertyPath<FPropertyNode const>(root, path);
}

}  // namespace Tarvex::VantraCore
