// Reads a policy. A line holds one rule, or is empty or a comment.
#pragma once

#include <string>
#include <string_view>

#include "cli/policy/PolicyRule.h"

namespace cli {

/// The rules of `text`, which messages call `name`. Throws UserError, "NAME:LINE:COLUMN: what is wrong", for
/// the first thing that is not of the language, and for a condition that depends on more than the devices,
/// such as the time. Columns are bytes, from 1.
Policy ParsePolicy(std::string_view text, const std::string& name);

}  // namespace cli
