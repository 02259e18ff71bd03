// The completion of a command's arguments in bash, made from its table of options.
#pragma once

#include <string>

#include "cli/option/CommandSpec.h"

namespace cli {

/// A script for the folder where bash looks for completions.
std::string BashCompletion(const CommandSpec& command);

}  // namespace cli
