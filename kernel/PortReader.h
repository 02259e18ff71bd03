// Reads the ports of a hub from sysfs.
#pragma once

#include <vector>

#include "kernel/Device.h"
#include "kernel/DeviceName.h"
#include "kernel/SysfsFolder.h"
#include "kernel/Topology.h"

namespace kernel {

/// The ports of the hub, without what is plugged into them. What the kernel does not say of a port is empty.
std::vector<Port> ReadPorts(const SysfsFolder& folder, const Device& hub, const DeviceName& name);

}  // namespace kernel
