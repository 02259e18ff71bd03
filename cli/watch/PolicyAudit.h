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

/// "1-3.1: keyboard 046d:c31c "USB Keyboard": blocked, no rule matches", escaped as for documents.
std::string Describe(const Refusal& refusal);

class PolicyAudit {
 public:
  explicit PolicyAudit(Policy policy);

  /// Whether the inventories need the hashes of devices.
  bool NeedsHashes() const { return fPolicy.UsesHashes(); }

  /// The devices of `now` that are not allowed, but for those of which the same was said in the call before.
  /// `now` must outlive them.
  std::vector<Refusal> Audit(const Inventory& now);

 private:
  std::optional<Refusal> Judge(PolicyDevice device) const;

  Policy fPolicy;
  /// What is said of each device that is not allowed.
  std::set<std::string> fKnown;
};

}  // namespace cli
