#pragma once

#include <VantraCore/Export.h>
#include <VantraCore/InternedString.h>
#include <VantraCore/PropertyNode.h>
#include <VantraCore/VxString.h>
#include <VantraCore/VxVariant.h>

namespace Tarvex::VantraCore::Experimental {

class ObjectMetadata;

// An object of any type as read from a store: a map naming its type under "__object_type", with
// optional metadata under "__Metadata". Nothing is checked until asked.
class VANTRACORE_API GenericPropertyObject {
 public:
  // An empty map without a type: not null.
  GenericPropertyObject();
  explicit GenericPropertyObject(VxString objectType);
  explicit GenericPropertyObject(InternedString objectType);
  // Any node, of any kind, unchecked.
  explicit GenericPropertyObject(PropertyNode node);

  PropertyNode const &getPropertyHandle() const noexcept { return m_node; }
  bool isNull() const noexcept { return m_node.isNull(); }

  // The type name; the empty string when it is there but no string. A non-map throws
  // std::out_of_range "PropertyNode is not a map", a missing key "Key not found: __object_type".
  VxString getObjectType() const;
  static VxString getObjectType(PropertyNode const &node);

  // Never fails: anything amiss gives a default ObjectMetadata.
  ObjectMetadata getMetadata() const;
  void setMetadata(ObjectMetadata metadata);
  // An empty name throws std::invalid_argument naming the member's type.
  void setMember(InternedString const &name, GenericPropertyObject member);

 private:
  static InternedString const keyObjectType;

  PropertyNode m_node;
};

// The base of typed objects, whose state lives wholly in the node so that a store can keep it.
class VANTRACORE_API PropertyObject {
 public:
  PropertyObject();
  explicit PropertyObject(VxString objectType);
  explicit PropertyObject(InternedString objectType);
  explicit PropertyObject(GenericPropertyObject object);
  PropertyObject(PropertyObject const &other);
  PropertyObject(PropertyObject &&other) noexcept;
  PropertyObject &operator=(PropertyObject const &other);
  PropertyObject &operator=(PropertyObject &&other) noexcept;
  virtual ~PropertyObject() = 0;

  operator GenericPropertyObject() const;

  // The const form hands out the tree too, so that a typed object's readers reach it.
  PropertyNode &getPropertyHandle() noexcept { return m_node; }
  PropertyNode &getPropertyHandle() const noexcept { return m_node; }
  bool isNull() const noexcept { return m_node.isNull(); }

  VxString getObjectType() const;
  static VxString getObjectType(PropertyNode const &node);

  ObjectMetadata getMetadata() const;
  void setMetadata(ObjectMetadata metadata);

 protected:
  // False for a node that is no map.
  bool hasMember(InternedString const &name) const;
  void setMember(InternedString const &name, GenericPropertyObject member);
  void setProperty(InternedString const &name, VxVariant value);

 private:
  static InternedString const keyObjectType;

  mutable PropertyNode m_node;
};

// Metadata carried by an object, itself an object of type "_Metadata".
class VANTRACORE_API ObjectMetadata : public PropertyObject {
 public:
  static InternedString const MetadataFolder;
  static InternedString const ObjectType;

  ObjectMetadata();
  // Throws std::runtime_error "Not a _Metadata PropertyObject" for another type, and the type
  // reading's failures for a node without one.
  explicit ObjectMetadata(GenericPropertyObject object);
  ObjectMetadata(ObjectMetadata const &other);
  ObjectMetadata(ObjectMetadata &&other) noexcept;
  ObjectMetadata &operator=(ObjectMetadata const &other);
  ObjectMetadata &operator=(ObjectMetadata &&other) noexcept;
  ~ObjectMetadata() override;

  static InternedString objectType() { return ObjectType; }
};

}  // namespace Tarvex::VantraCore::Experimental
