// Reads a policy back: it must allow every device of its inventory.
#pragma once

#include <string>

#include "cli/model/Inventory.h"

namespace usbinfo_test {

/// Throws BrokenInvariant where `document` has not a rule for each hub and device of `inventory`, or one of
/// them is not allowed.
void CheckPolicy(const std::string& document, const cli::Inventory& inventory);

/// `inventory` with what the kernel's reader finds in its list, which a policy needs.
cli::Inventory WithFacts(const cli::Inventory& inventory);

/// Whether the id and the interfaces of every hub and device are known, which its rule needs.
bool HasAllFacts(const cli::Inventory& inventory);

}  // namespace usbinfo_test
