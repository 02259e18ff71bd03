// Reads all USB devices of a machine from sysfs.
#pragma once

#include <string>

#include "kernel/Topology.h"

namespace kernel {

inline constexpr const char* kSysfsDevices = "/sys/bus/usb/devices";

/// What is read besides the devices themselves; each part costs time.
struct SysfsParts {
  bool nodes = true;
  bool ports = true;
  /// The descriptors' bytes, and where the controllers are.
  bool descriptors = false;
};

/// All devices below the folder `root`; none where there is no such folder. A device that comes or goes
/// meanwhile is there as a whole or not at all, and what is below it then is not either. Throws
/// std::system_error where the folder cannot be read.
Topology ReadSysfs(const std::string& root = kSysfsDevices, const SysfsParts& parts = {});

}  // namespace kernel
