// Where an item is plugged in: the bus and the chain of port numbers down to it. Places do not depend on the
// numbers that the kernel gives devices as they come.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace cli {

class Item;

/// Ascending by bus and port numbers; what is on no known bus comes last.
struct Place {
  /// More ports in a row than any machine has; a longer chain begins afresh.
  static constexpr std::size_t kMaxPorts = 32;

  bool hasBus = false;
  std::uint32_t bus = 0;
  /// Of what no controller leads to: the identifier of the topmost item above it, or its own. Owned by the
  /// inventory.
  std::string_view identifier = {};
  /// Port numbers from there on down, counted from 0 as the device list does.
  std::vector<std::uint32_t> ports = {};

  /// Where a chain begins: a controller at its bus; all else at the port that it is said to be on, which
  /// stays when it is plugged in again, or at itself. `item` must outlive the place.
  static Place OfTop(const Item& item);

  /// Becomes the place of `item` right below `above`; gives false, and stays as it is, when the item is a
  /// port without a number or the chain is too long.
  bool Continue(const Place& above, const Item& item);

  bool operator==(const Place& other) const;
  bool operator!=(const Place& other) const { return !(*this == other); }
  bool operator<(const Place& other) const;
};

}  // namespace cli
