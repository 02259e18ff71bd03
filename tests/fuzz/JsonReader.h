// Reads the JSON export back.
#pragma once

#include <string>

#include "cli/Inventory.h"

namespace usbinfo_test {

/// Throws BrokenInvariant unless `document` is ASCII without control characters but newlines, parses, and
/// holds every class, instance and property of `inventory` in order, with broken UTF-8 replaced and nothing
/// more.
void CheckJson(const std::string& document, const cli::Inventory& inventory);

}  // namespace usbinfo_test
