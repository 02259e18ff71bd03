// Where an item is plugged in: the bus and the chain of port numbers down to it. Places do not depend on the
// numbers that the kernel gives devices when they are plugged in.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace cli {

class Item;

/// Ascending by bus and port numbers; items that are not on a known bus come last.
struct Place {
  /// More ports in a chain than any machine has; a longer chain begins anew.
  static constexpr std::size_t kMaxPorts = 32;

  bool hasBus = false;
  std::uint32_t bus = 0;
  /// For an item that no controller leads to: the identifier of the topmost item above it, or its own. Owned
  /// by the inventory.
  std::string_view identifier = {};
  /// Port numbers from there on down, counted from 0 as the device list does.
  std::vector<std::uint32_t> ports = {};

  /// The place of the first item of a chain: a controller's is its bus. Any other item's is the port that its
  /// properties name, which stays the same when it is plugged in again, or else its identifier. `item` must
  /// outlive the place.
  static Place OfTop(const Item& item);
  /// The place that a name of the kernel's stands for, such as "1-3.1"; nothing for other texts.
  static std::optional<Place> OfName(std::string_view name);

  /// Becomes the place of `item` right below `above`; gives false, and does not change, when the item is a
  /// port without a number or the chain is too long.
  bool Continue(const Place& above, const Item& item);

  bool operator==(const Place& other) const;
  bool operator!=(const Place& other) const { return !(*this == other); }
  bool operator<(const Place& other) const;
};

}  // namespace cli
