// The part of a manual page that a command's table of options makes.
#pragma once

#include <string>

#include "cli/option/CommandSpec.h"

namespace cli {

/// The text under OPTIONS, in the mdoc language: a section for each subcommand that has options besides
/// --help.
std::string ManualOptions(const CommandSpec& command);

}  // namespace cli
