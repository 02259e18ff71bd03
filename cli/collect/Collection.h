// One inventory collected through the plug-in, on the machine or from a given device list. The process-wide
// host is set back and configured for it; what was collected stays valid after the plug-in is unloaded.
#pragma once

#include <string>
#include <vector>

#include "cli/model/Inventory.h"
#include "cli/text/LogWriter.h"

namespace cli {

/// Where an inventory comes from.
struct Source {
  /// A device list to use instead of the machine's, "-" for standard input; empty for the machine's.
  std::string devices;
  /// The system name in the keys; empty for the machine's host name.
  std::string systemName;
  /// The plug-in module; empty for the one that came along.
  std::string plugin;
  /// Hashes stand in place of the serial numbers.
  bool maskSerials = false;
  /// The file with the key to hash with, "-" for standard input; empty for one drawn for this run.
  std::string maskKey;
  /// Lists are taken that are larger than any machine's.
  bool noLimits = false;
};

/// How a device list is called in messages.
std::string NameOfList(const std::string& path);

/// The content of the file at `path`, or of standard input for "-". Throws UserError, which says what to do
/// about it with `advice`, when it cannot be read.
std::string ReadInput(const std::string& path, const std::string& advice);

/// All classes, in the order in which they build on each other.
std::vector<std::string> AllClasses();

/// Has the plug-in serve the classes named, in one request; its log lines go to `log`. Throws UserError when
/// the list cannot be read or the plug-in cannot be used.
Inventory Collect(const Source& source, const std::vector<std::string>& classNames, LogWriter& log);

/// The same from the text of a device list, whatever `source` says of devices.
Inventory CollectFrom(std::string deviceList, const Source& source,
                      const std::vector<std::string>& classNames, LogWriter& log);

}  // namespace cli
