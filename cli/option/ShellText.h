// Helpers that the completions of all shells share.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "cli/option/CommandSpec.h"

namespace cli {

/// The subcommands; the command itself where it has none.
std::vector<const CommandSpec*> PartsOf(const CommandSpec& command);

/// The names of the choices with `separator` between them.
std::string Joined(const std::vector<Choice>& choices, const std::string& separator);

/// The names of the subcommands with `separator` between them.
std::string JoinedSubcommands(const CommandSpec& command, const std::string& separator);

/// The names of the options that take a value and may stand before a subcommand, with `separator` between
/// them.
std::string JoinedTakers(const CommandSpec& command, const std::string& separator);

/// The name that the command's functions begin with in a shell: "_usbinfo".
std::string FunctionName(const CommandSpec& command);

/// `text` with each of the `places` replaced by its value.
std::string Filled(std::string text, const std::vector<std::pair<std::string, std::string>>& places);

}  // namespace cli
