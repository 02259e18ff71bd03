// Decides by a policy what is to become of a device.
#pragma once

#include "cli/policy/PolicyDevice.h"
#include "cli/policy/PolicyRule.h"

namespace cli {

struct PolicyDecision {
  PolicyTarget target = PolicyTarget::kBlock;
  /// The rule that decided; null where none matches, so that the default did.
  const PolicyRule* rule = nullptr;
};

/// The first rule that matches decides. Throws UserError, "NAME:LINE: what is missing", where a rule decides
/// only by an attribute of the device that is not known.
PolicyDecision Decide(const Policy& policy, const PolicyDevice& device);

}  // namespace cli
