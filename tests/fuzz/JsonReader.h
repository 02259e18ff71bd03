// Reads the JSON exports back: the document and the lines.
#pragma once

#include <string>

#include "cli/model/Inventory.h"

namespace usbinfo_test {

/// Throws BrokenInvariant unless `document` is ASCII without control characters but newlines, parses, and
/// holds every class, instance and property of `inventory` in order, with broken UTF-8 replaced and nothing
/// more.
void CheckJson(const std::string& document, const cli::Inventory& inventory);

/// The same for JSON Lines: a line for every instance, in order, and no other.
void CheckJsonLines(const std::string& document, const cli::Inventory& inventory);

}  // namespace usbinfo_test
