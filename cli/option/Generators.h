// The texts that the build generates from a command's table of options.
#pragma once

#include <string>
#include <vector>

#include "cli/option/CommandSpec.h"

namespace cli {

/// The names of all texts: "man", the sections of the manual page's OPTIONS, and a completion for each shell.
const std::vector<std::string>& GeneratorNames();

/// The text of that name, which must be one of these.
std::string Generate(const std::string& name, const CommandSpec& command);

}  // namespace cli
