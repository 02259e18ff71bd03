// The words in which the formats for people tell an inventory: names, speeds, places and counts.
#pragma once

#include <cstdint>
#include <string>

#include "cli/Inventory.h"

namespace cli {

/// "480 Mbit/s", "5 Gbit/s"; empty when it is not known.
std::string FormatSpeed(std::uint64_t bitsPerSecond);

/// The speed of a device, which tells only its class; empty when it is not known.
std::string FormatSpeedClass(std::uint64_t speedClass);

/// "1 port", "2 ports".
std::string Count(std::uint64_t number, const std::string& noun);

/// What follows the last `marker` of an identifier, blanks cut: the number in "Bus 01  Device   3".
std::string Behind(const std::string& identifier, const std::string& marker);

/// The bus in "Bus 01  Device   1".
std::string BusOf(const std::string& identifier);

/// The product string, or that there is none.
std::string NameOf(const InstanceView& item);

bool IsFree(const InstanceView& port);

}  // namespace cli
