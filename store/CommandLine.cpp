#include "store/CommandLine.h"

#include <utility>

#include "cli/option/CommandParser.h"
#include "cli/option/Generators.h"
#include "cli/option/HelpText.h"
#include "cli/option/Values.h"
#include "cli/text/Output.h"
#include "store/ExitStatus.h"
#include "store/Message.h"

using cli::CommandSpec;

namespace store {

CommandLine::CommandLine(const Clock& clock) : fClock(clock) {
  fCommand.name = kProgram;
  fCommand.summary = "Keep the USB inventories of many machines, and their history";
  fCommand.subcommands = {Hosts(),  Load(),   Collect(), Find(),    Show(),
                          Forget(), Rename(), Prune(),   Migrate(), Schema()};
  fCommand.subcommands.push_back(Help());
}

int CommandLine::Run(const std::vector<std::string>& arguments) {
  const CommandSpec& chosen = cli::ParseCommand(fCommand, arguments);
  if (fAsksForHelp) {
    cli::WriteStandardOutput(cli::HelpText(fCommand, chosen));
  } else if (fAsksForVersion) {
    cli::WriteStandardOutput("usbinfo-store " USBINFO_VERSION "\n");
  } else if (!fGenerated.empty()) {
    cli::WriteStandardOutput(cli::Generate(fGenerated, fCommand));
  } else {
    return chosen.run();
  }
  return kDone;
}

CommandSpec CommandLine::Hosts() {
  std::vector<cli::Option> options = WithHelp(HostsOptionTable(fHosts));
  options.insert(options.begin() + 1, {.names = {"-V", "--version"},
                                       .help = "Print the version",
                                       .isExclusive = true,
                                       .manual = "Print the version and exit.",
                                       .store = cli::StoreTrue(fAsksForVersion)});
  const std::vector<cli::Choice> generators = cli::ChoicesOf(cli::GeneratorNames());
  options.push_back({.names = {"--generate"},
                     .value = "WHAT",
                     .choices = generators,
                     .isExclusive = true,
                     .isHidden = true,
                     .store = cli::StoreChoice(fGenerated, generators)});
  return {.name = "hosts",
          .summary = "List the machines of the store",
          .options = std::move(options),
          .isDefault = true,
          .run = [this] { return RunHosts(fHosts, fClock); }};
}

CommandSpec CommandLine::Load() {
  return {.name = "load",
          .summary = "Take inventories into the store",
          .operands = LoadOperands(fLoad),
          .options = WithHelp(LoadOptionTable(fLoad)),
          .check = [this] { CheckLoad(fLoad); },
          .run = [this] { return RunLoad(fLoad, fClock); }};
}

CommandSpec CommandLine::Collect() {
  return {.name = "collect",
          .summary = "Fetch the inventories of other machines into the store",
          .options = WithHelp(CollectOptionTable(fCollect)),
          .check = [this] { CheckCollect(fCollect); },
          .run = [this] { return RunCollect(fCollect, fClock); }};
}

CommandSpec CommandLine::Find() {
  return {.name = "find",
          .summary = "List where devices are, or were",
          .options = WithHelp(FindOptionTable(fFind)),
          .run = [this] { return RunFind(fFind, fClock); }};
}

CommandSpec CommandLine::Show() {
  return {.name = "show",
          .summary = "Print what a machine reported",
          .operands = ShowOperands(fShow),
          .options = WithHelp(ShowOptionTable(fShow)),
          .check = [this] { CheckShow(fShow); },
          .run = [this] { return RunShow(fShow, fClock); }};
}

CommandSpec CommandLine::Forget() {
  return {.name = "forget",
          .summary = "Delete all that is known of a machine",
          .operands = ForgetOperands(fForget),
          .options = WithHelp(ForgetOptionTable(fForget)),
          .run = [this] { return RunForget(fForget); }};
}

CommandSpec CommandLine::Rename() {
  return {.name = "rename",
          .summary = "Give a machine that has another name now this name in the store",
          .operands = RenameOperands(fRename),
          .options = WithHelp(RenameOptionTable(fRename)),
          .run = [this] { return RunRename(fRename); }};
}

CommandSpec CommandLine::Prune() {
  return {.name = "prune",
          .summary = "Delete old history",
          .options = WithHelp(PruneOptionTable(fPrune)),
          .check = [this] { CheckPrune(fPrune); },
          .run = [this] { return RunPrune(fPrune, fClock); }};
}

CommandSpec CommandLine::Migrate() {
  return {.name = "migrate",
          .summary = "Bring the store to the schema of this version",
          .options = WithHelp(MigrateOptionTable(fMigrate)),
          .run = [this] { return RunMigrate(fMigrate); }};
}

CommandSpec CommandLine::Schema() {
  return {.name = "schema",
          .summary = "Print the SQL of the tables and views",
          .options = WithHelp(SchemaOptionTable(fSchema)),
          .run = [this] { return RunSchema(fSchema); }};
}

CommandSpec CommandLine::Help() {
  std::vector<cli::Choice> topics;
  for (const CommandSpec& subcommand : fCommand.subcommands) topics.push_back({subcommand.name});
  topics.push_back({"help"});
  return {.name = "help",
          .summary = "Print the help of a subcommand",
          .operands = {{.name = "SUBCOMMAND",
                        .help = "The subcommand; without it, the help of the whole command is printed",
                        .choices = topics,
                        .isOptional = true,
                        .store = cli::StoreChoice(fTopic, topics)}},
          .options = WithHelp({}),
          .run = [this] {
            const CommandSpec* const topic = fCommand.FindSubcommand(fTopic);
            cli::WriteStandardOutput(cli::HelpText(fCommand, topic == nullptr ? fCommand.Default() : *topic));
            return kDone;
          }};
}

std::vector<cli::Option> CommandLine::WithHelp(std::vector<cli::Option> options) {
  options.insert(options.begin(), HelpOption(fAsksForHelp));
  return options;
}

}  // namespace store
