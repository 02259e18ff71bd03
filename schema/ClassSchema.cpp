// The schema table; see the header.
#include "schema/ClassSchema.h"

#include <algorithm>

using Type = NKESTA20::TCIMValue::TCIMType;

namespace schema {

namespace {

template <typename Named>
const Named* FindByName(const std::vector<Named>& list, const std::string& name) {
  const auto found =
      std::find_if(list.begin(), list.end(), [&name](const Named& item) { return item.name == name; });
  return found == list.end() ? nullptr : &*found;
}

/// An entity's own properties together with the keys of every entity, in order.
ClassSchema Entity(const std::string& name, std::vector<PropertySchema> own) {
  for (const char* key : {"CreationClassName", "DeviceID", "SystemCreationClassName", "SystemName"}) {
    own.push_back({key, Type::kString, true});
  }
  std::sort(own.begin(), own.end(),
            [](const auto& left, const auto& right) { return left.name < right.name; });
  return {name, ClassSchema::Kind::kEntity, std::move(own)};
}

ClassSchema Association(const std::string& name, const std::string& antecedent,
                        const std::string& dependent) {
  return {
      name,
      ClassSchema::Kind::kAssociation,
      {{"Antecedent", Type::kReference, true, antecedent}, {"Dependent", Type::kReference, true, dependent}}};
}

/// What a hub and a device have in common, and one number that tells them apart.
std::vector<PropertySchema> DeviceProperties(const std::string& distinctNumber) {
  return {{"Description", Type::kString},    {"Name", Type::kString},         {"HubName", Type::kString},
          {"PortNumber", Type::kString},     {"USBVersion", Type::kUint16},   {"ClassCode", Type::kUint8},
          {"SubclassCode", Type::kUint8},    {"ProtocolCode", Type::kUint8},  {"VendorID", Type::kUint16},
          {"USBDeviceID", Type::kUint16},    {"Manufacturer", Type::kString}, {"SerialNumber", Type::kString},
          {"NumberOfConfigs", Type::kUint8}, {"HubDepth", Type::kUint16},     {distinctNumber, Type::kUint8}};
}

std::vector<ClassSchema> MakeServedClasses() {
  return {
      Entity("KALDO_USBController", {{"Description", Type::kString}, {"InterfaceType", Type::kUint16}}),
      Entity("KALDO_USBHub", DeviceProperties("NumberOfPorts")),
      Entity("KALDO_USBPort", {{"HubDepth", Type::kUint16},
                               {"HubName", Type::kString},
                               {"Name", Type::kString},
                               {"PortNumber", Type::kString},
                               {"Speed", Type::kUint64},
                               {"StatusDescriptions", Type::kStringArray}}),
      Entity("KALDO_USBDevice", DeviceProperties("Speed")),
      Association("KALDO_USBPortOnHub", "KALDO_USBHub", "KALDO_USBPort"),
      Association("KALDO_USBConnection", "KALDO_USBPort", kEntityBaseClass),
  };
}

}  // namespace

const PropertySchema* ClassSchema::FindProperty(const std::string& propertyName) const {
  return FindByName(properties, propertyName);
}

const std::vector<ClassSchema>& ServedClasses() {
  static const std::vector<ClassSchema> classes = MakeServedClasses();
  return classes;
}

const ClassSchema* FindClass(const std::string& className) {
  return FindByName(ServedClasses(), className);
}

}  // namespace schema
