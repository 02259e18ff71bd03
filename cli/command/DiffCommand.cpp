#include "cli/command/DiffCommand.h"

#include <fmt/format.h>

#include <utility>

#include "cli/collect/Collection.h"
#include "cli/collect/DeviceListText.h"
#include "cli/collect/Input.h"
#include "cli/command/ExitStatus.h"
#include "cli/command/Findings.h"
#include "cli/diff/DiffJson.h"
#include "cli/diff/DiffText.h"
#include "cli/diff/InventoryDiff.h"
#include "cli/model/FromJson.h"
#include "cli/option/UsageError.h"
#include "cli/text/Color.h"
#include "cli/text/LogWriter.h"
#include "cli/text/Output.h"
#include "cli/text/UserError.h"

namespace cli {

namespace {

Inventory ReadInventory(const std::string& path, const DiffOptions& options, LogWriter& log) {
  const std::string text = ReadInput(path, "name a file that holds a JSON inventory or a device list");
  const std::string name = NameOfList(path);
  if (!LooksLikeJson(text) && !LooksLikeDeviceList(text)) {
    throw UserError(fmt::format(
        "{} holds neither a JSON inventory nor a device list; save one with usbinfo --format json", name));
  }
  Source source;
  source.devices = path;
  source.plugin = options.plugin;
  source.systemName = options.systemName;
  source.isAsIs = options.isAsIs;
  Inventory inventory = CollectFrom(text, source, AllClasses(), log);
  if (!options.allowsSuspect) RefuseFindings(inventory, name);
  WarnOfFindings(inventory);
  return inventory;
}

/// Saved inventories are not collected again, so options of collecting have no effect on them.
void CheckOptionsForLists(const DiffOptions& options, const Inventory& before, const Inventory& after) {
  if (before.DeviceList() || after.DeviceList()) return;
  const std::pair<const char*, bool> given[] = {{"--as-is", options.isAsIs},
                                                {"--plugin", !options.plugin.empty()},
                                                {"--system-name", !options.systemName.empty()}};
  for (const auto& [name, isGiven] : given) {
    if (isGiven) {
      throw UsageError(
          fmt::format("{} is for device lists, and both files hold saved inventories: leave it out", name));
    }
  }
}

std::string Render(const DiffOptions& options, const InventoryDifference& difference) {
  if (options.format == "json") return RenderDiffJson(difference);
  return RenderDiffText(difference, UsesColor(ColorOf(options.color), IsStandardOutput(options.output)));
}

}  // namespace

int RunDiff(const DiffOptions& options) {
  if (options.before == "-" && options.after == "-") {
    throw UserError("standard input holds one inventory; give a file for OLD or for NEW");
  }
  RequireDistinctFiles({"--output", options.output},
                       {{"OLD", options.before}, {"NEW", options.after}, {"--plugin", options.plugin}});
  LogWriter log("", LogSeverity::kWarning, LogFormat::kText);
  const Inventory before = ReadInventory(options.before, options, log);
  const Inventory after = ReadInventory(options.after, options, log);
  CheckOptionsForLists(options, before, after);
  const InventoryDifference difference = Compare(before, after);
  WriteOutput(options.output, Render(options, difference));
  log.Finish();
  return difference.IsEmpty() ? kPrinted : kDifferent;
}

}  // namespace cli
