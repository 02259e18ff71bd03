#include "schema/ClassSchema.h"

#include <algorithm>
#include <utility>

using Type = NKESTA20::TCIMValue::TCIMType;

namespace schema {

namespace {

using Id = PropertyId;

constexpr std::array<const char*, kPropertyCount> kNames = {"Antecedent",
                                                            "ClassCode",
                                                            "CreationClassName",
                                                            "Dependent",
                                                            "Description",
                                                            "DeviceID",
                                                            "HubDepth",
                                                            "HubName",
                                                            "InterfaceType",
                                                            "Manufacturer",
                                                            "Name",
                                                            "NumberOfConfigs",
                                                            "NumberOfPorts",
                                                            "PortNumber",
                                                            "ProtocolCode",
                                                            "SerialNumber",
                                                            "Speed",
                                                            "StatusDescriptions",
                                                            "SubclassCode",
                                                            "SystemCreationClassName",
                                                            "SystemName",
                                                            "USBDeviceID",
                                                            "USBVersion",
                                                            "VendorID"};

PropertySchema Required(Id id, Type::ECIMType type) {
  return {id, NameOf(id), type};
}

PropertySchema Optional(Id id, Type::ECIMType type) {
  return {id, NameOf(id), type, false, true};
}

PropertySchema Key(Id id) {
  return {id, NameOf(id), Type::kString, true};
}

PropertySchema ReferenceKey(Id id, const std::string& className) {
  return {id, NameOf(id), Type::kReference, true, false, className};
}

/// An entity's own properties together with the keys of every entity.
ClassSchema Entity(ClassId id, const std::string& name, std::vector<PropertySchema> properties) {
  for (const Id key :
       {Id::kCreationClassName, Id::kDeviceID, Id::kSystemCreationClassName, Id::kSystemName}) {
    properties.push_back(Key(key));
  }
  std::sort(properties.begin(), properties.end(),
            [](const auto& left, const auto& right) { return left.id < right.id; });
  return {id, name, ClassSchema::Kind::kEntity, std::move(properties)};
}

ClassSchema Association(ClassId id, const std::string& name, const std::string& antecedent,
                        const std::string& dependent) {
  return {id,
          name,
          ClassSchema::Kind::kAssociation,
          {ReferenceKey(Id::kAntecedent, antecedent), ReferenceKey(Id::kDependent, dependent)}};
}

/// What hubs and devices have in common, and `own`, which only one of them has.
std::vector<PropertySchema> DescriptorProperties(Id own) {
  return {Optional(Id::kDescription, Type::kString),
          Required(Id::kName, Type::kString),
          Optional(Id::kHubName, Type::kString),
          Optional(Id::kPortNumber, Type::kString),
          Required(Id::kUSBVersion, Type::kUint16),
          Required(Id::kClassCode, Type::kUint8),
          Required(Id::kSubclassCode, Type::kUint8),
          Required(Id::kProtocolCode, Type::kUint8),
          Required(Id::kVendorID, Type::kUint16),
          Required(Id::kUSBDeviceID, Type::kUint16),
          Optional(Id::kManufacturer, Type::kString),
          Optional(Id::kSerialNumber, Type::kString),
          Required(Id::kNumberOfConfigs, Type::kUint8),
          Required(Id::kHubDepth, Type::kUint16),
          Required(own, Type::kUint8)};
}

std::vector<ClassSchema> MakeServedClasses() {
  return {
      Entity(ClassId::kController, "KALDO_USBController",
             {Optional(Id::kDescription, Type::kString), Required(Id::kInterfaceType, Type::kUint16)}),
      Entity(ClassId::kHub, "KALDO_USBHub", DescriptorProperties(Id::kNumberOfPorts)),
      Entity(ClassId::kPort, "KALDO_USBPort",
             {Required(Id::kHubDepth, Type::kUint16), Required(Id::kHubName, Type::kString),
              Required(Id::kName, Type::kString), Required(Id::kPortNumber, Type::kString),
              Optional(Id::kSpeed, Type::kUint64), Required(Id::kStatusDescriptions, Type::kStringArray)}),
      Entity(ClassId::kDevice, "KALDO_USBDevice", DescriptorProperties(Id::kSpeed)),
      Association(ClassId::kPortOnHub, "KALDO_USBPortOnHub", "KALDO_USBHub", "KALDO_USBPort"),
      Association(ClassId::kConnection, "KALDO_USBConnection", "KALDO_USBPort", kEntityBaseClass),
  };
}

/// Nearly all names differ in length, first or last character.
std::size_t FirstSlotOf(std::string_view name) {
  if (name.empty()) return 0;
  const auto code = [](char c) { return static_cast<std::size_t>(static_cast<unsigned char>(c)); };
  return 2 * name.size() + 2 * code(name.front()) + code(name.back());
}

}  // namespace

const char* NameOf(PropertyId property) {
  return kNames[static_cast<std::size_t>(property)];
}

ClassSchema::ClassSchema(ClassId classId, std::string className, Kind classKind,
                         std::vector<PropertySchema> sorted)
    : id(classId), name(std::move(className)), kind(classKind), properties(std::move(sorted)) {
  fIndexes.fill(kNone);
  fSlots.fill(kNone);
  for (std::size_t index = 0; index < properties.size(); ++index) {
    fIndexes[static_cast<std::size_t>(properties[index].id)] = index;
    std::size_t slot = FirstSlotOf(properties[index].name);
    while (fSlots[slot % fSlots.size()] != kNone) ++slot;
    fSlots[slot % fSlots.size()] = index;
  }
}

std::size_t ClassSchema::IndexOf(std::string_view propertyName) const {
  for (std::size_t slot = FirstSlotOf(propertyName);; ++slot) {
    const std::size_t index = fSlots[slot % fSlots.size()];
    if (index == kNone || properties[index].name == propertyName) return index;
  }
}

const PropertySchema* ClassSchema::FindProperty(std::string_view propertyName) const {
  const std::size_t index = IndexOf(propertyName);
  return index == kNone ? nullptr : &properties[index];
}

const std::vector<ClassSchema>& ServedClasses() {
  static const std::vector<ClassSchema> classes = MakeServedClasses();
  return classes;
}

const ClassSchema& ClassOf(ClassId id) {
  return ServedClasses()[static_cast<std::size_t>(id)];
}

const ClassSchema* FindClass(std::string_view className) {
  const auto& classes = ServedClasses();
  const auto found = std::find_if(classes.begin(), classes.end(), [className](const ClassSchema& candidate) {
    return candidate.name == className;
  });
  return found == classes.end() ? nullptr : &*found;
}

}  // namespace schema
