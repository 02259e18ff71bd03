#include "cli/command/ShowCommand.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <set>
#include <vector>

#include "cli/collect/EmptyAdvice.h"
#include "cli/command/Findings.h"
#include "cli/format/OutputFormat.h"
#include "cli/format/RenderOptions.h"
#include "cli/model/UsbIds.h"
#include "cli/option/UsageError.h"
#include "cli/text/ExitStatus.h"
#include "cli/text/Input.h"
#include "cli/text/LogWriter.h"
#include "cli/text/Message.h"
#include "cli/text/Output.h"
#include "schema/ClassSchema.h"

namespace cli {

namespace {

LogSeverity SeverityOf(const std::string& name) {
  const auto& names = SeverityNames();
  const auto number = std::find(names.begin(), names.end(), name) - names.begin();
  return static_cast<LogSeverity>(number);
}

/// The classes to request: those named, else all in the order in which they build on each other.
std::vector<std::string> RequestedClasses(const std::vector<std::string>& request) {
  return request.empty() ? AllClasses() : request;
}

/// The plug-in is asked for any class, but a class that the schema lacks is probably mistyped.
void ReportUnknownClasses(const std::vector<std::string>& request) {
  std::vector<std::string> unknown;
  for (const std::string& name : request) {
    if (schema::FindClass(name) == nullptr) unknown.push_back(name);
  }
  if (unknown.empty()) return;
  PrintMessage(fmt::format("the schema has no class {}; the plug-in is asked for it all the same",
                           fmt::join(unknown, ",")));
}

std::set<std::uint16_t> VendorsOf(const Inventory& inventory) {
  std::set<std::uint16_t> vendors;
  for (const std::vector<Item>* const items : {&inventory.Hubs(), &inventory.Devices()}) {
    for (const Item& item : *items) {
      vendors.insert(static_cast<std::uint16_t>(item.Number(PropertyId::kVendorID)));
    }
  }
  return vendors;
}

std::string Render(const ShowOptions& options, const OutputFormat& format, const Inventory& inventory) {
  const std::optional<UsbIds> names =
      format.showsNames ? UsbIds::OfThisMachine(VendorsOf(inventory)) : std::nullopt;
  RenderOptions rendering;
  rendering.isStandardOutput = IsStandardOutput(options.output);
  rendering.color = ColorOf(options.color);
  rendering.isVerbose = options.isVerbose;
  rendering.isCompact = options.isCompact;
  rendering.showsSerials = options.hasSerials;
  rendering.columns = options.columns;
  rendering.showsClasses = !options.selection.classes.empty();
  rendering.listsFreeSockets = options.selection.occupancy == Occupancy::kFree;
  rendering.isOccupiedOnly = options.selection.occupancy == Occupancy::kOccupied;
  rendering.names = names ? &*names : nullptr;
  return format.render(inventory, rendering);
}

/// An empty inventory prints nothing in formats for people, and an empty document in formats for programs.
/// Gives whether there was something to print.
bool Print(const ShowOptions& options, const OutputFormat& format, const Inventory& inventory) {
  if (inventory.IsEmpty() && !format.isMachineReadable) return false;
  const std::string text = Render(options, format, inventory);
  // A table without columns prints nothing, but an empty text is a valid document of JSON Lines.
  if (text.empty() && !format.isMachineReadable) return false;
  WriteOutput(options.output, text);
  return !inventory.IsEmpty();
}

std::string AdviseOnEmpty(const ShowOptions& options) {
  if (!options.request.empty()) {
    return "nothing to show: the requested classes have no instance; ask for hubs, ports and devices "
           "before the associations, or leave --request out to see whether there is any USB device";
  }
  if (options.source.devices.empty()) return AdviseOnEmptyMachine(MachineFacts::OfThisMachine());
  return fmt::format(
      "no USB device found: {} lists none; a device list is what /sys/kernel/debug/usb/devices or "
      "usb-devices prints",
      NameOfList(options.source.devices));
}

/// `inventory` is what was collected, `shown` the selected part.
std::string AdviseOnNothingShown(const ShowOptions& options, const Inventory& inventory,
                                 const Inventory& shown) {
  if (inventory.IsEmpty()) return AdviseOnEmpty(options);
  if (shown.IsEmpty()) {
    return fmt::format("nothing matches \"{}\"; leave that out to see what there is",
                       Describe(options.selection));
  }
  return fmt::format("nothing to show: no class that has instances has {}; see usbinfo schema",
                     fmt::join(options.columns, ","));
}

/// Opening the log empties its file before anything is read, so it must not be one of the inputs.
void CheckFiles(const ShowOptions& options) {
  const Source& source = options.source;
  const NamedFile devices = {"--devices", source.devices};
  const NamedFile key = {"--mask-key", source.maskKey};
  const NamedFile plugin = {"--plugin", source.plugin};
  const NamedFile output = {"--output", IsStandardOutput(options.output) ? "" : options.output};
  RequireDistinctFiles({"--log", options.log}, {devices, key, plugin, output});
  RequireDistinctFiles(output, {devices, key, plugin});
}

/// Formats that draw no path to what is selected need it all the same to see which of the occupied or free
/// ports share a socket.
bool KeepsPath(const Selection& selection, const OutputFormat& format) {
  const bool isByOccupancyAlone = selection.ids.empty() && !selection.place && !selection.name;
  return format.keepsPath || (format.takesOccupancy && isByOccupancyAlone);
}

/// A saved inventory is not collected again, so options of collecting it have no effect.
void RefuseOptionsOfCollecting(const ShowOptions& options) {
  RefuseOptions({{"--request", !options.request.empty()},
                 {"--as-is", options.source.isAsIs},
                 {"--plugin", !options.source.plugin.empty()},
                 {"--system-name", !options.source.systemName.empty()}},
                fmt::format("is for device lists, and {} holds a saved inventory: leave it out",
                            NameOfList(options.source.devices)));
}

/// Reads from this machine only what the format shows.
Source SourceFor(const ShowOptions& options, const OutputFormat& format) {
  Source source = options.source;
  source.readsPorts = format.takesOccupancy || format.showsAllFacts;
  source.readsNodes = options.isVerbose || format.showsAllFacts;
  return source;
}

}  // namespace

int RunShow(const ShowOptions& options) {
  CheckFiles(options);
  LogWriter log(options.log, SeverityOf(options.logLevel),
                options.logFormat == "json" ? LogFormat::kJson : LogFormat::kText);
  ReportUnknownClasses(options.request);
  const OutputFormat& format = FindOutputFormat(options.format);
  const Inventory inventory = Collect(SourceFor(options, format), RequestedClasses(options.request), log);
  if (!inventory.DeviceList()) RefuseOptionsOfCollecting(options);
  WarnOfFindings(inventory);
  const Inventory shown = Select(inventory, options.selection, KeepsPath(options.selection, format));
  const bool isPrinted = Print(options, format, shown);
  log.Finish();
  if (isPrinted) return kPrinted;
  PrintMessage(AdviseOnNothingShown(options, inventory, shown));
  return kNothingFound;
}

}  // namespace cli
