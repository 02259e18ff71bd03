// Options that commands and subcommands share.
#pragma once

#include <string>
#include <vector>

#include "cli/option/Option.h"

namespace cli {

/// -h, --help.
Option HelpOption(bool& isAsked);

/// --output FILE; "-" and an empty name mean standard output.
Option OutputOption(std::string& path);

/// --format FORMAT, one of `choices`; `format` holds the default.
Option FormatOption(std::string& format, const std::vector<Choice>& choices);

/// --allow-suspect. Its help begins with `verb`, such as "Compare".
Option AllowSuspectOption(const std::string& verb, bool& allowsSuspect);

/// --default TARGET of a policy; `target` holds the default, "block" or "allow".
Option DefaultTargetOption(std::string& target);

/// --color WHEN.
Option ColorOption(std::string& when);

}  // namespace cli
