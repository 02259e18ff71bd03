#include "cli/policy/PolicyCheck.h"

#include <algorithm>
#include <utility>

#include "cli/model/OriginText.h"
#include "cli/text/UserError.h"

namespace cli {

std::size_t CheckedInventory::CountNotAllowed() const {
  return static_cast<std::size_t>(std::count_if(
      devices.begin(), devices.end(), [](const CheckedDevice& device) { return !device.IsAllowed(); }));
}

CheckedInventory Check(const Policy& policy, const Inventory& inventory, const std::string& name) {
  const bool isSelection = inventory.GetOrigin() && inventory.GetOrigin()->selection;
  if (isSelection || inventory.IsPartial()) throw UserError(DescribePart(name));
  CheckedInventory checked{.name = name, .inventory = &inventory, .devices = {}};
  for (PolicyDevice& device : PolicyDevicesOf(inventory)) {
    const PolicyDecision decision = Decide(policy, device);
    checked.devices.push_back({.device = std::move(device), .decision = decision});
  }
  return checked;
}

bool IsAllAllowed(const std::vector<CheckedInventory>& checked) {
  return std::all_of(checked.begin(), checked.end(),
                     [](const CheckedInventory& inventory) { return inventory.CountNotAllowed() == 0; });
}

}  // namespace cli
