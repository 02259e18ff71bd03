// `usbinfo check POLICY`: which devices a policy does not allow.
#pragma once

#include <functional>

#include "cli/command/CheckOptions.h"

namespace cli {

/// Checks and prints; gives the exit status. Throws UserError when the policy or an inventory cannot be read,
/// a rule needs what an inventory lacks, or the result cannot be written.
int RunCheck(const CheckOptions& options);

/// Calls `run`, which gives the exit status. An exception becomes a line for Nagios and its status for what
/// is not known, 3. Throws ClosedPipe.
int RunForNagios(const std::function<int()>& run);

}  // namespace cli
