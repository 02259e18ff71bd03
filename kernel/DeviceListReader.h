// Reads a device list as text into records, as far as its lines go.
#pragma once

#include <string_view>

#include "kernel/Topology.h"

namespace kernel {

/// What `text` holds, which is a list as the kernel or usb-devices prints it. Reading is lenient: a field
/// that is missing or makes no sense stays as Device has it by default, and a line of unknown type is passed
/// over. Names follow from the records' parents and ports; a record whose chain of parents does not lead to a
/// root hub has none, and neither has it ports. Of two records of one bus and number, the first is parent to
/// others. Devices stand in the order of the text.
Topology ReadDeviceList(std::string_view text);

}  // namespace kernel
