// Options that several subcommands share.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/collect/Source.h"
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

/// --source WAY.
Option WayOption(std::optional<Source::Way>& way);

/// --mask-serials and --mask-key FILE.
std::vector<Option> MaskOptions(Source& source);

/// --color WHEN.
Option ColorOption(std::string& when);

}  // namespace cli
