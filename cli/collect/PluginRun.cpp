#include "cli/collect/PluginRun.h"

#include <fmt/format.h>

#include <new>
#include <utility>

#include "cli/collect/LossWatch.h"
#include "cli/collect/ModulePath.h"
#include "cli/model/FromHost.h"
#include "cli/text/UserError.h"
#include "host/ILogger.h"
#include "standin/Host.h"
#include "standin/PluginModule.h"

using NKESTA20::ILogger;
using standin::Host;

namespace cli {

namespace {

/// Calls the plug-in as a host does. An exception's type may be defined in the module, so its message is read
/// while the module is still loaded.
void DrivePlugin(const PluginRequest& request) {
  const std::string path = PluginModulePath(request.module);
  try {
    standin::PluginModule module(path);
    try {
      module.Collect(request.classNames);
    } catch (const std::bad_alloc&) {
      throw;
    } catch (const std::exception& error) {
      throw UserError(
          fmt::format("the plug-in {} failed: {}; name another with --plugin FILE", path, error.what()));
    } catch (...) {
      throw UserError(fmt::format("the plug-in {} failed; name another with --plugin FILE", path));
    }
  } catch (const standin::PluginError& error) {
    throw UserError(
        fmt::format("cannot use the plug-in: {}; name the module with --plugin FILE", error.what()));
  }
}

}  // namespace

Inventory RunPlugin(const PluginRequest& request, std::unique_ptr<standin::OperatingSystem> system,
                    LogWriter& log, const std::function<void()>& checkList) {
  Host& host = Host::Instance();
  host.Reset();
  // The plug-in asks for the name with every instance, the machine is asked once.
  host.SetSystemName(request.systemName.empty() ? host.SystemName() : request.systemName);
  host.SetOperatingSystem(std::move(system));
  LossWatch losses;
  host.CoreLogger().SetSink([&log, &losses](ILogger::EQSVLogSeverity severity, const std::string& text) {
    losses.Take(severity, text);
    log.Write(static_cast<LogSeverity>(severity), text);
  });
  DrivePlugin(request);
  host.CoreLogger().SetSink(nullptr);
  checkList();
  losses.CheckNothingLost();
  return FromHost(host, request.classNames);
}

}  // namespace cli
