// The files in /dev that belong to a device.
#pragma once

#include <string>
#include <vector>

#include "kernel/Device.h"
#include "kernel/DeviceName.h"
#include "kernel/SysfsFolder.h"

namespace kernel {

/// The device's own node, then those of the drivers of its interfaces, in order. What cannot be read, because
/// a driver lets go of the device just then, has none.
std::vector<std::string> ReadNodes(const SysfsFolder& folder, const Device& device, const DeviceName& name);

}  // namespace kernel
