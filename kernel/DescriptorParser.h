// Reads the binary file "descriptors" of a device in sysfs: the device descriptor, then all configurations.
#pragma once

#include <optional>
#include <vector>

#include "kernel/ConfigurationParser.h"
#include "kernel/Device.h"

namespace kernel {

struct Descriptors {
  DeviceDescriptor device;
  std::vector<Configuration> configurations;

  bool operator==(const Descriptors&) const = default;
};

/// What the file says; nothing where its device descriptor or one of the configurations is missing. A
/// configuration whose own descriptors are damaged has those before the damage, as the kernel has them.
std::optional<Descriptors> ParseDescriptors(Bytes file, const ParsingRules& rules);

}  // namespace kernel
