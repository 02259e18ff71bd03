// What every command has besides its own subcommands: --help, --version, the subcommand help, and the texts
// that are generated from its table of options.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "cli/option/CommandSpec.h"

namespace cli {

class StandardOptions {
 public:
  /// `version` is that of the program; `command` gets its subcommands afterwards. Both must outlive this.
  StandardOptions(const CommandSpec& command, std::string version)
      : fCommand(command), fVersion(std::move(version)) {}
  // The tables of options point into it.
  StandardOptions(const StandardOptions&) = delete;
  StandardOptions& operator=(const StandardOptions&) = delete;

  /// The options of a subcommand, after --help.
  std::vector<Option> WithHelp(std::vector<Option> options);
  /// Those of the default subcommand, also with --version and --generate. `more` names what else is
  /// generated.
  std::vector<Option> WithVersion(std::vector<Option> options, const std::vector<std::string>& more = {});
  /// The subcommand help. All others must be in the command already.
  CommandSpec Help();

  /// Parses the arguments, and does what these options ask for, or else what was chosen; gives the exit
  /// status. `generate` makes what `more` named. Throws UserError for errors that end the command.
  int Run(const std::vector<std::string>& arguments,
          const std::function<std::string(const std::string& what)>& generate = {});

 private:
  std::string Generated(const std::function<std::string(const std::string& what)>& generate) const;

  const CommandSpec& fCommand;
  std::string fVersion;
  bool fAsksForHelp = false;
  bool fAsksForVersion = false;
  /// What to generate; empty for nothing.
  std::string fGenerated;
  /// The subcommand whose help was requested; empty for that of the whole command.
  std::string fTopic;
};

}  // namespace cli
