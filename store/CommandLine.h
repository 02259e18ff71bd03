// The command line of usbinfo-store: its subcommands with their options, and running them.
#pragma once

#include <string>
#include <vector>

#include "cli/option/CommandSpec.h"
#include "cli/option/StandardOptions.h"
#include "store/ChangesCommand.h"
#include "store/CheckCommand.h"
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
  cli::CommandSpec Changes();
  cli::CommandSpec Show();
  cli::CommandSpec Check();
  cli::CommandSpec Forget();
  cli::CommandSpec Rename();
  cli::CommandSpec Prune();
  cli::CommandSpec Migrate();
  cli::CommandSpec Schema();

  const Clock& fClock;
  HostsOptions fHosts;
  LoadOptions fLoad;
  CollectOptions fCollect;
  FindOptions fFind;
  ChangesOptions fChanges;
  ShowOptions fShow;
  CheckOptions fCheck;
  ForgetOptions fForget;
  RenameOptions fRename;
  PruneOptions fPrune;
  MigrateOptions fMigrate;
  SchemaOptions fSchema;
  cli::CommandSpec fCommand;
  cli::StandardOptions fStandard{fCommand, USBINFO_VERSION};
};

}  // namespace store
