// `usbinfo show`; see the header.
#include "cli/command/ShowCommand.h"

#include <fmt/format.h>

#include <algorithm>
#include <iostream>
#include <optional>
#include <vector>

#include "cli/collect/EmptyAdvice.h"
#include "cli/command/ExitStatus.h"
#include "cli/format/OutputFormat.h"
#include "cli/format/RenderOptions.h"
#include "cli/model/UsbIds.h"
#include "cli/text/LogWriter.h"
#include "cli/text/Output.h"
#include "cli/text/Text.h"
#include "host/ILogger.h"

using NKESTA20::ILogger;

namespace cli {

namespace {

ILogger::EQSVLogSeverity SeverityOf(const std::string& name) {
  const auto& names = SeverityNames();
  const auto number = std::find(names.begin(), names.end(), name) - names.begin();
  return static_cast<ILogger::EQSVLogSeverity>(number);
}

/// The classes to ask for: those named, else all in the order in which they build on each other.
std::vector<std::string> RequestedClasses(const std::string& request) {
  return request.empty() ? AllClasses() : SplitAtCommas(request);
}

std::string Render(const ShowOptions& options, const OutputFormat& format, const Inventory& inventory) {
  const std::optional<UsbIds> names = format.showsNames ? UsbIds::OfThisMachine() : std::nullopt;
  RenderOptions rendering;
  rendering.isStandardOutput = options.output.empty();
  rendering.color = ColorOf(options.color);
  rendering.isVerbose = options.isVerbose;
  rendering.columns = SplitAtCommas(options.columns);
  rendering.names = names ? &*names : nullptr;
  return format.render(inventory, rendering);
}

/// For people, nothing is printed where there is nothing; programs get their empty document. Tells whether
/// there was something.
bool Print(const ShowOptions& options, const OutputFormat& format, const Inventory& inventory) {
  if (inventory.IsEmpty() && !format.isMachineReadable) return false;
  const std::string text = Render(options, format, inventory);
  // A table without columns is nothing to print; no JSON Lines are a document.
  if (text.empty() && !format.isMachineReadable) return false;
  WriteOutput(options.output, text);
  return !inventory.IsEmpty();
}

std::string AdviseOnEmpty(const ShowOptions& options) {
  if (!options.request.empty()) {
    return "nothing to show: the requested classes have no instance; ask for hubs, ports and devices ahead "
           "of the associations, or leave --request out to see whether there is any USB device";
  }
  if (options.source.devices.empty()) return AdviseOnEmptyMachine(MachineFacts::OfThisMachine());
  return fmt::format(
      "no USB device found: {} holds no device list; expected is what /sys/kernel/debug/usb/devices or "
      "usb-devices prints",
      NameOfList(options.source.devices));
}

/// `inventory` is what was collected, `shown` the part that was asked for.
std::string AdviseOnNothingShown(const ShowOptions& options, const Inventory& inventory,
                                 const Inventory& shown) {
  if (inventory.IsEmpty()) return AdviseOnEmpty(options);
  if (shown.IsEmpty()) {
    return fmt::format("nothing matches \"{}\"; leave that out to see what there is",
                       Describe(options.selection));
  }
  return fmt::format("nothing to show: no class that has instances has {}; see usbinfo schema",
                     options.columns);
}

/// The log is made anew before anything is read: named like an input, it would empty that. The list alone may
/// be replaced by what comes of it, which is complete by then.
void KeepFilesApart(const ShowOptions& options) {
  const Source& source = options.source;
  const NamedFile key = {"--mask-key", source.maskKey};
  const NamedFile plugin = {"--plugin", source.plugin};
  const NamedFile output = {"--output", options.output};
  KeepApart({"--log", options.log}, {{"--devices", source.devices}, key, plugin, output});
  KeepApart(output, {key, plugin});
}

}  // namespace

int RunShow(const ShowOptions& options) {
  KeepFilesApart(options);
  LogWriter log(options.log, SeverityOf(options.logLevel),
                options.logFormat == "json" ? LogFormat::kJson : LogFormat::kText);
  const Inventory inventory = Collect(options.source, RequestedClasses(options.request), log);
  const OutputFormat& format = FindOutputFormat(options.format);
  const Inventory shown = Select(inventory, options.selection, format.keepsPath);
  const bool isPrinted = Print(options, format, shown);
  log.Finish();
  if (isPrinted) return kPrinted;
  std::cerr << "usbinfo: " << EscapeForTerminal(AdviseOnNothingShown(options, inventory, shown)) << "\n";
  return kNothingFound;
}

}  // namespace cli
