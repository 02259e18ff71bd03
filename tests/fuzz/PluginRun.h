// One request for all classes, with a device list given and the plug-in's objects linked in: the plug-in
// object, its inventory and the host are as new each time, so that one process serves any number of lists.
#pragma once

#include <string>
#include <vector>

#include "cli/model/Inventory.h"
#include "tests/support/LogLine.h"

namespace usbinfo_test {

class PluginRun {
 public:
  static constexpr const char* kSystemName = "testhost";

  /// Makes the run; throws what leaves the plug-in.
  explicit PluginRun(const std::string& text);
  PluginRun(const PluginRun&) = delete;
  PluginRun& operator=(const PluginRun&) = delete;
  /// Leaves nothing behind in the host and the plug-in, so that leaks show.
  ~PluginRun();

  const cli::Inventory& Result() const { return fResult; }
  /// Every line of the core logger.
  const std::vector<LogLine>& Log() const { return fLog; }

 private:
  std::vector<LogLine> fLog;
  cli::Inventory fResult{kSystemName};
};

}  // namespace usbinfo_test
