// What the kernel knows besides the properties of the classes, for an inventory.
#pragma once

#include "cli/model/Inventory.h"
#include "cli/model/KernelFacts.h"

namespace kernel {
struct Topology;
}

namespace cli {

/// The facts about all devices of `topology` and their ports, in its order. A device's DeviceID is that of
/// the hub or device of `inventory` with the same bus and device number, whatever its blanks; where there is
/// none, the one that the kernel's list gives. A port is free only where every device on its bus has a place,
/// since one without might be plugged in there.
KernelFacts FromKernel(const kernel::Topology& topology, const Inventory& inventory);

}  // namespace cli
