// Whether a text for people is coloured: one decision for all subcommands.
#pragma once

#include <string>
#include <vector>

namespace cli {

enum class Color { kAuto, kAlways, kNever };

/// The names of the choices on the command line, in the order of `Color`.
const std::vector<std::string>& ColorNames();

/// The choice of that name, which must be one of the list.
Color ColorOf(const std::string& name);

/// True when the text is to be coloured. `isStandardOutput` says that it goes there rather than to a file.
/// kAuto colours on a terminal only, unless NO_COLOR is set and not empty or TERM is missing, empty or
/// "dumb".
bool UsesColor(Color color, bool isStandardOutput);

}  // namespace cli
