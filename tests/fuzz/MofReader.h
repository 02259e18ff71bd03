// Reads the MOF export back.
#pragma once

#include <string>

#include "cli/model/Inventory.h"

namespace usbinfo_test {

/// Throws BrokenInvariant unless `document` is made of qualifier, class and instance declarations, fit for a
/// terminal, and its instances are those of `inventory`, in order, with every property and nothing more.
void CheckMof(const std::string& document, const cli::Inventory& inventory);

}  // namespace usbinfo_test
