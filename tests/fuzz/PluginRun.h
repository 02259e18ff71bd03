// One request for all classes, with a device list given and the plug-in's objects linked in: the plug-in
// object, its inventory and the host are as new each time, so that one process serves any number of lists.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "cli/model/Inventory.h"
#include "host/ILogger.h"

namespace usbinfo_test {

using LoggedLine = std::pair<NKESTA20::ILogger::EQSVLogSeverity, std::string>;

class PluginRun {
 public:
  static constexpr const char* kSystemName = "testhost";

  /// Makes the run; throws what leaves the plug-in.
  explicit PluginRun(const std::string& text);
  PluginRun(const PluginRun&) = delete;
  PluginRun& operator=(const PluginRun&) = delete;
  /// Leaves nothing behind in the host and the plug-in, so that leaks show.
  ~PluginRun();

  const cli::Inventory& Result() const { return *fResult; }
  /// Every line of the core logger.
  const std::vector<LoggedLine>& Log() const { return fLog; }

 private:
  std::vector<LoggedLine> fLog;
  std::unique_ptr<cli::Inventory> fResult;
};

}  // namespace usbinfo_test
