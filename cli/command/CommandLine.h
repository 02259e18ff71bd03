// The command line of usbinfo: its subcommands with their options, and running them.
#pragma once

#include <string>
#include <vector>

#include "cli/command/CheckOptions.h"
#include "cli/command/DiffOptions.h"
#include "cli/command/SchemaOptions.h"
#include "cli/command/ShowOptions.h"
#include "cli/command/WatchOptions.h"
#include "cli/option/CommandSpec.h"
#include "cli/option/StandardOptions.h"

namespace cli {

class CommandLine {
 public:
  CommandLine();
  // The table of options points into it.
  CommandLine(const CommandLine&) = delete;
  CommandLine& operator=(const CommandLine&) = delete;

  /// Runs the command with `arguments`, which do not include the program's name; gives the exit status.
  /// Throws UserError for errors that end the command with status 2.
  int Run(const std::vector<std::string>& arguments);

 private:
  CommandSpec Show();
  CommandSpec Diff();
  CommandSpec Watch();
  CommandSpec Check();
  CommandSpec Schema();

  ShowOptions fShow;
  DiffOptions fDiff;
  WatchOptions fWatch;
  CheckOptions fCheck;
  SchemaOptions fSchema;
  CommandSpec fCommand;
  StandardOptions fStandard{fCommand, USBINFO_VERSION};
};

}  // namespace cli
