// What a check found, for Nagios and its kin, as the guidelines of the Monitoring Plugins have it: one line
// that begins with the status and ends, after a bar, in numbers; and an exit status that says the same.
#pragma once

#include <string>
#include <vector>

#include "cli/policy/PolicyCheck.h"

namespace cli {

enum class NagiosStatus { kOk = 0, kWarning = 1, kCritical = 2, kUnknown = 3 };

struct NagiosReport {
  NagiosStatus status = NagiosStatus::kUnknown;
  /// With its line break. The only bar in it is the one before the numbers, so that no device can forge
  /// these.
  std::string line;
};

/// Critical where a device is not allowed. Otherwise a warning where a device may have forged a list, unless
/// `allowsSuspect`.
NagiosReport RenderCheckNagios(const std::vector<CheckedInventory>& checked, bool allowsSuspect);

/// Unknown, since the check failed; `message` says why.
NagiosReport RenderNagiosFailure(const std::string& message);

}  // namespace cli
