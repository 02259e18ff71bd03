// Where the plug-in module is: beside the command as built, or where an installation puts it.
#pragma once

#include <string>

namespace cli {

/// The absolute path of the module to load: the one at `named`, or the command's own one when that is empty.
/// Throws UserError when there is none, and for a `named` one where the command has the rights of its file,
/// since a module could use them as it likes.
std::string PluginModulePath(const std::string& named);

/// The absolute path of the module that belongs to the program that the link at `program` leads to. Throws
/// UserError when the link cannot be read or there is no module.
std::string FindPluginModule(const std::string& program = "/proc/self/exe");

}  // namespace cli
