// Where the plug-in module is: beside the command as built, or where an installation puts it.
#pragma once

#include <string>

namespace cli {

/// The module to load when none is named; throws UserError when there is none.
std::string FindPluginModule();

}  // namespace cli
