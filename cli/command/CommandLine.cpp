#include "cli/command/CommandLine.h"

#include "cli/command/CheckCommand.h"
#include "cli/command/DiffCommand.h"
#include "cli/command/SchemaCommand.h"
#include "cli/command/ShowCommand.h"
#include "cli/command/WatchCommand.h"

namespace cli {

namespace {

/// What --generate takes beside the names of the texts that are made from the options.
constexpr const char* kClassTable = "classes";

}  // namespace

CommandLine::CommandLine() {
  fCommand.name = "usbinfo";
  fCommand.summary = "Show a machine's USB inventory: controllers, hubs, ports and devices";
  fCommand.subcommands.push_back(Show());
  fCommand.subcommands.push_back(Diff());
  fCommand.subcommands.push_back(Watch());
  fCommand.subcommands.push_back(Check());
  fCommand.subcommands.push_back(Schema());
  fCommand.subcommands.push_back(fStandard.Help());
}

int CommandLine::Run(const std::vector<std::string>& arguments) {
  const auto run = [&] {
    return fStandard.Run(arguments, [](const std::string& /*what*/) { return RenderClassTable(); });
  };
  return IsCheckForNagios(arguments) ? RunForNagios(run) : run();
}

CommandSpec CommandLine::Show() {
  return {.name = "show",
          .summary = "Print the inventory",
          .options = fStandard.WithVersion(ShowOptionTable(fShow), {kClassTable}),
          .isDefault = true,
          .fileOption = "--devices",
          .check = [this] { CompleteShowOptions(fShow); },
          .run = [this] { return RunShow(fShow); }};
}

CommandSpec CommandLine::Diff() {
  return {.name = "diff",
          .summary = "Compare two inventories",
          .manual = R"(.Ar OLD
and
.Ar NEW
are JSON inventories or device lists, the same files that
.Fl -devices
takes.
One of them may be a single dash, which is standard input.
Without
.Ar NEW ,
the new inventory is that of this machine.)",
          .operands = DiffOperands(fDiff),
          .options = fStandard.WithHelp(DiffOptionTable(fDiff)),
          .check = [this] { CheckDiffOptions(fDiff); },
          .run = [this] { return RunDiff(fDiff); }};
}

CommandSpec CommandLine::Watch() {
  return {.name = "watch",
          .summary = "Follow this machine and print what changes",
          .manual = R"(The kernel reports every USB device that comes or goes.
When things have settled, the machine is looked at anew, and what differs from the
look before is printed as
.Cm diff
prints it, and written at once.
A device that came and went between two looks is reported as such.
The watch ends at
.Dv SIGINT ,
.Dv SIGTERM ,
or when one of the options below says so; what has happened by then is still printed,
and the exit status is 0.)",
          .options = fStandard.WithHelp(WatchOptionTable(fWatch)),
          .check = [this] { CheckWatchOptions(fWatch); },
          .run = [this] { return RunWatch(fWatch); }};
}

CommandSpec CommandLine::Check() {
  return {.name = "check",
          .summary = "Check devices against a policy",
          .manual = R"(.Ar POLICY
is a file of rules in the language of
.Xr usbguard-rules.conf 5 .
The devices are those of each
.Ar INVENTORY ,
which is a JSON inventory or a device list; without one, they are those of this machine.)",
          .operands = CheckOperands(fCheck),
          .options = fStandard.WithHelp(CheckOptionTable(fCheck)),
          .check = [this] { CompleteCheckOptions(fCheck); },
          .run = [this] { return RunCheck(fCheck); }};
}

CommandSpec CommandLine::Schema() {
  return {.name = "schema",
          .summary = "Print the definitions of the inventory's classes",
          .options = fStandard.WithHelp(SchemaOptionTable(fSchema)),
          .run = [this] { return RunSchema(fSchema); }};
}

}  // namespace cli
