// How an inventory and the nodes of its tree are described to people: names, places, speeds, counts.
#pragma once

#include <string>
#include <vector>

#include "cli/model/Inventory.h"
#include "cli/model/UsbTree.h"

namespace cli {

class UsbIds;

/// "free", "in use" or "unknown".
const char* NameOf(PortState state);

/// What a node is called besides its place: the state of a port, nothing for a root hub.
std::string DisplayName(const Inventory& inventory, const UsbTreeNode& node);

/// Where a node is: "Bus 01", "Root hub", "Port 00". At the top of a tree nothing else shows the bus, so it
/// is included there: "Bus 01, hub 5, port 00".
std::string PlaceOf(const UsbTreeNode& node, bool isTop);

/// The speed of a node; a hub's is that of its ports, a controller has none.
std::string SpeedOf(const UsbTree& tree, const UsbTreeNode& node);

/// What a hub or device reports about itself besides its name, a line each: strings, version, class. With
/// `names` also its listed name.
std::vector<std::string> DetailsOf(const Item& item, const UsbIds* names);

/// "testhost: 1 controller, 2 hubs, 8 ports (3 free), 4 devices"; "2 of 8 ports" where a selection left some
/// out.
std::string Summary(const Inventory& inventory);

}  // namespace cli
