#include "tests/fuzz/PolicyReader.h"

#include <algorithm>

#include "cli/model/FromKernel.h"
#include "cli/policy/PolicyDevice.h"
#include "cli/policy/PolicyMatcher.h"
#include "cli/policy/PolicyParser.h"
#include "kernel/DeviceListReader.h"
#include "tests/fuzz/BrokenInvariant.h"

namespace usbinfo_test {

void CheckPolicy(const std::string& document, const cli::Inventory& inventory) {
  const cli::Policy policy = cli::ParsePolicy(document, "policy");
  const std::vector<cli::PolicyDevice> devices = cli::PolicyDevicesOf(inventory);
  RequireCount(policy.rules.size(), devices.size(), "rules of a policy");
  for (const cli::PolicyDevice& device : devices) {
    Require(Decide(policy, device).target == cli::PolicyTarget::kAllow, "a policy allows each device");
  }
}

cli::Inventory WithFacts(const cli::Inventory& inventory) {
  cli::Inventory known = inventory;
  known.SetKernel(cli::FromKernel(kernel::ReadDeviceList(inventory.DeviceList().value_or("")), inventory));
  return known;
}

bool HasAllFacts(const cli::Inventory& inventory) {
  const std::vector<cli::PolicyDevice> devices = cli::PolicyDevicesOf(inventory);
  return std::all_of(devices.begin(), devices.end(), [](const cli::PolicyDevice& device) {
    return device.ValuesOf(cli::PolicyAttribute::kId) &&
           device.ValuesOf(cli::PolicyAttribute::kWithInterface);
  });
}

}  // namespace usbinfo_test
