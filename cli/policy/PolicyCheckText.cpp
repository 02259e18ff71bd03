#include "cli/policy/PolicyCheckText.h"

#include <fmt/format.h>

#include "cli/model/DeviceText.h"
#include "cli/text/Text.h"

namespace cli {

std::string DescribeDevice(const PolicyDevice& device) {
  const bool hasKinds = device.facts != nullptr && !device.facts->kinds.empty();
  const char* const noun = device.item->Class() == ClassId::kHub ? "hub" : "device";
  const std::string product = ProductOf(*device.item, device.facts);
  const std::string serial = SerialOf(*device.item, device.facts);
  return fmt::format("{} {} {}{}", hasKinds ? fmt::format("{}", fmt::join(device.facts->kinds, ", ")) : noun,
                     FormatId(*device.item), product.empty() ? "(no name)" : QuoteForDocument(product),
                     serial.empty() ? "" : ", serial " + QuoteForDocument(serial));
}

std::string DescribeRefusal(const Policy& policy, const PolicyDecision& decision) {
  const char* const verb = decision.target == PolicyTarget::kReject ? "rejected" : "blocked";
  if (decision.rule == nullptr) return fmt::format("{}, no rule matches", verb);
  return fmt::format("{} by {}:{}: {}", verb, EscapeForDocument(policy.name), decision.rule->line,
                     EscapeForDocument(decision.rule->text));
}

std::string RenderRefused(const Policy& policy, const CheckedInventory& checked, const std::string& prefix) {
  std::string text;
  for (const CheckedDevice& device : checked.devices) {
    if (device.IsAllowed()) continue;
    text += fmt::format("{}{}: {}: {}\n", prefix, PlaceOf(device.device), DescribeDevice(device.device),
                        DescribeRefusal(policy, device.decision));
  }
  return text;
}

std::string RenderCheckText(const Policy& policy, const std::vector<CheckedInventory>& checked) {
  if (IsAllAllowed(checked)) return {};
  std::string text;
  std::size_t refused = 0;
  std::size_t total = 0;
  for (const CheckedInventory& inventory : checked) {
    const std::string prefix = checked.size() == 1 ? "" : EscapeForDocument(inventory.name) + ": ";
    text += RenderRefused(policy, inventory, prefix);
    refused += inventory.CountRefused();
    total += inventory.devices.size();
  }
  text += fmt::format("{} of {} not allowed\n", refused, Count(total, "device"));
  return InCharacterSetOfLocale(text);
}

}  // namespace cli
