// The policy that a user names.
#pragma once

#include <string>

#include "cli/policy/PolicyRule.h"

namespace cli {

/// The policy in the file at `path`, "-" for standard input. Throws UserError where it cannot be read, and
/// for an error in it.
Policy ReadPolicy(const std::string& path);

}  // namespace cli
