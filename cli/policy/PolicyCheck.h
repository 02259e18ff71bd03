// An inventory checked against a policy: what is to become of each device.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "cli/policy/PolicyDevice.h"
#include "cli/policy/PolicyMatcher.h"
#include "cli/policy/PolicyRule.h"

namespace cli {

struct CheckedDevice {
  PolicyDevice device;
  PolicyDecision decision;

  bool IsAllowed() const { return decision.target == PolicyTarget::kAllow; }
};

struct CheckedInventory {
  /// What messages call it.
  std::string name;
  const Inventory* inventory = nullptr;
  std::vector<CheckedDevice> devices;

  std::size_t CountNotAllowed() const;
};

/// `policy` and `inventory` must outlive the result. Throws UserError as Decide does, and for an inventory
/// that holds only a selected part.
CheckedInventory Check(const Policy& policy, const Inventory& inventory, const std::string& name);

/// Whether every device of all of them is allowed.
bool IsAllAllowed(const std::vector<CheckedInventory>& checked);

}  // namespace cli
