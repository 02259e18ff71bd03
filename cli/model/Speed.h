// Speeds, as ports and devices report them.
#pragma once

#include <cstdint>
#include <string>

namespace cli {

/// The speed of a port: "480 Mbit/s", "5 Gbit/s"; empty when it is not known.
std::string FormatSpeed(std::uint64_t bitsPerSecond);
/// The speed of a device, of which an inventory holds the class, a number from 1 to 4: "480 Mbit/s",
/// "5+ Gbit/s"; empty when it is not known.
std::string FormatSpeedClass(std::uint64_t number);

/// "480 Mbit/s", "1.5 Mbit/s"; empty for a number that is not a rate.
std::string FormatRate(double megabitsPerSecond);

/// Whether a device can signal at that rate: 1.5, or a whole number from 1 to kFastestRate.
bool IsRate(double megabitsPerSecond);
constexpr double kFastestRate = 1000000;

}  // namespace cli
