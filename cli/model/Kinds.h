// The kinds of devices, in words for people, as the class codes that the USB-IF assigns say them. A security
// key has none of its own: by its codes it is an input device, a smart card reader or both.
#pragma once

#include <string>
#include <vector>

namespace kernel {
struct ClassCodes;
struct Device;
}  // namespace kernel

namespace cli {

/// Every kind there is, such as "mass storage", in the order in which a device's kinds are listed.
const std::vector<std::string>& AllKinds();

/// The kinds that the active settings of the active configuration say, and "hub" where the device's own class
/// says it; of a device without an active configuration, those of all its settings, which it would have.
/// Where no interface says one, the device's own class does. In the order of AllKinds, each once; none where
/// no code is known.
std::vector<std::string> KindsOf(const kernel::Device& device);

}  // namespace cli
