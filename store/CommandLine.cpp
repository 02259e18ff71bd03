#include "store/CommandLine.h"

#include "store/Message.h"

using cli::CommandSpec;

namespace store {

CommandLine::CommandLine(const Clock& clock) : fClock(clock) {
  fCommand.name = kProgram;
  fCommand.summary = "Keep the USB inventories of many machines, and their history";
  fCommand.subcommands = {Hosts(), Load(),   Collect(), Find(),  Changes(), Show(),
                          Check(), Forget(), Rename(),  Prune(), Migrate(), Schema()};
  fCommand.subcommands.push_back(fStandard.Help());
}

int CommandLine::Run(const std::vector<std::string>& arguments) {
  return fStandard.Run(arguments);
}

CommandSpec CommandLine::Hosts() {
  return {.name = "hosts",
          .summary = "List the machines of the store",
          .options = fStandard.WithVersion(HostsOptionTable(fHosts)),
          .isDefault = true,
          .run = [this] { return RunHosts(fHosts, fClock); }};
}

CommandSpec CommandLine::Load() {
  return {.name = "load",
          .summary = "Take inventories into the store",
          .operands = LoadOperands(fLoad),
          .options = fStandard.WithHelp(LoadOptionTable(fLoad)),
          .check = [this] { CheckLoad(fLoad); },
          .run = [this] { return RunLoad(fLoad, fClock); }};
}

CommandSpec CommandLine::Collect() {
  return {.name = "collect",
          .summary = "Fetch the inventories of other machines into the store",
          .options = fStandard.WithHelp(CollectOptionTable(fCollect)),
          .check = [this] { CheckCollect(fCollect); },
          .run = [this] { return RunCollect(fCollect, fClock); }};
}

CommandSpec CommandLine::Find() {
  return {.name = "find",
          .summary = "List where devices are, or were",
          .options = fStandard.WithHelp(FindOptionTable(fFind)),
          .run = [this] { return RunFind(fFind, fClock); }};
}

CommandSpec CommandLine::Changes() {
  return {.name = "changes",
          .summary = "Print what came, went, moved and changed",
          .options = fStandard.WithHelp(ChangesOptionTable(fChanges)),
          .run = [this] { return RunChanges(fChanges, fClock); }};
}

CommandSpec CommandLine::Show() {
  return {.name = "show",
          .summary = "Print what a machine reported",
          .operands = ShowOperands(fShow),
          .options = fStandard.WithHelp(ShowOptionTable(fShow)),
          .check = [this] { CheckShow(fShow); },
          .run = [this] { return RunShow(fShow, fClock); }};
}

CommandSpec CommandLine::Check() {
  return {.name = "check",
          .summary = "Check the devices of all machines against a policy",
          .manual = R"(.Ar POLICY
is a file of rules in the language that
.Xr usbinfo-check 1
describes.
The devices are those of the last report of each host.
A host that cannot be checked, because a rule needs what its report lacks or because a device may have forged
its list, is listed with the reason; the others are checked, and the exit status is 2.)",
          .operands = CheckOperands(fCheck),
          .options = fStandard.WithHelp(CheckOptionTable(fCheck)),
          .run = [this] { return RunCheck(fCheck, fClock); }};
}

CommandSpec CommandLine::Forget() {
  return {.name = "forget",
          .summary = "Delete all that is known of a machine",
          .operands = ForgetOperands(fForget),
          .options = fStandard.WithHelp(ForgetOptionTable(fForget)),
          .run = [this] { return RunForget(fForget); }};
}

CommandSpec CommandLine::Rename() {
  return {.name = "rename",
          .summary = "Give a machine another name in the store, with its history",
          .operands = RenameOperands(fRename),
          .options = fStandard.WithHelp(RenameOptionTable(fRename)),
          .run = [this] { return RunRename(fRename); }};
}

CommandSpec CommandLine::Prune() {
  return {.name = "prune",
          .summary = "Delete what only shows times before those to keep",
          .options = fStandard.WithHelp(PruneOptionTable(fPrune)),
          .check = [this] { CheckPrune(fPrune); },
          .run = [this] { return RunPrune(fPrune, fClock); }};
}

CommandSpec CommandLine::Migrate() {
  return {.name = "migrate",
          .summary = "Bring the store to the schema of this version",
          .options = fStandard.WithHelp(MigrateOptionTable(fMigrate)),
          .run = [this] { return RunMigrate(fMigrate); }};
}

CommandSpec CommandLine::Schema() {
  return {.name = "schema",
          .summary = "Print the SQL of the tables and views",
          .options = fStandard.WithHelp(SchemaOptionTable(fSchema)),
          .run = [this] { return RunSchema(fSchema); }};
}

}  // namespace store
