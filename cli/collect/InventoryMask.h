// Masks the serial numbers of an inventory that was read as such, from a saved document.
#pragma once

#include "cli/model/Inventory.h"

namespace cli {

class SerialMask;

/// The same inventory with masks in the place of serial numbers, but for those of root hubs: they are bus
/// addresses of the host controllers.
Inventory MaskSerials(const Inventory& inventory, const SerialMask& mask);

}  // namespace cli
