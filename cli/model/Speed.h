// Speeds, as ports and devices report them.
#pragma once

#include <cstdint>
#include <string>

namespace cli {

/// The classes of speed that are shown in different colours.
enum class SpeedClass { kUnknown, kLow, kFull, kHigh, kSuper };

/// The class of a port's speed.
SpeedClass SpeedClassOfPort(std::uint64_t bitsPerSecond);
/// The class of a device's speed, which an inventory holds as a number from 1 to 4.
SpeedClass SpeedClassOfDevice(std::uint64_t number);

/// "low", "full", "high", "super" or "unknown".
const char* NameOf(SpeedClass speed);

/// The speed of a port: "480 Mbit/s", "5 Gbit/s"; empty when it is not known.
std::string FormatSpeed(std::uint64_t bitsPerSecond);
/// The speed of a device, of which only the class is known: "480 Mbit/s", "5+ Gbit/s"; empty when it is not.
std::string FormatSpeedClass(std::uint64_t number);

/// "480 Mbit/s", "1.5 Mbit/s"; empty for a number that is not a rate.
std::string FormatRate(double megabitsPerSecond);

/// Whether a device can signal at that rate: 1.5, or a whole number from 1 to kFastestRate.
bool IsRate(double megabitsPerSecond);
constexpr double kFastestRate = 1000000;

}  // namespace cli
