// One inventory collected through the plug-in, on the machine or from a given device list. The process-wide
// host is reset and configured for it; the inventory stays valid after the plug-in is unloaded.
#pragma once

#include <string>
#include <vector>

#include "cli/model/Inventory.h"
#include "cli/text/LogWriter.h"

namespace cli {

/// Where an inventory comes from.
struct Source {
  /// A device list or saved JSON inventory to use instead of the machine's, "-" for standard input; empty for
  /// the machine's.
  std::string devices;
  /// The system name in the keys; empty for the one from the list's path (see SystemNameOfList) or, without a
  /// list, for the machine's host name.
  std::string systemName;
  /// The plug-in module; empty for the command's own.
  std::string plugin;
  /// Replace serial numbers by hashes.
  bool maskSerials = false;
  /// The file with the key of the hashes, "-" for standard input; empty for a random key for this run.
  std::string maskKey;
  /// Accept lists beyond the limits, too, see CheckListLimits.
  bool noLimits = false;
};

/// What messages call a device list.
std::string NameOfList(const std::string& path);

/// The content of the file at `path`, or of standard input for "-". Throws UserError when it cannot be read
/// or has more than 64 MiB; the message ends in `advice`, which says what to do.
std::string ReadInput(const std::string& path, const std::string& advice);

/// All classes, in the order in which they build on each other.
std::vector<std::string> AllClasses();

/// Has the plug-in serve the classes named, in one request; its log lines go to `log`. A saved JSON inventory
/// given as the list is read as it is, without the plug-in. Throws UserError when the list cannot be
/// obtained, is not a device list or is beyond the limits, when the plug-in cannot be used, and when it lost
/// a part of the inventory. Warns on standard error where nothing says which system a list is of.
Inventory Collect(const Source& source, const std::vector<std::string>& classNames, LogWriter& log);

/// The same from `deviceList`, the text that was read from `source.deviceList`.
Inventory CollectFrom(std::string deviceList, const Source& source,
                      const std::vector<std::string>& classNames, LogWriter& log);

}  // namespace cli
