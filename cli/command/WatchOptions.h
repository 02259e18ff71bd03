// The options of `usbinfo watch`.
#pragma once

#include <string>
#include <vector>

#include "cli/collect/Source.h"
#include "cli/option/Option.h"
#include "cli/watch/Watcher.h"

namespace cli {

struct WatchOptions {
  WatchSettings settings;
  /// A file that holds a JSON inventory or a device list, "-" for standard input; empty for what this machine
  /// has when the watch begins.
  std::string baseline;
  /// A file that holds a policy, "-" for standard input; empty for none.
  std::string policy;
  /// What becomes of devices that no rule of the policy matches: "block" or "allow".
  std::string defaultTarget = "block";
  /// Take a baseline that a device may have forged, too.
  bool allowsSuspect = false;
  /// How this machine, and a device list as the baseline, are read; `devices` does not count.
  Source source;
  std::string format = "text";
  std::string color = "auto";
};

/// The table of options, which store their values in `options`. That must outlive them.
std::vector<Option> WatchOptionTable(WatchOptions& options);

/// Checks what depends on several options. Throws UsageError.
void CheckWatchOptions(const WatchOptions& options);

}  // namespace cli
