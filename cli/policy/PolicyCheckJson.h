// What a check found, for programs, schema "usbinfo.check/1".
#pragma once

#include <string>
#include <vector>

#include "cli/policy/PolicyCheck.h"

namespace cli {

/// One object with all inventories and each of their devices, allowed or not, and keys in a fixed order.
/// ASCII only.
std::string RenderCheckJson(const Policy& policy, const std::vector<CheckedInventory>& checked);

}  // namespace cli
