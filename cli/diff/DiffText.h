// The difference of two inventories for people: a heading, a line per item, in the order of the places, under
// an item that changed a line per property, and a line that counts.
#pragma once

#include <string>

#include "cli/diff/InventoryDiff.h"

namespace cli {

/// "bus 1, port 2.0", "bus 1"; for an item that is not on a known bus, its identifier in quotes instead of
/// the bus.
std::string DescribePlace(const Place& place);
/// The kernel's name, "1-3.1"; where it is not known, the place.
std::string DescribePlace(const PlacedItem& placed);

/// Empty when there is no difference. Texts of devices are quoted and escaped, so that none can forge a line,
/// a value or a command to the terminal.
std::string RenderDiffText(const InventoryDifference& difference, bool isColored);

}  // namespace cli
