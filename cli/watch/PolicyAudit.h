// Which devices a policy does not allow, each time that the machine is looked at.
#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "cli/policy/PolicyDevice.h"
#include "cli/policy/PolicyMatcher.h"
#include "cli/policy/PolicyRule.h"

namespace cli {

/// A device that is not allowed.
struct Refusal {
  PolicyDevice device;
  /// Nothing where a rule needs what is not known of the device.
  std::optional<PolicyDecision> decision;
  /// What decided, or what is not known. Escaped as for documents.
  std::string reason;
};

class PolicyAudit {
 public:
  explicit PolicyAudit(Policy policy);

  /// The devices of `now` that are not allowed, but for those that were so in the call before, for the same
  /// reason. `now` must outlive them.
  std::vector<Refusal> Audit(const Inventory& now);

 private:
  std::optional<Refusal> Judge(PolicyDevice device) const;

  Policy fPolicy;
  /// What is said of each device that is not allowed.
  std::set<std::string> fKnown;
};

}  // namespace cli
