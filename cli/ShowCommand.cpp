// `usbinfo show`; see the header.
#include "cli/ShowCommand.h"

#include <fmt/format.h>

#include <algorithm>
#include <iostream>
#include <sstream>

#include "cli/EmptyAdvice.h"
#include "cli/ExitStatus.h"
#include "cli/LogWriter.h"
#include "cli/Output.h"
#include "cli/OutputFormat.h"
#include "cli/Text.h"
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
  if (request.empty()) return AllClasses();
  std::vector<std::string> names;
  std::istringstream list(request);
  for (std::string name; std::getline(list, name, ',');) names.push_back(name);
  return names;
}

/// For people, nothing is printed where there is nothing; programs get their empty document.
void Print(const ShowOptions& options, const Inventory& inventory) {
  const OutputFormat& format = FindOutputFormat(options.format);
  if (inventory.IsEmpty() && !format.isMachineReadable) return;
  WriteOutput(options.output, format.render(inventory, RenderOptions{options.output.empty()}));
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

std::string AdviseOnNothingShown(const ShowOptions& options, const Inventory& inventory) {
  if (inventory.IsEmpty()) return AdviseOnEmpty(options);
  return fmt::format("nothing matches \"{}\"; leave that out to see what there is",
                     Describe(options.selection));
}

}  // namespace

int RunShow(const ShowOptions& options) {
  LogWriter log(options.log, SeverityOf(options.logLevel),
                options.logFormat == "json" ? LogFormat::kJson : LogFormat::kText);
  const Inventory inventory = Collect(options.source, RequestedClasses(options.request), log);
  const Inventory shown = Select(inventory, options.selection, FindOutputFormat(options.format).keepsWay);
  Print(options, shown);
  log.Finish();
  if (!shown.IsEmpty()) return kPrinted;
  std::cerr << "usbinfo: " << EscapeForTerminal(AdviseOnNothingShown(options, inventory)) << "\n";
  return kNothingFound;
}

}  // namespace cli
