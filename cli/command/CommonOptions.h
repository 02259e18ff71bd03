// Options that several subcommands share.
#pragma once

#include <string>

#include "cli/option/Option.h"

namespace cli {

/// -h, --help.
Option HelpOption(bool& isAsked);

/// --output FILE; "-" and an empty name mean standard output.
Option OutputOption(std::string& path);

/// --color WHEN.
Option ColorOption(std::string& when);

}  // namespace cli
