#include "cli/collect/Collection.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <new>
#include <optional>
#include <system_error>
#include <utility>

#include "cli/collect/MaskingSystem.h"
#include "cli/collect/ModulePath.h"
#include "cli/collect/SerialMask.h"
#include "cli/collect/WaitingNotice.h"
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
  if (source.maskKey.empty()) return SerialMask::OfThisRun();
  return SerialMask::OfKeyFile(source.maskKey);
}

/// The machine, which may take its time; a terminal is told.
std::unique_ptr<OperatingSystem> MachineForUser() {
  auto machine = std::make_unique<standin::Machine>();
  if (::isatty(STDERR_FILENO) == 0) return machine;
  return std::make_unique<WaitingNotice>(std::move(machine), std::chrono::seconds(1),
                                         [](const std::string& line) { sys::WriteAll(STDERR_FILENO, line); });
}

std::unique_ptr<OperatingSystem> SystemOf(std::optional<std::string> deviceList) {
  if (!deviceList) return MachineForUser();
  return std::make_unique<standin::GivenDeviceList>(*std::move(deviceList));
}

std::unique_ptr<OperatingSystem> MaskedSystemOf(const Source& source, std::optional<std::string> deviceList) {
  if (!source.maskSerials) return SystemOf(std::move(deviceList));
  SerialMask mask = MaskOf(source);
  return std::make_unique<MaskingSystem>(SystemOf(std::move(deviceList)), std::move(mask));
}

/// A fresh host; with `deviceList`, for that rather than for the machine's.
void ConfigureHost(const Source& source, std::optional<std::string> deviceList, LogWriter& log) {
  Host& host = Host::Instance();
  host.Reset();
  if (!source.systemName.empty()) host.SetSystemName(source.systemName);
  host.SetOperatingSystem(MaskedSystemOf(source, std::move(deviceList)));
  host.CoreLogger().SetSink(
      [&log](ILogger::EQSVLogSeverity severity, const std::string& text) { log.Write(severity, text); });
}

/// Drives the plug-in as a host does. An exception's type may live in the module, so it is told while the
/// module is still loaded.
void DrivePlugin(const std::string& pluginPath, const std::vector<std::string>& classNames) {
  namespace fs = std::filesystem;
  const std::string path = pluginPath.empty() ? FindPluginModule() : fs::absolute(pluginPath).string();
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

}  // namespace

std::string NameOfList(const std::string& path) {
  return path == "-" ? "standard input" : path;
}

std::string ReadInput(const std::string& path, const std::string& advice) {
  try {
    if (path == "-") return sys::ReadAll(STDIN_FILENO);
    return sys::ReadAll(sys::OpenFile(path, O_RDONLY).Get());
  } catch (const std::system_error& error) {
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
    if (LooksLikeJson(text)) return FromJson(text, NameOfList(source.devices));
    return CollectFrom(std::move(text), source, classNames, log);
  }
  ConfigureHost(source, std::nullopt, log);
  DrivePlugin(source.plugin, classNames);
  return FromHost(Host::Instance(), classNames);
}

Inventory CollectFrom(std::string deviceList, const Source& source,
                      const std::vector<std::string>& classNames, LogWriter& log) {
  ConfigureHost(source, std::move(deviceList), log);
  DrivePlugin(source.plugin, classNames);
  return FromHost(Host::Instance(), classNames);
}

}  // namespace cli
