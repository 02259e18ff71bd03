// `usbinfo show`; see the header.
#include "cli/ShowCommand.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <memory>
#include <new>
#include <sstream>
#include <system_error>

#include "cli/EmptyAdvice.h"
#include "cli/ExitStatus.h"
#include "cli/Inventory.h"
#include "cli/LogWriter.h"
#include "cli/ModulePath.h"
#include "cli/Output.h"
#include "cli/OutputFormat.h"
#include "cli/Text.h"
#include "cli/UserError.h"
#include "host/ILogger.h"
#include "standin/ClassSchema.h"
#include "standin/FileDescriptor.h"
#include "standin/GivenDeviceList.h"
#include "standin/Host.h"
#include "standin/PluginModule.h"

using NKESTA20::ILogger;
using standin::Host;

namespace cli {

namespace {

std::vector<std::string> FormatNames() {
  std::vector<std::string> names;
  for (const OutputFormat& format : OutputFormats()) names.push_back(format.name);
  return names;
}

ILogger::EQSVLogSeverity SeverityOf(const std::string& name) {
  const auto& names = SeverityNames();
  const auto number = std::find(names.begin(), names.end(), name) - names.begin();
  return static_cast<ILogger::EQSVLogSeverity>(number);
}

/// How a device list is called in messages.
std::string NameOf(const std::string& path) {
  return path == "-" ? "standard input" : path;
}

std::string ReadDeviceList(const std::string& path) {
  try {
    if (path == "-") return standin::ReadAll(STDIN_FILENO);
    return standin::ReadAll(standin::OpenFile(path, O_RDONLY).Get());
  } catch (const std::system_error& error) {
    throw UserError(fmt::format("cannot read {}: {}; name a file that holds a device list with --devices",
                                NameOf(path), error.code().message()));
  }
}

/// The classes to ask for: those named, else all in the order in which they build on each other.
std::vector<std::string> RequestedClasses(const std::string& request) {
  std::vector<std::string> names;
  if (request.empty()) {
    for (const standin::ClassSchema& schema : standin::ServedClasses()) names.push_back(schema.name);
    return names;
  }
  std::istringstream list(request);
  for (std::string name; std::getline(list, name, ',');) names.push_back(name);
  return names;
}

void ConfigureHost(const ShowOptions& options, LogWriter& log) {
  Host& host = Host::Instance();
  if (!options.systemName.empty()) host.SetSystemName(options.systemName);
  if (!options.devices.empty()) {
    host.SetOperatingSystem(std::make_unique<standin::GivenDeviceList>(ReadDeviceList(options.devices)));
  }
  host.CoreLogger().SetSink(
      [&log](ILogger::EQSVLogSeverity severity, const std::string& text) { log.Write(severity, text); });
}

/// Drives the plug-in as a host does. An exception's type may live in the module, so it is told while the
/// module is still loaded.
void Collect(const ShowOptions& options) {
  namespace fs = std::filesystem;
  const std::string path =
      options.plugin.empty() ? FindPluginModule() : fs::absolute(options.plugin).string();
  try {
    standin::PluginModule module(path);
    try {
      module.Collect(RequestedClasses(options.request));
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

/// For people, nothing is printed where there is nothing; programs get their empty document.
void Print(const ShowOptions& options, const Inventory& inventory) {
  const OutputFormat& format = FindOutputFormat(options.format);
  if (inventory.IsEmpty() && !format.isMachineReadable) return;
  const std::string text = format.render(inventory, OutputPlace{options.output.empty()});
  if (options.output.empty()) {
    WriteStandardOutput(text);
  } else {
    WriteFile(options.output, text);
  }
}

std::string AdviseOnEmpty(const ShowOptions& options) {
  if (!options.request.empty()) {
    return "nothing to show: the requested classes have no instance; ask for hubs, ports and devices ahead "
           "of the associations, or leave --request out to see whether there is any USB device";
  }
  if (options.devices.empty()) return AdviseOnEmptyMachine(MachineFacts::OfThisMachine());
  return fmt::format(
      "no USB device found: {} holds no device list; expected is what /sys/kernel/debug/usb/devices or "
      "usb-devices prints",
      NameOf(options.devices));
}

std::string CheckRequest(const std::string& request) {
  const bool hasEmptyName = request.empty() || request.front() == ',' || request.back() == ',' ||
                            request.find(",,") != std::string::npos;
  return hasEmptyName ? "needs class names separated by commas" : std::string();
}

/// An empty name is most often an unset variable; taking it for "not given" would do something else.
std::string CheckNotEmpty(const std::string& text) {
  return text.empty() ? "must not be empty" : "";
}

}  // namespace

void AddShowOptions(CLI::App& app, ShowOptions& options) {
  const std::vector<std::string> formats = FormatNames();
  const auto addText = [&app](const char* name, std::string& value, const char* type, const char* help) {
    app.add_option(name, value, help)->type_name(type)->check(CheckNotEmpty);
  };
  const auto addChoice = [&app](const char* name, std::string& value, const char* type,
                                const std::vector<std::string>& choices, const char* help) {
    const std::string list = fmt::format("{}", fmt::join(choices, ", "));
    app.add_option(name, value, fmt::format("{} [{}]:\n{}", help, value, list))
        ->type_name(type)
        ->check(CLI::IsMember(choices).description(""));
  };
  options.format = formats.front();
  addText("--devices", options.devices, "FILE",
          "Use this device list instead of the machine's: a saved\n"
          "/sys/kernel/debug/usb/devices or usb-devices output;\n"
          "- is standard input");
  addChoice("--format", options.format, "FORMAT", formats, "How to print");
  app.add_option("--request", options.request,
                 "Ask the plug-in for exactly these classes, in this\n"
                 "order, in one request")
      ->type_name("A,B,...")
      ->check(CheckRequest);
  addText("--system-name", options.systemName, "NAME", "The system name in the keys [the host name]");
  addText("--output", options.output, "FILE", "Write there, whole or not at all [standard output]");
  addText("--plugin", options.plugin, "FILE", "The plug-in module to load [the one that came along]");
  addText("--log", options.log, "FILE", "Where the log goes [standard error]");
  addChoice("--log-level", options.logLevel, "LEVEL", SeverityNames(), "Log from this severity on");
  addChoice("--log-format", options.logFormat, "FORMAT", {"text", "json"}, "How to log");
}

int RunShow(const ShowOptions& options) {
  LogWriter log(options.log, SeverityOf(options.logLevel),
                options.logFormat == "json" ? LogFormat::kJson : LogFormat::kText);
  ConfigureHost(options, log);
  Collect(options);
  const Inventory inventory(Host::Instance());
  Print(options, inventory);
  log.Finish();
  if (!inventory.IsEmpty()) return kPrinted;
  std::cerr << "usbinfo: " << EscapeForTerminal(AdviseOnEmpty(options)) << "\n";
  return kNothingFound;
}

}  // namespace cli
