// Prints the device list that is made from sysfs: print-device-list [ROOT]. What cannot be read goes to
// standard error, a line each, and makes the exit status 1.
#include <cstdio>

#include "kernel/DeviceListWriter.h"
#include "kernel/SysfsReader.h"

int main(int count, char** arguments) {
  const kernel::Topology topology = kernel::ReadSysfs(count > 1 ? arguments[1] : kernel::kSysfsDevices);
  for (const auto& device : topology.unreadable) {
    std::fprintf(stderr, "%s: %s\n", device.name.c_str(), device.reason.c_str());
  }
  std::fputs(kernel::WriteDeviceList(topology).c_str(), stdout);
  return topology.unreadable.empty() ? 0 : 1;
}
