// The completion of a command's arguments in fish, made from its table of options.
#pragma once

#include <string>

#include "cli/option/CommandSpec.h"

namespace cli {

/// A script for the folder where fish looks for completions.
std::string FishCompletion(const CommandSpec& command);

}  // namespace cli
