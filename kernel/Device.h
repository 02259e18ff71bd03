// A USB device as the kernel knows it, with its configurations, as plain values. Terms are those of USB and
// of the kernel's device list.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kernel {

/// The signalling speed; both rates above 5 Gbit/s are kSuperPlus.
enum class Speed { kUnknown, kLow, kFull, kHigh, kSuper, kSuperPlus };

/// Class, subclass and protocol of a device, of an association or of a setting.
struct ClassCodes {
  std::uint8_t classCode = 0;
  std::uint8_t subclass = 0;
  std::uint8_t protocol = 0;

  bool operator==(const ClassCodes&) const = default;
};

/// An endpoint as the kernel uses it, with impossible values corrected.
struct Endpoint {
  std::uint8_t address = 0;
  /// bmAttributes; the two lowest bits are the transfer type.
  std::uint8_t attributes = 0;
  /// In bytes; at high speed, all transactions of a microframe together.
  std::uint16_t maxPacketSize = 0;
  /// In microseconds; 0 where the transfer type has none.
  std::uint32_t interval = 0;

  bool operator==(const Endpoint&) const = default;
};

/// One of the settings that an interface can be switched to.
struct AlternateSetting {
  std::uint8_t number = 0;
  bool isActive = false;
  ClassCodes codes;
  std::vector<Endpoint> endpoints;

  bool operator==(const AlternateSetting&) const = default;
};

struct Interface {
  std::uint8_t number = 0;
  /// The name of the driver that is bound to it; empty where none is.
  std::string driver;
  std::vector<AlternateSetting> settings;

  bool operator==(const Interface&) const = default;
};

/// Interfaces that together are one function.
struct InterfaceAssociation {
  std::uint8_t firstInterface = 0;
  std::uint8_t interfaceCount = 0;
  ClassCodes codes;

  bool operator==(const InterfaceAssociation&) const = default;
};

struct Configuration {
  std::uint8_t value = 0;
  std::uint8_t attributes = 0;
  /// In mA.
  std::uint16_t maxPower = 0;
  bool isActive = false;
  std::vector<InterfaceAssociation> associations;
  std::vector<Interface> interfaces;

  bool operator==(const Configuration&) const = default;
};

/// What the device descriptor says.
struct DeviceDescriptor {
  /// Binary-coded decimal: 0x0210 is USB 2.10.
  std::uint16_t version = 0;
  ClassCodes codes;
  /// Of endpoint 0: in bytes, or from SuperSpeed on as an exponent of 2.
  std::uint8_t maxPacketSize = 0;
  std::uint8_t configurationCount = 0;
  std::uint16_t vendor = 0;
  std::uint16_t product = 0;
  /// Binary-coded decimal.
  std::uint16_t revision = 0;

  bool operator==(const DeviceDescriptor&) const = default;
};

struct Device {
  /// The kernel's name: "usb1" for the root hub of bus 1, "1-3.1" for what is in port 1 of what is in port 3.
  std::string name;
  unsigned bus = 0;
  /// The device number, which is its address on the bus in most cases.
  unsigned number = 0;
  /// 0 for a root hub.
  unsigned level = 0;
  /// The number of the hub that it is plugged into; 0 for a root hub.
  unsigned parentNumber = 0;
  /// The port of that hub, from 1; 0 for a root hub.
  unsigned port = 0;
  /// Its place among the devices on that hub, from 1; 0 for a root hub.
  unsigned count = 0;
  Speed speed = Speed::kUnknown;
  /// In Mbit/s: 1.5, 12, 480, 5000, 10000 or 20000; 0 where it is not known.
  double megabitsPerSecond = 0;
  /// How many ports it has as a hub.
  unsigned portCount = 0;
  DeviceDescriptor descriptor;
  /// The strings as the kernel has them, without those that the device lacks. A device chooses them freely.
  std::optional<std::string> manufacturer;
  std::optional<std::string> product;
  std::optional<std::string> serial;
  std::vector<Configuration> configurations;
  /// Whether the kernel may configure it; nothing where that is not known.
  std::optional<bool> isAuthorized;
  /// Its files in /dev: its own first, then those of its interfaces, such as "/dev/sda", in order.
  std::vector<std::string> nodes;
  /// All its descriptors, as it sends them; empty unless they were asked for.
  std::string rawDescriptors;
  /// Of a root hub, the path of its controller in sysfs, such as "/devices/pci0000:00/0000:00:14.0"; empty
  /// unless it was asked for.
  std::string controller;

  /// The configuration that is active; null where none is.
  const Configuration* ActiveConfiguration() const;

  bool operator==(const Device&) const = default;
};

inline const Configuration* Device::ActiveConfiguration() const {
  for (const Configuration& configuration : configurations) {
    if (configuration.isActive) return &configuration;
  }
  return nullptr;
}

}  // namespace kernel
