// Options that several subcommands share.
#pragma once

#include <string>
#include <vector>

#include "cli/option/Option.h"

namespace cli {

/// -h, --help.
Option HelpOption(bool& isAsked);

/// --output FILE; "-" and an empty name mean standard output.
Option OutputOption(std::string& path);

/// --format FORMAT, one of `formats`; `format` holds the default.
Option FormatOption(std::string& format, const std::vector<std::string>& formats);

/// --as-is.
Option AsIsOption(bool& isAsIs);

/// --color WHEN.
Option ColorOption(std::string& when);

}  // namespace cli
