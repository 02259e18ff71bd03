// What the kernel knows of devices and ports besides the properties of their classes. What is not known is
// nothing.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace cli {

/// One alternate setting of an interface.
struct InterfaceFacts {
  /// The value of its configuration.
  std::uint8_t configuration = 0;
  std::uint8_t number = 0;
  std::uint8_t setting = 0;
  /// Whether its configuration and the setting are in use.
  bool isActive = false;
  std::uint8_t classCode = 0;
  std::uint8_t subclass = 0;
  std::uint8_t protocol = 0;
  /// Nothing where no driver is bound.
  std::optional<std::string> driver;

  bool operator==(const InterfaceFacts&) const = default;
};

/// Of a device, a hub or a root hub.
struct DeviceFacts {
  /// The DeviceID of its item.
  std::string device;
  /// The kernel's name, such as "usb1" or "1-3.1".
  std::optional<std::string> name;
  /// The device number on its bus.
  std::uint64_t number = 0;
  /// In Mbit/s, 1.5 for low speed.
  std::optional<double> speed;
  /// As the device sends them.
  std::optional<std::string> manufacturer;
  std::optional<std::string> product;
  std::optional<std::string> serial;
  /// What its interfaces are for, such as "keyboard", from a closed list.
  std::vector<std::string> kinds;
  /// Every setting of every configuration.
  std::vector<InterfaceFacts> interfaces;
  /// Of the active configuration, in mA.
  std::optional<std::uint64_t> maxPower;
  /// Its own version, such as "1.10".
  std::optional<std::string> revision;
  /// Paths in /dev: its own, then those of its interfaces.
  std::optional<std::vector<std::string>> nodes;
  /// The hashes by which USBGuard knows it and what it is plugged into. No document holds them.
  std::optional<std::string> hash = {};
  std::optional<std::string> parentHash = {};

  bool operator==(const DeviceFacts&) const = default;
};

struct PortFacts {
  /// The DeviceID of its item.
  std::string port;
  /// The kernel's name of what is or would be plugged in, such as "1-3".
  std::optional<std::string> name;
  /// The same name of the port that shares its socket.
  std::optional<std::string> peer;
  /// The kernel's word, such as "hotplug", "hardwired" or "not used".
  std::optional<std::string> connect;
  /// Nothing where it is not known.
  std::optional<bool> isUsed;

  /// Whether the kernel says how it is connected, so that a port without a peer has none.
  bool KnowsSocket() const { return peer || connect; }

  bool operator==(const PortFacts&) const = default;
};

struct KernelFacts {
  std::vector<DeviceFacts> devices;
  std::vector<PortFacts> ports;

  bool operator==(const KernelFacts&) const = default;
};

}  // namespace cli
