// The classes of speed that a picture tells apart.
#pragma once

#include <cstdint>
#include <string>

namespace cli {

enum class SpeedClass { kUnknown, kLow, kFull, kHigh, kSuper };

/// The class of a port's speed.
inline SpeedClass SpeedClassOf(std::uint64_t bitsPerSecond) {
  constexpr std::uint64_t kLow = 1500000;
  constexpr std::uint64_t kFull = 12000000;
  constexpr std::uint64_t kHigh = 480000000;
  if (bitsPerSecond == 0) return SpeedClass::kUnknown;
  if (bitsPerSecond <= kLow) return SpeedClass::kLow;
  if (bitsPerSecond <= kFull) return SpeedClass::kFull;
  return bitsPerSecond <= kHigh ? SpeedClass::kHigh : SpeedClass::kSuper;
}

/// The same from the number by which a device tells it, 1 to 4.
inline SpeedClass SpeedClassOfDevice(std::uint64_t number) {
  return number >= 1 && number <= 4 ? static_cast<SpeedClass>(number) : SpeedClass::kUnknown;
}

/// "low", "full", "high", "super" or "unknown".
inline std::string NameOf(SpeedClass speed) {
  constexpr const char* kNames[] = {"unknown", "low", "full", "high", "super"};
  return kNames[static_cast<std::size_t>(speed)];
}

}  // namespace cli
