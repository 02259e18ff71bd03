#include "cli/policy/PolicyMatcher.h"

#include <fmt/format.h>

#include <algorithm>

#include "cli/text/UserError.h"

namespace cli {

namespace {

/// Why an inventory may lack an attribute, and what to do.
std::string_view AdviceOn(PolicyAttribute attribute) {
  switch (attribute) {
    case PolicyAttribute::kHash:
    case PolicyAttribute::kParentHash:
      return "only a check of this machine from sysfs has hashes; match by id, name, serial and "
             "with-interface";
    case PolicyAttribute::kSerial:
      return "the serial numbers are masked; use an inventory without --mask-serials";
    case PolicyAttribute::kWithConnectType:
      return "only inventories from sysfs have it; save one on the machine with usbinfo --format json";
    default:
      return "use a device list, or save the inventory anew with usbinfo --format json";
  }
}

[[noreturn]] void RefuseUnknown(const Policy& policy, const PolicyRule& rule, PolicyAttribute attribute,
                                const PolicyDevice& device) {
  throw UserError(fmt::format("{}:{}: the rule needs {} of {}, which is not known: {}", policy.name,
                              rule.line, NameOf(attribute), PlaceOf(device), AdviceOn(attribute)));
}

bool Applies(const Policy& policy, const PolicyRule& rule, const PolicyDevice& device) {
  if (!rule.isInForce) return false;
  const PolicyTest* unknown = nullptr;
  for (const PolicyTest& test : rule.tests) {
    const PolicyValues& values = device.ValuesOf(test.attribute);
    if (!values) {
      unknown = &test;
    } else if (!test.Matches(*values)) {
      return false;
    }
  }
  if (unknown != nullptr) RefuseUnknown(policy, rule, unknown->attribute, device);
  return true;
}

}  // namespace

PolicyDecision Decide(const Policy& policy, const PolicyDevice& device) {
  const auto rule = std::find_if(policy.rules.begin(), policy.rules.end(), [&](const PolicyRule& candidate) {
    return Applies(policy, candidate, device);
  });
  if (rule == policy.rules.end()) return {.target = policy.defaultTarget, .rule = nullptr};
  return {.target = rule->target, .rule = &*rule};
}

}  // namespace cli
