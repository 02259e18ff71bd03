// What is said of lines in a device list that a device may have forged.
#pragma once

#include <string>

namespace cli {

class Inventory;

/// A warning on standard error for each of the first findings of the inventory, and one for the rest.
void WarnOfFindings(const Inventory& inventory);

/// Throws UserError where the inventory from `name` has findings; `verb` is what --allow-suspect does anyway.
void RefuseFindings(const Inventory& inventory, const std::string& name, const std::string& verb);

}  // namespace cli
