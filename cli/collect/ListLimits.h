// Estimates how large an inventory a device list makes from a quick look at its lines, since a short list can
// make a large one. Each record takes memory, the plug-in compares every device and hub with every port, and
// it repeats a hub's identifier in each of up to 255 ports.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace cli {

/// Upper bounds of what the plug-in makes of a list.
struct ListSize {
  /// "T:" lines.
  std::uint64_t records = 0;
  std::uint64_t ports = 0;
  std::uint64_t hubs = 0;
  /// The hubs and devices that are plugged into a port.
  std::uint64_t dependents = 0;
  /// The length of the identifiers in all instances, in bytes, counted each time they occur, escapes of
  /// quotes and backslashes included.
  std::uint64_t identifierBytes = 0;

  static ListSize Of(std::string_view list);

  /// The pairs that the associations compare.
  std::uint64_t Comparisons() const;
};

/// The records of 512 full buses, more than any machine has. A record takes about 8 KB in the plug-in and in
/// the inventory, however short its lines are, so this many take about half a gigabyte.
inline constexpr std::uint64_t kMostRecords = 65536;
/// The comparisons that 32 full buses take: 128 ports each, and as many hubs and devices.
inline constexpr std::uint64_t kMostComparisons = 4096ULL * 4096;
inline constexpr std::uint64_t kMostIdentifierBytes = 256ULL << 20;

/// Throws UserError, with the figures, for a list beyond the limits; `name` says which list it is.
void CheckListLimits(std::string_view list, const std::string& name);

}  // namespace cli
