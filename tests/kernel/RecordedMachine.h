// A machine of tests/data/sysfs: its record, the kernel's own device list of it, and its sysfs unpacked in a
// temporary folder.
#pragma once

#include <string>
#include <vector>

#include "kernel/Topology.h"
#include "tests/kernel/SysfsRecord.h"
#include "tests/support/TemporaryFolder.h"

namespace usbinfo_test {

/// The names of all of them.
std::vector<std::string> RecordedMachines();

SysfsRecord ReadRecord(const std::string& machine);
/// As it was read from debugfs.
std::string ReadKernelList(const std::string& machine);

/// The part of a record that belongs to one controller's devices.
SysfsRecord PartOf(const SysfsRecord& record, const std::string& controller);

class UnpackedSysfs {
 public:
  explicit UnpackedSysfs(const SysfsRecord& record) { Unpack(record, fFolder.Path()); }

  std::string Path(const std::string& name) const { return fFolder.File(name); }
  std::string Root() const { return Path("bus/usb/devices"); }
  kernel::Topology Read() const;

 private:
  TemporaryFolder fFolder;
};

}  // namespace usbinfo_test
