// Masks the serial numbers of an inventory that was read from a saved document.
#pragma once

#include "cli/model/Inventory.h"

namespace cli {

class SerialMask;

/// The same inventory with masks in place of serial numbers, except those of root hubs, which are bus
/// addresses of the host controllers. Its origin, where it has one, says with which key.
Inventory MaskSerials(const Inventory& inventory, const SerialMask& mask);

}  // namespace cli
