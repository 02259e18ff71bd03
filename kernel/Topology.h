// All USB devices and ports of a machine.
#pragma once

#include <string>
#include <vector>

#include "kernel/Device.h"

namespace kernel {

/// A port of a hub.
struct Port {
  /// The kernel's name, such as "usb1-port2" or "1-3-port1".
  std::string name;
  /// The name of the hub.
  std::string hub;
  /// From 1.
  unsigned number = 0;
  /// The kernel's word: "hotplug", "hardwired", "not used" or "unknown"; empty where there is none.
  std::string connectType;
  /// The name of the port that shares its socket, at another speed; empty where none is known.
  std::string peer;
  /// The name of the device that is plugged in; empty where none is.
  std::string device;

  bool operator==(const Port&) const = default;
};

/// A device that is there and could not be read, or that is below such a one.
struct UnreadableDevice {
  std::string name;
  /// What is wrong, such as "descriptors: Permission denied".
  std::string reason;

  bool operator==(const UnreadableDevice&) const = default;
};

struct Topology {
  /// In the order of the kernel's list: by bus, then each hub before what is plugged into it, by port.
  std::vector<Device> devices;
  /// By hub in the order of the devices, then by number.
  std::vector<Port> ports;
  std::vector<UnreadableDevice> unreadable;
};

}  // namespace kernel
