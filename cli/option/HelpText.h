// What --help prints, made from a command's table of options.
#pragma once

#include <string>

#include "cli/option/CommandSpec.h"

namespace cli {

/// The help of `chosen`, which is `command` or one of its subcommands. For the default subcommand it is that
/// of the whole command. No line is longer than 80 columns.
std::string HelpText(const CommandSpec& command, const CommandSpec& chosen);

}  // namespace cli
