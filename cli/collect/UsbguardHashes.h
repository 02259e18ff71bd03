// The hashes by which USBGuard knows devices, as its program writes them into policies.
#pragma once

#include "cli/model/KernelFacts.h"
#include "kernel/Topology.h"

namespace cli {

/// `facts` with the hashes of the devices of `topology`, which they were made from, in its order. A hash is
/// the Base64 of a SHA-256: of a device, that of its product string, the numbers of vendor and product in
/// four hexadecimal digits each, its serial number and all its descriptors, where Linux root hubs have the
/// revision 0, since theirs is the kernel's version; of what a root hub is plugged into, that of the
/// controller's path.
KernelFacts WithHashes(KernelFacts facts, const kernel::Topology& topology);

}  // namespace cli
