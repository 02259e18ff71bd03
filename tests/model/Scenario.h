// What a run is given: a device list, the way in which the machine holds it, and the classes that are asked
// for.
#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace usbinfo_test {

/// Where the machine keeps its device list.
enum class ListPlace {
  kProcFile,   // /proc/bus/usb/devices
  kDebugfs,    // /sys/kernel/debug/usb/devices
  kMountable,  // /proc/bus/usb/devices, once usbfs is mounted
  kCommand,    // what usb-devices prints
  kNowhere,    // no file, and a command that prints nothing
  kNoCommand,  // no file, and a shell that says "command-not-found"
};

struct Scenario {
  std::string name;
  std::string deviceList;
  ListPlace place = ListPlace::kProcFile;
  std::vector<std::string> request;

  bool HasProcFile(bool isMounted) const;
  bool HasDebugfsFile() const { return place == ListPlace::kDebugfs; }
  /// What the list command prints.
  std::string CommandOutput() const;
};

inline std::ostream& operator<<(std::ostream& out, const Scenario& scenario) {
  return out << scenario.name;
}

inline constexpr const char* kProcDeviceFile = "/proc/bus/usb/devices";
inline constexpr const char* kDebugfsDeviceFile = "/sys/kernel/debug/usb/devices";
inline constexpr const char* kListCommand = "usb-devices";
inline constexpr const char* kMountCommand = "mount -t usbfs usbfs /proc/bus/usb > /dev/null 2>&1";
inline constexpr const char* kUnmountCommand = "umount usbfs > /dev/null 2>&1";

}  // namespace usbinfo_test
