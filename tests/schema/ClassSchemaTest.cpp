// The table of the six classes, compared with a second copy that is written out here: every name, type and
// key in it decides what the plug-in may set and what the exports show.
#include <gmock/gmock.h>

#include <map>
#include <string>
#include <vector>

#include "schema/ClassSchema.h"

namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

using Type = NKESTA20::TCIMValue::TCIMType;

std::string TypeName(Type::ECIMType type) {
  const std::map<Type::ECIMType, std::string> names = {
      {Type::kUint8, "uint8"},   {Type::kUint16, "uint16"},       {Type::kUint64, "uint64"},
      {Type::kString, "string"}, {Type::kReference, "reference"}, {Type::kStringArray, "string[]"}};
  return names.at(type);
}

/// The properties of a class, each as "name type" with " key" where it is one.
std::vector<std::string> PropertiesOf(const std::string& className) {
  std::vector<std::string> properties;
  for (const auto& property : schema::FindClass(className)->properties) {
    properties.push_back(property.name + " " + TypeName(property.type) + (property.isKey ? " key" : ""));
  }
  return properties;
}

TEST(ClassSchema, ServesTheSixClassesEachAssociationAfterWhatItLinks) {
  std::vector<std::string> names;
  for (const auto& served : schema::ServedClasses()) names.push_back(served.name);
  EXPECT_THAT(names, ElementsAre("KALDO_USBController", "KALDO_USBHub", "KALDO_USBPort", "KALDO_USBDevice",
                                 "KALDO_USBPortOnHub", "KALDO_USBConnection"));
}

TEST(ClassSchema, DistinguishesEntitiesFromAssociations) {
  using Kind = schema::ClassSchema::Kind;
  std::vector<Kind> kinds;
  for (const auto& served : schema::ServedClasses()) kinds.push_back(served.kind);
  EXPECT_THAT(kinds, ElementsAre(Kind::kEntity, Kind::kEntity, Kind::kEntity, Kind::kEntity,
                                 Kind::kAssociation, Kind::kAssociation));
}

TEST(ClassSchema, DescribesAController) {
  EXPECT_THAT(
      PropertiesOf("KALDO_USBController"),
      ElementsAre("CreationClassName string key", "Description string", "DeviceID string key",
                  "InterfaceType uint16", "SystemCreationClassName string key", "SystemName string key"));
}

TEST(ClassSchema, DescribesAPort) {
  EXPECT_THAT(
      PropertiesOf("KALDO_USBPort"),
      ElementsAre("CreationClassName string key", "DeviceID string key", "HubDepth uint16", "HubName string",
                  "Name string", "PortNumber string", "Speed uint64", "StatusDescriptions string[]",
                  "SystemCreationClassName string key", "SystemName string key"));
}

TEST(ClassSchema, DescribesAHub) {
  EXPECT_THAT(PropertiesOf("KALDO_USBHub"),
              ElementsAre("ClassCode uint8", "CreationClassName string key", "Description string",
                          "DeviceID string key", "HubDepth uint16", "HubName string", "Manufacturer string",
                          "Name string", "NumberOfConfigs uint8", "NumberOfPorts uint8", "PortNumber string",
                          "ProtocolCode uint8", "SerialNumber string", "SubclassCode uint8",
                          "SystemCreationClassName string key", "SystemName string key", "USBDeviceID uint16",
                          "USBVersion uint16", "VendorID uint16"));
}

TEST(ClassSchema, DescribesADevice) {
  EXPECT_THAT(PropertiesOf("KALDO_USBDevice"),
              ElementsAre("ClassCode uint8", "CreationClassName string key", "Description string",
                          "DeviceID string key", "HubDepth uint16", "HubName string", "Manufacturer string",
                          "Name string", "NumberOfConfigs uint8", "PortNumber string", "ProtocolCode uint8",
                          "SerialNumber string", "Speed uint8", "SubclassCode uint8",
                          "SystemCreationClassName string key", "SystemName string key", "USBDeviceID uint16",
                          "USBVersion uint16", "VendorID uint16"));
}

TEST(ClassSchema, DescribesAssociationsByTheirTwoReferences) {
  const std::vector<std::string> ends = {"Antecedent reference key", "Dependent reference key"};
  EXPECT_THAT(PropertiesOf("KALDO_USBPortOnHub"), ElementsAreArray(ends));
  EXPECT_THAT(PropertiesOf("KALDO_USBConnection"), ElementsAreArray(ends));
}

TEST(ClassSchema, FindsClassesByTheirExactNameOnly) {
  for (const auto& served : schema::ServedClasses()) EXPECT_EQ(schema::FindClass(served.name), &served);
  for (const char* name : {"", "KALDO_USBControllerHasHub", "kaldo_usbport", "KALDO_USB", "KALDO_USBPorts",
                           " KALDO_USBPort", "KALDO_USBPort "}) {
    EXPECT_EQ(schema::FindClass(name), nullptr) << name;
  }
}

TEST(ClassSchema, FindsEachPropertyWhereItStandsAndNoneThatResemblesIt) {
  for (const auto& served : schema::ServedClasses()) {
    for (std::size_t index = 0; index < served.properties.size(); ++index) {
      std::string name = served.properties[index].name;
      EXPECT_EQ(served.IndexOf(name), index) << served.name << " " << name;
      name[1] = '-';
      EXPECT_EQ(served.IndexOf(name), schema::ClassSchema::kNone) << served.name << " " << name;
    }
  }
}

TEST(ClassSchema, FindsPropertiesByTheirExactNameOnly) {
  const schema::ClassSchema& port = *schema::FindClass("KALDO_USBPort");
  ASSERT_NE(port.FindProperty("Speed"), nullptr);
  EXPECT_EQ(port.FindProperty("Speed")->type, Type::kUint64);
  for (const char* name : {"", "speed", "Spee", "Speeds", "OperationalStatus", "VendorID"}) {
    EXPECT_EQ(port.FindProperty(name), nullptr) << name;
  }
}

}  // namespace
