// The command line of usbinfo-store: its subcommands with their options, and running them.
#pragma once

#include <string>
#include <vector>

#include "cli/option/CommandSpec.h"
#include "store/Clock.h"
#include "store/CollectCommand.h"
#include "store/FindCommand.h"
#include "store/HostsCommand.h"
#include "store/LoadCommand.h"
#include "store/ShowCommand.h"
#include "store/UpkeepCommand.h"

namespace store {

class CommandLine {
 public:
  /// `clock` must outlive this.
  explicit CommandLine(const Clock& clock);
  // The table of options points into it.
  CommandLine(const CommandLine&) = delete;
  CommandLine& operator=(const CommandLine&) = delete;

  /// Runs the command with `arguments`, which do not include the program's name; gives the exit status.
  /// Throws UserError for errors that end the command with status 2.
  int Run(const std::vector<std::string>& arguments);

 private:
  cli::CommandSpec Hosts();
  cli::CommandSpec Load();
  cli::CommandSpec Collect();
  cli::CommandSpec Find();
  cli::CommandSpec Show();
  cli::CommandSpec Forget();
  cli::CommandSpec Rename();
  cli::CommandSpec Prune();
  cli::CommandSpec Migrate();
  cli::CommandSpec Schema();
  cli::CommandSpec Help();
  std::vector<cli::Option> WithHelp(std::vector<cli::Option> options);

  const Clock& fClock;
  HostsOptions fHosts;
  LoadOptions fLoad;
  CollectOptions fCollect;
  FindOptions fFind;
  ShowOptions fShow;
  ForgetOptions fForget;
  RenameOptions fRename;
  PruneOptions fPrune;
  MigrateOptions fMigrate;
  SchemaOptions fSchema;
  bool fAsksForHelp = false;
  bool fAsksForVersion = false;
  /// What to generate from the table of options; empty for nothing.
  std::string fGenerated;
  /// The subcommand whose help was requested; empty for that of the whole command.
  std::string fTopic;
  cli::CommandSpec fCommand;
};

}  // namespace store
