// The target of descriptors: what a device sends of itself, from sysfs to a device list and back.
#pragma once

#include <string>

namespace usbinfo_test {

/// `input` is a byte for the speed, one for the quirks, one for the length of each of three strings, the
/// strings, and the file "descriptors". Throws BrokenInvariant unless the file is refused, or is read within
/// the kernel's limits and gives a device list of one record that reads back as the same device, without
/// anything to find or to repair.
void CheckDescriptors(const std::string& input);

}  // namespace usbinfo_test
