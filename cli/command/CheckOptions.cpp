#include "cli/command/CheckOptions.h"

#include <algorithm>

#include "cli/command/SourceOptions.h"
#include "cli/option/CommonOptions.h"
#include "cli/option/UsageError.h"
#include "cli/option/Values.h"

namespace cli {

namespace {

Option NagiosOption(bool& isForNagios) {
  return {
      .names = {"--nagios"},
      .help = "Print one line for Nagios, and exit as its plug-ins do",
      .manual = R"(Print one line as the plug-ins of Nagios do, with the numbers of devices after a bar, and
exit with 0 where all devices are allowed, 2 where some are not, 1 where a device may have forged a list, and 3
for everything else; the line then says what is wrong.
Lists that a device may have forged are checked; with
.Fl -allow-suspect
they are no warning.)",
      .store = StoreTrue(isForNagios)};
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
  std::vector<Option> table = {FormatOption(options.format, {{"text"}, {"json"}}),
                               NagiosOption(options.isForNagios), DefaultTargetOption(options.defaultTarget),
                               AllowSuspectOption("Check", options.allowsSuspect),
                               OutputOption(options.output)};
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
  if (options.isForNagios) {
    RefuseOptions({{"--format json", options.format == "json"}, {"--output", !options.output.empty()}},
                  "is not supported with --nagios, which prints its line on standard output: leave one out");
  }
  CheckStandardInput(options);
  if (options.inventories.empty() || !options.source.way) return;
  throw UsageError("--source is for this machine: leave it or the inventory out");
}

bool IsCheckForNagios(const std::vector<std::string>& arguments) {
  const auto end = std::find(arguments.begin(), arguments.end(), "--");
  const auto has = [&](const char* word) { return std::find(arguments.begin(), end, word) != end; };
  return has("check") && has("--nagios");
}

}  // namespace cli
