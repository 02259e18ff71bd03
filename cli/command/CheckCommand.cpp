#include "cli/command/CheckCommand.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <vector>

#include "cli/collect/Collection.h"
#include "cli/command/Findings.h"
#include "cli/option/UsageError.h"
#include "cli/policy/PolicyCheck.h"
#include "cli/policy/PolicyCheckJson.h"
#include "cli/policy/PolicyCheckNagios.h"
#include "cli/policy/PolicyCheckText.h"
#include "cli/policy/PolicyFile.h"
#include "cli/text/ExitStatus.h"
#include "cli/text/Input.h"
#include "cli/text/LogWriter.h"
#include "cli/text/Message.h"
#include "cli/text/Output.h"
#include "cli/text/Program.h"
#include "cli/text/UserError.h"

namespace cli {

namespace {

std::string NameOfInventory(const std::string& path) {
  return path.empty() ? "this machine" : NameOfList(path);
}

/// The inventory at `path`; this machine's for an empty path.
Inventory ReadInventory(const CheckOptions& options, const Policy& policy, const std::string& path,
                        LogWriter& log) {
  Source source = options.source;
  source.devices = path;
  source.readsNodes = false;
  source.makesHashes = policy.UsesHashes();
  Inventory inventory = Collect(source, AllClasses(), log);
  const std::string name = NameOfInventory(path);
  // The one line for Nagios says it all.
  if (options.isForNagios) return inventory;
  if (!options.allowsSuspect) RefuseFindings(inventory, name, "check");
  WarnOfFindings(inventory);
  if (inventory.IsEmpty()) PrintMessage(fmt::format("no USB device found: {} has none", name));
  return inventory;
}

void CheckFiles(const CheckOptions& options) {
  std::vector<NamedFile> inputs = {{"POLICY", options.policy}, {"--plugin", options.source.plugin}};
  for (const std::string& path : options.inventories) inputs.push_back({"INVENTORY", path});
  RequireDistinctFiles({"--output", IsStandardOutput(options.output) ? "" : options.output}, inputs);
}

/// Saved inventories are not collected again, so options of collecting have no effect on them.
void CheckOptionsForLists(const CheckOptions& options, const std::vector<Inventory>& inventories) {
  const auto isCollected = [](const Inventory& inventory) { return inventory.DeviceList().has_value(); };
  if (std::any_of(inventories.begin(), inventories.end(), isCollected)) return;
  RefuseOptions({{"--as-is", options.source.isAsIs},
                 {"--plugin", !options.source.plugin.empty()},
                 {"--system-name", !options.source.systemName.empty()}},
                "is for device lists, and only saved inventories are checked: leave it out");
}

std::string Render(const Policy& policy, const std::vector<CheckedInventory>& checked,
                   const CheckOptions& options) {
  return options.format == "json" ? RenderCheckJson(policy, checked) : RenderCheckText(policy, checked);
}

int PrintForNagios(const NagiosReport& report) {
  WriteStandardOutput(report.line);
  return static_cast<int>(report.status);
}

}  // namespace

int RunCheck(const CheckOptions& options) {
  CheckFiles(options);
  const Policy policy = ReadPolicy(options.policy, options.defaultTarget);
  LogWriter log("", LogSeverity::kWarning, LogFormat::kText);
  std::vector<std::string> paths = options.inventories;
  if (paths.empty()) paths.emplace_back();
  std::vector<Inventory> inventories;
  inventories.reserve(paths.size());
  for (const std::string& path : paths) inventories.push_back(ReadInventory(options, policy, path, log));
  CheckOptionsForLists(options, inventories);
  std::vector<CheckedInventory> checked;
  for (std::size_t index = 0; index < paths.size(); ++index) {
    checked.push_back(Check(policy, inventories[index], NameOfInventory(paths[index])));
  }
  log.Finish();
  if (options.isForNagios) return PrintForNagios(RenderCheckNagios(checked, options.allowsSuspect));
  WriteOutput(options.output, Render(policy, checked, options));
  return IsAllAllowed(checked) ? kPrinted : kNotAllowed;
}

int RunForNagios(const std::function<int()>& run) {
  try {
    return run();
  } catch (const ClosedPipe&) {
    throw;
  } catch (...) {
    const NagiosReport report = RenderNagiosFailure(DescribeException());
    try {
      return PrintForNagios(report);
    } catch (const UserError& error) {
      PrintMessage(error.what());
      return static_cast<int>(report.status);
    }
  }
}

}  // namespace cli
