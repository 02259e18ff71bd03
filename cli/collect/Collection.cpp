#include "cli/collect/Collection.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <memory>
#include <new>
#include <optional>
#include <system_error>
#include <utility>

#include "cli/collect/AcquisitionWatch.h"
#include "cli/collect/DeviceListText.h"
#include "cli/collect/Hardening.h"
#include "cli/collect/InventoryMask.h"
#include "cli/collect/ListLimits.h"
#include "cli/collect/LossWatch.h"
#include "cli/collect/MaskingSystem.h"
#include "cli/collect/ModulePath.h"
#include "cli/collect/SerialMask.h"
#include "cli/collect/SystemName.h"
#include "cli/collect/WaitingNotice.h"
#include "cli/collect/Warning.h"
#include "cli/model/FromHost.h"
#include "cli/model/FromJson.h"
#include "cli/text/UserError.h"
#include "host/ILogger.h"
#include "schema/ClassSchema.h"
#include "standin/GivenDeviceList.h"
#include "standin/Host.h"
#include "standin/Machine.h"
#include "standin/PluginModule.h"
#include "system/FileDescriptor.h"

using NKESTA20::ILogger;
using standin::Host;
using standin::OperatingSystem;

namespace cli {

namespace {

SerialMask MaskOf(const Source& source) {
  // The key and the serial numbers are in memory from here on.
  ForbidCoreDumps();
  if (source.maskKey.empty()) return SerialMask::OfThisRun();
  return SerialMask::OfKeyFile(source.maskKey);
}

/// The machine. Where standard error is a terminal, a notice is printed when a command takes long.
std::unique_ptr<OperatingSystem> WatchedMachine(const std::shared_ptr<Acquisition>& acquisition,
                                                bool noLimits) {
  auto machine =
      std::make_unique<AcquisitionWatch>(std::make_unique<standin::Machine>(), acquisition, noLimits);
  if (::isatty(STDERR_FILENO) == 0) return machine;
  return std::make_unique<WaitingNotice>(std::move(machine), std::chrono::seconds(1),
                                         [](const std::string& line) { sys::WriteAll(STDERR_FILENO, line); });
}

std::unique_ptr<OperatingSystem> Masked(std::unique_ptr<OperatingSystem> system, const Source& source) {
  if (!source.maskSerials) return system;
  return std::make_unique<MaskingSystem>(std::move(system), MaskOf(source));
}

/// Throws UserError for a text that is not a device list, or is beyond the limits.
void CheckDeviceList(const std::string& text, const Source& source) {
  const std::string name = NameOfList(source.devices);
  if (!IsBlank(text) && !LooksLikeDeviceList(text)) {
    throw UserError(
        fmt::format("{} holds no device list: no line begins with \"T:\"; a device list is what "
                    "/sys/kernel/debug/usb/devices or usb-devices prints",
                    name));
  }
  if (!source.noLimits) CheckListLimits(text, name);
}

/// The system name for a list; empty for this machine's.
std::string SystemNameOf(const Source& source, bool isEmpty) {
  if (!source.systemName.empty()) return source.systemName;
  const std::optional<std::string> name = SystemNameOfList(source.devices);
  if (name) return *name;
  constexpr const char* kUnknown = "unknown";
  if (!isEmpty) {
    Warn(fmt::format(
        "nothing says which system the list from {} is of, so its name is \"{}\"; give its name with "
        "--system-name NAME",
        NameOfList(source.devices), kUnknown));
  }
  return kUnknown;
}

/// Calls the plug-in as a host does. An exception's type may be defined in the module, so its message is read
/// while the module is still loaded.
void DrivePlugin(const std::string& pluginPath, const std::vector<std::string>& classNames) {
  const std::string path = PluginModulePath(pluginPath);
  try {
    standin::PluginModule module(path);
    try {
      module.Collect(classNames);
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

/// Has the plug-in serve the classes from `system`, on a fresh host, under the system's name; empty for this
/// machine's.
Inventory Serve(std::unique_ptr<OperatingSystem> system, const std::string& systemName,
                const std::string& plugin, const std::vector<std::string>& classNames, LogWriter& log,
                const std::shared_ptr<const Acquisition>& acquisition = nullptr) {
  Host& host = Host::Instance();
  host.Reset();
  if (!systemName.empty()) host.SetSystemName(systemName);
  host.SetOperatingSystem(std::move(system));
  LossWatch losses;
  host.CoreLogger().SetSink([&log, &losses](ILogger::EQSVLogSeverity severity, const std::string& text) {
    losses.Take(severity, text);
    log.Write(static_cast<LogSeverity>(severity), text);
  });
  DrivePlugin(plugin, classNames);
  host.CoreLogger().SetSink(nullptr);
  if (acquisition) CheckAcquisition(*acquisition, MachineFacts::OfThisMachine());
  losses.CheckNothingLost();
  return FromHost(host, classNames);
}

Inventory ReadSaved(const std::string& text, const Source& source) {
  Inventory inventory = FromJson(text, NameOfList(source.devices));
  return source.maskSerials ? MaskSerials(inventory, MaskOf(source)) : inventory;
}

}  // namespace

std::string NameOfList(const std::string& path) {
  return path == "-" ? "standard input" : path;
}

std::string ReadInput(const std::string& path, const std::string& advice) {
  constexpr std::size_t kMostBytes = std::size_t{64} << 20;
  try {
    if (path == "-") return sys::ReadAll(STDIN_FILENO, kMostBytes);
    return sys::ReadAll(sys::OpenFile(path, O_RDONLY).Get(), kMostBytes);
  } catch (const std::system_error& error) {
    if (error.code().value() == EFBIG) {
      throw UserError(fmt::format("cannot read {}: it has more than 64 MiB; {}", NameOfList(path), advice));
    }
    throw UserError(fmt::format("cannot read {}: {}; {}", NameOfList(path), error.code().message(), advice));
  }
}

std::vector<std::string> AllClasses() {
  std::vector<std::string> names;
  for (const schema::ClassSchema& schema : schema::ServedClasses()) names.push_back(schema.name);
  return names;
}

Inventory Collect(const Source& source, const std::vector<std::string>& classNames, LogWriter& log) {
  if (source.maskKey == "-" && source.devices == "-") {
    throw UserError("--devices and --mask-key cannot both be standard input; name a file for one of them");
  }
  if (!source.devices.empty()) {
    std::string text = ReadInput(source.devices, "name a file that holds a device list with --devices");
    if (LooksLikeJson(text)) return ReadSaved(text, source);
    return CollectFrom(std::move(text), source, classNames, log);
  }
  const auto acquisition = std::make_shared<Acquisition>();
  return Serve(Masked(WatchedMachine(acquisition, source.noLimits), source), source.systemName, source.plugin,
               classNames, log, acquisition);
}

Inventory CollectFrom(std::string deviceList, const Source& source,
                      const std::vector<std::string>& classNames, LogWriter& log) {
  CheckDeviceList(deviceList, source);
  const std::string systemName = SystemNameOf(source, IsBlank(deviceList));
  auto system = std::make_unique<standin::GivenDeviceList>(std::move(deviceList));
  return Serve(Masked(std::move(system), source), systemName, source.plugin, classNames, log);
}

}  // namespace cli
