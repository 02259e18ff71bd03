// The completion of a command's arguments in zsh, made from its table of options.
#pragma once

#include <string>

#include "cli/option/CommandSpec.h"

namespace cli {

/// A script for the folder where zsh looks for completions.
std::string ZshCompletion(const CommandSpec& command);

}  // namespace cli
