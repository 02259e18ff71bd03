// A second reading of how the items of an inventory hang together, for the readers of the formats that draw
// it, and of what a text becomes in them.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "cli/model/Inventory.h"

namespace usbinfo_test {

/// A controller, a hub, a port or a device.
struct LinkedItem {
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  /// "controller", "hub", "port" or "device".
  std::string kind;
  const cli::Item* item;
  /// Index of the item that it hangs on, or kNone.
  std::size_t parent = kNone;
  bool isRootHub = false;

  /// True for a port that says that nothing is connected.
  bool IsFree() const;
  /// What it is called: its own string made fit to be shown, or that it has none.
  std::string Name() const;
  /// Vendor and product of a hub or a device, in hexadecimal.
  std::string Id() const;
};

/// All items, in the order of the classes; `inventory` must outlive them. An item hangs on the first one that
/// a link names, root hubs on their controllers before all others.
std::vector<LinkedItem> LinkItems(const cli::Inventory& inventory);

/// Those that lists of devices show: hubs other than root hubs, and devices.
std::vector<LinkedItem> ListedItems(const cli::Inventory& inventory);

}  // namespace usbinfo_test
