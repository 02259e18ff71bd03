// The options that say how device lists and this machine are read and compared.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/collect/Source.h"
#include "cli/option/Option.h"

namespace cli {

/// --as-is.
Option AsIsOption(bool& isAsIs);

/// --source WAY.
Option WayOption(std::optional<Source::Way>& way);

/// --ignore PROPERTY.
Option IgnoreOption(std::vector<std::string>& ignored);

/// --system-name NAME and --plugin FILE, where device lists and this machine are compared.
std::vector<Option> ListOptions(Source& source);

/// What --mask-key takes.
enum class KeyInput { kFile, kFileOrStandardInput };

/// --mask-serials and --mask-key FILE.
std::vector<Option> MaskOptions(Source& source, KeyInput input = KeyInput::kFileOrStandardInput);

/// --devices, --source, --as-is, --no-limits and --system-name.
std::vector<Option> SourceOptions(Source& source);

/// --plugin FILE.
Option PluginOption(std::string& path);

}  // namespace cli
