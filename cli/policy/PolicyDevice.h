// What a policy's rules compare of a hub or device.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "cli/model/Inventory.h"
#include "cli/policy/PolicyRule.h"

namespace cli {

/// The values of an attribute; nothing where they are not known. A name, serial number or connection that the
/// device lacks is an empty text.
using PolicyValues = std::optional<std::vector<std::string>>;

struct PolicyDevice {
  const Item* item = nullptr;
  /// Null where nothing is known.
  const DeviceFacts* facts = nullptr;
  /// By PolicyAttribute.
  std::array<PolicyValues, kPolicyAttributeCount> attributes;

  const PolicyValues& ValuesOf(PolicyAttribute attribute) const {
    return attributes[static_cast<std::size_t>(attribute)];
  }
};

/// The kernel's name, "1-3.1"; where it is not known, the identifier in quotes.
std::string PlaceOf(const PolicyDevice& device);

/// All hubs and devices of `inventory`, which must outlive them: by their places, those without a name last.
/// Interfaces are all settings of all configurations. Serial numbers are not known where they are masked.
std::vector<PolicyDevice> PolicyDevicesOf(const Inventory& inventory);

}  // namespace cli
