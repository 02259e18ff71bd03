// What a check found, for people.
#pragma once

#include <string>
#include <vector>

#include "cli/policy/PolicyCheck.h"

namespace cli {

/// What people know it by, in UTF-8: `keyboard 046d:c31c "USB Keyboard", serial "1234"`.
std::string DescribeDevice(const PolicyDevice& device);

/// "blocked by rules.conf:3: block id 046d:*", or "rejected, no rule matches", for a device that is not
/// allowed. In UTF-8, escaped as for documents.
std::string DescribeRefusal(const Policy& policy, const PolicyDecision& decision);

/// A line in UTF-8 for each device that is not allowed, with the rule that decided; `prefix` comes before it.
std::string RenderRefused(const Policy& policy, const CheckedInventory& checked, const std::string& prefix);

/// A line for each device that is not allowed, with the rule that decided, and one with their number; empty
/// where all are allowed. Of several inventories, each line begins with the name. Lines are for the character
/// set of the locale.
std::string RenderCheckText(const Policy& policy, const std::vector<CheckedInventory>& checked);

}  // namespace cli
