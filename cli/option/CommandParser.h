// Parses a command line according to a command's table of options.
#pragma once

#include <string>
#include <vector>

#include "cli/option/CommandSpec.h"

namespace cli {

/// Stores what `arguments`, which do not include the program's name, say, and gives the part of `command`
/// that was asked for: one of its subcommands, or itself where it has none. Throws UsageError when the table
/// does not allow them; the message names the help to read. Then only exclusive options have stored anything.
const CommandSpec& ParseCommand(const CommandSpec& command, const std::vector<std::string>& arguments);

}  // namespace cli
