// A recorded part of /sys: as a map by path, and as a text, which has a line per folder, file or link:
//   devices/pci0000:00/usb1
//     devnum "1\n"
//     driver -> "../../../../bus/usb/drivers/usb"
// Paths are relative to /sys. In quotes, bytes other than printable ASCII are written as \xNN, a line break
// as \n.
#pragma once

#include <filesystem>
#include <map>
#include <string>

namespace usbinfo_test {

struct RecordedFile {
  bool isLink = false;
  /// The contents, or what a link points to.
  std::string text;
};

using SysfsRecord = std::map<std::string, RecordedFile>;

/// What the reader of devices looks at below `sys`, the folder that sysfs is mounted on; of the devices of
/// one controller alone, such as "0000:00:14.0", unless that is empty.
SysfsRecord RecordSysfs(const std::filesystem::path& sys, const std::string& controller);

std::string ToText(const SysfsRecord& record);
/// The reverse. Throws std::invalid_argument.
SysfsRecord FromText(const std::string& text);

/// Makes all files and links of the record, and the folders that they are in, below `sys`.
void Unpack(const SysfsRecord& record, const std::filesystem::path& sys);

}  // namespace usbinfo_test
