// Where an inventory is to come from, as the options say.
#pragma once

#include <optional>
#include <string>

namespace cli {

struct Source {
  /// What this machine's devices are read from: sysfs where it is mounted; sysfs; the device list that the
  /// plug-in gets on its own.
  enum class Way { kAuto, kSysfs, kPlugin };

  /// A device list or saved JSON inventory to use instead of the machine's, "-" for standard input; empty for
  /// the machine's.
  std::string devices;
  /// Nothing where it was not asked for, which is kAuto.
  std::optional<Way> way;
  /// Give the plug-in the list as it is: repair nothing, leave nothing out.
  bool isAsIs = false;
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
  /// Read the ports and the device nodes, too, where they come from sysfs. Both take time.
  bool readsPorts = true;
  bool readsNodes = true;
  /// Make the hashes of devices, which takes their descriptors; only sysfs has these.
  bool makesHashes = false;
};

}  // namespace cli
