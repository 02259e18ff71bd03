// `usbinfo check POLICY`: which devices a policy does not allow.
#pragma once

#include "cli/command/CheckOptions.h"

namespace cli {

/// Checks and prints; gives the exit status. Throws UserError when the policy or an inventory cannot be read,
/// a rule needs what an inventory lacks, or the result cannot be written.
int RunCheck(const CheckOptions& options);

}  // namespace cli
