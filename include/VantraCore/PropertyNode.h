#pragma once

#include <VantraCore/Export.h>
#include <VantraCore/InternedString.h>
#include <VantraCore/VxString.h>
#include <VantraCore/VxVariant.h>

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <iosfwd>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace Tarvex::VantraCore {

// Every member below is inline: client modules and the library compile the same code, so the
// in-memory form of these classes is shared between modules and must not change.

enum class PropertyNodeKind : std::uint8_t { Null = 0, Value = 1, List = 2, Map = 3 };

class PropertyNode;
struct PropertyMapEntry;

namespace Internal {

struct PropertyMapAccess;

// The sequence operations that lists and maps share, over their one field, a standard vector.
template <class Item>
class PropertySequence {
 public:
  using value_type = Item;
  using iterator = typename std::vector<Item>::iterator;
  using const_iterator = typename std::vector<Item>::const_iterator;

  std::size_t size() const noexcept { return m_items.size(); }
  bool empty() const noexcept { return m_items.empty(); }
  iterator begin() noexcept { return m_items.begin(); }
  iterator end() noexcept { return m_items.end(); }
  const_iterator begin() const noexcept { return m_items.begin(); }
  const_iterator end() const noexcept { return m_items.end(); }
  void reserve(std::size_t count) { m_items.reserve(count); }
  iterator erase(const_iterator position) { return m_items.erase(position); }
  iterator erase(const_iterator first, const_iterator last) { return m_items.erase(first, last); }
  void clear() noexcept { m_items.clear(); }

  // Element by element, in order.
  friend bool operator==(PropertySequence const &a, PropertySequence const &b) {
    return a.m_items == b.m_items;
  }
  friend bool operator!=(PropertySequence const &a, PropertySequence const &b) { return !(a == b); }

 protected:
  PropertySequence() = default;
  explicit PropertySequence(std::vector<Item> items) noexcept : m_items(std::move(items)) {}

  std::vector<Item> m_items;
};

}  // namespace Internal

// The nodes of a list, in order.
class PropertyList : public Internal::PropertySequence<PropertyNode> {
 public:
  PropertyList() = default;
  PropertyList(std::initializer_list<PropertyNode> nodes);
  explicit PropertyList(std::vector<PropertyNode> nodes) noexcept : PropertySequence(std::move(nodes)) {}

  // Unchecked, as for a standard vector.
  PropertyNode &operator[](std::size_t index) noexcept { return m_items[index]; }
  PropertyNode const &operator[](std::size_t index) const noexcept { return m_items[index]; }
  // Checked: std::out_of_range "List index out of range: " and the index.
  PropertyNode &at(std::size_t index);
  PropertyNode const &at(std::size_t index) const { return const_cast<PropertyList *>(this)->at(index); }
  void push_back(PropertyNode node);
};

// Keyed nodes in the order of first insertion. A flat vector: maps hold a handful of keys, and a
// lookup is one pointer comparison per entry, since equal interned names share one address.
class PropertyMap : public Internal::PropertySequence<PropertyMapEntry> {
 public:
  using Entry = PropertyMapEntry;
  using PropertySequence::erase;

  PropertyMap() = default;

  iterator find(InternedString key) noexcept;
  const_iterator find(InternedString key) const noexcept {
    return const_cast<PropertyMap *>(this)->find(key);
  }
  // std::out_of_range "Key not found: " and the key.
  PropertyNode &at(InternedString key);
  PropertyNode const &at(InternedString key) const { return const_cast<PropertyMap *>(this)->at(key); }
  // Replaces the node of an existing key where it stands, or appends a new entry.
  std::pair<iterator, bool> insertOrAssign(InternedString key, PropertyNode node);
  // The number of entries removed: 0 or 1.
  std::size_t erase(InternedString key);

 private:
  friend class PropertyNode;
  friend struct Internal::PropertyMapAccess;
  [[noreturn]] static void throwKeyNotFound(InternedString key);
};

// A tree node: nothing, a variant, a list or a map. It owns its subtree and copies it deeply.
class PropertyNode {
 public:
  PropertyNode() noexcept : m_kind(PropertyNodeKind::Null) {}
  PropertyNode(VxVariant value) noexcept : m_kind(PropertyNodeKind::Value) {
    new (&m_value) VxVariant(std::move(value));
  }
  PropertyNode(VxString text) : PropertyNode(VxVariant(std::move(text))) {}
  PropertyNode(char const *text) : PropertyNode(VxString(text)) {}
  PropertyNode(PropertyList list) noexcept : m_kind(PropertyNodeKind::List) {
    new (&m_list) PropertyList(std::move(list));
  }
  PropertyNode(PropertyMap map) noexcept : m_kind(PropertyNodeKind::Map) {
    new (&m_map) PropertyMap(std::move(map));
  }

  PropertyNode(PropertyNode const &other);
  // The source is left Null.
  PropertyNode(PropertyNode &&other) noexcept : m_kind(PropertyNodeKind::Null) { relocateFrom(other); }
  // A failed copy leaves this node as it was.
  PropertyNode &operator=(PropertyNode const &other) { return *this = PropertyNode(other); }
  // The source is left Null; it may live inside this node's own subtree.
  PropertyNode &operator=(PropertyNode &&other) noexcept {
    PropertyNode taken(std::move(other));
    reset();
    relocateFrom(taken);
    return *this;
  }
  PropertyNode &operator=(VxVariant value) noexcept {
    reset();
    new (&m_value) VxVariant(std::move(value));
    m_kind = PropertyNodeKind::Value;
    return *this;
  }
  PropertyNode &operator=(VxString text) { return *this = VxVariant(std::move(text)); }
  PropertyNode &operator=(char const *text) { return *this = VxString(text); }
  ~PropertyNode() { reset(); }

  PropertyNodeKind kind() const noexcept { return m_kind; }
  // The node's own kind; a Value holding a null variant is not null.
  bool isNull() const noexcept { return m_kind == PropertyNodeKind::Null; }

  // std::out_of_range "PropertyNode is not a value" / "... a list" / "... a map" on another kind.
  VxVariant &value() {
    check(PropertyNodeKind::Value, "PropertyNode is not a value");
    return m_value;
  }
  VxVariant const &value() const { return const_cast<PropertyNode *>(this)->value(); }
  PropertyList &list() {
    check(PropertyNodeKind::List, "PropertyNode is not a list");
    return m_list;
  }
  PropertyList const &list() const { return const_cast<PropertyNode *>(this)->list(); }
  PropertyMap &map() {
    check(PropertyNodeKind::Map, "PropertyNode is not a map");
    return m_map;
  }
  PropertyMap const &map() const { return const_cast<PropertyNode *>(this)->map(); }

  // Stores `child` (a PropertyNode, a VxVariant or anything a node is made from) under `key` and
  // returns the stored node. A Null node becomes a map first; any other kind but a map throws
  // std::out_of_range "PropertyNode is not a Map" and stays as it was. An existing key keeps its place.
  template <class Child>
  PropertyNode &set(InternedString key, Child &&child);

  friend bool operator==(PropertyNode const &a, PropertyNode const &b);
  friend bool operator!=(PropertyNode const &a, PropertyNode const &b) { return !(a == b); }

 private:
  void check(PropertyNodeKind wanted, char const *message) const {
    if (m_kind != wanted) throw std::out_of_range(message);
  }
  // Destroys the payload, leaving Null.
  void reset() noexcept;
  // Takes over the payload of `other` (this one being Null) and leaves `other` Null.
  void relocateFrom(PropertyNode &other) noexcept;

  PropertyNodeKind m_kind;
  union {
    VxVariant m_value;
    PropertyList m_list;
    PropertyMap m_map;
  };
};

static_assert(sizeof(PropertyNode) == 8 + sizeof(VxVariant), "PropertyNode: the tag, then the payload");

struct PropertyMapEntry {
  PropertyMapEntry(InternedString entryKey, PropertyNode entryNode)
      : key(entryKey), node(std::move(entryNode)) {}

  InternedString key;
  PropertyNode node;

  friend bool operator==(PropertyMapEntry const &a, PropertyMapEntry const &b) {
    return a.key == b.key && a.node == b.node;
  }
  friend bool operator!=(PropertyMapEntry const &a, PropertyMapEntry const &b) { return !(a == b); }
};

// PropertyList

inline PropertyList::PropertyList(std::initializer_list<PropertyNode> nodes)
    : PropertySequence(std::vector<PropertyNode>(nodes)) {}
inline PropertyNode &PropertyList::at(std::size_t index) {
  if (index >= m_items.size()) throw std::out_of_range("List index out of range: " + std::to_string(index));
  return m_items[index];
}
inline void PropertyList::push_back(PropertyNode node) {
  m_items.push_back(std::move(node));
}

// PropertyMap

inline PropertyMap::iterator PropertyMap::find(InternedString key) noexcept {
  iterator entry = m_items.begin();
  while (entry != m_items.end() && entry->key != key)
    ++entry;
  return entry;
}
inline void PropertyMap::throwKeyNotFound(InternedString key) {
  std::string message = "Key not found: ";
  message.append(key.data(), key.length());
  throw std::out_of_range(message);
}
inline PropertyNode &PropertyMap::at(InternedString key) {
  iterator const entry = find(key);
  if (entry == m_items.end()) throwKeyNotFound(key);
  return entry->node;
}
inline std::pair<PropertyMap::iterator, bool> PropertyMap::insertOrAssign(InternedString key,
                                                                          PropertyNode node) {
  iterator const entry = find(key);
  if (entry != m_items.end()) {
    entry->node = std::move(node);
    return {entry, false};
  }
  m_items.emplace_back(key, std::move(node));
  return {m_items.end() - 1, true};
}
inline std::size_t PropertyMap::erase(InternedString key) {
  const_iterator const entry = find(key);
  if (entry == m_items.end()) return 0;
  m_items.erase(entry);
  return 1;
}

// PropertyNode

inline PropertyNode::PropertyNode(PropertyNode const &other) : m_kind(PropertyNodeKind::Null) {
  switch (other.m_kind) {
    case PropertyNodeKind::Value:
      new (&m_value) VxVariant(other.m_value);
      break;
    case PropertyNodeKind::List:
      new (&m_list) PropertyList(other.m_list);
      break;
    case PropertyNodeKind::Map:
      new (&m_map) PropertyMap(other.m_map);
      break;
    case PropertyNodeKind::Null:
      break;
  }
  m_kind = other.m_kind;
}

inline void PropertyNode::reset() noexcept {
  switch (m_kind) {
    case PropertyNodeKind::Value:
      m_value.~VxVariant();
      break;
    case PropertyNodeKind::List:
      m_list.~PropertyList();
      break;
    case PropertyNodeKind::Map:
      m_map.~PropertyMap();
      break;
    case PropertyNodeKind::Null:
      break;
  }
  m_kind = PropertyNodeKind::Null;
}

inline void PropertyNode::relocateFrom(PropertyNode &other) noexcept {
  switch (other.m_kind) {
    case PropertyNodeKind::Value:
      new (&m_value) VxVariant(std::move(other.m_value));
      break;
    case PropertyNodeKind::List:
      new (&m_list) PropertyList(std::move(other.m_list));
      break;
    case PropertyNodeKind::Map:
      new (&m_map) PropertyMap(std::move(other.m_map));
      break;
    case PropertyNodeKind::Null:
      break;
  }
  m_kind = other.m_kind;
  other.reset();
}

template <class Child>
PropertyNode &PropertyNode::set(InternedString key, Child &&child) {
  if (m_kind == PropertyNodeKind::Null) {
    // Built aside, so that a failure leaves this node Null.
    PropertyMap map;
    map.m_items.emplace_back(key, PropertyNode(std::forward<Child>(child)));
    *this = PropertyNode(std::move(map));
    return m_map.m_items.front().node;
  }
  check(PropertyNodeKind::Map, "PropertyNode is not a Map");
  PropertyMap::iterator const entry = m_map.find(key);
  if (entry != m_map.end()) {
    entry->node = std::forward<Child>(child);
    return entry->node;
  }
  m_map.m_items.emplace_back(key, PropertyNode(std::forward<Child>(child)));
  return m_map.m_items.back().node;
}

// One line for test failure messages, through the frozen tree: see the FPropertyNode overloads.
// Declared beside the classes so that argument-dependent lookup finds them; defined in src/formatting.
VANTRACORE_API void PrintTo(PropertyNode const &node, std::ostream *out);
VANTRACORE_API void PrintTo(PropertyList const &list, std::ostream *out);
VANTRACORE_API void PrintTo(PropertyMap const &map, std::ostream *out);

inline bool operator==(PropertyNode const &a, PropertyNode const &b) {
  if (a.m_kind != b.m_kind) return false;
  switch (a.m_kind) {
    case PropertyNodeKind::Value:
      return a.m_value.isIdenticalTo(b.m_value);
    case PropertyNodeKind::List:
      return a.m_list == b.m_list;
    case PropertyNodeKind::Map:
      return a.m_map == b.m_map;
    case PropertyNodeKind::Null:
      break;
  }
  return true;
}

}  // namespace Tarvex::VantraCore
