// One run of the plug-in, as a host runs it.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "cli/model/Inventory.h"
#include "cli/text/LogWriter.h"
#include "standin/OperatingSystem.h"

namespace cli {

/// What the plug-in is asked, under which name.
struct PluginRequest {
  /// The module; empty for the command's own.
  std::string module;
  /// The system name in the keys; empty for the machine's host name.
  std::string systemName;
  /// The classes, in one request.
  std::vector<std::string> classNames;
};

/// What the plug-in commits with `system` for its machine. The process-wide host is reset and configured for
/// it; the inventory stays valid after the plug-in is unloaded. The plug-in's log lines go to `log`. Throws
/// UserError when the plug-in cannot be used or fails, and when it lost a part of the inventory. Whether it
/// got a device list is for `checkList` to say, which is called before anything is taken for lost.
Inventory RunPlugin(
    const PluginRequest& request, std::unique_ptr<standin::OperatingSystem> system, LogWriter& log,
    const std::function<void()>& checkList = [] {});

}  // namespace cli
