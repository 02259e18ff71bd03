// The words in which the formats for people tell an inventory: names, speeds, places and counts.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "cli/model/Inventory.h"
#include "cli/model/UsbTree.h"

namespace cli {

class UsbIds;

/// "480 Mbit/s", "5 Gbit/s"; empty when it is not known.
std::string FormatSpeed(std::uint64_t bitsPerSecond);

/// The speed of a device, which tells only its class; empty when it is not known.
std::string FormatSpeedClass(std::uint64_t speedClass);

/// "1.10" for 110; says so when it is not known.
std::string FormatVersion(std::uint64_t version);

/// A code of two hexadecimal digits, of which the property holds the first as its distance from the digit 0:
/// "0*"; "?" when it is none.
std::string FormatCode(std::uint64_t code);

/// Whether a number that the list tells by one digit, such as that of the configurations, was there to be
/// told; what stands for none is no digit.
bool IsDigit(std::uint64_t number);

/// "1 port", "2 ports".
std::string Count(std::uint64_t number, const std::string& noun);

/// What follows the last `marker` of an identifier, blanks cut: the number in "Bus 01  Device   3".
std::string Behind(const std::string& identifier, const std::string& marker);

/// The bus in "Bus 01  Device   1".
std::string BusOf(const std::string& identifier);

/// A string that a device may have or not, as an inventory holds it; empty when it has none.
std::string Given(const std::string& text);
std::string Given(const InstanceView& item, const std::string& property);

/// The product string, or that there is none.
std::string NameOf(const InstanceView& item);

/// "1d6b:0002", the numbers of vendor and product.
std::string FormatId(const InstanceView& item);

/// What a hub or device is known as: "product (vendor)", or as much of it as is listed. Other people's text,
/// to be told apart from what the device says. Empty without `names`.
std::string KnownAs(const InstanceView& item, const UsbIds* names);

/// What a hub or device tells of itself besides its name, a line each: strings, version, class. With `names`
/// also what it is known as.
std::vector<std::string> DetailsOf(const InstanceView& item, const UsbIds* names);

bool IsFree(const InstanceView& port);

/// "free" or "in use".
std::string StateOf(const InstanceView& port);

/// What a node is called beside its place: a port by its state, a root hub not at all.
std::string DisplayName(const UsbTreeNode& node);

/// Where a node is: "Bus 01", "Root hub", "Port 00". At the top of a tree nothing else tells its bus, so it
/// says that too: "Bus 01, hub 5, port 00".
std::string PlaceOf(const UsbTreeNode& node, bool isTop);

/// Vendor and product of a hub or a device, as four hexadecimal digits each; empty for others.
std::string IdOf(const UsbTreeNode& node);

/// The speed of a node; a hub's is that of its ports, a controller has none.
std::string SpeedOf(const UsbTree& tree, const UsbTreeNode& node);

/// "testhost: 1 controller, 2 hubs, 8 ports (3 free), 4 devices".
std::string Summary(const Inventory& inventory);

}  // namespace cli
