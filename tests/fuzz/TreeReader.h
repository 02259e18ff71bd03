// Reads the tree back, as far as a tree for people can be.
#pragma once

#include <string>

#include "cli/model/Inventory.h"

namespace usbinfo_test {

/// Throws BrokenInvariant unless `document` is UTF-8, or ASCII where the character set has nothing else,
/// without anything that a terminal acts on or that turns the reading direction, its heading counts the
/// instances, and it has a row for each item that is not shown in its port's row.
void CheckTree(const std::string& document, const cli::Inventory& inventory);

}  // namespace usbinfo_test
