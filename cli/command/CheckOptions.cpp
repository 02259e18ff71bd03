#include "cli/command/CheckOptions.h"

#include <algorithm>

#include "cli/command/SourceOptions.h"
#include "cli/option/CommonOptions.h"
#include "cli/option/UsageError.h"
#include "cli/option/Values.h"

namespace cli {

namespace {

Option DefaultOption(std::string& target) {
  const std::vector<Choice> choices = {{"block"}, {"allow"}};
  return {.names = {"--default"},
          .value = "TARGET",
          .help = "What becomes of devices that no rule matches",
          .defaultValue = target,
          .choices = choices,
          .manual = "What becomes of devices that no rule matches:",
          .store = StoreChoice(target, choices)};
}

void CheckStandardInput(const CheckOptions& options) {
  const auto count = std::count(options.inventories.begin(), options.inventories.end(), "-") +
                     (options.policy == "-" ? 1 : 0);
  if (count > 1) throw UsageError("standard input holds one file: give \"-\" only once");
}

}  // namespace

std::vector<Operand> CheckOperands(CheckOptions& options) {
  return {{.name = "POLICY",
           .help = "A file of rules in USBGuard's language; - is standard input",
           .store = StoreText(options.policy)},
          {.name = "INVENTORY",
           .help = "A JSON inventory or a device list; this machine where it is left out",
           .isOptional = true,
           .isRepeatable = true,
           .store = [&options](const std::string& path) {
             if (path.empty()) throw UsageError("must not be empty");
             options.inventories.push_back(path);
           }}};
}

std::vector<Option> CheckOptionTable(CheckOptions& options) {
  std::vector<Option> table = {
      FormatOption(options.format, {{"text"}, {"json"}}), DefaultOption(options.defaultTarget),
      AllowSuspectOption("Check", options.allowsSuspect), OutputOption(options.output)};
  for (Option& option : SourceOptions(options.source)) table.push_back(std::move(option));
  table.push_back(PluginOption(options.source.plugin));
  return table;
}

void CompleteCheckOptions(CheckOptions& options) {
  if (!options.source.devices.empty()) {
    if (!options.inventories.empty())
      throw UsageError("--devices names an inventory: leave it or INVENTORY out");
    options.inventories.push_back(options.source.devices);
  }
  CheckStandardInput(options);
  if (options.inventories.empty() || !options.source.way) return;
  throw UsageError("--source is for this machine: leave it or the inventory out");
}

}  // namespace cli
