// Reads the page for a browser back, by an XML parser.
#pragma once

#include <string>

#include "cli/model/Inventory.h"

namespace usbinfo_test {

/// Throws BrokenInvariant unless `document` is well-formed, holds nothing that a terminal acts on, no script,
/// style, link or handler but its own, every controller, hub, device and port where the links put it, says of
/// each what it is called, its id, vendor, serial number and identifier, and has a row with the same for each
/// hub and device in its table.
void CheckHtml(const std::string& document, const cli::Inventory& inventory);

}  // namespace usbinfo_test
