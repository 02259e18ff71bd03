// Options that several subcommands have, each with the same meaning in all of them.
#pragma once

#include <string>

#include "cli/option/Option.h"

namespace cli {

/// -h, --help.
Option HelpOption(bool& isAsked);

/// --output FILE; "-" is standard output, as nothing is.
Option OutputOption(std::string& path);

/// --color WHEN.
Option ColorOption(std::string& when);

}  // namespace cli
