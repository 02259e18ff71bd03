#include "cli/command/CheckCommand.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <vector>

#include "cli/collect/Collection.h"
#include "cli/command/Findings.h"
#include "cli/command/InventoryFile.h"
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

/// The inventory at `path`; this machine's for an empty path.
Inventory ReadInventory(const CheckOptions& options, const Policy& policy, const std::string& path,
                        LogWriter& log) {
  Source source = options.source;
  source.devices = path;
  source.readsNodes = false;
  source.makesHashes = policy.UsesHashes();
  Inventory inventory = path.empty() ? Collect(source, AllClasses(), log) : ReadInventoryFile(source, log);
  // The line for Nagios says whether there are findings.
  if (options.isForNagios) return inventory;
  if (!options.allowsSuspect) RefuseFindings(inventory, NameOfInventory(path), "check");
  WarnOfFindings(inventory);
  return inventory;
}

void CheckFiles(const CheckOptions& options) {
  std::vector<NamedFile> inputs = {{"POLICY", options.policy}, {"--plugin", options.source.plugin}};
  for (const std::string& path : options.inventories) inputs.push_back({"INVENTORY", path});
  RequireDistinctFiles({"--output", IsStandardOutput(options.output) ? "" : options.output}, inputs);
}

std::vector<Inventory> ReadInventories(const CheckOptions& options, const Policy& policy,
                                       const std::vector<std::string>& paths, LogWriter& log) {
  std::vector<Inventory> inventories;
  inventories.reserve(paths.size());
  for (const std::string& path : paths) inventories.push_back(ReadInventory(options, policy, path, log));
  const auto isCollected = [](const Inventory& inventory) { return inventory.DeviceList().has_value(); };
  if (std::none_of(inventories.begin(), inventories.end(), isCollected)) {
    RefuseOptionsForLists(options.source, "only saved inventories are checked");
  }
  return inventories;
}

/// Warns of inventories without devices, except for Nagios, whose line says so.
std::vector<CheckedInventory> CheckInventories(const CheckOptions& options, const Policy& policy,
                                               const std::vector<std::string>& paths,
                                               const std::vector<Inventory>& inventories) {
  std::vector<CheckedInventory> checked;
  for (std::size_t index = 0; index < paths.size(); ++index) {
    const std::string name = NameOfInventory(paths[index]);
    checked.push_back(Check(policy, inventories[index], name));
    if (options.isForNagios || !inventories[index].IsEmpty()) continue;
    PrintMessage(fmt::format("no USB device found: {} has none", name));
  }
  return checked;
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
  const std::vector<Inventory> inventories = ReadInventories(options, policy, paths, log);
  const std::vector<CheckedInventory> checked = CheckInventories(options, policy, paths, inventories);
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
