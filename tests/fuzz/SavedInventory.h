// What is saved can be read, and is the same when it is saved again.
#pragma once

#include "cli/model/Inventory.h"

namespace usbinfo_test {

/// Throws BrokenInvariant, or what the reader throws, where the JSON document of `inventory` does not give
/// the same document when it is read and saved again.
void CheckSaved(const cli::Inventory& inventory);

}  // namespace usbinfo_test
