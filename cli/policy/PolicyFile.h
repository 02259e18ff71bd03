// A policy from a file.
#pragma once

#include <string>

#include "cli/policy/PolicyRule.h"

namespace cli {

/// The rules of the file at `path`, or of standard input for "-"; `defaultTarget`, "allow" or "block", is for
/// devices that none matches. Throws UserError as ReadInput and ParsePolicy do.
Policy ReadPolicy(const std::string& path, const std::string& defaultTarget);

}  // namespace cli
