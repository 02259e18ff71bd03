#include "cli/watch/PolicyAudit.h"

#include <fmt/format.h>

#include <utility>

#include "cli/policy/PolicyCheckText.h"
#include "cli/text/Text.h"
#include "cli/text/UserError.h"

namespace cli {

std::string Describe(const Refusal& refusal) {
  return fmt::format("{}: {}: {}", PlaceOf(refusal.device), DescribeDevice(refusal.device), refusal.reason);
}

PolicyAudit::PolicyAudit(Policy policy) : fPolicy(std::move(policy)) {}

std::vector<Refusal> PolicyAudit::Audit(const Inventory& now) {
  const std::set<std::string> known = std::exchange(fKnown, {});
  std::vector<Refusal> refusals;
  for (PolicyDevice& device : PolicyDevicesOf(now)) {
    std::optional<Refusal> refusal = Judge(std::move(device));
    if (!refusal) continue;
    const std::string text = Describe(*refusal);
    fKnown.insert(text);
    if (known.count(text) == 0) refusals.push_back(std::move(*refusal));
  }
  return refusals;
}

std::optional<Refusal> PolicyAudit::Judge(PolicyDevice device) const {
  try {
    const PolicyDecision decision = Decide(fPolicy, device);
    if (decision.target == PolicyTarget::kAllow) return std::nullopt;
    std::string reason = DescribeRefusal(fPolicy, decision);
    return Refusal{.device = std::move(device), .decision = decision, .reason = std::move(reason)};
  } catch (const UserError& error) {
    // The other devices are still watched.
    return Refusal{.device = std::move(device), .decision = {}, .reason = EscapeForDocument(error.what())};
  }
}

}  // namespace cli
