// Reads one device from its folder in sysfs.
#pragma once

#include "kernel/Device.h"
#include "kernel/DeviceName.h"
#include "kernel/SysfsFolder.h"

namespace kernel {

/// The device of that name, without its nodes, its place among others on its hub, and its hub's number.
/// Throws SysfsError where a file is missing, cannot be read or is damaged.
Device ReadDevice(const SysfsFolder& folder, const DeviceName& name);

/// All its descriptors, at most 18 bytes and those of one configuration of the greatest size. Throws
/// SysfsError.
std::string ReadRawDescriptors(const SysfsFolder& folder);

/// Throws SysfsError where the device has gone or changed since it was read, or was only coming then. Where
/// it does not, all that was read in between is of that device, and nothing of it was missing.
void CheckUnchanged(const SysfsFolder& folder, const DeviceName& name, const Device& device);

}  // namespace kernel
