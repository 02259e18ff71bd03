// The names that the kernel gives to devices, interfaces and ports, which say where they are.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace kernel {

/// A hub has no more ports.
inline constexpr unsigned kMostPorts = 255;

/// Where a device is: its bus, and the ports that lead to it from the root hub on.
struct DeviceName {
  unsigned bus = 0;
  std::vector<unsigned> ports;

  bool IsRootHub() const { return ports.empty(); }
  /// What is plugged into its port of that number.
  DeviceName Child(unsigned port) const;
  /// "usb1" or "1-3.1".
  std::string Text() const;
  /// "1-0:1.0" or "1-3.1:1.0".
  std::string Interface(unsigned configuration, unsigned interface) const;
  /// "usb1-port2" or "1-3.1-port2".
  std::string Port(unsigned port) const;

  bool operator==(const DeviceName&) const = default;
};

/// By bus, then each hub before what is plugged into it, by port.
inline bool operator<(const DeviceName& left, const DeviceName& right) {
  return std::tie(left.bus, left.ports) < std::tie(right.bus, right.ports);
}

/// The place that a name like "usb1" or "1-3.1" stands for; nothing for other texts, such as an interface's
/// name.
std::optional<DeviceName> ParseDeviceName(std::string_view text);

}  // namespace kernel
