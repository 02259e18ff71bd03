// One inventory: collected through the plug-in from this machine or from a device list, or read from a saved
// one.
#pragma once

#include <string>
#include <vector>

#include "cli/collect/Source.h"
#include "cli/model/Inventory.h"
#include "cli/text/LogWriter.h"

namespace cli {

/// All classes, in the order in which they build on each other.
std::vector<std::string> AllClasses();

/// Has the plug-in serve the classes named, in one request; its log lines go to `log`. A saved JSON inventory
/// given as the list is read as it is, without the plug-in. Throws UserError when the list cannot be
/// obtained, is not a device list or is beyond the limits, when the plug-in cannot be used, and when it lost
/// a part of the inventory. Warns on standard error where nothing says which system a list is of, and of what
/// was repaired in a list.
Inventory Collect(const Source& source, const std::vector<std::string>& classNames, LogWriter& log);

/// The same from `input`, the text that was read from `source.devices`.
Inventory CollectFrom(const std::string& input, const Source& source,
                      const std::vector<std::string>& classNames, LogWriter& log);

}  // namespace cli
