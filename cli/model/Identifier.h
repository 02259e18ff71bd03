// The parts of an identifier, the DeviceID of an item: "Bus 01  Device   3" of a controller, hub or device,
// "Bus 01  Device   3 Port 02" of a port. A list may hold anything, so any part may be missing and is then
// empty.
#pragma once

#include <string_view>

namespace cli {

/// "01"
std::string_view BusOf(std::string_view identifier);
/// "3"
std::string_view DeviceOf(std::string_view identifier);
/// "02"
std::string_view PortOf(std::string_view identifier);
/// The identifier of the hub that a port is on.
std::string_view HubOf(std::string_view portIdentifier);

}  // namespace cli
