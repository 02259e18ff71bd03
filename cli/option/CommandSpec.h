// A command or a subcommand: its options, its operands and its action.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "cli/option/Option.h"

namespace cli {

/// An argument that belongs to no option.
struct Operand {
  std::string name;
  /// One sentence of plain text without its period.
  std::string help = {};
  /// The words that shells complete it with; where there are none, they complete file names.
  std::vector<Choice> choices = {};
  /// It is a text that shells cannot know.
  bool isText = false;
  bool isOptional = false;
  /// It takes all arguments that are left; only the last operand may.
  bool isRepeatable = false;
  /// Takes the argument. Throws UsageError, which says what it must be.
  std::function<void(const std::string& argument)> store = {};
};

struct CommandSpec {
  /// One word.
  std::string name;
  /// One sentence of plain text without its period.
  std::string summary = {};
  /// The text before the options in the manual page, as mdoc source.
  std::string manual = {};
  std::vector<Operand> operands = {};
  std::vector<Option> options = {};
  std::vector<CommandSpec> subcommands = {};
  /// This subcommand is run when none is named. Its options may stand before its name, too.
  bool isDefault = false;
  /// The option that was probably meant when the command is given a file name as an operand; empty for none.
  std::string fileOption = {};
  /// Called after all options are stored, to check what depends on several of them. Throws UsageError.
  std::function<void()> check = {};
  /// Gives the exit status.
  std::function<int()> run = {};

  /// The default subcommand; the command itself where it has none.
  const CommandSpec& Default() const;
  /// Null when there is none of that name.
  const CommandSpec* FindSubcommand(const std::string& word) const;
  /// Null when there is none of that name.
  const Option* FindOption(const std::string& optionName) const;
  /// The full name of `chosen`, which is this command or one of its subcommands: "usbinfo diff". The default
  /// subcommand has no word.
  std::string CallOf(const CommandSpec& chosen) const;
};

/// The options that help, manual page and completions show.
std::vector<const Option*> VisibleOptions(const CommandSpec& command);

}  // namespace cli
