// Reads the tables for people back, as far as what is padded and cut to read well can be.
#pragma once

#include <string>

#include "cli/model/Inventory.h"

namespace usbinfo_test {

/// Throws BrokenInvariant unless `document` is a table with the titles and a row for each hub and device that
/// shows its id, and nothing in it that a terminal acts on or that turns the reading direction. `inventory`
/// has no facts of the kernel.
void CheckTable(const std::string& document, const cli::Inventory& inventory);

/// The same for the tables of classes: throws BrokenInvariant unless `document` has a section for each class
/// with instances and nothing else, each with its heading, its titles and a row per instance that shows its
/// numbers, and nothing in it that a terminal acts on or that turns the reading direction.
void CheckClassTables(const std::string& document, const cli::Inventory& inventory);

}  // namespace usbinfo_test
