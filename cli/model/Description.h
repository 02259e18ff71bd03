// How the nodes of an inventory's tree are described to people: states, places, details.
#pragma once

#include <string>
#include <vector>

#include "cli/model/Inventory.h"
#include "cli/model/UsbTree.h"

namespace cli {

class UsbIds;

/// "free", "in use" or "unknown".
const char* NameOf(PortState state);

/// Where a node is: "Bus 01", "Root hub", "Port 00". At the top of a tree nothing else shows the bus, so it
/// is included there: "Bus 01, hub 5, port 00".
std::string PlaceOf(const UsbTreeNode& node, bool isTop);

/// What a hub or device reports about itself besides its name, a line each: strings, version, class. With
/// `names` also its listed name.
std::vector<std::string> DetailsOf(const Item& item, const UsbIds* names);

}  // namespace cli
