// Writes a device list as the kernel's debugfs file usb/devices has it.
#pragma once

#include <string>

#include "kernel/Topology.h"

namespace kernel {

/// The list, byte for byte the kernel's except: it has no B lines, because sysfs does not show what bandwidth
/// is allocated; a control character, a line break or a paragraph break in a string is U+FFFD, so that no
/// string begins a line; a record of more than 8 KiB is not cut.
std::string WriteDeviceList(const Topology& topology);

}  // namespace kernel
