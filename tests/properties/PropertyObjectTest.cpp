#include <VantraCore/PropertyObject.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <support/Throws.h>

using namespace Tarvex::VantraCore;
using namespace Tarvex::VantraCore::Experimental;

namespace {

class Probe : public PropertyObject {
 public:
  Probe() : PropertyObject(VxString("Probe")) {}
  using PropertyObject::hasMember;
  using PropertyObject::setMember;
  using PropertyObject::setProperty;
};

GenericPropertyObject typedAs(VxVariant type) {
  PropertyNode node;
  node.set("__object_type", std::move(type));
  return GenericPropertyObject(std::move(node));
}

TEST(PropertyObject, ReadsTheTypeWithoutReporting) {
  EXPECT_FALSE(GenericPropertyObject().isNull());
  EXPECT_TRUE(GenericPropertyObject(PropertyNode()).isNull());
  EXPECT_THAT([] { GenericPropertyObject().getObjectType(); },
              throws<std::out_of_range>("Key not found: __object_type"));
  EXPECT_THAT([] { GenericPropertyObject(PropertyNode(VxVariant(1))).getObjectType(); },
              throws<std::out_of_range>("PropertyNode is not a map"));
  EXPECT_EQ(GenericPropertyObject(InternedString("Probe")).getObjectType(), "Probe");
  EXPECT_EQ(typedAs(VxVariant(std::vector<VxString>{"one", "two"})).getObjectType(), "");
  EXPECT_EQ(typedAs(VxVariant(std::vector<VxString>{"one"})).getObjectType(), "one");
  EXPECT_EQ(typedAs(VxVariant(5)).getObjectType(), "");
}

TEST(PropertyObject, MetadataIsValidatedAndNeverFailsToRead) {
  EXPECT_EQ(ObjectMetadata().getObjectType(), "_Metadata");
  EXPECT_THAT([] { ObjectMetadata(GenericPropertyObject(VxString("other"))); },
              throws<std::runtime_error>("Not a _Metadata PropertyObject"));
  EXPECT_THAT([] { ObjectMetadata{GenericPropertyObject(PropertyNode())}; },
              throws<std::out_of_range>("PropertyNode is not a map"));
  EXPECT_EQ(GenericPropertyObject(PropertyNode(VxVariant(1))).getMetadata().getObjectType(), "_Metadata");

  Probe probe;
  probe.setProperty("gain", VxVariant(2.0));
  ObjectMetadata first;
  first.getPropertyHandle().set("note", VxString("first"));
  probe.setMetadata(first);
  probe.setProperty("rate", VxVariant(1.0));
  ObjectMetadata second;
  second.getPropertyHandle().set("note", VxString("second"));
  probe.setMetadata(second);
  PropertyMap const &map = probe.getPropertyHandle().map();
  ASSERT_EQ(map.size(), 4u);
  EXPECT_EQ(std::next(map.begin(), 2)->key, ObjectMetadata::MetadataFolder);  // replaced in place
  EXPECT_EQ(probe.getMetadata().getPropertyHandle().map().at("note").value().get<VxString>(), "second");
}

TEST(PropertyObject, MembersAndProperties) {
  GenericPropertyObject holder(VxString("Holder"));
  EXPECT_THAT([&] { holder.setMember("", GenericPropertyObject(VxString("Probe"))); },
              throws<std::invalid_argument>("Name can't be empty for Probe -- PropertyObject::setMember()"));
  holder.setMember("child", static_cast<GenericPropertyObject>(Probe()));
  EXPECT_EQ(GenericPropertyObject::getObjectType(holder.getPropertyHandle().map().at("child")), "Probe");

  Probe probe;
  probe.setMember("", GenericPropertyObject());
  EXPECT_TRUE(probe.hasMember(""));
  Probe moved = std::move(probe);
  EXPECT_TRUE(probe.isNull());
  EXPECT_FALSE(probe.hasMember(""));
  probe.setProperty("gain", VxVariant(1.0));
  EXPECT_EQ(probe.getPropertyHandle().map().size(), 1u);
  EXPECT_TRUE(moved.hasMember(""));
}

}  // namespace
