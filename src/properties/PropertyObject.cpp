#include <VantraCore/PropertyObject.h>

#include <cstring>
#include <stdexcept>
#include <string>
#include <utility>

namespace Tarvex::VantraCore::Experimental {

InternedString const GenericPropertyObject::keyObjectType("__object_type");
InternedString const PropertyObject::keyObjectType("__object_type");
InternedString const ObjectMetadata::MetadataFolder("__Metadata");
InternedString const ObjectMetadata::ObjectType("_Metadata");

namespace {

PropertyNode typedMap(VxString objectType, InternedString key) {
  PropertyNode node{PropertyMap()};
  node.set(key, std::move(objectType));
  return node;
}

VxString readObjectType(PropertyNode const &node, InternedString key) {
  PropertyNode const &entry = node.map().at(key);
  if (entry.kind() != PropertyNodeKind::Value) return VxString();
  try {
    VxVariant const &value = entry.value();
    if (value.isNull()) return VxString();
    return value.get<VxString>();
  } catch (...) {
    // A type that is no single string is no type, and not worth a report.
    return VxString();
  }
}

ObjectMetadata readMetadata(PropertyNode const &node) {
  try {
    PropertyMap const &map = node.map();
    auto const found = map.find(ObjectMetadata::MetadataFolder);
    if (found != map.end()) return ObjectMetadata(GenericPropertyObject(found->node));
  } catch (...) {
    // Broken metadata must not make the object unreadable.
  }
  return ObjectMetadata();
}

}  // namespace

// ---- GenericPropertyObject

GenericPropertyObject::GenericPropertyObject() : m_node(PropertyMap()) {}
GenericPropertyObject::GenericPropertyObject(VxString objectType)
    : m_node(typedMap(std::move(objectType), keyObjectType)) {}
GenericPropertyObject::GenericPropertyObject(InternedString objectType)
    : GenericPropertyObject(VxString(objectType.view())) {}
GenericPropertyObject::GenericPropertyObject(PropertyNode node) : m_node(std::move(node)) {}

VxString GenericPropertyObject::getObjectType() const {
  return getObjectType(m_node);
}
VxString GenericPropertyObject::getObjectType(PropertyNode const &node) {
  return readObjectType(node, keyObjectType);
}

ObjectMetadata GenericPropertyObject::getMetadata() const {
  return readMetadata(m_node);
}
void GenericPropertyObject::setMetadata(ObjectMetadata metadata) {
  m_node.set(ObjectMetadata::MetadataFolder, std::move(metadata.getPropertyHandle()));
}

void GenericPropertyObject::setMember(InternedString const &name, GenericPropertyObject member) {
  if (name.length() == 0) {
    VxString const type = member.getObjectType();
    throw std::invalid_argument("Name can't be empty for " + std::string(type.c_str(), type.size()) +
                                " -- PropertyObject::setMember()");
  }
  m_node.set(name, std::move(member.m_node));
}

// ---- PropertyObject

PropertyObject::PropertyObject() : m_node(PropertyMap()) {}
PropertyObject::PropertyObject(VxString objectType)
    : m_node(typedMap(std::move(objectType), keyObjectType)) {}
PropertyObject::PropertyObject(InternedString objectType) : PropertyObject(VxString(objectType.view())) {}
PropertyObject::PropertyObject(GenericPropertyObject object) : m_node(object.getPropertyHandle()) {}
PropertyObject::PropertyObject(PropertyObject const &other) = default;
PropertyObject::PropertyObject(PropertyObject &&other) noexcept = default;
PropertyObject &PropertyObject::operator=(PropertyObject const &other) = default;
PropertyObject &PropertyObject::operator=(PropertyObject &&other) noexcept = default;
PropertyObject::~PropertyObject() = default;

PropertyObject::operator GenericPropertyObject() const {
  return GenericPropertyObject(m_node);
}

VxString PropertyObject::getObjectType() const {
  return getObjectType(m_node);
}
VxString PropertyObject::getObjectType(PropertyNode const &node) {
  return readObjectType(node, keyObjectType);
}

ObjectMetadata PropertyObject::getMetadata() const {
  return readMetadata(m_node);
}
void PropertyObject::setMetadata(ObjectMetadata metadata) {
  setMember(ObjectMetadata::MetadataFolder, GenericPropertyObject(std::move(metadata.getPropertyHandle())));
}

bool PropertyObject::hasMember(InternedString const &name) const {
  if (m_node.kind() != PropertyNodeKind::Map) return false;
  PropertyMap const &map = m_node.map();
  return map.find(name) != map.end();
}
void PropertyObject::setMember(InternedString const &name, GenericPropertyObject member) {
  m_node.set(name, member.getPropertyHandle());
}
void PropertyObject::setProperty(InternedString const &name, VxVariant value) {
  m_node.set(name, std::move(value));
}

// ---- ObjectMetadata

ObjectMetadata::ObjectMetadata() : PropertyObject(ObjectType) {}
ObjectMetadata::ObjectMetadata(GenericPropertyObject object) : PropertyObject(std::move(object)) {
  VxString const type = getObjectType();
  if (type.size() != ObjectType.length() || std::memcmp(type.c_str(), ObjectType.data(), type.size()) != 0) {
    throw std::runtime_error("Not a " + std::string(ObjectType.data(), ObjectType.length()) +
                             " PropertyObject");
  }
}
ObjectMetadata::ObjectMetadata(ObjectMetadata const &other) = default;
ObjectMetadata::ObjectMetadata(ObjectMetadata &&other) noexcept = default;
ObjectMetadata &ObjectMetadata::operator=(ObjectMetadata const &other) = default;
ObjectMetadata &ObjectMetadata::operator=(ObjectMetadata &&other) noexcept = default;
ObjectMetadata::~ObjectMetadata() = default;

}  // namespace Tarvex::VantraCore::Experimental
