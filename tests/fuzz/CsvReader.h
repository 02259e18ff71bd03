// Reads the comma-separated values back.
#pragma once

#include <string>

#include "cli/model/Inventory.h"

namespace usbinfo_test {

/// Throws BrokenInvariant unless `document` is CSV as in RFC 4180 with the titles and a line for each hub and
/// device of `inventory`, and no cell is one that a spreadsheet computes. `inventory` has no facts of the
/// kernel.
void CheckCsv(const std::string& document, const cli::Inventory& inventory);

}  // namespace usbinfo_test
