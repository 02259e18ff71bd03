// The served classes: one table of names, types, keys and what an instance may lack. The stand-in host checks
// everything that is created, set and committed against it; inventories and exports read it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "host/TCIMValue.h"

namespace schema {

/// What all entity classes derive from, and where their keys come from. A class of this system's own, so
/// that no repository's standard classes are declared anew when the definitions are compiled into it.
inline constexpr const char* kEntityBaseClass = "KALDO_USBElement";

/// The class of the system that an inventory describes: the value of every SystemCreationClassName.
inline constexpr const char* kSystemClass = "KALDO_ComputerSystem";

/// The served classes in the order in which a host asks for them: an association after what it links.
enum class ClassId : std::uint8_t { kController, kHub, kPort, kDevice, kPortOnHub, kConnection };

/// Every property of the served classes, ascending by name.
enum class PropertyId : std::uint8_t {
  kAntecedent,
  kClassCode,
  kCreationClassName,
  kDependent,
  kDescription,
  kDeviceID,
  kHubDepth,
  kHubName,
  kInterfaceType,
  kManufacturer,
  kName,
  kNumberOfConfigs,
  kNumberOfPorts,
  kPortNumber,
  kProtocolCode,
  kSerialNumber,
  kSpeed,
  kStatusDescriptions,
  kSubclassCode,
  kSystemCreationClassName,
  kSystemName,
  kUSBDeviceID,
  kUSBVersion,
  kVendorID,
};
inline constexpr std::size_t kPropertyCount = static_cast<std::size_t>(PropertyId::kVendorID) + 1;

/// "DeviceID" for PropertyId::kDeviceID.
const char* NameOf(PropertyId property);

struct PropertySchema {
  PropertyId id;
  std::string name;
  NKESTA20::TCIMValue::TCIMType::ECIMType type;
  bool isKey = false;
  /// An instance may lack it: a text that a device does not send, a value that comes from the port above, an
  /// unknown speed.
  bool isOptional = false;
  /// Of a reference: the class that it leads to, kEntityBaseClass where that may be several.
  std::string referenceClass = {};
};

struct ClassSchema {
  enum class Kind { kEntity, kAssociation };
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  ClassId id;
  std::string name;
  Kind kind;
  /// Ascending by name.
  std::vector<PropertySchema> properties;

  /// Where in `properties` the property stands; kNone when the class lacks it.
  std::size_t IndexOf(PropertyId property) const { return fIndexes[static_cast<std::size_t>(property)]; }
  std::size_t IndexOf(std::string_view propertyName) const;
  /// The property of that name; null when the class lacks it.
  const PropertySchema* FindProperty(std::string_view propertyName) const;

  ClassSchema(ClassId classId, std::string className, Kind classKind, std::vector<PropertySchema> sorted);

 private:
  std::array<std::size_t, kPropertyCount> fIndexes;
  /// Indexes by name, each in the slot where the search for its name begins, or in the next free slot.
  std::array<std::size_t, 64> fSlots;
};

/// All classes, in the order of their ids.
const std::vector<ClassSchema>& ServedClasses();

const ClassSchema& ClassOf(ClassId id);

/// The class of that name, compared exactly; null when there is none.
const ClassSchema* FindClass(std::string_view className);

}  // namespace schema
